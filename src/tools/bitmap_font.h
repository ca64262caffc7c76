// bitmap_font.h - makes a bitmap font of a given line height from an outline font, hinted, one bit a pixel.
#pragma once
#include "tools/font_file.h"
#include "tools/outline_face.h"

// Renders all printable Latin-1 characters in the largest size whose glyphs fit lines of that many pixels
// (8 to 100), and places them as services/builtin_fonts.h says: one baseline, no glyph out of its line,
// no negative x offset, no glyph wider than its advance; the space is one blank cell.
// False, with a sentence in *error, when the font can't be rendered.
bool make_bitmap_font(FT_Face face, int line_height, font_set *set, std::string *error);
