// Every scan routine against a plain computation of each pixel of the clip on its own.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "display/dither.h"
#include "display/paint.h"
#include "display/scan_state.h"
#include "display/vlt.h"
#include "fake_screen.h"
#include "mem.h"
#include "shell/session.h"

constexpr int W = 3;                   // the window
constexpr int FOREGROUND = 77;

// --- a view and what it shows, pixel by pixel ----------------------------------------------------------------

struct test_view {
    double zoom;
    double m00, m01, m10, m11;         // rotation and flips
    double data_x, data_y;
    int width, height;                 // window
};

struct test_source {
    int width, height;
    int x, y;                          // of the block
};

static void matrix_of(const test_view &t, double (&out)[16])
{
    const double w = 1 / t.zoom, cx = (t.width - 1) / 2.0, cy = (t.height - 1) / 2.0;
    const double m[16] = { t.m00, t.m01, 0, cx * w - t.m00 * t.data_x - t.m01 * t.data_y, t.m10, t.m11, 0,
                           cy * w - t.m10 * t.data_x - t.m11 * t.data_y, 0, 0, 1, 0, 0, 0, 0, w };
    std::copy(m, m + 16, out);
}

// Source position in 16.16 of a window pixel, reached from a first pixel in truncated steps. The 2 by 2 parts are orthogonal.
static void position(const test_view &t, int first_x, int first_y, int x, int y, int64_t *u, int64_t *v)
{
    const double dx = first_x - (t.width - 1) / 2.0, dy = first_y - (t.height - 1) / 2.0;
    const double whole_x = t.data_x + (t.m00 * dx + t.m10 * dy) / t.zoom, whole_y = t.data_y + (t.m01 * dx + t.m11 * dy) / t.zoom;
    const auto fixed = [](double s) { return int64_t(s * 65536 + std::copysign(0.0005, s)); };
    const auto step = [&](double m) { return int64_t(m / t.zoom * 65536); };
    *u = fixed(whole_x) + (x - first_x) * step(t.m00) + (y - first_y) * step(t.m10);
    *v = fixed(whole_y) + (x - first_x) * step(t.m01) + (y - first_y) * step(t.m11);
}

typedef std::function<int32_t(int x, int y, int column, int row)> pixel_value;

static std::vector<int32_t> expected(const test_view &t, const test_source &s, const window_rect &clip, const pixel_value &value)
{
    std::vector<int32_t> out(size_t(t.width * t.height), UNTOUCHED);
    int first_x = clip.x0, first_y = clip.y0;
    if (t.m00 == 1 && t.m11 == 1) {    // axis-aligned walks begin with the block when that lies inside the clip
        const double corner_x = (t.width - 1) / 2.0 + t.zoom * (s.x - t.data_x), corner_y = (t.height - 1) / 2.0 + t.zoom * (s.y - t.data_y);
        first_x = std::max(first_x, int(std::floor(corner_x + 1e-9)));
        first_y = std::max(first_y, int(std::floor(corner_y + 1e-9)));
    }
    for (int y = std::max(first_y, 0); y <= std::min(clip.y1, t.height - 1); y++)
        for (int x = std::max(first_x, 0); x <= std::min(clip.x1, t.width - 1); x++) {
            int64_t u, v;
            position(t, first_x, first_y, x, y, &u, &v);
            u -= int64_t{s.x} << 16, v -= int64_t{s.y} << 16;
            if (u >= 0 && v >= 0 && u >> 16 < s.width && v >> 16 < s.height)
                out[size_t(y * t.width + x)] = value(x, y, int(u >> 16), int(v >> 16));
        }
    return out;
}

static std::vector<int32_t> shown_pixels()
{
    std::vector<int32_t> out;
    for (int y = 0; y < screen.height; y++)
        for (int x = 0; x < screen.width; x++)
            out.push_back(shown(x, y));
    return out;
}

// --- the routines --------------------------------------------------------------------------------------------

static uint16_t tables[3][256];
static std::vector<uint8_t> planes[3];

struct routine_case {
    const char *name;
    const scan_routine *aligned, *general;
    int depth;
    uint32_t value_mask;
    bool mono_dither, rows_of_window;
    int32_t (*value)(int x, int y, int r, int g, int b);  // of table values
};

