// citlines.cpp - run lists and pixels, and the sink of decoded lines.
#include "RIO/CIT/cit.h"
#include "mem.h"
#include <algorithm>
#include <bit>
#include <cstring>

// Pixels are handled 64 at a time, the first one highest; the words of a line come first one first in memory. A change of
// colour at a column turns round all pixels from there on: within its block by a mask, in the blocks behind by a carry.

static constexpr uint64_t ALL = ~uint64_t{ 0 };

static uint64_t word_order(uint64_t v)
{
    v = v << 32 | v >> 32;
    return (v & 0x0000FFFF0000FFFF) << 16 | (v & 0xFFFF0000FFFF0000) >> 16;
}

static uint64_t load_block(const uint16_t *words, int64_t block, size_t bytes)
{
    uint64_t v = 0;
    std::memcpy(&v, words + 4 * block, bytes);
    return v;
}

static void store_block(uint16_t *words, int64_t block, uint64_t v, size_t bytes)
{
    std::memcpy(words + 4 * block, &v, bytes);
}

void cit_expand(int32_t width, const uint16_t *runs, uint16_t *out)
{
    if (width <= 0)
        return;
    const int64_t words = (int64_t{ width } + 15) / 16, last_block = (words - 1) / 4, last_begin = 64 * last_block;
    std::memset(out, 0, size_t(2 * words));
    // The masks of the whole blocks go to the line itself, those of the last block stay here.
    uint64_t masks = 0, colour = 0;
    int64_t block = -1, x = 0, i = 0;
    // Two runs of 0 end the list.
    const auto next = [&](int64_t end) {
        x += runs[i];
        return x < end && (runs[i] != 0 || i == 0 || runs[i - 1] != 0);
    };
    for (; next(last_begin); i++) {
        masks &= -uint64_t(x >> 6 == block);
        masks ^= ALL >> (x & 63);
        block = x >> 6;
        store_block(out, block, masks, 8);
    }
    uint64_t last = 0;
    if (x >= last_begin && x < width) {
        x -= runs[i];
        for (; next(width); i++)
            last ^= ALL >> (x & 63);
    }
    // The second of two runs of 0 has not been counted: what is left is white.
    const bool black_left = x < width && i % 2 != 0;
    if (black_left && x >= last_begin)
        last ^= ALL >> (x & 63);
    else if (black_left)
        store_block(out, x >> 6, load_block(out, x >> 6, 8) ^ ALL >> (x & 63), 8);
    for (block = 0; block < last_block; block++) {
        const uint64_t pixels = load_block(out, block, 8) ^ colour;
        store_block(out, block, word_order(pixels), 8);
        colour = -(pixels & 1);
    }
    const int64_t behind = last_begin + 64 - width;
    last = (last ^ colour) >> behind << behind;
    store_block(out, last_block, word_order(last), size_t(2 * (words - 4 * last_block)));
}

static constexpr int64_t LONGEST_RUN = 65535;

namespace {
struct run_list {
    uint16_t *next;
    int64_t x;                  // where the next run begins
};
}

[[gnu::always_inline]] static inline void end_run(run_list &list, int64_t x)
{
    for (; x - list.x > LONGEST_RUN; list.x += LONGEST_RUN) {
        *list.next++ = uint16_t(LONGEST_RUN);
        *list.next++ = 0;
    }
    *list.next++ = uint16_t(x - list.x);
    list.x = x;
}

// Ends a run at each column whose bit is set.
[[gnu::always_inline]] static inline void end_runs(run_list &list, uint64_t changes, int64_t first)
{
    while (changes) {
        const int bit = std::countl_zero(changes);
        end_run(list, first + bit);
        changes ^= uint64_t{ 1 } << 63 >> bit;
    }
}

int32_t cit_scan(int32_t width, const uint16_t *words, uint16_t *runs)
{
    run_list list { runs, 0 };
    const int64_t blocks = width / 64;
    uint64_t before = 0;                // the last pixel of the block before, in the high bit
    for (int64_t block = 0; block < blocks; block++) {
        const uint64_t pixels = word_order(load_block(words, block, 8));
        end_runs(list, pixels ^ (pixels >> 1 | before), 64 * block);
        before = pixels << 63;
    }
    const int left = width % 64;
    if (left) {
        const uint64_t pixels = word_order(load_block(words, blocks, size_t(2 * ((left + 15) / 16))));
        end_runs(list, (pixels ^ (pixels >> 1 | before)) >> (64 - left) << (64 - left), 64 * blocks);
    }
    end_run(list, width);
    list.next[0] = list.next[1] = 0;
    return int32_t(list.next - runs);
}

void cit_reverse_bytes(uint8_t *bytes, int64_t count)
{
    const auto reverse = [](uint64_t v) {
        v = (v & 0x0F0F0F0F0F0F0F0F) << 4 | (v >> 4 & 0x0F0F0F0F0F0F0F0F);
        v = (v & 0x3333333333333333) << 2 | (v >> 2 & 0x3333333333333333);
        return (v & 0x5555555555555555) << 1 | (v >> 1 & 0x5555555555555555);
    };
    int64_t i = 0;
    for (; i + 8 <= count; i += 8) {
        uint64_t v;
        std::memcpy(&v, bytes + i, 8);
        v = reverse(v);
        std::memcpy(bytes + i, &v, 8);
    }
    for (; i < count; i++)
        bytes[i] = uint8_t(reverse(bytes[i]));
}

static bool grow(cit_decoder_out *sink, uint64_t needed)
{
    uint64_t room = std::max<uint64_t>({ needed, uint64_t{sink->room } * 2, 4096 });
    room = std::min<uint64_t>(room, UINT32_MAX);
    if (room < needed)
        return false;
    uint16_t *runs = (uint16_t *)mem_realloc(sink->runs, size_t(room) * sizeof(uint16_t));
    if (!runs)
        return false;
    sink->runs = runs;
    sink->room = uint32_t(room);
    return true;
}

uint32_t cit_store_line(cit_decoder_out *sink, const uint16_t *runs, uint32_t count, uint32_t line)
{
    if (!sink->keep || line >= sink->height)
        return CIT_OK;
    const uint64_t end = uint64_t{sink->position } + count + 2;
    if (end > sink->room && !grow(sink, end))
        return CIT_NO_MEMORY;
    std::memcpy(sink->runs + sink->position, runs, (size_t { count } + 2) * sizeof(uint16_t));
    sink->index[line] = sink->position;
    sink->position = uint32_t(end);
    return CIT_OK;
}
