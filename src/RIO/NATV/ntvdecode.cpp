// ntvdecode.cpp - run-length codes to lines.
#include "RIO/CORE/rio_format.h"
#include "RIO/NATV/ntvruns.h"
#include <algorithm>
#include <cstring>

// ---- input -----------------------------------------------------------------------------------------------------------

// Reads on behind what the feed holds, which moves to its front.
static void read_on(natv_input *in)
{
    byte_feed *feed = in->feed;
    const int kept = feed->used - feed->at;
    std::memmove(feed->bytes, feed->bytes + feed->at, size_t(kept));
    feed->at = 0;
    feed->used = kept;
    // The stream may stand elsewhere: others read through the same record.
    if (!rio_byte_seek(in->file, feed->next))
        return;
    const int64_t got = rio_read(in->file, feed->bytes + kept, BYTE_FEED_SIZE - kept);
    if (got > 0) {
        feed->next += got;
        feed->used += int(got);
    }
}

int64_t natv_look(natv_input *in, int wanted)
{
    if (in->feed->used - in->feed->at < wanted && in->left > in->feed->used - in->feed->at)
        read_on(in);
    return std::min<int64_t>(in->feed->used - in->feed->at, in->left);
}

int64_t natv_copy(natv_input *in, uint8_t *out, int64_t bytes)
{
    int64_t done = 0;
    while (done < bytes) {
        const int64_t part = std::min(natv_look(in, 1), bytes - done);
        if (part <= 0)
            break;
        if (out)
            std::memcpy(out + done, natv_at(in), size_t(part));
        natv_take(in, part);
        done += part;
    }
    return done;
}

// ---- bitmaps ---------------------------------------------------------------------------------------------------------

static void set_bits(uint16_t *line, int64_t x, int64_t count)
{
    uint16_t *word = line + x / 16;
    const int into = int(x % 16);
    const uint32_t from_x = 0xFFFFu >> into;
    if (count < 16 - into) {
        *word = uint16_t(*word | (from_x & ~(from_x >> count)));
        return;
    }
    *word = uint16_t(*word | from_x);
    count -= 16 - into;
    std::memset(++word, 0xFF, size_t(count / 16) * 2);
    if (count % 16)
        word[count / 16] = uint16_t(word[count / 16] | (0xFFFF0000u >> (count % 16) & 0xFFFF));
}

int64_t natv_decode_bitmap(natv_input *in, const natv_row *row, int64_t at)
{
    uint16_t *line = (uint16_t *)row->plane[0];
    int colour = 0;
    while (at < row->width) {
        const int64_t words = natv_look(in, 2) / 2;
        if (words == 0)
            return at;
        const uint8_t *p = natv_at(in);
        int64_t i = 0;
        while (i < words && at < row->width) {
            const int run = le_u16(p + 2 * i++);
            if (run > row->width - at) {
                natv_take(in, 2 * i);
                return NATV_OVERRUN;
            }
            if (colour && line)
                set_bits(line, at, run);
            at += run;
            colour ^= 1;
        }
        natv_take(in, 2 * i);
    }
    // A last run of 1 pixels is closed by a run of none.
    if (!colour && natv_look(in, 2) >= 2 && le_u16(natv_at(in)) == 0)
        natv_take(in, 2);
    return at;
}

// ---- pairs and packed runs -------------------------------------------------------------------------------------------

// Most runs are short: where there is room behind them they are stored a word at a time.
static inline void put_run(const natv_row *row, int64_t at, uint32_t value, int64_t count)
{
    if (!row->plane[0])
        return;
    if (row->bits > 8) {
        std::fill_n((uint16_t *)row->plane[0] + at, count, uint16_t(value));
        return;
    }
    uint8_t *out = row->plane[0] + at;
    if (count > 16 || row->width - at < 16) {
        std::memset(out, int(value & 0xFF), size_t(count));
        return;
    }
    const uint64_t word = (value & 0xFF) * 0x0101010101010101u;
    std::memcpy(out, &word, 8);
    std::memcpy(out + 8, &word, 8);
}

int64_t natv_decode_pairs(natv_input *in, const natv_row *row, int64_t at)
{
    while (at < row->width) {
        const int64_t pairs = natv_look(in, 4) / 4;
        if (pairs == 0)
            return at;
        const uint8_t *p = natv_at(in);
        int64_t i = 0;
        while (i < pairs && at < row->width) {
            const uint8_t *pair = p + 4 * i++;
            const int count = le_u16(pair + 2);
            if (count > row->width - at) {
                natv_take(in, 4 * i);
                return NATV_OVERRUN;
            }
            put_run(row, at, le_u16(pair), count);
            at += count;
        }
        natv_take(in, 4 * i);
    }
    return at;
}

int64_t natv_decode_packed(natv_input *in, const natv_row *row, int64_t at)
{
    if (row->bits == 16)
        return natv_decode_pairs(in, row, at);
    const uint32_t mask = (1u << row->bits) - 1;
    while (at < row->width) {
        const int64_t there = natv_look(in, 4);
        if (there < 2)
            return at;
        const uint32_t word = le_u16(natv_at(in));
        int64_t count = word >> row->bits, used = 2;
        if (count == 0 && there >= 4) {
            count = le_u16(natv_at(in) + 2);
            used = 4;
        }
        natv_take(in, used);
        if (count > row->width - at)
            return NATV_OVERRUN;
        put_run(row, at, word & mask, count);
        at += count;
    }
    return at;
}

