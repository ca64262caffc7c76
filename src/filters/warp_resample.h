// warp_resample.h - 8-bit or packed samples at given coordinates, one run of output pixels at a time.
// Any coordinate may come, NaN and infinities too: what is not inside the image gives 0. row_start[i] is where input row i begins, in
// pixels: 64 bits, as images may have more than 2^31 of them.
#pragma once
#include <cstdint>

enum warp_method { WARP_NEAREST = 1, WARP_BILINEAR = 2, WARP_CUBIC = 3 };
enum warp_kind { WARP_BITS = 1, WARP_BYTES = 2 };

constexpr int CUBIC_ENTRIES = 101;     // fractions of 0.00 to 1.00
constexpr double CUBIC_DEFAULT = -0.5;

// Cubic convolution weights, in 2048ths truncated towards zero, of the samples one behind the interpolation cell, at its near side, at its
// far side and one beyond. Any parameter may come; weights beyond 32 bits are held at the nearest that there is.
void cubic_weights(double parameter, int32_t *w0, int32_t *w1, int32_t *w2, int32_t *w3);

// `count` bytes at (rows[i], cols[i]). 0 where a coordinate is negative or not below in_rows or in_cols.
//   nearest    the pixel that the coordinate lies in
//   bilinear   between the four pixel centres around it; 12-bit fractions, truncated
//   cubic      over 4 x 4 pixel centres; fractions of 100ths, truncated
// The last two take 0.5 from each coordinate in the arrays themselves, and repeat edge pixels. Another method writes nothing.
void resample_row(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, int count, int method, double *rows, double *cols,
                  const int64_t *row_start, const int32_t *w0, const int32_t *w1, const int32_t *w2, const int32_t *w3);

// Nearest bits, low bit of a byte first, for columns c_first to c_last of row out_row of an output whose rows have c_last - c_first + 1
// bits: the bit of column c is out_row * (c_last - c_first + 1) + c, also where c_first is not 0. This is meant. Other bits stay.
// rows[0] is that of c_first. A coordinate between -1 and 0 is inside.
void resample_bits(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, int c_first, int c_last, const double *rows,
                   const double *cols, int out_row, const int64_t *row_start);

// `count` coordinates from (rs, cs) to (re, ce), by repeated addition of (end - start) / (count - 1).
void lerp_run(double rs, double cs, double re, double ce, int count, double *rows, double *cols);

// The nearest bytes at what lerp_run makes. Unlike with resample_row a coordinate between -1 and 0 is inside. This is meant.
void nearest_run(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, int count, double rs, double cs, double re, double ce,
                 const int64_t *row_start);
