#include "RIO/TIFF/tiflzw.h"
#include "RIO/memory_files.h"
#include <gtest/gtest.h>
#include <map>
#include <random>

static bytes coded(const bytes &plain)
{
    lzw_state state {};
    bytes out(size_t(lzw_most_bytes(int64_t(plain.size()))));
    out.resize(size_t(lzw_encode(plain.data(), out.data(), int64_t(plain.size()), &state, nullptr)));
    lzw_free(&state);
    return out;
}

static bytes decoded(const bytes &code, size_t length)
{
    bytes out(length);
    out.resize(size_t(lzw_decode(code.data(), out.data(), 8, int64_t(length), nullptr, int64_t(code.size()))));
    return out;
}

// Codes of given widths, first bit at the high end of each byte.
struct code_bits {
    bytes out;
    int used = 0;
    void put(unsigned code, int width)
    {
        for (int i = width - 1; i >= 0; i--, used++) {
            if (used % 8 == 0)
                out.push_back(0);
            out.back() = uint8_t(out.back() | (code >> i & 1) << (7 - used % 8));
        }
    }
};

// The coder written down plainly, strings in a map.
static bytes plainly_coded(const bytes &in)
{
    std::map<std::string, unsigned> table;
    unsigned next = 258;
    int width = 9;
    const auto clear = [&] {
        table.clear();
        for (unsigned i = 0; i < 256; i++)
            table[std::string(1, char(i))] = i;
        next = 258;
        width = 9;
    };
    code_bits w;
    clear();
    w.put(256, 9);
    std::string match;
    for (uint8_t byte : in) {
        const std::string longer = match + char(byte);
        if (table.count(longer)) {
            match = longer;
            continue;
        }
        w.put(table[match], width);
        table[longer] = next;
        if (next == 4094) {
            w.put(256, width);
            clear();
        } else {
            if (next == 511 || next == 1023 || next == 2047)
                width++;
            next++;
        }
        match = std::string(1, char(byte));
    }
    if (!match.empty())
        w.put(table[match], width);
    w.put(257, width);
    return w.out;
}

static bytes noise(size_t count, unsigned seed, unsigned levels = 256)
{
    std::mt19937 random(seed);
    bytes out;
    for (size_t i = 0; i < count; i++)
        out.push_back(uint8_t(random() % levels));
    return out;
}

// 256, 65, 257 in 27 bits: 1000 0000 | 0001 0000 | 0110 0000 | 001 and five zeros.
TEST(Lzw, OneByteIsThreeCodesInFourBytes)
{
    EXPECT_EQ(coded({ 65 }), (bytes { 0x80, 0x10, 0x60, 0x20 }));
    EXPECT_EQ(decoded({ 0x80, 0x10, 0x60, 0x20 }, 1), (bytes { 65 }));
}

TEST(Lzw, NoBytesAreClearAndEnd)
{
    // 1 0000 0000 1 0000 0001: eighteen bits.
    EXPECT_EQ(coded({}), (bytes { 0x80, 0x40, 0x40 }));
    EXPECT_EQ(decoded({ 0x80, 0x40, 0x40 }, 10), bytes());
}

// The example of TIFF 6.0: 7 7 7 8 8 7 7 6 6 gives 7, 258, 8, 8, 258, 6, 6 between Clear and End.
TEST(Lzw, TheExampleOfThePublicStandard)
{
    code_bits expected;
    for (unsigned code : { 256, 7, 258, 8, 8, 258, 6, 6, 257 })
        expected.put(code, 9);
    EXPECT_EQ(coded({ 7, 7, 7, 8, 8, 7, 7, 6, 6 }), expected.out);
    EXPECT_EQ(decoded(expected.out, 9), (bytes { 7, 7, 7, 8, 8, 7, 7, 6, 6 }));
}

// 254 strings are entered by 255 codes: string 511 is entered with the 254th code, and from then on codes have ten bits.
TEST(Lzw, TheWidthGrowsWhenString511IsEntered)
{
    bytes in;
    code_bits expected;
    expected.put(256, 9);
    for (int i = 0; i < 256; i++) {         // no pair comes twice
        in.push_back(uint8_t(i));
        expected.put(unsigned(i), i < 254 ? 9 : 10);
    }
    expected.put(257, 10);
    EXPECT_EQ(coded(in), expected.out);
    EXPECT_EQ(decoded(expected.out, in.size()), in);
}

// A string is entered with each code but the last, the first one as 258: 4094 is entered with code 3837, and Clear follows
// it in twelve bits.
TEST(Lzw, String4094BringsClearInTwelveBits)
{
    bytes in;                               // all pairs of bytes, each once: every string entered is a pair
    for (unsigned step = 1; step < 256; step += 2)
        for (unsigned i = 0, at = 0; i < 256; i++, at += step)
            in.push_back(uint8_t(at));
    code_bits expected;
    expected.put(256, 9);
    int width = 9;
    unsigned next = 258;
    for (size_t i = 0; i < 3837 + 3; i++) {
        expected.put(in[i], width);
        if (i == 3836) {
            EXPECT_EQ(next, 4094u);
            expected.put(256, 12);
            width = 9;
        }
        width = next == 511 ? 10 : next == 1023 ? 11 : next == 2047 ? 12 : width;
        next++;
    }
    expected.put(257, 9);
    in.resize(3840);
    EXPECT_EQ(coded(in), expected.out);
    EXPECT_EQ(decoded(expected.out, in.size()), in);
}

