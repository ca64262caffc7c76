#include "enhance/hist_session.h"

#include "display/vlt.h"
#include "enhance/slice_chart.h"
#include "enhance/slice_commands.h"
#include "enhance/slice_display.h"
#include "enhance/slice_map.h"
#include "shell/command_table.h"

namespace {

uint32_t table_rgb(int slot)
{
    vlt_entry entry {};
    EXPECT_EQ(ws_read_vlt(0, &entry, 1, slot), 0);
    return uint32_t(entry.red >> 8) << 16 | uint32_t(entry.green >> 8) << 8 | uint32_t(entry.blue >> 8);
}

struct SliceSession : HistSession {
    int grey;

    // 64 pixels each of 10, 20, 30 and 40.
    void open_grey()
    {
        grey = make_band(16, { { 10, 64 }, { 20, 64 }, { 30, 64 }, { 40, 64 } }, "grey");
        show_grey(grey);
    }
    // The shown colour of the middle of an image row: four bands of four rows each.
    uint32_t shown(int w, int row)
    {
        const win_rec &view = windows[w];
        return table_rgb(int(pixel(w, view.width / 2, int(view.height / 2 + (row - 8 + 0.5) * view.zoom))) & 511);
    }
    void expect_no_colours(int n)
    {
        for (int v = 0; v < 256; v++)
            EXPECT_EQ(bands[n].slice_colors[v], -1) << v;
    }
};

struct Slice8 : SliceSession {
    Slice8() { screen_depth = 8; }
};

struct Slice9 : SliceSession {
    Slice9() { screen_depth = 9; }
};

} // namespace

// Range 10 to 40: 31 levels; steps of 6 end before 10 + (k * 31 + 3) / 6 = 15, 20, 26, 31, 36, 41.
TEST_F(Slice8, ASpectrumShowsThroughTheColourTable)
{
    open_grey();
    spectrum6_full();
    const int16_t *const colours = bands[grey].slice_colors;
    EXPECT_EQ(colours[9], -1);
    EXPECT_EQ(colours[14], 8);
    EXPECT_EQ(colours[15], 4);
    EXPECT_EQ(colours[20], 9);
    EXPECT_EQ(colours[30], 15);
    EXPECT_EQ(colours[40], 16);
    EXPECT_EQ(colours[41], -1);
    EXPECT_EQ(windows[active_window].slice_band, grey);
    EXPECT_TRUE(display_mode & MIXED_VLT);
    EXPECT_EQ(num_planes, 8);
    EXPECT_GE(hist_window, 0);
    EXPECT_EQ(shown(active_window, 2), 0xFF0000u);
    EXPECT_EQ(shown(active_window, 6), 0x00FF00u);
    EXPECT_EQ(shown(active_window, 10), 0x00FFFFu);
    EXPECT_EQ(shown(active_window, 14), 0xFF00FFu);
}

TEST_F(Slice9, ALevelStandsAtItsSlotPlus255AndOnlyTheTableChanges)
{
    open_grey();
    density_slice_on();
    const win_rec &view = windows[active_window];
    const int x = view.width / 2, y = view.height / 2 + 5;   // row 8: level 30
    EXPECT_EQ(pixel(active_window, x, y) & 511, 285u);
    slice_apply_range(8, 25, 35);
    EXPECT_EQ(pixel(active_window, x, y) & 511, 285u);
    EXPECT_EQ(table_rgb(285), 0xFF0000u);
    EXPECT_EQ(table_rgb(255 + 25), 0xFF0000u);
    EXPECT_EQ(table_rgb(255 + 35), 0xFF0000u);
    EXPECT_NE(table_rgb(255 + 24), 0xFF0000u);
    EXPECT_NE(table_rgb(255 + 36), 0xFF0000u);
    density_slice_off();
    EXPECT_EQ(num_planes, 9);
    EXPECT_EQ(table_rgb(285), uint32_t(gamma_table[30]) * 0x010101);
}

TEST_F(Slice8, TurningOffBringsTheGreyImageBackAndKeepsTheBandsColours)
{
    open_grey();
    const uint32_t before = shown(active_window, 2);
    ramp12_full();
    EXPECT_NE(shown(active_window, 2), before);
    density_slice_off();
    EXPECT_EQ(shown(active_window, 2), before);
    EXPECT_EQ(windows[active_window].slice_band, -1);
    EXPECT_FALSE(display_mode & MIXED_VLT);
    EXPECT_EQ(bands[grey].slice_colors[10], 8);
    density_slice_on();
    EXPECT_EQ(shown(active_window, 2), 0xFF0000u);
}

