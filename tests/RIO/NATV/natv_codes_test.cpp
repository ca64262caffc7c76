// The run-length codings of native lines, byte for byte: what is written, and that it is read back.
#include "RIO/CORE/byte_order.h"
#include "RIO/CORE/tests_native.h"
#include "RIO/memory_files.h"
#include <gtest/gtest.h>
#include <numeric>

static constexpr size_t HEADER = 1024;

static bytes le(std::initializer_list<int> values)
{
    bytes out;
    for (int w : values) {
        out.push_back(uint8_t(w));
        out.push_back(uint8_t(w >> 8));
    }
    return out;
}

static bytes repeated(const bytes &unit, int times)
{
    bytes out;
    for (int i = 0; i < times; i++)
        out.insert(out.end(), unit.begin(), unit.end());
    return out;
}

// What follows the header when the lines are put; empty when a put fails. `bits` for type 26.
static bytes coded(int type, int width, const std::vector<std::vector<const void *>> &lines, bool headed = false, int bits = 0)
{
    memory_file memory(size_t(HEADER + 64 + lines.size() * size_t(width) * 24));
    RFILE *file = new_file(memory, RIO_FORMAT_NATV, width, int(lines.size()), type);
    if (!file || (headed && set_key(file, RIO_KEY_SCANNABLE, 1)) || (bits && set_key(file, RIO_KEY_BITS, bits)))
        return {};
    for (const auto &planes : lines)
        if (rio_putline_planes(file, int(planes.size()), planes.data())) {
            rio_close(file);
            return {};
        }
    rio_close(file);
    return bytes(memory.data.begin() + HEADER, memory.data.begin() + memory.record.position);
}

static bytes coded(int type, const bytes &line, bool headed = false, int bits = 0)
{
    return coded(type, int(line.size()), { { line.data() } }, headed, bits);
}

static bytes coded_bits(const words &line, int width, bool headed = false)
{
    return coded(9, width, { { line.data() } }, headed);
}

static bytes file_of(int type, int width, int height, const bytes &data, bool headed = false)
{
    bytes content = native_header(uint32_t(width), uint32_t(height), type);
    content[195] = headed;
    return content + data;
}

static uint32_t read_error;        // of the last of these

// The only line of such a file.
static bytes decoded(int type, int width, const bytes &data, bool headed = false)
{
    memory_file memory(file_of(type, width, 1, data, headed));
    RFILE *file = memory.open_r();
    const bytes line = file ? next_line(file) : bytes();
    read_error = rio_errno;
    if (file)
        rio_close(file);
    return line;
}

// ---- type 29 -----------------------------------------------------------------------------------------------------------

TEST(ByteRuns, LengthsAtTheBorders)
{
    EXPECT_EQ(coded(29, bytes(1, 7)), (bytes { 1, 7 }));
    EXPECT_EQ(coded(29, bytes(2, 7)), (bytes { 254, 7 }));
    EXPECT_EQ(coded(29, bytes(127, 7)), (bytes { 129, 7 }));
    EXPECT_EQ(coded(29, bytes(128, 7)), (bytes { 128, 7 }));
    EXPECT_EQ(coded(29, bytes(129, 7)), (bytes { 128, 7, 255, 7 }));
    EXPECT_EQ(coded(29, bytes(255, 7)), (bytes { 128, 7, 129, 7 }));
    EXPECT_EQ(coded(29, bytes(256, 7)), (bytes { 128, 7, 128, 7 }));
    EXPECT_EQ(coded(29, bytes(300, 7)), (bytes { 128, 7, 128, 7, 212, 7 }));     // 256 - 44
    // 32767 is 255 times 128 and 127; 32768 is 256 times 128.
    EXPECT_EQ(coded(29, bytes(32767, 7)), repeated({ 128, 7 }, 255) + bytes({ 129, 7 }));
    EXPECT_EQ(coded(29, bytes(32768, 7)), repeated({ 128, 7 }, 256));
}

