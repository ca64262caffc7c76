// neighbourhood_rows.h - private to the filters: walks an image through a look-up table and fills the borders.
//
// The image is walked in blocks, so that several streams of memory are under way at a time and what a row shares with the next one is
// still close to the processor.
#pragma once
#include <cstdint>

#include "filters/neighbourhood.h"
#include "mem.h"

constexpr int BLOCK_ROWS = 8, BLOCK_COLS = 256;

// Kernel of a part of a row: writes `count` bytes; `rows` are its samples from the top, each from the column of the kernel's left side
// at out[0]. `past_caches` allows what row_kernels.h says. The byte twin serves tables whose entries all lie in 0 to 255, and must give what the wide one gives.
typedef void (*byte_row_kernel)(uint8_t *out, const uint8_t *const *rows, int count, const void *parameters, bool past_caches);
typedef void (*wide_row_kernel)(uint8_t *out, const int16_t *const *rows, int count, const void *parameters, bool past_caches);

struct row_filter {
    int size;                          // 2 or 3: the kernel's rows and columns
    byte_row_kernel byte_row;          // may be null
    wide_row_kernel wide_row;
    const void *parameters;
};

mem_ptr<int16_t> sample_memory();          // for walk_rows; null, and the words on the error stream, without memory
int16_t *told_of_memory(void *block);      // the block; null is told on the error stream

// FILTER_DONE or FILTER_STOPPED. `memory` is from sample_memory. The image is not smaller than the kernel.
int walk_rows(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, const row_filter &filter, int16_t *memory);

// Progress and the stop test before row `row`. 0 to go on.
int stopped_at_row(int row, int rows);

inline uint8_t clamp_level(int64_t sum)
{
    return uint8_t(sum < 0 ? 0 : sum > 255 ? 255 : sum);
}

// Computed pixels fill columns c0 to c1 of rows r0 to r1.
struct computed_area {
    int r0, c0, r1, c1;
};
// Margins of row r, whose columns c0 to c1 have been computed.
void fill_margins(uint8_t *out, int r, int cols, const computed_area &computed);
// The rows above and below; the last step.
void fill_borders(uint8_t *out, int rows, int cols, const computed_area &computed);
