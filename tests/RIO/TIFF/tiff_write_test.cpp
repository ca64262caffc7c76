#include "RIO/TIFF/tiff_builder.h"
#include <gtest/gtest.h>
#include <random>

// A new TIFF file in memory; `finish` closes it and answers its bytes.
struct created {
    memory_file memory { size_t{4} << 20 };
    RFILE *file;
    created(int width, int height, int type) : file(new_file(memory, RIO_FORMAT_TIFF, width, height, type)) {}
    bytes finish()
    {
        rio_close(file);
        file = nullptr;
        return bytes(memory.data.begin(), memory.data.begin() + long(memory.record.end));
    }
    ~created()
    {
        if (file)
            rio_close(file);
    }
};

static bytes line_of(int width, int y, int plane = 0)
{
    bytes line;
    for (int x = 0; x < width; x++)
        line.push_back(uint8_t(x < width / 2 ? y * 7 + plane : x * 13 + y * 5 + plane * 90));
    return line;
}

// An overview answers for its class, not for its samples.
static int samples_of(RFILE *file)
{
    const int kind = key_of(file, RIO_KEY_IMAGE_CLASS);
    return kind == RIO_CLASS_COLOUR ? 3 : kind == RIO_CLASS_FOUR_BAND ? 4 : 1;
}

static void put_lines(RFILE *file, int width, int height)
{
    for (int y = 0; y < height; y++) {
        const bytes planes[4] = { line_of(width, y), line_of(width, y, 1), line_of(width, y, 2), line_of(width, y, 3) };
        const void *const lines[] = { planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data() };
        ASSERT_EQ(rio_putline_planes(file, samples_of(file), lines), 0) << y;
        ASSERT_EQ(rio_errno, 0u);
    }
}

static void expect_lines(RFILE *file, int width, int height)
{
    const int samples = samples_of(file);
    ASSERT_EQ(key_of(file, RIO_KEY_WIDTH), width);
    ASSERT_EQ(key_of(file, RIO_KEY_HEIGHT), height);
    for (int y = 0; y < height; y++) {
        bytes planes[4] = { bytes(size_t(width)), bytes(size_t(width)), bytes(size_t(width)), bytes(size_t(width)) };
        void *const lines[] = { planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data() };
        ASSERT_EQ(rio_getline_planes(file, samples, lines), 0) << y;
        for (int s = 0; s < samples; s++)
            ASSERT_EQ(planes[s], line_of(width, y, s)) << y << " " << s;
    }
}

struct reading {
    memory_file memory;
    RFILE *file;
    explicit reading(const bytes &content) : memory(content), file(memory.open_r()) {}
    ~reading()
    {
        if (file)
            rio_close(file);
    }
};

// Reads a 16-bit or 32-bit field of a little-endian directory entry.
static uint32_t tag_value(const bytes &file, uint16_t wanted)
{
    const auto u = [&](size_t at, int size) {
        uint32_t v = 0;
        for (int i = 0; i < size; i++)
            v |= uint32_t(file[at + size_t(i)]) << 8 * i;
        return v;
    };
    const size_t at = u(4, 4);
    uint32_t last = 0;
    for (size_t i = 0; i < u(at, 2); i++) {
        const size_t entry = at + 2 + 12 * i;
        EXPECT_GT(u(entry, 2), last);       // ascending order
        last = u(entry, 2);
        if (last == wanted)
            return u(entry + 8, u(entry + 2, 2) == 3 && u(entry + 4, 4) == 1 ? 2 : 4);
    }
    return 0xFFFFFFFF;
}

