// What paint_window shows on every kind of display: a 4 by 4 image at zoom 1 in a 4 by 4 window, so that held pixel x, y is window
// pixel x, y. A window of even size has its centre between two pixels: source position x + 0.5 at data offset 2.
#include "display/paint.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "display/dither.h"
#include "display/scan_state.h"
#include "display/vlt.h"
#include "display/vmap.h"
#include "fake_screen.h"
#include "mem.h"
#include "shell/session.h"

constexpr int W = 5;                   // the window
constexpr int SIZE = 4;

class Paint : public testing::Test {
protected:
    void SetUp() override
    {
        session_reset();
        vlt_init();
        paint_reset();
        fake_screen_reset(SIZE, SIZE, false);
        for (int n = 0; n < 3; n++)
            open_band(n);
        win_rec &view = windows[W];
        view.flags = WIN_DISPLAYED | WIN_PICTURE;
        view.width = view.height = SIZE;
        view.data_x = view.data_y = SIZE / 2;
        view.red_band = view.green_band = view.blue_band = 0;
        current_window = active_window = W;
        picture_count = 1;
        display_mode &= ~uint32_t{COLOR | STATIC_VLT};
    }
    void TearDown() override { paint_reset(); }

    // Band n holds 16 i + n at pixel i, and its table is 255 - v.
    void open_band(int n)
    {
        band_rec &band = bands[n];
        for (int i = 0; i < SIZE * SIZE; i++)
            pixels[n][i] = uint8_t(16 * i + n);
        for (int i = 0; i < 256; i++)
            luts[n][i] = int16_t(255 - i);
        band.alloc_bytes = SIZE * SIZE;
        band.x_size = band.y_size = SIZE;
        band.format = KIND_RAW;
        band.data = pixels[n];
        band.lut = luts[n];
    }

    static void planes(int n, uint32_t mode)
    {
        num_planes = start_planes = n;
        display_mode |= mode;
    }

    static void true_colour_window()
    {
        screen.true_colour = true;
        display_mode |= TC;
        num_planes = start_planes = 8;
    }

    static void in_colour()
    {
        display_mode |= COLOR;
        windows[W].green_band = 1;
        windows[W].blue_band = 2;
    }

    static void paint()
    {
        vlt_program();
        paint_window(0, 0, SIZE, SIZE);
    }

    uint8_t pixels[3][SIZE * SIZE];
    int16_t luts[3][256];
};

// The pixel looked at below: held value 16 * 6 + n = 96 + n, through the table 159 - n.
static int32_t look() { return shown(2, 1); }

// --- grey ------------------------------------------------------------------------------------------------------

TEST_F(Paint, TrueColourStaticGreyGoesThroughTableAndGamma)
{
    true_colour_window();
    display_mode |= STATIC_VLT;
    paint();
    EXPECT_EQ(look(), gamma_table[159] * 0x010101);
    EXPECT_EQ(scan_state_of(W)->scan, &scan_grey24);
}

TEST_F(Paint, TrueColourGreyWithATableOfItsOwnIsPaintedAsHeld)
{
    true_colour_window();
    screen.true_colour = false;
    paint();
    EXPECT_EQ(look(), 96);
    EXPECT_EQ(scan_state_of(W)->scan, &scan_8);
}

TEST_F(Paint, EightPlanesOneGreyPictureLeavesTheTableToTheColourTable)
{
    planes(8, IFB);
    paint();
    EXPECT_EQ(look(), (96 * 224 >> 8) + 31);   // 115
}

TEST_F(Paint, EightPlanesSeveralGreyPicturesApplyTheirTables)
{
    planes(8, IFB);
    picture_count = 2;
    paint();
    EXPECT_EQ(look(), (159 * 224 >> 8) + 31);  // 170
}

TEST_F(Paint, EightPlanesStaticGreyAppliesItsTable)
{
    planes(8, IFB | STATIC_VLT);
    paint();
    EXPECT_EQ(look(), 170);
}

TEST_F(Paint, NinePlanesOneGreyPictureShowsInSlots255To510)
{
    planes(9, IFB);
    paint();
    EXPECT_EQ(look(), 96 + 255);
    EXPECT_EQ(scan_state_of(W)->scan, &scan_16);   // value mask 511
    EXPECT_EQ(scan_state_of(W)->value_mask, 511u);
}

TEST_F(Paint, NinePlanesSeveralGreyPicturesApplyTheirTables)
{
    planes(9, IFB);
    picture_count = 2;
    paint();
    EXPECT_EQ(look(), 159 + 255);
}

