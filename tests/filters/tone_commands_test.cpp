#include "filters/command_session.h"

#include "filters/ihs.h"

namespace {

struct ToneCommands : CommandSession {};

} // namespace

TEST_F(ToneCommands, ColoursBecomeIntensityHueAndSaturation)
{
    open_colour();
    set_random_lut(b, 5);
    plane want[3] = { pixels(r), pixels(g), pixels(b) };
    const plane before = want[0];
    rgb_to_ihs(want[0].data(), want[1].data(), want[2].data(), bands[r].lut, bands[g].lut, bands[b].lut, 12, 17);
    rgbihs();
    EXPECT_EQ(pixels(r), want[0]);
    EXPECT_EQ(pixels(g), want[1]);
    EXPECT_EQ(pixels(b), want[2]);
    for (const int n : { r, g, b }) {
        expect_identity(n);
        expect_counted(n);
    }
    EXPECT_STREQ(bands[r].label, "intensity");
    EXPECT_STREQ(bands[g].label, "hue");
    EXPECT_STREQ(bands[b].label, "saturation");
    EXPECT_STREQ(windows[w].name, "intensity-hue-saturation");
    EXPECT_EQ(windows[w].changed, 1);
    expect_strip_clear();
    undo();
    EXPECT_EQ(pixels(r), before);
}

TEST_F(ToneCommands, IntensityHueAndSaturationBecomeColours)
{
    open_colour();
    plane want[3] = { pixels(r), pixels(g), pixels(b) };
    ihs_to_rgb(want[0].data(), want[1].data(), want[2].data(), bands[r].lut, bands[g].lut, bands[b].lut, 12, 17);
    ihsrgb();
    EXPECT_EQ(pixels(r), want[0]);
    EXPECT_EQ(pixels(g), want[1]);
    EXPECT_EQ(pixels(b), want[2]);
    EXPECT_STREQ(windows[w].name, "RED-GRN-BLU");
}

TEST_F(ToneCommands, TwiceForwardTakesTheCodingForColours)
{
    open_colour();
    plane want[3] = { pixels(r), pixels(g), pixels(b) };
    const plane once_from = want[0];
    for (int turn = 0; turn < 2; turn++)
        rgb_to_ihs(want[0].data(), want[1].data(), want[2].data(), bands[r].lut, bands[g].lut, bands[b].lut, 12, 17);
    rgbihs();
    const plane once = pixels(r);
    rgbihs();
    EXPECT_EQ(pixels(r), want[0]);
    EXPECT_EQ(pixels(b), want[2]);
    undo();                                    // the copy is of the last edit
    EXPECT_EQ(pixels(r), once);
}

TEST_F(ToneCommands, AGreyImageHasNoColoursToTransform)
{
    open_grey();
    const plane before = pixels(r);
    rgbihs();
    EXPECT_STREQ(msg_text(MSG_STATUS), "Must have color image displayed...");
    EXPECT_EQ(pixels(r), before);
    EXPECT_EQ(windows[w].changed, 0);
}

TEST_F(ToneCommands, ApplyBurnsTheTableIn)
{
    open_grey();
    set_random_lut(r, 5);
    const plane before = pixels(r);
    plane want = before;
    for (uint8_t &v : want)
        v = uint8_t(bands[r].lut[v]);
    apply();
    EXPECT_EQ(pixels(r), want);
    expect_identity(r);
    expect_counted(r);
    EXPECT_EQ(windows[w].changed, 1);
    expect_strip_clear();
    undo();
    EXPECT_EQ(pixels(r), before);
}

TEST_F(ToneCommands, ApplyThroughIdentityTablesChangesNothing)
{
    open_colour();
    const plane before = pixels(r);
    apply();
    EXPECT_EQ(pixels(r), before);
    EXPECT_EQ(windows[w].changed, 0);
    expect_strip_clear();
}

TEST_F(ToneCommands, ApplyTakesAllBandsOfAColourImage)
{
    open_colour();
    set_random_lut(b, 5);
    const plane green = pixels(g), blue = pixels(b);
    apply();
    EXPECT_EQ(pixels(g), green);
    EXPECT_NE(pixels(b), blue);
    expect_identity(b);
    expect_counted(b);
}

TEST_F(ToneCommands, InvertReversesPixelsHistogramsAndTable)
{
    open_grey();
    set_random_lut(r, 5);
    const plane before = pixels(r);
    const level_map lut = lut_of(r);
    plane want = before;
    for (uint8_t &v : want)
        v = uint8_t(255 - v);
    invert();
    EXPECT_EQ(pixels(r), want);
    for (size_t i = 0; i < 256; i++)
        EXPECT_EQ(bands[r].lut[i], 255 - lut[255 - i]);
    expect_counted(r);                         // reversing gives what counting would
    EXPECT_EQ(windows[w].changed, 1);
    expect_strip_clear();
    invert();
    EXPECT_EQ(pixels(r), before);
    EXPECT_EQ(lut_of(r), lut);
    undo();
    EXPECT_EQ(pixels(r), want);
}

TEST_F(ToneCommands, InvertDoesNotCountAgain)
{
    open_grey();
    bands[r].hist_unmapped[3] = 1000;
    invert();
    EXPECT_EQ(bands[r].hist_unmapped[252], 1000);
}

TEST_F(ToneCommands, WithUndoDisabledNoCopyIsTaken)
{
    open_grey();
    disable_undo();
    invert();
    EXPECT_EQ(bands[r].undo_data, nullptr);
}
