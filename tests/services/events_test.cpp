#include "services/events.h"
#include "screen_fixture.h"
#include "operator.h"

struct events_test : testing::Test {
    void SetUp() override { screen_start(800, 600, 8); }
    void TearDown() override
    {
        ws_exit();
        ws_application_hooks = {};
    }
};

// --- classes

TEST(EventClasses, TheNormalSetIsTheSumOfItsClasses)
{
    EXPECT_EQ(WS_BUTTON + WS_REFRESH + WS_DELETE + WS_KEYIN + WS_RESERVED_A + WS_COLLAPSE + WS_PALETTE + WS_WINDOW_ICON + WS_USER,
              WS_NORMAL_EVENTS);
}

TEST_F(events_test, ReadingAnEmptyQueueFails)
{
    int a, b;
    uint32_t flags;
    ws_rect r, s;
    char keys[4];
    ws_set_key_buffer(keys, sizeof keys);
    EXPECT_EQ(ws_read_button(&a, &a, &a, &a, &a, &flags), -1);
    EXPECT_EQ(ws_peek_button(&a, &a, &a, &a, &a, &flags), -1);
    EXPECT_EQ(ws_read_refresh(&a, &b, &r, &s, &flags), -1);
    EXPECT_EQ(ws_read_delete(&a), -1);
    EXPECT_EQ(ws_read_collapse(&a, &b), -1);
    EXPECT_EQ(ws_read_keyin(&a), -1);
    EXPECT_EQ(ws_read_palette(&a), -1);
    EXPECT_EQ(ws_read_user(&a), -1);
    EXPECT_EQ(ws_read_keys(&a), -1);
    EXPECT_EQ(ws_read_window_icon(&a, &b), -1);
    EXPECT_EQ(ws_read_motion(&a, &a, &a, &a, &flags), -1);
    EXPECT_EQ(ws_read_timer(&a), -1);
}

