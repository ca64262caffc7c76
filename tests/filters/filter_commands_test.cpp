#include "filters/command_session.h"

#include "display/colour_commands.h"
#include "filters/neighbourhood.h"

namespace {

struct FilterCommands : CommandSession {};

plane edges(const plane &in, const level_map &map, int rows, int cols, int angle)
{
    plane out(in.size());
    edge_filter(in.data(), out.data(), map.data(), rows, cols, angle, edge_base_kernel);
    return out;
}

typedef int (*cross_filter)(const uint8_t *, uint8_t *, const int16_t *, int, int);

plane crossed(cross_filter filter, const plane &in, const level_map &map, int rows, int cols)
{
    plane out(in.size());
    filter(in.data(), out.data(), map.data(), rows, cols);
    return out;
}

} // namespace

TEST_F(FilterCommands, DirectionalEdgesReplaceTheImageAndBurnItsTableIn)
{
    open_grey();
    set_random_lut(r, 5);
    const plane before = pixels(r), want = edges(before, lut_of(r), 12, 17, 135);
    sees(MSG_TITLE, "Edge detection - directional filter");
    sees(MSG_PROMPT, "Select angle of emphasis (0=vertical)");
    accepts("Angle", "135");
    edge_det();
    EXPECT_EQ(pixels(r), want);
    EXPECT_EQ(copy_of(r), before);
    expect_identity(r);
    expect_counted(r);
    EXPECT_EQ(windows[w].changed, 1);
    expect_strip_clear();
}

TEST_F(FilterCommands, UndoBringsTheImageBackAndDoesTheEditAgain)
{
    open_grey();
    const plane before = pixels(r);
    accepts("Edge Enhance", "6");
    edge_enh();
    const plane after = pixels(r);
    EXPECT_NE(after, before);
    undo();
    EXPECT_EQ(pixels(r), before);
    expect_counted(r);
    undo();
    EXPECT_EQ(pixels(r), after);
}

TEST_F(FilterCommands, CancelLeavesEverything)
{
    open_grey();
    const plane before = pixels(r);
    presses("cancel");
    edge_det();
    resets();
    edge_enh();
    presses("cancel");
    smoothing();
    EXPECT_EQ(pixels(r), before);
    EXPECT_EQ(bands[r].undo_data, nullptr);
    EXPECT_EQ(windows[w].changed, 0);
    expect_strip_clear();
}

TEST_F(FilterCommands, EachBandOfAColourImageIsFiltered)
{
    open_colour();
    set_random_lut(g, 9);
    plane want[3];
    const int numbers[3] = { r, g, b };
    for (int i = 0; i < 3; i++)
        want[i] = edges(pixels(numbers[i]), lut_of(numbers[i]), 12, 17, 0);
    accepts("Angle", "0");
    edge_det();
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(pixels(numbers[i]), want[i]) << i;
        expect_identity(numbers[i]);
        expect_counted(numbers[i]);
    }
}

TEST_F(FilterCommands, SmoothingReadsRawBytesAndKeepsTheTable)
{
    open_grey();
    set_random_lut(r, 5);
    const level_map lut = lut_of(r);
    const plane before = pixels(r);
    plane want(before.size());
    smooth_filter(before.data(), want.data(), 12, 17, 4, 4);
    accepts("Smoothing", "4");
    smoothing();
    EXPECT_EQ(pixels(r), want);
    EXPECT_EQ(lut_of(r), lut);
    expect_counted(r);
    expect_strip_clear();
}

TEST_F(FilterCommands, SmoothingStartsAtTheLastSize)
{
    open_grey();
    accepts("Smoothing", "7");
    smoothing();
    looks_then([] { EXPECT_STREQ(form_text_of(form_top(), form_find_kind(form_top(), GADGET_FIELD, "Smoothing")->label), "7"); });
    presses("cancel");
    smoothing();
    accepts("Smoothing", "3");
    smoothing();
}

TEST_F(FilterCommands, ABandTooSmallTakesWhatItsUndoBufferHolds)
{
    open_grey(20, 8);
    const plane before = pixels(r);
    accepts("Smoothing", "9");
    smoothing();
    EXPECT_EQ(pixels(r), plane(160, 0));       // a fresh buffer
    EXPECT_EQ(copy_of(r), before);
    EXPECT_EQ(windows[w].changed, 1);
    accepts("Smoothing", "3");
    undo();
    smoothing();
    const plane smooth = pixels(r);
    accepts("Smoothing", "9");
    smoothing();
    EXPECT_EQ(pixels(r), before);              // the buffer from the edit before
    EXPECT_EQ(copy_of(r), smooth);
}

