// The contrast commands with their prompts: an operator points into the histogram, keys in, and gives up at every place.
#include "enhance/hist_session.h"

#include <random>

#include "display/window_commands.h"
#include "enhance/contrast_commands.h"
#include "enhance/contrast_frame.h"
#include "enhance/contrast_maps.h"
#include "shell/menu.h"

namespace {

// Levels in the middle of the first, second and third plot, and between plots.
constexpr int RED_Y = 100, GREEN_Y = 320, BLUE_Y = 540, BETWEEN_Y = 248;

struct Contrast : HistSession {
    int r = -1, g = -1, b = -1, w = -1;

    void SetUp() override
    {
        HistSession::SetUp();
        recursion_enabled = 1;
    }
    void open_grey()
    {
        r = g = b = make_band(16, { { 50, 100 }, { 100, 100 }, { 150, 56 } });
        w = show_grey(r);
        windows[w].changed = 0;
    }
    void open_colour()
    {
        r = make_band(16, { { 50, 100 }, { 100, 100 }, { 150, 56 } });
        g = make_band(16, { { 60, 100 }, { 100, 100 }, { 180, 56 } });
        b = make_band(16, { { 70, 100 }, { 100, 100 }, { 200, 56 } });
        w = show_colour(r, g, b);
        windows[w].changed = 0;
    }
    void points_at_level(int level, int y) { point_at(hist_window, 21 + level, y); }
    void expect_all_invariant()
    {
        expect_invariant(r);
        expect_invariant(g);
        expect_invariant(b);
    }
    void expect_strip_clear()
    {
        for (int field = MSG_TITLE; field <= MSG_KEYIN; field++)
            EXPECT_STREQ(msg_text(field), "") << field;
    }
    void expect_untouched()
    {
        for (const int n : { r, g, b })
            expect_identity(n);
        EXPECT_EQ(windows[w].changed, 0);
        expect_strip_clear();
    }
    // The table that the kernel makes of an identity table and the band's held levels.
    void expect_as_stretched(int n, int in_min, int in_max, int out_min, int out_max)
    {
        int32_t hist[256];
        int16_t lut[256];
        memcpy(hist, bands[n].hist_unmapped, sizeof hist);
        for (int i = 0; i < 256; i++)
            lut[i] = int16_t(i);
        stretch_map(hist, lut, in_min, in_max, out_min, out_max);
        EXPECT_EQ(memcmp(bands[n].lut, lut, sizeof lut), 0) << "band " << n;
        EXPECT_EQ(memcmp(bands[n].hist_mapped, hist, sizeof hist), 0) << "band " << n;
    }
    void expect_as_equalized(int n, double contrast, int in_min, int in_max, int out_min, int out_max)
    {
        int32_t hist[256];
        int16_t lut[256];
        memcpy(hist, bands[n].hist_unmapped, sizeof hist);
        for (int i = 0; i < 256; i++)
            lut[i] = int16_t(i);
        equalize_map(hist, lut, contrast, in_min, in_max, out_min, out_max);
        EXPECT_EQ(memcmp(bands[n].lut, lut, sizeof lut), 0) << "band " << n;
    }
};

} // namespace

// --- grey images -----------------------------------------------------------------------------------------------------

TEST_F(Contrast, AGreyFullStretchAsksNothing)
{
    open_grey();
    stretch_full_hist();
    // 50 to 150 over 0 to 255: the double nearest to 2.55 lies below it, so 100 is a little less than 127.5.
    EXPECT_EQ(bands[r].lut[50], 0);
    EXPECT_EQ(bands[r].lut[100], 127);
    EXPECT_EQ(bands[r].lut[150], 255);
    EXPECT_EQ(bands[r].hist_mapped[127], 100);
    EXPECT_EQ(windows[w].changed, 1);
    EXPECT_GE(hist_window, 0);
    EXPECT_EQ(pixel(hist_window, 20 + 127, 100), 0xAAAAAAu);
    expect_all_invariant();
    expect_strip_clear();
}

