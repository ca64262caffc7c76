#include "screen_fixture.h"

TEST_F(screen_test, BytesOfSlotsGoToTheirRectangle)
{
    const int w = plain_window(0, 0, 9, 9);
    const uint8_t slots[] = { 1, 2, 3,
                              4, 5, 6 };
    ASSERT_EQ(ws_put_8(w, 0, 4, 7, 6, 8, slots), 0);
    EXPECT_EQ(held(w, 4, 7), 1u);
    EXPECT_EQ(held(w, 6, 7), 3u);
    EXPECT_EQ(held(w, 4, 8), 4u);
    EXPECT_EQ(held(w, 6, 8), 6u);
    EXPECT_EQ(held(w, 7, 8), 0u);
}

TEST_F(screen_test, PixelsOutsideOfTheWindowAreCutOff)
{
    const int w = plain_window(0, 0, 3, 3);
    uint8_t slots[36];
    for (int i = 0; i < 36; i++)
        slots[i] = uint8_t(i + 1);
    ASSERT_EQ(ws_put_8(w, 255, -1, -1, 4, 4, slots), 0);   // 6 by 6 around 4 by 4
    EXPECT_EQ(held(w, 0, 0), 8u);          // second column of the second row
    EXPECT_EQ(held(w, 3, 3), 29u);
    ASSERT_EQ(ws_put_8(w, 255, 2000000000, 5, 2000000005, 10, slots), 0);
    ASSERT_EQ(ws_put_8(w, 255, 5, 5, 4, 10, slots), -1);
}

TEST_F(screen_test, SixteenBitSlotsOnEightPlanesAreClippedToTheTable)
{
    const int w = plain_window(0, 0, 3, 3);
    const uint16_t slots[] = { 7, 255, 300 };
    ASSERT_EQ(ws_put_16(w, 255, 0, 0, 2, 0, slots), 0);
    EXPECT_EQ(held(w, 0, 0), 7u);
    EXPECT_EQ(held(w, 1, 0), 255u);
    EXPECT_EQ(held(w, 2, 0), 255u);
}

TEST(Raster, BytesOfSlotsOnNinePlanes)
{
    screen_start(100, 100, 9);
    const int w = plain_window(0, 0, 3, 3);
    const uint8_t slots[] = { 9, 200 };
    ws_put_8(w, 255, 1, 1, 2, 1, slots);
    EXPECT_EQ(held(w, 1, 1), 9u);
    EXPECT_EQ(held(w, 2, 1), 200u);
    EXPECT_EQ(held(w, 3, 1), 0u);
    ws_exit();
}

TEST_F(true_colour_test, ColoursAreBlueGreenRedAndZero)
{
    const int w = true_colour_window(0, 0, 3, 3);
    const uint8_t pixels[] = { 0x33, 0x22, 0x11, 0, 0x66, 0x55, 0x44, 0 };
    ASSERT_EQ(ws_put_24(w, 0, 1, 2, 2, 2, pixels), 0);
    EXPECT_EQ(held(w, 1, 2), 0x112233u);
    EXPECT_EQ(held(w, 2, 2), 0x445566u);
    EXPECT_EQ(seen(1, 2), 0x112233u);
}

TEST_F(true_colour_test, SlotsIntoATrueColourWindowGoThroughTheTable)
{
    set_slot(4, 0xABCDEF);
    const int w = true_colour_window(0, 0, 3, 3);
    const uint8_t slot = 4;
    const uint16_t slot_16 = 4;
    ws_put_8(w, 255, 0, 0, 0, 0, &slot);
    ws_put_16(w, 255, 1, 0, 1, 0, &slot_16);
    EXPECT_EQ(held(w, 0, 0), 0xABCDEFu);
    EXPECT_EQ(held(w, 1, 0), 0xABCDEFu);
    set_slot(4, 0);                        // drawn is drawn
    EXPECT_EQ(seen(0, 0), 0xABCDEFu);
}

TEST_F(screen_test, ColoursIntoSlotsTakeTheNearest)
{
    set_slot(77, 0xFF0000);
    const int w = plain_window(0, 0, 3, 3);
    const uint8_t pixels[] = { 0x02, 0x01, 0xFD, 0, 0x51, 0x50, 0x50, 0 };
    ws_put_24(w, 255, 0, 0, 1, 0, pixels);
    EXPECT_EQ(held(w, 0, 0), 77u);
    EXPECT_EQ(held(w, 1, 0), 0x50u);       // slot 80 of the grey ramp
}

