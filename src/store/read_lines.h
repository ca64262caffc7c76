// read_lines.h - the lines of an open file into the rows of bands.
#pragma once
#include <cstdint>

#include "RIO/rio.h"

// What of a file goes where: an inclusive area of its pixels, every `increment`-th column and line of it.
struct line_range {
    int width;                         // of a line of the file
    int x0, y0, x1, y1;
    int increment;
};

enum read_result { READ_WHOLE, READ_SHORT, READ_NO_MEMORY };

// Each shows its progress in message field 2. READ_SHORT: the file ended early; the rest of the rows is zeroed when
// `clear_tail` is set (fresh memory is zero already). `out` rows lie close together.
int read_gray_lines(RFILE *file, int type, const line_range &range, int clear_tail, uint8_t *out);
int read_rgb_lines(RFILE *file, const line_range &range, int clear_tail, uint8_t *const out[3]);
int read_bin_lines(RFILE *file, int width, int height, int clear_tail, uint8_t *out);