TEST(ByteRuns, LiteralsEndBeforeTwoEqualBytesAndAt127)
{
    EXPECT_EQ(coded(29, { 1, 2, 3 }), (bytes { 3, 1, 2, 3 }));
    EXPECT_EQ(coded(29, { 1, 2, 2, 3 }), (bytes { 1, 1, 254, 2, 1, 3 }));
    EXPECT_EQ(coded(29, { 5, 5, 1, 2, 9, 9, 9 }), (bytes { 254, 5, 2, 1, 2, 253, 9 }));
    bytes rising(130);
    std::iota(rising.begin(), rising.end(), uint8_t{ 0 });
    const bytes code = coded(29, rising);
    ASSERT_EQ(code.size(), 128u + 4);               // 127, and the other three
    EXPECT_EQ(code[0], 127);
    EXPECT_EQ(code[128], 3);
    EXPECT_EQ(code[131], 129);
}

TEST(ByteRuns, EveryLineOfThreeLevelsComesBack)
{
    // All lines of 9 pixels of 3 levels, and long ones of a simple generator that favours runs.
    for (int n = 0; n < 19683; n += 7) {
        bytes line;
        for (int i = 0, v = n; i < 9; i++, v /= 3)
            line.push_back(uint8_t(v % 3));
        ASSERT_EQ(decoded(29, 9, coded(29, line)), line) << n;
    }
    uint32_t seed = 1;
    for (int n = 0; n < 40; n++) {
        bytes line;
        while (line.size() < 5000) {
            seed = seed * 1664525 + 1013904223;
            line.insert(line.end(), 1 + (seed >> 28 ? 0 : seed >> 8 & 1023), uint8_t(seed >> 20 & 7));
        }
        const int width = int(line.size());
        ASSERT_EQ(decoded(29, width, coded(29, line)), line) << n;
    }
}

TEST(ByteRuns, CountsOfNoneAndCountsPastTheEnd)
{
    EXPECT_EQ(decoded(29, 3, { 0, 0, 253, 8 }), (bytes { 8, 8, 8 }));
    EXPECT_EQ(decoded(29, 3, { 252, 8 }), bytes());                 // four
    EXPECT_EQ(read_error, RIO_READ_FAILED);
    EXPECT_EQ(decoded(29, 3, { 4, 1, 2, 3, 4 }), bytes());
    EXPECT_EQ(decoded(29, 3, { 3, 1, 2 }), bytes());                // cut
    EXPECT_EQ(decoded(29, 3, { 253 }), bytes());
}

TEST(ByteRuns, PlanesFollowEachOtherAndMissingOnesAreZero)
{
    const bytes red { 1, 1, 1 }, blue { 7, 8, 9 };
    EXPECT_EQ(coded(27, 3, { { red.data(), nullptr, blue.data() } }), (bytes { 253, 1, 253, 0, 3, 7, 8, 9 }));
    const bytes wide(130, 4);
    EXPECT_EQ(coded(27, 130, { { wide.data(), nullptr, nullptr } }),
              (bytes { 128, 4, 254, 4, 128, 0, 254, 0, 128, 0, 254, 0 }));
    EXPECT_EQ(coded(67, 3, { { red.data(), red.data(), red.data(), blue.data() } }),
              (bytes { 253, 1, 253, 1, 253, 1, 3, 7, 8, 9 }));

    memory_file memory(file_of(67, 3, 2, { 253, 1, 253, 2, 253, 3, 253, 4, 3, 5, 6, 7, 253, 8, 253, 9, 253, 10 }));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_rgb(file), (bytes { 1, 2, 3, 1, 2, 3, 1, 2, 3 }));     // the fourth is dropped
    bytes planes[4] = { bytes(3), bytes(3), bytes(3), bytes(3) };
    void *four[4] = { planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data() };
    EXPECT_EQ(rio_getline_planes(file, 4, four), 0);
    EXPECT_EQ(planes[0], (bytes { 5, 6, 7 }));
    EXPECT_EQ(planes[3], (bytes { 10, 10, 10 }));
    rio_close(file);
}

