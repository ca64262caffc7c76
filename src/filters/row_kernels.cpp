// The plain set: loops that any compiler can put into vectors.
#include "filters/row_kernels.h"

#include <algorithm>
#include <cstdlib>

namespace {

void edge(uint8_t *__restrict out, const uint8_t *const plus[3], const uint8_t *const minus[3], int count, bool)
{
    const uint8_t *const p0 = plus[0], *const p1 = plus[1], *const p2 = plus[2];
    const uint8_t *const m0 = minus[0], *const m1 = minus[1], *const m2 = minus[2];
    for (int i = 0; i < count; i++) {
        const int16_t sum = int16_t(p0[i] + p1[i] + p2[i] - m0[i] - m1[i] - m2[i]);
        out[i] = uint8_t(std::clamp<int16_t>(sum, 0, 255));
    }
}

// Sums stay below 12 * 255 = 3060. With e = reciprocal * divisor - 2^15, less than 8, 3060 * e is below 2^15: the product's upper half
// is the truncated quotient. `highest` is the largest sum whose quotient is 255. Negative sums give 0 whatever the divisor.
void laplace(uint8_t *__restrict out, const uint8_t *above, const uint8_t *row, const uint8_t *below, int count, const laplacian &how, bool)
{
    const uint16_t weight = uint16_t(how.weight), reciprocal = how.reciprocal;
    const int16_t highest = int16_t(256 * how.divisor - 1);
    for (int i = 0; i < count; i++) {
        const int16_t sum = int16_t(weight * row[i + 1] - above[i + 1] - row[i] - row[i + 2] - below[i + 1]);
        const uint16_t twice = uint16_t(2 * std::min(std::max<int16_t>(sum, 0), highest));
        out[i] = uint8_t(uint32_t{twice} * reciprocal >> 16);
    }
}

// No clamp: four times 255 is the largest gradient, and a quarter of it is wanted.
void sobel(uint8_t *__restrict out, const uint8_t *a, const uint8_t *b, const uint8_t *c, int count, bool)
{
    for (int i = 0; i < count; i++) {
        const int16_t gy = int16_t(a[i] + 2 * a[i + 1] + a[i + 2] - c[i] - 2 * c[i + 1] - c[i + 2]);
        const int16_t gx = int16_t(a[i + 2] + 2 * b[i + 2] + c[i + 2] - a[i] - 2 * b[i] - c[i]);
        const int16_t ay = int16_t(std::abs(gy)), ax = int16_t(std::abs(gx));
        const uint16_t larger = uint16_t(ay > ax ? ay : ax);
        out[i] = uint8_t(uint16_t(larger + 2) >> 2);
    }
}

void roberts(uint8_t *__restrict out, const uint8_t *above, const uint8_t *row, int count, bool)
{
    for (int i = 0; i < count; i++) {
        const int16_t rising = int16_t(above[i + 1] - row[i]), falling = int16_t(above[i] - row[i + 1]);
        const int16_t up = int16_t(std::abs(rising)), down = int16_t(std::abs(falling));
        out[i] = uint8_t(up > down ? up : down);
    }
}

void next_sums(uint16_t *__restrict sums, const uint8_t *entering, const uint8_t *leaving, int cols)
{
    for (int c = 0; c < cols; c++)
        sums[c] = uint16_t(sums[c] + entering[c] - leaving[c]);
}

template <int WIDTH>
inline __attribute__((always_inline)) void mean_of(uint8_t *__restrict out, const uint16_t *__restrict sums, int count, const small_mean &how)
{
    const uint16_t half = how.half, factor = how.factor;
    const int shift = how.shift;
    for (int c = 0; c < count; c++) {
        uint16_t total = half;
        for (int i = 0; i < WIDTH; i++)
            total = uint16_t(total + sums[c + i]);
        out[c] = uint8_t(uint16_t(uint32_t{total} * factor >> 16) >> shift);
    }
}

void mean(uint8_t *out, const uint16_t *sums, int cols, int width, const small_mean &how, bool)
{
    const int count = cols - width + 1;
    switch (width) {
    case 1: mean_of<1>(out, sums, count, how); break;
    case 2: mean_of<2>(out, sums, count, how); break;
    case 3: mean_of<3>(out, sums, count, how); break;
    case 4: mean_of<4>(out, sums, count, how); break;
    case 5: mean_of<5>(out, sums, count, how); break;
    case 6: mean_of<6>(out, sums, count, how); break;
    case 7: mean_of<7>(out, sums, count, how); break;
    case 8: mean_of<8>(out, sums, count, how); break;
    default: mean_of<9>(out, sums, count, how); break;
    }
}

} // namespace

const row_kernels row_kernels_plain = { edge, laplace, sobel, roberts, next_sums, mean };

const row_kernels &row_kernels_best()
{
    static const row_kernels *const best = [] {
        const row_kernels *const avx512 = row_kernels_avx512(), *const avx2 = row_kernels_avx2();
        return avx512 ? avx512 : avx2 ? avx2 : &row_kernels_plain;
    }();
    return *best;
}
