// The decoder keeps no strings of its own: what a code stands for has been written before, so a table entry is a place in
// the output. Its first eight bytes stand in the entry as well, and most codes are one store. The coder has a place for each
// pair of a code and a byte, and never clears it: an entry counts if the code that it names was entered from that pair.
#include "RIO/TIFF/tiflzw.h"
#include "RIO/CORE/rio_format.h"
#include "RIO/TIFF/tifpack.h"
#include <algorithm>
#include <cstring>

enum { CLEAR = 256, END = 257, FIRST = 258, LAST = 4094, CODES = 4096, LEAST_WIDTH = 9, MOST_WIDTH = 12 };

// ---- coding --------------------------------------------------------------------------------------------------------

enum {
    MOST_RUN = 128,         // bytes of the longest run that is passed at a stroke
    LONG_STRINGS = 6,       // bytes a string from which on runs are looked for
    LONG_ENTRY_SHIFT = 12,
};

struct lzw_table {
    struct string {
        uint32_t pair;                  // prefix << 8 | last byte; of single bytes none
        uint32_t longer;                // bit n: there may be one that is a byte longer, and that byte modulo 32 is n
    } strings[CODES];                   // by code
    uint16_t child[CODES << 8];         // by pair
    // For long strings: of each code the string met last that is a byte longer, as (byte + 1) << 12 | code; and the codes of
    // the runs of each byte, by length, with the longest known.
    uint32_t latest[CODES];
    uint16_t run_length[CODES];         // of a code that is a run, else 0
    uint16_t runs[256][MOST_RUN + 1];
    uint16_t longest[256];
    bool long_strings;                  // those of the last table were
};

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

void lzw_free(lzw_state *state)
{
    mem_free(state->table);
    state->table = nullptr;
}

static lzw_table *make_table()
{
    lzw_table *t = static_cast<lzw_table *>(mem_calloc(1, sizeof(lzw_table)));
    for (int i = 0; t && i < FIRST; i++) {
        t->strings[i].pair = UINT32_MAX;
        t->run_length[i] = 1;
    }
    return t;
}

// The codes of one table, up to a clear.
struct lzw_coder {
    bit_writer w;
    uint32_t code;      // of the string so far
    uint32_t next;      // the code to be entered next
    int width;
};

// The string of `code` and a byte; 0 when it has not been met. Most of those are known by one bit.
static inline uint32_t find(const lzw_table &t, const lzw_coder &c, uint8_t byte)
{
    if (!(t.strings[c.code].longer >> byte % 32 & 1))
        return 0;
    const uint32_t pair = c.code << 8 | byte, held = t.child[pair];
    return held < c.next && t.strings[held].pair == pair ? held : 0;
}

// Writes the string's code, enters the one that is a byte longer and begins the next with that byte. False at a full table.
static inline bool end_string(lzw_table &t, lzw_coder &c, uint8_t byte)
{
    put_code(&c.w, c.code, c.width);
    const uint32_t pair = c.code << 8 | byte;
    t.strings[c.code].longer |= uint32_t{1} << byte % 32;
    t.strings[c.next] = { pair, 0 };
    t.child[pair] = uint16_t(c.next);
    c.code = byte;
    c.width += c.next == (1u << c.width) - 1;
    return c.next++ != LAST;
}

// Both go on to the end of the bytes, or until the table is full. They answer the next byte.
static const uint8_t *code_short_strings(const uint8_t *in, const uint8_t *end, lzw_table &t, lzw_coder *coder)
{
    lzw_coder c = *coder;
    while (in < end) {
        const uint8_t byte = *in++;
        if (const uint32_t longer = find(t, c, byte))
            c.code = longer;
        else if (!end_string(t, c, byte))
            break;
    }
    *coder = c;
    return in;
}

static void enter_run(lzw_table &t, const lzw_coder &c, uint8_t first, uint8_t byte)
{
    const int length = t.run_length[c.code];
    const bool longer = length > 0 && length < MOST_RUN && byte == first;
    t.run_length[c.next] = uint16_t(longer ? length + 1 : 0);
    if (longer) {
        t.runs[first][length + 1] = uint16_t(c.next);
        t.longest[first] = uint16_t(length + 1);
    }
}

static const uint8_t *code_long_strings(const uint8_t *in, const uint8_t *end, lzw_table &t, lzw_coder *coder)
{
    lzw_coder c = *coder;
    std::memset(t.latest, 0, sizeof t.latest);
    std::fill_n(t.longest, 256, uint16_t{1});
    for (bool room = true; room && in < end;) {
        // A string begins. As far as it is a run that is known it need not be followed byte by byte.
        const uint8_t first = uint8_t(c.code);
        const int64_t known = std::min<int64_t>(t.longest[first] - 1, end - in);
        if (known > 0 && *in == first) {
            const int64_t run = tif_run_end(in, 0, known);
            c.code = t.runs[first][run + 1];
            in += run;
        }
        while (in < end) {
            const uint8_t byte = *in++;
            const uint32_t last = t.latest[c.code];
            if (last >> LONG_ENTRY_SHIFT == byte + 1u) {
                c.code = last & (CODES - 1);
                continue;
            }
            const uint32_t longer = find(t, c, byte);
            t.latest[c.code] = (byte + 1u) << LONG_ENTRY_SHIFT | (longer ? longer : c.next);
            if (longer) {
                c.code = longer;
                continue;
            }
            enter_run(t, c, first, byte);
            room = end_string(t, c, byte);
            break;
        }
    }
    *coder = c;
    return in;
}

static void encode(const uint8_t *in, const uint8_t *end, lzw_table &t, bit_writer *w)
{
    lzw_coder c { *w, *in++, FIRST, LEAST_WIDTH };
    for (;;) {
        const uint8_t *const begun = in;
        for (int i = 0; i < CLEAR; i++)
            t.strings[i].longer = 0;
        in = (t.long_strings ? code_long_strings : code_short_strings)(in, end, t, &c);
        t.long_strings = in - begun > LONG_STRINGS * int64_t{ c.next - FIRST };
        if (c.next <= LAST)
            break;
        put_code(&c.w, CLEAR, MOST_WIDTH);
        c.next = FIRST;
        c.width = LEAST_WIDTH;
    }
    put_code(&c.w, c.code, c.width);
    put_code(&c.w, END, c.width);
    *w = c.w;
}

int64_t lzw_encode(const uint8_t *in, uint8_t *out, int64_t in_length, lzw_state *state, RFILE *file)
{
    if (!state->table)
        state->table = make_table();
    if (!state->table)
        return rio_fail(file, RIO_NO_MEMORY, "lzw_encode");
    bit_writer w { out, 0, 0 };
    put_code(&w, CLEAR, LEAST_WIDTH);
    if (in_length > 0)
        encode(in, in + in_length, *state->table, &w);
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
enum { SLACK = 64 };

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
