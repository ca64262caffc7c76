// splice_points.cpp - matched points of the splice. A point is shown roughly in its image and then exactly in a detail window. While there is
// no fit both images are asked for; with one, the place in the output image is predicted.
#include <algorithm>
#include <cstring>

#include "display/detail_window.h"
#include "display/geometry.h"
#include "display/picture_windows.h"
#include "filters/splice_state.h"
#include "filters/whole_image.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

constexpr int DETAIL_SIZE = 256;       // screen pixels, and file pixels held
constexpr double DETAIL_ZOOM = 4.0;    // at least

// What came of asking for a point or a pair.
enum outcome { TAKEN, RESET, QUIT, FAILED };

// One of the two images.
struct side {
    const char *approximate, *refined, *no_detail;
    int splice_state::*window, splice_state::*detail;
    double (control_points::*list)[2 * CONTROL_POINTS];
    bool left_half;                    // where its detail window stands
};
constexpr side input_side = {
    "Enter approximate Input image point", "Enter refined Input image point", "couldn't create src detail window\n",
    &splice_state::in_window, &splice_state::src_detail, &control_points::in, true,
};
constexpr side output_side = {
    "Enter approximate Output image point", "Enter refined Output image point", "couldn't create trgt detail window\n",
    &splice_state::out_window, &splice_state::trgt_detail, &control_points::out, false,
};

struct file_point {
    int x, y;
};

// --- detail windows ------------------------------------------------------------------------------------------------

// The operator may have closed it, and its number may be another window's by now: details alone bear a blank for a name.
bool detail_stands(int w)
{
    return w >= 0 && is_image_window(w) && strcmp(windows[w].name, " ") == 0;
}

void forget_closed_details(splice_state &splice)
{
    for (int *const detail : { &splice.src_detail, &splice.trgt_detail })
        if (!detail_stands(*detail))
            *detail = -1;
}

// The output image stays the active one.
int open_detail(splice_state &splice, const side &of, const file_point &centre)
{
    const int x = screen_width / 2 - (of.left_half ? 2 * layout.border_x + DETAIL_SIZE : 0), y = screen_height / 2 - DETAIL_SIZE / 2;
    splice.*of.detail = detail_window(x, y, DETAIL_SIZE, DETAIL_SIZE, DETAIL_SIZE, DETAIL_SIZE, centre.x, centre.y, DETAIL_ZOOM,
                                      splice.*of.window);
    current_window = splice.out_window;
    apply_active();
    return splice.*of.detail >= 0;
}

// --- points ----------------------------------------------------------------------------------------------------------

int ask(splice_state &splice, const char *prompt)
{
    const int input = splice_ask(splice, prompt, 0, INPUT_POINT | INPUT_RESET);
    forget_closed_details(splice);
    return input;
}

const band_rec &red_band_of(int w)
{
    return bands[windows[w].red_band];
}

int step_of(const band_rec &band)
{
    return std::max<int>(band.increment, 1);
}

bool is_picture_or_its_overview(int w, int picture)
{
    return w == picture || (is_picture(w) && (windows[w].flags & WIN_OVERVIEW) && windows[w].linked_window == picture);
}

// The picked point in file pixels; false where there is no image.
bool picked_file_point(file_point *point)
{
    double x, y;
    window_to_image(pick_x, pick_y, &x, &y);
    window_to_file(pick_x, pick_y, &point->x, &point->y);
    const band_rec &band = red_band_of(pick_window);
    return x >= 0 && y >= 0 && x < band.x_size && y < band.y_size;
}

// In the picture, or in its overview. Points elsewhere and beside the image are asked for again.
outcome approximate_point(splice_state &splice, const side &of, file_point *point)
{
    for (;;) {
        const int input = ask(splice, of.approximate);
        if (input != INPUT_POINT)
            return input == INPUT_RESET ? RESET : QUIT;
        if (is_picture_or_its_overview(pick_window, splice.*of.window) && picked_file_point(point))
            return TAKEN;
        beep(BEEP_INFO);
    }
}

outcome show_detail(splice_state &splice, const side &of, const file_point &centre)
{
    if (open_detail(splice, of, centre))
        return TAKEN;
    splice_fail(splice, of.no_detail);
    return FAILED;
}

outcome approximate_and_show(splice_state &splice, const side &of)
{
    file_point point;
    const outcome answer = approximate_point(splice, of, &point);
    return answer == TAKEN ? show_detail(splice, of, point) : answer;
}

// In the detail window, whose loss is a reset. Stored behind the last point of the image's list, in its held pixels: between them where
// the picture holds every n-th pixel only and the detail shows all.
outcome refined_point(splice_state &splice, const side &of)
{
    for (;;) {
        const int input = ask(splice, of.refined);
        if (input == INPUT_QUIT)
            return QUIT;
        if (input == INPUT_RESET || splice.*of.detail < 0)
            return RESET;
        if (pick_window == splice.*of.detail)
            break;
        beep(BEEP_INFO);
    }
    file_point point;
    window_to_file(pick_x, pick_y, &point.x, &point.y);
    const band_rec &band = red_band_of(splice.*of.window);
    double *const stored = splice.points.*of.list + splice.points.m;
    stored[0] = (double(point.y) - band.file_y0) / step_of(band);
    stored[1] = (double(point.x) - band.file_x0) / step_of(band);
    point_mark_small(point.x, point.y, splice.*of.detail);
    return TAKEN;
}

