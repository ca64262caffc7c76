// hist_commands.cpp - the commands that collect and show histograms.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "display/area_select.h"
#include "display/geometry.h"
#include "display/picture_windows.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/menu.h"
#include "shell/prompt.h"
#include "shell/session.h"

static void show_hist()
{
    if (hist_window >= 0)
        draw_hist(-1, -1, -1, -1);
    else
        display_hist();
}

// The words stay until the counting has ended.
static void collect_and_show(const char *words)
{
    msg_put(MSG_STATUS, MSG_CENTRED, words);
    collect_window_hists();
    msg_clear(MSG_STATUS);
    show_hist();
}

void collect_hist_full()
{
    if (active_window < 0)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Collect histogram");
    win_rec &view = windows[active_window];
    if (view.red_band >= 0)
        view.hist_area = { 0, 0, bands[view.red_band].x_size - 1, bands[view.red_band].y_size - 1 };
    collect_and_show("Collecting histogram on full data set...");
    msg_clear(MSG_TITLE);
}

// Corners of current_window as held pixels, ordered again, since a turned view may exchange them.
static void set_area_from_window(win_rec &view, int x0, int y0, int x1, int y1)
{
    int ax, ay, bx, by;
    window_to_held(x0, y0, &ax, &ay);
    window_to_held(x1, y1, &bx, &by);
    view.hist_area = { std::max(std::min(ax, bx), 0), std::max(std::min(ay, by), 0), std::max(ax, bx), std::max(ay, by) };
}

void collect_hist_area()
{
    if (active_window < 0)
        return;
    int x0 = -1, y0 = -1, x1 = -1, y1 = -1;
    const bool chosen = select_window_area("Collect histogram", &x0, &y0, &x1, &y1);
    if (chosen && active_window >= 0) {
        set_area_from_window(windows[active_window], x0, y0, x1, y1);
        collect_and_show("Collecting histogram on window area...");
    }
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

static void show_sampling_incr()
{
    char text[64];
    snprintf(text, sizeof text, "Histogram sampling increment = %d", hist_sampling_incr);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
}

void set_sampling_incr()
{
    if (active_window < 0)
        return;
    show_sampling_incr();
    int input;
    do
        input = prompt_input("Select histogram sampling increment", "Enter increment", PROMPT_KEYIN);
    while (!(input & (INPUT_KEYIN | INPUT_RESET | INPUT_QUIT)));
    int increment;
    if (input == INPUT_KEYIN && sscanf(keyin_buffer, "%d", &increment) == 1)
        hist_sampling_incr = std::max(increment, 1);
    show_sampling_incr();
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    msg_clear(MSG_KEYIN);
}

void reset_sampling_incr()
{
    if (active_window >= 0)
        hist_sampling_incr = 0;
}

void reset_hist()
{
    if (active_window < 0)
        return;
    const win_rec &view = windows[active_window];
    for (const int n : { view.red_band, view.green_band, view.blue_band })
        if (n >= 0 && bands[n].hist_mapped) {
            memcpy(bands[n].hist_mapped, bands[n].hist_unmapped, 256 * sizeof *bands[n].hist_mapped);
            for (int i = 0; i < 256; i++)
                bands[n].lut[i] = int16_t(i);
        }
    draw_hist(-1, -1, -1, -1);
    refresh_after_lut();
}

void toggle_hist()
{
    if (active_window < 0)
        return;
    if (hist_window < 0 || (windows[hist_window].flags & WIN_COLLAPSED))
        display_hist();
    else
        close_window(hist_window);
}

void display_hist()
{
    if (active_window < 0)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Display histogram");
    if (hist_window >= 0) {
        ws_uncollapse(hist_window);
        windows[hist_window].flags &= int16_t(~WIN_COLLAPSED);
        menu_check("toggle_hist", 1);
    } else {
        open_hist_window();
        if (hist_window >= 0)
            windows[hist_window].linked_window = int16_t(active_window);
    }
    draw_hist(-1, -1, -1, -1);
    msg_clear(MSG_TITLE);
}
