#include "screen_fixture.h"
#include <climits>

struct vectors_test : screen_test {
    int w = 0;
    void SetUp() override
    {
        screen_test::SetUp();
        w = plain_window(0, 0, 9, 9);
        ws_set_foreground(w, 5);
    }
    void line(int x0, int y0, int x1, int y1)
    {
        ws_move(w, x0, y0);
        ASSERT_EQ(ws_draw(w, x1, y1), 0);
    }
};

TEST_F(vectors_test, LinesHaveBothEnds)
{
    line(1, 1, 8, 1);
    line(1, 3, 1, 8);
    line(3, 3, 7, 7);
    line(9, 9, 9, 9);
    EXPECT_EQ(drawing(w, 0, 0, 9, 9),
              "..........\n"
              ".########.\n"
              "..........\n"
              ".#.#......\n"
              ".#..#.....\n"
              ".#...#....\n"
              ".#....#...\n"
              ".#.....#..\n"
              ".#........\n"
              ".........#\n");
}

// 0, 0 to 8, 3: rows are 3 x / 8 rounded: 0 .4 .75 1.1 1.5 1.9 2.25 2.6 3, the half towards the start.
TEST_F(vectors_test, SlopedLineRoundsToTheNearestRow)
{
    line(0, 0, 8, 3);
    EXPECT_EQ(drawing(w, 0, 0, 8, 3),
              "##.......\n"
              "..###....\n"
              ".....##..\n"
              ".......##\n");
}

TEST_F(vectors_test, SteepAndBackwardLines)
{
    line(3, 8, 0, 0);
    EXPECT_EQ(drawing(w, 0, 0, 3, 8),      // columns 3 y / 8, seen from 3, 8: the half at y = 4 goes to the right
              "#...\n"
              "#...\n"
              ".#..\n"
              ".#..\n"
              "..#.\n"
              "..#.\n"
              "..#.\n"
              "...#\n"
              "...#\n");
}

TEST_F(vectors_test, PolylineGoesOnFromTheLastPoint)
{
    ws_move(w, 0, 0);
    ws_draw(w, 4, 0);
    ws_draw(w, 4, 3);
    EXPECT_EQ(drawing(w, 0, 0, 4, 3),
              "#####\n"
              "....#\n"
              "....#\n"
              "....#\n");
}

TEST_F(vectors_test, WideLineIsItsWidthAndOneOfParallelLines)
{
    ws_set_line_width(w, 2);
    line(1, 4, 8, 4);                      // 3 rows around it
    EXPECT_EQ(drawing(w, 0, 2, 9, 6),
              "..........\n"
              ".########.\n"
              ".########.\n"
              ".########.\n"
              "..........\n");
}

TEST_F(vectors_test, WideSteepLineIsWideToTheSides)
{
    ws_set_line_width(w, 1);
    line(4, 1, 4, 3);                      // 2 columns, the odd one to the right
    EXPECT_EQ(drawing(w, 3, 0, 6, 4),
              "....\n"
              ".##.\n"
              ".##.\n"
              ".##.\n"
              "....\n");
}

TEST_F(vectors_test, DashesFollowThePatternAndGoOnAroundCorners)
{
    ws_set_line_style(w, 0xCCCC);          // two on, two off
    ws_move(w, 0, 0);
    ws_draw(w, 9, 0);
    ws_draw(w, 9, 5);                      // 9 steps are done: the corner is the second of a pair of ones
    EXPECT_EQ(drawing(w, 0, 0, 9, 5),
              "##..##..##\n"
              "..........\n"
              "..........\n"
              ".........#\n"
              ".........#\n"
              "..........\n");
    ws_set_line_style(w, 65535);
    ws_move(w, 0, 4);
    ws_draw(w, 9, 4);
    EXPECT_EQ(drawing(w, 0, 4, 9, 4), "##########\n");
}

TEST_F(vectors_test, StyleWithoutABitIsStillDashed)
{
    ws_set_line_style(w, 0);
    line(0, 0, 9, 0);
    EXPECT_EQ(drawing(w, 0, 0, 9, 0), "####....##\n");
}

