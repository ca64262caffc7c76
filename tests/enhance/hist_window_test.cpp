// The histogram window, pixel by pixel.
#include "enhance/hist_session.h"

#include "enhance/contrast_maps.h"
#include "enhance/hist_plot.h"
#include "enhance/hist_window.h"

namespace {

constexpr uint32_t WHITE = 0xFFFFFF, GREY = 0xAAAAAA, BLACK = 0;

struct HistWindow : HistSession {};
struct HistWindowSmall : HistSession {
    HistWindowSmall() { screen_w = 800, screen_h = 600; }
};
struct HistWindowEightPlanes : HistSession {
    HistWindowEightPlanes() { screen_depth = 8; }
};
struct HistWindowFourPlanes : HistSession {
    HistWindowFourPlanes() { screen_depth = 4; }
};

// The levels of the plots here: between the first and the last, 20 has the most counts.
std::initializer_list<std::pair<int, int>> four_levels = { { 10, 100 }, { 20, 50 }, { 30, 25 }, { 40, 81 } };

// A bar of `height` pixels above the axis, and the background above it.
void expect_bar(int column, int baseline, int height, uint32_t colour)
{
    for (int up = 1; up <= height; up++)
        ASSERT_EQ(pixel(hist_window, column, baseline - up), colour) << "column " << column << ", " << up << " above the axis";
    EXPECT_EQ(pixel(hist_window, column, baseline - height - 1), BLACK) << "above column " << column;
}

void expect_axis(int w, int baseline, uint32_t colour)
{
    for (int x = 20; x <= 275; x++)
        ASSERT_EQ(pixel(w, x, baseline), colour) << x;
    EXPECT_EQ(pixel(w, 276, baseline), BLACK);
    EXPECT_EQ(pixel(w, 19, baseline - 1), BLACK);
    for (int level = 0; level <= 250; level += 50)
        for (int down = 1; down <= 2; down++) {
            EXPECT_EQ(pixel(w, 20 + level, baseline + down), colour) << level;
            EXPECT_EQ(pixel(w, 21 + level, baseline + down), BLACK) << level;
        }
}

} // namespace

// --- bar heights -----------------------------------------------------------------------------------------------------

TEST(BarHeights, TheOutermostOccupiedLevelsDoNotCount)
{
    // The most between 10 and 40 is 50, so the scale is 50 / 200.
    int32_t counts[256] = {};
    int heights[256];
    counts[10] = 1000;
    counts[20] = 50;
    counts[30] = 25;
    counts[40] = 9999;
    bar_heights(counts, 200, heights);
    EXPECT_EQ(heights[20], 200);
    EXPECT_EQ(heights[30], 100);
    EXPECT_GT(heights[10], 200);
    EXPECT_GT(heights[40], 200);
    EXPECT_EQ(heights[25], 0);
}

TEST(BarHeights, RoundUpFromAboveAHalf)
{
    // Scale 1000 / 200 = 5: counts of 1, 2, 3, 12 and 13 are 0.2, 0.4, 0.6, 2.4 and 2.6 high.
    int32_t counts[256] = {};
    int heights[256];
    counts[0] = counts[255] = 1;
    counts[100] = 1000;
    counts[1] = 2;
    counts[2] = 3;
    counts[3] = 12;
    counts[4] = 13;
    bar_heights(counts, 200, heights);
    EXPECT_EQ(heights[0], 0);
    EXPECT_EQ(heights[1], 0);
    EXPECT_EQ(heights[2], 1);
    EXPECT_EQ(heights[3], 2);
    EXPECT_EQ(heights[4], 3);
    counts[100] = 400;                     // scale 2: 13 is 6.5, and a half goes down
    bar_heights(counts, 200, heights);
    EXPECT_EQ(heights[4], 6);
}

TEST(BarHeights, OneLevelAloneOverflows)
{
    int32_t counts[256] = {};
    int heights[256];
    counts[77] = 256;
    bar_heights(counts, 200, heights);
    EXPECT_GT(heights[77], 200);
}

