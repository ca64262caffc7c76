#include "display/grid.h"

#include <algorithm>
#include <climits>

#include "display/geometry.h"
#include "display/paint.h"
#include "display/picture_windows.h"
#include "services/ws.h"
#include "shell/menu.h"
#include "shell/session.h"

namespace {

constexpr int TRUE_COLOUR_WHITE = 16777215;

struct held_rect {
    int x0, y0, x1, y1;                // boundaries, so x1 and y1 may be the size
};

// The held pixels that the window shows, and one more on each side, within the image.
held_rect shown_part(const win_rec &win, const band_rec &band)
{
    held_rect part = { INT_MAX, INT_MAX, INT_MIN, INT_MIN };
    for (int corner = 0; corner < 4; corner++) {
        int x, y;
        window_to_held(corner & 1 ? win.width - 1 : 0, corner & 2 ? win.height - 1 : 0, &x, &y);
        x = std::clamp(x, 0, band.x_size);
        y = std::clamp(y, 0, band.y_size);
        part = { std::min(part.x0, x), std::min(part.y0, y), std::max(part.x1, x), std::max(part.y1, y) };
    }
    return { std::max(part.x0 - 1, 0), std::max(part.y0 - 1, 0), std::min(part.x1 + 1, band.x_size), std::min(part.y1 + 1, band.y_size) };
}

void draw_line(int w, int x0, int y0, int x1, int y1)
{
    int sx, sy;
    held_to_window_int(x0, y0, &sx, &sy);
    ws_move(w, sx, sy);
    held_to_window_int(x1, y1, &sx, &sy);
    ws_draw(w, sx, sy);
}

template <typename action> void for_each_gridded(action act)
{
    const int current = current_window;
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (is_picture(w) && windows[w].zoom >= GRID_ZOOM) {
            current_window = w;
            act(windows[w]);
        }
    current_window = current;
}

void set_enabled(int on)
{
    grid_enabled = on;
    menu_check("toggle_grid", on);
}

} // namespace

void grid_paint(int, int, int, int)
{
    const int w = current_window;
    if (!is_picture(w) || windows[w].red_band < 0 || windows[w].zoom < GRID_ZOOM)
        return;
    set_drawing_colour(w, grid_colour);
    const held_rect part = shown_part(windows[w], bands[windows[w].red_band]);
    for (int x = part.x0; x <= part.x1; x++)
        draw_line(w, x, part.y0, x, part.y1);
    for (int y = part.y0; y <= part.y1; y++)
        draw_line(w, part.x0, y, part.x1, y);
}

void grid_redraw()
{
    if (paint_hook_present(grid_paint))
        for_each_gridded([](const win_rec &win) { grid_paint(0, 0, win.width, win.height); });
}

void toggle_grid()
{
    if (grid_enabled)
        disable_grid();
    else
        enable_grid();
}

void enable_grid()
{
    if (grid_colour == -1)
        grid_colour = display_mode & TC ? TRUE_COLOUR_WHITE : int32_t(plane_mask);
    set_enabled(1);
    if (paint_hook_present(grid_paint))
        return;
    paint_hook_add(grid_paint);
    grid_redraw();
}

void disable_grid()
{
    set_enabled(0);
    paint_hook_remove(grid_paint);
    for_each_gridded([](const win_rec &) {
        ws_clear_window(current_window);               // the last lines lie just outside of the image
        paint_whole_window();
    });
}
