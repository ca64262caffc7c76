// Collection: areas, sampling, tiles, and the histogram that follows from the look-up table.
#include "enhance/hist_session.h"

#include <numeric>

#include "enhance/hist_tiles.h"

using Histogram = HistSession;

static int total(const int32_t *counts)
{
    return std::accumulate(counts, counts + 256, 0);
}

TEST(HistSampling, TheAutomaticIncrementGrowsWithTheArea)
{
    hist_sampling_incr = 0;
    EXPECT_EQ(hist_sampling(199, 201), 1);         // 39999 / 40000 is 0
    EXPECT_EQ(hist_sampling(400, 399), 1);         // 3
    EXPECT_EQ(hist_sampling(400, 400), 2);         // 4
    EXPECT_EQ(hist_sampling(600, 600), 3);         // 9
    EXPECT_EQ(hist_sampling(800, 800), 4);         // 16
    EXPECT_EQ(hist_sampling(1000, 999), 4);        // 24
    EXPECT_EQ(hist_sampling(1000, 1000), 5);       // 25
    EXPECT_EQ(hist_sampling(60000, 60000), 5);     // the product passes 32 bits
    hist_sampling_incr = 7;
    EXPECT_EQ(hist_sampling(10, 10), 7);
    hist_sampling_incr = 0;
}

TEST(MapHist, AddsUpWhatSharesALevel)
{
    int32_t mapped[256], unmapped[256] = {};
    int16_t lut[256] = {};
    unmapped[1] = 5;
    unmapped[2] = 7;
    unmapped[3] = 9;
    lut[1] = lut[3] = 200;
    lut[2] = 10;
    map_hist(mapped, lut, unmapped);
    EXPECT_EQ(mapped[200], 14);
    EXPECT_EQ(mapped[10], 7);
    EXPECT_EQ(total(mapped), 21);
}

TEST(ReverseBandHist, ABandOfInvertedPixelsShowsInverted)
{
    // Held 3 showed 40; after the inversion of the pixels that is held 252, which shows 255 - 40.
    int32_t mapped[256], unmapped[256] = {};
    int16_t lut[256];
    for (int i = 0; i < 256; i++)
        lut[i] = int16_t(i);
    lut[3] = 40;
    unmapped[3] = 6;
    unmapped[100] = 2;
    reverse_band_hist(mapped, lut, unmapped);
    EXPECT_EQ(lut[252], 215);
    EXPECT_EQ(lut[155], 155);
    EXPECT_EQ(unmapped[252], 6);
    EXPECT_EQ(unmapped[3], 0);
    EXPECT_EQ(mapped[215], 6);
    EXPECT_EQ(mapped[155], 2);
}

TEST_F(Histogram, CountsARectangleBothCornersIncluded)
{
    const int n = make_band(8, { { 1, 64 } });
    bands[n].data[2 * 8 + 3] = 50;
    bands[n].data[5 * 8 + 6] = 60;
    bands[n].data[5 * 8 + 7] = 70;
    collect_band_hist(n, 3, 2, 6, 5);
    EXPECT_EQ(bands[n].hist_unmapped[50], 1);
    EXPECT_EQ(bands[n].hist_unmapped[60], 1);
    EXPECT_EQ(bands[n].hist_unmapped[70], 0);
    EXPECT_EQ(total(bands[n].hist_unmapped), 16);
}

TEST_F(Histogram, ARectangleThatLeavesTheBandIsCutToIt)
{
    const int n = make_band(8, { { 1, 64 } });
    collect_band_hist(n, -5, -5, 1, 1);
    EXPECT_EQ(total(bands[n].hist_unmapped), 4);
    collect_band_hist(n, 6, 6, AREA_UNLIMITED, AREA_UNLIMITED);
    EXPECT_EQ(total(bands[n].hist_unmapped), 4);
    collect_band_hist(n, 8, 0, 20, 7);
    EXPECT_EQ(total(bands[n].hist_unmapped), 0);
}

TEST_F(Histogram, TheMappedHistogramFollowsTheTable)
{
    const int n = make_band(8, { { 1, 20 }, { 2, 44 } });
    bands[n].lut[1] = 100;
    bands[n].lut[2] = 200;
    collect_band_hist(n, 0, 0, 7, 7);
    EXPECT_EQ(bands[n].hist_mapped[100], 20);
    EXPECT_EQ(bands[n].hist_mapped[200], 44);
}

