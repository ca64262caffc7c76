#include "display/scan_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

static std::vector<uint8_t> noise(size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(count);
    for (uint8_t &byte : bytes)
        byte = uint8_t(random());
    return bytes;
}

TEST(ScanKernels, ColumnsPickBytesOfARow)
{
    const uint8_t row[] = { 10, 11, 12, 13, 14 };
    const int32_t columns[] = { 0, 0, 2, 4 };
    uint8_t out[4];
    sample_columns(out, row, columns, 4, 5);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 4), (std::vector<uint8_t>{ 10, 10, 12, 14 }));
}

TEST(ScanKernels, StepsPickEveryNthByte)
{
    const uint8_t row[] = { 10, 11, 12, 13, 14, 15, 16 };
    uint8_t out[3];
    sample_steps(out, row, 3, 3, 7);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 3), (std::vector<uint8_t>{ 10, 13, 16 }));
}

TEST(ScanKernels, ValuesAreRepeatedByColumn)
{
    const uint8_t bytes[] = { 5, 6, 7 };
    const uint16_t words[] = { 500, 600, 700 };
    const int32_t columns[] = { 40, 40, 41, 42 };
    uint8_t out_8[4];
    uint16_t out_16[4];
    repeat_8(out_8, bytes, columns, 4);
    repeat_16(out_16, words, columns, 4);
    EXPECT_EQ(std::vector<uint8_t>(out_8, out_8 + 4), (std::vector<uint8_t>{ 5, 5, 6, 7 }));
    EXPECT_EQ(std::vector<uint16_t>(out_16, out_16 + 4), (std::vector<uint16_t>{ 500, 500, 600, 700 }));
}

TEST(ScanKernels, BitZeroIsTheTopBitOfTheFirstWord)
{
    // Word 0x8001 has pixels 0 and 15, word 0x4000 pixel 17; low bytes come first.
    const uint8_t row[] = { 0x01, 0x80, 0x00, 0x40 };
    const int32_t columns[] = { 0, 1, 14, 15, 16, 17 };
    uint8_t out[6];
    sample_bits_columns(out, row, columns, 6);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 6), (std::vector<uint8_t>{ 255, 0, 0, 255, 0, 255 }));
}

TEST(ScanKernels, BitsAreStampedTopBitFirstAndTheRestIsZero)
{
    uint8_t in[18] = {};
    in[0] = in[15] = in[17] = 255;
    uint16_t out[2];
    map_bits(out, in, 18);
    EXPECT_EQ(out[0], 0x8001);
    EXPECT_EQ(out[1], 0x4000);
}

TEST(ScanKernels, DitherTablesFollowTheWindowColumn)
{
    uint8_t tables[4][256] = {};
    for (int cell = 0; cell < 4; cell++)
        tables[cell][9] = uint8_t(100 + cell);
    const uint8_t in[5] = { 9, 9, 9, 9, 9 };
    uint8_t out[5];
    map_dither(out, in, 5, 6, tables);  // columns 6 to 10: cells 2, 3, 0, 1, 2
    EXPECT_EQ(std::vector<uint8_t>(out, out + 5), (std::vector<uint8_t>{ 102, 103, 100, 101, 102 }));
}

// --- all forms give the same bytes -----------------------------------------------------------------------------

class ScanKernelTwins : public testing::Test {
protected:
    void SetUp() override
    {
        for (const scan_kernel_set *set : { scan_kernels_avx2(), scan_kernels_avx512() })
            if (set)
                twins.push_back(set);
        if (twins.empty())
            GTEST_SKIP() << "this processor has neither AVX2 nor AVX-512";
    }

    std::vector<const scan_kernel_set *> twins;
};