TEST(BarHeights, TwoLevelsStandAsTheirCounts)
{
    int32_t counts[256] = {};
    int heights[256];
    counts[3] = 200;
    counts[9] = 202;
    bar_heights(counts, 200, heights);
    EXPECT_EQ(heights[3], 200);
    EXPECT_GT(heights[9], 200);
    counts[9] = 1;
    bar_heights(counts, 200, heights);
    EXPECT_EQ(heights[9], 1);
}

TEST(BarHeights, AnEmptyHistogramHasNone)
{
    int32_t counts[256] = {};
    int heights[256];
    bar_heights(counts, 200, heights);
    for (const int height : heights)
        EXPECT_EQ(height, 0);
}

// --- places ----------------------------------------------------------------------------------------------------------

TEST_F(HistWindow, OpensWhereItBelongs)
{
    const int w = show_grey(make_band(16, four_levels));
    display_hist();
    const win_rec &hist = windows[hist_window];
    EXPECT_EQ(hist.x, 5);
    EXPECT_EQ(hist.y, 87);
    EXPECT_EQ(hist.x + hist.width - 1, 289);
    EXPECT_EQ(hist.y + hist.height - 1, 338);
    EXPECT_EQ(hist.flags, WIN_DISPLAYED | WIN_HISTOGRAM);
    EXPECT_STREQ(hist.name, "histogram");
    EXPECT_STREQ(ws_title(hist_window), "histogram");
    EXPECT_EQ(hist.linked_window, w);
    EXPECT_EQ(active_window, w);
}

TEST_F(HistWindow, AColourWindowHoldsThreePlots)
{
    const int n = make_band(16, four_levels);
    show_colour(n, make_band(16, four_levels), make_band(16, four_levels));
    display_hist();
    EXPECT_EQ(windows[hist_window].y + windows[hist_window].height - 1, 780);
    open_source_hist(2);
    EXPECT_EQ(windows[source_hist_window].x, 299);
    EXPECT_EQ(windows[source_hist_window].x + windows[source_hist_window].width - 1, 583);
    EXPECT_EQ(windows[source_hist_window].y, 87 + 442);
    EXPECT_EQ(windows[source_hist_window].y + windows[source_hist_window].height - 1, 338 + 442);
    EXPECT_STREQ(ws_title(source_hist_window), "source histogram");
    const int first = source_hist_window;
    open_source_hist(0);                   // the earlier one goes
    EXPECT_EQ(windows[source_hist_window].y, 87);
    int open = 0;
    for (int w = 0; w < WINDOWS; w++)
        open += (windows[w].flags & WIN_HISTOGRAM) != 0;
    EXPECT_EQ(open, 2);
    (void)first;
}

TEST_F(HistWindow, InSplitScreenItMovesRight)
{
    show_grey(make_band(16, four_levels));
    display_mode |= SPLIT_SCR;
    display_hist();
    EXPECT_EQ(windows[hist_window].x, 5 + 640 - 142);
    open_source_hist(0);
    EXPECT_EQ(windows[source_hist_window].x, 299 + 640 - 142);
    display_mode &= ~uint32_t{SPLIT_SCR};
}

TEST_F(HistWindowSmall, OpensLowerAndShorter)
{
    const int n = make_band(16, four_levels);
    show_colour(n, make_band(16, four_levels), make_band(16, four_levels));
    display_hist();
    EXPECT_EQ(windows[hist_window].y, 32);
    EXPECT_EQ(windows[hist_window].y + windows[hist_window].height - 1, 414);
    open_source_hist(1);
    EXPECT_EQ(windows[source_hist_window].y, 32 + 121);
    EXPECT_EQ(windows[source_hist_window].y + windows[source_hist_window].height - 1, 172 + 121);
}

