// The sample pictures as kestrel-mkdata made them, and the landscape that they show.
#include "RIO/rio.h"
#include "tools/font_reading.h"
#include "tools/noise.h"
#include "tools/terrain.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

static const std::string samples = KESTREL_DATA_ROOT "/samples/";

// The bytes behind the header, which must be exactly this text.
static std::vector<uint8_t> pixels_of(const std::string &name, const std::string &header)
{
    const std::vector<uint8_t> file = file_bytes(samples + name);
    if (file.size() < header.size() || std::string(file.begin(), file.begin() + long(header.size())) != header) {
        ADD_FAILURE() << name << " has another header";
        return {};
    }
    return { file.begin() + long(header.size()), file.end() };
}

static std::vector<uint8_t> scene() { return pixels_of("scene.ppm", "P6\n2048 1536\n255\n"); }
static std::vector<uint8_t> sheet() { return pixels_of("sheet.pbm", "P4\n5000 7000\n"); }
static std::vector<uint8_t> elevation() { return pixels_of("elevation.pgm", "P5\n1024 1024\n65535\n"); }

TEST(Samples, HaveTheSizesOfTheirHeaders)
{
    EXPECT_EQ(scene().size(), 2048u * 1536 * 3);
    EXPECT_EQ(pixels_of("scene_grey.pgm", "P5\n2048 1536\n255\n").size(), 2048u * 1536);
    EXPECT_EQ(sheet().size(), 625u * 7000);             // 5000 pixels are 625 bytes
    EXPECT_EQ(elevation().size(), 1024u * 1024 * 2);
}

// 77, 150 and 29 of 256 are 0.30, 0.59 and 0.11 within a thousandth.
TEST(Samples, GreySceneIsTheColourScenesLuminance)
{
    const std::vector<uint8_t> rgb = scene(), grey = pixels_of("scene_grey.pgm", "P5\n2048 1536\n255\n");
    ASSERT_EQ(rgb.size(), grey.size() * 3);
    double farthest = 0;
    for (size_t i = 0; i < grey.size(); i++) {
        const double luminance = (77.0 * rgb[3 * i] + 150.0 * rgb[3 * i + 1] + 29.0 * rgb[3 * i + 2]) / 256;
        farthest = std::max(farthest, std::fabs(luminance - grey[i]));
    }
    EXPECT_LE(farthest, 0.5);
}

TEST(Samples, SceneUsesTheWholeRangeOfLevels)
{
    const std::vector<uint8_t> rgb = scene();
    for (size_t band = 0; band < 3; band++) {
        std::vector<size_t> count(256);
        for (size_t i = band; i < rgb.size(); i += 3)
            count[rgb[i]]++;
        size_t used = 0;
        for (const size_t n : count)
            used += n > 0;
        EXPECT_GT(used, 230u) << "band " << band;
        EXPECT_LT(count[0] + count[255], rgb.size() / 3 / 50) << "band " << band;      // hardly anything is cut off
    }
}

// The grid's corner lies at column 512, row 256 of the scene; level 0 is the sea's.
TEST(Samples, SceneIsBlueWhereTheElevationIsTheSea)
{
    const std::vector<uint8_t> rgb = scene(), levels = elevation();
    size_t sea = 0, blue = 0;
    int highest = 0;
    for (size_t y = 0; y < 1024; y++)
        for (size_t x = 0; x < 1024; x++) {
            const int level = levels[(y * 1024 + x) * 2] * 256 + levels[(y * 1024 + x) * 2 + 1];
            highest = std::max(highest, level);
            if (level == 0) {
                const uint8_t *seen = &rgb[((y + 256) * 2048 + x + 512) * 3];
                sea++;
                blue += seen[2] > seen[0];
            }
        }
    EXPECT_GT(sea, 1024u * 1024 / 100);
    EXPECT_GT(blue, sea * 95 / 100);
    EXPECT_GT(highest, 3000);                           // tenths of a metre: hills of more than 300 m
}

