#include "enhance/slice_commands.h"

#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/contrast_frame.h"
#include "enhance/contrast_maps.h"
#include "enhance/hist_window.h"
#include "enhance/histogram.h"
#include "enhance/slice_chart.h"
#include "enhance/slice_display.h"
#include "enhance/slice_map.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

void clear_prompt()
{
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    msg_clear(MSG_KEYIN);
}

int active_slice()
{
    return active_window < 0 ? -1 : windows[active_window].slice_band;
}

// --- spreads ---------------------------------------------------------------------------------------------------------

constexpr const char *SPREAD = "Ramp density slice";

enum spread_kind { EQUAL_WIDTH, EQUAL_POPULATION };
enum spread_over { FULL, CLIP };

int ask_level(const char *prompt, int otherwise, int *level_out)
{
    const int input = wait_for_answer(SPREAD, prompt, INPUT_POINT | INPUT_KEYIN);
    if (input & (INPUT_RESET | INPUT_QUIT))
        return 0;
    const int level = input == INPUT_KEYIN ? keyin_level(otherwise) : pick_window == hist_window ? hist_level_at(pick_x) : otherwise;
    *level_out = level_or(level, otherwise);
    return 1;
}

int ask_levels(int *low, int *high)
{
    return ask_level("Select minimum (0-255)", 0, low) && ask_level("Select maximum (0-255)", 255, high);
}

void spread(spread_kind kind, spread_over over, int steps)
{
    int band, low = 0, high = 255;
    if (!slice_display_ready())
        return;
    if (band_select(SPREAD, &band) && band >= 0 && (over == FULL || ask_levels(&low, &high)) && bands[band].slice_colors) {
        const band_rec &b = bands[band];
        if (over == FULL)
            occupied_range(b.hist_unmapped, &low, &high);
        if (kind == EQUAL_WIDTH)
            slice_equal_width(b.slice_colors, low, high, steps);
        else
            slice_equal_population(b.slice_colors, b.hist_unmapped, low, high, steps);
        slice_on(band);
    }
    clear_prompt();
}

} // namespace

void spectrum12_full() { spread(EQUAL_WIDTH, FULL, 12); }
void spectrum6_full()  { spread(EQUAL_WIDTH, FULL, 6); }
void spectrum12_clip() { spread(EQUAL_WIDTH, CLIP, 12); }
void spectrum6_clip()  { spread(EQUAL_WIDTH, CLIP, 6); }
void ramp12_full()     { spread(EQUAL_POPULATION, FULL, 12); }
void ramp6_full()      { spread(EQUAL_POPULATION, FULL, 6); }
void ramp12_clip()     { spread(EQUAL_POPULATION, CLIP, 12); }
void ramp6_clip()      { spread(EQUAL_POPULATION, CLIP, 6); }

// --- on, off, reset --------------------------------------------------------------------------------------------------

void density_slice_on()
{
    int band;
    if (!slice_display_ready())
        return;
    if (band_select("Density slice on", &band))
        slice_on(band);
    clear_prompt();
}

void density_slice_off()
{
    if (slice_display_ready())
        slice_off();
}

void reset_density_slice()
{
    const int band = active_slice();
    if (band < 0 || !bands[band].slice_colors) {
        msg_put(MSG_STATUS, MSG_CENTRED, "No active density slice to reset");
        return;
    }
    msg_put(MSG_TITLE, MSG_CENTRED, "Reset density slice");
    slice_range(bands[band].slice_colors, -1, 0, 255);
    slice_paint(active_window);
    vlt_program();                     // where the slice was in the colour table it goes from there
    draw_hist(-1, -1, -1, -1);
    msg_clear(MSG_TITLE);
}

void density_slice_color_edit()
{
}

void show_reserved()
{
    if (!slice_display_ready() || !chart_open())
        return;
    int input;
    do
        input = prompt_input("Show reserved", "Point or reset to exit", 0);
    while (!(input & (INPUT_POINT | INPUT_RESET | INPUT_QUIT)));
    chart_close();
    clear_prompt();
}
