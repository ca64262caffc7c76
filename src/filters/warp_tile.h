// warp_tile.h - private to the warps: the samplers of a tile of output pixels, whatever their order.
// A tile whose pixels lie close together in the image is sampled from a copy of that window of the image, so tiles should be compact.
// Coordinates are as the samplers use them, already less 0.5 for bilinear and cubic.
#pragma once
#include <cfloat>
#include <cstdint>

#include "filters/warp_resample.h"

constexpr int TILE_PIXELS = 512;

struct warp_source {
    const uint8_t *pixels;
    int rows, cols;
    const int64_t *row_start;
};

constexpr int WINDOW_SIDE = 64;
constexpr int VECTOR_BYTES = 64;       // arrays that straddle this cost twice

// A square of the image around a tile, and where in it each pixel of the tile has its own.
struct warp_window {
    alignas(VECTOR_BYTES) uint8_t pixels[WINDOW_SIDE * WINDOW_SIDE];
    alignas(VECTOR_BYTES) int32_t place[TILE_PIXELS];
    int height;
};

// `count` coordinates, at most TILE_PIXELS. With `lanes` the tile is so many straight runs side by side: a pixel follows the one `lanes`
// before it by a step that stays the same, so that its coordinates only grow or only shrink along the run. 0 when nothing is known.
struct warp_tile {
    const double *rows, *cols;
    int count, lanes;
};

// The four weights of a fraction side by side.
struct cubic_table {
    int32_t weights[CUBIC_ENTRIES][4];
};
void fill_cubic_table(cubic_table *table, const int32_t *w0, const int32_t *w1, const int32_t *w2, const int32_t *w3);

// Lowest coordinates that are inside.
constexpr double FROM_ZERO = 0.0;
constexpr double ABOVE_MINUS_ONE = -1.0 + DBL_EPSILON / 2;  // all that truncates to 0

void sample_nearest(const warp_source &in, warp_window *w, uint8_t *out, const warp_tile &tile, double lowest);
void sample_bilinear(const warp_source &in, warp_window *w, uint8_t *out, const warp_tile &tile);
void sample_cubic(const warp_source &in, warp_window *w, uint8_t *out, const warp_tile &tile, const cubic_table &table);
