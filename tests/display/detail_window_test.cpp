#include "display/detail_window.h"

#include <string>

#include "display/geometry.h"
#include "display/overview.h"
#include "enhance/histogram.h"
#include "store/load.h"
#include "window_family.h"

namespace {

struct DetailWindow : WindowFamily {
    static int open_on(int picture, int x, int y) { return detail_window(900, 100, 256, 256, 256, 256, x, y, 3.0, picture); }

    static std::string write_file(const char *name, const std::string &head, int width, int height, int samples)
    {
        const std::string path = testing::TempDir() + name;
        std::string bytes = head + "\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
        for (int y = 0; y < height; y++)
            for (int x = 0; x < width; x++)
                for (int s = 0; s < samples; s++)
                    bytes += char(level(x, y, 50 * s));
        FILE *stream = fopen(path.c_str(), "wb");
        EXPECT_EQ(fwrite(bytes.data(), 1, bytes.size(), stream), bytes.size());
        fclose(stream);
        return path;
    }

    // Every pixel of the detail is that of the image at full resolution, at the place that its file area says.
    static void expect_image(int band, int start)
    {
        const band_rec &b = bands[band];
        for (int y = 0; y < b.y_size; y++)
            for (int x = 0; x < b.x_size; x++)
                ASSERT_EQ(b.data[y * b.x_size + x], level(b.file_x0 + x, b.file_y0 + y, start)) << x << ", " << y;
    }
    static void expect_area(int band, int x0, int y0, int x1, int y1)
    {
        const band_rec &b = bands[band];
        EXPECT_EQ(b.file_x0, x0);
        EXPECT_EQ(b.file_y0, y0);
        EXPECT_EQ(b.file_x1, x1);
        EXPECT_EQ(b.file_y1, y1);
        EXPECT_EQ(b.x_size, x1 - x0 + 1);
        EXPECT_EQ(b.y_size, y1 - y0 + 1);
        EXPECT_EQ(b.increment, 1);
    }
};

} // namespace

TEST_F(DetailWindow, FromMemoryHoldsThePixelsAroundThePoint)
{
    const int picture = open_grey("grey.pgm", 600, 500);
    windows[picture].zoom = 8;
    refresh_view();
    const int w = open_on(picture, 300, 200);
    ASSERT_GT(w, 0);
    const int band = windows[w].red_band;
    expect_area(band, 172, 72, 427, 327);              // 300 - 128 to 300 + 127
    expect_image(band, 0);
    EXPECT_EQ(windows[w].x, 900);
    EXPECT_EQ(windows[w].y, 100);
    EXPECT_EQ(windows[w].width, 256);
    EXPECT_EQ(windows[w].height, 256);
    EXPECT_EQ(windows[w].data_x, 128);
    EXPECT_EQ(windows[w].data_y, 128);
    EXPECT_STREQ(windows[w].name, " ");
    EXPECT_EQ(windows[w].hist_area.x1, 255);
    EXPECT_EQ(pixel(w, 136, 136), pixel(picture, 636 + 4, 477 - 49 * 8 - 4));   // the middle of 300, 200 at zoom 16 and 8
}

TEST_F(DetailWindow, LeavesTheActiveImageActive)
{
    const int picture = open_grey("grey.pgm", 600, 500), w = open_on(picture, 300, 200);
    EXPECT_EQ(active_window, picture);
    EXPECT_EQ(current_window, picture);
    EXPECT_EQ(picture_count, 2);
    EXPECT_STREQ(ws_title(picture), "ACTIVE grey.pgm");
    EXPECT_STREQ(ws_title(w), " ");
}

TEST_F(DetailWindow, IsAtTwiceTheZoomButAtLeastThree)
{
    const int picture = open_grey("grey.pgm", 600, 500);
    windows[picture].zoom = 1.4;
    EXPECT_EQ(windows[open_on(picture, 300, 200)].zoom, 3.0);
    windows[picture].zoom = 4;
    EXPECT_EQ(windows[open_on(picture, 300, 200)].zoom, 8.0);
}

TEST_F(DetailWindow, TakesTheLookUpTableAndItsHistogramFollows)
{
    const int picture = open_grey("grey.pgm", 600, 500);
    for (int i = 0; i < 256; i++)
        bands[windows[picture].red_band].lut[i] = int16_t(255 - i);
    const band_rec &detail = bands[windows[open_on(picture, 300, 200)].red_band];
    int32_t mapped[256] = {};
    for (int i = 0; i < 256; i++) {
        EXPECT_EQ(detail.lut[i], 255 - i);
        mapped[255 - i] = detail.hist_unmapped[i];
    }
    int total = 0;
    for (int i = 0; i < 256; i++) {
        EXPECT_EQ(detail.hist_mapped[i], mapped[i]);
        total += mapped[i];
    }
    EXPECT_GT(total, 0);
}