TEST(TiffWrite, EveryDataTypeComesBack)
{
    struct {
        int type, then, compression, photometric, samples;
    } const cases[] = {
        { RIO_TYPE_BYTE, RIO_TYPE_BYTE, 1, 1, 1 },        { RIO_TYPE_BYTE_RLE, RIO_TYPE_BYTE_RUN, 32773, 1, 1 },
        { RIO_TYPE_BYTE_RUN, RIO_TYPE_BYTE_RUN, 5, 1, 1 }, { RIO_TYPE_JPEG, RIO_TYPE_BYTE, 1, 1, 1 },
        { RIO_TYPE_RGB, RIO_TYPE_RGB, 1, 2, 3 },          { RIO_TYPE_JPEG_RGB, RIO_TYPE_RGB, 1, 2, 3 },
        { RIO_TYPE_RGB_BYTE_RUN, RIO_TYPE_RGB_BYTE_RUN, 5, 2, 3 }, { RIO_TYPE_4, RIO_TYPE_4, 1, 5, 4 },
        { RIO_TYPE_4_BYTE_RUN, RIO_TYPE_4_BYTE_RUN, 5, 5, 4 },
    };
    for (const auto &c : cases)
        for (int planar : { 1, 2 })
            for (int predictor : { 1, 2 })
                for (int tile : { 0, 16 }) {
                    created n(101, 43, c.type);
                    ASSERT_TRUE(n.file);
                    ASSERT_EQ(set_key(n.file, 502, predictor), 0);
                    ASSERT_EQ(set_key(n.file, 503, planar), 0);
                    ASSERT_EQ(set_key(n.file, RIO_KEY_TILE_WIDTH, tile), 0);
                    ASSERT_EQ(tile ? set_key(n.file, RIO_KEY_TILE_HEIGHT, 32) : 0, 0);
                    put_lines(n.file, 101, 43);
                    reading r(n.finish());
                    ASSERT_TRUE(r.file);
                    EXPECT_EQ(key_of(r.file, RIO_KEY_DATA_TYPE), c.then);
                    EXPECT_EQ(key_of(r.file, 501), c.compression);
                    EXPECT_EQ(key_of(r.file, 502), c.compression == 5 ? predictor : 1);
                    EXPECT_EQ(key_of(r.file, 504), c.photometric);
                    EXPECT_EQ(key_of(r.file, RIO_KEY_TILE_WIDTH), tile);
                    expect_lines(r.file, 101, 43);
                }
}

// Tiles of 16 x 16: a row of 3 white, 2 black, 11 white pixels; the other rows are white.
TEST(TiffWrite, BilevelTilesComeAsRunLengths)
{
    for (int type : { RIO_TYPE_BITMAP, RIO_TYPE_CCITT4 }) {
        created n(32, 16, type);
        ASSERT_EQ(set_key(n.file, RIO_KEY_TILE_WIDTH, 16), 0);
        for (int y = 0; y < 16; y++) {
            const uint16_t line[] = { 0, uint16_t(y == 1 ? 0x1800 : 0) };
            ASSERT_EQ(rio_putline(n.file, line), 0);
        }
        reading r(n.finish());
        ASSERT_TRUE(r.file);
        uint16_t runs[64];
        int size = sizeof runs;
        ASSERT_EQ(rio_getrletile(r.file, runs, &size, nullptr), 0);
        EXPECT_EQ(words(runs, runs + size / 2), words(16, 16));
        size = 34;
        EXPECT_EQ(rio_getrletile(r.file, runs, &size, nullptr), 1);     // 15 rows of a run, and one of three
        EXPECT_EQ(rio_errno, uint32_t(RIO_RLE_BUFFER));
        ASSERT_GE(size, 36);
        size = sizeof runs;
        ASSERT_EQ(rio_getrletile(r.file, runs, &size, nullptr), 0);
        words wanted { 16, 3, 2, 11 };
        wanted.resize(18, 16);
        EXPECT_EQ(words(runs, runs + size / 2), wanted);
    }
    created grey(16, 16, RIO_TYPE_BYTE);
    ASSERT_EQ(set_key(grey.file, RIO_KEY_TILE_WIDTH, 16), 0);
    put_lines(grey.file, 16, 16);
    reading r(grey.finish());
    uint16_t runs[64];
    int size = sizeof runs;
    EXPECT_EQ(rio_getrletile(r.file, runs, &size, nullptr), 1);
    EXPECT_EQ(rio_errno, uint32_t(RIO_UNSUPPORTED));
}

