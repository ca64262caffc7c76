#include "enhance/tune.h"

#include <cstring>

#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/hist_window.h"
#include "enhance/histogram.h"
#include "enhance/slice_display.h"
#include "enhance/thumbnail.h"
#include "enhance/tune_panel.h"
#include "forms/forms.h"
#include "mem.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

constexpr uint32_t ALL_BANDS = ~uint32_t{0};

uint8_t *thumbnails;                   // three planes, from the first use to the end of the session

bool has_thumbnails()
{
    if (!thumbnails)
        thumbnails = static_cast<uint8_t *>(mem_alloc(TUNE_BANDS * THUMBNAIL_BYTES));
    return thumbnails;
}

// The panel counts as a picture, so that the colour table becomes one that the thumbnail can share.
void count_panel_as_picture()
{
    picture_count++;
    if (picture_count == 2 && vlt_holds_grey_table()) {
        vlt_program();
        paint_all_pictures();
    }
}

// The bands whose pictures are to be shown again.
uint32_t uncount_panel(uint32_t mask_when_accepted, int accepted)
{
    picture_count--;
    if (picture_count == 1 && vlt_holds_grey_table()) {
        vlt_program();
        return ALL_BANDS;
    }
    return accepted ? mask_when_accepted : 0;
}

void fill_state(tune_state *state)
{
    const win_rec &view = windows[active_window];
    const int numbers[TUNE_BANDS] = { view.red_band, view.green_band, view.blue_band };
    state->colour = (display_mode & COLOR) && view.green_band >= 0 && view.blue_band >= 0;
    for (int i = 0; i < TUNE_BANDS; i++) {
        uint8_t *const plane = thumbnails + i * THUMBNAIL_BYTES;
        state->bands[i].band = numbers[i];
        state->bands[i].brightness_x = CROSS_X_START;
        state->bands[i].contrast_y = CROSS_Y_START;
        state->planes[i] = plane;
        if (i == 0 || state->colour)
            thumbnail_resample(numbers[i], plane);
    }
}

void accept_tables(const tune_state &state)
{
    for (int i = 0; i < (state.colour ? TUNE_BANDS : 1); i++) {
        const tune_band &b = state.bands[i];
        memcpy(bands[b.band].hist_mapped, b.tune_hist, sizeof b.tune_hist);
        memcpy(bands[b.band].lut, b.tune_lut, sizeof b.tune_lut);
        draw_hist_plot(i);
    }
    window_set_changed(active_window, 1);
}

// The panel is laid out in pixels: forms are not enlarged while it is up.
int run_in_pixels(tune_state *state)
{
    const float scale = font_scale;
    const forms_style style = *forms_get_style();
    forms_style in_pixels = style;
    font_scale = 1.0f;
    in_pixels.scale = 1.0;
    in_pixels.text_font = font_text_small;
    forms_set_style(&in_pixels);
    const int accepted = tune_panel_run(state);
    forms_set_style(&style);
    font_scale = scale;
    return accepted;
}

bool has_levels(const win_rec &view)
{
    return view.red_band >= 0 && bands[view.red_band].lut && (bands[view.red_band].format & KIND_MASK) != KIND_BIN;
}

void show_again(uint32_t mask)
{
    if ((display_mode & TC) && !(display_mode & STATIC_VLT))
        reload_lut(mask);
    else
        paint_bands(mask);
    slice_refresh();
}

} // namespace

void tune()
{
    if (active_window < 0)
        return;
    const win_rec &view = windows[active_window];
    if (!has_levels(view)) {
        msg_put(MSG_STATUS, MSG_CENTRED, "a one-bit image has no levels to tune");
        beep(BEEP_ERROR);
        return;
    }
    static tune_state state;
    const uint32_t mask = band_mask(view.red_band, view.green_band, view.blue_band);
    int accepted = 0;
    msg_put(MSG_TITLE, MSG_CENTRED, "Tune");
    msg_clear(MSG_PROMPT);
    count_panel_as_picture();
    if (has_thumbnails()) {
        fill_state(&state);
        accepted = run_in_pixels(&state);
    }
    if (accepted)
        accept_tables(state);
    show_again(uncount_panel(mask, accepted));
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

void tune_forget()
{
    mem_free(thumbnails);
    thumbnails = nullptr;
}
