#include "forms/forms_player.h"
#include "mem.h"

// A form with every kind of gadget. The gadgets that there was memory for are as they should be.
static form *build_all()
{
    static const char *const items[] = { "one", "two", "three" };
    form *const f = form_create(1, "All", 300, 300);
    form_add_group(f, 5, 5, 295, 295, "group");
    form_add_label(f, 1, 10, 10, "label");
    form_add_button(f, 2, 10, 40, 90, 64, "button");
    form_add_accept(f, 3, 100, 40);
    form_add_cancel(f, 4, 160, 40);
    form_add_toggle(f, 5, 10, 70, "off", "on", 0);
    form_add_radio(f, 6, 1, 10, 90, "radio", 1);
    form_add_radio(f, 7, 1, 10, 110, "radio", 1);
    form_add_swatch(f, 8, 2, 10, 130, 40, 150, 0xFF0000, 1);
    form_add_field(f, 9, 10, 160, 200, "field", 60, 40);
    form_add_slider(f, 10, 10, 180, 200, "slider", 0, 1, 0.5, 0);
    form_add_list(f, 11, 10, 200, 200, 290, "list");
    for (int i = 20; i < 32; i++)                          // more than the list of gadgets grows by
        form_add_label(f, i, 220, 60 + 18 * (i - 20), "x");
    form_set_text(f, 9, "value");
    form_set_label_text(f, 1, "changed");
    form_set_name(f, 11, "name");
    form_set_title(f, "Title");
    form_set_on(f, 6, 1);
    form_list_set(f, 11, items, 3);
    return f;
}

static long allocations_of(void (*work)())
{
    const long before = mem_allocation_count;
    work();
    return mem_allocation_count - before;
}

TEST(FormMemory, BuildingAFormSurvivesTheFailureOfAnyAllocation)
{
    player_start(800, 600, 24);
    const long count = allocations_of([] { form_free(build_all()); });
    EXPECT_GT(count, 40);
    for (long n = 0; n < count; n++) {
        mem_fail_countdown = n;
        form_free(build_all());
        EXPECT_EQ(mem_fail_countdown, -1) << n;
    }
    player_stop();
}

TEST(FormMemory, AFormThatLacksAGadgetIsNotShown)
{
    player_start(800, 600, 24);
    form *const f = form_create(1, "Lacks", 200, 100);
    mem_fail_countdown = 0;
    EXPECT_EQ(form_add_accept(f, 1, 10, 10), nullptr);
    EXPECT_NE(form_add_button(f, 2, 70, 10, 120, 34, "b"), nullptr);
    EXPECT_EQ(form_run(f, -1, -1, nullptr, nullptr, nullptr), FORM_CANCELLED);
    player_stop();
}

TEST(FormMemory, AFailedChangeKeepsTheOldTextOrItems)
{
    player_start(800, 600, 24);
    static const char *const items[] = { "one", "two" };
    form *const f = form_create(1, "Keeps", 200, 100);
    form_add_label(f, 1, 10, 10, "old");
    form_add_list(f, 2, 10, 30, 100, 90, "");
    form_list_set(f, 2, items, 2);
    mem_fail_countdown = 0;
    form_set_label_text(f, 1, "new");
    EXPECT_STREQ(form_gadget(f, 1)->text, "old");
    mem_fail_countdown = 0;
    EXPECT_EQ(form_list_set(f, 2, items, 1), -1);
    EXPECT_EQ(form_gadget(f, 2)->item_count, 2);
    mem_fail_countdown = -1;
    player_stop();
}