// Each quarter of the counts is one value: shares (k * 256 + 3) / 6 = 43, 85, 128, 171, 213, 256.
TEST_F(Slice8, EqualPopulationsFollowTheCounts)
{
    open_grey();
    ramp6_full();
    const int16_t *const colours = bands[grey].slice_colors;
    EXPECT_EQ(colours[10], 8);
    EXPECT_EQ(colours[11], 8);                 // 64 counts at index 11: 43 is reached
    EXPECT_EQ(colours[12], 4);
    EXPECT_EQ(colours[21], 4);                 // 128 at index 21: 85 and 128 are reached
    EXPECT_EQ(colours[22], 15);
    EXPECT_EQ(colours[31], 15);                // 192 at index 31: 171 is reached
    EXPECT_EQ(colours[32], 10);
    EXPECT_EQ(colours[41], 10);                // 256 at index 41
    EXPECT_EQ(colours[42], -1);
}

TEST_F(Slice8, AStretchAfterwardsKeepsTheSliceOnTheScreen)
{
    open_grey();
    spectrum6_full();
    for (int v = 0; v < 256; v++)
        bands[grey].lut[v] = int16_t(255 - v);
    refresh_after_lut();
    EXPECT_EQ(shown(active_window, 2), 0xFF0000u);
    EXPECT_EQ(shown(active_window, 14), 0xFF00FFu);
}

TEST_F(Slice8, AClippedSpreadAsksForItsRange)
{
    open_grey();
    sees(MSG_TITLE, "Ramp density slice");
    sees(MSG_PROMPT, "Select minimum (0-255)");
    keys_in("20");
    sees(MSG_PROMPT, "Select maximum (0-255)");
    keys_in("31");
    spectrum12_clip();
    EXPECT_EQ(bands[grey].slice_colors[19], -1);
    EXPECT_EQ(bands[grey].slice_colors[20], 8);
    EXPECT_EQ(bands[grey].slice_colors[31], 19);
    EXPECT_EQ(bands[grey].slice_colors[32], -1);
    EXPECT_STREQ(msg_text(MSG_PROMPT), "");
}

TEST_F(Slice8, ASpreadGivenUpChangesNothing)
{
    open_grey();
    keys_in("20");
    resets();
    ramp12_clip();
    expect_no_colours(grey);
    EXPECT_EQ(windows[active_window].slice_band, -1);
    EXPECT_FALSE(display_mode & MIXED_VLT);
}

TEST_F(Slice8, DefiningTakesColoursFromTheChartAndLevelsFromTheHistogram)
{
    open_grey();
    looks_then([] {
        EXPECT_STREQ(msg_text(MSG_TITLE), "Density slice color");
        EXPECT_STREQ(msg_text(MSG_PROMPT), "Select density slice color from menu");
        EXPECT_TRUE(display_mode & DEFINING_SLICE);
        EXPECT_EQ(windows[chart_window].width, 404);
        EXPECT_EQ(windows[chart_window].height, 116);
        EXPECT_EQ(windows[chart_window].x, 1280 / 2 - 202);
        EXPECT_EQ(windows[chart_window].y, 0);
        EXPECT_EQ(pixel(chart_window, 2, 2) & 255, 255u);
        EXPECT_EQ(pixel(chart_window, 1, 1) & 255, 0u);
        EXPECT_EQ(pixel(chart_window, 401, 113) & 255, 255u);
        EXPECT_EQ(pixel(chart_window, 10, 10) & 255, 12u);
        EXPECT_EQ(pixel(chart_window, 41, 41) & 255, 12u);
        EXPECT_EQ(pixel(chart_window, 42, 42) & 255, 21u);
        EXPECT_EQ(pixel(chart_window, 393, 105) & 255, 254u);
        EXPECT_EQ(table_rgb(21), 0xFF8300u);
    });
    point_at(active_window, 900, 500);         // outside the chart: passed over
    point_at(chart_window, 80, 50);            // row 2, column 3: yellow
    sees(MSG_PROMPT, "Select minimum bin (histogram point or keyin)");
    point_at(hist_window, 21 + 20, 100);
    sees(MSG_PROMPT, "Select maximum bin (histogram point or keyin)");
    keys_in("300");                            // 255
    point_at(chart_window, 3, 3);              // red, the square next to it
    keys_in("-7");                             // 0
    point_at(hist_window, 21 + 10, 100);
    point_at(chart_window, 403, 115);          // the last square: 254
    point_at(active_window, 900, 500);         // the earlier level stays: 0
    keys_in("5");
    resets();
    define_density_slice();
    const int16_t *const colours = bands[grey].slice_colors;
    EXPECT_EQ(colours[5], 254);
    EXPECT_EQ(colours[6], 12);
    EXPECT_EQ(colours[10], 12);
    EXPECT_EQ(colours[11], -1);
    EXPECT_EQ(colours[19], -1);
    EXPECT_EQ(colours[20], 4);
    EXPECT_EQ(colours[255], 4);
    EXPECT_FALSE(display_mode & DEFINING_SLICE);
    EXPECT_EQ(chart_window, -1);
    EXPECT_EQ(shown(active_window, 2), 0xDD0000u);
    EXPECT_EQ(shown(active_window, 6), 0xFFFF00u);
}