TEST_F(vectors_test, FarLinesAreCutWithoutBeingBent)
{
    line(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_EQ(drawing(w, 0, 0, 9, 9),
              "#.........\n"
              ".#........\n"
              "..#.......\n"
              "...#......\n"
              "....#.....\n"
              ".....#....\n"
              "......#...\n"
              ".......#..\n"
              "........#.\n"
              ".........#\n");
    ws_clear_window(w);
    line(-8, -3, 8, 3);                    // the same pixels as 3 x / 8 from the start, seen through the window
    EXPECT_EQ(drawing(w, 0, 0, 8, 3),
              "##.......\n"
              "..###....\n"
              ".....##..\n"
              ".......##\n");
    ws_clear_window(w);
    line(INT_MIN, 5, INT_MAX, 5);
    line(5, INT_MAX, 5, INT_MIN);
    EXPECT_EQ(held(w, 0, 5), 5u);
    EXPECT_EQ(held(w, 5, 9), 5u);
    EXPECT_EQ(held(w, 4, 4), 0u);
}

TEST_F(vectors_test, ClipLimitsAndTheWindowLimitsTheClip)
{
    ws_set_clip(w, 2, 2, 5, 50);
    ws_fill_rect(w, 0, 0, 9, 9);
    line(0, 0, 9, 9);
    EXPECT_EQ(drawing(w, 0, 0, 9, 9),
              "..........\n"
              "..........\n"
              "..####....\n"
              "..####....\n"
              "..####....\n"
              "..####....\n"
              "..####....\n"
              "..####....\n"
              "..####....\n"
              "..####....\n");
    ws_set_clip(w, 20, 20, 30, 30);        // nothing left of the window
    ws_set_foreground(w, 9);
    ws_fill_rect(w, 0, 0, 9, 9);
    EXPECT_EQ(held(w, 3, 3), 5u);
}

TEST_F(vectors_test, ClipAsLargeAsTheWindowGrowsWithIt)
{
    ws_set_clip(w, 0, 0, 9, 9);
    ws_move_window(w, 0, 0, 19, 19);
    ws_fill_rect(w, 0, 0, 19, 19);
    EXPECT_EQ(held(w, 19, 19), 5u);
}

TEST_F(vectors_test, FillTakesCornersInAnyOrder)
{
    ws_fill_rect(w, 4, 5, 2, 3);
    EXPECT_EQ(drawing(w, 1, 2, 5, 6),
              ".....\n"
              ".###.\n"
              ".###.\n"
              ".###.\n"
              ".....\n");
}

TEST_F(vectors_test, FillPatternIsLaidOutFromTheWindowsCorner)
{
    const uint8_t pattern[8] = { 0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01 };
    const uint8_t solid[8] = { 255, 255, 255, 255, 255, 255, 255, 255 };
    ws_set_fill_pattern(w, pattern);
    ws_fill_rect(w, 1, 0, 9, 3);
    EXPECT_EQ(drawing(w, 0, 0, 9, 3),
              "........#.\n"
              ".#.......#\n"
              "..#.......\n"
              "...#......\n");
    ws_set_fill_pattern(w, solid);
    ws_fill_rect(w, 0, 0, 9, 0);
    EXPECT_EQ(drawing(w, 0, 0, 9, 0), "##########\n");
}

TEST_F(vectors_test, CombiningRulesOfPoints)
{
    const struct { int rop; uint32_t result; } rules[] = {   // of 0xF0 with 0x3C
        { WS_ROP_COPY, 0x3C }, { WS_ROP_XOR, 0xCC }, { WS_ROP_AND, 0x30 }, { WS_ROP_OR, 0xFC },
        { WS_ROP_CLEAR, 0 }, { WS_ROP_INVERT, 0x0F }, { WS_ROP_SET, 0xFF },
    };
    for (const auto &rule : rules) {
        fill_window(w, 0xF0);
        ASSERT_EQ(ws_rop_point(w, rule.rop, 4, 4, 0x3C), 0);
        EXPECT_EQ(held(w, 4, 4), rule.result) << rule.rop;
    }
    EXPECT_EQ(ws_rop_point(w, 7, 4, 4, 1), -1);
    EXPECT_EQ(ws_rop_point(w, -1, 4, 4, 1), -1);
    EXPECT_EQ(ws_rop_point(w, WS_ROP_SET, 40, 4, 1), 0);
}

TEST_F(true_colour_test, CombiningRulesOfPointsInTrueColour)
{
    const int w = true_colour_window(0, 0, 9, 9);
    fill_window(w, 0x123456);
    ws_rop_point(w, WS_ROP_INVERT, 1, 1, 0);
    EXPECT_EQ(held(w, 1, 1), 0xEDCBA9u);
    ws_rop_point(w, WS_ROP_XOR, 2, 2, 0xFFFFFF);
    EXPECT_EQ(held(w, 2, 2), 0xEDCBA9u);
    ws_rop_point(w, WS_ROP_XOR, 2, 2, 0xFFFFFF);
    EXPECT_EQ(held(w, 2, 2), 0x123456u);
    ws_rop_point(w, WS_ROP_SET, 3, 3, 0);
    EXPECT_EQ(held(w, 3, 3), 0xFFFFFFu);
}

TEST_F(true_colour_test, LinesInTrueColour)
{
    const int w = true_colour_window(0, 0, 9, 9);
    ws_set_foreground(w, 0x00FF8040);
    ws_move(w, 0, 0);
    ws_draw(w, 9, 9);
    EXPECT_EQ(held(w, 4, 4), 0xFF8040u);
    EXPECT_EQ(seen(4, 4), 0xFF8040u);
}
