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

AVX512 static void map_8_avx512(uint8_t *out, const uint8_t *in, int count, const uint8_t table[256])
{
    const byte_table slots = load_table(table);
    int i = 0;
    for (; i + GROUP <= count; i += GROUP)
        _mm512_storeu_si512(out + i, look_up(slots, load_64(in + i)));
    scan_kernels_plain.map_8(out + i, in + i, count - i, table);
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

// --- slanted walks -------------------------------------------------------------------------------------------

// A square of 8 by 8 pixels of the window shows source pixels that lie in a box of 16 by 16, unless the view is zoomed out. The box is
// loaded into four registers, which are the table of 256 bytes that the pixels are looked up in.
static constexpr int TILE = 8, BOX = 16;

// Where the pixels of a tile lie, counted from the box's first pixel, when the tile's first pixel lies at a whole position.
struct tile_pattern {
    __m512i place;                     // 16 * row + column, a byte a pixel
    __m512i u_fraction[2], v_fraction[2];  // what is left of u and v, 16 bits a pixel: carries into the place
    int64_t left, top;                 // from the tile's first pixel to the box's
    bool fits;
};

// Whole pixels from the first of a tile to its lowest one, and 1 more than to its highest one: a fraction may carry.
static void reach_of_tile(int64_t step, int64_t line_step, int64_t *low, int64_t *high)
{
    const int64_t across = step * (TILE - 1), down = line_step * (TILE - 1);
    *low = ((across < 0 ? across : 0) + (down < 0 ? down : 0)) >> 16;
    *high = (((across > 0 ? across : 0) + (down > 0 ? down : 0)) >> 16) + 1;
}

AVX512 static inline __m256i low_words(__m512i lanes)
{
    return _mm512_maskz_cvtepi32_epi16(0xFFFF, lanes);
}

// Pixels 16 * quarter to 16 * quarter + 15 of a tile, 16.16 from its first one.
AVX512 static inline __m512i tile_positions(int quarter, int64_t step, int64_t line_step)
{
    const __m512i column = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 3, 4, 5, 6, 7);
    const __m512i line = _mm512_add_epi32(_mm512_setr_epi32(0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1), _mm512_set1_epi32(2 * quarter));
    return _mm512_add_epi32(_mm512_mullo_epi32(column, _mm512_set1_epi32(int32_t(step))),
                            _mm512_mullo_epi32(line, _mm512_set1_epi32(int32_t(line_step))));
}

AVX512 static tile_pattern pattern_of(const slanted_walk &walk)
{
    tile_pattern pattern;
    int64_t right, bottom;
    reach_of_tile(walk.a, walk.b, &pattern.left, &right);
    reach_of_tile(walk.c, walk.d, &pattern.top, &bottom);
    pattern.fits = right - pattern.left < BOX && bottom - pattern.top < BOX;
    if (!pattern.fits)
        return pattern;
    alignas(64) uint8_t place[TILE * TILE];
    alignas(64) uint16_t fractions[2][TILE * TILE];
    for (int quarter = 0; quarter < 4; quarter++) {
        const __m512i u = tile_positions(quarter, walk.a, walk.b), v = tile_positions(quarter, walk.c, walk.d);
        const __m512i column = _mm512_sub_epi32(_mm512_maskz_srai_epi32(0xFFFF, u, 16), _mm512_set1_epi32(int32_t(pattern.left)));
        const __m512i row = _mm512_sub_epi32(_mm512_maskz_srai_epi32(0xFFFF, v, 16), _mm512_set1_epi32(int32_t(pattern.top)));
        _mm512_mask_cvtepi32_storeu_epi8(place + 16 * quarter, 0xFFFF, _mm512_add_epi32(_mm512_mullo_epi32(row, _mm512_set1_epi32(BOX)), column));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(fractions[0] + 16 * quarter), low_words(u));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(fractions[1] + 16 * quarter), low_words(v));
    }
    pattern.place = load_64(place);
    for (int half = 0; half < 2; half++) {
        pattern.u_fraction[half] = load_64(fractions[0] + 32 * half);
        pattern.v_fraction[half] = load_64(fractions[1] + 32 * half);
    }
    return pattern;
}

// Bit n: adding `fraction` carries for pixel n.
AVX512 static inline __mmask64 carries(const __m512i fractions[2], int64_t fraction)
{
    const __m512i added = _mm512_set1_epi16(int16_t(fraction));
    const __mmask32 low = _mm512_cmplt_epu16_mask(_mm512_add_epi16(fractions[0], added), added);
    const __mmask32 high = _mm512_cmplt_epu16_mask(_mm512_add_epi16(fractions[1], added), added);
    return __mmask64{high} << 32 | low;
}

AVX512 static inline __m128i load_row(const uint8_t *row)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(row));
}

