#include "tools/font_file.h"
#include "tools/output_file.h"

static constexpr size_t MAP_AND_WORDS = 260;        // the map and one word: what precedes the records, counted from 8
static constexpr size_t GLYPH_RECORD_BYTES = 8;
static constexpr size_t COUNTED_FROM = 8;           // the header's two words count from here
static constexpr size_t MOST_GLYPHS = 255;

font_glyph blank_glyph(int width, int height)
{
    font_glyph glyph;
    glyph.width = width;
    glyph.height = height;
    glyph.bits.assign(size_t(font_row_bytes(width)) * size_t(height), 0);
    return glyph;
}

void set_ink(font_glyph *glyph, int x, int y)
{
    uint8_t &cell = glyph->bits[size_t(y * font_row_bytes(glyph->width) + x / 8)];
    cell = uint8_t(cell | 1 << x % 8);
}

bool add_glyph(font_set *set, int character, const font_glyph &glyph)
{
    if (set->glyphs.size() == MOST_GLYPHS)
        return false;
    set->glyphs.push_back(glyph);
    set->map[character] = uint8_t(set->glyphs.size());
    return true;
}

static bool fits_a_byte(int value)
{
    return value >= 0 && value <= 255;
}

static bool fits_a_record(const font_glyph &glyph)
{
    return glyph.width > 0 && glyph.height > 0 && fits_a_byte(glyph.width) && fits_a_byte(glyph.height)
        && fits_a_byte(glyph.x_offset) && fits_a_byte(glyph.y_offset) && fits_a_byte(glyph.advance)
        && fits_a_byte(glyph.above_baseline);
}

bool font_file_bytes(const font_set &set, std::vector<uint8_t> *file, std::string *error)
{
    std::vector<uint8_t> records, bits;
    for (const font_glyph &glyph : set.glyphs) {
        if (!fits_a_record(glyph) || bits.size() > 0xffff) {
            *error = "glyph " + std::to_string(&glyph - set.glyphs.data() + 1) + " is too large for a font file";
            return false;
        }
        put_le(&records, bits.size(), 2);
        for (int field : { glyph.width, glyph.height, glyph.x_offset, glyph.y_offset, glyph.advance,
                           glyph.above_baseline })
            put_le(&records, uint64_t(field), 1);
        bits.insert(bits.end(), glyph.bits.begin(), glyph.bits.end());
    }
    const size_t bits_start = MAP_AND_WORDS + GLYPH_RECORD_BYTES * set.glyphs.size();

    file->assign({ 'F', 'O', 'N', 'T' });
    file->reserve(COUNTED_FROM + bits_start + bits.size());
    put_le(file, bits_start + bits.size(), 4);
    put_le(file, bits_start, 4);
    file->insert(file->end(), set.map, set.map + 256);
    file->insert(file->end(), records.begin(), records.end());
    file->insert(file->end(), bits.begin(), bits.end());
    return true;
}