TEST(ByteRuns, SegmentsAreOfWholeWords)
{
    // 3 bytes of code and a zero: two words, and 2.
    EXPECT_EQ(coded(29, { 1, 2 }, true), le({ 0x5900, 4, 1, 0 }) + bytes({ 2, 1, 2, 0 }));
    EXPECT_EQ(coded(29, { 1, 1 }, true), le({ 0x5900, 3, 1, 0 }) + bytes({ 254, 1 }));
    EXPECT_EQ(decoded(29, 2, le({ 0x5900, 4, 1, 0 }) + bytes({ 2, 1, 2, 0 }), true), (bytes { 1, 2 }));
}

// ---- type 9 ------------------------------------------------------------------------------------------------------------

// A line of runs, 0 first.
static words bitmap(std::initializer_list<int> runs)
{
    const int width = std::accumulate(runs.begin(), runs.end(), 0);
    words line(size_t(width + 15) / 16, 0);
    int x = 0, colour = 0;
    for (int run : runs) {
        for (int end = x + run; x < end; x++)
            line[size_t(x / 16)] = uint16_t(line[size_t(x / 16)] | (colour ? 0x8000 >> x % 16 : 0));
        colour ^= 1;
    }
    return line;
}

static words decoded_bits(int width, const bytes &data, bool headed = false)
{
    memory_file memory(file_of(9, width, 1, data, headed));
    RFILE *file = memory.open_r();
    const words line = file ? next_words(file) : words();
    read_error = rio_errno;
    if (file)
        rio_close(file);
    return line;
}

TEST(BitmapRuns, BeginAndEndWithZeros)
{
    for (int width : { 1, 2, 127, 128, 129, 255, 256, 32767 }) {
        EXPECT_EQ(coded_bits(bitmap({ width }), width), le({ width })) << width;
        EXPECT_EQ(coded_bits(bitmap({ 0, width }), width), le({ 0, width, 0 })) << width;
        EXPECT_EQ(decoded_bits(width, le({ width })), bitmap({ width }));
        EXPECT_EQ(decoded_bits(width, le({ 0, width, 0 })), bitmap({ 0, width }));
    }
    EXPECT_EQ(coded_bits(bitmap({ 3, 5, 9 }), 17), le({ 3, 5, 9 }));
    EXPECT_EQ(coded_bits(bitmap({ 3, 14 }), 17), le({ 3, 14, 0 }));
}

TEST(BitmapRuns, LongRunsAreSplitByNoneOfTheOther)
{
    EXPECT_EQ(coded_bits(bitmap({ 32768 }), 32768), le({ 32767, 0, 1 }));
    EXPECT_EQ(coded_bits(bitmap({ 0, 32768 }), 32768), le({ 0, 32767, 0, 1, 0 }));
    EXPECT_EQ(coded_bits(bitmap({ 70000 }), 70000), le({ 32767, 0, 32767, 0, 4466 }));
    EXPECT_EQ(decoded_bits(32768, le({ 0, 32767, 0, 1, 0 })), bitmap({ 0, 32768 }));
}

TEST(BitmapRuns, PlainLinesFollowEachOther)
{
    memory_file memory(file_of(9, 20, 3, le({ 0, 20, 0, 20, 1, 18, 1 })));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_words(file), bitmap({ 0, 20 }));
    EXPECT_EQ(next_words(file), bitmap({ 20 }));
    EXPECT_EQ(next_words(file), bitmap({ 1, 18, 1 }));
    EXPECT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(next_words(file), bitmap({ 20 }));
    EXPECT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(next_words(file), bitmap({ 0, 20 }));
    rio_close(file);
    EXPECT_EQ(decoded_bits(20, le({ 21 })), words());
    EXPECT_EQ(read_error, RIO_READ_FAILED);
}

