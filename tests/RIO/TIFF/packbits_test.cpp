#include "RIO/TIFF/tifpack.h"
#include "RIO/memory_files.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <random>

static bytes coded(const bytes &plain)
{
    bytes out(size_t(packbits_most_bytes(int64_t(plain.size()))));
    out.resize(size_t(packbits_encode(plain.data(), out.data(), int64_t(plain.size()))));
    return out;
}

struct expansion {
    bytes out;
    int64_t used;
};

static expansion decoded(const bytes &code, size_t length)
{
    expansion e { bytes(length, 0xEE), 0 };
    int64_t written;
    e.used = packbits_decode(code.data(), e.out.data(), int64_t(length), int64_t(code.size()), &written);
    e.out.resize(size_t(written));
    return e;
}

static bytes run(size_t count, uint8_t value) { return bytes(count, value); }

TEST(PackBits, LiteralsAndRepeats)
{
    EXPECT_EQ(coded({ 1, 2, 3 }), (bytes { 2, 1, 2, 3 }));
    EXPECT_EQ(coded({ 5, 5, 5 }), (bytes { 0xFE, 5 }));                     // 1 - 3 is -2
    EXPECT_EQ(coded({ 1, 5, 5, 5, 5, 2 }), (bytes { 0, 1, 0xFD, 5, 0, 2 }));
    EXPECT_EQ(coded({}), bytes());
}

TEST(PackBits, ARunOfTwoStaysInItsLiteral)
{
    EXPECT_EQ(coded({ 1, 4, 4, 2 }), (bytes { 3, 1, 4, 4, 2 }));
    EXPECT_EQ(coded({ 4, 4 }), (bytes { 1, 4, 4 }));
}

TEST(PackBits, WhatIsLeftOfALongRunGoesIntoALiteral)
{
    EXPECT_EQ(coded(run(128, 7)), (bytes { 0x81, 7 }));
    EXPECT_EQ(coded(run(129, 7)), (bytes { 0x81, 7, 0, 7 }));
    EXPECT_EQ(coded(run(130, 7) + bytes { 1, 2 }), (bytes { 0x81, 7, 3, 7, 7, 1, 2 }));
    EXPECT_EQ(coded(run(131, 7)), (bytes { 0x81, 7, 0xFE, 7 }));
    EXPECT_EQ(coded(run(257, 7)), (bytes { 0x81, 7, 0x81, 7, 0, 7 }));
}

TEST(PackBits, LiteralsAreAtMost128Bytes)
{
    bytes in;
    for (int i = 0; i < 130; i++)
        in.push_back(uint8_t(i));
    const bytes first(in.begin(), in.begin() + 128);
    EXPECT_EQ(coded(in), (bytes { 127 } + first + bytes { 1, 128, 129 }));
}

TEST(PackBits, MinusOneHundredTwentyEightTakesTheNextByteWithIt)
{
    const expansion e = decoded({ 0x80, 99, 1, 10, 11 }, 2);
    EXPECT_EQ(e.out, (bytes { 10, 11 }));
    EXPECT_EQ(e.used, 5);
}

TEST(PackBits, LinesAreChainedByTheBytesUsed)
{
    const bytes strip { 0xFE, 5, 1, 8, 9 };
    const expansion first = decoded(strip, 3);
    EXPECT_EQ(first.out, run(3, 5));
    EXPECT_EQ(first.used, 2);
    EXPECT_EQ(decoded(bytes(strip.begin() + first.used, strip.end()), 2).out, (bytes { 8, 9 }));
}

TEST(PackBits, ARepeatPastTheLineIsCut)
{
    const expansion e = decoded({ 0x81, 3, 0, 1 }, 5);
    EXPECT_EQ(e.out, run(5, 3));
    EXPECT_EQ(e.used, 2);
}

TEST(PackBits, CutDataGiveWhatTheyHold)
{
    EXPECT_EQ(decoded({ 4, 1, 2 }, 9).out, (bytes { 1, 2 }));
    EXPECT_EQ(decoded({ 0xFE }, 9).out, bytes());
    EXPECT_EQ(decoded({}, 9).out, bytes());
}

// The rule as it stands: repeats of 3 to 128, all else in literals.
static bytes plainly_coded(const bytes &in)
{
    bytes out, literals;
    const auto flush = [&] {
        for (size_t at = 0; at < literals.size(); at += 128) {
            const size_t part = std::min<size_t>(literals.size() - at, 128);
            out.push_back(uint8_t(part - 1));
            out.insert(out.end(), literals.begin() + long(at), literals.begin() + long(at + part));
        }
        literals.clear();
    };
    for (size_t at = 0; at < in.size();) {
        size_t count = 1;
        while (count < 128 && at + count < in.size() && in[at + count] == in[at])
            count++;
        if (count >= 3) {
            flush();
            out = out + bytes { uint8_t(1 - int(count)), in[at] };
        } else {
            literals.insert(literals.end(), count, in[at]);
        }
        at += count;
    }
    flush();
    return out;
}

TEST(PackBits, EveryLineComesBack)
{
    std::mt19937 random(1);
    for (int i = 0; i < 2000; i++) {
        bytes in;
        while (in.size() < size_t(i)) {
            const size_t count = random() % 5 ? 1 + random() % 4 : 1 + random() % 300;
            in = in + run(count, uint8_t(random() % 3));
        }
        const bytes code = coded(in);
        ASSERT_EQ(code, plainly_coded(in)) << i;
        EXPECT_LE(int64_t(code.size()), packbits_most_bytes(int64_t(in.size())));
        const expansion e = decoded(code, in.size());
        ASSERT_EQ(e.out, in);
        EXPECT_EQ(e.used, int64_t(code.size()));
    }
}

// The rule as it stands, a byte at a time.
static bytes plain_sums(bytes line, size_t step)
{
    for (size_t i = step; i < line.size(); i++)
        line[i] = uint8_t(line[i] + line[i - step]);
    return line;
}

TEST(Predictor, BytesAreSummedAtTheirDistanceAndTakenApartAgain)
{
    std::mt19937 random(2);
    for (int step = 1; step <= 4; step++)
        for (size_t length : { 0u, 1u, 3u, 16u, 17u, 33u, 100u, 1001u }) {
            bytes line;
            for (size_t i = 0; i < length; i++)
                line.push_back(uint8_t(random()));
            bytes sums = line;
            tif_sum_bytes(sums.data(), int64_t(length), step);
            EXPECT_EQ(sums, plain_sums(line, size_t(step))) << step << " " << length;
            tif_difference_bytes(sums.data(), int64_t(length), step);
            EXPECT_EQ(sums, line);
        }
}

TEST(Predictor, WordsCarryBetweenTheirBytes)
{
    bytes line { 0xFF, 0x00, 0x01, 0x00, 0xFF, 0xFF };      // 255, 1, 65535
    tif_sum_words(line.data(), 3, 1, false);
    EXPECT_EQ(line, (bytes { 0xFF, 0x00, 0x00, 0x01, 0xFF, 0x00 }));    // 255, 256, 255
    bytes other { 0x00, 0xFF, 0x00, 0x01, 0xFF, 0xFF };
    tif_sum_words(other.data(), 3, 1, true);
    EXPECT_EQ(other, (bytes { 0x00, 0xFF, 0x01, 0x00, 0x00, 0xFF }));
}