static const routine_case routines[] = {
    { "8", &scan_8, &scan_8_rot, 8, 255, false, false, [](int, int, int r, int, int) { return int32_t(r & 255); } },
    { "16", &scan_16, &scan_16_rot, 8, 511, false, false, [](int, int, int r, int, int) { return int32_t(r); } },
    { "grey24", &scan_grey24, &scan_grey24_rot, 8, 16777215, false, true, [](int, int, int r, int, int) { return (r & 255) * 0x010101; } },
    { "grey24 put", &scan_grey24, &scan_grey24_rot, 8, 16777215, false, false, [](int, int, int r, int, int) { return (r & 255) * 0x010101; } },
    { "dither", &scan_dither, &scan_dither_rot, 8, 255, true, false, [](int x, int y, int r, int, int) { return dither_mono(x, y, r & 255); } },
    { "rgb", &scan_rgb, &scan_rgb_rot, 24, 16777215, false, true,
      [](int, int, int r, int g, int b) { return (r & 255) << 16 | (g & 255) << 8 | (b & 255); } },
    { "rgb slots", &scan_rgb, &scan_rgb_rot, 24, 255, false, false,
      [](int x, int y, int r, int g, int b) { return dither_colour(x, y, r & 255, g & 255, b & 255) & 255; } },
    { "rgb wide slots", &scan_rgb, &scan_rgb_rot, 24, 511, false, false,
      [](int x, int y, int r, int g, int b) { return dither_colour(x, y, r & 255, g & 255, b & 255); } },
};

static const double C30 = std::cos(M_PI / 6), S30 = std::sin(M_PI / 6);

static const test_view views[] = {
    { 1, 1, 0, 0, 1, 30, 20, 65, 49 },
    { 1, 1, 0, 0, 1, 30, 20, 64, 48 },           // an even window has its centre between two pixels
    { 2, 1, 0, 0, 1, 10, 12, 65, 49 },
    { 3, 1, 0, 0, 1, 30, 40, 64, 48 },
    { 0.25, 1, 0, 0, 1, 30, 20, 64, 48 },        // the image is smaller than the window
    { 0.37, 1, 0, 0, 1, 40, 30, 41, 33 },
    { 0.37, C30, -S30, S30, C30, 31, 22, 64, 48 },
    { 1, C30, -S30, S30, C30, 31, 22, 65, 49 },
    { 3, C30, -S30, S30, C30, 31, 22, 64, 48 },
    { 1, 0, -1, 1, 0, 31, 22, 65, 49 },          // a quarter turn
    { 1.5, 0, -1, 1, 0, 31, 22, 64, 48 },
    // The orientation codes: columns negated (1, 2, 3), then exchanged below 4.
    { 1, 0, 1, 1, 0, 31, 22, 65, 49 },           // 0
    { 1, 0, -1, 1, 0, 31, 22, 65, 49 },          // 1
    { 1, 0, 1, -1, 0, 31, 22, 65, 49 },          // 2
    { 1, 0, -1, -1, 0, 31, 22, 65, 49 },         // 3
    { 2, 1, 0, 0, 1, 31, 22, 65, 49 },           // 4
    { 2, -1, 0, 0, 1, 31, 22, 65, 49 },          // 5
    { 2, 1, 0, 0, -1, 31, 22, 65, 49 },          // 6
    { 2, -1, 0, 0, -1, 31, 22, 65, 49 },         // 7
};

class ScanRoutines : public testing::Test {
protected:
    void SetUp() override
    {
        session_reset();
        vlt_init();
        num_planes = start_planes = 9;
        dither_build(2.2, 8);
        std::mt19937 random(11);
        for (int i = 0; i < 512; i++)
            colour_map[i] = uint16_t(i ^ 0x155);
        for (int i = 0; i < 32; i++)
            grey_levels[i] = uint8_t(31 - i);
        for (auto &table : tables)
            for (uint16_t &entry : table)
                entry = uint16_t(random() & 511);
        for (std::vector<uint8_t> &plane : planes) {
            plane.resize(size_t(SOURCE_WIDTH * SOURCE_HEIGHT));
            for (uint8_t &byte : plane)
                byte = uint8_t(random());
        }
        paint_interrupt = 1;
        dither_kind = DITHER_COLOUR;
    }
    void TearDown() override { scan_reset(); }

