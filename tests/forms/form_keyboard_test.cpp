#include "forms/forms_player.h"

namespace {

struct FormKeyboard : FormsTest {
    form *f = form_create(1, "Keyboard", 300, 200);

    int run(int *last = nullptr)
    {
        return form_run(f, 50, 60, note_events, nullptr, last);
    }
};

}

TEST_F(FormKeyboard, TabGoesThroughTheGadgetsInTheirOrderAndRound)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 20);
    form_add_label(f, 2, 10, 40, "no stop");
    form_add_toggle(f, 3, 10, 60, "three", nullptr, 0);
    form_add_toggle(f, 4, 10, 80, "greyed", nullptr, 0);
    form_enable(f, 4, 0);
    form_add_field(f, 5, 10, 110, 200, "five", 40, 20);
    step_type("a");
    step_key(KEY_TAB);
    step_type(" ");                                        // flips the toggle
    step_key(KEY_TAB);
    step_type("b");
    step_key(KEY_TAB);
    step_key(KEY_END);
    step_type("c");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 1), "ac");
    EXPECT_STREQ(form_text_of(f, 5), "b");
    EXPECT_TRUE(form_is_on(f, 3));
    EXPECT_EQ(noted(), "1:completed 3:changed 5:completed");
}

TEST_F(FormKeyboard, ShiftTabGoesBack)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 20);
    form_add_field(f, 2, 10, 40, 200, "two", 40, 20);
    form_add_field(f, 3, 10, 70, 200, "three", 40, 20);
    step_key(KEY_TAB, BACKEND_SHIFT);
    step_type("c");
    step_key(KEY_TAB, BACKEND_SHIFT);
    step_type("b");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 3), "c");
    EXPECT_STREQ(form_text_of(f, 2), "b");
}

TEST_F(FormKeyboard, TypingReplacesTheTextOfAFieldThatTabEntered)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 20);
    form_add_field(f, 2, 10, 40, 200, "two", 40, 20);
    form_set_text(f, 1, "first");
    form_set_text(f, 2, "second");
    step_key(KEY_TAB);
    step_type("new");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 1), "first");
    EXPECT_STREQ(form_text_of(f, 2), "new");
}

TEST_F(FormKeyboard, AFieldIsEditedWithTheWholeKeyboard)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 8);
    form_set_text(f, 1, "bcx");
    step_key(KEY_HOME);
    step_type("a");                                        // abcx
    step_key(KEY_END);
    step_key(KEY_BACKSPACE);                               // abc
    step_type("de");                                       // abcde
    step_key(KEY_LEFT);
    step_key(KEY_LEFT);
    step_key(KEY_DELETE);                                  // abce
    step_key(KEY_RIGHT);
    step_type("fghijk");                                   // seven characters fit
    step([this] { EXPECT_STREQ(form_text_of(f, 1), "abcefgh"); });
    step_key(KEY_DELETE, BACKEND_CTRL);
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 1), "");
}

TEST_F(FormKeyboard, ReturnCompletesAFieldAndGoesToTheNextField)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 20);
    form_add_toggle(f, 2, 10, 40, "between", nullptr, 0);
    form_add_field(f, 3, 10, 70, 200, "three", 40, 20);
    step_type("a");
    step_key(KEY_RETURN);
    step_type("b");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 3), "b");
    EXPECT_EQ(noted(), "1:completed");
}

TEST_F(FormKeyboard, ReturnInTheLastFieldPressesTheDefaultButton)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 20);
    form_add_accept(f, 8, 10, 100);
    form_add_cancel(f, 9, 80, 100);
    int last = 0;
    step_type("a");
    step_key(KEY_RETURN);
    EXPECT_EQ(run(&last), FORM_DONE);
    EXPECT_EQ(last, 8);
    EXPECT_EQ(noted(), "1:completed 8:pressed");
}

TEST_F(FormKeyboard, AButtonThatIsTheDefaultGoesBeforeAccept)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 20);
    form_add_accept(f, 8, 10, 100);
    form_add_button(f, 7, 80, 100, 150, 124, "go")->is_default = 1;
    step_key(KEY_RETURN);
    step_esc();
    run();
    EXPECT_EQ(noted(), "1:completed 7:pressed");
}

TEST_F(FormKeyboard, ANotifyFunctionThatSetsTheFocusKeepsReturnFromGoingOn)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 20);
    form_add_accept(f, 8, 10, 100);
    const auto stay = [](form *running, gadget *g, int event, void *) {
        if (event == GADGET_COMPLETED) {
            form_set_text(running, g->label, "again\\");
            form_focus(running, g->label);
        }
        return int(FORM_STAY);
    };
    step_key(KEY_RETURN);
    step_key(KEY_END);
    step_type("x");
    step_esc();
    EXPECT_EQ(form_run(f, -1, -1, stay, nullptr, nullptr), FORM_CANCELLED);
    EXPECT_STREQ(form_text_of(f, 1), "again\\x");
}

TEST_F(FormKeyboard, ReturnAndSpacePressTheFocusedButton)
{
    form_add_button(f, 1, 10, 10, 90, 34, "one");
    form_add_button(f, 2, 100, 10, 180, 34, "two");
    form_focus(f, 2);
    step_key(KEY_RETURN);
    step_key(KEY_LEFT);
    step_type(" ");
    step_key(KEY_LEFT);                                    // round
    step_key(KEY_RETURN);
    step_esc();
    run();
    EXPECT_EQ(noted(), "2:pressed 1:pressed 2:pressed");
}

