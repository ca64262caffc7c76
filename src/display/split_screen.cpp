#include "display/split_screen.h"

#include <algorithm>

#include "display/geometry.h"
#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/menu.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "store/read_form.h"

namespace {

constexpr int HIST_LEFT = 5, HIST_RIGHT = 289;     // where the histogram window opens

void reprogram_shared_table()
{
    if (display_mode & IFB)
        vlt_program();
}

// A picture window somewhere else; what was at its centre stays there.
void place_picture(int w, int x, int y, int width, int height)
{
    int center_x, center_y;
    current_window = w;
    window_to_held(windows[w].width >> 1, windows[w].height >> 1, &center_x, &center_y);
    ws_move_window(w, x, y, x + width - 1, y + height - 1);
    window_read_geometry(w);
    set_view_center(center_x, center_y);
    ws_clear_window(w);
    paint_whole_window();
}

// The overview of a window, if it has one, sideways and above the picture that has just been popped.
void move_overview(int w, int x)
{
    const int overview = window_overview_of(w);
    if (overview < 0)
        return;
    const win_rec &win = windows[overview];
    ws_move_window(overview, x, win.y, x + win.width - 1, win.y + win.height - 1);
    window_read_geometry(overview);
    ws_pop_top(overview);
}

void repaint_overview(int w)
{
    current_window = window_overview_of(w);
    if (current_window >= 0)
        paint_whole_window();
}

// Where SPLIT_SCR wants it, above the picture beneath.
void move_hist_window()
{
    if (hist_window < 0)
        return;
    const int shift = display_mode & SPLIT_SCR ? layout.right_hist_x : 0;
    const win_rec &win = windows[hist_window];
    ws_move_window(hist_window, HIST_LEFT + shift, win.y, HIST_RIGHT + shift, win.y + win.height - 1);
    window_read_geometry(hist_window);
    ws_pop_top(hist_window);
}

void redraw_hist()
{
    draw_hist(-1, -1, -1, -1);
}

// The closing half must not take the other with it, so the links go first.
void close_partner(int w)
{
    const int partner = windows[w].linked_window;
    windows[w].linked_window = -1;
    if (!is_image_window(partner))
        return;
    windows[partner].linked_window = -1;
    picture_count++;
    close_window(partner);
    picture_count--;
}

void fill_screen(int w)
{
    window_uncollapse(w);
    if (active_window < 0 || !(windows[active_window].flags & CUT))
        ws_pop_top(w);
    place_picture(w, layout.border_x, layout.caption, max_image_width, max_image_height);
    const int overview = window_overview_of(w);
    if (overview >= 0)
        move_overview(w, screen_width - 2 * layout.border_x - windows[overview].width);
    move_hist_window();
}

// Asks for the second image. 1 when it is there.
int read_second_image()
{
    const int first = active_window;
    while (read_image_form(display_mode & SPLIT_DECOUPLED ? READ_NEW : READ_COUPLED))
        if (active_window != first)
            return 1;
    return 0;
}

bool has_partner(int w)
{
    return is_image_window(w) && !(windows[w].flags & CUT) && is_image_window(windows[w].linked_window);
}

// The partner of the active window. When a third one is active the first half stays, and becomes active.
int half_to_keep()
{
    if (has_partner(active_window))
        return windows[active_window].linked_window;
    for (int w = 0; w < WINDOWS; w++)
        if (has_partner(w))
            return w;
    return active_window;
}

void clear_fields()
{
    for (const int field : { MSG_TITLE, MSG_STATUS, MSG_PROMPT, MSG_KEYIN })
        msg_clear(field);
}

void show_coupling()
{
    menu_check("toggle_couple", !(display_mode & SPLIT_DECOUPLED));
}

} // namespace

void split_on()
{
    const int w = active_window;
    const win_rec &win = windows[w];
    picture_count++;
    reprogram_shared_table();
    ws_pop_top(w);
    const int width = std::min<int>(win.width, layout.half_width);
    place_picture(w, layout.border_x + layout.half_width - width, win.y, width, win.height);
    move_overview(w, layout.border_x);
    repaint_overview(w);
    current_window = w;
    ws_flush_refresh();
    picture_count--;
}

void split_off(bool resize)
{
    const int w = current_window;
    if (!is_image_window(w))
        return;
    busy_all();
    if (windows[w].linked_window >= 0 && windows[w].linked_window == active_window)
        apply_active();
    display_mode &= ~uint32_t{SPLIT_SCR};
    close_partner(w);
    reprogram_shared_table();
    if (resize)
        fill_screen(w);
    repaint_overview(w);
    redraw_hist();
    current_window = w;
    ws_flush_refresh();
    normal_all();
    menu_update_split();
}

void split_screen_enable()
{
    if (active_window < 0 || (display_mode & SPLIT_SCR))
        return;
    window_uncollapse(active_window);
    display_mode |= SPLIT_SCR;
    menu_update_split();
    split_on();
    picture_count++;
    const int read = read_second_image();
    picture_count--;
    if (read) {
        move_hist_window();
        redraw_hist();
        ws_flush_refresh();
    } else {
        current_window = active_window;
        split_off(true);
    }
    clear_fields();
    menu_update_split();
}

void split_screen_disable()
{
    if (!(display_mode & SPLIT_SCR))
        return;
    int input;
    do
        input = prompt_input("Disable split screen", "Select screen to keep", 0);
    while (!(input & (INPUT_RESET | INPUT_QUIT))
           && !(input == INPUT_POINT && has_partner(pick_window)));
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    if (input == INPUT_POINT)
        split_off(true);
}

void dual_screen_enable()
{
    split_screen_decouple();
    split_screen_enable();
}

void split_screen_decouple()
{
    display_mode |= SPLIT_DECOUPLED;
    show_coupling();
}

void split_screen_couple()
{
    display_mode &= ~uint32_t{SPLIT_DECOUPLED};
    show_coupling();
}

void toggle_couple()
{
    display_mode ^= SPLIT_DECOUPLED;
    show_coupling();
}

void split_screen_read_again()
{
    current_window = half_to_keep();
    split_off(false);
    apply_active();
    split_screen_enable();
}
