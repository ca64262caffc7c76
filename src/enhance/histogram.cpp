#include "enhance/histogram.h"

#include <algorithm>
#include <cstring>

#include "enhance/hist_kernel.h"
#include "shell/session.h"

int hist_sampling(int width, int height)
{
    if (hist_sampling_incr != 0)
        return hist_sampling_incr;
    const int64_t r = int64_t{width} * height / 40000;
    return r >= 25 ? 5 : r >= 16 ? 4 : r >= 9 ? 3 : r >= 4 ? 2 : 1;
}

void map_hist(int32_t *mapped, const int16_t *lut, const int32_t *unmapped)
{
    memset(mapped, 0, 256 * sizeof *mapped);
    for (int v = 0; v < 256; v++)
        mapped[std::clamp<int>(lut[v], 0, 255)] += unmapped[v];
}

void collect_band_hist(int n, int x0, int y0, int x1, int y1)
{
    band_rec &band = bands[n];
    x1 = std::min(x1, band.x_size - 1);
    y1 = std::min(y1, band.y_size - 1);
    memset(band.hist_unmapped, 0, 256 * sizeof *band.hist_unmapped);
    const bool bytes_in_memory = band.data && (band.format & KIND_MASK) != KIND_BIN;
    if (bytes_in_memory && x0 >= 0 && y0 >= 0 && x0 <= x1 && y0 <= y1) {
        const int width = x1 - x0 + 1, height = y1 - y0 + 1;
        const uint8_t *first = band.data + int64_t{y0} * band.x_size + x0;
        hist_count(band.hist_unmapped, first, size_t(band.x_size), width, height, hist_sampling(width, height));
    }
    map_hist(band.hist_mapped, band.lut, band.hist_unmapped);
}

void collect_window_hists()
{
    if (active_window < 0)
        return;
    win_rec &win = windows[active_window];
    if (win.red_band < 0)
        return;
    auto &a = win.hist_area;
    a.x1 = std::min(a.x1, bands[win.red_band].x_size - 1);
    a.y1 = std::min(a.y1, bands[win.red_band].y_size - 1);
    collect_band_hist(win.red_band, a.x0, a.y0, a.x1, a.y1);
    if (win.green_band >= 0 && win.green_band != win.red_band)
        collect_band_hist(win.green_band, a.x0, a.y0, a.x1, a.y1);
    if (win.blue_band >= 0 && win.blue_band != win.red_band)
        collect_band_hist(win.blue_band, a.x0, a.y0, a.x1, a.y1);
}