TEST_F(FormKeyboard, ArrowsMoveWithinAGroupOfRadiosAndTabLeavesIt)
{
    form_add_radio(f, 1, 1, 10, 10, "one", 0);
    form_add_radio(f, 2, 1, 10, 30, "two", 1);
    form_add_radio(f, 3, 1, 10, 50, "three", 0);
    form_add_toggle(f, 4, 10, 80, "after", nullptr, 0);
    form_enable(f, 3, 0);
    step_key(KEY_DOWN);                                    // the greyed third is passed over: round to the first
    step([this] { EXPECT_TRUE(form_is_on(f, 1)); });
    step_key(KEY_TAB);
    step_type(" ");
    step_key(KEY_TAB, BACKEND_SHIFT);                      // back to the one that is on
    step_key(KEY_RIGHT);
    step_esc();
    run();
    EXPECT_TRUE(form_is_on(f, 2));
    EXPECT_EQ(noted(), "1:changed 4:changed 2:changed");
}

TEST_F(FormKeyboard, ArrowsHomeAndEndMoveASlider)
{
    form_add_slider(f, 1, 10, 10, 290, "amount", 1, 20, 5, 1);
    step_key(KEY_RIGHT);
    step_key(KEY_UP);
    step_key(KEY_LEFT);
    step([this] { EXPECT_EQ(form_gadget(f, 1)->position, 6); });
    step_key(KEY_HOME);
    step_key(KEY_LEFT);                                    // nothing below the low end
    step([this] { EXPECT_EQ(form_gadget(f, 1)->position, 1); });
    step_key(KEY_END);
    step_esc();
    run();
    EXPECT_EQ(form_gadget(f, 1)->position, 20);
    EXPECT_EQ(noted(), "1:changed 1:changed 1:changed 1:changed 1:changed");
}

TEST_F(FormKeyboard, AListIsWalkedWithArrowsHomeEndAndLetters)
{
    const char *const names[] = { "alpha", "beta", "gamma", "delta", "golf" };
    form_add_list(f, 1, 10, 10, 200, 60, "");
    form_list_set(f, 1, names, 5);
    step_key(KEY_DOWN);
    step([this] { EXPECT_STREQ(form_list_picked(f, 1), "alpha"); });
    step_key(KEY_DOWN);
    step([this] { EXPECT_STREQ(form_list_picked(f, 1), "beta"); });
    step_key(KEY_END);
    step([this] {
        EXPECT_STREQ(form_list_picked(f, 1), "golf");
        EXPECT_GT(form_gadget(f, 1)->first_item, 0);       // 50 units hold about three rows
    });
    step_type("g");
    step([this] { EXPECT_STREQ(form_list_picked(f, 1), "gamma"); });
    step_key(KEY_UP);
    step_key(KEY_HOME);
    step_key(KEY_UP);                                      // nothing above the first
    step_key(KEY_RETURN);
    step_esc();
    run();
    EXPECT_STREQ(form_list_picked(f, 1), "alpha");
    EXPECT_EQ(noted(), "1:picked 1:picked 1:picked 1:picked 1:picked 1:picked 1:picked twice");
}

TEST_F(FormKeyboard, EscPressesCancelWhichMayRefuse)
{
    form_add_cancel(f, 9, 10, 10);
    int asked = 0;
    const auto refuse_once = [](form *, gadget *, int, void *data) { return ++*(int *)data == 1 ? int(FORM_KEEP) : int(FORM_STAY); };
    step_esc();
    step_esc();
    EXPECT_EQ(form_run(f, -1, -1, refuse_once, &asked, nullptr), FORM_CANCELLED);
    EXPECT_EQ(asked, 2);
}

TEST_F(FormKeyboard, TheFocusMovesOnWhenItsGadgetIsHiddenOrGreyed)
{
    form_add_field(f, 1, 10, 10, 200, "one", 40, 20);
    form_add_field(f, 2, 10, 40, 200, "two", 40, 20);
    form_add_field(f, 3, 10, 70, 200, "three", 40, 20);
    step([this] { form_show(f, 1, 0); });
    step_type("b");
    step([this] { form_enable(f, 2, 0); });
    step_type("c");
    step([this] { form_show(f, 3, 0); });                  // nobody is left to take keys
    step_type("d");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 2), "b");
    EXPECT_STREQ(form_text_of(f, 3), "c");
}

TEST_F(FormKeyboard, AFormWithoutGadgetsTakesKeysCalmly)
{
    step_key(KEY_TAB);
    step_key(KEY_RETURN);
    step_key(KEY_DOWN);
    step_type("x ");
    step_esc();
    EXPECT_EQ(run(), FORM_CANCELLED);
}

TEST_F(FormKeyboard, TheFirstFieldHasTheFocusUnlessAnotherGadgetWasGivenIt)
{
    form_add_button(f, 1, 10, 10, 90, 34, "browse");
    form_add_field(f, 2, 10, 40, 200, "two", 40, 20);
    form_add_field(f, 3, 10, 70, 200, "three", 40, 20);
    step_type("a");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 2), "a");
    form_focus(f, 3);
    step_type("b");
    step_esc();
    run();
    EXPECT_STREQ(form_text_of(f, 3), "b");
}
