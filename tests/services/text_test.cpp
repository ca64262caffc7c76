#include "screen_fixture.h"
#include "services/builtin_fonts.h"
#include "services/font.h"
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

static void put_le32(std::vector<uint8_t> &file, size_t at, uint32_t value)
{
    for (int i = 0; i < 4; i++)
        file[at + size_t(i)] = uint8_t(value >> (8 * i));
}

struct record { uint16_t offset; uint8_t width, height, x_offset, y_offset, advance, above; };

// A font whose n-th character, from 'A' on, is the n-th record.
static std::vector<uint8_t> font_file(const std::vector<record> &records, const std::vector<uint8_t> &bits)
{
    std::vector<uint8_t> file(12 + 256, 0);
    memcpy(file.data(), "FONT", 4);
    for (size_t i = 0; i < records.size(); i++) {
        const record &r = records[i];
        file[12 + 'A' + i] = uint8_t(i + 1);
        file.insert(file.end(), { uint8_t(r.offset), uint8_t(r.offset >> 8), r.width, r.height, r.x_offset, r.y_offset, r.advance, r.above });
    }
    const uint32_t start = uint32_t(260 + records.size() * 8);
    put_le32(file, 4, start + uint32_t(bits.size()));
    put_le32(file, 8, start);
    file.insert(file.end(), bits.begin(), bits.end());
    return file;
}

// 'A' is a 3 by 2 glyph, 'B' a dot that is wider than it advances, 'C' a dot one right and two down in a wide cell.
static std::vector<uint8_t> small_font()
{
    return font_file({ { 0, 3, 2, 0, 0, 4, 2 }, { 2, 9, 1, 0, 0, 5, 1 }, { 4, 1, 1, 1, 2, 6, 0 } },
                     { 0x05, 0x07,             // #.#  ###: the lowest bit is leftmost
                       0xFF, 0x01,             // nine in a row, over a byte's edge
                       0x01 });
}

struct temporary_file {
    std::string name;
    explicit temporary_file(const std::vector<uint8_t> &bytes)
    {
        char path[] = "/tmp/kestrel_font_XXXXXX";
        const int fd = mkstemp(path);
        name = path;
        EXPECT_EQ(write(fd, bytes.data(), bytes.size()), ssize_t(bytes.size()));
        close(fd);
    }
    ~temporary_file() { remove(name.c_str()); }
};

TEST_F(screen_test, TextIsDrawnTopLeftAndLeavesTheBackground)
{
    const temporary_file file(small_font());
    int font;
    ASSERT_EQ(ws_load_font(file.name.c_str(), &font), 0);
    const int w = plain_window(0, 0, 19, 3);
    fill_window(w, 7);
    ws_set_foreground(w, 9);
    ASSERT_EQ(ws_draw_text(w, font, 1, 1, "AzA", 3), 0);   // no 'z' in the font: it takes no room
    EXPECT_EQ(drawing(w, 0, 0, 9, 3, 7),
              "..........\n"
              ".#.#.#.#..\n"
              ".###.###..\n"
              "..........\n");
    EXPECT_EQ(held(w, 1, 1), 9u);
}

static void expect_damaged(int x0, int y0, int x1, int y1)
{
    ASSERT_EQ(ws_state.damage_count, 1);
    const ws_rect &damage = ws_state.damage[0];
    EXPECT_EQ(damage.x0, x0);
    EXPECT_EQ(damage.y0, y0);
    EXPECT_EQ(damage.x1, x1);
    EXPECT_EQ(damage.y1, y1);
}

// Its rows end with the lowest glyph of the font, 'C'. A glyph that lies beyond its own advance widens all texts of its font.
TEST_F(screen_test, TextChangesNoMoreOfTheScreenThanItsGlyphsReach)
{
    const temporary_file file(small_font()), beyond(font_file({ { 0, 2, 1, 5, 0, 3, 1 } }, { 0x03 }));
    int font, font_beyond;
    ASSERT_EQ(ws_load_font(file.name.c_str(), &font), 0);
    ASSERT_EQ(ws_load_font(beyond.name.c_str(), &font_beyond), 0);
    const int w = plain_window(10, 10, 109, 109);
    compose_and_present();
    ws_draw_text(w, font, 5, 7, "AC", 2);              // 4 + 6 columns, 2 + 1 rows
    expect_damaged(15, 17, 24, 19);
    compose_and_present();
    ws_draw_text(w, font_beyond, 5, 7, "A", 1);        // 5 columns to the right, 2 wide
    expect_damaged(15, 17, 21, 17);
    EXPECT_EQ(held(w, 11, 7), held(w, 10, 7));
    EXPECT_NE(held(w, 11, 7), held(w, 12, 7));
}

TEST_F(screen_test, GlyphsWiderThanTheirAdvanceTakeTheirWidth)
{
    const temporary_file file(small_font());
    int font, width;
    ASSERT_EQ(ws_load_font(file.name.c_str(), &font), 0);
    ASSERT_EQ(ws_text_width(font, "ABzC", 4, &width), 0);
    EXPECT_EQ(width, 4 + 9 + 6);
    const int w = plain_window(0, 0, 19, 3);
    ws_draw_text(w, font, 0, 0, "BC", 2);
    EXPECT_EQ(drawing(w, 0, 0, 11, 3),
              "#########...\n"
              "............\n"
              "..........#.\n"             // pen 9, x offset 1, y offset 2
              "............\n");
}

