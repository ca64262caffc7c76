#include "screen_fixture.h"

TEST_F(screen_test, PopUpTakesThePlaceOfWindowZero)
{
    fill_window(0, 40);
    int w = 5, x0, y0, x1, y1;
    ASSERT_EQ(ws_popup_begin(0, 8, &w), 0);
    EXPECT_EQ(w, 0);
    EXPECT_EQ(ws_fill_rect(0, 0, 0, 9, 9), 0);         // not open yet: nothing
    ASSERT_EQ(ws_popup_open(0, 100, 50, 149, 79), 0);
    ws_window_rect(0, &x0, &y0, &x1, &y1);
    EXPECT_EQ(x0, 100);
    EXPECT_EQ(y1, 79);
    fill_window(0, 200);
    EXPECT_EQ(held(0, 0, 0), 200u);
    EXPECT_EQ(seen(100, 50), 0xC8C8C8u);
    EXPECT_EQ(seen(149, 79), 0xC8C8C8u);
    EXPECT_EQ(seen(90, 50), 0x282828u);                // beside it
    ASSERT_EQ(ws_popup_close(0), 0);
    EXPECT_EQ(seen(100, 50), 0x282828u);               // what was beneath is back
    ASSERT_EQ(ws_popup_end(0), 0);
    EXPECT_EQ(held(0, 100, 50), 40u);
    ws_window_rect(0, &x0, &y0, &x1, &y1);
    EXPECT_EQ(x1, 319);
}

TEST_F(screen_test, PopUpIsClippedToTheScreen)
{
    int w, x0, y0, x1, y1;
    ws_popup_begin(0, 8, &w);
    ASSERT_EQ(ws_popup_open(0, 250, -20, 400, 30), 0);
    ws_window_rect(0, &x0, &y0, &x1, &y1);
    EXPECT_EQ(x0, 250);
    EXPECT_EQ(y0, 0);
    EXPECT_EQ(x1, 319);
    EXPECT_EQ(y1, 30);
    ws_popup_end(0);
    ws_popup_begin(0, 8, &w);
    EXPECT_EQ(ws_popup_open(0, 500, 0, 600, 30), -1);
    ws_popup_end(0);
}

TEST_F(screen_test, PopUpsNest)
{
    int w;
    ws_popup_begin(0, 8, &w);
    ws_popup_open(0, 20, 20, 99, 99);
    fill_window(0, 100);
    ws_popup_begin(0, 8, &w);
    EXPECT_EQ(popup_is_open(), true);                  // the outer one has the pointer
    ws_popup_open(0, 50, 50, 149, 149);
    fill_window(0, 200);
    EXPECT_EQ(seen(60, 60), 0xC8C8C8u);
    EXPECT_EQ(seen(30, 30), 0x646464u);
    window_part part;
    window_at(30, 30, &part);
    EXPECT_EQ(part, PART_NOTHING);
    window_at(60, 60, &part);
    EXPECT_EQ(part, PART_INSIDE);
    ws_popup_end(0);                                   // closes it too
    EXPECT_EQ(seen(60, 60), 0x646464u);
    EXPECT_EQ(held(0, 0, 0), 100u);
    window_at(30, 30, &part);
    EXPECT_EQ(part, PART_INSIDE);
    ws_popup_end(0);
    EXPECT_EQ(popup_is_open(), false);
    EXPECT_EQ(ws_popup_end(0), -1);
    EXPECT_EQ(ws_popup_open(0, 0, 0, 9, 9), -1);
}

TEST_F(screen_test, WindowsDrawnIntoUnderAPopUpShowWhenItCloses)
{
    const int under = plain_window(0, 0, 199, 149);
    int w;
    ws_popup_begin(0, 8, &w);
    ws_popup_open(0, 20, 20, 99, 99);
    fill_window(under, 77);
    EXPECT_EQ(seen(50, 50), 0u);                       // the empty pop-up
    ws_popup_end(0);
    EXPECT_EQ(seen(50, 50), 0x4D4D4Du);
}

TEST_F(true_colour_test, PopUpOfTwentyFourPlanesDrawsInTrueColour)
{
    int w, vlt;
    ws_popup_begin(0, 24, &w);
    ws_window_vlt(0, &vlt);
    EXPECT_EQ(vlt, 2);
    ws_popup_end(0);
    ws_popup_begin(0, 8, &w);
    ws_window_vlt(0, &vlt);
    EXPECT_EQ(vlt, 0);
    ws_popup_end(0);
}
