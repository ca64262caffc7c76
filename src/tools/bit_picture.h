// bit_picture.h - a black and white picture, as raw PBM has it: 1 is black, bit 7 leftmost, rows of whole bytes.
#pragma once
#include "mem.h"
#include <cstdint>

struct bit_picture {
    int width = 0, height = 0, row_bytes = 0;
    mem_ptr<uint8_t> bits;

    uint8_t *row(int y) { return bits.get() + int64_t{ y } * row_bytes; }
};

// All white. False without memory.
bool bit_picture_make(bit_picture *picture, int width, int height);

// What lies outside the picture is left out by all of these. Rectangles are inclusive.
void set_pixel(bit_picture *picture, int x, int y, bool black);
void fill_box(bit_picture *picture, int x0, int y0, int x1, int y1, bool black);
void draw_frame(bit_picture *picture, int x0, int y0, int x1, int y1, int line_width);
void draw_line(bit_picture *picture, float x0, float y0, float x1, float y1, float line_width);
