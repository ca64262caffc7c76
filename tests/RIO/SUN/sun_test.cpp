#include "RIO/SUN/sun.h"
#include "RIO/memory_files.h"
#include <gtest/gtest.h>

static constexpr int COMPRESSION = 501, BYTE_RUNS = 2;

static bytes header(std::initializer_list<uint32_t> fields, bool little = false)
{
    bytes out;
    for (uint32_t word : fields)
        for (int i = 0; i < 4; i++)
            out.push_back(uint8_t(word >> (little ? 8 * i : 24 - 8 * i)));
    return out;
}

// Magic, width, height, depth, length, type, map type, map length.
static bytes head(uint32_t w, uint32_t h, uint32_t depth, uint32_t type, uint32_t map_type = 0, uint32_t map_length = 0)
{
    return header({ SUN_MAGIC, w, h, depth, 0, type, map_type, map_length });
}

TEST(SunRead, GrayRowsArePaddedToSixteenBits)
{
    memory_file memory(head(3, 2, 8, 1) + bytes { 1, 2, 3, 0xEE, 4, 5, 6, 0xEE });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_FORMAT), RIO_FORMAT_SUN);
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_BYTE);
    EXPECT_EQ(key_of(file, RIO_KEY_VLT_ENTRIES), 0);
    EXPECT_EQ(key_of(file, 9), 4);
    EXPECT_EQ(key_of(file, 100), 0);
    EXPECT_EQ(key_of(file, 200), 0);
    EXPECT_EQ(next_line(file), (bytes { 1, 2, 3 }));
    EXPECT_EQ(next_line(file), (bytes { 4, 5, 6 }));
    rio_close(file);
}

TEST(SunRead, TheOtherByteOrderOpensTheSame)
{
    memory_file memory(header({ SUN_MAGIC, 3, 1, 24, 10, 3, 0, 0 }, true) + bytes { 1, 2, 3, 4, 5, 6, 7, 8, 9, 0 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(sun_of(file)->byte_order, 19789);
    EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 3);
    EXPECT_EQ(next_rgb(file), (bytes { 1, 2, 3, 4, 5, 6, 7, 8, 9 }));
    rio_close(file);
}

TEST(SunRead, OldFilesStandardFilesAndRgbFilesOrderTheirColours)
{
    struct {
        uint32_t type, depth;
        bytes stored;
    } const cases[] = {
        { 0, 24, { 3, 2, 1, 6, 5, 4 } },
        { 1, 24, { 3, 2, 1, 6, 5, 4 } },
        { 3, 24, { 1, 2, 3, 4, 5, 6 } },
        { 1, 32, { 0, 3, 2, 1, 0, 6, 5, 4 } },
        { 3, 32, { 0, 1, 2, 3, 0, 4, 5, 6 } },
        { 2, 24, { 3, 2, 1, 6, 5, 4 } },
    };
    for (const auto &c : cases) {
        memory_file memory(head(2, 1, c.depth, c.type) + c.stored);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_RGB_BYTE_RUN);
        EXPECT_EQ(next_rgb(file), (bytes { 1, 2, 3, 4, 5, 6 })) << c.type << " " << c.depth;
        rio_close(file);
    }
}

TEST(SunRead, TheMapIsStoredInThirds)
{
    memory_file memory(head(4, 1, 8, 1, 1, 6) + bytes { 10, 20, 30, 40, 50, 60, 0, 1, 2, 255 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_VLT_ENTRIES), 256);
    EXPECT_NE(key_of(file, RIO_KEY_VLT_TYPE), 0);
    EXPECT_EQ(key_of(file, RIO_KEY_SIGNIFICANT_BITS), 8);
    rio_vlt_entry table[RIO_VLT_SIZE];
    ASSERT_EQ(rio_get_vlt(file, table), 0);
    EXPECT_EQ(table[1].red, 20 << 8);
    EXPECT_EQ(table[1].blue, 60 << 8);
    EXPECT_EQ(next_line(file), (bytes { 0, 1, 2, 255 }));          // the indices
    ASSERT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(next_rgb(file), (bytes { 10, 30, 50, 20, 40, 60, 0, 0, 0, 0, 0, 0 }));   // black past the map's end
    rio_close(file);
}

TEST(SunRead, ARawMapIsSkipped)
{
    memory_file memory(head(2, 1, 8, 1, 2, 5) + bytes { 9, 9, 9, 9, 9, 7, 8 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_VLT_ENTRIES), 0);
    EXPECT_EQ(next_line(file), (bytes { 7, 8 }));
    rio_close(file);
}

