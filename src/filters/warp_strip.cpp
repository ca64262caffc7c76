#include "filters/warp_strip.h"

#include <algorithm>
#include <cstring>

#include "filters/orthogonal.h"
#include "filters/vector_clones.h"

namespace {

constexpr int STRIP_COLS = TILE_PIXELS / STRIP_ROWS;
constexpr int AHEAD = 4 * STRIP_COLS;       // columns

typedef double lanes __attribute__((vector_size(64)));
constexpr int LANES = sizeof(lanes) / sizeof(double), PARTS = 2 * STRIP_ROWS / LANES;

// Where each row of the strip has got to, and its steps: image rows first, then columns.
struct strip_walk {
    double place[2 * STRIP_ROWS], step[2 * STRIP_ROWS];
};

void start_walk(strip_walk *walk, const warp_line *lines, int out_cols)
{
    for (int k = 0; k < STRIP_ROWS; k++) {
        const auto [row, col, row_end, col_end] = lines[k];
        walk->place[k] = row;
        walk->place[STRIP_ROWS + k] = col;
        walk->step[k] = (row_end - row) / (out_cols - 1);
        walk->step[STRIP_ROWS + k] = (col_end - col) / (out_cols - 1);
    }
}

// Sums of steps round, so each row must take its own one by one; the rows can go side by side. `shift` is taken from each coordinate.
VECTOR_CLONES
void walk_columns(strip_walk *walk, int count, double shift, double *rows, double *cols)
{
    lanes place[PARTS], step[PARTS];
    memcpy(place, walk->place, sizeof place);
    memcpy(step, walk->step, sizeof step);
    double *const to[PARTS] = { rows, rows + LANES, cols, cols + LANES };
    for (int j = 0; j < count; j++)
        for (int k = 0; k < PARTS; k++) {
            const lanes shifted = place[k] - shift;
            memcpy(to[k] + j * STRIP_ROWS, &shifted, sizeof shifted);
            place[k] += step[k];
        }
    memcpy(walk->place, place, sizeof place);
}

// Sampled column by column, put down in rows. What later tiles will write is called for, or the processor would wait for each row of it.
void put_tile(uint8_t *out, int out_cols, int c, int count, const uint8_t *pixels)
{
    transpose_block(pixels, STRIP_ROWS, out + c, out_cols, count, STRIP_ROWS);
    const int later = std::min(out_cols - c, AHEAD + 1) - 1;
    for (int k = 0; k < STRIP_ROWS; k++)
        __builtin_prefetch(out + int64_t{k} * out_cols + c + later, 1);
}

} // namespace

void warp_strip(const warp_source &in, uint8_t *out, int out_cols, const warp_line *lines, int method, const cubic_table &table)
{
    const double shift = method == WARP_NEAREST ? 0.0 : 0.5;
    alignas(lanes) double rows[TILE_PIXELS], cols[TILE_PIXELS];
    uint8_t pixels[TILE_PIXELS];
    warp_window window;
    strip_walk walk;
    start_walk(&walk, lines, out_cols);
    for (int c = 0; c < out_cols; c += STRIP_COLS) {
        const int count = std::min(STRIP_COLS, out_cols - c);
        const warp_tile tile = { rows, cols, count * STRIP_ROWS, STRIP_ROWS };
        walk_columns(&walk, count, shift, rows, cols);
        if (method == WARP_NEAREST)
            sample_nearest(in, &window, pixels, tile, ABOVE_MINUS_ONE);
        else if (method == WARP_BILINEAR)
            sample_bilinear(in, &window, pixels, tile);
        else if (method == WARP_CUBIC)
            sample_cubic(in, &window, pixels, tile, table);
        else
            return;
        put_tile(out, out_cols, c, count, pixels);
    }
}
