// The window table: making, showing, moving and stacking windows, by the program and by the operator.
#include "services/windows.h"
#include "services/decorations.h"
#include "services/drawing.h"
#include "services/pixel_store.h"
#include <algorithm>
#include <cstring>

// --- the table ---------------------------------------------------------------------------------------------------

window_record *window_of(int w)
{
    if (w < 0 || w >= WS_WINDOWS || !ws_state.windows[w].used)
        return nullptr;
    return &ws_state.windows[w];
}

window_record *frame_record()
{
    return ws_state.popup_depth ? &ws_state.popup_saved[0] : &ws_state.windows[0];
}

static window_record *inner_window(int w)
{
    return w == 0 ? nullptr : window_of(w);
}

bool window_rect_valid(const ws_rect &rect)
{
    const auto near = [](int v) { return v >= -WINDOW_PLACE_MAX && v <= WINDOW_PLACE_MAX; };
    return near(rect.x0) && near(rect.y0) && near(rect.x1) && near(rect.y1) && !rect_empty(rect)
        && rect.x1 - rect.x0 < WINDOW_SIDE_MAX && rect.y1 - rect.y0 < WINDOW_SIDE_MAX;
}

pixel_format window_format(const window_record &window)
{
    if (window.vlt == 2)
        return PIXELS_RGB;
    return ws_state.info.max_index > 255 ? PIXELS_SLOT16 : PIXELS_SLOT8;
}

void window_reset(window_record &window, window_style style, const ws_rect &rect)
{
    window = {};
    window.used = true;
    window.style = style;
    window.rect = rect;
    window.clip = CLIP_NONE;
    window.foreground = ws_state.info.max_index;
    window.line_pattern = LINE_SOLID;
    window.button_mode = 1;
}

void window_shape(window_record &window)
{
    store_shape(window.store, window_format(window), window.rect.x1 - window.rect.x0 + 1,
                window.rect.y1 - window.rect.y0 + 1, uint32_t(window.background));
}

void windows_start()
{
    window_record &frame = ws_state.windows[0];
    window_reset(frame, STYLE_FRAME, { 0, 0, ws_state.info.width - 1, ws_state.info.height - 1 });
    frame.shown = true;
    window_shape(frame);
}

void windows_stop()
{
    for (int w = 0; w < WS_WINDOWS; w++) {
        store_free(ws_state.windows[w].store);
        decorations_forget(w);
    }
    for (int i = 0; i < ws_state.popup_depth; i++)
        store_free(ws_state.popup_saved[i].store);
    store_pool_free();
}

void window_damage(const window_record &window)
{
    if (!window.shown)
        return;
    const int w = int(&window - ws_state.windows);
    damage_add(window.collapsed ? icon_rect(w) : window_outer_rect(window));
}

// --- stacking ----------------------------------------------------------------------------------------------------

static void stack_remove(int w)
{
    int *const end = ws_state.stack + ws_state.stack_count;
    ws_state.stack_count = int(std::remove(ws_state.stack, end, w) - ws_state.stack);
}

static void stack_insert(int w, int at)
{
    int *const place = ws_state.stack + at;
    std::copy_backward(place, ws_state.stack + ws_state.stack_count, ws_state.stack + ws_state.stack_count + 1);
    *place = w;
    ws_state.stack_count++;
}

static bool is_above_all(int w)
{
    return ws_state.windows[w].style == STYLE_TOP;
}

static int stack_top_for(int w)
{
    const bool below_the_top_window = !is_above_all(w) && ws_state.stack_count > 0
        && is_above_all(ws_state.stack[ws_state.stack_count - 1]);
    return ws_state.stack_count - below_the_top_window;
}

static void stack_raise(int w)
{
    damage_active_caption();
    stack_remove(w);
    stack_insert(w, stack_top_for(w));
    window_damage(ws_state.windows[w]);
    damage_active_caption();
}

// --- making and removing -----------------------------------------------------------------------------------------