TEST_F(ScanKernelTwins, MapsOfEveryLength)
{
    const std::vector<uint8_t> red = noise(280, 1), green = noise(280, 2), blue = noise(280, 3);
    const std::vector<uint8_t> levels = noise(1024, 4);
    grey_tables grey;
    colour_tables colour;
    for (unsigned i = 0; i < 256; i++) {
        grey.level[i] = levels[i];
        grey.packed[i] = levels[i] * 0x010101u;
        for (unsigned p = 0; p < 3; p++) {
            colour.level[p][i] = levels[256 + 256 * p + i];
            colour.packed[p][i] = uint32_t{colour.level[p][i]} << (16 - 8 * p);
        }
    }
    for (const scan_kernel_set *twin : twins)
        for (int count = 0; count <= 280; count++) {
            std::vector<uint32_t> plain(281, 5), fast(281, 5);
            scan_kernels_plain.map_grey(plain.data(), red.data(), count, grey);
            twin->map_grey(fast.data(), red.data(), count, grey);
            ASSERT_EQ(plain, fast) << count;
            scan_kernels_plain.map_rgb(plain.data(), red.data(), green.data(), blue.data(), count, colour);
            twin->map_rgb(fast.data(), red.data(), green.data(), blue.data(), count, colour);
            ASSERT_EQ(plain, fast) << count;
            std::vector<uint8_t> plain_slots(281, 5), fast_slots(281, 5);
            scan_kernels_plain.map_8(plain_slots.data(), red.data(), count, levels.data());
            twin->map_8(fast_slots.data(), red.data(), count, levels.data());
            ASSERT_EQ(plain_slots, fast_slots) << count;
        }
}

TEST_F(ScanKernelTwins, RepeatedValues)
{
    std::vector<uint32_t> values(100);
    for (unsigned i = 0; i < 100; i++)
        values[i] = i * 2654435761u;
    for (const scan_kernel_set *twin : twins)
        for (int count = 1; count <= 100; count++) {
            std::vector<int32_t> columns;
            for (int i = 0; i < count; i++)
                columns.push_back(1000 + i * 2 / 3);
            std::vector<uint32_t> plain(101, 7), fast(101, 7);
            scan_kernels_plain.repeat_32(plain.data(), values.data(), columns.data(), count);
            twin->repeat_32(fast.data(), values.data(), columns.data(), count);
            ASSERT_EQ(plain, fast) << count;
        }
}

TEST_F(ScanKernelTwins, ColumnsUpToTheLastByte)
{
    const std::vector<uint8_t> row = noise(200, 5);
    for (int step = 1; step <= 4; step++)
        for (int count = 1; count * step <= 200; count++) {
            std::vector<int32_t> columns;
            for (int i = 0; i < count; i++)
                columns.push_back(200 - (count - i) * step);
            columns.back() = 199;
            std::vector<uint8_t> plain(201, 7), fast(201, 7);
            scan_kernels_plain.columns(plain.data(), row.data(), columns.data(), count, 200);
            twins[0]->columns(fast.data(), row.data(), columns.data(), count, 200);
            ASSERT_EQ(plain, fast) << "step " << step << ", count " << count;
        }
}

TEST_F(ScanKernelTwins, StepsUpToTheLastByte)
{
    const std::vector<uint8_t> row = noise(400, 8);
    for (int step = 2; step <= 9; step++)
        for (int count = 1; (count - 1) * step < 400; count++) {
            const int64_t size = (count - 1) * step + 1;
            std::vector<uint8_t> plain(201, 7), fast(201, 7);
            scan_kernels_plain.steps(plain.data(), row.data(), step, count, size);
            twins[0]->steps(fast.data(), row.data(), step, count, size);
            ASSERT_EQ(plain, fast) << "step " << step << ", count " << count;
        }
}

