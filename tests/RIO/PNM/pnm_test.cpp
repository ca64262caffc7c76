#include "RIO/PNM/pnm.h"
#include "RIO/memory_files.h"
#include <gtest/gtest.h>

static constexpr int COMPRESSION = 501, ASCII = 7;

TEST(PnmRead, RawGrayHandsOutItsBytes)
{
    memory_file memory(text_bytes("P5\n3 2\n255\n") + bytes { 1, 2, 3, 250, 128, 0 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 3);
    EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 2);
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_BYTE);
    EXPECT_EQ(key_of(file, RIO_KEY_FORMAT), RIO_FORMAT_PNM);
    EXPECT_EQ(next_line(file), (bytes { 1, 2, 3 }));
    EXPECT_EQ(next_line(file), (bytes { 250, 128, 0 }));
    rio_close(file);
}

TEST(PnmRead, CompatibleAnswerForTheKeysThatCallersAsk)
{
    memory_file memory(text_bytes("P6 1 1 255 ") + bytes { 1, 2, 3 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, 3), 27);
    EXPECT_EQ(key_of(file, 5), 0);
    EXPECT_EQ(key_of(file, 6), 0);
    EXPECT_EQ(key_of(file, 9), 4);
    EXPECT_EQ(key_of(file, 100), 0);
    EXPECT_EQ(key_of(file, 200), 0);
    EXPECT_EQ(key_of(file, 402), 1);
    EXPECT_EQ(key_of(file, 500), 14);
    EXPECT_EQ(key_of(file, 699), 0);
    double m[16];
    ASSERT_EQ(rio_get_hdr_data(file, 4, m), 0);
    for (int i = 0; i < 16; i++)
        EXPECT_EQ(m[i], i % 5 == 0 ? 1.0 : 0.0);
    rio_close(file);
}

// The same picture with comments in every place that they may stand.
TEST(PnmRead, CommentsBetweenTheNumbersChangeNothing)
{
    memory_file memory(text_bytes("P2#one\n# two # two\n 2# width\n1\r#max\n9 # data\n3 # three\n9"));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 2);
    EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 1);
    EXPECT_EQ(next_line(file), (bytes { 85, 255 }));    // 3 * 255 / 9, 9 * 255 / 9
    rio_close(file);
}

TEST(PnmRead, CommentBehindTheMaximumEndsWithTheBlankBeforeTheData)
{
    memory_file memory(text_bytes("P5 2 1 255# a comment\n") + bytes { '#', 7 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), (bytes { '#', 7 }));
    rio_close(file);
}

TEST(PnmRead, BytesOf255AreBlanksInAHeader)
{
    memory_file memory(text_bytes("P5") + bytes { 255, '1', 255, 255, '1', '\t', '2', '5', '5', 255, 77 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), bytes { 77 });
    rio_close(file);
}

TEST(PnmRead, BitmapDigitsNeedNoBlanks)
{
    memory_file memory(text_bytes("P1 18 2\n011000000000000011\n1 0 1# two\n0 00000000000000 "));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_BITMAP);
    EXPECT_EQ(key_of(file, RIO_KEY_BITS), 1);
    EXPECT_EQ(next_words(file), (words { 0x6000, 0xC000 }));   // pixels 1, 2 and 16, 17
    EXPECT_EQ(next_words(file), (words { 0xA000, 0 }));
    rio_close(file);
}

TEST(PnmRead, RawBitmapRowsAreWordsWithTheirPadBitsCleared)
{
    // 11 pixels in two bytes; the five pad bits are set in the file.
    memory_file memory(text_bytes("P4 11 2\n") + bytes { 0x80, 0x3F, 0x01, 0xDF });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_words(file), words { 0x8020 });
    EXPECT_EQ(next_words(file), words { 0x01C0 });
    rio_close(file);
}

