#include "forms/list_scroll.h"
#include <gtest/gtest.h>

TEST(ListScroll, TheThumbHasTheShareOfTheVisibleRows)
{
    const scroll_thumb top = scroll_thumb_of(100, 8, 40, 10, 0);
    EXPECT_EQ(top.start, 0);
    EXPECT_EQ(top.length, 25);                            // 100 * 10 / 40
    const scroll_thumb bottom = scroll_thumb_of(100, 8, 40, 10, 30);
    EXPECT_EQ(bottom.start, 75);
}

TEST(ListScroll, TheThumbFillsTheTroughWhenAllIsVisible)
{
    const scroll_thumb thumb = scroll_thumb_of(100, 8, 7, 10, 0);
    EXPECT_EQ(thumb.start, 0);
    EXPECT_EQ(thumb.length, 100);
}

TEST(ListScroll, AThumbIsNeverTooShortToHold)
{
    EXPECT_EQ(scroll_thumb_of(100, 8, 100000, 10, 0).length, 8);
    EXPECT_EQ(scroll_thumb_of(100, 8, 100000, 10, 99990).start, 92);
}

TEST(ListScroll, ADraggedThumbGivesTheRowItStandsFor)
{
    EXPECT_EQ(scroll_first_at(100, 25, 40, 10, 0), 0);
    EXPECT_EQ(scroll_first_at(100, 25, 40, 10, 75), 30);
    EXPECT_EQ(scroll_first_at(100, 25, 40, 10, 30), 12);  // 30 * 30 / 75
    EXPECT_EQ(scroll_first_at(100, 25, 40, 10, -20), 0);
    EXPECT_EQ(scroll_first_at(100, 25, 40, 10, 500), 30);
    EXPECT_EQ(scroll_first_at(100, 100, 7, 10, 40), 0);
}

TEST(ListScroll, ALetterFindsTheNextItemThatBeginsWithIt)
{
    char apple[] = "apple", berry[] = "Berry", banana[] = "banana", cherry[] = "cherry";
    char *items[] = { apple, berry, banana, cherry };
    gadget g {};
    g.items = items;
    g.item_count = 4;
    g.picked = -1;
    EXPECT_EQ(list_find_initial(&g, 'b'), 1);
    g.picked = 1;
    EXPECT_EQ(list_find_initial(&g, 'B'), 2);
    g.picked = 2;
    EXPECT_EQ(list_find_initial(&g, 'b'), 1);             // round
    EXPECT_EQ(list_find_initial(&g, 'x'), -1);
}
