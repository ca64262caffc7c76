#include "RIO/TIFF/tiff_builder.h"
#include <gtest/gtest.h>
#include <random>

struct opened {
    memory_file memory;
    RFILE *file;
    explicit opened(const bytes &content) : memory(content), file(memory.open_r()) {}
    ~opened()
    {
        if (file)
            rio_close(file);
    }
};

static uint32_t refusal(const bytes &content)
{
    opened o(content);
    return o.file ? 0 : rio_errno;
}

static words wide_line(RFILE *file)
{
    words line(size_t(key_of(file, RIO_KEY_WIDTH)));
    return rio_getline(file, line.data()) == 0 ? line : words();
}

TEST(TiffRead, BothByteOrders)
{
    for (bool big : { false, true }) {
        opened o(one_strip(3, 2, 8, 1, { 1, 2, 3, 4, 5, 6 }, {}, big));
        ASSERT_TRUE(o.file);
        EXPECT_EQ(key_of(o.file, RIO_KEY_FORMAT), RIO_FORMAT_TIFF);
        EXPECT_EQ(key_of(o.file, RIO_KEY_DATA_TYPE), RIO_TYPE_BYTE);
        EXPECT_EQ(next_line(o.file), (bytes { 1, 2, 3 }));
        EXPECT_EQ(next_line(o.file), (bytes { 4, 5, 6 }));
        EXPECT_EQ(next_line(o.file), bytes());
        EXPECT_EQ(rio_errno, RIO_PAST_END);
    }
}

TEST(TiffRead, HeadersThatAreNone)
{
    EXPECT_EQ(refusal(text_bytes("MM is a text that begins so")), RIO_READ_FAILED);
    bytes file = one_strip(1, 1, 8, 1, { 9 });
    bytes version = file, offset = file, past = file;
    version[2] = 43;
    offset[4] = 7;
    offset[5] = offset[6] = offset[7] = 0;
    past[5] = past[6] = 0x7F;
    EXPECT_EQ(refusal(offset), RIO_READ_FAILED);
    EXPECT_EQ(refusal(past), RIO_READ_FAILED);
    version[2] = 42;
    version[3] = 1;
    EXPECT_EQ(refusal(version), RIO_READ_FAILED);
    EXPECT_EQ(refusal(bytes(file.begin(), file.begin() + 6)), RIO_READ_FAILED);
}

TEST(TiffRead, SamplesOfTwoToSevenBitsStandAtTheTopOfTheByte)
{
    // 3 bits: 111 001 010 and 7 bits of pad.
    const bytes file = one_strip(3, 1, 3, 1, { 0b11100101, 0 });
    opened o(file);
    EXPECT_EQ(next_line(o.file), (bytes { 7 << 5, 1 << 5, 2 << 5 }));
    rio_rewind(o.file);
    set_key(o.file, RIO_KEY_NO_SHIFT, 1);
    EXPECT_EQ(next_line(o.file), (bytes { 7, 1, 2 }));
}

TEST(TiffRead, WhereWhiteIsZeroGrayIsInvertedAndBilevelIsNot)
{
    opened eight(one_strip(3, 1, 8, 0, { 0, 1, 255 }));
    EXPECT_EQ(next_line(eight.file), (bytes { 255, 254, 0 }));
    opened four(one_strip(2, 1, 4, 0, { 0x0F }));
    EXPECT_EQ(next_line(four.file), (bytes { 0xF0, 0 }));
    opened one(one_strip(8, 1, 1, 0, { 0xA5 }));
    EXPECT_EQ(next_words(one.file), (words { 0xA500 }));
}

TEST(TiffRead, TwelveAndSixteenBitSamplesAreWords)
{
    opened twelve(one_strip(2, 1, 12, 1, { 0x12, 0x3A, 0xBC }));
    EXPECT_EQ(key_of(twelve.file, RIO_KEY_DATA_TYPE), RIO_TYPE_16);
    EXPECT_EQ(wide_line(twelve.file), (words { 0x123, 0xABC }));
    opened little(one_strip(2, 1, 16, 1, { 0x34, 0x12, 0x78, 0x56 }));
    EXPECT_EQ(wide_line(little.file), (words { 0x1234, 0x5678 }));
    opened big(one_strip(2, 1, 16, 1, { 0x12, 0x34, 0x56, 0x78 }, {}, true));
    EXPECT_EQ(wide_line(big.file), (words { 0x1234, 0x5678 }));
    words sixteen(2);
    rio_rewind(big.file);
    EXPECT_EQ(rio_getline16(big.file, sixteen.data()), 0);
    EXPECT_EQ(sixteen, (words { 0x1234, 0x5678 }));
}

