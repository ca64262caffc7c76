#include "display/grid.h"

#include <cmath>

#include "display/geometry.h"
#include "display/paint.h"
#include "window_family.h"

namespace {

constexpr uint32_t WHITE = 0xFFFFFF;

struct Grid : WindowFamily {
    int w = -1;

    // A black image of 64 by 48, at a zoom about its centre.
    void open_at(double zoom)
    {
        w = open_grey();
        band_rec &band = bands[windows[w].red_band];
        memset(band.data, 0, size_t(band.x_size * band.y_size));
        windows[w].zoom = zoom;
        repaint();
    }
    void repaint()
    {
        current_window = w;
        ws_clear_window(w);
        paint_whole_window();
    }
    int white_pixels()
    {
        int count = 0;
        for (int y = 0; y < windows[w].height; y++)
            for (int x = 0; x < windows[w].width; x++)
                count += pixel(w, x, y) == WHITE;
        return count;
    }
};

} // namespace

TEST_F(Grid, IsAbsentAtZoom4Point9)
{
    open_at(4.9);
    enable_grid();
    EXPECT_EQ(white_pixels(), 0);
    repaint();
    EXPECT_EQ(white_pixels(), 0);
}

TEST_F(Grid, AtZoom5LinesRunAlongThePixelBoundaries)
{
    open_at(5.0);
    enable_grid();
    // Held 0, 0 lies at 636 - 32 * 5, 477 - 24 * 5; 65 by 49 lines, 320 by 240 window pixels apart from first to last.
    const int left = 636 - 160, top = 477 - 120, right = left + 320, bottom = top + 240;
    EXPECT_EQ(windows[w].width >> 1, 636);
    EXPECT_EQ(windows[w].height >> 1, 477);
    for (int y = top - 3; y <= bottom + 3; y++)
        for (int x = left - 3; x <= right + 3; x++) {
            const bool inside = x >= left && x <= right && y >= top && y <= bottom;
            const bool line = inside && ((x - left) % 5 == 0 || (y - top) % 5 == 0);
            ASSERT_EQ(pixel(w, x, y), line ? WHITE : 0u) << x << ", " << y;
        }
}

TEST_F(Grid, TurnsWithTheImage)
{
    open_at(8.0);
    const double angle = 30 * M_PI / 180;
    auto &m = bands[windows[w].red_band].xform;
    m[0][0] = m[1][1] = std::cos(angle);
    m[0][1] = std::sin(angle);
    m[1][0] = -std::sin(angle);
    repaint();
    enable_grid();
    current_window = w;
    for (const int held_x : { 20, 32, 40 })            // along whole lines, at their crossings
        for (const int held_y : { 18, 24, 30 }) {
            int sx, sy;
            held_to_window_int(held_x, held_y, &sx, &sy);
            EXPECT_EQ(pixel(w, sx, sy), WHITE) << held_x << ", " << held_y;
            held_to_window(held_x + 0.5, held_y + 0.5, &sx, &sy);
            EXPECT_EQ(pixel(w, sx, sy), 0u);           // the middle of a pixel
        }
}

TEST_F(Grid, StaysWithinAWindowThatShowsAPart)
{
    open_at(100.0);                                    // 1272 by 954: about 13 by 10 pixels of the image
    enable_grid();
    EXPECT_EQ(pixel(w, 636, 3), WHITE);                // held column 32
    EXPECT_EQ(pixel(w, 36, 3), WHITE);                 // column 26
    EXPECT_EQ(pixel(w, 3, 477), WHITE);                // row 24
    EXPECT_EQ(pixel(w, 50, 50), 0u);
}

TEST_F(Grid, ComesWithEveryPaintAndGoesWhenItIsDisabled)
{
    open_at(5.0);
    toggle_grid();
    EXPECT_EQ(grid_enabled, 1);
    const int drawn = white_pixels();
    repaint();
    EXPECT_EQ(white_pixels(), drawn);
    toggle_grid();
    EXPECT_EQ(grid_enabled, 0);
    EXPECT_FALSE(paint_hook_present(grid_paint));
    EXPECT_EQ(white_pixels(), 0);
}

TEST_F(Grid, EnabledTwiceIsRemovedAtOnce)
{
    open_at(5.0);
    enable_grid();
    enable_grid();
    disable_grid();
    EXPECT_FALSE(paint_hook_present(grid_paint));
}

TEST_F(Grid, AColourBelow16IsANamedOneInTrueColour)
{
    open_at(5.0);
    grid_colour = 4;                                   // yellow
    enable_grid();
    EXPECT_EQ(pixel(w, 636, 477), 0xFFFF00u);
}

TEST(GridOnEightPlanes, IsWhiteAtFirst)
{
    ASSERT_EQ(start_workstation(1280, 1024, 8), 1);
    const int w = WindowFamily::open_grey();
    windows[w].zoom = 5;
    EXPECT_EQ(grid_colour, -1);
    enable_grid();
    EXPECT_EQ(grid_colour, 255);
    EXPECT_EQ(WindowFamily::pixel(w, 636, 477), 255u);
    stop_workstation();
}