TEST(TiffWrite, BilevelLinesInEveryCompression)
{
    for (int type : { RIO_TYPE_BITMAP, RIO_TYPE_BITMAP_RLE, RIO_TYPE_CCITT3, RIO_TYPE_CCITT4 })
        for (int width : { 1, 16, 31, 600 })
            for (int tile : { 0, 16 }) {
                created n(width, 50, type);
                ASSERT_EQ(set_key(n.file, RIO_KEY_TILE_WIDTH, tile), 0);
                std::mt19937 random(uint32_t(width + type));
                std::vector<words> lines;
                for (int y = 0; y < 50; y++) {
                    words line((size_t(width) + 15) / 16);
                    for (uint16_t &word : line)
                        word = uint16_t(random() % 3 ? 0 : random());
                    if (width % 16)
                        line.back() = uint16_t(line.back() & 0xFFFF << (16 - width % 16));
                    lines.push_back(line);
                    ASSERT_EQ(rio_putline(n.file, line.data()), 0);
                }
                reading r(n.finish());
                ASSERT_TRUE(r.file);
                EXPECT_EQ(key_of(r.file, RIO_KEY_DATA_TYPE), type);
                for (const words &line : lines)
                    ASSERT_EQ(next_words(r.file), line) << type << " " << width << " " << tile;
            }
}

TEST(TiffWrite, WideSamples)
{
    created n(3, 2, RIO_TYPE_16);
    const words first { 1, 0x1234, 0xFFFF }, second { 9, 8, 7 };
    EXPECT_EQ(rio_putline(n.file, first.data()), 0);
    EXPECT_EQ(rio_putline(n.file, second.data()), 0);
    reading r(n.finish());
    words line(3);
    EXPECT_EQ(rio_getline(r.file, line.data()), 0);
    EXPECT_EQ(line, first);
    created wide(1, 1, RIO_TYPE_32);
    const uint32_t pixel = 0x12345678;
    EXPECT_EQ(rio_putline(wide.file, &pixel), 0);
    reading w(wide.finish());
    uint32_t found = 0;
    EXPECT_EQ(rio_getline(w.file, &found), 0);
    EXPECT_EQ(found, pixel);
}

TEST(TiffWrite, WhiteIsZeroIsStoredInvertedButForBilevelLines)
{
    created gray(2, 1, RIO_TYPE_16);
    EXPECT_EQ(set_key(gray.file, 504, 0), 0);
    const words line { 0, 0x1234 };
    EXPECT_EQ(rio_putline(gray.file, line.data()), 0);
    const bytes out = gray.finish();
    EXPECT_EQ(bytes(out.begin() + 8, out.begin() + 12), (bytes { 0xFF, 0xFF, 0xCB, 0xED }));
    reading r(out);
    words back(2);
    EXPECT_EQ(rio_getline(r.file, back.data()), 0);
    EXPECT_EQ(back, line);
    created ink(8, 1, RIO_TYPE_BITMAP);
    EXPECT_EQ(set_key(ink.file, 504, 0), 0);
    const uint16_t word = 0xA500;
    EXPECT_EQ(rio_putline(ink.file, &word), 0);
    EXPECT_EQ(ink.finish()[8], 0xA5);
}

