#include "display/dither.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "display/vlt.h"
#include "display/vmap.h"

TEST(DitherLevel, SplitsTheRangeInSixteenthsOfALevel)
{
    // 4 levels: q = truncate(p * 48 + 0.5). p = 0.5 gives 24: (24 - 1) / 16 = 1, rest 7.
    EXPECT_EQ(dither_level(0.5, 4, 7), 2);     // 7 reaches the threshold
    EXPECT_EQ(dither_level(0.5, 4, 8), 1);
    EXPECT_EQ(dither_level(0.0, 4, 0), 0);
    EXPECT_EQ(dither_level(1.0, 4, 15), 3);    // q = 48: 47 / 16 = 2, rest 15: always the top
    EXPECT_EQ(dither_level(0.01, 4, 0), 0);    // q = truncate(0.98) = 0
    EXPECT_EQ(dither_level(0.0105, 4, 0), 1);  // q = truncate(1.004) = 1: rest 0 reaches threshold 0 only
    EXPECT_EQ(dither_level(0.0105, 4, 1), 0);
}

TEST(DitherBuild, AGammaOfOneMakesTheGammaTableTheIdentity)
{
    dither_build(1.0, 6);
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(gamma_table[i], i);
    const uint8_t sixths[] = { 0, 51, 102, 153, 204, 255 };   // 255 i / 5
    for (int i = 0; i < 6; i++)
        EXPECT_EQ(level_values[i], sixths[i]);
}

TEST(DitherBuild, TheTableHoldsTheLevelOfEachCell)
{
    dither_build(1.0, 6);
    // 128: p = 0.50196, q = truncate(0.50196 * 80 + 0.5) = 40; (40 - 1) / 16 = 2, rest 7: level 3 where the threshold is at most 7.
    EXPECT_EQ(dither_table[dither_cell(0, 0)][128], 3);   // threshold 0
    EXPECT_EQ(dither_table[dither_cell(1, 0)][128], 2);   // 8
    EXPECT_EQ(dither_table[dither_cell(2, 1)][128], 2);   // 14
    EXPECT_EQ(dither_table[dither_cell(2, 3)][128], 2);   // 13
    EXPECT_EQ(dither_table[dither_cell(1, 3)][128], 3);   // 7
    EXPECT_EQ(dither_table[dither_cell(7, 7)][128], dither_table[15][128]);   // cells repeat every 4 pixels
}

TEST(DitherBuild, TheCurveOfGamma2_2BrightensTheMiddle)
{
    dither_build(2.2, 8);
    // (64 / 255) to the power 1 / 2.2 = 0.53351, times 255 = 136.05.
    EXPECT_EQ(gamma_table[64], 136);
    EXPECT_EQ(gamma_table[0], 0);
    EXPECT_EQ(gamma_table[255], 255);
    EXPECT_EQ(level_values[3], 109);           // 255 * 3 / 7: straight, the dither carries the gamma
}

TEST(DitherBuild, ANegativeGammaLetsTheLevelsCarryIt)
{
    dither_build(2.2, 8);
    const int third = gamma_table[109];
    dither_build(-2.2, 8);
    EXPECT_EQ(level_values[3], third);
    EXPECT_EQ(gamma_table[64], 64);            // and the curve is straight
}

TEST(Dither, AveragesToTheValue)
{
    dither_build(1.0, 6);
    for (const int value : { 10, 100, 128, 200, 250 }) {
        int sum = 0;
        for (int cell = 0; cell < 16; cell++)
            sum += level_values[dither_table[cell][value]];
        EXPECT_NEAR(sum / 16.0, value, 51 / 16.0) << value;
    }
}

TEST(Dither, MonoTakesTheGreySlotOfTheLevel)
{
    dither_build(1.0, 4);
    const uint8_t slots[] = { 0, 2, 5, 7 };
    std::copy(slots, slots + 4, grey_levels);
    EXPECT_EQ(dither_mono(0, 0, 255), 7);
    EXPECT_EQ(dither_mono(3, 2, 0), 0);
    // 128: q = truncate(0.50196 * 48 + 0.5) = 24: 23 / 16 = 1, rest 7: level 2 at thresholds up to 7.
    EXPECT_EQ(dither_mono(0, 0, 128), 5);
    EXPECT_EQ(dither_mono(1, 0, 128), 2);
}

TEST(Dither, ColourTakesTheSlotOfTheKey)
{
    vmap_use(0);
    dither_build(1.0, 8);
    for (int key = 0; key < 512; key++)
        colour_map[key] = uint16_t(1000 + key);
    EXPECT_EQ(dither_colour(0, 0, 255, 0, 0), 1000 + 7 * 64);
    EXPECT_EQ(dither_colour(0, 0, 0, 255, 0), 1000 + 7 * 8);
    EXPECT_EQ(dither_colour(5, 9, 255, 255, 255), 1511);
}
