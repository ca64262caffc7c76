#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "enhance/tune_map.h"

namespace {

struct GammaMap : testing::Test {
    int32_t hist[256] = {};
    int16_t lut[256];
    GammaMap()
    {
        for (int i = 0; i < 256; i++)
            lut[i] = int16_t(i);
    }
};

} // namespace

TEST_F(GammaMap, NoBrightnessLeavesTheTable)
{
    gamma_map(hist, lut, 0);
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(lut[i], i);
}

TEST_F(GammaMap, OneIsTheSquareRoot)
{
    gamma_map(hist, lut, 1.0);
    EXPECT_EQ(lut[0], 0);
    EXPECT_EQ(lut[64], 128);                   // sqrt(64 * 255) = 127.75
    EXPECT_EQ(lut[100], 160);                  // sqrt(25500) = 159.69
    EXPECT_EQ(lut[255], 255);
}

TEST_F(GammaMap, MinusOneIsItsMirrorAboutTheDiagonal)
{
    gamma_map(hist, lut, -1.0);
    EXPECT_EQ(lut[0], 0);
    EXPECT_EQ(lut[64], 34);                    // 255 - sqrt(191 * 255) = 255 - 220.69, rounded before
    EXPECT_EQ(lut[191], 127);                  // 255 - sqrt(64 * 255)
    EXPECT_EQ(lut[255], 255);
}

TEST_F(GammaMap, CountsAreAddedByHeldLevelToWhatIsThere)
{
    hist[64] = 7;
    hist[255] = 3;
    gamma_map(hist, lut, 1.0);
    EXPECT_EQ(hist[64], 7);                    // not cleared
    EXPECT_EQ(hist[128], 7);
    EXPECT_EQ(hist[255], 6);
}

TEST_F(GammaMap, TheOldCountsAreTakenByHeldAndNotByShownLevel)
{
    for (int i = 0; i < 256; i++)
        lut[i] = 10;
    hist[200] = 5;                             // a count at a level that the table no longer shows
    gamma_map(hist, lut, 0);
    EXPECT_EQ(hist[10], 5);
    EXPECT_EQ(hist[200], 5);
}

TEST_F(GammaMap, RandomTablesAgreeWithTheFormula)
{
    std::mt19937 random(3);
    for (int round = 0; round < 200; round++) {
        int32_t want_hist[256];
        int16_t want_lut[256];
        for (int i = 0; i < 256; i++) {
            hist[i] = int32_t(random() % 10000);
            lut[i] = int16_t(random() % 256);
        }
        memcpy(want_hist, hist, sizeof hist);
        const double brightness = (int(random() % 128) - 63) / 31.0;
        for (int i = 0; i < 256; i++) {
            const int from = brightness < 0 ? 255 - lut[i] : lut[i];
            const int level = int(std::floor(std::pow(from * 0.00392156862745098, 1 / (1 + std::fabs(brightness))) * 255.0 + 0.5));
            want_lut[i] = int16_t(brightness < 0 ? 255 - level : level);
        }
        for (int i = 0; i < 256; i++)
            want_hist[want_lut[i]] += hist[i];
        gamma_map(hist, lut, brightness);
        EXPECT_EQ(memcmp(lut, want_lut, sizeof lut), 0);
        EXPECT_EQ(memcmp(hist, want_hist, sizeof hist), 0);
    }
}
