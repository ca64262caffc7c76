#include "cals_files.h"
#include <gtest/gtest.h>

// ---- tiles by hand -------------------------------------------------------------------------------------------------------
//
// Tiles of 16 x 2 pixels. `corner` has 0000000011111111, that is horizontal white 8 (10011) and black 8, and then a white
// line: horizontal white 16 (101010) and black 0, since its end is further from the change above than vertical modes go.
#define WHITE_LINE "101010 "
#define BLACK_0 "0000110111 "
static bytes corner() { return bits(HORIZONTAL "10011 " BLACK_8 HORIZONTAL WHITE_LINE BLACK_0 EOFB); }

static bytes turned(bytes data)
{
    cit_reverse_bytes(data.data(), int64_t(data.size()));
    return data;
}

static std::vector<words> lines_of(const bytes &content)
{
    memory_file memory(content);
    std::vector<words> lines;
    RFILE *file = memory.open_r();
    if (!file)
        return lines;
    for (int y = key_of(file, RIO_KEY_HEIGHT); y > 0; y--)
        lines.push_back(next_words(file));
    rio_close(file);
    return lines;
}

static words joined(words one, const words &other)
{
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

static const std::vector<words> corner_lines { words { 0x00FF }, words { 0 } };

// White, black, data; data, white, black.
static tiled six_tiles() { return { 40, 4, 16, 2, { 0, 1, 6, 6, 0, 1 }, { corner(), corner() } }; }

static const std::vector<words> six_lines {
    words { 0, 0xFFFF, 0x0000 }, words { 0, 0xFFFF, 0 }, words { 0x00FF, 0, 0xFF00 }, words { 0, 0, 0xFF00 },
};

TEST(CalsTiles, SolidTilesAndDataTileByTile)
{
    memory_file memory(file_of(six_tiles()));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_CCITT4);
    EXPECT_EQ(key_of(file, RIO_KEY_TILE_WIDTH), 16);
    EXPECT_EQ(key_of(file, RIO_KEY_TILE_HEIGHT), 2);
    EXPECT_EQ(key_of(file, RIO_KEY_TILES_ACROSS), 3);
    EXPECT_EQ(key_of(file, RIO_KEY_TILES_DOWN), 2);
    const int levels[] = { 0, 1, -1, -1, 0, 1 };
    for (const int level : levels) {
        uint16_t pixels[2] = { 0xEEEE, 0xEEEE };
        void *const buffers[] = { pixels };
        int32_t value = 7;
        ASSERT_EQ(rio_gettile(file, 1, buffers, &value), 0);
        EXPECT_EQ(value, level);
        EXPECT_EQ(words(pixels, pixels + 2), (level < 0 ? words { 0x00FF, 0 } : words { 0xEEEE, 0xEEEE }));
    }
    void *const none[] = { nullptr };
    EXPECT_EQ(rio_gettile(file, 1, none, nullptr), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    ASSERT_EQ(rio_seek(file, 5), 0);                    // by tile: there are but four lines
    uint16_t black[2] = {};
    void *const buffers[] = { black };
    ASSERT_EQ(rio_gettile(file, 1, buffers, nullptr), 0);
    EXPECT_EQ(words(black, black + 2), (words { 0xFFFF, 0xFFFF }));
    EXPECT_EQ(rio_seek(file, 6), 1);
    rio_close(file);
}

TEST(CalsTiles, LinesAcrossThem)
{
    // The last tile's pixels past column 40 are cut with the word that holds them.
    std::vector<words> lines = lines_of(file_of(six_tiles()));
    for (words &line : lines)
        line[2] &= 0xFF00;
    EXPECT_EQ(lines, six_lines);
}

TEST(CalsTiles, EachTypeOfCoding)
{
    const bytes g3 = bits(EOL "10011 " BLACK_8 EOL WHITE_LINE);
    const bytes g3_2d = bits("000000000001 1 10011 " BLACK_8 "000000000001 0 " HORIZONTAL WHITE_LINE BLACK_0);  // tags 1, 0
    struct {
        uint8_t type;
        bytes data;
    } const cases[] = {
        { 2, turned(corner()) }, { 3, turned(g3) }, { 4, turned(g3_2d) }, { 5, { 0x00, 0xFF, 0, 0 } },
        { 6, corner() },         { 7, g3 },         { 8, g3_2d },
    };
    for (const auto &c : cases)
        EXPECT_EQ(lines_of(file_of({ 16, 2, 16, 2, { c.type }, { c.data } })), corner_lines) << int(c.type);
    for (const uint8_t type : { uint8_t(9), uint8_t(10), uint8_t(11), uint8_t(12), uint8_t(0x80) })
        EXPECT_EQ(read_through(file_of({ 16, 2, 16, 2, { type }, { corner() } })), -1) << int(type);
}

TEST(CalsTiles, ElementsOfEveryForm)
{
    const tiled one { 16, 2, 16, 2, { 6 }, { corner() } };
    const bytes about = element(0x40, text_bytes("1 0 0")), profile = element(0xA0, element(0x81, text_bytes("1")));
    const bytes octets = element(0x04, corner());
    const bytes streams[] = {
        stream_of(attributes(one), octets),                                         // one tile, one octet string
        stream_of(attributes(one), open_element(0x24, octets)),
        open_element(0xA0, open_element(0xA2, element(0x81, { 0 }))) + open_element(0xA2, number(2, 0))
            + open_element(0xA3, open_element(0x31, about + open_element(0xA2, attributes(one))) + element(0x24, octets)),
        profile + element(0xA3, about + element(0xA2, attributes(one)) + element(0x24, octets)),    // no set around
        stream_of(element(0x31, attributes(one)), element(0x24, octets)),           // one more set around
        bytes { 0xBF, 0x81, 0x01, 2, 9, 9 } + stream_of(attributes(one), octets),   // a tag of three bytes
        stream_of(attributes(one) + number(0x83, 0) + element(0xA8, number(2, 0) + number(2, 0)), octets),
        stream_of(attributes(one), octets) + bytes(200, 0),
        element(0xA3, element(0x31, about)) + stream_of(attributes(one), octets),   // a portion that holds nothing
        stream_of(attributes(one), bytes { 0x24, 0x84, 0, 0, 0, uint8_t(octets.size()) } + octets),
    };
    for (const bytes &stream : streams)
        EXPECT_EQ(lines_of(head(16, 2, "2") + stream), corner_lines) << &stream - streams;
}

TEST(CalsTiles, TilesAreOf512PixelsUnlessTheySayOtherwise)
{
    const bytes about = number(0x80, 600) + number(0x81, 513) + element(0xA9, type_list({ 0, 1, 1, 0 }));
    memory_file memory(head(600, 513, "2") + stream_of(about, element(0x24, {})));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_TILE_WIDTH), 512);
    EXPECT_EQ(key_of(file, RIO_KEY_TILE_HEIGHT), 512);
    const words first = next_words(file);
    EXPECT_EQ(first[31], 0);
    EXPECT_EQ(first[32], 0xFFFF);
    ASSERT_EQ(rio_seek(file, 512), 0);
    EXPECT_EQ(next_words(file)[0], 0xFFFF);
    rio_close(file);
}

