// The pointer: where it is, what lies under it, and which cursor shows there.
#include "services/decorations.h"
#include "services/pump.h"
#include "services/ws_state.h"

int window_at(int x, int y, window_part *part_out)
{
    *part_out = PART_NOTHING;
    if (popup_is_open()) {
        const window_record &popup = ws_state.windows[0];
        if (popup.shown && rect_has(popup.rect, x, y))
            *part_out = PART_INSIDE;
        return 0;
    }
    if (!rect_has(frame_record()->rect, x, y))
        return 0;
    if (rect_has(strip_rect(), x, y)) {
        *part_out = PART_STRIP;
        return 0;
    }
    for (int i = ws_state.stack_count - 1; i >= 0; i--) {
        const int w = ws_state.stack[i];
        if (ws_state.windows[w].collapsed && rect_has(icon_rect(w), x, y)) {
            *part_out = PART_ICON;
            return w;
        }
    }
    for (int i = ws_state.stack_count - 1; i >= 0; i--) {
        const int w = ws_state.stack[i];
        const window_record &window = ws_state.windows[w];
        if (!window.collapsed && rect_has(window_outer_rect(window), x, y)) {
            *part_out = frame_part(window, x, y);
            return w;
        }
    }
    *part_out = PART_INSIDE;
    return 0;
}

static int pointer_in(int w, int *x_out, int *y_out, int *inside_out)
{
    const window_record *const window = window_of(w);
    if (!window)
        return -1;
    *x_out = ws_state.pointer_x - window->rect.x0;
    *y_out = ws_state.pointer_y - window->rect.y0;
    *inside_out = ws_state.pointer_inside && window->shown && !window->collapsed
        && rect_has(window->rect, ws_state.pointer_x, ws_state.pointer_y);
    return 0;
}

int ws_pointer_in_window(int w, int *x_out, int *y_out, int *inside_out)
{
    if (!window_of(w))
        return -1;
    pump_pointer_asked();
    return pointer_in(w, x_out, y_out, inside_out);
}

int ws_pointer_anywhere(int *w_out, int *x_out, int *y_out, int *inside_out)
{
    if (!ws_state.entered)
        return -1;
    pump_pointer_asked();
    window_part part;
    const int w = window_at(ws_state.pointer_x, ws_state.pointer_y, &part);
    *w_out = ws_state.pointer_inside && part == PART_INSIDE ? w : 0;
    return pointer_in(*w_out, x_out, y_out, inside_out);
}

int ws_warp_pointer(int x, int y)
{
    if (!ws_state.entered)
        return -1;
    if (!rect_has(frame_record()->rect, x, y))
        return -1;
    ws_state.backend->warp_pointer(x, y + ws_menu_height());
    ws_state.pointer_x = x;
    ws_state.pointer_y = y;
    cursor_update();
    return 0;
}

// --- cursors -----------------------------------------------------------------------------------------------------

static int cursor_of_part(int w, window_part part)
{
    switch (part) {
    case PART_INSIDE:
        if (ws_state.windows[w].busy > 0)
            return CURSOR_BUSY;
        return w == 0 ? CURSOR_ARROW : CURSOR_CROSS;
    case PART_LEFT:
    case PART_RIGHT:
        return CURSOR_SIZE_H;
    case PART_TOP:
    case PART_BOTTOM:
        return CURSOR_SIZE_V;
    case PART_TOP_LEFT:
    case PART_BOTTOM_RIGHT:
        return CURSOR_SIZE_DIAGONAL;
    case PART_TOP_RIGHT:
    case PART_BOTTOM_LEFT:
        return CURSOR_MOVE;
    default:
        return frame_record()->busy > 0 ? CURSOR_BUSY : CURSOR_ARROW;
    }
}

void cursor_update()
{
    if (!ws_state.entered)
        return;
    window_part part;
    const int w = window_at(ws_state.pointer_x, ws_state.pointer_y, &part);
    const int cursor = cursor_of_part(w, part);
    if (cursor == ws_state.cursor)
        return;
    ws_state.cursor = cursor;
    ws_state.backend->set_cursor(cursor);
}

int ws_busy_cursor(int w)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    window->busy++;
    cursor_update();
    return 0;
}

int ws_normal_cursor(int w)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    if (window->busy > 0)
        window->busy--;
    cursor_update();
    return 0;
}

// Drawing needs no bracket here: the pointer is the backend's and never part of the picture.
int ws_hide_cursor(int w)
{
    return window_of(w) ? 0 : -1;
}

int ws_show_cursor(int w)
{
    return window_of(w) ? 0 : -1;
}

int ws_flush(int w)
{
    if (!window_of(w))
        return -1;
    present_if_due();
    return 0;
}
