#include "tools/noise.h"
#include <algorithm>

uint32_t hash_place(int32_t x, int32_t y, uint32_t seed)
{
    uint32_t h = uint32_t(x) * 0x8da6b343u ^ uint32_t(y) * 0xd8163841u ^ seed * 0xcb1ab31fu;
    h = (h ^ h >> 16) * 0x7feb352du;
    h = (h ^ h >> 15) * 0x846ca68bu;
    return h ^ h >> 16;
}

float random_place(int32_t x, int32_t y, uint32_t seed)
{
    return float(hash_place(x, y, seed) >> 8) * (1.0f / 16777216.0f);
}

// Product of the way from the lattice place and its gradient, one of eight directions of nearly equal length.
static float slope_from(int32_t x, int32_t y, float dx, float dy, uint32_t seed)
{
    static constexpr float gradients[8][2] = { { 1, 0 }, { -1, 0 }, { 0, 1 }, { 0, -1 }, { 0.7071f, 0.7071f },
        { -0.7071f, 0.7071f }, { 0.7071f, -0.7071f }, { -0.7071f, -0.7071f } };
    const float *gradient = gradients[hash_place(x, y, seed) >> 29];
    return gradient[0] * dx + gradient[1] * dy;
}

// Faster than the library's on machines where that is a call.
static int32_t round_down(float value)
{
    const int32_t whole = int32_t(value);
    return whole - (value < float(whole));
}

float noise(float x, float y, uint32_t seed)
{
    const int32_t i = round_down(x), j = round_down(y);
    const float dx = x - float(i), dy = y - float(j);
    const float u = dx * dx * dx * (dx * (dx * 6 - 15) + 10), v = dy * dy * dy * (dy * (dy * 6 - 15) + 10);
    const float a = slope_from(i, j, dx, dy, seed), b = slope_from(i + 1, j, dx - 1, dy, seed);
    const float c = slope_from(i, j + 1, dx, dy - 1, seed), d = slope_from(i + 1, j + 1, dx - 1, dy - 1, seed);
    const float upper = a + u * (b - a), lower = c + u * (d - c);
    return upper + v * (lower - upper);
}

float fractal_noise(float x, float y, int octaves, float gain, uint32_t seed)
{
    float sum = 0, height = 1;
    for (int i = 0; i < octaves; i++) {
        sum += height * noise(x, y, seed + uint32_t(i));
        height *= gain;
        // Lattices of neighbouring octaves must not fall on each other.
        x = x * 2 + 17.31f;
        y = y * 2 + 9.17f;
    }
    return sum;
}

float smooth_step(float low, float high, float value)
{
    const float t = std::clamp((value - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}