TEST(SunRead, BilevelOneIsBlackUnlessTheMapSaysWhite)
{
    const bytes row { 0xA0, 0x00 };
    memory_file plain(head(5, 1, 1, 1) + row), white_black(head(5, 1, 1, 1, 1, 6) + bytes { 255, 0, 255, 0, 255, 0 } + row),
        black_white(head(5, 1, 1, 1, 1, 6) + bytes { 0, 255, 0, 255, 0, 255 } + row);
    for (memory_file *memory : { &plain, &white_black, &black_white }) {
        RFILE *file = memory->open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_BITMAP);
        EXPECT_EQ(next_words(file), words { memory == &black_white ? uint16_t(0x5800) : uint16_t(0xA000) });
        rio_close(file);
    }
}

TEST(SunRead, BilevelInTwoOtherColoursIsAPictureOfIndices)
{
    memory_file memory(head(3, 1, 1, 1, 1, 6) + bytes { 255, 0, 0, 0, 0, 255, 0x40, 0 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_BYTE);
    EXPECT_EQ(next_rgb(file), (bytes { 255, 0, 0, 0, 0, 255, 255, 0, 0 }));
    rio_close(file);
}

TEST(SunRead, FourBitGrayIsShiftedUp)
{
    memory_file memory(head(3, 1, 4, 1) + bytes { 0x12, 0xF0 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), (bytes { 0x10, 0x20, 0xF0 }));
    ASSERT_EQ(set_key(file, RIO_KEY_NO_SHIFT, 1), 0);
    rio_rewind(file);
    EXPECT_EQ(next_line(file), (bytes { 1, 2, 15 }));
    rio_close(file);
}

TEST(SunRead, RunsCrossLines)
{
    // 128 4 9: five nines. 128 0: one 128. The rows are four bytes each.
    memory_file memory(head(4, 2, 8, 2) + bytes { 1, 128, 4, 9, 128, 0, 7 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), (bytes { 1, 9, 9, 9 }));
    EXPECT_EQ(next_line(file), (bytes { 9, 9, 128, 7 }));
    ASSERT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(next_line(file), (bytes { 9, 9, 128, 7 }));
    rio_close(file);
}

TEST(SunRead, CodedLinesAreFoundInAnyOrder)
{
    bytes data;
    for (int y = 0; y < 100; y++)
        data = data + bytes { uint8_t(y), 128, 2, uint8_t(y + 1) };     // rows of y, and y + 1 three times
    memory_file memory(head(4, 100, 8, 2) + data);
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    for (int y : { 99, 3, 32, 31, 64, 0 }) {
        ASSERT_EQ(rio_seek(file, y), 0);
        EXPECT_EQ(next_line(file), (bytes { uint8_t(y), uint8_t(y + 1), uint8_t(y + 1), uint8_t(y + 1) }));
    }
    rio_close(file);
}

TEST(SunRead, CodedRowsWithoutTheirPadAreKnownByTheirSum)
{
    memory_file memory(head(3, 2, 8, 2) + bytes { 1, 2, 3, 4, 5, 6 });       // six bytes, not eight
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), (bytes { 1, 2, 3 }));
    EXPECT_EQ(next_line(file), (bytes { 4, 5, 6 }));
    rio_close(file);
}

TEST(SunRead, ARunPastTheLastLineIsCut)
{
    EXPECT_EQ(read_through(head(2, 2, 8, 2) + bytes { 128, 255, 7 }), 2);
    EXPECT_EQ(read_through(head(2, 3, 8, 2) + bytes { 128, 3, 7, 128 }), 2);     // ends inside a code
}

TEST(SunRead, RefusesWhatItCannotHold)
{
    const bytes data(64, 0);
    EXPECT_EQ(read_through(head(2, 2, 8, 6) + data), -1);            // type above 5
    EXPECT_EQ(read_through(head(2, 2, 8, 0xFFFF) + data), -1);
    EXPECT_EQ(read_through(head(2, 2, 8, 4) + data), -1);            // another format inside
    EXPECT_EQ(read_through(head(2, 2, 8, 5) + data), -1);
    EXPECT_EQ(read_through(head(2, 2, 16, 1) + data), -1);
    EXPECT_EQ(read_through(head(0, 2, 8, 1) + data), -1);
    EXPECT_EQ(read_through(head(2, 0, 8, 1) + data), -1);
    EXPECT_EQ(read_through(head(2, 2, 8, 1, 1, 769) + bytes(2000, 0)), -1);
    EXPECT_EQ(read_through(head(2, 2, 8, 1, 1, 0xFFFFFFFF) + data), -1);
    EXPECT_EQ(read_through(head(0xFFFFFFFF, 0xFFFFFFFF, 32, 1) + data), -1);
    EXPECT_EQ(read_through(head(0x7FFFFFFF, 0x7FFFFFFF, 1, 2) + data), -1);
    EXPECT_EQ(read_through(head(2, 2, 8, 1, 1, 900) + bytes(1000, 0)), 2);    // clipped to 256 entries
}