TEST(TiffRead, AnOddRowOfBitsIsPaddedWithZeros)
{
    opened o(one_strip(20, 2, 1, 1, { 0xFF, 0x0F, 0xFF, 0x12, 0x34, 0x5F }));
    EXPECT_EQ(key_of(o.file, RIO_KEY_DATA_TYPE), RIO_TYPE_BITMAP);
    EXPECT_EQ(next_words(o.file), (words { 0xFF0F, 0xF000 }));
    EXPECT_EQ(next_words(o.file), (words { 0x1234, 0x5000 }));
}

TEST(TiffRead, FillOrder2TurnsTheBytesRound)
{
    opened o(one_strip(8, 1, 1, 1, { 0x01 }, { { 266, shorts({ 2 }) } }));
    EXPECT_EQ(next_words(o.file), (words { 0x8000 }));
}

TEST(TiffRead, IndicesGoThroughTheHighBytesOfTheMapAndAreNotShifted)
{
    std::vector<uint32_t> map;
    for (uint32_t c = 0; c < 3; c++)
        for (uint32_t i = 0; i < 16; i++)
            map.push_back((16 * i + c) << 8 | 0x77);
    opened o(one_strip(2, 1, 4, 3, { 0x3F }, { { 320, shorts(map) } }));
    EXPECT_EQ(key_of(o.file, RIO_KEY_VLT_TYPE), 2);
    EXPECT_EQ(key_of(o.file, RIO_KEY_VLT_ENTRIES), 16);
    EXPECT_EQ(key_of(o.file, RIO_KEY_SIGNIFICANT_BITS), 8);
    EXPECT_EQ(next_line(o.file), (bytes { 3, 15 }));
    rio_rewind(o.file);
    EXPECT_EQ(next_rgb(o.file), (bytes { 48, 49, 50, 240, 241, 242 }));
    rio_vlt_entry table[RIO_VLT_SIZE];
    EXPECT_EQ(rio_get_vlt(o.file, table), 0);
    EXPECT_EQ(table[3].red, 0x3077);
}

TEST(TiffRead, ColoursInPixelsAndInPlanes)
{
    const tiff_tags three { { 277, shorts({ 3 }) }, { 258, shorts({ 8, 8, 8 }) } };
    opened contiguous(one_strip(2, 1, 8, 2, { 1, 2, 3, 4, 5, 6 }, three));
    EXPECT_EQ(key_of(contiguous.file, RIO_KEY_DATA_TYPE), RIO_TYPE_RGB);
    EXPECT_EQ(next_rgb(contiguous.file), (bytes { 1, 2, 3, 4, 5, 6 }));

    tiff_builder b;
    const uint32_t at = b.add({ 1, 4, 2, 5, 3, 6 });
    tiff_tags tags = image_tags(2, 1, 8, 2, 1, { at, at + 2, at + 4 }, { 2, 2, 2 }, 1);
    tags[277] = shorts({ 3 });
    tags[258] = shorts({ 8, 8, 8 });
    tags[284] = shorts({ 2 });
    b.directory(tags);
    opened planar(b.out);
    EXPECT_EQ(next_rgb(planar.file), (bytes { 1, 2, 3, 4, 5, 6 }));
    rio_rewind(planar.file);
    bytes green(2);
    void *const only_green[] = { nullptr, green.data(), nullptr };
    EXPECT_EQ(rio_getline_planes(planar.file, 3, only_green), 0);
    EXPECT_EQ(green, (bytes { 2, 5 }));
}

