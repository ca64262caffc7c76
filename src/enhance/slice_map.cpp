#include "enhance/slice_map.h"

#include <algorithm>

static constexpr int LEVELS = 256;

const uint8_t spectrum_colours[SPECTRUM_COLOURS] = { 8, 21, 4, 22, 9, 17, 15, 18, 10, 20, 16, 19 };

int spectrum_colour(int step, int steps)
{
    return spectrum_colours[step * (SPECTRUM_COLOURS / steps)];
}

void slice_range(int16_t *slice_colors, int colour, int low, int high)
{
    for (int level = std::max(low, 0); level <= std::min(high, LEVELS - 1); level++)
        slice_colors[level] = int16_t(colour);
}

static void clear_outside(int16_t *slice_colors, int low, int high)
{
    slice_range(slice_colors, -1, 0, low - 1);
    slice_range(slice_colors, -1, high + 1, LEVELS - 1);
}

void slice_equal_width(int16_t *slice_colors, int low, int high, int steps)
{
    clear_outside(slice_colors, low, high);
    const int width = high - low + 1;
    int sum = width + steps / 2, start = low;
    for (int step = 0; step < steps; step++) {
        const int next = low + sum / steps;
        slice_range(slice_colors, spectrum_colour(step, steps), start, next - 1);
        sum += width;
        start = next;
    }
}

void slice_equal_population(int16_t *slice_colors, const int32_t *hist_unmapped, int low, int high, int steps)
{
    clear_outside(slice_colors, low, high);
    int64_t total = 0;
    for (int level = std::max(low, 0); level <= std::min(high, LEVELS - 1); level++)
        total += hist_unmapped[level];

    int64_t sum = 0, share = total + steps / 2;
    int index = low, start = low;
    for (int step = 0; step < steps; step++) {
        for (; sum < share / steps && index < LEVELS; index++)
            sum += hist_unmapped[index];
        if (index >= start) {
            slice_range(slice_colors, spectrum_colour(step, steps), start, index);
            start = index + 1;
        }
        share += total;
    }
}

void inverse_of_gamma(const uint8_t gamma[256], uint8_t inverse_out[256])
{
    constexpr uint8_t HOLE = 255;
    std::fill(inverse_out, inverse_out + LEVELS, HOLE);
    for (int i = 0; i < LEVELS; i++)
        inverse_out[gamma[i]] = uint8_t(i);
    inverse_out[0] = 0;
    for (int i = LEVELS - 2; i >= 1; i--)
        if (inverse_out[i] == HOLE)
            inverse_out[i] = inverse_out[i + 1];
}
