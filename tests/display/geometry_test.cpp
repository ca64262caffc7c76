#include "display/geometry.h"

#include <cmath>

#include "display/navigation.h"
#include "display/show_image.h"
#include "shell/session.h"
#include "store/bands.h"
#include "support/screen_session.h"

namespace {

constexpr int W = 5, B = 3;

// A picture window of 101 by 81 at zoom 2 on one band of 200 by 100, its centre at held pixel 50, 40.
struct Geometry : ::testing::Test {
    void SetUp() override
    {
        session_reset();
        band_clear(B);
        bands[B].x_size = 200;
        bands[B].y_size = 100;
        bands[B].orientation = 4;
        windows[W] = {};
        windows[W].flags = WIN_DISPLAYED | WIN_PICTURE;
        windows[W].width = 101;
        windows[W].height = 81;
        windows[W].data_x = 50;
        windows[W].data_y = 40;
        windows[W].zoom = 2;
        windows[W].red_band = windows[W].green_band = windows[W].blue_band = B;
        windows[W].linked_window = windows[W].slice_band = -1;
        current_window = W;
    }
    void TearDown() override { session_reset(); }
};

} // namespace

TEST_F(Geometry, TheCentreOfTheWindowIsTheDataOffset)
{
    double x, y;
    window_to_image(50, 40, &x, &y);   // 101 >> 1, 81 >> 1
    EXPECT_EQ(x, 50);
    EXPECT_EQ(y, 40);
}

TEST_F(Geometry, WindowPixelsAreDividedByTheZoom)
{
    double x, y;
    window_to_image(61, 33, &x, &y);   // 50 + 11 / 2, 40 - 7 / 2
    EXPECT_EQ(x, 55.5);
    EXPECT_EQ(y, 36.5);
    int hx, hy;
    window_to_held(61, 33, &hx, &hy);
    EXPECT_EQ(hx, 55);
    EXPECT_EQ(hy, 36);
}

TEST_F(Geometry, ConversionsTruncateTowardZeroLeftOfTheImage)
{
    int hx, hy;
    window_to_held(50 - 101, 40, &hx, &hy);   // 50 - 50.5 is -0.5
    EXPECT_EQ(hx, 0);
    int sx, sy;
    windows[W].zoom = 0.5;
    held_to_window(-53, 40, &sx, &sy);        // 0.5 * -103 + 50 is -1.5
    EXPECT_EQ(sx, -1);
}

TEST_F(Geometry, HeldPixelsComeBackThroughARotation)
{
    const double r = 30 * M_PI / 180;
    bands[B].xform[0][0] = bands[B].xform[1][1] = std::cos(r);
    bands[B].xform[0][1] = std::sin(r);
    bands[B].xform[1][0] = -std::sin(r);
    int sx, sy;
    held_to_window(70, 40, &sx, &sy);
    EXPECT_EQ(sx, 84);                 // 2 * 20 * 0.8660 + 50 = 84.64
    EXPECT_EQ(sy, 20);                 // 2 * 20 * -0.5 + 40
    double x, y;
    window_to_image(sx, sy, &x, &y);
    EXPECT_NEAR(x, 70, 0.5);
    EXPECT_NEAR(y, 40, 0.5);
}

TEST_F(Geometry, AFilePixelIsTheHeldOneTimesTheIncrementBehindTheAreasOrigin)
{
    bands[B].increment = 4;
    bands[B].file_x0 = 100;
    bands[B].file_y0 = 50;
    windows[W].data_x = windows[W].data_y = 10;
    int x, y;
    window_to_file(50, 40, &x, &y);    // held 10, 10
    EXPECT_EQ(x, 140);
    EXPECT_EQ(y, 90);
    int sx, sy;
    file_to_window(144, 90, &sx, &sy); // held 11, 10
    EXPECT_EQ(sx, 52);
    EXPECT_EQ(sy, 40);
}

TEST_F(Geometry, AnIncrementBelowTwoOnlyAddsTheOrigin)
{
    bands[B].increment = 0;
    bands[B].file_x0 = 7;
    int x, y;
    window_to_file(50, 40, &x, &y);
    EXPECT_EQ(x, 57);
    EXPECT_EQ(y, 40);
}

TEST_F(Geometry, AWindowThatIsNoPictureConvertsToZero)
{
    windows[W].flags = WIN_DISPLAYED | WIN_HISTOGRAM;
    double x = 9, y = 9;
    window_to_image(70, 60, &x, &y);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
    int sx = 9, sy = 9;
    held_to_window_int(70, 60, &sx, &sy);
    EXPECT_EQ(sx, 0);
    EXPECT_EQ(sy, 0);
}

TEST_F(Geometry, OrientationCodesFlipAndExchangeTheAxes)
{
    // Rows of the 2 by 2: m00 m01 m10 m11 by code.
    static const double expected[8][4] = {
        { 0, 1, 1, 0 },    // columns exchanged
        { 0, -1, 1, 0 },   // first column negated, then exchanged
        { 0, 1, -1, 0 },   // the second column negated before the exchange: m11 -1 lands in m10
        { 0, -1, -1, 0 },
        { 1, 0, 0, 1 },
        { -1, 0, 0, 1 },
        { 1, 0, 0, -1 },
        { -1, 0, 0, -1 },
    };
    for (int code = 0; code < 8; code++) {
        bands[B].orientation = uint8_t(code);
        band_reset_orientation(B);
        const auto &m = bands[B].xform;
        EXPECT_EQ(m[0][0], expected[code][0]) << code;
        EXPECT_EQ(m[0][1], expected[code][1]) << code;
        EXPECT_EQ(m[1][0], expected[code][2]) << code;
        EXPECT_EQ(m[1][1], expected[code][3]) << code;
        EXPECT_EQ(m[3][3], 1) << code;
    }
}