TEST_F(Paint, FourPlanesDitherGreyWithFourSlots)
{
    planes(4, 0);
    paint();
    EXPECT_EQ(scan_state_of(W)->scan, &scan_dither);
    EXPECT_EQ(look(), dither_mono(2, 1, 159));
    EXPECT_TRUE(look() == 0 || look() == 2 || look() == 5 || look() == 7);
}

TEST_F(Paint, FivePlanesDitherGreyWithSixteenSlots)
{
    planes(5, 0);
    paint();
    EXPECT_EQ(look(), dither_mono(2, 1, 159));
    // Level of 159 at gamma 2.2: p = (159 / 255) ^ (1 / 2.2) = 0.80681, q = truncate(0.80681 * 240 + 0.5) = 194;
    // 193 / 16 = 12, rest 1; the threshold at 2, 1 is 14: level 12, slot 16 + 12.
    EXPECT_EQ(look(), 28);
}

TEST_F(Paint, SevenPlanesDitherGreyOverTheSameRamp)
{
    planes(7, 0);
    paint();
    // 5 levels: q = truncate(0.80681 * 64 + 0.5) = 52; 51 / 16 = 3, rest 3, threshold 14: level 3 of 0 to 4, slot 15 + 3 * 4.
    EXPECT_EQ(look(), 27);
}

// --- colour ----------------------------------------------------------------------------------------------------

TEST_F(Paint, TrueColourStaticColourGoesThroughTableAndGamma)
{
    true_colour_window();
    display_mode |= STATIC_VLT;
    in_colour();
    paint();
    EXPECT_EQ(look(), gamma_table[159] << 16 | gamma_table[158] << 8 | gamma_table[157]);
}

TEST_F(Paint, TrueColourColourWithATableOfItsOwnIsPaintedAsHeld)
{
    true_colour_window();
    in_colour();
    paint();
    EXPECT_EQ(look(), 96 << 16 | 97 << 8 | 98);
}

TEST_F(Paint, ColourTableDisplaysDitherColourThroughTheTables)
{
    for (const int n : { 5, 7, 8, 9 }) {
        SCOPED_TRACE(n);
        planes(n, n >= 8 ? uint32_t{IFB} : 0);
        in_colour();
        vlt_program();                 // the first table has no named colours
        paint();
        EXPECT_EQ(look(), dither_colour(2, 1, 159, 158, 157));
        EXPECT_EQ(scan_state_of(W)->scan, &scan_rgb);
        EXPECT_EQ(screen.puts_16 > 0, n == 9);
    }
}

TEST_F(Paint, FourPlanesMixColourFromTheStandardColoursThroughFix)
{
    planes(4, 0);
    in_colour();
    paint();
    EXPECT_EQ(look(), vmap_slot(vmap_entry(fix[159], fix[158], fix[157]), dither_cell(2, 1)));
}

TEST_F(Paint, IntensityViewShowsAColourImageAsGrey)
{
    planes(9, IFB);
    in_colour();
    display_mode |= INTENSITY_VIEW;
    paint();
    // truncate(0.3 * 159 + 0.6 * 158 + 0.1 * 157 + 0.5) = truncate(47.7 + 94.8 + 15.7 + 0.5) = 158.
    EXPECT_EQ(look(), 158 + 255);
}

TEST_F(Paint, WithoutMemoryForTheIntensitiesNothingIsPaintedAndSaidSo)
{
    planes(9, IFB);
    in_colour();
    display_mode |= INTENSITY_VIEW;
    vlt_program();
    mem_fail_countdown = 0;
    paint_window(0, 0, SIZE, SIZE);
    EXPECT_EQ(screen.reports, "2 failed to allocate intensity buffer\n");
    EXPECT_EQ(look(), UNTOUCHED);
}

TEST(IntensityRow, RoundsAndLimits)
{
    int16_t straight[256];
    for (int i = 0; i < 256; i++)
        straight[i] = int16_t(i);
    const uint8_t r[] = { 255, 0, 5 }, g[] = { 255, 0, 0 }, b[] = { 255, 4, 0 };
    const uint8_t *const in[3] = { r, g, b };
    const int16_t *const luts[3] = { straight, straight, straight };
    uint8_t out[3];
    intensity_row(out, in, luts, 3);
    EXPECT_EQ(out[0], 255);
    EXPECT_EQ(out[1], 0);              // 0.4 + 0.5
    EXPECT_EQ(out[2], 2);              // 1.5 + 0.5
}

// --- one-bit images ----------------------------------------------------------------------------------------------

