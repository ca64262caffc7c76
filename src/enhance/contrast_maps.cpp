#include "enhance/contrast_maps.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace {

constexpr int LEVELS = 256;

struct level_range {
    int low, high;
};

// What an infinite or undefined quotient leads to is kept within the table as well.
int kept_level(double level)
{
    return !(level > 0) ? 0 : level > 255 ? 255 : int(level);
}

int32_t weight(double x)
{
    const double rounded = std::ceil(x - 0.5);
    return !(rounded > 0) ? 0 : rounded > INT32_MAX ? INT32_MAX : int32_t(rounded);
}

// The input range without the levels to which an end of the table has saturated.
level_range without_saturated_ends(const int16_t *lut, bool rising, level_range in)
{
    const int first = lut[0], last = lut[255];
    const bool first_saturated = lut[1] == first, last_saturated = lut[254] == last;
    const int low = rising ? first : last, high = rising ? last : first;
    const bool low_saturated = rising ? first_saturated : last_saturated;
    const bool high_saturated = rising ? last_saturated : first_saturated;
    if (low_saturated && in.low <= low)
        in.low = low + 1;
    if (high_saturated && in.high >= high)
        in.high = high - 1;
    return in;
}

// Turns the counts of the range into weights; their sum, in 32 bits.
int32_t weigh(int32_t *hist, double contrast, level_range in)
{
    const int low = std::max(in.low, 0), high = std::min(in.high, LEVELS - 1);
    int32_t peak = 0;
    for (int level = low; level <= high; level++)
        peak = std::max(peak, hist[level]);

    uint32_t total = 0;
    for (int level = low; level <= high; level++) {
        if (contrast != 1.0 && hist[level] != 0)
            hist[level] = weight(std::pow(double(hist[level]), contrast) * (contrast > 0 ? 1.0 : double(peak)));
        total += uint32_t(hist[level]);
    }
    return int32_t(total);
}

} // namespace

void equalize_map(int32_t *hist, int16_t *lut, double contrast, int in_min, int in_max, int out_min, int out_max)
{
    int32_t counts[LEVELS], result[LEVELS] = {};
    memcpy(counts, hist, sizeof counts);
    const bool rising = lut[255] > lut[0];
    const level_range in = without_saturated_ends(lut, rising, { in_min, in_max });
    const int32_t total = weigh(hist, contrast, in);
    const double scale = total / double(out_max - out_min);

    uint32_t sum = 0;
    for (int i = 0; i < LEVELS; i++) {
        const int level = lut[i];
        int shown;
        if (level < in.low) {
            shown = out_min;
        } else if (level > in.high) {
            shown = out_max;
        } else {
            sum += uint32_t(hist[level]);
            const int32_t numerator = int32_t(rising ? sum : uint32_t(total) - sum);
            const double share = std::trunc(numerator / scale + 0.5);
            shown = kept_level(std::isfinite(share) ? share + out_min : out_min);
        }
        lut[i] = int16_t(shown);
        result[shown] += counts[level];
        counts[level] = hist[level] = 0;  // entries at one level count once
    }
    memcpy(hist, result, sizeof result);
}

void stretch_map(int32_t *hist, int16_t *lut, int in_min, int in_max, int out_min, int out_max)
{
    int16_t remap[LEVELS] = {};
    int32_t result[LEVELS] = {};
    const auto move_level = [&](int level, int shown) {
        remap[level] = int16_t(shown);
        result[shown] += hist[level];
        hist[level] = 0;
    };
    const double slope = double(out_max - out_min) / double(in_max - in_min);
    for (int level = 0; level < in_min; level++)
        move_level(level, out_min);
    for (int level = in_max + 1; level < LEVELS; level++)
        move_level(level, out_max);
    long double t = out_min;
    for (int level = in_min; level <= in_max; level++) {
        move_level(level, int(t + 0.5L));
        t += slope;
    }
    memcpy(hist, result, sizeof result);
    for (int i = 0; i < LEVELS; i++)
        lut[i] = remap[lut[i]];
}

void occupied_range(const int32_t *hist, int *in_min_out, int *in_max_out)
{
    int first = 0, last = LEVELS - 1;
    while (first < LEVELS && hist[first] == 0)
        first++;
    while (last >= 0 && hist[last] == 0)
        last--;
    *in_min_out = first;
    *in_max_out = last;
}

void percent_range(const int32_t *hist, double percent, int *in_min_out, int *in_max_out)
{
    int64_t total = 0;
    for (int level = 0; level < LEVELS; level++)
        total += hist[level];
    const double threshold = percent < 0.001 ? 1.0 : percent * 0.01 * double(total);

    int first = 0, last = LEVELS - 1;
    for (int64_t sum = 0; first < LEVELS; first++) {
        sum += hist[first];
        if (double(sum) >= threshold)
            break;
    }
    for (int64_t sum = 0; last >= 0; last--) {
        sum += hist[last];
        if (double(sum) >= threshold)
            break;
    }
    *in_min_out = first;
    *in_max_out = last;
}

// Sends every shown level to `moved(level)`. A level's count moves with the first entry that shows it; the later ones add nothing.
template <typename mapping> static void move_levels(int32_t *hist, int16_t *lut, mapping moved)
{
    int32_t result[LEVELS] = {};
    for (int i = 0; i < LEVELS; i++) {
        const int old = lut[i];
        lut[i] = int16_t(moved(old));
        result[lut[i]] += hist[old];
        hist[old] = 0;
    }
    memcpy(hist, result, sizeof result);
}

void scale_map(int32_t *hist, int16_t *lut, double factor, int about)
{
    move_levels(hist, lut, [=](int level) { return kept_level(std::ceil((level - about) * factor - 0.5) + about); });
}

void shift_map(int32_t *hist, int16_t *lut, int amount)
{
    move_levels(hist, lut, [=](int level) { return int(std::clamp<int64_t>(int64_t{level} + amount, 0, 255)); });
}
