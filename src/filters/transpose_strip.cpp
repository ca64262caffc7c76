#include "filters/transpose_strip.h"

#if defined(__x86_64__)
#include <immintrin.h>

#define VECTOR __attribute__((target("avx512f,avx512bw")))

namespace {

constexpr int FETCH_AHEAD = 512;       // bytes along each row

// Sixteen bytes of each of the rows 0, 16, 32 and 48.
VECTOR inline __m512i four_rows(const uint8_t *at, int64_t stride)
{
    const auto row = [&](int i) { return _mm_loadu_si128((const __m128i *)(at + i * stride)); };
    __m512i v = _mm512_castsi128_si512(row(0));
    v = _mm512_inserti32x4(v, row(16), 1);
    v = _mm512_inserti32x4(v, row(32), 2);
    return _mm512_inserti32x4(v, row(48), 3);
}

// Interleaving row i with row i + 8 moves the top bit of the row number to the bottom of the column number; four times makes them change
// places. The four parts of a register do so side by side.
VECTOR inline void turn_once(const __m512i from[STRIP_COLS], __m512i to[STRIP_COLS])
{
#pragma GCC unroll 8
    for (int i = 0; i < STRIP_COLS / 2; i++) {
        to[2 * i] = _mm512_unpacklo_epi8(from[i], from[i + STRIP_COLS / 2]);
        to[2 * i + 1] = _mm512_unpackhi_epi8(from[i], from[i + STRIP_COLS / 2]);
    }
}

VECTOR inline void turn_columns(const uint8_t *src, int64_t src_stride, uint8_t *dst, int64_t dst_stride)
{
    __m512i a[STRIP_COLS], b[STRIP_COLS];
#pragma GCC unroll 16
    for (int i = 0; i < STRIP_COLS; i++)
        a[i] = four_rows(src + i * src_stride, src_stride);
    turn_once(a, b);
    turn_once(b, a);
    turn_once(a, b);
    turn_once(b, a);
#pragma GCC unroll 16
    for (int i = 0; i < STRIP_COLS; i++)
        _mm512_stream_si512((__m512i *)(dst + i * dst_stride), a[i]);
}

// Each of the four steps over a line of memory fetches every fourth row.
inline void fetch_rows(const uint8_t *src, int64_t stride, int c)
{
    for (int i = c / STRIP_COLS % 4; i < STRIP_ROWS; i += 4)
        __builtin_prefetch((const void *)(uintptr_t(src + i * stride + c) + FETCH_AHEAD), 0, 2);
}

VECTOR void transpose_strip(const uint8_t *src, int64_t src_stride, uint8_t *dst, int64_t dst_stride, int cols)
{
    for (int c = 0; c < cols; c += STRIP_COLS) {
        fetch_rows(src, src_stride, c);
        turn_columns(src + c, src_stride, dst + c * dst_stride, dst_stride);
    }
}

} // namespace

strip_transposer transpose_strip_way()
{
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") ? transpose_strip : nullptr;
}

#else

strip_transposer transpose_strip_way()
{
    return nullptr;
}

#endif
