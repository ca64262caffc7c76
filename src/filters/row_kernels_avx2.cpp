// The set for processors with AVX2: 32 pixels at a time.
#include "filters/row_kernels.h"

#if defined(__x86_64__)
#include <cstring>
#include <immintrin.h>

#define VECTOR __attribute__((target("avx2")))

namespace {

typedef __m256i vec;

VECTOR inline vec load(const void *at)              { return _mm256_loadu_si256((const __m256i *)at); }
VECTOR inline void store(void *at, vec v)           { _mm256_storeu_si256((__m256i *)at, v); }
VECTOR inline void store_past_caches(void *at, vec v) { _mm256_stream_si256((__m256i *)at, v); }
VECTOR inline vec zero()                            { return _mm256_setzero_si256(); }
VECTOR inline vec all16(int value)                  { return _mm256_set1_epi16(int16_t(value)); }
VECTOR inline vec add16(vec a, vec b)               { return _mm256_add_epi16(a, b); }
VECTOR inline vec sub16(vec a, vec b)               { return _mm256_sub_epi16(a, b); }
VECTOR inline vec min16(vec a, vec b)               { return _mm256_min_epi16(a, b); }
VECTOR inline vec max16(vec a, vec b)               { return _mm256_max_epi16(a, b); }
VECTOR inline vec size16(vec a)                     { return _mm256_abs_epi16(a); }
VECTOR inline vec high_product(vec a, vec b)        { return _mm256_mulhi_epu16(a, b); }
VECTOR inline vec add_products(vec a, vec b)        { return _mm256_maddubs_epi16(a, b); }
VECTOR inline vec interleave_low(vec a, vec b)      { return _mm256_unpacklo_epi8(a, b); }
VECTOR inline vec interleave_high(vec a, vec b)     { return _mm256_unpackhi_epi8(a, b); }
VECTOR inline vec pack(vec a, vec b)                { return _mm256_packus_epi16(a, b); }
VECTOR inline vec take8(vec a, vec b)               { return _mm256_subs_epu8(a, b); }
VECTOR inline vec max8(vec a, vec b)                { return _mm256_max_epu8(a, b); }
VECTOR inline vec bits_or(vec a, vec b)             { return _mm256_or_si256(a, b); }
VECTOR inline vec bits_and(vec a, vec b)            { return _mm256_and_si256(a, b); }
VECTOR inline vec shift_right_by(vec a, int bits)   { return _mm256_srl_epi16(a, _mm_cvtsi32_si128(bits)); }
template <int BITS> VECTOR inline vec shift_right(vec a) { return _mm256_srli_epi16(a, BITS); }
template <int BITS> VECTOR inline vec shift_left(vec a)  { return _mm256_slli_epi16(a, BITS); }

// The first and the last bytes of a register, the latter up to `end`.
VECTOR inline void store_first(uint8_t *at, vec v, int count)
{
    uint8_t bytes[sizeof(vec)];
    store(bytes, v);
    memcpy(at, bytes, size_t(count < int(sizeof(vec)) ? count : int(sizeof(vec))));
}

VECTOR inline void store_last(uint8_t *end, vec v, int count)
{
    uint8_t bytes[sizeof(vec)];
    store(bytes, v);
    memcpy(end - count, bytes + sizeof(vec) - size_t(count), size_t(count));
}

} // namespace

#include "filters/row_kernels_vector.h"

const row_kernels *row_kernels_avx2()
{
    return __builtin_cpu_supports("avx2") ? &vector_set : nullptr;
}

#else

const row_kernels *row_kernels_avx2()
{
    return nullptr;
}

#endif