    static constexpr int SOURCE_WIDTH = 61, SOURCE_HEIGHT = 47;

    static void paint(const test_view &t, const window_rect &clip, const routine_case &c, const test_source &s, bool uniform = false)
    {
        fake_screen_reset(t.width, t.height, c.rows_of_window);
        dither_kind = c.mono_dither ? DITHER_MONO : DITHER_COLOUR;
        double matrix[16];
        matrix_of(t, matrix);
        scan_prepare(W, clip.x0, clip.y0, clip.x1, clip.y1, c.value_mask, s.width, s.height, c.depth, tables[0], tables[1], tables[2], matrix);
        const view_source blue { nullptr, uniform ? nullptr : planes[2].data(), 30, s.x, s.y, s.width, s.height, SOURCE_WIDTH };
        const view_source green { &blue, uniform ? nullptr : planes[1].data(), 20, s.x, s.y, s.width, s.height, SOURCE_WIDTH };
        const view_source red { c.depth == 24 ? &green : nullptr, uniform ? nullptr : planes[0].data(), 10, s.x, s.y, s.width, s.height,
                                SOURCE_WIDTH };
        scan_run(W, &red);
    }

    static pixel_value value_of(const routine_case &c, bool uniform = false)
    {
        return [&c, uniform](int x, int y, int column, int row) {
            const size_t at = size_t(row * SOURCE_WIDTH + column);
            const int r = uniform ? 10 : planes[0][at], g = uniform ? 20 : planes[1][at], b = uniform ? 30 : planes[2][at];
            return c.value(x, y, tables[0][r], tables[1][g], tables[2][b]);
        };
    }
};

TEST_F(ScanRoutines, ShowWhatEachPixelShowsByItself)
{
    const test_source s { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 };
    for (const routine_case &c : routines)
        for (const test_view &t : views) {
            const window_rect whole { 0, 0, t.width, t.height };   // one past the window
            paint(t, whole, c, s);
            ASSERT_EQ(shown_pixels(), expected(t, s, whole, value_of(c))) << c.name << " zoom " << t.zoom << " m00 " << t.m00 << " m01 " << t.m01;
            const bool aligned = t.m00 == 1 && t.m11 == 1;
            EXPECT_EQ(scan_state_of(W)->scan, aligned ? c.aligned : c.general) << c.name;
        }
}

TEST_F(ScanRoutines, WriteNothingOutsideTheClip)
{
    const test_source s { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 };
    const window_rect clips[] = { { 7, 5, 31, 40 }, { 20, 33, 20, 33 }, { -4, -3, 12, 9 }, { 50, 40, 80, 70 } };
    for (const routine_case &c : routines)
        for (const test_view &t : views)
            for (const window_rect &clip : clips) {
                paint(t, clip, c, s);
                ASSERT_EQ(shown_pixels(), expected(t, s, clip, value_of(c)))
                    << c.name << " zoom " << t.zoom << " m00 " << t.m00 << " clip " << clip.x0 << " " << clip.y0;
            }
}

TEST_F(ScanRoutines, DrawABlockAtItsPlaceInTheImage)
{
    const test_source s { 25, 17, 12, 9 };
    for (const routine_case &c : routines)
        for (const test_view &t : views) {
            const window_rect whole { 0, 0, t.width - 1, t.height - 1 };
            paint(t, whole, c, s);
            ASSERT_EQ(shown_pixels(), expected(t, s, whole, value_of(c))) << c.name << " zoom " << t.zoom << " m00 " << t.m00;
        }
}

TEST_F(ScanRoutines, FillAUniformBlockWithItsValue)
{
    const test_source s { 25, 17, 12, 9 };
    for (const routine_case &c : routines)
        for (const test_view &t : views) {
            const window_rect whole { 0, 0, t.width - 1, t.height - 1 };
            paint(t, whole, c, s, true);
            ASSERT_EQ(shown_pixels(), expected(t, s, whole, value_of(c, true))) << c.name << " zoom " << t.zoom << " m00 " << t.m00;
        }
}