TEST(CalsTiles, RefusesWhatDoesNotFit)
{
    const tiled good { 40, 4, 16, 2, { 0, 1, 6, 6, 0, 1 }, { corner(), corner() } };
    ASSERT_EQ(read_through(file_of(good)), 4);
    const auto changed = [&](auto change) {
        tiled t = good;
        change(t);
        return read_through(file_of(t));
    };
    EXPECT_EQ(changed([](tiled &t) { t.types.pop_back(); }), -1);               // five tiles, not six
    EXPECT_EQ(changed([](tiled &t) { t.types.push_back(0); }), -1);
    EXPECT_EQ(changed([](tiled &t) { t.types.clear(); }), -1);
    EXPECT_EQ(changed([](tiled &t) { t.parts.pop_back(); }), -1);               // a tile without its part
    EXPECT_EQ(changed([](tiled &t) { t.tile_width = 0; }), -1);
    EXPECT_EQ(changed([](tiled &t) { t.tile_height = 0; }), -1);
    EXPECT_EQ(changed([](tiled &t) { t.tile_width = 20; t.types = { 0, 1, 1, 0 }; }), -1);   // no whole words
    EXPECT_EQ(changed([](tiled &t) { t.tile_width = 50; t.types = { 0, 1 }; t.parts.clear(); }), 4);
    // The records and the stream tell of two sizes.
    EXPECT_EQ(read_through(head(40, 5, "2") + stream_of(attributes(good), element(0x24, parts_of(good)))), -1);
    // A picture that does not begin at a tile's corner.
    const bytes shifted = attributes(good) + element(0xA8, number(2, 3) + number(2, 0));
    EXPECT_EQ(read_through(head(40, 4, "2") + stream_of(shifted, element(0x24, parts_of(good)))), -1);
}