TEST_F(FilterCommands, WithoutUndoBufferNothingIsFiltered)
{
    open_grey();
    const plane before = pixels(r);
    mem_fail_countdown = 0;
    sobel();
    mem_fail_countdown = -1;
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error allocating space");
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
    EXPECT_EQ(pixels(r), before);
    EXPECT_EQ(bands[r].undo_data, nullptr);
    EXPECT_EQ(windows[w].changed, 0);
    accepts("Edge Enhance", "8");
    operator_actions.push_back([action = operator_actions.front()] { action(); mem_fail_countdown = 0; });
    operator_actions.pop_front();
    edge_enh();
    mem_fail_countdown = -1;
    EXPECT_STREQ(msg_text(MSG_STATUS), "failed to allocate memory for undo buffer");
    EXPECT_EQ(pixels(r), before);
    EXPECT_EQ(windows[w].changed, 0);
}

TEST_F(FilterCommands, SobelAndRobertsBurnTheTableIn)
{
    open_grey();
    set_random_lut(r, 3);
    plane want = crossed(sobel_l, pixels(r), lut_of(r), 12, 17);
    sobel();
    EXPECT_EQ(pixels(r), want);
    expect_identity(r);
    expect_counted(r);
    expect_strip_clear();
    set_random_lut(r, 4);
    want = crossed(roberts_l, pixels(r), lut_of(r), 12, 17);
    roberts();
    EXPECT_EQ(pixels(r), want);
    expect_identity(r);
    EXPECT_EQ(windows[w].changed, 1);
    expect_strip_clear();
}

TEST_F(FilterCommands, SobelShowsAllBandsOfAColourImage)
{
    open_colour();
    const plane want_g = crossed(sobel_l, pixels(g), lut_of(g), 12, 17), want_b = crossed(sobel_l, pixels(b), lut_of(b), 12, 17);
    sobel();
    EXPECT_EQ(pixels(g), want_g);
    EXPECT_EQ(pixels(b), want_b);
    expect_counted(g);
}

TEST_F(FilterCommands, RobertsLeavesGreenAndBlueInTheirUndoBuffers)
{
    open_colour();
    set_random_lut(g, 3);
    const plane red = pixels(r), green = pixels(g), blue = pixels(b);
    const plane want_r = crossed(roberts_l, red, lut_of(r), 12, 17), want_g = crossed(roberts_l, green, lut_of(g), 12, 17);
    roberts();
    EXPECT_EQ(pixels(r), want_r);
    EXPECT_EQ(pixels(g), green);
    EXPECT_EQ(copy_of(g), want_g);
    EXPECT_EQ(pixels(b), blue);
    expect_identity(g);                        // the tables of all three are reset
    undo();
    EXPECT_EQ(pixels(r), red);
    EXPECT_EQ(pixels(g), want_g);
}

TEST_F(FilterCommands, AColourImageShownAsOneBandHasOnlyThatFiltered)
{
    open_colour();
    red_to_mono();
    const plane green = pixels(g), want = crossed(sobel_l, pixels(r), lut_of(r), 12, 17);
    sobel();
    EXPECT_EQ(pixels(r), want);
    EXPECT_EQ(pixels(g), green);
    EXPECT_EQ(bands[g].undo_data, nullptr);
}

TEST_F(FilterCommands, AnImageTooSmallForSobelIsToldAndKept)
{
    open_grey(2, 9);
    const plane before = pixels(r);
    sobel();
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error <-102> in sobel_l");
    EXPECT_EQ(pixels(r), before);
    EXPECT_EQ(windows[w].changed, 0);
}

TEST_F(FilterCommands, AnImageTooSmallForRobertsIsToldAndKept)
{
    open_grey(1, 9);
    const plane before = pixels(r);
    roberts();
    EXPECT_STREQ(msg_text(MSG_STATUS), "Error <-102> in roberts_l");
    EXPECT_EQ(pixels(r), before);
}

TEST_F(FilterCommands, NothingHappensWithoutAWindow)
{
    edge_det();
    edge_enh();
    smoothing();
    sobel();
    roberts();
    apply();
    invert();
    rgbihs();
    ihsrgb();
    flip();
    mirror();
    transpose();
    undo();
    expect_strip_clear();
}

TEST_F(FilterCommands, OneBitImagesAreRefusedInWords)
{
    int step = 1;
    EXPECT_EQ(band_create(9, 5, &step, KIND_BIN, "bits.cit", &r), 1);
    opened(show_grey(r));
    for (const auto command : { sobel, roberts, apply, invert, flip, mirror, transpose }) {
        msg_clear(MSG_STATUS);
        command();
        EXPECT_STREQ(msg_text(MSG_STATUS), "The image has no levels in memory to work on");
        EXPECT_STREQ(msg_text(MSG_TITLE), "");
    }
    EXPECT_EQ(windows[w].changed, 0);
}