TEST(SunRead, CutAnywhereItNeitherCrashesNorInventsLines)
{
    for (const bytes &file : { head(3, 2, 24, 1) + bytes(20, 7), head(4, 2, 8, 2, 1, 6) + bytes { 1, 2, 3, 4, 5, 6, 128, 7, 9 },
                               head(9, 2, 1, 1) + bytes { 1, 2, 3, 4 } }) {
        EXPECT_EQ(read_through(file), 2);
        // The very last byte may be a pad, which no pixel misses.
        for (size_t cut = 0; cut + 1 < file.size(); cut++)
            EXPECT_LT(read_through(bytes(file.begin(), file.begin() + long(cut))), 2);
    }
}

// ---- run lengths ---------------------------------------------------------------------------------------------------------

TEST(SunEncode, WritesLiteralsEscapesAndRuns)
{
    uint8_t out[32];
    const bytes mixed { 5, 5, 6, 6, 6, 128, 128, 128, 128 };
    ASSERT_EQ(sun_encode(mixed.data(), int(mixed.size()), out), 8);
    EXPECT_EQ(bytes(out, out + 8), (bytes { 5, 5, 128, 2, 6, 128, 3, 128 }));
    const bytes escape { 128 }, two { 128, 128 };
    ASSERT_EQ(sun_encode(escape.data(), 1, out), 2);
    EXPECT_EQ(bytes(out, out + 2), (bytes { 128, 0 }));
    ASSERT_EQ(sun_encode(two.data(), 2, out), 3);
    EXPECT_EQ(bytes(out, out + 3), (bytes { 128, 1, 128 }));
    const bytes long_run(257, 9);
    ASSERT_EQ(sun_encode(long_run.data(), 257, out), 4);           // 256, and one more as it is
    EXPECT_EQ(bytes(out, out + 4), (bytes { 128, 255, 9, 9 }));
}

TEST(SunEncode, NeverTakesMoreThanTwiceItsInput)
{
    bytes worst(100), out(200);
    for (size_t i = 0; i < worst.size(); i++)
        worst[i] = i % 2 ? 1 : 128;
    EXPECT_EQ(sun_encode(worst.data(), 100, out.data()), 150);
}

// ---- writing ---------------------------------------------------------------------------------------------------------

static bytes written(const memory_file &memory, size_t count) { return bytes(memory.data.begin(), memory.data.begin() + long(count)); }

TEST(SunWrite, ColoursLeaveAsBlueGreenRedWithAPad)
{
    memory_file memory(size_t(64));
    RFILE *file = new_file(memory, RIO_FORMAT_SUN, 1, 2, RIO_TYPE_RGB_BYTE_RUN);
    ASSERT_TRUE(file);
    for (uint8_t v : { uint8_t(1), uint8_t(4) }) {
        const uint8_t r = v, g = uint8_t(v + 1), b = uint8_t(v + 2);
        ASSERT_EQ(rio_putline_rgb(file, &r, &g, &b), 0);
    }
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_RGB_BYTE_RUN);
    rio_close(file);
    EXPECT_EQ(written(memory, 40), (header({ SUN_MAGIC, 1, 2, 24, 8, 1, 0, 0 }) + bytes { 3, 2, 1, 0, 6, 5, 4, 0 }));
}