TEST_F(Slice8, AFirstPointOutsideTheHistogramTakesAllLevels)
{
    open_grey();
    point_at(chart_window, 330, 50);           // row 2, column 11: 16
    point_at(active_window, 900, 500);
    point_at(active_window, 900, 500);
    resets();
    define_density_slice();
    EXPECT_EQ(bands[grey].slice_colors[0], 16);
    EXPECT_EQ(bands[grey].slice_colors[255], 16);
}

TEST_F(Slice8, ACrossedRangeFillsNothingAndDrawsItsLineBackwards)
{
    open_grey();
    point_at(chart_window, 330, 50);
    keys_in("200");
    keys_in("100");
    looks_then([this] {
        expect_no_colours(grey);
        const int baseline = layout.hist_red_bottom - 10;
        EXPECT_EQ(pixel(hist_window, 20 + 150, baseline) & 255, 16u);
        EXPECT_NE(pixel(hist_window, 20 + 90, baseline) & 255, 16u);
    });
    resets();
    define_density_slice();
}

TEST_F(Slice8, ABandOfAnotherWindowIsNotSliced)
{
    open_grey();
    const int other = make_band(4, { { 1, 16 } });
    EXPECT_EQ(slice_on(other), 0);
    EXPECT_EQ(windows[active_window].slice_band, -1);
    EXPECT_FALSE(display_mode & MIXED_VLT);
    EXPECT_EQ(hist_window, -1);
    band_free(other);
}

TEST_F(Slice8, ResetClearsTheColoursAndStaysSliced)
{
    open_grey();
    reset_density_slice();
    EXPECT_STREQ(msg_text(MSG_STATUS), "No active density slice to reset");
    spectrum12_full();
    reset_density_slice();
    expect_no_colours(grey);
    EXPECT_EQ(windows[active_window].slice_band, grey);
    EXPECT_EQ(shown(active_window, 14), uint32_t(gamma_table[40]) * 0x010101);
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
}

TEST_F(Slice8, TwoPicturesShareTheTableAndOnlyOneIsSliced)
{
    open_grey();
    const int32_t first = active_window;
    const int second = make_band(16, { { 10, 64 }, { 40, 192 } });
    const int w = show_grey(second);
    const uint32_t before = shown(first, 2);
    spectrum6_full();
    EXPECT_EQ(windows[w].slice_band, second);
    EXPECT_EQ(shown(w, 2), 0xFF0000u);
    EXPECT_EQ(shown(w, 10), 0xFF00FFu);
    EXPECT_EQ(shown(first, 2), before);
    close_window(w);
}

TEST_F(Slice8, ApplyingWithoutASliceInTheActiveWindowSaysSo)
{
    open_grey();
    const int32_t first = active_window;
    spectrum6_full();
    const int second = make_band(16, { { 10, 256 } });
    show_grey(second);
    ASSERT_NE(active_window, first);
    slice_apply_range(4, 0, 255);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Density slice not displayed in active window");
    EXPECT_EQ(bands[grey].slice_colors[0], -1);
}

