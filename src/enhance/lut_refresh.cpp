// lut_refresh.cpp - the screen after a change of look-up tables: where a colour table does the look-up it is loaded again, elsewhere
// the pictures are painted.
#include <cstring>

#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "enhance/slice_display.h"
#include "shell/session.h"

static bool colour_table_looks_up()
{
    if (display_mode & TC)
        return !(display_mode & STATIC_VLT);
    return vlt_holds_grey_table() && picture_count == 1;
}

static uint32_t bands_of(const win_rec &win)
{
    return band_mask(win.red_band, win.green_band, win.blue_band);
}

static void show_luts(uint32_t mask)
{
    if (colour_table_looks_up())
        reload_lut(mask);
    else
        paint_bands(mask);
    slice_refresh();
}

void reload_lut(uint32_t mask)
{
    if (!(display_mode & TC) || (display_mode & STATIC_VLT)) {
        vlt_program();
        return;
    }
    const int32_t active = active_window;
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (is_picture(w) && (bands_of(windows[w]) & mask)) {
            active_window = w;         // the table that is built is the active window's
            vlt_program();
        }
    active_window = active;
}

void reset_lut(uint32_t mask)
{
    for (int n = 0; n < BANDS; n++)
        if ((mask >> n & 1) && bands[n].lut)
            for (int i = 0; i < 256; i++)
                bands[n].lut[i] = int16_t(i);
    reload_lut(mask);
}

static void take_lut(int to, int from)
{
    if (to < 0 || from < 0 || to == from || !bands[to].lut || !bands[from].lut)
        return;
    memcpy(bands[to].lut, bands[from].lut, 256 * sizeof *bands[to].lut);
    map_hist(bands[to].hist_mapped, bands[to].lut, bands[to].hist_unmapped);
}

// An overview with bands of its own follows its picture.
static void refresh_overview(const win_rec &view, const win_rec &overview)
{
    if (overview.red_band == view.red_band)
        return;
    take_lut(overview.red_band, view.red_band);
    if (overview.green_band != overview.red_band)
        take_lut(overview.green_band, view.green_band);
    if (overview.blue_band != overview.red_band)
        take_lut(overview.blue_band, view.blue_band);
    show_luts(bands_of(overview));
}

void refresh_after_lut()
{
    if (active_window < 0)
        return;
    show_luts(bands_of(windows[active_window]));
    const int overview = window_overview_of(active_window);
    if (overview >= 0)
        refresh_overview(windows[active_window], windows[overview]);
}
