// Vector drawing: lines, filled rectangles, single points, and the colours, widths and styles that they use.
#include "services/drawing.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>

// --- attributes --------------------------------------------------------------------------------------------------

static int window_colour(const window_record &window, int colour)
{
    return window.vlt == 2 ? colour & 0xFFFFFF : std::clamp(colour, 0, ws_state.info.max_index);
}

int ws_set_foreground(int w, int colour)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    window->foreground = window_colour(*window, colour);
    return 0;
}

int ws_set_foreground_plane(int w, int plane, int colour)
{
    return plane == 0 ? ws_set_foreground(w, colour) : -1;
}

int ws_set_background(int w, int colour)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    window->background = window_colour(*window, colour);
    return 0;
}

static constexpr int LINE_WIDTH_MAX = 255;

int ws_set_line_width(int w, int width)
{
    window_record *const window = window_of(w);
    if (!window || width < 0)
        return -1;
    window->line_width = std::min(width, LINE_WIDTH_MAX);
    return 0;
}

// Dashes by name only, for a pattern that would draw nothing.
static constexpr int DASHED = 0xF0F0;

int ws_set_line_style(int w, int pattern)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    window->line_pattern = pattern & LINE_SOLID ? pattern & LINE_SOLID : DASHED;
    window->dash_phase = 0;
    return 0;
}

int ws_set_fill_pattern(int w, const uint8_t pattern[8])
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    memcpy(window->pattern, pattern, sizeof window->pattern);
    window->patterned = std::any_of(pattern, pattern + 8, [](uint8_t row) { return row != 255; });
    return 0;
}

int ws_set_clip(int w, int x0, int y0, int x1, int y1)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    const ws_rect &r = window->rect;
    // A clip as large as the window is none: it grows with the window.
    const bool whole = x0 <= 0 && y0 <= 0 && x1 >= r.x1 - r.x0 && y1 >= r.y1 - r.y0;
    window->clip = whole ? CLIP_NONE : ws_rect{ x0, y0, x1, y1 };
    return 0;
}

// --- lines -------------------------------------------------------------------------------------------------------

// A line walked along its longer axis: step i, 0 to `steps`, lies at major0 + i * major_sign, and
// minor0 + minor_sign * round(i * minor_steps / steps), halves towards the start.
struct line_walk {
    bool steep;                        // the longer axis is y
    int64_t major0, minor0, steps, minor_steps;
    int major_sign, minor_sign;
};

static line_walk walk_of(int64_t x0, int64_t y0, int64_t x1, int64_t y1)
{
    const int64_t dx = std::abs(x1 - x0), dy = std::abs(y1 - y0);
    const int x_sign = x1 < x0 ? -1 : 1, y_sign = y1 < y0 ? -1 : 1;
    if (dy > dx)
        return { true, y0, x0, dy, dx, y_sign, x_sign };
    return { false, x0, y0, dx, dy, x_sign, y_sign };
}

struct step_range {
    int64_t first, last;
};

// Steps whose major coordinate lies in low to high.
static step_range steps_within(const line_walk &walk, int64_t low, int64_t high)
{
    if (walk.major_sign > 0)
        return { std::max<int64_t>(0, low - walk.major0), std::min(walk.steps, high - walk.major0) };
    return { std::max<int64_t>(0, walk.major0 - high), std::min(walk.steps, walk.major0 - low) };
}

struct line_pen {
    const pixel_store &store;
    ws_rect clip;
    uint32_t value;
    int pattern, phase;                // the first step takes bit 15 - phase of the pattern
};

// One line a pixel wide, moved by `shift` across its longer axis.
static void draw_thin_line(const line_pen &pen, const line_walk &walk, int shift)
{
    const ws_rect &c = pen.clip;
    const step_range range = steps_within(walk, walk.steep ? c.y0 : c.x0, walk.steep ? c.y1 : c.x1);
    if (range.first > range.last)
        return;
    // Exact for any ints: the products pass 64 bits.
    const __int128 twice = 2 * __int128{range.first} * walk.minor_steps + walk.steps - 1;
    int64_t minor_step = walk.steps ? int64_t(twice / (2 * __int128{walk.steps})) : 0;
    int64_t rest = walk.steps ? int64_t(twice % (2 * __int128{walk.steps})) : 0;
    for (int64_t i = range.first; i <= range.last; i++) {
        const int64_t major = walk.major0 + i * walk.major_sign;
        const int64_t minor = walk.minor0 + minor_step * walk.minor_sign + shift;
        const int64_t x = walk.steep ? minor : major, y = walk.steep ? major : minor;
        const bool inked = pen.pattern >> (15 - ((i + pen.phase) & 15)) & 1;
        if (inked && x >= c.x0 && x <= c.x1 && y >= c.y0 && y <= c.y1)
            store_set(pen.store, int(x), int(y), pen.value);
        rest += 2 * walk.minor_steps;
        if (rest >= 2 * walk.steps) {
            rest -= 2 * walk.steps;
            minor_step++;
        }
    }
}

