#include "filters/row_output.h"

#include <algorithm>
#include <cstring>

static void copy_backwards(uint8_t *dst, const uint8_t *row, size_t count)
{
    std::reverse_copy(row, row + count, dst);
}

#if defined(__SSE2__)
#include <immintrin.h>

static constexpr size_t LINE = OUTPUT_LINE, VECTOR = sizeof(__m128i);

// Bytes of a row before the first whole line; all of a short row.
static size_t before_lines(const uint8_t *dst, size_t count)
{
    const size_t head = (LINE - size_t(into_line(dst))) % LINE;
    return count < head + LINE ? count : head;
}

// What lies `ahead` of each line of the row is fetched meanwhile.
static inline void fetch(const uint8_t *line, int64_t ahead)
{
    __builtin_prefetch((const void *)(uintptr_t(line) + uintptr_t(ahead)));
}

// `count` is of whole lines, and dst begins one.
static void stream_lines(uint8_t *dst, const uint8_t *row, size_t count, int64_t ahead)
{
    for (size_t i = 0; i < count; i += VECTOR) {
        fetch(row + i, ahead);
        _mm_stream_si128((__m128i *)(dst + i), _mm_loadu_si128((const __m128i *)(row + i)));
    }
}

__attribute__((target("ssse3")))
static inline __m128i vector_backwards(const uint8_t *row)
{
    const __m128i backwards = _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    return _mm_shuffle_epi8(_mm_loadu_si128((const __m128i *)row), backwards);
}

__attribute__((target("ssse3")))
static void stream_lines_backwards(uint8_t *dst, const uint8_t *row, size_t count, int64_t ahead)
{
    for (size_t i = 0; i < count; i += VECTOR) {
        fetch(row + count - i - VECTOR, -ahead);
        _mm_stream_si128((__m128i *)(dst + i), vector_backwards(row + count - i - VECTOR));
    }
}

__attribute__((target("avx512f,avx512bw")))
static void stream_wide_lines(uint8_t *dst, const uint8_t *row, size_t count, int64_t ahead)
{
    for (size_t i = 0; i < count; i += LINE) {
        fetch(row + i, ahead);
        _mm512_stream_si512((__m512i *)(dst + i), _mm512_loadu_si512(row + i));
    }
}

__attribute__((target("avx512f,avx512bw")))
static void stream_wide_lines_backwards(uint8_t *dst, const uint8_t *row, size_t count, int64_t ahead)
{
    const __m512i backwards = _mm512_maskz_broadcast_i32x4(0xFFFF, _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
    for (size_t i = 0; i < count; i += LINE) {
        fetch(row + count - i - LINE, -ahead);
        const __m512i parts = _mm512_shuffle_epi8(_mm512_loadu_si512(row + count - i - LINE), backwards);
        _mm512_stream_si512((__m512i *)(dst + i), _mm512_maskz_shuffle_i64x2(0xFF, parts, parts, _MM_SHUFFLE(0, 1, 2, 3)));
    }
}

__attribute__((target("ssse3")))
static void copy_vectors_backwards(uint8_t *dst, const uint8_t *row, size_t count)
{
    size_t i = 0;
    for (; i + VECTOR <= count; i += VECTOR)
        _mm_storeu_si128((__m128i *)(dst + i), vector_backwards(row + count - i - VECTOR));
    copy_backwards(dst + i, row, count - i);
}

static bool has_wide_vectors()
{
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw");
}

static void stream_row(uint8_t *dst, const uint8_t *row, size_t count, int64_t ahead)
{
    const size_t head = before_lines(dst, count), lines = (count - head) / LINE * LINE;
    memcpy(dst, row, head);
    (has_wide_vectors() ? stream_wide_lines : stream_lines)(dst + head, row + head, lines, ahead);
    memcpy(dst + head + lines, row + head + lines, count - head - lines);
}

static void stream_row_backwards(uint8_t *dst, const uint8_t *row, size_t count, int64_t ahead)
{
    const size_t head = before_lines(dst, count), lines = (count - head) / LINE * LINE, rest = count - head - lines;
    copy_vectors_backwards(dst, row + rest + lines, head);
    (has_wide_vectors() ? stream_wide_lines_backwards : stream_lines_backwards)(dst + head, row + rest, lines, ahead);
    copy_vectors_backwards(dst + head + lines, row, rest);
}

void put_row(uint8_t *dst, const uint8_t *row, size_t count, int64_t plane_bytes, int64_t ahead)
{
    if (plane_bytes >= STREAM_FROM)
        stream_row(dst, row, count, ahead);
    else
        memcpy(dst, row, count);
}

void put_row_backwards(uint8_t *dst, const uint8_t *row, size_t count, int64_t plane_bytes, int64_t ahead)
{
    if (!__builtin_cpu_supports("ssse3"))
        copy_backwards(dst, row, count);
    else if (plane_bytes >= STREAM_FROM)
        stream_row_backwards(dst, row, count, ahead);
    else
        copy_vectors_backwards(dst, row, count);
}

void put_rows_done()
{
    _mm_sfence();
}
#else
void put_row(uint8_t *dst, const uint8_t *row, size_t count, int64_t, int64_t)
{
    memcpy(dst, row, count);
}

void put_row_backwards(uint8_t *dst, const uint8_t *row, size_t count, int64_t, int64_t)
{
    copy_backwards(dst, row, count);
}

void put_rows_done()
{
}
#endif
