// Run lists and pixels.
#include "plain_coder.h"
#include "mem.h"
#include <gtest/gtest.h>

static run_line scanned(const pixel_line &line)
{
    run_line runs(line.size() + 3 + line.size() / 32767, 0xEEEE);
    const int32_t count = cit_scan(int32_t(line.size()), packed(line).data(), runs.data());
    runs.resize(size_t(count) + 2);
    return runs;
}

static pixel_line expanded(int width, const run_line &runs)
{
    std::vector<uint16_t> words(size_t(width + 15) / 16, 0xEEEE);
    cit_expand(width, runs.data(), words.data());
    for (int x = width; x < 16 * int(words.size()); x++)
        EXPECT_EQ(words.back() >> (15 - x % 16) & 1, 0) << "bit behind the last pixel";
    return pixels_of(words.data(), width);
}

TEST(CitScan, AnAllWhiteLineIsOneRunOfTheWidthAndThenZeros)
{
    EXPECT_EQ(scanned(pixel_line(1728, 0)), (run_line { 1728, 0, 0 }));
}

TEST(CitScan, ALineThatBeginsBlackHasAFirstRunOfNothing)
{
    EXPECT_EQ(scanned(pixels_of({ 0, 3, 14 })), (run_line { 0, 3, 14, 0, 0 }));
    EXPECT_EQ(scanned(pixel_line(100, 1)), (run_line { 0, 100, 0, 0 }));
}

TEST(CitScan, TheFirstPixelIsTheHighBitOfTheFirstWord)
{
    const uint16_t words[] = { 0x8001, 0xC000 };        // 1 black, 14 white, 3 black, 2 white
    run_line runs(23);
    EXPECT_EQ(cit_scan(20, words, runs.data()), 5);
    runs.resize(7);
    EXPECT_EQ(runs, (run_line { 0, 1, 14, 3, 2, 0, 0 }));
}

TEST(CitScan, BitsBehindTheLastPixelAreNotLookedAt)
{
    const uint16_t words[] = { 0x0FFF };
    run_line runs(16);
    EXPECT_EQ(cit_scan(4, words, runs.data()), 1);
    EXPECT_EQ(runs[0], 4);
}

TEST(CitScan, NoiseOfEveryWidthComesBack)
{
    random_numbers random { 77 };
    for (int width = 1; width <= 300; width++) {
        pixel_line line;
        for (int x = 0; x < width; x++)
            line.push_back(uint8_t(random.below(2)));
        const run_line runs = scanned(line);
        EXPECT_EQ(runs, runs_of(line)) << width;
        EXPECT_EQ(expanded(width, runs), line) << width;
    }
}

TEST(CitScan, ALineOf65535PixelsIsOneRun)
{
    EXPECT_EQ(scanned(pixel_line(65535, 0)), (run_line { 65535, 0, 0 }));
    EXPECT_EQ(expanded(65535, { 0, 65535, 0, 0 }), pixel_line(65535, 1));
}

TEST(CitScan, LongerRunsAreSplitByARunOfNothing)
{
    EXPECT_EQ(scanned(pixel_line(70000, 0)), (run_line { 65535, 0, 4465, 0, 0 }));
    EXPECT_EQ(scanned(pixels_of({ 5, 131072, 1 })), (run_line { 5, 65535, 0, 65535, 0, 2, 1, 0, 0 }));
    EXPECT_EQ(expanded(131078, { 5, 65535, 0, 65535, 0, 2, 1, 0, 0 }), pixels_of({ 5, 131072, 1 }));
}

TEST(CitExpand, WhatTwoRunsOfNothingLeaveIsWhite)
{
    for (int width : { 16, 40, 64, 65, 200 }) {
        EXPECT_EQ(expanded(width, { 0, 0 }), pixel_line(size_t(width), 0)) << width;
        pixel_line one(size_t(width), 0);
        one[3] = one[4] = 1;
        EXPECT_EQ(expanded(width, { 3, 2, 0, 0 }), one) << width;
        EXPECT_EQ(expanded(width, { 3, 2, 4, 0, 0 }), one) << width;
    }
    pixel_line last(70, 0);
    last[65] = 1;
    EXPECT_EQ(expanded(70, { 65, 1, 0, 0 }), last);
    EXPECT_EQ(expanded(70, { 65, 1, 2, 0, 0 }), last);
}

TEST(CitExpand, RunsPastTheWidthAreCut)
{
    EXPECT_EQ(expanded(10, { 4, 60000, 60000 }), pixels_of({ 4, 6 }));
    EXPECT_EQ(expanded(130, { 4, 60000, 60000 }), pixels_of({ 4, 126 }));
}

TEST(CitReverse, EachByteIsTurnedRound)
{
    std::vector<uint8_t> bytes;
    for (int i = 0; i < 300; i++)
        bytes.push_back(uint8_t(i));
    std::vector<uint8_t> turned = bytes;
    cit_reverse_bytes(turned.data(), 299);
    for (size_t i = 0; i < 299; i++)
        for (int bit = 0; bit < 8; bit++)
            EXPECT_EQ(turned[i] >> bit & 1, bytes[i] >> (7 - bit) & 1);
    EXPECT_EQ(turned[299], bytes[299]);
}

TEST(CitStoreLine, LinesLieOneBehindTheOtherAndTheBufferGrows)
{
    std::vector<uint32_t> index(3000);
    cit_decoder_out sink { nullptr, index.data(), 10, 3000, 0, 0, 1 };
    const uint16_t runs[] = { 4, 6, 0, 0 };
    for (uint32_t line = 0; line < 3000; line++)
        ASSERT_EQ(cit_store_line(&sink, runs, 2, line), CIT_OK);
    EXPECT_EQ(sink.position, 12000u);
    EXPECT_EQ(index[2999], 11996u);
    EXPECT_EQ(sink.runs[11997], 6);
    EXPECT_EQ(cit_store_line(&sink, runs, 2, 3000), CIT_OK);        // past the height: dropped
    EXPECT_EQ(sink.position, 12000u);
    mem_free(sink.runs);
}

TEST(CitStoreLine, WithoutKeepNothingIsStored)
{
    cit_decoder_out sink { nullptr, nullptr, 10, 5, 0, 0, 0 };
    const uint16_t runs[] = { 10, 0, 0 };
    EXPECT_EQ(cit_store_line(&sink, runs, 1, 0), CIT_OK);
    EXPECT_EQ(sink.runs, nullptr);
}

TEST(CitStoreLine, NoMemoryStopsTheDecoder)
{
    uint32_t index[4];
    cit_decoder_out sink { nullptr, index, 10, 4, 0, 0, 1 };
    const uint16_t runs[] = { 10, 0, 0 };
    mem_fail_countdown = 0;
    EXPECT_EQ(cit_store_line(&sink, runs, 1, 0), 40239364u);
}
