// tune_map.h - the brightness curve of `tune`, as a kernel.
#pragma once
#include <cstdint>

// Puts the shown levels of `lut` (0 to 255) through a power curve with exponent 1 / (1 + |brightness|); a negative brightness takes the
// curve mirrored about the diagonal. Curve levels are trunc(x + 0.5).
// hist, 256 counts, is not cleared first and is added to by held level: that is meant. After `tune` the plot is a sketch of the curve's effect,
// till the next collection or map_hist puts it right. Sums wrap in 32 bits.
void gamma_map(int32_t *hist, int16_t *lut, double brightness);
