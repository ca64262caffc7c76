#include "enhance/hist_session.h"

#include "display/vlt.h"
#include "enhance/thumbnail.h"
#include "enhance/tune.h"
#include "enhance/tune_panel.h"

namespace {

// Four levels of equal counts: equalised by any exponent they go to 64, 128, 191 and 255 (k * 63.75, rounded).
struct TuneSession : HistSession {
    int make_four(const char *name = "four") { return make_band(16, { { 10, 64 }, { 20, 64 }, { 30, 64 }, { 40, 64 } }, name); }

    // Panel pixels; the panel is a pop-up.
    void clicks_panel(int x, int y)
    {
        operator_does([x, y] { click((display_mode & COLOR ? layout.tune_left : layout.panel_left) + x, layout.panel_top + y); });
    }
    void expect_flat(int n)
    {
        EXPECT_EQ(bands[n].lut[9], 0);
        EXPECT_EQ(bands[n].lut[10], 64);
        EXPECT_EQ(bands[n].lut[29], 128);
        EXPECT_EQ(bands[n].lut[30], 191);
        EXPECT_EQ(bands[n].lut[40], 255);
    }
};

struct Tune8 : TuneSession {
    Tune8() { screen_w = 800, screen_h = 600, screen_depth = 8; }
};

struct Tune9 : TuneSession {
    Tune9() { screen_depth = 9; }
};

// 63 + 31 is brightness 1, the square root; 100 + 64 is the start of the contrast.
constexpr int X_SQUARE_ROOT = 63 + 31, Y_FLAT = 100 + 64;

void expect_square_root(int n)
{
    EXPECT_EQ(bands[n].lut[10], 128);          // sqrt(64 * 255) = 127.75
    EXPECT_EQ(bands[n].lut[20], 181);          // sqrt(128 * 255) = 180.67
    EXPECT_EQ(bands[n].lut[30], 221);          // sqrt(191 * 255) = 220.69
    EXPECT_EQ(bands[n].lut[40], 255);
}

} // namespace

TEST_F(TuneSession, AcceptingAtOnceFlattensTheOccupiedLevels)
{
    const int n = make_four();
    show_grey(n);
    presses("accept");
    tune();
    expect_flat(n);
    // The equalised counts, and once more the counts of 64, 128, 191 and 255, which as held levels are all shown as 255.
    EXPECT_EQ(bands[n].hist_mapped[64], 64);
    EXPECT_EQ(bands[n].hist_mapped[255], 64 + 4 * 64);
    EXPECT_EQ(bands[n].hist_mapped[10], 0);
    EXPECT_EQ(windows[active_window].changed, 1);
    EXPECT_EQ(picture_count, 1);
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
}

TEST_F(TuneSession, CancellingLeavesTheTables)
{
    const int n = make_four();
    show_grey(n);
    const float scale = font_scale;
    clicks_panel(177 + X_SQUARE_ROOT, Y_FLAT);
    presses("cancel");
    tune();
    expect_identity(n);
    EXPECT_EQ(windows[active_window].changed, 0);
    EXPECT_EQ(font_scale, scale);
    EXPECT_EQ(forms_get_style()->scale, 1.5);
}

TEST_F(TuneSession, AClickMovesTheCrossAndTheThumbnailFollows)
{
    const int n = make_four();
    show_grey(n);
    static uint32_t before;
    const auto thumbnail = [] { return pixel(0, 20 + 64, 53 + 20) & 0xFFFFFF; };   // row 2: level 10
    looks_then([=] {
        before = thumbnail();
        EXPECT_EQ(before, uint32_t(gamma_table[64]) * 0x010101);
    });
    clicks_panel(177 + X_SQUARE_ROOT, Y_FLAT);
    looks_then([=] { EXPECT_EQ(thumbnail(), uint32_t(gamma_table[128]) * 0x010101); });
    presses("accept");
    tune();
    expect_square_root(n);
}

TEST_F(TuneSession, ContrastIsTheExponentOfTheCounts)
{
    tune_band b {};
    b.band = make_band(16, { { 10, 192 }, { 40, 64 } });
    b.brightness_x = 63;
    b.contrast_y = 24;                         // (64 - 24) / 40 = 1: by counts
    tune_update_band(&b);
    EXPECT_EQ(b.tune_lut[10], 191);            // 192 / 256 * 255 = 191.25
    EXPECT_EQ(b.tune_lut[40], 255);
    b.contrast_y = 64;                         // 0: alike
    tune_update_band(&b);
    EXPECT_EQ(b.tune_lut[10], 128);            // 127.5
    band_free(b.band);
}

TEST_F(TuneSession, MovesDoNotCompound)
{
    const int n = make_four();
    show_grey(n);
    for (int i = 0; i < 5; i++) {
        clicks_panel(177 + i, 100 + i);
        clicks_panel(177 + X_SQUARE_ROOT, Y_FLAT);
    }
    presses("accept");
    tune();
    expect_square_root(n);
}

