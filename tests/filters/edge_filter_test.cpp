#include "filters/filter_by_pixel.h"

#include "filters/neighbourhood.h"
#include "mem.h"

namespace {

std::vector<level_map> maps_of_all_kinds()
{
    return { identity_map(), random_map(7, 0, 255), random_map(8, -300, 600), random_map(9, -32768, 32767) };
}

} // namespace

TEST(EdgeFilter, EqualsTheSumOfProductsAtEverySizeAndAngle)
{
    for (const level_map &map : maps_of_all_kinds())
        for_every_size([&](int rows, int cols) {
            const plane in = random_plane(rows, cols, unsigned(rows * 41 + cols));
            for (int k = 0; k <= 8; k++) {
                plane out(in.size(), UNWRITTEN);
                const int result = edge_filter(in.data(), out.data(), map.data(), rows, cols, 45 * k, edge_base_kernel);
                if (rows < 3 || cols < 3) {
                    ASSERT_EQ(result, -102);
                    ASSERT_EQ(out, plane(in.size(), UNWRITTEN));
                } else {
                    ASSERT_EQ(result, 0);
                    ASSERT_EQ(out, edge_by_pixel(in, map, rows, cols, edge_drawn[k])) << rows << " x " << cols << " k " << k;
                }
            }
        });
}

TEST(EdgeFilter, RunsInBytesAndInWideSamplesGiveTheSame)
{
    // An entry that no pixel has makes the table wide.
    const plane in = random_plane(37, 301, 5, 254);
    level_map wide = identity_map();
    wide[255] = -1;
    const level_map bytes = identity_map();
    for (int k = 0; k < 8; k++) {
        plane a(in.size()), b(in.size());
        edge_filter(in.data(), a.data(), bytes.data(), 37, 301, 45 * k, edge_base_kernel);
        edge_filter(in.data(), b.data(), wide.data(), 37, 301, 45 * k, edge_base_kernel);
        EXPECT_EQ(a, b) << k;
    }
    for (int weight = 4; weight <= 12; weight++) {
        plane a(in.size()), b(in.size());
        enhance_filter(in.data(), a.data(), bytes.data(), 37, 301, weight);
        enhance_filter(in.data(), b.data(), wide.data(), 37, 301, weight);
        EXPECT_EQ(a, b) << weight;
    }
}

TEST(EdgeFilter, AnAngleGoesToTheNearestEighth)
{
    const plane in = random_plane(9, 9, 1);
    const level_map map = identity_map();
    const auto filtered = [&](int angle) {
        plane out(in.size());
        EXPECT_EQ(edge_filter(in.data(), out.data(), map.data(), 9, 9, angle, edge_base_kernel), 0) << angle;
        return out;
    };
    EXPECT_EQ(filtered(22), filtered(0));      // 22 / 45 + 0.5 = 0.99
    EXPECT_EQ(filtered(23), filtered(45));     // 23 / 45 + 0.5 = 1.01
    EXPECT_EQ(filtered(382), filtered(360));   // 8.99
    EXPECT_EQ(filtered(360), filtered(0));
}

TEST(EdgeFilter, AnAngleBeyondTheLastEighthIsRefused)
{
    const plane in = random_plane(5, 5, 1);
    plane out(25, UNWRITTEN);
    const level_map map = identity_map();
    EXPECT_EQ(edge_filter(in.data(), out.data(), map.data(), 5, 5, 383, edge_base_kernel), -2);   // 9.01
    EXPECT_EQ(edge_filter(in.data(), out.data(), map.data(), 5, 5, -90, edge_base_kernel), -2);   // -1.5
    EXPECT_EQ(out, plane(25, UNWRITTEN));
}

TEST(EdgeFilter, AnotherBaseKernelIsTurnedTheSameWay)
{
    // Around the centre, clockwise: 1 2 3 6 9 8 7 4. A quarter turn brings the left column to the top row.
    const int32_t base[9] = { 1, 2, 3, 4, 5, 6, 7, 8, 9 };
    const int quarter[9] = { 7, 4, 1, 8, 5, 2, 9, 6, 3 };
    const plane in = random_plane(6, 7, 3, 9);
    const level_map map = identity_map();
    plane out(in.size());
    EXPECT_EQ(edge_filter(in.data(), out.data(), map.data(), 6, 7, 90, base), 0);
    EXPECT_EQ(out, edge_by_pixel(in, map, 6, 7, quarter));
}

