#include "filters/random_image.h"

#include "filters/orthogonal.h"
#include "mem.h"

namespace {

void expect_transposed(int rows, int cols)
{
    const plane in = random_plane(rows, cols, unsigned(rows + 7 * cols));
    plane out(in.size(), UNWRITTEN), want(in.size());
    for (int r = 0; r < rows; r++)
        for (int c = 0; c < cols; c++)
            want[size_t(c) * size_t(rows) + size_t(r)] = in[size_t(r) * size_t(cols) + size_t(c)];
    ASSERT_EQ(transpose_band(in.data(), out.data(), rows, cols), 0);
    ASSERT_TRUE(out == want) << rows << " x " << cols;
}

} // namespace

TEST(Orthogonal, EverySizeIsFlippedMirroredAndTransposed)
{
    for_every_size([](int rows, int cols) {
        const plane in = random_plane(rows, cols, unsigned(rows * 71 + cols));
        plane flipped(in.size(), UNWRITTEN), mirrored(in.size(), UNWRITTEN);
        ASSERT_EQ(flip_band(in.data(), flipped.data(), rows, cols), 0);
        ASSERT_EQ(mirror_band(in.data(), mirrored.data(), rows, cols), 0);
        for (int r = 0; r < rows; r++)
            for (int c = 0; c < cols; c++) {
                ASSERT_EQ(flipped[size_t(r * cols + c)], in[size_t((rows - 1 - r) * cols + c)]);
                ASSERT_EQ(mirrored[size_t(r * cols + c)], in[size_t(r * cols + cols - 1 - c)]);
            }
        expect_transposed(rows, cols);
    });
}

TEST(Orthogonal, LargePlanesAreTransposedInTiles)
{
    expect_transposed(1025, 1024);             // a last row block of one row
    expect_transposed(1024, 1025);             // a last column block of one column
    expect_transposed(1500, 2100);
    expect_transposed(3, 400000);
    expect_transposed(400000, 3);
    expect_transposed(1024, 1024);             // the largest in one pass
}

TEST(Orthogonal, WholeLinesOfMemoryAreTransposedAsStrips)
{
    expect_transposed(1088, 1500);             // 17 strips, the last columns apart
    expect_transposed(64, 20003);
    expect_transposed(4096, 1024);
    expect_transposed(70016, 17);
}

TEST(Orthogonal, LargePlanesAreFlippedAndMirrored)
{
    // Rows begin at every place of a memory line in turn.
    const int rows = 2050, cols = 2099;
    const plane in = random_plane(rows, cols, 8);
    plane flipped(in.size(), UNWRITTEN), mirrored(in.size(), UNWRITTEN), want(in.size());
    for (int r = 0; r < rows; r++)
        std::copy_n(in.begin() + (rows - 1 - r) * cols, cols, want.begin() + r * cols);
    ASSERT_EQ(flip_band(in.data(), flipped.data(), rows, cols), 0);
    EXPECT_TRUE(flipped == want);
    for (int r = 0; r < rows; r++)
        std::reverse_copy(in.begin() + r * cols, in.begin() + (r + 1) * cols, want.begin() + r * cols);
    ASSERT_EQ(mirror_band(in.data(), mirrored.data(), rows, cols), 0);
    EXPECT_TRUE(mirrored == want);
}

TEST(Orthogonal, TilesNeedTwoBlocksOfMemory)
{
    const plane in = random_plane(1025, 1024, 1);
    plane out(in.size());
    mem_fail_countdown = 0;
    EXPECT_EQ(transpose_band(in.data(), out.data(), 1025, 1024), -1);
    mem_fail_countdown = 1;
    EXPECT_EQ(transpose_band(in.data(), out.data(), 1025, 1024), -2);
    mem_fail_countdown = 0;
    EXPECT_EQ(transpose_band(in.data(), out.data(), 1024, 1024), 0);
    mem_fail_countdown = -1;
}

TEST(Orthogonal, BlocksLieInLargerPlanes)
{
    // 5 x 3 of an 8 x 9 plane into a 4 x 7 plane.
    const plane in = random_plane(8, 9, 4);
    plane out(28, UNWRITTEN);
    transpose_block(in.data() + 9 + 2, 9, out.data() + 1, 7, 5, 3);
    for (int r = 0; r < 4; r++)
        for (int c = 0; c < 7; c++) {
            const bool inside = r < 3 && c >= 1 && c < 6;
            EXPECT_EQ(out[size_t(r * 7 + c)], inside ? in[size_t(c * 9 + 2 + r)] : UNWRITTEN);
        }
}
