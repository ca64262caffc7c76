#include "RIO/CORE/bit_lines.h"
#include "RIO/CORE/rio_format.h"

void rio_bits_from_bytes(uint8_t *line, int32_t width)
{
    const int64_t bytes = (int64_t{width} + 7) / 8, words = rio_bitmap_words(width);
    if (bytes & 1)
        line[bytes] = 0;
    for (int64_t i = 0; i < words; i++)
        put_le_u16(line + 2 * i, be_u16(line + 2 * i));
    if (width % 16) {
        uint8_t *last = line + 2 * (words - 1);
        put_le_u16(last, uint16_t(le_u16(last) & (0xFFFF << (16 - width % 16))));
    }
}

void rio_bits_to_bytes(const uint16_t *line, uint8_t *out, int64_t bytes)
{
    for (int64_t i = 0; i < bytes; i += 2)
        put_be_u16(out + i, line[i / 2]);
}
