#include "store/load.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "RIO/rio.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/file_class.h"
#include "store/load_tiled.h"
#include "store/read_commands.h"
#include "store/save_kinds.h"
#include "support/screen_session.h"

namespace {

struct Load : screen_session {
    // A graymap whose pixel at column x of line y is 10 y + x.
    std::string graymap(const char *name, int w, int h, int lines_present = -1)
    {
        std::string bytes = "P5\n" + std::to_string(w) + " " + std::to_string(h) + "\n255\n";
        for (int y = 0; y < (lines_present < 0 ? h : lines_present); y++)
            for (int x = 0; x < w; x++)
                bytes += char(10 * y + x);
        write_test_file(name, bytes.data(), bytes.size());
        return test_file(name);
    }
    std::string pixmap(const char *name, int w, int h)
    {
        std::string bytes = "P6\n" + std::to_string(w) + " " + std::to_string(h) + "\n255\n";
        for (int y = 0; y < h; y++)
            for (int x = 0; x < w; x++)
                bytes += { char(10 * y + x), char(100 + x), char(200 + y) };
        write_test_file(name, bytes.data(), bytes.size());
        return test_file(name);
    }
    int band = -1, r = -1, g = -1, b = -1;
};

int at(int n, int x, int y)
{
    return bands[n].data[y * bands[n].x_size + x];
}

int bands_in_use()
{
    int count = 0;
    for (const band_rec &rec : bands)
        count += rec.alloc_bytes != 0;
    return count;
}

} // namespace

TEST_F(Load, AWholeGrayFileFillsABandAndItsHistogram)
{
    const std::string name = graymap("gray.pgm", 5, 3);
    display_mode &= ~uint32_t{COLOR};
    ASSERT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, WHOLE_FILE, 1, &band), 1);
    EXPECT_EQ(bands[band].x_size, 5);
    EXPECT_EQ(at(band, 4, 2), 24);
    EXPECT_EQ(bands[band].hist_unmapped[24], 1);
    EXPECT_EQ(bands[band].hist_mapped[0], 1);
    EXPECT_EQ(bands[band].format, KIND_COT);
    EXPECT_GE(active_window, 1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "");
}

TEST_F(Load, AReversedAreaReadsTheRectangleInOrder)
{
    const std::string name = graymap("area.pgm", 12, 12);
    ASSERT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, { 10, 10, 5, 5 }, 0, &band), 1);
    EXPECT_EQ(bands[band].x_size, 6);
    EXPECT_EQ(bands[band].y_size, 6);
    EXPECT_EQ(bands[band].file_x0, 5);
    EXPECT_EQ(bands[band].file_y1, 10);
    EXPECT_EQ(at(band, 0, 0), 55);
    EXPECT_EQ(at(band, 5, 5), 110);
}

TEST_F(Load, AnAreaIsClampedToTheFile)
{
    const std::string name = graymap("clamp.pgm", 6, 4);
    ASSERT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, { 4, 2, 100, 100 }, 0, &band), 1);
    EXPECT_EQ(bands[band].x_size, 2);
    EXPECT_EQ(bands[band].y_size, 2);
    EXPECT_EQ(at(band, 1, 1), 35);
}

TEST_F(Load, EveryThirdPixelOfTenGivesFour)
{
    const std::string name = graymap("ten.pgm", 10, 10);
    ASSERT_EQ(load_gray(3, name.c_str(), SOURCE_GRAY, WHOLE_FILE, 0, &band), 1);
    ASSERT_EQ(bands[band].x_size, 4);
    ASSERT_EQ(bands[band].y_size, 4);
    for (int i = 0; i < 4; i++)
        EXPECT_EQ(at(band, i, i), 33 * i);
    EXPECT_EQ(bands[band].increment, 3);
}

TEST_F(Load, IncrementZeroTakesTheDefault)
{
    const std::string name = graymap("small.pgm", 9, 8);
    ASSERT_EQ(load_gray(0, name.c_str(), SOURCE_GRAY, WHOLE_FILE, 0, &band), 1);
    EXPECT_EQ(bands[band].increment, 2);
    EXPECT_EQ(bands[band].x_size, 5);
    EXPECT_EQ(at(band, 4, 3), 68);
}

