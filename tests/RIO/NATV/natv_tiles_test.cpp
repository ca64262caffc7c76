// Tiled native files: the directory, solid tiles, short edges, lines through tiles, run-length tiles.
#include "RIO/CORE/plain_record.h"
#include "RIO/CORE/tests_native.h"
#include "RIO/NATV/ntv.h"
#include "mem.h"
#include <gtest/gtest.h>
#include <numeric>

struct NativeTiles : testing::Test {
    test_folder folder;
    std::string path = folder / "a.ntv";
    RFILE *file = nullptr;

    int set(int key, int32_t value) { return rio_set_hdr_data(file, key, &value); }
    int32_t get(int key)
    {
        int32_t value = -1;
        EXPECT_EQ(rio_get_hdr_data(file, key, &value), 0) << key;
        return value;
    }
    RFILE *create(int width, int height, int type, int tile, bool read_back = false)
    {
        file = read_back ? rio_open_wr(path.c_str()) : rio_open_w(path.c_str());
        EXPECT_TRUE(file);
        EXPECT_EQ(set(RIO_KEY_WIDTH, width), 0);
        EXPECT_EQ(set(RIO_KEY_HEIGHT, height), 0);
        EXPECT_EQ(set(RIO_KEY_DATA_TYPE, type), 0);
        EXPECT_EQ(set(RIO_KEY_TILE_WIDTH, tile), 0);
        return file;
    }
    RFILE *reopen() { return file = rio_open_r(path.c_str()); }
    void close()
    {
        rio_close(file);
        file = nullptr;
    }
    void TearDown() override
    {
        if (file)
            rio_close(file);
    }
};

// Runs of a few pixels and single ones, different for each plane.
static uint8_t level_at(int x, int y, int plane) { return uint8_t(x % 40 < 20 ? 30 * plane + y / 7 : x * 7 + y * 3 + plane); }

static std::vector<bytes> line_at(int width, int y, int samples, int sample_bytes)
{
    std::vector<bytes> planes;
    for (int s = 0; s < samples; s++) {
        bytes line(size_t(width * sample_bytes));
        for (int i = 0; i < int(line.size()); i++)
            line[size_t(i)] = level_at(i, y, s);
        planes.push_back(line);
    }
    return planes;
}

TEST_F(NativeTiles, EveryTypeComesBackByLinesInAnyOrder)
{
    const struct { int type, samples, sample_bytes; bool headed; } types[] = {
        { 2, 1, 1, false }, { 3, 1, 2, false }, { 4, 1, 4, false }, { 5, 1, 4, false }, { 6, 1, 8, false },
        { 7, 1, 8, false }, { 8, 1, 16, false }, { 10, 1, 1, false }, { 25, 3, 1, false }, { 26, 1, 1, false },
        { 27, 3, 1, false }, { 28, 3, 1, false }, { 29, 1, 1, false }, { 67, 4, 1, false }, { 69, 4, 1, false },
        { 2, 1, 1, true }, { 10, 1, 1, true }, { 25, 3, 1, true }, { 27, 3, 1, true }, { 28, 3, 1, true }, { 29, 1, 1, true },
        { 3, 1, 2, true }, { 67, 4, 1, true }, { 69, 4, 1, true }, { 26, 1, 1, true },
    };
    const int width = 101, height = 75;
    for (const auto &t : types) {
        SCOPED_TRACE(t.type);
        create(width, height, t.type, 32);
        EXPECT_EQ(set(RIO_KEY_SCANNABLE, t.headed), 0);
        for (int y = 0; y < height; y++) {
            const auto planes = line_at(width, y, t.samples, t.sample_bytes);
            const void *lines[4] = {};
            for (size_t s = 0; s < planes.size(); s++)
                lines[s] = planes[s].data();
            ASSERT_EQ(rio_putline_planes(file, t.samples, lines), 0) << y;
        }
        close();
        EXPECT_EQ(le_u16(&folder.content("a.ntv")[4]), 65);
        ASSERT_TRUE(reopen());
        EXPECT_EQ(get(RIO_KEY_DATA_TYPE), t.type);
        EXPECT_EQ(get(RIO_KEY_TILES_ACROSS), 4);
        EXPECT_EQ(get(RIO_KEY_TILES_DOWN), 3);
        for (int y : { 0, 1, 74, 31, 32, 2, 63, 64 }) {
            const auto wanted = line_at(width, y, t.samples, t.sample_bytes);
            std::vector<bytes> got(4, bytes(size_t(width * t.sample_bytes)));
            void *lines[4] = { got[0].data(), got[1].data(), got[2].data(), got[3].data() };
            ASSERT_EQ(rio_seek(file, y), 0);
            ASSERT_EQ(rio_getline_planes(file, t.samples, lines), 0) << y;
            for (int s = 0; s < t.samples; s++)
                ASSERT_EQ(got[size_t(s)], wanted[size_t(s)]) << y;
        }
        close();
    }
}

