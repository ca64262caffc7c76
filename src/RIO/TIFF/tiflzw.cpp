// The decoder keeps no strings of its own: what a code stands for has been written before, so a table entry is a place in
// the output. Its first eight bytes stand in the entry as well, and most codes are one store. The coder finds a string by
// its prefix's code and its last byte in a small open hash table, which is cheap to clear.
#include "RIO/TIFF/tiflzw.h"
#include "RIO/CORE/rio_format.h"
#include <algorithm>
#include <cstring>

enum { CLEAR = 256, END = 257, FIRST = 258, LAST = 4094, CODES = 4096, LEAST_WIDTH = 9, MOST_WIDTH = 12 };

// ---- coding --------------------------------------------------------------------------------------------------------

// Behind the slots stands for each code the string met last that is one byte longer, as (byte + 1) << 12 | code: in flat
// parts it is the next one too, and found sooner than by the slots.
//
// A slot holds (prefix + 1) << 20 | byte << 12 | code; 0 is an empty one.
enum { SLOT_BITS = 14, SLOT_CODE_SHIFT = 2, SLOTS = 1 << SLOT_BITS, TABLE_BYTES = (SLOTS + 4096) * 4 };

struct bit_writer {
    uint8_t *out;
    uint64_t bits;      // not yet written, from the top down; below them zeros
    int count;          // of them, 0 to 7 between two codes
};

// Writes eight bytes each time, of which only the whole ones are kept.
static inline void put_code(bit_writer *w, uint64_t code, int width)
{
    w->count += width;
    w->bits |= code << (64 - w->count);
    const uint64_t word = __builtin_bswap64(w->bits);
    std::memcpy(w->out, &word, 8);
    const int whole = w->count & ~7;
    w->out += whole / 8;
    w->bits <<= whole;
    w->count -= whole;
}

// The codes are spread over the slots evenly, the bytes by a multiplication that does not wait for the code.
static inline uint32_t slot_of(uint32_t code, uint8_t byte)
{
    return (byte * 40503u & (SLOTS - 1)) ^ code << SLOT_CODE_SHIFT;
}

void lzw_free(lzw_state *state)
{
    mem_free(state->slots);
    state->slots = nullptr;
}

static void encode(const uint8_t *in, const uint8_t *end, uint32_t *slots, bit_writer *w)
{
    uint32_t *const latest = slots + SLOTS;
    uint32_t next = FIRST;
    int width = LEAST_WIDTH;
    uint32_t code = *in++;
    while (in < end) {
        const uint8_t byte = *in++;
        if (const uint32_t held = latest[code]; held >> 12 == byte + 1u) {
            code = held & (CODES - 1);
            continue;
        }
        const uint32_t key = (code + 1) << 20 | uint32_t{byte} << 12;
        uint32_t at = slot_of(code, byte), held = slots[at];
        while (held && (held ^ key) >= CODES) {
            at = (at + 1) & (SLOTS - 1);
            held = slots[at];
        }
        if (held) {
            latest[code] = (byte + 1u) << 12 | (held & (CODES - 1));
            code = held & (CODES - 1);
            continue;
        }
        put_code(w, code, width);
        slots[at] = key | next;
        latest[code] = (byte + 1u) << 12 | next;
        code = byte;
        if (next == LAST) {
            put_code(w, CLEAR, width);
            std::memset(slots, 0, TABLE_BYTES);
            next = FIRST;
            width = LEAST_WIDTH;
            continue;
        }
        width += next == (1u << width) - 1;
        next++;
    }
    put_code(w, code, width);
    put_code(w, END, width);
}

int64_t lzw_encode(const uint8_t *in, uint8_t *out, int64_t in_length, lzw_state *state, RFILE *file)
{
    if (!state->slots)
        state->slots = static_cast<uint32_t *>(mem_alloc(TABLE_BYTES));
    if (!state->slots)
        return rio_fail(file, RIO_NO_MEMORY, "lzw_encode");
    std::memset(state->slots, 0, TABLE_BYTES);
    bit_writer w { out, 0, 0 };
    put_code(&w, CLEAR, LEAST_WIDTH);
    if (in_length > 0)
        encode(in, in + in_length, state->slots, &w);
    else
        put_code(&w, END, LEAST_WIDTH);
    return w.out + (w.count > 0) - out;
}

// ---- decoding ------------------------------------------------------------------------------------------------------

struct lzw_string {
    uint64_t head;      // its first eight bytes, the first lowest; zeros behind a shorter one
    uint32_t start;     // of a longer one, in the output
    uint32_t length;
};

