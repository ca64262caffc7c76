// splice_review.cpp - what the operator sees of the fit and does about it, and the resampling itself.
#include <cstdio>

#include "display/geometry.h"
#include "display/picture_windows.h"
#include "display/split_screen.h"
#include "enhance/histogram.h"
#include "filters/polygon_input.h"
#include "filters/resampling_prompts.h"
#include "filters/splice_state.h"
#include "filters/warp.h"
#include "filters/warp_fit.h"
#include "filters/whole_image.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

// --- review --------------------------------------------------------------------------------------------------------

void repaint(int w)
{
    if (w < 0)
        return;
    current_window = w;
    ws_clear_window(w);
    paint_whole_window();
}

// From bare images, so that nothing is left of points that are no more.
void draw_anew(const splice_state &splice)
{
    for (const int w : { splice.in_window, splice.out_window }) {
        repaint(window_overview_of(w));
        repaint(w);
    }
    current_window = splice.out_window;
    polygon_draw(splice.polygon, splice.polygon_count);
    splice_show_marks(splice, 0);
}

splice_step delete_some(splice_state &splice)
{
    const int input = splice_ask(splice, "Which one(s)?", PROMPT_KEYIN, INPUT_KEYIN | INPUT_RESET);
    if (input == INPUT_QUIT)
        return splice_stop(splice);
    if (input == INPUT_RESET)
        return REVIEW;
    control_points &points = splice.points;
    int ids[IDS_AT_ONCE], count;
    parse_ids(keyin_buffer, ids, &count, IDS_AT_ONCE);
    delete_points(points.in, points.out, points.weights, points.ids, &points.m, ids, count);
    draw_anew(splice);
    return REPORT_FIT;
}

// --- resampling ------------------------------------------------------------------------------------------------------

int splice_band(const splice_state &splice, int from, int to)
{
    const band_rec &in = bands[from], &out = bands[to];
    show_processing(to, MSG_PROMPT);
    return splice_it(in.data, out.data, in.y_size, in.x_size, out.y_size, out.x_size, splice.mask.get(), splice.inverse_model, MODEL_AFFINE,
                     splice.method, splice.cc_parameter, WARP_BYTES);
}

// Red, and of a colour image in view green and blue; each band of the output once. Answers as splice_it.
int splice_bands(const splice_state &splice, bool *written)
{
    const win_rec &in = windows[splice.in_window], &out = windows[splice.out_window];
    const int from[3] = { in.red_band, in.green_band, in.blue_band }, to[3] = { out.red_band, out.green_band, out.blue_band };
    const int channels = colour_in_view() ? 3 : 1;
    uint32_t done = 0;
    for (int i = 0; i < channels; i++) {
        if (to[i] < 0 || (done >> to[i] & 1))
            continue;
        if (const int result = splice_band(splice, from[i] < 0 ? from[0] : from[i], to[i]); result < 0)
            return result;
        done |= uint32_t{1} << to[i];
        *written = true;
    }
    return 0;
}

void show_spliced(const splice_state &splice)
{
    const int w = splice.out_window;
    window_set_changed(w, 1);
    msg_put(MSG_STATUS, MSG_CENTRED, "Collecting histogram...");
    current_window = w;
    apply_active();
    collect_window_hists();
    draw_hist(-1, -1, -1, -1);
    splice_restore_titles(splice);
    paint_bands(mask_of(bands_of_window(w)));
    msg_clear(MSG_STATUS);
}

void leave_split_screen(int w)
{
    current_window = w;
    if (is_image_window(windows[w].linked_window))
        split_off(true);
}

} // namespace

splice_step splice_report_fit(splice_state &splice)
{
    const control_points &points = splice.points;
    msg_put(MSG_STATUS, MSG_CENTRED, "Calculating Transformation...");
    if (const int answer = splice_fit(splice); answer != 0)
        return splice_unfitted(splice, answer);
    msg_put(MSG_STATUS, MSG_CENTRED, "Printing Coordinates...");
    print_fit(points.ids, points.in, points.out, points.weights, splice.residuals, splice.std_error, points.m, MODEL_AFFINE);
    fflush(stdout);
    char text[400];
    snprintf(text, sizeof text, "Std. Error = %0.2lf Degrees of Freedom = %d\n", splice.std_error, points.m - AFFINE_COEFFICIENTS);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    return REVIEW;
}

splice_step splice_review(splice_state &splice)
{
    for (;;) {
        if (splice_ask(splice, "add, delete, redraw, quit, or ok? [o]", PROMPT_KEYIN, INPUT_KEYIN) == INPUT_QUIT)
            return splice_stop(splice);
        switch (keyin_buffer[0]) {
        case 'a':
            return INITIAL_POINTS;
        case 'd':
            return delete_some(splice);
        case 'q':
            return splice_give_up(splice);
        case 'r':
            draw_anew(splice);
            break;
        case 0:
        case 'o':
            return FIT_BACK;
        }
    }
}

splice_step splice_fit_back(splice_state &splice)
{
    const control_points &points = splice.points;
    msg_clear(MSG_PROMPT);
    msg_clear(MSG_KEYIN);
    const int answer = trans_it(points.out, points.in, points.weights, points_held(points), MODEL_AFFINE, splice.inverse_model,
                                splice.residuals, &splice.std_error);
    return answer == 0 ? CHOOSE_METHOD : splice_unfitted(splice, answer);
}

splice_step splice_choose_method(splice_state &splice)
{
    const int input = splice_ask(splice, METHOD_PROMPT, PROMPT_KEYIN, INPUT_KEYIN | INPUT_RESET);
    if (input == INPUT_QUIT)
        return splice_stop(splice);
    if (input == INPUT_RESET)
        return REPORT_FIT;
    splice.method = method_of_text(keyin_buffer);
    if (splice.method == 0) {
        char text[128];
        snprintf(text, sizeof text, "unrecognized resampling method <%s>\n", keyin_buffer);
        fail(text);
        return CHOOSE_METHOD;
    }
    return splice.method == WARP_CUBIC ? CHOOSE_PARAMETER : RESAMPLE;
}

splice_step splice_choose_parameter(splice_state &splice)
{
    const int input = splice_ask(splice, CUBIC_PROMPT, PROMPT_KEYIN, INPUT_KEYIN | INPUT_RESET);
    if (input == INPUT_QUIT)
        return splice_stop(splice);
    if (input == INPUT_RESET)
        return CHOOSE_METHOD;
    splice.cc_parameter = cubic_parameter_of_text(keyin_buffer);
    return RESAMPLE;
}

splice_step splice_resample(splice_state &splice)
{
    const int w = splice.out_window;
    bool written = false;
    msg_clear(MSG_PROMPT);
    if (!can_be_worked_on(bands_of_window(splice.in_window)) || !can_be_worked_on(bands_of_window(w)))
        return splice_fail(splice, "The image has no levels in memory to work on");
    busy_all();
    const int result = splice_bands(splice, &written);
    normal_all();
    if (written)
        show_spliced(splice);
    if (result < 0) {
        char text[48];
        snprintf(text, sizeof text, "error %d in splice_it()\n", result);
        return splice_fail(splice, text);
    }
    splice_give_up(splice);
    leave_split_screen(w);
    return LEAVE;
}
