#include "display/scan_kernels.h"

// --- plain -------------------------------------------------------------------------------------------------

static void columns_plain(uint8_t *out, const uint8_t *row, const int32_t *columns, int count, int64_t)
{
    for (int i = 0; i < count; i++)
        out[i] = row[columns[i]];
}

static void steps_plain(uint8_t *out, const uint8_t *row, int step, int count, int64_t)
{
    for (int i = 0; i < count; i++, row += step)
        out[i] = *row;
}

static void slant_plain(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines)
{
    for (int k = 0; k < lines; k++, out += out_stride) {
        int64_t u = walk.u + parts[k].first * walk.a + k * walk.b, v = walk.v + parts[k].first * walk.c + k * walk.d;
        for (int i = parts[k].first; i <= parts[k].last; i++, u += walk.a, v += walk.c)
            out[i] = walk.pixels[walk.row_offsets[v >> 16] + (u >> 16)];
    }
}

static void map_8_plain(uint8_t *out, const uint8_t *in, int count, const uint8_t *table)
{
    for (int i = 0; i < count; i++)
        out[i] = table[in[i]];
}

static void map_grey_plain(uint32_t *out, const uint8_t *in, int count, const grey_tables &tables)
{
    for (int i = 0; i < count; i++)
        out[i] = tables.packed[in[i]];
}

static void map_rgb_plain(uint32_t *out, const uint8_t *red, const uint8_t *green, const uint8_t *blue, int count, const colour_tables &tables)
{
    for (int i = 0; i < count; i++)
        out[i] = tables.packed[0][red[i]] | tables.packed[1][green[i]] | tables.packed[2][blue[i]];
}

static void repeat_32_plain(uint32_t *out, const uint32_t *values, const int32_t *columns, int count)
{
    for (int i = 0; i < count; i++)
        out[i] = values[columns[i] - columns[0]];
}

const scan_kernel_set scan_kernels_plain { columns_plain, steps_plain, slant_plain, map_8_plain, map_grey_plain, map_rgb_plain, repeat_32_plain };

// --- the best that the processor has -----------------------------------------------------------------------

static const scan_kernel_set &kernels()
{
    static const scan_kernel_set *const best = scan_kernels_avx512() ? scan_kernels_avx512()
                                               : scan_kernels_avx2() ? scan_kernels_avx2()
                                                                     : &scan_kernels_plain;
    return *best;
}

void sample_columns(uint8_t *out, const uint8_t *row, const int32_t *columns, int count, int64_t size)
{
    kernels().columns(out, row, columns, count, size);
}

void sample_steps(uint8_t *out, const uint8_t *row, int step, int count, int64_t size)
{
    kernels().steps(out, row, step, count, size);
}

void sample_slant(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines)
{
    kernels().slant(out, out_stride, walk, parts, lines);
}

void map_8(uint8_t *out, const uint8_t *in, int count, const uint8_t table[256])
{
    kernels().map_8(out, in, count, table);
}

void map_grey(uint32_t *out, const uint8_t *in, int count, const grey_tables &tables)
{
    kernels().map_grey(out, in, count, tables);
}

void map_rgb(uint32_t *out, const uint8_t *red, const uint8_t *green, const uint8_t *blue, int count, const colour_tables &tables)
{
    kernels().map_rgb(out, red, green, blue, count, tables);
}

void repeat_32(uint32_t *out, const uint32_t *values, const int32_t *columns, int count)
{
    kernels().repeat_32(out, values, columns, count);
}

// --- with one form only ------------------------------------------------------------------------------------

// Rows are 16-bit words with the low byte first, so the byte of pixel x is the other one of its pair.
static uint8_t bit_of(const uint8_t *row, int64_t x)
{
    return uint8_t(-(row[(x >> 3) ^ 1] >> (7 - (x & 7)) & 1));
}

void sample_bits_columns(uint8_t *out, const uint8_t *row, const int32_t *columns, int count)
{
    for (int i = 0; i < count; i++)
        out[i] = bit_of(row, columns[i]);
}

void sample_bits_slant(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines)
{
    for (int k = 0; k < lines; k++, out += out_stride) {
        int64_t u = walk.u + parts[k].first * walk.a + k * walk.b, v = walk.v + parts[k].first * walk.c + k * walk.d;
        for (int i = parts[k].first; i <= parts[k].last; i++, u += walk.a, v += walk.c)
            out[i] = bit_of(walk.pixels + walk.row_offsets[v >> 16], u >> 16);
    }
}

void map_16(uint16_t *out, const uint8_t *in, int count, const uint16_t table[256])
{
    for (int i = 0; i < count; i++)
        out[i] = table[in[i]];
}

void repeat_8(uint8_t *out, const uint8_t *values, const int32_t *columns, int count)
{
    for (int i = 0; i < count; i++)
        out[i] = values[columns[i] - columns[0]];
}

void repeat_16(uint16_t *out, const uint16_t *values, const int32_t *columns, int count)
{
    for (int i = 0; i < count; i++)
        out[i] = values[columns[i] - columns[0]];
}

void map_dither(uint8_t *out, const uint8_t *in, int count, int x, const uint8_t tables[4][256])
{
    for (int i = 0; i < count; i++)
        out[i] = tables[(x + i) & 3][in[i]];
}

void map_bits(uint16_t *out, const uint8_t *in, int count)
{
    for (int i = 0; i < count; i += 16) {
        uint32_t word = 0;
        for (int k = 0; k < 16 && i + k < count; k++)
            word |= (in[i + k] & 1u) << (15 - k);
        *out++ = uint16_t(word);
    }
}
