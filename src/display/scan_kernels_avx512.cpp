// The kernels for processors with AVX-512 and byte permutations: a table of 256 bytes is held in four registers, and 64 pixels
// are looked up at once. What gains nothing from that is taken from the AVX2 set.
#include "display/scan_kernels.h"

#if defined(__x86_64__)
#include <immintrin.h>

#define AVX512 __attribute__((target("avx512f,avx512bw,avx512vbmi")))

static constexpr int GROUP = 64;       // pixels

struct byte_table {
    __m512i quarter[4];
};

AVX512 static inline __m512i load_64(const void *bytes)
{
    return _mm512_loadu_si512(bytes);
}

AVX512 static inline byte_table load_table(const uint8_t *table)
{
    return { { load_64(table), load_64(table + 64), load_64(table + 128), load_64(table + 192) } };
}

AVX512 static inline __m512i look_up(const byte_table &table, __m512i index)
{
    const __m512i low = _mm512_permutex2var_epi8(table.quarter[0], index, table.quarter[1]);
    const __m512i high = _mm512_permutex2var_epi8(table.quarter[2], index, table.quarter[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
}

AVX512 static void map_grey_avx512(uint32_t *out, const uint8_t *in, int count, const grey_tables &tables)
{
    static constexpr __mmask64 THREE_OF_FOUR = 0x7777777777777777;
    const byte_table table = load_table(tables.level);
    // Byte i of the first 16 pixels takes the level of pixel i / 4; the next 16 pixels lie 16 further.
    __m512i place[4];
    place[0] = _mm512_mullo_epi32(_mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15), _mm512_set1_epi32(0x01010101));
    for (int k = 1; k < 4; k++)
        place[k] = _mm512_add_epi8(place[k - 1], _mm512_set1_epi8(16));
    int i = 0;
    for (; i + GROUP <= count; i += GROUP) {
        const __m512i levels = look_up(table, load_64(in + i));
        for (int k = 0; k < 4; k++)
            _mm512_storeu_si512(out + i + 16 * k, _mm512_maskz_permutexvar_epi8(THREE_OF_FOUR, place[k], levels));
    }
    scan_kernels_plain.map_grey(out + i, in + i, count - i, tables);
}

// Interleaving works within 128 bits; four pixels at a time in this order, it leaves whole registers of pixels in the right order.
AVX512 static inline __m512i load_for_interleaving(const uint8_t *bytes)
{
    const __m512i order = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    return _mm512_maskz_permutexvar_epi32(0xFFFF, order, load_64(bytes));
}

AVX512 static void map_rgb_avx512(uint32_t *out, const uint8_t *red, const uint8_t *green, const uint8_t *blue, int count,
                                  const colour_tables &tables)
{
    const byte_table reds = load_table(tables.level[0]), greens = load_table(tables.level[1]), blues = load_table(tables.level[2]);
    const __m512i zero = _mm512_setzero_si512();
    int i = 0;
    for (; i + GROUP <= count; i += GROUP) {
        const __m512i r = look_up(reds, load_for_interleaving(red + i));
        const __m512i g = look_up(greens, load_for_interleaving(green + i));
        const __m512i b = look_up(blues, load_for_interleaving(blue + i));
        const __m512i bg_low = _mm512_unpacklo_epi8(b, g), bg_high = _mm512_unpackhi_epi8(b, g);
        const __m512i r_low = _mm512_unpacklo_epi8(r, zero), r_high = _mm512_unpackhi_epi8(r, zero);
        _mm512_storeu_si512(out + i, _mm512_unpacklo_epi16(bg_low, r_low));
        _mm512_storeu_si512(out + i + 16, _mm512_unpackhi_epi16(bg_low, r_low));
        _mm512_storeu_si512(out + i + 32, _mm512_unpacklo_epi16(bg_high, r_high));
        _mm512_storeu_si512(out + i + 48, _mm512_unpackhi_epi16(bg_high, r_high));
    }
    scan_kernels_plain.map_rgb(out + i, red + i, green + i, blue + i, count - i, tables);
}

// As in the AVX2 set: unsigned positions for sources of up to 65535 pixels either way, the last row left to the plain form.
AVX512 static void slant_avx512(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines)
{
    static constexpr int LANES = 16;
    const int64_t rows = walk.stride > 0 ? walk.size / walk.stride : 0, v_end = (rows - 1) << 16;
    if (walk.size > INT32_MAX || walk.stride > 65535 || rows > 65535) {
        scan_kernels_plain.slant(out, out_stride, walk, parts, lines);
        return;
    }
    const __m512i lane = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m512i stride = _mm512_set1_epi32(int32_t(walk.stride));
    const __m512i a_lanes = _mm512_mullo_epi32(_mm512_set1_epi32(int32_t(walk.a)), lane);
    const __m512i c_lanes = _mm512_mullo_epi32(_mm512_set1_epi32(int32_t(walk.c)), lane);
    const __m512i a16 = _mm512_set1_epi32(int32_t(walk.a * LANES)), c16 = _mm512_set1_epi32(int32_t(walk.c * LANES));
    for (int k = 0; k < lines; k++, out += out_stride) {
        const int first = parts[k].first, last = parts[k].last;
        const int64_t u_first = walk.u + k * walk.b + first * walk.a, v_line = walk.v + k * walk.d, v_first = v_line + first * walk.c;
        if (v_first >= v_end || v_line + last * walk.c >= v_end) {
            slanted_walk line = walk;
            line.u = walk.u + k * walk.b, line.v = v_line;
            scan_kernels_plain.slant(out, 0, line, parts + k, 1);
            continue;
        }
        __m512i u = _mm512_add_epi32(_mm512_set1_epi32(int32_t(u_first)), a_lanes);
        __m512i v = _mm512_add_epi32(_mm512_set1_epi32(int32_t(v_first)), c_lanes);
        for (int i = first; i <= last; i += LANES) {
            const int left = last - i + 1;
            const __mmask16 wanted = left >= LANES ? __mmask16(0xFFFF) : __mmask16((1 << left) - 1);
            const __m512i row = _mm512_maskz_srli_epi32(0xFFFF, v, 16), column = _mm512_maskz_srli_epi32(0xFFFF, u, 16);
            const __m512i offset = _mm512_add_epi32(_mm512_mullo_epi32(row, stride), column);
            const __m512i four = _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), wanted, offset, walk.pixels, 1);
            _mm512_mask_cvtepi32_storeu_epi8(out + i, wanted, four);
            u = _mm512_add_epi32(u, a16), v = _mm512_add_epi32(v, c16);
        }
    }
}

const scan_kernel_set *scan_kernels_avx512()
{
    static const scan_kernel_set *const found = []() -> const scan_kernel_set * {
        static scan_kernel_set set;
        const scan_kernel_set *const avx2 = scan_kernels_avx2();
        if (!avx2 || !__builtin_cpu_supports("avx512f") || !__builtin_cpu_supports("avx512bw") || !__builtin_cpu_supports("avx512vbmi"))
            return nullptr;
        set = *avx2;
        set.slant = slant_avx512;
        set.map_grey = map_grey_avx512;
        set.map_rgb = map_rgb_avx512;
        return &set;
    }();
    return found;
}

#else

const scan_kernel_set *scan_kernels_avx512()
{
    return nullptr;
}

#endif
