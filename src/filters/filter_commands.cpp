#include "filters/filter_commands.h"

#include <cstdio>

#include "display/picture_windows.h"
#include "display/vlt.h"
#include "edit/undo.h"
#include "enhance/histogram.h"
#include "filters/neighbourhood.h"
#include "filters/whole_image.h"
#include "forms/forms.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

// --- filters with a slider -----------------------------------------------------------------------------------------

struct slider_words {
    const char *title, *prompt, *caption, *sub_caption;
    int low, high, step, length;
};

// The slider stands where the picture does. A value outside the range asks again.
int ask_value(const slider_words &words, double *value)
{
    const win_rec &win = windows[active_window];
    for (;;) {
        if (!value_slider_dialog(win.x, win.y, words.low, words.high, value, words.length, words.step, words.caption,
                                 words.sub_caption, words.title, words.prompt))
            return 0;
        if (*value >= words.low && *value <= words.high)
            return 1;
    }
}

int undo_buffers(const band_set &set)
{
    for (int i = 0; i < set.count; i++)
        if (!undo_buffer(set.number[i]))
            return 0;
    return set.count > 0;
}

// One image shown through the colour table: the table held its levels.
void reload_single_grey()
{
    if (vlt_holds_grey_table() && picture_count == 1)
        vlt_program();
}

typedef int (*slider_filter)(const band_rec &band, int value);

int run_edge(const band_rec &band, int angle)
{
    return edge_filter(band.data, band.undo_data, band.lut, band.y_size, band.x_size, angle, edge_base_kernel);
}

int run_enhance(const band_rec &band, int weight)
{
    return enhance_filter(band.data, band.undo_data, band.lut, band.y_size, band.x_size, weight);
}

int run_smooth(const band_rec &band, int size)
{
    return smooth_filter(band.data, band.undo_data, band.y_size, band.x_size, size, size);
}

// Whatever a filter answers, its undo buffer becomes the image: that of a band too small to filter is as it was. This is meant.
void filter_window(slider_filter filter, int value, bool burns_lut_in)
{
    const band_set set = all_bands();
    if (!can_be_worked_on(set) || !undo_buffers(set))
        return;
    for (int i = 0; i < set.count; i++)
        filter(bands[set.number[i]], value);
    const int w = active_window;
    const win_rec &win = windows[w];
    if (burns_lut_in) {
        reset_lut(mask_of(set));
        reload_single_grey();
    }
    undo_exchange_and_show(win.red_band, win.green_band, win.blue_band);
    window_set_changed(w, 1);
    msg_clear(MSG_STATUS);
}

void clear_after_slider()
{
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

constexpr slider_words edge_words = {
    "Edge detection - directional filter", "Select angle of emphasis (0=vertical)", "Angle", "", 0, 315, 45, 160,
};
constexpr slider_words enhance_words = {
    "Edge enhancement - Laplacian filter", "Select weight", "Edge Enhance", "softer", 4, 12, 1, 180,
};
constexpr slider_words smooth_words = {
    "Smoothing - low pass filter", "Select kernel size", "Smoothing", "smoother", 2, 9, 1, 160,
};
constexpr double WEIGHT_START = 8;
double smoothing_size = 3.0;           // the last one used

// --- Sobel and Roberts -----------------------------------------------------------------------------------------------

struct cross_command {
    const char *title, *name;
    int (*filter)(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols);
    bool shows_all_bands;
};

constexpr cross_command sobel_command = { "Sobel Edge Detector", "sobel_l", sobel_l, true };
// Of a colour image only the red result is shown; green and blue stay in their undo buffers, which is meant.
constexpr cross_command roberts_command = { "Robert's Cross Edge Detector", "roberts_l", roberts_l, false };

// 0; -1 no undo buffer, -2 the filter failed.
int filter_band(const cross_command &command, int n)
{
    if (!undo_buffer(n)) {
        fail("Error allocating space");
        return -1;
    }
    show_processing(n);
    const band_rec &band = bands[n];
    const int result = command.filter(band.data, band.undo_data, band.lut, band.y_size, band.x_size);
    if (result >= 0)
        return 0;
    char text[48];
    snprintf(text, sizeof text, "Error <%d> in %s", result, command.name);
    fail(text);
    return -2;
}

int filter_in_view(const cross_command &command)
{
    const band_set set = bands_in_view();
    if (!can_be_worked_on(set))
        return -1;
    for (int i = 0; i < set.count; i++)
        if (const int result = filter_band(command, set.number[i]); result < 0)
            return result;
    const int w = active_window;
    const int red = set.number[0];
    const bool all = command.shows_all_bands && set.count == 3;
    reset_lut(mask_of(set));
    undo_exchange_and_show(red, all ? set.number[1] : red, all ? set.number[2] : red);
    window_set_changed(w, 1);
    msg_clear(MSG_STATUS);
    return 0;
}

void run_cross(const cross_command &command)
{
    if (active_window < 0)
        return;
    begin_command(command.title);
    filter_in_view(command);
    msg_clear(MSG_TITLE);
    msg_clear(MSG_KEYIN);
}

} // namespace

void edge_det()
{
    double angle = 0;
    if (active_window < 0)
        return;
    if (ask_value(edge_words, &angle)) {
        msg_clear(MSG_PROMPT);
        filter_window(run_edge, int(angle), true);
    }
    clear_after_slider();
}

void edge_enh()
{
    double weight = WEIGHT_START;
    if (active_window < 0)
        return;
    if (ask_value(enhance_words, &weight)) {
        msg_clear(MSG_PROMPT);
        filter_window(run_enhance, int(weight), true);
    }
    clear_after_slider();
}

void smoothing()
{
    if (active_window < 0)
        return;
    if (ask_value(smooth_words, &smoothing_size)) {
        msg_clear(MSG_PROMPT);
        busy_all();
        filter_window(run_smooth, int(smoothing_size), false);
        normal_all();
    }
    clear_after_slider();
}

void sobel()
{
    run_cross(sobel_command);
}

void roberts()
{
    run_cross(roberts_command);
}
