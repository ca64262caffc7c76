// Damaged and hostile data: every decoder ends, reads nothing outside its source, and gives only lines of the width.
#include "plain_coder.h"
#include <gtest/gtest.h>

static void expect_whole_lines(const decoded &d, int width, int lines)
{
    ASSERT_LE(d.lines, uint32_t(lines));
    ASSERT_TRUE(d.result == CIT_OK || d.result == CIT_BAD_DATA);
    for (const run_line &runs : d.runs) {
        int64_t sum = 0;
        for (size_t i = 0; i < runs.size(); i++) {
            sum += runs[i];
            // A run of nothing only in front, or between the parts of a long run.
            ASSERT_TRUE(runs[i] != 0 || i == 0 || runs[i - 1] == 65535);
        }
        ASSERT_EQ(sum, width);
    }
}

static void decode_all_ways(const std::vector<uint8_t> &source, int width, int lines)
{
    expect_whole_lines(decode_with(cit_g4_decode, source, width, lines), width, lines);
    expect_whole_lines(decode_with(cit_g3_2d_decode, source, width, lines, -1), width, lines);
    expect_whole_lines(decode_with(cit_g3_2d_decode, source, width, lines, 4), width, lines);
    expect_whole_lines(decode_with(cit_1d_decode, source, width, lines, -2, CIT_ALTERNATE_POLARITY, 1), width, lines);
}

TEST(CitDamage, RandomBytes)
{
    random_numbers random { 99 };
    for (int turn = 0; turn < 3000; turn++) {
        std::vector<uint8_t> source(random.below(200));
        for (uint8_t &byte : source)
            byte = uint8_t(random.below(256) & random.below(256));
        decode_all_ways(source, 1 + int(random.below(turn % 10 ? 300 : 100000)), 20);
    }
}

TEST(CitDamage, NothingAndZerosAndOnes)
{
    for (int width : { 1, 16, 70000 })
        for (size_t size : { size_t(0), size_t(1), size_t(7), size_t(8), size_t(9), size_t(4000) })
            for (uint8_t byte : { uint8_t(0), uint8_t(255), uint8_t(0x55) })
                decode_all_ways(std::vector<uint8_t>(size, byte), width, 10);
}

TEST(CitDamage, AWidthOfNothingIsRefused)
{
    const std::vector<uint8_t> source(10, 255);
    for (decoder decode : { cit_g4_decode, cit_g3_2d_decode, cit_1d_decode })
        for (uint32_t width : { 0u, 0x80000000u, 0xFFFFFFFFu }) {
            cit_decoder_in in { 0, -1, width, 4, source.data(), 0, 0, int64_t(source.size()) };
            cit_decoder_out sink {};
            EXPECT_EQ(decode(&in, &sink, cit_store_line), CIT_BAD_DATA);
            EXPECT_EQ(in.lines, 0u);
        }
}

TEST(CitDamage, AVastWidthTakesMemoryByTheDataOnly)
{
    // 10 bytes hold at most 80 changes: a line of two thousand million pixels needs no more room than that. Each byte is
    // a horizontal mode of white 2 and black 3, without end.
    const std::vector<uint8_t> source = bytes_of("001 0111 10" + std::string("001 0111 10") + "001 0111 10 001 0111 10");
    cit_decoder_in in { 0, -1, 0x7FFF0000, 4, source.data(), 0, 0, int64_t(source.size()) };
    cit_decoder_out sink {};
    EXPECT_EQ(cit_g4_decode(&in, &sink, cit_store_line), CIT_BAD_DATA);
    std::free(sink.runs);
}

struct form {
    decoder decode;
    int k;
};
static const form forms[] = { { cit_g4_decode, GROUP4 }, { cit_g3_2d_decode, -1 }, { cit_g3_2d_decode, 4 }, { cit_1d_decode, -2 } };

TEST(CitDamage, TruncationsGiveTheLinesBefore)
{
    random_numbers random { 31 };
    const picture lines = random_picture(random, 190, 25);
    for (const form &f : forms) {
        const std::vector<uint8_t> whole = bytes_of(encoded(lines, f.k));
        uint32_t before = 0;
        for (size_t size = 0; size <= whole.size(); size++) {
            const std::vector<uint8_t> cut(whole.begin(), whole.begin() + long(size));
            const decoded d = decode_with(f.decode, cut, 190, 25, f.k);
            ASSERT_GE(d.lines, before);
            before = d.lines;
            for (uint32_t y = 0; y < d.lines; y++)
                ASSERT_EQ(d.pixels[y], lines[y]) << "k " << f.k << " size " << size;
        }
        EXPECT_EQ(before, 25u);
    }
}

TEST(CitDamage, FlippedBits)
{
    random_numbers random { 37 };
    const picture lines = random_picture(random, 150, 20);
    for (const form &f : forms) {
        const std::vector<uint8_t> whole = bytes_of(encoded(lines, f.k));
        for (int turn = 0; turn < 2000; turn++) {
            std::vector<uint8_t> bent = whole;
            for (uint32_t flips = 1 + random.below(4); flips > 0; flips--)
                bent[random.below(uint32_t(bent.size()))] ^= uint8_t(1 << random.below(8));
            expect_whole_lines(decode_with(f.decode, bent, 150, 20, f.k), 150, 20);
        }
    }
}
