// Lines of uncompressed native files.
#include "RIO/CORE/plain_record.h"
#include "RIO/CORE/tests_native.h"
#include "RIO/NATV/ntv.h"
#include <gtest/gtest.h>

struct NativeLines : testing::Test {
    test_folder folder;
    RFILE *create(int width, int height, int type, bool read_back = false)
    {
        const std::string path = folder / "a.ntv";
        RFILE *file = read_back ? rio_open_wr(path.c_str()) : rio_open_w(path.c_str());
        EXPECT_TRUE(file);
        EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_WIDTH, &width), 0);
        EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_HEIGHT, &height), 0);
        EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_DATA_TYPE, &type), 0);
        return file;
    }
    RFILE *reopen() { return rio_open_r((folder / "a.ntv").c_str()); }
    RFILE *open(const bytes &content) { return rio_open_r(folder.with("a.ntv", content).c_str()); }
};

TEST_F(NativeLines, EveryPlainTypeIsReadBack)
{
    // Bytes of a line of 21 pixels.
    const std::pair<int, int> types[] = { { 1, 4 }, { 2, 21 }, { 3, 42 }, { 4, 84 }, { 5, 84 }, { 6, 168 }, { 7, 168 }, { 8, 336 } };
    for (const auto &[type, size] : types) {
        RFILE *file = create(21, 5, type);
        std::vector<bytes> lines;
        for (int y = 0; y < 5; y++) {
            bytes line;
            for (int i = 0; i < size; i++)
                line.push_back(uint8_t(i * 5 + y * 17 + type));
            lines.push_back(line);
            ASSERT_EQ(rio_putline(file, line.data()), 0) << type;
        }
        rio_close(file);
        EXPECT_EQ(folder.content("a.ntv").size(), size_t(1024 + 5 * size)) << type;
        file = reopen();
        ASSERT_TRUE(file);
        bytes line(size_t(size), 0);
        for (const bytes &wanted : lines) {
            ASSERT_EQ(rio_getline(file, line.data()), 0) << type;
            EXPECT_EQ(line, wanted) << type;
        }
        EXPECT_EQ(rio_seek(file, 3), 0);
        EXPECT_EQ(rio_getline(file, line.data()), 0);
        EXPECT_EQ(line, lines[3]);
        rio_close(file);
    }
}

TEST_F(NativeLines, InterleavedColoursAndFourBands)
{
    for (const auto &[type, samples] : { std::pair { 28, 3 }, { 69, 4 } }) {
        RFILE *file = create(5, 3, type);
        bytes plane[4];
        for (int s = 0; s < 4; s++)
            for (int x = 0; x < 5; x++)
                plane[s].push_back(uint8_t(10 * x + s));
        const void *out[4] = { plane[0].data(), plane[1].data(), plane[2].data(), plane[3].data() };
        for (int y = 0; y < 3; y++)
            ASSERT_EQ(rio_putline_planes(file, samples, out), 0);
        rio_close(file);
        const bytes disk = folder.content("a.ntv");
        ASSERT_EQ(disk.size(), size_t(1024 + 3 * 5 * samples));
        EXPECT_EQ(disk[1024 + size_t(samples)], 10);
        EXPECT_EQ(disk[1024 + size_t(samples) + 1], 11);

        file = reopen();
        bytes in[4] = { bytes(5), bytes(5), bytes(5), bytes(5) };
        void *planes[4] = { in[0].data(), in[1].data(), in[2].data(), in[3].data() };
        EXPECT_EQ(rio_getline_planes(file, samples, planes), 0);
        for (int s = 0; s < samples; s++)
            EXPECT_EQ(in[s], plane[s]);
        bytes only(5);
        EXPECT_EQ(rio_getline(file, only.data()), 0);       // the first band
        EXPECT_EQ(only, plane[0]);
        bytes pixels(size_t(5 * samples));
        EXPECT_EQ(rio_getline_interleaved(file, pixels.data()), 0);
        EXPECT_EQ(pixels, bytes(disk.begin() + 1024, disk.begin() + 1024 + 5 * samples));
        rio_rewind(file);
        EXPECT_EQ(rio_getline_rgb(file, nullptr, only.data(), nullptr), 0);
        EXPECT_EQ(only, plane[1]);
        rio_close(file);
    }
}

