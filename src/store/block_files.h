// block_files.h - cuts the active image into many files by a block descriptor: a text whose lines hold a rectangle and one
// or three file names.
#pragma once
#include "store/write_files.h"

void write_cot_blocks();               // asks for the descriptor; an empty answer takes the last one

// One line of a descriptor.
struct block_line {
    double corner[4];                  // x0 y0 x1 y1: held pixels, or displayed coordinates of the band
    char names[3][160];
    int items;                         // 5 or 7; below 0 an empty line; anything else is an error
};
block_line parse_block_line(const char *text);

// Held pixels of a block. In world mode the corners are taken back through the band's matrix and kept at or above 0.
held_area block_area(const block_line &block, bool world, const double matrix[4][4]);
