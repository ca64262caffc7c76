// level_table.h - look-up tables over whole planes, and the complement.
#pragma once
#include <cstddef>
#include <cstdint>

bool is_identity(const int16_t *map);  // all 256 entries equal their index
bool level_table(const int16_t *map, uint8_t table[256]);  // the low byte of each entry; true when all entries lie in 0 to 255

// dst[i] = table[src[i]]; dst is src, or does not overlap it.
void map_levels(const uint8_t *src, uint8_t *dst, const uint8_t table[256], size_t count);

// The ways in which that is done, best first: null where the processor cannot, the last one plain. All give the same.
typedef void (*levels_mapper)(const uint8_t *src, uint8_t *dst, const uint8_t table[256], size_t count);
constexpr int MAP_WAYS = 3;
levels_mapper map_levels_way(int way);

// Pixels through a band's look-up table, the low byte of each entry. 0, nothing done, in place through an identity table; else 1.
int apply_lut(const uint8_t *src, uint8_t *dst, const int16_t *map, size_t count);

void invert_pixels(const uint8_t *src, uint8_t *dst, size_t count);  // 255 - src