TEST_F(NativeTiles, BitmapsComeBackInAllFourCodings)
{
    for (int type : { 1, 9, 23, 24 }) {
        SCOPED_TRACE(type);
        const int tile = type > 9 ? 512 : 32, width = 600, height = 70, row = (width + 15) / 16;
        create(width, height, type, tile);
        std::vector<std::vector<uint16_t>> lines;
        for (int y = 0; y < height; y++) {
            std::vector<uint16_t> line(size_t(row), 0);
            for (int x = 0; x < width; x++)
                if (x / (y + 1) % 2 || (x ^ y) % 29 == 0)
                    line[size_t(x / 16)] = uint16_t(line[size_t(x / 16)] | 0x8000 >> x % 16);
            lines.push_back(line);
            ASSERT_EQ(rio_putline(file, line.data()), 0);
        }
        close();
        ASSERT_TRUE(reopen());
        for (int y = 0; y < height; y++) {
            std::vector<uint16_t> line(size_t(row), 0);
            ASSERT_EQ(rio_getline(file, line.data()), 0) << y;
            ASSERT_EQ(line, lines[size_t(y)]) << y;
        }
        close();
    }
}

TEST_F(NativeTiles, TheDirectoryLeadsTheData)
{
    // 40 x 40 in tiles of 32: edges of 8 pixels, stored as short as they are.
    create(40, 40, 2, 32);
    for (int y = 0; y < 40; y++) {
        const bytes line(40, uint8_t(y));
        ASSERT_EQ(rio_putline(file, line.data()), 0);
    }
    close();
    const bytes disk = folder.content("a.ntv");
    const uint8_t *dir = &disk[1024];
    EXPECT_EQ(le_u16(dir), 1);
    EXPECT_EQ(le_u16(dir + 2), 7);
    EXPECT_EQ(le_u32(dir + 4), 60u + 2 * 12);       // four tiles, three u32 each
    EXPECT_EQ(le_u16(dir + 8), 1);
    EXPECT_EQ(le_u16(dir + 10), 1);
    EXPECT_EQ(le_u16(dir + 16), 1);
    EXPECT_EQ(le_u16(dir + 18), 2);
    EXPECT_EQ(le_u32(dir + 120), 32u);
    const uint32_t entries[4][3] = { { 176, 1024, 1024 }, { 1200, 256, 256 }, { 1456, 256, 256 }, { 1712, 64, 64 } };
    for (int i = 0; i < 4; i++)
        for (int k = 0; k < 3; k++)
            EXPECT_EQ(le_u32(dir + 128 + 12 * i + 4 * k), entries[i][k]) << i << k;
    ASSERT_EQ(disk.size(), 1024u + 1712 + 64);
    EXPECT_EQ(dir[1200 + 8 * 5], 5);
    ASSERT_TRUE(reopen());
    uint32_t sizes[4];
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_TILE_DIRECTORY, sizes), 0);
    EXPECT_EQ(sizes[0], 1024u);
    EXPECT_EQ(sizes[3], 64u);
}

