#include "filters/rotate_command.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <initializer_list>

#include "display/geometry.h"
#include "display/picture_windows.h"
#include "edit/undo.h"
#include "enhance/histogram.h"
#include "filters/resampling_prompts.h"
#include "filters/warp.h"
#include "filters/warp_fit.h"
#include "filters/whole_image.h"
#include "mem.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

constexpr const char *TITLE = "Image Rotation";
constexpr double RADIANS = 0.0174532925199433; // in a degree

struct rotation {
    double forward[AFFINE_COEFFICIENTS], inverse[AFFINE_COEFFICIENTS];
    int method;
    double cc_parameter;
};

// Where the pixel centres of the turned image lie, and the size that holds them.
struct turned_frame {
    double row_min, row_max, col_min, col_max;
    int32_t rows, cols;
};

// Each step of asking answers GO_ON, or what the command is to answer.
enum { GO_ON = 1, GIVEN_UP = 0, FAILED = -1 };

int refuse(const char *words)
{
    fail(words);
    return FAILED;
}

// --- the operator's answers ----------------------------------------------------------------------------------------

// 1 with a text in keyin_buffer, 0 on reset or quit.
int ask_keyin(const char *prompt)
{
    int input;
    do
        input = prompt_input(TITLE, prompt, PROMPT_KEYIN);
    while (!(input & (INPUT_KEYIN | INPUT_RESET | INPUT_QUIT)));
    return input == INPUT_KEYIN;
}

int ask_angle(rotation *turn)
{
    if (!ask_keyin("Enter counter-clockwise rotation angle (deg.)"))
        return GIVEN_UP;
    const double angle = number_of_text(keyin_buffer);
    if (angle == 0.0 || angle == 360.0)
        return FAILED;
    const int result = load_trans(0, 0, 0.0, 0.0, 1.0, 1.0, angle * RADIANS, 0.0, turn->forward, turn->inverse);
    if (result >= 0)
        return GO_ON;
    char text[64];
    snprintf(text, sizeof text, "rotate_CMD(): error %d in load_trans()\n", result);
    return refuse(text);
}

int ask_method(rotation *turn)
{
    if (!ask_keyin(METHOD_PROMPT))
        return GIVEN_UP;
    turn->method = method_of_text(keyin_buffer);
    turn->cc_parameter = CUBIC_DEFAULT;
    if (turn->method == 0) {
        char text[128];
        snprintf(text, sizeof text, "unrecognized resampling method <%s>\n", keyin_buffer);
        return refuse(text);
    }
    if (turn->method != WARP_CUBIC)
        return GO_ON;
    if (!ask_keyin(CUBIC_PROMPT))
        return GIVEN_UP;
    turn->cc_parameter = cubic_parameter_of_text(keyin_buffer);
    return GO_ON;
}

// --- turning -----------------------------------------------------------------------------------------------------------

bool is_size(double pixels)
{
    return pixels >= 1 && pixels <= INT32_MAX;
}

// 0 when no band can be that large. Of a model that is no number all comparisons fail, and the frame stays empty.
int frame_of(const band_rec &band, const rotation &turn, turned_frame *frame)
{
    constexpr double FARTHEST = 1.7e38;
    double rows[4], cols[4];
    trans_corners(0.5, 0.5, band.y_size - 0.5, band.x_size - 0.5, MODEL_AFFINE, turn.forward, rows, cols);
    *frame = { FARTHEST, -FARTHEST, FARTHEST, -FARTHEST, 0, 0 };
    for (int i = 0; i < 4; i++) {
        frame->row_min = std::min(frame->row_min, rows[i]);
        frame->row_max = std::max(frame->row_max, rows[i]);
        frame->col_min = std::min(frame->col_min, cols[i]);
        frame->col_max = std::max(frame->col_max, cols[i]);
    }
    const double height = frame->row_max - frame->row_min + 1.0, width = frame->col_max - frame->col_min + 1.0;
    if (!is_size(height) || !is_size(width))
        return 0;
    frame->rows = int32_t(height);
    frame->cols = int32_t(width);
    return int64_t{frame->rows} * frame->cols <= UINT32_MAX;
}

