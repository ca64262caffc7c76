// bit_lines.h - bilevel lines between the bytes of files and the library's words.
#pragma once
#include <cstdint>

// In place: file bytes, leftmost pixel in the top bit, to words, leftmost pixel in the top bit; the bits behind the last
// pixel are cleared. `line` has room for whole words.
void rio_bits_from_bytes(uint8_t *line, int32_t width);

// The first `bytes` bytes of a line of words as files hold them, leftmost pixel in the top bit. `bytes` may be odd, and
// `out` then has room for one more.
void rio_bits_to_bytes(const uint16_t *line, uint8_t *out, int64_t bytes);

// The byte with its bits in the other order, for formats whose lowest bit is leftmost.
inline uint8_t rio_reversed(uint8_t byte)
{
    uint32_t b = byte;
    b = (b & 0xF0) >> 4 | (b & 0x0F) << 4;
    b = (b & 0xCC) >> 2 | (b & 0x33) << 2;
    b = (b & 0xAA) >> 1 | (b & 0x55) << 1;
    return uint8_t(b);
}