TEST(TiffRead, FourSamplesAreFourPlanes)
{
    const tiff_tags four { { 277, shorts({ 4 }) }, { 258, shorts({ 8, 8, 8, 8 }) } };
    opened o(one_strip(2, 1, 8, 5, { 1, 2, 3, 4, 5, 6, 7, 8 }, four));
    EXPECT_EQ(key_of(o.file, RIO_KEY_DATA_TYPE), RIO_TYPE_4);
    EXPECT_EQ(key_of(o.file, RIO_KEY_IMAGE_CLASS), RIO_CLASS_FOUR_BAND);
    bytes planes[4] = { bytes(2), bytes(2), bytes(2), bytes(2) };
    void *const lines[] = { planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data() };
    EXPECT_EQ(rio_getline_planes(o.file, 4, lines), 0);
    EXPECT_EQ(planes[0], (bytes { 1, 5 }));
    EXPECT_EQ(planes[3], (bytes { 4, 8 }));
}

TEST(TiffRead, RefusalsAtTheOpenAndAtTheFirstLine)
{
    for (uint32_t photometric : { 4u, 6u, 32844u })
        EXPECT_EQ(refusal(one_strip(1, 1, 8, photometric, { 1 })), RIO_FEATURE_10) << photometric;
    for (uint32_t compression : { 0u, 2u, 3u, 4u, 6u, 7u, 8u, 32946u })
        EXPECT_EQ(refusal(one_strip(1, 1, 8, 1, { 1 }, { { 259, shorts({ compression }) } })), RIO_FEATURE_10) << compression;
    EXPECT_EQ(refusal(one_strip(1, 1, 8, 2, { 1, 2, 3 }, { { 277, shorts({ 3 }) }, { 258, shorts({ 8, 8 }) } })), RIO_FEATURE_10);
    EXPECT_EQ(refusal(one_strip(0, 1, 8, 1, { 1 })), RIO_BAD_SIZE);
    for (uint32_t samples : { 2u, 3u }) {
        opened o(one_strip(1, 1, 8, 1, { 1, 2, 3 }, { { 277, shorts({ samples }) } }));
        ASSERT_TRUE(o.file);
        EXPECT_EQ(next_line(o.file), bytes());
        EXPECT_EQ(rio_errno, RIO_FEATURE_10);
    }
}

TEST(TiffRead, OrientationTagsBecomeScanCodes)
{
    const int codes[] = { 4, 4, 5, 7, 6, 0, 1, 3, 2, 4 };
    for (uint32_t tag = 0; tag < 10; tag++) {
        opened o(one_strip(1, 1, 8, 1, { 1 }, { { 274, shorts({ tag }) } }));
        EXPECT_EQ(key_of(o.file, RIO_KEY_ORIENTATION), codes[tag]) << tag;
    }
}

TEST(TiffRead, KeysOfTheHeader)
{
    opened o(one_strip(1, 1, 8, 1, { 1 }, { { 280, shorts({ 3 }) }, { 281, shorts({ 200 }) }, { 282, { 5, { 300, 1 } } },
                                            { 283, { 5, { 300, 1 } } }, { 296, shorts({ 2 }) }, { 270, { 2, { 'h', 'i', 0 } } } }));
    ASSERT_TRUE(o.file);
    EXPECT_EQ(key_of(o.file, 7), 3);
    EXPECT_EQ(key_of(o.file, 22), 200);
    EXPECT_EQ(key_of(o.file, 23), 0);
    EXPECT_EQ(key_of(o.file, 8), -300);
    EXPECT_EQ(key_of(o.file, 19), 0);
    EXPECT_EQ(key_of(o.file, 100), 0);
    EXPECT_EQ(key_of(o.file, 402), 1);
    EXPECT_EQ(key_of(o.file, 501), 1);
    EXPECT_EQ(key_of(o.file, 502), 1);
    EXPECT_EQ(key_of(o.file, 503), 1);
    EXPECT_EQ(key_of(o.file, 504), 1);
    EXPECT_EQ(key_of(o.file, 505), 1);
    EXPECT_EQ(key_of(o.file, 507), 8);
    bytes tag { 14, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 };       // 270
    EXPECT_EQ(rio_get_hdr_data(o.file, 509, tag.data()), 0);
    EXPECT_EQ(tag, (bytes { 14, 1, 2, 0, 3, 0, 0, 0, 'h', 'i', 0, 0 }));
    tag[1] = 99;
    EXPECT_EQ(rio_get_hdr_data(o.file, 509, tag.data()), 1);
    EXPECT_EQ(rio_errno, RIO_NO_TAG);

    // 100 dots a centimetre: 100 micrometres each, 1 * 10000 / 100.
    opened metric(one_strip(1, 1, 8, 1, { 1 }, { { 282, { 5, { 100, 1 } } }, { 296, shorts({ 3 }) } }));
    EXPECT_EQ(key_of(metric.file, 8), 100);
    opened none(one_strip(1, 1, 8, 1, { 1 }));
    EXPECT_EQ(key_of(none.file, 22), 255);
    EXPECT_EQ(key_of(none.file, 8), -72);
}

