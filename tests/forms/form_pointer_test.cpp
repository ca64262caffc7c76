#include "forms/forms_player.h"

namespace {

struct FormPointer : FormsTest {
    form *f = form_create(1, "Pointer", 300, 200);

    int run()
    {
        return form_run(f, 50, 60, note_events, nullptr, nullptr);
    }
};

}

TEST_F(FormPointer, AQuickClickPressesAButton)
{
    form_add_button(f, 5, 10, 10, 90, 34, "browse");
    step_click("browse");
    step_esc();
    EXPECT_EQ(run(), FORM_CANCELLED);
    EXPECT_EQ(noted(), "5:pressed");
}

TEST_F(FormPointer, ASlowPressActsOnItsRelease)
{
    form_add_button(f, 5, 10, 10, 90, 34, "browse");
    step_press("browse");
    step([] { EXPECT_EQ(noted(), ""); });
    step_release("browse");
    step_esc();
    run();
    EXPECT_EQ(noted(), "5:pressed");
}

TEST_F(FormPointer, AReleaseBesideTheButtonPressesNothing)
{
    form_add_button(f, 5, 10, 10, 90, 34, "browse");
    form_add_button(f, 6, 100, 10, 180, 34, "other");
    step_press("browse");
    step_move("other");
    step_release("other");
    step_esc();
    run();
    EXPECT_EQ(noted(), "");
}

TEST_F(FormPointer, AHeldButtonLooksPressedOnlyUnderThePointer)
{
    form_add_button(f, 5, 10, 50, 90, 74, "browse");
    uint32_t released = 0, pressed = 0, away = 0;
    const auto look = [&](uint32_t *pixel) {
        int x, y;
        form_point_of(f, form_gadget(f, 5), 0, &x, &y);
        *pixel = screen_pixel(x + 6, y - 6);
    };
    step([&] { look(&released); });
    step_press("browse");
    step([&] { look(&pressed); move_to(700, 500); });
    step([&] { look(&away); release_at(700, 500); });
    step_esc();
    run();
    EXPECT_NE(pressed, released);
    EXPECT_EQ(away, released);
}

TEST_F(FormPointer, AcceptAndCancelEndTheForm)
{
    form_add_accept(f, 8, 10, 10);
    form_add_cancel(f, 9, 80, 10);
    int last = 0;
    step_click("accept");
    EXPECT_EQ(form_run(f, 50, 60, nullptr, nullptr, &last), FORM_DONE);
    EXPECT_EQ(last, 8);
    step_click("cancel");
    EXPECT_EQ(form_run(f, 50, 60, note_events, nullptr, &last), FORM_CANCELLED);
    EXPECT_EQ(last, 9);
    EXPECT_EQ(noted(), "9:pressed");
}

TEST_F(FormPointer, ANotifyFunctionCanRefuseAccept)
{
    form_add_accept(f, 8, 10, 10);
    int asked = 0;
    const auto refuse_once = [](form *, gadget *, int, void *data) { return ++*(int *)data == 1 ? int(FORM_KEEP) : int(FORM_STAY); };
    step_click("accept");
    step_click("accept");
    EXPECT_EQ(form_run(f, -1, -1, refuse_once, &asked, nullptr), FORM_DONE);
    EXPECT_EQ(asked, 2);
}

TEST_F(FormPointer, WithNoNotifyFunctionAnyButtonEndsTheForm)
{
    form_add_button(f, 5, 10, 10, 90, 34, "one");
    form_add_button(f, 6, 100, 10, 180, 34, "two");
    int last = 0;
    step_click("two");
    EXPECT_EQ(form_run(f, -1, -1, nullptr, nullptr, &last), FORM_DONE);
    EXPECT_EQ(last, 6);
}

TEST_F(FormPointer, AToggleFlipsAndShowsTheTextOfItsState)
{
    form_add_toggle(f, 3, 10, 10, "1 input file", "3 input files", 0);
    step_click("1 input file");
    step([this] { EXPECT_TRUE(form_is_on(f, 3)); });
    step_click("3 input files");
    step([this] { EXPECT_FALSE(form_is_on(f, 3)); });
    step_esc();
    run();
    EXPECT_EQ(noted(), "3:changed 3:changed");
}

