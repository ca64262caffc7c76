#include "services/screenshot.h"
#include "services/colours.h"
#include "services/drawing.h"
#include "mem.h"
#include <cstdio>
#include <png.h>

int ws_window_pixel(int w, int x, int y, uint32_t *value_out, uint32_t *rgb_out)
{
    const drawing_target target = begin_unclipped(w);
    if (!target.window || !rect_has(store_rect(target.window->store), x, y))
        return -1;
    const uint32_t value = store_get(target.window->store, x, y);
    if (value_out)
        *value_out = value;
    if (rgb_out)
        *rgb_out = shown_colour(*target.window, value);
    return 0;
}

// Rows of red, green, blue bytes; null when there is no memory.
static uint8_t *rgb_bytes(const window_record *window, int width, int height)
{
    uint8_t *const bytes = (uint8_t *)mem_alloc(size_t(width) * size_t(height) * 3);
    if (!bytes)
        return nullptr;
    uint8_t *out = bytes;
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            const uint32_t rgb = window ? shown_colour(*window, store_get(window->store, x, y)) : ws_state.picture[int64_t{y} * width + x];
            *out++ = uint8_t(rgb >> 16);
            *out++ = uint8_t(rgb >> 8);
            *out++ = uint8_t(rgb);
        }
    }
    return bytes;
}

static int write_png(const char *host_file, int width, int height, const uint8_t *rgb)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(width);
    image.height = png_uint_32(height);
    image.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&image, host_file, 0, rgb, 0, nullptr))
        return 0;
    remove(host_file);
    return -1;
}

int ws_screenshot(const char *host_file, int w)
{
    if (!ws_state.entered)
        return -1;
    const window_record *window = nullptr;
    int width = ws_state.display.width, height = ws_state.display.height;
    if (w >= 0) {
        window = begin_unclipped(w).window;
        if (!window)
            return -1;
        width = window->store.width;
        height = window->store.height;
    } else {
        compose_and_present();
    }
    mem_ptr<uint8_t> rgb(rgb_bytes(window, width, height));
    return rgb ? write_png(host_file, width, height, rgb.get()) : -1;
}