TEST(FormMemory, NullFormsAreTakenEverywhere)
{
    player_start(800, 600, 24);
    EXPECT_EQ(form_add_group(nullptr, 0, 0, 1, 1, ""), nullptr);
    EXPECT_EQ(form_add_label(nullptr, 1, 0, 0, ""), nullptr);
    EXPECT_EQ(form_add_button(nullptr, 1, 0, 0, 1, 1, ""), nullptr);
    EXPECT_EQ(form_add_accept(nullptr, 1, 0, 0), nullptr);
    EXPECT_EQ(form_add_cancel(nullptr, 1, 0, 0), nullptr);
    EXPECT_EQ(form_add_toggle(nullptr, 1, 0, 0, "", "", 0), nullptr);
    EXPECT_EQ(form_add_radio(nullptr, 1, 1, 0, 0, "", 1), nullptr);
    EXPECT_EQ(form_add_swatch(nullptr, 1, 1, 0, 0, 1, 1, 0, 1), nullptr);
    EXPECT_EQ(form_add_field(nullptr, 1, 0, 0, 1, "", 0, 9), nullptr);
    EXPECT_EQ(form_add_slider(nullptr, 1, 0, 0, 1, "", 0, 1, 0, 0), nullptr);
    EXPECT_EQ(form_add_list(nullptr, 1, 0, 0, 1, 1, ""), nullptr);
    form_set_text(nullptr, 1, "");
    form_set_label_text(nullptr, 1, "");
    form_set_title(nullptr, "");
    form_set_name(nullptr, 1, "");
    form_set_on(nullptr, 1, 1);
    form_show(nullptr, 1, 1);
    form_enable(nullptr, 1, 1);
    form_focus(nullptr, 1);
    form_redraw(nullptr);
    form_hide(nullptr);
    form_unhide(nullptr);
    form_free(nullptr);
    EXPECT_EQ(form_is_on(nullptr, 1), 0);
    EXPECT_EQ(form_gadget(nullptr, 1), nullptr);
    EXPECT_EQ(form_list_set(nullptr, 1, nullptr, 0), -1);
    EXPECT_EQ(form_list_picked(nullptr, 1), nullptr);
    EXPECT_STREQ(form_text_of(nullptr, 1), "");
    EXPECT_EQ(form_run(nullptr, 0, 0, nullptr, nullptr, nullptr), FORM_CANCELLED);
    player_stop();
}

// Whatever allocation fails while it is shown, used and taken away, a form comes to its end.
TEST(FormMemory, RunningAFormSurvivesTheFailureOfAnyAllocation)
{
    long count = 0;
    for (long n = -1; n < count; n++) {
        player_start(800, 600, 24);
        form *const f = build_all();
        const long before = mem_allocation_count;
        // A form that cannot be shown takes no steps: these wait in one, which is taken only when it is shown.
        bool shown = false;
        step([&shown] { shown = true; });
        mem_fail_countdown = n;
        step_esc();
        const int answer = form_run(f, 10, 10, note_events, nullptr, nullptr);
        if (n < 0)
            count = mem_allocation_count - before;
        mem_fail_countdown = -1;
        EXPECT_EQ(answer, FORM_CANCELLED);
        EXPECT_EQ(form_top(), nullptr);
        if (!shown) {
            step_key(KEY_RETURN);
            report(REPORT_INFO, "the steps left over");
        }
        form_free(f);
        player_stop();
        if (HasFailure())
            break;
    }
    EXPECT_GT(count, 0);
}

TEST(FormMemory, DialogsSurviveTheFailureOfAnyAllocation)
{
    static const char *const buttons[] = { "Yes", "No", "Cancel" };
    const long most = 60;
    player_start(800, 600, 24);
    for (long n = 0; n < most; n++) {
        double value = 0.5;
        step_esc();
        mem_fail_countdown = n;
        const int answer = question_box("WARNING", "Save changes?", buttons, 3, 118);
        EXPECT_EQ(answer, 2);
        mem_fail_countdown = n;
        step_esc();
        EXPECT_EQ(value_slider_dialog(5, 5, 0, 1, &value, 100, 0, "A", "b", "t", "p"), 0);
        EXPECT_EQ(value, 0.5);
        mem_fail_countdown = -1;
        // A box that could not be shown has left its Esc behind: reports take what is left.
        while (player_steps_left() > 0)
            report(REPORT_INFO, "left over");
    }
    player_stop();
}
