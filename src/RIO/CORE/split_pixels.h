// split_pixels.h - interleaved colour pixels to planes and back: the inner loops of readers and writers.
#pragma once
#include <cstdint>

// `pixels` pixels of three bytes. The planes and the pixels do not overlap.
void rio_split_3(const uint8_t *interleaved, int pixels, uint8_t *first, uint8_t *second, uint8_t *third);
void rio_join_3(const uint8_t *first, const uint8_t *second, const uint8_t *third, int pixels, uint8_t *interleaved);
