#include "screen_fixture.h"
#include "mem.h"
#include <string>

static ws_rect rect_of(int w)
{
    ws_rect r = {};
    EXPECT_EQ(ws_window_rect(w, &r.x0, &r.y0, &r.x1, &r.y1), 0);
    return r;
}

static void expect_rect(const ws_rect &have, int x0, int y0, int x1, int y1)
{
    EXPECT_EQ(have.x0, x0);
    EXPECT_EQ(have.y0, y0);
    EXPECT_EQ(have.x1, x1);
    EXPECT_EQ(have.y1, y1);
}

// --- the table

TEST_F(screen_test, ThirtyNineWindowsFitBesideTheFrame)
{
    int w = -1;
    for (int i = 1; i < WS_WINDOWS; i++) {
        ASSERT_EQ(ws_create_window(0, "t", 0, 0, 10, 10, &w), 0);
        EXPECT_EQ(w, i);
    }
    EXPECT_EQ(ws_create_window(0, "t", 0, 0, 10, 10, &w), -1);
    EXPECT_EQ(ws_delete_window(17), 0);
    ASSERT_EQ(ws_create_window(0, "t", 0, 0, 10, 10, &w), 0);
    EXPECT_EQ(w, 17);
}

TEST_F(screen_test, NumbersOutsideTheTableOrUnusedFail)
{
    for (const int w : { -1, 40, 1000, 7 }) {
        EXPECT_EQ(ws_show_window(w), -1);
        EXPECT_EQ(ws_delete_window(w), -1);
        EXPECT_EQ(ws_move_window(w, 0, 0, 1, 1), -1);
        EXPECT_EQ(ws_clear_window(w), -1);
        EXPECT_EQ(ws_draw(w, 1, 1), -1);
        EXPECT_EQ(ws_collapse(w), -1);
        EXPECT_EQ(ws_set_title(w, "x"), -1);
        EXPECT_EQ(ws_window_shown(w), 0);
    }
}

TEST_F(screen_test, RectanglesThatAreNoneAreRefused)
{
    int w = -1;
    EXPECT_EQ(ws_create_window(0, "t", 10, 10, 9, 20, &w), -1);
    EXPECT_EQ(ws_create_window(0, "t", 0, 0, 2000000000, 2000000000, &w), -1);
    w = plain_window(0, 0, 9, 9);
    EXPECT_EQ(ws_move_window(w, 5, 5, 4, 9), -1);
    expect_rect(rect_of(w), 0, 0, 9, 9);
}

TEST_F(screen_test, TitlesAreCutAtSeventySixCharacters)
{
    const int w = titled_window(std::string(100, 'x').c_str(), 50, 50, 90, 90);
    EXPECT_EQ(std::string(ws_title(w)), std::string(76, 'x'));
    ws_set_title(w, "histogram");
    EXPECT_STREQ(ws_title(w), "histogram");
}

TEST_F(screen_test, TitleOfWindowZeroIsTheFramesAlsoUnderAPopUp)
{
    int popup;
    ws_popup_begin(0, 8, &popup);
    ws_set_title(0, "kestrel");
    EXPECT_STREQ(ws_title(0), "kestrel");
    ws_popup_end(0);
    EXPECT_STREQ(ws_title(0), "kestrel");
}

TEST_F(screen_test, TheFrameCanBeNeitherDeletedNorMoved)
{
    EXPECT_EQ(ws_delete_window(0), 0);
    EXPECT_EQ(ws_window_shown(0), 1);
    EXPECT_EQ(ws_move_window(0, 5, 5, 9, 9), -1);
    expect_rect(rect_of(0), 0, 0, 319, 239);
}

TEST_F(screen_test, OnlyOneTopWindowAtATime)
{
    int w, other;
    ASSERT_EQ(ws_create_top_window(0, 0, 0, 99, 99, &w), 0);
    EXPECT_EQ(ws_create_top_window(0, 0, 0, 99, 99, &other), -1);
    EXPECT_EQ(ws_delete_window(w), 0);
    EXPECT_EQ(ws_create_top_window(0, 0, 0, 99, 99, &other), 0);
}

