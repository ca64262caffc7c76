#include "store/write_files.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "RIO/rio.h"
#include "display/geometry.h"
#include "display/vlt.h"
#include "mem.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/block_files.h"
#include "store/save_image.h"
#include "store/save_kinds.h"
#include "store/write_flip.h"
#include "support/screen_session.h"

namespace {

namespace fs = std::filesystem;

struct Write : screen_session {
    void SetUp() override
    {
        screen_session::SetUp();
        // A linear display: its gamma takes nothing out of colour files.
        display_mode |= GAMMA_DEF;
        gamma_value = 1.0;
        gamma_apply();
        fs::remove_all(room);
        fs::create_directory(room);
    }
    void TearDown() override
    {
        unsetenv("RIO_STANDARD");
        fs::remove_all(room);
        screen_session::TearDown();
    }

    // A band whose byte at column x of line y is base + 10 y + x.
    int made_band(int w, int h, int base = 0)
    {
        int n, one = 1;
        EXPECT_EQ(band_create(w, h, &one, KIND_NONE, "", &n), 1);
        for (int y = 0; y < h; y++)
            for (int x = 0; x < w; x++)
                bands[n].data[y * w + x] = uint8_t(base + 10 * y + x);
        return n;
    }
    const char *in_room(const char *name)
    {
        path = (room / name).string();
        return path.c_str();
    }
    std::string bytes_of(const char *name) const
    {
        std::ostringstream text;
        text << std::ifstream(room / name, std::ios::binary).rdbuf();
        return text.str();
    }
    int entries() const { return int(std::distance(fs::directory_iterator(room), fs::directory_iterator())); }

    fs::path room = "write_room";      // a short name: records hold 80 characters
    std::string path;
};

int32_t key(RFILE *file, int number)
{
    int32_t value = -1;
    rio_get_hdr_data(file, number, &value);
    return value;
}

int at(int n, int x, int y)
{
    return bands[n].data[y * bands[n].x_size + x];
}

} // namespace

TEST_F(Write, RawBytesOfAnAreaGoThroughTheLookUpTable)
{
    const int n = made_band(4, 3);
    for (int i = 0; i < 256; i++)
        bands[n].lut[i] = int16_t(255 - i);
    ASSERT_EQ(write_gray_file(n, in_room("a.raw"), OUT_RAW, { 1, 0, 2, 1 }), 1);
    // Held 1 2 / 11 12.
    EXPECT_EQ(bytes_of("a.raw"), std::string("\xFE\xFD\xF4\xF3"));
    EXPECT_EQ(msg_text(MSG_STATUS), path + ": 2 rows, 3 columns\n");   // the last line and column, plus 1
    EXPECT_EQ(entries(), 1);
}

TEST_F(Write, AnAreaIsOrderedAndKeptWithinTheBand)
{
    const int n = made_band(4, 3);
    const held_area whole = clamped_area(n, WHOLE_BAND), turned = clamped_area(n, { 3, 2, 1, 0 }), far = clamped_area(n, { 2, 1, 90, 90 });
    EXPECT_EQ(whole.x1, 3);
    EXPECT_EQ(whole.y1, 2);
    EXPECT_EQ(turned.x0, 1);
    EXPECT_EQ(turned.y1, 2);
    EXPECT_EQ(far.x1, 3);
    EXPECT_EQ(far.y0, 1);
}

TEST_F(Write, AGrayFileHasTheBandsSizeOrientationAndMatrix)
{
    const int n = made_band(5, 3);
    bands[n].orientation = ORIENT_LL_ROW;
    band_reset_orientation(n);
    ASSERT_EQ(write_gray_file(n, in_room("g.cot"), RIO_TYPE_BYTE, WHOLE_BAND), 1);
    RFILE *file = rio_open_r(path.c_str());
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(key(file, RIO_KEY_DATA_TYPE), 2);
    EXPECT_EQ(key(file, RIO_KEY_WIDTH), 5);
    EXPECT_EQ(key(file, RIO_KEY_HEIGHT), 3);
    EXPECT_EQ(key(file, RIO_KEY_ORIENTATION), 6);
    EXPECT_EQ(key(file, RIO_KEY_SCANNABLE), 0);
    double matrix[16];
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_TRANSFORM, matrix), 0);
    EXPECT_EQ(memcmp(matrix, bands[n].xform, sizeof matrix), 0);
    char creator[80] = "?";
    rio_get_hdr_data(file, RIO_KEY_CREATOR, creator);
    EXPECT_STREQ(creator, "");         // only files of write_header_rgb name their creator
    rio_close(file);
}