TEST(SunWrite, APaletteLeavesAsThirds)
{
    memory_file memory(size_t(900));
    RFILE *file = new_file(memory, RIO_FORMAT_SUN, 2, 1, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    const rio_vlt_entry entries[] = { { 0, 0x1100, 0x2200, 0x3300 }, { 255, 0x4400, 0x5500, 0x6600 } };
    ASSERT_EQ(set_key(file, RIO_KEY_VLT_ENTRIES, 2), 0);
    ASSERT_EQ(rio_put_vlt(file, entries), 0);
    ASSERT_EQ(rio_putline(file, "\x01\xFF"), 0);
    rio_close(file);
    EXPECT_EQ(written(memory, 32), (header({ SUN_MAGIC, 2, 1, 8, 2, 1, 1, 768 })));
    EXPECT_EQ(memory.data[32], 0x11);
    EXPECT_EQ(memory.data[32 + 255], 0x44);
    EXPECT_EQ(memory.data[32 + 256], 0x22);
    EXPECT_EQ(memory.data[32 + 767], 0x66);
    EXPECT_EQ(memory.data[32 + 768 + 1], 0xFF);
}

TEST(SunWrite, BitmapRunLengthsMakeTypeTwoWithItsCodedLength)
{
    memory_file memory(size_t(64));
    RFILE *file = new_file(memory, RIO_FORMAT_SUN, 64, 1, RIO_TYPE_BITMAP_RLE);
    ASSERT_TRUE(file);
    const uint16_t line[] = { 0, 0, 0, 0x0102 };
    ASSERT_EQ(rio_putline(file, line), 0);
    rio_close(file);
    // six zero bytes are a run of three coded bytes, then 1 and 2 as they are
    EXPECT_EQ(written(memory, 37), (header({ SUN_MAGIC, 64, 1, 1, 5, 2, 0, 0 }) + bytes { 128, 5, 0, 1, 2 }));
}

TEST(SunWrite, RunLengthLinesOfBothKinds)
{
    memory_file bits(size_t(64)), gray(size_t(64));
    RFILE *file = new_file(bits, RIO_FORMAT_SUN, 20, 1, RIO_TYPE_BITMAP);
    ASSERT_TRUE(file);
    const uint16_t runs[] = { 0, 4, 12, 4, 0 };        // four ones, twelve zeros, four ones
    EXPECT_EQ(rio_putrleline(file, runs, sizeof runs), 0);
    rio_close(file);
    EXPECT_EQ(bits.data[32], 0xF0);
    EXPECT_EQ(bits.data[33], 0);
    EXPECT_EQ(bits.data[34], 0xF0);

    file = new_file(gray, RIO_FORMAT_SUN, 5, 2, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    const uint16_t pairs[] = { 7, 3, 9, 2 }, too_long[] = { 7, 6 };
    EXPECT_EQ(rio_putrleline(file, pairs, sizeof pairs), 0);
    EXPECT_EQ(rio_putrleline(file, too_long, sizeof too_long), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_BAD_VALUE));
    rio_close(file);
    EXPECT_EQ(bytes(gray.data.begin() + 32, gray.data.begin() + 37), (bytes { 7, 7, 7, 9, 9 }));
}

TEST(SunWrite, WhatIsWrittenIsReadBackInEveryForm)
{
    for (int type : { RIO_TYPE_BYTE, RIO_TYPE_RGB }) {
        for (int compression : { 0, BYTE_RUNS }) {
            memory_file memory(size_t(200000));
            RFILE *file = new_file(memory, RIO_FORMAT_SUN, 7001, 3, type);     // longer than a chunk, and odd
            ASSERT_TRUE(file);
            ASSERT_EQ(set_key(file, COMPRESSION, compression), 0);
            bytes red(7001), green(7001), blue(7001);
            for (size_t x = 0; x < red.size(); x++) {
                red[x] = uint8_t(x / 9);
                green[x] = x % 3 ? 128 : uint8_t(x);
                blue[x] = uint8_t(x * x >> 3);
            }
            for (int y = 0; y < 3; y++)
                ASSERT_EQ(rio_putline_rgb(file, red.data(), green.data(), blue.data()), 0);
            rio_close(file);
            file = memory.open_r();
            ASSERT_TRUE(file);
            EXPECT_EQ(key_of(file, COMPRESSION), compression);
            bytes r(7001), g(7001), b(7001);
            for (int y = 0; y < 3; y++) {
                ASSERT_EQ(rio_getline_rgb(file, r.data(), g.data(), b.data()), 0);
                EXPECT_EQ(r, red);
                EXPECT_EQ(g, type == RIO_TYPE_BYTE ? red : green);
                EXPECT_EQ(b, type == RIO_TYPE_BYTE ? red : blue);
            }
            rio_close(file);
        }
    }
}

TEST(SunCopy, HeaderAndLinesGoToAFileOfAnotherFormat)
{
    memory_file from(head(3, 2, 8, 2) + bytes { 1, 2, 3, 0, 128, 3, 9 }), to(size_t(100));
    RFILE *source = from.open_r(), *target = to.open_w();
    ASSERT_TRUE(source && target);
    ASSERT_EQ(set_key(target, RIO_KEY_FORMAT, RIO_FORMAT_PNM), 0);
    EXPECT_EQ(rio_init_std_hdr(source, target), 0);
    EXPECT_EQ(rio_copydata(source, target), 0);
    rio_close(source);
    rio_close(target);
    EXPECT_EQ(written(to, 17), (text_bytes("P5 3 2 255\n") + bytes { 1, 2, 3, 9, 9, 9 }));
}

TEST(SunRead, MemoryFaultsAreErrorsAndNothingElse)
{
    EXPECT_GE(read_with_memory_faults(head(4, 40, 8, 2, 1, 6) + bytes { 1, 2, 3, 4, 5, 6 } + bytes(160, 1)), 3);
}