TEST(TiffRead, TheMatrixStandsInItsPacket)
{
    double matrix[16];
    for (int i = 0; i < 16; i++)
        matrix[i] = i * 1.25 - 3;
    std::vector<uint32_t> packet { 7, 8, 2, 0, 0xAAAA, 0xBBBB, 2, 10, 64, 0 };     // another packet before it
    words halves(64);
    memcpy(halves.data(), matrix, sizeof matrix);
    packet.insert(packet.end(), halves.begin(), halves.end());
    for (bool big : { false, true }) {
        opened o(one_strip(1, 1, 8, 1, { 1 }, { { 33918, shorts(packet) } }, big));
        double found[16] = {};
        EXPECT_EQ(rio_get_hdr_data(o.file, RIO_KEY_TRANSFORM, found), 0);
        EXPECT_EQ(memcmp(found, matrix, sizeof matrix), 0);
        words others(6);
        EXPECT_EQ(rio_get_packet(o.file, others.data()), 0);
        EXPECT_EQ(others, (words { 7, 8, 2, 0, 0xAAAA, 0xBBBB }));
    }
    EXPECT_EQ(refusal(one_strip(1, 1, 8, 1, { 1 }, { { 33918, longs(packet) } })), RIO_READ_FAILED);
    opened none(one_strip(1, 1, 8, 1, { 1 }));
    double found[16] = {};
    EXPECT_EQ(rio_get_hdr_data(none.file, RIO_KEY_TRANSFORM, found), 0);
    EXPECT_EQ(found[0], 1.0);
    EXPECT_EQ(found[1], 0.0);
    EXPECT_EQ(rio_get_packet(none.file, found), 1);
    EXPECT_EQ(rio_errno, RIO_NO_PACKETS);
}

TEST(TiffRead, AFileInAWrapperCountsFromItsOwnStart)
{
    bytes wrapper(40, 0);
    const bytes inner = one_strip(2, 1, 8, 1, { 5, 6 });
    memcpy(wrapper.data(), "\xC5\xD0\xD3\xC6", 4);
    wrapper[20] = 40;
    wrapper[24] = uint8_t(inner.size());
    wrapper[28] = wrapper[29] = 0xFF;
    opened o(wrapper + inner);
    ASSERT_TRUE(o.file);
    EXPECT_EQ(next_line(o.file), (bytes { 5, 6 }));
}

TEST(TiffRead, RunLengthsOfBilevelLinesOnly)
{
    tiff_builder b;
    const uint32_t at = b.add({ 1, 0x0F, 0xF0 });
    b.directory(image_tags(16, 1, 1, 1, 32773, { at }, { 3 }, 1));
    opened o(b.out);
    words runs(8);
    int size = 16;
    EXPECT_EQ(rio_getrleline(o.file, runs.data(), &size), 16);
    EXPECT_EQ(words(runs.begin(), runs.begin() + size / 2), (words { 4, 8, 4 }));
    opened gray(one_strip(2, 1, 8, 1, { 5, 6 }));
    EXPECT_EQ(rio_getrleline(gray.file, runs.data(), &size), 0);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
}

// ---- strips and tiles ------------------------------------------------------------------------------------------------

TEST(TiffRead, AMissingByteCountOfASingleStripIsTheRestOfTheFile)
{
    tiff_builder c;
    // The strip lies behind the directory: 9 entries and no long values.
    const uint32_t at = 8 + 2 + 9 * 12 + 4;
    c.directory(image_tags(4, 1, 8, 1, 32773, { at }, { 0 }, 1));
    ASSERT_EQ(c.out.size(), at);
    c.add({ 0xFD, 9 });
    opened o(c.out);
    ASSERT_TRUE(o.file);
    EXPECT_EQ(key_of(o.file, RIO_KEY_DATA_TYPE), RIO_TYPE_BYTE_RUN);
    EXPECT_EQ(next_line(o.file), (bytes { 9, 9, 9, 9 }));
}