TEST_F(Histogram, TheIncrementOfALargeBandComesFromItsCutSize)
{
    // 400 x 400 at increment 2 has 200 x 200 samples.
    const int n = make_band(400, { { 9, 160000 } });
    collect_band_hist(n, 0, 0, AREA_UNLIMITED, AREA_UNLIMITED);
    EXPECT_EQ(bands[n].hist_unmapped[9], 40000);
    hist_sampling_incr = 3;                // columns 0, 3, ... 399: 134
    collect_band_hist(n, 0, 0, 399, 399);
    EXPECT_EQ(bands[n].hist_unmapped[9], 134 * 134);
}

TEST_F(Histogram, EachBandOfAWindowIsCutToItsOwnSize)
{
    const int r = make_band(16, { { 1, 256 } }), g = make_band(8, { { 2, 64 } }), b = make_band(16, { { 3, 256 } });
    const int w = show_colour(r, g, b);
    windows[w].hist_area = { 0, 0, AREA_UNLIMITED, AREA_UNLIMITED };
    collect_window_hists();
    EXPECT_EQ(windows[w].hist_area.x1, 15);        // the first band's
    EXPECT_EQ(windows[w].hist_area.y1, 15);
    EXPECT_EQ(bands[r].hist_unmapped[1], 256);
    EXPECT_EQ(bands[g].hist_unmapped[2], 64);
    EXPECT_EQ(bands[b].hist_unmapped[3], 256);
}

TEST_F(Histogram, NothingIsCollectedWithoutAnActiveWindow)
{
    ASSERT_EQ(active_window, -1);
    collect_window_hists();
}

TEST_F(Histogram, ATileIsCutToTheAreaAndSampledFromItsOwnCorner)
{
    const int n = make_band(4, { { 0, 16 } });
    memset(bands[n].hist_unmapped, 0, 256 * sizeof(int32_t));
    count_in_tiles(bands[n], { 2, 3, 100, 100 }, 2);       // no store is present: nothing is walked yet
    EXPECT_EQ(total(bands[n].hist_unmapped), 0);

    // A tile at 0, 0 of 6 x 6: columns 2, 4 and rows 3, 5 are sampled.
    std::vector<uint8_t> tile(size_t(tile_size) * 6, 0);
    for (int y = 0; y < 6; y++)
        for (int x = 0; x < 6; x++)
            tile[size_t(y) * size_t(tile_size) + size_t(x)] = uint8_t(10 * y + x);
    EXPECT_EQ(count_tile(0, 0, 6, 6, tile.data()), 0);
    for (const int level : { 32, 34, 52, 54 })
        EXPECT_EQ(bands[n].hist_unmapped[level], 1) << level;
    EXPECT_EQ(total(bands[n].hist_unmapped), 4);

    // The next tile begins at column 6: its own columns 0, 2, 4.
    EXPECT_EQ(count_tile(6, 0, 6, 6, tile.data()), 0);
    EXPECT_EQ(bands[n].hist_unmapped[30], 1);
    EXPECT_EQ(bands[n].hist_unmapped[32], 2);
    EXPECT_EQ(total(bands[n].hist_unmapped), 10);
    EXPECT_EQ(count_tile(200, 0, 6, 6, tile.data()), 0);   // beyond the area
    EXPECT_EQ(total(bands[n].hist_unmapped), 10);
}

TEST_F(Histogram, AClickOfTheResetButtonStopsTheWalk)
{
    const int n = make_band(4, { { 0, 16 } });
    std::vector<uint8_t> tile(size_t(tile_size) * 2, 7);
    count_in_tiles(bands[n], { 0, 0, 10, 10 }, 1);
    ws_enable_events(WS_NORMAL_EVENTS);
    click(100, 100, 0);                    // a data point is left for others
    EXPECT_EQ(count_tile(0, 0, 2, 2, tile.data()), 0);
    ws_flush_buttons();
    click(100, 100, 2);
    EXPECT_EQ(count_tile(2, 0, 2, 2, tile.data()), 1);
    EXPECT_EQ(count_tile(4, 0, 2, 2, tile.data()), 0);     // the click has been taken
}
