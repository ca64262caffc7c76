#include "RIO/memory_files.h"
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

static const char plain[] =
    "#define flag_width 10\n#define flag_height 2\nstatic char flag_bits[] = {\n0x01, 0x02, 0x80, 0x01};\n";

TEST(XbmRead, TheLowestBitIsTheLeftmostPixel)
{
    memory_file memory(text_bytes(plain));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_FORMAT), RIO_FORMAT_XBM);
    EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), RIO_TYPE_BITMAP);
    EXPECT_EQ(key_of(file, RIO_KEY_WIDTH), 10);
    EXPECT_EQ(key_of(file, RIO_KEY_HEIGHT), 2);
    EXPECT_EQ(key_of(file, 5), 0);
    EXPECT_EQ(key_of(file, 9), 4);
    EXPECT_EQ(key_of(file, 200), 0);
    EXPECT_EQ(key_of(file, 402), 1);
    EXPECT_EQ(next_words(file), words { 0x8040 });      // pixels 0 and 9
    EXPECT_EQ(next_words(file), words { 0x0180 });      // pixels 7 and 8
    rio_close(file);
}

TEST(XbmRead, AcceptsTheFormsThatOtherProgramsWrite)
{
    for (const char *text : {
             "/* made by hand */\n#define _width 10\r\n#define _height 2\r\n#define _x_hot 1\r\n"
             "static unsigned char _bits[] = {\r\n 1,2 ,\n\n0X80 , 0x1 };",
             "/**//* x */ # define a_width 0xA\n#define a_height 2\nconst char a_bits[]={0x01,0x02,0x80,0x01,}",
             "#define a_width 10\n#define a_height 2\nstatic char a_bits[4] = { 0x101, 0x02, 0xF80, 01 };",
         }) {
        memory_file memory(text_bytes(text));
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file) << text;
        EXPECT_EQ(next_words(file), words { 0x8040 }) << text;
        EXPECT_EQ(next_words(file), words { 0x0180 }) << text;
        rio_close(file);
    }
}

TEST(XbmRead, ShortsHoldSixteenPixelsEach)
{
    memory_file memory(text_bytes("#define a_width 17\n#define a_height 1\nstatic short a_bits[] = { 0x8001, 0x0001 };"));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_words(file), (words { 0x8001, 0x8000 }));    // pixels 0, 15 and 16
    rio_close(file);
}

TEST(XbmRead, LinesAreFoundInAnyOrder)
{
    std::string text = "#define a_width 8\n#define a_height 60\nstatic char a_bits[] = {";
    for (int y = 0; y < 60; y++)
        text += std::to_string(y) + ", ";
    memory_file memory(text_bytes(text + "};"));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    for (int y : { 59, 1, 33, 32, 15, 4 }) {
        int reversed = 0;
        for (int bit = 0; bit < 8; bit++)
            reversed |= (y >> bit & 1) << (15 - bit);
        ASSERT_EQ(rio_seek(file, y), 0);
        EXPECT_EQ(next_words(file), words { uint16_t(reversed) }) << y;
    }
    EXPECT_EQ(rio_seek(file, 60), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_PAST_END));
    rio_close(file);
}

TEST(XbmRead, RefusesHeadersThatCannotBeUsed)
{
    for (const char *bad : { "#define a_width 8\nstatic char a_bits[] = { 1, 2 };", "#define a_height 8\n{ 1, 2 }",
                             "#define a_width 8\n#define a_height 2\n", "#define a_width -8\n#define a_height 2\n{1,2}",
                             "#define a_width 0\n#define a_height 2\n{1,2}", "#define", "#",
                             "#define a_width 2147483647\n#define a_height 2147483647\n{1,2}",
                             "#define a_width 99999999999999999999\n#define a_height 1\n{1,2}" })
        EXPECT_EQ(read_through(text_bytes(bad)), -1) << bad;
}

TEST(XbmRead, ShortDataFailAtTheLineWhereTheyEnd)
{
    EXPECT_EQ(read_through(text_bytes("#define a_width 8\n#define a_height 3\n{1, 2 }")), 2);
    EXPECT_EQ(read_through(text_bytes("#define a_width 8\n#define a_height 3\n{1, x, 2 }")), 1);
}

TEST(XbmRead, CutAnywhereItNeitherCrashesNorInventsLines)
{
    const bytes whole = text_bytes(plain);
    EXPECT_EQ(read_through(whole), 2);
    for (size_t cut = 0; cut < whole.size(); cut++)
        EXPECT_LE(read_through(bytes(whole.begin(), whole.begin() + long(cut))), 2);
}

// Comments stand in no relation to the depth of any stack.
TEST(XbmRead, ALongRowOfCommentsIsPassedOver)
{
    std::string text;
    for (int i = 0; i < 200000; i++)
        text += "/**/";
    EXPECT_EQ(read_through(text_bytes(text + plain)), 2);
}

TEST(XbmWrite, TheTextIsNamedAfterTheFile)
{
    char directory[] = "/tmp/kestrel_xbm_XXXXXX";
    ASSERT_TRUE(mkdtemp(directory));
    const std::string path = std::string(directory) + "/arrow.old.xbm";
    RFILE *file = rio_open_w(path.c_str());
    ASSERT_TRUE(file);
    ASSERT_EQ(set_key(file, RIO_KEY_FORMAT, RIO_FORMAT_XBM), 0);
    ASSERT_EQ(set_key(file, RIO_KEY_WIDTH, 10), 0);
    ASSERT_EQ(set_key(file, RIO_KEY_HEIGHT, 2), 0);
    const uint16_t lines[] = { 0x8040, 0x0180 };
    EXPECT_EQ(rio_putline(file, lines), 0);
    EXPECT_EQ(rio_putline(file, lines + 1), 0);
    rio_close(file);
    FILE *in = fopen(path.c_str(), "rb");
    ASSERT_TRUE(in);
    char text[512] = {};
    EXPECT_GT(fread(text, 1, sizeof text - 1, in), 0u);
    fclose(in);
    unlink(path.c_str());
    rmdir(directory);
    EXPECT_STREQ(text, "#define arrow.old_width 10\n#define arrow.old_height 2\n"
                       "#define arrow.old_x_hot 0\n#define arrow.old_y_hot 0\n"
                       "static char arrow.old_bits[] = {\n0x01, 0x02, 0x80, 0x01};");
}

TEST(XbmWrite, OnlyBilevelPicturesFit)
{
    memory_file memory(size_t(400));
    RFILE *file = new_file(memory, RIO_FORMAT_XBM, 8, 1, RIO_TYPE_BYTE);
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_write_header(file), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_UNSUPPORTED));
    rio_close(file);
}

TEST(XbmRead, MemoryFaultsAreErrorsAndNothingElse)
{
    EXPECT_GE(read_with_memory_faults(text_bytes(plain)), 3);
}
