// byte_order.h - numbers in files: little-endian (le_) and big-endian (be_) fields at any address.
#pragma once
#include <bit>
#include <cstdint>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "lines of words are moved as they stand in memory");

inline uint16_t le_u16(const uint8_t *p) { return uint16_t(p[0] | p[1] << 8); }
inline uint32_t le_u32(const uint8_t *p) { return uint32_t(le_u16(p)) | uint32_t(le_u16(p + 2)) << 16; }
inline uint64_t le_u64(const uint8_t *p) { return uint64_t(le_u32(p)) | uint64_t(le_u32(p + 4)) << 32; }
inline int16_t le_i16(const uint8_t *p) { return int16_t(le_u16(p)); }
inline int32_t le_i32(const uint8_t *p) { return int32_t(le_u32(p)); }
inline double le_f64(const uint8_t *p) { return std::bit_cast<double>(le_u64(p)); }

inline uint16_t be_u16(const uint8_t *p) { return uint16_t(p[0] << 8 | p[1]); }
inline uint32_t be_u32(const uint8_t *p) { return uint32_t(be_u16(p)) << 16 | uint32_t(be_u16(p + 2)); }

inline void put_le_u16(uint8_t *p, uint16_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
}

inline void put_le_u32(uint8_t *p, uint32_t v)
{
    put_le_u16(p, uint16_t(v));
    put_le_u16(p + 2, uint16_t(v >> 16));
}

inline void put_le_f64(uint8_t *p, double v)
{
    const uint64_t bits = std::bit_cast<uint64_t>(v);
    put_le_u32(p, uint32_t(bits));
    put_le_u32(p + 4, uint32_t(bits >> 32));
}

inline void put_be_u16(uint8_t *p, uint16_t v)
{
    p[0] = uint8_t(v >> 8);
    p[1] = uint8_t(v);
}

inline void put_be_u32(uint8_t *p, uint32_t v)
{
    put_be_u16(p, uint16_t(v >> 16));
    put_be_u16(p + 2, uint16_t(v));
}
