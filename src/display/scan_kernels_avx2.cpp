// The kernels for processors with AVX2: eight look-ups with one gather.
#include "display/scan_kernels.h"

#if defined(__x86_64__)
#include <immintrin.h>

#define AVX2 __attribute__((target("avx2")))

// The low bytes of sixteen 32-bit lanes, in order.
AVX2 static inline __m128i low_bytes(__m256i first, __m256i second)
{
    const __m256i byte = _mm256_set1_epi32(255);
    const __m256i words = _mm256_permute4x64_epi64(_mm256_packus_epi32(_mm256_and_si256(first, byte), _mm256_and_si256(second, byte)), 0xD8);
    return _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
}

AVX2 static inline __m256i gather_bytes(const uint8_t *base, __m256i offsets)
{
    return _mm256_i32gather_epi32(reinterpret_cast<const int *>(base), offsets, 1);
}

AVX2 static inline __m256i load_columns(const int32_t *columns)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(columns));
}

AVX2 static void columns_avx2(uint8_t *out, const uint8_t *row, const int32_t *columns, int count, int64_t size)
{
    int i = 0;
    // A gather reads four bytes for each one that it wants.
    for (; i + 16 <= count && columns[i + 15] <= size - 4; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i),
                         low_bytes(gather_bytes(row, load_columns(columns + i)), gather_bytes(row, load_columns(columns + i + 8))));
    scan_kernels_plain.columns(out + i, row, columns + i, count - i, size);
}

AVX2 static inline __m256i slant_offsets(__m256i u, __m256i v, __m256i stride)
{
    return _mm256_add_epi32(_mm256_mullo_epi32(_mm256_srai_epi32(v, 16), stride), _mm256_srai_epi32(u, 16));
}

AVX2 static void slant_avx2(uint8_t *out, const slanted_walk &walk, int count)
{
    const int64_t u_end = walk.u + (count - 1) * walk.a, v_end = walk.v + (count - 1) * walk.c;
    const int64_t u_most = walk.u > u_end ? walk.u : u_end, v_most = walk.v > v_end ? walk.v : v_end;
    const int64_t farthest = (v_most >> 16) * walk.stride + (u_most >> 16);
    // Positions and offsets in 32 bits, and three bytes to spare behind the last.
    if (u_most > INT32_MAX || v_most > INT32_MAX || farthest > INT32_MAX || farthest > walk.size - 4) {
        scan_kernels_plain.slant(out, walk, count);
        return;
    }
    const __m256i lane = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7), stride = _mm256_set1_epi32(int32_t(walk.stride));
    const __m256i a = _mm256_set1_epi32(int32_t(walk.a)), c = _mm256_set1_epi32(int32_t(walk.c));
    const __m256i a8 = _mm256_slli_epi32(a, 3), c8 = _mm256_slli_epi32(c, 3);
    __m256i u = _mm256_add_epi32(_mm256_set1_epi32(int32_t(walk.u)), _mm256_mullo_epi32(a, lane));
    __m256i v = _mm256_add_epi32(_mm256_set1_epi32(int32_t(walk.v)), _mm256_mullo_epi32(c, lane));
    int i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m256i first = gather_bytes(walk.pixels, slant_offsets(u, v, stride));
        u = _mm256_add_epi32(u, a8), v = _mm256_add_epi32(v, c8);
        const __m256i second = gather_bytes(walk.pixels, slant_offsets(u, v, stride));
        u = _mm256_add_epi32(u, a8), v = _mm256_add_epi32(v, c8);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i), low_bytes(first, second));
    }
    slanted_walk rest = walk;
    rest.u += i * walk.a, rest.v += i * walk.c;
    scan_kernels_plain.slant(out + i, rest, count - i);
}

AVX2 static inline __m256i look_up(const uint32_t *table, const uint8_t *in)
{
    const __m256i index = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(in)));
    return _mm256_i32gather_epi32(reinterpret_cast<const int *>(table), index, 4);
}

AVX2 static void map_32_avx2(uint32_t *out, const uint8_t *in, int count, const uint32_t *table)
{
    int i = 0;
    for (; i + 8 <= count; i += 8)
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i), look_up(table, in + i));
    scan_kernels_plain.map_32(out + i, in + i, count - i, table);
}

AVX2 static void map_rgb_avx2(uint32_t *out, const uint8_t *red, const uint8_t *green, const uint8_t *blue, int count, const uint32_t (*tables)[256])
{
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i red_green = _mm256_or_si256(look_up(tables[0], red + i), look_up(tables[1], green + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i), _mm256_or_si256(red_green, look_up(tables[2], blue + i)));
    }
    scan_kernels_plain.map_rgb(out + i, red + i, green + i, blue + i, count - i, tables);
}

const scan_kernel_set *scan_kernels_avx2()
{
    static const scan_kernel_set set { columns_avx2, slant_avx2, map_32_avx2, map_rgb_avx2 };
    return __builtin_cpu_supports("avx2") ? &set : nullptr;
}

#else

const scan_kernel_set *scan_kernels_avx2()
{
    return nullptr;
}

#endif
