// The one loop that waits.
#include "shell/workstation.h"

#include "display/picture_windows.h"
#include "forms/forms.h"
#include "services/screenshot.h"
#include "shell/command_table.h"
#include "shell/menu.h"

namespace {

struct Prompt : Workstation {
    // A picture window without an image, its drawable area at 100, 200.
    int open_window()
    {
        EXPECT_GT(new_picture_window(300, 200, 100, 200), 0);
        ws_flush_refresh();
        return active_window;
    }

    int in_window_x(int x) const { return windows[active_window].x + x; }
    int in_window_y(int y) const { return windows[active_window].y + y; }
};

TEST_F(Prompt, EscIsAResetAtWindowZero)
{
    pick_x = pick_y = 77;
    current_window = 5;
    operator_does([] { press_key(KEY_ESC); });
    EXPECT_EQ(prompt_input("Cut", "Select point", 0), INPUT_RESET);
    EXPECT_EQ(current_window, 0);
    EXPECT_EQ(pick_x, 0);
    EXPECT_EQ(pick_y, 0);
}

TEST_F(Prompt, TitleAndPromptShowInFieldsOneAndThree)
{
    msg_put(MSG_KEYIN, MSG_LEFT, "left over");
    operator_does([] {
        EXPECT_STREQ(msg_text(MSG_TITLE), "Cut");
        EXPECT_STREQ(msg_text(MSG_PROMPT), "Select point");
        EXPECT_STREQ(msg_text(MSG_KEYIN), "");
        EXPECT_STREQ(prompt_text(), "Select point");
        press_key(KEY_ESC);
    });
    prompt_input("Cut", "Select point", 0);
    EXPECT_STREQ(prompt_text(), "");
}

TEST_F(Prompt, AClickInAPictureIsAPoint)
{
    const int w = open_window();
    operator_does([&] { click(in_window_x(30), in_window_y(40)); });
    EXPECT_EQ(prompt_input("Cut", "Select point", 0), INPUT_POINT);
    EXPECT_EQ(pick_window, w);
    EXPECT_EQ(pick_x, 30);
    EXPECT_EQ(pick_y, 40);
}

TEST_F(Prompt, ASlowPressAndItsReleaseAreTwoAnswers)
{
    const int w = open_window();
    operator_does([&] { pointer_event(BACKEND_PRESS, in_window_x(5), in_window_y(6)); });
    operator_does([] { memory_backend_advance(WS_CLICK_MS + 1); });
    EXPECT_EQ(prompt_input("Cut", "Drag", 0), INPUT_BUTTON1);
    EXPECT_EQ(pick_window, w);
    EXPECT_EQ(pick_x, 5);
    operator_does([&] { pointer_event(BACKEND_RELEASE, in_window_x(50), in_window_y(60)); });
    operator_does([] { memory_backend_advance(WS_CLICK_MS + 1); });
    EXPECT_EQ(prompt_input("Cut", "Drag", 0), INPUT_BUTTON0);
    EXPECT_EQ(pick_x, 50);
    EXPECT_EQ(pick_y, 60);
}

TEST_F(Prompt, TheResetButtonAnswersWithItsPlace)
{
    open_window();
    operator_does([&] { click(in_window_x(7), in_window_y(8), 2); });
    EXPECT_EQ(prompt_input("Cut", "Select point", 0), INPUT_RESET);
    EXPECT_EQ(pick_x, 7);
    EXPECT_EQ(pick_y, 8);
}

TEST_F(Prompt, APointInTheBackgroundOnlyRewritesTheStrip)
{
    const int w = open_window();
    operator_does([] {
        msg_put(MSG_TITLE, MSG_CENTRED, "covered");
        msg_put(MSG_PROMPT, MSG_CENTRED, "covered");
        click(900, 700);
    });
    operator_does([] {
        EXPECT_STREQ(msg_text(MSG_TITLE), "kestrel");
        EXPECT_STREQ(msg_text(MSG_PROMPT), "Ready");
        press_key(KEY_ESC);
    });
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_RESET);
    EXPECT_EQ(active_window, w);
}

TEST_F(Prompt, AHelpPressRewritesTheStripAndIsNoPoint)
{
    open_window();
    operator_does([&] {
        msg_put(MSG_PROMPT, MSG_CENTRED, "covered");
        click(in_window_x(7), in_window_y(8), 0, BACKEND_CTRL);
    });
    operator_does([] {
        EXPECT_STREQ(msg_text(MSG_PROMPT), "Ready");
        press_key(KEY_ESC);
    });
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_RESET);
}