TEST_F(DetailWindow, IsCutToTheImage)
{
    const int picture = open_grey("grey.pgm", 600, 500), w = open_on(picture, 10, 490);
    const int band = windows[w].red_band;
    expect_area(band, 0, 362, 137, 499);
    expect_image(band, 0);
    EXPECT_EQ(windows[w].data_x, 10);                  // the point stays in the middle
    EXPECT_EQ(windows[w].data_y, 128);
}

TEST_F(DetailWindow, OfAPartOfAFileCountsInFilePixels)
{
    const int picture = open_grey("grey.pgm", 600, 500);
    band_rec &band = bands[windows[picture].red_band];
    band.file_x0 = 1000;
    band.file_y0 = 2000;
    band.file_x1 = 1599;
    band.file_y1 = 2499;
    const band_rec &detail = bands[windows[open_on(picture, 1300, 2200)].red_band];
    EXPECT_EQ(detail.file_x0, 1172);
    EXPECT_EQ(detail.file_y0, 2072);
    EXPECT_EQ(detail.data[0], level(172, 72));
}

TEST_F(DetailWindow, OfAColourImageHasThreeBands)
{
    const int picture = open_colour("colour.ppm", 600, 500), w = open_on(picture, 300, 200);
    expect_image(windows[w].red_band, 0);
    expect_image(windows[w].green_band, 50);
    expect_image(windows[w].blue_band, 100);
    EXPECT_EQ(bands_in_use(), 6);
    close_window(w);
    EXPECT_EQ(bands_in_use(), 3);
}

TEST_F(DetailWindow, OfABilevelImageCopiesBits)
{
    int step = 1, n = -1;
    ASSERT_EQ(band_create(700, 400, &step, KIND_BIN, "bits.pbm", &n), 1);
    const int row_bytes = band_row_bytes(&bands[n]);
    const auto bit = [](const band_rec &b, int x, int y) {
        uint16_t word;
        memcpy(&word, b.data + y * band_row_bytes(&b) + (x >> 4) * 2, 2);
        return word >> (15 - (x & 15)) & 1;
    };
    for (int i = 0; i < 400 * row_bytes; i++)
        bands[n].data[i] = uint8_t(i * 37 + i / 91);
    display_mode &= ~uint32_t{COLOR};
    const int w = open_on(show_image(n, n, n), 333, 201);
    const band_rec &detail = bands[windows[w].red_band];
    ASSERT_EQ(detail.format & KIND_MASK, uint32_t{KIND_BIN});
    for (int y = 0; y < 256; y++)
        for (int x = 0; x < 256; x++)
            ASSERT_EQ(bit(detail, x, y), bit(bands[n], 205 + x, 73 + y)) << x << ", " << y;
}

TEST_F(DetailWindow, KeepsTheTurnOfTheView)
{
    const int picture = open_grey("grey.pgm", 600, 500);
    band_rec &band = bands[windows[picture].red_band];
    band.orientation = ORIENT_LL_ROW;
    band_reset_orientation(windows[picture].red_band);
    const band_rec &detail = bands[windows[open_on(picture, 300, 200)].red_band];
    EXPECT_EQ(detail.orientation, ORIENT_LL_ROW);
    EXPECT_EQ(detail.xform[1][1], -1);
}

TEST_F(DetailWindow, OfASubsampledImageReadsTheFileAgain)
{
    const std::string path = write_file("detail.pgm", "P5", 400, 300, 1);
    int band;
    display_mode &= ~uint32_t{COLOR};
    ASSERT_EQ(load_gray(2, path.c_str(), SOURCE_GRAY, WHOLE_FILE, 1, &band), 1);
    EXPECT_EQ(bands[band].x_size, 200);
    const int w = open_on(active_window, 200, 20);
    ASSERT_GT(w, 0);
    expect_area(windows[w].red_band, 72, 0, 327, 147);
    expect_image(windows[w].red_band, 0);
    EXPECT_EQ(windows[w].data_x, 128);
    EXPECT_EQ(windows[w].data_y, 20);
}

