#include "display/picture_windows.h"

#include <cstring>

#include "display/show_image.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "support/screen_session.h"

namespace {

struct PictureWindows : screen_session {
    int make_band(const char *name)
    {
        int step = 1, band = -1;
        EXPECT_EQ(band_create(16, 16, &step, KIND_COT, name, &band), 1);
        return band;
    }
    int open_grey(const char *name)
    {
        display_mode &= ~uint32_t{COLOR};
        const int band = make_band(name);
        return show_image(band, band, band);
    }
};

} // namespace

TEST_F(PictureWindows, AGreyWindowIsNamedAfterItsFileAndTitledActive)
{
    const int w = open_grey("pictures\\lake.pgm");
    EXPECT_EQ(w, active_window);
    EXPECT_STREQ(windows[w].name, "lake.pgm");
    EXPECT_STREQ(ws_title(w), "ACTIVE lake.pgm");
    EXPECT_EQ(windows[w].flags, WIN_DISPLAYED | WIN_PICTURE);
    EXPECT_EQ(picture_count, 1);
}

TEST_F(PictureWindows, AColourWindowIsNamedAfterItsThreeFiles)
{
    display_mode |= COLOR;
    const int r = make_band("r.pgm"), g = make_band("g.pgm"), b = make_band("b.pgm");
    const int w = show_image(r, g, b);
    EXPECT_STREQ(windows[w].name, "r.pgm-g.pgm-b.pgm");
    bands[g].label[0] = 0;             // a colour file names only its first band
    bands[b].label[0] = 0;
    window_set_name(w);
    EXPECT_STREQ(windows[w].name, "r.pgm");
}

TEST_F(PictureWindows, ActivatingAnotherWindowMovesTheWordActive)
{
    const int first = open_grey("first.pgm"), second = open_grey("second.pgm");
    EXPECT_STREQ(ws_title(first), "first.pgm");
    current_window = first;
    apply_active();
    EXPECT_EQ(active_window, first);
    EXPECT_STREQ(ws_title(first), "ACTIVE first.pgm");
    EXPECT_STREQ(ws_title(second), "second.pgm");
    current_window = 0;                // the background is no picture
    apply_active();
    EXPECT_EQ(active_window, first);
}

TEST_F(PictureWindows, ClosingTheActiveWindowActivatesAnotherAndFreesItsBand)
{
    const int first = open_grey("first.pgm"), second = open_grey("second.pgm");
    const int band = windows[second].red_band;
    close_window(second);
    EXPECT_EQ(active_window, first);
    EXPECT_EQ(picture_count, 1);
    EXPECT_EQ(bands[band].alloc_bytes, 0u);
    EXPECT_EQ(windows[second].flags, 0);
    EXPECT_EQ(windows[second].red_band, -1);
}

TEST_F(PictureWindows, ClosingANonActiveWindowOfThreeLeavesTheActiveOneAlone)
{
    const int first = open_grey("first.pgm"), second = open_grey("second.pgm"), third = open_grey("third.pgm");
    close_window(second);
    EXPECT_EQ(active_window, third);
    EXPECT_EQ(picture_count, 2);
    EXPECT_NE(windows[first].flags, 0);
}

TEST_F(PictureWindows, ABandShownTwiceIsFreedWithTheLastWindow)
{
    const int first = open_grey("first.pgm"), band = windows[first].red_band;
    const int second = show_image(band, band, band);
    close_window(first);
    EXPECT_NE(bands[band].alloc_bytes, 0u);
    close_window(second);
    EXPECT_EQ(bands[band].alloc_bytes, 0u);
    EXPECT_EQ(active_window, -1);
}

TEST_F(PictureWindows, ClosingAllLeavesOnlyTheFrame)
{
    open_grey("first.pgm");
    open_grey("second.pgm");
    close_all_windows();
    EXPECT_EQ(picture_count, 0);
    EXPECT_EQ(active_window, -1);
    EXPECT_EQ(windows[0].flags, WIN_DISPLAYED | RESERVED_WIN);
    for (int w = 1; w < WINDOWS; w++)
        EXPECT_EQ(windows[w].flags, 0) << w;
    for (const band_rec &band : bands)
        EXPECT_EQ(band.alloc_bytes, 0u);
}

TEST_F(PictureWindows, ARefetchTouchesNoWindow)
{
    const int w = open_grey("first.pgm");
    display_mode |= REFETCHING_BAND;
    EXPECT_EQ(show_image(windows[w].red_band, windows[w].red_band, windows[w].red_band), w);
    EXPECT_EQ(picture_count, 1);
    display_mode &= ~uint32_t{REFETCHING_BAND};
}

TEST_F(PictureWindows, AFullTableIsSaidAndOpensNothing)
{
    const int first = open_grey("first.pgm"), band = windows[first].red_band;
    int opened = 1;
    while (show_image(band, band, band) >= 0)
        opened++;
    EXPECT_EQ(opened, WINDOWS - 1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "no window is free for this image");
    EXPECT_EQ(picture_count, WINDOWS - 1);
}

TEST_F(PictureWindows, TrueColourDisplaysHaveNoFullScreenWindow)
{
    const int band = make_band("a.pgm");
    EXPECT_EQ(show_image(band, band, -2), -1);
}

namespace {

struct PictureWindowsOnEightPlanes : PictureWindows {
    PictureWindowsOnEightPlanes() { planes = 8; }
};

} // namespace

TEST_F(PictureWindowsOnEightPlanes, TheFullScreenWindowBelongsToTheSystem)
{
    const int picture = open_grey("first.pgm"), band = make_band("full.pgm");
    const int w = show_image(band, band, -2);
    ASSERT_GT(w, 0);
    EXPECT_EQ(windows[w].flags, 133);
    EXPECT_EQ(windows[w].x, 0);
    EXPECT_EQ(windows[w].y, 0);
    EXPECT_EQ(windows[w].width, 1184);
    EXPECT_EQ(windows[w].height, 884 - layout.strip);
    EXPECT_EQ(picture_count, 1);
    EXPECT_EQ(active_window, picture);
    close_window(w);
    EXPECT_EQ(windows[w].flags, 0);
    EXPECT_EQ(bands[band].alloc_bytes, 0u);
    EXPECT_EQ(picture_count, 1);
}
