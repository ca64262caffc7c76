#include "filters/warp_reference.h"

#include <sys/mman.h>

namespace {

typedef std::vector<double> list;

constexpr size_t GUARD = 8;

// The run's output, checked to have stayed within `count`.
plane resampled(const picture &p, int method, list *rows, list *cols, const weight_tables &t)
{
    const size_t count = rows->size();
    const std::vector<int64_t> starts = starts_of(p.rows, p.cols);
    plane out(count + 2 * GUARD, UNWRITTEN);
    resample_row(p.pixels.data(), out.data() + GUARD, p.rows, p.cols, int(count), method, rows->data(), cols->data(), starts.data(), t.w[0],
                 t.w[1], t.w[2], t.w[3]);
    for (size_t i = 0; i < GUARD; i++) {
        EXPECT_EQ(out[i], UNWRITTEN);
        EXPECT_EQ(out[GUARD + count + i], UNWRITTEN);
    }
    return plane(out.begin() + GUARD, out.begin() + int64_t(GUARD + count));
}

void expect_each_pixel(const picture &p, const list &rows, const list &cols, const weight_tables &t)
{
    for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {
        list r = rows, c = cols;
        const plane have = resampled(p, method, &r, &c, t);
        for (size_t i = 0; i < rows.size(); i++)
            ASSERT_EQ(have[i], pixel_at(p, rows[i], cols[i], method, t))
                << "method " << method << " row " << rows[i] << " column " << cols[i] << " of " << p.rows << " x " << p.cols;
    }
}

int one_pixel(const picture &p, int method, double row, double col, const weight_tables &t = tables_for(CUBIC_DEFAULT))
{
    list r = { row }, c = { col };
    return resampled(p, method, &r, &c, t)[0];
}

// 1 x 4: 10 20 40 80
const picture ramp = { 1, 4, { 10, 20, 40, 80 } };

plane packed(const plane &bits)
{
    plane bytes((bits.size() + 7) / 8, 0);
    for (size_t i = 0; i < bits.size(); i++)
        bytes[i / 8] = uint8_t(bytes[i / 8] | (bits[i] & 1) << i % 8);
    return bytes;
}

} // namespace

TEST(CubicWeights, AreThoseOfTheKernelIn2048ths)
{
    const weight_tables half = tables_for(-0.5), one = tables_for(-1.0);
    const struct { const weight_tables &t; int entry, want[4]; } rows[] = {
        { half, 0, { 0, 2048, 0, 0 } },
        { half, 10, { -82, 1999, 140, -9 } },      // -0.0405, 0.9765, 0.0685, -0.0045
        { half, 30, { -150, 1670, 592, -64 } },    // -0.0735, 0.8155, 0.2895, -0.0315
        { half, 99, { 0, 10, 2047, -10 } },        // -0.0000495, 0.0051985, 0.9997515, -0.0049005
        { one, 0, { 0, 2048, 0, 0 } },
        { one, 20, { -262, 1900, 475, -65 } },     // -0.128, 0.928, 0.232, -0.032
    };
    for (const auto &[t, entry, want] : rows)
        for (int k = 0; k < 4; k++)
            EXPECT_EQ(t.w[k][entry], want[k]) << "entry " << entry << " tap " << k;
}

TEST(CubicWeights, AddUpToOneButForTruncation)
{
    for (const double a : { -2.0, -0.75, -0.5, 0.0, 1.0 }) {
        const weight_tables t = tables_for(a);
        for (int i = 0; i < CUBIC_ENTRIES; i++)
            EXPECT_NEAR(t.w[0][i] + t.w[1][i] + t.w[2][i] + t.w[3][i], 2048, 4) << a << " " << i;
    }
}

