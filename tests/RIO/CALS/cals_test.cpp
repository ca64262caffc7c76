#include "cals_files.h"
#include <gtest/gtest.h>

static bytes blanks_to(bytes out, size_t size)
{
    out.resize(size, ' ');
    return out;
}

static RFILE *opened(memory_file &memory, const char *what = "")
{
    RFILE *file = memory.open_r();
    EXPECT_TRUE(file) << what;
    return file;
}

// ---- detection and records -----------------------------------------------------------------------------------------------

TEST(CalsDetect, TheFirstRecordHasEitherKey)
{
    EXPECT_EQ(cals_detect(blanks_to(text_bytes("srcdocid: NONE"), 512).data(), 512), 1);
    EXPECT_EQ(cals_detect(blanks_to(text_bytes("specversion: MIL-R-28002B"), 512).data(), 512), 1);
    EXPECT_EQ(cals_detect(blanks_to(text_bytes("srcdocid:"), 512).data(), 128), 1);
    EXPECT_EQ(cals_detect(blanks_to(text_bytes("srcdocid:"), 512).data(), 127), 0);
    EXPECT_EQ(cals_detect(blanks_to(text_bytes("rorient: 000,270"), 512).data(), 512), 0);
    EXPECT_EQ(cals_detect(blanks_to(text_bytes("version: MIL-STD-1840"), 512).data(), 512), 0);
    EXPECT_EQ(cals_detect(blanks_to(text_bytes(" srcdocid:"), 512).data(), 512), 0);
}

TEST(CalsRead, APictureBehindItsRecords)
{
    memory_file memory(head(8, 2) + two_lines());
    RFILE *file = opened(memory);
    EXPECT_EQ(key_of(file, RIO_KEY_FORMAT), RIO_FORMAT_CALS);
    EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 8);
    EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 2);
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_CCITT4);
    EXPECT_EQ(key_of(file, RIO_KEY_IMAGE_CLASS), RIO_CLASS_BILEVEL);
    EXPECT_EQ(key_of(file, RIO_KEY_BITS), 1);
    EXPECT_EQ(key_of(file, RIO_KEY_ORIENTATION), 4);
    EXPECT_EQ(key_of(file, RIO_KEY_TILE_WIDTH), 0);
    EXPECT_EQ(key_of(file, RIO_KEY_IMAGES), 1);
    EXPECT_EQ(next_words(file), words { 0x3C00 });      // ink is 1
    EXPECT_EQ(next_words(file), words { 0x3C00 });
    EXPECT_EQ(next_words(file), words());
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    ASSERT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(next_words(file), words { 0x3C00 });
    EXPECT_EQ(rio_seek(file, 2), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    EXPECT_EQ(rio_seek(file, -1), 1);
    rio_close(file);
}

TEST(CalsRead, RecordsStandInAnyOrderAndInAnyLetters)
{
    const bytes files[] = {
        records({ "specversion: MIL-R-28002B, 1, 19930930", "moduleid: none", "RPELCNT:000008,000002", "RType:1" }),
        records({ "srcdocid:", "unknown: 7", "rpelcnt:      8,     2", "rorient: 000, 270" }),
        records({ "srcdocid:", "", "", "", "", "", "", "", "", "", "", "", "", "", "rpelcnt: 8 2" }),
        records({ "srcdocid:", "rpelcnt: 8 , 2 (pels, lines)", "rtype: 1   ", "rorient:   0,270", "rdensty:  200" }),
    };
    for (const bytes &records_only : files) {
        memory_file memory(records_only + two_lines());
        RFILE *file = opened(memory, (const char *)records_only.data());
        ASSERT_TRUE(file);
        EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 8);
        EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 2);
        EXPECT_EQ(key_of(file, RIO_KEY_ORIENTATION), 4);
        EXPECT_EQ(next_words(file), words { 0x3C00 });
        rio_close(file);
    }
}

