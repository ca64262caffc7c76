// png_picture.h - whole PNG files as pixels, for comparing screens.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

struct png_picture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;           // 0xRRGGBBAA, row by row

    uint32_t at(int x, int y) const { return pixels[size_t(y) * size_t(width) + size_t(x)]; }
};

// False, with a sentence in *error, when the file can't be read or is no PNG picture.
bool png_picture_read(const std::string &path, png_picture *picture, std::string *error);
bool png_picture_write(const std::string &path, const png_picture &picture, std::string *error);
