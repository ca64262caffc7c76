// filter_by_pixel.h - the five filters as their definitions have them, one pixel after another.
#pragma once
#include <cstdlib>

#include "filters/random_image.h"

// The kernels of the eight directions as they are drawn, and once more the first.
constexpr int edge_drawn[9][9] = {
    {  1,  1,  1,   0, 0,  0,  -1, -1, -1 },
    {  0,  1,  1,  -1, 0,  1,  -1, -1,  0 },
    { -1,  0,  1,  -1, 0,  1,  -1,  0,  1 },
    { -1, -1,  0,  -1, 0,  1,   0,  1,  1 },
    { -1, -1, -1,   0, 0,  0,   1,  1,  1 },
    {  0, -1, -1,   1, 0, -1,   1,  1,  0 },
    {  1,  0, -1,   1, 0, -1,   1,  0, -1 },
    {  1,  1,  0,   1, 0, -1,   0, -1, -1 },
    {  1,  1,  1,   0, 0,  0,  -1, -1, -1 },
};

inline plane edge_by_pixel(const plane &in, const level_map &map, int rows, int cols, const int *kernel)
{
    return by_pixel(rows, cols, 1, 1, rows - 2, cols - 2, [&](int r, int c) {
        long long sum = 0;
        for (int i = 0; i < 9; i++)
            sum += kernel[i] * map[in[size_t((r + i / 3 - 1) * cols + c + i % 3 - 1)]];
        return clamped(sum);
    });
}

inline plane enhance_by_pixel(const plane &in, const level_map &map, int rows, int cols, int weight)
{
    return by_pixel(rows, cols, 1, 1, rows - 2, cols - 2, [&](int r, int c) {
        const auto at = [&](int y, int x) { return int{map[in[size_t(y * cols + x)]]}; };
        const int sum = weight * at(r, c) - at(r - 1, c) - at(r + 1, c) - at(r, c + 1) - at(r, c - 1);
        return clamped(sum / (weight == 4 ? 1 : weight - 4));
    });
}

inline plane mean_by_pixel(const plane &in, int rows, int cols, int h, int w)
{
    return by_pixel(rows, cols, h / 2, w / 2, rows - h + h / 2, cols - w + w / 2, [&](int r, int c) {
        int sum = 0;
        for (int y = r - h / 2; y < r - h / 2 + h; y++)
            for (int x = c - w / 2; x < c - w / 2 + w; x++)
                sum += in[size_t(y * cols + x)];
        return (sum + h * w / 2) / (h * w);
    });
}

inline plane sobel_by_pixel(const plane &in, const level_map &map, int rows, int cols)
{
    return by_pixel(rows, cols, 1, 1, rows - 2, cols - 2, [&](int r, int c) {
        const auto at = [&](int dy, int dx) { return int{map[in[size_t((r + dy) * cols + c + dx)]]}; };
        const int gy = at(-1, -1) + 2 * at(-1, 0) + at(-1, 1) - at(1, -1) - 2 * at(1, 0) - at(1, 1);
        const int gx = at(-1, 1) + 2 * at(0, 1) + at(1, 1) - at(-1, -1) - 2 * at(0, -1) - at(1, -1);
        return clamped((std::max(std::abs(gy), std::abs(gx)) + 2) / 4);
    });
}

inline plane roberts_by_pixel(const plane &in, const level_map &map, int rows, int cols)
{
    return by_pixel(rows, cols, 1, 1, rows - 1, cols - 1, [&](int r, int c) {
        const auto at = [&](int dy, int dx) { return int{map[in[size_t((r + dy) * cols + c + dx)]]}; };
        return clamped(std::max(std::abs(at(-1, 0) - at(0, -1)), std::abs(at(-1, -1) - at(0, 0))));
    });
}