TEST_F(TuneSession, EachBandHasItsPad)
{
    const int r = make_four(), g = make_four(), b = make_four();
    show_colour(r, g, b);
    clicks_panel(329 + X_SQUARE_ROOT, Y_FLAT);
    presses("accept");
    tune();
    expect_flat(r);
    expect_square_root(g);
    expect_flat(b);
}

TEST_F(TuneSession, WithLockedBandsAClickInTheBluePadMovesAllThree)
{
    const int r = make_four(), g = make_four(), b = make_four();
    show_colour(r, g, b);
    presses("Lock bands");
    clicks_panel(481 + X_SQUARE_ROOT, Y_FLAT);
    presses("accept");
    tune();
    expect_square_root(r);
    expect_square_root(g);
    expect_square_root(b);
}

TEST_F(TuneSession, ThePadsShowTheirColoursAndCrosses)
{
    show_colour(make_four(), make_four(), make_four());
    looks_then([] {
        EXPECT_EQ(pixel(0, 177, 100) & 0xFFFFFF, 0xFF0000u);
        EXPECT_EQ(pixel(0, 329 + 127, 180) & 0xFFFFFF, 0x00FF00u);
        EXPECT_EQ(pixel(0, 481, 100) & 0xFFFFFF, 0x0000FFu);
        EXPECT_EQ(pixel(0, 177 + 63, 110) & 0xFFFFFF, 0xFFFFFFu);   // light hairs at 63, 64
        EXPECT_EQ(pixel(0, 190, 164) & 0xFFFFFF, 0xFFFFFFu);
        EXPECT_EQ(pixel(0, 177 + 64, 110) & 0xFFFFFF, 0x000000u);   // dark ones one further
        EXPECT_EQ(pixel(0, 190, 165) & 0xFFFFFF, 0x000000u);
    });
    presses("cancel");
    tune();
}

TEST_F(Tune8, TheGreyPictureFollowsWhenAccepted)
{
    const int n = make_four();
    const int w = show_grey(n);
    const int x = windows[w].width / 2, y = windows[w].height / 2 - int(windows[w].zoom);   // row 7: level 20
    EXPECT_EQ(pixel(w, x, y), uint32_t((20 * 224 >> 8) + 31));
    presses("accept");
    tune();
    expect_flat(n);
    EXPECT_EQ(pixel(w, x, y), uint32_t((128 * 224 >> 8) + 31));
}

TEST_F(Tune9, TheTableComesBackToTheOnePicture)
{
    const int n = make_four();
    const int w = show_grey(n);
    const int x = windows[w].width / 2, y = windows[w].height / 2 - int(windows[w].zoom);
    looks_then([=] { EXPECT_EQ(pixel(0, 20 + 64, 53 + 20), 255u + 64); });   // the thumbnail: level 10, shown as 64
    presses("accept");
    tune();
    EXPECT_EQ(pixel(w, x, y), 255u + 20);
    vlt_entry entry {};
    ASSERT_EQ(ws_read_vlt(0, &entry, 1, 255 + 20), 0);
    EXPECT_EQ(entry.red >> 8, gamma_table[128]);
}

TEST_F(TuneSession, AOneBitImageSaysWhyNot)
{
    int step = 1, n = -1;
    ASSERT_EQ(band_create(16, 16, &step, KIND_BIN, "", &n), 1);
    show_grey(n);
    tune();
    EXPECT_STREQ(msg_text(MSG_STATUS), "a one-bit image has no levels to tune");
}

TEST_F(TuneSession, WithoutAPictureNothingHappens)
{
    msg_clear(MSG_STATUS);
    tune();
    EXPECT_STREQ(msg_text(MSG_STATUS), "");
    EXPECT_EQ(picture_count, 0);
}

// 2 by 1 pixels: a strip of 128 by 64 in the middle of the square.
TEST_F(TuneSession, TheThumbnailKeepsTheAspectInTheMiddle)
{
    int step = 1, n = -1;
    ASSERT_EQ(band_create(2, 1, &step, KIND_COT, "", &n), 1);
    bands[n].data[0] = 50;
    bands[n].data[1] = 90;
    static uint8_t square[THUMBNAIL_BYTES];
    thumbnail_resample(n, square);
    EXPECT_EQ(square[31 * 128 + 5], 0);
    EXPECT_EQ(square[32 * 128 + 63], 50);
    EXPECT_EQ(square[95 * 128 + 64], 90);
    EXPECT_EQ(square[96 * 128 + 64], 0);
    // A quarter turn: upright.
    bands[n].xform[0][0] = bands[n].xform[1][1] = 0;
    bands[n].xform[0][1] = -1;
    bands[n].xform[1][0] = 1;
    thumbnail_resample(n, square);
    EXPECT_EQ(square[10 * 128 + 31], 0);
    EXPECT_EQ(square[10 * 128 + 40], 50);
    EXPECT_EQ(square[100 * 128 + 40], 90);
    band_free(n);
}
