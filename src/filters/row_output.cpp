#include "filters/row_output.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>

static void stream_row(uint8_t *dst, const uint8_t *row, size_t count)
{
    constexpr size_t LINE = OUTPUT_LINE, VECTOR = sizeof(__m128i);
    const size_t head = (LINE - size_t(into_line(dst))) % LINE;
    if (count < head + LINE) {
        memcpy(dst, row, count);
        return;
    }
    memcpy(dst, row, head);
    size_t i = head;
    for (; i + LINE <= count; i += LINE)
        for (size_t part = 0; part < LINE; part += VECTOR)
            _mm_stream_si128((__m128i *)(dst + i + part), _mm_loadu_si128((const __m128i *)(row + i + part)));
    memcpy(dst + i, row + i, count - i);
}

void put_rows_done()
{
    _mm_sfence();
}
#else
static void stream_row(uint8_t *dst, const uint8_t *row, size_t count)
{
    memcpy(dst, row, count);
}

void put_rows_done()
{
}
#endif

void put_row(uint8_t *dst, const uint8_t *row, size_t count, int64_t plane_bytes)
{
    if (plane_bytes >= STREAM_FROM)
        stream_row(dst, row, count);
    else
        memcpy(dst, row, count);
}