TEST_F(NativeTiles, SolidTilesTakeNoSpace)
{
    create(64, 32, 2, 32);
    const int32_t seven = 7;
    const bytes tile(1024, 9);
    const void *buffers[1] = { tile.data() };
    EXPECT_EQ(rio_puttile(file, 1, nullptr, &seven), 0);
    EXPECT_EQ(rio_puttile(file, 1, buffers, nullptr), 0);
    EXPECT_EQ(rio_puttile(file, 1, buffers, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);             // two tiles are all
    close();
    EXPECT_EQ(folder.content("a.ntv").size(), 1024u + 128 + 24 + 1024);
    ASSERT_TRUE(reopen());
    bytes got(1024, 1);
    void *into[1] = { got.data() };
    int32_t value = 0;
    EXPECT_EQ(rio_gettile(file, 1, into, &value), 0);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(got, bytes(1024, 1));                 // the level alone
    EXPECT_EQ(rio_gettile(file, 1, into, &value), 0);
    EXPECT_EQ(value, -1);
    EXPECT_EQ(got, tile);
    EXPECT_EQ(rio_gettile(file, 1, into, &value), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(rio_gettile(file, 1, into, nullptr), 0);
    EXPECT_EQ(got, bytes(1024, 7));
    uint32_t sizes[2];
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_TILE_DIRECTORY, sizes), 0);
    EXPECT_EQ(sizes[0], 0x80000007u);
    EXPECT_EQ(sizes[1], 1024u);
}

TEST_F(NativeTiles, SolidLevelsByType)
{
    const int32_t level = 0x010203;
    for (const auto &[type, first] : { std::pair<int, bytes> { 28, { 1, 1 } }, { 2, { 3, 3 } }, { 3, { 3, 2 } }, { 1, { 255, 255 } },
                                       { 9, { 255, 255 } }, { 4, { 3, 2 } } }) {
        create(32, 32, type, 32);
        EXPECT_EQ(rio_puttile(file, 1, nullptr, &level), 0);
        close();
        ASSERT_TRUE(reopen());
        bytes planes[3] = { bytes(4096), bytes(4096), bytes(4096) };
        void *into[3] = { planes[0].data(), planes[1].data(), planes[2].data() };
        EXPECT_EQ(rio_gettile(file, type == 28 ? 3 : 1, into, nullptr), 0);
        EXPECT_EQ(bytes(planes[0].begin(), planes[0].begin() + 2), first) << type;
        if (type == 28) {
            EXPECT_EQ(planes[1][1023], 2);
            EXPECT_EQ(planes[2][0], 3);
            EXPECT_EQ(rio_seek(file, 0), 0);
            void *second[3] = { nullptr, planes[1].data(), nullptr };
            int32_t value;
            EXPECT_EQ(rio_gettile(file, 3, second, &value), 0);
            EXPECT_EQ(value, 2);                    // the part of the one plane that is wanted
        }
        close();
    }
}

TEST_F(NativeTiles, LinesOutOfOrderAreRefused)
{
    create(64, 64, 2, 32);
    const bytes line(64, 1);
    for (int y = 0; y < 4; y++)
        EXPECT_EQ(rio_putline(file, line.data()), 0);
    EXPECT_EQ(rio_seek(file, 5), 0);
    EXPECT_EQ(rio_putline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_LINE_ORDER);
}

