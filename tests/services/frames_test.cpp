// What an operator does to the frames of windows with the mouse.
#include "services/decorations.h"
#include "screen_fixture.h"
#include "operator.h"

struct frames_test : testing::Test {
    int w = -1, border = 0, border_y = 0, caption = 0;
    static constexpr ws_rect START { 100, 100, 299, 249 };

    void SetUp() override
    {
        screen_start(800, 600, 8);
        w = titled_window("Sheet 7", START.x0, START.y0, START.x1, START.y1);
        ws_frame_metrics(&border, &border_y, &caption);
        ws_flush_refresh();
    }
    void TearDown() override
    {
        ws_exit();
        ws_application_hooks = {};
    }
    void expect_rect(int x0, int y0, int x1, int y1)
    {
        ws_rect r {};
        ASSERT_EQ(ws_window_rect(w, &r.x0, &r.y0, &r.x1, &r.y1), 0);
        EXPECT_EQ(r.x0, x0);
        EXPECT_EQ(r.y0, y0);
        EXPECT_EQ(r.x1, x1);
        EXPECT_EQ(r.y1, y1);
    }
    int caption_y() const { return START.y0 - caption / 2; }
    void drag(int x, int y, int to_x, int to_y)
    {
        press(x, y);
        move_to(to_x, to_y);
        release(to_x, to_y);
    }
    // A point of a caption button, found by asking from the caption's right end.
    void find_button(window_part wanted, int *x_out)
    {
        window_part part;
        for (*x_out = START.x1; *x_out > START.x0; --*x_out)
            if (window_at(*x_out, caption_y(), &part) == w && part == wanted) {
                *x_out -= 3;
                return;
            }
        FAIL() << "no such button";
    }
};

TEST_F(frames_test, TheCaptionMovesTheWindowWithoutARefresh)
{
    press(150, caption_y());
    move_to(180, caption_y() + 40);
    expect_rect(130, 140, 329, 289);                   // moves along with the pointer
    release(190, caption_y() + 50);
    expect_rect(130, 140, 329, 289);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(frames_test, EscPutsADraggedWindowBack)
{
    press(150, caption_y());
    move_to(250, 300);
    key(KEY_ESC);
    release(250, 300);
    expect_rect(START.x0, START.y0, START.x1, START.y1);
    EXPECT_EQ(pending(), 0u);                          // and is no reset
}

TEST_F(frames_test, TheCornerResizesAtTheEndAndQueuesARefresh)
{
    press(START.x1 + 2, START.y1 + 2);
    move_to(START.x1 + 52, START.y1 + 32);
    expect_rect(START.x0, START.y0, START.x1, START.y1);
    EXPECT_EQ(seen(START.x1 + 51, 150), uint32_t(UI_ACCENT));   // the outline's right side
    release(START.x1 + 52, START.y1 + 32);
    expect_rect(START.x0, START.y0, START.x1 + 50, START.y1 + 30);
    EXPECT_EQ(pending(), uint32_t(WS_REFRESH));
    EXPECT_NE(seen(START.x1 + 70, 150), uint32_t(UI_ACCENT));
}

TEST_F(frames_test, BordersResizeInTheirDirectionOnly)
{
    drag(START.x0 - 2, 170, START.x0 - 22, 400);       // left border
    expect_rect(START.x0 - 20, START.y0, START.x1, START.y1);
    drag(200, START.y1 + 2, 500, START.y1 + 12);       // lower border
    expect_rect(START.x0 - 20, START.y0, START.x1, START.y1 + 10);
}

TEST_F(frames_test, APressOnABorderWithoutAMoveChangesNothing)
{
    press(START.x1 + 2, START.y1 + 2);
    release(START.x1 + 2, START.y1 + 2);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(frames_test, TheCollapseButtonMakesAnIconAndAClickBringsTheWindowBack)
{
    int x;
    find_button(PART_COLLAPSE_BUTTON, &x);
    click(x, caption_y());
    EXPECT_EQ(ws_window_collapsed(w), 1);
    int window, state;
    ASSERT_EQ(ws_read_collapse(&window, &state), 0);
    EXPECT_EQ(window, w);
    EXPECT_EQ(state, 1);
    const ws_rect icon = icon_rect(w);
    click(icon.x0 + 20, icon.y0 + 10);
    EXPECT_EQ(ws_window_collapsed(w), 0);
    ASSERT_EQ(ws_read_collapse(&window, &state), 0);
    EXPECT_EQ(state, 0);
    EXPECT_EQ(pending() & WS_BUTTON, 0u);
}

TEST_F(frames_test, AnIconCanBeDragged)
{
    ws_collapse(w);
    ws_flush_collapse();
    const ws_rect icon = icon_rect(w);
    drag(icon.x0 + 20, icon.y0 + 10, icon.x0 + 120, icon.y0 - 90);
    EXPECT_EQ(ws_window_collapsed(w), 1);
    EXPECT_EQ(icon_rect(w).x0, icon.x0 + 100);
    EXPECT_EQ(icon_rect(w).y0, icon.y0 - 100);
}

TEST_F(frames_test, AButtonLetGoElsewhereDoesNothing)
{
    int x;
    find_button(PART_CLOSE_BUTTON, &x);
    press(x, caption_y());
    move_to(200, 200);
    release(200, 200);
    EXPECT_EQ(ws_window_shown(w), 1);
    EXPECT_EQ(pending(), 0u);
}

static int query_answer, query_window;

TEST_F(frames_test, TheCloseButtonAsksAndMayBeRefused)
{
    ws_application_hooks.close_query = [](int asked) { query_window = asked; return query_answer; };
    int x;
    find_button(PART_CLOSE_BUTTON, &x);
    query_answer = 0;
    click(x, caption_y());
    EXPECT_EQ(query_window, w);
    EXPECT_EQ(ws_window_shown(w), 1);
    EXPECT_EQ(pending(), 0u);
    query_answer = 1;
    click(x, caption_y());
    EXPECT_EQ(ws_window_shown(w), 0);
    int deleted;
    ASSERT_EQ(ws_read_delete(&deleted), 0);
    EXPECT_EQ(deleted, w);
}

TEST_F(frames_test, TheProgramsOwnDeletionQueuesNothing)
{
    ws_delete_window(w);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(frames_test, AWindowDeletedDuringADragEndsTheDrag)
{
    press(150, caption_y());
    ws_delete_window(w);
    move_to(400, 400);
    release(400, 400);
    EXPECT_EQ(pending(), 0u);
}

TEST_F(frames_test, WhileAPopUpIsUpFramesAreDead)
{
    int popup;
    ws_popup_begin(0, 8, &popup);
    ws_popup_open(popup, 400, 300, 500, 400);
    drag(150, caption_y(), 250, caption_y() + 60);
    ws_popup_end(popup);
    expect_rect(START.x0, START.y0, START.x1, START.y1);
}

TEST_F(frames_test, TheRightButtonOnACaptionResets)
{
    click(150, caption_y(), 2);
    const button_event e = read_button();
    EXPECT_EQ(e.button, 2);
    EXPECT_EQ(e.transition, WS_CLICK);
    EXPECT_EQ(e.w, w);
}