static int free_slot()
{
    for (const bool avoid_queued : { true, false })
        for (int w = 1; w < WS_WINDOWS; w++)
            if (!ws_state.windows[w].used && !(avoid_queued && delete_is_queued(w)))
                return w;
    return -1;
}

static void store_title(window_record &window, const char *text)
{
    strncpy(window.title, text ? text : "", WS_TITLE_MAX);
    window.title[WS_TITLE_MAX] = 0;
}

static int create(window_style style, const char *title, const ws_rect &rect, int *number_out)
{
    const int w = free_slot();
    if (!ws_state.entered || w < 0 || !window_rect_valid(rect))
        return -1;
    window_reset(ws_state.windows[w], style, rect);
    store_title(ws_state.windows[w], title);
    *number_out = w;
    return 0;
}

int ws_create_window(int, const char *title, int x0, int y0, int x1, int y1, int *number_out)
{
    return create(STYLE_TITLED, title, { x0, y0, x1, y1 }, number_out);
}

int ws_create_plain_window(int, int x0, int y0, int x1, int y1, int *number_out)
{
    return create(STYLE_PLAIN, "", { x0, y0, x1, y1 }, number_out);
}

int ws_create_top_window(int, int x0, int y0, int x1, int y1, int *number_out)
{
    for (const window_record &window : ws_state.windows)
        if (window.used && window.style == STYLE_TOP)
            return -1;
    return create(STYLE_TOP, "", { x0, y0, x1, y1 }, number_out);
}

int ws_show_window(int w)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    if (w == 0)
        return 0;
    window->shown = true;
    if (!window->store.pixels)
        window_shape(*window);
    stack_raise(w);
    cursor_update();
    return 0;
}

int ws_delete_window(int w)
{
    if (w == 0)
        return 0;
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    window_damage(*window);
    stack_remove(w);
    store_free(window->store);
    *window = {};
    decorations_forget(w);
    events_forget_window(w);
    damage_active_caption();
    cursor_update();
    return 0;
}

void operator_delete(int w)
{
    if (w == 0 || ws_delete_window(w) != 0)
        return;
    queue_delete(w);
}

// --- moving ------------------------------------------------------------------------------------------------------

static void place(int w, const ws_rect &rect)
{
    window_record &window = ws_state.windows[w];
    const ws_rect old = window.rect;
    const int width = rect.x1 - rect.x0 + 1, height = rect.y1 - rect.y0 + 1;
    const bool resized = width != old.x1 - old.x0 + 1 || height != old.y1 - old.y0 + 1;
    if (!resized && rect.x0 == old.x0 && rect.y0 == old.y0)
        return;
    window_damage(window);
    window.rect = rect;
    if (resized && window.shown) {
        window_shape(window);
        queue_refresh(w, old, { 0, 0, width - 1, height - 1 }, 0);
    }
    window_damage(window);
    cursor_update();
}

int ws_move_window(int w, int x0, int y0, int x1, int y1)
{
    const ws_rect rect = { x0, y0, x1, y1 };
    if (!inner_window(w) || !window_rect_valid(rect))
        return -1;
    place(w, rect);
    return 0;
}

static constexpr int LEAST_WIDTH = 64, LEAST_HEIGHT = 24;
static constexpr int GRIP = 48;        // columns of a caption that stay in reach

void operator_move(int w, int x0, int y0)
{
    const window_record *const window = inner_window(w);
    if (!window)
        return;
    const ws_rect &old = window->rect;
    const ws_rect outer = window_outer_rect(*window);
    const int caption = old.y0 - outer.y0;
    x0 = std::clamp(x0, GRIP - (outer.x1 - outer.x0), ws_state.info.width - GRIP);
    y0 = std::clamp(y0, caption, std::max(caption, strip_rect().y0 - 1));
    place(w, { x0, y0, x0 + old.x1 - old.x0, y0 + old.y1 - old.y0 });
}

