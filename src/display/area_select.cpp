#include "display/area_select.h"

#include <algorithm>

#include "mem.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

struct rectangle {
    int x0, y0, x1, y1;
};

// The pixels under the four edges of a rubber band: top, right, bottom, left.
struct edge {
    uint8_t *pixels;
    int room;
    rectangle place;
    bool saved;
};
edge edges[4];
uint8_t *edge_block;

rectangle ordered(const rectangle &r)
{
    return { std::min(r.x0, r.x1), std::min(r.y0, r.y1), std::max(r.x0, r.x1), std::max(r.y0, r.y1) };
}

rectangle edge_place(const rectangle &r, int side)
{
    switch (side) {
    case 0:  return { r.x0, r.y0, r.x1, r.y0 };
    case 1:  return { r.x1, r.y0, r.x1, r.y1 };
    case 2:  return { r.x0, r.y1, r.x1, r.y1 };
    default: return { r.x0, r.y0, r.x0, r.y1 };
    }
}

void save_edges(int w, const rectangle &r)
{
    for (int side = 0; side < 4; side++) {
        edge &e = edges[side];
        int size;
        e.place = edge_place(r, side);
        e.saved = ws_pixels_size(e.place.x0, e.place.y0, e.place.x1, e.place.y1, &size) == 0 && size <= e.room
                  && ws_read_pixels(w, e.place.x0, e.place.y0, e.place.x1, e.place.y1, e.pixels) == 0;
    }
}

void restore_edges(int w)
{
    for (edge &e : edges) {
        if (e.saved)
            ws_write_pixels(w, e.place.x0, e.place.y0, e.place.x1, e.place.y1, e.pixels);
        e.saved = false;
    }
}

void draw_rectangle(int w, const rectangle &r)
{
    save_edges(w, r);
    ws_set_foreground(w, highlight_colour);
    ws_move(w, r.x0, r.y0);
    ws_draw(w, r.x1, r.y0);
    ws_draw(w, r.x1, r.y1);
    ws_draw(w, r.x0, r.y1);
    ws_draw(w, r.x0, r.y0);
}

rectangle within_window(int w, const rectangle &r)
{
    const int right = windows[w].width - 1, lower = windows[w].height - 1;
    return { std::clamp(r.x0, 0, right), std::clamp(r.y0, 0, lower), std::clamp(r.x1, 0, right), std::clamp(r.y1, 0, lower) };
}

// Follows the pointer until a button event is pending, the band drawn behind it.
rectangle follow_pointer(int w, int x0, int y0)
{
    rectangle band = { x0, y0, x0, y0 };
    int last_x = x0, last_y = y0;
    ws_enable_events(WS_MOTION);
    for (;;) {
        int x, y, inside;
        uint32_t pending;
        ws_pointer_in_window(w, &x, &y, &inside);
        if (x != last_x || y != last_y) {
            restore_edges(w);
            band = within_window(w, ordered({ x0, y0, x, y }));
            draw_rectangle(w, band);
            last_x = x;
            last_y = y;
        }
        ws_pending(&pending);
        if (pending & WS_BUTTON)
            break;
        ws_flush_motion();
        ws_wait_event(WS_BUTTON | WS_MOTION, &pending);
    }
    ws_disable_events(WS_MOTION);
    return band;
}

// The operator presses, drags and releases. 1 with the rectangle on the screen; 0 when given up.
int drag_rectangle(const char *title, int *w_out, rectangle *out)
{
    int input;
    do {
        input = prompt_input(title, "Select window area", PROMPT_SHOW_POSITION);
        if (input & (INPUT_RESET | INPUT_QUIT | INPUT_KEYIN | INPUT_POINT))
            return 0;
    } while (input != INPUT_BUTTON1 || !is_picture(pick_window));
    const int w = pick_window, x0 = pick_x, y0 = pick_y;
    follow_pointer(w, x0, y0);

    input = prompt_input(title, "Select window area", PROMPT_SHOW_POSITION);
    if (!(input & (INPUT_BUTTON1 | INPUT_BUTTON0))) {
        restore_edges(w);
        return 0;
    }
    restore_edges(w);
    *w_out = w;
    *out = within_window(w, ordered({ x0, y0, pick_x, pick_y }));
    draw_rectangle(w, *out);
    return 1;
}

// Shows the rectangle and asks. 1 accepted, 0 rejected, -1 to be asked again.
int confirm(const char *title, int w, bool given)
{
    int input;
    do
        input = prompt_input(title, "Accept or reject", 0);
    while (!(input & (INPUT_POINT | INPUT_RESET | INPUT_QUIT)));
    restore_edges(w);
    current_window = w;
    if (input == INPUT_POINT)
        return 1;
    return input == INPUT_RESET && !given ? -1 : 0;
}

} // namespace

int rubber_band_init()
{
    const size_t w = size_t(max_image_width + (max_image_width & 1)), h = size_t(max_image_height + (max_image_height & 1));
    mem_free(edge_block);
    edge_block = (uint8_t *)mem_alloc(8 * (w + h));
    if (!edge_block)
        return 0;
    const size_t room[4] = { 4 * w, 4 * h, 4 * w, 4 * h };
    uint8_t *at = edge_block;
    for (int side = 0; side < 4; side++) {
        edges[side] = { at, int(room[side]), {}, false };
        at += room[side];
    }
    return 1;
}

int select_window_area(const char *title, int *x0, int *y0, int *x1, int *y1)
{
    const bool given = *x0 >= 0 && *y0 >= 0 && *x1 >= 0 && *y1 >= 0;
    rectangle chosen = ordered({ *x0, *y0, *x1, *y1 });
    int w = current_window, answer = -1;
    if (given && !is_picture(w))
        return 0;
    while (answer < 0) {
        if (given)
            draw_rectangle(w, chosen);
        else if (!drag_rectangle(title, &w, &chosen))
            break;
        answer = confirm(title, w, given);
    }
    msg_clear(MSG_STATUS);
    if (answer != 1)
        return 0;
    *x0 = chosen.x0;
    *y0 = chosen.y0;
    *x1 = chosen.x1;
    *y1 = chosen.y1;
    return 1;
}
