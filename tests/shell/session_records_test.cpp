// The band and window tables by themselves.
#include <gtest/gtest.h>

#include "shell/session.h"

namespace {

struct SessionRecords : testing::Test {
    void SetUp() override
    {
        for (int n = 0; n < BANDS; n++)
            band_clear(n);
        for (win_rec &window : windows)
            window = {};
    }
};

TEST_F(SessionRecords, AClearedBandIsFreeAndItsMatrixIsTheIdentity)
{
    bands[3].x_size = 9;
    bands[3].format = KIND_COT | KIND_TILED;
    bands[3].undo_saved = 1;
    bands[3].image_id = 77;
    bands[3].xform[0][3] = 2.5;
    band_clear(3);
    EXPECT_EQ(bands[3].alloc_bytes, 0u);
    EXPECT_EQ(bands[3].x_size, 0);
    EXPECT_EQ(bands[3].format, 0u);
    EXPECT_EQ(bands[3].undo_saved, 0u);
    EXPECT_EQ(bands[3].image_id, 0u);
    EXPECT_EQ(bands[3].data, nullptr);
    for (int row = 0; row < 4; row++)
        for (int column = 0; column < 4; column++)
            EXPECT_EQ(bands[3].xform[row][column], row == column ? 1.0 : 0.0);
}

TEST_F(SessionRecords, TheLowestFreeBandFromAPlaceOn)
{
    EXPECT_EQ(band_free_slot(0), 0);
    bands[0].alloc_bytes = bands[1].alloc_bytes = bands[3].alloc_bytes = 1;
    EXPECT_EQ(band_free_slot(0), 2);
    EXPECT_EQ(band_free_slot(3), 4);
}

TEST_F(SessionRecords, AThirtyThirdBandFindsNoSlot)
{
    for (band_rec &band : bands)
        band.alloc_bytes = 16;
    EXPECT_EQ(band_free_slot(0), 32);
    bands[31].alloc_bytes = 0;
    EXPECT_EQ(band_free_slot(0), 31);
    EXPECT_EQ(band_free_slot(32), 32);
}

TEST_F(SessionRecords, AFreeSlotIsNotReservedByTheSearch)
{
    EXPECT_EQ(band_free_slot(0), band_free_slot(0));
}

TEST_F(SessionRecords, MaskOfThreeBands)
{
    EXPECT_EQ(band_mask(0, 0, 0), 1u);
    EXPECT_EQ(band_mask(1, 4, 31), 0x80000012u);
}

TEST_F(SessionRecords, OnlyANegativeRedAddsNothingToTheMask)
{
    EXPECT_EQ(band_mask(-1, 4, 5), 0x30u);
    EXPECT_EQ(band_mask(4, -1, 5), 0x31u);  // a missing green or blue counts as band 0
    EXPECT_EQ(band_mask(-1, -1, -1), 1u);
}

TEST_F(SessionRecords, AnOverviewIsFoundByTheWindowItShows)
{
    windows[2].flags = 5;
    windows[7].flags = 37;
    windows[7].linked_window = 2;
    windows[5].flags = 5;              // a split partner is no overview
    windows[5].linked_window = 2;
    EXPECT_EQ(window_overview_of(2), 7);
    EXPECT_EQ(window_overview_of(5), -1);
}

TEST_F(SessionRecords, AChangeInAnOverviewMarksTheWindowItShows)
{
    windows[2].flags = 5;
    windows[7].flags = 37;
    windows[7].linked_window = 2;
    window_set_changed(7, 1);
    EXPECT_EQ(windows[2].changed, 1);
    EXPECT_EQ(windows[7].changed, 0);
    window_set_changed(2, 0);
    EXPECT_EQ(windows[2].changed, 0);
}

TEST_F(SessionRecords, AChangeOfNoWindowIsIgnored)
{
    window_set_changed(-1, 1);
    windows[7].flags = 37;
    windows[7].linked_window = -1;
    window_set_changed(7, 1);
    for (const win_rec &window : windows)
        EXPECT_EQ(window.changed, 0);
}

TEST_F(SessionRecords, ImageWindowsArePicturesThatAreNoOverviews)
{
    windows[1].flags = 5;
    windows[2].flags = 37;
    windows[3].flags = 9;
    EXPECT_TRUE(is_image_window(1));
    EXPECT_FALSE(is_image_window(2));
    EXPECT_FALSE(is_image_window(3));
    EXPECT_FALSE(is_image_window(-1));
    EXPECT_TRUE(is_picture(2));
}

TEST(Session, TheStartModeIsColourDecoupledStaticWithAllBandsOn)
{
    EXPECT_EQ(COLOR | SPLIT_DECOUPLED | STATIC_VLT | RED_BAND_ON | GRN_BAND_ON | BLU_BAND_ON, DISPLAY_MODE_START);
    EXPECT_EQ(display_mode, 1938u);
}

TEST(Session, TheTableBlockHoldsItsSixTables)
{
    EXPECT_EQ(256 * 4 + 256 * 4 + 256 * 2 + 256 * 2 + BAND_LABEL_SIZE + BAND_NAME_SIZE, BAND_TABLE_BYTES);
}

}  // namespace
