// thumbnail.h - a whole image resampled into a small square, for panels that show the effect of a table before it is accepted.
#pragma once
#include <cstdint>

constexpr int THUMBNAIL_SIDE = 128;
constexpr int THUMBNAIL_BYTES = THUMBNAIL_SIDE * THUMBNAIL_SIDE;

// Held levels of a band, turned as the band's matrix says, as large as fits with its aspect kept, in the middle; nearest neighbour.
// Pixels outside the image are 0. A band without pixels in memory gives an empty square.
void thumbnail_resample(int band, uint8_t *square_out);

// Paints the square at x, y of a window that is no picture, through tables from held to shown level: one for a grey image
// (green and blue null), three for a colour image. No click stops it.
void thumbnail_paint(int window, int x, int y, const uint8_t *const planes[3], const int16_t *const luts[3]);
