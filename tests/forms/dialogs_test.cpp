#include "forms/forms_player.h"
#include "mem.h"

namespace {

struct ValueSlider : FormsTest {
    double value = 0.5;

    int ask(double minimum, double maximum, double increment, const char *sub_caption = nullptr)
    {
        return value_slider_dialog(5, 50, minimum, maximum, &value, 200, increment, "Contrast", sub_caption, "Equalize histogram",
                                   "Enter contrast value");
    }
};

struct QuestionBox : FormsTest {
    static constexpr const char *buttons[] = { "Yes", "No", "Cancel" };

    int ask(const char *text = "Save changes to scene?")
    {
        return question_box("WARNING", text, buttons, 3, 118);
    }
};

struct ReportBox : FormsTest {};

}

TEST_F(ValueSlider, ShowsItsTitleAndPromptInTheStrip)
{
    step([] {
        EXPECT_STREQ(msg_text(MSG_TITLE), "Equalize histogram");
        EXPECT_STREQ(msg_text(MSG_PROMPT), "Enter contrast value");
        EXPECT_STREQ(form_title(form_top()), "Contrast");
        EXPECT_NE(form_find_kind(form_top(), GADGET_LABEL, "incr contrast"), nullptr);
    });
    step_click("accept");
    EXPECT_EQ(ask(0, 1, 0, "incr contrast"), 1);
    EXPECT_EQ(value, 0.5);
}

TEST_F(ValueSlider, TheSliderWritesIntoTheField)
{
    step_click("Contrast", 1);                             // without a text of its own it answers to the caption
    step([] {
        gadget *const field = form_find_kind(form_top(), GADGET_FIELD, "Contrast");
        ASSERT_NE(field, nullptr);
        EXPECT_STREQ(field->value, "1");
    });
    step_click("accept");
    EXPECT_EQ(ask(0, 1, 0), 1);
    EXPECT_EQ(value, 1);
}

TEST_F(ValueSlider, AcceptsATypedValue)
{
    step_type("0.25");
    step_click("accept");
    EXPECT_EQ(ask(0, 1, 0), 1);
    EXPECT_EQ(value, 0.25);
}

TEST_F(ValueSlider, ReturnInTheFieldAccepts)
{
    step_type("0.125");
    step_key(KEY_RETURN);
    EXPECT_EQ(ask(0, 1, 0), 1);
    EXPECT_EQ(value, 0.125);
}

TEST_F(ValueSlider, ATypedValueTakesTheNearestStep)
{
    value = 0;
    step_type("100");
    step_click("accept");
    EXPECT_EQ(ask(0, 315, 45), 1);
    EXPECT_EQ(value, 90);
}

TEST_F(ValueSlider, AsksAgainForAValueOutsideTheRangeOrNoNumber)
{
    for (const char *wrong : { "2", "-0.5", "abc", "", "0.5x", "nan" }) {
        step_key(KEY_DELETE, BACKEND_CTRL);
        step_type(wrong);
        step_click("accept");
        step([wrong] { EXPECT_NE(form_top(), nullptr) << wrong; });
    }
    step([] { EXPECT_EQ(memory_backend_beeps(BEEP_ERROR), 6); });
    step_type("0.75");                                     // the wrong text stands marked
    step_click("accept");
    EXPECT_EQ(ask(0, 1, 0), 1);
    EXPECT_EQ(value, 0.75);
}

TEST_F(ValueSlider, CancelLeavesTheValueAlone)
{
    step_type("0.9");
    step_click("cancel");
    EXPECT_EQ(ask(0, 1, 0), 0);
    EXPECT_EQ(value, 0.5);
    step_type("0.9");
    step_esc();
    EXPECT_EQ(ask(0, 1, 0), 0);
    EXPECT_EQ(value, 0.5);
}

TEST_F(QuestionBox, AnswersTheButtonsNumber)
{
    step_click("Yes");
    EXPECT_EQ(ask(), 0);
    step_click("No");
    EXPECT_EQ(ask(), 1);
    step_click("Cancel");
    EXPECT_EQ(ask(), 2);
}

