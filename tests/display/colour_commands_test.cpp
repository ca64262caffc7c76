#include "display/colour_commands.h"

#include <gtest/gtest.h>

#include <cstring>

#include "display/paint.h"
#include "display/vlt.h"
#include "fake_screen.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "store/bands.h"

constexpr int W = 5, OVERVIEW = 6;

class ColourCommands : public testing::Test {
protected:
    void SetUp() override
    {
        session_reset();
        vlt_init();
        paint_reset();
        fake_screen_reset(4, 4, false);
        num_planes = start_planes = 9;
        display_mode |= IFB;
        for (int n = 0; n < 3; n++) {
            bands[n].label = labels[n];
            bands[n].file_name = names[n];
            labels[n][0] = names[n][0] = 0;
        }
        for (const int w : { W, OVERVIEW }) {
            windows[w].flags = WIN_DISPLAYED | WIN_PICTURE;
            windows[w].red_band = 0, windows[w].green_band = 1, windows[w].blue_band = 2;
        }
        windows[OVERVIEW].flags |= WIN_OVERVIEW;
        windows[OVERVIEW].linked_window = W;
        active_window = W;
        picture_count = 1;
        layout.hist_red_top = 10, layout.hist_red_bottom = 50;
        layout.hist_green_top = 60, layout.hist_green_bottom = 100;
        layout.hist_blue_top = 110, layout.hist_blue_bottom = 150;
        hist_window = 9;
        vlt_program();
    }

    char labels[3][BAND_LABEL_SIZE], names[3][BAND_NAME_SIZE];
};

// --- the band prompt -----------------------------------------------------------------------------------------------

TEST_F(ColourCommands, BandSelectTakesTheFirstLetterOfAKeyIn)
{
    int band = -1;
    const struct { char key; int answer, band; } keys[] = { { 'r', BAND_RED, 0 }, { 'R', BAND_RED, 0 }, { 'g', BAND_GREEN, 1 },
                                                            { 'G', BAND_GREEN, 1 }, { 'b', BAND_BLUE, 2 }, { 'B', BAND_BLUE, 2 } };
    for (const auto &k : keys) {
        screen.answers = { INPUT_KEYIN, 'x', INPUT_KEYIN, k.key };   // anything else asks again
        screen.prompts.clear();
        EXPECT_EQ(band_select("Some title", &band), k.answer);
        EXPECT_EQ(band, k.band);
        EXPECT_EQ(screen.prompts.size(), 2u);
    }
}

TEST_F(ColourCommands, BandSelectTakesAPointInTheHistogramWindow)
{
    int band = -1;
    pick_window = 9;
    pick_y = 100;
    screen.answers = { INPUT_POINT };
    EXPECT_EQ(band_select("Some title", &band), BAND_GREEN);
    EXPECT_EQ(band, 1);
    pick_y = 110;
    screen.answers = { INPUT_POINT };
    EXPECT_EQ(band_select("Some title", &band), BAND_BLUE);
    pick_y = 55;                               // between two plots: asks again
    screen.answers = { INPUT_POINT, INPUT_RESET };
    EXPECT_EQ(band_select("Some title", &band), 0);
    pick_window = W;
    pick_y = 20;                               // in another window: asks again
    screen.answers = { INPUT_POINT, INPUT_QUIT };
    EXPECT_EQ(band_select("Some title", &band), 0);
}

TEST_F(ColourCommands, BandSelectOfAGreyImageIsRedAtOnce)
{
    int band = -1;
    display_mode &= ~uint32_t{COLOR};
    EXPECT_EQ(band_select("Some title", &band), BAND_RED);
    EXPECT_EQ(band, 0);
    EXPECT_TRUE(screen.prompts.empty());
    active_window = -1;
    EXPECT_EQ(band_select("Some title", &band), 0);
}

// --- bands on and off ------------------------------------------------------------------------------------------------

