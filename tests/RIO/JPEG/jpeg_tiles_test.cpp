// Tiles of JPEG data.
#include "RIO/CORE/byte_order.h"
#include "RIO/CORE/plain_record.h"
#include "RIO/JPEG/jpeg_files.h"

struct JpegTiles : with_jpeg_driver {};

TEST_F(JpegTiles, EveryQualityIsAsGoodAsThePublicCodecsOwnOfTheWholePicture)
{
    // 70 x 45 in tiles of 32: short tiles right and below, and no whole blocks there.
    for (const int type : { 30, 31 }) {
        const int samples = type == 30 ? 1 : 3;
        const test_picture p = make_picture(70, 45, samples);
        for (int quality = 1; quality <= 100; quality++) {
            unsigned tables[2][64];
            divisors_of_quality(quality, tables);
            const double own = psnr(p, pixels_of(jpeg_file(p, { type, quality, 32 }), samples));
            const double theirs = psnr(p, plain_decode(plain_encode(p, tables)));
            EXPECT_NEAR(own, theirs, 0.2) << type << " " << quality;
        }
    }
}

TEST_F(JpegTiles, EachIsAWholePieceAtItsEntry)
{
    const test_picture p = make_picture(40, 33, 1);
    const bytes disk = jpeg_file(p, { 30, 5, 32 });
    EXPECT_EQ(le_u16(&disk[4]), 65);
    const uint8_t *directory = &disk[1536];
    EXPECT_EQ(le_u16(directory + 18), 30);
    EXPECT_EQ(le_u32(directory + 120), 32u);
    // Four tiles of 32 x 32, one after another, each a JPEG picture of that size.
    uint32_t next = 128 + 4 * 12;
    for (int i = 0; i < 4; i++) {
        const uint8_t *entry = directory + 128 + 12 * i;
        EXPECT_EQ(le_u32(entry), next);
        EXPECT_EQ(le_u32(entry + 4), le_u32(entry + 8));
        const bytes piece(directory + next, directory + next + le_u32(entry + 8));
        EXPECT_EQ(piece[0], 0xFF);
        EXPECT_EQ(piece[1], 0xD8);
        EXPECT_EQ(piece[piece.size() - 1], 0xD9);
        EXPECT_EQ(plain_decode(piece).size(), 32u * 32);
        next += le_u32(entry + 8);
    }
    EXPECT_EQ(disk.size(), 1536 + next);
}

TEST_F(JpegTiles, TheEdgeTilesGoOnBeyondThePicture)
{
    // One column of live pixels: what lies beyond it is of the same level, so that nothing rings.
    test_picture p = make_picture(33, 32, 1);
    std::fill(p.pixels.begin(), p.pixels.end(), uint8_t{ 200 });
    EXPECT_EQ(pixels_of(jpeg_file(p, { 30, 100, 32 }), 1), pixels_of(jpeg_file(p, { 30, 100, 64 }), 1));
    memory_file memory(jpeg_file(p, { 30, 50, 32 }));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_seek(file, 1), 0);
    bytes tile(32 * 32);
    void *planes[1] = { tile.data() };
    EXPECT_EQ(rio_gettile(file, 1, planes, nullptr), 0);
    EXPECT_EQ(tile, bytes(32 * 32, tile[0]));
    EXPECT_NEAR(tile[0], 200, 2);
    rio_close(file);
}

TEST_F(JpegTiles, LinesInAnyOrderAndTilesByThemselvesAgree)
{
    for (const int type : { 30, 31 }) {
        const int samples = type == 30 ? 1 : 3, width = 70, height = 45;
        const bytes disk = jpeg_file(make_picture(width, height, samples), { type, 8, 32 });
        const bytes whole = pixels_of(disk, samples);
        const size_t row = size_t(width * samples);
        memory_file memory(disk);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        for (const int y : { 44, 43, 31, 32, 0, 40, 1, 44 }) {
            EXPECT_EQ(rio_seek(file, y), 0);
            EXPECT_EQ(next_pixels(file, samples), bytes(&whole[size_t(y) * row], &whole[size_t(y) * row] + row)) << y;
        }
        for (const int n : { 5, 0, 2, 4, 1, 3 }) {
            bytes planes[3] = { bytes(1024), bytes(1024), bytes(1024) };
            void *buffers[3] = { planes[0].data(), planes[1].data(), planes[2].data() };
            EXPECT_EQ(rio_seek(file, n), 0);
            int32_t value;
            EXPECT_EQ(rio_gettile(file, samples, buffers, &value), 0);
            EXPECT_EQ(value, -1);
            for (int y = n / 3 * 32; y < std::min(height, n / 3 * 32 + 32); y++)
                for (int x = n % 3 * 32; x < std::min(width, n % 3 * 32 + 32); x++)
                    for (int s = 0; s < samples; s++)
                        ASSERT_EQ(planes[s][size_t(y % 32 * 32 + x % 32)], whole[size_t(y) * row + size_t(x * samples + s)]);
        }
        rio_close(file);
    }
}