TEST_F(HistWindow, PlotsAndLevelsOfPoints)
{
    EXPECT_EQ(hist_plot_at(32), -1);
    EXPECT_EQ(hist_plot_at(33), 0);
    EXPECT_EQ(hist_plot_at(33 + 211), 0);
    EXPECT_EQ(hist_plot_at(33 + 212), -1);
    EXPECT_EQ(hist_plot_at(254), 1);
    EXPECT_EQ(hist_plot_at(465), 1);
    EXPECT_EQ(hist_plot_at(475), 2);
    EXPECT_EQ(hist_plot_at(686), 2);
    EXPECT_EQ(hist_plot_at(687), -1);
    EXPECT_EQ(hist_level_at(21), 0);       // the column right of the bar of level 0
    EXPECT_EQ(hist_level_at(276), 255);
}

// --- plots -----------------------------------------------------------------------------------------------------------

TEST_F(HistWindow, AGreyPlot)
{
    show_grey(make_band(16, four_levels));
    display_hist();
    constexpr int baseline = 33 + 201;
    expect_bar(30, baseline, 200, WHITE);  // level 10 does not fit
    expect_bar(40, baseline, 200, GREY);
    expect_bar(50, baseline, 100, GREY);
    expect_bar(60, baseline, 200, WHITE);
    expect_bar(45, baseline, 0, GREY);
    expect_axis(hist_window, baseline, WHITE);
}

TEST_F(HistWindowSmall, AGreyPlotOfHalfTheHeight)
{
    // Scale 50 / 100.
    show_grey(make_band(16, four_levels));
    display_hist();
    constexpr int baseline = 22 + 101;
    expect_bar(30, baseline, 100, WHITE);
    expect_bar(40, baseline, 100, GREY);
    expect_bar(50, baseline, 50, GREY);
    expect_axis(hist_window, baseline, WHITE);
}

TEST_F(HistWindow, ABandOfOneLevelIsOneFullBar)
{
    show_grey(make_band(16, { { 128, 256 } }));
    display_hist();
    expect_bar(148, 234, 200, WHITE);
    expect_bar(147, 234, 0, WHITE);
}

TEST_F(HistWindow, ThreePlotsInTheirColours)
{
    const int r = make_band(16, four_levels), g = make_band(16, { { 60, 60 }, { 70, 40 }, { 80, 156 } });
    show_colour(r, g, make_band(16, { { 100, 100 }, { 110, 1 }, { 120, 155 } }));
    display_hist();
    expect_bar(40, 234, 200, 0xFF0000);
    expect_bar(50, 234, 100, 0xFF0000);
    expect_bar(90, 234 + 221, 200, 0x00FF00);
    expect_bar(130, 234 + 442, 200, 0x0000FF);
    for (int plot = 0; plot < 3; plot++)
        expect_axis(hist_window, 234 + 221 * plot, WHITE);
}

TEST_F(HistWindowEightPlanes, SlotsOfTheColourTable)
{
    const int r = make_band(16, four_levels);
    show_colour(r, make_band(16, four_levels), make_band(16, four_levels));
    display_hist();
    for (int plot = 0; plot < 3; plot++) {
        const int baseline = 234 + 221 * plot;
        expect_bar(50, baseline, 100, uint32_t(8 + plot));
        expect_bar(30, baseline, 200, 255);
        expect_axis(hist_window, baseline, 255);
    }
}

TEST_F(HistWindowFourPlanes, SlotsOfTheColourTable)
{
    show_grey(make_band(16, four_levels));
    display_hist();
    expect_bar(50, 234, 100, 5);
    expect_bar(30, 234, 200, 15);
    expect_axis(hist_window, 234, 15);
}

TEST_F(HistWindow, ThePlotShowsWhatTheTableMakesOfTheLevels)
{
    const int n = make_band(16, four_levels);
    show_grey(n);
    shift_map(bands[n].hist_mapped, bands[n].lut, 100);
    display_hist();
    expect_bar(150, 234, 100, GREY);
    expect_bar(50, 234, 0, GREY);
}

// --- the label -------------------------------------------------------------------------------------------------------