TEST_F(Contrast, ARangeIsPointedAtInTheHistogram)
{
    open_grey();
    display_hist();
    sees(MSG_TITLE, "Linear stretch histogram");
    sees(MSG_PROMPT, "Select input minimum (0-255)");
    points_at_level(60, 100);
    sees(MSG_PROMPT, "Select input maximum (0-255)");
    keys_in("140");
    stretch_clip_in_hist();
    expect_as_stretched(r, 60, 140, 0, 255);
}

TEST_F(Contrast, APointBesideTheHistogramIsTheEndOfTheRange)
{
    open_grey();
    display_hist();
    point_at(w, 900, 500);
    point_at(w, 900, 500);
    sees(MSG_PROMPT, "Select output minimum (0-255)");
    keys_in("20");
    sees(MSG_PROMPT, "Select output maximum (0-255)");
    keys_in("220");
    stretch_clip_in_out_hist();
    expect_as_stretched(r, 0, 255, 20, 220);
}

TEST_F(Contrast, ValuesOutsideTheTableAreTheEndsOfTheRange)
{
    open_grey();
    display_hist();
    point_at(hist_window, 20, 100);        // column 20 is level -1
    keys_in("256");
    stretch_clip_in_hist();
    expect_as_stretched(r, 0, 255, 0, 255);
    reset_hist();
    keys_in("-1");
    keys_in("none");
    stretch_clip_in_hist();
    expect_as_stretched(r, 0, 255, 0, 255);
}

TEST_F(Contrast, ACrossedRangeLeavesTheHistogramWithTheTable)
{
    open_grey();
    keys_in("120");
    keys_in("80");
    stretch_clip_in_hist();
    EXPECT_EQ(bands[r].lut[80], 0);
    EXPECT_EQ(bands[r].lut[81], 255);
    EXPECT_EQ(bands[r].hist_mapped[0], 100);       // only level 50
    EXPECT_EQ(bands[r].hist_mapped[255], 156);
    expect_invariant(r);
}

TEST_F(Contrast, PercentStretches)
{
    open_grey();
    stretch_hist_1percent();               // 2.56 pixels: the occupied ends
    expect_as_stretched(r, 50, 150, 0, 255);
    reset_hist();
    stretch_hist_2percent();
    expect_as_stretched(r, 50, 150, 0, 255);
    reset_hist();
    keys_in("10");
    keys_in("90");
    stretch_hist_1percent_clip_out();
    expect_as_stretched(r, 50, 150, 10, 90);
    reset_hist();
    keys_in("30");
    keys_in("40");
    stretch_hist_2percent_clip_out();
    expect_as_stretched(r, 50, 150, 30, 40);
}

TEST_F(Contrast, AnotherPercentageIsAskedFor)
{
    open_grey();
    sees(MSG_TITLE, "Linear stretch histogram");
    sees(MSG_PROMPT, "Enter percentage");
    presses("accept");
    stretch_hist_other();                  // 2 percent, as the dialog starts
    expect_as_stretched(r, 50, 150, 0, 255);
    reset_hist();
    presses("accept");
    keys_in("5");
    keys_in("250");
    stretch_hist_other_clip_out();
    expect_as_stretched(r, 50, 150, 5, 250);
}

TEST_F(Contrast, EqualizeStartsAtHalfContrast)
{
    open_grey();
    sees(MSG_TITLE, "Equalize histogram");
    sees(MSG_PROMPT, "Enter contrast value");
    presses("accept");
    equalize_full_hist();
    expect_as_equalized(r, 0.5, 0, 255, 0, 255);
    expect_all_invariant();
    expect_strip_clear();
    EXPECT_EQ(windows[w].changed, 1);
}

