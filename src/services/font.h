// font.h - bitmap fonts and symbol sets ("FONT" files), loaded once by name and kept until the services end.
//
// Layout, little-endian: "FONT"; the size word s and the start of the glyph bits g, 32 bits each, both counted from offset 8;
// a map of 256 bytes from character to glyph, 0 none and n record n - 1; records of 8 bytes, g - 260 bytes in all; the bits,
// s - g bytes. A record: 16-bit offset of its bits, width, height, x offset, y offset, advance, height above the baseline.
// Rows of bits begin on a byte, the lowest bit is the leftmost pixel.
#pragma once
#include "services/ws_state.h"

struct font_glyph {
    const uint8_t *bits;               // height rows of (width + 7) / 8 bytes
    int width, height;
    int x_offset, y_offset;            // from the pen and from the top of the line to the first pixel
    int advance;                       // greater of the record's advance and the width
};

// False when there is no such font, or it has no glyph for the character.
bool font_glyph_of(int font, uint8_t character, font_glyph *glyph_out);

// How far any glyph of a font reaches: columns beyond where it leaves the pen, rows from the top of the line.
struct font_reach {
    int columns, rows;
};
font_reach font_reach_of(int font);    // 0, 0 for no font

// True when `size` bytes are a font file whose every record lies inside of it.
bool font_valid(const uint8_t *bytes, int64_t size);

void fonts_free_all();
