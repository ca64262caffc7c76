#include "forms/forms_player.h"

namespace {

struct FormRun : FormsTest {
    form *f = form_create(1, "Outer", 200, 100);

    // Corners of the top form's button "ok" do not move with the form's own size, so they tell where it lies.
    static void where(const char *text, int *x, int *y)
    {
        form_point_of(form_top(), form_find(form_top(), text), 0, x, y);
    }
};

constexpr uint32_t FACE = 0xAAAAAA;

}

TEST_F(FormRun, HasThePointerOnlyWhileItRuns)
{
    EXPECT_EQ(form_top(), nullptr);
    EXPECT_EQ(form_is_up, 0);
    step([this] {
        EXPECT_EQ(form_top(), f);
        EXPECT_EQ(form_is_up, 1);
        EXPECT_STREQ(form_title(form_top()), "Outer");
    });
    step_esc();
    EXPECT_EQ(form_run(f, -1, -1, nullptr, nullptr, nullptr), FORM_CANCELLED);
    EXPECT_EQ(form_top(), nullptr);
    EXPECT_EQ(form_is_up, 0);
}

TEST_F(FormRun, LeavesTheScreenAsItWas)
{
    ws_set_foreground(0, 3);
    uint32_t before = 0, during = 0;
    form_add_label(f, 1, 10, 10, "text");
    step([&] { during = screen_pixel(100 + 190, 100 + 110); });   // near the right bottom of its 200 x 126 pixels
    step_esc();
    uint32_t pending;
    ws_pending(&pending);
    before = screen_pixel(290, 210);
    form_run(f, 100, 100, nullptr, nullptr, nullptr);
    EXPECT_EQ(during, FACE);
    EXPECT_NE(before, FACE);
    step([&] { EXPECT_EQ(screen_pixel(290, 210), before); });
    step([] { ws_post_user_event(1); });
    ws_enable_events(WS_USER);
    ws_wait_event(WS_USER, &pending);
}

TEST_F(FormRun, TheTitleBandLiesAboveTheFormsOwnArea)
{
    form_add_button(f, 1, 0, 0, 40, 20, "ok");
    int x = 0, y = 0;
    step([&] { where("ok", &x, &y); });
    step_esc();
    form_run(f, 100, 200, nullptr, nullptr, nullptr);
    EXPECT_EQ(x, 100);
    EXPECT_EQ(y, 200 + int(FORM_TITLE_BAND) + 9);          // the middle of rows 0 to 19
}

TEST_F(FormRun, IsMovedToLieOnTheScreen)
{
    form_add_button(f, 1, 0, 0, 40, 20, "ok");
    int x = 0, y = 0;
    step([&] { where("ok", &x, &y); });
    step_esc();
    form_run(f, 5000, 5000, nullptr, nullptr, nullptr);
    EXPECT_EQ(x, 800 - 200);
    EXPECT_EQ(y, 600 - ws_strip_height() - 126 + 26 + 9);  // above the message strip
}

TEST_F(FormRun, CentresItselfAboveTheMessageStrip)
{
    form_add_button(f, 1, 0, 0, 40, 20, "ok");
    int x = 0, y = 0;
    step([&] { where("ok", &x, &y); });
    step_esc();
    form_run(f, -1, -1, nullptr, nullptr, nullptr);
    EXPECT_EQ(x, (800 - 200) / 2);
    EXPECT_EQ(y, (600 - ws_strip_height() - 126) / 2 + 26 + 9);
}

TEST_F(FormRun, GrowsWithTheScaleOfTheStyle)
{
    forms_style style = *forms_get_style();
    style.scale = 1.5;
    forms_set_style(&style);
    form_add_button(f, 1, 20, 10, 60, 30, "ok");
    int x = 0, y = 0;
    step([&] { where("ok", &x, &y); });
    step_esc();
    form_run(f, 100, 100, nullptr, nullptr, nullptr);
    EXPECT_EQ(x, 100 + 30);
    EXPECT_EQ(y, 100 + 39 + (15 + 44) / 2);                // the band is 26 * 1.5; rows 15 to 44
}

