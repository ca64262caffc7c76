// The JPEG driver by itself: its messages, its states, and what it refuses.
#include "services/jpeg_driver.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

using bytes = std::vector<uint8_t>;

// The pair of values that stands for a divisor at the corner, where A is 2048 and B 64: 2048 / L rounded, and L brought up
// until it fills a byte, under 7 less the places. 16 L 2^e in whole fours without two bits is 8 L 2^e.
static void fill_tables(uint16_t tables[4][64], bool compressing, int divisor)
{
    static const double scale[8] = { 1, 1.387039845, 1.306562965, 1.175875602, 1, 0.785694958, 0.541196100, 0.275899379 };
    static const int step[8] = { 1, 4, 2, 4, 1, 4, 2, 4 };
    int up = 0;
    while (divisor << up < 128)
        up++;
    for (int i = 0; i < 64; i++) {
        const int u = i / 8, v = i % 8;
        const int forward = int(2048 * scale[u] * step[u] * scale[v] * step[v] / divisor + 0.5);
        const int product = int((1 << up) * 64 * scale[u] * scale[v] * divisor * 0.5 + 0.5);
        const int inverse = product / 4 + ((7 - up) << 13);
        for (int t = 0; t < 2; t++) {
            tables[compressing ? t : 2 + t][i] = uint16_t(forward);
            tables[compressing ? 2 + t : t][i] = uint16_t(inverse);
        }
    }
}

struct JpegDriver : testing::Test {
    void *driver = nullptr;
    uint16_t tables[4][64];

    void SetUp() override { ASSERT_EQ(jpeg_driver.open_driver("JPEG", 2, &driver), CODEC_OK); }
    void TearDown() override { EXPECT_EQ(jpeg_driver.close_driver(driver), CODEC_OK); }
    int32_t send(uint32_t message, codec_call call = {})
    {
        const int32_t status = jpeg_driver.send_driver_message(driver, message, &call);
        made = call.made;
        return status;
    }
    int32_t give_tables(bool compressing, int divisor)
    {
        fill_tables(tables, compressing, divisor);
        codec_call call {};
        call.tables = tables;
        return send(CODEC_SET_TABLES, call);
    }
    int32_t run(uint32_t message, int width, int height, int bits, bytes &pixels, bytes &coded)
    {
        codec_call call {};
        call.width = width;
        call.height = height;
        call.bits = bits;
        call.rows = height;
        call.pixels = pixels.data();
        call.coded = coded.data();
        call.coded_bytes = int64_t(coded.size());
        return send(message, call);
    }
    int64_t made = 0;
};

static bytes ramp(int width, int height, int samples)
{
    bytes pixels;
    for (int i = 0; i < width * height * samples; i++)
        pixels.push_back(uint8_t(i / samples % width * 3 + i / samples / width * 2 + i % samples * 20));
    return pixels;
}

TEST(JpegDriverOpening, OnlyItsHandlerAndModeOpenIt)
{
    void *driver = &driver;
    EXPECT_EQ(jpeg_driver.open_driver("VIDEO", 2, &driver), CODEC_BOARD_INVALID);
    EXPECT_EQ(driver, nullptr);
    EXPECT_EQ(jpeg_driver.open_driver("JPEG", 1, &driver), CODEC_BAD_MODE);
    EXPECT_EQ(driver, nullptr);
    EXPECT_EQ(jpeg_driver.close_driver(nullptr), CODEC_BOARD_INVALID);
    EXPECT_EQ(jpeg_driver.send_driver_message(nullptr, CODEC_BEGIN, nullptr), CODEC_BOARD_INVALID);
}

TEST_F(JpegDriver, CodesAndDecodesGrayAndColour)
{
    for (const int samples : { 1, 3 }) {
        bytes pixels = ramp(40, 24, samples), coded(20000);
        EXPECT_EQ(send(CODEC_BEGIN), CODEC_OK);
        EXPECT_EQ(send(CODEC_END), CODEC_OK);
        EXPECT_EQ(give_tables(true, 2), CODEC_OK);
        EXPECT_EQ(run(CODEC_COMPRESS, 40, 24, 8 * samples, pixels, coded), CODEC_OK);
        EXPECT_GT(made, 300);
        coded.resize(size_t(made));
        EXPECT_EQ(coded[0], 0xFF);
        EXPECT_EQ(coded.back(), 0xD9);
        bytes back(pixels.size());
        EXPECT_EQ(give_tables(false, 2), CODEC_OK);
        EXPECT_EQ(run(CODEC_DECOMPRESS, 40, 24, 8 * samples, back, coded), CODEC_OK);
        EXPECT_EQ(made, 40 * 24 * samples);
        for (size_t i = 0; i < back.size(); i++)
            ASSERT_NEAR(back[i], pixels[i], 8) << i;
    }
}

TEST_F(JpegDriver, TakesTheDivisorsAsGiven)
{
    bytes pixels = ramp(16, 16, 1);
    for (const int divisor : { 2, 3, 16, 99, 127, 128, 200, 255 }) {
        bytes coded(20000);
        give_tables(true, divisor);
        EXPECT_EQ(run(CODEC_COMPRESS, 16, 16, 8, pixels, coded), CODEC_OK);
        // The table's marker FF DB, its length 67 and number 0, then 64 divisors.
        const uint8_t marker[] = { 0xFF, 0xDB, 0, 67, 0 };
        auto at = std::search(coded.begin(), coded.end(), marker, marker + sizeof marker);
        ASSERT_NE(at, coded.end());
        for (int i = 0; i < 64; i++)
            EXPECT_NEAR(at[5 + i], divisor, divisor < 128 ? 0 : 1) << divisor << " " << i;
    }
}

