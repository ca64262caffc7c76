// The outline fonts of text in images, as kestrel-mkfont made them.
#include "tools/font_reading.h"
#include <algorithm>
#include <gtest/gtest.h>

// A loader on a short-name file system keeps the tail from the first digit and cuts the head to eight characters.
static std::string short_name(const std::string &name)
{
    if (name.size() < 8)
        return name;
    const std::string tail = name.substr(name.find_first_of("0123456789"));
    return name.substr(0, 8 - tail.size()) + tail;
}

static std::vector<std::string> all_names()
{
    std::vector<std::string> names;
    for (const char *family : { "swiss742", "dutch801", "mono821" })
        for (const char *cut : { "", "b", "i", "bi" })
            names.push_back(std::string(family) + cut);
    return names;
}

static std::vector<uint8_t> font(const std::string &name)
{
    return file_bytes(KESTREL_DATA_ROOT "/fonts/" + short_name(name) + ".sf");
}

static int largest_bearing(const std::vector<uint8_t> &file)
{
    int largest = 0;
    for (int character = 0; character < 256; character++)
        if (outlines_of(file, character).advance >= 1)
            largest = std::max(largest, outlines_of(file, character).bearing);
    return largest;
}

// By the odd rule: how many edges a ray to the left meets. The place is between the points of the grid.
static bool inside(const read_outlines &glyph, double x, double y)
{
    bool odd = false;
    for (const auto &outline : glyph.outlines)
        for (size_t i = 0; i + 1 < outline.size(); i++) {
            const outline_point a = outline[i], b = outline[i + 1];
            if ((a.y < y) != (b.y < y) && a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y) < x)
                odd = !odd;
        }
    return odd;
}

class OutlineFont : public testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(All, OutlineFont, testing::ValuesIn(all_names()), [](const auto &name) { return name.param; });

TEST_P(OutlineFont, HeaderSaysVersionBaselineAndUnits)
{
    const std::vector<uint8_t> file = font(GetParam());
    ASSERT_GT(file.size(), 16u + 256 * 8);
    EXPECT_EQ(std::string(file.begin(), file.begin() + 9), "StrFont02");
    EXPECT_EQ(file[9], 0);
    EXPECT_EQ(u16_at(file, 10), 60u);
    EXPECT_EQ(u32_at(file, 12), 200u);
}

TEST_P(OutlineFont, PrintableCharactersHaveOutlinesAndSpacesOnlyAdvance)
{
    const std::vector<uint8_t> file = font(GetParam());
    for (int character = 0; character < 256; character++) {
        const bool printable = (character >= 32 && character < 127) || character >= 160;
        const bool blank = !printable || character == 32 || character == 160;
        EXPECT_EQ(outlines_of(file, character).outlines.empty(), blank) << character;
        EXPECT_EQ(outlines_of(file, character).advance > 0, printable) << character;
    }
}

TEST_P(OutlineFont, EveryOutlineEndsWhereItBegan)
{
    const std::vector<uint8_t> file = font(GetParam());
    for (int character = 33; character < 256; character++)
        for (const auto &outline : outlines_of(file, character).outlines) {
            ASSERT_GE(outline.size(), 4u) << character;
            EXPECT_EQ(outline.front().x, outline.back().x) << character;
            EXPECT_EQ(outline.front().y, outline.back().y) << character;
        }
}

// The text's bitmap has that margin on both sides of the advances.
TEST_P(OutlineFont, NoLetterReachesFartherOutThanTheLargestBearing)
{
    const std::vector<uint8_t> file = font(GetParam());
    const int margin = largest_bearing(file);
    for (int character = 33; character < 256; character++) {
        const read_outlines glyph = outlines_of(file, character);
        for (const auto &outline : glyph.outlines)
            for (const outline_point &point : outline) {
                EXPECT_GE(point.x - glyph.bearing, -margin) << character;
                EXPECT_LE(point.x - glyph.bearing, glyph.advance + margin) << character;
            }
    }
}

TEST_P(OutlineFont, CountersAreHoles)
{
    const std::vector<uint8_t> file = font(GetParam());
    const read_outlines ring = outlines_of(file, 'O');
    ASSERT_EQ(ring.outlines.size(), 2u);
    int left = 255, right = 0, bottom = 255, top = 0;
    for (const auto &outline : ring.outlines)
        for (const outline_point &point : outline) {
            left = std::min(left, point.x);
            right = std::max(right, point.x);
            bottom = std::min(bottom, point.y);
            top = std::max(top, point.y);
        }
    const double middle_x = (left + right) / 2.0 + 0.3, middle_y = (bottom + top) / 2.0 + 0.3;
    EXPECT_FALSE(inside(ring, middle_x, middle_y));
    int edges = 0;                                      // from left to right: stroke, hole, stroke
    for (double x = left - 1; x < right + 1; x += 0.5)
        edges += inside(ring, x, middle_y) != inside(ring, x + 0.5, middle_y);
    EXPECT_EQ(edges, 4);
    EXPECT_EQ(outlines_of(file, '8').outlines.size(), 3u);
    EXPECT_EQ(outlines_of(file, 'i').outlines.size(), 2u);
    EXPECT_EQ(outlines_of(file, 'l').outlines.size(), 1u);
}

// Capitals are 1409 of 2048 units high in the face that this font is made of: 1409 * 200 / 2048 = 137.6.
TEST(OutlineFontShapes, CapitalsStandOnTheBaselineAt138UnitsHeight)
{
    const read_outlines letter = outlines_of(font("swiss742"), 'H');
    ASSERT_EQ(letter.outlines.size(), 1u);
    int bottom = 255, top = 0;
    for (const outline_point &point : letter.outlines[0]) {
        bottom = std::min(bottom, point.y);
        top = std::max(top, point.y);
    }
    EXPECT_EQ(bottom, 60);
    EXPECT_EQ(top, 60 + 138);
    EXPECT_EQ(letter.outlines[0].size(), 13u);          // an H has 12 corners; the first comes again
}

TEST(OutlineFontShapes, MonoHasOneAdvanceInAllCuts)
{
    for (const char *cut : { "mono821", "mono821b", "mono821i", "mono821bi" })
        for (int character = 32; character < 127; character++)
            EXPECT_EQ(outlines_of(font(cut), character).advance, 120) << cut << " " << character;     // 0.6 em
}

TEST(OutlineFontShapes, ItalicsLeanToTheRight)
{
    const auto lean = [](const std::string &name) {
        const read_outlines bar = outlines_of(font(name), 'l');
        int at_top = 0, at_foot = 0, top = 0, foot = 255;
        for (const outline_point &point : bar.outlines[0]) {
            if (point.y > top || (point.y == top && point.x < at_top)) {
                top = point.y;
                at_top = point.x;
            }
            if (point.y < foot || (point.y == foot && point.x < at_foot)) {
                foot = point.y;
                at_foot = point.x;
            }
        }
        return at_top - at_foot;
    };
    EXPECT_EQ(lean("swiss742"), 0);
    EXPECT_EQ(lean("swiss742b"), 0);
    EXPECT_GT(lean("swiss742i"), 15);
    EXPECT_GT(lean("swiss742bi"), 15);
}
