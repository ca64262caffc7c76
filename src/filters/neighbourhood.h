// neighbourhood.h - the spatial filters as kernels on plain pointers: `rows` by `cols` bytes in, as many out, never in place.
//
//   edge_filter.cpp        directional edges and the Laplacian
//   smooth_filter.cpp      the mean over a rectangle
//   cross_filters.cpp      Sobel and Roberts
//   neighbourhood_rows.*   what they share: samples through the look-up table, rows in their order, borders
//
// All but smoothing take each sample through the signed 16-bit `map` of 256 entries. Results are clamped to 0 and 255. Where the kernel
// does not fit, the image is filled from computed pixels: right, left, then the rows above and below, corners included.
#pragma once
#include <cstdint>

enum filter_result {
    FILTER_DONE = 0, FILTER_STOPPED = -1, FILTER_BAD_ANGLE = -2, FILTER_NO_KERNEL = -101, FILTER_TOO_SMALL = -102,
    FILTER_NO_MEMORY = -103, FILTER_NO_SCRATCH = -104,
};

extern const int32_t edge_base_kernel[9];  // row after row; emphasises edges whose upper side is bright

// Sum of products with `base` turned clockwise by the angle, in degrees, to the nearest eighth of a turn; 0 to 8 eighths.
int edge_filter(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, int angle, const int32_t base[9]);

// (weight * centre - its four neighbours) / (weight - 4), truncated toward zero; at a weight of 4 divided by 1.
int enhance_filter(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, int weight);

// Mean of kernel_rows by kernel_cols bytes, halves up, written at row kernel_rows / 2, column kernel_cols / 2 of its rectangle.
int smooth_filter(const uint8_t *in, uint8_t *out, int rows, int cols, int kernel_rows, int kernel_cols);

// (max(|gy|, |gx|) + 2) >> 2 of the two Sobel gradients.
int sobel_l(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols);

// The larger difference of the two diagonals of 2 by 2 samples, written at the lower right one.
int roberts_l(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols);