TEST_F(NativeLines, GrayGoesToThreeBuffersAndACountOfTwoIsRefused)
{
    RFILE *file = open(native_bytes(4, 2));
    uint8_t r[4], g[4], b[4];
    EXPECT_EQ(rio_getline_rgb(file, r, g, b), 0);
    EXPECT_EQ(bytes(g, g + 4), (bytes { 0, 1, 2, 3 }));
    void *two[2] = { r, g };
    EXPECT_EQ(rio_getline_planes(file, 2, two), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_COUNT);
    EXPECT_EQ(rio_getline_rgb(file, nullptr, nullptr, nullptr), 0);     // skips a line
    EXPECT_EQ(file->current_line, 2);
    rio_close(file);
}

TEST_F(NativeLines, OddColourLinesMayHaveAPadByte)
{
    bytes padded = native_header(3, 2, 28);
    for (int v : { 1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 11, 12, 13, 14, 15, 16, 17, 18, 0 })
        padded.push_back(uint8_t(v));
    padded.push_back(0);                        // 2 * (9 + 1) bytes
    RFILE *file = open(padded);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->flags & RIO_PAD_LINE);
    uint8_t r[3], g[3], b[3];
    EXPECT_EQ(rio_getline_rgb(file, r, g, b), 0);
    EXPECT_EQ(rio_getline_rgb(file, r, g, b), 0);
    EXPECT_EQ(bytes(r, r + 3), (bytes { 11, 14, 17 }));
    rio_close(file);
    for (int more : { -1, 1 }) {
        bytes other = padded;
        other.resize(size_t(int(padded.size()) + more), 0);
        file = open(other);
        EXPECT_FALSE(file->flags & RIO_PAD_LINE) << more;
        rio_close(file);
    }
}

TEST_F(NativeLines, ModifyWritesInPlaceAndReadsBetween)
{
    const std::string path = folder.with("a.ntv", native_bytes(4, 3));
    RFILE *file = rio_open_modify(path.c_str());
    ASSERT_TRUE(file);
    uint8_t line[4];
    EXPECT_EQ(rio_getline(file, line), 0);
    const uint8_t fresh[4] = { 90, 91, 92, 93 };
    EXPECT_EQ(rio_putline(file, fresh), 0);
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[0], 8);
    EXPECT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[3], 93);
    rio_close(file);
    bytes wanted = native_bytes(4, 3);
    std::copy(fresh, fresh + 4, wanted.begin() + 1024 + 4);
    EXPECT_EQ(folder.content("a.ntv"), wanted);
}

TEST_F(NativeLines, AFileIsWrittenAndReadThroughOneRecord)
{
    RFILE *file = create(4, 3, 2, true);
    for (uint8_t y = 0; y < 3; y++) {
        const uint8_t line[4] = { y, 1, 2, 3 };
        EXPECT_EQ(rio_putline(file, line), 0);
    }
    EXPECT_EQ(rio_seek(file, 1), 0);
    uint8_t line[4];
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[0], 1);
    rio_close(file);
}

TEST_F(NativeLines, CodedLinesThatAreNotThereFailAndKeysStillAnswer)
{
    for (int type : { 9, 10, 25, 26, 27, 29, 67 }) {
        RFILE *file = open(native_header(4, 2, type));
        ASSERT_TRUE(file) << type;
        int32_t value = 0;
        EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_DATA_TYPE, &value), 0);
        EXPECT_EQ(value, type);
        uint8_t line[4];
        EXPECT_EQ(rio_getline(file, line), 1) << type;
        EXPECT_EQ(rio_errno, RIO_READ_FAILED) << type;
        rio_close(file);
    }
}

