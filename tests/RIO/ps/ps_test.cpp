#include "RIO/memory_files.h"
#include <gtest/gtest.h>

static std::string page(memory_file &memory)
{
    std::string text(memory.data.begin(), memory.data.end());
    return text.substr(0, text.find('\xEE'));
}

// 3 x 2: s is the smaller of 720 / 3 and 540 / 2, 240; W = 720, H = 480. Centre: (240 + 306, 396 - 360).
TEST(PsWrite, APageOfSixPixels)
{
    memory_file memory(size_t(1000));
    RFILE *file = new_file(memory, RIO_FORMAT_PS, 3, 2, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_putline(file, "\x00\x7F\xFF"), 0);
    EXPECT_EQ(rio_putline(file, "\x0A\xB0\x99"), 0);
    rio_close(file);
    EXPECT_EQ(rio_errno, 0u);
    EXPECT_EQ(page(memory), "%!PS-Adobe-2.0\n"
                            "%%BoundingBox: 36 36 540 720 \n"
                            "%%EndComments\n"
                            "currentscreen /proc exch def /angle exch def /frequency exch def\n"
                            "/angle 90 def /frequency 60 def\n"
                            "frequency angle /proc load setscreen\n"
                            "/picstr 3 string def\n"
                            "/screen {3 2 8 [3 0 0 -2 0 2]\n"
                            "   {currentfile picstr readhexstring pop} image} def\n"
                            "546 36 translate 90 rotate 720 480 scale screen\n"
                            "007FFF0AB099\n"
                            "%%Trailer\n"
                            "showpage\n");
}

// 100 x 10: s = 7.2; W = 720, H = 72. The page is turned and centred on (306, 396).
TEST(PsWrite, AWidePageIsTurnedAndCentred)
{
    memory_file memory(size_t(4000));
    RFILE *file = new_file(memory, RIO_FORMAT_PS, 100, 10, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    ASSERT_EQ(rio_write_header(file), 0);
    rio_close(file);
    const std::string text = page(memory);
    EXPECT_NE(text.find("342 36 translate 90 rotate 720 72 scale screen\n"), std::string::npos);
    // 1000 pixels are 25 lines of 40.
    const size_t start = text.find("screen\n", text.find("translate")) + 7, end = text.find("%%Trailer");
    ASSERT_EQ(end - start, 25u * 81u);
    for (size_t i = 0; i < 25; i++)
        EXPECT_EQ(text[start + i * 81 + 80], '\n');
}

TEST(PsWrite, ColoursBecomeGreyByTheirWeights)
{
    memory_file memory(size_t(1000));
    RFILE *file = new_file(memory, RIO_FORMAT_PS, 2, 1, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    const rio_vlt_entry entries[] = { { 0, 0xFF00, 0, 0 }, { 1, 0x1000, 0x2000, 0x3000 } };
    ASSERT_EQ(set_key(file, RIO_KEY_VLT_ENTRIES, 2), 0);
    ASSERT_EQ(rio_put_vlt(file, entries), 0);
    EXPECT_EQ(rio_putline(file, "\x00\x01"), 0);
    rio_close(file);
    // 77 * 255 >> 8 = 76 = 4C; (77 * 16 + 150 * 32 + 29 * 48) >> 8 = 7424 >> 8 = 29 = 1D
    EXPECT_NE(page(memory).find("\n4C1D\n%%Trailer"), std::string::npos);
}

TEST(PsWrite, ThreeBandsAndBilevelLinesFitAsWell)
{
    memory_file colour(size_t(1000)), bits(size_t(1000));
    RFILE *file = new_file(colour, RIO_FORMAT_PS, 1, 1, RIO_TYPE_RGB_BYTE_RUN);
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_putline_rgb(file, "\x10", "\x20", "\x30"), 0);
    rio_close(file);
    EXPECT_NE(page(colour).find("\n1D\n%%Trailer"), std::string::npos);
    file = new_file(bits, RIO_FORMAT_PS, 3, 1, RIO_TYPE_BITMAP);
    ASSERT_TRUE(file);
    const uint16_t line[] = { 0x4000 };
    EXPECT_EQ(rio_putline(file, line), 0);
    rio_close(file);
    EXPECT_NE(page(bits).find("\nFF00FF\n%%Trailer"), std::string::npos);
}

TEST(PsWrite, NothingCanBeRead)
{
    memory_file memory(size_t(1000));
    RFILE *file = new_file(memory, RIO_FORMAT_PS, 3, 2, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    char line[4];
    EXPECT_EQ(rio_getline(file, line), 0);      // a dummy line call answers success, and only the code tells
    EXPECT_EQ(rio_errno, uint32_t(RIO_UNSUPPORTED));
    rio_close(file);
}
