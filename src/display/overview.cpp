#include "display/overview.h"

#include <utility>

#include "display/geometry.h"
#include "display/picture_windows.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

constexpr int ICON_FROM_RIGHT = 204, ICON_ABOVE_STRIP = 33;

struct overview_shape {
    int width, height;
    double zoom;
};

overview_shape shape_for(const band_rec &band)
{
    overview_shape shape = { band.x_size, band.y_size, 1 };
    if (!(band.orientation & 4))
        std::swap(shape.width, shape.height);
    overview_size(&shape.width, &shape.height, &shape.zoom);
    // A strip of an image may be less than a pixel wide here.
    shape.width = shape.width > 0 ? shape.width : 1;
    shape.height = shape.height > 0 ? shape.height : 1;
    return shape;
}

// In the lower right corner; in the lower left one for the left half of a split screen.
int left_edge(const win_rec &picture, int width)
{
    const bool left_half = is_image_window(picture.linked_window) && picture.x < layout.right_half_x;
    return left_half ? layout.border_x : screen_width - layout.border_x - width;
}

int create_window(const win_rec &picture, const overview_shape &shape)
{
    const int x = left_edge(picture, shape.width), y = screen_height - layout.border_y - shape.height - layout.strip;
    int w;
    if (ws_create_window(screen_no, "overview", x, y, x + shape.width - 1, y + shape.height - 1, &w) != 0) {
        msg_put(MSG_STATUS, MSG_CENTRED, "no window is free for the overview");
        beep(BEEP_ERROR);
        return -1;
    }
    return w;
}

void fill_record(int w, int picture, double zoom)
{
    const win_rec &shown = windows[picture];
    const band_rec &band = bands[shown.red_band];
    const bool of_cut = active_window >= 0 && (windows[active_window].flags & CUT);
    win_rec &win = windows[w];
    win = {};
    win.flags = int16_t(WIN_DISPLAYED | WIN_PICTURE | WIN_OVERVIEW | (of_cut ? CUT : 0));
    win.zoom = zoom;
    win.data_x = band.x_size >> 1;
    win.data_y = band.y_size >> 1;
    win.red_band = shown.red_band;
    win.green_band = shown.green_band;
    win.blue_band = shown.blue_band;
    win.slice_band = -1;
    win.linked_window = int16_t(picture);
    win.hist_area = shown.hist_area;
    if ((display_mode & TC) && active_window >= 0) {
        win.vlt_id = windows[active_window].vlt_id;
        ws_set_window_vlt(w, win.vlt_id);
    }
}

} // namespace

void open_overview()
{
    const int picture = current_window;
    if (!is_image_window(picture) || windows[picture].red_band < 0)
        return;
    const int present = window_overview_of(picture);
    if (present >= 0) {
        window_uncollapse(present);
        ws_pop_top(present);
        return;
    }
    const overview_shape shape = shape_for(bands[windows[picture].red_band]);
    const int w = create_window(windows[picture], shape);
    if (w < 0)
        return;
    fill_record(w, picture, shape.zoom);
    ws_set_icon_position(w, screen_width - ICON_FROM_RIGHT, screen_height - layout.strip - ICON_ABOVE_STRIP);
    ws_show_window(w);
    window_read_geometry(w);
    ws_clear_window(w);
    current_window = w;
    paint_whole_window();
    current_window = picture;
}

void open_overview_in_new_session()
{
    constexpr uint32_t OVERVIEW_WANTED = 2;
    if (!(auto_windows & OVERVIEW_WANTED) || active_window < 0)
        return;
    current_window = active_window;
    open_overview();
}

void display_overview()
{
    int input;
    do
        input = prompt_input("Display overview", "Select window", 0);
    while (!(input & (INPUT_RESET | INPUT_QUIT)) && !(input == INPUT_POINT && is_image_window(pick_window)));
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    if (input == INPUT_POINT)
        open_overview();
}
