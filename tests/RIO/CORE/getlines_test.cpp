// Many lines in one call, from files whose lines lie close together and from others.
#include "plain_record.h"
#include <cstring>
#include <gtest/gtest.h>

// Sample x of line y of every file here.
static uint8_t sample(int x, int y) { return uint8_t(3 * x + 7 * y + x * y / 64); }

static bytes row_of(int width, int y)
{
    bytes row(size_t(width), 0);
    for (int x = 0; x < width; x++)
        row[size_t(x)] = sample(x, y);
    return row;
}

static std::string graymap(const test_folder &folder, int width, int height, int present, int most = 255)
{
    const std::string head = "P5\n" + std::to_string(width) + " " + std::to_string(height) + "\n" + std::to_string(most) + "\n";
    bytes all(head.begin(), head.end());
    for (int y = 0; y < present; y++) {
        const bytes row = row_of(width, y);
        all.insert(all.end(), row.begin(), row.end());
    }
    return folder.with("a.pgm", all);
}

struct file_shape {
    int32_t format, type, width, height, tile;
};

static void write_file(const std::string &path, const file_shape &shape)
{
    RFILE *file = rio_open_w(path.c_str());
    ASSERT_TRUE(file);
    rio_set_hdr_data(file, RIO_KEY_FORMAT, &shape.format);
    rio_set_hdr_data(file, RIO_KEY_WIDTH, &shape.width);
    rio_set_hdr_data(file, RIO_KEY_HEIGHT, &shape.height);
    rio_set_hdr_data(file, RIO_KEY_DATA_TYPE, &shape.type);
    if (shape.tile)
        rio_set_hdr_data(file, RIO_KEY_TILE_WIDTH, &shape.tile);
    for (int y = 0; y < shape.height; y++) {
        const bytes row = row_of(shape.width, y);
        ASSERT_EQ(rio_putline_rgb(file, row.data(), row.data(), row.data()), 0);
    }
    rio_close(file);
    ASSERT_EQ(rio_errno, 0u);
}

// Lines `first` on in calls of `step`, `apart` bytes apart; what lies between the rows is left alone.
static void expect_lines(RFILE *file, int width, int height, int first, int step, int64_t apart)
{
    ASSERT_TRUE(file);
    ASSERT_EQ(rio_seek(file, first), 0);
    bytes image(size_t(apart * (height - first)), 0xA5);
    for (int y = first; y < height; y += step)
        ASSERT_EQ(rio_getlines(file, std::min(step, height - y), &image[size_t((y - first) * apart)], apart), std::min(step, height - y)) << y;
    for (int y = first; y < height; y++) {
        const bytes row = row_of(width, y);
        ASSERT_EQ(std::memcmp(&image[size_t((y - first) * apart)], row.data(), row.size()), 0) << "line " << y;
        for (int64_t x = width; x < apart; x++)
            ASSERT_EQ(image[size_t((y - first) * apart + x)], 0xA5) << "line " << y;
    }
    EXPECT_EQ(rio_getlines(file, 1, image.data(), apart), 0);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    rio_close(file);
}

TEST(Getlines, GiveWhatLineByLineGives)
{
    const test_folder folder;
    const std::string path = folder / "a";
    const file_shape shapes[] = {
        { RIO_FORMAT_NATV, RIO_TYPE_BYTE, 203, 75, 0 },     { RIO_FORMAT_NATV, RIO_TYPE_BYTE_RUN, 203, 75, 0 },
        { RIO_FORMAT_NATV, RIO_TYPE_RGB, 203, 75, 0 },      { RIO_FORMAT_NATV, RIO_TYPE_BYTE, 203, 75, 32 },
        { RIO_FORMAT_NATV, RIO_TYPE_BYTE_RUN, 203, 75, 32 }, { RIO_FORMAT_TIFF, RIO_TYPE_BYTE, 203, 75, 0 },
        { RIO_FORMAT_TIFF, RIO_TYPE_BYTE, 203, 75, 32 },    { RIO_FORMAT_TIFF, RIO_TYPE_RGB, 203, 75, 32 },
        { RIO_FORMAT_SUN, RIO_TYPE_BYTE, 203, 75, 0 },      { RIO_FORMAT_PNM, RIO_TYPE_BYTE, 203, 75, 0 },
    };
    for (const file_shape &shape : shapes) {
        SCOPED_TRACE(testing::Message() << "format " << shape.format << " type " << shape.type << " tile " << shape.tile);
        write_file(path, shape);
        for (const int step : { 1, 10, 75 }) {
            expect_lines(rio_open_r(path.c_str()), shape.width, shape.height, 0, step, shape.width);
            expect_lines(rio_open_r(path.c_str()), shape.width, shape.height, 33, step, shape.width + 5);
        }
    }
}

// 3000 x 3000 is past the size from which images go past the caches.
TEST(Getlines, LargeImagesComeOutAsSmallOnesDo)
{
    const test_folder folder;
    const std::string path = folder / "a";
    for (const file_shape &shape : { file_shape { RIO_FORMAT_NATV, RIO_TYPE_BYTE, 3000, 3000, 0 },
                                     file_shape { RIO_FORMAT_TIFF, RIO_TYPE_BYTE, 3000, 3000, 128 } }) {
        write_file(path, shape);
        expect_lines(rio_open_r(path.c_str()), 3000, 3000, 0, 10, 3000);
    }
    expect_lines(rio_open_r(graymap(folder, 3000, 3000, 3000).c_str()), 3000, 3000, 0, 10, 3000);
    const int head = 3 + 10 + 4;        // "P5\n", "3000 3000\n", "255\n"
    expect_lines(rio_open_raw_r(graymap(folder, 3000, 3000, 3000).c_str(), 3000, 3000, 1, head), 3000, 3000, 0, 10, 3000);
}

TEST(Getlines, MaximumValuesOtherThan255AreStillScaled)
{
    const test_folder folder;
    const bytes all { 'P', '5', ' ', '2', ' ', '2', ' ', '5', '1', '\n', 0, 51, 17, 60 };
    RFILE *file = rio_open_r(folder.with("a", all).c_str());
    uint8_t out[4];
    ASSERT_EQ(rio_getlines(file, 2, out, 2), 2);
    EXPECT_EQ(bytes(out, out + 4), (bytes { 0, 255, 85, 255 }));    // times 5, and clipped
    rio_close(file);
}

TEST(Getlines, AFileThatEndsEarlyGivesTheLinesThatAreThere)
{
    const test_folder folder;
    RFILE *file = rio_open_r(graymap(folder, 100, 30, 17).c_str());
    bytes image(3000);
    EXPECT_EQ(rio_getlines(file, 10, image.data(), 100), 10);
    EXPECT_EQ(rio_getlines(file, 10, image.data() + 1000, 100), 7);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    for (int y = 0; y < 17; y++)
        EXPECT_EQ(bytes(&image[size_t(y) * 100], &image[size_t(y) * 100 + 100]), row_of(100, y)) << y;
    rio_close(file);
}

TEST(Getlines, AFileInMemoryIsReadToo)
{
    const test_folder folder;
    graymap(folder, 100, 30, 30);
    bytes data = folder.content("a.pgm");
    rio_memory_file m { .data = data.data(), .size = int64_t(data.size()), .end = 0, .flags = 0, .position = 0, .reserved = 0 };
    char name[RIO_MEMORY_NAME_SIZE];
    expect_lines(rio_open_r(rio_memory_name(&m, name)), 100, 30, 0, 10, 100);
}
