// ihs.h - between red, green, blue and intensity, hue, saturation, in place on three planes of `rows` by `cols` bytes.
//
// Hue runs from 0 to 251 in six segments of 42 steps, from blue by green and red back to blue; saturation 0 is grey, and its hue is 0.
// Each byte is first read through the low byte of its band's map. The tables are built at the first use, or by ihs_init.
#pragma once
#include <cstdint>

constexpr int IHS_STOPPED = -99, IHS_BAD_HUE = -2;

void ihs_init();
bool ihs_ready();

// Bands 1, 2, 3 take I, H, S. 0 or IHS_STOPPED.
int rgb_to_ihs(uint8_t *b1, uint8_t *b2, uint8_t *b3, const int16_t *map1, const int16_t *map2, const int16_t *map3, int rows, int cols);

// Bands 1, 2, 3 take R, G, B. 0, IHS_BAD_HUE or IHS_STOPPED. Intensities that a hue and saturation cannot have are lowered.
int ihs_to_rgb(uint8_t *b1, uint8_t *b2, uint8_t *b3, const int16_t *map1, const int16_t *map2, const int16_t *map3, int rows, int cols);
