// picture-compare - compares a screen with the golden picture of it.
// Ends with 0 when the pictures are the same (or were accepted), 1 when they differ, 2 when it can't tell.
#include "support/png_picture.h"
#include <algorithm>
#include <cstdio>
#include <filesystem>

static constexpr const char *usage =
    "usage: picture-compare compare A.png B.png               says how many pixels differ, and where\n"
    "       picture-compare difference A.png B.png OUT.png    also writes A dimmed, with what differs in red\n"
    "       picture-compare accept NEW.png GOLDEN.png         makes NEW the golden picture\n";

enum verdict { SAME = 0, DIFFERENT = 1, CANNOT_TELL = 2 };

static constexpr uint32_t RED = 0xff0000ff;

static int cannot_tell(const std::string &error)
{
    std::fprintf(stderr, "picture-compare: %s\n", error.c_str());
    return CANNOT_TELL;
}

static bool has(const png_picture &picture, int x, int y)
{
    return x < picture.width && y < picture.height;
}

static bool differ_at(const png_picture &a, const png_picture &b, int x, int y)
{
    return has(a, x, y) != has(b, x, y) || (has(a, x, y) && a.at(x, y) != b.at(x, y));
}

static uint32_t dimmed(uint32_t pixel)
{
    const uint32_t grey = 160 + ((pixel >> 24) + (pixel >> 16 & 0xff) + (pixel >> 8 & 0xff)) / 9;
    return grey << 24 | grey << 16 | grey << 8 | 0xff;
}

static int compare(const png_picture &a, const png_picture &b)
{
    if (a.width != b.width || a.height != b.height) {
        std::printf("sizes differ: %d x %d, %d x %d\n", a.width, a.height, b.width, b.height);
        return DIFFERENT;
    }
    size_t different = 0;
    int x0 = a.width, y0 = a.height, x1 = -1, y1 = -1, x_first = 0;
    for (int y = 0; y < a.height; y++)
        for (int x = 0; x < a.width; x++)
            if (a.at(x, y) != b.at(x, y)) {
                if (different++ == 0)
                    x_first = x;
                x0 = std::min(x0, x), y0 = std::min(y0, y);
                x1 = std::max(x1, x), y1 = std::max(y1, y);
            }
    if (different == 0) {
        std::printf("the same, %d x %d\n", a.width, a.height);
        return SAME;
    }
    std::printf("%zu of %zu pixels differ, within %d, %d to %d, %d, the first at %d, %d: #%06x, #%06x\n", different, a.pixels.size(), x0, y0, x1, y1,
                x_first, y0, a.at(x_first, y0) >> 8, b.at(x_first, y0) >> 8);
    return DIFFERENT;
}

static uint32_t difference_at(const png_picture &a, const png_picture &b, int x, int y)
{
    if (differ_at(a, b, x, y))
        return RED;
    return has(a, x, y) ? dimmed(a.at(x, y)) : dimmed(0);
}

// As large as the larger of the two: what only one of them has differs.
static png_picture difference_picture(const png_picture &a, const png_picture &b)
{
    png_picture shown{ std::max(a.width, b.width), std::max(a.height, b.height), {} };
    for (int y = 0; y < shown.height; y++)
        for (int x = 0; x < shown.width; x++)
            shown.pixels.push_back(difference_at(a, b, x, y));
    return shown;
}

static int accept(const std::string &from, const std::string &golden)
{
    png_picture picture;
    std::string error;
    if (!png_picture_read(from, &picture, &error))
        return cannot_tell(error);
    std::error_code failed;
    std::filesystem::copy_file(from, golden, std::filesystem::copy_options::overwrite_existing, failed);
    return failed ? cannot_tell(golden + ": " + failed.message()) : SAME;
}

int main(int argc, char **argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "accept" && argc == 4)
        return accept(argv[2], argv[3]);
    if (!(mode == "compare" && argc == 4) && !(mode == "difference" && argc == 5)) {
        std::fputs(usage, stderr);
        return CANNOT_TELL;
    }
    png_picture a, b;
    std::string error;
    if (!png_picture_read(argv[2], &a, &error) || !png_picture_read(argv[3], &b, &error))
        return cannot_tell(error);
    if (mode == "difference" && !png_picture_write(argv[4], difference_picture(a, b), &error))
        return cannot_tell(error);
    return compare(a, b);
}
