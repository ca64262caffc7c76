// citbits.h - bits in and out, low bit first, and a line as its changing elements.
//
// Inside the codec a line is the ascending list of the columns at which its colour changes, beginning with the first
// black pixel: the element at an even index begins black, at an odd one white. Two elements of -1 stand before the list
// and four of the width behind it, so that walks along a reference line need no tests.
#pragma once
#include "RIO/CIT/cit.h"
#include "RIO/CIT/citcodes.h"
#include <bit>
#include <cstdint>
#include <cstring>

// The coders move whole words of the machine.
static_assert(std::endian::native == std::endian::little);

// ---- reading -------------------------------------------------------------------------------------------------------

// Behind the last byte the bits are 0.
struct cit_reader {
    const uint8_t *bytes;
    int64_t size;
    int64_t next;               // byte that comes behind the bits held
    uint64_t bits;              // the next bits, the first one lowest
    int held;
};

// After this at least 56 bits are held. Bits above those held may already be there; the same ones are then put again.
inline void cit_refill(cit_reader &in)
{
    if (in.next <= in.size - 8) [[likely]] {
        uint64_t word;
        std::memcpy(&word, in.bytes + in.next, 8);
        in.bits |= word << in.held;
        in.next += (63 - in.held) >> 3;
        in.held |= 56;
        return;
    }
    for (; in.held < 56; in.held += 8, in.next++)
        if (in.next < in.size)
            in.bits |= uint64_t{ in.bytes[in.next] } << in.held;
}

inline void cit_skip(cit_reader &in, int count)
{
    in.bits >>= count;
    in.held -= count;
}

// Place of the next bit, counted from the first byte's low one.
inline int64_t cit_place(const cit_reader &in)
{
    return in.next * 8 - in.held;
}

inline bool cit_past_end(const cit_reader &in)
{
    return cit_place(in) > in.size * 8;
}

cit_reader cit_reader_at(const uint8_t *bytes, int64_t size, int64_t byte, int bit);

// ---- elements ------------------------------------------------------------------------------------------------------

enum { CIT_ELEMENTS_BEFORE = 2, CIT_ELEMENTS_BEHIND = 4, CIT_WIDEST = 0x7FFFF000 };

// A buffer for lines of at most `most` elements, freed by cit_elements_free; null with no memory.
int32_t *cit_elements_new(int64_t most);
void cit_elements_free(int32_t *elements);

inline void cit_close_elements(int32_t *elements, int32_t count, int32_t width)
{
    for (int i = 0; i < CIT_ELEMENTS_BEHIND; i++)
        elements[count + i] = width;
}

// Adds a change at x, at or behind the last one: a run of no pixels between two of one colour makes them one.
inline int32_t cit_add_element(int32_t *elements, int32_t count, int32_t x)
{
    if (count > 0 && elements[count - 1] == x)
        return count - 1;
    elements[count] = x;
    return count + 1;
}

// The elements of a run list. Their count; -1 when the runs do not add up to the width.
int32_t cit_elements_of(const uint16_t *runs, int32_t width, int32_t *elements);

// The run list, with its two runs of 0 behind; answers the number of runs. `runs` has room for cit_run_room entries.
int32_t cit_runs_of(const int32_t *elements, int32_t count, int32_t width, uint16_t *runs);
int64_t cit_run_room(int64_t elements, int64_t width);

// ---- the decoder's lines -------------------------------------------------------------------------------------------

// Buffers of a decoder. The line in hand and the reference line change places.
struct cit_lines {
    int32_t width;
    int32_t *line, *reference;
    int32_t count, reference_count;
    uint16_t *runs;
};

// Lines of a source of `size` bytes: no code makes more elements than it has bits, so the buffers keep to that. The
// reference line is white. CIT_OK, CIT_NO_MEMORY, or CIT_BAD_DATA for a width that is none.
uint32_t cit_lines_new(cit_lines *lines, uint32_t width, int64_t size);
void cit_lines_free(cit_lines *lines);