// What is written beside the plot is the label as text, turned a quarter anticlockwise: its start at the baseline.
static void expect_turned_label(const char *label, int plot_height, int baseline)
{
    int w;
    const int length = plot_height + 8;
    ASSERT_EQ(ws_create_plain_window(screen_no, 300, 300, 300 + length - 1, 317, &w), 0);
    ws_show_window(w);
    ws_set_foreground(w, 255);
    ws_draw_text(w, font_mid, 0, 0, label, int(strlen(label)));
    int inked = 0;
    for (int x = 0; x < length; x++)
        for (int y = 0; y < 18; y++) {
            const bool ink = pixel(w, x, y) != 0;
            ASSERT_EQ(pixel(hist_window, 2 + y, baseline - x), ink ? WHITE : BLACK) << "column " << x << " row " << y << " of the text";
            inked += ink;
        }
    EXPECT_GT(inked, 30);
    for (int x = 20; x < 20 + length; x++)
        for (int y = 0; y < 18; y++)
            ASSERT_EQ(pixel(hist_window, x, y), BLACK) << "the place where it was written first";
    ws_delete_window(w);
}

TEST_F(HistWindow, TheLabelReadsUpwardBesideThePlot)
{
    show_grey(make_band(16, four_levels, "lake.pgm"));
    display_hist();
    expect_turned_label("lake.pgm", 200, 234);
}

TEST_F(HistWindowSmall, ALongLabelIsCutToThePlot)
{
    show_grey(make_band(16, four_levels, "a_very_long_name_of.pgm"));
    display_hist();
    expect_turned_label("a_very_long_name_of.pgm", 100, 123);
}

TEST_F(HistWindow, ABandWithoutALabelHasNone)
{
    show_grey(make_band(16, four_levels));
    display_hist();
    for (int y = 0; y < 234; y++)
        for (int x = 0; x < 20; x++)
            ASSERT_EQ(pixel(hist_window, x, y), BLACK);
}

// --- parts -----------------------------------------------------------------------------------------------------------

static void mark(int x, int y)
{
    ws_set_foreground(hist_window, 0x123456);
    ws_fill_rect(hist_window, x, y, x, y);
}

TEST_F(HistWindow, ARectangleIsClearedAndItsPlotsRedrawn)
{
    const int r = make_band(16, four_levels, "r.pgm");
    show_colour(r, make_band(16, four_levels), make_band(16, four_levels));
    display_hist();
    mark(10, 40);                          // in the margin of the first plot
    mark(100, 100);
    mark(100, 300);                        // in the second plot
    draw_hist_plot(0);
    EXPECT_EQ(pixel(hist_window, 100, 100), BLACK);
    EXPECT_EQ(pixel(hist_window, 10, 40), 0x123456u);
    EXPECT_EQ(pixel(hist_window, 100, 300), 0x123456u);
    expect_bar(50, 234, 100, 0xFF0000);
    draw_hist(0, 33, 283, 244);            // reaches the margin: the label is drawn too
    EXPECT_EQ(pixel(hist_window, 10, 40), BLACK);
    draw_hist(-1, 5, 5, 5);                // any negative value is the whole window
    EXPECT_EQ(pixel(hist_window, 100, 300), BLACK);
}

TEST_F(HistWindow, BesideThePlotsNothingIsDrawn)
{
    show_grey(make_band(16, four_levels));
    display_hist();
    draw_hist(284, 0, 284, 251);           // right of the plots
    expect_bar(50, 234, 100, GREY);
    mark(50, 200);
    draw_hist(0, 0, 19, 251);              // left of them
    EXPECT_EQ(pixel(hist_window, 50, 200), 0x123456u);
}

TEST_F(HistWindow, ACollapsedWindowIsLeftAlone)
{
    show_grey(make_band(16, four_levels));
    display_hist();
    mark(100, 100);
    windows[hist_window].flags |= WIN_COLLAPSED;
    draw_hist(-1, -1, -1, -1);
    EXPECT_EQ(pixel(hist_window, 100, 100), 0x123456u);
    windows[hist_window].flags &= int16_t(~WIN_COLLAPSED);
    draw_hist(-1, -1, -1, -1);
    EXPECT_EQ(pixel(hist_window, 100, 100), BLACK);
}