TEST(PnmRead, RawColourGoesToThreePlanes)
{
    memory_file memory(text_bytes("P6 2 2 255\n") + bytes { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_rgb(file), (bytes { 1, 2, 3, 4, 5, 6 }));
    EXPECT_EQ(next_line(file), (bytes { 7, 10 }));             // the first band only
    rio_close(file);
}

TEST(PnmLevel, ScalesToNearestAndHalvesToEven)
{
    EXPECT_EQ(pnm_level(7, 15), 119);       // 7 * 255 / 15 = 119
    EXPECT_EQ(pnm_level(1, 2), 128);        // 127.5: 128 is even
    EXPECT_EQ(pnm_level(10, 100), 26);      // 25.5: 26 is even
    EXPECT_EQ(pnm_level(30, 100), 76);      // 76.5: 76 is even
    EXPECT_EQ(pnm_level(33, 100), 84);      // 84.15
    EXPECT_EQ(pnm_level(101, 100), 255);    // above the maximum: clipped
}

TEST(PnmLevel, SixteenBitSamplesKeepTheirHighByte)
{
    EXPECT_EQ(pnm_level(0x12FF, 65535), 0x12);
    EXPECT_EQ(pnm_level(65535, 65535), 255);
    EXPECT_EQ(pnm_level(1023, 1023), 255);
    EXPECT_EQ(pnm_level(512, 1023), 128);   // 512 * 65535 / 1023 = 32799.5; its high byte is 128
}

TEST(PnmRead, TwoByteSamplesAreBigEndian)
{
    memory_file memory(text_bytes("P5 2 1 65535\n") + bytes { 0x12, 0xFF, 0xFE, 0x01 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_BITS), 8);
    EXPECT_EQ(next_line(file), (bytes { 0x12, 0xFE }));
    rio_close(file);
}

TEST(PnmRead, StoredSamplesWithoutShift)
{
    memory_file memory(text_bytes("P5 3 2 15\n") + bytes { 0, 7, 200, 1, 2, 3 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), (bytes { 0, 119, 255 }));
    ASSERT_EQ(set_key(file, RIO_KEY_NO_SHIFT, 1), 0);
    EXPECT_EQ(next_line(file), (bytes { 1, 2, 3 }));
    rio_close(file);
}

TEST(PnmRead, TextLinesAreFoundInAnyOrder)
{
    std::string text = "P2 3 100 255\n";
    for (int y = 0; y < 100; y++)
        for (int x = 0; x < 3; x++)
            text += std::to_string(y + x) + (x == 2 ? " # line\n" : "  ");
    memory_file memory(text_bytes(text));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    for (int y : { 99, 0, 40, 41, 39, 16, 15, 98, 2 }) {
        ASSERT_EQ(rio_seek(file, y), 0);
        EXPECT_EQ(next_line(file), (bytes { uint8_t(y), uint8_t(y + 1), uint8_t(y + 2) })) << y;
    }
    rio_close(file);
}

TEST(PnmRead, SeekingPastTheEndFails)
{
    memory_file memory(text_bytes("P5 1 2 255\n") + bytes { 5, 6 });
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_seek(file, 2), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    EXPECT_EQ(rio_seek(file, -1), 1);
    EXPECT_EQ(rio_skip(file, 1), 0);
    EXPECT_EQ(next_line(file), bytes { 6 });
    EXPECT_EQ(next_line(file), bytes());
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    rio_close(file);
}

TEST(PnmRead, AnUnexpectedByteFailsItsLineOnly)
{
    memory_file memory(text_bytes("P2 2 3 255\n1 2\n3 x\n5 6\n"));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), (bytes { 1, 2 }));
    EXPECT_EQ(next_line(file), bytes());
    EXPECT_EQ(rio_errno, uint32_t(RIO_READ_FAILED));
    ASSERT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(next_line(file), (bytes { 1, 2 }));
    rio_close(file);
}

TEST(PnmRead, AShortFileGivesTheLinesThatItHas)
{
    EXPECT_EQ(read_through(text_bytes("P5 4 3 255\n") + bytes { 1, 2, 3, 4, 5, 6, 7, 8, 9 }), 2);
    EXPECT_EQ(read_through(text_bytes("P2 2 3 255\n1 2 3 4 5")), 2);
}

