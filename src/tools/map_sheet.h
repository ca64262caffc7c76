// map_sheet.h - the printed map of a part of the landscape: contour lines, water, roads, houses, grid, names, legend.
#pragma once
#include "tools/bit_picture.h"
#include "tools/outline_text.h"
#include "tools/scene.h"

static constexpr int SHEET_WIDTH = 5000, SHEET_HEIGHT = 7000;

struct sheet_fonts {
    outline_text_font plain, bold, italic;
};

// Draws the sheet of SHEET_WIDTH x SHEET_HEIGHT pixels. False without memory.
bool draw_map_sheet(const landscape &scenery, const sheet_fonts &fonts, bit_picture *sheet);
