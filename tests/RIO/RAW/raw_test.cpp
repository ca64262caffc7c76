// Files without a header.
#include "RIO/CORE/plain_record.h"
#include <gtest/gtest.h>

TEST(Raw, WritesAndReadsRowsAtAnOffset)
{
    const test_folder folder;
    const std::string path = folder / "r";
    RFILE *file = rio_open_raw_w(path.c_str(), 3, 2, 2);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->standard, 7);
    EXPECT_EQ(file->width, 6);
    EXPECT_EQ(file->bits_per_sample, 16);
    EXPECT_TRUE(file->flags & RIO_RAW);
    EXPECT_EQ(file->access, 4u);
    const uint8_t first[6] = { 1, 2, 3, 4, 5, 6 }, second[6] = { 7, 8, 9, 10, 11, 12 };
    EXPECT_EQ(rio_putline(file, first), 0);
    EXPECT_EQ(rio_putline(file, second), 0);
    EXPECT_EQ(rio_putline(file, second), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    rio_close(file);
    EXPECT_EQ(folder.content("r"), (bytes { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 }));

    file = rio_open_raw_r(path.c_str(), 4, 2, 1, 3);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->access, 1u);
    EXPECT_EQ(file->image_offset, 3);
    uint8_t line[4];
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(bytes(line, line + 4), (bytes { 4, 5, 6, 7 }));
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(bytes(line, line + 4), (bytes { 8, 9, 10, 11 }));
    EXPECT_EQ(rio_getline(file, line), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[0], 8);
    rio_close(file);
}

TEST(Raw, TakesOneBufferOnly)
{
    const test_folder folder;
    RFILE *file = rio_open_raw_r(folder.with("r", bytes(8, 1)).c_str(), 4, 2, 1, 0);
    uint8_t a[4], b[4], c[4];
    EXPECT_EQ(rio_getline_rgb(file, a, b, c), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_COUNT);
    rio_close(file);
    file = rio_open_raw_w((folder / "w").c_str(), 4, 2, 1);
    EXPECT_EQ(rio_putline_rgb(file, a, b, c), 1);
    EXPECT_EQ(rio_write_header(file), 0);
    EXPECT_TRUE(file->flags & RIO_HEADER_DONE);
    rio_close(file);
    EXPECT_TRUE(folder.content("w").empty());
}

TEST(Raw, KeysAreZeroButForTheImageClass)
{
    const test_folder folder;
    RFILE *file = rio_open_raw_r(folder.with("r", bytes(8, 1)).c_str(), 4, 2, 1, 0);
    int32_t value = -1;
    EXPECT_EQ(file->ops.get_hdr_data(file, 403, &value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(rio_get_hdr_data(file, 403, &value), 0);
    EXPECT_EQ(value, 1);
    for (int key : { 5, 6, 9, 20, 200 }) {
        EXPECT_EQ(rio_get_hdr_data(file, key, &value), 0);
        EXPECT_EQ(value, 0) << key;
    }
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_WIDTH, &value), 0);
    EXPECT_EQ(value, 4);
    rio_close(file);
}

TEST(Raw, SeeksNameThemselvesInTheirFailures)
{
    const test_folder folder;
    RFILE *file = rio_open_raw_r(folder.with("r", bytes(16, 1)).c_str(), 4, 4, 1, 0);
    rio_debug = 1;
    std::string text = printed([&] { EXPECT_EQ(rio_seek(file, 4), 1); });
    EXPECT_NE(text.find("Raw Seek"), std::string::npos);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    ASSERT_EQ(rio_arm_squetch(file, 2, 2, 0), 0);
    text = printed([&] { EXPECT_EQ(rio_seek(file, 2), 1); });
    EXPECT_NE(text.find("Raw Squetch"), std::string::npos);
    rio_debug = 0;
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    rio_close(file);
}

TEST(Raw, ShortFilesAndBadSizesFail)
{
    const test_folder folder;
    const std::string path = folder.with("r", bytes(6, 1));
    RFILE *file = rio_open_raw_r(path.c_str(), 4, 2, 1, 0);
    uint8_t line[4];
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(rio_getline(file, line), 1);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    rio_close(file);
    for (const auto &[w, h, b] : { std::tuple { 0, 1, 1 }, { 1, 0, 1 }, { -5, 1, 1 }, { 1, 1, 0 }, { INT32_MAX, 1, 4 }, { 1, 1, 99 } }) {
        EXPECT_EQ(rio_open_raw_r(path.c_str(), w, h, b, 0), nullptr);
        EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    }
    EXPECT_EQ(rio_open_raw_r(path.c_str(), 1, 1, 1, -1), nullptr);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
}