TEST_F(ColourCommands, BandOffEndsWithOneBandLeft)
{
    screen.answers = { INPUT_KEYIN, 'g', INPUT_KEYIN, 'b', INPUT_KEYIN, 'r' };
    band_off();
    EXPECT_EQ(display_mode & (RED_BAND_ON | GRN_BAND_ON | BLU_BAND_ON), uint32_t{RED_BAND_ON});
    EXPECT_EQ(screen.prompts.size(), 2u);
    EXPECT_EQ(screen.prompts[0], "Color band off");
    screen.prompts.clear();
    band_off();                                // only red is left: nothing to do
    EXPECT_TRUE(screen.prompts.empty());
}

TEST_F(ColourCommands, BandOnEndsWhenAllAreOn)
{
    display_mode &= ~uint32_t{RED_BAND_ON | BLU_BAND_ON};
    screen.answers = { INPUT_KEYIN, 'g', INPUT_KEYIN, 'r', INPUT_KEYIN, 'b' };
    band_on();
    EXPECT_EQ(display_mode & (RED_BAND_ON | GRN_BAND_ON | BLU_BAND_ON), uint32_t{RED_BAND_ON | GRN_BAND_ON | BLU_BAND_ON});
    EXPECT_EQ(screen.prompts.size(), 3u);      // green was on already
    EXPECT_EQ(screen.prompts[0], "Color band on");
    EXPECT_TRUE(screen.answers.empty());
}

TEST_F(ColourCommands, BandsOfAGreyImageStayOn)
{
    display_mode &= ~uint32_t{COLOR};
    band_off();
    EXPECT_TRUE(screen.prompts.empty());
}

// --- exchanging bands ------------------------------------------------------------------------------------------------

TEST_F(ColourCommands, SwapsExchangeTheBandsOfTheWindowAndItsOverview)
{
    swap_red_green();
    for (const int w : { W, OVERVIEW }) {
        EXPECT_EQ(windows[w].red_band, 1);
        EXPECT_EQ(windows[w].green_band, 0);
        EXPECT_EQ(windows[w].blue_band, 2);
    }
    EXPECT_EQ(windows[W].changed, 1);
    EXPECT_EQ(screen.messages[MSG_TITLE], "Swap red and green bands");
    swap_red_blue();
    EXPECT_EQ(windows[W].red_band, 2);
    EXPECT_EQ(windows[W].blue_band, 1);
    EXPECT_EQ(screen.messages[MSG_TITLE], "Swap red and blue bands");
    swap_green_blue();
    EXPECT_EQ(windows[W].green_band, 1);
    EXPECT_EQ(windows[W].blue_band, 0);
    EXPECT_EQ(screen.messages[MSG_TITLE], "Swap green and blue bands");
}

TEST_F(ColourCommands, TheOnlyFileNameMovesToTheBandThatBecomesRed)
{
    std::strcpy(names[0], "c:\\images\\scene.tif");
    std::strcpy(labels[0], "scene.tif");
    swap_red_blue();
    EXPECT_STREQ(bands[2].file_name, "c:\\images\\scene.tif");
    EXPECT_STREQ(bands[2].label, "scene.tif");
    EXPECT_STREQ(bands[0].file_name, "");
}

TEST_F(ColourCommands, BandsWithNamesOfTheirOwnKeepThem)
{
    std::strcpy(names[0], "red.tif");
    std::strcpy(names[1], "green.tif");
    swap_red_green();
    EXPECT_STREQ(bands[0].file_name, "red.tif");
    EXPECT_STREQ(bands[1].file_name, "green.tif");
    std::strcpy(names[2], "");
    swap_green_blue();                         // none of these becomes red
    EXPECT_STREQ(bands[2].file_name, "");
}

TEST_F(ColourCommands, WithoutAnActiveWindowNothingIsSwapped)
{
    active_window = -1;
    swap_red_green();
    EXPECT_EQ(windows[W].red_band, 0);
}

// --- a colour image as one of its bands --------------------------------------------------------------------------------

