// The set for processors with AVX-512 on bytes: 64 pixels at a time.
#include "filters/row_kernels.h"

#if defined(__x86_64__)
#include <immintrin.h>

#define VECTOR __attribute__((target("avx512f,avx512bw")))

namespace {

typedef __m512i vec;

VECTOR inline vec load(const void *at)              { return _mm512_loadu_si512(at); }
VECTOR inline void store(void *at, vec v)           { _mm512_storeu_si512(at, v); }
VECTOR inline void store_past_caches(void *at, vec v) { _mm512_stream_si512((__m512i *)at, v); }
VECTOR inline vec zero()                            { return _mm512_setzero_si512(); }
VECTOR inline vec all16(int value)                  { return _mm512_set1_epi16(int16_t(value)); }
VECTOR inline vec add16(vec a, vec b)               { return _mm512_add_epi16(a, b); }
VECTOR inline vec sub16(vec a, vec b)               { return _mm512_sub_epi16(a, b); }
VECTOR inline vec min16(vec a, vec b)               { return _mm512_min_epi16(a, b); }
VECTOR inline vec max16(vec a, vec b)               { return _mm512_max_epi16(a, b); }
VECTOR inline vec size16(vec a)                     { return _mm512_abs_epi16(a); }
VECTOR inline vec high_product(vec a, vec b)        { return _mm512_mulhi_epu16(a, b); }
VECTOR inline vec add_products(vec a, vec b)        { return _mm512_maddubs_epi16(a, b); }
VECTOR inline vec interleave_low(vec a, vec b)      { return _mm512_unpacklo_epi8(a, b); }
VECTOR inline vec interleave_high(vec a, vec b)     { return _mm512_unpackhi_epi8(a, b); }
VECTOR inline vec pack(vec a, vec b)                { return _mm512_packus_epi16(a, b); }
VECTOR inline vec take8(vec a, vec b)               { return _mm512_subs_epu8(a, b); }
VECTOR inline vec max8(vec a, vec b)                { return _mm512_max_epu8(a, b); }
VECTOR inline vec bits_or(vec a, vec b)             { return _mm512_or_si512(a, b); }
VECTOR inline vec bits_and(vec a, vec b)            { return _mm512_and_si512(a, b); }
VECTOR inline vec shift_right_by(vec a, int bits)   { return _mm512_srl_epi16(a, _mm_cvtsi32_si128(bits)); }
template <int BITS> VECTOR inline vec shift_right(vec a) { return _mm512_srli_epi16(a, BITS); }
template <int BITS> VECTOR inline vec shift_left(vec a)  { return _mm512_slli_epi16(a, BITS); }

// The first and the last bytes of a register, less than 64 of them, the latter up to `end`.
VECTOR inline void store_first(uint8_t *at, vec v, int count)
{
    _mm512_mask_storeu_epi8(at, (__mmask64{1} << count) - 1, v);
}

VECTOR inline void store_last(uint8_t *end, vec v, int count)
{
    _mm512_mask_storeu_epi8(end - sizeof(vec), ~__mmask64{0} << (int(sizeof(vec)) - count), v);
}

} // namespace

#include "filters/row_kernels_vector.h"

const row_kernels *row_kernels_avx512()
{
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") ? &vector_set : nullptr;
}

#else

const row_kernels *row_kernels_avx512()
{
    return nullptr;
}

#endif
