// slice_define.cpp - the defining loop: a colour from the chart, two levels from the histogram, again and again.
#include <algorithm>
#include <cstdio>

#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/contrast_frame.h"
#include "enhance/hist_window.h"
#include "enhance/histogram.h"
#include "enhance/slice_chart.h"
#include "enhance/slice_commands.h"
#include "enhance/slice_display.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

constexpr const char *BIN_TITLE = "Density slice on";
constexpr int FARTHEST = 100000;       // keyed in levels beyond are drawn no farther than this

// 0 on reset or quit. A point outside the chart is passed over.
int ask_colour(int *colour_out)
{
    for (;;) {
        if (!chart_open())
            return 0;
        const int input = prompt_input("Density slice color", "Select density slice color from menu", 0);
        if (input & (INPUT_RESET | INPUT_QUIT))
            return 0;
        if ((input & INPUT_POINT) && pick_window == chart_window) {
            *colour_out = chart_colour_at(pick_x, pick_y);
            return 1;
        }
    }
}

// A point in a wrong window silently keeps the earlier value.
int ask_bin(const char *prompt, int *bin)
{
    const int input = wait_for_answer(BIN_TITLE, prompt, INPUT_POINT | INPUT_KEYIN);
    if (input & (INPUT_RESET | INPUT_QUIT))
        return 0;
    if (input == INPUT_KEYIN)
        *bin = std::clamp(keyin_level(*bin), -FARTHEST, FARTHEST);
    else if (pick_window == hist_window)
        *bin = hist_level_at(pick_x);
    return 1;
}

// The minimum is kept at or above 0 only, the maximum at or below 255 only.
int ask_bins(int *low, int *high)
{
    if (!ask_bin("Select minimum bin (histogram point or keyin)", low))
        return 0;
    *low = std::max(*low, 0);
    if (!ask_bin("Select maximum bin (histogram point or keyin)", high))
        return 0;
    *high = std::min(*high, 255);
    return 1;
}

void show_what_was_defined()
{
    chart_close();
    display_mode &= ~uint32_t{DEFINING_SLICE};
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (is_picture(w) && windows[w].slice_band >= 0)
            ws_clear_window(w);
    vlt_program();
    slice_paint_all();
    draw_hist(-1, -1, -1, -1);
}

} // namespace

void define_density_slice()
{
    if (!slice_display_ready())
        return;
    display_mode |= DEFINING_SLICE;
    int band, colour, low = 0, high = 255;
    if (band_select("Density slice on", &band) && slice_on(band))
        while (ask_colour(&colour) && ask_bins(&low, &high))
            slice_apply_range(colour, low, high);
    if (!quit_requested)
        show_what_was_defined();
    for (const int field : { MSG_TITLE, MSG_PROMPT, MSG_KEYIN })
        msg_clear(field);
}