TEST_F(HistWindow, TheSourceHistogramHasGreyBarsAndNoLabel)
{
    const int n = make_band(16, four_levels, "r.pgm");
    show_colour(n, make_band(16, four_levels), make_band(16, four_levels));
    open_source_hist(2);
    draw_source_hist(bands[n].hist_mapped);
    EXPECT_EQ(pixel(source_hist_window, 50, 234 - 100), GREY);
    EXPECT_EQ(pixel(source_hist_window, 50, 234 - 101), BLACK);
    EXPECT_EQ(pixel(source_hist_window, 30, 34), WHITE);
    expect_axis(source_hist_window, 234, WHITE);
    for (int y = 0; y < 230; y++)
        for (int x = 0; x < 20; x++)
            ASSERT_EQ(pixel(source_hist_window, x, y), BLACK);
    draw_source_hist(nullptr);
}

// --- density slice ---------------------------------------------------------------------------------------------------

TEST_F(HistWindowEightPlanes, TheSliceStripLiesOverTheAxisThroughTheTable)
{
    const int n = make_band(16, four_levels), w = show_grey(n);
    shift_map(bands[n].hist_mapped, bands[n].lut, 100);
    for (int level = 10; level <= 19; level++)
        bands[n].slice_colors[level] = 9;
    bands[n].slice_colors[20] = 12;
    windows[w].slice_band = int16_t(n);
    display_hist();
    for (int y = 233; y <= 235; y++) {
        EXPECT_EQ(pixel(hist_window, 20 + 110, y), 9u);
        EXPECT_EQ(pixel(hist_window, 20 + 119, y), 9u);
        EXPECT_EQ(pixel(hist_window, 20 + 120, y), 12u);
        EXPECT_NE(pixel(hist_window, 20 + 121, y), 12u);
        EXPECT_NE(pixel(hist_window, 20 + 109, y), 9u);
    }
    expect_bar(150, 234, 100, 5);          // the mapped histogram
}

TEST_F(HistWindowEightPlanes, WhileASliceIsDefinedTheHeldLevelsAreShown)
{
    const int n = make_band(16, four_levels), w = show_grey(n);
    shift_map(bands[n].hist_mapped, bands[n].lut, 100);
    for (int level = 10; level <= 19; level++)
        bands[n].slice_colors[level] = 9;
    windows[w].slice_band = int16_t(n);
    display_mode |= DEFINING_SLICE;
    display_hist();
    EXPECT_EQ(pixel(hist_window, 20 + 10, 234), 9u);
    EXPECT_EQ(pixel(hist_window, 20 + 19, 234), 9u);
    EXPECT_EQ(pixel(hist_window, 20 + 110, 234), 255u);
    expect_bar(50, 234, 100, 5);
    display_mode &= ~uint32_t{DEFINING_SLICE};
}

TEST_F(HistWindowEightPlanes, AFallingTableTurnsTheStripRound)
{
    const int n = make_band(16, four_levels), w = show_grey(n);
    for (int v = 0; v < 256; v++)
        bands[n].lut[v] = int16_t(255 - v);
    for (int level = 10; level <= 19; level++)
        bands[n].slice_colors[level] = 9;
    windows[w].slice_band = int16_t(n);
    display_hist();
    EXPECT_EQ(pixel(hist_window, 20 + 236, 234), 9u);
    EXPECT_EQ(pixel(hist_window, 20 + 245, 234), 9u);
    EXPECT_EQ(pixel(hist_window, 20 + 10, 234), 255u);
}

TEST_F(HistWindowEightPlanes, ASlicedBandOfAColourImageIsGrey)
{
    const int r = make_band(16, four_levels), w = show_colour(r, make_band(16, four_levels), make_band(16, four_levels));
    windows[w].slice_band = int16_t(r);
    display_hist();
    expect_bar(50, 234, 100, 5);
    expect_bar(50, 234 + 221, 100, 9);
}
