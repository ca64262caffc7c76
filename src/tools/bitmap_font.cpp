#include "tools/bitmap_font.h"
#include <algorithm>

static constexpr int SPACE = 32;
static constexpr int NO_BREAK_SPACE = 160;

// Rows that the glyphs of one size need above and below the baseline.
struct line_extent {
    int above = 0, below = 0;
};

static bool render(FT_Face face, int character)
{
    return FT_Load_Char(face, FT_ULong(character), FT_LOAD_RENDER | FT_LOAD_TARGET_MONO) == 0
        && face->glyph->bitmap.pixel_mode == FT_PIXEL_MODE_MONO;
}

static bool measure(FT_Face face, int pixel_size, line_extent *extent)
{
    *extent = {};
    if (FT_Set_Pixel_Sizes(face, 0, FT_UInt(pixel_size)) != 0)
        return false;
    for (int character = 0; character < 256; character++) {
        if (!is_printable_latin1(character))
            continue;
        if (!render(face, character))
            return false;
        const FT_GlyphSlot slot = face->glyph;
        extent->above = std::max(extent->above, slot->bitmap_top);
        extent->below = std::max(extent->below, int(slot->bitmap.rows) - slot->bitmap_top);
    }
    return true;
}

static bool largest_size_that_fits(FT_Face face, int line_height, line_extent *extent)
{
    for (int pixel_size = line_height; pixel_size > 0; pixel_size--) {
        if (!measure(face, pixel_size, extent))
            return false;
        if (extent->above + extent->below <= line_height)
            return true;
    }
    return false;
}

static font_glyph blank_cell(FT_GlyphSlot slot, int line_height, int baseline)
{
    const int advance = int(slot->advance.x >> 6);
    font_glyph glyph = blank_glyph(advance, line_height);
    glyph.advance = advance;
    glyph.above_baseline = baseline;
    return glyph;
}

static font_glyph glyph_from_slot(FT_GlyphSlot slot, int baseline)
{
    const FT_Bitmap &bitmap = slot->bitmap;
    const int rows = int(bitmap.rows);
    const int lowered = std::max(-slot->bitmap_top, 0);   // an underscore: blank rows lift its top to the baseline
    font_glyph glyph = blank_glyph(int(bitmap.width), lowered + rows);
    glyph.x_offset = std::max(slot->bitmap_left, 0);
    glyph.advance = std::max(int(slot->advance.x >> 6), glyph.x_offset + glyph.width);
    glyph.above_baseline = slot->bitmap_top + lowered;
    glyph.y_offset = baseline - glyph.above_baseline;
    for (int y = 0; y < rows; y++)
        for (int x = 0; x < glyph.width; x++)
            if (bitmap.buffer[y * bitmap.pitch + x / 8] & 0x80 >> x % 8)
                set_ink(&glyph, x, lowered + y);
    return glyph;
}

bool make_bitmap_font(FT_Face face, int line_height, font_set *set, std::string *error)
{
    line_extent extent;
    *error = "the font can't be rendered";
    if (!largest_size_that_fits(face, line_height, &extent))
        return false;
    const int spare = line_height - extent.above - extent.below;
    const int baseline = extent.above + spare / 2;
    for (int character = 0; character < 256; character++) {
        if (!is_printable_latin1(character))
            continue;
        if (!render(face, character))
            return false;
        const FT_GlyphSlot slot = face->glyph;
        const bool blank = character == SPACE || character == NO_BREAK_SPACE;
        if (!add_glyph(set, character, blank ? blank_cell(slot, line_height, baseline)
                                             : glyph_from_slot(slot, baseline)))
            return false;
    }
    return true;
}
