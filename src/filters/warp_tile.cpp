// Tiles far enough inside the image are sampled from a window by loops without tests, which leave the arithmetic to vectors; tiles wholly
// outside are 0. Others, across an edge or far apart, go pixel by pixel, and say what the loops must give.
#include "filters/warp_tile.h"

#include <algorithm>
#include <cstring>

#include "filters/vector_clones.h"

namespace {

constexpr int FRACTION_BITS = 12, FRACTION_ONE = 1 << FRACTION_BITS;
constexpr double CUBIC_STEPS = 100.0;
constexpr int CUBIC_SHIFT = 22;        // of two weights in 2048ths

// low <= coordinate < high
struct bounds {
    double low, row_high, col_high;
};

bounds bounds_of(const warp_source &in, double lowest)
{
    return { lowest, double(in.rows), double(in.cols) };
}

bool is_inside(double row, double col, const bounds &b)
{
    return row >= b.low && row < b.row_high && col >= b.low && col < b.col_high;
}

// --- windows -------------------------------------------------------------------------------------------------------------

// How many pixels are inside the image; when all are, their least and greatest rows and columns.
struct tile_survey {
    int inside, top, left, bottom, right;
};

VECTOR_CLONES
tile_survey survey_pixels(const double *rows, const double *cols, int count, const bounds &b)
{
    const auto [low, row_high, col_high] = b;
    int inside = 0, top = INT32_MAX, left = INT32_MAX, bottom = INT32_MIN, right = INT32_MIN;
    for (int i = 0; i < count; i++) {
        const bool in = (rows[i] >= low) & (rows[i] < row_high) & (cols[i] >= low) & (cols[i] < col_high);
        const double row = in ? rows[i] : 0.0, col = in ? cols[i] : 0.0;
        const int32_t r = int32_t(row), c = int32_t(col);
        inside += in;
        top = std::min(top, r);
        bottom = std::max(bottom, r);
        left = std::min(left, c);
        right = std::max(right, c);
    }
    return { inside, top, left, bottom, right };
}

// What begins and ends inside on a straight line is inside all the way.
tile_survey survey_tile(const warp_tile &t, const bounds &b)
{
    if (t.lanes > 0 && t.count >= t.lanes) {
        const int last = t.count - t.lanes;
        const tile_survey begin = survey_pixels(t.rows, t.cols, t.lanes, b), end = survey_pixels(t.rows + last, t.cols + last, t.lanes, b);
        if (begin.inside == t.lanes && end.inside == t.lanes)
            return { t.count, std::min(begin.top, end.top), std::min(begin.left, end.left), std::max(begin.bottom, end.bottom),
                     std::max(begin.right, end.right) };
    }
    return survey_pixels(t.rows, t.cols, t.count, b);
}

VECTOR_CLONES
void find_places(int32_t *__restrict place, const double *rows, const double *cols, int count, int top, int left)
{
    for (int i = 0; i < count; i++)
        place[i] = (int32_t(rows[i]) - top) * WINDOW_SIDE + (int32_t(cols[i]) - left);
}

// Fetches the window of a tile, with so many rows and columns before and behind each pixel. 0 when not all are so far inside the image, or
// when they are too far apart.
int fetch_window(warp_window *w, const warp_source &in, const warp_tile &tile, const tile_survey &s, int before, int behind)
{
    const int reach = WINDOW_SIDE - before - behind;
    if (s.inside < tile.count || s.bottom - s.top >= reach || s.right - s.left >= reach || in.cols < WINDOW_SIDE)
        return 0;
    if (s.top < before || s.left < before || s.bottom >= in.rows - behind || s.right >= in.cols - behind)
        return 0;
    const int top = s.top - before, left = std::min(s.left - before, in.cols - WINDOW_SIDE);
    w->height = s.bottom + behind - top + 1;
    for (int r = 0; r < w->height; r++)
        memcpy(w->pixels + r * WINDOW_SIDE, in.pixels + in.row_start[top + r] + left, WINDOW_SIDE);
    find_places(w->place, tile.rows, tile.cols, tile.count, top, left);
    return 1;
}

inline const uint8_t *pixel_in(const warp_window &w, int i)
{
    return w.pixels + w.place[i];
}

// A coordinate less its whole part is exact, so scaling before or after the subtraction truncates to the same.
VECTOR_CLONES
void find_fractions(int32_t *__restrict row_fractions, int32_t *__restrict col_fractions, const double *rows, const double *cols, int count,
                    double scale)
{
    for (int i = 0; i < count; i++) {
        row_fractions[i] = int32_t((rows[i] - int32_t(rows[i])) * scale);
        col_fractions[i] = int32_t((cols[i] - int32_t(cols[i])) * scale);
    }
}

// --- bilinear ------------------------------------------------------------------------------------------------------------

// s0 (4096 - f) + s1 f; as a sum of 32 bits it may wrap on the way, not in the end.
inline uint32_t between(uint32_t s0, uint32_t s1, uint32_t fraction)
{
    return (s0 << FRACTION_BITS) + (s1 - s0) * fraction;
}

inline uint8_t bilinear(uint32_t s00, uint32_t s01, uint32_t s10, uint32_t s11, uint32_t row_fraction, uint32_t col_fraction)
{
    return uint8_t(between(between(s00, s01, col_fraction), between(s10, s11, col_fraction), row_fraction) >> 2 * FRACTION_BITS);
}

uint8_t bilinear_anywhere(const warp_source &in, double row, double col)
{
    const int r = int(row), c = int(col);
    const int right = c < in.cols - 1;
    const uint8_t *const top = in.pixels + in.row_start[r] + c;
    const uint8_t *const bottom = r < in.rows - 1 ? in.pixels + in.row_start[r + 1] + c : top;
    return bilinear(top[0], top[right], bottom[0], bottom[right], uint32_t((row - r) * FRACTION_ONE), uint32_t((col - c) * FRACTION_ONE));
}

inline uint32_t two_bytes(const uint8_t *p)
{
    return p[0] | uint32_t{p[1]} << 8;
}

VECTOR_CLONES
void mix_pairs(uint8_t *__restrict out, const uint32_t *top, const uint32_t *bottom, const int32_t *row_fractions,
               const int32_t *col_fractions, int count)
{
    for (int i = 0; i < count; i++)
        out[i] = bilinear(top[i] & 255, top[i] >> 8, bottom[i] & 255, bottom[i] >> 8, uint32_t(row_fractions[i]), uint32_t(col_fractions[i]));
}

// --- cubic ---------------------------------------------------------------------------------------------------------------

// Sums are those of 32-bit integers, which weights out of the ordinary may make wrap.
inline uint8_t cubic_level(uint32_t sum)
{
    const int level = int32_t(sum) >> CUBIC_SHIFT;
    return uint8_t(level < 0 ? 0 : level > 255 ? 255 : level);
}

uint8_t cubic_anywhere(const warp_source &in, double row, double col, const cubic_table &table)
{
    const int r = int(row), c = int(col);
    const int row_taps[4] = { r > 0 ? r - 1 : r, r, r < in.rows - 1 ? r + 1 : r, r < in.rows - 2 ? r + 2 : in.rows - 1 };
    const int col_taps[4] = { c > 0 ? c - 1 : c, c, c < in.cols - 1 ? c + 1 : c, c < in.cols - 2 ? c + 2 : in.cols - 1 };
    const int32_t *const row_weights = table.weights[int((row - r) * CUBIC_STEPS)];
    const int32_t *const col_weights = table.weights[int((col - c) * CUBIC_STEPS)];
    uint32_t sum = 0;
    for (int y = 0; y < 4; y++) {
        const uint8_t *const line = in.pixels + in.row_start[row_taps[y]];
        uint32_t h = 0;
        for (int x = 0; x < 4; x++)
            h += line[col_taps[x]] * uint32_t(col_weights[x]);
        sum += h * uint32_t(row_weights[y]);
    }
    return cubic_level(sum);
}

typedef uint32_t four_words __attribute__((vector_size(16)));

inline uint32_t sum_of(four_words v)
{
    constexpr four_words halves = { 2, 3, 0, 1 }, neighbours = { 1, 0, 3, 2 };
    v += __builtin_shuffle(v, halves);
    v += __builtin_shuffle(v, neighbours);
    return v[0];
}

// The sums down the four columns come first, all four at once: as integers they give the same.
VECTOR_CLONES
void convolve_window(uint32_t *__restrict sums, const uint32_t *samples, const warp_window &w, const int32_t *row_fractions,
                     const int32_t *col_fractions, int count, const cubic_table &table)
{
    for (int i = 0; i < count; i++) {
        const uint32_t *const cell = samples + w.place[i] - WINDOW_SIDE - 1;
        const int32_t *const row_weights = table.weights[row_fractions[i]];
        four_words sum = {}, line, col_weights;
        for (int y = 0; y < 4; y++) {
            memcpy(&line, cell + y * WINDOW_SIDE, sizeof line);
            sum += line * uint32_t(row_weights[y]);
        }
        memcpy(&col_weights, table.weights[col_fractions[i]], sizeof col_weights);
        sums[i] = sum_of(sum * col_weights);
    }
}

VECTOR_CLONES
void widen(uint32_t *__restrict samples, const uint8_t *__restrict pixels, int count)
{
    for (int i = 0; i < count; i++)
        samples[i] = pixels[i];
}

VECTOR_CLONES
void level_sums(uint8_t *__restrict out, const uint32_t *__restrict sums, int count)
{
    for (int i = 0; i < count; i++)
        out[i] = cubic_level(sums[i]);
}

} // namespace