TEST(CalsRead, RefusesFilesWithoutASizeOrOfAnotherType)
{
    for (const char *size : { "rpelcnt: 0,2", "rpelcnt: 8,0", "rpelcnt: 8", "rpelcnt: NONE", "rpelcnt:", "rpelcnt 8,2", "",
                              "rpelcnt: -8,2", "rpelcnt: 99999999999999999999,2" })
        EXPECT_EQ(read_through(records({ "srcdocid:", size }) + bytes(64, 0)), -1) << size;
    for (const char *type : { "rtype: 0", "rtype: 3", "rtype: two" })
        EXPECT_EQ(read_through(records({ "srcdocid:", "rpelcnt: 8,2", type }) + two_lines()), -1) << type;
    EXPECT_EQ(read_through(records({ "srcdocid:", "rpelcnt: 8,2", "rorient: up" }) + two_lines()), -1);
    EXPECT_EQ(read_through(head(8, 2)), -1);                                    // and no data
}

// The value of a record that fills all its 128 bytes ends there: what follows is another record.
TEST(CalsRead, AValueEndsWithItsRecord)
{
    std::string size = "rpelcnt: 8,2";
    size.insert(9, 128 - size.size(), ' ');
    ASSERT_EQ(size.size(), 128u);
    memory_file memory(records({ "srcdocid:", size, "7" }) + two_lines());
    RFILE *file = opened(memory);
    EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 2);         // not 27
    rio_close(file);
}

TEST(CalsRead, EveryOrientation)
{
    struct {
        const char *pair;
        int code;
    } const cases[] = {
        { "000,270", 4 }, { "180,270", 7 }, { "000,090", 6 }, { "180,090", 5 },
        { "270,270", 1 }, { "090,270", 2 }, { "270,090", 0 }, { "090,090", 3 },
        // The second number as a direction of its own: pixels down, lines to the right and to the left; pixels up.
        { "270,000", 0 }, { "270,180", 1 }, { "090,000", 2 }, { "090,180", 3 },
        // Pairs that mean nothing.
        { "000,000", 4 }, { "045,270", 4 }, { "  0,  7", 4 },
    };
    for (const auto &c : cases) {
        memory_file memory(head(8, 2, "1", c.pair) + two_lines());
        RFILE *file = opened(memory, c.pair);
        ASSERT_TRUE(file);
        EXPECT_EQ(key_of(file, RIO_KEY_ORIENTATION), c.code) << c.pair;
        EXPECT_EQ(next_words(file), words { 0x3C00 }) << c.pair;            // the pixels are not turned
        rio_stat stat;
        ASSERT_EQ(rio_get_stat(file, &stat), 0);
        EXPECT_EQ(stat.orientation, c.code);
        rio_close(file);
    }
}

// ---- data ----------------------------------------------------------------------------------------------------------------

TEST(CalsRead, TheEndMarkerMayBeMissingAndPaddingMayFollow)
{
    const bytes without_end = bits(HORIZONTAL WHITE_2 BLACK_4 V0 V0 V0 V0);
    EXPECT_EQ(read_through(head(8, 2) + without_end), 2);
    EXPECT_EQ(read_through(head(8, 2) + blanks_to(two_lines(), 128)), 2);
}

// A line with a bad code and those behind it are white; no error is set.
TEST(CalsRead, DamagedLinesAreWhite)
{
    memory_file memory(head(8, 3) + bits(HORIZONTAL WHITE_0 BLACK_8 "0000000 0000000 0000000 0000000"));
    RFILE *file = opened(memory);
    EXPECT_EQ(next_words(file), words { 0xFF00 });
    EXPECT_EQ(next_words(file), words { 0 });
    EXPECT_EQ(next_words(file), words { 0 });
    rio_close(file);
}

TEST(CalsRead, CutAnywhereItOpensWithItsLinesOrIsRefused)
{
    const bytes whole = head(8, 2) + two_lines();
    for (size_t cut = 0; cut < whole.size(); cut++)
        EXPECT_EQ(read_through(bytes(whole.begin(), whole.begin() + long(cut))), cut > 2048 ? 2 : -1) << cut;
}

TEST(CalsRead, AHeaderThatPromisesBillionsTakesNoMemory)
{
    memory_file memory(head(2147483647, 2147483647) + two_lines());
    if (RFILE *file = memory.open_r())
        rio_close(file);
    memory_file tall(head(8, 2147483647) + two_lines());
    RFILE *file = opened(tall);
    EXPECT_EQ(next_words(file), words { 0x3C00 });
    ASSERT_EQ(rio_seek(file, 2147483646), 0);
    EXPECT_EQ(next_words(file), words { 0 });
    rio_close(file);
}