// At least two bytes: one byte stands for a band in the tile store.
uint32_t bytes_of(const turned_frame &frame)
{
    return std::max(uint32_t(frame.rows) * uint32_t(frame.cols), uint32_t{2});
}

int turn_band(int n, const rotation &turn, const turned_frame &frame, mem_ptr<uint8_t> &turned)
{
    const band_rec &band = bands[n];
    turned.reset((uint8_t *)mem_calloc(bytes_of(frame), 1));
    if (!turned)
        return refuse("Error allocating space");
    show_processing(n, MSG_PROMPT);
    const int result = dwarp_it(band.data, turned.get(), band.y_size, band.x_size, frame.col_min, frame.row_min, frame.col_max, frame.row_max,
                                1.0, 1.0, turn.inverse, MODEL_AFFINE, turn.method, turn.cc_parameter, WARP_BYTES);
    if (result >= 0)
        return GO_ON;
    char text[64];
    snprintf(text, sizeof text, "error %d in dwarp_it()\n", result);
    return refuse(text);
}

void take_turned(int n, const turned_frame &frame, mem_ptr<uint8_t> &turned)
{
    band_rec &band = bands[n];
    mem_free(band.data);
    band.data = turned.release();
    band.x_size = frame.cols;
    band.y_size = frame.rows;
    band.alloc_bytes = bytes_of(frame);
    undo_free(n);
}

// The bands are exchanged when all are there: those of a window keep one size.
int turn_window(const rotation &turn, turned_frame *frame)
{
    const band_set set = all_bands();
    mem_ptr<uint8_t> turned[3];
    if (!can_be_worked_on(set))
        return FAILED;
    if (!frame_of(bands[set.number[0]], turn, frame))
        return refuse("Error allocating space");
    busy_all();
    int result = GO_ON;
    for (int i = 0; i < set.count && result == GO_ON; i++)
        result = turn_band(set.number[i], turn, *frame, turned[i]);
    normal_all();
    if (result != GO_ON)
        return result;
    for (int i = 0; i < set.count; i++)
        take_turned(set.number[i], *frame, turned[i]);
    return GO_ON;
}

// --- showing -------------------------------------------------------------------------------------------------------------

// The overview keeps its window, and shows all of the image in it.
void fit_overview(int w)
{
    const int overview = window_overview_of(w);
    if (overview < 0)
        return;
    win_rec &win = windows[overview];
    const band_rec &band = bands[win.red_band];
    const bool upright = band.orientation & 4;
    const int width = upright ? band.x_size : band.y_size, height = upright ? band.y_size : band.x_size;
    win.zoom = std::min(double(win.width) / width, double(win.height) / height);
    win.data_x = band.x_size >> 1;
    win.data_y = band.y_size >> 1;
}

void show_turned(const turned_frame &frame)
{
    const int w = active_window;
    const uint32_t mask = mask_of(all_bands());
    windows[w].hist_area = { 0, 0, frame.cols - 1, frame.rows - 1 };
    window_set_changed(w, 1);
    msg_put(MSG_STATUS, MSG_CENTRED, "Collecting histogram...");
    collect_window_hists();
    draw_hist(-1, -1, -1, -1);
    msg_put(MSG_STATUS, MSG_CENTRED, "Displaying...");
    clear_bands(mask);
    fit_overview(w);
    current_window = w;
    fit_image();
    paint_bands(mask);
    msg_clear(MSG_STATUS);
}

int rotate_active()
{
    rotation turn;
    turned_frame frame;
    if (!can_be_worked_on(all_bands()))
        return FAILED;
    int result = ask_angle(&turn);
    if (result == GO_ON)
        result = ask_method(&turn);
    if (result == GO_ON && active_window < 0)
        return GIVEN_UP;               // the operator has closed the image meanwhile
    if (result == GO_ON)
        result = turn_window(turn, &frame);
    if (result != GO_ON)
        return result;
    show_turned(frame);
    return 0;
}

} // namespace

int rotate_CMD()
{
    if (active_window < 0)
        return 0;
    begin_command(TITLE);
    const int result = rotate_active();
    for (const int field : { MSG_TITLE, MSG_PROMPT, MSG_KEYIN })
        msg_clear(field);
    return result;
}
