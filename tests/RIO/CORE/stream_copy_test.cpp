// Copies past the caches give the same bytes as any other copy.
#include "RIO/CORE/stream_copy.h"
#include <gtest/gtest.h>
#include <vector>

static std::vector<uint8_t> numbered(size_t size)
{
    std::vector<uint8_t> data(size);
    uint32_t seed = 7;
    for (uint8_t &b : data)
        b = uint8_t((seed = seed * 1664525 + 1013904223) >> 24);
    return data;
}

// A copy of `size` bytes from `from` to `to`: those bytes and none beside them.
static void expect_copied(size_t size, size_t from, size_t to)
{
    const std::vector<uint8_t> in = numbered(size + 200);
    std::vector<uint8_t> out(size + 200, 0xEE), want = out;
    rio_stream_copy(out.data() + to, in.data() + from, size);
    for (size_t i = 0; i < size; i++)
        want[to + i] = in[from + i];
    EXPECT_EQ(out, want) << size << " from " << from << " to " << to;
}

TEST(StreamCopy, MovesEveryByteAndNoOther)
{
    // Around a line of 64 bytes, around four strands of 2048 bytes, and the sizes of rows and blocks.
    for (const size_t size : { 0, 1, 63, 64, 65, 127, 128, 8191, 8192, 8255, 8256, 8257, 8000, 80000, 100001 })
        for (const size_t shift : { 0, 1, 16, 63, 64 }) {
            expect_copied(size, 0, shift);
            expect_copied(size, 64 - shift, 17);
        }
}
