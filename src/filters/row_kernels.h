// row_kernels.h - private to the room: the inner loops of the spatial filters over a row of bytes. There is a plain set and
// two for wider registers; they give the same, byte for byte.
//
// `past_caches`: whole lines of memory go there without passing the caches, to be followed by put_rows_done (row_output.h).
// `out` takes `count` bytes and overlaps no input. Column i of it belongs to columns i to i + 2 of the inputs, with `roberts` to i + 1.
#pragma once
#include <cstdint>

// (weight * centre - its four neighbours) / divisor for weights of 4 to 12.
struct laplacian {
    int weight, divisor;
    uint16_t reciprocal;               // 2^15 over the divisor, rounded up
};

// (total + area / 2) / area for areas of 2 to 127, as ((total + half) * factor >> 16) >> shift.
struct small_mean {
    uint16_t half, factor;
    int shift;
};

constexpr int SMALL_WIDTH = 9;         // columns of a kernel that `mean` takes

struct row_kernels {
    // The three samples that count +1 and the three that count -1 of column 0.
    void (*edge)(uint8_t *out, const uint8_t *const plus[3], const uint8_t *const minus[3], int count, bool past_caches);
    void (*laplace)(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, int count, const laplacian &how, bool past_caches);
    void (*sobel)(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, int count, bool past_caches);
    void (*roberts)(uint8_t *out, const uint8_t *above, const uint8_t *row, int count, bool past_caches);

    // Sums over rows, one a column, in an order of the set's own: `sums` are sums_count(cols) of them, zero at first.
    void (*next_sums)(uint16_t *sums, const uint8_t *entering, const uint8_t *leaving, int cols);
    // Means over `width` columns of sums, cols - width + 1 of them.
    void (*mean)(uint8_t *out, const uint16_t *sums, int cols, int width, const small_mean &how, bool past_caches);
};

inline int64_t sums_count(int cols)
{
    return 3 * ((int64_t{cols} + 1) / 2 + 128);
}

extern const row_kernels row_kernels_plain;
const row_kernels *row_kernels_avx2();     // null when the processor has no AVX2
const row_kernels *row_kernels_avx512();   // null when it has no AVX-512 on bytes
const row_kernels &row_kernels_best();     // of this processor
