// refetch.cpp - the pixels of the active window once more from their files, into the bands that are there.
#include <cstring>

#include "display/picture_windows.h"
#include "edit/undo.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/load.h"
#include "store/read_commands.h"

namespace {

file_area area_of(const band_rec &band)
{
    return { band.file_x0, band.file_y0, band.file_x1, band.file_y1 };
}

// band_create writes the names anew, so what is read from must not lie in the band.
struct names_of_window {
    char text[3][BAND_NAME_SIZE];
};

names_of_window names_of(const win_rec &win)
{
    names_of_window names;
    const int numbers[3] = { win.red_band, win.green_band, win.blue_band };
    for (int i = 0; i < 3; i++)
        memcpy(names.text[i], bands[numbers[i]].file_name, BAND_NAME_SIZE);
    return names;
}

int read_again(const win_rec &win)
{
    const band_rec red = bands[win.red_band];
    const names_of_window names = names_of(win);
    const file_area area = area_of(red);
    const int increment = red.increment < 1 ? 1 : red.increment;
    int r, g, b;
    switch (red.format & KIND_MASK) {
    case KIND_RGB:
        return load_rgb_file(increment, names.text[0], area, 0, &r, &g, &b);
    case KIND_COT:
        if ((display_mode & COLOR) || win.red_band != win.green_band)
            return load_gray3(increment, names.text[0], names.text[1], names.text[2], area, 0, &r, &g, &b);
        return load_gray(increment, names.text[0], SOURCE_GRAY, area, 0, &r);
    case KIND_COT_INDEX:
        return load_colour_index(increment, names.text[0], area, 0, &r, &g, &b);
    default:
        return 0;
    }
}

} // namespace

void refetch_file()
{
    if (active_window < 0 || (bands[windows[active_window].red_band].format & KIND_MASK) == KIND_NONE) {
        msg_put(MSG_STATUS, MSG_CENTRED, "No file(s) available to refetch data");
        beep(BEEP_INFO);
        return;
    }
    const win_rec &win = windows[active_window];
    const int numbers[3] = { win.red_band, win.green_band, win.blue_band };
    const uint32_t held[3] = { bands[numbers[0]].alloc_bytes, bands[numbers[1]].alloc_bytes, bands[numbers[2]].alloc_bytes };
    display_mode |= REFETCHING_BAND;
    const int fetched = read_again(win);
    display_mode &= ~uint32_t{REFETCHING_BAND};
    // A band whose memory has changed has no use for its copy either when the rest of the file could not be read.
    for (int i = 0; i < 3; i++)
        if (fetched || bands[numbers[i]].alloc_bytes != held[i])
            undo_free(numbers[i]);
    if (!fetched)
        return;
    paint_bands(band_mask(win.red_band, win.green_band, win.blue_band));
}
