#include "enhance/hist_tiles.h"

#include <algorithm>

#include "enhance/hist_kernel.h"
#include "store/stile.h"

// The store's callback has no argument of its own.
static struct {
    int32_t *counts;
    ws_rect area;
    int step;
} counting;

static int stop_wanted()
{
    constexpr int BUTTON_RESET = 2;
    uint32_t pending;
    int w, x, y, button, transition;
    uint32_t time;
    ws_pending(&pending);
    if (!(pending & WS_BUTTON) || ws_peek_button(&w, &x, &y, &button, &transition, &time) != 0)
        return 0;
    if (button != BUTTON_RESET || transition != WS_CLICK)
        return 0;
    ws_read_button(&w, &x, &y, &button, &transition, &time);
    return 1;
}

int count_tile(int x, int y, int width, int height, const uint8_t *pixels)
{
    const ws_rect &a = counting.area;
    const int x0 = std::max(x, a.x0), y0 = std::max(y, a.y0);
    const int x1 = std::min(x + width - 1, a.x1), y1 = std::min(y + height - 1, a.y1);
    if (x0 <= x1 && y0 <= y1) {
        const uint8_t *first = pixels + int64_t{y0 - y} * tile_size + (x0 - x);
        hist_count(counting.counts, first, size_t(tile_size), x1 - x0 + 1, y1 - y0 + 1, counting.step);
    }
    return stop_wanted();
}

void count_in_tiles(const band_rec &band, const ws_rect &area, int step)
{
    counting = { band.hist_unmapped, area, step };
    stile_hold(1);
    stile_scan(band.image_id, area.x0, area.y0, area.x1, area.y1, count_tile);
    stile_hold(0);
}