TEST_F(FormPointer, TwoQuickClicksFlipAToggleTwice)
{
    form_add_toggle(f, 3, 10, 10, "tiled", nullptr, 0);
    step([this] {
        int x, y;
        form_point_of(f, form_gadget(f, 3), 0.5, &x, &y);
        click_at(x, y);
        click_at(x, y);
    });
    step_esc();
    run();
    EXPECT_FALSE(form_is_on(f, 3));
    EXPECT_EQ(noted(), "3:changed 3:changed");
}

TEST_F(FormPointer, ARadioTurnsTheOthersOfItsGroupOff)
{
    form_add_radio(f, 1, 1, 10, 10, "tiff", 1);
    form_add_radio(f, 2, 1, 10, 30, "tga", 0);
    form_add_radio(f, 3, 2, 10, 50, "other group", 1);
    step_click("tga");
    step_click("tga");
    step_esc();
    run();
    EXPECT_FALSE(form_is_on(f, 1));
    EXPECT_TRUE(form_is_on(f, 2));
    EXPECT_TRUE(form_is_on(f, 3));
    EXPECT_EQ(noted(), "2:changed 2:pressed");
}

TEST_F(FormPointer, ASwatchShowsItsColourAndCanBeChosen)
{
    form_add_swatch(f, 1, 1, 10, 10, 40, 34, 0xFF0000, 1);
    form_add_swatch(f, 2, 1, 50, 10, 80, 34, 0x00FF83, 0);
    uint32_t colour = 0;
    step([&] {
        int x, y;
        form_point_of(f, form_gadget(f, 2), 0.5, &x, &y);
        colour = screen_pixel(x, y);
    });
    step_click("swatch#2");
    step_esc();
    run();
    EXPECT_EQ(colour, 0x00FF83u);
    EXPECT_TRUE(form_is_on(f, 2));
    EXPECT_FALSE(form_is_on(f, 1));
}

TEST_F(FormPointer, AGreyedOrHiddenGadgetDoesNothing)
{
    form_add_toggle(f, 1, 10, 10, "greyed", nullptr, 0);
    form_add_toggle(f, 2, 10, 40, "hidden", nullptr, 0);
    form_enable(f, 1, 0);
    form_show(f, 2, 0);
    EXPECT_EQ(form_find(f, "hidden"), nullptr);
    step_click("greyed");
    step([this] {
        int x, y;
        form_point_of(f, form_gadget(f, 2), 0.5, &x, &y);
        click_at(x, y);
    });
    step_esc();
    run();
    EXPECT_EQ(noted(), "");
}

TEST_F(FormPointer, AClickPlacesTheCaretInAField)
{
    form_add_field(f, 1, 10, 10, 290, "name", 60, 40);
    form_set_text(f, 1, "scenery");
    step_click("name", 0);                                 // before the first character
    step_type("A");
    step_click("name", 1);                                 // far behind the last
    step_type("Z");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 1), "AsceneryZ");
}

TEST_F(FormPointer, ADragMarksTextAndADoubleClickMarksAll)
{
    form_add_field(f, 1, 10, 10, 290, "name", 60, 40);
    form_set_text(f, 1, "scenery");
    step_press("name", 0);
    step_move("name", 1);
    step_release("name", 1);
    step_type("x");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 1), "x");
}

TEST_F(FormPointer, ASliderFollowsAClickOnItsTrack)
{
    form_add_slider(f, 1, 10, 10, 290, "amount", 0, 100, 50, 1);
    step_click("amount", 0);
    step([this] { EXPECT_EQ(form_gadget(f, 1)->position, 0); });
    step_click("amount", 1);
    step_esc();
    run();
    EXPECT_EQ(form_gadget(f, 1)->position, 100);
    EXPECT_EQ(noted(), "1:changed 1:changed");
}

TEST_F(FormPointer, AClickSetsTheVeryShareEvenUnderTheThumb)
{
    form_add_slider(f, 1, 10, 10, 290, "amount", 0, 1, 0.26, 0);
    step_click("amount", 0.25);
    step([this] { EXPECT_DOUBLE_EQ(form_gadget(f, 1)->position, 0.25); });
    step_click("amount", 0.24);
    step_esc();
    run();
    EXPECT_DOUBLE_EQ(form_gadget(f, 1)->position, 0.24);
}

