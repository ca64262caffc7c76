#include "forms/field_edit.h"
#include "services/ws.h"
#include <cstring>
#include <gtest/gtest.h>

namespace {

struct line {
    char value[16];
    field_edit edit;
};

line line_of(const char *text, int caret)
{
    line l {};
    std::strcpy(l.value, text);
    edit_place(&l.edit, l.value, caret, 0);
    return l;
}

int key(line *l, int byte)
{
    return edit_key(&l->edit, l->value, int(sizeof l->value), byte);
}

int ten_pixels_each(const char *, int length)
{
    return 10 * length;
}

}

TEST(FieldEdit, TypesAtTheCaret)
{
    line l = line_of("scne", 2);
    EXPECT_EQ(key(&l, 'e'), 1);
    EXPECT_STREQ(l.value, "scene");
    EXPECT_EQ(l.edit.caret, 3);
}

TEST(FieldEdit, TakesLatin1AndLeavesControlBytesAlone)
{
    line l = line_of("", 0);
    EXPECT_EQ(key(&l, 0xE4), 1);
    EXPECT_EQ(key(&l, 2), 0);
    EXPECT_EQ(key(&l, WS_KEY_UP), 0);
    EXPECT_STREQ(l.value, "\xE4");
}

TEST(FieldEdit, MovesWithHomeEndLeftAndRightAndStopsAtTheEnds)
{
    line l = line_of("abc", 1);
    key(&l, WS_KEY_END);
    EXPECT_EQ(l.edit.caret, 3);
    key(&l, WS_KEY_RIGHT);
    EXPECT_EQ(l.edit.caret, 3);
    key(&l, WS_KEY_LEFT);
    EXPECT_EQ(l.edit.caret, 2);
    key(&l, WS_KEY_HOME);
    key(&l, WS_KEY_LEFT);
    EXPECT_EQ(l.edit.caret, 0);
}

TEST(FieldEdit, BackspaceDeletesBeforeAndDeleteBehindTheCaret)
{
    line l = line_of("abcd", 2);
    key(&l, WS_KEY_BACKSPACE);
    EXPECT_STREQ(l.value, "acd");
    key(&l, WS_KEY_DELETE);
    EXPECT_STREQ(l.value, "ad");
    EXPECT_EQ(l.edit.caret, 1);
    key(&l, WS_KEY_HOME);
    key(&l, WS_KEY_BACKSPACE);
    key(&l, WS_KEY_END);
    key(&l, WS_KEY_DELETE);
    EXPECT_STREQ(l.value, "ad");
}

TEST(FieldEdit, ControlDeleteClearsTheLine)
{
    line l = line_of("abcd", 2);
    key(&l, WS_KEY_CTRL_DELETE);
    EXPECT_STREQ(l.value, "");
    EXPECT_EQ(l.edit.caret, 0);
}

TEST(FieldEdit, TypingReplacesTheSelection)
{
    line l = line_of("old", 0);
    edit_select_all(&l.edit, l.value);
    EXPECT_TRUE(edit_has_selection(&l.edit));
    key(&l, 'n');
    EXPECT_STREQ(l.value, "n");
    EXPECT_FALSE(edit_has_selection(&l.edit));
}

TEST(FieldEdit, DeletesTheSelectionWithEitherKey)
{
    for (const int byte : { int(WS_KEY_BACKSPACE), int(WS_KEY_DELETE) }) {
        line l = line_of("abcdef", 1);
        edit_place(&l.edit, l.value, 4, 1);     // bcd
        key(&l, byte);
        EXPECT_STREQ(l.value, "aef");
        EXPECT_EQ(l.edit.caret, 1);
    }
}

TEST(FieldEdit, LeftAndRightGoToTheEdgeOfTheSelection)
{
    line l = line_of("abcdef", 4);
    edit_place(&l.edit, l.value, 1, 1);
    line right = l;
    key(&l, WS_KEY_LEFT);
    EXPECT_EQ(l.edit.caret, 1);
    key(&right, WS_KEY_RIGHT);
    EXPECT_EQ(right.edit.caret, 4);
}

TEST(FieldEdit, AFullBufferTakesNoMore)
{
    line l = line_of("abc", 3);
    EXPECT_EQ(edit_key(&l.edit, l.value, 4, 'd'), 1);   // room for 3 characters and the ending zero
    EXPECT_STREQ(l.value, "abc");
    // With a selection there is room again.
    edit_place(&l.edit, l.value, 2, 1);
    edit_key(&l.edit, l.value, 4, 'd');
    EXPECT_STREQ(l.value, "abd");
}

TEST(FieldEdit, AValueThatWasShortenedFromOutsideIsEditedAtItsEnd)
{
    line l = line_of("long text", 9);
    std::strcpy(l.value, "ab");
    key(&l, 'c');
    EXPECT_STREQ(l.value, "abc");
}

TEST(FieldEdit, ScrollsSoThatTheCaretIsInSight)
{
    line l = line_of("0123456789", 10);
    edit_scroll(&l.edit, l.value, 45, ten_pixels_each);   // 4 characters fit
    EXPECT_EQ(l.edit.first, 6);
    key(&l, WS_KEY_HOME);
    edit_scroll(&l.edit, l.value, 45, ten_pixels_each);
    EXPECT_EQ(l.edit.first, 0);
}

TEST(FieldEdit, FillsTheFrameAgainWhenTheTextBecomesShorter)
{
    line l = line_of("0123456789", 10);
    edit_scroll(&l.edit, l.value, 45, ten_pixels_each);
    key(&l, WS_KEY_BACKSPACE);
    edit_scroll(&l.edit, l.value, 45, ten_pixels_each);
    EXPECT_EQ(l.edit.first, 5);                           // 5678 fills the four places
}

TEST(FieldEdit, AClickGoesToTheNearestGapBetweenCharacters)
{
    const line l = line_of("abcd", 0);
    EXPECT_EQ(edit_position_at(&l.edit, l.value, 4, ten_pixels_each), 0);
    EXPECT_EQ(edit_position_at(&l.edit, l.value, 5, ten_pixels_each), 1);
    EXPECT_EQ(edit_position_at(&l.edit, l.value, 24, ten_pixels_each), 2);
    EXPECT_EQ(edit_position_at(&l.edit, l.value, 900, ten_pixels_each), 4);
    EXPECT_EQ(edit_position_at(&l.edit, l.value, -5, ten_pixels_each), 0);
}