TEST_F(Contrast, EqualizeWithRanges)
{
    open_grey();
    presses("accept");
    keys_in("60");
    keys_in("160");
    equalize_clip_in_hist();
    expect_as_equalized(r, 0.5, 60, 160, 0, 255);
    reset_hist();
    presses("accept");
    for (const char *text : { "60", "160", "20", "200" })
        keys_in(text);
    equalize_clip_in_out_hist();
    expect_as_equalized(r, 0.5, 60, 160, 20, 200);
    expect_all_invariant();
}

// --- bands -------------------------------------------------------------------------------------------------------------

TEST_F(Contrast, AllBandsAreClippedEachAtItsOwnLevels)
{
    open_colour();
    sees(MSG_PROMPT, "Select histogram (point or keyin)");
    keys_in("all");
    stretch_full_hist();
    expect_as_stretched(r, 50, 150, 0, 255);
    expect_as_stretched(g, 60, 180, 0, 255);
    expect_as_stretched(b, 70, 200, 0, 255);
    expect_strip_clear();
}

TEST_F(Contrast, TheBannerAndThePlacesBetweenPlotsMeanAllBands)
{
    for (const int y : { 5, BETWEEN_Y, 690 }) {
        open_colour();
        display_hist();
        looks_then([] { EXPECT_NE(pixel(hist_window, 22, 20), 0u); });     // the banner's face
        point_at(hist_window, 150, y);
        stretch_full_hist();
        for (const int n : { r, g, b })
            EXPECT_EQ(bands[n].hist_mapped[0], 100) << y;
        EXPECT_EQ(pixel(hist_window, 22, 20), 0u);
        close_all_windows();
    }
}

TEST_F(Contrast, ThreeBandsOneAfterTheOtherWithOneContrast)
{
    open_colour();
    display_hist();
    presses("accept");
    point_at(hist_window, 100, RED_Y);
    sees(MSG_STATUS, "red: input range 0-255, output range 0-255");
    point_at(hist_window, 100, GREEN_Y);
    sees(MSG_STATUS, "green: input range 0-255, output range 0-255");
    point_at(hist_window, 100, BLUE_Y);
    equalize_full_hist();
    for (const int n : { r, g, b })
        expect_as_equalized(n, 0.5, 0, 255, 0, 255);
    expect_all_invariant();
    expect_strip_clear();
}

TEST_F(Contrast, WordsOfAStretchedBand)
{
    open_colour();
    keys_in("g");
    sees(MSG_STATUS, "green: input range 60-180, output range 0-255");
    resets();
    stretch_full_hist();
    keys_in("Blue");
    sees(MSG_STATUS, "blue: 1%, output range 0-255");
    resets();
    stretch_hist_1percent();
    expect_as_stretched(b, 70, 200, 0, 255);
    expect_identity(r);
}

TEST_F(Contrast, TheChoiceIsSaid)
{
    open_colour();
    keys_in("r");
    sees(MSG_STATUS, "Red band selected");
    resets();
    stretch_clip_in_hist();
    keys_in("A");
    sees(MSG_STATUS, "All bands selected");
    resets();
    stretch_clip_in_hist();
    expect_untouched();
}

TEST_F(Contrast, WhatSelectsNothingEndsTheOperator)
{
    open_colour();
    display_hist();
    resets();
    stretch_full_hist();
    keys_in("x");
    stretch_full_hist();
    point_at(w, 900, 500);                 // a point in another window
    stretch_full_hist();
    operator_does([] { close_window(hist_window); press_key(KEY_ESC); });
    stretch_full_hist();
    expect_untouched();
}

TEST_F(Contrast, WhatWasDoneOnEarlierPassesStays)
{
    open_colour();
    keys_in("r");
    keys_in("60");
    keys_in("140");
    keys_in("g");
    keys_in("70");
    resets();                              // at the green maximum
    stretch_clip_in_hist();
    expect_as_stretched(r, 60, 140, 0, 255);
    expect_identity(g);
    EXPECT_EQ(windows[w].changed, 1);
}

// --- giving up ---------------------------------------------------------------------------------------------------------