TEST(PnmRead, RefusesWhatIsNoHeader)
{
    for (const char *bad : { "P5", "P5 ", "P5 3", "P5 3 3", "P5 0 3 255 abc", "P5 3 0 255 abc", "P5 -3 3 255 abc",
                             "P5 3 3 0 aaaaaaaaa", "P5 3 3 65536 aaaaaaaaaaaaaaaaaa", "P53 3 255 aaaaaaaaa", "P0 1 1 255 a",
                             "P7 1 1 255 a", "PF 1 1 1.0 aaaa", "P5 x", "P5 3 3 255" })
        EXPECT_EQ(read_through(text_bytes(bad)), -1) << bad;
}

// Products of these sizes pass 2^31 and 2^63; none of the files holds even a line of it.
TEST(PnmRead, RefusesSizesThatTheFileCannotHold)
{
    for (const char *bad : { "P5 2147483647 2147483647 255\nabc", "P6 2147483647 2 255\nabc", "P4 2147483647 2147483647\nabc",
                             "P5 99999999999999999999 1 255\nabc", "P5 1 18446744073709551617 65535\na",
                             "P1 4000000 1\n0101", "P3 1000000000 1 255\n1 2 3", "P5 65535 65535 65535\nabc" })
        EXPECT_EQ(read_through(text_bytes(bad)), -1) << bad;
}

TEST(PnmRead, CutAnywhereItNeitherCrashesNorInventsLines)
{
    const bytes whole[] = {
        text_bytes("P6 2 2 255\n") + bytes { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 },
        text_bytes("P3 2 2 15\n1 2 3 4 5 6\n7 8 9 10 11 12\n"),
        text_bytes("P1 3 2\n010 111"),
        text_bytes("P5 2 2 1000\n") + bytes { 1, 2, 3, 4, 1, 2, 3, 4 },
    };
    for (const bytes &file : whole) {
        EXPECT_EQ(read_through(file), 2);
        for (size_t cut = 0; cut < file.size(); cut++)
            EXPECT_LT(read_through(bytes(file.begin(), file.begin() + long(cut))), 3);
    }
}

TEST(PnmRead, RunLengthsOfALine)
{
    memory_file gray(text_bytes("P5 5 1 255\n") + bytes { 7, 7, 7, 9, 9 });
    RFILE *file = gray.open_r();
    ASSERT_TRUE(file);
    uint16_t runs[32];
    int size = 2;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 0);
    EXPECT_EQ(rio_errno, uint32_t(RIO_RLE_BUFFER));
    EXPECT_GE(size, 8);
    size = sizeof runs;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 5);           // the same line again
    EXPECT_EQ(size, 8);
    EXPECT_EQ((words(runs, runs + 4)), (words { 7, 3, 9, 2 }));
    rio_close(file);

    memory_file bits(text_bytes("P1 5 3 11100 00000 11111"));
    file = bits.open_r();
    ASSERT_TRUE(file);
    const words expected[] = { { 0, 3, 2 }, { 5 }, { 0, 5, 0 } };   // 0 first, and a line that ends in 1 is closed
    for (const words &line : expected) {
        size = sizeof runs;
        EXPECT_EQ(rio_getrleline(file, runs, &size), 5);
        EXPECT_EQ(words(runs, runs + size / 2), line);
    }
    rio_close(file);
}

// ---- writing ---------------------------------------------------------------------------------------------------------

static std::string written(memory_file &memory)
{
    return std::string(memory.data.begin(), memory.data.begin() + long(memory.record.position));
}

TEST(PnmWrite, BilevelHeaderHasNoMaximum)
{
    memory_file memory(size_t(100));
    RFILE *file = new_file(memory, RIO_FORMAT_PNM, 11, 1, RIO_TYPE_BITMAP);
    ASSERT_TRUE(file);
    const uint16_t line[] = { 0x8020 };
    EXPECT_EQ(rio_putline(file, line), 0);
    EXPECT_EQ(written(memory), std::string("P4 11 1\n\x80\x20"));
    rio_close(file);
}