TEST_F(FormPointer, APressOnTheThumbTakesHoldWithoutMovingIt)
{
    form_add_slider(f, 1, 10, 10, 290, "amount", 0, 1, 0.5, 0);
    step_press("amount", 0.51);
    step([this] { EXPECT_EQ(form_gadget(f, 1)->position, 0.5); });
    step_move("amount", 0.61);
    step_release("amount", 0.61);
    step_esc();
    run();
    EXPECT_NEAR(form_gadget(f, 1)->position, 0.6, 0.011);  // a hundredth for the pixels' rounding
}

TEST_F(FormPointer, ABoxThatOpensDuringADragEndsTheDrag)
{
    form_add_slider(f, 1, 10, 10, 290, "amount", 0, 100, 0, 1);
    const auto complain = [](form *, gadget *, int, void *) {
        report(REPORT_INFO, "too much");
        return int(FORM_STAY);
    };
    step_press("amount", 0.5);                             // the box is up, with the button still down
    step_release("OK");
    step_key(KEY_RETURN);
    step_move("amount", 1);
    step_esc();
    form_run(f, 50, 60, complain, nullptr, nullptr);
    EXPECT_EQ(form_gadget(f, 1)->position, 50);
}

TEST_F(FormPointer, ASliderIsDraggedStepByStep)
{
    form_add_slider(f, 1, 10, 10, 290, "amount", 0, 4, 0, 2);
    step_press("amount", 0);
    step_move("amount", 0.5);
    step([this] { EXPECT_EQ(form_gadget(f, 1)->position, 2); });
    step_move("amount", 1);
    step_release("amount", 1);
    step_move("amount", 0);                                // no longer held
    step_esc();
    run();
    EXPECT_EQ(form_gadget(f, 1)->position, 4);
    EXPECT_EQ(noted(), "1:changed 1:changed");
}

// --- lists -------------------------------------------------------------------------------------------------------

namespace {

struct ListPointer : FormPointer {
    static constexpr const char *names[] = { "a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p" };
    int visible = 0;

    ListPointer() : FormPointer() {}

    void SetUp() override
    {
        FormPointer::SetUp();
        form_add_list(f, 1, 10, 10, 200, 110, "files");
        form_list_set(f, 1, names, 16);
    }

    const gadget &list() { return *form_gadget(f, 1); }

    // Pixels of the scroll bar: `up` from the top of the list's frame, or from its bottom when negative.
    void at_scroll_bar(int up, void (*act)(int, int))
    {
        int x, y, x0, y0;
        form_point_of(f, form_gadget(f, 1), 1, &x, &y);
        form_point_of(f, form_gadget(f, 1), 0, &x0, &y0);
        // The frame is 100 units less the title's row; its middle is y.
        const int half = 42;
        act(x - 8, up >= 0 ? y - half + up : y + half + up);
    }
};

}

TEST_F(ListPointer, AClickPicksAndASecondOnePicksTwice)
{
    step_click_item("files", "c");
    step([this] { EXPECT_STREQ(form_list_picked(f, 1), "c"); });
    step_click_item("files", "c");
    step_esc();
    run();
    EXPECT_EQ(noted(), "1:picked 1:picked twice");
}

TEST_F(ListPointer, ASlowSecondClickIsAFirstOne)
{
    step_click_item("files", "c");
    step([] { memory_backend_advance(800); });
    step_click_item("files", "c");
    step_click_item("files", "b");
    step_esc();
    run();
    EXPECT_EQ(noted(), "1:picked 1:picked 1:picked");
}

TEST_F(ListPointer, AThirdClickIsAFirstOneAgain)
{
    for (int i = 0; i < 3; i++)
        step_click_item("files", "c");
    step_esc();
    run();
    EXPECT_EQ(noted(), "1:picked 1:picked twice 1:picked");
}

TEST_F(ListPointer, AnItemOutOfSightIsScrolledTo)
{
    step_click_item("files", "p");
    step_esc();
    run();
    EXPECT_STREQ(form_list_picked(f, 1), "p");
    EXPECT_GT(list().first_item, 0);
}