AVX512 static inline __m512i load_four_rows(const uint8_t *row, int64_t stride)
{
    __m512i rows = _mm512_zextsi128_si512(load_row(row));
    rows = _mm512_maskz_inserti32x4(0xFFFF, rows, load_row(row + stride), 1);
    rows = _mm512_maskz_inserti32x4(0xFFFF, rows, load_row(row + 2 * stride), 2);
    return _mm512_maskz_inserti32x4(0xFFFF, rows, load_row(row + 3 * stride), 3);
}

AVX512 static inline void store_two_lines(uint8_t *out, int64_t out_stride, __m128i lines)
{
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out), lines);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out + out_stride), _mm_unpackhi_epi64(lines, lines));
}

// The tile whose first pixel lies at u, v. 0, with nothing written, when its box leaves the source.
AVX512 static inline int sample_tile(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const tile_pattern &pattern, int64_t u, int64_t v)
{
    const int64_t column = (u >> 16) + pattern.left, row = (v >> 16) + pattern.top, stride = walk.stride;
    if (column < 0 || row < 0 || (row + BOX - 1) * stride + column + BOX > walk.size)
        return 0;
    const uint8_t *const box = walk.pixels + row * stride + column;
    const byte_table source { { load_four_rows(box, stride), load_four_rows(box + 4 * stride, stride), load_four_rows(box + 8 * stride, stride),
                                load_four_rows(box + 12 * stride, stride) } };
    __m512i place = pattern.place;
    place = _mm512_mask_add_epi8(place, carries(pattern.u_fraction, u), place, _mm512_set1_epi8(1));
    place = _mm512_mask_add_epi8(place, carries(pattern.v_fraction, v), place, _mm512_set1_epi8(BOX));
    const __m512i pixels = look_up(source, place);
    store_two_lines(out, out_stride, _mm512_maskz_extracti32x4_epi32(0xF, pixels, 0));
    store_two_lines(out + 2 * out_stride, out_stride, _mm512_maskz_extracti32x4_epi32(0xF, pixels, 1));
    store_two_lines(out + 4 * out_stride, out_stride, _mm512_maskz_extracti32x4_epi32(0xF, pixels, 2));
    store_two_lines(out + 6 * out_stride, out_stride, _mm512_maskz_extracti32x4_epi32(0xF, pixels, 3));
    return 1;
}

// Sixteen pixels with one gather. As in the AVX2 set: unsigned positions for sources of up to 65535 pixels either way, the last row
// left to the plain form.
AVX512 static void gather_lines(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines)
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

static slanted_walk walk_below(const slanted_walk &walk, int lines)
{
    slanted_walk below = walk;
    below.u += lines * walk.b;
    below.v += lines * walk.d;
    return below;
}

// Whole tiles of the first eight lines, from left to right; what they leave is in `left` and `right`.
AVX512 static void sample_tiles(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const tile_pattern &pattern,
                                const line_part parts[TILE], line_part left[TILE], line_part right[TILE])
{
    int first = parts[0].first, last = parts[0].last;
    for (int k = 1; k < TILE; k++) {
        first = parts[k].first > first ? parts[k].first : first;
        last = parts[k].last < last ? parts[k].last : last;
    }
    int i = first;
    while (i + TILE - 1 <= last && sample_tile(out + i, out_stride, walk, pattern, walk.u + i * walk.a, walk.v + i * walk.c))
        i += TILE;
    for (int k = 0; k < TILE; k++) {
        left[k] = { parts[k].first, i == first ? parts[k].last : first - 1 };
        right[k] = { i == first ? parts[k].last + 1 : i, parts[k].last };
    }
}

static bool any_wanted(const line_part parts[TILE])
{
    int most = -1;
    for (int k = 0; k < TILE; k++)
        most = parts[k].last - parts[k].first > most ? parts[k].last - parts[k].first : most;
    return most >= 0;
}

AVX512 static void slant_avx512(uint8_t *out, int64_t out_stride, const slanted_walk &walk, const line_part *parts, int lines)
{
    const tile_pattern pattern = pattern_of(walk);
    int done = 0;
    for (; pattern.fits && done + TILE <= lines; done += TILE, out += TILE * out_stride) {
        line_part left[TILE], right[TILE];
        const slanted_walk below = walk_below(walk, done);
        sample_tiles(out, out_stride, below, pattern, parts + done, left, right);
        if (any_wanted(left))
            gather_lines(out, out_stride, below, left, TILE);
        if (any_wanted(right))
            gather_lines(out, out_stride, below, right, TILE);
    }
    if (done < lines)
        gather_lines(out, out_stride, walk_below(walk, done), parts + done, lines - done);
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
        set.map_8 = map_8_avx512;
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