TEST_F(screen_test, TextIsCutByWindowAndClip)
{
    const temporary_file file(small_font());
    int font;
    ws_load_font(file.name.c_str(), &font);
    const int w = plain_window(0, 0, 7, 1);
    ws_draw_text(w, font, -1, 0, "BB", 2);
    EXPECT_EQ(drawing(w, 0, 0, 7, 1),
              "########\n"
              "........\n");
    ws_clear_window(w);
    ws_set_clip(w, 2, 1, 4, 1);
    ws_draw_text(w, font, 2, 0, "A", 1);
    EXPECT_EQ(drawing(w, 0, 0, 7, 1),
              "........\n"
              "..###...\n");
    EXPECT_EQ(ws_draw_text(w, font, 2147483647, -2147483647, "AB", 2), 0);
}

TEST_F(screen_test, SameNameGivesSameIdentifier)
{
    const temporary_file file(small_font()), other(small_font());
    int a, b, c;
    ASSERT_EQ(ws_load_font(file.name.c_str(), &a), 0);
    ASSERT_EQ(ws_load_font(other.name.c_str(), &b), 0);
    ASSERT_EQ(ws_load_font(file.name.c_str(), &c), 0);
    EXPECT_NE(a, b);
    EXPECT_EQ(a, c);
}

TEST_F(screen_test, TwoHundredAndFiftySixFontsAreHeld)
{
    const temporary_file file(small_font());
    int font, held_fonts = 0;
    while (held_fonts < 300) {         // each spelling of the path is a name of its own
        const std::string name = "/tmp" + std::string(size_t(held_fonts) + 1, '/') + file.name.substr(5);
        if (ws_load_font(name.c_str(), &font) != 0)
            break;
        held_fonts++;
    }
    EXPECT_EQ(held_fonts, 256);
}

TEST_F(screen_test, FontsAreFoundAlongThePath)
{
    const temporary_file file(small_font());
    int font;
    const std::string name = file.name.substr(5);
    EXPECT_EQ(ws_load_font(name.c_str(), &font), -1);
    ws_set_font_path("/nowhere;/tmp");
    EXPECT_EQ(ws_load_font(name.c_str(), &font), 0);
    ws_set_font_path("");
}

TEST_F(screen_test, MissingAndForeignFilesFail)
{
    int font = 3, width;
    EXPECT_EQ(ws_load_font("/nowhere/mono821.22", &font), -1);
    EXPECT_EQ(ws_load_font("", &font), -1);
    std::vector<uint8_t> foreign = small_font();
    foreign[0] = 'B';
    const temporary_file file(foreign);
    EXPECT_EQ(ws_load_font(file.name.c_str(), &font), -1);
    EXPECT_EQ(ws_font_height(0), 0);
    EXPECT_EQ(ws_font_height(77), 0);
    EXPECT_EQ(ws_text_width(77, "A", 1, &width), -1);
}

TEST(Font, DamagedFilesAreRefused)
{
    const std::vector<uint8_t> good = small_font();
    const int64_t size = int64_t(good.size());
    ASSERT_TRUE(font_valid(good.data(), size));
    for (int64_t cut = 0; cut < size; cut++)
        EXPECT_FALSE(font_valid(good.data(), cut)) << cut;
    const struct { size_t at; uint8_t value; } damage[] = {
        { 0, 'f' },
        { 4, 255 },                    // ends beyond the file
        { 8, 3 },                      // the bits begin inside of the map
        { 9, 200 },                    // or behind their end
        { 8, uint8_t(good[8] + 1) },   // half a record
        { 12 + 'x', 4 },               // a character with the fourth of three glyphs
        { 268, 200 },                  // glyph bits beyond the end
        { 268 + 3, 9 },                // too many rows
        { 268 + 2, 200 },              // too wide
    };
    for (const auto &d : damage) {
        std::vector<uint8_t> bad = good;
        bad[d.at] = d.value;
        EXPECT_FALSE(font_valid(bad.data(), size)) << d.at;
    }
}

// --- the built-in fonts

TEST_F(screen_test, BuiltInFontsLoadByNameWithTheHeightInIt)
{
    for (const char *name : { "sans.14", "sans.16", "sans.18", "sansb.14", "sansb.16", "sansb.18", "mono.16" }) {
        int font, narrow, wide;
        ASSERT_EQ(ws_load_font(name, &font), 0) << name;
        EXPECT_EQ(ws_font_height(font), atoi(strchr(name, '.') + 1)) << name;
        ws_text_width(font, "iiii", 4, &narrow);
        ws_text_width(font, "MMMM", 4, &wide);
        if (strcmp(name, "mono.16") == 0)
            EXPECT_EQ(narrow, wide);
        else
            EXPECT_LT(narrow, wide);
    }
}

TEST_F(screen_test, LargeFramesHaveLargerLetters)
{
    EXPECT_EQ(ws_font_height(ui_font()), 16);
    ws_exit();
    screen_start(1280, 720, 8);
    EXPECT_EQ(ws_font_height(ui_font()), 18);
    EXPECT_EQ(ws_font_height(ui_bold_font()), 18);
}

TEST_F(screen_test, FileNamesInUtf8AreAsWideAsTheirLatin1Letters)
{
    int font, utf8, latin1, plain, other;
    ASSERT_EQ(ws_load_font("sans.16", &font), 0);
    ws_text_width(font, "\xC3\xBC" "ber", 5, &utf8);       // u with two dots, in two bytes
    ws_text_width(font, "\xFC" "ber", 4, &latin1);
    EXPECT_EQ(utf8, latin1);
    ws_text_width(font, "\xE2\x82\xAC", 3, &other);        // the euro sign is not in Latin-1
    ws_text_width(font, "?", 1, &plain);
    EXPECT_EQ(other, plain);
    int cut, tilde;
    ws_text_width(font, "\xC3" "A", 2, &cut);               // no sequence: A with a tilde, and A
    ws_text_width(font, "\xC3", 1, &tilde);
    ws_text_width(font, "A", 1, &plain);
    EXPECT_EQ(cut, tilde + plain);
}