TEST_F(FormRun, ANestedFormComesAndGoesOverTheOuterOne)
{
    form *const inner = form_create(2, "Inner", 100, 60);
    form_add_button(inner, 1, 10, 10, 60, 34, "close");
    form_add_button(f, 1, 10, 10, 60, 34, "open");
    form_add_toggle(f, 2, 10, 50, "state", nullptr, 0);
    form_add_accept(f, 3, 100, 50);
    const auto open_inner = [](form *, gadget *g, int, void *data) {
        if (g->label == 1) {
            EXPECT_EQ(form_run((form *)data, 300, 300, nullptr, nullptr, nullptr), FORM_DONE);
        }
        return int(FORM_STAY);
    };
    step_click("open");
    step([&] {
        EXPECT_EQ(form_top(), inner);
        form_set_on(f, 2, 1);                              // a change of the covered form shows when it is uncovered
    });
    step_click("close");
    step([this] { EXPECT_EQ(form_top(), f); });
    step_click("accept");
    EXPECT_EQ(form_run(f, 50, 50, open_inner, inner, nullptr), FORM_DONE);
}

TEST_F(FormRun, AFormCannotRunTwiceAtOnce)
{
    step([this] { EXPECT_EQ(form_run(f, 0, 0, nullptr, nullptr, nullptr), FORM_CANCELLED); });
    step([this] { form_free(f); EXPECT_EQ(form_top(), f); });   // nor be freed under the operator's hand
    step_esc();
    form_run(f, 0, 0, nullptr, nullptr, nullptr);
}

TEST_F(FormRun, HidesToLetTheOperatorPointAtTheScreen)
{
    int w;
    ASSERT_EQ(ws_create_plain_window(0, 0, 0, 700, 500, &w), 0);
    ws_show_window(w);
    form_add_button(f, 1, 10, 10, 90, 34, "point");
    form_add_accept(f, 2, 100, 50);
    const auto pick = [](form *running, gadget *g, int, void *) {
        if (g->label != 1)
            return int(FORM_STAY);
        form_hide(running);
        EXPECT_EQ(form_top(), nullptr);
        EXPECT_EQ(form_is_up, 0);
        uint32_t pending;
        int window, x, y, button, transition;
        uint32_t time;
        ws_wait_event(WS_BUTTON, &pending);
        EXPECT_EQ(ws_read_button(&window, &x, &y, &button, &transition, &time), 0);
        EXPECT_EQ(x, 120);
        EXPECT_GT(window, 0);
        form_unhide(running);
        EXPECT_EQ(form_top(), running);
        return int(FORM_STAY);
    };
    step_click("point");
    step([] { EXPECT_NE(screen_pixel(290, 210), FACE); click_at(120, 120); });
    step([] { EXPECT_EQ(screen_pixel(290, 210), FACE); });
    step_click("accept");
    EXPECT_EQ(form_run(f, 100, 100, pick, nullptr, nullptr), FORM_DONE);
    ws_delete_window(w);
}

TEST_F(FormRun, AHiddenFormComesBackByItself)
{
    form_add_button(f, 1, 10, 10, 90, 34, "hide");
    const auto forget = [](form *running, gadget *, int, void *) { form_hide(running); return int(FORM_STAY); };
    step_click("hide");
    step([this] { EXPECT_EQ(form_top(), f); });
    step_esc();
    EXPECT_EQ(form_run(f, 100, 100, forget, nullptr, nullptr), FORM_CANCELLED);
}

TEST_F(FormRun, AnotherFormMayRunWhileOneIsHidden)
{
    form_add_button(f, 1, 10, 10, 90, 34, "ask");
    const auto ask = [](form *running, gadget *, int, void *) {
        static const char *const buttons[] = { "OK", "Cancel" };
        form_hide(running);
        EXPECT_EQ(question_box("WARNING", "Go on?", buttons, 2, 0), 0);
        form_unhide(running);
        return int(FORM_DONE);
    };
    step_click("ask");
    step_click("OK");
    EXPECT_EQ(form_run(f, 100, 100, ask, nullptr, nullptr), FORM_DONE);
}

TEST_F(FormRun, RunsAsAnOrdinaryWindowToo)
{
    popup_forms = 0;
    form_add_button(f, 1, 10, 10, 90, 34, "browse");
    form_add_accept(f, 2, 100, 50);
    int w = 0;
    step([&] {
        int x, y, inside;
        move_to(150, 150);
        uint32_t pending;
        ws_pending(&pending);
        ws_pointer_anywhere(&w, &x, &y, &inside);
    });
    step([&] { EXPECT_STREQ(ws_title(w), "Outer"); });
    step_click("browse");
    step_click("accept");
    EXPECT_EQ(form_run(f, 100, 100, note_events, nullptr, nullptr), FORM_DONE);
    EXPECT_EQ(noted(), "1:pressed 2:pressed");
    EXPECT_GT(w, 0);
    EXPECT_EQ(ws_window_shown(w), 0);
    popup_forms = 1;
}

