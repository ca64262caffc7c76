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

AVX2 static inline __m256i load_bytes(const uint8_t *bytes)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(bytes));
}

// Sixteen pixels lie in 16 * step bytes: whole loads, of which the first byte of each lane is kept.
AVX2 static inline __m128i every_second(const uint8_t *row)
{
    const __m256i lanes = _mm256_and_si256(load_bytes(row), _mm256_set1_epi16(255));
    return _mm_packus_epi16(_mm256_castsi256_si128(lanes), _mm256_extracti128_si256(lanes, 1));
}

AVX2 static inline __m128i every_fourth(const uint8_t *row)
{
    return low_bytes(load_bytes(row), load_bytes(row + 32));
}

AVX2 static inline __m256i every_eighth(const uint8_t *row)
{
    const __m256i even = _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6);
    const __m256i first = _mm256_permutevar8x32_epi32(load_bytes(row), even), second = _mm256_permutevar8x32_epi32(load_bytes(row + 32), even);
    return _mm256_blend_epi32(first, second, 0xF0);
}

AVX2 static void steps_avx2(uint8_t *out, const uint8_t *row, int step, int count, int64_t size)
{
    __m128i *const to = reinterpret_cast<__m128i *>(out);
    const int groups = int((size / step < count ? size / step : count) / 16);
    if (step == 2)
        for (int i = 0; i < groups; i++)
            _mm_storeu_si128(to + i, every_second(row + i * 32));
    else if (step == 4)
        for (int i = 0; i < groups; i++)
            _mm_storeu_si128(to + i, every_fourth(row + i * 64));
    else if (step == 8)
        for (int i = 0; i < groups; i++)
            _mm_storeu_si128(to + i, low_bytes(every_eighth(row + i * 128), every_eighth(row + i * 128 + 64)));
    const int done = step == 2 || step == 4 || step == 8 ? groups * 16 : 0;
    scan_kernels_plain.steps(out + done, row + int64_t{done} * step, step, count - done, size);
}

AVX2 static inline __m256i slant_offsets(__m256i u, __m256i v, __m256i stride)
{
    return _mm256_add_epi32(_mm256_mullo_epi32(_mm256_srli_epi32(v, 16), stride), _mm256_srli_epi32(u, 16));
}

// Positions of eight pixels from one on, unsigned: sources of up to 65535 pixels either way.
AVX2 static inline __m256i eight_positions(int64_t position, int64_t step)
{
    const __m256i lane = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    return _mm256_add_epi32(_mm256_set1_epi32(int32_t(position)), _mm256_mullo_epi32(_mm256_set1_epi32(int32_t(step)), lane));
}

AVX2 static void slant_avx2(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines)
{
    static constexpr int GROUP = 16;
    // A gather reads four bytes for each one that it wants, so what ends in the last row is left to the plain form.
    const int64_t rows = walk.stride > 0 ? walk.size / walk.stride : 0, v_end = (rows - 1) << 16;
    if (walk.size > INT32_MAX || walk.stride > 65535 || rows > 65535) {
        scan_kernels_plain.slant(out, out_stride, walk, parts, lines);
        return;
    }
    const __m256i stride = _mm256_set1_epi32(int32_t(walk.stride));
    const __m256i a8 = _mm256_set1_epi32(int32_t(walk.a * 8)), c8 = _mm256_set1_epi32(int32_t(walk.c * 8));
    for (int k = 0; k < lines; k++, out += out_stride) {
        const int64_t u_line = walk.u + k * walk.b, v_line = walk.v + k * walk.d;
        const int first = parts[k].first, count = parts[k].last - first + 1;
        int groups = count / GROUP;
        if (v_line + first * walk.c >= v_end || v_line + parts[k].last * walk.c >= v_end)
            groups = 0;
        __m256i u = eight_positions(u_line + first * walk.a, walk.a), v = eight_positions(v_line + first * walk.c, walk.c);
        for (int i = 0; i < groups; i++) {
            const __m256i left = gather_bytes(walk.pixels, slant_offsets(u, v, stride));
            u = _mm256_add_epi32(u, a8), v = _mm256_add_epi32(v, c8);
            const __m256i right = gather_bytes(walk.pixels, slant_offsets(u, v, stride));
            u = _mm256_add_epi32(u, a8), v = _mm256_add_epi32(v, c8);
            _mm_storeu_si128(reinterpret_cast<__m128i *>(out + first + i * GROUP), low_bytes(left, right));
        }
        if (groups * GROUP < count) {
            slanted_walk line = walk;
            line.u = u_line, line.v = v_line;
            const line_part rest { first + groups * GROUP, parts[k].last };
            scan_kernels_plain.slant(out, 0, line, &rest, 1);
        }
    }
}

AVX2 static inline __m256i look_up(const uint32_t *table, const uint8_t *in)
{
    const __m256i index = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(in)));
    return _mm256_i32gather_epi32(reinterpret_cast<const int *>(table), index, 4);
}

AVX2 static void map_grey_avx2(uint32_t *out, const uint8_t *in, int count, const grey_tables &tables)
{
    int i = 0;
    for (; i + 8 <= count; i += 8)
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i), look_up(tables.packed, in + i));
    scan_kernels_plain.map_grey(out + i, in + i, count - i, tables);
}

AVX2 static void map_rgb_avx2(uint32_t *out, const uint8_t *red, const uint8_t *green, const uint8_t *blue, int count, const colour_tables &tables)
{
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i red_green = _mm256_or_si256(look_up(tables.packed[0], red + i), look_up(tables.packed[1], green + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i), _mm256_or_si256(red_green, look_up(tables.packed[2], blue + i)));
    }
    scan_kernels_plain.map_rgb(out + i, red + i, green + i, blue + i, count - i, tables);
}

AVX2 static void repeat_32_avx2(uint32_t *out, const uint32_t *values, const int32_t *columns, int count)
{
    if (count <= 0)
        return;
    const __m256i first = _mm256_set1_epi32(columns[0]);
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i index = _mm256_sub_epi32(load_columns(columns + i), first);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i), _mm256_i32gather_epi32(reinterpret_cast<const int *>(values), index, 4));
    }
    for (; i < count; i++)
        out[i] = values[columns[i] - columns[0]];
}

const scan_kernel_set *scan_kernels_avx2()
{
    static const scan_kernel_set set { columns_avx2, steps_avx2, slant_avx2, scan_kernels_plain.map_8, map_grey_avx2, map_rgb_avx2, repeat_32_avx2 };
    return __builtin_cpu_supports("avx2") ? &set : nullptr;
}

#else

const scan_kernel_set *scan_kernels_avx2()
{
    return nullptr;
}

#endif
