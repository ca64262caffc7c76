#include "enhance/hist_kernel.h"

#include <cstring>

namespace {

// Runs of one level would make each increment wait for the one before it, so neighbours count in tables of their own.
constexpr int TABLES = 8;
typedef uint32_t count_tables[TABLES][256];

void count_row(count_tables &tables, const uint8_t *row, int width)
{
    int x = 0;
    for (; x + 8 <= width; x += 8) {
        uint64_t word;
        memcpy(&word, row + x, 8);
        for (int i = 0; i < TABLES; i++)
            tables[i][word >> (8 * i) & 255]++;
    }
    for (; x < width; x++)
        tables[x & (TABLES - 1)][row[x]]++;
}

void count_row_sampled(count_tables &tables, const uint8_t *row, int width, int step)
{
    int lane = 0;
    for (int64_t x = 0; x < width; x += step)
        tables[lane++ & (TABLES - 1)][row[x]]++;
}

} // namespace

void hist_count(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height, int step)
{
    count_tables tables = {};
    for (int64_t y = 0; y < height; y += step) {
        const uint8_t *row = pixels + size_t(y) * stride;
        if (step == 1)
            count_row(tables, row, width);
        else
            count_row_sampled(tables, row, width, step);
    }
    for (int level = 0; level < 256; level++)
        for (int i = 0; i < TABLES; i++)
            counts[level] += int32_t(tables[i][level]);
}