TEST_F(ScanRoutines, AZoomOfAQuarterTakesEveryFourthColumnAndRowFromTheFirst)
{
    const test_view t { 0.25, 1, 0, 0, 1, 0, 0, 1, 1 };   // source 0, 0 at window 0, 0
    test_view wide = t;
    wide.width = 15, wide.height = 11;
    wide.data_x = 28, wide.data_y = 20;                   // centre 7, 5: window 0, 0 is source 0, 0
    paint(wide, { 0, 0, 14, 10 }, routines[1], { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 });
    for (int y = 0; y < 11; y++)
        for (int x = 0; x < 15; x++)
            EXPECT_EQ(shown(x, y), tables[0][planes[0][size_t(y * 4 * SOURCE_WIDTH + x * 4)]]) << x << ", " << y;
}

TEST_F(ScanRoutines, AQuarterTurnWithTheSineOfPiTurnsExactly)
{
    const double c = std::cos(M_PI / 2), s = std::sin(M_PI / 2);
    const test_view t { 1, c, -s, s, c, 30, 23, 47, 61 };  // centre 23, 30: the turned image fits
    paint(t, { 0, 0, 46, 60 }, routines[1], { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 });
    for (int y = 0; y < 61; y++)
        for (int x = 0; x < 47; x++)           // x - 23 = -(row - 23), y - 30 = column - 30
            ASSERT_EQ(shown(x, y), tables[0][planes[0][size_t((46 - x) * SOURCE_WIDTH + y)]]) << x << ", " << y;
}

TEST_F(ScanRoutines, ARotatedViewLeavesTheCornersOfTheWindow)
{
    const double c45 = std::cos(M_PI / 4);
    paint({ 1, c45, -c45, c45, c45, 30, 23, 65, 65 }, { 0, 0, 64, 64 }, routines[0], { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 });
    EXPECT_EQ(shown(0, 0), UNTOUCHED);
    EXPECT_EQ(shown(64, 0), UNTOUCHED);
    EXPECT_EQ(shown(0, 64), UNTOUCHED);
    EXPECT_EQ(shown(64, 64), UNTOUCHED);
    EXPECT_NE(shown(32, 32), UNTOUCHED);
}

TEST_F(ScanRoutines, ExtremeZoomInShowsOnePixelAllOver)
{
    paint({ 1 << 20, 1, 0, 0, 1, 5, 6, 65, 49 }, { 33, 25, 64, 48 }, routines[1], { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 });
    EXPECT_EQ(shown(40, 30), tables[0][planes[0][6 * SOURCE_WIDTH + 5]]);
    EXPECT_EQ(shown(64, 48), tables[0][planes[0][6 * SOURCE_WIDTH + 5]]);
}

TEST_F(ScanRoutines, ExtremeZoomOutAndASingularMatrixPaintNothing)
{
    for (const test_view &t : { test_view { 1.0 / 40000, 1, 0, 0, 1, 5, 6, 65, 49 }, test_view { 1, 1, 1, 1, 1, 5, 6, 65, 49 } }) {
        paint(t, { 0, 0, 64, 48 }, routines[0], { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 });
        EXPECT_EQ(scan_state_of(W)->scan, &scan_nothing);
        EXPECT_EQ(screen.puts_8, 0);
    }
}

TEST_F(ScanRoutines, ImagesWiderThan32767PixelsAreReached)
{
    const int width = 100000;
    std::vector<uint8_t> row(width);
    for (int x = 0; x < width; x++)
        row[size_t(x)] = uint8_t(x % 251);
    uint16_t straight[256];
    for (int i = 0; i < 256; i++)
        straight[i] = uint16_t(i);
    for (const double flip : { 1.0, -1.0 }) {
        fake_screen_reset(21, 1, false);
        double matrix[16];
        matrix_of({ 1, flip, 0, 0, 1, 90000, 0, 21, 1 }, matrix);
        scan_prepare(W, 0, 0, 20, 0, 255, width, 1, 8, straight, nullptr, nullptr, matrix);
        const view_source source { nullptr, row.data(), 0, 0, 0, width, 1, width };
        scan_run(W, &source);
        for (int x = 0; x < 21; x++)
            EXPECT_EQ(shown(x, 0), (90000 + int(flip) * (x - 10)) % 251);
    }
}