TEST_F(Contrast, GivingUpAtEachPromptOfAStretchLeavesTheTables)
{
    open_grey();
    const char *const values[] = { "10", "200", "20", "100" };
    for (int answered = 0; answered < 4; answered++)
        for (const int recursion : { 1, 0 }) {
            recursion_enabled = recursion;
            for (int i = 0; i < answered; i++)
                keys_in(values[i]);
            resets();
            stretch_clip_in_out_hist();
            expect_untouched();
        }
}

TEST_F(Contrast, GivingUpAtEachPromptOfAnEqualizationLeavesTheTables)
{
    open_colour();
    for (const int recursion : { 1, 0 }) {
        recursion_enabled = recursion;
        presses("cancel");
        equalize_full_hist();
        expect_untouched();
        presses("accept");
        resets();
        equalize_full_hist();
        expect_untouched();
        presses("accept");
        keys_in("b");
        keys_in("10");
        keys_in("20");
        resets();
        equalize_clip_in_out_hist();
        expect_untouched();
    }
    presses("cancel");
    stretch_hist_other();
    expect_untouched();
}

TEST_F(Contrast, QuitUnwindsFromEveryPrompt)
{
    open_colour();
    operator_does([] { ws_post_user_event(menu_id_of("File/Exit")); });
    stretch_clip_in_out_hist();
    EXPECT_EQ(quit_requested, 1);
    piecewise_equalize_hist();
    piecewise_stretch_hist();
    scale_hist();
    shift_hist();
    quit_requested = 0;
    expect_untouched();
}

// --- recursion -----------------------------------------------------------------------------------------------------------

TEST_F(Contrast, OperatorsCompoundWithRecursion)
{
    open_grey();
    keys_in("0");
    keys_in("100");
    stretch_clip_in_hist();                // 2.55 again: level 50 shows 127
    keys_in("0");
    keys_in("255");
    keys_in("0");
    keys_in("127");
    stretch_clip_in_out_hist();            // 127 * 127 / 255 = 63.25
    EXPECT_EQ(bands[r].lut[50], 63);
    expect_invariant(r);
}

TEST_F(Contrast, WithoutRecursionEachStartsFromTheRawLevels)
{
    open_grey();
    disable_recursion();
    EXPECT_EQ(recursion_enabled, 0);
    keys_in("0");
    keys_in("100");
    stretch_clip_in_hist();
    expect_as_stretched(r, 0, 100, 0, 255);
    keys_in("0");
    keys_in("255");
    keys_in("0");
    keys_in("127");
    stretch_clip_in_out_hist();
    expect_as_stretched(r, 0, 255, 0, 127);
    enable_recursion();
    EXPECT_EQ(recursion_enabled, 1);
}

TEST_F(Contrast, WithoutRecursionACommandThatDoesNothingPutsTheTablesBack)
{
    open_colour();
    keys_in("a");
    stretch_full_hist();
    int16_t kept[3][256];
    const int numbers[3] = { r, g, b };
    for (int i = 0; i < 3; i++)
        memcpy(kept[i], bands[numbers[i]].lut, sizeof kept[i]);
    disable_recursion();
    looks_then([this] { expect_identity(g); });    // fresh while the operator is asked
    resets();
    stretch_full_hist();
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(memcmp(kept[i], bands[numbers[i]].lut, sizeof kept[i]), 0);
    expect_all_invariant();

    resets();
    piecewise_equalize_hist();             // at the contrast
    resets();
    piecewise_stretch_hist();              // at the band
    keys_in("g");
    resets();
    resets();
    piecewise_stretch_hist();              // at the piece, then at the band
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(memcmp(kept[i], bands[numbers[i]].lut, sizeof kept[i]), 0);
    expect_all_invariant();
}

TEST_F(Contrast, WithoutRecursionOneBandDoneLeavesTheOthersFresh)
{
    open_colour();
    keys_in("a");
    stretch_full_hist();
    disable_recursion();
    keys_in("r");
    resets();
    stretch_hist_2percent();
    expect_as_stretched(r, 50, 150, 0, 255);
    expect_identity(g);
    expect_identity(b);
}