TEST(BitmapRuns, AFullBufferEndsASegment)
{
    // 65532 single pixels in turn, 0 first: 65532 runs of 1 and the closing 0. The first segment takes 32765 words and
    // ends with a run of 0; the next one begins with a word 0, since its first pixel is 1, and takes 32764 runs more; the
    // last has the word 0, the three runs left and the closing word.
    const int width = 65532;
    words line(4096, 0x5555);
    line[4095] = 0x5550;
    const bytes data = coded_bits(line, width, true);
    ASSERT_EQ(data.size(), 8u + 65530 + 8 + 65530 + 8 + 2 * 5);
    EXPECT_EQ(bytes(data.begin(), data.begin() + 10), le({ 0x5900, 32767, 1, 0, 1 }));
    EXPECT_EQ(bytes(data.begin() + 65538, data.begin() + 65538 + 12), le({ 0x5900, 32767, 1, 32765, 0, 1 }));
    EXPECT_EQ(bytes(data.end() - 18, data.end()), le({ 0x5900, 7, 1, 65529, 0, 1, 1, 1, 0 }));
    EXPECT_EQ(decoded_bits(width, data, true), line);
}

// ---- type 10 -----------------------------------------------------------------------------------------------------------

TEST(Pairs, AreWrittenWithLineHeaders)
{
    for (int width : { 1, 2, 127, 128, 129, 255, 256, 32767 })
        EXPECT_EQ(coded(10, bytes(size_t(width), 200)), le({ 0x5900, 4, 1, 0, 200, width })) << width;
    EXPECT_EQ(coded(10, bytes(32768, 200)), le({ 0x5900, 6, 1, 0, 200, 32767, 200, 1 }));
    EXPECT_EQ(coded(10, { 4, 4, 5 }), le({ 0x5900, 6, 1, 0, 4, 2, 5, 1 }));
    const bytes first { 1, 1 }, second { 2, 3 };
    EXPECT_EQ(coded(10, 2, { { first.data() }, { second.data() } }),
              le({ 0x5900, 4, 1, 0, 1, 2, 0x5900, 6, 2, 0, 2, 1, 3, 1 }));
}

TEST(Pairs, AFullBufferEndsASegment)
{
    // 20000 pixels that differ: 16382 pairs are 32764 words, and 3618 are left.
    bytes line(20000);
    for (size_t i = 0; i < line.size(); i++)
        line[i] = uint8_t(i);
    const bytes data = coded(10, line);
    ASSERT_EQ(data.size(), 8u + 4 * 16382 + 8 + 4 * 3618);
    EXPECT_EQ(bytes(data.begin(), data.begin() + 8), le({ 0x5900, 32766, 1, 0 }));
    EXPECT_EQ(bytes(data.begin() + 8 + 65528, data.begin() + 16 + 65528), le({ 0x5900, 3618 * 2 + 2, 1, 16382 }));
    EXPECT_EQ(decoded(10, 20000, data, true), line);
}

TEST(Pairs, ExactlyAFullBufferIsOneSegment)
{
    bytes line(16382);
    for (size_t i = 0; i < line.size(); i++)
        line[i] = uint8_t(i);
    EXPECT_EQ(coded(10, line).size(), 8u + 65528);
}

TEST(Pairs, PlainLinesAreReadAndTooManyFail)
{
    EXPECT_EQ(decoded(10, 5, le({ 9, 2, 8, 3 })), (bytes { 9, 9, 8, 8, 8 }));
    EXPECT_EQ(decoded(10, 5, le({ 9, 2, 8, 4 })), bytes());
    EXPECT_EQ(read_error, RIO_READ_FAILED);
    EXPECT_EQ(decoded(10, 5, le({ 9, 2, 8, 2 })), bytes());
    EXPECT_EQ(decoded(10, 5, le({ 0x5900, 6, 1, 0, 9, 2, 8, 4 }), true), bytes());     // with headers as well
}