TEST_F(Slice8, ThreeBandsTakeTheColoursWithGammaUndone)
{
    open_grey();
    density_slice_to_3_bands();
    EXPECT_STREQ(msg_text(MSG_STATUS), "No density slice defined for active window");
    density_slice_on();
    slice_apply_range(21, 20, 20);             // FF8300
    slice_apply_range(4, 30, 30);              // FFFF00
    uint8_t inverse[256];
    inverse_of_gamma(gamma_table, inverse);
    density_slice_to_3_bands();
    const win_rec &view = windows[active_window];
    ASSERT_NE(view.red_band, view.green_band);
    EXPECT_STREQ(bands[view.red_band].file_name, "density slice grey");
    const auto held = [&](int band, int row) { return int(bands[band].data[row * 16]); };
    EXPECT_EQ(held(view.red_band, 2), 10);     // no colour: the level itself
    EXPECT_EQ(held(view.blue_band, 2), 10);
    EXPECT_EQ(held(view.red_band, 6), 255);
    EXPECT_EQ(held(view.green_band, 6), inverse[0x83]);
    EXPECT_EQ(held(view.blue_band, 6), 0);
    EXPECT_EQ(held(view.green_band, 10), 255);
    EXPECT_EQ(bands[view.red_band].hist_unmapped[255], 128);
    EXPECT_TRUE(display_mode & COLOR);
}

TEST_F(Slice9, AColourImagesBandIsSlicedInGrey)
{
    const int r = make_band(16, { { 10, 64 }, { 20, 64 }, { 30, 64 }, { 40, 64 } }), g = make_band(16, { { 90, 256 } }), b = make_band(16, { { 200, 256 } });
    show_colour(r, g, b);
    keys_in("r");
    spectrum6_full();
    EXPECT_EQ(windows[active_window].slice_band, r);
    EXPECT_EQ(shown(active_window, 2), 0xFF0000u);
    EXPECT_EQ(shown(active_window, 6), 0x00FF00u);
    density_slice_off();
    EXPECT_EQ(windows[active_window].slice_band, -1);
    EXPECT_NE(shown(active_window, 6), 0x00FF00u);
}

TEST_F(Slice8, AOneBitImageSaysWhyNot)
{
    int step = 1, n = -1;
    ASSERT_EQ(band_create(16, 16, &step, KIND_BIN, "", &n), 1);
    show_grey(n);
    spectrum12_full();
    EXPECT_STREQ(msg_text(MSG_STATUS), "a one-bit image has no levels to slice");
    EXPECT_EQ(windows[active_window].slice_band, -1);
}

TEST_F(Slice8, ShowReservedWaitsWithTheChart)
{
    open_grey();
    looks_then([] {
        EXPECT_STREQ(msg_text(MSG_TITLE), "Show reserved");
        EXPECT_STREQ(msg_text(MSG_PROMPT), "Point or reset to exit");
        EXPECT_GE(chart_window, 0);
    });
    point_at(chart_window, 20, 20);
    show_reserved();
    EXPECT_EQ(chart_window, -1);
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
}

// True colour, the default screen.
TEST_F(SliceSession, WithoutAColourTableEveryCommandSaysWhyItDoesNothing)
{
    open_grey();
    const char *const keywords[] = { "density_slice_on", "density_slice_off", "define_density_slice", "spectrum12_full", "spectrum6_full",
                                     "spectrum12_clip", "spectrum6_clip", "ramp12_full", "ramp6_full", "ramp12_clip", "ramp6_clip", "show_reserved" };
    for (const char *keyword : keywords) {
        msg_clear(MSG_STATUS);
        command_find(keyword)->handler();
        EXPECT_STREQ(msg_text(MSG_STATUS), "density slices need a color table of 8 planes") << keyword;
        EXPECT_EQ(windows[active_window].slice_band, -1);
    }
    expect_no_colours(grey);
    EXPECT_EQ(hist_window, -1);
}

TEST_F(SliceSession, ColorEditDoesNothingNotEvenAMessage)
{
    open_grey();
    msg_put(MSG_STATUS, MSG_CENTRED, "before");
    density_slice_color_edit();
    EXPECT_STREQ(msg_text(MSG_STATUS), "before");
    EXPECT_EQ(windows[active_window].slice_band, -1);
}