// --- showing and drawing

TEST_F(screen_test, DrawingBeforeAWindowIsShownDoesNothingAndSucceeds)
{
    int w;
    ASSERT_EQ(ws_create_plain_window(0, 0, 0, 9, 9, &w), 0);
    const uint8_t slot = 9;
    EXPECT_EQ(ws_put_8(w, 255, 2, 2, 2, 2, &slot), 0);
    EXPECT_EQ(ws_fill_rect(w, 0, 0, 9, 9), 0);
    EXPECT_EQ(ws_draw(w, 5, 5), 0);
    EXPECT_EQ(ws_clear_window(w), 0);
    EXPECT_EQ(ws_window_shown(w), 0);
    ws_show_window(w);
    EXPECT_EQ(held(w, 2, 2), 0u);
}

TEST_F(screen_test, DrawingIntoACollapsedWindowDoesNothingAndSucceeds)
{
    const int w = titled_window("t", 50, 50, 90, 90);
    ws_collapse(w);
    EXPECT_EQ(ws_fill_rect(w, 0, 0, 9, 9), 0);
    ws_uncollapse(w);
    EXPECT_EQ(held(w, 5, 5), 0u);
}

TEST_F(screen_test, ShowingQueuesNoRefresh)
{
    uint32_t mask;
    titled_window("t", 50, 50, 90, 90);
    ws_pending(&mask);
    EXPECT_EQ(mask & WS_REFRESH, 0u);
}

// --- moving

TEST_F(screen_test, MovedWindowKeepsItsPixelsAndNeedsNoRefresh)
{
    const int w = plain_window(10, 10, 19, 19);
    fill_window(w, 200);
    ASSERT_EQ(ws_move_window(w, 110, 60, 119, 69), 0);
    expect_rect(rect_of(w), 110, 60, 119, 69);
    EXPECT_EQ(held(w, 9, 9), 200u);
    EXPECT_EQ(seen(110, 60), 0xC8C8C8u);   // slot 200 of the grey ramp that the table starts with
    EXPECT_EQ(seen(10, 10), 0u);           // the frame again
    uint32_t mask;
    ws_pending(&mask);
    EXPECT_EQ(mask & WS_REFRESH, 0u);
}

TEST_F(screen_test, ResizedWindowKeepsWhatOverlapsAndQueuesARefreshOfTheWhole)
{
    const int w = plain_window(10, 10, 19, 19);
    fill_window(w, 200);
    ws_set_background(w, 3);
    ASSERT_EQ(ws_move_window(w, 20, 20, 25, 39), 0);   // 6 wide, 20 high
    EXPECT_EQ(held(w, 5, 9), 200u);
    EXPECT_EQ(held(w, 5, 10), 3u);                     // new rows take the background
    int refreshed = -1, screen = -1;
    ws_rect old = {}, damage = {};
    uint32_t flags;
    ASSERT_EQ(ws_read_refresh(&refreshed, &screen, &old, &damage, &flags), 0);
    EXPECT_EQ(refreshed, w);
    EXPECT_EQ(screen, 0);
    expect_rect(old, 10, 10, 19, 19);
    expect_rect(damage, 0, 0, 5, 19);
    EXPECT_EQ(ws_read_refresh(&refreshed, &screen, &old, &damage, &flags), -1);
}

TEST_F(screen_test, WindowsMayBeLargerThanTheScreenAndOutsideOfIt)
{
    const int large = plain_window(-500, -500, 999, 999);
    fill_window(large, 100);
    EXPECT_EQ(held(large, 1499, 1499), 100u);
    EXPECT_EQ(seen(0, 0), 0x646464u);
    const int outside = plain_window(5000, 5000, 5010, 5010);
    fill_window(outside, 7);
    EXPECT_EQ(held(outside, 10, 10), 7u);
    EXPECT_EQ(seen(319, 100), 0x646464u);
}

