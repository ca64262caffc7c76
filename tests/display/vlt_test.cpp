// What vlt_program writes on every kind of display.
#include "display/vlt.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "display/dither.h"
#include "display/paint.h"
#include "display/vmap.h"
#include "fake_screen.h"
#include "mem.h"
#include "shell/session.h"

constexpr int W = 5;

class Vlt : public testing::Test {
protected:
    void SetUp() override
    {
        session_reset();
        vlt_init();
        paint_reset();
        fake_screen_reset(4, 4, false);
        for (int i = 0; i < 256; i++)
            lut[i] = int16_t(255 - i);
        bands[0].alloc_bytes = 1;
        bands[0].lut = lut;
        for (int n = 1; n < 3; n++) {
            bands[n].alloc_bytes = 1;
            bands[n].lut = straight;
        }
        for (int i = 0; i < 256; i++)
            straight[i] = int16_t(i);
        windows[W].flags = WIN_DISPLAYED | WIN_PICTURE;
        windows[W].red_band = windows[W].green_band = windows[W].blue_band = 0;
        display_mode &= ~uint32_t{COLOR | STATIC_VLT};
        gamma_value = 1.0;             // gamma_table is the identity
    }
    void TearDown() override { paint_reset(); }

    static void display(int planes, uint32_t mode)
    {
        num_planes = start_planes = planes;
        display_mode |= mode | (planes >= 8 ? uint32_t{IFB} : 0);
    }

    static void one_picture()
    {
        active_window = W;
        picture_count = 1;
    }

    int16_t lut[256], straight[256];
};

static uint32_t table_colour(int slot)
{
    const vlt_entry &e = screen.table[slot];
    return uint32_t(e.red >> 8 << 16 | e.green >> 8 << 8 | e.blue >> 8);
}

static void expect_named_colours()
{
    for (int i = 0; i < 15; i++)
        EXPECT_EQ(table_colour(i), named_colours[i]) << "slot " << i;
}

// --- the first table ---------------------------------------------------------------------------------------------

TEST_F(Vlt, TheFirstTableOnEightPlanesHas256ColoursAndNoNamedOnes)
{
    display(8, COLOR);
    vlt_program();
    ASSERT_EQ(screen.written.size(), 256u);    // 8 reds by 8 greens by 4 blues
    EXPECT_EQ(reserved_count, 15);
    EXPECT_EQ(num_planes, 8);
    // Entry 64 b/2 + 8 g + r: levels 255 i / 7, blue at levels 0, 2, 4, 6.
    EXPECT_EQ(table_colour(1), 36u << 16);     // r = 1: 255 / 7 = 36
    EXPECT_EQ(table_colour(8), 36u << 8);
    EXPECT_EQ(table_colour(64), 72u);          // b = 2: 510 / 7 = 72
    EXPECT_EQ(table_colour(255), 0xFFFFDAu);   // b = 6: 1530 / 7 = 218
    EXPECT_EQ(colour_map[1 * 64 + 2 * 8 + 4], 2 * 64 + 2 * 8 + 1);
    EXPECT_EQ(colour_map[1 * 64 + 2 * 8 + 3], 0);   // an odd blue level has no slot

    vlt_program();                             // no other table is like it
    EXPECT_EQ(screen.written.size(), 231u);
}

TEST_F(Vlt, ReservedCountBecomes15OnEveryWayOut)
{
    const struct { int planes; uint32_t mode; } ways[] = { { 4, COLOR }, { 4, 0 }, { 5, COLOR }, { 5, 0 }, { 8, 0 }, { 9, COLOR }, { 9, 0 } };
    for (const auto &way : ways) {
        SCOPED_TRACE(way.planes);
        SetUp();
        display(way.planes, way.mode);
        vlt_program();
        EXPECT_EQ(reserved_count, 15);
    }
    SetUp();
    display(8, TC);
    one_picture();
    vlt_program();
    EXPECT_EQ(reserved_count, 15);
    vlt_forget();
    EXPECT_EQ(reserved_count, 0);
}

// --- the colour cube ---------------------------------------------------------------------------------------------

