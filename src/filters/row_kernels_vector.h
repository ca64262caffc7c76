// row_kernels_vector.h - the vector set of row_kernels.h, written once for any width. A file that includes it has given VECTOR, the
// attribute of functions for its processor, `vec`, a register of bytes or of 16-bit words, and the operations on it that are used here.
//
// Interleaving two rows of bytes gives pairs of samples, and one multiplication adds or subtracts each pair into 16 bits. Both work
// within 16-byte pieces of a register, and so does the packing at the end: the pixels come out in their order.
#pragma once
#include <cstring>

#include "filters/row_kernels.h"
#include "filters/row_output.h"

namespace {

constexpr int LANES = sizeof(vec);
constexpr int FETCH_AHEAD = 4096;      // bytes
constexpr int ROW_MIN = 2 * OUTPUT_LINE;   // shorter rows are left to the plain set

struct words {
    vec low, high;
};

VECTOR inline words operator+(const words &a, const words &b)
{
    return { add16(a.low, b.low), add16(a.high, b.high) };
}

VECTOR inline words operator-(const words &a, const words &b)
{
    return { sub16(a.low, b.low), sub16(a.high, b.high) };
}

VECTOR inline words pairs(vec first, vec second)
{
    return { interleave_low(first, second), interleave_high(first, second) };
}

// first * f + second * s of each pair.
VECTOR inline words combined(const words &of, int f, int s)
{
    const vec factors = all16((s << 8) | (f & 255));
    return { add_products(of.low, factors), add_products(of.high, factors) };
}

// Clamped to 0 and 255.
VECTOR inline vec levels(const words &a)
{
    return pack(a.low, a.high);
}

VECTOR inline vec distance(vec a, vec b)
{
    return bits_or(take8(a, b), take8(b, a));
}

// pixels(i) is the vector of the LANES pixels from column i on. Whole lines of memory are written past the caches when that is wanted,
// and what lies before the first and behind the last with the bytes that it has.
template <typename PIXELS>
VECTOR inline void put_pixels(uint8_t *out, int count, bool past_caches, const PIXELS &pixels)
{
    int i = 0;
    if (past_caches) {
        i = -into_line(out) & (OUTPUT_LINE - 1);
        for (int part = 0; part < i; part += LANES)
            store_first(out + part, pixels(part), i - part);
        for (; i + OUTPUT_LINE <= count; i += OUTPUT_LINE)
            for (int part = 0; part < OUTPUT_LINE; part += LANES)
                store_past_caches(out + i + part, pixels(i + part));
    }
    for (; i + LANES <= count; i += LANES)
        store(out + i, pixels(i));
    if (i < count)
        store_last(out + count, pixels(count - LANES), count - i);
}

struct edge_pixels {
    const uint8_t *p0, *p1, *p2, *m0, *m1, *m2;
    VECTOR vec operator()(int i) const
    {
        const words first = combined(pairs(load(p0 + i), load(m0 + i)), 1, -1);
        const words second = combined(pairs(load(p1 + i), load(m1 + i)), 1, -1);
        const words third = combined(pairs(load(p2 + i), load(m2 + i)), 1, -1);
        return levels(first + second + third);
    }
};

VECTOR void edge(uint8_t *out, const uint8_t *const plus[3], const uint8_t *const minus[3], int count, bool past_caches)
{
    if (count < ROW_MIN)
        row_kernels_plain.edge(out, plus, minus, count, past_caches);
    else
        put_pixels(out, count, past_caches, edge_pixels{ plus[0], plus[1], plus[2], minus[0], minus[1], minus[2] });
}

VECTOR inline vec quotient(vec sum, vec highest, vec reciprocal)
{
    const vec clamped = min16(max16(sum, zero()), highest);
    return high_product(add16(clamped, clamped), reciprocal);
}

struct laplace_pixels {
    const uint8_t *above, *row, *below;
    int weight;
    vec highest, reciprocal;
    VECTOR vec operator()(int i) const
    {
        const words columns = combined(pairs(load(row + i + 1), load(above + i + 1)), weight, -1);
        const words sides = combined(pairs(load(row + i), load(row + i + 2)), -1, -1);
        const words sum = columns + sides - pairs(load(below + i + 1), zero());
        return levels({ quotient(sum.low, highest, reciprocal), quotient(sum.high, highest, reciprocal) });
    }
};

VECTOR void laplace(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, int count, const laplacian &how,
                    bool past_caches)
{
    if (count < ROW_MIN)
        row_kernels_plain.laplace(out, above, row, below, count, how, past_caches);
    else
        put_pixels(out, count, past_caches,
                   laplace_pixels{ above, row, below, how.weight, all16(256 * how.divisor - 1), all16(how.reciprocal) });
}

VECTOR inline vec quarter_of_larger(vec a, vec b)
{
    return shift_right<2>(add16(max16(size16(a), size16(b)), all16(2)));
}

struct sobel_pixels {
    const uint8_t *above, *row, *below;
    VECTOR vec operator()(int i) const
    {
        const words left = pairs(load(above + i), load(below + i));
        const words middle = pairs(load(above + i + 1), load(below + i + 1));
        const words right = pairs(load(above + i + 2), load(below + i + 2));
        const words sides = pairs(load(row + i + 2), load(row + i));
        const words gy = combined(left, 1, -1) + combined(middle, 2, -2) + combined(right, 1, -1);
        const words gx = combined(right, 1, 1) - combined(left, 1, 1) + combined(sides, 2, -2);
        return levels({ quarter_of_larger(gy.low, gx.low), quarter_of_larger(gy.high, gx.high) });
    }
};

VECTOR void sobel(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, int count, bool past_caches)
{
    if (count < ROW_MIN)
        row_kernels_plain.sobel(out, above, row, below, count, past_caches);
    else
        put_pixels(out, count, past_caches, sobel_pixels{ above, row, below });
}

struct roberts_pixels {
    const uint8_t *above, *row;
    VECTOR vec operator()(int i) const
    {
        return max8(distance(load(above + i + 1), load(row + i)), distance(load(above + i), load(row + i + 1)));
    }
};

VECTOR void roberts(uint8_t *out, const uint8_t *above, const uint8_t *row, int count, bool past_caches)
{
    if (count < ROW_MIN)
        row_kernels_plain.roberts(out, above, row, count, past_caches);
    else
        put_pixels(out, count, past_caches, roberts_pixels{ above, row });
}

// --- sums over rows: those of even columns, those of odd ones, and both added, each with room for whole vectors -------------

struct column_sums {
    uint16_t *even, *odd, *both;
};

column_sums parts_of(const uint16_t *sums, int cols)
{
    uint16_t *const first = const_cast<uint16_t *>(sums);
    const int64_t count = sums_count(cols) / 3;
    return { first, first + count, first + 2 * count };
}

VECTOR inline void next_vector(const column_sums &sums, int i, vec entering, vec leaving)
{
    const vec even_only = all16(255);
    const vec even = sub16(bits_and(entering, even_only), bits_and(leaving, even_only));
    const vec odd = sub16(shift_right<8>(entering), shift_right<8>(leaving));
    const vec even_sum = add16(load(sums.even + i), even), odd_sum = add16(load(sums.odd + i), odd);
    store(sums.even + i, even_sum);
    store(sums.odd + i, odd_sum);
    store(sums.both + i, add16(even_sum, odd_sum));
}

// The rows that enter later follow in memory, and behind the last one nothing is fetched that matters.
inline void fetch(uintptr_t at)
{
    __builtin_prefetch((const void *)at);
}

VECTOR void next_sums(uint16_t *memory, const uint8_t *entering, const uint8_t *leaving, int cols)
{
    const column_sums sums = parts_of(memory, cols);
    int c = 0;
    for (; c + LANES <= cols; c += LANES) {
        fetch(uintptr_t(entering + c) + FETCH_AHEAD);
        next_vector(sums, c / 2, load(entering + c), load(leaving + c));
    }
    uint8_t rest[2][LANES] = {};
    memcpy(rest[0], entering + c, size_t(cols - c));
    memcpy(rest[1], leaving + c, size_t(cols - c));
    next_vector(sums, c / 2, load(rest[0]), load(rest[1]));
}

// A kernel that starts at an even column covers whole pairs and, when its width is odd, one even column more; one that starts at an
// odd column covers that, whole pairs, and when its width is even one even column.
template <int WIDTH>
struct mean_pixels {
    static constexpr int PAIRS = WIDTH / 2;
    column_sums sums;
    vec half, factor;
    int shift;

