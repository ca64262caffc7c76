// orthogonal.h - rows and columns reversed and exchanged, without interpolation: `rows` by `cols` bytes in, as many out, never in place.
#pragma once
#include <cstdint>

constexpr int PASS_STOPPED = -99;

int flip_band(const uint8_t *src, uint8_t *dst, int rows, int cols);    // the order of the rows. 0 or PASS_STOPPED
int mirror_band(const uint8_t *src, uint8_t *dst, int rows, int cols);  // each row. 0 or PASS_STOPPED

// dst has `cols` rows of `rows` bytes. 0; -1 or -2 without memory for its tiles, which planes above 1048576 bytes need; -4 stopped.
int transpose_band(const uint8_t *src, uint8_t *dst, int rows, int cols);

// The same for a block of a plane, in any memory; rows are `src_stride` and `dst_stride` bytes apart. Cannot fail.
void transpose_block(const uint8_t *src, int64_t src_stride, uint8_t *dst, int64_t dst_stride, int rows, int cols);