TEST_F(Vlt, EightPlanesHoldSixLevelsAndTheNamedColoursAtTheirSlots)
{
    display(8, COLOR);
    vlt_program();
    vlt_program();
    ASSERT_EQ(screen.written.size(), 231u);    // 216 and 15
    expect_named_colours();
    EXPECT_EQ(table_colour(230), 0xFFFFFFu);   // the white of the cube stands last
    EXPECT_EQ(colour_map[5 * 64 + 5 * 8 + 5], 230);
    // Every colour of the cube is found through its key: levels 0, 51, ... 255.
    for (int r = 0; r < 6; r++)
        for (int g = 0; g < 6; g++)
            for (int b = 0; b < 6; b++)
                EXPECT_EQ(table_colour(colour_map[r * 64 + g * 8 + b]), uint32_t(51 * r << 16 | 51 * g << 8 | 51 * b)) << r << g << b;
}

TEST_F(Vlt, FewerPlanesOnAnEightPlaneDisplayTakeASmallerCube)
{
    display(8, COLOR);
    vlt_program();
    const struct { int planes; size_t entries; } cases[] = { { 7, 125 + 15 }, { 6, 64 + 15 }, { 5, 27 + 15 }, { 4, 8 + 15 }, { 3, 8 + 15 } };
    for (const auto &c : cases) {
        if (c.planes == 4)
            continue;                          // the standard colours, below
        num_planes = c.planes;
        vlt_program();
        EXPECT_EQ(screen.written.size(), c.entries) << c.planes;
        expect_named_colours();
    }
}

TEST_F(Vlt, NinePlanesHoldEightLevelsAndNothingElse)
{
    display(9, COLOR);
    vlt_program();
    vlt_program();
    ASSERT_EQ(screen.written.size(), 512u);
    EXPECT_EQ(table_colour(511), 0xFFFFFFu);
    // No room for extra colours: each named slot has the nearest cube colour, levels 0 36 72 109 145 182 218 255.
    EXPECT_EQ(table_colour(4), 0xFFFF00u);
    EXPECT_EQ(table_colour(8), 0xFF0000u);
    EXPECT_EQ(table_colour(2), 0x919191u);     // 888888 = 136: 145 is nearer than 109
    // EEEEEE = 238: white (3 * 17 squared) stays last; next come two 255 and one 218, of which red 218 is the latest entry.
    EXPECT_EQ(table_colour(1), 0xDAFFFFu);
}

TEST_F(Vlt, FivePlanesHoldThreeLevelsAndFiveNamedColours)
{
    display(5, COLOR);
    vlt_program();
    EXPECT_EQ(screen.written.size(), 27u);     // the first table has no named colours
    vlt_program();
    ASSERT_EQ(screen.written.size(), 32u);     // 32 - 27 = 5 more: 3, 7, 1, 2, 6
    EXPECT_EQ(table_colour(31), 0xFFFFFFu);
    EXPECT_EQ(table_colour(1), 0xEEEEEEu);
    EXPECT_EQ(table_colour(2), 0x888888u);
    EXPECT_EQ(table_colour(6), 0x555555u);
    EXPECT_EQ(table_colour(8), 0xFF0000u);
}

TEST_F(Vlt, ABandThatIsOffIsMissingFromTheCube)
{
    display(8, COLOR);
    vlt_program();
    display_mode &= ~uint32_t{GRN_BAND_ON};
    vlt_program();
    for (const vlt_entry &e : screen.written)
        EXPECT_EQ(e.green, 0);
    EXPECT_EQ(table_colour(7), 0xFF00FFu);     // white without green
}

TEST_F(Vlt, AMixedTableOnNinePlanesHasTheCubeAndTheRamp)
{
    display(9, COLOR);
    vlt_program();
    num_planes = 8;
    display_mode |= MIXED_VLT;
    vlt_program();
    ASSERT_EQ(screen.written.size(), 512u);
    expect_named_colours();                    // 216 + 15 = 231 entries, of 256 - 216 - 1 = 39 free
    EXPECT_EQ(table_colour(230), 0xFFFFFFu);
    EXPECT_EQ(table_colour(255), 0x000000u);
    EXPECT_EQ(table_colour(300), 45u * 0x010101u);
    EXPECT_EQ(table_colour(510), 0xFFFFFFu);
}