TEST_F(ColourCommands, ChannelsComeToRedAndGoBack)
{
    green_to_mono();
    EXPECT_EQ(mono_channel, 2);
    EXPECT_FALSE(display_mode & COLOR);
    EXPECT_EQ(windows[W].red_band, 1);
    EXPECT_EQ(windows[W].green_band, 0);
    EXPECT_EQ(windows[W].changed, 0);
    blue_to_mono();                            // green goes back first
    EXPECT_EQ(mono_channel, 3);
    EXPECT_EQ(windows[OVERVIEW].red_band, 2);
    EXPECT_EQ(windows[OVERVIEW].green_band, 1);
    EXPECT_EQ(windows[OVERVIEW].blue_band, 0);
    red_to_mono();
    EXPECT_EQ(mono_channel, 1);
    EXPECT_EQ(windows[W].red_band, 0);
    blue_to_mono();
    mono_to_color();
    EXPECT_EQ(mono_channel, 0);
    EXPECT_TRUE(display_mode & COLOR);
    EXPECT_EQ(windows[W].red_band, 0);
    EXPECT_EQ(windows[W].green_band, 1);
    EXPECT_EQ(windows[W].blue_band, 2);
    EXPECT_EQ(active_window, W);
}

TEST_F(ColourCommands, APlainGreyImageHasNoChannels)
{
    display_mode &= ~uint32_t{COLOR};
    red_to_mono();
    EXPECT_EQ(mono_channel, 0);
    EXPECT_EQ(screen.pictures_painted, 0);
    mono_to_color();
    EXPECT_FALSE(display_mode & COLOR);
}

TEST_F(ColourCommands, OnTrueColourTheWindowsChangeTheirTables)
{
    display_mode = (display_mode & ~uint32_t{IFB | STATIC_VLT}) | TC;
    windows[W].vlt_id = windows[OVERVIEW].vlt_id = 2;
    screen.true_colour = true;
    red_to_mono();
    EXPECT_EQ(windows[W].vlt_id, 0);
    EXPECT_EQ(windows[OVERVIEW].vlt_id, 0);
    EXPECT_FALSE(screen.true_colour);
    mono_to_color();
    EXPECT_EQ(windows[W].vlt_id, 2);
    EXPECT_TRUE(screen.true_colour);
    EXPECT_EQ(active_window, W);
}

// --- planes --------------------------------------------------------------------------------------------------------------

TEST_F(ColourCommands, PlanesAreLimitedAndTold)
{
    const struct { double asked; int planes; const char *told; } cases[] = {
        { 9, 9, "9 planes -- 8 shades -- 512 colors" }, { 8, 8, "8 planes -- 6 shades -- 216 colors" },
        { 5, 5, "5 planes -- 3 shades -- 27 colors" },  { 3, 3, "3 planes -- 2 shades -- 8 colors" },
        { 1, 3, "3 planes -- 2 shades -- 8 colors" },   { 12, 9, "9 planes -- 8 shades -- 512 colors" },
    };
    for (const auto &c : cases) {
        screen.slider_answer = c.asked;
        num_planes_command();
        EXPECT_EQ(num_planes, c.planes);
        EXPECT_EQ(screen.messages[MSG_STATUS], c.told);
    }
    EXPECT_EQ(screen.pictures_painted, 6);
}

TEST_F(ColourCommands, NinePlanesEndTheMixedTable)
{
    eight_planes();
    EXPECT_EQ(num_planes, 8);
    EXPECT_TRUE(display_mode & MIXED_VLT);
    EXPECT_EQ(screen.messages[MSG_TITLE], "Eight plane display");
    nine_planes();
    EXPECT_EQ(num_planes, 9);
    EXPECT_FALSE(display_mode & MIXED_VLT);
    EXPECT_EQ(screen.messages[MSG_TITLE], "Nine plane display");
    EXPECT_EQ(screen.messages[MSG_STATUS], "Patience...");
}

TEST_F(ColourCommands, PlaneCommandsNeedTheirDisplay)
{
    start_planes = num_planes = 8;
    nine_planes();
    EXPECT_EQ(num_planes, 8);
    display_mode &= ~uint32_t{IFB};
    screen.slider_answer = 5;
    num_planes_command();
    eight_planes();
    EXPECT_EQ(num_planes, 8);
    EXPECT_FALSE(display_mode & MIXED_VLT);
}
