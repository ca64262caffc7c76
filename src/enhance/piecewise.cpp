// piecewise.cpp - stretch or equalise one band a piece at a time. The source window beside the histogram shows what has not been placed
// yet: input ranges are picked there, output ranges in the histogram.
#include <algorithm>
#include <cstring>

#include "display/picture_windows.h"
#include "enhance/contrast_commands.h"
#include "enhance/contrast_frame.h"
#include "enhance/contrast_maps.h"
#include "enhance/hist_window.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/prompt.h"

namespace {

constexpr const char *TITLE = "Piecewise histogram";

struct piecewise_run {
    bool stretch;
    double contrast;
    int choice;
    int32_t piece_hist[256];           // of the band when it was selected, without the pieces placed since
    int16_t piece_lut[256];            // the same for its table
    int done;                          // pieces applied
};

int band_of(const piecewise_run &run)
{
    int numbers[3];
    return bands_of_choice(run.choice, numbers) == 1 ? numbers[0] : -1;
}

// --- asking --------------------------------------------------------------------------------------------------------

enum piece_answer { GIVEN, LEFT, MISSED };

piece_answer ask_value(int which, int *value)
{
    static constexpr const char *prompts[] = {
        "Select input minimum (0-255)", "Select input maximum (0-255)", "Select output minimum (0-255)", "Select output maximum (0-255)",
    };
    const bool input_range = which < 2;
    const int input = wait_for_answer(TITLE, prompts[which], INPUT_POINT | INPUT_KEYIN);
    if (input & (INPUT_RESET | INPUT_QUIT))
        return LEFT;
    if (input == INPUT_KEYIN) {
        *value = level_or(keyin_level(*value), *value);
        return GIVEN;
    }
    if (pick_window != (input_range ? source_hist_window : hist_window)) {
        msg_put(MSG_STATUS, MSG_CENTRED, input_range ? "Select input range from source histogram" : "Select output range from original histogram");
        beep(BEEP_ERROR);
        return MISSED;
    }
    *value = level_or(hist_level_at(pick_x), *value);
    return GIVEN;
}

// Whatever goes wrong begins the piece again; only a reset or quit at its first value leaves.
int ask_piece(level_ranges *r)
{
    for (;;) {
        *r = level_ranges();
        int *const values[] = { &r->in_min, &r->in_max, &r->out_min, &r->out_max };
        int which = 0;
        piece_answer answer = GIVEN;
        while (which < 4 && (answer = ask_value(which, values[which])) == GIVEN)
            which++;
        if (answer == GIVEN)
            return 1;
        if (answer == LEFT && which == 0)
            return 0;
    }
}

// --- placing -------------------------------------------------------------------------------------------------------

void apply_piece(piecewise_run *run, const level_ranges &r)
{
    const int n = band_of(*run);
    if (n < 0)
        return;
    const band_rec &band = bands[n];
    for (int level = r.in_min; level <= r.in_max; level++)
        run->piece_hist[level] = 0;
    int16_t scratch[256];
    memcpy(scratch, run->piece_lut, sizeof scratch);
    show_ranges(run->choice, r);
    if (run->stretch)
        stretch_map(band.hist_mapped, scratch, r.in_min, r.in_max, r.out_min, r.out_max);
    else
        equalize_map(band.hist_mapped, scratch, run->contrast, r.in_min, r.in_max, r.out_min, r.out_max);
    for (int i = r.in_min; i <= r.in_max; i++)
        band.lut[i] = scratch[i];
    map_hist(band.hist_mapped, band.lut, band.hist_unmapped);
    show_operator_change(run->choice);
    run->done++;
}

void place_pieces(piecewise_run *run)
{
    const int n = band_of(*run);
    if (n < 0)
        return;
    open_source_hist(plot_of_choice(run->choice));
    memcpy(run->piece_hist, bands[n].hist_mapped, sizeof run->piece_hist);
    memcpy(run->piece_lut, bands[n].lut, sizeof run->piece_lut);
    level_ranges piece;
    do
        draw_source_hist(run->piece_hist);
    while (ask_piece(&piece) && (apply_piece(run, piece), active_window >= 0));
    draw_source_hist(nullptr);
    close_window(source_hist_window);
}

void place_in_bands(piecewise_run *run)
{
    constexpr int BANDS_MAX = 3;
    for (int i = 0; i < BANDS_MAX; i++) {
        run->choice = select_one_band(TITLE);
        if (run->choice == CHOICE_NONE)
            return;
        place_pieces(run);
        if (run->choice == CHOICE_SINGLE)
            return;
    }
}

void piecewise(bool stretch)
{
    if (active_window < 0)
        return;
    piecewise_run run = {};
    saved_tables saved;
    run.stretch = stretch;
    begin_fresh(&saved);
    if (hist_window < 0)
        display_hist();
    if (stretch || ask_real(TITLE, "Enter contrast value (0-1)", &run.contrast))
        place_in_bands(&run);
    if (run.done > 0)
        refresh_after_lut();
    else
        put_back(saved);
    clear_strip();
}

} // namespace

void piecewise_stretch_hist()
{
    piecewise(true);
}

void piecewise_equalize_hist()
{
    piecewise(false);
}