TEST_F(NativeLines, SeeksOutsideAreRefused)
{
    RFILE *file = open(native_bytes(4, 2));
    for (int line : { -1, 2, 3, INT32_MAX, INT32_MIN }) {
        EXPECT_EQ(rio_seek(file, line), 1);
        EXPECT_EQ(rio_errno, RIO_PAST_END);
    }
    rio_debug = 1;
    ASSERT_EQ(rio_arm_squetch(file, 2, 1, 0), 0);
    const std::string text = printed([&] { EXPECT_EQ(rio_seek(file, 1), 1); });
    rio_debug = 0;
    EXPECT_NE(text.find("Natv squetch"), std::string::npos);
    rio_close(file);
}

TEST_F(NativeLines, LinesBeyondTwoGigabytesAreFound)
{
    // A file with a hole: 70000 lines of 60000 bytes, of which only the last is written.
    const bytes header = native_header(60000, 70000);
    const std::string path = folder.with("a.ntv", header);
    FILE *out = std::fopen(path.c_str(), "r+b");
    const bytes last(60000, 77);
    fseeko(out, 1024 + 69999LL * 60000, SEEK_SET);
    std::fwrite(last.data(), 1, last.size(), out);
    std::fclose(out);
    RFILE *file = rio_open_r(path.c_str());
    ASSERT_TRUE(file);
    bytes line(60000);
    EXPECT_EQ(rio_seek(file, 69999), 0);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(line, last);
    EXPECT_EQ(rio_seek(file, 40000), 0);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(line[0], 0);
    rio_close(file);
}

TEST_F(NativeLines, SummaryAndHeaderAreCopied)
{
    bytes source = native_bytes(4, 2);
    put_le_u16(&source[192], 12);
    put_le_f64(&source[56], 2.0);
    RFILE *file = open(source);
    RFILE *target = rio_open_w((folder / "copy.ntv").c_str());
    EXPECT_EQ(rio_init_std_hdr(file, target), 0);
    EXPECT_EQ(rio_copydata(file, target), 0);
    rio_close(file);
    rio_close(target);
    file = rio_open_r((folder / "copy.ntv").c_str());
    ASSERT_TRUE(file);
    rio_stat stat;
    EXPECT_EQ(rio_get_stat(file, &stat), 0);
    EXPECT_EQ(stat.width, 4);
    EXPECT_EQ(stat.device_code, 12);
    EXPECT_EQ(stat.transform[0], 2.0);
    EXPECT_EQ(stat.orientation, 4);
    uint8_t line[4];
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[3], 7);
    rio_close(file);
}

TEST_F(NativeLines, TiledFilesOpenAndAnswerTheirTileSize)
{
    bytes tiled = native_header(100, 100, 65);
    bytes head(128, 0);
    put_le_u16(&head[0], 1);
    put_le_u16(&head[2], 7);
    put_le_u16(&head[18], 2);
    put_le_u32(&head[120], 64);
    put_le_u32(&head[4], 60 + 6 * 4);           // four tiles of three u32
    tiled.insert(tiled.end(), head.begin(), head.end());
    tiled.resize(tiled.size() + 4 * 12, 0);
    put_le_u32(&tiled[1024 + 128 + 12 + 8], 77);    // the second tile is solid
    RFILE *file = open(tiled);
    ASSERT_TRUE(file);
    int32_t value = 0;
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_TILE_WIDTH, &value), 0);
    EXPECT_EQ(value, 64);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_TILES_DOWN, &value), 0);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_DATA_TYPE, &value), 0);
    EXPECT_EQ(value, 2);
    bytes line(100, 9);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(bytes(line.begin(), line.begin() + 64), bytes(64, 0));
    EXPECT_EQ(bytes(line.begin() + 64, line.end()), bytes(36, 77));
    rio_close(file);
    tiled[1024] = 2;
    EXPECT_EQ(open(tiled), nullptr);
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    tiled[1024] = 1;
    put_le_u32(&tiled[1024 + 120], 0);
    EXPECT_EQ(open(tiled), nullptr);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    tiled.resize(1024 + 50);
    EXPECT_EQ(open(tiled), nullptr);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
}