// ---- line headers --------------------------------------------------------------------------------------------------------

TEST(LineHeaders, MissingLinesAndPixelsAreZero)
{
    // Line 2 of 4 has two segments, pixels 1 to 2 and 5 to 6 of 8; line 4 has one at 0.
    const bytes data = le({ 0x5900, 4, 2, 1, 7, 2, 0x5900, 4, 2, 5, 9, 2, 0x5900, 4, 4, 0, 3, 8 });
    memory_file memory(file_of(10, 8, 4, data, true));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), bytes(8, 0));
    bytes line(8, 1);
    EXPECT_EQ(rio_getline(file, line.data()), 0);       // short, and not a failure
    EXPECT_EQ(line, (bytes { 0, 7, 7, 0, 0, 9, 9, 0 }));
    EXPECT_EQ(next_line(file), bytes(8, 0));
    EXPECT_EQ(next_line(file), bytes(8, 3));
    EXPECT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(line, (bytes { 0, 7, 7, 0, 0, 9, 9, 0 }));
    EXPECT_EQ(rio_seek(file, 3), 0);
    EXPECT_EQ(next_line(file), bytes(8, 3));
    rio_close(file);
}

TEST(LineHeaders, CountFromZeroOrOne)
{
    for (int first : { 0, 1 }) {
        const bytes data = le({ 0x5900, 4, first, 0, 7, 2, 0x5900, 4, first + 1, 0, 9, 2 });
        memory_file memory(file_of(10, 2, 2, data, true));
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(next_line(file), bytes(2, 7)) << first;
        EXPECT_EQ(next_line(file), bytes(2, 9)) << first;
        rio_rewind(file);
        EXPECT_EQ(next_line(file), bytes(2, 7)) << first;
        rio_close(file);
    }
}

TEST(LineHeaders, UncompressedLinesAreFilledUpByAnOddRule)
{
    // 3 bytes and a zero: 4, whose bit of 2 is clear, so that two more follow that no count holds.
    EXPECT_EQ(coded(2, { 1, 2, 3 }, true), le({ 0x5900, 4, 1, 0 }) + bytes({ 1, 2, 3, 0, 0, 0 }));
    EXPECT_EQ(coded(2, { 1, 2, 3, 4 }, true), le({ 0x5900, 4, 1, 0 }) + bytes({ 1, 2, 3, 4, 0, 0 }));
    EXPECT_EQ(coded(2, { 1, 2 }, true), le({ 0x5900, 3, 1, 0 }) + bytes({ 1, 2 }));
    EXPECT_EQ(coded(2, { 1, 2, 3, 4, 5, 6 }, true), le({ 0x5900, 5, 1, 0 }) + bytes({ 1, 2, 3, 4, 5, 6 }));
    const bytes line { 1, 2, 3 };
    EXPECT_EQ(coded(28, 3, { { line.data(), line.data(), line.data() } }, true),
              le({ 0x5900, 7, 1, 0 }) + bytes({ 1, 1, 1, 2, 2, 2, 3, 3, 3, 0 }));
}

TEST(LineHeaders, EveryUncompressedTypeComesBack)
{
    const std::pair<int, int> types[] = { { 1, 4 }, { 2, 21 }, { 3, 42 }, { 4, 84 }, { 5, 84 }, { 6, 168 }, { 7, 168 }, { 8, 336 } };
    for (const auto &[type, size] : types) {
        bytes lines[3], got(size_t(size), 0);
        std::vector<std::vector<const void *>> given;
        for (int y = 0; y < 3; y++) {
            for (int i = 0; i < size; i++)
                lines[y].push_back(uint8_t(i * 5 + y * 17 + type));
            given.push_back({ lines[y].data() });
        }
        memory_file memory(file_of(type, 21, 3, coded(type, 21, given, true), true));
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        for (const bytes &wanted : lines) {
            ASSERT_EQ(rio_getline(file, got.data()), 0) << type;
            EXPECT_EQ(got, wanted) << type;
        }
        rio_close(file);
    }
}

