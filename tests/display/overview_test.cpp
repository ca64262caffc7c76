#include "display/overview.h"

#include "display/navigation.h"
#include "window_family.h"

namespace {

struct Overview : WindowFamily {
    int open_for(int picture)
    {
        current_window = picture;
        open_overview();
        EXPECT_EQ(current_window, picture);
        return window_overview_of(picture);
    }
};

struct OverviewOn1200By900 : Overview {
    void SetUp() override { ASSERT_EQ(start_workstation(1200, 900), 1); }
};

} // namespace

TEST_F(OverviewOn1200By900, AWideImageTakesAThirdOfTheScreensWidth)
{
    const int w = open_for(open_grey("wide.pgm", 5000, 1000));   // thirds 400 and 300: 400 / 5000 = 0.08, 1000 * 0.08 = 80
    EXPECT_EQ(windows[w].width, 400);
    EXPECT_EQ(windows[w].height, 80);
    EXPECT_DOUBLE_EQ(windows[w].zoom, 0.08);
}

TEST_F(OverviewOn1200By900, ATallImageTakesAThirdOfTheHeight)
{
    const int w = open_for(open_grey("tall.pgm", 100, 3000));    // 300 / 3000 = 0.1, 100 * 0.1 = 10
    EXPECT_EQ(windows[w].width, 10);
    EXPECT_EQ(windows[w].height, 300);
    EXPECT_DOUBLE_EQ(windows[w].zoom, 0.1);
}

TEST_F(OverviewOn1200By900, AnImageThatFitsStaysAtItsSize)
{
    const int w = open_for(open_grey("small.pgm", 64, 48));
    EXPECT_EQ(windows[w].width, 64);
    EXPECT_EQ(windows[w].height, 48);
    EXPECT_EQ(windows[w].zoom, 1);
    EXPECT_EQ(windows[w].data_x, 32);
    EXPECT_EQ(windows[w].data_y, 24);
}

TEST_F(OverviewOn1200By900, AColumnMajorImageLiesOnItsSide)
{
    const int picture = open_grey("column.pgm", 64, 48);
    bands[windows[picture].red_band].orientation = ORIENT_UL_COLUMN;
    const int w = open_for(picture);
    EXPECT_EQ(windows[w].width, 48);
    EXPECT_EQ(windows[w].height, 64);
}

TEST_F(Overview, StandsInTheLowerRightCornerAndIsNoPictureOfItsOwn)
{
    const int picture = open_grey(), w = open_for(picture);
    EXPECT_EQ(windows[w].flags, 37);
    EXPECT_EQ(windows[w].x + windows[w].width, screen_width - layout.border_x);
    EXPECT_EQ(windows[w].y + windows[w].height, screen_height - layout.border_y - layout.strip);
    EXPECT_EQ(windows[w].linked_window, picture);
    EXPECT_EQ(windows[w].red_band, windows[picture].red_band);
    EXPECT_EQ(windows[w].slice_band, -1);
    EXPECT_STREQ(ws_title(w), "overview");
    EXPECT_EQ(picture_count, 1);
    EXPECT_EQ(active_window, picture);
}

TEST_F(Overview, IsPaintedAtOnceAndAgainWhenItsBandsChange)
{
    const int picture = open_grey(), w = open_for(picture);
    const uint32_t before = pixel(w, 10, 10);
    EXPECT_EQ(before & 255, before >> 16);
    band_rec &band = bands[windows[picture].red_band];
    memset(band.data, 255, size_t(band.x_size * band.y_size));
    paint_bands(band_mask(windows[picture].red_band, windows[picture].red_band, windows[picture].red_band));
    EXPECT_EQ(pixel(w, 10, 10), 0xFFFFFFu);
    EXPECT_EQ(pixel(picture, 600, 450), 0xFFFFFFu);
    EXPECT_EQ(current_window, -1);
}

TEST_F(Overview, AskedForAgainComesToTheTop)
{
    const int picture = open_grey(), w = open_for(picture);
    ws_pop_top(picture);
    EXPECT_EQ(open_for(picture), w);
    EXPECT_EQ(windows_in_use(), 2);
    EXPECT_EQ(window_at_place(windows[w].x + 5, windows[w].y + 5), w);
}

TEST_F(Overview, OfTheCutWindowIsMarkedAsSuch)
{
    const int picture = open_grey();
    windows[picture].flags |= CUT;
    EXPECT_EQ(windows[open_for(picture)].flags, 101);
}

TEST_F(Overview, AClickInItMovesTheViewOfThePicture)
{
    const int picture = open_grey("grey.pgm", 2000, 1500), w = open_for(picture);
    // 426 by 319 or so, centred on 1000, 750: 100 to the right and 50 up are 100 / zoom and 50 / zoom held pixels.
    const double zoom = windows[w].zoom;
    points_at(w, (windows[w].width >> 1) + 100, (windows[w].height >> 1) - 50);
    resets();
    center();
    EXPECT_EQ(windows[picture].data_x, int(1000 + 100 / zoom));
    EXPECT_EQ(windows[picture].data_y, int(750 - 50 / zoom));
    EXPECT_EQ(windows[w].data_x, 1000);
}

TEST_F(Overview, ClosesWithItsPictureAndLeavesNothing)
{
    const int picture = open_grey();
    open_for(picture);
    close_window(picture);
    expect_nothing_left();
}

TEST_F(Overview, ClosedByItselfLeavesThePicture)
{
    const int picture = open_grey(), w = open_for(picture);
    close_window(w);
    EXPECT_EQ(window_overview_of(picture), -1);
    EXPECT_EQ(picture_count, 1);
    EXPECT_EQ(active_window, picture);
    EXPECT_EQ(bands_in_use(), 1);
}

TEST_F(Overview, CannotBecomeTheActiveWindow)
{
    const int picture = open_grey();
    current_window = open_for(picture);
    apply_active();
    EXPECT_EQ(active_window, picture);
}

TEST_F(Overview, TheCommandAsksUntilAPictureIsPointedAt)
{
    const int picture = open_grey(), other = open_grey("other.pgm");
    current_window = picture;
    open_overview();
    points_at(window_overview_of(picture), 3, 3);      // an overview has none itself
    points_at(other, 100, 100);
    display_overview();
    EXPECT_GE(window_overview_of(other), 0);
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
}

TEST_F(Overview, OpensWithTheFirstImageOfASessionWhenTheDefaultsSaySo)
{
    auto_windows = 2;
    display_mode |= NEW_SESSION;
    const int w = open_grey();
    display_mode &= ~uint32_t{NEW_SESSION};
    EXPECT_GE(window_overview_of(w), 0);
    EXPECT_EQ(active_window, w);
    EXPECT_EQ(current_window, w);
    EXPECT_EQ(window_overview_of(open_grey("later.pgm")), -1);
}