TEST(Lzw, CodesAreThoseOfAPlainCoder)
{
    for (size_t length : { 2u, 3u, 100u, 3837u, 3838u, 20000u, 60001u })
        for (unsigned levels : { 1u, 2u, 5u, 40u, 256u }) {
            const bytes in = noise(length, unsigned(length) + levels, levels);
            const bytes code = coded(in);
            EXPECT_EQ(code, plainly_coded(in)) << length << " " << levels;
            EXPECT_LE(int64_t(code.size()), lzw_most_bytes(int64_t(length)));
            EXPECT_EQ(decoded(code, length), in) << length << " " << levels;
        }
}

TEST(Lzw, AStateServesOneStripAfterAnother)
{
    lzw_state state {};
    for (unsigned seed = 0; seed < 3; seed++) {
        const bytes in = noise(9000, seed, 7);
        bytes out(size_t(lzw_most_bytes(9000)));
        out.resize(size_t(lzw_encode(in.data(), out.data(), 9000, &state, nullptr)));
        EXPECT_EQ(out, plainly_coded(in));
    }
    lzw_free(&state);
}

// Runs of up to 400 bytes and short ones, with noise in between and without: strings that are runs are found in another way,
// and one strip's kind decides how the next is begun.
TEST(Lzw, FlatStripsAndNoiseInTurn)
{
    lzw_state state {};
    std::mt19937 random(5);
    for (int strip = 0; strip < 8; strip++) {
        const size_t length = 12000 + random() % 12000;
        bytes in;
        while (in.size() < length) {
            const bool rough = strip % 4 == 3 || (strip % 4 == 2 && random() % 50 == 0);
            const size_t count = rough ? 1 : random() % 3 ? 1 + random() % 12 : 1 + random() % 400;
            const unsigned values = rough ? 256 : strip % 4 == 0 ? 1 + unsigned(strip) : 5;
            in.insert(in.end(), count, uint8_t(random() % values));
        }
        bytes out(size_t(lzw_most_bytes(int64_t(in.size()))));
        out.resize(size_t(lzw_encode(in.data(), out.data(), int64_t(in.size()), &state, nullptr)));
        EXPECT_EQ(out, plainly_coded(in)) << strip;
        EXPECT_EQ(decoded(out, in.size()), in) << strip;
    }
    lzw_free(&state);
}

TEST(Lzw, AFailedTableIsAnErrorAndNoBytes)
{
    lzw_state state {};
    uint8_t in = 1, out[18];
    mem_fail_countdown = 0;
    EXPECT_EQ(lzw_encode(&in, out, 1, &state, nullptr), 0);
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
    mem_fail_countdown = -1;
}

TEST(Lzw, OutputStopsAtItsLength)
{
    const bytes in = noise(5000, 3, 3), code = coded(in);
    for (size_t length : { 0u, 1u, 7u, 100u, 4999u })
        EXPECT_EQ(decoded(code, length), bytes(in.begin(), in.begin() + long(length)));
}

TEST(Lzw, CutAndDamagedDataEndInsideTheirBuffers)
{
    const bytes in = noise(3000, 4, 6), code = coded(in);
    for (size_t cut = 0; cut < code.size(); cut += 7) {
        const bytes out = decoded(bytes(code.begin(), code.begin() + long(cut)), in.size());
        EXPECT_EQ(out, bytes(in.begin(), in.begin() + long(out.size())));
    }
    std::mt19937 random(9);
    for (int i = 0; i < 3000; i++) {
        bytes bad = code;
        for (int n = 0; n < 4; n++)
            bad[random() % bad.size()] ^= uint8_t(1 << random() % 8);
        EXPECT_LE(decoded(bad, in.size()).size(), in.size());
    }
}

// A writer that sends Clear late: strings stop at 4094, and codes go on being read.
TEST(Lzw, AFullTableWaitsForClear)
{
    bytes in;
    for (unsigned step = 1; step < 64; step += 2)
        for (unsigned i = 0, at = 0; i < 256; i++, at += step)
            in.push_back(uint8_t(at));
    code_bits w;
    w.put(256, 9);
    int width = 9;
    unsigned next = 258;
    for (uint8_t byte : in) {
        w.put(byte, width);
        width = next == 511 ? 10 : next == 1023 ? 11 : next == 2047 ? 12 : width;
        next++;
    }
    w.put(4094, 12);                        // in[3836], in[3837]
    w.put(257, 12);
    bytes expected = in;
    expected.push_back(in[3836]);
    expected.push_back(in[3837]);
    EXPECT_EQ(decoded(w.out, expected.size()), expected);
}
