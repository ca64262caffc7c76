#include "enhance/hist_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "display/vlt.h"
#include "enhance/contrast_maps.h"
#include "enhance/slice_display.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

constexpr int BASELINE_ABOVE_BOTTOM = 10;

int text_width(int font, const char *text)
{
    int width = 0;
    ws_text_width(font, text, int(strlen(text)), &width);
    return width;
}

void fill(int window, int ink, int x0, int y0, int x1, int y1)
{
    ws_set_foreground(window, ink);
    ws_fill_rect(window, x0, y0, x1, y1);
}

} // namespace

int plot_baseline(int plot_bottom)
{
    return plot_bottom - BASELINE_ABOVE_BOTTOM;
}

int plot_ink(int slot)
{
    return (display_mode & TC) && slot < NAMED_COLOURS ? int(named_colours[slot]) : slot;
}

void bar_heights(const int32_t *counts, int highest, int heights_out[256])
{
    int first, last;
    occupied_range(counts, &first, &last);
    int32_t most = 0;
    for (int level = first + 1; level < last; level++)
        most = std::max(most, counts[level]);
    const double scale = most == 0 ? 1.0 : double(most) / highest;
    for (int level = 0; level < 256; level++)
        heights_out[level] = int(std::min(std::ceil(counts[level] / scale - 0.5), highest + 1.0));
}

void plot_bars(int window, int baseline, const int32_t *counts, int ink)
{
    int heights[256];
    const int highest = layout.hist_graph_height;
    bar_heights(counts, highest, heights);
    for (int level = 0; level < 256; level++) {
        const int x = PLOT_X + level;
        if (heights[level] > highest)
            fill(window, int(plane_mask), x, baseline - highest, x, baseline);
        else if (heights[level] >= 1)
            fill(window, ink, x, baseline - heights[level], x, baseline);
    }
}

void plot_axis(int window, int baseline)
{
    constexpr int TICK = 2;
    fill(window, int(plane_mask), PLOT_X, baseline, PLOT_X + 255, baseline);
    const int three_digits = text_width(font_text_small, "100");
    for (int level = 0; level <= 250; level += 50) {
        char text[16];
        snprintf(text, sizeof text, "%d", level);
        const int x = PLOT_X + level;
        const int width = level < 100 ? text_width(font_text_small, text) : three_digits;
        ws_fill_rect(window, x, baseline, x, baseline + TICK);
        ws_draw_text(window, font_text_small, x - width / 2, baseline + TICK + 1, text, int(strlen(text)));
    }
}

void plot_label(int window, int baseline, const char *label)
{
    constexpr int LINE = 18, LEFT = 2, LENGTH_MAX = 208;
    static uint32_t level_text[LINE * LENGTH_MAX], upright_text[LENGTH_MAX * LINE];
    const int length = std::min(layout.hist_graph_height + 8, LENGTH_MAX), right = PLOT_X + length - 1;
    if (!*label)
        return;
    fill(window, 0, PLOT_X, 0, right, LINE - 1);
    ws_set_clip(window, PLOT_X, 0, right, LINE - 1);
    ws_set_foreground(window, int(plane_mask));
    ws_draw_text(window, font_mid, PLOT_X, 0, label, int(strlen(label)));
    ws_set_clip(window, 0, 0, windows[window].width - 1, windows[window].height - 1);
    ws_read_pixels(window, PLOT_X, 0, right, LINE - 1, level_text);
    fill(window, 0, PLOT_X, 0, right, LINE - 1);

    for (int y = 0; y < LINE; y++)
        for (int x = 0; x < length; x++)
            upright_text[(length - 1 - x) * LINE + y] = level_text[y * length + x];
    ws_write_pixels(window, LEFT, baseline - length + 1, LEFT + LINE - 1, baseline, upright_text);
}

void plot_slice_strip(int window, int baseline, const int16_t *slice_colors, const int16_t *lut)
{
    for (int first = 0, last; first < 256; first = last + 1) {
        for (last = first; last < 255 && slice_colors[last + 1] == slice_colors[first];)
            last++;
        if (slice_colors[first] < 0)
            continue;
        const int a = lut ? lut[first] : first, b = lut ? lut[last] : last;
        fill(window, plot_ink(slice_slot(slice_colors[first], 0, 0)), PLOT_X + std::min(a, b), baseline - 1, PLOT_X + std::max(a, b), baseline + 1);
    }
}