TEST_F(FormRun, EscCancelsAnOrdinaryWindow)
{
    popup_forms = 0;
    step_esc();
    EXPECT_EQ(form_run(f, 100, 100, nullptr, nullptr, nullptr), FORM_CANCELLED);
    popup_forms = 1;
}

TEST_F(FormRun, ClosingTheOrdinaryWindowCancels)
{
    popup_forms = 0;
    step([] {
        for (int w = 1; w < WS_WINDOWS; w++)
            ws_delete_window(w);
    });
    step([] { memory_backend_advance(500); });
    EXPECT_EQ(form_run(f, 100, 100, nullptr, nullptr, nullptr), FORM_CANCELLED);
    popup_forms = 1;
}

TEST_F(FormRun, AnOrdinaryWindowIsWholeAgainAfterItWasAnIcon)
{
    popup_forms = 0;
    form_add_swatch(f, 1, 1, 10, 10, 100, 60, 0xFF0000, 0);
    int x = 0, y = 0;
    const auto form_window = [] {
        int w = 1;
        while (w < WS_WINDOWS && !ws_window_shown(w))
            w++;
        return w;
    };
    step([&] { form_point_of(f, form_gadget(f, 1), 0.5, &x, &y); ws_collapse(form_window()); });
    step([] { memory_backend_advance(300); });
    step([&] { form_gadget(f, 1)->colour = 0x00FF00; form_redraw(f); ws_uncollapse(form_window()); });
    step([] { memory_backend_advance(300); });
    step([] {});
    step([&] { EXPECT_EQ(screen_pixel(x, y), 0x00FF00u); });
    step_esc();
    form_run(f, 100, 100, nullptr, nullptr, nullptr);
    popup_forms = 1;
}

TEST_F(FormRun, StopsListeningToKeysWhenItEnds)
{
    step_esc();
    form_run(f, 100, 100, nullptr, nullptr, nullptr);
    step_type("x");
    step([] { ws_post_user_event(7); });
    ws_enable_events(WS_USER);
    uint32_t pending = 0;
    ws_wait_event(WS_USER, &pending);
    EXPECT_EQ(pending & (WS_KEY | WS_MOTION | WS_TIMER), 0u);
}

TEST(FormColours, ShowsTheNamedColoursOnColourTables)
{
    for (const int planes : { 4, 8 }) {
        player_start(800, 600, planes);
        const vlt_entry entries[] = { { 0, 0, 0, 0 }, { 2, 0x8888, 0x8888, 0x8888 }, { 5, 0xAAAA, 0xAAAA, 0xAAAA }, { 6, 0x5555, 0x5555, 0x5555 } };
        ws_write_vlt(0, entries, 4);
        form *const f = form_create(1, "", 200, 100);
        step([] { EXPECT_EQ(screen_pixel(150, 150), FACE); });
        step_esc();
        form_run(f, 100, 100, nullptr, nullptr, nullptr);
        player_stop();
    }
}

TEST_F(FormRun, TextsAndExtentsCanBeChangedWhileItRuns)
{
    form_add_label(f, 1, 10, 10, "short");
    form_add_toggle(f, 2, 10, 40, "a", nullptr, 0);
    step([this] {
        const double before = form_gadget(f, 2)->x1;
        form_set_label_text(f, 2, "a much longer text");
        EXPECT_GT(form_gadget(f, 2)->x1, before);
        form_set_label_text(f, 1, "two\nlines");
        form_set_title(f, "Renamed");
        form_redraw(f);
    });
    step_click("a much longer text", 1);
    step_esc();
    form_run(f, 100, 100, nullptr, nullptr, nullptr);
    EXPECT_TRUE(form_is_on(f, 2));
    EXPECT_STREQ(form_title(f), "Renamed");
    EXPECT_DOUBLE_EQ(form_gadget(f, 1)->y1 - form_gadget(f, 1)->y0, 2 * ws_font_height(forms_get_style()->text_font));
}

TEST_F(FormRun, ATextLongerThanItsFieldIsCut)
{
    form_add_field(f, 1, 10, 10, 90, "", 0, 5);
    form_set_text(f, 1, "abcdefgh");
    EXPECT_STREQ(form_text_of(f, 1), "abcd");
    form_set_text(f, 1, nullptr);
    EXPECT_STREQ(form_text_of(f, 1), "");
    EXPECT_STREQ(form_text_of(f, 99), "");
}