TEST(CalsRead, LinesByBlocksAreTheSame)
{
    memory_file memory(head(8, 2) + two_lines());
    RFILE *file = opened(memory);
    EXPECT_EQ(set_key(file, RIO_KEY_STRIP_LINES, 1), 0);
    EXPECT_EQ(key_of(file, RIO_KEY_STRIP_LINES), 1);
    ASSERT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(next_words(file), words { 0x3C00 });
    ASSERT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(next_words(file), words { 0x3C00 });
    rio_close(file);
}

TEST(CalsRead, LinesAsRunLengths)
{
    memory_file memory(head(8, 2) + two_lines());
    RFILE *file = opened(memory);
    uint16_t runs[16];
    int size = sizeof runs;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 8);
    ASSERT_EQ(size, 6);
    EXPECT_EQ(words(runs, runs + 3), (words { 2, 4, 2 }));
    rio_close(file);
}

TEST(CalsRead, SqueezedLinesAndTheirSeeks)
{
    memory_file memory(head(8, 2) + two_lines());
    RFILE *file = opened(memory);
    ASSERT_EQ(rio_arm_squetch(file, 4, 1, RIO_SQUEEZE_NEAREST), 0);
    uint16_t line[2] = {};
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(rio_errno, 0u);
    EXPECT_EQ(rio_seek(file, 5), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    rio_close(file);
}

TEST(CalsRead, MemoryFaultsAreErrorsAndNothingElse)
{
    EXPECT_GT(read_with_memory_faults(head(8, 2) + two_lines()), 2);
}

// ---- writing -------------------------------------------------------------------------------------------------------------

static std::string record_of(const memory_file &memory, int number)
{
    std::string record(memory.data.begin() + 128 * number, memory.data.begin() + 128 * (number + 1));
    return record.substr(0, record.find_last_not_of(' ') + 1);
}

static RFILE *write_two_lines(memory_file &memory, int type)
{
    RFILE *file = new_file(memory, RIO_FORMAT_CALS, 8, 2, type);
    EXPECT_TRUE(file);
    const uint16_t line = 0x3CEE;                       // the bits behind the last pixel do not matter
    EXPECT_EQ(rio_putline(file, &line), 0);
    EXPECT_EQ(rio_putline(file, &line), 0);
    return file;
}

TEST(CalsWrite, RecordsInTheirOrderAndTheData)
{
    memory_file memory(size_t(2100));
    rio_close(write_two_lines(memory, RIO_TYPE_BITMAP));
    EXPECT_EQ(rio_errno, 0u);
    const char *const wanted[] = {
        "srcdocid: NONE", "dstdocid: NONE", "txtfilid: NONE", "figid: NONE", "srcgph: NONE", "doccls: NONE", "rtype: 1",
        "rorient:   0,270", "rpelcnt:      8,     2", "rdensty:  200", "notes: NONE",
        "specversion: MIL-R-28002B, 1, 19930930", "datfilid: none", "moduleid: none", "dtype: none", "didid: none",
    };
    for (int i = 0; i < 16; i++)
        EXPECT_EQ(record_of(memory, i), wanted[i]);
    // 38 bits, filled up to 64.
    bytes data = two_lines();
    data.resize(8, 0);
    EXPECT_EQ(bytes(memory.data.begin() + 2048, memory.data.begin() + 2057), (data + bytes { 0xEE }));
}

TEST(CalsWrite, EveryBilevelTypeAndNoOther)
{
    for (int type : { RIO_TYPE_BITMAP, RIO_TYPE_BITMAP_RLE, RIO_TYPE_CCITT3, RIO_TYPE_CCITT4 }) {
        memory_file memory(size_t(2100));
        RFILE *file = write_two_lines(memory, type);
        EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_CCITT4);
        rio_close(file);
        EXPECT_EQ(read_through(memory.data), 2);
    }
    for (int type : { RIO_TYPE_BYTE, RIO_TYPE_RGB, RIO_TYPE_16, RIO_TYPE_4 }) {
        memory_file memory(size_t(2100));
        RFILE *file = new_file(memory, RIO_FORMAT_CALS, 8, 2, type);
        ASSERT_TRUE(file);
        uint8_t line[64] = {};
        const void *planes[] = { line, line, line, line };
        EXPECT_EQ(rio_putline_planes(file, 4, planes), 1);
        EXPECT_EQ(rio_errno, uint32_t(RIO_UNSUPPORTED));
        rio_close(file);
    }
}