TEST_F(Prompt, WithAFormUpAPressLeavesTheStripAlone)
{
    operator_does([] {
        form_is_up = 1;
        msg_put(MSG_PROMPT, MSG_CENTRED, "covered");
        click(900, 700);
    });
    operator_does([] {
        EXPECT_STREQ(msg_text(MSG_PROMPT), "covered");
        form_is_up = 0;
        press_key(KEY_ESC);
    });
    prompt_input("kestrel", "Ready", 0);
}

TEST_F(Prompt, AKeyInEndsWithReturn)
{
    operator_does([] {
        type_text("40 50");
        press_key(KEY_RETURN);
    });
    EXPECT_EQ(prompt_input("Read", "Enter x0 y0", PROMPT_KEYIN), INPUT_KEYIN);
    EXPECT_STREQ(keyin_buffer, "40 50");
    EXPECT_EQ(keyin_length, 5);
}

TEST_F(Prompt, AKeyInIsCutToItsBuffer)
{
    operator_does([] {
        type_text(std::string(200, 'x').c_str());
        press_key(KEY_RETURN);
    });
    EXPECT_EQ(prompt_input("Read", "Enter name", PROMPT_KEYIN), INPUT_KEYIN);
    EXPECT_LE(keyin_length, 79);
    EXPECT_EQ(int(std::strlen(keyin_buffer)), keyin_length);
}

TEST_F(Prompt, WithoutTheFlagNothingIsKeyedIn)
{
    operator_does([] {
        EXPECT_EQ(prompt_takes_keyin(), 0);
        type_text("40");
        press_key(KEY_RETURN);
    });
    operator_does([] { press_key(KEY_ESC); });
    EXPECT_EQ(prompt_input("Read", "Select", 0), INPUT_RESET);
}

TEST_F(Prompt, PollingFindsNothing)
{
    EXPECT_EQ(prompt_input("Filter", "Working", PROMPT_POLL), 0);
}

TEST_F(Prompt, PollingFindsWhatIsQueued)
{
    press_key(KEY_ESC);
    EXPECT_EQ(prompt_input("Filter", "Working", PROMPT_POLL), INPUT_RESET);
    EXPECT_EQ(prompt_input("Filter", "Working", PROMPT_POLL), 0);
}

TEST_F(Prompt, AQuitComesBeforeEverythingElse)
{
    press_key(KEY_ESC);
    quit_requested = 1;
    EXPECT_EQ(prompt_input("Cut", "Select point", 0), INPUT_QUIT);
    quit_requested = 0;
    EXPECT_EQ(prompt_input("Cut", "Select point", PROMPT_POLL), INPUT_RESET);
}

// --- commands inside a wait ----------------------------------------------------------------------------------

int command_runs, nested_answer;

void counting_command()
{
    command_runs++;
    EXPECT_STREQ(prompt_text(), "");
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

void asking_command()
{
    command_runs++;
    nested_answer = prompt_input("Nested", "Select inner", 0);
}

struct Commands : Prompt {
    command_row *row = nullptr;
    command_row kept {};

    void put_handler(void (*handler)())
    {
        row = command_find("fit");
        kept = *row;
        row->handler = handler;
        command_runs = 0;
    }

    void TearDown() override
    {
        if (row)
            *row = kept;
        Prompt::TearDown();
    }
};

TEST_F(Commands, AChosenItemRunsInsideTheWait)
{
    put_handler(counting_command);
    operator_does([] { ws_post_user_event(40016); });
    operator_does([] {
        EXPECT_EQ(command_runs, 1);
        EXPECT_STREQ(prompt_text(), "Ready");
        EXPECT_STREQ(msg_text(MSG_TITLE), "kestrel");
        EXPECT_STREQ(msg_text(MSG_PROMPT), "Ready");
        press_key(KEY_ESC);
    });
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_RESET);
}

TEST_F(Commands, AButtonIsTakenBeforeACommand)
{
    put_handler(counting_command);
    ws_post_user_event(40016);
    press_key(KEY_ESC);
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_RESET);
    EXPECT_EQ(command_runs, 0);
    prompt_input("kestrel", "Ready", PROMPT_POLL);
    EXPECT_EQ(command_runs, 1);
}

TEST_F(Commands, AnUnknownIdentifierDoesNothing)
{
    operator_does([] { ws_post_user_event(39999); });
    operator_does([] { press_key(KEY_ESC); });
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_RESET);
}

TEST_F(Commands, ANestedWaitAnswersItsOwnCommand)
{
    put_handler(asking_command);
    operator_does([] { ws_post_user_event(40016); });
    operator_does([] {
        EXPECT_STREQ(prompt_text(), "Select inner");
        press_key(KEY_ESC);
    });
    operator_does([] {
        EXPECT_EQ(nested_answer, INPUT_RESET);
        EXPECT_STREQ(prompt_text(), "Ready");
        press_key(KEY_ESC);
    });
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_RESET);
}

