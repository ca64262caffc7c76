// outline_text.h - writes text into black and white pictures with the outline fonts that outline_font makes.
#pragma once
#include "tools/bit_picture.h"
#include <string>
#include <vector>

struct outline_text_font {
    std::vector<uint8_t> file;
    int baseline = 0, em_units = 1;
};

// Takes a whole "StrFont" file of 256 entries. False when it isn't one.
bool outline_text_open(outline_text_font *font, std::vector<uint8_t> file);

// Length of the text's advance in pixels, at `em_pixels` pixels an em.
float outline_text_width(const outline_text_font &font, const std::string &text, float em_pixels);

// Draws the text with its baseline beginning at the place. `halo` pixels about the letters are cleared first.
void outline_text_draw(bit_picture *picture, const outline_text_font &font, float x, float y, const std::string &text,
                       float em_pixels, int halo);
