#include "support/png_picture.h"
#include <png.h>

static constexpr int BYTES_A_PIXEL = 4;

bool png_picture_read(const std::string &path, png_picture *picture, std::string *error)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    std::vector<uint8_t> bytes;
    bool read = png_image_begin_read_from_file(&png, path.c_str());
    if (read) {
        png.format = PNG_FORMAT_RGBA;
        bytes.resize(PNG_IMAGE_SIZE(png));
        read = png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr);
    }
    if (!read) {
        *error = path + ": " + png.message;
        png_image_free(&png);
        return false;
    }
    picture->width = int(png.width);
    picture->height = int(png.height);
    picture->pixels.resize(bytes.size() / BYTES_A_PIXEL);
    for (size_t i = 0; i < picture->pixels.size(); i++) {
        const uint8_t *from = &bytes[i * BYTES_A_PIXEL];
        picture->pixels[i] = uint32_t(from[0]) << 24 | uint32_t(from[1]) << 16 | uint32_t(from[2]) << 8 | from[3];
    }
    return true;
}

bool png_picture_write(const std::string &path, const png_picture &picture, std::string *error)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = png_uint_32(picture.width);
    png.height = png_uint_32(picture.height);
    png.format = PNG_FORMAT_RGBA;
    std::vector<uint8_t> bytes;
    bytes.reserve(picture.pixels.size() * BYTES_A_PIXEL);
    for (const uint32_t pixel : picture.pixels)
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(uint8_t(pixel >> shift));
    if (png_image_write_to_file(&png, path.c_str(), 0, bytes.data(), 0, nullptr))
        return true;
    *error = path + ": " + png.message;
    return false;
}
