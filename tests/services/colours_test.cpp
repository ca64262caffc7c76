#include "screen_fixture.h"
#include "services/colours.h"

TEST_F(screen_test, SlotsAreReadBackWithTheirTopByteDoubled)
{
    const vlt_entry written[] = { { 20, 0x1234, 0xFF00, 0x00FF }, { 21, 0x8080, 0x0100, 0xFFFF } };
    ASSERT_EQ(ws_write_vlt(0, written, 2), 0);
    vlt_entry read[2];
    ASSERT_EQ(ws_read_vlt(0, read, 2, 20), 0);
    EXPECT_EQ(read[0].slot, 20);
    EXPECT_EQ(read[0].red, 0x1212);
    EXPECT_EQ(read[0].green, 0xFFFF);
    EXPECT_EQ(read[0].blue, 0x0000);
    EXPECT_EQ(read[1].slot, 21);
    EXPECT_EQ(read[1].red, 0x8080);
    EXPECT_EQ(read[1].green, 0x0101);
}

TEST_F(screen_test, SlotsAboveTheTableAreSkippedAndSaidSo)
{
    const vlt_entry written[] = { { 256, 0xFF00, 0xFF00, 0xFF00 }, { 3, 0x1100, 0x2200, 0x3300 } };
    EXPECT_EQ(ws_write_vlt(0, written, 2), -1);
    EXPECT_EQ(ws_state.colours[3], 0x112233u);
    vlt_entry read;
    EXPECT_EQ(ws_read_vlt(0, &read, 1, 256), -1);
}

TEST(Colours, DisplaysOfFewerThanSixteenSlotsGiveTheirNearestColour)
{
    screen_start(100, 100, 3);             // eight slots: each component on or off
    set_slot(5, 0xC01090);
    EXPECT_EQ(ws_state.colours[5], 0xFF00FFu);
    ws_exit();
    screen_start(100, 100, 1);
    set_slot(0, 0x909090);
    EXPECT_EQ(ws_state.colours[0], 0xFFFFFFu);
    ws_exit();
    screen_start(100, 100, 4);             // sixteen keep what is written
    set_slot(5, 0xC01090);
    EXPECT_EQ(ws_state.colours[5], 0xC01090u);
    ws_exit();
}

TEST(Colours, FivehundredAndTwelveSlotsOnNinePlanes)
{
    screen_start(100, 100, 9);
    set_slot(511, 0x102030);
    const uint16_t pixel = 511;
    const int w = plain_window(0, 0, 9, 9);
    ws_put_16(w, 511, 4, 4, 4, 4, &pixel);
    EXPECT_EQ(held(w, 4, 4), 511u);
    EXPECT_EQ(seen(4, 4), 0x102030u);
    ws_exit();
}

TEST_F(screen_test, ColourTableDisplayHasNoTableForWindows)
{
    int number;
    EXPECT_EQ(ws_vlt_alloc(2, &number), -1);
    const int w = plain_window(0, 0, 9, 9);
    EXPECT_EQ(ws_set_window_vlt(w, 2), -1);
    EXPECT_EQ(ws_set_window_vlt(w, 0), 0);
    ASSERT_EQ(ws_window_vlt(w, &number), 0);
    EXPECT_EQ(number, 0);
}

TEST_F(true_colour_test, OneTableOfKindTwoIsGivenAtATime)
{
    int number = 0;
    EXPECT_EQ(ws_vlt_alloc(1, &number), -1);
    EXPECT_EQ(ws_vlt_alloc(2, &number), 0);
    EXPECT_EQ(number, 2);
    EXPECT_EQ(ws_vlt_alloc(2, &number), -1);
    EXPECT_EQ(ws_vlt_free(2), 0);
    EXPECT_EQ(ws_vlt_free(2), -1);
    EXPECT_EQ(ws_vlt_alloc(2, &number), 0);
}

TEST_F(true_colour_test, TablesByKind)
{
    int number = -1;
    EXPECT_EQ(ws_vlt_of_kind(0, &number), 0);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(ws_vlt_of_kind(2, &number), 0);
    EXPECT_EQ(number, 2);
    EXPECT_EQ(ws_vlt_of_kind(1, &number), -1);
}

TEST_F(true_colour_test, OnlyTheSharedTableIsWritten)
{
    const vlt_entry entry = { 7, 0x1000, 0x2000, 0x3000 };
    EXPECT_EQ(ws_write_window_vlt(0, 2, &entry, 1), -1);
    EXPECT_NE(ws_state.colours[7], 0x102030u);
    EXPECT_EQ(ws_write_window_vlt(0, 0, &entry, 1), 0);
    EXPECT_EQ(ws_state.colours[7], 0x102030u);
}

TEST_F(true_colour_test, WindowKeepsItsLookWhenItsTableChanges)
{
    set_slot(9, 0x204060);
    const int w = plain_window(0, 0, 9, 9);
    fill_window(w, 9);
    ASSERT_EQ(ws_set_window_vlt(w, 2), 0);
    EXPECT_EQ(held(w, 3, 3), 0x204060u);
    EXPECT_EQ(seen(3, 3), 0x204060u);
    ASSERT_EQ(ws_set_window_vlt(w, 0), 0);
    EXPECT_EQ(held(w, 3, 3), 9u);
    EXPECT_EQ(seen(3, 3), 0x204060u);
}

TEST_F(true_colour_test, TableChangeLeavesTrueColourWindowsAlone)
{
    const int w = true_colour_window(0, 0, 9, 9);
    fill_window(w, 0x070707);
    set_slot(7, 0xFF0000);
    EXPECT_EQ(seen(3, 3), 0x070707u);
}

TEST_F(screen_test, NearestSlotTakesTheLowestOfEquals)
{
    for (int i = 0; i < 256; i++)
        set_slot(i, 0);
    set_slot(10, 0x100000);
    set_slot(20, 0x100000);
    set_slot(30, 0x300000);
    EXPECT_EQ(nearest_slot(0x120000), 10);
    EXPECT_EQ(nearest_slot(0x200000), 10); // 16 away from 10, 20 and from 30
    EXPECT_EQ(nearest_slot(0x210000), 30);
    set_slot(5, 0x210000);                 // answers do not outlive the table
    EXPECT_EQ(nearest_slot(0x210000), 5);
}

TEST_F(screen_test, ColoursAreClippedToTheTable)
{
    const int w = plain_window(0, 0, 9, 9);
    ws_set_foreground(w, 4000);
    ws_fill_rect(w, 0, 0, 9, 9);
    EXPECT_EQ(held(w, 0, 0), 255u);
    EXPECT_EQ(ws_set_foreground_plane(w, 1, 3), -1);
    EXPECT_EQ(ws_set_foreground_plane(w, 0, 3), 0);
    ws_fill_rect(w, 0, 0, 0, 0);
    EXPECT_EQ(held(w, 0, 0), 3u);
}

TEST(Colours, ColoursAreClippedToTheTableOfFourPlanes)
{
    screen_start(100, 100, 4);
    const int w = plain_window(0, 0, 9, 9);
    fill_window(w, 255);
    EXPECT_EQ(held(w, 0, 0), 15u);
    ws_exit();
}

TEST_F(screen_test, PlaneMasksHaveNoEffect)
{
    const int w = plain_window(0, 0, 9, 9);
    EXPECT_EQ(ws_set_plane_mask(w, 1), 0);
    EXPECT_EQ(ws_enable_plane(w, 3), 0);
    fill_window(w, 254);
    EXPECT_EQ(held(w, 0, 0), 254u);
}
