#include "filters/filter_by_pixel.h"

#include "filters/neighbourhood.h"
#include "mem.h"

namespace {

void expect_mean(int rows, int cols, int h, int w, unsigned seed)
{
    const plane in = random_plane(rows, cols, seed);
    plane out(in.size(), UNWRITTEN);
    const int result = smooth_filter(in.data(), out.data(), rows, cols, h, w);
    ASSERT_EQ(result, h > rows || w > cols ? -102 : 0);
    ASSERT_EQ(out, result < 0 ? plane(in.size(), UNWRITTEN) : mean_by_pixel(in, rows, cols, h, w)) << rows << " x " << cols << ", " << h << " x " << w;
}

} // namespace

TEST(SmoothFilter, EqualsTheMeanAtEverySizeAndKernel)
{
    for_every_size([](int rows, int cols) {
        for (int k = 1; k <= 9; k++)
            expect_mean(rows, cols, k, k, unsigned(rows * 59 + cols));
    });
}

TEST(SmoothFilter, TakesKernelsOfAnyShape)
{
    for (int h = 1; h <= 31; h += 3)
        for (int w = 1; w <= 31; w += 2)
            expect_mean(31, 33, h, w, unsigned(h * 61 + w));
}

TEST(SmoothFilter, EveryTotalIsRoundedAsIntegersAre)
{
    // One row of the image a kernel high: the totals run up in steps of one.
    for (int k = 2; k <= 9; k++) {
        const int cols = 256 * k * k;
        plane in(size_t(k) * size_t(cols), 0), out(in.size());
        int level = 0, place = 0;
        for (int c = 0; c < cols; c++) {
            for (int i = 0; i < k; i++)
                in[size_t(i * cols + c)] = uint8_t(level);
            in[size_t(place % k * cols + c)] = uint8_t(std::min(level + 1, 255));
            place++;
            level = std::min(c / (k * k), 255);
        }
        ASSERT_EQ(smooth_filter(in.data(), out.data(), k, cols, k, k), 0);
        ASSERT_EQ(out, mean_by_pixel(in, k, cols, k, k)) << k;
    }
}

TEST(SmoothFilter, TwoByTwoComputesOnePixelThatEndsUpEverywhere)
{
    const plane in = { 1, 2, 3, 5 };
    plane out(4);
    EXPECT_EQ(smooth_filter(in.data(), out.data(), 2, 2, 2, 2), 0);
    EXPECT_EQ(out, plane(4, 3));               // (11 + 2) / 4
}

TEST(SmoothFilter, AnEvenKernelWritesBelowAndToTheRightOfItsCentre)
{
    plane in(16, 0), out(16);
    in[5] = 100;                               // row 1, column 1: in the windows at (0,0), (0,1), (1,0), (1,1)
    EXPECT_EQ(smooth_filter(in.data(), out.data(), 4, 4, 2, 2), 0);
    const plane want = {
        25, 25, 25, 0,
        25, 25, 25, 0,
        25, 25, 25, 0,
        0, 0, 0, 0,
    };
    EXPECT_EQ(out, want);
}

TEST(SmoothFilter, AKernelWiderThanTheImageIsRefused)
{
    const plane in = random_plane(20, 8, 1);
    plane out(in.size(), UNWRITTEN);
    EXPECT_EQ(smooth_filter(in.data(), out.data(), 20, 8, 9, 9), -102);
    EXPECT_EQ(smooth_filter(in.data(), out.data(), 20, 8, 0, 3), -101);
    EXPECT_EQ(smooth_filter(in.data(), out.data(), 20, 8, 3, 0), -101);
    EXPECT_EQ(out, plane(in.size(), UNWRITTEN));
}

TEST(SmoothFilter, MemoryThatFailsIsTold)
{
    const plane in = random_plane(5, 5, 1);
    plane out(25, UNWRITTEN);
    ::testing::internal::CaptureStderr();
    mem_fail_countdown = 0;
    EXPECT_EQ(smooth_filter(in.data(), out.data(), 5, 5, 3, 3), -103);
    mem_fail_countdown = 1;
    EXPECT_EQ(smooth_filter(in.data(), out.data(), 5, 5, 3, 3), -104);
    mem_fail_countdown = -1;
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Insufficient memory\nInsufficient memory\n");
    EXPECT_EQ(out, plane(25, UNWRITTEN));
}