// --- scale and shift -------------------------------------------------------------------------------------------------------

TEST_F(Contrast, ScaleAboutAPointInTheHistogram)
{
    open_grey();
    display_hist();
    sees(MSG_TITLE, "Scale histogram");
    sees(MSG_PROMPT, "Enter scale factor");
    keys_in("2");
    sees(MSG_PROMPT, "Select intensity to scale about (0-255)");
    points_at_level(100, 100);
    scale_hist();
    EXPECT_EQ(bands[r].lut[100], 100);
    EXPECT_EQ(bands[r].lut[110], 120);
    EXPECT_EQ(bands[r].hist_mapped[0], 100);       // 50
    EXPECT_EQ(bands[r].hist_mapped[200], 56);      // 150
    expect_all_invariant();
    expect_strip_clear();
    EXPECT_EQ(windows[w].changed, 1);
}

TEST_F(Contrast, TheIntensityIsKeptWithinTheTable)
{
    open_grey();
    keys_in("0.5");
    keys_in("900");
    scale_hist();
    EXPECT_EQ(bands[r].lut[255], 255);
    EXPECT_EQ(bands[r].lut[155], 205);
    reset_hist();
    keys_in("0.5");
    point_at(w, 900, 500);                 // beside the histogram: 0
    scale_hist();
    EXPECT_EQ(bands[r].lut[100], 50);
}

TEST_F(Contrast, ScaleAndShiftCompoundWithoutRecursionToo)
{
    open_grey();
    disable_recursion();
    keys_in("10");
    shift_hist();
    keys_in("-30");
    shift_hist();
    EXPECT_EQ(bands[r].lut[100], 80);
    EXPECT_EQ(bands[r].lut[0], 0);
    EXPECT_EQ(bands[r].lut[255], 225);             // 255 saturated first
    expect_invariant(r);
}

TEST_F(Contrast, ShiftOfOneBandByMoreThanThePromptSays)
{
    open_colour();
    keys_in("g");
    sees(MSG_PROMPT, "Enter value between -128 and 128");
    keys_in("1000");
    shift_hist();
    EXPECT_EQ(bands[g].hist_mapped[255], 256);
    expect_identity(r);
    expect_identity(b);
}

TEST_F(Contrast, ANumberIsAskedForAgainWhenSomethingElseIsKeyedIn)
{
    open_grey();
    keys_in("much");
    sees(MSG_STATUS, "that is not a number");
    keys_in("5");
    shift_hist();
    EXPECT_EQ(bands[r].lut[100], 105);
}

TEST_F(Contrast, GivingUpAtEachPromptOfScaleAndShift)
{
    open_colour();
    resets();
    scale_hist();
    keys_in("a");
    resets();
    scale_hist();
    keys_in("a");
    keys_in("2");
    resets();
    scale_hist();
    resets();
    shift_hist();
    keys_in("r");
    resets();
    shift_hist();
    expect_untouched();
}

// --- piecewise ---------------------------------------------------------------------------------------------------------------

TEST_F(Contrast, PiecesArePickedInTwoWindows)
{
    open_grey();
    display_hist();
    point_at(source_hist_window, 21 + 40, 100);
    sees(MSG_TITLE, "Piecewise histogram");
    point_at(source_hist_window, 21 + 120, 100);
    sees(MSG_PROMPT, "Select output minimum (0-255)");
    points_at_level(10, 100);
    points_at_level(90, 100);
    // What is placed has left the source: 50 and 100 are gone, 150 stands alone.
    looks_then([] {
        EXPECT_STREQ(msg_text(MSG_STATUS), "input range 40-120, output range 10-90");
        EXPECT_EQ(pixel(source_hist_window, 20 + 100, 233), 0u);
        EXPECT_NE(pixel(source_hist_window, 20 + 150, 233), 0u);
    });
    resets();
    piecewise_stretch_hist();
    // 40 to 120 go to 10 to 90, one to one; all else stays.
    EXPECT_EQ(bands[r].lut[39], 39);
    EXPECT_EQ(bands[r].lut[40], 10);
    EXPECT_EQ(bands[r].lut[100], 70);
    EXPECT_EQ(bands[r].lut[120], 90);
    EXPECT_EQ(bands[r].lut[121], 121);
    EXPECT_EQ(bands[r].hist_mapped[20], 100);
    EXPECT_EQ(bands[r].hist_mapped[70], 100);
    EXPECT_EQ(bands[r].hist_mapped[150], 56);
    expect_invariant(r);
    EXPECT_EQ(source_hist_window, -1);
    EXPECT_EQ(windows[w].changed, 1);
    expect_strip_clear();
}

