// stretch.cpp - linear stretches: over the occupied range, over ranges that the operator gives, or with a share of the pixels clipped.
#include <cstdio>

#include "enhance/contrast_commands.h"
#include "enhance/contrast_frame.h"
#include "enhance/contrast_maps.h"
#include "forms/forms.h"
#include "services/ws.h"

namespace {

constexpr const char *TITLE = "Linear stretch histogram";
constexpr double ASKED = -1;           // a percentage that is asked for, or, in the modes without, none at all

enum stretch_mode { OCCUPIED, CLIP_IN, CLIP_IN_OUT, PERCENT, PERCENT_CLIP_OUT };

int ask_percent(double *percent)
{
    *percent = 2.0;
    return value_slider_dialog(slider_x(), 50, 1, 10, percent, 200, 0, "Percent Clip", "", TITLE, "Enter percentage");
}

int ask_ranges(stretch_mode mode, level_ranges *r)
{
    if ((mode == CLIP_IN || mode == CLIP_IN_OUT) && !ask_range(TITLE, "input", &r->in_min, &r->in_max))
        return 0;
    return (mode != CLIP_IN_OUT && mode != PERCENT_CLIP_OUT) || ask_range(TITLE, "output", &r->out_min, &r->out_max);
}

void show_percent(int choice, double percent, const level_ranges &r)
{
    static constexpr const char *formats[] = {
        "all: %.0f%%, output range %d-%d", "red: %.0f%%, output range %d-%d", "green: %.0f%%, output range %d-%d",
        "blue: %.0f%%, output range %d-%d", "%.0f%% stretch, output range %d-%d",
    };
    char text[96];
    snprintf(text, sizeof text, formats[choice], percent, r.out_min, r.out_max);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
}

// Each band of the choice clips at its own points. For all bands the occupied ranges are not in the words, which is meant.
void stretch_bands(int choice, stretch_mode mode, double percent, level_ranges r)
{
    if (choice == CHOICE_ALL && percent < 0)
        show_ranges(choice, r);
    map_bands(choice, [&](int32_t *hist, int16_t *lut) {
        if (percent >= 0)
            percent_range(hist, percent, &r.in_min, &r.in_max);
        else if (mode == OCCUPIED)
            occupied_range(hist, &r.in_min, &r.in_max);
        if (percent >= 0)
            show_percent(choice, percent, r);
        else if (choice != CHOICE_ALL)
            show_ranges(choice, r);
        stretch_map(hist, lut, r.in_min, r.in_max, r.out_min, r.out_max);
    });
}

int stretch_pass(int first, stretch_mode mode, double *percent)
{
    level_ranges ranges;
    if (first && mode >= PERCENT && *percent < 0 && !ask_percent(percent))
        return CHOICE_NONE;
    const int choice = select_bands(TITLE);
    if (choice == CHOICE_NONE || !ask_ranges(mode, &ranges))
        return CHOICE_NONE;
    stretch_bands(choice, mode, *percent, ranges);
    show_operator_change(choice);
    return choice;
}

void stretch(stretch_mode mode, double percent)
{
    contrast_frame([&](int first) { return stretch_pass(first, mode, &percent); });
}

} // namespace

void stretch_full_hist() { stretch(OCCUPIED, ASKED); }
void stretch_clip_in_hist() { stretch(CLIP_IN, ASKED); }
void stretch_clip_in_out_hist() { stretch(CLIP_IN_OUT, ASKED); }
void stretch_hist_1percent() { stretch(PERCENT, 1); }
void stretch_hist_2percent() { stretch(PERCENT, 2); }
void stretch_hist_other() { stretch(PERCENT, ASKED); }
void stretch_hist_1percent_clip_out() { stretch(PERCENT_CLIP_OUT, 1); }
void stretch_hist_2percent_clip_out() { stretch(PERCENT_CLIP_OUT, 2); }
void stretch_hist_other_clip_out() { stretch(PERCENT_CLIP_OUT, ASKED); }
