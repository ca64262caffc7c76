// session_records.cpp - what the band and window records do by themselves, with no memory and no screen.
#include <cstring>

#include "shell/session.h"

int band_free_slot(int first)
{
    int n = first;
    while (n < BANDS && bands[n].alloc_bytes != 0)
        n++;
    return n < BANDS ? n : BANDS;
}

void band_clear(int n)
{
    band_rec &band = bands[n];
    std::memset(&band, 0, sizeof band);
    for (int i = 0; i < 4; i++)
        band.xform[i][i] = 1;
}

static uint32_t band_bit(int band)
{
    return uint32_t{1} << (band < 0 ? 0 : band);
}

uint32_t band_mask(int red, int green, int blue)
{
    return (red < 0 ? 0 : band_bit(red)) | band_bit(green) | band_bit(blue);
}

int window_overview_of(int w)
{
    for (int n = 0; n < WINDOWS; n++)
        if ((windows[n].flags & WIN_OVERVIEW) && windows[n].linked_window == w)
            return n;
    return -1;
}

void window_set_changed(int w, int value)
{
    if (w >= 0 && (windows[w].flags & WIN_OVERVIEW))
        w = windows[w].linked_window;
    if (w >= 0)
        windows[w].changed = int16_t(value);
}
