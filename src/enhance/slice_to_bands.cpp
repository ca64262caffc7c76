// slice_to_bands.cpp - a density slice as a colour image: each level becomes its colour, levels without one stay grey.
#include <cstdio>

#include "display/picture_windows.h"
#include "display/show_image.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "enhance/slice_commands.h"
#include "enhance/slice_display.h"
#include "enhance/slice_map.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/read_mode.h"

namespace {

struct colour_planes {
    uint8_t red[256], green[256], blue[256];
};

// What each held level becomes. Painting puts levels through the gamma, which the colours of a slice never went through.
void level_colours(const int16_t *slice_colors, colour_planes *planes)
{
    uint8_t inverse[256];
    inverse_of_gamma(gamma_table, inverse);
    for (int level = 0; level < 256; level++) {
        const int colour = slice_colors[level];
        const uint32_t rgb = colour < 0 ? 0 : slice_rgb(colour);
        planes->red[level] = colour < 0 ? uint8_t(level) : inverse[rgb >> 16];
        planes->green[level] = colour < 0 ? uint8_t(level) : inverse[rgb >> 8 & 255];
        planes->blue[level] = colour < 0 ? uint8_t(level) : inverse[rgb & 255];
    }
}

void map_pixels(const uint8_t *in, const uint8_t table[256], int64_t count, uint8_t *out)
{
    for (int64_t i = 0; i < count; i++)
        out[i] = table[in[i]];
}

int new_bands(const band_rec &from, int numbers_out[3])
{
    char name[BAND_NAME_SIZE];
    snprintf(name, sizeof name, "density slice %s", from.label);
    int step = 1;
    return band_create_rgb(from.x_size, from.y_size, &step, KIND_NONE, name, name, name, &numbers_out[0], &numbers_out[1], &numbers_out[2]);
}

void take_geometry(const band_rec &from, band_rec *to)
{
    to->orientation = from.orientation;
    for (int row = 0; row < 4; row++)
        for (int column = 0; column < 4; column++)
            to->xform[row][column] = from.xform[row][column];
}

} // namespace

void density_slice_to_3_bands()
{
    const int n = active_window < 0 ? -1 : windows[active_window].slice_band;
    if (n < 0 || !bands[n].data) {
        msg_put(MSG_STATUS, MSG_CENTRED, "No density slice defined for active window");
        beep(BEEP_INFO);
        return;
    }
    msg_put(MSG_TITLE, MSG_CENTRED, "Density slice to 3 bands");
    const uint32_t old_mode = display_mode;
    int numbers[3], shown = -1;
    if (new_bands(bands[n], numbers)) {
        msg_put(MSG_STATUS, MSG_CENTRED, "Converting color index to true color");
        const band_rec &from = bands[n];
        colour_planes planes;
        level_colours(from.slice_colors, &planes);
        const uint8_t *const tables[3] = { planes.red, planes.green, planes.blue };
        for (int i = 0; i < 3; i++) {
            band_rec &to = bands[numbers[i]];
            map_pixels(from.data, tables[i], int64_t{from.x_size} * from.y_size, to.data);
            take_geometry(from, &to);
            collect_band_hist(numbers[i], 0, 0, to.x_size - 1, to.y_size - 1);
        }
        read_mode_begin(true);
        shown = show_image(numbers[0], numbers[1], numbers[2]);
        read_mode_end(old_mode, shown >= 0);
        for (int i = 0; i < 3 && shown < 0; i++)
            band_free(numbers[i]);
        slice_paint_all();
        if (shown >= 0)
            msg_clear(MSG_STATUS);
    }
    msg_clear(MSG_TITLE);
}