inline void cit_next_line(cit_lines &lines)
{
    int32_t *line = lines.line;
    lines.line = lines.reference;
    lines.reference = line;
    lines.reference_count = lines.count;
}

// One line into lines.line and lines.count. CIT_END_MARKER where the next bits are EOFB.
enum cit_line_end { CIT_LINE_DONE, CIT_LINE_BAD, CIT_END_MARKER };
cit_line_end cit_read_line_1d(cit_reader &in, cit_lines &lines);
cit_line_end cit_read_line_2d(cit_reader &in, cit_lines &lines);

// A run of one colour, of one code or of several, into `run`, cut to `limit`. False at a code that there is none of; but some
// encoders send no code of 0 to 63 where make-up codes have come to the end of the line. The caller holds CIT_LOOK_BITS bits
// at least.
inline bool cit_read_run(cit_reader &in, cit_colour colour, int32_t limit, int32_t *run)
{
    int32_t sum = 0;
    for (;;) {
        const uint32_t entry = cit_looks.entries[colour][in.bits & (CIT_LOOK_SIZE - 1)];
        if (entry == 0) [[unlikely]] {
            *run = limit;
            return sum > 0 && sum == limit;
        }
        cit_skip(in, int(entry & 15));
        const int32_t part = int32_t(entry >> 4);
        sum += part;
        if (part < 64) [[likely]]
            break;
        if (sum > limit)
            sum = limit;
        cit_refill(in);
    }
    *run = sum < limit ? sum : limit;
    return true;
}

// ---- writing -------------------------------------------------------------------------------------------------------

// Bits go to `to` by whole bytes as they come, eight bytes at a stroke: the buffer is that much longer than its contents.
struct cit_writer {
    uint8_t *to;
    uint64_t bits;
    int held;
};

inline void cit_put(cit_writer &out, uint64_t bits, int count)
{
    out.bits |= bits << out.held;
    out.held += count;
}

inline void cit_flush(cit_writer &out)
{
    std::memcpy(out.to, &out.bits, 8);
    out.to += out.held >> 3;
    out.bits >>= out.held & ~7;
    out.held &= 7;
}

// At most 56 bits between two flushes; a run up to 2560 takes at most 25 of them.
inline void cit_put_run(cit_writer &out, cit_colour colour, int32_t run)
{
    while (run > CIT_LONGEST_MAKE_UP) [[unlikely]] {
        const cit_code code = cit_runs.make_up[colour][CIT_LONGEST_MAKE_UP / 64];
        cit_flush(out);
        cit_put(out, code.bits, code.length);
        cit_flush(out);
        run -= CIT_LONGEST_MAKE_UP;
    }
    if (run >= 64) {
        const cit_code code = cit_runs.make_up[colour][run >> 6];
        cit_put(out, code.bits, code.length);
    }
    const cit_code code = cit_runs.terminating[colour][run & 63];
    cit_put(out, code.bits, code.length);
}

void cit_write_line_1d(cit_writer &out, const int32_t *line, int32_t count, int32_t width);
void cit_write_line_2d(cit_writer &out, const int32_t *line, const int32_t *reference, int32_t width);

// What both encoders share (citbits.cpp): a start with the line buffers; the writer of a line, in the encoder's own memory,
// with the bits left over from the last one; and the end of the line, which moves its words to the output.
uint32_t cit_encoder_start(cit_encoder *state, int32_t width, int32_t height, uint16_t *buffer, int64_t size,
                           int32_t size_only, int32_t pad_words);
cit_writer cit_line_begin(cit_encoder *state);
uint32_t cit_line_write(cit_encoder *state, const cit_writer &out);
// Fills up to a multiple of 32 bits behind the end marker, and reports.
uint32_t cit_encoder_end(cit_encoder *state, cit_writer &out, int64_t *words);