TEST(CubicWeights, FollowTheAccumulatedFractions)
{
    for (const double a : { -0.5, -1.7, 0.3, 25.0 }) {
        const weight_tables have = tables_for(a);
        double t = 0, at = 0;
        for (int i = 0; i <= 100; i++) {
            const double s = 1 + t, w = 1 - t, z = 2 - t;
            ASSERT_EQ(have.w[0][i], int((a * s * s * s - 5 * a * s * s + 8 * a * s - 4 * a) * 2048));
            ASSERT_EQ(have.w[1][i], int((at * t * t - (a + 3) * t * t + 1) * 2048));
            ASSERT_EQ(have.w[2][i], int(((a + 2) * w * w * w - (a + 3) * w * w + 1) * 2048));
            ASSERT_EQ(have.w[3][i], int((a * z * z * z - 5 * a * z * z + 8 * a * z - 4 * a) * 2048));
            t += 0.01;
            at += (a + 2) * 0.01;
        }
    }
}

TEST(CubicWeights, AnyParameterGivesSomeTable)
{
    for (const double a : { NOT_A_NUMBER, WITHOUT_END, -WITHOUT_END, 1e300, -1e12 }) {
        const weight_tables t = tables_for(a);
        const picture p = random_picture(90, 90, 5);
        list rows, cols;
        for (int i = 0; i < 100; i++) {
            rows.push_back(20.3 + 0.31 * i);
            cols.push_back(30.7 + 0.17 * i);
        }
        expect_each_pixel(p, rows, cols, t);       // sums wrap, both ways in the same way
    }
    EXPECT_EQ(tables_for(1e300).w[1][50], INT32_MIN);  // a t2 (t - 1)
    EXPECT_EQ(tables_for(-1e300).w[1][50], INT32_MAX);
    EXPECT_EQ(tables_for(NOT_A_NUMBER).w[2][50], 0);
}

TEST(Resample, NearestTruncatesToThePixelThatHoldsThePoint)
{
    EXPECT_EQ(one_pixel(ramp, WARP_NEAREST, 0.5, 1.0), 20);
    EXPECT_EQ(one_pixel(ramp, WARP_NEAREST, 0.99, 1.999), 20);
    EXPECT_EQ(one_pixel(ramp, WARP_NEAREST, -0.0, 0.0), 10);
    EXPECT_EQ(one_pixel(ramp, WARP_NEAREST, -0.001, 0.0), 0);
    EXPECT_EQ(one_pixel(ramp, WARP_NEAREST, 1.0, 0.0), 0);
}

TEST(Resample, BilinearMixesIn4096thsWithoutRounding)
{
    EXPECT_EQ(one_pixel(ramp, WARP_BILINEAR, 0.5, 1.5), 20);
    EXPECT_EQ(one_pixel(ramp, WARP_BILINEAR, 0.5, 2.0), 30);
    EXPECT_EQ(one_pixel(ramp, WARP_BILINEAR, 0.5, 1.59), 21);      // 20 + 20 * 0.09 = 21.8
    const picture square = { 2, 2, { 0, 100, 200, 255 } };
    EXPECT_EQ(one_pixel(square, WARP_BILINEAR, 1.0, 1.0), 138);    // 555 / 4 = 138.75
    const picture white = { 2, 2, { 255, 255, 255, 255 } };
    EXPECT_EQ(one_pixel(white, WARP_BILINEAR, 0.83, 0.61), 255);   // 255 * 2^24 fits
}

TEST(Resample, BilinearRepeatsTheLastRowAndColumn)
{
    EXPECT_EQ(one_pixel(ramp, WARP_BILINEAR, 1.4999, 4.25), 80);
    const picture two = { 2, 1, { 40, 80 } };
    EXPECT_EQ(one_pixel(two, WARP_BILINEAR, 1.0, 1.2), 60);        // last column: only the row's fraction shows
    EXPECT_EQ(one_pixel(two, WARP_BILINEAR, 2.3, 0.6), 80);
    const picture row = { 2, 2, { 1, 2, 100, 200 } };
    EXPECT_EQ(one_pixel(row, WARP_BILINEAR, 2.25, 1.0), 150);      // last row: the column's fraction still applies
}

