// The screen after a change of look-up tables.
#include "enhance/hist_session.h"

#include "display/vlt.h"

namespace {

using LutRefresh = HistSession;
struct LutRefreshEightPlanes : HistSession {
    LutRefreshEightPlanes() { screen_depth = 8; }
};
struct LutRefreshNinePlanes : HistSession {
    LutRefreshNinePlanes() { screen_depth = 9; }
};

// What the colour table holds for the window's middle.
int shown_grey(int w)
{
    vlt_entry entry {};
    EXPECT_EQ(ws_read_vlt(screen_no, &entry, 1, int(pixel(w, windows[w].width / 2, windows[w].height / 2))), 0);
    return entry.red >> 8;
}

uint32_t middle_of(int w)
{
    return pixel(w, windows[w].width / 2, windows[w].height / 2);
}

} // namespace

TEST_F(LutRefresh, PicturesOfTheBandsArePaintedAgain)
{
    const int n = make_band(16, { { 50, 256 } }), other = make_band(16, { { 50, 256 } });
    const int first = show_grey(n), second = show_grey(n), third = show_grey(other), active = second;
    const uint32_t before = middle_of(first);
    current_window = active;
    apply_active();
    bands[n].lut[50] = 200;
    refresh_after_lut();
    EXPECT_NE(middle_of(first), before);
    EXPECT_EQ(middle_of(second), middle_of(first));
    EXPECT_EQ(middle_of(third), before);
    EXPECT_EQ(active_window, active);
}

TEST_F(LutRefreshEightPlanes, OneGreyPictureChangesThroughTheColourTableAlone)
{
    display_mode &= ~uint32_t{STATIC_VLT};
    const int n = make_band(16, { { 50, 256 } }), w = show_grey(n);
    vlt_program();
    refresh_after_lut();
    const uint32_t slot = middle_of(w);
    vlt_entry before, after;
    ws_read_vlt(screen_no, &before, 1, int(slot));
    for (int v = 0; v < 256; v++)
        bands[n].lut[v] = int16_t(255 - v);
    refresh_after_lut();
    ws_read_vlt(screen_no, &after, 1, int(slot));
    EXPECT_EQ(middle_of(w), slot);
    EXPECT_GT(after.red, before.red);
}

TEST_F(LutRefresh, AnOverviewWithBandsOfItsOwnTakesTheTables)
{
    const int n = make_band(16, { { 50, 256 } }), small = make_band(4, { { 50, 16 } });
    const int w = show_grey(n), overview = show_grey(small);
    windows[overview].flags |= WIN_OVERVIEW;
    windows[overview].linked_window = int16_t(w);
    picture_count--;
    active_window = w;
    bands[n].lut[50] = 200;
    refresh_after_lut();
    EXPECT_EQ(bands[small].lut[50], 200);
    EXPECT_EQ(bands[small].hist_mapped[200], 16);
    expect_invariant(small);
}

TEST_F(LutRefresh, ResetLutTouchesTheBandsOfTheMask)
{
    const int n = make_band(16, { { 50, 256 } }), other = make_band(16, { { 50, 256 } });
    show_grey(n);
    bands[n].lut[50] = bands[other].lut[50] = 200;
    reset_lut(1u << n);
    EXPECT_EQ(bands[n].lut[50], 50);
    EXPECT_EQ(bands[other].lut[50], 200);
    band_free(other);
}

TEST_F(LutRefresh, WithoutAnActiveWindowNothingHappens)
{
    refresh_after_lut();
}

// The table of 9 planes folds the look-up table in whether it is static or not.
TEST_F(LutRefreshNinePlanes, OneGreyPictureChangesThroughTheColourTableAlsoWhenThatIsStatic)
{
    ASSERT_NE(display_mode & STATIC_VLT, 0u);
    const int n = make_band(16, { { 50, 256 } }), w = show_grey(n);
    vlt_program();
    EXPECT_EQ(shown_grey(w), gamma_table[50]);
    bands[n].lut[50] = 200;
    refresh_after_lut();
    EXPECT_EQ(shown_grey(w), gamma_table[200]);
}

TEST_F(LutRefreshNinePlanes, ASecondGreyPictureAndItsClosingLeaveTheLookOfTheFirst)
{
    const int n = make_band(16, { { 50, 256 } }), other = make_band(16, { { 90, 256 } }), first = show_grey(n);
    bands[n].lut[50] = 200;
    refresh_after_lut();
    const int second = show_grey(other);
    EXPECT_EQ(shown_grey(first), gamma_table[200]);
    EXPECT_EQ(shown_grey(second), gamma_table[90]);
    close_window(second);
    EXPECT_EQ(shown_grey(first), gamma_table[200]);
}
