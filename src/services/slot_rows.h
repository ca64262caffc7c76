// slot_rows.h - rows of slots to the colours that the colour table has for them.
#pragma once
#include <cstdint>

// out[x] = colours[slots[x]]; colours has 256 entries 0x00RRGGBB, whose top bytes are 0.
void look_up_slot_row(const uint8_t *slots, uint32_t *out, int count, const uint32_t *colours);

// --- what it chooses from; both give the same --------------------------------------------------------------------

void look_up_slot_row_plain(const uint8_t *slots, uint32_t *out, int count, const uint32_t *colours);

// 64 slots at a time through tables in registers. 0, with nothing done, when the processor has no AVX-512 with byte permutations.
int look_up_slot_row_avx512(const uint8_t *slots, uint32_t *out, int count, const uint32_t *colours);