TEST(CalsTiles, AnAbsentTileRecordIsReportedByItsText)
{
    for (const bytes &stream : { bytes {}, bytes(300, 0), element(0xA3, element(0x31, {})), element(0xA0, {}) }) {
        EXPECT_EQ(read_through(head(40, 4, "2") + stream), -1);
        EXPECT_EQ(rio_errno, uint32_t(RIO_NOT_STANDARD));
    }
}

TEST(CalsTiles, HostileElements)
{
    const bytes start = head(40, 4, "2");
    bytes deep;                                         // a thousand elements, each in the other
    for (int i = 0; i < 1000; i++)
        deep = deep + bytes { 0xA3, 0x80 };
    EXPECT_EQ(read_through(start + deep), -1);
    EXPECT_EQ(read_through(start + bytes(1000, 0xA2)), -1);
    EXPECT_EQ(read_through(start + bytes(1000, 0xFF)), -1);
    EXPECT_EQ(read_through(start + bytes { 0xA3, 0x88, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0 }), -1);
    EXPECT_EQ(read_through(start + bytes { 0xA3, 0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0 }), -1);
    EXPECT_EQ(read_through(start + bytes { 0x04, 0x80, 0, 0 }), -1);            // a string cannot go to a mark
    // Tiles that would take a quarter of a terabyte, and numbers wider than any size.
    tiled t { 40, 4, 16, 2, { 0 }, {} };
    bytes about = number(0x80, 40) + number(0x81, 4) + bytes { 0x86, 4, 0x7F, 0xFF, 0xFF, 0xFF, 0x87, 4, 0x7F, 0xFF, 0xFF, 0xFF };
    EXPECT_EQ(read_through(start + stream_of(about + element(0xA9, type_list({ 0 })), element(0x24, {}))), -1);
    about = number(0x80, 40) + number(0x81, 4) + bytes { 0x86, 6, 1, 0, 0, 0, 0, 16 } + number(0x87, 2);
    EXPECT_EQ(read_through(start + stream_of(about + element(0xA9, type_list({ 0 })), element(0x24, {}))), -1);
}

// A cut file is refused, or opens with all its lines, those of lost tiles white.
TEST(CalsTiles, CutAnywhereItOpensOrIsRefused)
{
    const bytes whole = file_of(six_tiles());
    const size_t content = whole.size() - element(0x24, parts_of(six_tiles())).size();
    for (size_t cut = 0; cut < whole.size(); cut++) {
        const int lines = read_through(bytes(whole.begin(), whole.begin() + long(cut)));
        EXPECT_TRUE(lines == -1 || (lines == 4 && cut > content)) << cut << " " << lines;
    }
    std::vector<words> lines = lines_of(bytes(whole.begin(), whole.end() - 8));     // most of the last tile is gone
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0][1], 0xFFFF);
}