// How far a copy may write behind its end.
enum { SLACK = 32 };

struct bit_reader {
    const uint8_t *in;
    int64_t at, end;    // bits
};

static inline uint64_t load_be_u64(const uint8_t *p)
{
    uint64_t word;
    std::memcpy(&word, p, 8);
    return __builtin_bswap64(word);
}

// The code at the present bit; END behind the last whole one.
static unsigned careful_code(const bit_reader *r, int width)
{
    if (r->at + width > r->end)
        return END;
    uint32_t bits = 0;
    for (int i = 0; i < 3; i++) {
        const int64_t byte = r->at / 8 + i;
        bits = bits << 8 | (byte < r->end / 8 ? r->in[byte] : 0u);
    }
    return bits >> (24 - width - r->at % 8) & ((1u << width) - 1);
}

static inline void copy_string(uint8_t *to, const uint8_t *from, uint32_t length)
{
    for (uint32_t i = 0; i < length; i += SLACK) {
        uint8_t block[SLACK];
        std::memcpy(block, from + i, SLACK);
        std::memcpy(to + i, block, SLACK);
    }
}

// The string that is `one` and a byte more; `one` was written at `start`.
static inline lzw_string longer(const lzw_string &one, uint32_t start, uint8_t byte)
{
    const uint64_t head = one.length < 8 ? one.head | uint64_t{byte} << 8 * one.length : one.head;
    return { head, start, one.length + 1 };
}

// Writes a string at `at`: with slack behind it in one or a few stores, at the end of the output byte by byte.
static inline void put_string(uint8_t *out, uint32_t at, uint32_t room, const lzw_string &string)
{
    if (string.length + SLACK <= room) [[likely]] {
        if (string.length <= 8)
            std::memcpy(out + at, &string.head, 8);
        else
            copy_string(out + at, out + string.start, string.length);
        return;
    }
    const uint32_t bytes = std::min(string.length, room);
    if (string.length <= 8)
        std::memcpy(out + at, &string.head, bytes);
    else
        std::memmove(out + at, out + string.start, bytes);
}

int64_t lzw_decode(const uint8_t *in, uint8_t *out, int, int64_t out_length, RFILE *, int64_t in_length)
{
    lzw_string table[CODES];
    for (uint32_t i = 0; i < CLEAR; i++)
        table[i] = { i, 0, 1 };
    bit_reader r { in, 0, in_length * 8 };
    const int64_t fast_end = r.end - 64;
    const uint32_t end = uint32_t(out_length);
    uint32_t at = 0;
    unsigned next = FIRST;              // the code to be entered next
    int width = LEAST_WIDTH;
    unsigned widen = (1u << LEAST_WIDTH) - 2;   // the code that makes the width grow when it is entered
    lzw_string last {};                 // what the last code stood for; of length 0 after a clear
    uint32_t last_at = 0;

    while (at < end) {
        const unsigned code = r.at <= fast_end
                                  ? unsigned(load_be_u64(in + r.at / 8) << (r.at & 7) >> (64 - width))
                                  : careful_code(&r, width);
        r.at += width;
        if (code < next && (code < CLEAR || code > END)) [[likely]] {
            const lzw_string string = table[code];
            put_string(out, at, end - at, string);
            if (last.length && next <= LAST) [[likely]] {
                table[next] = longer(last, last_at, uint8_t(string.head));
                if (next++ == widen && width < MOST_WIDTH)
                    widen = (1u << ++width) - 2;
            }
            last = string;
        } else if (code == next && last.length && next <= LAST) {
            // The string being entered: the last one and its own first byte.
            const lzw_string string = table[next] = longer(last, last_at, uint8_t(last.head));
            if (end - at <= string.length + SLACK) {
                const uint32_t bytes = std::min(string.length, end - at);
                for (uint32_t i = 0; i < bytes; i++)
                    out[at + i] = out[last_at + i];
            } else {
                copy_string(out + at, out + last_at, last.length);
                out[at + last.length] = uint8_t(last.head);
            }
            if (next++ == widen && width < MOST_WIDTH)
                widen = (1u << ++width) - 2;
            last = string;
        } else if (code == CLEAR) {
            next = FIRST;
            width = LEAST_WIDTH;
            widen = (1u << LEAST_WIDTH) - 2;
            last.length = 0;
            continue;
        } else {
            break;
        }
        last_at = at;
        at += std::min(last.length, end - at);
    }
    return at;
}
