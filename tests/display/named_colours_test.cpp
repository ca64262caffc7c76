#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "display/vlt.h"
#include "fake_screen.h"
#include "shell/session.h"

TEST(NamedColours, AreKnownOnceTheyHaveTheirSlots)
{
    int r = -1, g = -1, b = -1;
    reserved_count = 0;
    EXPECT_FALSE(named_colour(4, &r, &g, &b));
    reserved_count = 15;
    EXPECT_TRUE(named_colour(11, &r, &g, &b));
    EXPECT_EQ(r, 0xFF);
    EXPECT_EQ(g, 0xFF);
    EXPECT_EQ(b, 0xBB);
    EXPECT_FALSE(named_colour(15, &r, &g, &b));
    EXPECT_FALSE(named_colour(-1, &r, &g, &b));
}

TEST(NamedColours, WithANullTheFirstGetsThePackedValue)
{
    int packed = 0;
    reserved_count = 15;
    EXPECT_TRUE(named_colour(12, &packed, nullptr, nullptr));
    EXPECT_EQ(packed, 0xDD0000);
}

TEST(NamedColours, JoinTheCubeEachOnceTheSlotColoursFirst)
{
    std::set<int> first(named_colour_order, named_colour_order + 15), all(named_colour_order, named_colour_order + 31);
    EXPECT_EQ(*first.rbegin(), 14);
    EXPECT_EQ(first.size(), 15u);
    EXPECT_EQ(all.size(), 31u);
    EXPECT_EQ(named_colour_order[0], 3);
    EXPECT_EQ(named_colour_order[1], 7);
}

TEST(FormColours, HaveSlots)
{
    const int slots[16] = { 1, 2, 0, 4, 5, 6, 1, 8, 9, 10, 1, 8, 1, 10, 1, 1 };
    for (int colour = 0; colour < 16; colour++)
        EXPECT_EQ(form_colour_slot(colour), slots[colour]) << colour;
    EXPECT_EQ(form_colour_slot(-3), 1);
}

TEST(FormPalette, IsPackedInTrueColourWithRedAsRed)
{
    fake_screen_reset(1, 1, true);
    form_palette(24);
    const forms_palette &p = screen.style.palette;
    EXPECT_TRUE(screen.style.true_colour);
    EXPECT_EQ(p.red, 0xFF0000);
    EXPECT_EQ(p.green, 0x00FF00);
    EXPECT_EQ(p.blue, 0x0000FF);
    EXPECT_EQ(p.yellow, 0xFFFF00);
    EXPECT_EQ(p.light, 0xAAAAAA);
    EXPECT_EQ(p.medium, 0x888888);
    EXPECT_EQ(p.dark, 0x555555);
    EXPECT_EQ(p.black, 0);
    EXPECT_EQ(p.white, 0xFFFFFF);
}

TEST(FormPalette, IsOfSlotsElsewhere)
{
    fake_screen_reset(1, 1, false);
    plane_mask = 255;
    form_palette(8);
    const forms_palette &p = screen.style.palette;
    EXPECT_FALSE(screen.style.true_colour);
    EXPECT_EQ(p.red, 8);
    EXPECT_EQ(p.green, 9);
    EXPECT_EQ(p.blue, 10);
    EXPECT_EQ(p.yellow, 4);
    EXPECT_EQ(p.light, 5);
    EXPECT_EQ(p.medium, 2);
    EXPECT_EQ(p.dark, 6);
    EXPECT_EQ(p.white, 255);
    plane_mask = 15;
    form_palette(4);
    EXPECT_EQ(screen.style.palette.dark, 2);
    EXPECT_EQ(screen.style.palette.white, 15);
}