TEST_F(JpegTiles, ADamagedTileFailsTheLinesOfItsRow)
{
    const test_picture p = make_picture(70, 96, 3);
    bytes disk = jpeg_file(p, { 31, 8, 32 });
    const bytes whole = pixels_of(disk, 3);
    // The second tile of the second row: near its end, behind its tables, stands a marker that has no place there.
    const uint8_t *entry = &disk[1536 + 128 + 12 * 4];
    const size_t at = 1536 + le_u32(entry) + le_u32(entry + 8) * 7 / 8;
    disk[at] = 0xFF;
    disk[at + 1] = 0xD8;
    memory_file memory(disk);
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    for (int y = 0; y < 96; y++) {
        EXPECT_EQ(rio_seek(file, y), 0);
        const bytes line = next_pixels(file, 3);
        if (y / 32 == 1) {
            EXPECT_TRUE(line.empty()) << y;
            EXPECT_EQ(rio_errno, RIO_READ_FAILED);
        } else {
            EXPECT_EQ(line, bytes(&whole[size_t(y) * 210], &whole[size_t(y) * 210] + 210)) << y;
        }
    }
    rio_close(file);
}

TEST_F(JpegTiles, LinesShowSolidTiles)
{
    memory_file memory(60000);
    RFILE *file = new_jpeg(memory, 64, 32, { 31, 5, 32 });
    const int32_t level = 0x203040;
    bytes tile(1024, 99);
    const void *planes[3] = { tile.data(), tile.data(), tile.data() };
    EXPECT_EQ(rio_puttile(file, 3, planes, nullptr), 0);
    EXPECT_EQ(rio_puttile(file, 3, planes, &level), 0);
    rio_close(file);
    const bytes pixels = pixels_of(written(memory), 3);
    EXPECT_NEAR(pixels[31 * 3], 99, 1);
    EXPECT_EQ(bytes(&pixels[32 * 3], &pixels[32 * 3] + 3), (bytes { 0x20, 0x30, 0x40 }));
    EXPECT_EQ(bytes(pixels.end() - 3, pixels.end()), (bytes { 0x20, 0x30, 0x40 }));
}

TEST_F(JpegTiles, InterleavedLinesInThreeAndFourBytes)
{
    const int width = 40;
    const bytes disk = jpeg_file(make_picture(width, 36, 3), { 31, 5, 32 }), whole = pixels_of(disk, 3);
    for (const int step : { 3, 4 }) {
        memory_file memory(disk);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(set_key(file, RIO_KEY_PAD4, step == 4), 0);
        for (int y = 0; y < 36; y++) {
            bytes line(size_t(width * step), 0x55);
            EXPECT_EQ(rio_getline_interleaved(file, line.data()), 0);
            for (int x = 0; x < width; x++) {
                for (int s = 0; s < 3; s++)
                    ASSERT_EQ(line[size_t(x * step + s)], whole[size_t((y * width + x) * 3 + s)]);
                if (step == 4) {
                    ASSERT_EQ(line[size_t(x * 4 + 3)], 0);
                }
            }
        }
        rio_close(file);
    }
}

TEST_F(JpegTiles, ATileOfOneLevelTakesNoSpaceWhenItIsSolid)
{
    memory_file memory(40000);
    RFILE *file = new_jpeg(memory, 64, 32, { 30, 5, 32 });
    const int32_t level = 77;
    bytes tile(1024, 99);
    const void *planes[1] = { tile.data() };
    EXPECT_EQ(rio_puttile(file, 1, planes, &level), 0);
    EXPECT_EQ(rio_puttile(file, 1, planes, nullptr), 0);
    rio_close(file);
    const bytes disk = written(memory);
    const uint8_t *entry = &disk[1536 + 128];
    EXPECT_EQ(le_u32(entry), 0u);
    EXPECT_EQ(le_u32(entry + 8), 77u);
    EXPECT_EQ(disk.size(), 1536u + 128 + 24 + le_u32(entry + 12 + 8));
    const bytes pixels = pixels_of(disk, 1);
    EXPECT_EQ(pixels[31], 77);
    EXPECT_NEAR(pixels[32], 99, 1);
}

