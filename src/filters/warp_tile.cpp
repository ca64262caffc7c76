// Tiles wholly inside the image are sampled by loops without tests, which leave the arithmetic to vectors; tiles wholly outside are 0. The
// few tiles across an edge go pixel by pixel, and say what the others must give.
#include "filters/warp_tile.h"

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

// The pixels whose coordinates are so far from all sides.
bounds inside_by(const warp_source &in, int before, int behind)
{
    return { double(before), double(in.rows) - behind, double(in.cols) - behind };
}

VECTOR_CLONES
int count_inside(const double *rows, const double *cols, int count, const bounds &b)
{
    const auto [low, row_high, col_high] = b;
    int inside = 0;
    for (int i = 0; i < count; i++)
        inside += int(rows[i] >= low) & int(rows[i] < row_high) & int(cols[i] >= low) & int(cols[i] < col_high);
    return inside;
}

bool is_inside(double row, double col, const bounds &b)
{
    return row >= b.low && row < b.row_high && col >= b.low && col < b.col_high;
}

struct whole_places {
    int32_t row[TILE_PIXELS], col[TILE_PIXELS];
};
struct places {
    whole_places whole;
    int32_t row_fraction[TILE_PIXELS], col_fraction[TILE_PIXELS];
};

VECTOR_CLONES
void truncate_places(whole_places *p, const double *rows, const double *cols, int count)
{
    for (int i = 0; i < count; i++) {
        p->row[i] = int32_t(rows[i]);
        p->col[i] = int32_t(cols[i]);
    }
}

// A coordinate less its whole part is exact, so scaling before or after the subtraction truncates to the same.
VECTOR_CLONES
void split_places(places *p, const double *rows, const double *cols, int count, double scale)
{
    for (int i = 0; i < count; i++) {
        const int32_t r = int32_t(rows[i]), c = int32_t(cols[i]);
        p->whole.row[i] = r;
        p->whole.col[i] = c;
        p->row_fraction[i] = int32_t((rows[i] - r) * scale);
        p->col_fraction[i] = int32_t((cols[i] - c) * scale);
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

struct pairs {
    uint32_t top[TILE_PIXELS], bottom[TILE_PIXELS];
};

void gather_pairs(const warp_source &in, pairs *p, const whole_places &at, int count)
{
    for (int i = 0; i < count; i++) {
        const int r = at.row[i];
        const uint8_t *const column = in.pixels + at.col[i];
        p->top[i] = two_bytes(column + in.row_start[r]);
        p->bottom[i] = two_bytes(column + in.row_start[r + 1]);
    }
}

VECTOR_CLONES
void mix_pairs(uint8_t *out, const pairs &p, const places &at, int count)
{
    for (int i = 0; i < count; i++)
        out[i] = bilinear(p.top[i] & 255, p.top[i] >> 8, p.bottom[i] & 255, p.bottom[i] >> 8, uint32_t(at.row_fraction[i]),
                          uint32_t(at.col_fraction[i]));
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

typedef uint8_t four_bytes __attribute__((vector_size(4)));
typedef uint32_t four_words __attribute__((vector_size(16)));

// The sums down the four columns come first, all four at once: as integers they give the same.
VECTOR_CLONES
void convolve_places(const warp_source &in, uint8_t *out, const places &at, int count, const cubic_table &table)
{
    for (int i = 0; i < count; i++) {
        const int64_t *const start = in.row_start + at.whole.row[i] - 1;
        const uint8_t *const column = in.pixels + at.whole.col[i] - 1;
        const int32_t *const row_weights = table.weights[at.row_fraction[i]];
        four_words sum = {}, col_weights;
        for (int y = 0; y < 4; y++) {
            four_bytes line;
            memcpy(&line, column + start[y], sizeof line);
            sum += __builtin_convertvector(line, four_words) * uint32_t(row_weights[y]);
        }
        memcpy(&col_weights, table.weights[at.col_fraction[i]], sizeof col_weights);
        sum *= col_weights;
        out[i] = cubic_level(sum[0] + sum[1] + sum[2] + sum[3]);
    }
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

void sample_nearest(const warp_source &in, uint8_t *out, const double *rows, const double *cols, int count, double lowest)
{
    const bounds image = { lowest, double(in.rows), double(in.cols) };
    const int inside = count_inside(rows, cols, count, image);
    if (inside < count) {
        memset(out, 0, size_t(count));
        for (int i = 0; inside && i < count; i++)
            if (is_inside(rows[i], cols[i], image))
                out[i] = in.pixels[in.row_start[int(rows[i])] + int(cols[i])];
        return;
    }
    whole_places at;
    truncate_places(&at, rows, cols, count);
    for (int i = 0; i < count; i++)
        out[i] = in.pixels[in.row_start[at.row[i]] + at.col[i]];
}

void sample_bilinear(const warp_source &in, uint8_t *out, const double *rows, const double *cols, int count)
{
    if (count_inside(rows, cols, count, inside_by(in, 0, 1)) < count) {
        const bounds image = inside_by(in, 0, 0);
        const int inside = count_inside(rows, cols, count, image);
        memset(out, 0, size_t(count));
        for (int i = 0; inside && i < count; i++)
            if (is_inside(rows[i], cols[i], image))
                out[i] = bilinear_anywhere(in, rows[i], cols[i]);
        return;
    }
    places at;
    pairs p;
    split_places(&at, rows, cols, count, FRACTION_ONE);
    gather_pairs(in, &p, at.whole, count);
    mix_pairs(out, p, at, count);
}

void sample_cubic(const warp_source &in, uint8_t *out, const double *rows, const double *cols, int count, const cubic_table &table)
{
    if (count_inside(rows, cols, count, inside_by(in, 1, 2)) < count) {
        const bounds image = inside_by(in, 0, 0);
        const int inside = count_inside(rows, cols, count, image);
        memset(out, 0, size_t(count));
        for (int i = 0; inside && i < count; i++)
            if (is_inside(rows[i], cols[i], image))
                out[i] = cubic_anywhere(in, rows[i], cols[i], table);
        return;
    }
    places at;
    split_places(&at, rows, cols, count, CUBIC_STEPS);
    convolve_places(in, out, at, count, table);
}
