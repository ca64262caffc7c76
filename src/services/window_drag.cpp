#include "services/window_drag.h"

#include <cstdlib>

// An icon that moves less than this was clicked, not dragged.
static constexpr int CLICK_SLACK = 3;
static constexpr int OUTLINE_WIDTH = 2;

enum drag_kind { DRAG_NONE, DRAG_WINDOW, DRAG_BORDER, DRAG_ICON, DRAG_BUTTON };

struct drag_record {
    drag_kind kind;
    int window;
    window_part part;
    int press_x, press_y;
    ws_rect start;                     // drawable area, or icon, before
    ws_rect rect;                      // and as dragged so far
    bool moved;
};

static drag_record drag;

bool window_drag_active()
{
    return drag.kind != DRAG_NONE;
}

static drag_kind kind_of_part(window_part part)
{
    switch (part) {
    case PART_CAPTION:
        return DRAG_WINDOW;
    case PART_COLLAPSE_BUTTON: case PART_CLOSE_BUTTON:
        return DRAG_BUTTON;
    case PART_LEFT: case PART_RIGHT: case PART_TOP: case PART_BOTTOM:
    case PART_TOP_LEFT: case PART_TOP_RIGHT: case PART_BOTTOM_LEFT: case PART_BOTTOM_RIGHT:
        return DRAG_BORDER;
    case PART_ICON:
        return DRAG_ICON;
    default:
        return DRAG_NONE;
    }
}

int window_drag_press(int w, window_part part, int x, int y)
{
    const window_record *window = window_of(w);
    const drag_kind kind = kind_of_part(part);
    if (!window || w == 0 || kind == DRAG_NONE)
        return 0;
    const ws_rect start = kind == DRAG_ICON ? icon_rect(w) : window->rect;
    drag = { kind, w, part, x, y, start, start, false };
    if (kind == DRAG_BUTTON)
        operator_press_button(w, part);
    else if (kind != DRAG_ICON)
        operator_raise(w);
    return 1;
}

static ws_rect shifted(const ws_rect &rect, int dx, int dy)
{
    return { rect.x0 + dx, rect.y0 + dy, rect.x1 + dx, rect.y1 + dy };
}

static ws_rect stretched(const ws_rect &rect, window_part part, int dx, int dy)
{
    ws_rect r = rect;
    if (part == PART_LEFT || part == PART_TOP_LEFT || part == PART_BOTTOM_LEFT)
        r.x0 = dx > r.x1 - r.x0 ? r.x1 : r.x0 + dx;
    if (part == PART_RIGHT || part == PART_TOP_RIGHT || part == PART_BOTTOM_RIGHT)
        r.x1 = -dx > r.x1 - r.x0 ? r.x0 : r.x1 + dx;
    if (part == PART_TOP || part == PART_TOP_LEFT || part == PART_TOP_RIGHT)
        r.y0 = dy > r.y1 - r.y0 ? r.y1 : r.y0 + dy;
    if (part == PART_BOTTOM || part == PART_BOTTOM_LEFT || part == PART_BOTTOM_RIGHT)
        r.y1 = -dy > r.y1 - r.y0 ? r.y0 : r.y1 + dy;
    return r;
}

static void damage_outline()
{
    const ws_rect &r = drag.rect;
    const int w = OUTLINE_WIDTH;
    damage_add({ r.x0 - w, r.y0 - w, r.x1 + w, r.y0 });
    damage_add({ r.x0 - w, r.y1, r.x1 + w, r.y1 + w });
    damage_add({ r.x0 - w, r.y0 - w, r.x0, r.y1 + w });
    damage_add({ r.x1, r.y0 - w, r.x1 + w, r.y1 + w });
}

void window_drag_paint()
{
    if (drag.kind != DRAG_BORDER || !drag.moved)
        return;
    for (int n = 1; n <= OUTLINE_WIDTH; n++)
        paint_outline({ drag.rect.x0 - n, drag.rect.y0 - n, drag.rect.x1 + n, drag.rect.y1 + n }, UI_ACCENT);
}

void window_drag_move(int x, int y)
{
    const int dx = x - drag.press_x, dy = y - drag.press_y;
    switch (drag.kind) {
    case DRAG_WINDOW:
        drag.rect = shifted(drag.start, dx, dy);
        operator_move(drag.window, drag.rect.x0, drag.rect.y0);
        break;
    case DRAG_BORDER:
        damage_outline();
        drag.rect = stretched(drag.start, drag.part, dx, dy);
        drag.moved = true;
        damage_outline();
        break;
    case DRAG_ICON:
        drag.moved = drag.moved || std::abs(dx) > CLICK_SLACK || std::abs(dy) > CLICK_SLACK;
        if (drag.moved)
            operator_move_icon(drag.window, drag.start.x0 + dx, drag.start.y0 + dy);
        break;
    case DRAG_BUTTON: {
        window_part under;
        const bool over = window_at(x, y, &under) == drag.window && under == drag.part;
        operator_press_button(drag.window, over ? drag.part : PART_NOTHING);
        break;
    }
    case DRAG_NONE:
        break;
    }
}

static void press_caption_button(int w, window_part part)
{
    if (part == PART_COLLAPSE_BUTTON)
        operator_collapse(w);
    else if (!ws_application_hooks.close_query || ws_application_hooks.close_query(w))
        operator_delete(w);
}

void window_drag_release(int x, int y)
{
    const drag_record done = drag;
    window_part under;
    switch (done.kind) {
    case DRAG_BORDER:
        damage_outline();
        drag = {};
        if (done.moved)
            operator_resize(done.window, done.rect);
        break;
    case DRAG_ICON:
        drag = {};
        if (!done.moved)
            operator_restore(done.window);
        break;
    case DRAG_BUTTON:
        drag = {};                     // before the close question, whose form takes its own clicks
        operator_press_button(done.window, PART_NOTHING);
        if (window_at(x, y, &under) == done.window && under == done.part)
            press_caption_button(done.window, done.part);
        break;
    default:
        drag = {};
    }
}

void window_drag_cancel()
{
    const drag_record done = drag;
    if (done.kind == DRAG_BORDER)
        damage_outline();
    drag = {};
    if (done.kind == DRAG_WINDOW)
        operator_move(done.window, done.start.x0, done.start.y0);
    else if (done.kind == DRAG_ICON && done.moved)
        operator_move_icon(done.window, done.start.x0, done.start.y0);
    else if (done.kind == DRAG_BUTTON)
        operator_press_button(done.window, PART_NOTHING);
}

void window_drag_forget(int w)
{
    if (drag.window != w)
        return;
    if (drag.kind == DRAG_BORDER)
        damage_outline();
    drag = {};
}