TEST(LineHeaders, FilesWithoutTheTwoZerosAreReadAsWell)
{
    const bytes data = le({ 0x5900, 4, 1, 0 }) + bytes({ 1, 2, 3, 4 }) + le({ 0x5900, 4, 2, 0 }) + bytes({ 5, 6, 7, 8, 0, 0 })
                       + le({ 0x5900, 3, 3, 1 }) + bytes({ 9, 10 });
    memory_file memory(file_of(2, 4, 3, data, true));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_line(file), (bytes { 1, 2, 3, 4 }));
    EXPECT_EQ(next_line(file), (bytes { 5, 6, 7, 8 }));
    EXPECT_EQ(next_line(file), (bytes { 0, 9, 10, 0 }));
    rio_close(file);
}

TEST(LineHeaders, ASeekFarBehindTheEndIsShort)
{
    memory_file memory(file_of(10, 4, 2000000000, le({ 0x5900, 4, 1, 0, 7, 4 }), true));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_seek(file, 1999999999), 0);
    EXPECT_EQ(next_line(file), bytes(4, 0));
    EXPECT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(next_line(file), bytes(4, 7));
    rio_close(file);
}

// ---- type 25 -----------------------------------------------------------------------------------------------------------

TEST(Quads, HoldThirdSecondFirstAndCount)
{
    const bytes red { 1, 1, 4 }, green { 2, 2, 5 }, blue { 3, 3, 6 };
    EXPECT_EQ(coded(25, 3, { { red.data(), green.data(), blue.data() } }), (bytes { 3, 2, 1, 2, 6, 5, 4, 1 }));
    for (const auto &[run, code] : { std::pair<int, bytes> { 1, { 9, 9, 9, 1 } }, { 255, { 9, 9, 9, 255 } },
                                     { 256, { 9, 9, 9, 255, 9, 9, 9, 1 } } }) {
        const bytes nine(size_t(run), 9);
        EXPECT_EQ(coded(25, run, { { nine.data(), nine.data(), nine.data() } }), code) << run;
    }
    memory_file memory(file_of(25, 3, 1, { 3, 2, 1, 2, 6, 5, 4, 1 }));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(next_rgb(file), (bytes { 1, 2, 3, 1, 2, 3, 4, 5, 6 }));
    rio_close(file);
}

TEST(Quads, AFullBufferEndsASegment)
{
    // 16382 quads pass 65526 bytes; the 16383rd begins a segment at pixel 16382.
    bytes line(16383);
    for (size_t i = 0; i < line.size(); i++)
        line[i] = uint8_t(i);
    const bytes data = coded(25, 16383, { { line.data(), line.data(), line.data() } }, true);
    ASSERT_EQ(data.size(), 8u + 65528 + 8 + 4);
    EXPECT_EQ(bytes(data.begin(), data.begin() + 8), le({ 0x5900, 32766, 1, 0 }));
    EXPECT_EQ(bytes(data.end() - 12, data.end()), le({ 0x5900, 4, 1, 16382 }) + bytes({ 254, 254, 254, 1 }));
    EXPECT_EQ(decoded(25, 16383, data, true), line);
}

// ---- type 26 -----------------------------------------------------------------------------------------------------------

TEST(PackedRuns, ValueBelowAndCountAbove)
{
    // 4 bits: counts up to 4095 above the value.
    EXPECT_EQ(coded(26, { 5, 5, 7 }, false, 4), le({ 2 << 4 | 5, 1 << 4 | 7 }));
    EXPECT_EQ(coded(26, bytes(4095, 0x1F), false, 4), le({ 4095 << 4 | 15 }));         // values are masked
    EXPECT_EQ(coded(26, bytes(4096, 3), false, 4), le({ 3, 4096 }));
    EXPECT_EQ(coded(26, bytes(255, 3), false, 8), le({ 255 << 8 | 3 }));
    EXPECT_EQ(coded(26, bytes(256, 3), false, 8), le({ 3, 256 }));
    EXPECT_EQ(coded(26, bytes(32768, 3), false, 8), le({ 3, 32768 }));
}

