// outline_font.h - makes a "StrFont" file, the outline fonts of text placed into images, from an outline font.
//
//    0  "StrFont" "02", a byte 0
//   10  u16 baseline: the y on the glyphs' byte grid where letters stand
//   12  i32 units of the grid in one em
//   16  256 entries of 8 bytes: u32 offset of the glyph (0 for none), i16 bearing, i16 advance
//       the glyphs: u32 count of outlines, u32 points of each, then all points as two bytes, x and y (upward)
// Numbers are little-endian. Every outline ends with the point it began with, as the filler doesn't close it.
// A point's column is pen + x - bearing. All glyphs share one bearing, the farthest that any glyph reaches out of
// its advance on either side: the filler's bitmap has that margin, so slanted letters are never cut off.
#pragma once
#include "tools/outline_face.h"
#include <cstdint>
#include <vector>

// Makes the file of all printable Latin-1 characters, curves flattened. False, with a sentence in *error, when a glyph
// can't be loaded or doesn't fit the byte grid.
bool make_outline_font(FT_Face face, std::vector<uint8_t> *file, std::string *error);
