#include "filters/filter_by_pixel.h"

#include "filters/neighbourhood.h"
#include "mem.h"

namespace {

const level_map maps[] = { identity_map(), random_map(17, 0, 255), random_map(18, -300, 600), random_map(19, -32768, 32767) };

} // namespace

TEST(Sobel, EqualsTheLargerGradientAtEverySize)
{
    for (const level_map &map : maps)
        for_every_size([&](int rows, int cols) {
            const plane in = random_plane(rows, cols, unsigned(rows * 47 + cols));
            plane out(in.size(), UNWRITTEN);
            const int result = sobel_l(in.data(), out.data(), map.data(), rows, cols);
            ASSERT_EQ(result, rows < 3 || cols < 3 ? -102 : 0);
            ASSERT_EQ(out, result < 0 ? plane(in.size(), UNWRITTEN) : sobel_by_pixel(in, map, rows, cols)) << rows << " x " << cols;
        });
}

TEST(Sobel, AFullStepIsTheHighestLevel)
{
    // Columns of 0 and 255: gx = 4 * 255, (1020 + 2) >> 2 = 255.
    plane in(16), out(16);
    for (size_t i = 0; i < 16; i++)
        in[i] = i % 4 < 2 ? 0 : 255;
    EXPECT_EQ(sobel_l(in.data(), out.data(), maps[0].data(), 4, 4), 0);
    EXPECT_EQ(out, plane(16, 255));
}

TEST(Roberts, EqualsTheLargerDiagonalAtEverySize)
{
    for (const level_map &map : maps)
        for_every_size([&](int rows, int cols) {
            const plane in = random_plane(rows, cols, unsigned(rows * 53 + cols));
            plane out(in.size(), UNWRITTEN);
            const int result = roberts_l(in.data(), out.data(), map.data(), rows, cols);
            ASSERT_EQ(result, rows < 2 || cols < 2 ? -102 : 0);
            ASSERT_EQ(out, result < 0 ? plane(in.size(), UNWRITTEN) : roberts_by_pixel(in, map, rows, cols)) << rows << " x " << cols;
        });
}

TEST(Roberts, TheBottomRowIsComputed)
{
    plane in(16, 20), out(16);
    in[3 * 4 + 2] = 120;
    EXPECT_EQ(roberts_l(in.data(), out.data(), maps[0].data(), 4, 4), 0);
    const plane want = {
        0, 0, 0,   0,
        0, 0, 0,   0,
        0, 0, 0,   0,
        0, 0, 100, 100,                        // |20 - 120| on the one diagonal, then on the other
    };
    EXPECT_EQ(out, want);
}

TEST(CrossFilters, AFlatImageHasNoEdges)
{
    const plane in(30, 200);
    plane out(30, UNWRITTEN);
    EXPECT_EQ(sobel_l(in.data(), out.data(), maps[0].data(), 5, 6), 0);
    EXPECT_EQ(out, plane(30, 0));
    out.assign(30, UNWRITTEN);
    EXPECT_EQ(roberts_l(in.data(), out.data(), maps[0].data(), 5, 6), 0);
    EXPECT_EQ(out, plane(30, 0));
}

TEST(CrossFilters, BytesAndWideSamplesGiveTheSame)
{
    const plane in = random_plane(29, 333, 6, 254);
    level_map wide = identity_map();
    wide[255] = 256;
    plane a(in.size()), b(in.size());
    sobel_l(in.data(), a.data(), maps[0].data(), 29, 333);
    sobel_l(in.data(), b.data(), wide.data(), 29, 333);
    EXPECT_EQ(a, b);
    roberts_l(in.data(), a.data(), maps[0].data(), 29, 333);
    roberts_l(in.data(), b.data(), wide.data(), 29, 333);
    EXPECT_EQ(a, b);
}

TEST(CrossFilters, MemoryThatFailsIsTold)
{
    const plane in = random_plane(5, 5, 1);
    plane out(25, UNWRITTEN);
    ::testing::internal::CaptureStderr();
    mem_fail_countdown = 0;
    EXPECT_EQ(sobel_l(in.data(), out.data(), maps[0].data(), 5, 5), -103);
    mem_fail_countdown = 0;
    EXPECT_EQ(roberts_l(in.data(), out.data(), maps[0].data(), 5, 5), -103);
    mem_fail_countdown = -1;
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Insufficient memory\nInsufficient memory\n");
    EXPECT_EQ(out, plane(25, UNWRITTEN));
}
