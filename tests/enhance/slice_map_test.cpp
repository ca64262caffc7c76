#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "enhance/slice_map.h"

namespace {

struct SliceMap : testing::Test {
    int16_t colours[256];
    int32_t hist[256] = {};
    SliceMap() { std::fill(colours, colours + 256, int16_t(99)); }   // a slice from before
    void expect_range(int low, int high, int colour)
    {
        for (int level = low; level <= high; level++)
            EXPECT_EQ(colours[level], colour) << "level " << level;
    }
};

// The boundaries by their formula, and each level put between two of them.
void width_by_boundaries(int16_t *colours, int low, int high, int n)
{
    for (int level = 0; level < 256; level++) {
        if (level < low || level > high) {
            colours[level] = -1;
            continue;
        }
        for (int k = 1; k <= n; k++)
            if (level < low + (k * (high - low + 1) + n / 2) / n) {
                colours[level] = int16_t(spectrum_colour(k - 1, n));
                break;
            }
    }
}

// For each step the first index at which the counts below it reach the step's share, by running sums.
void population_by_sums(int16_t *colours, const int32_t *hist, int low, int high, int n)
{
    std::vector<int64_t> below(258, 0);
    for (int level = low; level < 256; level++)
        below[size_t(level) + 1] = below[size_t(level)] + hist[level];
    const int64_t total = below[size_t(high) + 1];
    for (int level = 0; level < 256; level++)
        if (level < low || level > high)
            colours[level] = -1;
    int coloured = low - 1;
    for (int k = 1; k <= n; k++) {
        int index = low;
        while (below[size_t(index)] < (k * total + n / 2) / n)
            index++;
        for (int level = coloured + 1; level <= std::min(index, 255); level++)
            colours[level] = int16_t(spectrum_colour(k - 1, n));
        coloured = std::max(coloured, index);
    }
}

} // namespace

TEST_F(SliceMap, SixStepsTakeEveryOtherColourOfTheSpectrum)
{
    const int six[] = { 8, 4, 9, 15, 10, 16 }, twelve[] = { 8, 21, 4, 22, 9, 17, 15, 18, 10, 20, 16, 19 };
    for (int k = 0; k < 6; k++)
        EXPECT_EQ(spectrum_colour(k, 6), six[k]);
    for (int k = 0; k < 12; k++)
        EXPECT_EQ(spectrum_colour(k, 12), twelve[k]);
}

TEST_F(SliceMap, SixEqualWidthsOfAllLevelsEndAt43_85_128_171_213_256)
{
    slice_equal_width(colours, 0, 255, 6);     // (k * 256 + 3) / 6
    expect_range(0, 42, 8);
    expect_range(43, 84, 4);
    expect_range(85, 127, 9);
    expect_range(128, 170, 15);
    expect_range(171, 212, 10);
    expect_range(213, 255, 16);
}

TEST_F(SliceMap, LevelsOutsideTheRangeLoseTheirColour)
{
    slice_equal_width(colours, 10, 21, 12);    // 12 levels, one each
    expect_range(0, 9, -1);
    expect_range(10, 10, 8);
    expect_range(11, 11, 21);
    expect_range(21, 21, 19);
    expect_range(22, 255, -1);
}

TEST_F(SliceMap, ACrossedRangeAndAnEmptyHistogramLeaveNoColour)
{
    slice_equal_width(colours, 200, 100, 12);
    expect_range(0, 255, -1);
    std::fill(colours, colours + 256, int16_t(99));
    slice_equal_width(colours, 256, -1, 6);
    expect_range(0, 255, -1);
    std::fill(colours, colours + 256, int16_t(99));
    slice_equal_population(colours, hist, 256, -1, 6);
    expect_range(0, 255, -1);
}

TEST_F(SliceMap, OneValueAloneIsColouredWithTheLevelAboveIt)
{
    hist[100] = 16;                            // shares 1, 3, 4, ... 16: all reached by level 100
    slice_equal_population(colours, hist, 100, 100, 12);
    expect_range(0, 99, -1);
    expect_range(100, 101, 8);
    expect_range(102, 255, -1);
}

