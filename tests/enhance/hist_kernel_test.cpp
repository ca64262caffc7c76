#include "enhance/hist_kernel.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

namespace {

struct plane {
    int width, height, stride;
    std::vector<uint8_t> bytes;
};

plane make_plane(int width, int height, int stride, const std::function<int(int x, int y)> &level)
{
    plane p { width, height, stride, std::vector<uint8_t>(size_t(stride) * size_t(height), 99) };
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++)
            p.bytes[size_t(y) * size_t(stride) + size_t(x)] = uint8_t(level(x, y));
    return p;
}

void expect_same(const int32_t *have, const int32_t *want, const plane &p, int step, const char *by)
{
    for (int level = 0; level < 256; level++)
        EXPECT_EQ(have[level], want[level]) << by << ": level " << level << " step " << step << " of " << p.width << " x " << p.height;
}

// Against counting one pixel after the other, by each way there is.
void expect_counts(const plane &p, int step)
{
    int32_t want[256] = {}, chosen[256] = {}, plain[256] = {}, blocks[256] = {};
    for (int y = 0; y < p.height; y += step)
        for (int x = 0; x < p.width; x += step)
            want[p.bytes[size_t(y) * size_t(p.stride) + size_t(x)]]++;
    hist_count(chosen, p.bytes.data(), size_t(p.stride), p.width, p.height, step);
    expect_same(chosen, want, p, step, "chosen");
    hist_count_plain(plain, p.bytes.data(), size_t(p.stride), p.width, p.height, step);
    expect_same(plain, want, p, step, "plain");
    if (step == 1 && hist_count_avx512(blocks, p.bytes.data(), size_t(p.stride), p.width, p.height))
        expect_same(blocks, want, p, step, "blocks");
}

} // namespace

TEST(HistKernel, CountsEveryPixelOfOddSizes)
{
    std::mt19937 random(1);
    for (const int width : { 1, 7, 8, 9, 31, 33, 250 })
        expect_counts(make_plane(width, 5, width + 3, [&](int, int) { return int(random() & 255); }), 1);
}

TEST(HistKernel, TakesEveryNthPixelOfEveryNthRowTheFirstIncluded)
{
    // 7 x 4 at step 3: columns 0, 3, 6 of rows 0 and 3.
    const plane p = make_plane(7, 4, 7, [](int x, int y) { return 10 * y + x; });
    int32_t counts[256] = {};
    hist_count(counts, p.bytes.data(), 7, 7, 4, 3);
    for (const int level : { 0, 3, 6, 30, 33, 36 })
        EXPECT_EQ(counts[level], 1) << level;
    EXPECT_EQ(counts[1], 0);
    EXPECT_EQ(counts[10], 0);
}

TEST(HistKernel, AddsToWhatIsThere)
{
    int32_t counts[256] = {};
    const uint8_t row[] = { 4, 4, 5 };
    counts[4] = 100;
    hist_count(counts, row, 3, 3, 1, 1);
    EXPECT_EQ(counts[4], 102);
    EXPECT_EQ(counts[5], 1);
}

TEST(HistKernel, EveryStepAgreesWithPlainCounting)
{
    std::mt19937 random(2);
    const plane p = make_plane(301, 77, 320, [&](int, int) { return int(random() % 7 * 40); });
    for (int step = 1; step <= 6; step++)
        expect_counts(p, step);
}

TEST(HistKernel, BlocksAndTheStripsBesideAndBelowThem)
{
    std::mt19937 random(5);
    for (const int width : { 63, 64, 65, 128, 200 })
        for (const int height : { 7, 8, 9, 24 })
            expect_counts(make_plane(width, height, width + 5, [&](int, int) { return int(random() & 255); }), 1);
}

TEST(HistKernel, EachLevelAloneInABlock)
{
    for (int level = 0; level < 256; level++)
        expect_counts(make_plane(64, 8, 64, [&](int x, int y) { return x == level % 64 && y == level / 32 ? level : 255 - level; }), 1);
}

// Planes that are large enough to be counted by pairs.
TEST(HistKernel, ALargeNoisyPlaneWithRaggedRows)
{
    std::mt19937 random(3);
    expect_counts(make_plane(2113, 2001, 2120, [&](int, int) { return int(random() & 255); }), 1);
}

TEST(HistKernel, ALargePlaneOfTwoAlternatingLevelsPassesTheRangeOfTheSmallCounters)
{
    // 2100 x 2001 pixels: over two million equal pairs, far more than the 65536 that a counter of 16 bits holds.
    expect_counts(make_plane(2100, 2001, 2100, [](int x, int) { return x & 1 ? 200 : 60; }), 1);
}

TEST(HistKernel, ALargePlaneOfOneLevel)
{
    expect_counts(make_plane(2049, 2050, 2049, [](int, int) { return 255; }), 1);
}

TEST(HistKernel, CallsDoNotLeaveCountsToTheNext)
{
    const plane p = make_plane(2100, 2001, 2100, [](int x, int y) { return (x ^ y) & 255; });
    expect_counts(p, 1);
    expect_counts(p, 1);
}
