#include "forms/field_edit.h"
#include "services/ws.h"
#include <algorithm>
#include <cstring>

static int length_of(const char *value)
{
    return int(std::strlen(value));
}

int edit_has_selection(const field_edit *edit)
{
    return edit->caret != edit->anchor;
}

void edit_select_all(field_edit *edit, const char *value)
{
    edit->anchor = 0;
    edit->caret = length_of(value);
    edit->first = 0;
}

void edit_place(field_edit *edit, const char *value, int position, int extend)
{
    edit->caret = std::clamp(position, 0, length_of(value));
    if (!extend)
        edit->anchor = edit->caret;
}

void edit_clamp(field_edit *edit, const char *value)
{
    const int length = length_of(value);
    edit->caret = std::clamp(edit->caret, 0, length);
    edit->anchor = std::clamp(edit->anchor, 0, length);
    edit->first = std::clamp(edit->first, 0, length);
}

static void delete_range(field_edit *edit, char *value, int from, int to)
{
    std::memmove(value + from, value + to, size_t(length_of(value) - to + 1));
    edit_place(edit, value, from, 0);
}

static void delete_selection(field_edit *edit, char *value)
{
    delete_range(edit, value, std::min(edit->caret, edit->anchor), std::max(edit->caret, edit->anchor));
}

static void insert_character(field_edit *edit, char *value, int size, char character)
{
    if (edit_has_selection(edit))
        delete_selection(edit, value);
    const int length = length_of(value);
    if (length + 1 >= size)
        return;
    std::memmove(value + edit->caret + 1, value + edit->caret, size_t(length - edit->caret + 1));
    value[edit->caret] = character;
    edit_place(edit, value, edit->caret + 1, 0);
}

// Left and Right first collapse a selection to its edge.
static void step_caret(field_edit *edit, const char *value, int direction)
{
    int position = edit->caret + direction;
    if (edit_has_selection(edit))
        position = direction < 0 ? std::min(edit->caret, edit->anchor) : std::max(edit->caret, edit->anchor);
    edit_place(edit, value, position, 0);
}

static void delete_beside(field_edit *edit, char *value, int direction)
{
    if (edit_has_selection(edit))
        delete_selection(edit, value);
    else if (direction < 0 && edit->caret > 0)
        delete_range(edit, value, edit->caret - 1, edit->caret);
    else if (direction > 0 && edit->caret < length_of(value))
        delete_range(edit, value, edit->caret, edit->caret + 1);
}

static int is_character(int key)
{
    return (key >= 32 && key < 127) || (key >= 160 && key < 256);
}

int edit_key(field_edit *edit, char *value, int size, int key)
{
    edit_clamp(edit, value);
    switch (key) {
    case WS_KEY_HOME:        edit_place(edit, value, 0, 0); return 1;
    case WS_KEY_END:         edit_place(edit, value, length_of(value), 0); return 1;
    case WS_KEY_LEFT:        step_caret(edit, value, -1); return 1;
    case WS_KEY_RIGHT:       step_caret(edit, value, 1); return 1;
    case WS_KEY_BACKSPACE:   delete_beside(edit, value, -1); return 1;
    case WS_KEY_DELETE:      delete_beside(edit, value, 1); return 1;
    case WS_KEY_CTRL_DELETE: delete_range(edit, value, 0, length_of(value)); return 1;
    default:
        if (!is_character(key))
            return 0;
        insert_character(edit, value, size, char(key));
        return 1;
    }
}

void edit_scroll(field_edit *edit, const char *value, int width, int (*advance)(const char *text, int length))
{
    edit->first = std::min(edit->first, edit->caret);
    while (edit->first < edit->caret && advance(value + edit->first, edit->caret - edit->first) > width)
        edit->first++;
    // Room at the right end is filled again when the text has become shorter.
    while (edit->first > 0 && advance(value + edit->first - 1, length_of(value) - edit->first + 1) <= width)
        edit->first--;
}

int edit_position_at(const field_edit *edit, const char *value, int x, int (*advance)(const char *text, int length))
{
    const int length = length_of(value);
    int position = edit->first, left = 0;
    while (position < length) {
        const int right = advance(value + edit->first, position + 1 - edit->first);
        if (x < (left + right) / 2)
            break;
        left = right;
        position++;
    }
    return position;
}
