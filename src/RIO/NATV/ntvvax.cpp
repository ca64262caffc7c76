// ntvvax.cpp - D floating numbers: four little-endian words, the first with sign, 8 bits of exponent (excess 128) and the
// top 7 of 55 bits of fraction behind a hidden bit: (-1)^s * 0.1f * 2^(e - 128).
#include "RIO/NATV/ntv.h"
#include <cmath>

enum { FRACTION_BITS = 55, EXCESS = 128, LARGEST_EXPONENT = 255 };

double natv_from_vax(const uint8_t *p)
{
    const uint64_t bits = uint64_t(le_u16(p)) << 48 | uint64_t(le_u16(p + 2)) << 32 | uint64_t(le_u16(p + 4)) << 16
                          | le_u16(p + 6);
    if ((le_u16(p) & 0x7FFF) == 0)
        return 0;
    const int exponent = int(bits >> FRACTION_BITS & LARGEST_EXPONENT);
    const uint64_t hidden = uint64_t{ 1 } << FRACTION_BITS;
    const double fraction = double((bits & (hidden - 1)) | hidden);
    const double value = std::ldexp(fraction, exponent - EXCESS - FRACTION_BITS - 1);
    return bits >> 63 ? -value : value;
}

void natv_to_vax(uint8_t *p, double value)
{
    int exponent;
    const double fraction = std::frexp(std::fabs(value), &exponent);    // 0.5 up to 1
    const uint64_t hidden = uint64_t{ 1 } << FRACTION_BITS;
    uint64_t bits = 0;
    if (!(std::fabs(value) <= std::ldexp(1.0, EXCESS - 2)))             // also not a number
        bits = (uint64_t{ 1 } << 63) - 1;
    else if (fraction != 0 && exponent + EXCESS >= 1)
        bits = uint64_t(exponent + EXCESS) << FRACTION_BITS
               | (uint64_t(std::ldexp(fraction, FRACTION_BITS + 1)) & (hidden - 1));
    if (bits && std::signbit(value))
        bits |= uint64_t{ 1 } << 63;
    put_le_u16(p, uint16_t(bits >> 48));
    put_le_u16(p + 2, uint16_t(bits >> 32));
    put_le_u16(p + 4, uint16_t(bits >> 16));
    put_le_u16(p + 6, uint16_t(bits));
}
