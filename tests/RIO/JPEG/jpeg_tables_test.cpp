// The tables that go to the driver, and the divisors that it finds in them again.
#include "RIO/JPEG/jp.h"
#include "RIO/JPEG/jpeg_files.h"
#include <algorithm>

struct board_tables {
    uint16_t forward_l[64], forward_c[64], inverse_l[64], inverse_c[64];
};

static board_tables build(int quality, int32_t luminance, int32_t chrominance, int place)
{
    int32_t l[64], c[64];
    std::fill_n(l, 64, 100);
    std::fill_n(c, 64, 100);
    l[place] = luminance;
    c[place] = chrominance;
    board_tables t;
    jpeg_build_board_tables(quality, l, c, t.forward_l, t.forward_c, t.inverse_l, t.inverse_c);
    return t;
}

TEST(JpegTables, TheCornerOfTheUsualTables)
{
    // Factor 50 leaves 16 and 17. A[0] is 2048: 2048 / 16 = 128 and 2048 / 17 = 120.47. B[0] is 64; the highest bit of 16
    // and 17 is 3 places below bit 7: 8 * 64 * 16 / 2 = 4096, 8 * 64 * 17 / 2 = 4352; without two bits 1024 and 1088, under
    // 7 - 3 = 4.
    const board_tables t = build(50, 16, 17, 0);
    EXPECT_EQ(t.forward_l[0], 128);
    EXPECT_EQ(t.forward_c[0], 120);
    EXPECT_EQ(t.inverse_l[0], 1024 + (4 << 13));
    EXPECT_EQ(t.inverse_c[0], 1088 + (4 << 13));
}

TEST(JpegTables, APlaceOffTheCorner)
{
    // Place 8 is u 1, v 0: c is 4 * 1.387039845 and 1, so A = 2048 * 5.54815938 = 11362.63; / 12 = 946.89, rounded 947.
    // B = 64 * 1.387039845 = 88.7706; 12 is 4 places down: 16 * 88.7706 * 12 / 2 = 8521.97, rounded 8522; its lowest two
    // bits dropped 2130, under 3.
    const board_tables t = build(50, 12, 12, 8);
    EXPECT_EQ(t.forward_l[8], 947);
    EXPECT_EQ(t.inverse_l[8], 2130 + (3 << 13));
    EXPECT_EQ(t.inverse_c[8], 2130 + (3 << 13));
}

TEST(JpegTables, NoDivisorIsBelowTwo)
{
    // 1 at factor 50 would be 1, and 16 at factor 3 is 48 / 50 = 0: both are 2. 2048 / 2 = 1024; 2 is 6 places down:
    // 64 * 64 * 2 / 2 = 4096.
    for (const auto &[quality, base] : { std::pair { 50, 1 }, { 3, 16 }, { 1, 99 } }) {
        const board_tables t = build(quality, base, base, 0);
        EXPECT_EQ(t.forward_l[0], 1024) << quality;
        EXPECT_EQ(t.forward_c[0], 1024) << quality;
        EXPECT_EQ(t.inverse_l[0], 1024 + (1 << 13)) << quality;
    }
}

TEST(JpegTables, AFactorBelowOneIsOne)
{
    for (const int quality : { 0, -1, -32768 }) {
        const board_tables one = build(1, 120, 120, 3), t = build(quality, 120, 120, 3);
        EXPECT_EQ(0, memcmp(&t, &one, sizeof t)) << quality;
    }
}

TEST(JpegTables, FactorsAreTruncated)
{
    // 16 * 15 / 50 = 4.8, taken as 4: 2048 / 4 = 512. 4 is 5 places down: 32 * 64 * 4 / 2 = 4096.
    const board_tables t = build(15, 16, 16, 0);
    EXPECT_EQ(t.forward_l[0], 512);
    EXPECT_EQ(t.inverse_l[0], 1024 + (2 << 13));
}

