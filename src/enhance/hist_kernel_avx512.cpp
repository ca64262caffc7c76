// The count for processors with AVX-512 and bit matrices. A block of 64 by 8 pixels is turned into eight registers of 512 bits, one for
// each bit of the levels. The pixels of one level are then the bits of an AND, and a population count counts them. The pixels of a
// block are neighbours, so most of the sixteen groups of sixteen levels are empty and passed over.
#include "enhance/hist_kernel.h"

#if defined(__x86_64__)
#include <immintrin.h>

#define AVX512 __attribute__((target("avx512f,avx512bw,avx512vbmi,avx512vpopcntdq,gfni")))

static constexpr int WIDTH = 64, HEIGHT = 8, LEVELS = 256, GROUPS = 16;   // of a block; GROUPS of GROUPS levels

// Whole masks, since the forms without one begin with a register that the compiler takes for uninitialised.
static constexpr __mmask64 ALL_BYTES = ~__mmask64{0};
static constexpr __mmask8 ALL_WORDS = 0xFF;

// Bit k of the 64 pixels of a row in 64-bit word k.
AVX512 static inline __m512i bits_of_row(const uint8_t *row)
{
    const __m512i diagonal = _mm512_set1_epi64(int64_t(0x8040201008040201));
    const __m512i eighths = _mm512_set_epi64(0x3F372F271F170F07, 0x3E362E261E160E06, 0x3D352D251D150D05, 0x3C342C241C140C04,
                                             0x3B332B231B130B03, 0x3A322A221A120A02, 0x3931292119110901, 0x3830282018100800);
    return _mm512_maskz_permutexvar_epi8(ALL_BYTES, eighths, _mm512_gf2p8affine_epi64_epi8(diagonal, _mm512_loadu_si512(row), 0));
}

AVX512 static inline __m512i even_quarters(__m512i a, __m512i b)
{
    return _mm512_maskz_shuffle_i64x2(ALL_WORDS, a, b, 0x88);
}

AVX512 static inline __m512i odd_quarters(__m512i a, __m512i b)
{
    return _mm512_maskz_shuffle_i64x2(ALL_WORDS, a, b, 0xDD);
}

// planes[k] has bit k of all pixels. Their order does not matter, as long as it is the same in all planes.
AVX512 static inline void bit_planes(const uint8_t *block, size_t stride, __m512i planes[8])
{
    __m512i pair[2][4];                // bits 0, 2, 4, 6 and 1, 3, 5, 7 of two rows each
    for (int i = 0; i < 4; i++) {
        const __m512i upper = bits_of_row(block + size_t(2 * i) * stride), lower = bits_of_row(block + size_t(2 * i + 1) * stride);
        pair[0][i] = _mm512_maskz_unpacklo_epi64(ALL_WORDS, upper, lower);
        pair[1][i] = _mm512_maskz_unpackhi_epi64(ALL_WORDS, upper, lower);
    }
    for (int i = 0; i < 2; i++) {
        const __m512i low_top = even_quarters(pair[i][0], pair[i][1]), low_bottom = even_quarters(pair[i][2], pair[i][3]);
        const __m512i high_top = odd_quarters(pair[i][0], pair[i][1]), high_bottom = odd_quarters(pair[i][2], pair[i][3]);
        planes[i] = even_quarters(low_top, low_bottom);
        planes[i + 4] = odd_quarters(low_top, low_bottom);
        planes[i + 2] = even_quarters(high_top, high_bottom);
        planes[i + 6] = odd_quarters(high_top, high_bottom);
    }
}

// out[v] marks the pixels whose two bits make v.
AVX512 static inline void two_bits(__m512i high, __m512i low, __m512i out[4])
{
    out[0] = ~high & ~low;
    out[1] = ~high & low;
    out[2] = high & ~low;
    out[3] = high & low;
}

// The same with four bits.
AVX512 static inline void four_bits(const __m512i planes[4], __m512i out[GROUPS])
{
    __m512i high[4], low[4];
    two_bits(planes[3], planes[2], high);
    two_bits(planes[1], planes[0], low);
    for (int v = 0; v < GROUPS; v++)
        out[v] = high[v >> 2] & low[v & 3];
}

AVX512 static inline void count_block(const uint8_t *block, size_t stride, __m512i sums[LEVELS])
{
    __m512i planes[8], low[GROUPS], high[GROUPS];
    bit_planes(block, stride, planes);
    four_bits(planes, low);
    four_bits(planes + 4, high);
    unsigned occupied = 0;
    for (int group = 0; group < GROUPS; group++)
        occupied |= unsigned(_mm512_test_epi64_mask(high[group], high[group]) != 0) << group;
    for (; occupied != 0; occupied &= occupied - 1) {
        const int group = __builtin_ctz(occupied);
        __m512i *const sum = sums + GROUPS * group;
        for (int v = 0; v < GROUPS; v++)
            sum[v] += _mm512_popcnt_epi64(high[group] & low[v]);
    }
}

AVX512 static void count_blocks(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height)
{
    __m512i sums[LEVELS];
    for (__m512i &sum : sums)
        sum = _mm512_setzero_si512();
    for (int y = 0; y < height; y += HEIGHT)
        for (int x = 0; x < width; x += WIDTH)
            count_block(pixels + size_t(y) * stride + size_t(x), stride, sums);
    for (int level = 0; level < LEVELS; level++)
        for (int lane = 0; lane < 8; lane++)
            counts[level] += int32_t(sums[level][lane]);
}

static bool processor_can()
{
    static const bool can = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi")
                            && __builtin_cpu_supports("avx512vpopcntdq") && __builtin_cpu_supports("gfni");
    return can;
}

int hist_count_avx512(int32_t *counts, const uint8_t *pixels, size_t stride, int width, int height)
{
    if (!processor_can())
        return 0;
    const int across = width & -WIDTH, down = height & -HEIGHT;
    if (across > 0 && down > 0)
        count_blocks(counts, pixels, stride, across, down);
    hist_count_plain(counts, pixels + across, stride, width - across, down, 1);
    hist_count_plain(counts, pixels + size_t(down) * stride, stride, width, height - down, 1);
    return 1;
}

#else

int hist_count_avx512(int32_t *, const uint8_t *, size_t, int, int)
{
    return 0;
}

#endif
