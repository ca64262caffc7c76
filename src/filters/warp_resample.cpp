#include "filters/warp_resample.h"

#include <algorithm>
#include <cmath>
#include <climits>

#include "filters/warp_tile.h"

namespace {

constexpr int RUN_PIXELS = 32;         // of a row, whatever its direction in the image, still lie close together

// Truncates; what 32 bits cannot hold becomes the nearest that they can, and what is no number 0.
int32_t held_weight(double weight)
{
    return std::isnan(weight) ? 0 : int32_t(std::clamp(weight, double(INT32_MIN), double(INT32_MAX)));
}

// Pixel centres lie half a pixel from where pixels begin.
void shift_by_half(double *rows, double *cols, int count)
{
    for (int i = 0; i < count; i++) {
        rows[i] -= 0.5;
        cols[i] -= 0.5;
    }
}

// What of a straight run has been walked.
struct run_state {
    double row, col, row_step, col_step;
};

run_state run_from(double rs, double cs, double re, double ce, int count)
{
    return { rs, cs, (re - rs) / (count - 1), (ce - cs) / (count - 1) };
}

void walk(run_state *run, int count, double *rows, double *cols)
{
    auto [row, col, row_step, col_step] = *run;
    for (int i = 0; i < count; i++) {
        rows[i] = row;
        cols[i] = col;
        row += row_step;
        col += col_step;
    }
    run->row = row;
    run->col = col;
}

} // namespace

void cubic_weights(double parameter, int32_t *w0, int32_t *w1, int32_t *w2, int32_t *w3)
{
    constexpr double SCALE = 2048.0, STEP = 0.01;
    const double a = parameter;
    // The fraction and its multiple are sums of steps; their rounding shows in the tables.
    double t = 0, multiple = 0;
    for (int i = 0; i < CUBIC_ENTRIES; i++, t += STEP, multiple += (a + 2.0) * STEP) {
        const double s = 1.0 + t, w = 1.0 - t, z = 2.0 - t;
        w0[i] = held_weight((a * s * s * s - 5.0 * a * s * s + 8.0 * a * s - 4.0 * a) * SCALE);
        w1[i] = held_weight((multiple * t * t - (a + 3.0) * t * t + 1.0) * SCALE);
        w2[i] = held_weight(((a + 2.0) * w * w * w - (a + 3.0) * w * w + 1.0) * SCALE);
        w3[i] = held_weight((a * z * z * z - 5.0 * a * z * z + 8.0 * a * z - 4.0 * a) * SCALE);
    }
}

void resample_row(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, int count, int method, double *rows, double *cols,
                  const int64_t *row_start, const int32_t *w0, const int32_t *w1, const int32_t *w2, const int32_t *w3)
{
    const warp_source source = { in, in_rows, in_cols, row_start };
    warp_window window;
    cubic_table table;
    if (method == WARP_CUBIC)
        fill_cubic_table(&table, w0, w1, w2, w3);
    if (method == WARP_BILINEAR || method == WARP_CUBIC)
        shift_by_half(rows, cols, count);
    for (int i = 0; i < count; i += RUN_PIXELS) {
        const warp_tile tile = { rows + i, cols + i, std::min(RUN_PIXELS, count - i), 0 };
        if (method == WARP_NEAREST)
            sample_nearest(source, &window, out + i, tile, FROM_ZERO);
        else if (method == WARP_BILINEAR)
            sample_bilinear(source, &window, out + i, tile);
        else if (method == WARP_CUBIC)
            sample_cubic(source, &window, out + i, tile, table);
    }
}

void resample_bits(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, int c_first, int c_last, const double *rows,
                   const double *cols, int out_row, const int64_t *row_start)
{
    const int64_t width = int64_t{c_last} - c_first + 1;
    for (int64_t i = 0; i < width; i++) {
        const double r = rows[i], c = cols[i];
        int bit = 0;
        if (r >= ABOVE_MINUS_ONE && r < in_rows && c >= ABOVE_MINUS_ONE && c < in_cols) {
            const int64_t from = row_start[int(r)] + int(c);
            bit = in[from >> 3] >> (from & 7) & 1;
        }
        const int64_t to = out_row * width + c_first + i;
        out[to >> 3] = uint8_t((out[to >> 3] & ~(1 << (to & 7))) | bit << (to & 7));
    }
}

void lerp_run(double rs, double cs, double re, double ce, int count, double *rows, double *cols)
{
    run_state run = run_from(rs, cs, re, ce, count);
    walk(&run, count, rows, cols);
}

void nearest_run(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, int count, double rs, double cs, double re, double ce,
                 const int64_t *row_start)
{
    const warp_source source = { in, in_rows, in_cols, row_start };
    double rows[RUN_PIXELS], cols[RUN_PIXELS];
    warp_window window;
    run_state run = run_from(rs, cs, re, ce, count);
    for (int i = 0; i < count; i += RUN_PIXELS) {
        const int part = std::min(RUN_PIXELS, count - i);
        walk(&run, part, rows, cols);
        sample_nearest(source, &window, out + i, { rows, cols, part, 1 }, ABOVE_MINUS_ONE);
    }
}
