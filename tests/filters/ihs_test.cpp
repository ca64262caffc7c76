#include "filters/random_image.h"

#include "filters/ihs.h"
#include "filters/ihs_rows.h"

namespace {

struct triplet {
    int a, b, c;
    bool operator==(const triplet &) const = default;
};

// Straight from the meaning of the coding: no tables.
int fraction(int a, int b)
{
    return a == 0 || b == 0 ? 0 : b <= a ? 41 : int(double(a) / b * 42.0);
}

triplet to_ihs(int red, int green, int blue)
{
    const int hi = std::max(red, std::max(green, blue)), lo = std::min(red, std::min(green, blue));
    const int i = (red + green + blue) / 3, s = hi == 0 ? 0 : int((1 - double(lo) / hi) * 255.0);
    if (s == 0)
        return { i, 0, 0 };
    const int r = red - lo, g = green - lo, b = blue - lo;
    int h;
    if (lo == red)
        h = hi == blue ? fraction(g, b) : 83 - fraction(b, g);
    else if (lo == green && lo != blue)
        h = hi == red ? fraction(b, r) + 168 : 251 - fraction(r, b);
    else
        h = hi == green ? fraction(r, g) + 84 : 167 - fraction(g, r);
    return { i, h % 256, s };
}

int rounded_level(float v)
{
    return v < 255.0f ? int(v) : 255;
}

triplet to_rgb(int i, int h, int s)
{
    if (s == 0)
        return { i, i, i };
    h = std::min(h, 251);
    const int segment = h / 42, step = h % 42;
    const double g = step * 0.024390243902439025, sat = s * 0.00392156862745098;
    const bool rising = segment % 2 == 0;
    const double pure = rising ? 85 + step * 2.073170731707317 : 170 - step * 2.073170731707317;
    const int limit = std::min(255, int((255 - s) * ((255 - pure) * 0.00392156862745098) + pure + 0.5));
    i = std::min(i, limit);
    const float f = float(rising ? 1 / (sat * (g - 2) + 3) : 1 / (sat * (1 - g - 2) + 3));
    const float f2 = float(rising ? g * sat - sat + 1 : (1 - g) * sat - sat + 1);
    const float scaled = f * float(3 * i);
    const int x = rounded_level(scaled + 0.5f);
    const float second = f2 * float(x);
    const int y = rounded_level(second + 0.5f);
    const int z = std::clamp(3 * i - x - y, 0, 255);
    switch (segment) {
    case 0:  return { z, y, x };
    case 1:  return { z, x, y };
    case 2:  return { y, x, z };
    case 3:  return { x, y, z };
    case 4:  return { x, z, y };
    default: return { y, z, x };
    }
}

typedef int (*ihs_pass)(uint8_t *, uint8_t *, uint8_t *, const int16_t *, const int16_t *, const int16_t *, int, int);

triplet through(ihs_pass pass, int a, int b, int c)
{
    uint8_t p[3] = { uint8_t(a), uint8_t(b), uint8_t(c) };
    const level_map map = identity_map();
    EXPECT_EQ(pass(p, p + 1, p + 2, map.data(), map.data(), map.data(), 1, 1), 0);
    return { p[0], p[1], p[2] };
}

// All combinations of three bytes, a plane of 65536 for each first byte.
void expect_all_colours(ihs_pass pass, triplet (*plainly)(int, int, int))
{
    const level_map map = identity_map();
    for (int a = 0; a < 256; a++) {
        plane p[3];
        for (plane &one : p)
            one.resize(65536);
        for (size_t i = 0; i < 65536; i++) {
            p[0][i] = uint8_t(a);
            p[1][i] = uint8_t(i >> 8);
            p[2][i] = uint8_t(i);
        }
        ASSERT_EQ(pass(p[0].data(), p[1].data(), p[2].data(), map.data(), map.data(), map.data(), 256, 256), 0);
        for (int i = 0; i < 65536; i++) {
            const triplet have = { p[0][size_t(i)], p[1][size_t(i)], p[2][size_t(i)] };
            const triplet want = plainly(a, i >> 8, i & 255);
            ASSERT_TRUE(have == want) << a << " " << (i >> 8) << " " << (i & 255) << ": have " << have.a << " " << have.b << " " << have.c
                                      << ", want " << want.a << " " << want.b << " " << want.c;
        }
    }
}

} // namespace