TEST_F(Contrast, PointsInTheWrongWindowBeginThePieceAgain)
{
    open_grey();
    display_hist();
    points_at_level(40, 100);              // an input level belongs to the source
    sees(MSG_STATUS, "Select input range from source histogram");
    sees(MSG_PROMPT, "Select input minimum (0-255)");
    keys_in("40");
    keys_in("120");
    point_at(source_hist_window, 21 + 10, 100);
    sees(MSG_STATUS, "Select output range from original histogram");
    sees(MSG_PROMPT, "Select input minimum (0-255)");
    keys_in("40");
    resets();                              // at the second value: again from the first
    sees(MSG_PROMPT, "Select input minimum (0-255)");
    for (const char *text : { "40", "120", "10", "90" })
        keys_in(text);
    resets();
    piecewise_stretch_hist();
    EXPECT_EQ(bands[r].lut[100], 70);
}

TEST_F(Contrast, ValuesOutsideTheTableAreThePiecesDefaults)
{
    open_grey();
    for (const char *text : { "-5", "999", "256", "100" })
        keys_in(text);
    resets();
    piecewise_stretch_hist();              // 0 to 255 over 0 to 100
    EXPECT_EQ(bands[r].lut[255], 100);
    EXPECT_EQ(bands[r].lut[50], 20);       // 19.6
    expect_invariant(r);
}

TEST_F(Contrast, TwoPiecesStartFromTheSameTable)
{
    // Both pieces take the table of the selection: the second does not see what the first has made of it.
    open_grey();
    for (const char *text : { "0", "75", "0", "150" })
        keys_in(text);
    for (const char *text : { "76", "255", "151", "255" })
        keys_in(text);
    resets();
    piecewise_stretch_hist();
    EXPECT_EQ(bands[r].lut[50], 100);
    EXPECT_EQ(bands[r].lut[75], 150);
    EXPECT_EQ(bands[r].lut[76], 151);
    EXPECT_EQ(bands[r].lut[255], 255);
    EXPECT_EQ(bands[r].lut[100], 165);     // 151 + 24 * 104 / 179 = 164.9
    expect_invariant(r);
}

TEST_F(Contrast, PiecewiseEqualizationAsksForItsContrast)
{
    open_grey();
    sees(MSG_PROMPT, "Enter contrast value (0-1)");
    keys_in("1");
    for (const char *text : { "0", "120", "0", "255" })
        keys_in(text);
    resets();
    piecewise_equalize_hist();
    // 50 and 100 have 100 each of 200.
    EXPECT_EQ(bands[r].lut[49], 0);
    EXPECT_EQ(bands[r].lut[50], 128);
    EXPECT_EQ(bands[r].lut[100], 255);
    EXPECT_EQ(bands[r].lut[121], 121);
    expect_invariant(r);
}