TEST(Samples, SheetHasAWhiteMarginABlackFrameAndInkInside)
{
    const std::vector<uint8_t> bits = sheet();
    const auto black = [&](size_t x, size_t y) { return bits[y * 625 + x / 8] >> (7 - x % 8) & 1; };
    size_t margin_ink = 0, frame_ink = 0, map_ink = 0;
    for (size_t x = 0; x < 5000; x++)
        margin_ink += black(x, 60) + black(x, 6940);
    for (size_t x = 120; x < 4880; x++)
        frame_ink += black(x, 125) + black(x, 6874);
    for (size_t y = 1000; y < 6000; y++)
        for (size_t x = 500; x < 4500; x++)
            map_ink += black(x, y);
    EXPECT_EQ(margin_ink, 0u);
    EXPECT_EQ(frame_ink, 2u * 4760);
    EXPECT_GT(map_ink, 5000u * 4000 / 20);
    EXPECT_LT(map_ink, 5000u * 4000 / 4);
}

struct open_sample {
    RFILE *file;
    int32_t width = 0, height = 0, data_type = 0;
};

static open_sample open_native(const char *name)
{
    open_sample sample{ rio_open_r((samples + name).c_str()) };
    if (sample.file) {
        rio_get_hdr_data(sample.file, RIO_KEY_WIDTH, &sample.width);
        rio_get_hdr_data(sample.file, RIO_KEY_HEIGHT, &sample.height);
        rio_get_hdr_data(sample.file, RIO_KEY_DATA_TYPE, &sample.data_type);
    }
    return sample;
}

TEST(NativeSamples, ColourSceneIsTheSamePicture)
{
    const std::vector<uint8_t> rgb = scene();
    const open_sample native = open_native("scene.nat");
    ASSERT_NE(native.file, nullptr);
    EXPECT_EQ(native.data_type, 28);
    ASSERT_EQ(native.width, 2048);
    ASSERT_EQ(native.height, 1536);
    std::vector<uint8_t> red(2048), green(2048), blue(2048);
    size_t different = 0;
    for (size_t y = 0; y < 1536; y++) {
        ASSERT_EQ(rio_getline_rgb(native.file, red.data(), green.data(), blue.data()), 0);
        for (size_t x = 0; x < 2048; x++) {
            const uint8_t *pixel = &rgb[(y * 2048 + x) * 3];
            different += pixel[0] != red[x] || pixel[1] != green[x] || pixel[2] != blue[x];
        }
    }
    EXPECT_EQ(different, 0u);
    rio_close(native.file);
}

TEST(NativeSamples, GreySceneIsTheSamePicture)
{
    const std::vector<uint8_t> grey = pixels_of("scene_grey.pgm", "P5\n2048 1536\n255\n");
    const open_sample native = open_native("scene_grey.cot");
    ASSERT_NE(native.file, nullptr);
    EXPECT_EQ(native.data_type, 2);
    ASSERT_EQ(native.width, 2048);
    ASSERT_EQ(native.height, 1536);
    std::vector<uint8_t> line(2048);
    for (long y = 0; y < 1536; y++) {
        ASSERT_EQ(rio_getline(native.file, line.data()), 0);
        ASSERT_TRUE(std::equal(line.begin(), line.end(), grey.begin() + y * 2048)) << "line " << y;
    }
    rio_close(native.file);
}

TEST(NativeSamples, MapSheetIsTheSamePicture)
{
    const std::vector<uint8_t> bits = sheet();
    const open_sample native = open_native("sheet.bin");
    ASSERT_NE(native.file, nullptr);
    EXPECT_EQ(native.data_type, 1);
    ASSERT_EQ(native.width, 5000);
    ASSERT_EQ(native.height, 7000);
    std::vector<uint16_t> words(313);                   // 5000 pixels are 312.5 words
    for (size_t y = 0; y < 7000; y++) {
        ASSERT_EQ(rio_getline(native.file, words.data()), 0);
        size_t different = 0;
        for (size_t x = 0; x < 5000; x++)
            different += (words[x / 16] >> (15 - x % 16) & 1) != (bits[y * 625 + x / 8] >> (7 - x % 8) & 1);
        ASSERT_EQ(different, 0u) << "line " << y;
    }
    rio_close(native.file);
}