TEST(RgbToIhs, IsExactForAllColours)
{
    expect_all_colours(rgb_to_ihs, to_ihs);
}

TEST(IhsToRgb, IsExactForAllTriplets)
{
    expect_all_colours(ihs_to_rgb, to_rgb);
}

// Every colour once, in rows that the vectors do not divide; the tables are the measure.
TEST(IhsRows, TablesAndArithmeticGiveTheSameForAllColours)
{
    ihs_init();
    plane by_tables[3], by_arithmetic[3];
    for (int a = 0; a < 256; a++)
        for (const bool back : { false, true }) {
            for (int i = 0; i < 3; i++)
                by_tables[i].resize(65536);
            for (size_t i = 0; i < 65536; i++) {
                by_tables[0][i] = uint8_t(a);
                by_tables[1][i] = uint8_t(i >> 8);
                by_tables[2][i] = uint8_t(i);
            }
            std::copy(by_tables, by_tables + 3, by_arithmetic);
            for (int at = 0; at < 65536;) {
                const int count = std::min(65536 - at, 777);
                for (const auto &[rows, p] : { std::pair(&ihs_by_tables, by_tables), std::pair(&ihs_by_arithmetic, by_arithmetic) }) {
                    uint8_t *const b1 = p[0].data() + at, *const b2 = p[1].data() + at, *const b3 = p[2].data() + at;
                    if (back)
                        ASSERT_EQ(rows->back(b1, b2, b3, count), 0);
                    else
                        rows->forward(b1, b2, b3, count);
                }
                at += count;
            }
            for (int i = 0; i < 3; i++)
                ASSERT_TRUE(by_tables[i] == by_arithmetic[i]) << "first band " << a << ", band " << i << (back ? ", back" : "");
        }
}

TEST(RgbToIhs, ThePrimariesLieAtTheirHues)
{
    EXPECT_EQ(through(rgb_to_ihs, 0, 0, 255), (triplet{ 85, 0, 255 }));
    EXPECT_EQ(through(rgb_to_ihs, 255, 0, 0), (triplet{ 85, 167, 255 }));   // 167 - 0
    EXPECT_EQ(through(rgb_to_ihs, 0, 255, 0), (triplet{ 85, 83, 255 }));    // lo is red, hi is not blue: 83 - 0
    EXPECT_EQ(through(rgb_to_ihs, 0, 255, 255), (triplet{ 170, 41, 255 })); // hi is blue: 255 over 255 is the last step
}

TEST(RgbToIhs, GreyHasNoHueAndComesBack)
{
    for (int v = 0; v < 256; v++) {
        EXPECT_EQ(through(rgb_to_ihs, v, v, v), (triplet{ v, 0, 0 }));
        EXPECT_EQ(through(ihs_to_rgb, v, 0, 0), (triplet{ v, v, v }));
    }
}

TEST(RgbToIhs, EachBandIsReadThroughItsOwnTable)
{
    level_map maps[3] = { identity_map(), identity_map(), identity_map() };
    maps[0][1] = 10;
    maps[1][1] = 256 + 40;                     // its low byte
    maps[2][1] = 100;
    uint8_t p[3] = { 1, 1, 1 };
    EXPECT_EQ(rgb_to_ihs(p, p + 1, p + 2, maps[0].data(), maps[1].data(), maps[2].data(), 1, 1), 0);
    EXPECT_EQ(p[0], 50);
    EXPECT_EQ(p[1], 14);                       // 30 / 90 * 42 = 14
    EXPECT_EQ(p[2], 229);                      // (1 - 10 / 100) * 255 = 229.5
}

TEST(IhsToRgb, HuesAboveTheLastAreTheLast)
{
    EXPECT_EQ(through(ihs_to_rgb, 60, 255, 200), through(ihs_to_rgb, 60, 251, 200));
}

TEST(IhsToRgb, IntensityIsLimitedBySaturation)
{
    // Pure blue has no more than 85: X = 85 * 3 * 1 / (1 * (0 - 2) + 3) = 255.
    EXPECT_EQ(through(ihs_to_rgb, 255, 0, 255), (triplet{ 0, 0, 255 }));
    EXPECT_EQ(through(ihs_to_rgb, 85, 0, 255), (triplet{ 0, 0, 255 }));
}
