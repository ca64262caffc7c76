// Text and one-bit masks, into windows and into the services' own picture.
#include "services/drawing.h"
#include "services/font.h"
#include <algorithm>
#include <climits>

// Runs of ones are filled as spans.
static void stamp_row(const pixel_store &store, const ws_rect &clip, int x, int y, const uint8_t *bits, int width, uint32_t value)
{
    const int first = std::max(0, clip.x0 - x), end = std::min(width, clip.x1 - x + 1);
    const auto one = [bits](int i) { return bits[i >> 3] >> (i & 7) & 1; };
    for (int i = first; i < end; i++) {
        if (!one(i))
            continue;
        const int run = i;
        while (i < end && one(i))
            i++;
        store_fill(store, { x + run, y, x + i - 1, y }, value);
    }
}

void stamp_low_first(const pixel_store &store, const ws_rect &clip, int x, int y, const uint8_t *bits, int width, int height, uint32_t value)
{
    const int stride = (width + 7) / 8;
    for (int row = std::max(0, clip.y0 - y); row < height && y + row <= clip.y1; row++)
        stamp_row(store, clip, x, y + row, bits + row * stride, width, value);
}

// Beyond this a pen position is off any window; it keeps the sums of pen and offsets within an int.
static bool far_away(int v)
{
    return v < INT_MIN / 2 || v > INT_MAX / 2;
}

// The character at text[*at], in Latin-1, and *at behind it. File names of the host are UTF-8: a valid sequence is one
// character, '?' when Latin-1 does not have it. Any other byte stands for itself.
static uint8_t next_character(const char *text, int length, int *at)
{
    const uint8_t lead = uint8_t(text[(*at)++]);
    const int more = lead >= 0xC2 && lead < 0xE0 ? 1 : lead >= 0xE0 && lead < 0xF0 ? 2 : lead >= 0xF0 && lead < 0xF5 ? 3 : 0;
    if (more == 0 || *at + more > length)
        return lead;
    for (int i = 0; i < more; i++)
        if ((text[*at + i] & 0xC0) != 0x80)
            return lead;
    const uint8_t second = uint8_t(text[*at]);
    *at += more;
    return lead < 0xC4 ? uint8_t(lead << 6 | (second & 0x3F)) : uint8_t('?');
}

int stamp_text(const pixel_store &store, const ws_rect &clip, int font, int x, int y, const char *text, int length, uint32_t value)
{
    if (far_away(x) || far_away(y))
        return x;
    for (int i = 0; i < length;) {
        font_glyph glyph;
        if (!font_glyph_of(font, next_character(text, length, &i), &glyph))
            continue;
        if (x > clip.x1)
            break;
        stamp_low_first(store, clip, x + glyph.x_offset, y + glyph.y_offset, glyph.bits, glyph.width, glyph.height, value);
        x += glyph.advance;
    }
    return x;
}

int ws_text_width(int font, const char *text, int length, int *width_out)
{
    if (ws_font_height(font) == 0)
        return -1;
    int width = 0;
    for (int i = 0; i < length;) {
        font_glyph glyph;
        if (font_glyph_of(font, next_character(text, length, &i), &glyph))
            width += glyph.advance;
    }
    *width_out = width;
    return 0;
}

int ws_draw_text(int w, int font, int x, int y, const char *text, int length)
{
    const drawing_target target = begin_drawing(w);
    if (!target.window)
        return target.result;
    if (ws_font_height(font) == 0)
        return -1;
    if (far_away(x) || far_away(y))
        return 0;
    const int end = stamp_text(target.window->store, target.clip, font, x, y, text, length, uint32_t(target.window->foreground));
    const font_reach reach = font_reach_of(font);
    end_drawing(*target.window, rect_common(target.clip, { x, y, end + reach.columns - 1, y + reach.rows - 1 }));
    return 0;
}
