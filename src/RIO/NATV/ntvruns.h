// ntvruns.h - the run-length codings of lines, on plain memory: lines to codes and back.
//
//   9       words: runs of 0 and 1 pixels in turn, 0 first; a line that ends in 1 is closed by a word 0
//   10      pairs of words: value, count
//   26      words: value in the low bits, count above it; a count of 0 is followed by a word with the count
//   25      quads of bytes: third, second, first sample, count
//   29      bytes: 128 and more repeats the next byte 256 - c times, less copies the next c bytes. 27 and 67 hold a line
//           of this for each plane
#pragma once
#include "RIO/CORE/byte_feed.h"

struct RFILE;

enum { NATV_PLANES = 4 };

// Where a line's samples go, or come from. A null plane is not wanted, or is all zero.
struct natv_row {
    uint8_t *plane[NATV_PLANES];
    int planes;
    int step;               // reading: bytes from one sample of a plane to the next; 1 unless interleaved
    int32_t width;
    int32_t line;           // number of the line in the image or tile
    int bits;               // of a sample: 26 packs them, 10 has words for more than 8
};

// ---- reading -------------------------------------------------------------------------------------------------------

// Coded bytes one after another: of a plain file up to its end, of a segment `left` bytes.
struct natv_input {
    RFILE *file;
    byte_feed *feed;
    int64_t left;
};

enum { NATV_OVERRUN = -1 };     // a count of words went past the line's end

// Decodes from pixel `at` on until the line is full, the input ends, or a code would go past the line's end, which is then
// not stored. Answers the pixel reached, or NATV_OVERRUN.
using natv_decoder = int64_t (*)(natv_input *in, const natv_row *row, int64_t at);

int64_t natv_decode_bitmap(natv_input *in, const natv_row *row, int64_t at);    // the row must be zero
int64_t natv_decode_pairs(natv_input *in, const natv_row *row, int64_t at);
int64_t natv_decode_packed(natv_input *in, const natv_row *row, int64_t at);
int64_t natv_decode_quads(natv_input *in, const natv_row *row, int64_t at);
int64_t natv_decode_planes(natv_input *in, const natv_row *row, int64_t at);    // 29, 27, 67

// Bytes to hand at the input's place: at least `wanted`, fewer only at the input's end.
int64_t natv_look(natv_input *in, int wanted);
inline const uint8_t *natv_at(const natv_input *in) { return in->feed->bytes + in->feed->at; }
inline void natv_take(natv_input *in, int64_t used)
{
    in->feed->at += int(used);
    in->left -= used;
}
// Copies the next bytes, or drops them when `out` is null. Answers how many there were.
int64_t natv_copy(natv_input *in, uint8_t *out, int64_t bytes);

// ---- writing -------------------------------------------------------------------------------------------------------

// Each answers the bytes written. natv_most_bytes are surely enough.
int64_t natv_most_bytes(uint32_t data_type, int planes, int64_t width);

int64_t natv_encode_pairs(const natv_row *row, uint8_t *out);
// Samples of more than 8 bits: the count of every run but the first is stored one short. This is meant.
int64_t natv_encode_packed(const natv_row *row, uint8_t *out);
int64_t natv_encode_quads(const natv_row *row, uint8_t *out);
int64_t natv_encode_planes(const natv_row *row, uint8_t *out);
// One plane of them.
int64_t natv_encode_bytes(const uint8_t *in, int64_t count, uint8_t *out);
