#include "display/readout.h"

#include <string>

#include "display/geometry.h"
#include "shell/prompt.h"
#include "window_family.h"

namespace {

struct Readout : WindowFamily {
    // What field 2 says once the pointer has come to rest over a held pixel.
    void hovers(int w, int held_x, int held_y, const char *text)
    {
        operator_does([=] {
            current_window = w;
            int sx, sy;
            held_to_window(held_x + 0.5, held_y + 0.5, &sx, &sy);
            pointer_event(BACKEND_MOVE, windows[w].x + sx, windows[w].y + sy);
        });
        operator_does([=] { EXPECT_STREQ(msg_text(MSG_STATUS), text); });
    }
    void wait_with(int flags)
    {
        resets();
        EXPECT_EQ(prompt_input("Look", "Move", flags), INPUT_RESET);
    }
};

} // namespace

TEST_F(Readout, OfAGreyPictureFollowsThePointer)
{
    const int w = open_grey();                         // level 7 x + 13 y
    hovers(w, 3, 2, "    Pixel(   3,   2) =  47    ");
    hovers(w, 10, 10, "    Pixel(  10,  10) = 200    ");
    wait_with(PROMPT_SHOW_PIXEL);
}

TEST_F(Readout, NamesTheMappedLevelWhereItDiffers)
{
    const int w = open_grey();
    bands[windows[w].red_band].lut[47] = 5;
    hovers(w, 3, 2, "    Pixel(   3,   2) =  47, mapped:   5    ");
    hovers(w, 4, 2, "    Pixel(   4,   2) =  54    ");
    wait_with(PROMPT_SHOW_PIXEL);
}

TEST_F(Readout, OfAColourPictureHasThreeLevels)
{
    const int w = open_colour();                       // 50 and 100 more in green and blue
    hovers(w, 3, 2, "    Pixel(   3,   2)=( 47, 97,147)    ");
    operator_does([=] { bands[windows[w].blue_band].lut[154] = 255; });
    hovers(w, 4, 2, "    Pixel(   4,   2)=( 54,104,154), mapped: ( 54,104,255)    ");
    wait_with(PROMPT_SHOW_PIXEL);
}

TEST_F(Readout, GivesFileCoordinates)
{
    const int w = open_grey();
    band_rec &band = bands[windows[w].red_band];
    band.increment = 4;
    band.file_x0 = 100;
    band.file_y0 = 50;
    hovers(w, 10, 10, "    Pixel( 140,  90) = 200    ");
    wait_with(PROMPT_SHOW_PIXEL);
}

TEST_F(Readout, OfABilevelImageIsTheBitWithoutATable)
{
    int step = 1, n = -1;
    ASSERT_EQ(band_create(20, 10, &step, KIND_BIN, "bits.pbm", &n), 1);
    const uint16_t second_word = 0x4000;               // column 17 of row 3
    memcpy(bands[n].data + 3 * 4 + 2, &second_word, 2);
    bands[n].lut[1] = 200;
    display_mode &= ~uint32_t{COLOR};
    const int w = show_image(n, n, n);
    hovers(w, 17, 3, "    Pixel(  17,   3) =   1    ");
    hovers(w, 16, 3, "    Pixel(  16,   3) =   0    ");
    wait_with(PROMPT_SHOW_PIXEL);
}

TEST_F(Readout, OfThePositionHasNoLevels)
{
    const int w = open_grey();
    hovers(w, 3, 2, "    Pixel(   3,   2)    ");
    wait_with(PROMPT_SHOW_POSITION);
    hovers(w, 5, 2, "    Pixel(   5,   2) =  61    ");     // the pixel wins over the position
    wait_with(PROMPT_SHOW_POSITION | PROMPT_SHOW_PIXEL);
}

TEST_F(Readout, StaysAsItIsOutsideOfTheImage)
{
    const int w = open_grey();
    windows[w].zoom = 1;
    hovers(w, 3, 2, "    Pixel(   3,   2) =  47    ");
    hovers(w, 64, 2, "    Pixel(   3,   2) =  47    ");
    hovers(w, 63, 47, "    Pixel(  63,  47) =  28    ");   // 441 + 611 = 1052, less 1024
    wait_with(PROMPT_SHOW_PIXEL);
}

TEST_F(Readout, ShowIntensityEndsWithAnyEventAndClearsTheStrip)
{
    const int w = open_grey();
    operator_does([] { EXPECT_STREQ(msg_text(MSG_TITLE), "Show Intensity"); });
    hovers(w, 3, 2, "    Pixel(   3,   2) =  47    ");
    resets();
    show_intensity();
    for (int field = MSG_TITLE; field <= MSG_KEYIN; field++)
        EXPECT_STREQ(msg_text(field), "") << field;
    EXPECT_EQ(prompt_input("kestrel", "Ready", 0), INPUT_RESET);   // the event itself is still there
}