TEST_F(events_test, QueuesAreFirstInFirstOutAndTheBitClearsWithTheLast)
{
    ws_post_user_event(40001);
    ws_post_user_event(40002);
    EXPECT_EQ(pending(), uint32_t(WS_USER));
    int value;
    ASSERT_EQ(ws_read_user(&value), 0);
    EXPECT_EQ(value, 40001);
    EXPECT_EQ(pending(), uint32_t(WS_USER));
    ASSERT_EQ(ws_read_user(&value), 0);
    EXPECT_EQ(value, 40002);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(events_test, AClassThatIsNotEnabledIsNeverQueued)
{
    ws_disable_events(WS_USER | WS_REFRESH | WS_DELETE | WS_COLLAPSE);
    ws_post_user_event(1);
    queue_refresh(0, {}, { 0, 0, 1, 1 }, 1);
    queue_delete(3);
    queue_collapse(3, 1);
    ws_enable_events(WS_USER | WS_REFRESH | WS_DELETE | WS_COLLAPSE);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(events_test, DisablingEmptiesTheQueue)
{
    ws_post_user_event(1);
    queue_delete(3);
    ws_disable_events(WS_USER);
    ws_enable_events(WS_USER);
    EXPECT_EQ(pending(), uint32_t(WS_DELETE));
}

TEST_F(events_test, FlushEmptiesOneQueueOnly)
{
    ws_post_user_event(1);
    queue_delete(3);
    queue_collapse(4, 1);
    ws_flush_delete();
    EXPECT_EQ(pending(), uint32_t(WS_USER | WS_COLLAPSE));
    ws_flush_collapse();
    EXPECT_EQ(pending(), uint32_t(WS_USER));
    ws_flush_user();
    EXPECT_EQ(pending(), 0u);
}

TEST_F(events_test, WaitFirstGivesTheLowestClassOfTheMask)
{
    ws_post_user_event(1);
    queue_delete(3);
    queue_collapse(4, 1);
    uint32_t first = 0;
    ASSERT_EQ(ws_wait_first(WS_USER | WS_COLLAPSE, &first), 0);
    EXPECT_EQ(first, uint32_t(WS_COLLAPSE));
    uint32_t word = 0;
    ASSERT_EQ(ws_wait_event(WS_USER, &word), 0);
    EXPECT_EQ(word, uint32_t(WS_USER | WS_COLLAPSE | WS_DELETE));
}

TEST_F(events_test, CollapseEventsTellWindowAndState)
{
    queue_collapse(7, 1);
    queue_collapse(7, 0);
    int w, state;
    ASSERT_EQ(ws_read_collapse(&w, &state), 0);
    EXPECT_EQ(w, 7);
    EXPECT_EQ(state, 1);
    ASSERT_EQ(ws_read_collapse(&w, &state), 0);
    EXPECT_EQ(state, 0);
}

// --- refresh

struct refresh_record {
    int w = -1, screen = -1;
    ws_rect old_rect {}, damage {};
    uint32_t flags = 0;
};

static refresh_record read_refresh()
{
    refresh_record r;
    EXPECT_EQ(ws_read_refresh(&r.w, &r.screen, &r.old_rect, &r.damage, &r.flags), 0);
    return r;
}

static void expect_rect(const ws_rect &have, const ws_rect &want)
{
    EXPECT_EQ(have.x0, want.x0);
    EXPECT_EQ(have.y0, want.y0);
    EXPECT_EQ(have.x1, want.x1);
    EXPECT_EQ(have.y1, want.y1);
}

TEST_F(events_test, RefreshesOfOneWindowMergeIntoTheUnion)
{
    queue_refresh(3, { 0, 0, 99, 99 }, { 10, 20, 30, 40 }, 1);
    queue_refresh(4, { 0, 0, 9, 9 }, { 1, 1, 2, 2 }, 2);
    queue_refresh(3, { 5, 5, 104, 104 }, { 25, 5, 60, 30 }, 4);
    const refresh_record first = read_refresh();
    EXPECT_EQ(first.w, 3);
    EXPECT_EQ(first.screen, 0);
    expect_rect(first.old_rect, { 5, 5, 104, 104 });   // the newest
    expect_rect(first.damage, { 10, 5, 60, 40 });      // both
    EXPECT_EQ(first.flags, 5u);
    EXPECT_EQ(read_refresh().w, 4);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(events_test, WhileAPopUpIsUpRefreshesOfWindow0GoFirst)
{
    queue_refresh(3, {}, { 0, 0, 1, 1 }, 0);
    queue_refresh(0, {}, { 0, 0, 1, 1 }, 0);
    int w;
    ws_popup_begin(0, 8, &w);
    ws_popup_open(w, 100, 100, 200, 200);
    queue_refresh(0, {}, { 5, 5, 6, 6 }, 0);
    queue_refresh(5, {}, { 0, 0, 1, 1 }, 0);
    const refresh_record first = read_refresh();
    EXPECT_EQ(first.w, 0);
    expect_rect(first.damage, { 0, 0, 6, 6 });
    EXPECT_EQ(read_refresh().w, 3);
    EXPECT_EQ(read_refresh().w, 5);
}

TEST_F(events_test, ADeletedWindowsEventsGoButForTheDeletion)
{
    queue_refresh(3, {}, { 0, 0, 1, 1 }, 0);
    queue_collapse(3, 1);
    queue_delete(3);
    queue_button_change(3, 1, 1, 1, true, 0);
    events_forget_window(3);
    wait_ms(1000);
    EXPECT_EQ(pending(), uint32_t(WS_DELETE));
}

// --- timers

TEST_F(events_test, ATimerRunsEverySixtiethsOfItsPeriod)
{
    ws_enable_events(WS_TIMER);
    int timer, number;
    ASSERT_EQ(ws_timer_start(30, &timer), 0);          // half a second
    wait_ms(499);
    EXPECT_EQ(pending() & WS_TIMER, 0u);
    wait_ms(1);
    EXPECT_NE(pending() & WS_TIMER, 0u);
    ASSERT_EQ(ws_read_timer(&number), 0);
    EXPECT_EQ(number, timer);
    EXPECT_EQ(ws_read_timer(&number), -1);
    wait_ms(500);
    EXPECT_EQ(ws_read_timer(&number), 0);
    ASSERT_EQ(ws_timer_stop(timer), 0);
    wait_ms(5000);
    EXPECT_EQ(ws_read_timer(&number), -1);
}

TEST_F(events_test, ATimerThatIsNotReadWaitsInTheQueueOnce)
{
    ws_enable_events(WS_TIMER);
    int timer, number;
    ws_timer_start(1, &timer);
    for (int i = 0; i < 100; i++)
        wait_ms(17);
    EXPECT_EQ(ws_read_timer(&number), 0);
    EXPECT_EQ(ws_read_timer(&number), -1);
}

TEST_F(events_test, OneTimerOfOneSixtiethRuns60TimesASecond)
{
    ws_enable_events(WS_TIMER);
    int timer, number, runs = 0;
    ws_timer_start(1, &timer);
    for (int ms = 0; ms < 1000; ms++) {
        wait_ms(1);
        runs += ws_read_timer(&number) == 0;
    }
    EXPECT_EQ(runs, 60);
}

TEST_F(events_test, AWaitLastsUntilTheTimerRunsOut)
{
    ws_enable_events(WS_TIMER);
    int timer;
    ws_timer_start(120, &timer);                       // two seconds
    uint32_t word;
    ASSERT_EQ(ws_wait_event(WS_TIMER, &word), 0);
    EXPECT_EQ(ws_now(), 2000u);
}

TEST_F(events_test, ThereAre32Timers)
{
    int number;
    for (int i = 0; i < 32; i++)
        ASSERT_EQ(ws_timer_start(60, &number), 0);
    EXPECT_EQ(ws_timer_start(60, &number), -1);
    EXPECT_EQ(ws_timer_stop(32), -1);
    EXPECT_EQ(ws_timer_stop(7), 0);
    EXPECT_EQ(ws_timer_stop(7), -1);
    ASSERT_EQ(ws_timer_start(60, &number), 0);
    EXPECT_EQ(number, 7);
}

// --- pointer

TEST_F(events_test, AClickArrivesInItsWindowRelativeToItsDrawableArea)
{
    const int w = plain_window(100, 50, 299, 249);
    click(130, 90);
    EXPECT_EQ(read_button(), (button_event { w, 30, 40, 1, WS_CLICK, 0 }));
    click(10, 20);
    EXPECT_EQ(read_button(), (button_event { 0, 10, 20, 1, WS_CLICK, 50 }));
}

TEST_F(events_test, ButtonsAreThoseOfATwoButtonMouse)
{
    click(10, 10, 0);
    EXPECT_EQ(read_button().button, 1);
    click(10, 10, 0, BACKEND_CTRL);
    EXPECT_EQ(read_button().button, 0);
    click(10, 10, 2);
    EXPECT_EQ(read_button().button, 2);
}

TEST_F(events_test, CtrlLetGoBeforeTheButtonDoesNotChangeItsNumber)
{
    press(10, 10, 0, BACKEND_CTRL);
    wait_ms(300);
    release(10, 10, 0);
    EXPECT_EQ(read_button().button, 0);
    const button_event up = read_button();
    EXPECT_EQ(up.button, 0);
    EXPECT_EQ(up.transition, WS_UP);
}

TEST_F(events_test, AHeldPressIsReportedAfter210Milliseconds)
{
    press(10, 10);
    wait_ms(209);
    EXPECT_EQ(pending(), 0u);
    wait_ms(1);
    EXPECT_EQ(read_button(), (button_event { 0, 10, 10, 1, WS_DOWN, 0 }));
    release(15, 10);
    EXPECT_EQ(read_button(), (button_event { 0, 15, 10, 1, WS_UP, 210 }));
}

TEST_F(events_test, AWaitForAButtonEndsWhenThePressIsDue)
{
    press(10, 10);
    uint32_t word;
    ASSERT_EQ(ws_wait_event(WS_BUTTON, &word), 0);
    EXPECT_EQ(ws_now(), 210u);
    EXPECT_EQ(read_button().transition, WS_DOWN);
}

TEST_F(events_test, TheReleaseOfADragGoesToTheWindowOfThePress)
{
    const int w = plain_window(100, 50, 299, 249);
    press(130, 90);
    wait_ms(300);
    read_button();
    move_to(500, 400);
    release(500, 400);
    EXPECT_EQ(read_button(), (button_event { w, 400, 350, 1, WS_UP, 300 }));
}

TEST_F(events_test, PeekLeavesTheEventInTheQueue)
{
    click(10, 20);
    button_event e;
    ASSERT_EQ(ws_peek_button(&e.w, &e.x, &e.y, &e.button, &e.transition, &e.time), 0);
    EXPECT_EQ(e, read_button());
}

TEST_F(events_test, FlushingTheButtonsTakesTheHeldPressToo)
{
    press(10, 10);
    ws_flush_buttons();
    wait_ms(50);
    release(10, 10);
    wait_ms(500);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(events_test, EscIsAResetAtTheOriginOfWindow0)
{
    press(30, 30);                                     // its event comes first
    key(KEY_ESC);
    EXPECT_EQ(read_button(), (button_event { 0, 30, 30, 1, WS_DOWN, 0 }));
    EXPECT_EQ(read_button(), (button_event { 0, 0, 0, 2, WS_CLICK, 0 }));
}

TEST_F(events_test, MotionTellsWindowsOfThePointerAndOfItsLeaving)
{
    const int w = plain_window(100, 50, 299, 249);
    ws_enable_events(WS_MOTION);
    move_to(20, 20);
    move_to(110, 70);
    move_to(115, 75);
    int window, x, y, kind;
    uint32_t flag;
    ASSERT_EQ(ws_read_motion(&window, &x, &y, &kind, &flag), 0);
    EXPECT_EQ(window, 0);
    EXPECT_EQ(kind, MOTION_MOVE);
    ASSERT_EQ(ws_read_motion(&window, &x, &y, &kind, &flag), 0);
    EXPECT_EQ(window, 0);
    EXPECT_EQ(kind, MOTION_LEAVE);
    ASSERT_EQ(ws_read_motion(&window, &x, &y, &kind, &flag), 0);
    EXPECT_EQ(window, w);
    EXPECT_EQ(kind, MOTION_MOVE);
    EXPECT_EQ(x, 15);                                  // of two moves in a row the newest
    EXPECT_EQ(y, 25);
    EXPECT_EQ(flag, 0u);
    EXPECT_EQ(ws_read_motion(&window, &x, &y, &kind, &flag), -1);
}

TEST_F(events_test, AMoveWithAButtonDownSaysSo)
{
    const int w = plain_window(100, 50, 299, 249);
    ws_enable_events(WS_MOTION);
    move_to(110, 70);
    ws_flush_motion();
    press(110, 70);
    move_to(400, 300);                                 // outside: still the pressed window's
    int window, x, y, kind;
    uint32_t flag;
    ASSERT_EQ(ws_read_motion(&window, &x, &y, &kind, &flag), 0);
    EXPECT_EQ(window, w);
    EXPECT_EQ(kind, MOTION_MOVE);
    EXPECT_EQ(flag, 1u);
}

TEST_F(events_test, APressOutsideAnOpenPopUpBeepsAndGoesOn)
{
    int w;
    ws_popup_begin(0, 8, &w);
    ws_popup_open(w, 100, 100, 200, 200);
    const int before = memory_backend_beeps(BEEP_PLAIN);
    click(110, 120);
    EXPECT_EQ(memory_backend_beeps(BEEP_PLAIN), before);
    EXPECT_EQ(read_button(), (button_event { 0, 10, 20, 1, WS_CLICK, 0 }));
    click(50, 60);
    EXPECT_EQ(memory_backend_beeps(BEEP_PLAIN), before + 1);
    EXPECT_EQ(read_button(), (button_event { 0, -50, -40, 1, WS_CLICK, 50 }));
}

TEST_F(events_test, ALoopThatFollowsTheRestingPointerLetsTimePass)
{
    uint32_t before = ws_now();
    int x, y, inside;
    for (int i = 0; i < 10; i++) {
        pending();
        ws_pointer_in_window(0, &x, &y, &inside);
    }
    EXPECT_EQ(ws_now() - before, 9u * 20);             // all but the first question wait 20 ms
}

// --- keyboard

struct keyboard_test : events_test {
    char buffer[8];
    void SetUp() override
    {
        events_test::SetUp();
        ws_enable_events(WS_KEY);
        ws_set_key_buffer(buffer, sizeof buffer);
    }
    int read_key()
    {
        int count = 0;
        if (ws_read_keys(&count) != 0)
            return -1;
        EXPECT_EQ(count, 1);
        return uint8_t(buffer[0]);
    }
};

TEST_F(keyboard_test, KeysGiveTheirBytes)
{
    const struct { int key, modifiers, byte; } table[] = {
        { KEY_END, 0, 5 }, { KEY_HOME, 0, 1 }, { KEY_LEFT, 0, 128 }, { KEY_UP, 0, 133 }, { KEY_RIGHT, 0, 132 }, { KEY_DOWN, 0, 131 },
        { KEY_DELETE, 0, 4 }, { KEY_DELETE, BACKEND_CTRL, 11 }, { KEY_BACKSPACE, 0, 127 }, { KEY_RETURN, 0, 13 }, { KEY_TAB, 0, 9 },
        { KEY_TAB, BACKEND_SHIFT, 15 },
    };
    for (const auto &row : table) {
        key(row.key, row.modifiers);
        EXPECT_EQ(read_key(), row.byte) << "key " << row.key;
    }
}

TEST_F(keyboard_test, CharactersComeInOrder)
{
    type("aZ\xE9");
    EXPECT_EQ(read_key(), 'a');
    EXPECT_EQ(read_key(), 'Z');
    EXPECT_EQ(read_key(), 0xE9);
    EXPECT_EQ(read_key(), -1);
}

TEST_F(keyboard_test, EscIsNoKey)
{
    key(KEY_ESC);
    EXPECT_EQ(pending(), uint32_t(WS_BUTTON));
}

TEST_F(keyboard_test, TheWheelScrollsFormsLineByLine)
{
    backend_event wheel = event_of_kind(BACKEND_WHEEL);
    wheel.y = 2;
    memory_backend_queue(&wheel);
    wheel.y = -1;
    memory_backend_queue(&wheel);
    pending();
    EXPECT_EQ(read_key(), WS_KEY_UP);
    EXPECT_EQ(read_key(), WS_KEY_UP);
    EXPECT_EQ(read_key(), WS_KEY_DOWN);
    EXPECT_EQ(read_key(), -1);
}

TEST_F(keyboard_test, WithoutABufferKeysStayQueued)
{
    type("a");
    ws_set_key_buffer(nullptr, 0);
    int count;
    EXPECT_EQ(ws_read_keys(&count), -1);
    EXPECT_EQ(pending(), uint32_t(WS_KEY));
}

// --- the frame window

static int close_answer, closes, exit_status;
static char dropped[64];

TEST_F(events_test, ACloseThatIsRefusedLeavesEverythingAsItWas)
{
    close_answer = closes = 0;
    ws_application_hooks.frame_close = [] { closes++; return close_answer; };
    const backend_event close = event_of_kind(BACKEND_CLOSE);
    memory_backend_queue(&close);
    EXPECT_EQ(pending(), 0u);
    EXPECT_EQ(closes, 1);
    int w;
    EXPECT_EQ(ws_create_plain_window(0, 0, 0, 9, 9, &w), 0);
}

TEST_F(events_test, ACloseThatIsAllowedEndsTheProcessWithStatus0)
{
    close_answer = 1;
    exit_status = -1;
    ws_application_hooks.frame_close = [] { return close_answer; };
    ws_application_hooks.end_process = [](int status) { exit_status = status; };
    const backend_event close = event_of_kind(BACKEND_CLOSE);
    memory_backend_queue(&close);
    uint32_t word;
    EXPECT_EQ(ws_wait_event(WS_USER, &word), -1);      // the services are over
    EXPECT_EQ(exit_status, 0);
}

TEST_F(events_test, WithoutHooksAllIsAllowedAndTheProcessExits)
{
    const backend_event close = event_of_kind(BACKEND_CLOSE);
    memory_backend_queue(&close);
    EXPECT_EXIT(pending(), testing::ExitedWithCode(0), "");
}

TEST_F(events_test, ADroppedFileGoesToTheApplication)
{
    ws_application_hooks.file_dropped = [](const char *path) { snprintf(dropped, sizeof dropped, "%s", path); };
    backend_event drop = event_of_kind(BACKEND_DROP);
    snprintf(drop.path, sizeof drop.path, "/maps/Sheet 7.tif");
    memory_backend_queue(&drop);
    pending();
    EXPECT_STREQ(dropped, "/maps/Sheet 7.tif");
}