TEST_F(Geometry, ZoomStaysWithinItsLimits)
{
    set_view_zoom(1e300);
    EXPECT_EQ(windows[W].zoom, ZOOM_MAX);
    set_view_zoom(0);
    EXPECT_EQ(windows[W].zoom, ZOOM_MIN);
}

TEST(OverviewSize, KeepsASmallImageAndShrinksALargeOneToAThirdOfTheScreen)
{
    session_reset();
    layout.third_width = 400;          // a screen of 1200 by 900
    layout.third_height = 300;
    int w = 300, h = 200;
    double zoom;
    overview_size(&w, &h, &zoom);
    EXPECT_EQ(w, 300);
    EXPECT_EQ(zoom, 1);
    w = 5000, h = 1000;                // a = 400 / 5000 = 0.08, b = 0.3
    overview_size(&w, &h, &zoom);
    EXPECT_EQ(w, 400);
    EXPECT_EQ(h, 80);
    EXPECT_DOUBLE_EQ(zoom, 0.08);
    w = 600, h = 900;                  // b = 300 / 900 is the smaller: 600 * 0.3333... is 200
    overview_size(&w, &h, &zoom);
    EXPECT_EQ(w, 200);
    EXPECT_EQ(h, 300);
}

// --- with windows on the screen ----------------------------------------------------------------------------

namespace {

struct View : screen_session {
    int band;

    void show(int x_size, int y_size)
    {
        int step = 1;
        ASSERT_EQ(band_create(x_size, y_size, &step, KIND_COT, "ramp.pgm", &band), 1);
        display_mode &= ~uint32_t{COLOR};
        ASSERT_GE(show_image(band, band, band), 0);
    }
};

} // namespace

TEST_F(View, ANewImageIsZoomedToFillTheLargestWindow)
{
    max_image_width = 1000;
    max_image_height = 700;
    show(100, 100);
    const win_rec &win = windows[active_window];
    EXPECT_EQ(win.width, 1000);
    EXPECT_EQ(win.height, 700);
    EXPECT_EQ(win.zoom, 7.0);          // the smaller of 10 and 7
    EXPECT_EQ(win.data_x, 50);
    EXPECT_EQ(win.data_y, 50);
}

TEST_F(View, AColumnMajorImageIsFittedWithItsSidesExchanged)
{
    max_image_width = 1000;
    max_image_height = 700;
    int step = 1;
    ASSERT_EQ(band_create(350, 100, &step, KIND_COT, "", &band), 1);
    bands[band].orientation = 0;
    band_reset_orientation(band);
    ASSERT_GE(show_image(band, band, band), 0);
    EXPECT_EQ(windows[active_window].zoom, 2.0);   // 700 / 350 against 1000 / 100
}

TEST_F(View, AnAreaIsZoomedUntilItFillsTheWindow)
{
    max_image_width = 1000;
    max_image_height = 700;
    show(1000, 700);                   // zoom 1, centre 500, 350
    current_window = active_window;
    view_area(100, 100, 349, 239);     // 249 by 139 held pixels between the corners
    const win_rec &win = windows[active_window];
    EXPECT_DOUBLE_EQ(win.zoom, 1000.0 / 249);      // 4.016, below 700 / 139
    EXPECT_EQ(win.data_x, 224);        // 349 + ((100 - 349) >> 1) = 349 - 125
    EXPECT_EQ(win.data_y, 169);        // 239 + ((100 - 239) >> 1) = 239 - 70
}

TEST_F(View, EqualCornersGiveAWidthOfOne)
{
    show(100, 100);
    current_window = active_window;
    view_area(300, 300, 300, 300);
    const win_rec &win = windows[active_window];
    EXPECT_EQ(win.zoom, win.width < win.height ? win.width : win.height);
}

TEST_F(View, FitUsesTheBoundingBoxOfTheRotatedCorners)
{
    max_image_width = 1000;
    max_image_height = 700;
    show(400, 200);
    auto &m = bands[band].xform;       // a quarter turn: columns run along the window's height
    m[0][0] = m[1][1] = 0;
    m[0][1] = 1;
    m[1][0] = -1;
    windows[active_window].zoom = 1;
    fit();
    // The box is 200 wide and 400 high: the smaller of 1000 / 200 and 700 / 400.
    EXPECT_DOUBLE_EQ(windows[active_window].zoom, 1.75);
}

TEST_F(View, OriginalSizeIsOneToOneInTheMiddle)
{
    show(64, 48);
    zoom_out_full();
    EXPECT_EQ(windows[active_window].zoom, 1.0);
    EXPECT_EQ(windows[active_window].data_x, 32);
    EXPECT_EQ(windows[active_window].data_y, 24);
}

TEST_F(View, CoupledPartnersThatRunInOppositeDirectionsAreKeptTogetherOnThePicture)
{
    show(100, 80);
    const int first = active_window;
    show(100, 60);
    const int second = active_window;
    bands[windows[second].red_band].orientation = ORIENT_LL_ROW;
    windows[first].linked_window = int16_t(second);
    windows[second].linked_window = int16_t(first);
    display_mode &= ~uint32_t{SPLIT_DECOUPLED};
    current_window = first;
    windows[first].zoom = 3;
    windows[first].data_x = 20;
    windows[first].data_y = 10;
    refresh_view();
    EXPECT_EQ(windows[second].zoom, 3);
    EXPECT_EQ(windows[second].data_x, 20);
    EXPECT_EQ(windows[second].data_y, 50);   // 60 - 10
    windows[first].linked_window = windows[second].linked_window = -1;
}
