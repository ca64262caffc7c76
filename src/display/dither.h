// dither.h - ordered dither: which slot stands for a grey or a colour at a place of the screen. The tables are built by vlt_program.
#pragma once
#include <cstdint>

constexpr int DITHER_CELLS = 16;       // cell (y & 3) * 4 + (x & 3)
extern const int16_t dither_thresholds[DITHER_CELLS];

// What one-band images are painted with on this display.
enum dither_mode {
    DITHER_COLOUR,                     // colour cube; grey images have slots of their own
    DITHER_MONO,                       // grey images are dithered too, with grey_levels
};
extern dither_mode dither_kind;

inline int dither_cell(int x, int y) { return (y & 3) * 4 + (x & 3); }

int dither_mono(int x, int y, int value);               // value 0 to 255; the slot
int dither_colour(int x, int y, int r, int g, int b);   // 0 to 255 each; the slot

// Builds dither_table, gamma_table and level_values for `levels` levels per primary, 2 to 16. A gamma of 0 or below stands for
// a table that carries the gamma found in gamma_table: the levels take it over and gamma_table becomes straight.
void dither_build(double gamma, int levels);

// Level index of dither_table for a proportion 0 to 1 of the full range at a threshold.
int dither_level(double proportion, int levels, int threshold);