TEST(CalsTiles, RunLengthsOfATile)
{
    memory_file memory(file_of(six_tiles()));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    uint16_t runs[64];
    int size = sizeof runs;
    int32_t value = 7;
    ASSERT_EQ(rio_getrletile(file, runs, &size, nullptr), 0);           // white: a run of 16 in each line
    ASSERT_EQ(size, 4);
    EXPECT_EQ(words(runs, runs + 2), (words { 16, 16 }));
    size = sizeof runs;
    ASSERT_EQ(rio_getrletile(file, runs, &size, nullptr), 0);           // black: none, 16, and none to close
    ASSERT_EQ(size, 12);
    EXPECT_EQ(words(runs, runs + 6), (words { 0, 16, 0, 0, 16, 0 }));
    size = 4;
    EXPECT_EQ(rio_getrletile(file, runs, &size, &value), 1);            // eight bytes are needed
    EXPECT_EQ(rio_errno, uint32_t(RIO_RLE_BUFFER));
    ASSERT_GE(size, 8);
    ASSERT_EQ(rio_getrletile(file, runs, &size, &value), 0);            // the same tile again
    EXPECT_EQ(value, -1);
    ASSERT_EQ(size, 8);
    EXPECT_EQ(words(runs, runs + 4), (words { 8, 8, 0, 16 }));
    ASSERT_EQ(rio_seek(file, 5), 0);
    size = sizeof runs;
    ASSERT_EQ(rio_getrletile(file, runs, &size, &value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(size, 0);
    rio_close(file);
}

TEST(CalsTiles, MemoryFaultsAreErrorsAndNothingElse)
{
    EXPECT_GT(read_with_memory_faults(file_of(six_tiles())), 4);
}

// ---- writing -------------------------------------------------------------------------------------------------------------

static RFILE *new_tiled(memory_file &memory, int width, int height)
{
    RFILE *file = new_file(memory, RIO_FORMAT_CALS, width, height, RIO_TYPE_CCITT4);
    EXPECT_TRUE(file);
    EXPECT_EQ(set_key(file, RIO_KEY_TILE_WIDTH, 512), 0);
    return file;
}

// Every byte of the stream of a white and a black tile.
TEST(CalsTilesWrite, TheStreamOfSolidTiles)
{
    memory_file memory(size_t(4096));
    RFILE *file = new_tiled(memory, 1024, 512);
    void *const none[] = { nullptr };
    const int32_t white = 0, black = 1;
    ASSERT_EQ(rio_puttile(file, 1, none, &white), 0);
    ASSERT_EQ(rio_puttile(file, 1, none, &black), 0);
    EXPECT_EQ(rio_puttile(file, 1, none, &black), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    rio_close(file);
    EXPECT_EQ(rio_errno, 0u);
    const bytes version = element(0xA8, element(0x43, text_bytes("ISO 8613")) + element(0x44, text_bytes("1991-12-31")));
    const bytes classes = element(0xA5, element(0x06, { 0x58, 2, 7, 0 }));
    const bytes profile = element(0xA0, element(0x81, text_bytes("1"))
                                            + element(0xA2, number(0x81, 0) + classes + number(0x86, 0) + version));
    const bytes root = element(0xA2, number(2, 0) + element(0x31, element(0x41, text_bytes("1"))
                                                                      + element(0xA0, element(0x12, text_bytes("0")))));
    const bytes page = element(0xA2, number(2, 2) + element(0x31, element(0x41, text_bytes("1 0"))
                                                                      + element(0xA1, element(0x12, text_bytes("0")))
                                                                      + element(0xA4, number(0x80, 1024) + number(0x80, 512))));
    const bytes coding = element(0x40, text_bytes("1 0 0")) + element(0x86, { 0x58, 3, 7, 5 })
                         + element(0xA2, attributes({ 1024, 512, 512, 512, { 0, 1 }, {} }));
    const bytes wanted = profile + root + page + element(0xA3, element(0x31, coding) + element(0x24, {})) + bytes { 0xEE };
    EXPECT_EQ(bytes(memory.data.begin() + 2048, memory.data.begin() + 2048 + long(wanted.size())), wanted);
    EXPECT_EQ(std::string(memory.data.begin() + 6 * 128, memory.data.begin() + 6 * 128 + 9), "rtype: 2 ");
}

// 512 lines of one black pixel at the left: horizontal white 0, black 1 (010), to the end; then V0 three times a line.
TEST(CalsTilesWrite, ATileIsGroupFourWithItsEnd)
{
    memory_file memory(size_t(4096));
    RFILE *file = new_tiled(memory, 512, 512);
    words pixels(32 * 512, 0);
    for (size_t y = 0; y < 512; y++)
        pixels[32 * y] = 0x8000;
    const void *const buffers[] = { pixels.data() };
    ASSERT_EQ(rio_puttile(file, 1, buffers, nullptr), 0);
    rio_close(file);
    std::string code = HORIZONTAL WHITE_0 "010 " V0;
    for (int y = 1; y < 512; y++)
        code += V0 V0 V0;
    bytes part = bits(code + EOFB);                     // 15 + 1533 + 24 bits
    part.resize((part.size() + 3) / 4 * 4, 0);
    const bytes content = element(0x24, element(0x04, part));
    const tiled wanted { 512, 512, 512, 512, { 6 }, { part } };
    const std::string file_text(memory.data.begin(), memory.data.end()), content_text(content.begin(), content.end());
    EXPECT_NE(file_text.find(content_text), std::string::npos);
    const bytes about = attributes(wanted);
    EXPECT_NE(file_text.find(std::string(about.begin(), about.end())), std::string::npos);
    EXPECT_EQ(lines_of(memory.data), std::vector<words>(512, words(pixels.begin(), pixels.begin() + 32)));
}

TEST(CalsTilesWrite, LinesBecomeTilesAndLinesAgain)
{
    const int w = 1100, h = 600;
    memory_file memory(size_t(400000));
    RFILE *file = new_tiled(memory, w, h);
    std::vector<words> lines;
    uint32_t seed = 1;
    for (int y = 0; y < h; y++) {
        words line(69);
        for (size_t i = 0; i < 69; i++) {
            seed = seed * 1664525 + 1013904223;
            // Noise at the left, black in the middle, white at the right, and in the last rows the other way round.
            line[i] = i < 32 ? uint16_t(y < 512 ? seed >> 16 : 0) : i < 64 ? 0xFFFF : uint16_t(0);
        }
        ASSERT_EQ(rio_putline(file, line.data()), 0);
        lines.push_back(line);
    }
    EXPECT_EQ(rio_putline(file, lines[0].data()), 1);
    rio_close(file);
    ASSERT_EQ(rio_errno, 0u);
    EXPECT_EQ(lines_of(memory.data), lines);
    RFILE *again = memory.open_r();
    ASSERT_TRUE(again);
    const int levels[] = { -1, 1, 0, 0, -1, 0 };        // the black tile below ends at line 600: its rest is white
    for (const int level : levels) {
        words tile(32 * 512);
        void *const buffers[] = { tile.data() };
        int32_t value = 7;
        ASSERT_EQ(rio_gettile(again, 1, buffers, &value), 0);
        EXPECT_EQ(value, level);
    }
    rio_close(again);
}

TEST(CalsTilesWrite, TilesComeInAnyOrderAndMissingOnesAreWhite)
{
    memory_file memory(size_t(8192));
    RFILE *file = rio_open_wr(memory.name);
    ASSERT_TRUE(file);
    for (auto [key, value] : { std::pair(500, 11), std::pair(1, 1024), std::pair(2, 1024), std::pair(3, 24), std::pair(100, 512) })
        ASSERT_EQ(set_key(file, key, value), 0);
    ASSERT_EQ(rio_write_header(file), 0);
    words tile(32 * 512, 0x00FF);
    const void *const buffers[] = { tile.data() };
    ASSERT_EQ(rio_seek(file, 3), 0);
    ASSERT_EQ(rio_puttile(file, 1, buffers, nullptr), 0);
    ASSERT_EQ(rio_seek(file, 1), 0);
    ASSERT_EQ(rio_puttile(file, 1, buffers, nullptr), 0);
    const int32_t black = 255;
    ASSERT_EQ(rio_seek(file, 1), 0);
    ASSERT_EQ(rio_puttile(file, 1, buffers, &black), 0);            // once more, and solid now
    // Before the close they are read from memory.
    words got(32 * 512);
    void *const out[] = { got.data() };
    ASSERT_EQ(rio_seek(file, 3), 0);
    ASSERT_EQ(rio_gettile(file, 1, out, nullptr), 0);
    EXPECT_EQ(got, tile);
    rio_close(file);
    ASSERT_EQ(rio_errno, 0u);
    const std::vector<words> lines = lines_of(memory.data);
    ASSERT_EQ(lines.size(), 1024u);
    EXPECT_EQ(lines[0], joined(words(32, 0), words(32, 0xFFFF)));
    EXPECT_EQ(lines[1023], joined(words(32, 0), words(32, 0x00FF)));
}

TEST(CalsTilesWrite, AnotherFormatsLinesAreCopiedIntoTiles)
{
    memory_file source(text_bytes("P1 3 2 1 0 1 0 1 0")), memory(size_t(4096));
    RFILE *in = source.open_r(), *file = new_tiled(memory, 3, 2);
    ASSERT_TRUE(in);
    EXPECT_EQ(rio_copydata(in, file), 0);
    rio_close(in);
    rio_close(file);
    EXPECT_EQ(lines_of(memory.data), (std::vector<words> { { 0xA000 }, { 0x4000 } }));
}

TEST(CalsTilesWrite, TilesAreOf512PixelsOrNone)
{
    memory_file memory(size_t(4096));
    RFILE *file = new_file(memory, RIO_FORMAT_CALS, 8, 2, RIO_TYPE_CCITT4);
    ASSERT_TRUE(file);
    for (int size : { 256, 1024, -1, 32 }) {
        EXPECT_EQ(set_key(file, RIO_KEY_TILE_WIDTH, size), 1);
        EXPECT_EQ(rio_errno, uint32_t(RIO_BAD_TILE_SIZE));
    }
    EXPECT_EQ(set_key(file, RIO_KEY_TILE_WIDTH, 512), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_TILE_WIDTH, 0), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    EXPECT_EQ(std::string(memory.data.begin() + 6 * 128, memory.data.begin() + 6 * 128 + 9), "rtype: 1 ");
    rio_close(file);
}

TEST(CalsTilesWrite, AFullDiskIsToldAtTheClose)
{
    memory_file memory(size_t(2100));
    RFILE *file = new_tiled(memory, 512, 512);
    words tile(32 * 512, 0x5555);
    const void *const buffers[] = { tile.data() };
    ASSERT_EQ(rio_puttile(file, 1, buffers, nullptr), 0);
    rio_close(file);
    EXPECT_EQ(rio_errno, uint32_t(RIO_WRITE_FAILED));
}

TEST(CalsTilesWrite, CodedTilesCannotBeModified)
{
    memory_file memory(file_of(six_tiles()));
    RFILE *file = rio_open_modify(memory.name);
    ASSERT_TRUE(file);
    const uint16_t pixels[2] = {};
    const void *const buffers[] = { pixels };
    EXPECT_EQ(rio_puttile(file, 1, buffers, nullptr), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_NOT_WRITABLE));
    rio_close(file);
    EXPECT_EQ(lines_of(memory.data).size(), 4u);        // the close has written nothing
}
