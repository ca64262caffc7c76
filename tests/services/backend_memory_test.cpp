#include "screen_fixture.h"
#include "operator.h"

static int idle_calls;

struct memory_screen_test : testing::Test {
    void SetUp() override
    {
        screen_start(320, 240, 8);
        idle_calls = 0;
    }
    void TearDown() override
    {
        ws_exit();
        memory_backend_on_idle(nullptr);
    }
};

TEST_F(memory_screen_test, ThePictureHoldsTheMenuBarAndTheFrame)
{
    compose_and_present();
    int width, height;
    ASSERT_NE(memory_backend_pixels(&width, &height), nullptr);
    EXPECT_EQ(width, 320);
    EXPECT_EQ(height, 240 + ws_menu_height());
}

TEST_F(memory_screen_test, TheClockMovesByEventsAndByAdvance)
{
    EXPECT_EQ(ws_now(), 0u);
    memory_backend_advance(40);
    EXPECT_EQ(ws_now(), 40u);
    backend_event event {};
    event.kind = BACKEND_MOVE;
    event.time = 500;
    memory_backend_queue(&event);
    pending();
    EXPECT_EQ(ws_now(), 500u);
    event.time = 100;                  // the past is now
    memory_backend_queue(&event);
    pending();
    EXPECT_EQ(ws_now(), 500u);
}

TEST_F(memory_screen_test, AWaitAsksTheIdleFunctionFirst)
{
    memory_backend_on_idle([] {
        idle_calls++;
        ws_post_user_event(7);
        return 1;
    });
    uint32_t word;
    ASSERT_EQ(ws_wait_event(WS_USER, &word), 0);
    EXPECT_EQ(idle_calls, 1);
    EXPECT_EQ(ws_now(), 0u);
}

TEST_F(memory_screen_test, TheIdleFunctionIsNotAskedWhileEventsWait)
{
    memory_backend_on_idle([] { idle_calls++; return 0; });
    ws_post_user_event(7);
    uint32_t word;
    ASSERT_EQ(ws_wait_event(WS_USER, &word), 0);
    EXPECT_EQ(idle_calls, 0);
}

TEST_F(memory_screen_test, TheIdleFunctionMayAskForThePointerWithoutBeingAskedAgain)
{
    memory_backend_on_idle([] {
        idle_calls++;
        int w, x, y, inside;
        for (int i = 0; i < 5; i++)
            ws_pointer_anywhere(&w, &x, &y, &inside);
        ws_post_user_event(7);
        return 1;
    });
    uint32_t word;
    ASSERT_EQ(ws_wait_event(WS_USER, &word), 0);
    EXPECT_EQ(idle_calls, 1);
    EXPECT_EQ(ws_now(), 0u);
}

TEST_F(memory_screen_test, AWaitWithATimeLimitLetsTheTimePass)
{
    memory_backend_on_idle([] { idle_calls++; return 0; });
    press(10, 10);
    uint32_t word;
    ASSERT_EQ(ws_wait_event(WS_BUTTON, &word), 0);
    EXPECT_EQ(idle_calls, 1);
    EXPECT_EQ(ws_now(), 210u);
}

TEST_F(memory_screen_test, AWaitThatNothingCanEndEndsTheProcess)
{
    uint32_t word;
    EXPECT_EXIT(ws_wait_event(WS_USER, &word), testing::ExitedWithCode(1), "waits for input");
    memory_backend_on_idle([] { return 0; });
    EXPECT_EXIT(ws_wait_event(WS_USER, &word), testing::ExitedWithCode(1), "waits for input");
}

TEST_F(memory_screen_test, ALoopThatPollsForEverEndsTheProcess)
{
    int x, y, inside;
    EXPECT_EXIT(for (;;) ws_pointer_in_window(0, &x, &y, &inside), testing::ExitedWithCode(1), "waited an hour");
}

static ws_screen_info info_of(int planes, uint32_t flags)
{
    ws_exit();
    screen_start(640, 480, planes, flags);
    ws_screen_info info {};
    ws_inquire_screen(&info);
    return info;
}

TEST_F(memory_screen_test, ScreensOfAllDepthsCanBeHad)
{
    for (int planes = 1; planes <= 10; planes++) {
        const ws_screen_info info = info_of(planes, 0);
        EXPECT_EQ(info.planes, planes);
        EXPECT_EQ(info.flags, uint32_t(WS_CAP_ALWAYS));
    }
    const ws_screen_info info = info_of(TRUE_COLOUR, 0);
    EXPECT_EQ(info.planes, 8);
    EXPECT_EQ(info.flags, uint32_t(WS_CAP_ALWAYS | WS_CAP_TRUECOLOUR));
    EXPECT_EQ(info.width, 640);
    EXPECT_EQ(info.height, 480);
}

TEST_F(memory_screen_test, FlagsAreAddedToWhatTheDepthImplies)
{
    EXPECT_EQ(info_of(9, WS_CAP_OVERLAY | WS_CAP_HIGHLIGHT).flags, uint32_t(WS_CAP_OVERLAY | WS_CAP_HIGHLIGHT | WS_CAP_ALWAYS));
    EXPECT_EQ(info_of(8, WS_CAP_TOP).flags, WS_CAP_TOP | WS_CAP_ALWAYS);
}

TEST_F(memory_screen_test, AnImpossibleScreenIsRefused)
{
    ws_exit();
    memory_backend_configure(640, 480, 11, 0);
    EXPECT_NE(ws_enter(), 0);
    memory_backend_configure(0, 480, 8, 0);
    EXPECT_NE(ws_enter(), 0);
}