TEST(Resample, TheLastBoundaryIsOutside)
{
    const picture p = { 2, 2, { 9, 9, 9, 9 } };
    EXPECT_EQ(one_pixel(p, WARP_NEAREST, 2.0, 1.0), 0);
    EXPECT_EQ(one_pixel(p, WARP_NEAREST, 1.0, 2.0), 0);
    for (const int method : { WARP_BILINEAR, WARP_CUBIC }) {       // half a pixel is taken off first
        EXPECT_EQ(one_pixel(p, method, 2.5, 1.0), 0);
        EXPECT_EQ(one_pixel(p, method, 1.0, 2.5), 0);
        EXPECT_NEAR(one_pixel(p, method, 2.4999, 1.0), 9, method == WARP_CUBIC);   // its weights do not quite add up to one
        EXPECT_EQ(one_pixel(p, method, 0.4999, 1.0), 0);
        EXPECT_EQ(one_pixel(p, method, 0.5, 0.5), 9);
    }
}

TEST(Resample, CubicWeighsFourByFour)
{
    // Column 1.5 of the ramp: taps 10 20 40 80 at entry 50, about -1/16 9/16 9/16 -1/16: (-90 + 540) / 16 = 28.1
    const weight_tables t = tables_for(-0.5);
    const int h = 10 * t.w[0][50] + 20 * t.w[1][50] + 40 * t.w[2][50] + 80 * t.w[3][50];
    EXPECT_EQ(one_pixel(ramp, WARP_CUBIC, 0.5, 2.0), h * 2048 >> 22);
    EXPECT_EQ(one_pixel(ramp, WARP_CUBIC, 0.5, 2.0), 28);
    EXPECT_EQ(one_pixel(ramp, WARP_CUBIC, 0.5, 3.5), 80);          // on a centre
    const picture step = { 1, 4, { 0, 0, 255, 255 } };
    EXPECT_EQ(one_pixel(step, WARP_CUBIC, 0.5, 1.0), 0);           // taps 0 0 0 255: below 0, held there
    EXPECT_EQ(one_pixel(step, WARP_CUBIC, 0.5, 2.375), 232);       // taps 0 0 255 255 at entry 87: 255 * (1968 - 100) / 2048 = 232.6
    const picture bright = { 1, 4, { 255, 0, 255, 255 } };
    EXPECT_EQ(one_pixel(bright, WARP_CUBIC, 0.5, 2.5), 255);
}

TEST(Resample, AFractionBelowOneReadsEntry99)
{
    weight_tables t = {};
    t.w[1][0] = 2048;                          // rows: the pixel's own
    t.w[1][99] = 1024;                         // half of the pixel's column
    t.w[1][100] = t.w[0][100] = t.w[2][100] = 77777;
    const picture p = random_picture(6, 6, 3);
    const double just_below = std::nextafter(3.5, 0);
    EXPECT_EQ(one_pixel(p, WARP_CUBIC, 2.5, just_below, t), p.at(2, 2) / 2);
    const picture large = random_picture(80, 80, 4);               // in the middle, where there is a window
    EXPECT_EQ(one_pixel(large, WARP_CUBIC, 40.5, std::nextafter(40.5, 0), t), large.at(40, 39) / 2);
}

TEST(Resample, HalfPixelsAreTakenFromTheArrays)
{
    for (const int method : { 1, 2, 3, 0, 4 }) {
        list rows = { 1.25, -3, 1e9 }, cols = { 2, 0.5, 7 };
        resampled(ramp, method, &rows, &cols, tables_for(-0.5));
        const double shift = method == 2 || method == 3 ? 0.5 : 0;
        EXPECT_EQ(rows, (list{ 1.25 - shift, -3 - shift, 1e9 - shift }));
        EXPECT_EQ(cols, (list{ 2 - shift, 0.5 - shift, 7 - shift }));
    }
}

TEST(Resample, OtherMethodsWriteNothing)
{
    for (const int method : { -1, 0, 4 }) {
        list rows = { 0.5 }, cols = { 0.5 };
        EXPECT_EQ(resampled(ramp, method, &rows, &cols, tables_for(-0.5))[0], UNWRITTEN);
    }
}

TEST(Resample, WildCoordinatesGiveZeroAndEdgesTheirPixels)
{
    const weight_tables t = tables_for(-0.5);
    for (const auto &[rows, cols] : { std::pair{ 1, 1 }, { 1, 9 }, { 9, 1 }, { 2, 2 }, { 3, 4 }, { 17, 23 }, { 70, 80 } }) {
        const picture p = random_picture(rows, cols, unsigned(rows * cols));
        list r, c;
        for (const double row : odd_coordinates(rows))
            for (const double col : odd_coordinates(cols)) {
                r.push_back(row);
                c.push_back(col);
            }
        expect_each_pixel(p, r, c, t);
    }
}