// --- one-bit sources -------------------------------------------------------------------------------------------

TEST_F(ScanRoutines, OneBitSourcesOfOddWidthsStampTheirOnes)
{
    std::mt19937 random(3);
    for (const int width : { 1, 15, 16, 17, 33, 61 }) {
        const int height = 20, row_bytes = (width + 15) / 8 & ~1;
        std::vector<uint8_t> bits(size_t(row_bytes * height));
        for (uint8_t &byte : bits)
            byte = uint8_t(random());
        const auto value = [&](int, int, int column, int row) {
            uint16_t word;
            std::memcpy(&word, &bits[size_t(row * row_bytes + column / 16 * 2)], 2);
            return word & 0x8000 >> column % 16 ? FOREGROUND : UNTOUCHED;
        };
        for (test_view t : views) {
            t.data_x = width / 2, t.data_y = 10;
            for (const window_rect &clip : { window_rect { 0, 0, t.width, t.height }, window_rect { 13, 9, 40, 30 } }) {
                fake_screen_reset(t.width, t.height, false);
                ws_set_foreground(W, FOREGROUND);
                double matrix[16];
                matrix_of(t, matrix);
                scan_prepare(W, clip.x0, clip.y0, clip.x1, clip.y1, 255, width, height, 1, nullptr, nullptr, nullptr, matrix);
                const view_source source { nullptr, bits.data(), 0, 0, 0, width, height, width };
                scan_run(W, &source);
                ASSERT_EQ(shown_pixels(), expected(t, { width, height, 0, 0 }, clip, value)) << "width " << width << " zoom " << t.zoom;
            }
        }
    }
}

// --- memory variants -------------------------------------------------------------------------------------------

TEST_F(ScanRoutines, MemoryVariantsStoreABytePerPixelAClipWidthALine)
{
    const test_source s { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 };
    const window_rect clip { 5, 3, 34, 40 };
    const int clip_width = 30, clip_height = 38;
    for (const int k : { 0, 4 })               // 8 and dither
        for (const test_view &t : views) {
            const routine_case &c = routines[k];
            fake_screen_reset(t.width, t.height, false);
            dither_kind = c.mono_dither ? DITHER_MONO : DITHER_COLOUR;
            double matrix[16];
            matrix_of(t, matrix);
            std::vector<uint8_t> buffer(size_t(clip_width * clip_height), 0xEE);
            scan_prepare(W, clip.x0, clip.y0, clip.x1, clip.y1, 255, s.width, s.height, 8, tables[0], nullptr, nullptr, matrix);
            scan_set_target(W, buffer.data());
            const view_source source { nullptr, planes[0].data(), 0, 0, 0, s.width, s.height, SOURCE_WIDTH };
            scan_run(W, &source);
            EXPECT_EQ(screen.puts_8, 0);
            const std::vector<int32_t> want = expected(t, s, clip, value_of(c));
            for (int y = clip.y0; y <= std::min(clip.y1, t.height - 1); y++)
                for (int x = clip.x0; x <= std::min(clip.x1, t.width - 1); x++) {
                    const int32_t pixel = want[size_t(y * t.width + x)];
                    ASSERT_EQ(buffer[size_t((y - clip.y0) * clip_width + x - clip.x0)], pixel == UNTOUCHED ? 0xEE : pixel)
                        << c.name << " zoom " << t.zoom << " at " << x << ", " << y;
                }
            const bool aligned = t.m00 == 1 && t.m11 == 1;
            EXPECT_EQ(scan_state_of(W)->scan, aligned ? &scan_to_memory : &scan_to_memory_rot);
        }
}

