// ihs_arithmetic.cpp - what the tables hold, computed for many pixels at a time.
//
// A hue's fraction and a saturation are quotients of small integers, and the 32-bit quotient of such numbers never reaches the next
// integer. The table of saturations multiplies a 64-bit quotient instead, which falls short of some whole numbers.
// Of the way back, segments that run downwards are the others from behind, and with steps of 1 / 41 and levels of 1 / 255 all factors
// are quotients of integers again, the first one rounded as the table has it, the rest near enough to give the same levels.
#include "filters/ihs_rows.h"
#include "filters/level_table.h"
#include "filters/vector_clones.h"

#include <algorithm>

namespace {

constexpr int LAST_STEP = IHS_STEPS - 1, UNIT = LAST_STEP * 255;   // hue step by saturation

struct levels {
    uint8_t at[256];
};

// What (1 - lo / hi) * 255.0 gives in 64 bits where it should be a whole number: that, or one less.
constexpr levels whole_saturations()
{
    levels whole = {};
    for (int level = 0; level < 256; level++)
        whole.at[level] = uint8_t((1 - double(255 - level) / 255) * 255.0);
    return whole;
}
constexpr levels of_whole_saturations = whole_saturations();

// Pixels that go through the steps together, so that each step has numbers of one width.
constexpr int PART = 512;

// --- forward ---------------------------------------------------------------------------------------------------------

struct extremes {
    uint8_t hi[PART], range[PART], middle[PART];   // the highest, and how far it and the one between are above the lowest
};

VECTOR_CLONES
void find_extremes(const uint8_t *red, const uint8_t *green, const uint8_t *blue, extremes &of, int count)
{
    for (int i = 0; i < count; i++) {
        const uint8_t r = red[i], g = green[i], b = blue[i];
        const uint8_t hi = std::max(std::max(r, g), b), lo = std::min(std::min(r, g), b);
        of.hi[i] = hi;
        of.range[i] = uint8_t(hi - lo);
        of.middle[i] = uint8_t(uint8_t(r + g + b) - uint8_t(hi + 2 * lo));
    }
}

// Saturations still have to be settled where `whole`, of all ones then, says that they are whole numbers.
VECTOR_CLONES
void find_quotients(const extremes &of, uint8_t *__restrict saturation, uint8_t *__restrict whole, uint8_t *__restrict fraction, int count)
{
    for (int i = 0; i < count; i++) {
        const int hi = of.hi[i], range = of.range[i], middle = of.middle[i];
        const int quotient = int(float(255 * range) / float(std::max(hi, 1)));
        saturation[i] = uint8_t(quotient);
        whole[i] = uint8_t(-int(quotient * hi == 255 * range));
        fraction[i] = uint8_t(std::min(int(float(IHS_STEPS * middle) / float(std::max(range, 1))), LAST_STEP));
    }
}

VECTOR_CLONES
void settle_saturations(uint8_t *__restrict saturation, const uint8_t *whole, const uint8_t *of_whole, int count)
{
    for (int i = 0; i < count; i++)
        saturation[i] = uint8_t((whole[i] & of_whole[i]) | (~whole[i] & saturation[i]));
}

// The order of the tests settles which segment a tie belongs to.
VECTOR_CLONES
void put_ihs(uint8_t *__restrict b1, uint8_t *__restrict b2, uint8_t *__restrict b3, const extremes &of, const uint8_t *saturation,
             const uint8_t *fraction, int count)
{
    for (int i = 0; i < count; i++) {
        const uint8_t red = b1[i], green = b2[i], blue = b3[i], hi = of.hi[i], lo = uint8_t(hi - of.range[i]), f = fraction[i];
        const uint8_t of_red = hi == blue ? f : uint8_t(83 - f);
        const uint8_t of_green = hi == red ? uint8_t(168 + f) : uint8_t(251 - f);
        const uint8_t of_blue = hi == green ? uint8_t(84 + f) : uint8_t(167 - f);
        const uint8_t not_red = lo != blue ? of_green : of_blue, hue = lo == red ? of_red : not_red;
        b1[i] = uint8_t(uint16_t(red + green + blue) / 3);
        b2[i] = saturation[i] == 0 ? uint8_t{0} : hue;
        b3[i] = saturation[i];
    }
}

void forward(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols)
{
    extremes of;
    uint8_t saturation[PART], whole[PART], of_whole[PART], fraction[PART];
    for (int c = 0; c < cols; c += PART) {
        const int count = std::min(PART, cols - c);
        find_extremes(b1 + c, b2 + c, b3 + c, of, count);
        find_quotients(of, saturation, whole, fraction, count);
        map_levels(saturation, of_whole, of_whole_saturations.at, size_t(count));
        settle_saturations(saturation, whole, of_whole, count);
        put_ihs(b1 + c, b2 + c, b3 + c, of, saturation, fraction, count);
    }
}

// --- back ------------------------------------------------------------------------------------------------------------

VECTOR_CLONES
void find_steps(const uint8_t *hues, uint8_t *__restrict segments, uint8_t *__restrict steps, int count)
{
    for (int i = 0; i < count; i++) {
        const uint8_t hue = std::min(hues[i], uint8_t{IHS_HUE_MAX}), segment = uint8_t(hue / IHS_STEPS);
        const uint8_t step = uint8_t(hue - IHS_STEPS * segment);
        segments[i] = segment;
        steps[i] = segment & 1 ? uint8_t(LAST_STEP - step) : step;
    }
}

struct primaries {
    uint8_t first[PART], second[PART], rest[PART];
};

VECTOR_CLONES
void find_primaries(const uint8_t *intensity, const uint8_t *steps, const uint8_t *saturations, primaries &found, int count)
{
    for (int i = 0; i < count; i++) {
        const int step = steps[i], saturation = saturations[i], pure = 85 * (LAST_STEP + step);
        const int limit = int(float(2 * ((255 - saturation) * (UNIT - pure) + 255 * pure) + UNIT) * (1.0f / (2 * UNIT)));
        const int three = 3 * std::min(int{intensity[i]}, limit);
        const float first_factor = float(UNIT) / float(saturation * (step - 2 * LAST_STEP) + 3 * UNIT);
        const int first = std::min(int(first_factor * float(three) + 0.5f), 255);
        const int second_factor = saturation * (step - LAST_STEP) + UNIT;
        const int second = std::min(int(float(second_factor * first) * (1.0f / UNIT) + 0.5f), 255);
        found.first[i] = uint8_t(first);
        found.second[i] = uint8_t(second);
        found.rest[i] = uint8_t(std::min(std::max(three - first - second, 0), 255));
    }
}

inline uint8_t all_ones(bool where)
{
    return uint8_t(-int(where));
}

VECTOR_CLONES
void put_rgb(uint8_t *__restrict b1, uint8_t *__restrict b2, uint8_t *__restrict b3, const primaries &found, const uint8_t *segments, int count)
{
    for (int i = 0; i < count; i++) {
        const uint8_t segment = segments[i], grey = all_ones(b3[i] == 0), kept = b1[i] & grey;
        const uint8_t x = uint8_t((found.first[i] & ~grey) | kept), y = uint8_t((found.second[i] & ~grey) | kept);
        const uint8_t z = uint8_t((found.rest[i] & ~grey) | kept);
        const uint8_t s0 = all_ones(segment == 0), s1 = all_ones(segment == 1), s2 = all_ones(segment == 2);
        const uint8_t s3 = all_ones(segment == 3), s4 = all_ones(segment == 4), s5 = all_ones(segment == 5);
        b1[i] = uint8_t((x & (s3 | s4)) | (y & (s2 | s5)) | (z & (s0 | s1)));
        b2[i] = uint8_t((x & (s1 | s2)) | (y & (s0 | s3)) | (z & (s4 | s5)));
        b3[i] = uint8_t((x & (s0 | s5)) | (y & (s1 | s4)) | (z & (s2 | s3)));
    }
}

int back(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols)
{
    primaries found;
    uint8_t segments[PART], steps[PART];
    for (int c = 0; c < cols; c += PART) {
        const int count = std::min(PART, cols - c);
        find_steps(b2 + c, segments, steps, count);
        find_primaries(b1 + c, steps, b3 + c, found, count);
        put_rgb(b1 + c, b2 + c, b3 + c, found, segments, count);
    }
    return 0;
}

} // namespace

const ihs_rows ihs_by_arithmetic = { forward, back };
