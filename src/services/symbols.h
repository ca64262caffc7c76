// symbols.h - character codes of the symbols in "kestrel.sym", "GXsym" and the built-in "symbols".
// All three hold the same set, drawn in data/symbols.txt under these names.
//
// A symbol's record has its size in width and height. x offset and y offset are 0 for all but the cursors, where they
// are the hot spot, counted from the top left pixel. A code that ends in _MASK is the same size as the symbol before
// it, and holds all pixels that belong to the picture: draw the mask in the paper's colour, then the symbol in the ink's.
#pragma once

#define SYMBOL_LIST(SYMBOL) \
    SYMBOL(SYM_PUSH_UP)             /* round push button, released */ \
    SYMBOL(SYM_PUSH_UP_MASK) \
    SYMBOL(SYM_PUSH_DOWN)           /* ... pressed */ \
    SYMBOL(SYM_PUSH_DOWN_MASK) \
    SYMBOL(SYM_RADIO_OFF)           /* one of several, not chosen */ \
    SYMBOL(SYM_RADIO_OFF_MASK) \
    SYMBOL(SYM_RADIO_ON)            /* ... chosen */ \
    SYMBOL(SYM_RADIO_ON_MASK) \
    SYMBOL(SYM_BOX_OFF)             /* check box, clear */ \
    SYMBOL(SYM_BOX_OFF_MASK) \
    SYMBOL(SYM_BOX_ON)              /* ... with its check mark */ \
    SYMBOL(SYM_BOX_ON_MASK) \
    SYMBOL(SYM_ARROW_UP)            /* small solid arrows of scroll bars, lists and spinners */ \
    SYMBOL(SYM_ARROW_DOWN) \
    SYMBOL(SYM_ARROW_LEFT) \
    SYMBOL(SYM_ARROW_RIGHT) \
    SYMBOL(SYM_CHECK)               /* check mark before a menu item */ \
    SYMBOL(SYM_SUBMENU)             /* arrow behind a menu item that opens another menu */ \
    SYMBOL(SYM_CLOSE)               /* caption button: close */ \
    SYMBOL(SYM_COLLAPSE)            /* caption button: collapse to an icon */ \
    SYMBOL(SYM_RESTORE)             /* icon button: back to a window */ \
    SYMBOL(SYM_ACCEPT)              /* form button: accept, a heavy check mark */ \
    SYMBOL(SYM_CANCEL)              /* form button: cancel, a heavy cross */ \
    SYMBOL(SYM_DRIVE)               /* file picker: a drive */ \
    SYMBOL(SYM_DRIVE_MASK) \
    SYMBOL(SYM_FOLDER)              /* file picker: a directory */ \
    SYMBOL(SYM_FOLDER_MASK) \
    SYMBOL(SYM_FILE)                /* file picker: a file */ \
    SYMBOL(SYM_FILE_MASK) \
    SYMBOL(SYM_PICTURE)             /* file picker, icons of collapsed windows: a picture */ \
    SYMBOL(SYM_PICTURE_MASK) \
    SYMBOL(SYM_INFO)                /* report boxes, one for each level */ \
    SYMBOL(SYM_INFO_MASK) \
    SYMBOL(SYM_WARNING) \
    SYMBOL(SYM_WARNING_MASK) \
    SYMBOL(SYM_ERROR) \
    SYMBOL(SYM_ERROR_MASK) \
    SYMBOL(SYM_CURSOR_ARROW) \
    SYMBOL(SYM_CURSOR_ARROW_MASK) \
    SYMBOL(SYM_CURSOR_BUSY)         /* a watch */ \
    SYMBOL(SYM_CURSOR_BUSY_MASK) \
    SYMBOL(SYM_CURSOR_CROSS) \
    SYMBOL(SYM_CURSOR_CROSS_MASK) \
    SYMBOL(SYM_CURSOR_TEXT) \
    SYMBOL(SYM_CURSOR_TEXT_MASK)

enum symbol_code {
    SYM_BEFORE_FIRST = 32,          // the codes run on from 33, the first printable character
#define SYMBOL(name) name,
    SYMBOL_LIST(SYMBOL)
#undef SYMBOL
    SYM_END                         // one past the last code
};
