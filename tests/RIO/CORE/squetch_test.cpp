// Lines at another size. The expected lines come from slow plain arithmetic over the whole picture, or from sums shown.
#include "plain_record.h"
#include <cstring>
#include <gtest/gtest.h>

using planes = std::vector<std::vector<bytes>>;

static std::vector<bytes> squeezed(RFILE *file, int out_width, int out_height, uint32_t mode)
{
    std::vector<bytes> all;
    EXPECT_EQ(rio_arm_squetch(file, out_width, out_height, mode), 0);
    bytes line(size_t(out_width), 0xEE);
    while (rio_getline(file, line.data()) == 0)
        all.push_back(line);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_EQ(int(all.size()), out_height);
    return all;
}

static std::vector<bytes> noise(int width, int height)
{
    std::vector<bytes> picture;
    uint32_t seed = 1;
    for (int y = 0; y < height; y++) {
        bytes row;
        for (int x = 0; x < width; x++)
            row.push_back(uint8_t((seed = seed * 1664525 + 1013904223) >> 24));
        picture.push_back(row);
    }
    return picture;
}

TEST(Squeeze, NearestTakesTheTruncatedSource)
{
    const planes picture { noise(13, 11) };
    RFILE *file = picture_record(picture, 13);
    for (const auto &[w, h] : { std::pair { 5, 4 }, { 13, 11 }, { 1, 1 }, { 26, 22 }, { 20, 17 }, { 5, 22 }, { 40, 3 } }) {
        const auto lines = squeezed(file, w, h, RIO_SQUEEZE_NEAREST);
        for (int y = 0; y < h; y++)
            for (int x = 0; x < w; x++)
                EXPECT_EQ(lines[size_t(y)][size_t(x)], picture[0][size_t(y * 11 / h)][size_t(x * 13 / w)])
                    << w << "x" << h << " at " << x << "," << y;
    }
    rio_close(file);
}

TEST(Squeeze, AveragingHalvesByBoxes)
{
    // Two by two boxes: columns 10, 30 give (10 * 2048 + 30 * 2048) / 4096 = 20; lines 20 and 41 give 30 (30.5 truncated).
    const planes picture { { { 10, 30, 100, 101 }, { 41, 41, 0, 1 } } };
    RFILE *file = picture_record(picture, 4);
    const auto lines = squeezed(file, 2, 1, RIO_SQUEEZE_AVERAGE);
    // Second box: 100.5 -> 100, 0.5 -> 0; (100 + 0) / 2 = 50.
    EXPECT_EQ(lines[0], (bytes { 30, 50 }));
    rio_close(file);
}

TEST(Squeeze, APixelOnTheBorderCountsOnBothSidesByItsShare)
{
    // 3 to 2: step 3072. First box: 90 * 2048 + 30 * 1024 = 215040, / 3072 = 70. Second: 30 * 1024 + 60 * 2048 = 153600,
    // / 3072 = 50. The same with lines.
    const planes row { { { 90, 30, 60 } } };
    RFILE *file = picture_record(row, 3);
    EXPECT_EQ(squeezed(file, 2, 1, RIO_SQUEEZE_AVERAGE)[0], (bytes { 70, 50 }));
    rio_close(file);
    const planes column { { { 90 }, { 30 }, { 60 } } };
    file = picture_record(column, 1);
    const auto lines = squeezed(file, 1, 2, RIO_SQUEEZE_AVERAGE);
    EXPECT_EQ(lines[0][0], 70);
    EXPECT_EQ(lines[1][0], 50);
    rio_close(file);
}

TEST(Squeeze, EveryScaleOfALevelPictureKeepsItsLevel)
{
    const planes picture { std::vector<bytes>(37, bytes(29, 200)) };
    RFILE *file = picture_record(picture, 29);
    for (int w : { 1, 2, 3, 7, 13, 28, 29, 30, 57, 58 })
        for (int h : { 1, 2, 5, 18, 36, 37, 38, 73, 74 })
            for (uint32_t mode : { RIO_SQUEEZE_NEAREST, RIO_SQUEEZE_AVERAGE })
                for (const bytes &line : squeezed(file, w, h, mode))
                    for (uint8_t level : line)
                        // Steps are truncated to 1/2048, which may cost one level.
                        EXPECT_NEAR(level, 200, 1) << w << "x" << h << " mode " << mode;
    rio_close(file);
}

TEST(Squeeze, EnlargingInterpolatesBetweenNeighbours)
{
    const planes picture { { { 0, 100 }, { 200, 100 } } };
    RFILE *file = picture_record(picture, 2);
    const auto lines = squeezed(file, 4, 4, RIO_SQUEEZE_AVERAGE);
    // Across: 0, 50, 100, 100 and 200, 150, 100, 100. Down: the first row, half way, the second row twice.
    EXPECT_EQ(lines[0], (bytes { 0, 50, 100, 100 }));
    EXPECT_EQ(lines[1], (bytes { 100, 100, 100, 100 }));
    EXPECT_EQ(lines[2], (bytes { 200, 150, 100, 100 }));
    EXPECT_EQ(lines[3], (bytes { 200, 150, 100, 100 }));
    rio_close(file);
}