// --- grey ramps --------------------------------------------------------------------------------------------------

TEST_F(Vlt, EightPlanesInMonoHoldNamedColoursTheRampAndWhite)
{
    display(8, 0);
    vlt_program();
    EXPECT_EQ(screen.written.size(), 225u);    // the first time without named colours
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(grey_slot[i], (i * 224 >> 8) + 31);
    EXPECT_EQ(grey_slot[0], 31);
    EXPECT_EQ(grey_slot[255], 254);

    one_picture();
    vlt_program();
    ASSERT_EQ(screen.written.size(), 240u);
    expect_named_colours();
    for (int slot = 15; slot <= 30; slot++)
        EXPECT_EQ(screen.table[slot].red, 1) << "slot " << slot << " was to be left as it was";
    // Slot s has the grey of the first level that maps to it, through the table 255 - i of the one picture.
    EXPECT_EQ(screen.table[31].red, 255 * 256);
    EXPECT_EQ(screen.table[32].red, (255 - 2) * 256);   // 2 * 224 >> 8 = 1, 1 * 224 >> 8 = 0
    EXPECT_EQ(screen.table[254].red, (255 - 255) * 256);  // 223 * 256 / 224 = 254.9
    EXPECT_EQ(screen.table[255].red, 65280);
    EXPECT_EQ(screen.table[255].blue, 65280);
}

TEST_F(Vlt, TheTableOfTheImageIsFoldedInForOnePictureOnly)
{
    display(8, 0);
    one_picture();
    const auto folded = [] {
        vlt_program();
        return screen.table[32].red == (255 - 2) * 256;
    };
    EXPECT_TRUE(folded());
    picture_count = 2;
    EXPECT_FALSE(folded());
    EXPECT_EQ(screen.table[32].red, 2 * 256);
    picture_count = 1;
    display_mode |= STATIC_VLT;
    EXPECT_FALSE(folded());
    display_mode &= ~uint32_t{STATIC_VLT};
    display_mode |= DEFINING_SLICE;
    EXPECT_FALSE(folded());
}

TEST_F(Vlt, NinePlanesInMonoHoldTheRampAbove255)
{
    display(9, 0);
    vlt_program();
    one_picture();
    vlt_program();
    ASSERT_EQ(screen.written.size(), 512u);
    expect_named_colours();
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(screen.table[255 + i].green, (255 - i) * 256) << i;
    picture_count = 2;
    vlt_program();
    EXPECT_EQ(screen.table[255 + 40].green, 40 * 256);
    picture_count = 1;
    display_mode |= DEFINING_SLICE;
    vlt_program();
    EXPECT_EQ(screen.table[255 + 40].green, 40 * 256);
}

TEST_F(Vlt, FourPlanesInMonoHoldTheNamedColoursAndWhite)
{
    display(4, 0);
    vlt_program();
    vlt_program();
    ASSERT_EQ(screen.written.size(), 16u);
    expect_named_colours();
    EXPECT_EQ(screen.table[15].red, 65535);
    EXPECT_EQ(dither_kind, DITHER_MONO);
    const uint8_t slots[] = { 0, 2, 5, 7 };    // black, 888888, AAAAAA, white
    EXPECT_TRUE(std::equal(slots, slots + 4, grey_levels));
    EXPECT_EQ(level_values[1], 85);            // 4 levels: 255 / 3
}

TEST_F(Vlt, FiveToSevenPlanesInMonoHoldARampOfSixteen)
{
    for (const int planes : { 5, 7 }) {
        SCOPED_TRACE(planes);
        SetUp();
        display(planes, 0);
        vlt_program();
        vlt_program();
        ASSERT_EQ(screen.written.size(), 32u);
        expect_named_colours();
        for (int i = 0; i < 16; i++)
            EXPECT_EQ(screen.table[15 + i].red, i * 4096) << i;
        EXPECT_EQ(screen.table[31].red, 65535);
        EXPECT_EQ(dither_kind, DITHER_MONO);
    }
}

TEST_F(Vlt, FivePlanesDitherToSlots16To31)
{
    display(5, 0);
    vlt_program();
    for (int i = 0; i < 16; i++)
        EXPECT_EQ(grey_levels[i], 16 + i);
    EXPECT_EQ(level_values[1], 17);            // 16 levels: 255 / 15
}

