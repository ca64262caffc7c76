// neighbourhood_rows.h - private to the filters: walks the rows of an image through a look-up table and fills the borders.
#pragma once
#include <cstdint>

#include "filters/neighbourhood.h"
#include "mem.h"

// Kernel of one row: `rows` are its samples from the top, `cols` each; writes out[kernel / 2] up to where the kernel's right side is
// at the last column. The byte twin serves tables whose entries all lie in 0 to 255, and must give what the wide one gives.
typedef void (*byte_row_kernel)(uint8_t *out, const uint8_t *const *rows, int cols, const void *parameters);
typedef void (*wide_row_kernel)(uint8_t *out, const int16_t *const *rows, int cols, const void *parameters);

struct row_filter {
    int size;                          // 2 or 3: the kernel's rows and columns
    byte_row_kernel byte_row;          // may be null
    wide_row_kernel wide_row;
    const void *parameters;
};

constexpr int SAMPLE_ROWS = 3;         // and one more for the row that is being computed
mem_ptr<int16_t> sample_memory(int cols);  // for walk_rows; null, and the words on the error stream, without memory
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
// A computed row, in `row` from column c0 on, gets its margins and goes to its place. Rows come from r0 to r1.
void put_computed_row(uint8_t *out, uint8_t *row, int r, int rows, int cols, const computed_area &computed);
// The rows above and below; the last step.
void fill_borders(uint8_t *out, int rows, int cols, const computed_area &computed);
