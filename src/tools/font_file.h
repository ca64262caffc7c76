// font_file.h - puts a "FONT" file together: bitmap fonts and symbol sets have the same layout.
//
//   0  "FONT"
//   4  u32 size of the file less 8
//   8  u32 260 + 8 * glyphs: with 8 added, the offset of the glyph bits
//  12  256 bytes, character code to glyph number; 0 is no glyph, n is record n - 1
// 268  a record of 8 bytes a glyph: u16 offset of its bits, width, height, x offset, y offset, advance,
//      height above the baseline
//      the bits: rows of whole bytes, lowest bit leftmost, 1 is ink
// All numbers are little-endian.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

struct font_glyph {
    int width = 0, height = 0;              // 1 to 255 pixels
    int x_offset = 0, y_offset = 0;
    int advance = 0;
    int above_baseline = 0;
    std::vector<uint8_t> bits;              // height rows of font_row_bytes(width)
};

struct font_set {
    uint8_t map[256] = {};
    std::vector<font_glyph> glyphs;
};

inline int font_row_bytes(int width) { return (width + 7) / 8; }

// A glyph of that size without ink.
font_glyph blank_glyph(int width, int height);

void set_ink(font_glyph *glyph, int x, int y);

// Adds the glyph for the character. False when all 255 glyph numbers are taken.
bool add_glyph(font_set *set, int character, const font_glyph &glyph);

// The whole file. False, with a sentence in *error, when a number doesn't fit its field.
bool font_file_bytes(const font_set &set, std::vector<uint8_t> *file, std::string *error);