TEST_F(ScanKernelTwins, SlantsInEveryDirection)
{
    const int width = 150, height = 130;
    const std::vector<uint8_t> pixels = noise(size_t(width * height), 6);
    std::vector<int64_t> rows;
    for (int y = 0; y < height; y++)
        rows.push_back(y * width);
    for (const int64_t a : { -65536LL, -40000LL, 0LL, 1LL, 56755LL, 65536LL })
        for (const int64_t c : { -65536LL, -32768LL, 0LL, 32768LL, 65535LL }) {
            // From the corner that lies farthest back, so that all stays inside and some walks end at the last byte.
            const int64_t b = -c / 4, d = a / 4;
            const auto begin = [](int64_t size, int64_t along, int64_t across) {
                const int64_t most = std::max<int64_t>(0, 99 * along) + std::max<int64_t>(0, 2 * across);
                return (size << 16) - 1 - most;
            };
            const slanted_walk walk { pixels.data(), rows.data(), width, width * height, begin(width, a, b), begin(height, c, d), a, b, c, d };
            for (const line_part part : { line_part { 0, 0 }, line_part { 3, 17 }, line_part { 5, 20 }, line_part { 0, 99 }, line_part { 9, 8 } }) {
                const line_part parts[3] = { part, { 2, 40 }, part };
                std::vector<uint8_t> plain(300, 7), fast(300, 7);
                scan_kernels_plain.slant(plain.data(), 100, walk, parts, 3);
                for (const scan_kernel_set *twin : twins) {
                    std::fill(fast.begin(), fast.end(), uint8_t{7});
                    twin->slant(fast.data(), 100, walk, parts, 3);
                    ASSERT_EQ(plain, fast) << "a " << a << ", c " << c << ", part " << part.first << " to " << part.last;
                }
            }
        }
}

// Views near 1 to 1 are sampled in squares of 8 by 8 pixels, what they leave over on all sides in single lines.
TEST_F(ScanKernelTwins, SlantsInSquares)
{
    static constexpr int WIDTH = 400, HEIGHT = 300, LINES = 21, COLUMNS = 70;
    const std::vector<uint8_t> pixels = noise(WIDTH * HEIGHT, 9);
    std::vector<int64_t> rows;
    for (int y = 0; y < HEIGHT; y++)
        rows.push_back(y * WIDTH);
    std::mt19937 random(10);
    for (int turn = 0; turn < 400; turn++) {
        const double angle = turn * 0.9 * 3.14159265358979 / 180, scale = turn % 3 == 0 ? 1.4 : turn % 3 == 1 ? 1 : 0.3;
        const int64_t cosine = int64_t(std::cos(angle) / scale * 65536), sine = int64_t(std::sin(angle) / scale * 65536);
        // Turned about a point near one of the edges, or in the middle; only what lies inside is wanted.
        const int64_t u = (int64_t(random() % WIDTH) << 16) + int64_t(random() % 65536), v = (int64_t(random() % HEIGHT) << 16) + int64_t(random() % 65536);
        const slanted_walk walk { pixels.data(), rows.data(), WIDTH, WIDTH * HEIGHT, u, v, cosine, sine, -sine, cosine };
        line_part parts[LINES];
        for (int k = 0; k < LINES; k++) {
            const auto inside = [&](int i) {
                const int64_t x = (walk.u + i * walk.a + k * walk.b) >> 16, y = (walk.v + i * walk.c + k * walk.d) >> 16;
                return x >= 0 && x < WIDTH && y >= 0 && y < HEIGHT;
            };
            parts[k] = { 0, -1 };
            for (int i = 0; i < COLUMNS; i++)
                if (inside(i)) {
                    parts[k].first = parts[k].last < 0 ? i : parts[k].first;
                    parts[k].last = i;
                }
        }
        std::vector<uint8_t> plain(LINES * COLUMNS, 7);
        scan_kernels_plain.slant(plain.data(), COLUMNS, walk, parts, LINES);
        for (const scan_kernel_set *twin : twins) {
            std::vector<uint8_t> fast(LINES * COLUMNS, 7);
            twin->slant(fast.data(), COLUMNS, walk, parts, LINES);
            ASSERT_EQ(plain, fast) << "turn " << turn;
        }
    }
}