TEST_F(ListPointer, TheArrowsScrollByOneRow)
{
    step([this] { at_scroll_bar(-6, click_at); });
    step([this] { EXPECT_EQ(list().first_item, 1); at_scroll_bar(-6, click_at); });
    step([this] { EXPECT_EQ(list().first_item, 2); at_scroll_bar(6, click_at); });
    step_esc();
    run();
    EXPECT_EQ(list().first_item, 1);
    EXPECT_EQ(noted(), "");
}

TEST_F(ListPointer, AHeldArrowGoesOnScrolling)
{
    step([this] { at_scroll_bar(-6, press_at); });
    step([] { memory_backend_advance(300); });
    step([this] { EXPECT_EQ(list().first_item, 1); memory_backend_advance(100); });
    step([this] { EXPECT_EQ(list().first_item, 2); memory_backend_advance(100); });
    step([this] { EXPECT_EQ(list().first_item, 3); at_scroll_bar(-6, release_at); });
    step([] { memory_backend_advance(500); });
    step_esc();
    run();
    EXPECT_EQ(list().first_item, 3);
}

TEST_F(ListPointer, AClickInTheTroughScrollsByAPage)
{
    step([this] { at_scroll_bar(-22, click_at); });
    step_esc();
    run();
    const int page = list().first_item;
    EXPECT_GE(page, 3);                                    // the list is about 80 pixels high, a row about 16
    EXPECT_LE(page, 6);
}

TEST_F(ListPointer, TheThumbIsDragged)
{
    step([this] { at_scroll_bar(22, press_at); });
    step([] { memory_backend_advance(300); });
    step([this] { at_scroll_bar(300, move_to); });
    step([this] { EXPECT_GT(list().first_item, 8); at_scroll_bar(-300, move_to); });
    step([this] { at_scroll_bar(-300, release_at); });
    step_esc();
    run();
    EXPECT_EQ(list().first_item, 0);
}

TEST_F(ListPointer, TheWheelScrollsTheListUnderThePointer)
{
    form_add_button(f, 5, 210, 10, 290, 34, "button");
    form_focus(f, 5);
    step_move("files");
    step_wheel(-3);
    step([this] { EXPECT_EQ(list().first_item, 3); });
    step_wheel(1);
    step_esc();
    run();
    EXPECT_EQ(list().first_item, 2);
    EXPECT_EQ(noted(), "");
}

TEST_F(ListPointer, ANewSetOfItemsStartsAtItsTopWithNothingPicked)
{
    step_click_item("files", "p");
    step([this] {
        const char *const others[] = { "x", "y" };
        EXPECT_EQ(form_list_set(f, 1, others, 2), 0);
        EXPECT_EQ(form_list_picked(f, 1), nullptr);
        EXPECT_EQ(list().first_item, 0);
    });
    step_click_item("files", "y");
    step_esc();
    run();
    EXPECT_STREQ(form_list_picked(f, 1), "y");
}

TEST_F(ListPointer, AnEmptyListTakesClicks)
{
    form_list_set(f, 1, nullptr, 0);
    step_click("files");
    step_key(KEY_DOWN);
    step_key(KEY_END);
    step_esc();
    run();
    EXPECT_EQ(form_list_picked(f, 1), nullptr);
    EXPECT_EQ(noted(), "");
}

TEST_F(FormPointer, ARightClickCancels)
{
    step([] {
        backend_event event {};
        event.kind = BACKEND_PRESS;
        event.x = event.y = 100;
        event.button = 2;
        memory_backend_queue(&event);
        event.kind = BACKEND_RELEASE;
        memory_backend_queue(&event);
    });
    EXPECT_EQ(run(), FORM_CANCELLED);
}

TEST_F(FormPointer, AClickOutsideBeepsAndTheFormStays)
{
    form_add_button(f, 5, 10, 10, 90, 34, "browse");
    step([] { click_at(600, 400); });
    step([] { EXPECT_EQ(memory_backend_beeps(BEEP_PLAIN), 1); });
    step_click("browse");
    step_esc();
    run();
    EXPECT_EQ(noted(), "5:pressed");
}
