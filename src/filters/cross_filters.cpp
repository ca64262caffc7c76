#include "filters/neighbourhood_rows.h"
#include "filters/row_kernels.h"

#include <algorithm>
#include <cstdlib>

namespace {

void sobel_byte_row(uint8_t *out, const uint8_t *const *rows, int count, const void *, bool past_caches)
{
    row_kernels_best().sobel(out, rows[0], rows[1], rows[2], count, past_caches);
}

void sobel_wide_row(uint8_t *out, const int16_t *const *rows, int count, const void *, bool)
{
    const int16_t *const a = rows[0], *const b = rows[1], *const c = rows[2];
    for (int i = 0; i < count; i++) {
        const int gy = a[i] + 2 * a[i + 1] + a[i + 2] - c[i] - 2 * c[i + 1] - c[i + 2];
        const int gx = a[i + 2] + 2 * b[i + 2] + c[i + 2] - a[i] - 2 * b[i] - c[i];
        out[i] = clamp_level((std::max(std::abs(gy), std::abs(gx)) + 2) >> 2);
    }
}

void roberts_byte_row(uint8_t *out, const uint8_t *const *rows, int count, const void *, bool past_caches)
{
    row_kernels_best().roberts(out, rows[0], rows[1], count, past_caches);
}

void roberts_wide_row(uint8_t *out, const int16_t *const *rows, int count, const void *, bool)
{
    const int16_t *const above = rows[0], *const row = rows[1];
    for (int i = 0; i < count; i++)
        out[i] = clamp_level(std::max(std::abs(above[i + 1] - row[i]), std::abs(above[i] - row[i + 1])));
}

int cross_filter(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, const row_filter &filter)
{
    if (rows < filter.size || cols < filter.size)
        return FILTER_TOO_SMALL;
    const mem_ptr<int16_t> memory = sample_memory();
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
