// warp_strip.h - private to the warps: a strip of output rows of an affine warp at once, so that what a row reads of the image is still
// close when the next rows read it.
#pragma once
#include <cstdint>

#include "filters/warp_tile.h"

constexpr int STRIP_ROWS = 16;

// A row of the output, as the straight line in the image that it is.
struct warp_line {
    double row, col, row_end, col_end;
};

// STRIP_ROWS rows of `out_cols` bytes. Row by row the same as nearest_run for nearest, lerp_run and resample_row for the others.
void warp_strip(const warp_source &in, uint8_t *out, int out_cols, const warp_line *lines, int method, const cubic_table &table);