TEST_F(JpegDriver, AsksForTablesFirst)
{
    bytes pixels(64), coded(2000);
    EXPECT_EQ(run(CODEC_COMPRESS, 8, 8, 8, pixels, coded), CODEC_REFUSED);
    EXPECT_EQ(run(CODEC_DECOMPRESS, 8, 8, 8, pixels, coded), CODEC_REFUSED);
    EXPECT_EQ(send(CODEC_SET_TABLES), CODEC_REFUSED);
}

TEST_F(JpegDriver, RefusesUnknownMessagesAndModes)
{
    give_tables(true, 10);
    bytes pixels(256), coded(2000);
    EXPECT_EQ(send(24576), CODEC_REFUSED);
    EXPECT_EQ(run(CODEC_COMPRESS, 8, 8, 32, pixels, coded), CODEC_BAD_MODE);
    EXPECT_EQ(run(CODEC_DECOMPRESS, 8, 8, 16, pixels, coded), CODEC_BAD_MODE);
    EXPECT_EQ(run(CODEC_COMPRESS, 0, 8, 8, pixels, coded), CODEC_REFUSED);
    EXPECT_EQ(run(CODEC_COMPRESS, 8, -1, 8, pixels, coded), CODEC_REFUSED);
}

TEST_F(JpegDriver, APictureGoesInPieces)
{
    bytes pixels = ramp(40, 50, 3), whole(20000), coded(20000), back(pixels.size()), back_whole(pixels.size());
    give_tables(true, 5);
    EXPECT_EQ(run(CODEC_COMPRESS, 40, 50, 24, pixels, whole), CODEC_OK);
    whole.resize(size_t(made));
    codec_call call {};
    call.width = 40;
    call.height = 50;
    call.bits = 24;
    call.coded = coded.data();
    call.coded_bytes = int64_t(coded.size());
    const int cuts[] = { 0, 1, 17, 40, 50 };
    for (int i = 0; i < 4; i++) {
        call.first_row = cuts[i];
        call.rows = cuts[i + 1] - cuts[i];
        call.pixels = &pixels[size_t(cuts[i]) * 120];
        EXPECT_EQ(send(CODEC_COMPRESS, call), CODEC_OK) << i;
    }
    coded.resize(size_t(made));
    EXPECT_EQ(coded, whole);

    give_tables(false, 5);
    EXPECT_EQ(run(CODEC_DECOMPRESS, 40, 50, 24, back_whole, whole), CODEC_OK);
    call.coded_bytes = int64_t(coded.size());
    for (int i = 0; i < 4; i++) {
        call.first_row = cuts[i];
        call.rows = cuts[i + 1] - cuts[i];
        call.pixels = &back[size_t(cuts[i]) * 120];
        EXPECT_EQ(send(CODEC_DECOMPRESS, call), CODEC_OK) << i;
    }
    EXPECT_EQ(back, back_whole);

    // A piece that is not the next one is refused; the first row begins anew.
    call.pixels = back.data();
    call.first_row = 0;
    call.rows = 10;
    EXPECT_EQ(send(CODEC_DECOMPRESS, call), CODEC_OK);
    call.first_row = 11;
    EXPECT_EQ(send(CODEC_DECOMPRESS, call), CODEC_REFUSED);
    call.first_row = 10;
    call.width = 41;
    EXPECT_EQ(send(CODEC_DECOMPRESS, call), CODEC_REFUSED);
    call.width = 40;
    call.rows = 41;
    EXPECT_EQ(send(CODEC_DECOMPRESS, call), CODEC_REFUSED);
    EXPECT_EQ(run(CODEC_DECOMPRESS, 40, 50, 24, back, whole), CODEC_OK);
    EXPECT_EQ(back, back_whole);
}

TEST_F(JpegDriver, RefusesARoomThatIsTooSmallAndGoesOn)
{
    give_tables(true, 2);
    bytes pixels = ramp(64, 64, 1), coded(20000);
    EXPECT_EQ(run(CODEC_COMPRESS, 64, 64, 8, pixels, coded), CODEC_OK);
    const size_t whole = size_t(made);
    for (const size_t room : { size_t{1}, size_t{300}, whole - 1 }) {
        bytes small(room);
        EXPECT_EQ(run(CODEC_COMPRESS, 64, 64, 8, pixels, small), CODEC_REFUSED) << room;
    }
    bytes enough(whole + 1);    // the codec hands its room back when it is full, and not a byte later
    EXPECT_EQ(run(CODEC_COMPRESS, 64, 64, 8, pixels, enough), CODEC_OK);
    EXPECT_EQ(made, int64_t(whole));
}

TEST_F(JpegDriver, RefusesWhatIsNotThePictureOfTheCallAndGoesOn)
{
    give_tables(true, 4);
    bytes pixels = ramp(32, 16, 1), coded(20000);
    EXPECT_EQ(run(CODEC_COMPRESS, 32, 16, 8, pixels, coded), CODEC_OK);
    coded.resize(size_t(made));
    give_tables(false, 4);
    bytes back(32 * 16 * 3);
    EXPECT_EQ(run(CODEC_DECOMPRESS, 16, 32, 8, back, coded), CODEC_REFUSED);
    EXPECT_EQ(run(CODEC_DECOMPRESS, 32, 8, 8, back, coded), CODEC_REFUSED);
    EXPECT_EQ(run(CODEC_DECOMPRESS, 32, 16, 24, back, coded), CODEC_REFUSED);
    for (size_t n = 1; n < coded.size() - 2; n++) {
        bytes cut(coded.begin(), coded.begin() + long(n));
        EXPECT_EQ(run(CODEC_DECOMPRESS, 32, 16, 8, back, cut), CODEC_REFUSED) << n;
    }
    EXPECT_EQ(run(CODEC_DECOMPRESS, 32, 16, 8, back, coded), CODEC_OK);
}
