// Places on the screen, from its size and the sizes of a window's frame and the strip.
#include <gtest/gtest.h>

#include "shell/session.h"
#include "shell/startup.h"

namespace {

// Border 5 by 6, caption 20, strip 40.
screen_layout on_screen(int width, int height)
{
    return layout_for_screen(width, height, 5, 6, 20, 40);
}

TEST(Layout, ThirdsHalvesAndPanels)
{
    const screen_layout l = on_screen(1280, 1024);
    EXPECT_EQ(l.third_width, 426);       // 1280 / 3 = 426.67
    EXPECT_EQ(l.third_height, 341);      // 1024 / 3 = 341.33
    EXPECT_EQ(l.right_half_x, 645);      // 640 + 5
    EXPECT_EQ(l.half_width, 630);        // 640 - 2 * 5
    EXPECT_EQ(l.right_hist_x, 498);      // 640 - 142
    EXPECT_EQ(l.tune_left, 328);         // (1280 - 624) / 2
    EXPECT_EQ(l.tune_right, 952);
    EXPECT_EQ(l.panel_left, 480);        // (1280 - 320) / 2
    EXPECT_EQ(l.panel_right, 800);
    EXPECT_EQ(l.strip_top, 984);         // 1024 - 40
    EXPECT_EQ(l.panel_top, 774);         // 1024 - 40 - 210
    EXPECT_EQ(l.slice_bar_left, 438);    // 640 - 202
    EXPECT_EQ(l.slice_bar_right, 842);
}

TEST(Layout, HistogramsOnALargeScreen)
{
    const screen_layout l = on_screen(1280, 1024);
    EXPECT_FALSE(l.small_screen);
    EXPECT_EQ(l.hist_top, 87);
    EXPECT_EQ(l.hist_bottom_mono, 338);
    EXPECT_EQ(l.hist_bottom_colour, 780);
    EXPECT_EQ(l.hist_graph_height, 200);
    EXPECT_EQ(l.hist_red_top, 33);
    EXPECT_EQ(l.hist_red_bottom, 244);   // 33 + 200 + 11
    EXPECT_EQ(l.hist_green_top, 254);    // 33 + 200 + 21
    EXPECT_EQ(l.hist_green_bottom, 465);
    EXPECT_EQ(l.hist_blue_top, 475);
    EXPECT_EQ(l.hist_blue_bottom, 686);
    EXPECT_EQ(l.source_hist_step, 221);
}

TEST(Layout, HistogramsOnASmallScreen)
{
    const screen_layout l = on_screen(800, 600);
    EXPECT_TRUE(l.small_screen);
    EXPECT_EQ(l.hist_top, 32);
    EXPECT_EQ(l.hist_bottom_mono, 172);
    EXPECT_EQ(l.hist_bottom_colour, 414);
    EXPECT_EQ(l.hist_graph_height, 100);
    EXPECT_EQ(l.hist_red_top, 22);
    EXPECT_EQ(l.hist_red_bottom, 133);   // 22 + 100 + 11
    EXPECT_EQ(l.hist_green_top, 143);    // 22 + 100 + 21
    EXPECT_EQ(l.hist_blue_top, 264);
    EXPECT_EQ(l.source_hist_step, 121);
}

TEST(Layout, AScreenIsSmallWhenStripAndGraphsDoNotFit)
{
    EXPECT_FALSE(on_screen(1280, 820).small_screen);   // 40 + 780 is not more than 820
    EXPECT_TRUE(on_screen(1280, 819).small_screen);
}

}  // namespace
