// The program that compares screens with their golden pictures.
#include "support/png_picture.h"
#include <array>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>

struct outcome {
    int status;
    std::string said;
};

static outcome run(const std::string &arguments)
{
    std::FILE *pipe = popen((std::string(PICTURE_COMPARE) + " " + arguments + " 2>&1").c_str(), "r");
    std::string said;
    std::array<char, 256> part;
    while (std::fgets(part.data(), int(part.size()), pipe))
        said += part.data();
    return { WEXITSTATUS(pclose(pipe)), said };
}

class PictureCompare : public testing::Test {
protected:
    void SetUp() override
    {
        folder = std::filesystem::current_path() / "picture_compare_files";
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }

    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string path(const std::string &name) const { return (folder / name).string(); }

    std::string save(const std::string &name, const png_picture &picture) const
    {
        std::string error;
        EXPECT_TRUE(png_picture_write(path(name), picture, &error)) << error;
        return path(name);
    }

    std::filesystem::path folder;
};

static png_picture plain(int width, int height, uint32_t pixel)
{
    return { width, height, std::vector<uint32_t>(size_t(width) * size_t(height), pixel) };
}

TEST_F(PictureCompare, EqualPicturesAreTheSame)
{
    const std::string a = save("a.png", plain(5, 4, 0x102030ff)), b = save("b.png", plain(5, 4, 0x102030ff));
    const outcome result = run("compare " + a + " " + b);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.said, "the same, 5 x 4\n");
}

TEST_F(PictureCompare, CountsDifferentPixelsAndNamesTheirRectangleAndTheFirstInReadingOrder)
{
    png_picture changed = plain(5, 4, 0x102030ff);
    changed.pixels[1 * 5 + 3] = 0x102031ff;             // column 3, row 1
    changed.pixels[2 * 5 + 0] = 0xffffffff;
    const std::string a = save("a.png", plain(5, 4, 0x102030ff)), b = save("b.png", changed);
    const outcome result = run("compare " + a + " " + b);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.said, "2 of 20 pixels differ, within 0, 1 to 3, 2, the first at 3, 1: #102030, #102031\n");
}

TEST_F(PictureCompare, PicturesOfTwoSizesDiffer)
{
    const std::string a = save("a.png", plain(5, 4, 0xff)), b = save("b.png", plain(4, 5, 0xff));
    const outcome result = run("compare " + a + " " + b);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.said, "sizes differ: 5 x 4, 4 x 5\n");
}

TEST_F(PictureCompare, DifferenceIsRedOverADimmedPicture)
{
    png_picture changed = plain(3, 2, 0x000000ff);
    changed.pixels[4] = 0x010000ff;                     // column 1, row 1
    const std::string a = save("a.png", plain(3, 2, 0x000000ff)), b = save("b.png", changed);
    EXPECT_EQ(run("difference " + a + " " + b + " " + path("out.png")).status, 1);
    png_picture out;
    std::string error;
    ASSERT_TRUE(png_picture_read(path("out.png"), &out, &error)) << error;
    ASSERT_EQ(out.width, 3);
    ASSERT_EQ(out.height, 2);
    for (int y = 0; y < 2; y++)
        for (int x = 0; x < 3; x++)
            EXPECT_EQ(out.at(x, y), x == 1 && y == 1 ? 0xff0000ffu : 0xa0a0a0ffu);     // black dims to 160
}

TEST_F(PictureCompare, DifferenceOfTwoSizesHoldsBoth)
{
    const std::string a = save("a.png", plain(2, 1, 0xffffffff)), b = save("b.png", plain(1, 2, 0xffffffff));
    EXPECT_EQ(run("difference " + a + " " + b + " " + path("out.png")).status, 1);
    png_picture out;
    std::string error;
    ASSERT_TRUE(png_picture_read(path("out.png"), &out, &error)) << error;
    ASSERT_EQ(out.pixels.size(), 4u);
    EXPECT_EQ(out.at(0, 0), 0xf5f5f5ffu);               // 160 + 765 / 9
    EXPECT_EQ(out.at(1, 0), 0xff0000ffu);
    EXPECT_EQ(out.at(0, 1), 0xff0000ffu);
    EXPECT_EQ(out.at(1, 1), 0xa0a0a0ffu);               // neither has it
}

TEST_F(PictureCompare, AcceptReplacesTheGoldenPicture)
{
    const std::string golden = save("golden.png", plain(2, 2, 0xff)), fresh = save("new.png", plain(3, 3, 0xffff00ff));
    EXPECT_EQ(run("accept " + fresh + " " + golden).status, 0);
    EXPECT_EQ(run("compare " + fresh + " " + golden).status, 0);
}

TEST_F(PictureCompare, AcceptTakesNothingButPictures)
{
    const std::string golden = save("golden.png", plain(2, 2, 0xff)), kept = save("kept.png", plain(2, 2, 0xff));
    std::FILE *text = std::fopen(path("text.png").c_str(), "w");
    std::fputs("no picture", text);
    std::fclose(text);
    EXPECT_EQ(run("accept " + path("text.png") + " " + golden).status, 2);
    EXPECT_EQ(run("compare " + golden + " " + kept).status, 0);
}

TEST_F(PictureCompare, CannotTellWithoutAFileOrAMode)
{
    const std::string a = save("a.png", plain(2, 2, 0xff));
    EXPECT_EQ(run("compare " + a + " " + path("missing.png")).status, 2);
    EXPECT_EQ(run("compare " + a).status, 2);
    EXPECT_EQ(run("").status, 2);
}
