// The symbol files, and the reading of drawings in characters.
#include "services/builtin_fonts.h"
#include "services/symbols.h"
#include "tools/font_reading.h"
#include "tools/symbol_drawings.h"
#include <gtest/gtest.h>

static constexpr const char *names[] = {
#define SYMBOL(name) #name,
    SYMBOL_LIST(SYMBOL)
#undef SYMBOL
};

static std::vector<uint8_t> symbol_file()
{
    return file_bytes(KESTREL_DATA_ROOT "/Kestrel/kestrel.sym");
}

static std::string drawings()
{
    const std::vector<uint8_t> bytes = file_bytes(KESTREL_SOURCE_ROOT "/data/symbols.txt");
    return { bytes.begin(), bytes.end() };
}

TEST(Symbols, AllThreeSetsAreTheSame)
{
    const std::vector<uint8_t> file = symbol_file();
    EXPECT_EQ(file, file_bytes(KESTREL_DATA_ROOT "/Kestrel/GXsym"));
    bool found = false;
    for (int i = 0; i < builtin_font_count; i++)
        if (std::string(builtin_fonts[i].name) == "symbols") {
            found = true;
            EXPECT_EQ(file, std::vector<uint8_t>(builtin_fonts[i].bytes, builtin_fonts[i].bytes + builtin_fonts[i].size));
        }
    EXPECT_TRUE(found);
}

TEST(Symbols, EveryCodeHasAGlyphAndNoOtherCharacterHas)
{
    const std::vector<uint8_t> file = symbol_file();
    EXPECT_EQ(u32_at(file, 4) + 8, file.size());
    for (int code = 0; code < 256; code++)
        EXPECT_EQ(has_glyph(file, code), code > 32 && code < SYM_END) << code;
    EXPECT_EQ(glyph_count(file), SYM_END - 33);
}

TEST(Symbols, MasksCoverTheSymbolBeforeThem)
{
    const std::vector<uint8_t> file = symbol_file();
    int masks = 0;
    for (int code = SYM_PUSH_UP + 1; code < SYM_END; code++) {
        if (!std::string(names[code - SYM_PUSH_UP]).ends_with("_MASK"))
            continue;
        masks++;
        const read_glyph symbol = glyph_of(file, code - 1), mask = glyph_of(file, code);
        ASSERT_EQ(symbol.width, mask.width);
        ASSERT_EQ(symbol.height, mask.height);
        EXPECT_EQ(symbol.x_offset, mask.x_offset);
        EXPECT_EQ(symbol.y_offset, mask.y_offset);
        int paper = 0;
        for (int y = 0; y < mask.height; y++)
            for (int x = 0; x < mask.width; x++) {
                EXPECT_FALSE(ink_at(file, symbol, x, y) && !ink_at(file, mask, x, y)) << names[code - SYM_PUSH_UP];
                paper += ink_at(file, mask, x, y) && !ink_at(file, symbol, x, y);
            }
        EXPECT_GT(paper, 0) << names[code - SYM_PUSH_UP];
    }
    EXPECT_EQ(masks, 17);
}

TEST(Symbols, CursorsPointWithAPixelOfTheirs)
{
    const std::vector<uint8_t> file = symbol_file();
    for (const int code : { SYM_CURSOR_ARROW, SYM_CURSOR_BUSY, SYM_CURSOR_CROSS, SYM_CURSOR_TEXT }) {
        const read_glyph cursor = glyph_of(file, code);
        ASSERT_LT(cursor.x_offset, cursor.width);
        ASSERT_LT(cursor.y_offset, cursor.height);
        EXPECT_TRUE(ink_at(file, cursor, cursor.x_offset, cursor.y_offset)) << code;
    }
    EXPECT_EQ(glyph_of(file, SYM_CLOSE).x_offset, 0);
}

TEST(Symbols, ArrowsMirrorOneAnother)
{
    const std::vector<uint8_t> file = symbol_file();
    const read_glyph up = glyph_of(file, SYM_ARROW_UP), down = glyph_of(file, SYM_ARROW_DOWN);
    const read_glyph left = glyph_of(file, SYM_ARROW_LEFT), right = glyph_of(file, SYM_ARROW_RIGHT);
    EXPECT_TRUE(ink_at(file, up, 4, 0));                // the tip
    EXPECT_FALSE(ink_at(file, up, 0, 0));
    EXPECT_TRUE(ink_at(file, left, 0, 4));
    EXPECT_FALSE(ink_at(file, left, 0, 0));
    for (int along = 0; along < 9; along++)
        for (int deep = 0; deep < 5; deep++) {
            EXPECT_EQ(ink_at(file, up, along, deep), ink_at(file, down, along, 4 - deep));
            EXPECT_EQ(ink_at(file, left, deep, along), ink_at(file, right, 4 - deep, along));
            EXPECT_EQ(ink_at(file, up, along, deep), ink_at(file, left, deep, along));
        }
}

TEST(SymbolDrawings, InkIsTheSymbolAndPaperItsMask)
{
    std::string text = drawings();
    const std::string box = "SYM_BOX_OFF\n";
    const size_t from = text.find(box), to = text.find("SYM_BOX_ON");
    text.replace(from, to - from, box + "a remark\n#o.\n..#\n\n");
    font_set set;
    std::string error;
    ASSERT_TRUE(symbols_from_drawings(text, &set, &error)) << error;
    const font_glyph &symbol = set.glyphs[size_t(set.map[SYM_BOX_OFF] - 1)];
    const font_glyph &mask = set.glyphs[size_t(set.map[SYM_BOX_OFF_MASK] - 1)];
    EXPECT_EQ(symbol.width, 3);
    EXPECT_EQ(symbol.bits, (std::vector<uint8_t>{ 0b001, 0b100 }));
    EXPECT_EQ(mask.bits, (std::vector<uint8_t>{ 0b011, 0b100 }));
}

TEST(SymbolDrawings, HotSpotStandsBehindTheName)
{
    font_set set;
    std::string error, text = drawings();
    const std::string name = "SYM_CURSOR_TEXT hot ";
    text.replace(text.find(name), name.size() + 3, name + "5 7");
    ASSERT_TRUE(symbols_from_drawings(text, &set, &error)) << error;
    const font_glyph &cursor = set.glyphs[size_t(set.map[SYM_CURSOR_TEXT] - 1)];
    EXPECT_EQ(cursor.x_offset, 5);
    EXPECT_EQ(cursor.y_offset, 7);
}

TEST(SymbolDrawings, RefusesMissingUnevenAndUnknownDrawings)
{
    const auto error_of = [](const std::string &text) {
        font_set set;
        std::string error;
        EXPECT_FALSE(symbols_from_drawings(text, &set, &error));
        return error;
    };
    std::string text = drawings();
    const size_t name = text.find("SYM_SUBMENU");
    text.erase(name, text.find("SYM_CLOSE") - name);
    EXPECT_EQ(error_of(text), "SYM_SUBMENU has no drawing, or one with uneven rows");
    text = drawings();
    text.insert(text.find("SYM_SUBMENU\n") + 12, "##########\n");
    EXPECT_EQ(error_of(text), "SYM_SUBMENU has no drawing, or one with uneven rows");
    EXPECT_EQ(error_of(drawings() + "\nSYM_TEAPOT\n##\n"), "a drawing bears a name that is no symbol's");
}