TEST(NativeSamples, ElevationHoldsTheSameLevels)
{
    const std::vector<uint8_t> levels = elevation();
    const open_sample native = open_native("elevation.nat");
    ASSERT_NE(native.file, nullptr);
    EXPECT_EQ(native.data_type, 3);
    ASSERT_EQ(native.width, 1024);
    ASSERT_EQ(native.height, 1024);
    // Its last bytes are the lowest row's end, low byte first.
    const std::vector<uint8_t> file = file_bytes(samples + "elevation.nat");
    ASSERT_GT(file.size(), levels.size());
    const size_t header = file.size() - levels.size();
    size_t different = 0;
    for (size_t i = 0; i < levels.size(); i += 2)
        different += file[header + i] != levels[i + 1] || file[header + i + 1] != levels[i];
    EXPECT_EQ(different, 0u);
    rio_close(native.file);
}

#ifndef MADE_ONCE
TEST(Samples, AreTheSameWhenMadeAgain)
{
    namespace fs = std::filesystem;
    const fs::path again = fs::current_path() / "samples_again";
    fs::create_directories(again);
    const std::string command = std::string(KESTREL_MKDATA) + " " KESTREL_DATA_ROOT "/fonts " + again.string();
    ASSERT_EQ(std::system(command.c_str()), 0);
    for (const char *name : { "scene.ppm", "scene_grey.pgm", "sheet.pbm", "elevation.pgm", "scene.nat",
                              "scene_grey.cot", "sheet.bin", "elevation.nat" })
        EXPECT_EQ(file_bytes((again / name).string()), file_bytes(samples + name)) << name;
    fs::remove_all(again);
}
#endif

TEST(Terrain, WaterOfEveryCellReachesTheSea)
{
    terrain land;
    ASSERT_TRUE(terrain_make(&land, 64, 48, 20, 900, 5));
    ASSERT_EQ(land.order.size(), 64u * 48);
    float arrived = 0;
    for (int32_t cell = 0; cell < 64 * 48; cell++) {
        int32_t at = cell;
        int steps = 0;
        while (land.next[size_t(at)] != at && steps++ < 64 * 48)
            at = land.next[size_t(at)];
        ASSERT_EQ(land.next[size_t(at)], at) << "cell " << cell;
        EXPECT_TRUE(land.height.cells[at] < 0 || at == 64 * 48 - 1) << "cell " << cell;
        if (land.next[size_t(cell)] == cell)
            arrived += land.drained.cells[cell];
    }
    EXPECT_EQ(arrived, 64 * 48);                        // no cell's water is lost or counted twice
}

TEST(Terrain, SaysWhenThereIsNoMemory)
{
    for (long n = 0; n < 4; n++) {
        terrain land;
        mem_fail_countdown = n;
        EXPECT_FALSE(terrain_make(&land, 16, 12, 20, 900, 5));
    }
    mem_fail_countdown = -1;
}

TEST(Noise, IsZeroAtLatticePlacesAndWithoutSteps)
{
    for (int i = -3; i <= 3; i++)
        EXPECT_EQ(noise(float(i), float(2 * i), 9), 0);
    for (float x = -2; x < 2; x += 0.01f)
        EXPECT_LT(std::fabs(noise(x + 0.01f, 0.4f, 9) - noise(x, 0.4f, 9)), 0.05f) << x;
}

TEST(FloatGrid, LinearAndCubicMeetTheCellsAndCubicKeepsAStraightSlope)
{
    float_grid grid;
    ASSERT_TRUE(grid_make(&grid, 5, 4));
    for (int y = 0; y < 4; y++)
        for (int x = 0; x < 5; x++)
            grid.row(y)[x] = float(10 * y + 2 * x);
    EXPECT_FLOAT_EQ(grid_linear(grid, 2, 1), 14);
    EXPECT_FLOAT_EQ(grid_linear(grid, 2.5f, 1.5f), 20); // 10 * 1.5 + 2 * 2.5
    EXPECT_FLOAT_EQ(grid_cubic(grid, 2, 1), 14);
    EXPECT_FLOAT_EQ(grid_cubic(grid, 1.25f, 1.5f), 17.5f);      // all 16 neighbours lie on the plane
    EXPECT_FLOAT_EQ(grid_linear(grid, -3, 9), 30);      // the nearest edge counts: row 3, column 0
}
