// noise.h - repeatable randomness for generated landscapes: the same seed and place give the same number always.
#pragma once
#include <cmath>
#include <cstdint>

// Well mixed bits of a lattice place.
uint32_t hash_place(int32_t x, int32_t y, uint32_t seed);

// The same as a fraction, 0 to below 1.
float random_place(int32_t x, int32_t y, uint32_t seed);

// Gradient noise of wavelength 1, about -0.7 to 0.7, 0 at lattice places.
float noise(float x, float y, uint32_t seed);

// Sum of octaves, each of twice the frequency and `gain` times the height of the one before; the first is noise().
float fractal_noise(float x, float y, int octaves, float gain, uint32_t seed);

// 0 below `low`, 1 above `high`, a smooth step between.
float smooth_step(float low, float high, float value);

// Length of a way; the library's hypot guards against overflow, which pictures don't know, and is much slower.
inline float length(float dx, float dy) { return std::sqrt(dx * dx + dy * dy); }
