#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "display/colour_commands.h"
#include "display/dither.h"
#include "display/paint.h"
#include "display/vlt.h"
#include "fake_screen.h"
#include "shell/session.h"

class Gamma : public testing::Test {
protected:
    void SetUp() override
    {
        session_reset();
        vlt_init();
        paint_reset();
        fake_screen_reset(4, 4, false);
        num_planes = start_planes = 8;
        display_mode = (display_mode | IFB) & ~uint32_t{STATIC_VLT};
    }
};

TEST_F(Gamma, TheReferenceCurveIsThatOf2_2)
{
    EXPECT_EQ(gamma_ref[0], 0);
    EXPECT_EQ(gamma_ref[64], 136);             // 255 * (64 / 255) ^ (1 / 2.2) = 136.05
    EXPECT_EQ(gamma_ref[255], 255);
    EXPECT_DOUBLE_EQ(gamma_default, 2.2);
}

TEST_F(Gamma, IsLimitedTo1AndTheDefault)
{
    gamma_value = 0.3;
    gamma_apply();
    EXPECT_DOUBLE_EQ(gamma_value, 1.0);
    EXPECT_EQ(gamma_table[77], 77);
    gamma_value = 3.5;
    gamma_apply();
    EXPECT_DOUBLE_EQ(gamma_value, 2.2);
    EXPECT_EQ(gamma_table[64], 136);
}

TEST_F(Gamma, OnTrueColourEveryPictureGetsItsTableAndCountsAsChanged)
{
    display_mode = (display_mode & ~uint32_t{IFB}) | TC;
    for (const int w : { 3, 8 }) {
        windows[w].flags = WIN_DISPLAYED | WIN_PICTURE;
        windows[w].vlt_id = 2;
    }
    windows[9].flags = WIN_DISPLAYED | WIN_HISTOGRAM;
    active_window = 3;
    gamma_apply();
    EXPECT_EQ(screen.writes, 3);               // two windows, then the shared table
    EXPECT_EQ(screen.written_number, 0);
    EXPECT_EQ(screen.written.size(), 240u);    // in mono: named colours and the ramp
    EXPECT_EQ(windows[3].changed, 1);
    EXPECT_EQ(windows[8].changed, 1);
    EXPECT_EQ(windows[9].changed, 0);
    EXPECT_EQ(active_window, 3);
    EXPECT_TRUE(display_mode & COLOR);
}

TEST_F(Gamma, FixUndoesTheReferenceThroughTheTable)
{
    num_planes = start_planes = 4;
    gamma_value = 1.0;
    vlt_program();
    // gamma_table is the identity, so entry gamma_ref[i] is i: 136 is 64. Holes take the next entry above.
    EXPECT_EQ(fix[136], 64);
    EXPECT_EQ(fix[0], 0);
    EXPECT_EQ(fix[255], 255);
    // gamma_ref[1] = truncate(255 * (1 / 255) ^ (1 / 2.2) + 0.5) = 21: 1 to 20 are holes.
    EXPECT_EQ(gamma_ref[1], 21);
    for (int v = 1; v <= 21; v++)
        EXPECT_EQ(fix[v], 1) << v;
    gamma_value = 2.2;
    vlt_program();
    for (int v = 0; v < 256; v++)
        EXPECT_EQ(fix[v], v) << v;             // nothing to undo
}

TEST_F(Gamma, ANegativeGammaLastsForOneTable)
{
    vlt_program();
    vlt_program();
    ASSERT_EQ(level_values[1], 51);
    const int carried = gamma_table[51];
    test_gamma();
    EXPECT_DOUBLE_EQ(gamma_value, 2.2);        // positive again at once
    EXPECT_EQ(level_values[1], carried);
    EXPECT_EQ(gamma_table[100], 100);
    vlt_program();
    EXPECT_EQ(level_values[1], 51);
    EXPECT_EQ(gamma_table[64], 136);
}

TEST_F(Gamma, LinearizeStoresAChangedValueAndRepaints)
{
    vlt_program();
    screen.slider_answer = 1.0;
    linearize();
    EXPECT_DOUBLE_EQ(gamma_value, 1.0);
    EXPECT_EQ(gamma_table[99], 99);
    EXPECT_EQ(screen.pictures_cleared, 1);
    EXPECT_EQ(screen.pictures_painted, 1);
    linearize();                               // the same value: nothing to do
    EXPECT_EQ(screen.pictures_painted, 1);
    screen.slider_answer = -1;                 // cancelled
    linearize();
    EXPECT_DOUBLE_EQ(gamma_value, 1.0);
}