TEST_F(Commands, QuitUnwindsEveryWait)
{
    put_handler(asking_command);
    operator_does([] { ws_post_user_event(40016); });
    operator_does([] { ws_post_user_event(40005); });
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_QUIT);
    EXPECT_EQ(nested_answer, INPUT_QUIT);
    EXPECT_EQ(quit_requested, 1);
}

// --- what the window system tells ----------------------------------------------------------------------------

TEST_F(Prompt, AClosedWindowIsForgotten)
{
    const int w = open_window();
    operator_does([&] {
        int border_x, border_y, caption;
        ws_frame_metrics(&border_x, &border_y, &caption);
        click(windows[w].x + windows[w].width - 1 + border_x - caption / 2 - 1, windows[w].y - caption / 2);
    });
    operator_does([&] {
        EXPECT_EQ(windows[w].flags, 0);
        EXPECT_EQ(picture_count, 0);
        EXPECT_EQ(active_window, -1);
        press_key(KEY_ESC);
    });
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_RESET);
}

TEST_F(Prompt, CollapsingIsNotedInTheFlags)
{
    const int w = open_window();
    operator_does([&] { ws_collapse(w); });
    operator_does([&] {
        EXPECT_EQ(windows[w].flags, 7);
        ws_uncollapse(w);
    });
    operator_does([&] {
        EXPECT_EQ(windows[w].flags, 5);
        press_key(KEY_ESC);
    });
    prompt_input("kestrel", "Ready", 0);
}

TEST_F(Prompt, ACollapsedHistogramIsNotCheckedInTheMenu)
{
    int w;
    ASSERT_EQ(ws_create_window(0, "histogram", 5, 87, 289, 338, &w), 0);
    ws_show_window(w);
    windows[w].flags = WIN_DISPLAYED | WIN_HISTOGRAM;
    hist_window = w;
    menu_check("toggle_hist", 1);
    operator_does([&] { ws_collapse(w); });
    operator_does([&] {
        EXPECT_EQ(ws_menu_checked(40021), 0);
        ws_uncollapse(w);
    });
    operator_does([&] {
        EXPECT_EQ(ws_menu_checked(40021), 1);
        press_key(KEY_ESC);
    });
    prompt_input("kestrel", "Ready", 0);
}

TEST_F(Prompt, AResizedWindowHasItsGeometryReadAndIsCleared)
{
    const int w = open_window();
    ws_set_foreground(w, 255);
    ws_fill_rect(w, 0, 0, 299, 199);
    operator_does([&] {
        int border_x, border_y, caption;
        ws_frame_metrics(&border_x, &border_y, &caption);
        const int x = windows[w].x + 299 + border_x / 2, y = windows[w].y + 199 + border_y / 2;
        pointer_event(BACKEND_MOVE, x, y);
        pointer_event(BACKEND_PRESS, x, y);
        pointer_event(BACKEND_MOVE, x + 50, y + 20);
        pointer_event(BACKEND_RELEASE, x + 50, y + 20);
    });
    operator_does([&] {
        EXPECT_EQ(windows[w].width, 350);
        EXPECT_EQ(windows[w].height, 220);
        uint32_t value = 99;
        ws_window_pixel(w, 340, 210, &value, nullptr);
        EXPECT_EQ(value, 0u);
        press_key(KEY_ESC);
    });
    prompt_input("kestrel", "Ready", 0);
}

TEST_F(Prompt, RefreshesAreIgnoredAfterTheMark)
{
    const int w = open_window();
    uint32_t value = 99;
    operator_does([&] {
        ws_set_foreground(w, 255);
        ws_fill_rect(w, 0, 0, 299, 199);
        prompt_mark_refresh_done();
        ws_collapse(w);
        ws_uncollapse(w);
    });
    operator_does([&] {
        ws_window_pixel(w, 10, 10, &value, nullptr);
        EXPECT_EQ(value, 255u);
        press_key(KEY_ESC);
    });
    prompt_input("kestrel", "Ready", 0);
    // The mark is for one wait only.
    operator_does([&] {
        ws_collapse(w);
        ws_uncollapse(w);
    });
    operator_does([&] {
        ws_window_pixel(w, 10, 10, &value, nullptr);
        EXPECT_EQ(value, 0u);
        press_key(KEY_ESC);
    });
    prompt_input("kestrel", "Ready", 0);
}

}  // namespace
