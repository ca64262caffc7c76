// fuzz_reader.h - one reader fed with arbitrary bytes: what every fuzz target runs.
#pragma once
#include <cstddef>
#include <cstdint>

// Opens the bytes as a file in memory and, when it is of `format`, uses it as a caller would: asks every key, reads lines
// of every image and overview in and out of order, run lengths and tiles. Reads stop after a few MB of lines, so that a
// header that promises billions costs nothing. Always 0.
int fuzz_reader(const uint8_t *data, size_t size, int format);

// The target of this program (one of reader_*.cpp).
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