TEST_F(Load, AShortFileLoadsWithABlackTail)
{
    const std::string name = graymap("short.pgm", 4, 6, 2);
    ASSERT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, WHOLE_FILE, 0, &band), 1);
    EXPECT_EQ(at(band, 3, 1), 13);
    EXPECT_EQ(at(band, 3, 2), 0);
    EXPECT_EQ(at(band, 0, 5), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Premature EOF encountered");
}

TEST_F(Load, AMissingFileIsNamedAndNothingIsLost)
{
    const std::string name = graymap("there.pgm", 4, 4);
    display_mode &= ~uint32_t{COLOR};
    ASSERT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, WHOLE_FILE, 1, &band), 1);
    const int window = active_window;
    display_mode |= NEW_SESSION;
    EXPECT_EQ(load_gray(1, "nowhere.pgm", SOURCE_GRAY, WHOLE_FILE, 1, &band), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "failed to open file nowhere.pgm\n");
    EXPECT_EQ(active_window, window);
    display_mode &= ~uint32_t{NEW_SESSION};
}

TEST_F(Load, AColourFileGivesThreeBands)
{
    const std::string name = pixmap("colour.ppm", 7, 3);
    ASSERT_EQ(load_rgb_file(1, name.c_str(), WHOLE_FILE, 1, &r, &g, &b), 1);
    EXPECT_EQ(at(r, 6, 2), 26);
    EXPECT_EQ(at(g, 6, 2), 106);
    EXPECT_EQ(at(b, 6, 2), 202);
    EXPECT_EQ(bands[r].format, KIND_RGB);
    EXPECT_STREQ(bands[g].file_name, "");
}

TEST_F(Load, AColourAreaAtAnIncrementSkipsLinesAndColumns)
{
    const std::string name = pixmap("skip.ppm", 9, 9);
    ASSERT_EQ(load_rgb_file(2, name.c_str(), { 1, 2, 8, 8 }, 0, &r, &g, &b), 1);
    EXPECT_EQ(bands[r].x_size, 4);     // columns 1, 3, 5, 7
    EXPECT_EQ(bands[r].y_size, 4);     // lines 2, 4, 6, 8
    EXPECT_EQ(at(r, 3, 3), 87);
    EXPECT_EQ(at(g, 2, 0), 105);
    EXPECT_EQ(at(b, 0, 3), 208);
}

TEST_F(Load, AGrayFileIsNoRgbFile)
{
    const std::string name = graymap("gray2.pgm", 4, 4);
    EXPECT_EQ(load_rgb_file(1, name.c_str(), WHOLE_FILE, 0, &r, &g, &b), 0);
    EXPECT_EQ(msg_text(MSG_STATUS), name + " is not an RGB file\n");
    EXPECT_EQ(bands_in_use(), 0);
}

TEST_F(Load, ThreeFilesOfDifferentSizesAreRefused)
{
    const std::string one = graymap("one.pgm", 4, 4), two = graymap("two.pgm", 4, 5);
    EXPECT_EQ(load_gray3(1, one.c_str(), two.c_str(), one.c_str(), WHOLE_FILE, 0, &r, &g, &b), 0);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Inconsistent file sizes");
    EXPECT_EQ(bands_in_use(), 0);
}

TEST_F(Load, ThreeFilesBecomeRedGreenAndBlue)
{
    const std::string one = graymap("red.pgm", 4, 4), two = graymap("green.pgm", 4, 4, 3);
    ASSERT_EQ(load_gray3(1, one.c_str(), two.c_str(), one.c_str(), WHOLE_FILE, 0, &r, &g, &b), 1);
    EXPECT_EQ(at(r, 3, 3), 33);
    EXPECT_EQ(at(g, 3, 3), 0);         // the second file ends a line early
    EXPECT_EQ(at(b, 0, 2), 20);
    EXPECT_EQ(bands[g].format, KIND_COT);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Premature EOF encountered");
}

