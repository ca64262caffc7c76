#include "screen_fixture.h"
#include "services/screenshot.h"
#include <png.h>
#include <string>
#include <unistd.h>

struct picture {
    int width = 0, height = 0;
    std::vector<uint8_t> rgb;
    uint32_t at(int x, int y) const
    {
        const uint8_t *const p = &rgb[size_t(y * width + x) * 3];
        return uint32_t(p[0] << 16 | p[1] << 8 | p[2]);
    }
};

static picture read_png(const std::string &name)
{
    picture result;
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_TRUE(png_image_begin_read_from_file(&image, name.c_str()));
    image.format = PNG_FORMAT_RGB;
    result.width = int(image.width);
    result.height = int(image.height);
    result.rgb.resize(PNG_IMAGE_SIZE(image));
    EXPECT_TRUE(png_image_finish_read(&image, nullptr, result.rgb.data(), 0, nullptr));
    return result;
}

struct screenshot_test : true_colour_test {
    std::string name = "/tmp/kestrel_shot_" + std::to_string(getpid()) + ".png";
    ~screenshot_test() override { remove(name.c_str()); }
};

TEST_F(screenshot_test, WholePictureHasMenuBarAndWindows)
{
    const int w = true_colour_window(100, 50, 119, 59);
    fill_window(w, 0xC08040);
    ASSERT_EQ(ws_screenshot(name.c_str(), -1), 0);
    const picture shot = read_png(name);
    EXPECT_EQ(shot.width, 320);
    EXPECT_EQ(shot.height, 240 + ws_menu_height());
    EXPECT_EQ(shot.at(100, 50 + ws_menu_height()), 0xC08040u);
    EXPECT_EQ(shot.at(119, 59 + ws_menu_height()), 0xC08040u);
    EXPECT_EQ(shot.at(120, 59 + ws_menu_height()), 0u);
}

TEST_F(screenshot_test, OneWindowIsShownThoughCovered)
{
    set_slot(9, 0x204060);
    const int w = plain_window(100, 50, 119, 59);
    fill_window(w, 9);
    fill_window(plain_window(90, 40, 130, 70), 0);
    ASSERT_EQ(ws_screenshot(name.c_str(), w), 0);
    const picture shot = read_png(name);
    EXPECT_EQ(shot.width, 20);
    EXPECT_EQ(shot.height, 10);
    EXPECT_EQ(shot.at(19, 9), 0x204060u);
}

TEST_F(screenshot_test, FailsForWindowsNotShownAndFilesThatCannotBe)
{
    EXPECT_EQ(ws_screenshot(name.c_str(), 7), -1);
    EXPECT_NE(access(name.c_str(), F_OK), 0);
    EXPECT_EQ(ws_screenshot("/nowhere/at/all.png", -1), -1);
}

TEST_F(screenshot_test, PixelOfAWindowAsHeldAndAsShown)
{
    set_slot(9, 0x204060);
    const int slots = plain_window(0, 0, 9, 9), colours = true_colour_window(20, 0, 29, 9);
    fill_window(slots, 9);
    fill_window(colours, 0x010203);
    uint32_t value, rgb;
    ASSERT_EQ(ws_window_pixel(slots, 5, 5, &value, &rgb), 0);
    EXPECT_EQ(value, 9u);
    EXPECT_EQ(rgb, 0x204060u);
    ASSERT_EQ(ws_window_pixel(colours, 5, 5, &value, &rgb), 0);
    EXPECT_EQ(value, 0x010203u);
    EXPECT_EQ(rgb, 0x010203u);
    EXPECT_EQ(ws_window_pixel(slots, 10, 5, &value, &rgb), -1);
    EXPECT_EQ(ws_window_pixel(30, 0, 0, nullptr, nullptr), -1);
}