TEST(PackedRuns, WideSamplesCountEveryRunButTheFirstShort)
{
    const words line { 5, 5, 7, 7 };
    EXPECT_EQ(coded(26, 4, { { line.data() } }, false, 12), le({ 2 << 12 | 5, 1 << 12 | 7 }));
    const words sixteen { 50000, 50000, 7 };
    EXPECT_EQ(coded(26, 3, { { sixteen.data() } }, false, 16), le({ 50000, 2, 7, 1 }));    // pairs
}

TEST(PackedRuns, AreReadWithTheBitsThatTheCallerKnows)
{
    EXPECT_EQ(decoded(26, 300, le({ 3, 256, 44 << 8 | 9 })), bytes(256, 3) + bytes(44, 9));   // 8 until told
    for (const auto &[bits, data] : { std::pair<int, bytes> { 12, le({ 2 << 12 | 700, 2 << 12 | 800 }) },
                                      { 16, le({ 700, 2, 800, 2 }) } }) {
        memory_file memory(file_of(26, 4, 1, data));
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(set_key(file, RIO_KEY_BITS, bits), 0);
        words line(4);
        EXPECT_EQ(rio_getline(file, line.data()), 0);
        EXPECT_EQ(line, (words { 700, 700, 800, 800 })) << bits;
        rio_close(file);
    }
}

// ---- run-length lines ------------------------------------------------------------------------------------------------------

static bytes run_line(RFILE *file, int room)
{
    bytes runs(size_t(room) + 2, 0xEE);
    int size = room;
    const int pixels = rio_getrleline(file, runs.data(), &size);
    EXPECT_EQ(runs[size_t(room)], 0xEE);
    runs.resize(size_t(pixels ? size : 0));
    return runs;
}

TEST(RunLines, EachTypeInItsOwnWords)
{
    const struct { int type, width; bytes data; bool headed; bytes runs; } cases[] = {
        { 1, 20, le({ 0x0FFF, 0xF000 }), false, le({ 4, 16, 0 }) },
        { 2, 4, { 1, 1, 1, 2 }, false, le({ 1, 3, 2, 1 }) },
        { 9, 20, le({ 0, 5, 15 }), false, le({ 0, 5, 15 }) },
        { 9, 20, le({ 0, 20, 0 }), false, le({ 0, 20, 0 }) },
        { 10, 5, le({ 9, 2, 8, 9 }), false, le({ 9, 2, 8, 3 }) },               // the last is cut
        { 10, 5, le({ 0x5900, 6, 1, 0, 9, 2, 8, 3 }), true, le({ 0x5900, 6, 0, 0, 9, 2, 8, 3 }) },
        { 10, 5, le({ 0x5900, 6, 2, 0, 9, 2, 8, 3 }), true, le({ 0x5900, 3, 0, 0, 0, 5 }) },
        { 2, 4, le({ 0x5900, 4, 1, 0 }) + bytes({ 1, 1, 1, 2 }), true, le({ 0x5900, 6, 0, 0, 1, 3, 2, 1 }) },
        { 25, 3, { 3, 2, 1, 2, 6, 5, 4, 1 }, false, { 3, 2, 1, 2, 6, 5, 4, 1 } },
        { 26, 300, le({ 3, 256, 44 << 8 | 9 }), false, le({ 3, 256, 9, 44 }) },
        { 29, 4, { 253, 7, 1, 8 }, false, le({ 7, 3, 8, 1 }) },
    };
    for (const auto &c : cases) {
        memory_file memory(file_of(c.type, c.width, 2, c.data, c.headed));
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(run_line(file, 8 + 4 * c.width), c.runs) << c.type;
        rio_close(file);
    }
    for (int type : { 27, 28, 67, 69 }) {
        memory_file memory(file_of(type, 4, 1, bytes(16, 1)));
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(run_line(file, 100), bytes()) << type;
        EXPECT_EQ(rio_errno, 0u) << type;
        rio_close(file);
    }
}

