#include "RIO/TIFF/tifpack.h"
#include "RIO/CORE/byte_order.h"
#include <algorithm>
#include <bit>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// ---- PackBits ------------------------------------------------------------------------------------------------------

// Most runs are short: where there is room behind them they are moved a block at a time.
enum { BLOCK = 32 };

static inline void move_literals(uint8_t *out, const uint8_t *in, int64_t count, int64_t room)
{
    if (room < count + BLOCK) {
        std::memcpy(out, in, size_t(count));
        return;
    }
    for (int64_t i = 0; i < count; i += BLOCK)
        std::memcpy(out + i, in + i, BLOCK);
}

static inline void fill_run(uint8_t *out, uint8_t value, int64_t count, int64_t room)
{
    if (room < count + BLOCK) {
        std::memset(out, value, size_t(count));
        return;
    }
    uint8_t block[BLOCK];
    std::memset(block, value, BLOCK);
    for (int64_t i = 0; i < count; i += BLOCK)
        std::memcpy(out + i, block, BLOCK);
}

int64_t packbits_decode(const uint8_t *in, uint8_t *out, int64_t out_length, int64_t in_length, int64_t *written)
{
    int64_t used = 0, done = 0;
    while (done < out_length && used < in_length) {
        const int n = int8_t(in[used++]);
        if (n >= 0) {
            const int64_t given = std::min<int64_t>(n + 1, in_length - used);
            const int64_t taken = std::min(given, out_length - done);
            move_literals(out + done, in + used, taken, std::min(out_length - done, in_length - used));
            used += given;
            done += taken;
        } else if (used < in_length) {
            const int64_t taken = n == -128 ? 0 : std::min<int64_t>(1 - n, out_length - done);
            fill_run(out + done, in[used++], taken, out_length - done);
            done += taken;
        }
    }
    *written = done;
    return used;
}

// The first place from `at` on where three equal bytes stand; `length` when there is none.
static int64_t find_run(const uint8_t *in, int64_t at, int64_t length)
{
#if defined(__SSE2__)
    for (; at + 18 <= length; at += 16) {
        const auto load = [&](int64_t i) { return _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i)); };
        const __m128i middle = load(at + 1);
        const __m128i same = _mm_and_si128(_mm_cmpeq_epi8(load(at), middle), _mm_cmpeq_epi8(middle, load(at + 2)));
        if (const unsigned mask = unsigned(_mm_movemask_epi8(same)))
            return at + std::countr_zero(mask);
    }
#endif
    for (; at + 3 <= length; at++)
        if (in[at] == in[at + 1] && in[at] == in[at + 2])
            return at;
    return length;
}

int64_t tif_run_end(const uint8_t *in, int64_t at, int64_t length)
{
    const uint8_t value = in[at];
#if defined(__SSE2__)
    const __m128i values = _mm_set1_epi8(char(value));
    const auto others = [&](int64_t i) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i));
        return uint64_t(unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, values))) ^ 0xFFFF);
    };
    // Most runs end within 64 bytes: one look finds where, without a guess at each sixteen.
    for (; at + 64 <= length; at += 64)
        if (const uint64_t mask = others(at) | others(at + 16) << 16 | others(at + 32) << 32 | others(at + 48) << 48)
            return at + std::countr_zero(mask);
    for (; at + 16 <= length; at += 16)
        if (const uint64_t mask = others(at))
            return at + std::countr_zero(mask);
#endif
    while (at < length && in[at] == value)
        at++;
    return at;
}

// `left` is the bytes from `in` to the end of the line. The output has room for at least as many, whatever came before.
static uint8_t *put_literals(uint8_t *out, const uint8_t *in, int64_t count, int64_t left)
{
    while (count > 0) {
        const int64_t part = std::min<int64_t>(count, 128);
        *out++ = uint8_t(part - 1);
        if (part <= BLOCK && left > BLOCK)
            std::memcpy(out, in, BLOCK);
        else
            std::memcpy(out, in, size_t(part));
        out += part;
        in += part;
        count -= part;
        left -= part;
    }
    return out;
}

int64_t packbits_encode(const uint8_t *in, uint8_t *out, int64_t in_length)
{
    const uint8_t *const start = out;
    for (int64_t literals = 0; literals < in_length;) {
        const int64_t run = find_run(in, literals, in_length);
        out = put_literals(out, in + literals, run - literals, in_length - literals);
        if (run == in_length)
            break;
        int64_t left = tif_run_end(in, run, in_length) - run;
        literals = run;
        while (left >= 3) {
            const int64_t part = std::min<int64_t>(left, 128);
            *out++ = uint8_t(1 - part);
            *out++ = in[run];
            left -= part;
            literals += part;
        }
    }
    return out - start;
}

// ---- differences ---------------------------------------------------------------------------------------------------

static void sum_singles(uint8_t *line, int64_t bytes)
{
    int64_t i = 0;
    uint8_t last = 0;
#if defined(__SSE2__)
    __m128i carry = _mm_setzero_si128();
    for (; i + 16 <= bytes; i += 16) {
        __m128i *at = reinterpret_cast<__m128i *>(line + i);
        __m128i x = _mm_loadu_si128(at);
        x = _mm_add_epi8(x, _mm_slli_si128(x, 1));
        x = _mm_add_epi8(x, _mm_slli_si128(x, 2));
        x = _mm_add_epi8(x, _mm_slli_si128(x, 4));
        x = _mm_add_epi8(x, _mm_slli_si128(x, 8));
        x = _mm_add_epi8(x, carry);
        _mm_storeu_si128(at, x);
        // The last byte, sixteen times.
        const __m128i top = _mm_unpackhi_epi8(x, x);
        carry = _mm_shuffle_epi32(_mm_shufflehi_epi16(top, 0xFF), 0xFF);
    }
    last = uint8_t(_mm_cvtsi128_si32(carry));
#endif
    for (; i < bytes; i++)
        line[i] = last = uint8_t(line[i] + last);
}

template <int STEP> static void sum_pixels(uint8_t *line, int64_t bytes)
{
    uint8_t sum[STEP] = {};
    int64_t i = 0;
    for (; i + STEP <= bytes; i += STEP)
        for (int s = 0; s < STEP; s++)
            line[i + s] = sum[s] = uint8_t(sum[s] + line[i + s]);
    for (int s = 0; i < bytes; i++, s++)
        line[i] = uint8_t(sum[s] + line[i]);
}

void tif_sum_bytes(uint8_t *line, int64_t bytes, int step)
{
    switch (step) {
    case 1: sum_singles(line, bytes); break;
    case 2: sum_pixels<2>(line, bytes); break;
    case 3: sum_pixels<3>(line, bytes); break;
    default: sum_pixels<4>(line, bytes); break;
    }
}

void tif_difference_bytes(uint8_t *line, int64_t bytes, int step)
{
    for (int64_t i = bytes - 1; i >= step; i--)
        line[i] = uint8_t(line[i] - line[i - step]);
}

void tif_sum_words(uint8_t *line, int64_t count, int step, bool big_endian)
{
    for (int64_t i = step; i < count; i++) {
        uint8_t *here = line + 2 * i;
        const uint8_t *before = here - 2 * step;
        if (big_endian)
            put_be_u16(here, uint16_t(be_u16(here) + be_u16(before)));
        else
            put_le_u16(here, uint16_t(le_u16(here) + le_u16(before)));
    }
}
