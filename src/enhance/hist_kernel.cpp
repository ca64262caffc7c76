#include "enhance/hist_kernel.h"

#include <cstring>

namespace {

inline uint64_t word_at(const uint8_t *bytes)
{
    uint64_t word;
    memcpy(&word, bytes, sizeof word);
    return word;
}

// --- single levels -----------------------------------------------------------------------------------------------

// Runs of one level would make each increment wait for the one before it, so neighbours count in tables of their own.
constexpr int TABLES = 8;
typedef uint32_t count_tables[TABLES][256];

void count_row(count_tables &tables, const uint8_t *row, int width)
{
    int x = 0;
    for (; x + TABLES <= width; x += TABLES)
        for (int lane = 0; lane < TABLES; lane++)
            tables[lane][row[x + lane]]++;
    for (; x < width; x++)
        tables[x & (TABLES - 1)][row[x]]++;
}

// The next row is asked for while this one is counted: sampled rows are too far apart for the processor to guess.
void count_row_sampled(count_tables &tables, const uint8_t *row, const uint8_t *next_row, int width, int step)
{
    constexpr int CACHE_LINE = 64;
    const int64_t span = int64_t{step} * TABLES;
    int64_t x = 0;
    for (; x + span <= width; x += span) {
        for (int64_t ahead = 0; ahead < span; ahead += CACHE_LINE)
            __builtin_prefetch(next_row + x + ahead);
        const uint8_t *sample = row + x;
        for (int lane = 0; lane < TABLES; lane++, sample += step)
            tables[lane][*sample]++;
    }
    for (; x < width; x += step)
        tables[0][row[x]]++;
}

void count_singly(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height, int step)
{
    count_tables tables = {};
    for (int64_t y = 0; y < height; y += step) {
        const uint8_t *row = pixels + size_t(y) * stride;
        if (step == 1)
            count_row(tables, row, width);
        else
            count_row_sampled(tables, row, y + step < height ? row + size_t(step) * stride : row, width, step);
    }
    for (int level = 0; level < 256; level++)
        for (int i = 0; i < TABLES; i++)
            counts[level] += int32_t(tables[i][level]);
}

// --- pairs of neighbours -----------------------------------------------------------------------------------------

// Counting two pixels at a time halves the increments, and neighbours are so alike that few of the 65536 counters are in use: in 16 bits
// they stay in the first level cache. Clearing and adding up pays from some millions of pixels on.
constexpr int64_t PAIRS_PAY_FROM = int64_t{1} << 22;
constexpr int PAIRS = 65536;
uint16_t pair_counts[PAIRS];           // all zero between calls

void add_pairs(int32_t *counts, unsigned pair, int times)
{
    counts[pair & 255] += times;
    counts[pair >> 8] += times;
}

inline void count_pair(int32_t *counts, const uint8_t *pixels)
{
    uint16_t pair;
    memcpy(&pair, pixels, sizeof pair);
    if (++pair_counts[pair] == 0) [[unlikely]]
        add_pairs(counts, pair, PAIRS);
}

// Areas of one level, where each increment would wait for the one before it, are counted without any.
inline bool all_alike(const uint8_t *block)
{
    const uint64_t word = word_at(block);
    return word == word_at(block + 8) && word == (word << 8 | word >> 56) && word == word_at(block + 16) && word == word_at(block + 24);
}

void count_row_by_pairs(int32_t *counts, const uint8_t *row, int width)
{
    constexpr int BLOCK = 32;
    int x = 0;
    for (; x + BLOCK <= width; x += BLOCK) {
        if (all_alike(row + x)) {
            counts[row[x]] += BLOCK;
            continue;
        }
        for (int i = 0; i < BLOCK; i += 2)
            count_pair(counts, row + x + i);
    }
    for (; x < width; x++)
        counts[row[x]]++;
}

void count_by_pairs(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height)
{
    for (int y = 0; y < height; y++)
        count_row_by_pairs(counts, pixels + size_t(y) * stride, width);
    for (unsigned pair = 0; pair < PAIRS; pair++)
        add_pairs(counts, pair, pair_counts[pair]);
    memset(pair_counts, 0, sizeof pair_counts);
}

} // namespace

void hist_count_plain(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height, int step)
{
    if (step == 1 && int64_t{width} * height >= PAIRS_PAY_FROM)
        count_by_pairs(counts, pixels, stride, width, height);
    else
        count_singly(counts, pixels, stride, width, height, step);
}

void hist_count(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height, int step)
{
    if (step != 1 || !hist_count_avx512(counts, pixels, stride, width, height))
        hist_count_plain(counts, pixels, stride, width, height, step);
}
