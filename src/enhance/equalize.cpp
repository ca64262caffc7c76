// equalize.cpp - histogram equalisation: ask for the contrast once, then for bands and ranges, up to three times.
#include "enhance/contrast_commands.h"
#include "enhance/contrast_frame.h"
#include "enhance/contrast_maps.h"
#include "forms/forms.h"

static constexpr const char *TITLE = "Equalize histogram";

enum clip_mode { CLIP_NONE, CLIP_IN, CLIP_IN_OUT };

static int ask_contrast(double *contrast)
{
    return value_slider_dialog(slider_x(), 50, 0, 1, contrast, 256, 0, "Contrast", "incr contrast", TITLE, "Enter contrast value");
}

static int equalize_pass(int first, clip_mode mode, double *contrast)
{
    level_ranges r;
    if (first && !ask_contrast(contrast))
        return CHOICE_NONE;
    const int choice = select_bands(TITLE);
    if (choice == CHOICE_NONE)
        return CHOICE_NONE;
    if (mode >= CLIP_IN && !ask_range(TITLE, "input", &r.in_min, &r.in_max))
        return CHOICE_NONE;
    if (mode == CLIP_IN_OUT && !ask_range(TITLE, "output", &r.out_min, &r.out_max))
        return CHOICE_NONE;
    show_ranges(choice, r);
    map_bands(choice, [&](int32_t *hist, int16_t *lut) { equalize_map(hist, lut, *contrast, r.in_min, r.in_max, r.out_min, r.out_max); });
    show_operator_change(choice);
    return choice;
}

static void equalize(clip_mode mode)
{
    double contrast = 0.5;
    contrast_frame([&](int first) { return equalize_pass(first, mode, &contrast); });
}

void equalize_full_hist()
{
    equalize(CLIP_NONE);
}

void equalize_clip_in_hist()
{
    equalize(CLIP_IN);
}

void equalize_clip_in_out_hist()
{
    equalize(CLIP_IN_OUT);
}