    VECTOR vec both(int i) const { return load(sums.both + i); }
    VECTOR vec even(int i) const { return load(sums.even + i); }
    VECTOR vec mean(vec total) const { return shift_right_by(high_product(add16(total, half), factor), shift); }
    // Of the pairs that the kernels at column 2 i and at the two after it share, to the totals of the one and of the others.
    VECTOR vec from_even(vec shared, int i) const
    {
        const vec pairs = PAIRS > 0 ? add16(shared, both(i)) : shared;
        return WIDTH % 2 == 1 ? add16(pairs, even(i + PAIRS)) : pairs;
    }
    VECTOR vec from_odd(vec shared, int i) const
    {
        const vec pairs = add16(shared, load(sums.odd + i));
        return WIDTH % 2 == 0 ? add16(pairs, even(i + PAIRS)) : PAIRS > 0 ? add16(pairs, both(i + PAIRS)) : pairs;
    }
    VECTOR vec from_next_even(vec shared, int i) const
    {
        const vec pairs = PAIRS > 0 ? add16(shared, both(i + PAIRS)) : shared;
        return WIDTH % 2 == 1 ? add16(pairs, even(i + 1 + PAIRS)) : pairs;
    }
    VECTOR vec operator()(int c) const
    {
        const int i = c / 2;
        vec shared = zero();
        for (int k = 1; k < PAIRS; k++)
            shared = add16(shared, both(i + k));
        const vec odd = mean(from_odd(shared, i));
        if (c % 2 == 0)
            return bits_or(mean(from_even(shared, i)), shift_left<8>(odd));
        return bits_or(odd, shift_left<8>(mean(from_next_even(shared, i))));
    }
};

// Sums reach further than the row: a short one is computed in whole vectors beside it.
template <int WIDTH>
VECTOR inline void mean_row(uint8_t *out, const column_sums &sums, int count, const small_mean &how, bool past_caches)
{
    const mean_pixels<WIDTH> pixels = { sums, all16(how.half), all16(how.factor), how.shift };
    if (count >= ROW_MIN) {
        put_pixels(out, count, past_caches, pixels);
        return;
    }
    uint8_t row[ROW_MIN];
    for (int c = 0; c < count; c += LANES)
        store(row + c, pixels(c));
    memcpy(out, row, size_t(count));
}

VECTOR void mean(uint8_t *out, const uint16_t *memory, int cols, int width, const small_mean &how, bool past_caches)
{
    const column_sums sums = parts_of(memory, cols);
    const int count = cols - width + 1;
    switch (width) {
    case 1: mean_row<1>(out, sums, count, how, past_caches); break;
    case 2: mean_row<2>(out, sums, count, how, past_caches); break;
    case 3: mean_row<3>(out, sums, count, how, past_caches); break;
    case 4: mean_row<4>(out, sums, count, how, past_caches); break;
    case 5: mean_row<5>(out, sums, count, how, past_caches); break;
    case 6: mean_row<6>(out, sums, count, how, past_caches); break;
    case 7: mean_row<7>(out, sums, count, how, past_caches); break;
    case 8: mean_row<8>(out, sums, count, how, past_caches); break;
    default: mean_row<9>(out, sums, count, how, past_caches); break;
    }
}

constexpr row_kernels vector_set = { edge, laplace, sobel, roberts, next_sums, mean };

} // namespace
