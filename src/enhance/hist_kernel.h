// hist_kernel.h - counting the levels of a plane of bytes.
#pragma once
#include <cstddef>
#include <cstdint>

// Adds to counts[256] every `step`-th byte of every `step`-th row of a rectangle: `width` by `height` bytes, rows `stride`
// bytes apart, the first byte and row included. Counts wrap beyond 2^31 - 1 samples, more than a band can hold.
void hist_count(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height, int step);

// --- what it chooses from; all give the same counts ---------------------------------------------------------------

void hist_count_plain(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height, int step);

// Every pixel, in blocks of 64 by 8. 0, with nothing counted, when the processor has no AVX-512 with bit matrices.
int hist_count_avx512(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height);