TEST_F(screen_test, OperatorCannotMoveACaptionOutOfReach)
{
    const int w = titled_window("t", 100, 100, 199, 149);
    int border_x, border_y, caption;
    ws_frame_metrics(&border_x, &border_y, &caption);
    operator_move(w, -5000, -5000);
    EXPECT_EQ(rect_of(w).y0, caption);
    EXPECT_GT(rect_of(w).x1, 0);
    operator_move(w, 5000, 5000);
    EXPECT_LT(rect_of(w).x0, 320);
    EXPECT_LT(rect_of(w).y0, 240 - ws_strip_height());
}

TEST_F(screen_test, OperatorCannotMakeAWindowTooSmallAndTheOtherEdgeStays)
{
    const int w = titled_window("t", 100, 100, 199, 149);
    operator_resize(w, { 195, 145, 199, 149 });        // upper left corner pulled far in
    expect_rect(rect_of(w), 136, 126, 199, 149);       // 64 by 24 at the least
    operator_resize(w, { 136, 126, 130, 120 });        // lower right corner pulled past the other
    expect_rect(rect_of(w), 136, 126, 199, 149);
}

// --- stacking

TEST_F(screen_test, StackingDecidesWhatIsSeen)
{
    const int a = plain_window(10, 10, 49, 49), b = plain_window(30, 30, 69, 69);
    fill_window(a, 50);
    fill_window(b, 90);
    EXPECT_EQ(seen(40, 40), 0x5A5A5Au);
    ws_pop_top(a);
    EXPECT_EQ(seen(40, 40), 0x323232u);
    EXPECT_EQ(seen(60, 60), 0x5A5A5Au);
    ws_push_bottom(a);
    EXPECT_EQ(seen(40, 40), 0x5A5A5Au);
    EXPECT_EQ(seen(20, 20), 0x323232u);
    ws_delete_window(b);
    EXPECT_EQ(seen(40, 40), 0x323232u);
}

TEST_F(screen_test, TopWindowStaysAboveAllOthers)
{
    int top;
    ASSERT_EQ(ws_create_top_window(0, 0, 0, 99, 99, &top), 0);
    ws_show_window(top);
    fill_window(top, 90);
    const int w = plain_window(10, 10, 19, 19);
    fill_window(w, 50);
    EXPECT_EQ(seen(15, 15), 0x5A5A5Au);
    ws_pop_top(w);
    EXPECT_EQ(seen(15, 15), 0x5A5A5Au);
    ws_push_bottom(top);
    EXPECT_EQ(seen(15, 15), 0x5A5A5Au);
    ws_delete_window(top);
    EXPECT_EQ(seen(15, 15), 0x323232u);
}

TEST_F(screen_test, StripIsAboveWindows)
{
    const int w = plain_window(0, 0, 319, 239);
    fill_window(w, 90);
    EXPECT_EQ(seen(5, 239 - ws_strip_height()), 0x5A5A5Au);
    EXPECT_NE(seen(160, 239), 0x5A5A5Au);
}

// --- collapsing

TEST_F(screen_test, CollapsedWindowGivesWayToAnIconAboveTheStrip)
{
    const int w = titled_window("histogram", 50, 50, 90, 90);
    fill_window(w, 200);
    ASSERT_EQ(seen(60, 60), 0xC8C8C8u);
    ASSERT_EQ(ws_collapse(w), 0);
    EXPECT_EQ(seen(60, 60), 0u);
    EXPECT_EQ(ws_window_collapsed(w), 1);
    EXPECT_EQ(ws_window_shown(w), 1);
    const ws_rect icon = icon_rect(w);
    EXPECT_GE(icon.x0, 0);
    EXPECT_LE(icon.x1, 319);
    EXPECT_LT(icon.y1, 240 - ws_strip_height());
    EXPECT_EQ(seen(icon.x1 - 3, icon.y0 + 3), uint32_t(UI_FACE));
    window_part part;
    EXPECT_EQ(window_at(icon.x0 + 5, icon.y0 + 5, &part), w);
    EXPECT_EQ(part, PART_ICON);
}