TEST_F(Paint, OneBitImagesAreStampedOnSlotZero)
{
    planes(8, IFB);
    const uint16_t rows[SIZE] = { 0x8000, 0x2000, 0x0000, 0x1000 };
    std::memcpy(pixels[0], rows, sizeof rows);
    bands[0].format = KIND_BIN;
    paint();
    EXPECT_EQ(shown(0, 0), 65535);
    EXPECT_EQ(shown(1, 0), 0);
    EXPECT_EQ(shown(2, 1), 65535);
    EXPECT_EQ(shown(3, 3), 65535);
    EXPECT_EQ(shown(3, 2), 0);
}

TEST_F(Paint, OneBitImagesAreWhiteInTrueColour)
{
    true_colour_window();
    const uint16_t rows[SIZE] = { 0x8000, 0, 0, 0 };
    std::memcpy(pixels[0], rows, sizeof rows);
    bands[0].format = KIND_BIN;
    paint();
    EXPECT_EQ(shown(0, 0), 0xFFFFFF);
    EXPECT_EQ(shown(1, 0), 0);
}

// --- what is not painted -----------------------------------------------------------------------------------------

static int hooks_run;
static void counting_hook(int, int, int, int) { hooks_run++; }

TEST_F(Paint, ASlicedWindowIsLeftAsItIsButItsHooksRun)
{
    planes(8, IFB);
    hooks_run = 0;
    paint_hook_add(counting_hook);
    windows[W].slice_band = 0;
    paint();
    EXPECT_EQ(look(), UNTOUCHED);
    EXPECT_EQ(hooks_run, 1);
}

TEST_F(Paint, ACollapsedWindowIsLeftAloneWithItsHooks)
{
    planes(8, IFB);
    hooks_run = 0;
    paint_hook_add(counting_hook);
    windows[W].flags |= WIN_COLLAPSED;
    paint();
    EXPECT_EQ(look(), UNTOUCHED);
    EXPECT_EQ(hooks_run, 0);
}

TEST_F(Paint, ReservedWindowsAndTileBackedBandsShowNothing)
{
    planes(8, IFB);
    windows[W].flags |= RESERVED_WIN;
    paint();
    EXPECT_EQ(look(), UNTOUCHED);
    windows[W].flags = WIN_DISPLAYED | WIN_PICTURE;
    bands[0].format = KIND_TILED;
    bands[0].data = nullptr;
    paint();
    EXPECT_EQ(look(), UNTOUCHED);
}

TEST_F(Paint, CornersComeInAnyOrder)
{
    planes(8, IFB);
    vlt_program();
    paint_window(3, 2, 1, 1);
    EXPECT_NE(shown(1, 1), UNTOUCHED);
    EXPECT_NE(shown(3, 2), UNTOUCHED);
    EXPECT_EQ(shown(0, 1), UNTOUCHED);
    EXPECT_EQ(shown(1, 0), UNTOUCHED);
    EXPECT_EQ(shown(1, 3), UNTOUCHED);
}

// --- the view ----------------------------------------------------------------------------------------------------

TEST_F(Paint, TheViewMatrixPutsTheDataOffsetAtTheMiddleOfTheWindow)
{
    windows[W].width = 101, windows[W].height = 50;
    windows[W].data_x = 30, windows[W].data_y = 7;
    windows[W].zoom = 2;
    double m[16];
    view_matrix(W, m);
    const auto at = [&](double x, double y, int row) { return (m[row] * x + m[row + 1] * y + m[row + 3]) / (m[12] * x + m[13] * y + m[15]); };
    EXPECT_DOUBLE_EQ(at(30, 7, 0), 50);        // (101 - 1) / 2
    EXPECT_DOUBLE_EQ(at(30, 7, 4), 24.5);      // (50 - 1) / 2
    EXPECT_DOUBLE_EQ(at(31, 7, 0), 52);
    EXPECT_DOUBLE_EQ(at(30, 6, 4), 22.5);
}

TEST_F(Paint, AnUpsideDownFileIsShownTheRightWayUp)
{
    planes(9, IFB);
    bands[0].xform[1][1] = -1;         // lower left start
    windows[W].data_y = 2;
    paint();
    // Window row y is held row truncate(2 - (y - 1.5)) = 3 - y.
    EXPECT_EQ(shown(0, 0), 16 * 12 + 255);
    EXPECT_EQ(shown(0, 3), 255);
}

TEST_F(Paint, TablesOutOfRangeAreKeptWithinIt)
{
    true_colour_window();
    display_mode |= STATIC_VLT;
    luts[0][96] = 300;
    paint();
    EXPECT_EQ(look(), 0xFFFFFF);
    luts[0][96] = -5;
    paint();
    EXPECT_EQ(look(), 0);
}
