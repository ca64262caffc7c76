// save_kinds.h - how an image came in, so that a save can go back the same way.
#pragma once

enum save_kind {
    SAVE_UNKNOWN = 0, SAVE_TILED_BIN = 1, SAVE_TILED = 2, SAVE_TILED_THREE = 3, SAVE_BIN = 4, SAVE_NATIVE_27 = 5,
    SAVE_TIFF_27 = 6, SAVE_TIFF_28 = 7, SAVE_TGA_27 = 8, SAVE_TGA_28 = 9, SAVE_PCX_27 = 10, SAVE_PCX_28 = 11, SAVE_BMP = 12,
    SAVE_GIF = 13, SAVE_NATIVE_29 = 14, SAVE_NATIVE_2 = 15, SAVE_NATIVE_10 = 16,
};

// Sets the save kinds of the active window from its bands and the files they came from. `three`: one file a colour.
void note_save_kinds(int three);

// The kind of one file by its format and data type; `three` when it is one of three.
int save_kind_of(int standard, int type, int three);