TEST_F(JpegTiles, ARewrittenTileGoesToTheEnd)
{
    test_folder folder;
    const test_picture p = make_picture(64, 32, 3);
    const bytes before = jpeg_file(p, { 31, 5, 32 });
    const std::string path = folder.with("a.nat", before);
    RFILE *file = rio_open_modify(path.c_str());
    ASSERT_TRUE(file);
    bytes level(1024, 60);
    const void *planes[3] = { level.data(), level.data(), level.data() };
    EXPECT_EQ(rio_puttile(file, 3, planes, nullptr), 0) << rio_errno;
    EXPECT_EQ(rio_seek(file, 0), 0);
    EXPECT_NEAR(next_pixels(file, 3)[10], 60, 1);
    rio_close(file);
    const bytes after = folder.content("a.nat");
    EXPECT_GT(after.size(), before.size());
    EXPECT_EQ(le_u32(&after[1536 + 128]), before.size() - 1536);
    const bytes was = pixels_of(before, 3), is = pixels_of(after, 3);
    EXPECT_NEAR(is[0], 60, 1);
    EXPECT_EQ(bytes(&is[96], &is[192]), bytes(&was[96], &was[192]));    // the other tile of the line
}

TEST_F(JpegTiles, OverviewsHaveTilesOfTheirOwn)
{
    const test_picture base = make_picture(70, 50, 3), half = make_picture(35, 25, 3);
    memory_file memory(120000);
    RFILE *file = new_jpeg(memory, 70, 50, { 31, 6, 32, 1 });
    EXPECT_EQ(put_picture(file, base), 0);
    EXPECT_EQ(rio_set_active_ov(file, 0), 0);
    set_key(file, RIO_KEY_WIDTH, 35);
    set_key(file, RIO_KEY_HEIGHT, 25);
    set_key(file, RIO_KEY_TILE_WIDTH, 32);
    EXPECT_EQ(put_picture(file, half), 0);
    rio_close(file);
    memory_file again(written(memory));
    file = again.open_r();
    ASSERT_TRUE(file);
    EXPECT_GT(psnr(base, rest_of(file, 3)), 35);
    EXPECT_EQ(rio_set_active_ov(file, 0), 0);
    EXPECT_GT(psnr(half, rest_of(file, 3)), 35);
    EXPECT_EQ(rio_set_active_ov(file, -1), 0);
    EXPECT_GT(psnr(base, rest_of(file, 3)), 35);
    rio_close(file);
}

TEST_F(JpegTiles, RunLengthsOfATileAndOfALine)
{
    test_picture p = make_picture(40, 32, 1);
    std::fill(p.pixels.begin(), p.pixels.end(), uint8_t{ 128 });
    memory_file memory(jpeg_file(p, { 30, 15, 32 }));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    std::vector<uint16_t> runs(4096);
    int size = int(2 * runs.size());
    EXPECT_EQ(rio_seek(file, 1), 0);
    EXPECT_EQ(rio_getrletile(file, runs.data(), &size, nullptr), 0) << rio_errno;
    EXPECT_EQ(size, 32 * 4);        // a pair of 128 and the 8 live pixels a row
    EXPECT_EQ(runs[0], 128);
    EXPECT_EQ(runs[1], 8);
    EXPECT_EQ(rio_seek(file, 0), 0);
    size = int(2 * runs.size());
    EXPECT_EQ(rio_getrleline(file, runs.data(), &size), 40);
    EXPECT_EQ(runs[1], 40);
    rio_close(file);
}

TEST_F(JpegTiles, FourBandsAndMissingPlanesAreRefused)
{
    memory_file memory(40000);
    RFILE *file = new_jpeg(memory, 32, 32, { 32, 5, 32 });
    bytes tile(1024);
    const void *four[4] = { tile.data(), tile.data(), tile.data(), tile.data() };
    EXPECT_EQ(rio_puttile(file, 4, four, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_JPEG_HW2);
    rio_close(file);

    bytes disk = jpeg_file(make_picture(32, 32, 3), { 31, 5, 32 });
    memory_file colour(disk);
    file = colour.open_r();
    ASSERT_TRUE(file);
    void *two[3] = { tile.data(), nullptr, tile.data() };
    EXPECT_EQ(rio_gettile(file, 3, two, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_NO_OUTPUT);
    rio_close(file);

    disk[1536 + 18] = 32;
    memory_file bands(disk);
    file = bands.open_r();
    ASSERT_TRUE(file);
    void *all[4] = { tile.data(), tile.data(), tile.data(), tile.data() };
    EXPECT_EQ(rio_gettile(file, 4, all, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_JPEG_HW2);
    rio_close(file);
}