TEST(JpegTables, OnlyTheInverseOfChrominanceIsCapped)
{
    // Place 3: B = 64 * 1.175875602 = 75.256. 47 * 1000 / 50 = 940, low byte 172, no place down: 75.256 * 940 / 2 = 35370,
    // which the cap makes 32767, 8191 without two bits.
    EXPECT_EQ(build(1000, 47, 47, 3).inverse_c[3], 8191 + (7 << 13));
    // Place 53 is u 6, v 5: B = 64 * 0.5411961 * 0.785694958 = 27.2137. 121 * 20 = 2420, low byte 116, one place down:
    // 2 * 27.2137 * 2420 / 2 = 65857.7 with the half; of 65857, 16 bits are 321, and 80 without two.
    EXPECT_EQ(build(1000, 121, 121, 53).inverse_l[53], 80 + (6 << 13));
    EXPECT_EQ(build(1000, 121, 121, 53).inverse_c[53], 8191 + (6 << 13));
}

TEST(JpegTables, ALowByteOfZeroIsNotMoved)
{
    // 128 * 100 / 50 = 256: 64 * 256 / 2 = 8192, 2048 without two bits, under 7.
    EXPECT_EQ(build(100, 128, 128, 0).inverse_l[0], 2048 + (7 << 13));
}

TEST(JpegTables, TheFirstTwoAreOfTheDirectionAtWork)
{
    jpeg_state jpeg {};
    EXPECT_EQ(jpeg_set_quality(&jpeg, 50, nullptr), 0);
    EXPECT_EQ(jpeg.quality, 50);
    EXPECT_EQ(jpeg.board_tables[0][0], 128);
    EXPECT_EQ(jpeg.board_tables[1][0], 120);
    EXPECT_EQ(jpeg.board_tables[2][0], 1024 + (4 << 13));
    EXPECT_EQ(jpeg.board_tables[3][0], 1088 + (4 << 13));
    jpeg.direction = JPEG_DECOMPRESSING;
    EXPECT_EQ(jpeg_set_quality(&jpeg, 50, nullptr), 0);
    EXPECT_EQ(jpeg.board_tables[0][0], 1024 + (4 << 13));
    EXPECT_EQ(jpeg.board_tables[1][0], 1088 + (4 << 13));
    EXPECT_EQ(jpeg.board_tables[2][0], 128);
    EXPECT_EQ(jpeg.board_tables[3][0], 120);
}

TEST(JpegTables, DefaultsForgetTablesOfAPacket)
{
    jpeg_state jpeg {};
    jpeg.direction = JPEG_COMPRESSING | JPEG_PACKET_LUMINANCE | JPEG_PACKET_CHROMINANCE;
    jpeg_set_defaults(&jpeg, nullptr);
    EXPECT_EQ(jpeg.direction, uint32_t{ JPEG_COMPRESSING });
    unsigned tables[2][64];
    divisors_of_quality(50, tables);
    for (int i = 0; i < 64; i++) {
        EXPECT_EQ(jpeg.luminance[i], int(tables[0][i])) << i;
        EXPECT_EQ(jpeg.chrominance[i], int(tables[1][i])) << i;
    }
}

TEST(JpegTables, TheDriverFindsTheDivisorsAgain)
{
    int off_by_one = 0;
    for (int quality = 1; quality <= 100; quality++) {
        jpeg_state jpeg {};
        jpeg_set_quality(&jpeg, quality, nullptr);
        unsigned tables[2][64];
        divisors_of_quality(quality, tables);
        for (int t = 0; t < 2; t++) {
            uint16_t found[64];
            jpeg_driver_divisors(jpeg.board_tables[t], jpeg.board_tables[2 + t], found);
            for (int i = 0; i < 64; i++) {
                // The inverse form tells 128 levels apart at the coarsest, and all of them at the lower places.
                EXPECT_LE(std::abs(int(found[i]) - int(tables[t][i])), tables[t][i] < 128 ? 0 : 1) << quality << " " << i;
                off_by_one += found[i] != tables[t][i];
            }
        }
    }
    EXPECT_LT(off_by_one, 100 * 2);
}

TEST(JpegTables, DivisorsBeyondAByteAreOfAByte)
{
    // Factor 3000 makes even the smallest, 10, a divisor of 600.
    jpeg_state jpeg {};
    jpeg_set_quality(&jpeg, 3000, nullptr);
    for (int t = 0; t < 2; t++) {
        uint16_t found[64];
        jpeg_driver_divisors(jpeg.board_tables[t], jpeg.board_tables[2 + t], found);
        for (int i = 0; i < 64; i++)
            EXPECT_GE(found[i], 250) << i;
        EXPECT_LE(*std::max_element(found, found + 64), 255);
    }
}
