// random_image.h - images and look-up tables for tests of kernels, and the borders filled one pixel at a time.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

typedef std::vector<uint8_t> plane;
typedef std::vector<int16_t> level_map;

inline plane random_plane(int rows, int cols, unsigned seed, int highest = 255)
{
    std::mt19937 random(seed);
    plane p(size_t(rows) * size_t(cols));
    for (uint8_t &v : p)
        v = uint8_t(random() % unsigned(highest + 1));
    return p;
}

inline level_map identity_map()
{
    level_map map(256);
    for (int i = 0; i < 256; i++)
        map[size_t(i)] = int16_t(i);
    return map;
}

inline level_map random_map(unsigned seed, int low, int high)
{
    std::mt19937 random(seed);
    level_map map(256);
    for (int16_t &v : map)
        v = int16_t(low + int(random() % unsigned(high - low + 1)));
    return map;
}

inline int clamped(long long v)
{
    return int(std::clamp(v, 0LL, 255LL));
}

// Each pixel outside the computed area takes the nearest computed one: rows are filled sideways first, then copied up and down.
inline plane by_pixel(int rows, int cols, int r0, int c0, int r1, int c1, const std::function<int(int r, int c)> &value)
{
    plane p(size_t(rows) * size_t(cols));
    for (int r = 0; r < rows; r++)
        for (int c = 0; c < cols; c++)
            p[size_t(r * cols + c)] = uint8_t(value(std::clamp(r, r0, r1), std::clamp(c, c0, c1)));
    return p;
}

// Every size from 1 x 1 to 40 x 40.
inline void for_every_size(const std::function<void(int rows, int cols)> &test)
{
    for (int rows = 1; rows <= 40; rows++)
        for (int cols = 1; cols <= 40; cols++) {
            test(rows, cols);
            if (::testing::Test::HasFatalFailure())
                return;
        }
}

constexpr uint8_t UNWRITTEN = 0xA5;
