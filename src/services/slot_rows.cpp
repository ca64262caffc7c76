#include "services/slot_rows.h"

void look_up_slot_row_plain(const uint8_t *slots, uint32_t *out, int count, const uint32_t *colours)
{
    for (int x = 0; x < count; x++)
        out[x] = colours[slots[x]];
}

void look_up_slot_row(const uint8_t *slots, uint32_t *out, int count, const uint32_t *colours)
{
    static constexpr int TABLES_PAY_FROM = 256;  // slots
    if (count < TABLES_PAY_FROM || !look_up_slot_row_avx512(slots, out, count, colours))
        look_up_slot_row_plain(slots, out, count, colours);
}

#if defined(__x86_64__)
#include <immintrin.h>

#define AVX512 __attribute__((target("avx512f,avx512bw,avx512vbmi")))

static constexpr int GROUP = 64;       // slots
// Whole masks, since the forms without one begin with a register that the compiler takes for uninitialised.
static constexpr __mmask16 ALL_LANES = 0xFFFF;

struct byte_table {
    __m512i quarter[4];
};

// The bytes at bit `shift` of all colours.
AVX512 static inline byte_table table_of_bytes(const uint32_t *colours, unsigned shift)
{
    alignas(64) uint8_t bytes[4 * GROUP];
    for (int i = 0; i < 4 * GROUP; i += 16) {
        const __m512i lanes = _mm512_maskz_srli_epi32(ALL_LANES, _mm512_loadu_si512(colours + i), shift);
        _mm512_mask_cvtepi32_storeu_epi8(bytes + i, ALL_LANES, lanes);
    }
    byte_table table;
    for (int i = 0; i < 4; i++)
        table.quarter[i] = _mm512_load_si512(bytes + GROUP * i);
    return table;
}

AVX512 static inline __m512i look_up(const byte_table &table, __m512i index)
{
    const __m512i low = _mm512_permutex2var_epi8(table.quarter[0], index, table.quarter[1]);
    const __m512i high = _mm512_permutex2var_epi8(table.quarter[2], index, table.quarter[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
}

AVX512 static void look_up_groups(const uint8_t *slots, uint32_t *out, int groups, const uint32_t *colours)
{
    // Interleaving works within 128 bits; four slots at a time in this order, it leaves whole registers of pixels in the right order.
    const __m512i order = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const byte_table blues = table_of_bytes(colours, 0), greens = table_of_bytes(colours, 8), reds = table_of_bytes(colours, 16);
    const __m512i zero = _mm512_setzero_si512();
    for (int i = 0; i < groups; i++, out += GROUP) {
        const __m512i index = _mm512_maskz_permutexvar_epi32(ALL_LANES, order, _mm512_loadu_si512(slots + GROUP * i));
        const __m512i b = look_up(blues, index), g = look_up(greens, index), r = look_up(reds, index);
        const __m512i bg_low = _mm512_unpacklo_epi8(b, g), bg_high = _mm512_unpackhi_epi8(b, g);
        const __m512i r_low = _mm512_unpacklo_epi8(r, zero), r_high = _mm512_unpackhi_epi8(r, zero);
        _mm512_storeu_si512(out, _mm512_unpacklo_epi16(bg_low, r_low));
        _mm512_storeu_si512(out + 16, _mm512_unpackhi_epi16(bg_low, r_low));
        _mm512_storeu_si512(out + 32, _mm512_unpacklo_epi16(bg_high, r_high));
        _mm512_storeu_si512(out + 48, _mm512_unpackhi_epi16(bg_high, r_high));
    }
}

int look_up_slot_row_avx512(const uint8_t *slots, uint32_t *out, int count, const uint32_t *colours)
{
    static const bool can = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi");
    if (!can)
        return 0;
    const int groups = count / GROUP, done = groups * GROUP;
    look_up_groups(slots, out, groups, colours);
    look_up_slot_row_plain(slots + done, out + done, count - done, colours);
    return 1;
}

#else

int look_up_slot_row_avx512(const uint8_t *, uint32_t *, int, const uint32_t *)
{
    return 0;
}

#endif
