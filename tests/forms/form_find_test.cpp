#include "forms/forms_player.h"

namespace {

struct FormFind : FormsTest {
    form *f = form_create(1, "Find", 300, 200);
};

}

TEST_F(FormFind, LeadingBlanksMayBeLeftOut)
{
    gadget *const name = form_add_field(f, 1, 10, 10, 200, "  filename", 90, 40);
    EXPECT_EQ(form_find(f, "filename"), name);
    EXPECT_EQ(form_find(f, "  filename"), name);
    EXPECT_EQ(form_find(f, "file"), nullptr);
    EXPECT_EQ(form_find(f, "Filename"), nullptr);
}

TEST_F(FormFind, AcceptAndCancelAreWords)
{
    gadget *const accept = form_add_accept(f, 1, 10, 10), *const cancel = form_add_cancel(f, 2, 70, 10);
    EXPECT_EQ(form_find(f, "accept"), accept);
    EXPECT_EQ(form_find(f, "cancel"), cancel);
}

TEST_F(FormFind, ANumberTellsEqualTextsApart)
{
    gadget *const first = form_add_button(f, 1, 10, 10, 60, 34, "rows"), *const second = form_add_button(f, 2, 70, 10, 120, 34, " rows");
    EXPECT_EQ(form_find(f, "rows"), first);
    EXPECT_EQ(form_find(f, "rows#1"), first);
    EXPECT_EQ(form_find(f, "rows#2"), second);
    EXPECT_EQ(form_find(f, "rows#3"), nullptr);
    EXPECT_EQ(form_find(f, "rows#"), nullptr);
}

TEST_F(FormFind, ATextMayHoldTheMarkItself)
{
    gadget *const words = form_add_field(f, 1, 10, 10, 200, "# words to skip", 120, 10);
    EXPECT_EQ(form_find(f, "# words to skip"), words);
}

TEST_F(FormFind, AToggleAnswersToBothItsTexts)
{
    gadget *const g = form_add_toggle(f, 1, 10, 10, "standard header", "foreign header", 0);
    EXPECT_EQ(form_find(f, "standard header"), g);
    EXPECT_EQ(form_find(f, "foreign header"), g);
}

TEST_F(FormFind, HiddenGadgetsAreNotFoundAndDoNotCount)
{
    form_add_button(f, 1, 10, 10, 60, 34, "rows");
    gadget *const second = form_add_button(f, 2, 70, 10, 120, 34, "rows");
    form_show(f, 1, 0);
    EXPECT_EQ(form_find(f, "rows"), second);
    EXPECT_EQ(form_find(f, "rows#2"), nullptr);
}

TEST_F(FormFind, WhatCanBeOperatedComesBeforeItsCaption)
{
    gadget *const caption = form_add_label(f, 1, 10, 10, "Angle");
    EXPECT_EQ(form_find(f, "Angle"), caption);
    gadget *const slider = form_add_slider(f, 2, 10, 40, 200, "Angle", 0, 1, 0, 0);
    EXPECT_EQ(form_find(f, "Angle"), slider);
    EXPECT_EQ(form_find_kind(f, GADGET_LABEL, "Angle"), caption);
    EXPECT_EQ(form_find_kind(f, GADGET_FIELD, "Angle"), nullptr);
}

TEST_F(FormFind, WhatShowsNoTextAnswersToItsNameOrItsKind)
{
    gadget *const list = form_add_list(f, 1, 10, 10, 100, 100, ""), *const field = form_add_field(f, 2, 10, 110, 100, "", 0, 10);
    EXPECT_EQ(form_find(f, "list"), list);
    EXPECT_EQ(form_find(f, "field"), field);
    form_set_name(f, 2, "directory");
    EXPECT_EQ(form_find(f, "directory"), field);
    EXPECT_EQ(form_find(f, "field"), nullptr);
}

TEST_F(FormFind, NullsAreSurvived)
{
    EXPECT_EQ(form_find(nullptr, "x"), nullptr);
    EXPECT_EQ(form_find(f, nullptr), nullptr);
    EXPECT_EQ(form_find(f, ""), nullptr);
    int x, y;
    EXPECT_EQ(form_point_of(f, nullptr, 0, &x, &y), -1);
    EXPECT_EQ(form_list_item_point(f, nullptr, "a", &x, &y), -1);
}
