// The codec behind open files.
#include "plain_coder.h"
#include "RIO/CORE/rio_format.h"
#include <gtest/gtest.h>

// A record over a file in memory, as a format's module would have filled it.
struct coded_file {
    std::vector<uint8_t> data;
    rio_memory_file memory {};
    RFILE *file = rio_new_record();

    coded_file(std::vector<uint8_t> content, int32_t width, int32_t height, uint32_t type = RIO_TYPE_CCITT4)
        : data(std::move(content))
    {
        memory.data = data.data();
        memory.size = int64_t(data.size());
        file->io = rio_memory_ops;
        file->stream = &memory;
        file->width = width;
        file->height = height;
        file->data_type = type;
        file->flags |= RIO_NATV;
        EXPECT_EQ(cit_attach(file), 1);
    }
    ~coded_file() { rio_free_record(file); }
    coded_file(const coded_file &) = delete;
    coded_file &operator=(const coded_file &) = delete;

    pixel_line line(int32_t y)
    {
        std::vector<uint16_t> words(size_t(file->width + 15) / 16, 0xEEEE);
        file->current_line = y;
        file->error = 0;
        if (!cit_getline(file, words.data()))
            return {};
        return pixels_of(words.data(), file->width);
    }
    picture all()
    {
        picture lines;
        for (int32_t y = 0; y < file->height; y++)
            lines.push_back(line(y));
        return lines;
    }
};

static picture sample(int width = 333, int height = 57)
{
    random_numbers random { 41 };
    return random_picture(random, width, height);
}

static std::vector<uint8_t> turned_round(std::vector<uint8_t> bytes)
{
    cit_reverse_bytes(bytes.data(), int64_t(bytes.size()));
    return bytes;
}

