#include "display/show_image.h"

#include <algorithm>

#include "display/geometry.h"
#include "display/overview.h"
#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/menu.h"
#include "shell/session.h"

namespace {

constexpr int FULL_SCREEN_REQUEST = -2;
constexpr int FULL_WIDTH = 1184, FULL_HEIGHT = 884;

struct placement {
    int x, y, width, height;
};

placement largest_window()
{
    return { layout.border_x, layout.caption, max_image_width, max_image_height };
}

// The right half beside the window that is already there.
placement right_half(const win_rec &left)
{
    placement place = largest_window();
    if (display_mode & SPLIT_DECOUPLED) {
        if (place.x < layout.right_half_x)
            place.width = layout.half_width;
    } else {
        place.width = left.width;
        place.height = left.height;
        place.y = left.y;
    }
    place.x = layout.right_half_x;
    return place;
}

void set_bands(win_rec &win, int red, int green, int blue)
{
    win.red_band = int16_t(red);
    win.green_band = int16_t(green);
    win.blue_band = int16_t(blue);
    win.hist_area = { 0, 0, bands[red].x_size - 1, bands[red].y_size - 1 };
}

// The whole image, as large as the window allows; a small image is scaled up.
void zoom_to_fit(win_rec &win)
{
    const band_rec &red = bands[win.red_band];
    int w = red.x_size, h = red.y_size;
    if (!(red.orientation & 4))
        std::swap(w, h);
    win.zoom = std::min(double(win.width) / w, double(win.height) / h);
    win.data_x = red.x_size >> 1;
    win.data_y = red.y_size >> 1;
}

void copy_view(win_rec &win, const win_rec &from)
{
    win.flags = from.flags;
    win.data_x = from.data_x;
    win.data_y = from.data_y;
    win.zoom = from.zoom;
}

// The window that waits for its second half, or -1.
int first_of_split()
{
    const bool waits = (display_mode & SPLIT_SCR) && is_image_window(active_window) && windows[active_window].linked_window < 0;
    return waits ? active_window : -1;
}

int open_full_screen(int red, int green)
{
    if (!(display_mode & IFB))
        return -1;
    const int height = FULL_HEIGHT - layout.strip;
    int w;
    if (ws_create_top_window(screen_no, 0, 0, FULL_WIDTH - 1, height - 1, &w) != 0)
        return -1;
    windows[w] = {};
    windows[w].flags = WIN_DISPLAYED | WIN_PICTURE | RESERVED_WIN;
    windows[w].slice_band = windows[w].linked_window = -1;
    ws_show_window(w);
    window_read_geometry(w);
    set_bands(windows[w], red, green, green);
    zoom_to_fit(windows[w]);
    return w;
}

} // namespace

int show_image(int red, int green, int blue)
{
    if (display_mode & REFETCHING_BAND)
        return active_window;
    if (blue == FULL_SCREEN_REQUEST)
        return open_full_screen(red, green);

    const int partner = first_of_split();
    const placement place = partner >= 0 ? right_half(windows[partner]) : largest_window();
    const int w = new_picture_window(place.width, place.height, place.x, place.y);
    if (w < 0) {
        msg_put(MSG_STATUS, MSG_CENTRED, "no window is free for this image");
        beep(BEEP_ERROR);
        return -1;
    }
    win_rec &win = windows[w];
    set_bands(win, red, green, blue);
    if (partner >= 0 && !(display_mode & SPLIT_DECOUPLED))
        copy_view(win, windows[partner]);
    else
        zoom_to_fit(win);
    if (partner >= 0) {
        win.linked_window = int16_t(partner);
        windows[partner].linked_window = int16_t(w);
    }
    window_set_name(w);
    if (display_mode & NEW_SESSION)
        new_session_display();
    else if (pictures_are_mixed())
        display_rebuild();             // the others were painted for another mode
    else
        vlt_program();
    current_window = w;
    paint_whole_window();
    ws_normal_cursor(w);
    menu_update_split();
    if (display_mode & NEW_SESSION) {
        open_hist_in_new_session();
        open_overview_in_new_session();
    }
    current_window = w;
    return w;
}

void new_session_display()
{
    if (display_mode & GAMMA_DEF) {
        vlt_program();
        return;
    }
    gamma_value = display_mode & COLOR ? gamma_default : (gamma_default - 1) * 0.5 + 1;
    gamma_apply();
}