// The look-up table is in the pixels of the file, and reading it gives them back.
TEST_F(Write, AGraySaveReadsBackWithTheTableApplied)
{
    const int n = made_band(6, 4);
    for (int i = 0; i < 256; i++)
        bands[n].lut[i] = int16_t(i / 2);
    ASSERT_EQ(write_gray_file(n, in_room("half.cot"), RIO_TYPE_BYTE, WHOLE_BAND), 1);
    int again;
    ASSERT_EQ(load_gray(1, path.c_str(), SOURCE_GRAY, WHOLE_FILE, 0, &again), 1);
    for (int y = 0; y < 4; y++)
        for (int x = 0; x < 6; x++)
            EXPECT_EQ(at(again, x, y), (10 * y + x) / 2);
}

TEST_F(Write, ANarrowedRangeHasNoEntryForLevel255)
{
    const int n = made_band(3, 1);
    bands[n].data[0] = 0;
    bands[n].data[1] = 100;
    bands[n].data[2] = 255;
    // An earlier call with the full range and another gamma than the display's fills entry 255.
    gamma_table[100]++;
    bands[n].lut[255] = 77;
    const uint16_t *r, *g, *b;
    output_tables(1, bands[n].lut, bands[n].lut, bands[n].lut, &r, &g, &b);
    ASSERT_EQ(r[255], 77);
    bands[n].lut[255] = 255;
    fwrite_min = 10;
    fwrite_max = 200;
    ASSERT_EQ(write_gray_file(n, in_room("range.raw"), OUT_RAW, WHOLE_BAND), 1);
    const std::string bytes = bytes_of("range.raw");
    ASSERT_EQ(bytes.size(), 3u);
    EXPECT_EQ(uint8_t(bytes[0]), 10);
    EXPECT_EQ(uint8_t(bytes[1]), 84);  // 10 + 100 * 191 / 256 = 10 + 74
    EXPECT_EQ(uint8_t(bytes[2]), 77);
}

TEST_F(Write, AColourFileNamesItsCreatorItsSourceAndItsBackground)
{
    const int r = made_band(4, 3, 0), g = made_band(4, 3, 100), b = made_band(4, 3, 200);
    bands[g].lut[112] = 7;             // what the green background is written as
    ASSERT_EQ(write_rgb_file(r, g, b, in_room("c.rgb"), WHOLE_BAND, 2, 1), 1);
    RFILE *file = rio_open_r(path.c_str());
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(key(file, RIO_KEY_DATA_TYPE), 27);
    EXPECT_EQ(key(file, RIO_KEY_APPLICATION_TYPE), 9);
    EXPECT_EQ(key(file, RIO_KEY_BACKGROUND_RED), 12);
    EXPECT_EQ(key(file, RIO_KEY_BACKGROUND_GREEN), 7);
    EXPECT_EQ(key(file, RIO_KEY_BACKGROUND_BLUE), 212);
    char creator[80], comment[200];
    rio_get_hdr_data(file, RIO_KEY_CREATOR, creator);
    rio_get_hdr_data(file, RIO_KEY_COMMENT, comment);
    EXPECT_STREQ(creator, "kestrel");
    EXPECT_STREQ(comment, "created from input file ");
    uint8_t line[3][4];
    for (int y = 0; y < 3; y++) {
        ASSERT_EQ(rio_getline_rgb(file, line[0], line[1], line[2]), 0);
        for (int x = 0; x < 4; x++) {
            EXPECT_EQ(line[0][x], 10 * y + x);
            EXPECT_EQ(line[1][x], y == 1 && x == 2 ? 7 : 100 + 10 * y + x);
            EXPECT_EQ(line[2][x], 200 + 10 * y + x);
        }
    }
    rio_close(file);
}