TEST(Resample, RandomRunsOverEverySize)
{
    const weight_tables t = tables_for(-0.5);
    std::mt19937 random(7);
    for_every_size([&](int rows, int cols) {
        const picture p = random_picture(rows, cols, unsigned(rows * 41 + cols));
        list r, c;
        for (int i = 0; i < 40; i++) {
            r.push_back(-1 + (rows + 2) * double(random()) / 4294967296.0);
            c.push_back(-1 + (cols + 2) * double(random()) / 4294967296.0);
        }
        expect_each_pixel(p, r, c, t);
    });
}

TEST(Resample, StraightRunsThroughALargeImage)
{
    const picture p = random_picture(150, 170, 11);
    std::mt19937 random(3);
    const auto number = [&](double low, double high) { return low + (high - low) * double(random()) / 4294967296.0; };
    for (int turn = 0; turn < 60; turn++) {
        const weight_tables t = tables_for(number(-2, 1));
        const double scale = turn % 3 ? 1 : number(0, 5);
        const double dr = number(-scale, scale), dc = number(-scale, scale);
        double row = number(-20, 170), col = number(-20, 190);
        list r, c;
        for (int i = 0; i < 1 + turn * 7; i++, row += dr, col += dc) {
            r.push_back(row);
            c.push_back(col);
        }
        if (turn % 4 == 0)
            r[r.size() / 2] = NOT_A_NUMBER;
        expect_each_pixel(p, r, c, t);
    }
}

TEST(Resample, LerpedRunsAddTheirStepsOneByOne)
{
    list rows(301, 77), cols(301, 77);
    lerp_run(0.1, 7.7, 33.3, -5.5, 300, rows.data(), cols.data());
    const double dr = (33.3 - 0.1) / 299, dc = (-5.5 - 7.7) / 299;
    double r = 0.1, c = 7.7;
    for (size_t i = 0; i < 300; i++, r += dr, c += dc) {
        ASSERT_EQ(rows[i], r);
        ASSERT_EQ(cols[i], c);
    }
    EXPECT_EQ(rows[300], 77);
    lerp_run(4, 5, 9, 9, 1, rows.data(), cols.data());             // one step of no finite length, not taken
    EXPECT_EQ(rows[0], 4);
    EXPECT_EQ(cols[0], 5);
    EXPECT_NE(rows[1], 4);
}

TEST(NearestRun, CountsFromAboveMinusOneAsInside)
{
    const plane in = { 11, 22 };
    const std::vector<int64_t> starts = { 0 };
    plane out(7, UNWRITTEN);
    nearest_run(in.data(), out.data(), 1, 2, 7, -0.5, -1.5, -0.5, 4.5, starts.data());     // columns -1.5, -0.5, 0.5, 1.5, ...
    EXPECT_EQ(out, (plane{ 0, 11, 11, 22, 0, 0, 0 }));
    nearest_run(in.data(), out.data(), 1, 2, 7, -1.0, -1.5, -1.0, 4.5, starts.data());
    EXPECT_EQ(out, plane(7, 0));
    list rows = { -0.5 }, cols = { 0.5 };                          // unlike here
    EXPECT_EQ(one_pixel(ramp, WARP_NEAREST, -0.5, 0.5), 0);
}