TEST_F(NativeTiles, SizesOfTiles)
{
    create(64, 64, 2, 32);
    for (int bad : { 31, 33, 1, -32 }) {
        EXPECT_EQ(set(RIO_KEY_TILE_WIDTH, bad), 1) << bad;
        EXPECT_EQ(rio_errno, RIO_BAD_TILE_SIZE);
    }
    EXPECT_EQ(set(RIO_KEY_DATA_TYPE, 24), 0);
    EXPECT_EQ(set(RIO_KEY_TILE_WIDTH, 64), 1);
    EXPECT_EQ(set(RIO_KEY_TILE_WIDTH, 512), 0);
    EXPECT_EQ(set(RIO_KEY_TILE_WIDTH, 0), 0);
    EXPECT_EQ(get(RIO_KEY_TILE_WIDTH), 0);
}

TEST_F(NativeTiles, ModifiedTilesStayInPlaceOrGoToTheEnd)
{
    for (const auto &[type, grown] : { std::pair { 2, 0 }, { 28, 0 }, { 29, 32 * 2 } }) {
        create(64, 32, type, 32);
        const bytes tile(1024, 9), fresh(1024, 8);
        const void *before[3] = { tile.data(), tile.data(), tile.data() };
        const void *after[3] = { fresh.data(), fresh.data(), fresh.data() };
        const int n = type == 28 ? 3 : 1;
        EXPECT_EQ(rio_puttile(file, n, before, nullptr), 0);
        EXPECT_EQ(rio_puttile(file, n, before, nullptr), 0);
        close();
        const size_t size = folder.content("a.ntv").size();
        file = rio_open_modify(path.c_str());
        ASSERT_TRUE(file);
        EXPECT_EQ(rio_puttile(file, n, after, nullptr), 0);
        close();
        // A tile of byte runs has a line of one run of 32: two bytes.
        EXPECT_EQ(folder.content("a.ntv").size(), size + size_t(grown)) << type;
        ASSERT_TRUE(reopen());
        bytes got(1024);
        void *into[3] = { got.data(), nullptr, nullptr };
        EXPECT_EQ(rio_gettile(file, n, into, nullptr), 0);
        EXPECT_EQ(got, fresh);
        EXPECT_EQ(rio_gettile(file, n, into, nullptr), 0);
        EXPECT_EQ(got, tile);
        close();
    }
}

TEST_F(NativeTiles, LinesReadAfterATileWasPutAreTheNewOnes)
{
    create(32, 32, 2, 32);
    const bytes tile(1024, 9);
    const void *buffers[1] = { tile.data() };
    EXPECT_EQ(rio_puttile(file, 1, buffers, nullptr), 0);
    close();
    file = rio_open_modify(path.c_str());
    ASSERT_TRUE(file);
    bytes line(32);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(line, bytes(32, 9));
    EXPECT_EQ(rio_seek(file, 0), 0);
    const int32_t four = 4;
    EXPECT_EQ(rio_puttile(file, 1, nullptr, &four), 0);
    EXPECT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(line, bytes(32, 4));
}

TEST_F(NativeTiles, RunLengthsOfTilesAndOfTheirLines)
{
    create(48, 32, 29, 32);
    for (int y = 0; y < 32; y++) {
        bytes line(48, 4);
        line[40] = uint8_t(y);
        ASSERT_EQ(rio_putline(file, line.data()), 0);
    }
    close();
    ASSERT_TRUE(reopen());
    uint16_t runs[400];
    int size = sizeof runs;
    int32_t value = 0;
    EXPECT_EQ(rio_getrletile(file, runs, &size, &value), 0);
    EXPECT_EQ(value, -1);
    ASSERT_EQ(size, 32 * 4);                        // a pair a row
    EXPECT_EQ(runs[62], 4);
    EXPECT_EQ(runs[63], 32);
    size = sizeof runs;
    EXPECT_EQ(rio_getrletile(file, runs, &size, &value), 0);
    // 8 of 4, one of y, 7 of 4: three pairs, and one in row 4.
    ASSERT_EQ(size, (31 * 3 + 1) * 4);
    EXPECT_EQ(runs[1], 8);
    EXPECT_EQ(rio_seek(file, 5), 0);
    size = sizeof runs;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 48);
    EXPECT_EQ(size, 12);
    EXPECT_EQ(runs[2], 5);
    EXPECT_EQ(runs[1], 40);
    close();

    create(32, 64, 9, 32);
    const int32_t one = 1;
    std::vector<uint16_t> rows;
    for (int y = 0; y < 32; y++)
        rows.insert(rows.end(), { 8, 24, 0 });
    EXPECT_EQ(rio_putrletile(file, rows.data(), int(rows.size() * 2), nullptr), 0);
    EXPECT_EQ(rio_putrletile(file, nullptr, 0, &one), 0);
    close();
    ASSERT_TRUE(reopen());
    uint16_t line[2];
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[0], 0x00FF);
    EXPECT_EQ(line[1], 0xFFFF);
    EXPECT_EQ(rio_seek(file, 1), 0);
    size = sizeof runs;
    EXPECT_EQ(rio_getrletile(file, runs, &size, nullptr), 0);
    ASSERT_EQ(size, 32 * 6);
    EXPECT_EQ(runs[0], 0);
    EXPECT_EQ(runs[1], 32);
    EXPECT_EQ(runs[2], 0);
}

