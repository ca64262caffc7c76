#include "display/vmap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "display/dither.h"
#include "fake_screen.h"
#include "mem.h"

class Vmap : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(vmap_init()); }
    void TearDown() override { vmap_free(); }
};

// Mean colour of a 4 by 4 cell.
static void mixed(int r, int g, int b, double (&mean)[3])
{
    mean[0] = mean[1] = mean[2] = 0;
    for (int cell = 0; cell < 16; cell++) {
        const uint32_t c = standard_colours[vmap_slot(vmap_entry(r, g, b), cell)];
        mean[0] += (c >> 16) / 16.0, mean[1] += (c >> 8 & 255) / 16.0, mean[2] += (c & 255) / 16.0;
    }
}

TEST_F(Vmap, TheStandardColoursShowAsThemselves)
{
    for (const uint32_t colour : { 0x000000u, 0xFFFFFFu, 0xFF0000u, 0x00FF00u, 0x0000FFu, 0x00FFFFu, 0xFF00FFu, 0xFFFF00u })
        for (int cell = 0; cell < 16; cell++) {
            const int slot = vmap_slot(vmap_entry(int(colour >> 16), int(colour >> 8 & 255), int(colour & 255)), cell);
            EXPECT_EQ(standard_colours[slot], colour);
        }
}

TEST_F(Vmap, CellsAverageToTheColour)
{
    double worst = 0, sum = 0;
    int count = 0;
    for (int r = 0; r < 256; r += 17)
        for (int g = 0; g < 256; g += 17)
            for (int b = 0; b < 256; b += 17, count++) {
                double mean[3];
                mixed(r, g, b, mean);
                const double off = std::hypot(mean[0] - r, mean[1] - g, mean[2] - b);
                worst = std::max(worst, off);
                sum += off;
            }
    EXPECT_LT(worst, 40);              // a sixteenth of the way between two far colours, and the cut to 5 bits
    EXPECT_LT(sum / count, 14);
}

TEST_F(Vmap, GreysAreMixedOfGreysAlone)
{
    for (int v = 0; v < 256; v += 5)
        for (int cell = 0; cell < 16; cell++) {
            const uint32_t c = standard_colours[vmap_slot(vmap_entry(v, v, v), cell)];
            EXPECT_TRUE((c >> 16) == (c >> 8 & 255) && (c & 255) == (c >> 8 & 255)) << v;
        }
}

TEST_F(Vmap, EveryGroupIsOfFourSlotsAndSomeColourUsesIt)
{
    std::set<int> used;
    for (int key = 0; key < 32768; key++)
        used.insert(vmap_entry_of_key(key) / 969);
    EXPECT_EQ(used.size(), size_t{VMAP_GROUPS});
    for (const auto &group : vmap_groups)
        EXPECT_EQ(std::set<int>(group, group + 4).size(), 4u);
}

TEST(VmapMemory, WithoutMemoryTheMapStaysOutOfUse)
{
    fake_screen_reset(1, 1, false);
    vmap_free();
    mem_fail_countdown = 0;
    EXPECT_FALSE(vmap_init());
    EXPECT_EQ(screen.reports, "2 init_vmap: out of memory\n");
    vmap_use(1);
    EXPECT_FALSE(vmap_in_use());
}