TEST(TiffRead, AMissingByteCountOfALaterStripIsAWholeStrip)
{
    tiff_builder b;
    const uint32_t one = b.add({ 0xFD, 1 }), two = b.add({ 0xFD, 2 });
    b.directory(image_tags(4, 2, 8, 1, 32773, { one, two }, { 2, 0 }, 1));
    opened o(b.out);
    EXPECT_EQ(next_line(o.file), (bytes { 1, 1, 1, 1 }));
    EXPECT_EQ(next_line(o.file), (bytes { 2, 2, 2, 2 }));
    EXPECT_EQ(rio_seek(o.file, 0), 0);
    EXPECT_EQ(next_line(o.file), (bytes { 1, 1, 1, 1 }));
}

TEST(TiffRead, RowsPerStripThatAreMissingFollowFromTheStrips)
{
    tiff_builder b;
    const uint32_t at = b.add({ 1, 2, 3, 4, 5 });
    tiff_tags tags = image_tags(1, 5, 8, 1, 1, { at, at + 3 }, { 3, 2 }, 1);
    tags.erase(278);
    b.directory(tags);
    opened o(b.out);
    EXPECT_EQ(key_of(o.file, 505), 3);
    for (uint8_t y = 1; y <= 5; y++)
        EXPECT_EQ(next_line(o.file), bytes { y });
}

TEST(TiffRead, DifferencesAreSummedAfterLzw)
{
    // 10 11 12 13 are stored as 10 1 1 1. Nine bits each: 256, 10, 1, 259 (1 and 1), 257:
    // 10000000 00000010 10000000 00110000 00111000 00001000
    const bytes code { 0x80, 0x02, 0x80, 0x30, 0x38, 0x08 };
    tiff_builder b;
    const uint32_t at = b.add(code);
    tiff_tags tags = image_tags(4, 1, 8, 1, 5, { at }, { 6 }, 1);
    tags[317] = shorts({ 2 });
    b.directory(tags);
    opened o(b.out);
    EXPECT_EQ(next_line(o.file), (bytes { 10, 11, 12, 13 }));
}