TEST_F(NativeTiles, SixteenBitLinesAndTiles)
{
    for (int type : { 3, 10 }) {
        create(40, 40, type, 32);
        for (int y = 0; y < 40; y++) {
            uint16_t line[40];
            for (int x = 0; x < 40; x++)
                line[x] = uint16_t(x / 3 * 1000 + y);
            ASSERT_EQ(rio_putline16(file, line), 0) << type;
        }
        close();
        ASSERT_TRUE(reopen());
        uint16_t line[40];
        for (int y : { 0, 39, 31, 32 }) {
            EXPECT_EQ(rio_seek(file, y), 0);
            ASSERT_EQ(rio_getline16(file, line), 0) << type;
            EXPECT_EQ(line[39], 13000 + y);
            EXPECT_EQ(line[3], 1000 + y);
        }
        EXPECT_EQ(rio_seek(file, 3), 0);
        uint16_t tile[32 * 32];
        EXPECT_EQ(rio_gettile16(file, tile, nullptr), 0);
        EXPECT_EQ(tile[0], 10032);                  // pixel 32 of line 32
        EXPECT_EQ(tile[32 + 7], 13033);
        close();
    }
}

TEST_F(NativeTiles, A16BitTileThatIsNotPlainHasRowsOfFourBytesAPixel)
{
    create(32, 32, 10, 32);
    std::vector<uint16_t> tile(32 * 64, 0);
    for (size_t y = 0; y < 32; y++)
        for (size_t x = 0; x < 32; x++)
            tile[64 * y + x] = uint16_t(300 + y);
    EXPECT_EQ(rio_puttile16(file, tile.data(), nullptr), 0);
    close();
    ASSERT_TRUE(reopen());
    uint16_t line[32];
    EXPECT_EQ(rio_seek(file, 31), 0);
    EXPECT_EQ(rio_getline16(file, line), 0);
    EXPECT_EQ(line[31], 331);
}

TEST_F(NativeTiles, InterleavedLinesThroughTiles)
{
    create(40, 33, 27, 32);
    for (int y = 0; y < 33; y++) {
        const auto planes = line_at(40, y, 3, 1);
        ASSERT_EQ(rio_putline_rgb(file, planes[0].data(), planes[1].data(), planes[2].data()), 0);
    }
    close();
    ASSERT_TRUE(reopen());
    for (int pad : { 0, 1 }) {
        EXPECT_EQ(set(RIO_KEY_PAD4, pad), 0);
        const size_t step = pad ? 4 : 3;
        bytes line(40 * step, 0xEE);
        EXPECT_EQ(rio_seek(file, 32), 0);
        ASSERT_EQ(rio_getline_interleaved(file, line.data()), 0);
        const auto wanted = line_at(40, 32, 3, 1);
        for (size_t x = 0; x < 40; x++)
            for (size_t s = 0; s < 3; s++)
                ASSERT_EQ(line[step * x + s], wanted[s][x]);
    }
}

