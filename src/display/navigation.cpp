#include "display/navigation.h"

#include <cmath>
#include <cstdio>

#include "display/area_select.h"
#include "display/geometry.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

void clear_prompt()
{
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

// The held point under the last data point. A point in an overview belongs to the window that the overview shows, which becomes
// current_window. 0 when the point is in no picture.
int picked_held_point(int *x, int *y)
{
    if (!is_picture(pick_window))
        return 0;
    window_to_held(pick_x, pick_y, x, y);
    if (windows[current_window].flags & WIN_OVERVIEW)
        current_window = windows[current_window].linked_window;
    return is_picture(current_window);
}

void move_view(int x, int y, double factor)
{
    set_view_zoom(windows[current_window].zoom * factor);
    set_view_center(x, y);
    refresh_view();
}

// Asks for points and zooms around each, until a reset or quit.
void zoom_by(const char *title, double factor)
{
    if (active_window < 0)
        return;
    int input;
    do {
        input = prompt_input(title, "Select zoom center point", 0);
        int x, y;
        if (input == INPUT_POINT && picked_held_point(&x, &y))
            move_view(x, y, factor);
    } while (!(input & (INPUT_RESET | INPUT_QUIT)) && active_window >= 0);
    clear_prompt();
}

// Two integers are a held pixel of the active window; an empty key-in means the pointer's place. 0 when it is neither.
int keyed_center(int *x, int *y)
{
    if (keyin_length == 0) {
        int inside;
        ws_pointer_anywhere(&current_window, &pick_x, &pick_y, &inside);
        return inside && picked_held_point(x, y);
    }
    current_window = active_window;
    return sscanf(keyin_buffer, "%d %d", x, y) == 2;
}

template <typename action> void for_each_band_once(const win_rec &win, action act)
{
    act(win.red_band);
    if (win.green_band >= 0 && win.green_band != win.red_band)
        act(win.green_band);
    if (win.blue_band >= 0 && win.blue_band != win.red_band && win.blue_band != win.green_band)
        act(win.blue_band);
}

void copy_rotation(int from, int to)
{
    for (int row = 0; row < 2; row++)
        for (int column = 0; column < 4; column++)
            bands[to].xform[row][column] = bands[from].xform[row][column];
}

void rotate_view(const win_rec &win, double degrees)
{
    band_rec &red = bands[win.red_band];
    const double r = degrees * M_PI / 180;
    red.xform[0][0] = std::cos(r);
    red.xform[0][1] = std::sin(r);
    red.xform[1][0] = -std::sin(r);
    red.xform[1][1] = std::cos(r);
    apply_orientation(red.xform, red.orientation);
    if (win.green_band != win.red_band && win.green_band >= 0)
        copy_rotation(win.red_band, win.green_band);
    // The green band's number is asked for the blue band too: that is meant.
    if (win.blue_band != win.red_band && win.green_band >= 0 && win.blue_band >= 0)
        copy_rotation(win.red_band, win.blue_band);
}

} // namespace

void center()
{
    if (active_window < 0)
        return;
    int input;
    do {
        input = prompt_input("Center", "Select center point", PROMPT_KEYIN | PROMPT_SHOW_POSITION);
        int x, y;
        if ((input == INPUT_POINT && picked_held_point(&x, &y)) || (input == INPUT_KEYIN && keyed_center(&x, &y))) {
            set_view_center(x, y);
            refresh_view();
        }
    } while (!(input & (INPUT_RESET | INPUT_QUIT)) && active_window >= 0);
    msg_clear(MSG_STATUS);
    clear_prompt();
}

void zoom_in()
{
    zoom_by("Zoom in", 2.0);
}

void zoom_out()
{
    zoom_by("Zoom out", 0.5);
}

void area()
{
    if (active_window < 0)
        return;
    int x0 = -1, y0 = -1, x1 = -1, y1 = -1;
    if (select_window_area("Area", &x0, &y0, &x1, &y1))
        view_area(x0, y0, x1, y1);
    clear_prompt();
}

void fit()
{
    if (active_window < 0)
        return;
    current_window = active_window;
    fit_image();
}

void zoom_out_full()
{
    if (active_window < 0)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Zoom out to full resolution");
    current_window = active_window;
    const band_rec &band = bands[windows[active_window].red_band];
    set_view_zoom(1.0);
    set_view_center(band.x_size >> 1, band.y_size >> 1);
    refresh_view();
    msg_clear(MSG_TITLE);
}

void set_xform_mtx()
{
    if (active_window < 0) {
        msg_put(MSG_STATUS, MSG_CENTRED, "No image present");
        beep(BEEP_ERROR);
        return;
    }
    int input;
    do
        input = prompt_input("Rotate on display", "Enter counter-clockwise rotation angle (deg.)", PROMPT_KEYIN);
    while (!(input & (INPUT_KEYIN | INPUT_RESET | INPUT_QUIT)));
    float angle;
    if (input == INPUT_KEYIN && sscanf(keyin_buffer, "%f", &angle) == 1 && std::isfinite(angle) && active_window >= 0) {
        rotate_view(windows[active_window], angle);
        current_window = active_window;
        refresh_view();
    }
    clear_prompt();
}

void clear_xform_mtx()
{
    if (active_window < 0)
        return;
    current_window = active_window;
    for_each_band_once(windows[active_window], band_reset_orientation);
    refresh_view();
}

void clear_orientation()
{
    if (active_window < 0)
        return;
    for_each_band_once(windows[active_window], [](int band) { bands[band].orientation = ORIENT_UL_ROW; });
    clear_xform_mtx();
}
