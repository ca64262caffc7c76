// tests_native.h - small native files, byte by byte.
#pragma once
#include "RIO/CORE/byte_order.h"
#include <vector>

// A header of `width` x `height` of a type, and nothing behind it.
inline std::vector<uint8_t> native_header(uint32_t width, uint32_t height, int type = 2)
{
    std::vector<uint8_t> h(1024, 0);
    put_le_u16(&h[0], 0x0908);
    put_le_u16(&h[2], 510);
    put_le_u16(&h[4], uint16_t(type));
    put_le_u32(&h[184], width);
    put_le_u32(&h[188], height);
    h[194] = 4;
    h[511] = 3;
    return h;
}

// A byte image whose pixels count up from 0.
inline std::vector<uint8_t> native_bytes(uint32_t width, uint32_t height)
{
    std::vector<uint8_t> file = native_header(width, height);
    for (uint32_t i = 0; i < width * height; i++)
        file.push_back(uint8_t(i));
    return file;
}
