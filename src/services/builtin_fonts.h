// builtin_fonts.h - fonts and symbols that are part of the program itself: the services' own text (menu bar, captions,
// message strip, reports) needs no data directory. kestrel-mkfont writes the table when the program is built.
//
// Every member is a whole "FONT" file. Besides the layout of such a file these things hold for the text fonts made here:
// - the number that ends the name is the height of a line in pixels, and the space's glyph is one blank cell of it
//   (advance wide, line high), so the height can be had from the font alone;
// - y offset counts rows from the top of the line down to the glyph's first row, and y offset + height above the
//   baseline is the same row, the baseline's, for all glyphs; no glyph reaches out of the line;
// - x offset counts columns from the pen to the glyph's first column; it is never negative, and no glyph's
//   x offset + width exceeds its advance;
// - characters 32 to 126 and 160 to 255 (Latin-1) have glyphs, all others have none.
#pragma once
#include <cstdint>

struct builtin_font {
    const char *name;       // "sans.14", "sansb.14", ... and "mono.16"; "symbols" holds the codes of symbols.h
    const uint8_t *bytes;
    uint32_t size;
};

// "sans.14", "sans.16", "sans.18", "sansb.14", "sansb.16", "sansb.18" (proportional), "mono.16" (one advance for all),
// "symbols".
extern const builtin_font builtin_fonts[];
extern const int builtin_font_count;