TEST_F(NativeTiles, BadDirectoriesAreRefused)
{
    create(100, 100, 2, 32);
    EXPECT_EQ(rio_write_header(file), 0);
    close();
    const bytes good = folder.content("a.ntv");
    const auto opens = [&](size_t at, uint32_t value) {
        bytes bad = good;
        put_le_u32(&bad[1024 + at], value);
        folder.with("a.ntv", bad);
        file = rio_open_r(path.c_str());
        const bool opened = file != nullptr;
        if (file)
            close();
        return opened;
    };
    EXPECT_TRUE(opens(120, 32));
    EXPECT_FALSE(opens(0, 0x00070002));
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    EXPECT_FALSE(opens(4, 10));                     // too short for the tiles
    EXPECT_FALSE(opens(120, 0));
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    EXPECT_FALSE(opens(120, 1));                    // more tiles than the file can tell of
    EXPECT_FALSE(opens(120, 0x7FFFFFFF));
    EXPECT_TRUE(opens(128, 0xFFFFFFF0));            // a tile outside the file fails when it is read
    bytes cut(good.begin(), good.end() - 1);
    folder.with("a.ntv", cut);
    EXPECT_EQ(reopen(), nullptr);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
}

TEST_F(NativeTiles, EveryFailedAllocationIsToldAndTheNextTryWorks)
{
    create(70, 70, 27, 32);
    for (int y = 0; y < 70; y++) {
        const auto planes = line_at(70, y, 3, 1);
        ASSERT_EQ(rio_putline_rgb(file, planes[0].data(), planes[1].data(), planes[2].data()), 0);
    }
    close();
    bytes line(70);
    for (int n = 0; n < 40; n++) {
        mem_fail_countdown = n;
        file = rio_open_r(path.c_str());
        const bool read = file && rio_getline(file, line.data()) == 0;
        const bool reached = mem_fail_countdown < 0;
        mem_fail_countdown = -1;
        if (!read) {
            EXPECT_TRUE(reached);
            EXPECT_NE(rio_errno, 0u) << n;
        }
        if (file)
            close();
        if (!reached)
            return;
    }
    FAIL() << "more allocations than there can be";
}

// Bytes of this process that are in memory now.
static int64_t resident()
{
    long pages = 0, held = 0;
    FILE *in = std::fopen("/proc/self/statm", "r");
    if (in && std::fscanf(in, "%ld %ld", &pages, &held) != 2)
        held = 0;
    if (in)
        std::fclose(in);
    return int64_t{ held } * sysconf(_SC_PAGESIZE);
}

TEST_F(NativeTiles, ALargeFileNeedsARowOfTilesInMemory)
{
    // 900 MB of pixels in runs of 100, in tiles of 256: a row of tiles is 7.7 MB.
    const int size = 30000, lines_alike = 50;
    bytes ramp(size_t(2 * size));
    for (size_t i = 0; i < ramp.size(); i++)
        ramp[i] = uint8_t(i / 100);
    const auto line_of = [&](int y) { return ramp.data() + y / lines_alike * 37; };
    const int64_t before = resident();
    int64_t most = 0;
    create(size, size, 29, 256);
    for (int y = 0; y < size; y++) {
        ASSERT_EQ(rio_putline(file, line_of(y)), 0);
        most = std::max(most, y % 100 ? 0 : resident() - before);
    }
    close();
    ASSERT_TRUE(reopen());
    bytes line(size_t(size), 0);
    for (int y = 0; y < size; y++) {
        ASSERT_EQ(rio_getline(file, line.data()), 0);
        ASSERT_EQ(std::memcmp(line.data(), line_of(y), size_t(size)), 0) << y;
        most = std::max(most, y % 100 ? 0 : resident() - before);
    }
    EXPECT_LT(most, 64 << 20);
}
