// scan_geometry.h - where the pixels of a window lie in the source. Positions are in source pixels, a pixel covering the range
// from its number up to the next; in 16.16 they are kept in 64 bits, so that sources of any size can be walked.
#pragma once
#include <cstdint>

// Affine parts of a source-to-window matrix and their inverse.
struct scan_steps {
    double p, q, r, s;                 // one source pixel right moves p, q in the window; one down r, s
    double origin_x, origin_y;         // window position of source point 0, 0
    double right_x, right_y;           // one window pixel right moves this much in the source: a, c
    double down_x, down_y;             // one down: b, d
    int64_t a, b, c, d;                // the same four in 16.16, truncated
};

struct window_rect {
    int x0, y0, x1, y1;                // inclusive
};

// Steps of 32767 source pixels and more, and singular matrices, are refused: 0, and nothing can be painted.
// matrix: 16 values row by row, applied to columns (x, y, 0, 1).
int scan_steps_of(const double matrix[16], scan_steps *steps_out);

// Source position of a window point.
void scan_source_point(const scan_steps &steps, double x_window, double y_window, double *x_out, double *y_out);

// Of a position that is far outside everything the result is limited, which keeps it outside.
int64_t to_16_16(double position);

// Where an axis-aligned walk over a block begins.
struct block_start {
    int x, y;                          // first window pixel
    int64_t u, v;                      // its position in the block, 16.16, not negative
};

// 0 when no pixel of the block lies in the clip rectangle.
int scan_start(const scan_steps &steps, const window_rect &clip, int block_x, int block_y, int64_t width, int64_t height, block_start *start_out);

// Fills columns with the source column of each window pixel from the start to the right edge of the clip: the number of columns.
int column_table(const block_start &start, const scan_steps &steps, const window_rect &clip, int64_t width, int32_t *columns);

// The steps i from *first up to *last, within those given, for which 0 <= position + i * step < limit. 0 when there are none.
int span_inside(int64_t position, int64_t step, int64_t limit, int *first, int *last);