TEST_F(screen_test, BitRowsArePaddedToSixteenAndBeginWithTheTopBit)
{
    const int w = plain_window(0, 0, 19, 3);
    ws_set_foreground(w, 9);
    ws_set_background(w, 2);
    const uint16_t bits[] = { 0x8001, 0x8000,   // 17 columns: first, sixteenth, seventeenth
                              0x4000, 0x0000 };
    ASSERT_EQ(ws_put_bits(w, 255, 1, 0, 17, 1, bits), 0);
    EXPECT_EQ(drawing(w, 0, 0, 19, 1, 2),
              "##..............####" "\n"        // column 0, 18 and 19 are not in the rectangle and hold slot 0
              "#.#...............##" "\n");
    EXPECT_EQ(held(w, 1, 0), 9u);
    EXPECT_EQ(held(w, 2, 1), 9u);
    EXPECT_EQ(held(w, 3, 1), 2u);
}

TEST_F(screen_test, BitmapStampsOnesOnly)
{
    const int w = plain_window(0, 0, 19, 3);
    fill_window(w, 50);
    ws_set_foreground(w, 9);
    const uint16_t bits[] = { 0xA000 };
    ASSERT_EQ(ws_draw_bitmap(w, 255, 2, 1, 5, 1, bits), 0);
    EXPECT_EQ(drawing(w, 0, 1, 7, 1, 50), "..#.#...\n");
    EXPECT_EQ(held(w, 2, 1), 9u);
}

TEST_F(screen_test, BitsCutOffAtTheLeftKeepTheirPlaces)
{
    const int w = plain_window(0, 0, 7, 0);
    const uint16_t bits[] = { 0x0140 };    // bits 7 and 9 from the left
    ws_set_foreground(w, 1);
    ws_draw_bitmap(w, 255, -6, 0, 9, 0, bits);
    EXPECT_EQ(drawing(w, 0, 0, 7, 0), ".#.#....\n");
}

TEST_F(screen_test, ClearFillsWithTheBackgroundWhateverTheClip)
{
    const int w = plain_window(0, 0, 9, 9);
    ws_set_clip(w, 2, 2, 3, 3);
    ws_set_background(w, 8);
    ASSERT_EQ(ws_clear_window(w), 0);
    EXPECT_EQ(held(w, 0, 0), 8u);
    EXPECT_EQ(held(w, 9, 9), 8u);
}

TEST_F(true_colour_test, PaintersReachTheRowsOfATrueColourWindow)
{
    const int w = true_colour_window(5, 5, 24, 14);
    int stride, width, height;
    uint32_t *const rows = ws_true_colour_rows(w, &stride, &width, &height);
    ASSERT_NE(rows, nullptr);
    EXPECT_EQ(width, 20);
    EXPECT_EQ(height, 10);
    rows[3 * stride + 4] = 0x123456;
    EXPECT_EQ(ws_rows_done(w, 4, 3, 4, 3), 0);
    EXPECT_EQ(seen(9, 8), 0x123456u);
    EXPECT_EQ(held(w, 4, 3), 0x123456u);
}

TEST_F(true_colour_test, NoRowsForSlotsIconsAndHiddenWindows)
{
    int stride, width, height, hidden;
    EXPECT_EQ(ws_true_colour_rows(plain_window(0, 0, 9, 9), &stride, &width, &height), nullptr);
    const int w = true_colour_window(5, 5, 24, 14);
    ws_collapse(w);
    EXPECT_EQ(ws_true_colour_rows(w, &stride, &width, &height), nullptr);
    ws_create_plain_window(0, 0, 0, 9, 9, &hidden);
    ws_set_window_vlt(hidden, 2);
    EXPECT_EQ(ws_true_colour_rows(hidden, &stride, &width, &height), nullptr);
}

// --- saved areas and pixels

TEST_F(screen_test, SavedAreaComesBackWhereItIsWanted)
{
    const int w = plain_window(0, 0, 9, 9);
    const uint8_t slots[] = { 1, 2, 3, 4 };
    ws_put_8(w, 255, 4, 4, 5, 5, slots);
    int handle;
    ASSERT_EQ(ws_save_area(w, 4, 4, 5, 5, &handle), 0);
    EXPECT_NE(handle, 0);
    fill_window(w, 9);
    ASSERT_EQ(ws_restore_area(w, 4, 4, handle), 0);
    ASSERT_EQ(ws_restore_area(w, 0, 1, handle), 0);
    EXPECT_EQ(held(w, 4, 4), 1u);
    EXPECT_EQ(held(w, 5, 5), 4u);
    EXPECT_EQ(held(w, 6, 5), 9u);
    EXPECT_EQ(held(w, 1, 2), 4u);
    EXPECT_EQ(ws_free_area(handle), 0);
    EXPECT_EQ(ws_free_area(handle), -1);
    EXPECT_EQ(ws_restore_area(w, 0, 0, handle), -1);
}

