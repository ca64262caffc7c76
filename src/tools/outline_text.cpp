#include "tools/outline_text.h"
#include <algorithm>
#include <cmath>
#include <cstring>

static constexpr size_t INDEX_START = 16, INDEX_ENTRY_BYTES = 8, INDEX_ENTRIES = 256;

static uint32_t get_le(const uint8_t *from, int bytes)
{
    uint32_t value = 0;
    for (int i = 0; i < bytes; i++)
        value |= uint32_t(from[i]) << 8 * i;
    return value;
}

bool outline_text_open(outline_text_font *font, std::vector<uint8_t> file)
{
    if (file.size() < INDEX_START + INDEX_ENTRIES * INDEX_ENTRY_BYTES || std::memcmp(file.data(), "StrFont02", 9) != 0)
        return false;
    font->baseline = int(get_le(file.data() + 10, 2));
    font->em_units = int(get_le(file.data() + 12, 4));
    font->file = std::move(file);
    return font->em_units > 0;
}

static const uint8_t *entry_of(const outline_text_font &font, char character)
{
    return font.file.data() + INDEX_START + INDEX_ENTRY_BYTES * uint8_t(character);
}

static int advance_of(const uint8_t *entry)
{
    return int16_t(get_le(entry + 6, 2));
}

float outline_text_width(const outline_text_font &font, const std::string &text, float em_pixels)
{
    int units = 0;
    for (const char character : text)
        units += advance_of(entry_of(font, character));
    return float(units) * em_pixels / float(font.em_units);
}

struct edge {
    float x0, y0, x1, y1;
};

// The glyph's outlines as lines on the picture. The fonts are Kestrel's own, so their offsets and counts are good.
static std::vector<edge> edges_of(const outline_text_font &font, const uint8_t *entry, float pen, float y, float scale)
{
    std::vector<edge> edges;
    const uint32_t offset = get_le(entry, 4);
    if (offset == 0)
        return edges;
    const uint8_t *counts = font.file.data() + offset + 4;
    const uint32_t outlines = get_le(counts - 4, 4);
    const uint8_t *point = counts + size_t(outlines) * 4;
    const float left = pen - float(int16_t(get_le(entry + 4, 2))) * scale;
    for (uint32_t i = 0; i < outlines; i++) {
        const uint32_t points = get_le(counts + size_t(i) * 4, 4);
        for (uint32_t k = 0; k < points; k++, point += 2)
            if (k + 1 < points)
                edges.push_back({ left + float(point[0]) * scale, y + float(font.baseline - point[1]) * scale,
                                  left + float(point[2]) * scale, y + float(font.baseline - point[3]) * scale });
    }
    return edges;
}

// Calls span(row, first, last) for each run of pixels whose centres lie inside, by the odd rule.
template <typename Span> static void scan(const std::vector<edge> &edges, Span span)
{
    float top = 1e9f, bottom = -1e9f;
    for (const edge &line : edges) {
        top = std::min({ top, line.y0, line.y1 });
        bottom = std::max({ bottom, line.y0, line.y1 });
    }
    std::vector<float> crossings;
    for (int row = int(std::floor(top)); row <= int(bottom); row++) {
        const float middle = float(row) + 0.5f;
        crossings.clear();
        for (const edge &line : edges)
            if ((line.y0 <= middle) != (line.y1 <= middle))
                crossings.push_back(line.x0 + (middle - line.y0) * (line.x1 - line.x0) / (line.y1 - line.y0));
        std::sort(crossings.begin(), crossings.end());
        for (size_t i = 0; i + 1 < crossings.size(); i += 2)
            span(row, int(std::ceil(crossings[i] - 0.5f)), int(std::ceil(crossings[i + 1] - 0.5f)) - 1);
    }
}

void outline_text_draw(bit_picture *picture, const outline_text_font &font, float x, float y, const std::string &text,
                       float em_pixels, int halo)
{
    const float scale = em_pixels / float(font.em_units);
    for (const bool black : { false, true }) {
        const int grown = black ? 0 : halo;
        if (!black && halo == 0)
            continue;
        float pen = x;
        for (const char character : text) {
            const uint8_t *entry = entry_of(font, character);
            scan(edges_of(font, entry, pen, y, scale), [&](int row, int first, int last) {
                fill_box(picture, first - grown, row - grown, last + grown, row + grown, black);
            });
            pen += float(advance_of(entry)) * scale;
        }
    }
}
