// tifpack.h - PackBits, and differences of neighbouring samples: the plain kernels of TIFF data.
#pragma once
#include <cstdint>

// Expands codes until `out_length` bytes are out or the input ends; what a code would put behind them is dropped. A code
// of -128 takes the next byte with it, which a strict reader would not do; this is meant. Answers the input bytes used.
// *written is the bytes put out.
int64_t packbits_decode(const uint8_t *in, uint8_t *out, int64_t out_length, int64_t in_length, int64_t *written);

// Codes one line. Runs of 3 to 128 become repeats; all else, and what is left of a run after repeats of 128 and is
// shorter than 3, literals of at most 128. `out` has room for packbits_most_bytes. Answers the bytes written.
int64_t packbits_encode(const uint8_t *in, uint8_t *out, int64_t in_length);
inline int64_t packbits_most_bytes(int64_t bytes) { return bytes + bytes / 128 + 1; }

// The end of the run of equal bytes that begins at `at`, `length` at most.
int64_t tif_run_end(const uint8_t *in, int64_t at, int64_t length);

// Each byte becomes the sum of itself and the one `step` before it, modulo 256, and back. `step` is 1 to 4.
void tif_sum_bytes(uint8_t *line, int64_t bytes, int step);
void tif_difference_bytes(uint8_t *line, int64_t bytes, int step);

// The same sums for 16-bit samples: `count` of them, `step` samples apart.
void tif_sum_words(uint8_t *line, int64_t count, int step, bool big_endian);