static std::vector<uint8_t> operator+(std::vector<uint8_t> one, const std::vector<uint8_t> &other)
{
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

TEST(CitGetline, Group4AndGroup3PicturesAreReadLineByLine)
{
    coded_file group4(bytes_of(encoded(sample(), GROUP4)), 333, 57);
    EXPECT_EQ(group4.all(), sample());
    EXPECT_EQ(group4.file->current_line, 56);       // stays
    coded_file group3(bytes_of(encoded(sample(), -1)), 333, 57, RIO_TYPE_CCITT3);
    EXPECT_EQ(group3.all(), sample());
}

TEST(CitGetline, FilesThatAreNotNativeBeginAtTheHighBit)
{
    coded_file f(turned_round(bytes_of(encoded(sample(), GROUP4))), 333, 57);
    f.file->flags &= ~uint32_t(RIO_NATV);
    EXPECT_EQ(f.all(), sample());
}

TEST(CitGetline, ThePictureLiesWhereTheStateSays)
{
    const std::vector<uint8_t> coded = bytes_of(encoded(sample(), GROUP4));
    coded_file f(std::vector<uint8_t>(100, 0x55) + coded + std::vector<uint8_t>(100, 0xAA), 333, 57);
    f.file->ccitt->data_offset = 100;
    f.file->ccitt->coded_size = uint32_t(coded.size());
    EXPECT_EQ(f.all(), sample());
}

TEST(CitGetline, DamageLeavesTheLinesBeforeAndTheOthersWhite)
{
    std::vector<uint8_t> coded = bytes_of(encoded(sample(), GROUP4));
    coded.resize(coded.size() / 2);
    coded_file f(coded, 333, 57);
    EXPECT_EQ(cit_decode_image(f.file), CIT_BAD_DATA);
    EXPECT_EQ(f.file->error, 0u);
    const picture lines = f.all(), whole = sample(), white(57, pixel_line(333, 0));
    size_t done = 0;
    while (done < 57 && lines[done] == whole[done])
        done++;
    EXPECT_GT(done, 10u);
    EXPECT_LT(done, 57u);
    EXPECT_EQ(picture(lines.begin() + long(done), lines.end()), picture(white.begin() + long(done), white.end()));
}

TEST(CitGetline, AfterAFailedDecodeNothingIsDecodedAgain)
{
    coded_file f(std::vector<uint8_t>(50, 0), 333, 57);
    EXPECT_EQ(f.file->ccitt->stale, 1);
    EXPECT_EQ(f.line(0), pixel_line(333, 0));
    EXPECT_EQ(f.file->ccitt->stale, 0);
    std::fill(f.data.begin(), f.data.end(), uint8_t(0xFF));     // would be white lines with V0 each, and then bad
    const long allocations = mem_allocation_count;
    EXPECT_EQ(f.line(3), pixel_line(333, 0));
    EXPECT_EQ(mem_allocation_count, allocations);
}

TEST(CitGetline, LinesOutsideThePictureAreRefused)
{
    coded_file f(bytes_of(encoded(sample(), GROUP4)), 333, 57);
    EXPECT_TRUE(f.line(57).empty());
    EXPECT_EQ(f.file->error, uint32_t(RIO_PAST_END));
    EXPECT_TRUE(f.line(-1).empty());
}

TEST(CitGetline, AHeightThatTheDataCannotHoldTakesNoMemory)
{
    coded_file f(bytes_of(encoded(sample(), GROUP4)), 333, 2000000000);
    EXPECT_EQ(f.line(56), sample()[56]);
    EXPECT_EQ(f.line(1999999999), pixel_line(333, 0));
    EXPECT_LE(f.file->ccitt->index_lines, 8 * f.data.size());
}

TEST(CitGetline, NoMemoryIsToldByEachAllocationAndCanBeTriedAgain)
{
    const std::vector<uint8_t> coded = bytes_of(encoded(sample(), GROUP4));
    for (long n = 0; n < 6; n++) {
        coded_file f(coded, 333, 57);
        mem_fail_countdown = n;
        EXPECT_TRUE(f.line(5).empty()) << n;
        EXPECT_EQ(f.file->error, uint32_t(RIO_NO_MEMORY)) << n;
        EXPECT_EQ(mem_fail_countdown, -1);
        EXPECT_EQ(f.all(), sample()) << n;
    }
}

TEST(CitAttach, NoMemoryIsTold)
{
    RFILE *file = rio_new_record();
    mem_fail_countdown = 0;
    EXPECT_EQ(cit_attach(file), 0);
    EXPECT_EQ(file->error, uint32_t(RIO_NO_MEMORY));
    rio_free_record(file);
}

TEST(CitAttach, TheTableTurnsBytesRound)
{
    coded_file f({}, 8, 8);
    EXPECT_EQ(f.file->ccitt->bit_reverse[0x01], 0x80);
    EXPECT_EQ(f.file->ccitt->bit_reverse[0x35], 0xAC);      // 00110101, 10101100
}

TEST(CitReset, TheNextPictureIsDecodedAfresh)
{
    const picture one = sample(), two = sample(100, 20);
    const std::vector<uint8_t> first = bytes_of(encoded(one, GROUP4)), second = bytes_of(encoded(two, GROUP4));
    coded_file f(first + second, 333, 57);
    f.file->ccitt->coded_size = uint32_t(first.size());
    EXPECT_EQ(f.all(), one);
    cit_reset(f.file);
    f.file->width = 100;
    f.file->height = 20;
    f.file->ccitt->data_offset = int64_t(first.size());
    EXPECT_EQ(f.all(), two);
}

// ---- blocks --------------------------------------------------------------------------------------------------------

TEST(CitBlocks, LinesComeInAnyOrder)
{
    const picture lines = sample();
    const std::vector<uint8_t> coded = bytes_of(encoded(lines, GROUP4));
    random_numbers random { 12 };
    for (int32_t block_lines : { 1, 2, 5, 10, 19, 56, 57, 58, 1000 }) {
        coded_file f(coded, 333, 57);
        cit_set_block_lines(f.file, block_lines);
        EXPECT_EQ(f.file->strip_lines, block_lines);
        EXPECT_EQ(f.line(40), lines[40]) << block_lines;
        EXPECT_EQ(f.line(3), lines[3]) << block_lines;
        EXPECT_EQ(f.line(56), lines[56]) << block_lines;
        for (int turn = 0; turn < 100; turn++) {
            const int32_t y = int32_t(random.below(57));
            ASSERT_EQ(f.line(y), lines[size_t(y)]) << block_lines << " line " << y;
        }
        EXPECT_EQ(f.all(), lines);
    }
}

TEST(CitBlocks, OnlyOneBlockIsHeld)
{
    coded_file f(bytes_of(encoded(sample(), GROUP4)), 333, 57);
    cit_set_block_lines(f.file, 10);
    f.line(34);
    EXPECT_EQ(f.file->ccitt->block_first_line, 30);
    EXPECT_EQ(f.file->ccitt->index_lines, 10u);
    f.line(56);
    EXPECT_EQ(f.file->ccitt->block_first_line, 50);
}

TEST(CitBlocks, DamageLeavesTheLinesBeforeAndTheOthersWhite)
{
    std::vector<uint8_t> coded = bytes_of(encoded(sample(), GROUP4));
    coded.resize(coded.size() / 2);
    coded_file whole(coded, 333, 57);
    coded_file blocks(coded, 333, 57);
    cit_set_block_lines(blocks.file, 4);
    const picture lines = whole.all();
    for (int32_t y = 56; y >= 0; y--)
        EXPECT_EQ(blocks.line(y), lines[size_t(y)]) << y;
    EXPECT_EQ(blocks.all(), lines);
}

TEST(CitBlocks, OnlyGroup4GoesByBlocks)
{
    coded_file f(bytes_of(encoded(sample(), -1)), 333, 57, RIO_TYPE_CCITT3);
    cit_set_block_lines(f.file, 10);
    EXPECT_TRUE(f.line(0).empty());
    EXPECT_EQ(f.file->error, 0x0C2A8136u);
    cit_set_block_lines(f.file, 0);
    EXPECT_EQ(f.all(), sample());
}

TEST(CitBlocks, NoMemoryIsToldByEachAllocationAndCanBeTriedAgain)
{
    const picture lines = sample();
    const std::vector<uint8_t> coded = bytes_of(encoded(lines, GROUP4));
    for (long n = 0; n < 20; n++) {
        coded_file f(coded, 333, 57);
        cit_set_block_lines(f.file, 10);
        mem_fail_countdown = n;
        const pixel_line line = f.line(25);
        EXPECT_EQ(line.empty(), mem_fail_countdown == -1) << n;
        mem_fail_countdown = -1;
        EXPECT_EQ(f.all(), lines) << n;
    }
}

// ---- writing -------------------------------------------------------------------------------------------------------

static int put_all(RFILE *file, const picture &lines)
{
    for (size_t y = 0; y < lines.size(); y++) {
        file->current_line = int32_t(y);
        if (cit_putline(file, packed(lines[y]).data()) != int(lines[y].size()))
            return 0;
    }
    return 1;
}

TEST(CitPutline, TheCodedBytesAreWrittenAfterTheLastLine)
{
    for (uint32_t type : { RIO_TYPE_CCITT3, RIO_TYPE_CCITT4 }) {
        const picture lines = sample();
        const std::vector<uint8_t> coded = bytes_of(encoded(lines, type == RIO_TYPE_CCITT4 ? GROUP4 : -1));
        coded_file f(std::vector<uint8_t>(coded.size() + 7, 0xEE), 333, 57, type);
        ASSERT_EQ(put_all(f.file, lines), 1);
        EXPECT_EQ(f.memory.position, int64_t(coded.size()));
        EXPECT_EQ(f.file->ccitt->coded_size, coded.size());
        EXPECT_EQ(f.data, coded + std::vector<uint8_t>(7, 0xEE));
    }
}

TEST(CitPutline, FilesThatAreNotNativeBeginAtTheHighBit)
{
    const picture lines = sample();
    const std::vector<uint8_t> coded = turned_round(bytes_of(encoded(lines, GROUP4)));
    coded_file f(std::vector<uint8_t>(coded.size()), 333, 57);
    f.file->flags &= ~uint32_t(RIO_NATV);
    ASSERT_EQ(put_all(f.file, lines), 1);
    EXPECT_EQ(f.data, coded);
    EXPECT_EQ(f.all(), lines);
}

TEST(CitPutline, NoiseAndTheSmallestPicturesFindTheirRoom)
{
    random_numbers random { 15 };
    for (int width : { 1, 2, 3, 17, 90, 4000 })
        for (int height : { 1, 2, 50 }) {
            picture lines = picture(size_t(height), pixel_line(size_t(width)));
            for (pixel_line &line : lines)
                for (uint8_t &pixel : line)
                    pixel = uint8_t(random.below(2));
            const std::vector<uint8_t> coded = bytes_of(encoded(lines, GROUP4));
            coded_file f(std::vector<uint8_t>(coded.size()), width, height);
            ASSERT_EQ(put_all(f.file, lines), 1) << width << " x " << height;
            EXPECT_EQ(f.data, coded) << width << " x " << height;
        }
}

TEST(CitPutline, AShortWriteIsTold)
{
    coded_file f(std::vector<uint8_t>(10), 333, 57);
    EXPECT_EQ(put_all(f.file, sample()), 0);
    EXPECT_EQ(f.file->error, 0x0C2A803Eu);
}

TEST(CitPutline, APictureBeginsAtLine0)
{
    coded_file f(std::vector<uint8_t>(10), 333, 57);
    f.file->current_line = 3;
    EXPECT_EQ(cit_putline(f.file, packed(sample()[3]).data()), 0);
    EXPECT_EQ(f.file->error, uint32_t(RIO_LINE_ORDER));
}

TEST(CitPutline, NoMemoryIsToldByEachAllocation)
{
    // Two lists, the coded bytes, the encoder and three buffers of its own.
    for (long n = 0; n < 7; n++) {
        coded_file f(std::vector<uint8_t>(10000), 333, 57);
        mem_fail_countdown = n;
        EXPECT_EQ(put_all(f.file, sample()), 0) << n;
        EXPECT_EQ(f.file->error, uint32_t(RIO_NO_MEMORY)) << n;
        mem_fail_countdown = -1;
        f.file->error = 0;
        EXPECT_EQ(put_all(f.file, sample()), 1) << n;
    }
}
