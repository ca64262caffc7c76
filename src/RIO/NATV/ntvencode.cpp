// ntvencode.cpp - lines to run-length codes.
#include "RIO/CORE/rio_format.h"
#include "RIO/NATV/ntvruns.h"
#include <algorithm>
#include <bit>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

enum { BLOCK = 32, LONGEST_PAIR = 32767, LONGEST_WORD = 65535, LONGEST_QUAD = 255, LONGEST_LITERAL = 127, LONGEST_REPEAT = 128 };

int64_t natv_most_bytes(uint32_t data_type, int planes, int64_t width)
{
    switch (data_type) {
    case RIO_TYPE_BITMAP_RLE: return 2 * (width + 2 + 2 * (width / LONGEST_PAIR));
    // A literal of one byte between runs of two is the worst: four bytes for three.
    case RIO_TYPE_BYTE_RUN:
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_4_BYTE_RUN: return planes * (width + width / 2 + 2) + BLOCK;
    default: return 4 * width;
    }
}

// ---- where runs begin and end ----------------------------------------------------------------------------------------

// The end of the run of equal bytes that begins at `at`.
static int64_t run_end(const uint8_t *in, int64_t at, int64_t length)
{
    const uint8_t value = in[at++];
#if defined(__SSE2__)
    const __m128i values = _mm_set1_epi8(char(value));
    for (; at + 16 <= length; at += 16) {
        const __m128i bytes = _mm_loadu_si128((const __m128i *)(in + at));
        if (const unsigned others = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, values))) ^ 0xFFFF)
            return at + std::countr_zero(others);
    }
#endif
    while (at < length && in[at] == value)
        at++;
    return at;
}

static int64_t word_run_end(const uint16_t *in, int64_t at, int64_t length)
{
    const uint16_t value = in[at++];
    while (at < length && in[at] == value)
        at++;
    return at;
}

// The first place from `at` on where two equal bytes stand; `length` when there is none.
static int64_t find_run(const uint8_t *in, int64_t at, int64_t length)
{
#if defined(__SSE2__)
    for (; at + 17 <= length; at += 16) {
        const __m128i here = _mm_loadu_si128((const __m128i *)(in + at));
        const __m128i next = _mm_loadu_si128((const __m128i *)(in + at + 1));
        if (const unsigned same = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(here, next))))
            return at + std::countr_zero(same);
    }
#endif
    for (; at + 2 <= length; at++)
        if (in[at] == in[at + 1])
            return at;
    return length;
}

// ---- pairs and packed runs -------------------------------------------------------------------------------------------

// The run of a gray line that begins at pixel x: its value and its end.
static int64_t gray_run(const natv_row *row, int64_t x, uint32_t *value)
{
    if (row->bits > 8) {
        const uint16_t *in = (const uint16_t *)row->plane[0];
        *value = in[x];
        return word_run_end(in, x, row->width);
    }
    *value = row->plane[0][x];
    return run_end(row->plane[0], x, row->width);
}

int64_t natv_encode_pairs(const natv_row *row, uint8_t *out)
{
    uint8_t *p = out;
    for (int64_t x = 0; x < row->width;) {
        uint32_t value;
        const int64_t end = gray_run(row, x, &value);
        while (x < end) {
            const int64_t count = std::min<int64_t>(end - x, LONGEST_PAIR);
            put_le_u16(p, uint16_t(value));
            put_le_u16(p + 2, uint16_t(count));
            p += 4;
            x += count;
        }
    }
    return p - out;
}

int64_t natv_encode_packed(const natv_row *row, uint8_t *out)
{
    if (row->bits == 16)
        return natv_encode_pairs(row, out);
    const int64_t limit = (1 << (16 - row->bits)) - 1;
    const uint32_t mask = (1u << row->bits) - 1;
    uint8_t *p = out;
    for (int64_t x = 0; x < row->width;) {
        uint32_t value;
        const int64_t end = gray_run(row, x, &value);
        int64_t stored = end - x - (row->bits > 8 && x > 0 ? 1 : 0);
        do {
            const int64_t count = std::min<int64_t>(stored, LONGEST_WORD);
            put_le_u16(p, uint16_t((value & mask) | uint32_t(count <= limit ? count << row->bits : 0)));
            p += 2;
            if (count > limit) {
                put_le_u16(p, uint16_t(count));
                p += 2;
            }
            stored -= count;
        } while (stored > 0);
        x = end;
    }
    return p - out;
}

// ---- quads -----------------------------------------------------------------------------------------------------------

int64_t natv_encode_quads(const natv_row *row, uint8_t *out)
{
    static const uint8_t none[1] = { 0 };
    const uint8_t *plane[3];
    int64_t step[3];
    for (int s = 0; s < 3; s++) {
        plane[s] = row->plane[s] ? row->plane[s] : none;
        step[s] = row->plane[s] ? 1 : 0;
    }
    uint8_t *p = out;
    for (int64_t x = 0; x < row->width;) {
        const uint8_t first = plane[0][x * step[0]], second = plane[1][x * step[1]], third = plane[2][x * step[2]];
        int64_t end = x + 1;
        while (end < row->width && end - x < LONGEST_QUAD && plane[0][end * step[0]] == first
               && plane[1][end * step[1]] == second && plane[2][end * step[2]] == third)
            end++;
        p[0] = third;
        p[1] = second;
        p[2] = first;
        p[3] = uint8_t(end - x);
        p += 4;
        x = end;
    }
    return p - out;
}

// ---- byte runs -------------------------------------------------------------------------------------------------------

static uint8_t *put_repeats(uint8_t *out, uint8_t value, int64_t count)
{
    for (; count >= LONGEST_REPEAT; count -= LONGEST_REPEAT) {
        *out++ = uint8_t(256 - LONGEST_REPEAT);
        *out++ = value;
    }
    if (count) {
        *out++ = uint8_t(256 - count);
        *out++ = value;
    }
    return out;
}

// `there` bytes can be read from `in`; the output has room for a block more than is used.
static uint8_t *put_literals(uint8_t *out, const uint8_t *in, int64_t count, int64_t there)
{
    if (count > 0 && count <= BLOCK && there >= BLOCK) {
        *out = uint8_t(count);
        std::memcpy(out + 1, in, BLOCK);
        return out + 1 + count;
    }
    while (count > 0) {
        const int64_t part = std::min<int64_t>(count, LONGEST_LITERAL);
        *out++ = uint8_t(part);
        std::memcpy(out, in, size_t(part));
        out += part;
        in += part;
        count -= part;
    }
    return out;
}

int64_t natv_encode_bytes(const uint8_t *in, int64_t count, uint8_t *out)
{
    uint8_t *p = out;
    for (int64_t at = 0; at < count;) {
        const int64_t run = find_run(in, at, count);
        p = put_literals(p, in + at, run - at, count - at);
        if (run == count)
            break;
        at = run_end(in, run, count);
        p = put_repeats(p, in[run], at - run);
    }
    return p - out;
}

int64_t natv_encode_planes(const natv_row *row, uint8_t *out)
{
    uint8_t *p = out;
    for (int s = 0; s < row->planes; s++)
        p = row->plane[s] ? p + natv_encode_bytes(row->plane[s], row->width, p) : put_repeats(p, 0, row->width);
    return p - out;
}