TEST(Squeeze, SeeksCountOutputLines)
{
    const planes picture { noise(16, 40) };
    RFILE *file = picture_record(picture, 16);
    const auto all = squeezed(file, 16, 10, RIO_SQUEEZE_NEAREST);
    bytes line(16);
    EXPECT_EQ(rio_seek(file, 7), 0);
    EXPECT_EQ(file->squetch->out_line, 7);
    EXPECT_EQ(file->current_line, 28);          // 40 / 10 * 7
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(line, all[7]);
    rio_rewind(file);
    EXPECT_EQ(file->squetch->out_line, 0);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(line, all[0]);
    rio_debug = 1;
    const std::string text = printed([&] { EXPECT_EQ(rio_seek(file, 10), 1); });
    rio_debug = 0;
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_NE(text.find("Picture Squetch"), std::string::npos);
    rio_close(file);
}

TEST(Squeeze, ASeekWhileEnlargingStartsAgain)
{
    const planes picture { noise(4, 5) };
    RFILE *file = picture_record(picture, 4);
    for (uint32_t mode : { RIO_SQUEEZE_NEAREST, RIO_SQUEEZE_AVERAGE }) {
        const auto all = squeezed(file, 4, 13, mode);
        for (int y : { 12, 3, 0, 7 }) {
            bytes line(4);
            EXPECT_EQ(rio_seek(file, y), 0);
            EXPECT_EQ(rio_getline(file, line.data()), 0);
            EXPECT_EQ(line, all[size_t(y)]) << y;
        }
    }
    rio_close(file);
}

TEST(Squeeze, ColoursAndTablesFillAllPlanes)
{
    const planes colour { { { 1, 2 } }, { { 11, 12 } }, { { 21, 22 } } };
    RFILE *file = picture_record(colour, 2);
    ASSERT_EQ(rio_arm_squetch(file, 1, 1, 0), 0);
    uint8_t r = 0, g = 0, b = 0;
    EXPECT_EQ(rio_getline_rgb(file, &r, &g, &b), 0);
    EXPECT_EQ((bytes { r, g, b }), (bytes { 1, 11, 21 }));
    rio_close(file);

    const planes indices { { { 5, 6 } } };
    file = picture_record(indices, 2);
    ASSERT_EQ(rio_arm_squetch(file, 1, 1, 0), 0);
    EXPECT_EQ(rio_getline_rgb(file, &r, &g, &b), 0);
    EXPECT_EQ((bytes { r, g, b }), (bytes { 5, 5, 5 }));
    uint8_t *vlt = rio_alloc_vlt(file);
    vlt[15] = 1;
    vlt[16] = 2;
    vlt[17] = 3;
    rio_rewind(file);
    EXPECT_EQ(rio_getline_rgb(file, &r, &g, &b), 0);
    EXPECT_EQ((bytes { r, g, b }), (bytes { 1, 2, 3 }));
    rio_close(file);
}

TEST(Squeeze, BilevelLinesKeepThinLinesOrAskForHalf)
{
    // 32 x 4 bits; line 1 is all ones, the others have the left half.
    const bytes half { 0xFF, 0xFF, 0, 0 }, full { 0xFF, 0xFF, 0xFF, 0xFF };
    const planes picture { { half, full, half, half } };
    RFILE *file = picture_record(picture, 32);
    file->data_type = RIO_TYPE_BITMAP;
    file->bits_per_sample = 1;
    ASSERT_EQ(rio_arm_squetch(file, 16, 1, RIO_SQUEEZE_NEAREST), 0);
    uint16_t word = 0;
    EXPECT_EQ(rio_getline(file, &word), 0);
    EXPECT_EQ(word, 0xFFFF);                    // a bit set in any line
    ASSERT_EQ(rio_arm_squetch(file, 16, 1, RIO_SQUEEZE_AVERAGE), 0);
    EXPECT_EQ(rio_getline(file, &word), 0);
    EXPECT_EQ(word, 0xFF00);                    // right half: one line of four
    ASSERT_EQ(rio_arm_squetch(file, 64, 8, RIO_SQUEEZE_NEAREST), 0);
    uint16_t wide[4];
    EXPECT_EQ(rio_getline(file, wide), 0);
    EXPECT_EQ(wide[1], 0xFFFF);
    EXPECT_EQ(wide[2], 0);
    EXPECT_EQ(rio_seek(file, 3), 0);            // 3 * 4 / 8 is line 1
    EXPECT_EQ(rio_getline(file, wide), 0);
    EXPECT_EQ(wide[3], 0xFFFF);
    rio_close(file);
}

TEST(Squeeze, RefusesWhatItCannotDo)
{
    const planes picture { { { 1, 2 } } };
    RFILE *file = picture_record(picture, 2);
    EXPECT_EQ(rio_arm_squetch(file, -1, 5, 0), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    file->bits_per_sample = 16;
    EXPECT_EQ(rio_arm_squetch(file, 1, 1, 0), 1);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
    file->bits_per_sample = 8;
    mem_fail_countdown = 2;
    EXPECT_EQ(rio_arm_squetch(file, 1, 1, 0), 1);
    mem_fail_countdown = -1;
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
    EXPECT_FALSE(file->flags & RIO_SQUETCH);
    ASSERT_EQ(rio_arm_squetch(file, 1, 1, 0), 0);
    EXPECT_EQ(rio_getline_rgb(file, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_NO_OUTPUT);
    EXPECT_EQ(rio_arm_squetch(file, 0, 0, 0), 0);       // and back to the file's own lines
    uint8_t line[2];
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[1], 2);
    rio_close(file);
}