TEST_F(Contrast, PiecewiseTakesOneBandAfterTheOtherButNeverAll)
{
    open_colour();
    display_hist();
    point_at(hist_window, 150, BETWEEN_Y); // asks again
    keys_in("a");                          // asks again
    sees(MSG_PROMPT, "Select histogram (point or keyin)");
    point_at(hist_window, 150, BLUE_Y);
    looks_then([] { EXPECT_EQ(windows[source_hist_window].y, 87 + 442); });
    for (const char *text : { "60", "80", "100", "120" })
        keys_in(text);
    sees(MSG_STATUS, "blue: input range 60-80, output range 100-120");
    resets();
    keys_in("R");
    for (const char *text : { "40", "60", "200", "220" })
        keys_in(text);
    resets();
    resets();
    piecewise_stretch_hist();
    EXPECT_EQ(bands[b].lut[70], 110);
    EXPECT_EQ(bands[r].lut[50], 210);
    expect_identity(g);
    expect_all_invariant();
    EXPECT_EQ(source_hist_window, -1);
}

TEST_F(Contrast, TheOperatorMayCloseTheSourceWindow)
{
    open_grey();
    operator_does([] { close_window(source_hist_window); next_action(); });
    for (const char *text : { "40", "120", "10", "90" })
        keys_in(text);
    resets();
    piecewise_stretch_hist();
    EXPECT_EQ(bands[r].lut[100], 70);
    EXPECT_EQ(source_hist_window, -1);
}

TEST_F(Contrast, RefreshingDrawsTheSourceWindowAgain)
{
    open_grey();
    looks_then([] {
        EXPECT_NE(pixel(source_hist_window, 20 + 150, 233), 0u);
        ws_clear_window(source_hist_window);
        redraw_all();
        EXPECT_NE(pixel(source_hist_window, 20 + 150, 233), 0u);
        EXPECT_EQ(pixel(source_hist_window, 20 + 151, 230), 0u);
    });
    resets();
    piecewise_stretch_hist();
}

// --- all together ------------------------------------------------------------------------------------------------------------

TEST_F(Contrast, ThePictureGoesWhileAnOperatorAsks)
{
    open_grey();
    operator_does([] { close_all_windows(); next_action(); });
    keys_in("10");
    keys_in("20");
    stretch_clip_in_hist();
    EXPECT_EQ(active_window, -1);
    open_grey();
    operator_does([] { close_all_windows(); next_action(); });
    for (const char *text : { "10", "20", "30", "40" })
        keys_in(text);
    piecewise_stretch_hist();
    EXPECT_EQ(source_hist_window, -1);
    open_colour();
    operator_does([] { close_all_windows(); next_action(); });
    keys_in("a");
    keys_in("20");
    shift_hist();
}

TEST_F(Contrast, AnAfternoonOfRandomCommandsKeepsEveryHistogramWithItsTable)
{
    static char texts[400][8];
    int used = 0;
    std::mt19937 random(8);
    open_colour();
    display_hist();
    const auto number = [&](int most) {
        char *text = texts[used++];
        snprintf(text, sizeof *texts, "%d", int(random() % unsigned(most)));
        return (const char *)text;
    };
    for (int turn = 0; turn < 40; turn++) {
        recursion_enabled = random() & 1;
        const char *const band = (const char *[]){ "a", "r", "g", "b" }[random() & 3];
        const bool all = band[0] == 'a';
        switch (random() % 5) {
        case 0:
            keys_in(band);
            for (int i = 0; i < 4; i++)
                keys_in(number(256));
            if (!all)
                resets();
            stretch_clip_in_out_hist();
            break;
        case 1:
            presses("accept");
            keys_in(band);
            for (int i = 0; i < 4; i++)
                keys_in(number(256));
            if (!all)
                resets();
            equalize_clip_in_out_hist();
            break;
        case 2:
            keys_in(all ? "g" : band);
            for (int i = 0; i < 8; i++)
                keys_in(number(256));
            resets();
            resets();
            piecewise_stretch_hist();
            break;
        case 3:
            keys_in(band);
            keys_in(number(4));
            keys_in(number(256));
            scale_hist();
            break;
        default:
            keys_in(band);
            keys_in(number(60));
            shift_hist();
        }
        expect_all_invariant();
        if (HasFailure())
            FAIL() << "turn " << turn;
    }
}