TEST_F(screen_test, CollapseAndRestoreQueueTheirEventsAndRestoreARefresh)
{
    const int w = titled_window("t", 50, 50, 90, 80);
    ws_collapse(w);
    ws_collapse(w);                                    // is one already: nothing
    ws_uncollapse(w);
    int who, state, screen;
    ASSERT_EQ(ws_read_collapse(&who, &state), 0);
    EXPECT_EQ(who, w);
    EXPECT_EQ(state, 1);
    ASSERT_EQ(ws_read_collapse(&who, &state), 0);
    EXPECT_EQ(state, 0);
    EXPECT_EQ(ws_read_collapse(&who, &state), -1);
    ws_rect old, damage;
    uint32_t flags;
    ASSERT_EQ(ws_read_refresh(&who, &screen, &old, &damage, &flags), 0);
    EXPECT_EQ(who, w);
    expect_rect(damage, 0, 0, 40, 30);
}

TEST_F(screen_test, IconsFindPlacesOfTheirOwn)
{
    const int a = titled_window("a", 50, 50, 90, 80), b = titled_window("b", 60, 50, 90, 80), c = titled_window("c", 70, 50, 90, 80);
    for (const int w : { a, b, c })
        ws_collapse(w);
    EXPECT_FALSE(rect_meet(icon_rect(a), icon_rect(b)));
    EXPECT_FALSE(rect_meet(icon_rect(a), icon_rect(c)));
    EXPECT_FALSE(rect_meet(icon_rect(b), icon_rect(c)));
}

TEST_F(screen_test, IconGoesWhereTheProgramWantsItButStaysOnTheScreen)
{
    const int w = titled_window("a", 50, 50, 90, 80);
    ws_set_icon_position(w, 30, 33);
    ws_collapse(w);
    EXPECT_EQ(icon_rect(w).x0, 30);
    EXPECT_EQ(icon_rect(w).y0, 33);
    ws_set_icon_position(w, 9999, 9999);
    EXPECT_EQ(icon_rect(w).x1, 319);
    EXPECT_EQ(icon_rect(w).y1, 239 - ws_strip_height());
}

// --- what the operator closes

TEST_F(screen_test, WindowClosedByTheOperatorQueuesADeletionAndOneByTheProgramDoesNot)
{
    const int a = titled_window("a", 50, 50, 90, 80), b = titled_window("b", 60, 50, 90, 80);
    operator_delete(a);
    ws_delete_window(b);
    EXPECT_EQ(ws_window_shown(a), 0);
    int w;
    ASSERT_EQ(ws_read_delete(&w), 0);
    EXPECT_EQ(w, a);
    EXPECT_EQ(ws_read_delete(&w), -1);
}

TEST_F(screen_test, NumberOfAClosedWindowIsNotReusedBeforeTheProgramKnows)
{
    const int a = titled_window("a", 50, 50, 90, 80);
    operator_delete(a);
    EXPECT_NE(titled_window("b", 50, 50, 90, 80), a);
    int w;
    ws_read_delete(&w);
    EXPECT_EQ(titled_window("c", 50, 50, 90, 80), a);
}

// --- parts

TEST_F(screen_test, PartsOfAWindowsFrame)
{
    int border_x, border_y, caption;
    ws_frame_metrics(&border_x, &border_y, &caption);
    const int w = titled_window("a", 100, 60, 219, 139);
    const auto part_at = [w](int x, int y) {
        window_part part;
        EXPECT_EQ(window_at(x, y, &part), w);
        return part;
    };
    EXPECT_EQ(part_at(100, 60), PART_INSIDE);
    EXPECT_EQ(part_at(219, 139), PART_INSIDE);
    EXPECT_EQ(part_at(130, 60 - caption / 2), PART_CAPTION);
    EXPECT_EQ(part_at(219 - caption / 3, 60 - caption / 2), PART_CLOSE_BUTTON);
    EXPECT_EQ(part_at(219 - caption, 60 - caption / 2), PART_COLLAPSE_BUTTON);
    EXPECT_EQ(part_at(100 - border_x, 100), PART_LEFT);
    EXPECT_EQ(part_at(219 + border_x, 100), PART_RIGHT);
    EXPECT_EQ(part_at(160, 60 - caption), PART_TOP);
    EXPECT_EQ(part_at(160, 139 + border_y), PART_BOTTOM);
    EXPECT_EQ(part_at(100 - border_x, 60 - caption), PART_TOP_LEFT);
    EXPECT_EQ(part_at(219 + border_x, 60 - caption), PART_TOP_RIGHT);
    EXPECT_EQ(part_at(100 - border_x, 139 + border_y), PART_BOTTOM_LEFT);
    EXPECT_EQ(part_at(219 + border_x, 139 + border_y), PART_BOTTOM_RIGHT);
    window_part part;
    EXPECT_EQ(window_at(100, 139 + border_y + 1, &part), 0);
    EXPECT_EQ(part, PART_INSIDE);
    EXPECT_EQ(window_at(5, 239, &part), 0);
    EXPECT_EQ(part, PART_STRIP);
    EXPECT_EQ(window_at(5, -1, &part), 0);
    EXPECT_EQ(part, PART_NOTHING);
}