// Rows of a strip: 3072, 2048 or 8192 over the width, for bilevel data over the bytes of a row; at least one.
TEST(TiffWrite, StripsAreOfAHandySize)
{
    struct {
        int width, height, type, wanted, rows;
    } const cases[] = {
        { 100, 200, RIO_TYPE_BYTE, 0, 81 },     { 100, 50, RIO_TYPE_BYTE, 0, 50 },      { 9000, 3, RIO_TYPE_BYTE, 0, 1 },
        { 100, 200, RIO_TYPE_16, 0, 81 },       { 100, 200, RIO_TYPE_RGB, 0, 30 },      { 5000, 2, RIO_TYPE_RGB, 0, 1 },
        { 100, 200, RIO_TYPE_4, 0, 20 },        { 1000, 200, RIO_TYPE_BITMAP, 0, 65 },  { 1000, 60, RIO_TYPE_CCITT4, 0, 60 },
        { 100, 200, RIO_TYPE_BYTE, 7, 7 },      { 100, 200, RIO_TYPE_BYTE, 201, 81 },   { 100, 200, RIO_TYPE_RGB, -1, 200 },
    };
    for (const auto &c : cases) {
        created n(c.width, c.height, c.type);
        ASSERT_EQ(set_key(n.file, 505, c.wanted), 0);
        ASSERT_EQ(rio_write_header(n.file), 0);
        EXPECT_EQ(key_of(n.file, 505), c.rows) << c.width << " " << c.height << " " << c.type << " " << c.wanted;
    }
    created planar(100, 200, RIO_TYPE_RGB);
    set_key(planar.file, 503, 2);
    rio_write_header(planar.file);
    EXPECT_EQ(key_of(planar.file, 505), 81);
}

TEST(TiffWrite, APartialLastStripHasTheLinesItHas)
{
    created n(10, 100, RIO_TYPE_BYTE);
    set_key(n.file, 505, 8);
    put_lines(n.file, 10, 11);
    reading r(n.finish());
    for (int y = 0; y < 11; y++)
        EXPECT_EQ(next_line(r.file), line_of(10, y));
    rio_seek(r.file, 16);
    EXPECT_EQ(next_line(r.file), bytes());
}