// Rows in three ways, and columns from the right; any other code becomes rows downward.
TEST(CalsWrite, TheOrientationsItAllows)
{
    struct {
        int code, stored;
        const char *record;
    } const cases[] = {
        { 0, 4, "rorient:   0,270" }, { 1, 4, "rorient:   0,270" }, { 2, 4, "rorient:   0,270" },
        { 3, 3, "rorient:  90, 90" }, { 4, 4, "rorient:   0,270" }, { 5, 5, "rorient: 180, 90" },
        { 6, 6, "rorient:   0, 90" }, { 7, 4, "rorient:   0,270" }, { 99, 4, "rorient:   0,270" },
    };
    for (const auto &c : cases) {
        memory_file memory(size_t(2100));
        RFILE *file = new_file(memory, RIO_FORMAT_CALS, 8, 2, RIO_TYPE_CCITT4);
        ASSERT_TRUE(file);
        ASSERT_EQ(set_key(file, RIO_KEY_ORIENTATION, c.code), 0);
        EXPECT_EQ(key_of(file, RIO_KEY_ORIENTATION), c.stored);
        const uint16_t line = 0x3C00;
        EXPECT_EQ(rio_putline(file, &line), 0);
        EXPECT_EQ(rio_putline(file, &line), 0);
        rio_close(file);
        EXPECT_EQ(record_of(memory, 7), c.record);
        RFILE *again = opened(memory);
        EXPECT_EQ(key_of(again, RIO_KEY_ORIENTATION), c.stored);
        rio_close(again);
    }
}

TEST(CalsWrite, AHeaderAtAStroke)
{
    memory_file memory(size_t(2100));
    RFILE *file = new_file(memory, RIO_FORMAT_CALS, 1, 1, RIO_TYPE_CCITT4);
    ASSERT_TRUE(file);
    rio_stat stat {};
    stat.width = 8;
    stat.height = 2;
    stat.data_type = RIO_TYPE_BITMAP;
    stat.orientation = 6;
    EXPECT_EQ(rio_set_stat(file, &stat), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    EXPECT_EQ(record_of(memory, 8), "rpelcnt:      8,     2");
    EXPECT_EQ(record_of(memory, 7), "rorient:   0, 90");
    EXPECT_EQ(set_key(file, RIO_KEY_ORIENTATION, 4), 0);        // too late, and taken in silence
    EXPECT_EQ(key_of(file, RIO_KEY_ORIENTATION), 6);
    rio_close(file);
}

TEST(CalsWrite, LinesComeInTheirOrder)
{
    memory_file memory(size_t(2100));
    RFILE *file = new_file(memory, RIO_FORMAT_CALS, 8, 3, RIO_TYPE_CCITT4);
    ASSERT_TRUE(file);
    const uint16_t line = 0x3C00;
    EXPECT_EQ(rio_putline(file, &line), 0);
    ASSERT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(rio_putline(file, &line), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_LINE_ORDER));
    ASSERT_EQ(rio_seek(file, 2), 0);
    EXPECT_EQ(rio_putline(file, &line), 1);
    EXPECT_EQ(rio_getline(file, &memory), 1);           // open for writing alone
    EXPECT_EQ(rio_errno, uint32_t(RIO_NOT_READABLE));
    rio_close(file);
}

TEST(CalsWrite, RunLengthLines)
{
    memory_file memory(size_t(2100));
    RFILE *file = new_file(memory, RIO_FORMAT_CALS, 8, 2, RIO_TYPE_CCITT4);
    ASSERT_TRUE(file);
    const uint16_t runs[] = { 2, 4, 2 }, too_long[] = { 2, 4, 3 };
    EXPECT_EQ(rio_putrleline(file, too_long, sizeof too_long), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_BAD_VALUE));
    EXPECT_EQ(rio_putrleline(file, runs, sizeof runs), 0);
    EXPECT_EQ(rio_putrleline(file, runs, sizeof runs), 0);
    EXPECT_EQ(rio_putrleline(file, runs, sizeof runs), 1);
    rio_close(file);
    bytes data = two_lines();
    data.resize(8, 0);
    EXPECT_EQ(bytes(memory.data.begin() + 2048, memory.data.begin() + 2056), data);
}