TEST_F(ScanRoutines, WithATargetTheOtherRoutinesWriteNothing)
{
    uint8_t buffer[64 * 48] = {};
    for (const routine_case &c : routines) {
        if (c.aligned == &scan_8 || c.aligned == &scan_dither)
            continue;
        fake_screen_reset(64, 48, c.rows_of_window);
        double matrix[16];
        matrix_of({ 1, 1, 0, 0, 1, 30, 20, 64, 48 }, matrix);
        scan_prepare(W, 0, 0, 63, 47, c.value_mask, SOURCE_WIDTH, SOURCE_HEIGHT, c.depth, tables[0], tables[1], tables[2], matrix);
        scan_set_target(W, buffer);
        const view_source source { nullptr, planes[0].data(), 0, 0, 0, SOURCE_WIDTH, SOURCE_HEIGHT, SOURCE_WIDTH };
        scan_run(W, &source);
        EXPECT_EQ(scan_state_of(W)->scan, &scan_nothing) << c.name;
        EXPECT_EQ(shown(32, 24), UNTOUCHED) << c.name;
    }
}

// --- interruption and failure ------------------------------------------------------------------------------------

TEST_F(ScanRoutines, AClickStopsAtTheNextMultipleOf32Lines)
{
    for (const test_view &t : { test_view { 8, 1, 0, 0, 1, 30, 20, 65, 100 }, test_view { 8, -1, 0, 0, 1, 30, 20, 65, 100 } }) {
        paint_interrupt = 1;
        fake_screen_reset(t.width, t.height, false);
        screen.buttons = { WS_UP, WS_CLICK };  // the release is swallowed at line 32, the click counts at line 64
        double matrix[16];
        matrix_of(t, matrix);
        scan_prepare(W, 0, 1, 64, 99, 255, SOURCE_WIDTH, SOURCE_HEIGHT, 8, tables[0], nullptr, nullptr, matrix);
        const view_source source { nullptr, planes[0].data(), 0, 0, 0, SOURCE_WIDTH, SOURCE_HEIGHT, SOURCE_WIDTH };
        scan_run(W, &source);
        EXPECT_NE(shown(32, 63), UNTOUCHED);
        EXPECT_EQ(shown(32, 64), UNTOUCHED);
        EXPECT_EQ(screen.buttons_read, 2);     // both are used up
    }
}

TEST_F(ScanRoutines, WithoutInterruptionAClickIsLeftAlone)
{
    paint_interrupt = 0;
    fake_screen_reset(65, 100, false);
    screen.buttons = { WS_CLICK };
    double matrix[16];
    matrix_of({ 8, 1, 0, 0, 1, 30, 20, 65, 100 }, matrix);
    scan_prepare(W, 0, 0, 64, 99, 255, SOURCE_WIDTH, SOURCE_HEIGHT, 8, tables[0], nullptr, nullptr, matrix);
    const view_source source { nullptr, planes[0].data(), 0, 0, 0, SOURCE_WIDTH, SOURCE_HEIGHT, SOURCE_WIDTH };
    scan_run(W, &source);
    EXPECT_NE(shown(32, 99), UNTOUCHED);
    EXPECT_EQ(screen.buttons_read, 0);
}

TEST_F(ScanRoutines, WithoutMemoryForTheRowTableTheWindowStaysUnpainted)
{
    scan_reset();
    mem_fail_countdown = 0;
    paint({ 1, 1, 0, 0, 1, 30, 20, 65, 49 }, { 0, 0, 64, 48 }, routines[0], { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 });
    EXPECT_EQ(mem_fail_countdown, -1);
    EXPECT_EQ(scan_state_of(W)->scan, &scan_nothing);
    EXPECT_EQ(screen.puts_8, 0);
}

TEST_F(ScanRoutines, SayWhichRowsOfTheWindowTheyChanged)
{
    paint({ 1, 1, 0, 0, 1, 30, 20, 65, 49 }, { 3, 4, 65, 49 }, routines[2], { SOURCE_WIDTH, SOURCE_HEIGHT, 0, 0 });
    ASSERT_EQ(screen.rows_done.size(), 1u);
    EXPECT_EQ(screen.rows_done[0].x0, 3);
    EXPECT_EQ(screen.rows_done[0].y0, 4);
    EXPECT_EQ(screen.rows_done[0].x1, 64);     // cut to the window
    EXPECT_EQ(screen.rows_done[0].y1, 48);
}
