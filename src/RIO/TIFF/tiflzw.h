// tiflzw.h - LZW as TIFF files have it: codes with their first bit at the high end of each byte, 256 clears the table,
// 257 ends, strings from 258 on; the width grows from 9 to 12 bits one code early (TIFF 6.0, section 13). HRF uses it too.
#pragma once
#include <cstdint>

struct RFILE;

// The coder's table of 2 Mbytes, of which little is touched for short strips; made at the first use and kept from strip to
// strip. A zeroed state is a new one.
struct lzw_table;
struct lzw_state {
    lzw_table *table;
};
void lzw_free(lzw_state *state);

// Bytes that `bytes` bytes may take at most.
inline int64_t lzw_most_bytes(int64_t bytes) { return 2 * bytes + 16; }

// Codes `in_length` bytes into `out`, which has room for lzw_most_bytes of them. Answers the bytes written; 0 with
// RIO_NO_MEMORY set in `file`, which may be null.
int64_t lzw_encode(const uint8_t *in, uint8_t *out, int64_t in_length, lzw_state *state, RFILE *file);

// Decodes until `out_length` bytes are out, the end code comes, a code is met that has no string yet, or the input ends.
// Answers the bytes written. `word_size` is 8, the bits of a symbol; `out_length` is below 2^32.
int64_t lzw_decode(const uint8_t *in, uint8_t *out, int word_size, int64_t out_length, RFILE *file, int64_t in_length);