TEST(TiffRead, TilesNeedNotBeSquare)
{
    // 20 x 20 in tiles of 16 x 32: two across, one down. A tile's byte is its number.
    tiff_builder b;
    const uint32_t one = b.add(bytes(16 * 32, 1)), two = b.add(bytes(16 * 32, 2));
    tiff_tags tags = image_tags(20, 20, 8, 1, 1, { one, two }, { 512, 512 }, 20);
    tags[322] = shorts({ 16 });
    tags[323] = shorts({ 32 });
    tags[324] = tags[273];
    tags[325] = tags[279];
    tags.erase(273);
    tags.erase(279);
    b.directory(tags);
    opened o(b.out);
    ASSERT_TRUE(o.file);
    EXPECT_EQ(key_of(o.file, RIO_KEY_TILE_WIDTH), 16);
    EXPECT_EQ(key_of(o.file, RIO_KEY_TILE_HEIGHT), 32);
    for (int y = 0; y < 20; y++)
        EXPECT_EQ(next_line(o.file), bytes(16, 1) + bytes(4, 2));
    bytes tile(512);
    void *const planes[] = { tile.data() };
    EXPECT_EQ(rio_seek(o.file, 1), 0);
    EXPECT_EQ(rio_gettile(o.file, 1, planes, nullptr), 0);
    EXPECT_EQ(tile, bytes(512, 2));
    EXPECT_EQ(rio_gettile(o.file, 1, planes, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
}

// ---- chains ----------------------------------------------------------------------------------------------------------

// Directories of the given subfile types; image n is of the single pixel n.
static bytes chain(const std::vector<uint32_t> &types)
{
    tiff_builder b;
    uint8_t pixel = 0;
    for (uint32_t type : types) {
        const uint32_t at = b.add({ pixel++ });
        tiff_tags tags = image_tags(1, 1, 8, 1, 1, { at }, { 1 }, 1);
        tags[254] = longs({ type });
        b.directory(tags);
    }
    return b.out;
}

TEST(TiffChain, ReducedImagesAreOverviews)
{
    opened o(chain({ 0, 1, 1 }));
    EXPECT_EQ(key_of(o.file, RIO_KEY_OVERVIEW_COUNT), 2);
    EXPECT_EQ(key_of(o.file, RIO_KEY_IMAGES), 1);
    for (int n : { 1, 0 }) {
        EXPECT_EQ(rio_set_active_ov(o.file, n), 0);
        EXPECT_EQ(next_line(o.file), (bytes { uint8_t(n + 1) }));
    }
    EXPECT_EQ(rio_set_active_ov(o.file, 2), 1);
    EXPECT_EQ(rio_errno, RIO_NO_OVERVIEW);
    EXPECT_EQ(rio_set_active_ov(o.file, -1), 0);
    EXPECT_EQ(next_line(o.file), (bytes { 0 }));
}

TEST(TiffChain, APlainPageMakesAllOfThemPages)
{
    opened o(chain({ 0, 1, 1, 0 }));
    EXPECT_EQ(key_of(o.file, RIO_KEY_OVERVIEW_COUNT), 0);
    EXPECT_EQ(key_of(o.file, RIO_KEY_IMAGES), 4);
    EXPECT_EQ(rio_set_active_image(o.file, 2), 0);
    EXPECT_EQ(key_of(o.file, RIO_KEY_IMAGES), -1);
    EXPECT_EQ(next_line(o.file), (bytes { 2 }));
    EXPECT_EQ(rio_set_active_image(o.file, 0), 0);
    EXPECT_EQ(next_line(o.file), (bytes { 0 }));
    for (int n : { 4, -1 }) {
        EXPECT_EQ(rio_set_active_image(o.file, n), 1);
        EXPECT_EQ(rio_errno, RIO_NO_IMAGE);
    }
    opened single(chain({ 0, 1 }));
    EXPECT_EQ(rio_set_active_image(single.file, 1), 1);
    EXPECT_EQ(rio_errno, RIO_NO_IMAGE);
}

TEST(TiffChain, ALoopEndsTheChainSilently)
{
    for (size_t back : { 0u, 1u }) {
        tiff_builder b;
        b.out = chain({ 0, 2 });
        // The last word of the file links on: to the first directory, or to the second itself.
        const uint32_t first = b.out[4] | uint32_t(b.out[5]) << 8;
        const uint32_t second = uint32_t(b.out.size()) - 4 - 10 * 12 - 2;
        b.set(b.out.size() - 4, back ? second : first, 4);
        opened o(b.out);
        ASSERT_TRUE(o.file);
        EXPECT_EQ(rio_errno, 0u);
        EXPECT_EQ(key_of(o.file, RIO_KEY_IMAGES), 2);
    }
}

// ---- hostile files ----------------------------------------------------------------------------------------------------

TEST(TiffHostile, ADirectoryThatClaimsMoreEntriesThanTheFileHas)
{
    bytes file = one_strip(1, 1, 8, 1, { 1 });
    const size_t at = file[4];
    file[at] = file[at + 1] = 0xFF;
    EXPECT_EQ(refusal(file), RIO_READ_FAILED);
}

// A hundred thousand directories of two entries, and as many offsets into one long run of zeros and entries.
TEST(TiffHostile, AMillionEntriesEndInTime)
{
    tiff_builder many;
    const uint32_t at = many.add({ 1 });
    many.directory(image_tags(1, 1, 8, 1, 1, { at }, { 1 }, 1));
    for (int i = 0; i < 100000; i++)
        many.directory({ { 256, longs({ 1 }) }, { 257, longs({ 1 }) } });
    opened o(many.out);
    ASSERT_TRUE(o.file);
    EXPECT_EQ(key_of(o.file, RIO_KEY_IMAGES), 65535);

    // Each directory reaches over all those behind it: 65535 entries that overlap, and the next one two bytes on.
    bytes overlapping(2 << 20, 0);
    memcpy(overlapping.data(), "II*\0\10\0\0\0", 8);
    for (size_t i = 8; i + 2 < overlapping.size(); i += 2)
        overlapping[i] = overlapping[i + 1] = 0xFF;
    opened other(overlapping);
    EXPECT_FALSE(other.file);
}

TEST(TiffHostile, StripsThatLieOutsideTheFileAreReadErrors)
{
    for (uint32_t offset : { 0u, 5000u, 0xFFFFFFFFu }) {
        tiff_builder b;
        const uint32_t at = b.add({ 1, 2 });
        b.directory(image_tags(2, 2, 8, 1, 1, { at, offset }, { 2, 2 }, 1));
        opened o(b.out);
        ASSERT_TRUE(o.file);
        EXPECT_EQ(next_line(o.file), (bytes { 1, 2 }));
        EXPECT_EQ(next_line(o.file), bytes());
        EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    }
}

// Forty bytes that claim to be a picture of two thousand million lines, in each coding.
TEST(TiffHostile, AFewBytesThatClaimAHugePictureGetLittleMemory)
{
    for (uint32_t compression : { 1u, 5u, 32773u, 2u, 3u, 4u }) {
        const uint32_t bits = compression >= 2 && compression <= 4 ? 1 : 8;
        tiff_builder b;
        const uint32_t at = b.add(bytes(40, 0x80));
        b.directory(image_tags(30, 0x7FFFFFFF, bits, 1, compression, { at }, { 40 }, 0x7FFFFFFF));
        opened o(b.out);
        ASSERT_TRUE(o.file) << compression;
        uint16_t line[32];
        rio_getline(o.file, line);
        EXPECT_EQ(rio_seek(o.file, 0x7FFFFFF0), 0);
        rio_getline(o.file, line);
    }
    for (uint32_t compression : { 1u, 5u, 32773u }) {
        tiff_builder b;
        const uint32_t at = b.add(bytes(40, 0x80));
        b.directory(image_tags(0x7FFFFFF, 2, 8, 1, compression, { at }, { 40 }, 2));
        EXPECT_EQ(refusal(b.out), RIO_READ_FAILED) << compression;
    }
}

TEST(TiffHostile, CutAndDamagedFilesNeverDoMoreThanFail)
{
    std::vector<uint32_t> map(3 * 16, 7);
    const bytes good = one_strip(9, 9, 4, 3, bytes(45, 0x21), { { 320, shorts(map) } }) ;
    for (size_t cut = 0; cut < good.size(); cut++)
        read_through(bytes(good.begin(), good.begin() + long(cut)));
    std::mt19937 random(3);
    for (int i = 0; i < 3000; i++) {
        bytes bad = good;
        bad[random() % bad.size()] ^= uint8_t(1 << random() % 8);
        bad[random() % bad.size()] = uint8_t(random());
        EXPECT_LE(read_through(bad), 1 << 24);
    }
}

// Bilevel lines with the first, second, ... allocation failing: at the open or at the line that meets it.
static int bilevel_memory_faults(const bytes &content, const words &line, int lines)
{
    for (int n = 0; n < 1000; n++) {
        memory_file memory(content);
        mem_fail_countdown = n;
        RFILE *file = memory.open_r();
        uint32_t error = file ? 0 : rio_errno;
        for (int y = 0; file && !error && y < lines; y++)
            error = next_words(file) == line ? 0 : rio_errno;
        if (file)
            rio_close(file);
        const bool reached = mem_fail_countdown < 0;
        mem_fail_countdown = -1;
        if (!reached)
            return error ? -1 : n;
        if (error && error != RIO_NO_MEMORY)
            return -1;
    }
    return -1;
}

TEST(TiffHostile, EveryAllocationMayFail)
{
    std::vector<uint32_t> map(3 * 256, 7 << 8);
    EXPECT_GT(read_with_memory_faults(one_strip(9, 9, 8, 3, bytes(81, 0x21), { { 320, shorts(map) } })), 5);
    EXPECT_GT(read_with_memory_faults(chain({ 0, 1, 1 })), 5);
    // Three white lines of Group 4, a bit 1 each, and three lines of two PackBits codes.
    tiff_builder four;
    uint32_t at = four.add({ 0xE0, 0, 0, 0 });
    four.directory(image_tags(16, 3, 1, 1, 4, { at }, { 4 }, 3));
    EXPECT_GT(bilevel_memory_faults(four.out, { 0 }, 3), 8);
    tiff_builder packed;
    at = packed.add({ 1, 0xAB, 0xCD, 1, 0xAB, 0xCD, 1, 0xAB, 0xCD });
    packed.directory(image_tags(16, 3, 1, 1, 32773, { at }, { 9 }, 3));
    EXPECT_GT(bilevel_memory_faults(packed.out, { 0xABCD }, 3), 8);
}