TEST_F(screen_test, AreaPartlyOutsideOfTheWindowKeepsItsPlace)
{
    const int w = plain_window(0, 0, 9, 9);
    fill_window(w, 9);
    int handle;
    ASSERT_EQ(ws_save_area(w, -3, -3, 2, 2, &handle), 0);  // 3 by 3 of it are inside
    fill_window(w, 1);
    ASSERT_EQ(ws_restore_area(w, -3, -3, handle), 0);
    EXPECT_EQ(held(w, 2, 2), 9u);
    EXPECT_EQ(held(w, 3, 2), 1u);
    ASSERT_EQ(ws_restore_area(w, 5, 5, handle), 0);        // its inside lands at 8, 8
    EXPECT_EQ(held(w, 7, 7), 1u);
    EXPECT_EQ(held(w, 8, 8), 9u);
    ws_free_area(handle);
}

TEST_F(screen_test, AreaOfAWindowNotShownHasHandleZero)
{
    int w, handle = 5;
    ws_create_plain_window(0, 0, 0, 9, 9, &w);
    EXPECT_EQ(ws_save_area(w, 0, 0, 5, 5, &handle), 0);
    EXPECT_EQ(handle, 0);
    EXPECT_EQ(ws_restore_area(w, 0, 0, 0), 0);
    EXPECT_EQ(ws_free_area(0), 0);
}

TEST_F(screen_test, AreaWiderThanTheClipIsSavedWhole)
{
    const int w = plain_window(0, 0, 9, 9);
    fill_window(w, 9);
    ws_set_clip(w, 4, 4, 5, 5);
    int handle;
    ws_save_area(w, 0, 0, 9, 9, &handle);
    ws_set_clip(w, 0, 0, 9, 9);
    fill_window(w, 1);
    ws_restore_area(w, 0, 0, handle);
    EXPECT_EQ(held(w, 0, 0), 9u);
    EXPECT_EQ(held(w, 9, 9), 9u);
    ws_free_area(handle);
}

static void expect_pixels_come_back(int w)
{
    int size;
    ASSERT_EQ(ws_pixels_size(2, 3, 5, 4, &size), 0);
    std::vector<uint8_t> buffer(size_t(size) + 1, 0xEE);
    ws_set_foreground(w, 7);
    ws_fill_rect(w, 0, 0, 9, 9);
    ws_set_foreground(w, 3);
    ws_fill_rect(w, 5, 4, 5, 4);
    ASSERT_EQ(ws_read_pixels(w, 2, 3, 5, 4, buffer.data()), 0);
    EXPECT_EQ(buffer[size_t(size)], 0xEE);
    ws_fill_rect(w, 0, 0, 9, 9);
    ASSERT_EQ(ws_write_pixels(w, 2, 3, 5, 4, buffer.data()), 0);
    EXPECT_EQ(held(w, 1, 3), 3u);
    EXPECT_EQ(held(w, 2, 3), 7u);
    EXPECT_EQ(held(w, 4, 4), 7u);
    EXPECT_EQ(held(w, 5, 4), 3u);
    EXPECT_EQ(held(w, 5, 5), 3u);
}

TEST_F(true_colour_test, PixelsReadAndWrittenInEitherKindOfWindow)
{
    expect_pixels_come_back(plain_window(0, 0, 9, 9));
    expect_pixels_come_back(true_colour_window(0, 0, 9, 9));
}

TEST_F(screen_test, PixelBufferOutsideOfTheWindowReadsZero)
{
    const int w = plain_window(0, 0, 3, 3);
    fill_window(w, 9);
    uint32_t pixels[4] = { 1, 1, 1, 1 };
    ASSERT_EQ(ws_read_pixels(w, 3, 3, 4, 4, pixels), 0);
    EXPECT_EQ(pixels[0], 9u);
    EXPECT_EQ(pixels[1], 0u);
    EXPECT_EQ(pixels[3], 0u);
}

TEST(Raster, SizesThatDoNotFitAreRefused)
{
    int size;
    EXPECT_EQ(ws_pixels_size(0, 0, -1, 5, &size), -1);
    EXPECT_EQ(ws_pixels_size(0, 0, 99999, 99999, &size), -1);
    EXPECT_EQ(ws_pixels_size(-2147483647, 0, 2147483647, 0, &size), -1);
    ASSERT_EQ(ws_pixels_size(10, 10, 19, 14, &size), 0);
    EXPECT_EQ(size, 10 * 5 * 4);
}