TEST(TiffWrite, LinesComeInOrder)
{
    created n(10, 10, RIO_TYPE_BYTE);
    bytes line(10);
    EXPECT_EQ(rio_putline(n.file, line.data()), 0);
    EXPECT_EQ(rio_seek(n.file, 5), 0);
    EXPECT_EQ(rio_putline(n.file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_LINE_ORDER);
}

TEST(TiffWrite, AColourTableMakesIndices)
{
    created n(4, 1, RIO_TYPE_BYTE);
    const rio_vlt_entry colours[] = { { 1, 0x1100, 0x2200, 0x3300 }, { 200, 0xFF00, 0, 0x8000 } };
    set_key(n.file, RIO_KEY_VLT_ENTRIES, 2);
    rio_put_vlt(n.file, colours);
    const bytes line { 1, 200, 1, 0 };
    EXPECT_EQ(rio_putline(n.file, line.data()), 0);
    reading r(n.finish());
    EXPECT_EQ(key_of(r.file, 504), 3);
    EXPECT_EQ(next_rgb(r.file), (bytes { 0x11, 0x22, 0x33, 0xFF, 0, 0x80, 0x11, 0x22, 0x33, 0, 0, 0 }));
}

TEST(TiffWrite, TheMatrixIsTheFirstPacket)
{
    created n(1, 1, RIO_TYPE_BYTE);
    double matrix[16];
    for (int i = 0; i < 16; i++)
        matrix[i] = 1.0 / (i + 1);
    EXPECT_EQ(rio_set_hdr_data(n.file, RIO_KEY_TRANSFORM, matrix), 0);
    // An older matrix among the packets is left out.
    words packets { 5, 6, 1, 0, 77, 2, 10, 64, 0 };
    packets.resize(packets.size() + 64);
    set_key(n.file, 7, int32_t(packets.size()));
    EXPECT_EQ(rio_put_packet(n.file, packets.data()), 0);
    const uint8_t pixel = 3;
    EXPECT_EQ(rio_putline(n.file, &pixel), 0);
    const bytes out = n.finish();
    const uint32_t at = tag_value(out, 33918);
    words expected { 2, 10, 64, 0 };
    words halves(64);
    memcpy(halves.data(), matrix, sizeof matrix);
    expected.insert(expected.end(), halves.begin(), halves.end());
    for (uint16_t word : words { 5, 6, 1, 0, 77 })
        expected.push_back(word);
    words found(expected.size());
    memcpy(found.data(), out.data() + at, found.size() * 2);
    EXPECT_EQ(found, expected);
    reading r(out);
    double back[16] = {};
    rio_get_hdr_data(r.file, RIO_KEY_TRANSFORM, back);
    EXPECT_EQ(memcmp(back, matrix, sizeof matrix), 0);
}

TEST(TiffWrite, UserTagsAndThoseThatAreTheWritersOwn)
{
    created n(1, 1, RIO_TYPE_BYTE);
    bytes artist { 0x3B, 1, 2, 0, 6, 0, 0, 0, 'p', 'a', 'u', 'l', 'a', 0 };     // 315
    const bytes short_one { 0x29, 1, 3, 0, 2, 0, 0, 0, 4, 0, 9, 0 };            // 297
    EXPECT_EQ(rio_set_hdr_data(n.file, 509, artist.data()), 0);
    EXPECT_EQ(rio_set_hdr_data(n.file, 509, short_one.data()), 0);
    for (int own : { 256, 257, 259, 262, 274, 278, 284, 317, 320, 322, 323 }) {
        artist[0] = uint8_t(own);
        artist[1] = uint8_t(own >> 8);
        EXPECT_EQ(rio_set_hdr_data(n.file, 509, artist.data()), 1) << own;
        EXPECT_EQ(rio_errno, RIO_BAD_FIELD);
    }
    bytes bad_type = short_one;
    bad_type[2] = 6;
    EXPECT_EQ(rio_set_hdr_data(n.file, 509, bad_type.data()), 1);
    const uint8_t pixel = 3;
    EXPECT_EQ(rio_putline(n.file, &pixel), 0);
    const bytes out = n.finish();
    EXPECT_EQ(tag_value(out, 297), 0x00090004u);
    EXPECT_EQ(memcmp(out.data() + tag_value(out, 315), "paula", 6), 0);
}

TEST(TiffWrite, HeaderValuesStandInTheirTags)
{
    created n(1, 1, RIO_TYPE_BYTE);
    set_key(n.file, RIO_KEY_ORIENTATION, 6);
    set_key(n.file, RIO_KEY_DEVICE_CODE, -400);
    const uint8_t pixel = 3;
    EXPECT_EQ(rio_putline(n.file, &pixel), 0);
    const bytes out = n.finish();
    EXPECT_EQ(tag_value(out, 254), 0u);
    EXPECT_EQ(tag_value(out, 274), 4u);
    EXPECT_EQ(tag_value(out, 296), 2u);
    EXPECT_EQ(out[tag_value(out, 282)], 400 % 256);
    reading r(out);
    EXPECT_EQ(key_of(r.file, RIO_KEY_ORIENTATION), 6);
    EXPECT_EQ(key_of(r.file, RIO_KEY_DEVICE_CODE), -400);
}

TEST(TiffWrite, OverviewsFollowTheirImage)
{
    for (int tile : { 0, 16 }) {
        created n(101, 43, RIO_TYPE_RGB_BYTE_RUN);
        set_key(n.file, RIO_KEY_TILE_WIDTH, tile);
        EXPECT_EQ(set_key(n.file, RIO_KEY_OVERVIEW_COUNT, 2), 0);
        put_lines(n.file, 101, 43);
        EXPECT_EQ(rio_set_active_ov(n.file, 0), 0);
        put_lines(n.file, 51, 22);
        EXPECT_EQ(rio_set_active_ov(n.file, 1), 0);
        EXPECT_EQ(set_key(n.file, RIO_KEY_WIDTH, 20), 0);
        EXPECT_EQ(set_key(n.file, RIO_KEY_HEIGHT, 10), 0);
        put_lines(n.file, 20, 10);
        reading r(n.finish());
        ASSERT_TRUE(r.file);
        EXPECT_EQ(key_of(r.file, RIO_KEY_OVERVIEW_COUNT), 2);
        EXPECT_EQ(key_of(r.file, RIO_KEY_IMAGES), 1);
        expect_lines(r.file, 101, 43);
        EXPECT_EQ(rio_set_active_ov(r.file, 1), 0);
        expect_lines(r.file, 20, 10);
        EXPECT_EQ(rio_set_active_ov(r.file, 0), 0);
        expect_lines(r.file, 51, 22);
    }
}

TEST(TiffWrite, PagesAreAppendedOneByOne)
{
    created n(30, 20, RIO_TYPE_BYTE);
    EXPECT_EQ(set_key(n.file, RIO_KEY_IMAGES, 3), 0);
    put_lines(n.file, 30, 20);
    EXPECT_EQ(rio_set_active_image(n.file, 2), 1);
    EXPECT_EQ(rio_errno, RIO_NO_IMAGE);
    EXPECT_EQ(rio_set_active_image(n.file, 1), 0);
    put_lines(n.file, 30, 20);
    EXPECT_EQ(rio_set_active_image(n.file, 2), 0);
    EXPECT_EQ(set_key(n.file, RIO_KEY_WIDTH, 7), 0);
    EXPECT_EQ(set_key(n.file, RIO_KEY_HEIGHT, 5), 0);
    EXPECT_EQ(set_key(n.file, RIO_KEY_DATA_TYPE, RIO_TYPE_RGB_BYTE_RUN), 0);
    put_lines(n.file, 7, 5);
    reading r(n.finish());
    EXPECT_EQ(key_of(r.file, RIO_KEY_IMAGES), 3);
    expect_lines(r.file, 30, 20);
    EXPECT_EQ(rio_set_active_image(r.file, 2), 0);
    expect_lines(r.file, 7, 5);
    EXPECT_EQ(rio_set_active_image(r.file, 1), 0);
    expect_lines(r.file, 30, 20);
}

TEST(TiffModify, UncompressedLinesAreOverwrittenInPlace)
{
    for (int planar : { 1, 2 }) {
        created n(10, 9, RIO_TYPE_RGB);
        set_key(n.file, 503, planar);
        set_key(n.file, 505, 4);
        put_lines(n.file, 10, 9);
        memory_file memory(n.finish());
        const size_t size = memory.data.size();
        RFILE *file = rio_open_modify(memory.name);
        ASSERT_TRUE(file);
        const bytes red(10, 1), green(10, 2), blue(10, 3);
        EXPECT_EQ(rio_seek(file, 6), 0);
        EXPECT_EQ(rio_putline_rgb(file, red.data(), green.data(), blue.data()), 0);
        rio_close(file);
        EXPECT_EQ(memory.data.size(), size);
        file = memory.open_r();
        for (int y = 0; y < 9; y++) {
            const bytes line = next_rgb(file);
            EXPECT_EQ(line[0], y == 6 ? 1 : line_of(10, y)[0]);
            EXPECT_EQ(line[29], y == 6 ? 3 : line_of(10, y, 2)[9]);
        }
        rio_close(file);
    }
}

TEST(TiffModify, FillOrder2IsKeptAndPackedSamplesAreRefused)
{
    memory_file turned(one_strip(2, 1, 8, 1, { 1, 2 }, { { 266, shorts({ 2 }) } }));
    RFILE *file = rio_open_modify(turned.name);
    const bytes line { 0x0F, 0x80 };
    EXPECT_EQ(rio_putline(file, line.data()), 0);
    rio_close(file);
    EXPECT_EQ(turned.data[8], 0xF0);
    EXPECT_EQ(turned.data[9], 0x01);
    memory_file packed(one_strip(2, 1, 4, 1, { 0x12 }));
    file = rio_open_modify(packed.name);
    EXPECT_EQ(rio_putline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
    rio_close(file);
    EXPECT_EQ(packed.data[8], 0x12);
}

TEST(TiffModify, CompressedLinesAreRefused)
{
    created n(10, 9, RIO_TYPE_BYTE_RUN);
    put_lines(n.file, 10, 9);
    memory_file memory(n.finish());
    RFILE *file = rio_open_modify(memory.name);
    ASSERT_TRUE(file);
    bytes line(10);
    EXPECT_EQ(rio_putline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_MODIFY_MIDDLE);
    EXPECT_EQ(key_of(file, RIO_KEY_ERROR), int32_t(RIO_MODIFY_MIDDLE));
    rio_close(file);
}

TEST(TiffModify, ChangedHeaderDataAreWrittenAnewAndTheRestIsKept)
{
    for (bool big : { false, true }) {
        const std::string name = testing::TempDir() + "tiff_modify.tif";
        const bytes content = one_strip(2, 1, 8, 1, { 5, 6 }, { { 270, { 2, { 'o', 'l', 'd', ' ', 'o', 'n', 'e', 0 } } } }, big);
        FILE *out = fopen(name.c_str(), "wb");
        fwrite(content.data(), 1, content.size(), out);
        fclose(out);
        RFILE *file = rio_open_modify(name.c_str());
        ASSERT_TRUE(file);
        EXPECT_EQ(set_key(file, RIO_KEY_ORIENTATION, 7), 0);
        rio_close(file);
        file = rio_open_r(name.c_str());
        ASSERT_TRUE(file);
        EXPECT_EQ(key_of(file, RIO_KEY_ORIENTATION), 7);
        EXPECT_EQ(key_of(file, RIO_KEY_IMAGES), 1);
        bytes tag { 14, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 };
        EXPECT_EQ(rio_get_hdr_data(file, 509, tag.data()), 0);
        EXPECT_EQ(tag[4], 8);
        EXPECT_EQ(next_line(file), (bytes { 5, 6 }));
        rio_close(file);
        remove(name.c_str());
    }
}

TEST(TiffWrite, WhatDoesNotFitIsRefused)
{
    created n(10, 10, RIO_TYPE_BYTE);
    EXPECT_EQ(set_key(n.file, RIO_KEY_DATA_TYPE, RIO_TYPE_64), 1);
    EXPECT_EQ(set_key(n.file, RIO_KEY_TILE_WIDTH, 20), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_TILE_SIZE);
    EXPECT_EQ(set_key(n.file, 501, 4), 0);
    bytes line(10);
    EXPECT_EQ(rio_putline(n.file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_FEATURE_10);
}

// Writes with the n-th allocation failing; every try is an error or a whole file.
TEST(TiffWrite, EveryAllocationMayFail)
{
    for (int type : { RIO_TYPE_RGB_BYTE_RUN, RIO_TYPE_CCITT4, RIO_TYPE_BYTE_RLE })
        for (long n = 0;; n++) {
            memory_file memory(size_t{1} << 16);
            mem_fail_countdown = n;
            RFILE *file = memory.open_w();
            const bytes line(120, 0x5A);
            bool whole = file && !set_key(file, RIO_KEY_FORMAT, RIO_FORMAT_TIFF) && !set_key(file, RIO_KEY_WIDTH, 40)
                         && !set_key(file, RIO_KEY_HEIGHT, 30) && !set_key(file, RIO_KEY_DATA_TYPE, type);
            for (int y = 0; whole && y < 30; y++)
                whole = rio_putline_rgb(file, line.data(), line.data(), line.data()) == 0 && rio_errno == 0;
            if (file)
                rio_close(file);
            whole = whole && rio_errno == 0;
            const bool reached = mem_fail_countdown < 0;
            mem_fail_countdown = -1;
            if (whole) {
                reading r(bytes(memory.data.begin(), memory.data.begin() + long(memory.record.end)));
                EXPECT_TRUE(r.file) << n;
            }
            if (!reached) {
                EXPECT_TRUE(whole);
                EXPECT_GT(n, 8);
                break;
            }
            ASSERT_LT(n, 1000);
        }
}