// --- memory

TEST_F(screen_test, WindowWithoutMemoryExistsAndDrawsNothing)
{
    int w;
    ASSERT_EQ(ws_create_plain_window(0, 0, 0, 999, 999, &w), 0);
    mem_fail_countdown = 0;
    EXPECT_EQ(ws_show_window(w), 0);
    EXPECT_EQ(mem_fail_countdown, -1);
    EXPECT_EQ(ws_window_shown(w), 1);
    EXPECT_EQ(ws_fill_rect(w, 0, 0, 50, 50), 0);
    uint32_t pixel = 1;
    EXPECT_EQ(ws_read_pixels(w, 5, 5, 5, 5, &pixel), 0);
    EXPECT_EQ(pixel, 0u);
    compose_and_present();
    ws_move_window(w, 0, 0, 99, 99);       // there is memory now
    fill_window(w, 9);
    EXPECT_EQ(held(w, 99, 99), 9u);
}

// --- pointer and cursors

TEST_F(screen_test, PointerIsToldRelativeToAWindow)
{
    const int w = plain_window(100, 50, 199, 149);
    int x, y, inside;
    ASSERT_EQ(ws_warp_pointer(110, 70), 0);
    ws_state.pointer_inside = true;
    ASSERT_EQ(ws_pointer_in_window(w, &x, &y, &inside), 0);
    EXPECT_EQ(x, 10);
    EXPECT_EQ(y, 20);
    EXPECT_EQ(inside, 1);
    int under;
    ws_warp_pointer(90, 40);
    ASSERT_EQ(ws_pointer_in_window(w, &x, &y, &inside), 0);
    EXPECT_EQ(x, -10);
    EXPECT_EQ(y, -10);
    EXPECT_EQ(inside, 0);
    ASSERT_EQ(ws_pointer_anywhere(&under, &x, &y, &inside), 0);
    EXPECT_EQ(under, 0);
    EXPECT_EQ(x, 90);
    ws_warp_pointer(199, 149);
    ASSERT_EQ(ws_pointer_anywhere(&under, &x, &y, &inside), 0);
    EXPECT_EQ(under, w);
    EXPECT_EQ(x, 99);
    EXPECT_EQ(inside, 1);
}

TEST_F(screen_test, BusyCursorShowsOverItsWindowUntilAsOftenTakenBack)
{
    const int w = plain_window(100, 50, 199, 149);
    ws_warp_pointer(110, 70);
    EXPECT_EQ(ws_state.cursor, CURSOR_CROSS);
    ws_busy_cursor(w);
    ws_busy_cursor(w);
    EXPECT_EQ(ws_state.cursor, CURSOR_BUSY);
    ws_normal_cursor(w);
    EXPECT_EQ(ws_state.cursor, CURSOR_BUSY);
    ws_normal_cursor(w);
    EXPECT_EQ(ws_state.cursor, CURSOR_CROSS);
    ws_normal_cursor(w);                   // one too many does no harm
    ws_busy_cursor(w);
    EXPECT_EQ(ws_state.cursor, CURSOR_BUSY);
}