TEST(CalsWrite, AFileWrittenAndReadBackOnTheWay)
{
    memory_file memory(size_t(2100));
    RFILE *file = rio_open_wr(memory.name);
    ASSERT_TRUE(file);
    for (auto [key, value] : { std::pair(500, 11), std::pair(1, 8), std::pair(2, 2), std::pair(3, 24) })
        ASSERT_EQ(set_key(file, key, value), 0);
    const uint16_t line = 0x3C00;
    ASSERT_EQ(rio_putline(file, &line), 0);
    ASSERT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(next_words(file), words());               // not before the last line
    ASSERT_EQ(rio_seek(file, 1), 0);
    ASSERT_EQ(rio_putline(file, &line), 0);
    ASSERT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(next_words(file), words { 0x3C00 });
    EXPECT_EQ(next_words(file), words { 0x3C00 });
    rio_close(file);
}

TEST(CalsWrite, CodedDataCannotBeModified)
{
    memory_file memory(head(8, 2) + two_lines());
    RFILE *file = rio_open_modify(memory.name);
    ASSERT_TRUE(file);
    const uint16_t line = 0xFFFF;
    EXPECT_EQ(rio_putline(file, &line), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_NOT_WRITABLE));
    ASSERT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(next_words(file), words { 0x3C00 });
    rio_close(file);
}

TEST(CalsWrite, ADiskThatIsFullIsAnError)
{
    for (size_t room : { size_t(100), size_t(2048), size_t(2050) }) {
        memory_file memory(room);
        RFILE *file = new_file(memory, RIO_FORMAT_CALS, 8, 2, RIO_TYPE_CCITT4);
        ASSERT_TRUE(file);
        const uint16_t line = 0x3C00;
        const bool failed = rio_putline(file, &line) || rio_putline(file, &line);
        EXPECT_TRUE(failed);
        EXPECT_EQ(rio_errno, uint32_t(RIO_WRITE_FAILED));
        rio_close(file);
    }
}

// Odd widths, long runs and noise, longer than the room the writer begins with.
TEST(CalsWrite, WhatIsWrittenIsReadBack)
{
    for (const auto &[w, h] : { std::pair(1, 1), std::pair(17, 300), std::pair(1000, 50), std::pair(70001, 3) }) {
        const size_t row = size_t(w + 15) / 16;
        memory_file memory(2048 + size_t(w * h) + 4096);
        RFILE *file = new_file(memory, RIO_FORMAT_CALS, w, h, RIO_TYPE_BITMAP);
        ASSERT_TRUE(file);
        std::vector<words> lines;
        uint32_t seed = 7;
        for (int y = 0; y < h; y++) {
            words line(row);
            for (size_t i = 0; i < row; i++) {
                seed = seed * 1664525 + 1013904223;
                line[i] = y % 3 == 0 ? uint16_t(seed >> 16) : y % 3 == 1 ? 0xFFFF : uint16_t(0);
            }
            line[row - 1] = uint16_t(line[row - 1] & ~(0xFFFF >> (w - int(row - 1) * 16)));
            ASSERT_EQ(rio_putline(file, line.data()), 0);
            lines.push_back(line);
        }
        rio_close(file);
        ASSERT_EQ(rio_errno, 0u);
        RFILE *again = opened(memory);
        for (int y = 0; y < h; y++)
            ASSERT_EQ(next_words(again), lines[size_t(y)]) << w << " " << y;
        rio_close(again);
    }
}

TEST(CalsWrite, MemoryFaultsAreErrorsAndNothingElse)
{
    for (int tile : { 0, 512 }) {
        int n = 0;
        for (bool reached = true; reached; n++) {
            memory_file memory(size_t(4096));
            RFILE *file = new_file(memory, RIO_FORMAT_CALS, 600, 2, RIO_TYPE_BITMAP);
            ASSERT_TRUE(file);
            words line(38, 0x0F0F);
            mem_fail_countdown = n;
            bool failed = set_key(file, RIO_KEY_TILE_WIDTH, tile) || rio_putline(file, line.data())
                          || rio_putline(file, line.data());
            rio_close(file);
            failed = failed || rio_errno;
            reached = mem_fail_countdown < 0;
            mem_fail_countdown = -1;
            EXPECT_EQ(failed, reached) << tile << " " << n;
        }
        EXPECT_GT(n, 4);
    }
}