void add_pair(splice_state &splice)
{
    point_add(splice.points);
    msg_clear(MSG_PROMPT);
    splice_close_details(splice);
}

// --- the first points ------------------------------------------------------------------------------------------------

// A reset before the output point's detail has been opened leaves that of the input image on the screen, which is meant.
outcome initial_pair(splice_state &splice)
{
    outcome answer = approximate_and_show(splice, input_side);
    if (answer != TAKEN)
        return answer;
    answer = refined_point(splice, input_side);
    if (answer == TAKEN) {
        answer = approximate_and_show(splice, output_side);
        if (answer == RESET)
            splice.src_detail = -1;
    }
    if (answer == TAKEN)
        answer = refined_point(splice, output_side);
    if (answer == TAKEN)
        add_pair(splice);
    else if (answer == RESET)
        splice_close_details(splice);
    return answer;
}

// --- one more point --------------------------------------------------------------------------------------------------

// Rounded by adding 0.5 and truncating. False when it is not in the output image, or no number.
bool predicted_point(const splice_state &splice, double *row, double *col, file_point *place)
{
    const double *const in = splice.points.in + splice.points.m;
    const band_rec &band = red_band_of(splice.out_window);
    trans_point(in[0], in[1], MODEL_AFFINE, splice.forward_model, row, col);
    const double y = *row + 0.5, x = *col + 0.5;
    if (!(y > -1 && y < band.y_size && x > -1 && x < band.x_size))
        return false;
    *place = { int(x) * step_of(band) + band.file_x0, int(y) * step_of(band) + band.file_y0 };
    return true;
}

// The prediction as it is, or a point of the operator's. TAKEN when there is a point; RESET when he gives none.
outcome accept_or_refine(splice_state &splice, double row, double col)
{
    const int input = ask(splice, "Accept / Reject");
    if (input == INPUT_QUIT)
        return QUIT;
    if (input == INPUT_RESET)
        return refined_point(splice, output_side);
    double *const out = splice.points.out + splice.points.m;
    out[0] = row;
    out[1] = col;
    return TAKEN;
}

// The output place of the input point that has just been stored.
outcome match_predicted(splice_state &splice)
{
    double row, col;
    file_point place;
    if (!predicted_point(splice, &row, &col, &place)) {
        fail("Point out of range on Output image");
        splice_close_details(splice);
        return TAKEN;
    }
    if (show_detail(splice, output_side, place) == FAILED)
        return FAILED;
    point_mark_small(place.x, place.y, splice.trgt_detail);
    const outcome answer = accept_or_refine(splice, row, col);
    if (answer == QUIT)
        return QUIT;
    if (answer == TAKEN) {
        add_pair(splice);
        splice_show_marks(splice, points_held(splice.points) - 1);
    }
    splice_close_details(splice);
    return TAKEN;
}

// TAKEN goes on with the next point, whether this one was added or not.
outcome one_more_point(splice_state &splice)
{
    file_point point;
    outcome answer = approximate_point(splice, input_side, &point);
    if (answer == TAKEN && points_full(splice.points)) {
        fail("There is no room for more than 512 control points");
        return TAKEN;
    }
    if (answer == TAKEN)
        answer = show_detail(splice, input_side, point);
    if (answer == TAKEN)
        answer = refined_point(splice, input_side);
    if (answer == RESET)
        splice_close_details(splice);
    if (answer != TAKEN)
        return answer;
    msg_clear(MSG_PROMPT);
    return match_predicted(splice);
}

} // namespace

splice_step splice_initial_points(splice_state &splice)
{
    while (splice.points.m < AFFINE_COEFFICIENTS) {
        if (!splice.more_asked)
            msg_put(MSG_STATUS, MSG_CENTRED, "Select initial match points");
        splice.more_asked = false;
        switch (initial_pair(splice)) {
        case TAKEN:
            splice_show_marks(splice, 0);
            break;
        case RESET:
            return FIT_AND_ADD;
        case QUIT:
            return splice_give_up(splice);
        case FAILED:
            return LEAVE;
        }
        msg_clear(MSG_STATUS);
    }
    return FIT_AND_ADD;
}

splice_step splice_fit_and_add(splice_state &splice)
{
    for (;;) {
        if (const int answer = splice_fit(splice); answer != 0)
            return splice_unfitted(splice, answer);
        switch (one_more_point(splice)) {
        case TAKEN:
            break;
        case RESET:
            return REPORT_FIT;
        case QUIT:
            return splice_give_up(splice);
        case FAILED:
            return LEAVE;
        }
    }
}
