// transpose_strip.h - private to the room: rows become columns in whole lines of memory.
#pragma once
#include <cstdint>

constexpr int STRIP_ROWS = 64;         // of the source; as bytes of the destination one line of memory
constexpr int STRIP_COLS = 16;         // of the source are turned at once

// Turns STRIP_ROWS rows of `cols` bytes, a multiple of STRIP_COLS; all rows of dst begin a line, which is written past the caches.
// put_rows_done (row_output.h) ends a series of them.
typedef void (*strip_transposer)(const uint8_t *src, int64_t src_stride, uint8_t *dst, int64_t dst_stride, int cols);
strip_transposer transpose_strip_way();    // null when the processor cannot