static ws_rect saturated_rect(int64_t x0, int64_t y0, int64_t x1, int64_t y1)
{
    const auto kept = [](int64_t v) { return int(std::clamp<int64_t>(v, INT_MIN, INT_MAX)); };
    return { kept(std::min(x0, x1)), kept(std::min(y0, y1)), kept(std::max(x0, x1)), kept(std::max(y0, y1)) };
}

static void draw_line(const drawing_target &target, int64_t x0, int64_t y0, int64_t x1, int64_t y1)
{
    const window_record &window = *target.window;
    const line_walk walk = walk_of(x0, y0, x1, y1);
    const line_pen pen = { window.store, target.clip, uint32_t(window.foreground), window.line_pattern, window.dash_phase };
    const int before = window.line_width / 2;  // parallel lines lie on both sides, the odd one below or to the right
    for (int shift = -before; shift <= window.line_width - before; shift++)
        draw_thin_line(pen, walk, shift);
    const int wide = window.line_width;
    ws_rect drawn = saturated_rect(x0, y0, x1, y1);
    drawn = rect_common(target.clip, saturated_rect(int64_t{drawn.x0} - wide, int64_t{drawn.y0} - wide, int64_t{drawn.x1} + wide, int64_t{drawn.y1} + wide));
    end_drawing(window, drawn);
}

int ws_move(int w, int x, int y)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    window->pen_x = x;
    window->pen_y = y;
    window->dash_phase = 0;
    return 0;
}

int ws_draw(int w, int x, int y)
{
    window_record *const window = window_of(w);
    if (!window)
        return -1;
    const drawing_target target = begin_drawing(w);
    if (target.window)
        draw_line(target, window->pen_x, window->pen_y, x, y);
    const int64_t steps = std::max(std::abs(int64_t{x} - window->pen_x), std::abs(int64_t{y} - window->pen_y));
    window->dash_phase = int((window->dash_phase + steps) & 15);
    window->pen_x = x;
    window->pen_y = y;
    return 0;
}

// --- areas and points --------------------------------------------------------------------------------------------

// Ones of the pattern, which is laid out from the window's top left, take the foreground; zeros leave what is there.
static void fill_patterned(const window_record &window, const ws_rect &area)
{
    for (int y = area.y0; y <= area.y1; y++) {
        const uint8_t row = window.pattern[y & 7];
        for (int x = area.x0; x <= area.x1; x++)
            if (row >> (7 - (x & 7)) & 1)
                store_set(window.store, x, y, uint32_t(window.foreground));
    }
}

int ws_fill_rect(int w, int x0, int y0, int x1, int y1)
{
    const drawing_target target = begin_drawing(w);
    if (!target.window)
        return target.result;
    const ws_rect part = rect_common(saturated_rect(x0, y0, x1, y1), target.clip);
    if (rect_empty(part))
        return 0;
    if (target.window->patterned)
        fill_patterned(*target.window, part);
    else
        store_fill(target.window->store, part, uint32_t(target.window->foreground));
    end_drawing(*target.window, part);
    return 0;
}

static uint32_t combined(int rop, uint32_t old, uint32_t colour, uint32_t mask)
{
    switch (rop) {
    case WS_ROP_XOR:
        return old ^ colour;
    case WS_ROP_AND:
        return old & colour;
    case WS_ROP_OR:
        return old | colour;
    case WS_ROP_CLEAR:
        return 0;
    case WS_ROP_INVERT:
        return old ^ mask;
    case WS_ROP_SET:
        return mask;
    default:
        return colour;
    }
}

int ws_rop_point(int w, int rop, int x, int y, int colour)
{
    const drawing_target target = begin_drawing(w);
    if (rop < WS_ROP_COPY || rop > WS_ROP_SET)
        return -1;
    if (!target.window || !rect_has(target.clip, x, y))
        return target.result;
    const window_record &window = *target.window;
    const uint32_t value = combined(rop, store_get(window.store, x, y), uint32_t(window_colour(window, colour)), pixel_mask(window));
    store_set(window.store, x, y, value);
    end_drawing(window, { x, y, x, y });
    return 0;
}