TEST(EdgeFilter, AFlatImageHasNoEdges)
{
    const plane in(8 * 8, 77);
    plane out(in.size(), UNWRITTEN);
    EXPECT_EQ(edge_filter(in.data(), out.data(), identity_map().data(), 8, 8, 0, edge_base_kernel), 0);
    EXPECT_EQ(out, plane(64, 0));
}

TEST(EdgeFilter, OnlyTheRisingSideOfAnEdgeIsSeen)
{
    // Rows 0 to 2 bright, 3 to 5 dark: at angle 0 the sum is 3 * (row above - row below).
    plane in(36, 10);
    std::fill(in.begin(), in.begin() + 18, uint8_t{50});
    plane out(36);
    const level_map map = identity_map();
    edge_filter(in.data(), out.data(), map.data(), 6, 6, 0, edge_base_kernel);
    EXPECT_EQ(out[2 * 6 + 2], 120);            // 3 * (50 - 10)
    edge_filter(in.data(), out.data(), map.data(), 6, 6, 180, edge_base_kernel);
    EXPECT_EQ(out[2 * 6 + 2], 0);              // -120
}

TEST(EdgeFilter, MemoryThatFailsIsToldAndNothingIsWritten)
{
    const plane in = random_plane(5, 5, 1);
    plane out(25, UNWRITTEN);
    const level_map map = identity_map();
    ::testing::internal::CaptureStderr();
    mem_fail_countdown = 0;
    EXPECT_EQ(edge_filter(in.data(), out.data(), map.data(), 5, 5, 0, edge_base_kernel), -103);
    mem_fail_countdown = 0;
    EXPECT_EQ(enhance_filter(in.data(), out.data(), map.data(), 5, 5, 8), -103);
    mem_fail_countdown = 1;
    EXPECT_EQ(enhance_filter(in.data(), out.data(), map.data(), 5, 5, 8), -104);
    mem_fail_countdown = -1;
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Insufficient memory\nInsufficient memory\nInsufficient memory\n");
    EXPECT_EQ(out, plane(25, UNWRITTEN));
}

TEST(EnhanceFilter, EqualsTheWeightedSumAtEverySizeAndWeight)
{
    for (const level_map &map : maps_of_all_kinds())
        for_every_size([&](int rows, int cols) {
            const plane in = random_plane(rows, cols, unsigned(rows * 43 + cols));
            for (int weight = 4; weight <= 12; weight++) {
                plane out(in.size(), UNWRITTEN);
                const int result = enhance_filter(in.data(), out.data(), map.data(), rows, cols, weight);
                if (rows < 3 || cols < 3) {
                    ASSERT_EQ(result, -102);
                    ASSERT_EQ(out, plane(in.size(), UNWRITTEN));
                } else {
                    ASSERT_EQ(result, 0);
                    ASSERT_EQ(out, enhance_by_pixel(in, map, rows, cols, weight)) << rows << " x " << cols << " weight " << weight;
                }
            }
        });
}

TEST(EnhanceFilter, EverySumThatBytesCanHaveIsDividedAsIntegersAre)
{
    // The centre c against neighbours n0 to n3 that make every difference: c and one neighbour run over all levels.
    const level_map map = identity_map();
    for (int weight = 4; weight <= 12; weight++)
        for (int c = 0; c < 256; c++) {
            plane in(size_t(3 * 512), 0);
            for (int i = 0; i < 256; i++) {
                in[size_t(512 + 2 * i)] = uint8_t(c);
                in[size_t(2 * i)] = uint8_t(i);
            }
            plane out(in.size());
            enhance_filter(in.data(), out.data(), map.data(), 3, 512, weight);
            ASSERT_EQ(out, enhance_by_pixel(in, map, 3, 512, weight)) << weight << " " << c;
        }
}

TEST(EnhanceFilter, AWeightOfEightKeepsAFlatArea)
{
    const plane in(25, 90);
    plane out(25);
    EXPECT_EQ(enhance_filter(in.data(), out.data(), identity_map().data(), 5, 5, 8), 0);
    EXPECT_EQ(out, in);                        // (8 * 90 - 4 * 90) / 4
}

TEST(EnhanceFilter, AWeightOfFourIsTheBareLaplacian)
{
    plane in(9, 10), out(9);
    in[4] = 30;
    EXPECT_EQ(enhance_filter(in.data(), out.data(), identity_map().data(), 3, 3, 4), 0);
    EXPECT_EQ(out, plane(9, 80));              // (4 * 30 - 4 * 10) / 1, and the borders take it
    in.assign(9, 200);
    EXPECT_EQ(enhance_filter(in.data(), out.data(), identity_map().data(), 3, 3, 4), 0);
    EXPECT_EQ(out, plane(9, 0));
}
