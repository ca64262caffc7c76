// slice_map.h - density slices as kernels on plain tables: which colour a held level gets. No session, no prompts.
//
//   slice_colors   256 colour indices by held level, -1 for none
//   low, high      inclusive; may be crossed or, for an empty histogram, 256 and -1: entries outside the table are never touched
//   steps          12 or 6: how many of the spectrum's colours are used
#pragma once
#include <cstdint>

constexpr int SPECTRUM_COLOURS = 12;
extern const uint8_t spectrum_colours[SPECTRUM_COLOURS];     // colour indices from red round to rose
int spectrum_colour(int step, int steps);                    // of 6 steps every other one

// Sets the levels of a range; nothing when low is above high.
void slice_range(int16_t *slice_colors, int colour, int low, int high);

// Steps of equal width: with w = high - low + 1 levels, step k ends before low + ((k + 1) * w + steps / 2) / steps.
void slice_equal_width(int16_t *slice_colors, int low, int high, int steps);

// Steps of equal population by the counts of held levels. A step takes one level more than it has summed, which is kept on purpose: the
// level that the next step begins to count with is already coloured. The last step may therefore reach one level above `high`.
void slice_equal_population(int16_t *slice_colors, const int32_t *hist_unmapped, int low, int high, int steps);

// inverse_out[gamma[i]] is i; levels that gamma never gives take the value of the next one above, and 0 stays 0.
void inverse_of_gamma(const uint8_t gamma[256], uint8_t inverse_out[256]);