TEST_F(Write, ABackgroundOutsideTheImageIsBlack)
{
    const int r = made_band(4, 3, 50);
    ASSERT_EQ(write_rgb_file(r, r, r, in_room("black.rgb"), WHOLE_BAND, 4, 0), 1);
    RFILE *file = rio_open_r(path.c_str());
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(key(file, RIO_KEY_BACKGROUND_RED), 0);
    rio_close(file);
}

TEST_F(Write, OneBandThreeTimesGivesOnePlaneUnderType27)
{
    const int n = made_band(4, 2, 30);
    ASSERT_EQ(write_rgb_file(n, n, n, in_room("one.rgb"), WHOLE_BAND, 1, 1), 1);
    RFILE *file = rio_open_r(path.c_str());
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(key(file, RIO_KEY_DATA_TYPE), 27);
    EXPECT_EQ(key(file, RIO_KEY_BACKGROUND_RED), 41);
    EXPECT_EQ(key(file, RIO_KEY_BACKGROUND_GREEN), 0);
    EXPECT_EQ(key(file, RIO_KEY_BACKGROUND_BLUE), 0);
    uint8_t line[4];
    ASSERT_EQ(rio_getline(file, line), 0);
    for (int x = 0; x < 4; x++)
        EXPECT_EQ(line[x], 30 + x);
    rio_close(file);
}

// A program that is told so by its environment writes another format although none was asked for.
TEST_F(Write, TheEnvironmentChoosesTheFormatOfPlainFiles)
{
    const int r = made_band(2, 1, 1), g = made_band(2, 1, 11), b = made_band(2, 1, 21);
    setenv("RIO_STANDARD", "14", 1);
    ASSERT_EQ(write_gray_file(r, in_room("g.pgm"), RIO_TYPE_BYTE, WHOLE_BAND), 1);
    EXPECT_EQ(bytes_of("g.pgm"), std::string("P5 2 1 255\n\x01\x02"));
    ASSERT_EQ(write_rgb_format(r, g, b, in_room("c.ppm"), 27, WHOLE_BAND), 1);
    EXPECT_EQ(bytes_of("c.ppm"), std::string("P6 2 1 255\n\x01\x0B\x15\x02\x0C\x16"));
}

TEST_F(Write, BitsAreWrittenAsTheyAreHeld)
{
    int n, one = 1;
    ASSERT_EQ(band_create(17, 2, &one, KIND_BIN, "", &n), 1);
    const uint16_t rows[4] = { 0x8001, 0x8000, 0x00FF, 0x0000 };
    memcpy(bands[n].data, rows, sizeof rows);
    ASSERT_EQ(write_bin_file(n, in_room("b.bin"), RIO_TYPE_BITMAP_RLE, { 0, 0, 3, 0 }), 1);
    RFILE *file = rio_open_r(path.c_str());
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(key(file, RIO_KEY_DATA_TYPE), 9);
    EXPECT_EQ(key(file, RIO_KEY_SCANNABLE), 1);
    EXPECT_EQ(key(file, RIO_KEY_WIDTH), 17);   // a held bitmap is written whole
    EXPECT_EQ(key(file, RIO_KEY_HEIGHT), 2);
    uint16_t line[2];
    for (int y = 0; y < 2; y++) {
        ASSERT_EQ(rio_getline(file, line), 0);
        EXPECT_EQ(line[0], rows[2 * y]);
        EXPECT_EQ(line[1] & 0x8000, rows[2 * y + 1]);
    }
    rio_close(file);
}

TEST_F(Write, BitsAndBytesAreNotTakenForEachOther)
{
    const int gray = made_band(8, 2);
    EXPECT_EQ(write_bin_file(gray, in_room("x"), 9, WHOLE_BAND), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "the image is not a one-bit image");
    int bits, one = 1;
    ASSERT_EQ(band_create(16, 2, &one, KIND_BIN, "", &bits), 1);
    EXPECT_EQ(write_gray_file(bits, in_room("x"), 2, WHOLE_BAND), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "a one-bit image cannot be written in this form");
    EXPECT_EQ(entries(), 0);
}

