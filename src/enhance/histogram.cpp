#include "enhance/histogram.h"

#include <algorithm>
#include <cstring>

#include "enhance/hist_kernel.h"
#include "enhance/hist_tiles.h"
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

void reverse_band_hist(int32_t *mapped, int16_t *lut, int32_t *unmapped)
{
    std::reverse(lut, lut + 256);
    for (int i = 0; i < 256; i++)
        lut[i] = int16_t(255 - lut[i]);
    std::reverse(unmapped, unmapped + 256);
    map_hist(mapped, lut, unmapped);
}

static void count_in_memory(const band_rec &band, const ws_rect &area, int step)
{
    const uint8_t *first = band.data + int64_t{area.y0} * band.x_size + area.x0;
    hist_count(band.hist_unmapped, first, size_t(band.x_size), area.x1 - area.x0 + 1, area.y1 - area.y0 + 1, step);
}

void collect_band_hist(int n, int x0, int y0, int x1, int y1)
{
    band_rec &band = bands[n];
    if (!band.hist_mapped)
        return;
    const ws_rect area = { std::max(x0, 0), std::max(y0, 0), std::min(x1, band.x_size - 1), std::min(y1, band.y_size - 1) };
    memset(band.hist_unmapped, 0, 256 * sizeof *band.hist_unmapped);
    const bool has_levels = (band.format & KIND_MASK) != KIND_BIN;
    if (has_levels && area.x0 <= area.x1 && area.y0 <= area.y1) {
        const int step = hist_sampling(area.x1 - area.x0 + 1, area.y1 - area.y0 + 1);
        if (band.format & KIND_TILED)
            count_in_tiles(band, area, step);
        else if (band.data)
            count_in_memory(band, area, step);
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
