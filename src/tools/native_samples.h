// native_samples.h - writes sample pictures in the raster library's native format, uncompressed.
// Each answers false, after a line on standard error, when the file can't be written; then nothing stands under the
// name.
#pragma once
#include <cstdint>
#include <string>

// Data type 28: three bytes a pixel, red green blue.
bool write_native_colour(const std::string &path, const uint8_t *rgb, int width, int height);

// Data type 2: a byte a pixel.
bool write_native_grey(const std::string &path, const uint8_t *grey, int width, int height);

// Data type 3: 16 bits a pixel.
bool write_native_16(const std::string &path, const uint16_t *levels, int width, int height);

// Data type 1: from rows of (width + 7) / 8 bytes, bit 7 leftmost.
bool write_native_bits(const std::string &path, const uint8_t *bits, int width, int height);