TEST_F(DetailWindow, OfASubsampledColourImageReadsTheFileAgain)
{
    const std::string path = write_file("detail.ppm", "P6", 400, 300, 3);
    int r, g, b;
    display_mode |= COLOR;
    ASSERT_EQ(load_rgb_file(2, path.c_str(), WHOLE_FILE, 1, &r, &g, &b), 1);
    const int w = open_on(active_window, 200, 150);
    ASSERT_GT(w, 0);
    expect_image(windows[w].red_band, 0);
    expect_image(windows[w].green_band, 50);
    expect_image(windows[w].blue_band, 100);
}

TEST_F(DetailWindow, OfAFileThatHasGoneShowsTheReadersWords)
{
    const std::string path = write_file("gone.pgm", "P5", 400, 300, 1);
    int band;
    display_mode &= ~uint32_t{COLOR};
    ASSERT_EQ(load_gray(2, path.c_str(), SOURCE_GRAY, WHOLE_FILE, 1, &band), 1);
    const int picture = active_window;
    remove(path.c_str());
    EXPECT_EQ(open_on(picture, 200, 150), -1);
    EXPECT_EQ(std::string(msg_text(MSG_STATUS)), "failed to open file " + path + "\n");
    EXPECT_EQ(windows_in_use(), 1);
    EXPECT_EQ(bands_in_use(), 1);
    EXPECT_EQ(picture_count, 1);
    EXPECT_EQ(active_window, picture);
}

TEST_F(DetailWindow, OfASubsampledImageOfAnotherKindIsRefused)
{
    const int picture = open_grey("raw.bin", 200, 150);
    band_rec &band = bands[windows[picture].red_band];
    band.increment = 2;
    band.file_x1 = 399;
    band.file_y1 = 299;
    for (const uint32_t kind : { KIND_NONE, KIND_RAW, KIND_BIN }) {
        band.format = kind & 63;
        msg_clear(MSG_STATUS);
        EXPECT_EQ(open_on(picture, 200, 150), -1);
        EXPECT_STREQ(msg_text(MSG_STATUS), "failed to read file format");
    }
}

TEST_F(DetailWindow, BesideTheImageIsRefused)
{
    EXPECT_EQ(open_on(open_grey("grey.pgm", 600, 500), -200, 100), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "There is no image at that point");
    EXPECT_EQ(bands_in_use(), 1);
}

TEST_F(DetailWindow, WithoutAFreeBandOrWindowLeavesNothingBehind)
{
    const int picture = open_colour("colour.ppm", 600, 500);
    for (int n = 3; n < 30; n++)
        bands[n].alloc_bytes = 1;                      // two slots are left
    EXPECT_EQ(open_on(picture, 300, 200), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "failed to allocate memory for image");
    EXPECT_EQ(bands_in_use(), 30);
    for (int n = 3; n < 30; n++)
        bands[n].alloc_bytes = 0;
    int w;
    while (ws_create_window(screen_no, "", 0, 0, 9, 9, &w) == 0)
        ;
    EXPECT_EQ(open_on(picture, 300, 200), -1);
    EXPECT_STREQ(msg_text(MSG_STATUS), "no window is free for the detail");
    EXPECT_EQ(bands_in_use(), 3);
    EXPECT_EQ(active_window, picture);
}

TEST_F(DetailWindow, TheCommandTurnsAPointIntoFilePixels)
{
    const int picture = open_grey("grey.pgm", 600, 500);
    windows[picture].zoom = 2;
    points_at(picture, 636 - 40, 477 + 30);            // held 300 - 20, 250 + 15
    detail_win();
    const int band = bands_in_use() == 2 ? 1 : 0;
    EXPECT_EQ(bands[band].file_x0, 280 - 128);
    EXPECT_EQ(bands[band].file_y0, 265 - 128);
    EXPECT_STREQ(msg_text(MSG_PROMPT), "");
}

TEST_F(DetailWindow, APointInTheOverviewIsOneOfThePicture)
{
    const int picture = open_grey("grey.pgm", 2000, 1500);
    open_overview();
    const int overview = window_overview_of(picture);
    points_at(overview, windows[overview].width >> 1, windows[overview].height >> 1);
    detail_win();
    EXPECT_EQ(bands[1].file_x0, 1000 - 128);
    EXPECT_EQ(active_window, picture);
}

TEST(DetailWindowOnASmallScreen, LiesOnTheScreen)
{
    ASSERT_EQ(start_workstation(800, 600), 1);
    const int w = DetailWindow::open_on(WindowFamily::open_grey("grey.pgm", 600, 500), 300, 200);
    EXPECT_EQ(windows[w].x + windows[w].width, 800 - layout.border_x);
    EXPECT_EQ(windows[w].y, 100);
    stop_workstation();
}
