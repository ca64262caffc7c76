// The bitmap fonts as kestrel-mkfont made them, and the layout of what font_file puts together.
#include "services/builtin_fonts.h"
#include "tools/font_file.h"
#include "tools/font_reading.h"
#include <gtest/gtest.h>
#include <set>

struct font_under_test {
    std::string name;
    int line_height;
    bool one_advance;
    std::vector<uint8_t> file;
};

static std::vector<font_under_test> all_text_fonts()
{
    std::vector<font_under_test> fonts;
    for (const char *name : { "mono821b.30", "mono821b.22", "mono821.22", "mono821.18", "mono821.16", "mono821.14" })
        fonts.push_back({ name, 0, true, file_bytes(std::string(KESTREL_DATA_ROOT "/fonts/") + name) });
    for (int i = 0; i < builtin_font_count; i++)
        if (std::string(builtin_fonts[i].name) != "symbols")
            fonts.push_back({ builtin_fonts[i].name, 0, builtin_fonts[i].name[0] == 'm',
                              { builtin_fonts[i].bytes, builtin_fonts[i].bytes + builtin_fonts[i].size } });
    for (font_under_test &font : fonts)
        font.line_height = std::stoi(font.name.substr(font.name.find('.') + 1));
    return fonts;
}

class BitmapFont : public testing::TestWithParam<font_under_test> {};

INSTANTIATE_TEST_SUITE_P(All, BitmapFont, testing::ValuesIn(all_text_fonts()), [](const auto &font) {
    std::string name = font.param.name + "_" + std::to_string(font.index);
    name[name.find('.')] = '_';
    return name;
});

static bool printable_latin1(int character)
{
    return (character >= 32 && character < 127) || character >= 160;
}

TEST_P(BitmapFont, HeaderWordsCountTheRecordsAndTheBits)
{
    const std::vector<uint8_t> &file = GetParam().file;
    ASSERT_GT(file.size(), 268u);
    EXPECT_EQ(std::string(file.begin(), file.begin() + 4), "FONT");
    EXPECT_EQ(u32_at(file, 4) + 8, file.size());
    EXPECT_EQ((u32_at(file, 8) - 260) % 8, 0u);
    EXPECT_EQ(glyph_count(file), 95 + 96);              // 32 to 126 and 160 to 255
}

TEST_P(BitmapFont, BitsFollowOneAnotherToTheEndOfTheFile)
{
    const std::vector<uint8_t> &file = GetParam().file;
    uint32_t next = 8 + u32_at(file, 8);
    for (int i = 0; i < glyph_count(file); i++) {
        const read_glyph glyph = glyph_record(file, i);
        EXPECT_EQ(glyph.bits_at, next) << "record " << i;
        next += uint32_t((glyph.width + 7) / 8 * glyph.height);
    }
    EXPECT_EQ(next, file.size());
}

TEST_P(BitmapFont, MapsThePrintableCharactersOfLatin1AndNoOthers)
{
    std::set<int> numbers;
    for (int character = 0; character < 256; character++) {
        EXPECT_EQ(has_glyph(GetParam().file, character), printable_latin1(character)) << character;
        if (printable_latin1(character))
            numbers.insert(GetParam().file.at(12 + size_t(character)));
    }
    EXPECT_EQ(numbers.size(), 191u);                    // each has a glyph of its own
    EXPECT_EQ(*numbers.rbegin(), 191);
}

TEST_P(BitmapFont, AllCharactersButTheSpacesHaveInkAndPadBitsHaveNone)
{
    const std::vector<uint8_t> &file = GetParam().file;
    for (int character = 33; character < 256; character++) {
        if (!printable_latin1(character) || character == 160)
            continue;
        const read_glyph glyph = glyph_of(file, character);
        int ink = 0, pad_ink = 0;
        for (int y = 0; y < glyph.height; y++)
            for (int x = 0; x < (glyph.width + 7) / 8 * 8; x++)
                (x < glyph.width ? ink : pad_ink) += ink_at(file, glyph, x, y);
        EXPECT_GT(ink, 0) << character;
        EXPECT_EQ(pad_ink, 0) << character;
    }
}

TEST_P(BitmapFont, StandsOnOneBaselineInsideItsLine)
{
    const std::vector<uint8_t> &file = GetParam().file;
    const read_glyph letter = glyph_of(file, 'H');
    const int baseline = letter.y_offset + letter.height;
    for (int i = 0; i < glyph_count(file); i++) {
        const read_glyph glyph = glyph_record(file, i);
        EXPECT_EQ(glyph.y_offset + glyph.above_baseline, baseline) << "record " << i;
        EXPECT_LE(glyph.y_offset + glyph.height, GetParam().line_height) << "record " << i;
        EXPECT_LE(glyph.x_offset + glyph.width, glyph.advance) << "record " << i;
    }
    EXPECT_GT(glyph_of(file, 'g').height, glyph_of(file, 'g').above_baseline);      // its tail hangs below
    EXPECT_EQ(glyph_of(file, 'H').height, glyph_of(file, 'H').above_baseline);
}

