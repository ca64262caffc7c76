#include "screen_fixture.h"
#include "mem.h"
#include <cerrno>

static ws_screen_info info_of(int planes, uint32_t flags = 0)
{
    memory_backend_configure(640, 480, planes, flags);
    ws_use_backend(&backend_memory);
    EXPECT_EQ(ws_enter(), 0);
    ws_screen_info info = {};
    EXPECT_EQ(ws_inquire_screen(&info), 0);
    ws_exit();
    return info;
}

TEST(Screen, TableSizeFollowsThePlanes)
{
    for (const int planes : { 4, 5, 6, 7, 8, 9 }) {
        const ws_screen_info info = info_of(planes);
        EXPECT_EQ(info.planes, planes);
        EXPECT_EQ(info.max_index, (1 << planes) - 1);
        EXPECT_EQ(info.vlt_size, 1 << planes);
        EXPECT_EQ(info.vlt_planes, planes);
        EXPECT_EQ(info.dac_bits, 8);
        EXPECT_EQ(info.type, 0);
        EXPECT_EQ(info.flags, 2u);
    }
}

TEST(Screen, TenPlanesHaveFiveHundredAndTwelveSlots)
{
    EXPECT_EQ(info_of(10).planes, 10);
    EXPECT_EQ(info_of(10).max_index, 511);
}

TEST(Screen, TrueColourScreenHasEightTablePlanesAndSaysSo)
{
    const ws_screen_info info = info_of(TRUE_COLOUR);
    EXPECT_EQ(info.planes, 8);
    EXPECT_EQ(info.max_index, 255);
    EXPECT_EQ(info.flags, 258u);       // 256 true colour, 2 always
}

TEST(Screen, FlagsOfTheDisplayAreHandedOn)
{
    EXPECT_EQ(info_of(8, 1 | 64 | 0x80000000u).flags, 0x80000043u);
}

TEST(Screen, SizeIsThatOfTheFrameBelowTheMenuBar)
{
    EXPECT_EQ(info_of(8).width, 640);
    EXPECT_EQ(info_of(8).height, 480);
}

TEST_F(screen_test, WindowZeroIsTheFrame)
{
    int x0, y0, x1, y1, screen = 5;
    ASSERT_EQ(ws_window_rect(0, &x0, &y0, &x1, &y1), 0);
    EXPECT_EQ(x0, 0);
    EXPECT_EQ(y0, 0);
    EXPECT_EQ(x1, 319);
    EXPECT_EQ(y1, 239);
    EXPECT_EQ(ws_window_shown(0), 1);
    EXPECT_EQ(ws_active_screen(&screen), 0);
    EXPECT_EQ(screen, 0);
}

TEST_F(screen_test, StripIsTwoLinesOfTextAndFour)
{
    EXPECT_EQ(ws_strip_height(), 2 * ws_font_height(ui_font()) + 4);
}

TEST_F(screen_test, FrameMetricsAreTheDistancesAroundTheDrawableArea)
{
    int border_x, border_y, caption;
    ASSERT_EQ(ws_frame_metrics(&border_x, &border_y, &caption), 0);
    const int w = titled_window("t", 100, 100, 150, 140);
    const ws_rect outer = window_outer_rect(ws_state.windows[w]);
    EXPECT_EQ(100 - outer.x0, border_x);
    EXPECT_EQ(100 - outer.y0, caption);
    EXPECT_EQ(outer.x1 - 150, border_x);
    EXPECT_EQ(outer.y1 - 140, border_y);
}

TEST_F(screen_test, SecondEnterIsRefused)
{
    EXPECT_EQ(ws_enter(), EINVAL);
}

TEST(Screen, StartsAgainAfterItsEnd)
{
    for (int i = 0; i < 2; i++) {
        screen_start(200, 100, 8);
        plain_window(1, 1, 5, 5);
        EXPECT_EQ(ws_window_shown(1), 1);
        ws_exit();
    }
    EXPECT_EQ(ws_window_shown(1), 0);
}

static std::string reported;
static int reported_level;

static int keep_report(int level, const char *text)
{
    reported = text;
    reported_level = level;
    return 1;
}

// The first allocation of the services themselves, after the memory screen's own, is the colour table.
TEST(Screen, NoMemoryForTheColourTableIsReportedAndEndsTheStart)
{
    memory_backend_configure(200, 100, 8, 0);
    ws_use_backend(&backend_memory);
    report_hook = keep_report;
    mem_fail_countdown = 1;
    EXPECT_NE(ws_enter(), 0);
    mem_fail_countdown = -1;
    report_hook = nullptr;
    EXPECT_EQ(reported, "Could not allocate logical pallette.");
    EXPECT_EQ(reported_level, REPORT_ERROR);
    screen_start(200, 100, 8);
    ws_exit();
}

TEST(Screen, NoMemoryForThePictureIsAnError)
{
    memory_backend_configure(200, 100, 8, 0);
    ws_use_backend(&backend_memory);
    mem_fail_countdown = 2;
    EXPECT_EQ(ws_enter(), ENOMEM);
    mem_fail_countdown = -1;
}

// Every allocation that a small session makes fails once; nothing crashes, and all that succeeded is freed.
TEST(Screen, AnyFailureOfMemoryIsSurvived)
{
    report_hook = keep_report;
    int failed = 0;
    for (int n = 0; n < 40; n++) {
        memory_backend_configure(200, 100, TRUE_COLOUR, 0);
        ws_use_backend(&backend_memory);
        mem_fail_countdown = n;
        if (ws_enter() == 0) {
            int w = -1, handle, popup;
            ws_create_window(0, "t", 20, 30, 90, 60, &w);
            ws_show_window(w);
            ws_set_window_vlt(w, 2);
            ws_fill_rect(w, 0, 0, 5, 5);
            ws_save_area(w, 0, 0, 5, 5, &handle);
            ws_restore_area(w, 3, 3, handle);
            ws_move_window(w, 10, 30, 150, 80);
            ws_popup_begin(0, 24, &popup);
            ws_popup_open(0, 50, 10, 120, 60);
            ws_fill_rect(0, 0, 0, 5, 5);
            compose_and_present();
            EXPECT_EQ(ws_popup_end(0), 0);
            EXPECT_EQ(ws_window_shown(w), 1);
            ws_delete_window(w);
            ws_exit();
        }
        EXPECT_FALSE(ws_state.entered);
        failed += mem_fail_countdown == -1;
    }
    // Memory screen, colour table, picture; the pixels of frame, window, resized window and pop-up; the saved area.
    EXPECT_GE(failed, 8);
    EXPECT_LT(failed, 40);             // the last round had all its memory
    mem_fail_countdown = -1;
    report_hook = nullptr;
}
