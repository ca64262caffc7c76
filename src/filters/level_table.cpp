#include "filters/level_table.h"

bool is_identity(const int16_t *map)
{
    for (int i = 0; i < 256; i++)
        if (map[i] != i)
            return false;
    return true;
}

bool level_table(const int16_t *map, uint8_t table[256])
{
    bool levels = true;
    for (int i = 0; i < 256; i++) {
        table[i] = uint8_t(map[i]);
        levels = levels && map[i] >= 0 && map[i] <= 255;
    }
    return levels;
}

void map_levels(const uint8_t *src, uint8_t *dst, const uint8_t table[256], size_t count)
{
    for (size_t i = 0; i < count; i++)
        dst[i] = table[src[i]];
}

int apply_lut(const uint8_t *src, uint8_t *dst, const int16_t *map, size_t count)
{
    if (src == dst && is_identity(map))
        return 0;
    uint8_t table[256];
    level_table(map, table);
    map_levels(src, dst, table, count);
    return 1;
}

__attribute__((target_clones("avx2", "default")))
void invert_pixels(const uint8_t *src, uint8_t *dst, size_t count)
{
    for (size_t i = 0; i < count; i++)
        dst[i] = uint8_t(~src[i]);
}