// --- four planes in colour -----------------------------------------------------------------------------------------

TEST_F(Vlt, FourPlanesInColourHoldTheStandardColours)
{
    display(4, COLOR);
    gamma_value = 2.2;
    vlt_program();
    ASSERT_EQ(screen.written.size(), 16u);
    for (int slot = 0; slot < 16; slot++)
        EXPECT_EQ(table_colour(slot), standard_colours[slot]);
    EXPECT_TRUE(vmap_in_use());
    display_mode &= ~uint32_t{COLOR};
    vlt_program();
    EXPECT_FALSE(vmap_in_use());
    expect_named_colours();
}

TEST_F(Vlt, WithoutMemoryForTheMapColourFallsBackAndIsReported)
{
    display(4, COLOR);
    mem_fail_countdown = 0;
    vlt_program();
    EXPECT_EQ(screen.reports, "2 init_vmap: out of memory\n");
    EXPECT_FALSE(vmap_in_use());
    EXPECT_GE(dither_colour(0, 0, 255, 255, 255), 0);
}

// --- true colour -----------------------------------------------------------------------------------------------------

TEST_F(Vlt, ATrueColourWindowGetsTheTablesOfItsBands)
{
    display(8, TC);
    display_mode |= COLOR;
    gamma_value = 2.2;
    one_picture();
    windows[W].green_band = 1, windows[W].blue_band = 2;
    windows[W].vlt_id = 2;
    vlt_program();
    ASSERT_EQ(screen.written.size(), 256u);
    EXPECT_EQ(screen.written_number, 2);
    for (int i = 0; i < 256; i++) {
        EXPECT_EQ(screen.written[size_t(i)].slot, i);
        EXPECT_EQ(screen.written[size_t(i)].red, gamma_table[255 - i] * 256);
        EXPECT_EQ(screen.written[size_t(i)].green, gamma_table[i] * 256);
    }
    display_mode &= ~uint32_t{BLU_BAND_ON};
    vlt_program();
    EXPECT_EQ(screen.written[200].blue, 0);
    EXPECT_EQ(screen.written[200].green, gamma_table[200] * 256);
}

TEST_F(Vlt, AGreyTrueColourWindowTakesItsRedBandForAllThree)
{
    display(8, TC);
    one_picture();
    windows[W].green_band = 1;
    vlt_program();
    EXPECT_EQ(screen.written_number, 0);
    EXPECT_EQ(screen.written[10].red, 245 * 256);
    EXPECT_EQ(screen.written[10].green, 245 * 256);
    EXPECT_EQ(screen.written[10].blue, 245 * 256);
}

TEST_F(Vlt, AStaticTrueColourTableIsStraight)
{
    display(8, TC);
    display_mode |= STATIC_VLT;
    gamma_value = 2.2;
    one_picture();
    vlt_program();
    for (int i = 0; i < 256; i++)
        EXPECT_EQ(screen.written[size_t(i)].blue, i * 256);
}

TEST_F(Vlt, TrueColourWithoutAnActiveWindowWritesTheSharedTable)
{
    display(8, TC);
    vlt_program();
    vlt_program();
    EXPECT_EQ(screen.written.size(), 240u);
    expect_named_colours();
}

// --- the cache -------------------------------------------------------------------------------------------------------

TEST_F(Vlt, TheSamePlanesAndGammaRebuildNoDitherButWriteTheTable)
{
    display(8, COLOR);
    vlt_program();
    vlt_program();
    dither_table[3][100] = 99;                 // a rebuild would put this right
    const int writes = screen.writes;
    vlt_program();
    EXPECT_EQ(dither_table[3][100], 99);
    EXPECT_EQ(screen.writes, writes + 1);
    gamma_value = 1.5;
    vlt_program();
    EXPECT_NE(dither_table[3][100], 99);
}

TEST_F(Vlt, LevelsPerPrimaryFollowThePlanes)
{
    const uint8_t levels[13] = { 0, 0, 0, 2, 2, 3, 4, 5, 6, 8, 10, 12, 16 };
    EXPECT_TRUE(std::equal(levels, levels + 13, levels_for_planes));
}
