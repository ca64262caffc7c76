#include "store/load_tiled.h"

#include "RIO/rio.h"
#include "display/geometry.h"
#include "display/picture_windows.h"
#include "display/show_image.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/file_info.h"
#include "store/stile.h"

namespace {

// Orientation of the file and, when none was asked for, the increment that fits the screen. 0 when it cannot be opened.
int ask_file(const char *name, int *increment, int *orientation)
{
    RFILE *file = rio_open_r(name);
    if (!file) {
        msg_put(MSG_STATUS, MSG_CENTRED, "failed to open file");
        beep(BEEP_ERROR);
        return 0;
    }
    *orientation = file_orientation(file);
    if (*increment < 1)
        *increment = band_default_increment(file_key(file, RIO_KEY_WIDTH), file_key(file, RIO_KEY_HEIGHT));
    rio_close(file);
    return 1;
}

int no_store()
{
    msg_put(MSG_STATUS, MSG_CENTRED, "no tile store is present");
    beep(BEEP_ERROR);
    return 0;
}

// A band for an image of the store. The band number, or -1.
int tiled_band(uint32_t id, const char *name, int increment, int orientation)
{
    int width = 0, height = 0, depth = 0, band;
    stile_get_size(id, &width, &height);
    int one = 1;
    if (!band_create(width, height, &one, KIND_TILED, name, &band))
        return -1;
    bands[band].image_id = id;
    bands[band].increment = int16_t(increment);
    bands[band].orientation = uint8_t(orientation);
    band_reset_orientation(band);
    stile_get_depth(id, &depth);
    if (depth == STILE_BILEVEL_DEPTH)
        bands[band].format = KIND_TILED | KIND_BIN;
    else
        collect_band_hist(band, 0, 0, width - 1, height - 1);
    return band;
}

} // namespace

uint32_t load_tiled_gray(const char *name, int increment, int show)
{
    int orientation;
    if (!ask_file(name, &increment, &orientation))
        return 0;
    uint32_t id = 0;
    stile_set_mode(2);
    stile_open_gray(tile_size_code, increment, name, &id);
    if (id == 0)
        return uint32_t(no_store());
    if (display_mode & NEW_SESSION)
        close_all_windows();
    const int band = tiled_band(id, name, increment, orientation);
    if (band < 0)
        return 0;
    if (show)
        show_image(band, band, band);
    return id;
}

int load_tiled_rgb(const char *red, const char *green, const char *blue, int increment, int show)
{
    const char *const names[3] = { red, green ? green : red, blue ? blue : red };
    int orientation, numbers[3];
    if (!ask_file(red, &increment, &orientation))
        return 0;
    uint32_t ids[3] = {};
    stile_set_mode(2);
    if (green)
        for (int i = 0; i < 3; i++)
            stile_open_gray(tile_size_code, increment, names[i], &ids[i]);
    else
        stile_open_rgb(tile_size_code, increment, red, ids);
    if (ids[0] == 0 || ids[1] == 0 || ids[2] == 0)
        return no_store();
    if (display_mode & NEW_SESSION)
        close_all_windows();
    for (int i = 0; i < 3; i++)
        if ((numbers[i] = tiled_band(ids[i], names[i], increment, orientation)) < 0)
            return 0;
    return !show || show_image(numbers[0], numbers[1], numbers[2]) >= 0;
}
