// field_edit.h - editing one line of Latin-1 text in a buffer of fixed size, and scrolling it within its frame.
// Positions count characters from 0; the selection lies between anchor and caret, whichever way round.
#pragma once
#include <cstdint>

struct field_edit {
    int caret, anchor;
    int first;                         // first character shown
};

void edit_select_all(field_edit *edit, const char *value);
void edit_place(field_edit *edit, const char *value, int position, int extend);  // extend keeps the anchor
int edit_has_selection(const field_edit *edit);
void edit_clamp(field_edit *edit, const char *value);   // for a value that may have been changed from outside

// One key byte (ws_key_byte or a character). 1 when it was an editing key, used or not; 0 when it means nothing to a field.
// `size` is the buffer's, with the ending zero; what does not fit is dropped.
int edit_key(field_edit *edit, char *value, int size, int key);

// Scrolls so that the caret is within `width` pixels. `advance` answers the width of that many characters from `text`.
void edit_scroll(field_edit *edit, const char *value, int width, int (*advance)(const char *text, int length));

// The position between characters nearest to `x` pixels right of the first character shown.
int edit_position_at(const field_edit *edit, const char *value, int x, int (*advance)(const char *text, int length));
