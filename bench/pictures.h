// pictures.h - the pictures that the coders and file formats are measured on: 8000 x 8000 gray, made once.
// A scene has slow shades and sensor noise, a map has flat fields and thin lines.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

using bytes = std::vector<uint8_t>;

enum { SIDE = 8000 };
enum picture_kind { SCENE, MAP };

inline const bytes &picture(int kind)
{
    static bytes held[2];
    bytes &out = held[kind];
    if (!out.empty())
        return out;
    out.resize(size_t{ SIDE } * SIDE);
    uint32_t seed = 1;
    for (int y = 0; y < SIDE; y++)
        for (int x = 0; x < SIDE; x++) {
            seed = seed * 1664525 + 1013904223;
            const double shade = 128 + 60 * std::sin(x / 301.0 + y / 977.0) + 50 * std::sin(y / 207.0 - x / 811.0);
            const int grain = int(seed >> 24 & 3) + int(seed >> 26 & 3) - 3;
            const int field = (x / 190 + y / 170 * 3 + (x + y) / 701) % 11;
            const bool line = x % 190 < 2 || (x + 2 * y) % 431 < 3;
            out[size_t(y) * SIDE + size_t(x)] = kind == SCENE ? uint8_t(std::clamp(int(shade) + grain, 0, 255))
                                                              : uint8_t(line ? 0 : 20 + 21 * field);
        }
    return out;
}