TEST_F(QuestionBox, EscIsTheLastButtonAndReturnTheFirst)
{
    step_esc();
    EXPECT_EQ(ask(), 2);
    step_key(KEY_RETURN);
    EXPECT_EQ(ask(), 0);
    step_key(KEY_RIGHT);
    step_key(KEY_RETURN);
    EXPECT_EQ(ask(), 1);
}

TEST_F(QuestionBox, HasTheHeightThatIsAskedForAndTheWidthOfItsText)
{
    const char *const text = "Save changes to a file with a name long enough to matter?";
    step([text] {
        int left, y, right;
        gadget *const label = form_find_kind(form_top(), GADGET_LABEL, text);
        ASSERT_NE(label, nullptr);
        form_point_of(form_top(), label, 0, &left, &y);
        form_point_of(form_top(), label, 1, &right, &y);
        int width;
        ws_text_width(forms_get_style()->text_font, text, int(strlen(text)), &width);
        EXPECT_EQ(right - left + 1, width);
        // 30 units more than the text, 15 on each side; centred between 0 and the strip.
        EXPECT_EQ(left, (800 - width - 30) / 2 + 15);
        const int top = (600 - ws_strip_height() - 118) / 2;
        EXPECT_EQ(screen_pixel(left, top - 1) == 0xAAAAAA, false);
        EXPECT_EQ(screen_pixel(left, top), 0u);            // the outline, first and last row
        EXPECT_EQ(screen_pixel(left, top + 117), 0u);
    });
    step_esc();
    ask(text);
}

TEST_F(QuestionBox, StandsOverAForm)
{
    form *const f = form_create(1, "Write Image", 300, 200);
    form_add_accept(f, 1, 10, 10);
    const auto ask_first = [](form *, gadget *, int, void *) {
        static const char *const ok_cancel[] = { "OK", "Cancel" };
        return question_box("WARNING", "Existing file will be overwritten\nscene.ntv", ok_cancel, 2, 0) == 0 ? int(FORM_STAY) : int(FORM_KEEP);
    };
    step_click("accept");
    step_click("Cancel");
    step_click("accept");
    step_click("OK");
    EXPECT_EQ(form_run(f, 10, 10, ask_first, nullptr, nullptr), FORM_DONE);
}

TEST_F(ReportBox, HasItsLevelForATitleAndAnOkButton)
{
    const struct { int level; const char *title; } levels[] = { { REPORT_ERROR, "Error" }, { REPORT_WARNING, "Warning" }, { REPORT_INFO, "Info" } };
    for (const auto &level : levels) {
        step([level] {
            ASSERT_NE(form_top(), nullptr);
            EXPECT_STREQ(form_title(form_top()), level.title);
            EXPECT_NE(form_find_kind(form_top(), GADGET_LABEL, "Unable to open file x.tif"), nullptr);
        });
        step_click("OK");
        report(level.level, "Unable to open file %s\n", "x.tif");
    }
}

TEST_F(ReportBox, WrapsALongTextIntoTheScreen)
{
    std::string words;
    for (int i = 0; i < 60; i++)
        words += "word ";
    step([] {
        gadget *const g = form_gadget(form_top(), 1);
        ASSERT_NE(g, nullptr);
        EXPECT_LE(g->x1 - g->x0, 600);                     // three quarters of 800
        EXPECT_NE(strchr(g->text, '\n'), nullptr);
    });
    step_key(KEY_RETURN);
    report(REPORT_INFO, "%s", words.c_str());
}

TEST_F(ReportBox, ATextTooHighForTheScreenBecomesAList)
{
    std::string lines;
    for (int i = 0; i < 90; i++)
        lines += "line " + std::to_string(i) + "\n";
    step_click_item("list", "line 89");
    step_click("OK");
    report(REPORT_INFO, "%s", lines.c_str());
}

TEST_F(ReportBox, WithoutMemoryTheServicesShowTheirOwn)
{
    step([] { EXPECT_EQ(form_top(), nullptr); });
    step_key(KEY_RETURN);
    mem_fail_countdown = 0;
    report(REPORT_ERROR, "out of memory");
    mem_fail_countdown = -1;
}