TEST_F(Write, BandsOfTheTileStoreNeedAStore)
{
    int n, one = 1;
    ASSERT_EQ(band_create(8, 8, &one, KIND_TILED, "", &n), 1);
    EXPECT_EQ(write_gray_file(n, in_room("t.cot"), 2, WHOLE_BAND), 0);
    EXPECT_EQ(write_gray_file(n, in_room("t.cot"), OUT_RAW, WHOLE_BAND), 0);
    EXPECT_EQ(write_tiles_gray(n, in_room("t.cot"), 2, WHOLE_BAND), 0);
    EXPECT_EQ(write_tiles_rgb(n, n, n, in_room("t.cot"), WHOLE_BAND), 0);
    EXPECT_EQ(write_bin_file(n, in_room("t.cot"), 9, WHOLE_BAND), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "no tile store is present");
    EXPECT_EQ(entries(), 0);
}

TEST_F(Write, AFileThatCannotBeMadeIsNamed)
{
    const int n = made_band(4, 4);
    EXPECT_EQ(write_gray_file(n, "write_room/nowhere/g.cot", 2, WHOLE_BAND), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "failed to open file write_room/nowhere/g.cot\n");
    EXPECT_EQ(write_rgb_file(n, n, n, "write_room", WHOLE_BAND, -1, -1), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "failed to open file write_room\n");
}