void operator_resize(int w, const ws_rect &rect)
{
    const window_record *const window = inner_window(w);
    if (!window)
        return;
    // The edge that the operator doesn't hold stays where it is.
    ws_rect kept = rect;
    if (kept.x1 - kept.x0 + 1 < LEAST_WIDTH) {
        if (kept.x0 != window->rect.x0)
            kept.x0 = kept.x1 - LEAST_WIDTH + 1;
        else
            kept.x1 = kept.x0 + LEAST_WIDTH - 1;
    }
    if (kept.y1 - kept.y0 + 1 < LEAST_HEIGHT) {
        if (kept.y0 != window->rect.y0)
            kept.y0 = kept.y1 - LEAST_HEIGHT + 1;
        else
            kept.y1 = kept.y0 + LEAST_HEIGHT - 1;
    }
    if (window_rect_valid(kept))
        place(w, kept);
}

int ws_window_rect(int w, int *x0_out, int *y0_out, int *x1_out, int *y1_out)
{
    const window_record *const window = window_of(w);
    if (!window)
        return -1;
    *x0_out = window->rect.x0;
    *y0_out = window->rect.y0;
    *x1_out = window->rect.x1;
    *y1_out = window->rect.y1;
    return 0;
}

int ws_push_bottom(int w)
{
    const window_record *const window = window_of(w);
    if (!window)
        return -1;
    if (w == 0 || !window->shown || is_above_all(w))
        return 0;
    damage_active_caption();
    stack_remove(w);
    stack_insert(w, 0);
    window_damage(*window);
    damage_active_caption();
    cursor_update();
    return 0;
}

int ws_pop_top(int w)
{
    const window_record *const window = window_of(w);
    if (!window)
        return -1;
    if (w == 0 || !window->shown)
        return 0;
    stack_raise(w);
    cursor_update();
    return 0;
}

void operator_raise(int w)
{
    ws_pop_top(w);
}

// --- titles ------------------------------------------------------------------------------------------------------

int ws_set_title(int w, const char *text)
{
    window_record *const window = w == 0 && ws_state.entered ? frame_record() : window_of(w);
    if (!window)
        return -1;
    store_title(*window, text);
    if (w == 0)
        ws_state.backend->set_title(window->title);
    else
        window_damage(*window);
    return 0;
}

const char *ws_title(int w)
{
    const window_record *const window = w == 0 ? frame_record() : window_of(w);
    return window ? window->title : "";
}

// --- collapsing --------------------------------------------------------------------------------------------------

int ws_window_shown(int w)
{
    const window_record *const window = window_of(w);
    return window && window->shown;
}

int ws_window_collapsed(int w)
{
    const window_record *const window = window_of(w);
    return window && window->collapsed;
}

int ws_collapse(int w)
{
    window_record *const window = inner_window(w);
    if (!window)
        return -1;
    if (window->collapsed || !window->shown)
        return 0;
    damage_active_caption();
    window_damage(*window);
    window->collapsed = true;
    icon_find_place(w);
    window_damage(*window);
    damage_active_caption();
    queue_collapse(w, 1);
    cursor_update();
    return 0;
}

int ws_uncollapse(int w)
{
    window_record *const window = inner_window(w);
    if (!window)
        return -1;
    if (!window->collapsed)
        return 0;
    window_damage(*window);
    window->collapsed = false;
    stack_raise(w);
    queue_collapse(w, 0);
    // What was drawn while it was an icon is not in its pixels.
    queue_refresh(w, window->rect, { 0, 0, window->rect.x1 - window->rect.x0, window->rect.y1 - window->rect.y0 }, 0);
    cursor_update();
    return 0;
}

void operator_collapse(int w)
{
    ws_collapse(w);
}

void operator_restore(int w)
{
    ws_uncollapse(w);
}

int ws_set_icon_position(int w, int x, int y)
{
    window_record *const window = inner_window(w);
    if (!window)
        return -1;
    if (window->collapsed)
        window_damage(*window);
    window->icon_placed = true;
    window->icon_x = x;
    window->icon_y = y;
    if (window->collapsed)
        window_damage(*window);
    return 0;
}

void operator_move_icon(int w, int x, int y)
{
    ws_set_icon_position(w, x, y);
}
