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
    for (; x + 8 <= width; x += 8) {
        const uint64_t word = word_at(row + x);
        tables[0][word & 255]++;
        tables[1][word >> 8 & 255]++;
        tables[2][word >> 16 & 255]++;
        tables[3][word >> 24 & 255]++;
        tables[4][word >> 32 & 255]++;
        tables[5][word >> 40 & 255]++;
        tables[6][word >> 48 & 255]++;
        tables[7][word >> 56]++;
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

// --- pairs of neighbours -----------------------------------------------------------------------------------------

// Counting two pixels at a time halves the increments, and neighbours are so alike that few of the 65536 counters are in use: in 16 bits
// they stay in the first level cache. Clearing and adding up pays from some millions of pixels on.
constexpr int64_t PAIRS_PAY_FROM = int64_t{1} << 22;
constexpr int PAIRS = 65536;

struct pair_table {
    uint16_t counts[PAIRS];
    uint8_t apart[2048 + 64];          // keeps equal pairs of the two tables off the same cache set
};
pair_table pair_tables[2];             // all zero between calls

void add_pairs(int32_t *counts, unsigned pair, int times)
{
    counts[pair & 255] += times;
    counts[pair >> 8] += times;
}

inline void count_pair(int32_t *counts, uint16_t *table, uint64_t pair)
{
    const unsigned at = unsigned(pair & (PAIRS - 1));
    if (++table[at] == 0) [[unlikely]]
        add_pairs(counts, at, PAIRS);
}

inline void count_word(int32_t *counts, uint64_t word)
{
    count_pair(counts, pair_tables[0].counts, word);
    count_pair(counts, pair_tables[1].counts, word >> 16);
    count_pair(counts, pair_tables[0].counts, word >> 32);
    count_pair(counts, pair_tables[1].counts, word >> 48);
}

void count_row_by_pairs(int32_t *counts, const uint8_t *row, int width)
{
    constexpr int BLOCK = 32;
    int x = 0;
    for (; x + BLOCK <= width; x += BLOCK) {
        const uint64_t a = word_at(row + x), b = word_at(row + x + 8), c = word_at(row + x + 16), d = word_at(row + x + 24);
        const uint64_t turned = a << 8 | a >> 56;
        if (((a ^ turned) | (a ^ b) | (a ^ c) | (a ^ d)) == 0) {
            counts[row[x]] += BLOCK;
            continue;
        }
        count_word(counts, a);
        count_word(counts, b);
        count_word(counts, c);
        count_word(counts, d);
    }
    for (; x < width; x++)
        counts[row[x]]++;
}

void count_by_pairs(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height)
{
    for (int y = 0; y < height; y++)
        count_row_by_pairs(counts, pixels + size_t(y) * stride, width);
    for (pair_table &table : pair_tables) {
        for (unsigned pair = 0; pair < PAIRS; pair++)
            add_pairs(counts, pair, table.counts[pair]);
        memset(table.counts, 0, sizeof table.counts);
    }
}

} // namespace

void hist_count(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height, int step)
{
    if (step == 1 && int64_t{width} * height >= PAIRS_PAY_FROM) {
        count_by_pairs(counts, pixels, stride, width, height);
        return;
    }
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