TEST(RunLines, ABufferThatIsTooSmallTellsWhatIsNeededAndTheLineStays)
{
    memory_file plain(file_of(2, 100, 1, bytes(100, 1)));
    RFILE *file = plain.open_r();
    uint8_t runs[1000];
    int size = 399;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 0);
    EXPECT_EQ(rio_errno, RIO_RLE_BUFFER);
    EXPECT_EQ(size, 400);                           // four bytes a pixel
    EXPECT_EQ(rio_getrleline(file, runs, &size), 100);
    EXPECT_EQ(size, 4);
    rio_close(file);

    // 4 runs of 10 pixels fit in 8 bytes: 40 pixels of 100, so 20 bytes and 128.
    memory_file coded_file(file_of(9, 100, 1, le({ 10, 10, 10, 10, 60 })));
    file = coded_file.open_r();
    size = 8;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 0);
    EXPECT_EQ(rio_errno, RIO_RLE_BUFFER);
    EXPECT_EQ(size, 8 * 100 / 40 + 128);
    EXPECT_EQ(rio_getrleline(file, runs, &size), 100);
    EXPECT_EQ(size, 10);
    rio_close(file);
}

TEST(RunLines, ArePutAsTheyCome)
{
    for (bool headed : { false, true }) {
        memory_file memory(2000);
        RFILE *file = new_file(memory, RIO_FORMAT_NATV, 20, 2, 9);
        set_key(file, RIO_KEY_SCANNABLE, headed);
        const bytes first = le({ 0, 20, 0 }), second = le({ 20 });
        EXPECT_EQ(rio_putrleline(file, first.data(), 6), 0);
        EXPECT_EQ(rio_putrleline(file, second.data(), 2), 0);
        EXPECT_EQ(rio_putrleline(file, second.data(), 2), 1);
        EXPECT_EQ(rio_errno, RIO_PAST_END);
        rio_close(file);
        const bytes data(memory.data.begin() + HEADER, memory.data.begin() + memory.record.position);
        EXPECT_EQ(data, headed ? le({ 0x5900, 5, 1, 0, 0, 20, 0, 0x5900, 3, 2, 0, 20 }) : le({ 0, 20, 0, 20 }));
    }
}

// ---- places of lines -------------------------------------------------------------------------------------------------------

TEST(CodedLines, AreFoundInAnyOrderWithAndWithoutPlaces)
{
    std::vector<bytes> lines;
    std::vector<std::vector<const void *>> given;
    for (int y = 0; y < 20; y++) {
        bytes line(50, uint8_t(y));
        for (int x = 0; x < y; x++)
            line[size_t(x)] = uint8_t(x * 3);
        lines.push_back(line);
    }
    for (const bytes &line : lines)
        given.push_back({ line.data() });
    for (const auto &[type, headed] : { std::pair { 29, false }, { 29, true }, { 10, true }, { 26, false } }) {
        memory_file memory(file_of(type, 50, 20, coded(type, 50, given, headed), headed));
        for (bool random : { false, true }) {
            RFILE *file = memory.open_r();
            ASSERT_TRUE(file);
            if (random) {
                EXPECT_EQ(next_line(file), lines[0]);
                EXPECT_EQ(rio_randomize(file), 0);
                EXPECT_EQ(rio_randomize(file), 0);      // nothing a second time
            }
            for (int y : { 7, 3, 19, 0, 18, 4, 12, 12 }) {
                ASSERT_EQ(rio_seek(file, y), 0);
                ASSERT_EQ(next_line(file), lines[size_t(y)]) << type << " " << y;
            }
            rio_close(file);
        }
    }
}
