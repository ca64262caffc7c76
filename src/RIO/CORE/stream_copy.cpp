#include "RIO/CORE/stream_copy.h"
#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>

namespace {

constexpr size_t LINE = 64;         // bytes that the processor writes at a time
constexpr int STRANDS = 4;
constexpr size_t LEAST_STRAND = 2048;

inline void stream_line(uint8_t *out, const uint8_t *in)
{
    const __m128i *from = (const __m128i *)in;
    __m128i *to = (__m128i *)out;
    const __m128i a = _mm_loadu_si128(from), b = _mm_loadu_si128(from + 1);
    const __m128i c = _mm_loadu_si128(from + 2), d = _mm_loadu_si128(from + 3);
    _mm_stream_si128(to, a);
    _mm_stream_si128(to + 1, b);
    _mm_stream_si128(to + 2, c);
    _mm_stream_si128(to + 3, d);
}

// Bytes up to the first whole line of `out`.
size_t head_bytes(const uint8_t *out, size_t bytes)
{
    const size_t head = (LINE - uintptr_t(out) % LINE) % LINE;
    return head < bytes ? head : bytes;
}

// One strand.
void copy_along(uint8_t *to, const uint8_t *from, size_t bytes)
{
    size_t at = head_bytes(to, bytes);
    std::memcpy(to, from, at);
    for (; at + LINE <= bytes; at += LINE)
        stream_line(to + at, from + at);
    std::memcpy(to + at, from + at, bytes - at);
}

} // namespace

// Four strands side by side: memory answers several rows of its cells at once faster than one after another.
void rio_stream_copy(void *out, const void *in, size_t bytes)
{
    uint8_t *to = (uint8_t *)out;
    const uint8_t *from = (const uint8_t *)in;
    const size_t head = head_bytes(to, bytes);
    const size_t strand = (bytes - head) / (STRANDS * LINE) * LINE;
    size_t done = 0;
    if (strand >= LEAST_STRAND) {
        std::memcpy(to, from, head);
        for (size_t at = head; at < head + strand; at += LINE)
            for (size_t s = 0; s < STRANDS; s++)
                stream_line(to + at + s * strand, from + at + s * strand);
        done = head + STRANDS * strand;
    }
    copy_along(to + done, from + done, bytes - done);
    _mm_sfence();       // other threads may look from here on
}

#else

void rio_stream_copy(void *out, const void *in, size_t bytes) { std::memcpy(out, in, bytes); }

#endif
