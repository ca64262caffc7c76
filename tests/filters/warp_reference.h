// warp_reference.h - warps one pixel at a time, and what the warp reported.
#pragma once
#include "filters/random_image.h"

#include <cmath>
#include <limits>
#include <string>

#include "filters/warp.h"
#include "services/ws.h"

struct weight_tables {
    int32_t w[4][CUBIC_ENTRIES];
};

inline weight_tables tables_for(double parameter)
{
    weight_tables t;
    cubic_weights(parameter, t.w[0], t.w[1], t.w[2], t.w[3]);
    return t;
}

inline std::vector<int64_t> starts_of(int rows, int64_t stride)
{
    std::vector<int64_t> starts;
    for (int r = 0; r < rows; r++)
        starts.push_back(r * stride);
    return starts;
}

struct picture {
    int rows, cols;
    plane pixels;

    int at(int r, int c) const { return pixels[size_t(r) * size_t(cols) + size_t(c)]; }
};

inline picture random_picture(int rows, int cols, unsigned seed)
{
    return { rows, cols, random_plane(rows, cols, seed) };
}

// What a coordinate pair gives, before the half pixel is taken off.
inline int pixel_at(const picture &p, double R, double C, int method, const weight_tables &t)
{
    if (method != WARP_NEAREST) {
        R -= 0.5;
        C -= 0.5;
    }
    if (!(R >= 0 && R < p.rows && C >= 0 && C < p.cols))
        return 0;
    const int r = int(R), c = int(C);
    if (method == WARP_NEAREST)
        return p.at(r, c);
    if (method == WARP_BILINEAR) {
        const int64_t fr = int64_t(R * 4096) - int64_t{r} * 4096, fc = int64_t(C * 4096) - int64_t{c} * 4096, gr = 4096 - fr, gc = 4096 - fc;
        const int r1 = std::min(r + 1, p.rows - 1), c1 = std::min(c + 1, p.cols - 1);
        return int(((p.at(r, c) * gc + p.at(r, c1) * fc) * gr + (p.at(r1, c) * gc + p.at(r1, c1) * fc) * fr) >> 24);
    }
    const int kr = int((R - r) * 100.0), kc = int((C - c) * 100.0);
    uint32_t sum = 0;
    for (int y = -1; y <= 2; y++) {
        uint32_t h = 0;
        for (int x = -1; x <= 2; x++)
            h += uint32_t(p.at(std::clamp(r + y, 0, p.rows - 1), std::clamp(c + x, 0, p.cols - 1))) * uint32_t(t.w[x + 1][kc]);
        sum += h * uint32_t(t.w[y + 1][kr]);
    }
    return std::clamp(int(int16_t(int32_t(sum) >> 22)), 0, 255);
}

// The nearest pixel of a straight run, and of bits: what truncates to a pixel is in it.
inline int pixel_truncated(const picture &p, double R, double C)
{
    return R > -1 && R < p.rows && C > -1 && C < p.cols ? p.at(int(R), int(C)) : 0;
}

// Reports since the last look, one behind the other.
inline std::string warp_reports;

inline int keep_warp_report(int level, const char *text)
{
    EXPECT_EQ(level, 2);
    warp_reports += text;
    return 1;
}

inline std::string take_reports()
{
    return std::exchange(warp_reports, "");
}

struct warp_test : testing::Test {
    void SetUp() override { report_hook = keep_warp_report; }
    void TearDown() override
    {
        report_hook = nullptr;
        EXPECT_EQ(take_reports(), "");
    }
};

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN(), WITHOUT_END = std::numeric_limits<double>::infinity();

// Around the edges of so many rows or columns, and far beyond all integers.
inline std::vector<double> odd_coordinates(int size)
{
    const double n = size;
    return { 0.0, -0.0, -5e-324, -0.25, -0.5, -0.999999, -1.0, -1.0000001, 0.25, 0.4999, 0.5, 0.5000001, 0.75, 0.99999999999999989, 1.0, n - 2,
             n - 1.5, n - 1, n - 0.75, n - 0.5, n - 0.5000001, n - 1e-9, n, n + 0.25, n + 0.5, n + 0.5 + 1e-9, n + 1, n + 70, -70.0,
             2147483647.0, 2147483648.0, 2147483648.5, -2147483648.0, -2147483649.0, 4294967296.5, 9.3e18, -9.3e18, 1e300, -1e300,
             1e-300, WITHOUT_END, -WITHOUT_END, NOT_A_NUMBER };
}