TEST(PnmWrite, GrayAndColourHeadersEndInTheMaximum)
{
    memory_file gray(size_t(100)), colour(size_t(100));
    RFILE *file = new_file(gray, RIO_FORMAT_PNM, 2, 1, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_putline(file, "ab"), 0);
    EXPECT_EQ(written(gray), "P5 2 1 255\nab");
    rio_close(file);
    file = new_file(colour, RIO_FORMAT_PNM, 2, 1, RIO_TYPE_RGB);
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_putline_rgb(file, "ab", "cd", nullptr), 0);  // a plane that is not there is 0
    EXPECT_EQ(written(colour), std::string("P6 2 1 255\nac\0bd\0", 17));
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_RGB_BYTE_RUN);
    rio_close(file);
}

TEST(PnmWrite, TextSamplesTakeFourCharactersEach)
{
    memory_file memory(size_t(100));
    RFILE *file = new_file(memory, RIO_FORMAT_PNM, 2, 2, RIO_TYPE_RGB_BYTE_RUN);
    ASSERT_TRUE(file);
    ASSERT_EQ(set_key(file, COMPRESSION, ASCII), 0);
    const bytes red { 1, 255 }, green { 10, 0 }, blue { 100, 9 };
    EXPECT_EQ(rio_putline_rgb(file, red.data(), green.data(), blue.data()), 0);
    EXPECT_EQ(rio_putline_rgb(file, blue.data(), green.data(), red.data()), 0);
    EXPECT_EQ(written(memory), "P3 2 2 255\n   1  10 100 255   0   9\n 100  10   1   9   0 255\n");
    rio_close(file);
}

TEST(PnmWrite, FourBandsAreNoPnm)
{
    memory_file memory(size_t(100));
    RFILE *file = new_file(memory, RIO_FORMAT_PNM, 2, 1, RIO_TYPE_4);
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_write_header(file), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_UNSUPPORTED));
    rio_close(file);
}

TEST(PnmWrite, AFullFileFailsTheLine)
{
    memory_file memory(size_t(12));     // the header and one byte
    RFILE *file = new_file(memory, RIO_FORMAT_PNM, 2, 1, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_putline(file, "ab"), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_WRITE_FAILED));
    rio_close(file);
}

TEST(PnmWrite, OpenedForModifyALineIsReplacedInPlace)
{
    memory_file memory(text_bytes("P5 2 3 255\nabcdef"));
    RFILE *file = rio_open_modify(memory.name);
    ASSERT_TRUE(file);
    ASSERT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(rio_putline(file, "XY"), 0);
    EXPECT_EQ(next_line(file), (bytes { 'e', 'f' }));
    rio_close(file);
    EXPECT_EQ(std::string(memory.data.begin(), memory.data.end()), "P5 2 3 255\nabXYef");
}

TEST(PnmRead, MemoryFaultsAreErrorsAndNothingElse)
{
    std::string text = "P2 2 40 15\n";     // the scaling, the places of lines and the record itself take memory
    for (int i = 0; i < 80; i++)
        text += "7 ";
    EXPECT_GE(read_with_memory_faults(text_bytes(text)), 3);
}

// 4 x 4 to 2 x 2, nearest: columns 0 and 2 of lines 0 and 2.
TEST(PnmRead, LinesSqueezeLikeThoseOfAnyFormat)
{
    memory_file memory(text_bytes("P2 4 4 255\n0 1 2 3\n10 11 12 13\n20 21 22 23\n30 31 32 33\n"));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    ASSERT_EQ(rio_arm_squetch(file, 2, 2, RIO_SQUEEZE_NEAREST), 0);
    uint8_t line[2] = {};
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(bytes(line, line + 2), (bytes { 0, 2 }));
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(bytes(line, line + 2), (bytes { 20, 22 }));
    EXPECT_EQ(rio_seek(file, 2), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    EXPECT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(bytes(line, line + 2), (bytes { 20, 22 }));
    rio_close(file);
}
