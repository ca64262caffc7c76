#include "RIO/CORE/split_pixels.h"

// Byte shuffles make these loops several times faster, and the baseline processor has none.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
#define RIO_SHUFFLING __attribute__((target_clones("avx2", "default"), optimize("O3")))
#else
#define RIO_SHUFFLING
#endif

RIO_SHUFFLING
void rio_split_3(const uint8_t *__restrict interleaved, int pixels, uint8_t *__restrict first,
                 uint8_t *__restrict second, uint8_t *__restrict third)
{
    for (int i = 0; i < pixels; i++) {
        first[i] = interleaved[3 * i];
        second[i] = interleaved[3 * i + 1];
        third[i] = interleaved[3 * i + 2];
    }
}

RIO_SHUFFLING
void rio_join_3(const uint8_t *__restrict first, const uint8_t *__restrict second, const uint8_t *__restrict third,
                int pixels, uint8_t *__restrict interleaved)
{
    for (int i = 0; i < pixels; i++) {
        interleaved[3 * i] = first[i];
        interleaved[3 * i + 1] = second[i];
        interleaved[3 * i + 2] = third[i];
    }
}