TEST_F(Load, ABitmapIsHeldPackedWithoutAHistogram)
{
    const uint8_t bytes[] = "P4\n9 2\n\x80\x80\x01\x00";   // 9 columns: bits 0 and 8 of line 0, bit 7 of line 1
    write_test_file("bits.pbm", bytes, sizeof bytes - 1);
    ASSERT_EQ(load_bin(test_file("bits.pbm"), 0, &band), 1);
    EXPECT_EQ(bands[band].format, KIND_BIN);
    uint16_t words[2];
    memcpy(words, bands[band].data, sizeof words);
    EXPECT_EQ(words[0] & 0xFF80, 0x8080);
    EXPECT_EQ(words[1] & 0xFF80, 0x0100);
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(bands[band].hist_unmapped[i], 0);
}

TEST_F(Load, AGrayFileIsNoBinaryFile)
{
    const std::string name = graymap("gray3.pgm", 4, 4);
    EXPECT_EQ(load_bin(name.c_str(), 0, &band), 0);
    EXPECT_EQ(msg_text(MSG_STATUS), name + " is not a binary file\n");
}

TEST_F(Load, ABitmapReadAsGrayIsBlackAndWhite)
{
    const uint8_t bytes[] = "P4\n3 1\n\xA0";
    write_test_file("three.pbm", bytes, sizeof bytes - 1);
    ASSERT_EQ(load_gray(1, test_file("three.pbm"), SOURCE_GRAY, WHOLE_FILE, 0, &band), 1);
    EXPECT_EQ(at(band, 0, 0), 255);
    EXPECT_EQ(at(band, 1, 0), 0);
    EXPECT_EQ(at(band, 2, 0), 255);
}

TEST_F(Load, ARawFileStartsAtItsWordOffset)
{
    uint8_t bytes[6 + 12];
    for (int i = 0; i < 18; i++)
        bytes[i] = uint8_t(i);
    write_test_file("data.raw", bytes, sizeof bytes);
    ASSERT_EQ(load_raw(1, test_file("data.raw"), 3, 4, 3, WHOLE_FILE, 0, &band), 1);
    EXPECT_EQ(at(band, 0, 0), 6);
    EXPECT_EQ(at(band, 3, 2), 17);
    EXPECT_EQ(bands[band].format, KIND_RAW);
}

TEST_F(Load, ThreeRawFilesHaveOffsetsOfTheirOwn)
{
    uint8_t bytes[8] = { 0, 1, 2, 3, 4, 5, 6, 7 };
    write_test_file("three.raw", bytes, sizeof bytes);
    const std::string name = test_file("three.raw");
    const char *const names[3] = { name.c_str(), name.c_str(), name.c_str() };
    const int offsets[3] = { 0, 1, 2 };
    ASSERT_EQ(load_raw3(1, names, offsets, 2, 2, WHOLE_FILE, 0, &r, &g, &b), 1);
    EXPECT_EQ(at(r, 0, 0), 0);
    EXPECT_EQ(at(g, 0, 0), 2);
    EXPECT_EQ(at(b, 1, 1), 7);
}

TEST_F(Load, WideSamplesAreRefusedInWords)
{
    const uint8_t bytes[] = "P5\n2 1\n65535\n\x01\x02\x03\x04";
    write_test_file("wide.pgm", bytes, sizeof bytes - 1);
    const std::string name = test_file("wide.pgm");
    RFILE *file = rio_open_r(name.c_str());
    ASSERT_NE(file, nullptr);
    int32_t bits = 0;
    rio_get_hdr_data(file, RIO_KEY_BITS, &bits);
    rio_close(file);
    if (bits > 8) {
        EXPECT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, WHOLE_FILE, 0, &band), 0);
        EXPECT_EQ(msg_text(MSG_STATUS), name + " has samples of more than 8 bits");
        EXPECT_EQ(classify_file(name.c_str()), CLASS_WIDE);
    } else {
        EXPECT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, WHOLE_FILE, 0, &band), 1);
    }
}

