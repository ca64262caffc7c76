// Start-up on every kind of display, and what it finds or does not find.
#include "shell/workstation.h"

#include <cstdlib>

#include "display/vlt.h"
#include "forms/forms.h"

namespace {

struct Startup : testing::Test {
    void TearDown() override
    {
        stop_workstation();
        unsetenv("TARN");
        unsetenv("KESTREL");
    }
};

TEST_F(Startup, PlanesAndModeOfEveryDisplay)
{
    struct row {
        int planes;
        uint32_t flags;
        int used;
        uint32_t mode;
    };
    const row rows[] = {
        { 4, 0, 4, 0 },  { 5, 0, 5, 0 },  { 6, 0, 5, 0 },   { 7, 0, 7, 0 },  { 8, 0, 8, IFB },
        { 24, 0, 8, TC },
    };
    for (const row &r : rows) {
        ASSERT_EQ(start_workstation(1280, 1024, r.planes, r.flags), 1) << r.planes;
        EXPECT_EQ(num_planes, r.used) << r.planes;
        EXPECT_EQ(start_planes, r.used) << r.planes;
        EXPECT_EQ(display_mode, DISPLAY_MODE_START | r.mode) << r.planes;
        EXPECT_EQ(plane_mask, r.planes == 24 ? 0xFFFFFFFFu : (1u << r.used) - 1) << r.planes;
        EXPECT_EQ(highlight_colour, int32_t(plane_mask)) << r.planes;
        if (r.planes != 24)
            stop_workstation();
    }
}

TEST_F(Startup, TooFewPlanesAreRefusedInWords)
{
    EXPECT_EQ(start_workstation(1280, 1024, 3), 0);
    ASSERT_EQ(seen_reports.size(), 1u);
    EXPECT_EQ(seen_reports[0].level, 2);
    EXPECT_EQ(seen_reports[0].text, "workstation must be configured to one virtual screen per physical screen\n");
}

TEST_F(Startup, AHighlightPlaneGetsWhite)
{
    ASSERT_EQ(start_workstation(1280, 1024, 8, WS_CAP_OVERLAY | WS_CAP_HIGHLIGHT), 1);
    EXPECT_EQ(hardware_highlight, 1);
    EXPECT_EQ(highlight_colour, 16777215);
}

TEST_F(Startup, TheSessionStartsEmpty)
{
    ASSERT_EQ(start_workstation(), 1);
    EXPECT_EQ(active_window, -1);
    EXPECT_EQ(hist_window, -1);
    EXPECT_EQ(picture_count, 0);
    EXPECT_EQ(windows[0].flags, 129);
    for (int w = 1; w < WINDOWS; w++)
        EXPECT_EQ(windows[w].flags, 0);
    EXPECT_EQ(band_free_slot(0), 0);
    EXPECT_EQ(gamma_value, 2.2);
    EXPECT_EQ(reserved_count, 15);
    EXPECT_STREQ(ws_title(0), "kestrel  v3.3  09-Apr");
    EXPECT_EQ(popup_forms, 1);
}

TEST_F(Startup, FontsByTheHeightOfTheScreen)
{
    ASSERT_EQ(start_workstation(1280, 720), 1);
    EXPECT_EQ(font_scale, 1.5f);
    EXPECT_EQ(ws_font_height(font_title), 30);
    EXPECT_EQ(ws_font_height(font_title_small), 22);
    EXPECT_EQ(ws_font_height(font_text), 22);
    EXPECT_EQ(ws_font_height(font_text_small), 14);
    EXPECT_EQ(ws_font_height(font_mid), 18);
    stop_workstation();
    ASSERT_EQ(start_workstation(800, 719), 1);
    EXPECT_EQ(font_scale, 1.0f);
    EXPECT_EQ(font_title, font_title_small);
    EXPECT_EQ(font_text, font_text_small);
    EXPECT_EQ(ws_font_height(font_mid), 16);
}

TEST_F(Startup, ImageWindowsAreLimitedByFrameAndStrip)
{
    ASSERT_EQ(start_workstation(1000, 800), 1);
    int border_x, border_y, caption;
    ws_frame_metrics(&border_x, &border_y, &caption);
    EXPECT_EQ(screen_width, 1000);
    EXPECT_EQ(screen_height, 800);
    EXPECT_EQ(max_image_width, 1000 - 2 * border_x);
    EXPECT_EQ(max_image_height, 800 - border_y - caption - ws_strip_height());
    EXPECT_EQ(layout.third_width, 333);
}

TEST_F(Startup, DirectoriesWithoutEnvironment)
{
    ASSERT_EQ(start_workstation(), 1);
    EXPECT_STREQ(fonts_dir, "c:\\tarn\\fonts\\");
    EXPECT_STREQ(data_dir, "c:\\tarn\\Kestrel\\");
}

TEST_F(Startup, DirectoriesFromTheEnvironment)
{
    setenv("TARN", KESTREL_DATA_ROOT "/", 1);
    ASSERT_EQ(start_workstation(), 1);
    EXPECT_EQ(std::string(fonts_dir), KESTREL_DATA_ROOT "\\fonts\\");
    EXPECT_EQ(std::string(data_dir), KESTREL_DATA_ROOT "\\Kestrel\\");
    stop_workstation();
    setenv("TARN", KESTREL_DATA_ROOT, 1);
    setenv("KESTREL", KESTREL_DATA_ROOT "/Kestrel", 1);
    ASSERT_EQ(start_workstation(), 1);
    EXPECT_EQ(std::string(fonts_dir), KESTREL_DATA_ROOT "\\fonts\\");
    EXPECT_EQ(std::string(data_dir), KESTREL_DATA_ROOT "/Kestrel\\");
}

TEST_F(Startup, AMissingSymbolFileEndsTheStartInWords)
{
    setenv("KESTREL", "/nowhere", 1);
    EXPECT_EQ(start_workstation(), 0);
    ASSERT_EQ(seen_reports.size(), 1u);
    EXPECT_EQ(seen_reports[0].level, 1);
    EXPECT_EQ(seen_reports[0].text, "unable to load symbol file /nowhere\\kestrel.sym\n");
}

TEST_F(Startup, AMissingFontEndsTheStartInWords)
{
    setenv("TARN", "/nowhere", 1);
    setenv("KESTREL", KESTREL_DATA_ROOT "/Kestrel", 1);
    EXPECT_EQ(start_workstation(), 0);
    ASSERT_EQ(seen_reports.size(), 1u);
    EXPECT_EQ(seen_reports[0].text, "unable to load font file /nowhere\\fonts\\mono821b.22\n");
}

}  // namespace
