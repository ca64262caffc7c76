// scan_kernels.h - the inner loops of the scan routines, on plain pointers. A line of the window is made in two steps: the source
// bytes under its pixels are collected (sample_), and turned into display values (map_). None of them can fail.
//
// Some kernels have twins for processors with AVX2 and with AVX-512, chosen when the program starts; all give the same bytes.
#pragma once
#include <cstddef>
#include <cstdint>

// --- collecting source bytes -------------------------------------------------------------------------------

// out[i] = row[columns[i]]. The columns ascend; `size` is how many bytes of row may be read.
void sample_columns(uint8_t *out, const uint8_t *row, const int32_t *columns, int count, int64_t size);

// out[i] = row[i * step], reading no byte at or behind row[size].
void sample_steps(uint8_t *out, const uint8_t *row, int step, int count, int64_t size);

// A walk through a block in any direction, in 16.16: pixel i of line k lies at u + i * a + k * b, v + i * c + k * d.
struct slanted_walk {
    const uint8_t *pixels;
    const int64_t *row_offsets;        // bytes from pixels to each row
    int64_t stride;                    // the same between two rows
    int64_t size;                      // bytes from pixels on that may be read
    int64_t u, v, a, b, c, d;
};

// The pixels of a line that are wanted; all of them lie in the block. None: last is below first.
struct line_part {
    int first, last;
};

// out[k * out_stride + i] is pixel i of line k, for the pixels of each of the lines' parts; other bytes of out are left alone.
void sample_slant(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines);

// The same for packed bits, of which pixel 0 is the top bit of each 16-bit word: 255 for a one, 0 for a zero.
void sample_bits_slant(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines);
void sample_bits_columns(uint8_t *out, const uint8_t *row, const int32_t *columns, int count);

// --- turning them into display values ----------------------------------------------------------------------

void map_8(uint8_t *out, const uint8_t *in, int count, const uint8_t table[256]);
void map_16(uint16_t *out, const uint8_t *in, int count, const uint16_t table[256]);
// Levels of red, green and blue, and the same at their places in a packed colour: packed[p][i] = level[p][i] << 16, 8, 0.
struct colour_tables {
    uint8_t  level[3][256];
    uint32_t packed[3][256];
};

// A grey: packed[i] has level[i] three times.
struct grey_tables {
    uint8_t  level[256];
    uint32_t packed[256];
};

void map_grey(uint32_t *out, const uint8_t *in, int count, const grey_tables &tables);
void map_rgb(uint32_t *out, const uint8_t *red, const uint8_t *green, const uint8_t *blue, int count, const colour_tables &tables);
// Dithered: pixel i takes tables[(x + i) & 3]. x is where the line begins, in window pixels.
void map_dither(uint8_t *out, const uint8_t *in, int count, int x, const uint8_t tables[4][256]);
// Repeats display values where the view is zoomed in: out[i] = values[columns[i] - columns[0]].
void repeat_8(uint8_t *out, const uint8_t *values, const int32_t *columns, int count);
void repeat_16(uint16_t *out, const uint16_t *values, const int32_t *columns, int count);
void repeat_32(uint32_t *out, const uint32_t *values, const int32_t *columns, int count);
// Words of 16 pixels, the first pixel in the top bit; what is left of the last word is 0.
void map_bits(uint16_t *out, const uint8_t *in, int count);

// --- the twins ---------------------------------------------------------------------------------------------

struct scan_kernel_set {
    void (*columns)(uint8_t *, const uint8_t *, const int32_t *, int, int64_t);
    void (*steps)(uint8_t *, const uint8_t *, int, int, int64_t);
    void (*slant)(uint8_t *, int64_t, const slanted_walk &, const line_part *, int);
    void (*map_8)(uint8_t *, const uint8_t *, int, const uint8_t *);
    void (*map_grey)(uint32_t *, const uint8_t *, int, const grey_tables &);
    void (*map_rgb)(uint32_t *, const uint8_t *, const uint8_t *, const uint8_t *, int, const colour_tables &);
    void (*repeat_32)(uint32_t *, const uint32_t *, const int32_t *, int);
};
extern const scan_kernel_set scan_kernels_plain;
const scan_kernel_set *scan_kernels_avx2();    // null when the processor has no AVX2
const scan_kernel_set *scan_kernels_avx512();  // null when it has no AVX-512 with byte permutations