TEST_P(BitmapFont, SpaceIsOneBlankCellOfTheLine)
{
    const std::vector<uint8_t> &file = GetParam().file;
    for (const int character : { 32, 160 }) {
        const read_glyph space = glyph_of(file, character);
        EXPECT_EQ(space.height, GetParam().line_height);
        EXPECT_EQ(space.width, space.advance);
        for (int y = 0; y < space.height; y++)
            for (int x = 0; x < space.width; x++)
                EXPECT_FALSE(ink_at(file, space, x, y));
    }
}

TEST_P(BitmapFont, OnlyFixedFontsHaveOneAdvance)
{
    std::set<int> advances;
    for (int i = 0; i < glyph_count(GetParam().file); i++)
        advances.insert(glyph_record(GetParam().file, i).advance);
    if (GetParam().one_advance)
        EXPECT_EQ(advances.size(), 1u);
    else
        EXPECT_LT(glyph_of(GetParam().file, 'i').advance, glyph_of(GetParam().file, 'W').advance);
}

// An L has its stem on the left and its foot below: read from the wrong end of a byte, both would be elsewhere.
TEST_P(BitmapFont, LettersAreTheRightWayRound)
{
    const std::vector<uint8_t> &file = GetParam().file;
    const read_glyph letter = glyph_of(file, 'L');
    for (int y = 0; y < letter.height; y++)
        EXPECT_TRUE(ink_at(file, letter, 0, y)) << "row " << y;
    EXPECT_FALSE(ink_at(file, letter, letter.width - 1, 0));
    for (int x = 0; x < letter.width; x++)
        EXPECT_TRUE(ink_at(file, letter, x, letter.height - 1)) << "column " << x;
}

TEST_P(BitmapFont, CapitalsFillBetweenTwoFifthsAndFourFifthsOfTheLine)
{
    const int capital = glyph_of(GetParam().file, 'H').height;
    EXPECT_GE(capital * 5, GetParam().line_height * 2);
    EXPECT_LE(capital * 5, GetParam().line_height * 4);
    EXPECT_LT(glyph_of(GetParam().file, 'x').height, capital);
}

TEST(BuiltinFonts, AreTheSizesThatTheServicesDrawWith)
{
    std::set<std::string> names;
    for (int i = 0; i < builtin_font_count; i++)
        names.insert(builtin_fonts[i].name);
    EXPECT_EQ(names, (std::set<std::string>{ "sans.14", "sans.16", "sans.18", "sansb.14", "sansb.16", "sansb.18",
                                             "mono.16", "symbols" }));
}

TEST(FontFile, HoldsOneGlyphByteForByte)
{
    font_glyph glyph = blank_glyph(9, 2);               // 9 pixels take 2 bytes a row
    glyph.x_offset = 1;
    glyph.y_offset = 3;
    glyph.advance = 11;
    glyph.above_baseline = 2;
    set_ink(&glyph, 0, 0);
    set_ink(&glyph, 7, 0);
    set_ink(&glyph, 8, 1);
    font_set set;
    ASSERT_TRUE(add_glyph(&set, 'A', glyph));
    std::vector<uint8_t> file;
    std::string error;
    ASSERT_TRUE(font_file_bytes(set, &file, &error));

    std::vector<uint8_t> want = { 'F', 'O', 'N', 'T',
        0x10, 0x01, 0, 0,                               // 272: 280 bytes less 8
        0x0c, 0x01, 0, 0 };                             // 268: 260 and one record of 8
    want.resize(12 + 256, 0);
    want[12 + 65] = 1;
    for (const int byte : { 0, 0, 9, 2, 1, 3, 11, 2,        // the record
                            0x81, 0x00, 0x00, 0x01 })       // pixels 0 and 7 of the first row, 8 of the second
        want.push_back(uint8_t(byte));
    EXPECT_EQ(file, want);
}

TEST(FontFile, RefusesWhatDoesNotFitItsFields)
{
    std::vector<uint8_t> file;
    std::string error;
    font_set wide;
    add_glyph(&wide, 'A', blank_glyph(256, 1));
    EXPECT_FALSE(font_file_bytes(wide, &file, &error));
    EXPECT_EQ(error, "glyph 1 is too large for a font file");

    font_set heavy;                                     // 32 * 255 bytes a glyph: the tenth would begin at 73440
    for (int i = 0; i < 10; i++)
        add_glyph(&heavy, 'A' + i, blank_glyph(255, 255));
    EXPECT_FALSE(font_file_bytes(heavy, &file, &error));
    EXPECT_EQ(error, "glyph 10 is too large for a font file");
}

TEST(FontFile, HasNumbersFor255Glyphs)
{
    font_set set;
    for (int i = 1; i < 256; i++)
        EXPECT_TRUE(add_glyph(&set, i, blank_glyph(1, 1)));
    EXPECT_EQ(set.map[255], 255);
    EXPECT_FALSE(add_glyph(&set, 0, blank_glyph(1, 1)));
}