TEST_F(SliceMap, EqualPopulationsTakeOneLevelMoreThanTheySummedAndStopAtTheTablesEnd)
{
    std::fill(hist, hist + 256, 1);            // shares (k * 256 + 3) / 6 = 43, 85, 128, 171, 213, 256
    slice_equal_population(colours, hist, 0, 255, 6);
    expect_range(0, 43, 8);
    expect_range(44, 85, 4);
    expect_range(86, 128, 9);
    expect_range(129, 171, 15);
    expect_range(172, 213, 10);
    expect_range(214, 255, 16);
}

TEST_F(SliceMap, AStepWithoutCountsColoursNothing)
{
    hist[10] = 100;                            // shares 17, 33, 50, 67, 83, 100 with the 1 at level 50: 16, 33, 50, 67, 84, 101
    hist[50] = 1;
    slice_equal_population(colours, hist, 10, 50, 6);
    expect_range(10, 11, 8);                   // level 10 fills the first five shares
    expect_range(12, 51, 16);                  // the last share is reached behind level 50
    expect_range(52, 255, -1);
}

TEST_F(SliceMap, RandomRangesAgreeWithTheBoundaries)
{
    std::mt19937 random(7);
    for (int round = 0; round < 500; round++) {
        const int a = int(random() % 256), b = int(random() % 256), n = round & 1 ? 12 : 6;
        int16_t want[256];
        width_by_boundaries(want, std::min(a, b), std::max(a, b), n);
        slice_equal_width(colours, std::min(a, b), std::max(a, b), n);
        EXPECT_TRUE(std::equal(want, want + 256, colours)) << a << " " << b << " in " << n;
    }
}

TEST_F(SliceMap, RandomHistogramsAgreeWithRunningSums)
{
    std::mt19937 random(8);
    for (int round = 0; round < 500; round++) {
        const int a = int(random() % 256), b = int(random() % 256), n = round & 1 ? 12 : 6;
        for (int32_t &count : hist)
            count = random() % 3 ? int32_t(random() % 2000) : 0;
        int16_t want[256];
        std::fill(want, want + 256, int16_t(99));
        std::fill(colours, colours + 256, int16_t(99));
        population_by_sums(want, hist, std::min(a, b), std::max(a, b), n);
        slice_equal_population(colours, hist, std::min(a, b), std::max(a, b), n);
        EXPECT_TRUE(std::equal(want, want + 256, colours)) << a << " " << b << " in " << n;
    }
}

TEST_F(SliceMap, AnAssignedRangeIsInclusiveAndEmptyWhenCrossed)
{
    slice_range(colours, 4, 10, 12);
    expect_range(9, 9, 99);
    expect_range(10, 12, 4);
    expect_range(13, 13, 99);
    slice_range(colours, 5, 12, 10);
    expect_range(10, 12, 4);
    slice_range(colours, 6, 300, 255);
    slice_range(colours, 6, 0, -5);
    expect_range(13, 255, 99);
}

TEST(InverseOfGamma, HolesAreFilledFromAbove)
{
    uint8_t gamma[256], inverse[256];
    for (int i = 0; i < 256; i++)
        gamma[i] = uint8_t(std::min(255, i < 10 ? i : i + 2));   // 10 and 11 are never given; 253, 254, 255 all give 255
    inverse_of_gamma(gamma, inverse);
    EXPECT_EQ(inverse[0], 0);
    EXPECT_EQ(inverse[9], 9);
    EXPECT_EQ(inverse[10], 10);
    EXPECT_EQ(inverse[11], 10);
    EXPECT_EQ(inverse[12], 10);
    EXPECT_EQ(inverse[254], 252);
    EXPECT_EQ(inverse[255], 255);
}

TEST(InverseOfGamma, BlackStaysBlackWhereSeveralLevelsGiveIt)
{
    uint8_t gamma[256], inverse[256];
    for (int i = 0; i < 256; i++)
        gamma[i] = uint8_t(i / 2);
    inverse_of_gamma(gamma, inverse);
    EXPECT_EQ(inverse[0], 0);                  // not 1, the last level that gives 0
    EXPECT_EQ(inverse[5], 11);
    EXPECT_EQ(inverse[200], 255);
}
