#include "filters/splice_command.h"

#include <cstdio>
#include <initializer_list>

#include "display/picture_windows.h"
#include "display/split_screen.h"
#include "filters/polygon_input.h"
#include "filters/polygon_mask.h"
#include "filters/splice_state.h"
#include "filters/warp_fit.h"
#include "filters/whole_image.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

// --- the two windows -----------------------------------------------------------------------------------------------

void open_second_screen()
{
    if (!(display_mode & SPLIT_SCR))
        dual_screen_enable();
    else if (!(display_mode & SPLIT_DECOUPLED))
        split_screen_decouple();
}

bool is_open(int w)
{
    return is_image_window(w) && windows[w].red_band >= 0;
}

// A picture with levels, other than `taken`. 0 on reset or quit.
int choose_window(const char *prompt, int taken, int *w_out)
{
    for (;;) {
        const int input = prompt_input(SPLICE_TITLE, prompt, 0);
        if (input & (INPUT_RESET | INPUT_QUIT))
            return 0;
        if (!(input & INPUT_POINT))
            continue;
        if (!is_open(pick_window) || pick_window == taken) {
            beep(BEEP_INFO);
        } else if (can_be_worked_on(bands_of_window(pick_window))) {
            *w_out = pick_window;
            msg_clear(MSG_STATUS);
            return 1;
        }
    }
}

// The name is kept with the window: opening and closing the detail windows puts it on the screen again.
void mark_title(int w, const char *role)
{
    win_rec &win = windows[w];
    window_set_name(w);
    char name[sizeof win.name];
    snprintf(name, sizeof name, "%s %.70s", role, win.name);
    snprintf(win.name, sizeof win.name, "%s", name);
    if (w == active_window)
        mark_active(w);
    else
        ws_set_title(w, win.name);
}

splice_step choose_input(splice_state &splice)
{
    if (!choose_window("Select Input image window", -1, &splice.in_window))
        return splice_give_up(splice);
    mark_title(splice.in_window, "(Input)");
    return CHOOSE_OUTPUT;
}

splice_step choose_output(splice_state &splice)
{
    if (!choose_window("Select Output image window", splice.in_window, &splice.out_window) || !is_open(splice.in_window))
        return splice_give_up(splice);
    mark_title(splice.out_window, "(Output)");
    msg_clear(MSG_PROMPT);
    current_window = splice.out_window;
    apply_active();
    return DRAW_AREA;
}

// --- the area --------------------------------------------------------------------------------------------------------

bool windows_stand(const splice_state &splice)
{
    return is_open(splice.in_window) && is_open(splice.out_window);
}

// Drawn until the operator accepts one. A reset starts it over.
splice_step draw_area(splice_state &splice)
{
    snprintf(polygon_title, sizeof polygon_title, "Draw area to be spliced on Output image");
    do {
        if (quit_requested || !windows_stand(splice))
            return splice_give_up(splice);
        current_window = splice.out_window;
        apply_active();
    } while (!polygon_input(splice.polygon, &splice.polygon_count, POLYGON_POINTS, " "));
    return windows_stand(splice) ? MAKE_MASK : splice_give_up(splice);
}

splice_step make_mask(splice_state &splice)
{
    const int last_row = bands[windows[splice.out_window].red_band].y_size - 1;
    const int64_t bytes = poly_mask_bytes(splice.polygon, splice.polygon_count, 0, last_row);
    splice.mask.reset((int32_t *)mem_alloc(size_t(bytes)));
    if (!splice.mask)
        return splice_fail(splice, "couldn't allocate mask\n");
    const int result = poly_to_rast(splice.polygon, splice.polygon_count, splice.mask.get(), 0, last_row);
    if (result == 0)
        return INITIAL_POINTS;
    char text[48];
    snprintf(text, sizeof text, "error %d in poly_to_rast()\n", result);
    return splice_fail(splice, text);
}

// --- the ways out ----------------------------------------------------------------------------------------------------

void clear_fields()
{
    for (const int field : { MSG_TITLE, MSG_STATUS, MSG_PROMPT, MSG_KEYIN })
        msg_clear(field);
}

// An image that the operator has closed ends the command, and he is told.
splice_step end_with(splice_state &splice, int result)
{
    splice_close_details(splice);
    clear_fields();
    splice.result = result;
    if (splice.out_window >= 0 && !quit_requested && !windows_stand(splice)) {
        fail("The image has been closed");
        splice.result = -1;
    }
    return LEAVE;
}

// In the order of splice_step.
constexpr splice_step (*steps[])(splice_state &) = {
    choose_input, choose_output, draw_area, make_mask, splice_initial_points, splice_fit_and_add, splice_report_fit, splice_review,
    splice_fit_back, splice_choose_method, splice_choose_parameter, splice_resample,
};
static_assert(sizeof steps / sizeof *steps == LEAVE);

} // namespace

void splice_restore_titles(const splice_state &splice)
{
    for (const int w : { splice.in_window, splice.out_window })
        if (is_open(w))
            window_set_name(w);
}

splice_step splice_fail(splice_state &splice, const char *words)
{
    splice_restore_titles(splice);
    end_with(splice, -1);
    fail(words);
    return LEAVE;
}

splice_step splice_give_up(splice_state &splice)
{
    splice_restore_titles(splice);
    return end_with(splice, 0);
}

splice_step splice_stop(splice_state &splice)
{
    if (!windows_stand(splice))
        splice_restore_titles(splice);
    return end_with(splice, 0);
}

void splice_close_details(splice_state &splice)
{
    for (int *const detail : { &splice.src_detail, &splice.trgt_detail }) {
        if (*detail >= 0)
            close_window(*detail);
        *detail = -1;
    }
}

void splice_show_marks(const splice_state &splice, int first)
{
    const control_points &points = splice.points;
    for (int i = first; i < points_held(points); i++) {
        point_mark(i, points.ids, points.in, splice.in_window);
        point_mark(i, points.ids, points.out, splice.out_window);
    }
}

int splice_ask(const splice_state &splice, const char *prompt, int flags, int wanted)
{
    for (;;) {
        const int input = prompt_input(SPLICE_TITLE, prompt, flags);
        if ((input & INPUT_QUIT) || !windows_stand(splice))
            return INPUT_QUIT;
        if (input & wanted)
            return input;
    }
}

int splice_fit(splice_state &splice)
{
    const control_points &points = splice.points;
    return trans_it(points.in, points.out, points.weights, points_held(points), MODEL_AFFINE, splice.forward_model, splice.residuals,
                    &splice.std_error);
}

splice_step splice_unfitted(splice_state &splice, int answer)
{
    char text[64];
    if (answer < 0) {
        snprintf(text, sizeof text, "error %d in trans_it()\n", answer);
        return splice_fail(splice, text);
    }
    snprintf(text, sizeof text, "need at least %d more point(s)\n", answer);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    splice.more_asked = true;
    return INITIAL_POINTS;
}

int splice2()
{
    if (active_window < 0)
        return 0;
    begin_command(SPLICE_TITLE);
    open_second_screen();
    splice_state splice;
    for (splice_step step = CHOOSE_INPUT; step != LEAVE;)
        step = steps[step](splice);
    return splice.result;
}
