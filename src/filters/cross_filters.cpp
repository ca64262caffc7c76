#include "filters/neighbourhood_rows.h"
#include "filters/vector_clones.h"

#include <algorithm>
#include <cstdlib>

namespace {

// No clamp: four times 255 is the largest gradient, and a quarter of it is wanted.
VECTOR_CLONES
void sobel_bytes(uint8_t *__restrict out, const uint8_t *a, const uint8_t *b, const uint8_t *c, int count)
{
    for (int i = 0; i < count; i++) {
        const int16_t gy = int16_t(a[i] + 2 * a[i + 1] + a[i + 2] - c[i] - 2 * c[i + 1] - c[i + 2]);
        const int16_t gx = int16_t(a[i + 2] + 2 * b[i + 2] + c[i + 2] - a[i] - 2 * b[i] - c[i]);
        const int16_t ay = int16_t(std::abs(gy)), ax = int16_t(std::abs(gx));
        const uint16_t larger = uint16_t(ay > ax ? ay : ax);
        out[i] = uint8_t(uint16_t(larger + 2) >> 2);
    }
}

void sobel_byte_row(uint8_t *out, const uint8_t *const *rows, int cols, const void *)
{
    sobel_bytes(out + 1, rows[0], rows[1], rows[2], cols - 2);
}

void sobel_wide_row(uint8_t *out, const int16_t *const *rows, int cols, const void *)
{
    const int16_t *const a = rows[0], *const b = rows[1], *const c = rows[2];
    for (int i = 1; i < cols - 1; i++) {
        const int gy = a[i - 1] + 2 * a[i] + a[i + 1] - c[i - 1] - 2 * c[i] - c[i + 1];
        const int gx = a[i + 1] + 2 * b[i + 1] + c[i + 1] - a[i - 1] - 2 * b[i - 1] - c[i - 1];
        out[i] = clamp_level((std::max(std::abs(gy), std::abs(gx)) + 2) >> 2);
    }
}

VECTOR_CLONES
void roberts_bytes(uint8_t *__restrict out, const uint8_t *above, const uint8_t *row, int count)
{
    for (int i = 0; i < count; i++) {
        const int16_t rising = int16_t(above[i + 1] - row[i]), falling = int16_t(above[i] - row[i + 1]);
        const int16_t up = int16_t(std::abs(rising)), down = int16_t(std::abs(falling));
        out[i] = uint8_t(up > down ? up : down);
    }
}

void roberts_byte_row(uint8_t *out, const uint8_t *const *rows, int cols, const void *)
{
    roberts_bytes(out + 1, rows[0], rows[1], cols - 1);
}

void roberts_wide_row(uint8_t *out, const int16_t *const *rows, int cols, const void *)
{
    const int16_t *const above = rows[0], *const row = rows[1];
    for (int i = 1; i < cols; i++)
        out[i] = clamp_level(std::max(std::abs(above[i] - row[i - 1]), std::abs(above[i - 1] - row[i])));
}

int cross_filter(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, const row_filter &filter)
{
    if (rows < filter.size || cols < filter.size)
        return FILTER_TOO_SMALL;
    const mem_ptr<int16_t> memory = sample_memory(cols);
    if (!memory)
        return FILTER_NO_MEMORY;
    return walk_rows(in, out, map, rows, cols, filter, memory.get());
}

} // namespace

int sobel_l(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols)
{
    return cross_filter(in, out, map, rows, cols, { 3, sobel_byte_row, sobel_wide_row, nullptr });
}

int roberts_l(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols)
{
    return cross_filter(in, out, map, rows, cols, { 2, roberts_byte_row, roberts_wide_row, nullptr });
}
