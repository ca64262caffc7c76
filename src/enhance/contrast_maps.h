// contrast_maps.h - the contrast operators as kernels on one band's tables: no session, no prompts.
//
//   hist   256 counts by shown level (hist_mapped), rewritten to follow the new table
//   lut    256 entries from held to shown level, 0 to 255, rewritten
//
// Levels and ranges are 0 to 255 and inclusive. Ranges need not be ordered: a crossed one gives what the steps give. Nothing fails.
#pragma once
#include <cstdint>

// Spreads the levels of the input range over the output range by their share of the counts.
//   contrast   1 weighs levels by their counts, smaller values flatten the weights, 0 weighs every occupied level alike
// Levels below and above the input range go to out_min and out_max. Weights are ceil(x - 0.5), in 32 bits, and their sum wraps beyond
// that; levels are trunc(x + 0.5), kept within 0 to 255. A saturated end (two or more held levels at the table's extreme) is taken out
// of the input range, so that equalising again changes little. A falling table stays falling.
// A table that neither rises nor falls throughout may leave counts behind at a level that it meets twice: map_hist puts that right.
void equalize_map(int32_t *hist, int16_t *lut, double contrast, int in_min, int in_max, int out_min, int out_max);

// Moves the input range to the output range along a straight line, in running steps of the widest floating type, rounded by
// adding 0.5 and truncating. in_min may be 256 and in_max -1: an empty histogram's ranges.
void stretch_map(int32_t *hist, int16_t *lut, int in_min, int in_max, int out_min, int out_max);

// The first and the last level that occur; 256 and -1 when none does.
void occupied_range(const int32_t *hist, int *in_min_out, int *in_max_out);

// The levels at which `percent` of all counts is reached from below and from above; a percentage below 0.001 asks for one count.
// 256 and -1 when it is never reached.
void percent_range(const int32_t *hist, double percent, int *in_min_out, int *in_max_out);

// Shown levels move to ceil((level - about) * factor - 0.5) + about, kept within 0 to 255.
void scale_map(int32_t *hist, int16_t *lut, double factor, int about);

// Shown levels move by `amount`, kept within 0 to 255.
void shift_map(int32_t *hist, int16_t *lut, int amount);