void fill_cubic_table(cubic_table *table, const int32_t *w0, const int32_t *w1, const int32_t *w2, const int32_t *w3)
{
    for (int i = 0; i < CUBIC_ENTRIES; i++) {
        int32_t *const weights = table->weights[i];
        weights[0] = w0[i];
        weights[1] = w1[i];
        weights[2] = w2[i];
        weights[3] = w3[i];
    }
}

void sample_nearest(const warp_source &in, warp_window *w, uint8_t *out, const warp_tile &tile, double lowest)
{
    const auto [rows, cols, count, lanes] = tile;
    const bounds image = bounds_of(in, lowest);
    const tile_survey survey = survey_tile(tile, image);
    if (fetch_window(w, in, tile, survey, 0, 0)) {
#pragma GCC unroll 8
        for (int i = 0; i < count; i++)
            out[i] = *pixel_in(*w, i);
        return;
    }
    memset(out, 0, size_t(count));
    for (int i = 0; survey.inside && i < count; i++)
        if (is_inside(rows[i], cols[i], image))
            out[i] = in.pixels[in.row_start[int(rows[i])] + int(cols[i])];
}

void sample_bilinear(const warp_source &in, warp_window *w, uint8_t *out, const warp_tile &tile)
{
    const auto [rows, cols, count, lanes] = tile;
    const bounds image = bounds_of(in, FROM_ZERO);
    const tile_survey survey = survey_tile(tile, image);
    if (fetch_window(w, in, tile, survey, 0, 1)) {
        alignas(VECTOR_BYTES) int32_t row_fractions[TILE_PIXELS], col_fractions[TILE_PIXELS];
        alignas(VECTOR_BYTES) uint32_t top[TILE_PIXELS], bottom[TILE_PIXELS];
        find_fractions(row_fractions, col_fractions, rows, cols, count, FRACTION_ONE);
#pragma GCC unroll 4
        for (int i = 0; i < count; i++) {
            const uint8_t *const cell = pixel_in(*w, i);
            top[i] = two_bytes(cell);
            bottom[i] = two_bytes(cell + WINDOW_SIDE);
        }
        mix_pairs(out, top, bottom, row_fractions, col_fractions, count);
        return;
    }
    memset(out, 0, size_t(count));
    for (int i = 0; survey.inside && i < count; i++)
        if (is_inside(rows[i], cols[i], image))
            out[i] = bilinear_anywhere(in, rows[i], cols[i]);
}

void sample_cubic(const warp_source &in, warp_window *w, uint8_t *out, const warp_tile &tile, const cubic_table &table)
{
    const auto [rows, cols, count, lanes] = tile;
    const bounds image = bounds_of(in, FROM_ZERO);
    const tile_survey survey = survey_tile(tile, image);
    if (fetch_window(w, in, tile, survey, 1, 2)) {
        alignas(VECTOR_BYTES) int32_t row_fractions[TILE_PIXELS], col_fractions[TILE_PIXELS];
        alignas(VECTOR_BYTES) uint32_t samples[WINDOW_SIDE * WINDOW_SIDE], sums[TILE_PIXELS];
        find_fractions(row_fractions, col_fractions, rows, cols, count, CUBIC_STEPS);
        widen(samples, w->pixels, w->height * WINDOW_SIDE);
        convolve_window(sums, samples, *w, row_fractions, col_fractions, count, table);
        level_sums(out, sums, count);
        return;
    }
    memset(out, 0, size_t(count));
    for (int i = 0; survey.inside && i < count; i++)
        if (is_inside(rows[i], cols[i], image))
            out[i] = cubic_anywhere(in, rows[i], cols[i], table);
}
