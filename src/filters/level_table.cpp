#include "filters/level_table.h"
#include "filters/vector_clones.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

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

static void map_plainly(const uint8_t *src, uint8_t *dst, const uint8_t table[256], size_t count)
{
    for (size_t i = 0; i < count; i++)
        dst[i] = table[src[i]];
}

#if defined(__x86_64__)
// The table in four registers: the low seven bits of a pixel choose in either half, the top bit chooses the half.
__attribute__((target("avx512f,avx512bw,avx512vbmi")))
static void map_by_permutation(const uint8_t *src, uint8_t *dst, const uint8_t table[256], size_t count)
{
    const __m512i t0 = _mm512_loadu_si512(table), t1 = _mm512_loadu_si512(table + 64);
    const __m512i t2 = _mm512_loadu_si512(table + 128), t3 = _mm512_loadu_si512(table + 192);
    size_t i = 0;
    for (; i + 64 <= count; i += 64) {
        const __m512i v = _mm512_loadu_si512(src + i);
        const __m512i dark = _mm512_permutex2var_epi8(t0, v, t1), bright = _mm512_permutex2var_epi8(t2, v, t3);
        _mm512_storeu_si512(dst + i, _mm512_mask_blend_epi8(_mm512_movepi8_mask(v), dark, bright));
    }
    map_plainly(src + i, dst + i, table, count - i);
}

// Sixteen pieces of the table, one a high half byte. Taking 16 from the pixel each time leaves it in 0 to 15 just at its own piece;
// adding 112 with saturation sets the top bit, which shuffles to zero, everywhere else.
__attribute__((target("avx2")))
static void map_by_shuffles(const uint8_t *src, uint8_t *dst, const uint8_t table[256], size_t count)
{
    __m256i piece[16];
    for (int k = 0; k < 16; k++)
        piece[k] = _mm256_broadcastsi128_si256(_mm_loadu_si128((const __m128i *)(table + 16 * k)));
    const __m256i step = _mm256_set1_epi8(16), away = _mm256_set1_epi8(112);
    size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        __m256i v = _mm256_loadu_si256((const __m256i *)(src + i)), sum = _mm256_setzero_si256();
        for (const __m256i &p : piece) {
            sum = _mm256_or_si256(sum, _mm256_shuffle_epi8(p, _mm256_adds_epu8(v, away)));
            v = _mm256_sub_epi8(v, step);
        }
        _mm256_storeu_si256((__m256i *)(dst + i), sum);
    }
    map_plainly(src + i, dst + i, table, count - i);
}
#endif

levels_mapper map_levels_way(int way)
{
#if defined(__x86_64__)
    if (way == 0 && __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512bw"))
        return map_by_permutation;
    if (way == 1 && __builtin_cpu_supports("avx2"))
        return map_by_shuffles;
#endif
    return way == MAP_WAYS - 1 ? map_plainly : nullptr;
}

void map_levels(const uint8_t *src, uint8_t *dst, const uint8_t table[256], size_t count)
{
    int way = 0;
    while (!map_levels_way(way))
        way++;
    map_levels_way(way)(src, dst, table, count);
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

// Several pages at a time, line after line: one stream of memory alone is slower.
constexpr size_t LINE = 64, PAGE = 4096, PAGES = 8;

VECTOR_CLONES
void invert_pixels(const uint8_t *src, uint8_t *dst, size_t count)
{
    size_t i = 0;
    for (; i + PAGES * PAGE <= count; i += PAGES * PAGE)
        for (size_t line = i; line < i + PAGE; line += LINE)
            for (size_t at = line; at < i + PAGES * PAGE; at += PAGE)
                for (size_t k = at; k < at + LINE; k++)
                    dst[k] = uint8_t(~src[k]);
    for (; i < count; i++)
        dst[i] = uint8_t(~src[i]);
}