TEST_F(Load, ANewSessionClosesThePicturesOfTheOldOne)
{
    const std::string first = graymap("first.pgm", 4, 4), second = graymap("second.pgm", 6, 6);
    display_mode &= ~uint32_t{COLOR};
    ASSERT_EQ(load_gray(1, first.c_str(), SOURCE_GRAY, WHOLE_FILE, 1, &band), 1);
    display_mode |= NEW_SESSION;
    ASSERT_EQ(load_gray(1, second.c_str(), SOURCE_GRAY, WHOLE_FILE, 1, &band), 1);
    display_mode &= ~uint32_t{NEW_SESSION};
    EXPECT_EQ(picture_count, 1);
    EXPECT_EQ(bands_in_use(), 1);
    EXPECT_EQ(bands[windows[active_window].red_band].x_size, 6);
}

TEST_F(Load, ARefetchBringsThePixelsBackAndKeepsTheWindow)
{
    const std::string name = graymap("again.pgm", 6, 5);
    display_mode &= ~uint32_t{COLOR};
    ASSERT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, { 1, 1, 4, 3 }, 1, &band), 1);
    const int window = active_window;
    memset(bands[band].data, 99, bands[band].alloc_bytes);
    refetch_file();
    EXPECT_EQ(active_window, window);
    EXPECT_EQ(at(band, 0, 0), 11);
    EXPECT_EQ(at(band, 3, 2), 34);
    EXPECT_EQ(display_mode & REFETCHING_BAND, 0u);
}

TEST_F(Load, ARefetchOfAFileThatHasChangedItsSizeIsRefused)
{
    const std::string name = graymap("grown.pgm", 6, 5);
    display_mode &= ~uint32_t{COLOR};
    ASSERT_EQ(load_gray(1, name.c_str(), SOURCE_GRAY, WHOLE_FILE, 1, &band), 1);
    graymap("grown.pgm", 4, 5);
    refetch_file();
    EXPECT_STREQ(msg_text(MSG_STATUS), "Inconsistent file sizes");
    EXPECT_EQ(bands[band].x_size, 6);
    EXPECT_EQ(at(band, 5, 4), 45);
}

TEST_F(Load, AnImageMadeInTheSessionHasNoFileToRefetch)
{
    refetch_file();
    EXPECT_STREQ(msg_text(MSG_STATUS), "No file(s) available to refetch data");
}

TEST_F(Load, TheTileStoreIsMissingAndSaysSo)
{
    const std::string name = graymap("tiled.pgm", 6, 5);
    EXPECT_EQ(load_tiled_gray(name.c_str(), 1, 1), 0u);
    EXPECT_STREQ(msg_text(MSG_STATUS), "no tile store is present");
    EXPECT_EQ(bands_in_use(), 0);
}

TEST_F(Load, FilesAreClassifiedByTypeAndColourTable)
{
    const std::string gray = graymap("c.pgm", 2, 2), colour = pixmap("c.ppm", 2, 2);
    EXPECT_EQ(classify_file(gray.c_str()), CLASS_GRAY);
    EXPECT_EQ(classify_file(colour.c_str()), CLASS_COLOUR);
    EXPECT_EQ(classify_file("nowhere.pgm"), CLASS_NO_FILE);
}

TEST(SaveKinds, FollowFormatAndType)
{
    EXPECT_EQ(save_kind_of(RIO_FORMAT_NATV, 27, 0), 5);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_TIFF, 27, 0), 6);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_TIFF, 28, 0), 7);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_TGA, 28, 0), 9);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_PCX, 27, 0), 10);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_BMP, 28, 0), 12);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_NATV, 29, 1), 14);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_NATV, 2, 1), 15);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_NATV, 10, 1), 16);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_TIFF, 29, 1), 6);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_GIF, 29, 1), 13);
    EXPECT_EQ(save_kind_of(RIO_FORMAT_PNM, 2, 0), 0);
}