// ---- quads -----------------------------------------------------------------------------------------------------------

int64_t natv_decode_quads(natv_input *in, const natv_row *row, int64_t at)
{
    while (at < row->width) {
        const int64_t quads = natv_look(in, 4) / 4;
        if (quads == 0)
            return at;
        const uint8_t *p = natv_at(in);
        int64_t i = 0;
        while (i < quads && at < row->width) {
            const uint8_t *quad = p + 4 * i++;
            int64_t count = quad[3];
            if (count > row->width - at) {
                if (row->step == 1) {
                    natv_take(in, 4 * i);
                    return at;
                }
                count = row->width - at;    // interleaved lines are cut
            }
            for (int s = 0; s < 3; s++) {
                if (!row->plane[s])
                    continue;
                uint8_t *out = row->plane[s] + at * row->step;
                for (int64_t x = 0; x < count; x++)
                    out[x * row->step] = quad[2 - s];
            }
            at += count;
        }
        natv_take(in, 4 * i);
    }
    return at;
}

// ---- byte runs -------------------------------------------------------------------------------------------------------

enum { BLOCK = 16, LONGEST_CODE = 128 };

// Most codes are short: away from both ends they are moved a block at a time, a little past their own length.
static inline void put_blocks(uint8_t *out, const uint8_t *in, int64_t count)
{
    std::memcpy(out, in, BLOCK);
    for (int64_t i = BLOCK; i < count; i += BLOCK)
        std::memcpy(out + i, in + i, BLOCK);
}

static inline void fill_blocks(uint8_t *out, uint8_t value, int64_t count)
{
    uint8_t block[BLOCK];
    std::memset(block, value, BLOCK);
    std::memcpy(out, block, BLOCK);
    for (int64_t i = BLOCK; i < count; i += BLOCK)
        std::memcpy(out + i, block, BLOCK);
}

static inline void put_code_exactly(uint8_t *out, const uint8_t *p, bool literal, int64_t count)
{
    if (literal)
        std::memcpy(out, p + 1, size_t(count));
    else
        std::memset(out, p[1], size_t(count));
}

// Codes of one plane from the `there` bytes at `p`, while a whole code is surely there or `last` says that no more will
// come. *at moves on; the answer is the bytes used. A code that goes past the width is left where it is.
static int64_t expand(const uint8_t *const start, int64_t there, bool last, uint8_t *out, int64_t *at, int64_t width)
{
    const uint8_t *p = start, *const end = start + there;
    int64_t x = *at;
    if (out && there > 2 * LONGEST_CODE + BLOCK) {
        const uint8_t *const safe = end - 2 * LONGEST_CODE - BLOCK;
        while (width - x >= 2 * LONGEST_CODE + BLOCK && p < safe) {
            // A run nearly always follows a literal, which makes the next code's place known early.
            if (*p < 128) {
                const int64_t count = *p;
                put_blocks(out + x, p + 1, count);
                p += 1 + count;
                x += count;
                if (*p < 128)
                    continue;
            }
            const int64_t count = 256 - *p;
            fill_blocks(out + x, p[1], count);
            p += 2;
            x += count;
        }
    }
    while (x < width && (last ? p < end : end - p >= LONGEST_CODE)) {
        const int64_t c = *p;
        const bool literal = c < 128;
        const int64_t count = literal ? c : 256 - c;
        if (last && end - p < (literal ? 1 + c : 2)) {
            p = end;
            break;
        }
        if (count > width - x)
            break;
        if (out)
            put_code_exactly(out + x, p, literal, count);
        p += literal ? 1 + count : 2;
        x += count;
    }
    *at = x;
    return p - start;
}

static int64_t expand_plane(natv_input *in, uint8_t *out, int64_t at, int64_t width)
{
    while (at < width) {
        const int64_t there = natv_look(in, LONGEST_CODE);
        if (there == 0)
            return at;
        const int64_t used = expand(natv_at(in), there, there < LONGEST_CODE, out, &at, width);
        if (used == 0)
            return at;
        natv_take(in, used);
    }
    return at;
}

// The same with samples `step` bytes apart, a code at a time.
static int64_t expand_spread(natv_input *in, uint8_t *out, int64_t at, int64_t width, int step)
{
    while (at < width) {
        const int64_t there = natv_look(in, LONGEST_CODE);
        if (there == 0)
            return at;
        const uint8_t *p = natv_at(in);
        const bool literal = p[0] < 128;
        const int64_t count = literal ? p[0] : 256 - p[0], bytes = literal ? 1 + count : 2;
        if (bytes > there) {
            natv_take(in, there);
            return at;
        }
        if (count > width - at)
            return at;
        for (int64_t x = 0; x < count; x++)
            out[(at + x) * step] = p[literal ? 1 + x : 1];
        natv_take(in, bytes);
        at += count;
    }
    return at;
}

int64_t natv_decode_planes(natv_input *in, const natv_row *row, int64_t at)
{
    int64_t reached = at;
    for (int s = 0; s < row->planes; s++) {
        reached = row->plane[s] && row->step > 1 ? expand_spread(in, row->plane[s], at, row->width, row->step)
                                                 : expand_plane(in, row->plane[s], at, row->width);
        if (reached != row->width)
            break;
    }
    return reached;
}