TEST_F(Write, AFullDiskIsSaid)
{
    const int n = made_band(4, 4);
    EXPECT_EQ(write_gray_file(n, "/dev/full", 2, WHOLE_BAND), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error writing file");
    EXPECT_EQ(write_gray_file(n, "/dev/full", OUT_RAW, WHOLE_BAND), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error writing file");
}

// Whichever allocation fails, a file that was there keeps its bytes or is whole.
TEST_F(Write, WithoutMemoryTheOldFileStays)
{
    const int n = made_band(40, 30);
    bands[n].lut[0] = 1;
    ASSERT_EQ(write_gray_file(n, in_room("m.cot"), 2, WHOLE_BAND), 1);
    const std::string old = bytes_of("m.cot");
    bands[n].lut[0] = 2;
    int failures = 0, good = 0;
    for (int k = 0; k < 200 && !good; k++) {
        mem_fail_countdown = k;
        good = write_gray_file(n, path.c_str(), 2, WHOLE_BAND);
        if (!good) {
            failures++;
            EXPECT_EQ(bytes_of("m.cot"), old);
            EXPECT_STRNE(msg_text(MSG_STATUS), "");
        }
        EXPECT_EQ(entries(), 1);
    }
    mem_fail_countdown = -1;
    EXPECT_GT(failures, 0);
    EXPECT_EQ(good, 1);
    EXPECT_NE(bytes_of("m.cot"), old);
}

TEST_F(Write, LinesReportEveryTenth)
{
    const int n = made_band(4, 25);
    FILE *stream = fopen((room / "w.raw").c_str(), "wb");
    ASSERT_NE(stream, nullptr);
    fclose(stream);
    // The file ends after 13 lines, so that the last message stays.
    RFILE *file = rio_open_raw_w((room / "w.raw").c_str(), 4, 13, 1);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(write_gray_lines(file, 4, { 0, 3, 3, 24 }, bands[n].data, nullptr), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error writing file");
    rio_close(file);
    EXPECT_EQ(bytes_of("w.raw").size(), 52u);
}

TEST_F(Write, AnImageThatLiesBottomUpIsTurnedWithItsAreaAndTurnedBack)
{
    const int n = made_band(3, 4);
    bands[n].orientation = ORIENT_LL_ROW;
    band_reset_orientation(n);
    uint8_t *const data = bands[n].data;
    const double slope = bands[n].xform[1][1];
    const int numbers[3] = { n, n, n };
    held_area area = { 0, 1, 2, 1 };
    flipped_bands flipped;
    flip_begin(&flipped, numbers, &area);
    EXPECT_EQ(flipped.count, 1);
    EXPECT_EQ(bands[n].orientation, ORIENT_UL_ROW);
    EXPECT_EQ(bands[n].xform[1][1], 1.0);
    EXPECT_EQ(at(n, 0, 0), 30);
    EXPECT_EQ(at(n, 2, 3), 2);
    EXPECT_EQ(area.y0, 2);             // line 1 of 4 from below
    EXPECT_EQ(area.y1, 2);
    EXPECT_EQ(at(n, 0, area.y0), 10);
    flip_end(&flipped);
    EXPECT_EQ(bands[n].data, data);
    EXPECT_EQ(bands[n].orientation, ORIENT_LL_ROW);
    EXPECT_EQ(bands[n].xform[1][1], slope);
    EXPECT_EQ(at(n, 0, 0), 0);
}

TEST_F(Write, WithoutMemoryAnImageIsWrittenUnflipped)
{
    const int n = made_band(3, 4);
    bands[n].orientation = ORIENT_LL_ROW;
    const int numbers[3] = { n, n, n };
    held_area area = { 0, 1, 2, 1 };
    flipped_bands flipped;
    mem_fail_countdown = 0;
    flip_begin(&flipped, numbers, &area);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error allocating temporary buffer");
    EXPECT_EQ(flipped.count, 0);
    EXPECT_EQ(bands[n].orientation, ORIENT_LL_ROW);
    EXPECT_EQ(area.y0, 1);
    flip_end(&flipped);
    EXPECT_EQ(at(n, 0, 0), 0);
}

TEST(SaveForms, FollowTheKinds)
{
    struct row {
        int kind;
        uint32_t colour, gray;
    };
    const row rows[] = {
        { 6, 0x8001001B, 0x80010002 }, { 7, 0x1001B, 0x10002 },       { 8, 0x8008001B, 0x80080002 }, { 9, 0x8001B, 0x80002 },
        { 10, 0x8010001B, 0x80100002 }, { 11, 0x10001B, 0x100002 },   { 12, 0x4001B, 0x40002 },      { 13, 0, 0x20002 },
        { 14, 0, 29 },                  { 15, 0, 2 },                 { 16, 0, 10 },
    };
    for (const row &wanted : rows) {
        const save_form *form = save_form_of(wanted.kind);
        ASSERT_NE(form, nullptr) << wanted.kind;
        EXPECT_EQ(form->colour, wanted.colour) << wanted.kind;
        EXPECT_EQ(form->gray, wanted.gray) << wanted.kind;
    }
    for (const int other : { 0, 1, 2, 3, 4, 5, 17 })
        EXPECT_EQ(save_form_of(other), nullptr) << other;
}

TEST(BlockLines, HoldARectangleAndOneOrThreeNames)
{
    EXPECT_EQ(parse_block_line("1 2 3 4 a.cot\n").items, 5);
    const block_line three = parse_block_line("1.9 2 3e1 4 r g b\n");
    EXPECT_EQ(three.items, 7);
    EXPECT_STREQ(three.names[2], "b");
    EXPECT_EQ(parse_block_line("1 2 3 4 r g\n").items, 6);
    EXPECT_EQ(parse_block_line("1 2 3\n").items, 3);
    EXPECT_EQ(parse_block_line("words\n").items, 0);
    EXPECT_LT(parse_block_line(" \n").items, 0);
    const double identity[4][4] = { { 1 }, { 0, 1 }, { 0, 0, 1 }, { 0, 0, 0, 1 } };
    const held_area area = block_area(three, false, identity);
    EXPECT_EQ(area.x0, 1);             // truncated
    EXPECT_EQ(area.x1, 30);
}

// Displayed x = 2 held y + 5, displayed y = -held x: the corner 9, -7 is held 7, 2.
TEST(BlockLines, InWorldModeAreTakenBackThroughTheMatrix)
{
    const double matrix[4][4] = { { 0, 2, 0, 5 }, { -1, 0, 0, 0 }, { 0, 0, 1, 0 }, { 0, 0, 0, 1 } };
    const held_area area = block_area(parse_block_line("9 -7 1 3 a"), true, matrix);
    EXPECT_EQ(area.x0, 7);
    EXPECT_EQ(area.y0, 2);
    EXPECT_EQ(area.x1, 0);             // held -3, kept at 0
    EXPECT_EQ(area.y1, 0);             // held -2
}