TEST(NearestRun, IsTheNearestOfTheLerpedRun)
{
    const picture p = random_picture(150, 170, 12);
    const std::vector<int64_t> starts = starts_of(p.rows, p.cols);
    const double ends[][4] = { { -10, -5, 160, 175 }, { 140, 3, 2, 150 }, { 20.5, 0.25, 20.5, 169.5 }, { 0, 0, WITHOUT_END, 100 },
                               { NOT_A_NUMBER, 0, 0, 0 }, { -1e300, 5, 1e300, 5 } };
    for (const auto &[rs, cs, re, ce] : ends)
        for (const int count : { 1, 2, 31, 32, 33, 700 }) {
            list r(static_cast<size_t>(count)), c(static_cast<size_t>(count));
            plane out(size_t(count) + 1, UNWRITTEN);
            lerp_run(rs, cs, re, ce, count, r.data(), c.data());
            nearest_run(p.pixels.data(), out.data(), p.rows, p.cols, count, rs, cs, re, ce, starts.data());
            for (size_t i = 0; i < size_t(count); i++)
                ASSERT_EQ(out[i], pixel_truncated(p, r[i], c[i]));
            EXPECT_EQ(out[size_t(count)], UNWRITTEN);
        }
}

TEST(ResampleBits, LowBitsComeFirstAndOthersStay)
{
    const plane in = { 0x05 };                                     // 1 x 3: 1 0 1
    const std::vector<int64_t> starts = { 0 };
    const list rows = { 0.5, 0.5, 0.5 }, cols = { 2.5, 1.5, 0.5 };
    plane out = { 0xFF, 0xFF };
    resample_bits(in.data(), out.data(), 1, 3, 0, 2, rows.data(), cols.data(), 2, starts.data());  // bits 6, 7, 8
    EXPECT_EQ(out, (plane{ 0x7F, 0xFF }));                         // 1 0 1
    out = { 0, 0 };
    resample_bits(in.data(), out.data(), 1, 3, 0, 2, rows.data(), cols.data(), 2, starts.data());
    EXPECT_EQ(out, (plane{ 0x40, 0x01 }));
}

TEST(ResampleBits, RowsAreAsWideAsTheRun)
{
    const plane in = { 0xFF };
    const std::vector<int64_t> starts = { 0 };
    const list rows = { 0, 0 }, cols = { 0, 1 };
    plane out = { 0, 0 };
    resample_bits(in.data(), out.data(), 1, 8, 5, 6, rows.data(), cols.data(), 3, starts.data());  // 3 * 2 + 5 and 6
    EXPECT_EQ(out, (plane{ 0x00, 0x18 }));
}

TEST(ResampleBits, EverywhereAsPixelByPixel)
{
    for (const auto &[rows, cols] : { std::pair{ 1, 1 }, { 3, 5 }, { 17, 23 } }) {
        picture p = random_picture(rows, cols, 9);
        for (uint8_t &v : p.pixels)
            v &= 1;
        const plane in = packed(p.pixels);
        const std::vector<int64_t> starts = starts_of(rows, cols);
        list r, c;
        for (const double row : odd_coordinates(rows))
            for (const double col : odd_coordinates(cols)) {
                r.push_back(row);
                c.push_back(col);
            }
        plane out((r.size() + 7) / 8, 0xFF);
        resample_bits(in.data(), out.data(), rows, cols, 0, int(r.size()) - 1, r.data(), c.data(), 0, starts.data());
        for (size_t i = 0; i < r.size(); i++)
            ASSERT_EQ(out[i / 8] >> i % 8 & 1, pixel_truncated(p, r[i], c[i])) << r[i] << " " << c[i];
    }
}

// A sparse image: only the pages that are touched are there.
TEST(Resample, ImagesAboveTwoToTheThirtyOneBytes)
{
    constexpr int ROWS = 70000, COLS = 32768;
    constexpr size_t BYTES = size_t{ROWS} * COLS;
    uint8_t *const in = (uint8_t *)mmap(nullptr, BYTES, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE((void *)in, MAP_FAILED);
    const std::vector<int64_t> starts = starts_of(ROWS, COLS);
    const weight_tables t = tables_for(-0.5);
    memset(in + size_t{69990} * COLS + 32000, 123, 300);
    for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {
        list rows(40, 69990.5), cols;
        for (int i = 0; i < 40; i++)
            cols.push_back(32100.5 + i);
        plane out(40);
        resample_row(in, out.data(), ROWS, COLS, 40, method, rows.data(), cols.data(), starts.data(), t.w[0], t.w[1], t.w[2], t.w[3]);
        EXPECT_EQ(out, plane(40, 123)) << method;
    }
    munmap(in, BYTES);
}
