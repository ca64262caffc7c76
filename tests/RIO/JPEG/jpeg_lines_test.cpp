// Untiled JPEG images by lines.
#include "RIO/CORE/plain_record.h"
#include "RIO/JPEG/jpeg_files.h"
#include <numeric>
#include <random>

struct JpegLines : with_jpeg_driver {};

TEST_F(JpegLines, EveryQualityIsAsGoodAsThePublicCodecsOwn)
{
    for (const int type : { 30, 31 }) {
        const int samples = type == 30 ? 1 : 3;
        const test_picture p = make_picture(76, 44, samples);
        double last = 100;
        for (int quality = 1; quality <= 100; quality++) {
            unsigned tables[2][64];
            divisors_of_quality(quality, tables);
            const double own = psnr(p, pixels_of(jpeg_file(p, { type, quality }), samples));
            const double theirs = psnr(p, plain_decode(plain_encode(p, tables)));
            EXPECT_NEAR(own, theirs, 0.2) << type << " " << quality;
            EXPECT_LT(own, last + 0.5) << quality;
            last = own;
        }
        EXPECT_LT(last, 36);
    }
}

TEST_F(JpegLines, ColoursAreNotSubsampled)
{
    // Columns of red and blue, one pixel wide.
    test_picture p = make_picture(16, 16, 3);
    for (size_t i = 0; i < p.pixels.size(); i += 3) {
        p.pixels[i] = i / 3 % 2 ? 200 : 40;
        p.pixels[i + 1] = 90;
        p.pixels[i + 2] = i / 3 % 2 ? 40 : 200;
    }
    EXPECT_GT(psnr(p, pixels_of(jpeg_file(p, { 31, 1 }), 3)), 45);
}

TEST_F(JpegLines, SmallAndOddSides)
{
    for (const auto &[width, height] : { std::pair { 4, 4 }, { 12, 4 }, { 4, 20 }, { 100, 8 }, { 8, 60 } })
        for (const int type : { 30, 31 }) {
            const int samples = type == 30 ? 1 : 3;
            const test_picture p = make_picture(width, height, samples);
            unsigned tables[2][64];
            divisors_of_quality(5, tables);
            EXPECT_NEAR(psnr(p, pixels_of(jpeg_file(p, { type, 5 }), samples)), psnr(p, plain_decode(plain_encode(p, tables))), 0.2)
                << width << "x" << height;
        }
}

TEST_F(JpegLines, NoiseTakesItsRoom)
{
    std::mt19937 random(3);
    for (const int type : { 30, 31 }) {
        const int samples = type == 30 ? 1 : 3;
        test_picture p = make_picture(64, 64, samples);
        for (uint8_t &level : p.pixels)
            level = random() % 2 ? 255 : 0;
        const bytes disk = jpeg_file(p, { type, 1 });
        EXPECT_GT(disk.size(), p.pixels.size());    // it is larger than its pixels, and whole
        EXPECT_GT(psnr(p, pixels_of(disk, samples)), type == 30 ? 40 : 30);
    }
}

TEST_F(JpegLines, OneLevelIsKeptAndSmall)
{
    test_picture p = make_picture(256, 256, 1);
    std::fill(p.pixels.begin(), p.pixels.end(), uint8_t{ 128 });
    const bytes disk = jpeg_file(p, { 30 });
    EXPECT_EQ(pixels_of(disk, 1), p.pixels);
    // A block of one level is 2 + 4 bits: 1024 blocks are 768 bytes, and the markers some 330 more.
    EXPECT_LT(disk.size(), 1536u + 768 + 400);
}

TEST_F(JpegLines, AnyOrderGivesTheSameLines)
{
    for (const int type : { 30, 31 }) {
        const int samples = type == 30 ? 1 : 3;
        const test_picture p = make_picture(40, 32, samples);
        const bytes disk = jpeg_file(p, { type });
        const bytes whole = pixels_of(disk, samples);
        const size_t row = size_t(40 * samples);
        std::vector<int> order(32);
        std::iota(order.begin(), order.end(), 0);
        std::vector<int> back(order.rbegin(), order.rend()), mixed = order;
        std::shuffle(mixed.begin(), mixed.end(), std::mt19937(5));
        mixed.insert(mixed.end(), { 31, 31, 0, 0, 16 });
        for (const auto &lines : { back, mixed }) {
            memory_file memory(disk);
            RFILE *file = memory.open_r();
            ASSERT_TRUE(file);
            for (const int y : lines) {
                EXPECT_EQ(rio_seek(file, y), 0);
                EXPECT_EQ(next_pixels(file, samples), bytes(&whole[size_t(y) * row], &whole[size_t(y) * row] + row)) << y;
            }
            rio_close(file);
        }
    }
}

// 2000 pixels of three samples: 43 lines fill the 256 K that are decoded at a stroke, taken as 32.
static const test_picture &tall_picture()
{
    static const test_picture p = make_picture(2000, 100, 3);
    return p;
}

TEST_F(JpegLines, ALargePictureIsDecodedInBandsAndFromTheFirstStepBackWhole)
{
    unsigned tables[2][64];
    divisors_of_quality(15, tables);
    const bytes disk = jpeg_file(tall_picture(), { 31 });
    const bytes whole = plain_decode(plain_encode(tall_picture(), tables));
    const auto line = [&](int y) { return bytes(&whole[size_t(y) * 6000], &whole[size_t(y) * 6000] + 6000); };
    EXPECT_EQ(pixels_of(disk, 3), whole);
    const std::vector<int> walks[] = { { 5, 31, 32, 99 }, { 99, 98, 0 }, { 40, 50, 31, 64, 0, 99 }, { 70, 70, 10, 11, 12, 90 } };
    for (const auto &walk : walks) {
        memory_file memory(disk);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        for (const int y : walk) {
            EXPECT_EQ(rio_seek(file, y), 0);
            EXPECT_EQ(next_pixels(file, 3), line(y)) << y;
        }
        rio_close(file);
    }
}

TEST_F(JpegLines, DamageEndsTheLines)
{
    bytes disk = jpeg_file(tall_picture(), { 31 });
    disk.resize(1536 + (disk.size() - 1536) * 3 / 4);
    memory_file memory(disk);
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    int lines = 0;
    while (lines < 100 && !next_pixels(file, 3).empty())
        lines++;
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    EXPECT_EQ(lines, 64);       // two bands of 32 lie in the first three quarters, and not the third
    EXPECT_EQ(rio_seek(file, 0), 0);
    EXPECT_TRUE(next_pixels(file, 3).empty());
    rio_close(file);
}

TEST_F(JpegLines, LinesMayBePutInAnyOrderBeforeTheLast)
{
    const test_picture &p = tall_picture();
    const bytes in_order = jpeg_file(p, { 31 });
    std::vector<int> orders[3];
    for (int y = 0; y < 99; y++) {
        orders[0].push_back(98 - y);
        orders[1].push_back(y);
        orders[2].push_back(y);
    }
    orders[1].push_back(3);                                     // once more
    std::swap(orders[2][70], orders[2][80]);                    // after a band has gone to the driver
    for (std::vector<int> &order : orders) {
        order.push_back(99);
        memory_file memory(2000000);
        RFILE *file = new_jpeg(memory, p.width, p.height, { 31 });
        EXPECT_EQ(rio_write_header(file), 0);   // which goes to line 0
        for (const int y : order) {
            EXPECT_EQ(rio_seek(file, y), 0);
            EXPECT_EQ(put_picture_line(file, p, y), 0) << y;
        }
        rio_close(file);
        EXPECT_TRUE(written(memory) == in_order) << "order " << &order - orders;
    }
}

TEST_F(JpegLines, PlanesThatAreNotWantedAreLeft)
{
    const test_picture p = make_picture(16, 8, 3);
    const bytes disk = jpeg_file(p, { 31, 1 }), whole = pixels_of(disk, 3);
    memory_file memory(disk);
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    bytes green(16), red(16), gray(16);
    void *only_green[3] = { nullptr, green.data(), nullptr };
    EXPECT_EQ(rio_getline_planes(file, 3, only_green), 0);
    EXPECT_EQ(rio_getline(file, red.data()), 0);
    for (int x = 0; x < 16; x++) {
        EXPECT_EQ(green[size_t(x)], whole[size_t(3 * x + 1)]);
        EXPECT_EQ(red[size_t(x)], whole[size_t(48 + 3 * x)]);
    }
    EXPECT_EQ(rio_getline(file, nullptr), 0);       // skipped
    EXPECT_EQ(next_pixels(file, 3), bytes(&whole[48 * 3], &whole[48 * 3] + 48));
    rio_close(file);
}

TEST_F(JpegLines, AGrayLineGoesToThreePlanes)
{
    const test_picture p = make_picture(16, 4, 1);
    const bytes disk = jpeg_file(p, { 30 }), whole = pixels_of(disk, 1);
    memory_file memory(disk);
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    bytes rgb[3] = { bytes(16), bytes(16), bytes(16) };
    EXPECT_EQ(rio_getline_rgb(file, rgb[0].data(), rgb[1].data(), rgb[2].data()), 0);
    for (const bytes &plane : rgb)
        EXPECT_EQ(plane, bytes(whole.begin(), whole.begin() + 16));
    rio_close(file);
}

TEST_F(JpegLines, InterleavedPixelsInThreeAndFourBytes)
{
    const test_picture p = make_picture(20, 8, 3);
    for (const int pad : { 0, 1 }) {
        // Written interleaved, and read both ways.
        memory_file memory(20000);
        RFILE *file = new_jpeg(memory, 20, 8, { 31, 4 });
        EXPECT_EQ(set_key(file, RIO_KEY_PAD4, pad), 0);
        const int step = pad ? 4 : 3;
        for (int y = 0; y < 8; y++) {
            bytes line(size_t(20 * step), 0x77);
            for (int x = 0; x < 20; x++)
                for (int s = 0; s < 3; s++)
                    line[size_t(x * step + s)] = p.at(x, y, s);
            EXPECT_EQ(rio_putline_interleaved(file, line.data()), 0);
        }
        rio_close(file);
        const bytes disk = written(memory);
        EXPECT_EQ(disk, jpeg_file(p, { 31, 4 }));
        const bytes whole = pixels_of(disk, 3);
        memory_file again(disk);
        file = again.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(set_key(file, RIO_KEY_PAD4, pad), 0);
        for (int y = 0; y < 8; y++) {
            bytes line(size_t(20 * step), 0x77);
            EXPECT_EQ(rio_getline_interleaved(file, line.data()), 0);
            for (int x = 0; x < 20; x++) {
                for (int s = 0; s < 3; s++)
                    EXPECT_EQ(line[size_t(x * step + s)], whole[size_t((y * 20 + x) * 3 + s)]);
                if (pad) {
                    EXPECT_EQ(line[size_t(x * 4 + 3)], 0);
                }
            }
        }
        rio_close(file);
    }
    // Gray has no interleaved lines to write, but one to read.
    memory_file gray(20000);
    RFILE *file = new_jpeg(gray, 8, 4, { 30 });
    bytes line(8, 9);
    EXPECT_EQ(rio_putline_interleaved(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    rio_close(file);
    memory_file written_gray(jpeg_file(make_picture(8, 4, 1), { 30 }));
    file = written_gray.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_getline_interleaved(file, line.data()), 0);
    const bytes whole = pixels_of(written_gray.data, 1);
    EXPECT_EQ(line, bytes(whole.begin(), whole.begin() + 8));
    rio_close(file);
}

TEST_F(JpegLines, RunLengthsOfGrayAndNoneOfColour)
{
    test_picture p = make_picture(64, 4, 1);
    std::fill(p.pixels.begin(), p.pixels.end(), uint8_t{ 128 });
    memory_file memory(jpeg_file(p, { 30 }));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    uint16_t runs[140];
    int size = sizeof runs;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 64);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(runs[0], 128);
    EXPECT_EQ(runs[1], 64);
    rio_close(file);
    memory_file colour(jpeg_file(make_picture(8, 4, 3), { 31 }));
    file = colour.open_r();
    ASSERT_TRUE(file);
    size = sizeof runs;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 0);
    rio_close(file);
}

TEST_F(JpegLines, SqueezedLinesComeFromThePicture)
{
    memory_file memory(jpeg_file(make_picture(64, 64, 3), { 31, 1 }));
    const bytes whole = pixels_of(memory.data, 3);
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_arm_squetch(file, 32, 32, RIO_SQUEEZE_NEAREST), 0);
    uint8_t r[32], g[32], b[32];
    for (int y = 0; y < 32; y++)
        EXPECT_EQ(rio_getline_rgb(file, r, g, b), 0) << y;
    EXPECT_NEAR(g[16], whole[size_t((62 * 64 + 32) * 3 + 1)], 25);
    rio_close(file);
}

TEST_F(JpegLines, LinesWithHeadersAreNotOfTheFormat)
{
    memory_file memory(20000);
    RFILE *file = new_jpeg(memory, 8, 4, { 30 });
    EXPECT_EQ(set_key(file, RIO_KEY_SCANNABLE, 1), 0);
    EXPECT_EQ(put_picture(file, make_picture(8, 4, 1)), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    rio_close(file);
    bytes disk = jpeg_file(make_picture(8, 4, 1), { 30 });
    disk[195] = 1;
    memory_file headed(disk);
    file = headed.open_r();
    ASSERT_TRUE(file);
    uint16_t runs[20];
    int size = sizeof runs;
    EXPECT_EQ(rio_getrleline(file, runs, &size), 0);
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    rio_close(file);
}

TEST_F(JpegLines, FourBandsPassEveryCheckAndFailAtTheDriver)
{
    memory_file memory(20000);
    RFILE *file = new_jpeg(memory, 8, 4, { 32 });
    const test_picture p = make_picture(8, 4, 4);
    for (int y = 0; y < 3; y++)
        EXPECT_EQ(put_picture_line(file, p, y), 0);
    EXPECT_EQ(put_picture_line(file, p, 3), 1);
    EXPECT_EQ(rio_errno, RIO_JPEG_HW2);
    rio_close(file);

    bytes disk = jpeg_file(make_picture(8, 4, 1), { 30 });
    disk[4] = 32;
    memory_file there(disk);
    file = there.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_IMAGE_CLASS), RIO_CLASS_FOUR_BAND);
    bytes row(8);
    void *lines[4] = { row.data(), row.data(), row.data(), row.data() };
    for (int y = 0; y < 2; y++) {
        EXPECT_EQ(rio_getline_planes(file, 4, lines), 1);
        EXPECT_EQ(rio_errno, RIO_JPEG_HW2);
    }
    rio_close(file);
}

// ---- files of several pictures ---------------------------------------------------------------------------------------------

TEST_F(JpegLines, OverviewsWithoutTilesAreEachAPiece)
{
    const test_picture base = make_picture(64, 48, 3), half = make_picture(32, 24, 3), quarter = make_picture(15, 11, 3);
    memory_file memory(80000);
    RFILE *file = new_jpeg(memory, 64, 48, { 31, 6, 0, 2 });
    EXPECT_EQ(put_picture(file, base), 0);
    for (int n = 0; n < 2; n++) {
        const test_picture &p = n ? quarter : half;
        EXPECT_EQ(rio_set_active_ov(file, n), 0);
        EXPECT_EQ(set_key(file, RIO_KEY_WIDTH, p.width), 0);
        EXPECT_EQ(set_key(file, RIO_KEY_HEIGHT, p.height), 0);
        EXPECT_EQ(put_picture(file, p), 0);
    }
    rio_close(file);
    memory_file again(written(memory));
    file = again.open_r();
    ASSERT_TRUE(file);
    for (const int n : { 1, -1, 0, -1, 1 }) {
        const test_picture &p = n < 0 ? base : n ? quarter : half;
        EXPECT_EQ(rio_set_active_ov(file, n), 0);
        EXPECT_GT(psnr(p, rest_of(file, 3)), 35) << n;
    }
    rio_close(file);
}

TEST_F(JpegLines, ImagesOfAChainHaveTheirOwnPacketsAndPieces)
{
    const test_picture first = make_picture(32, 16, 1), second = make_picture(16, 16, 3);
    memory_file memory(80000);
    RFILE *file = new_jpeg(memory, 32, 16, { 30, 3 });
    EXPECT_EQ(put_picture(file, first), 0);
    EXPECT_EQ(rio_set_active_image(file, 1), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_WIDTH, 16), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_DATA_TYPE, 31), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_JPEG_QUALITY, 9), 0);
    EXPECT_EQ(put_picture(file, second), 0);
    EXPECT_EQ(rio_set_active_image(file, 2), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_DATA_TYPE, 2), 0);
    EXPECT_EQ(put_picture(file, make_picture(16, 16, 1)), 0);
    rio_close(file);
    memory_file again(written(memory));
    file = again.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_IMAGES), 3);
    EXPECT_EQ(key_of(file, RIO_KEY_JPEG_QUALITY), 3);
    EXPECT_GT(psnr(first, rest_of(file, 1)), 40);
    EXPECT_EQ(rio_set_active_image(file, 1), 0);
    EXPECT_EQ(key_of(file, RIO_KEY_JPEG_QUALITY), 9);
    EXPECT_GT(psnr(second, rest_of(file, 3)), 35);
    EXPECT_EQ(rio_set_active_image(file, 2), 0);
    EXPECT_EQ(key_of(file, RIO_KEY_JPEG_QUALITY), 0);
    EXPECT_EQ(rest_of(file, 1), make_picture(16, 16, 1).pixels);
    EXPECT_EQ(rio_set_active_image(file, 0), 0);
    EXPECT_GT(psnr(first, rest_of(file, 1)), 40);
    rio_close(file);
}

TEST_F(JpegLines, AFileThatIsReadBackGivesItsLinesOnceTheLastIsPut)
{
    test_folder folder;
    const test_picture p = make_picture(24, 8, 1);
    RFILE *file = rio_open_wr((folder / "a.nat").c_str());
    ASSERT_TRUE(file);
    set_key(file, RIO_KEY_WIDTH, 24);
    set_key(file, RIO_KEY_HEIGHT, 8);
    set_key(file, RIO_KEY_DATA_TYPE, 30);
    bytes row(24);
    for (int y = 0; y < 4; y++)
        EXPECT_EQ(put_picture_line(file, p, y), 0);
    EXPECT_EQ(rio_seek(file, 0), 0);
    EXPECT_EQ(rio_getline(file, row.data()), 1);    // nothing has been written yet
    EXPECT_EQ(rio_seek(file, 4), 0);
    for (int y = 4; y < 8; y++)
        EXPECT_EQ(put_picture_line(file, p, y), 0);
    EXPECT_EQ(rio_seek(file, 0), 0);
    EXPECT_GT(psnr(p, rest_of(file, 1)), 35);
    rio_close(file);
    EXPECT_EQ(folder.content("a.nat"), jpeg_file(p, { 30 }));

    // What is there cannot be written over.
    file = rio_open_modify((folder / "a.nat").c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_putline(file, row.data()), 1);
    EXPECT_EQ(rio_errno, RIO_MODIFY_MIDDLE);
    EXPECT_EQ(rio_seek(file, 0), 0);
    EXPECT_GT(psnr(p, rest_of(file, 1)), 35);
    rio_close(file);
    EXPECT_EQ(folder.content("a.nat"), jpeg_file(p, { 30 }));
}

TEST_F(JpegLines, TheHeaderGoesFromFileToFileWithItsQuality)
{
    memory_file from(jpeg_file(make_picture(8, 8, 3), { 31, 33 })), to(20000);
    RFILE *in = from.open_r(), *out = to.open_w();
    ASSERT_TRUE(in && out);
    EXPECT_EQ(rio_init_std_hdr(in, out), 0);
    EXPECT_EQ(rio_write_header(out), 0);
    EXPECT_EQ(key_of(out, RIO_KEY_JPEG_QUALITY), 33);
    rio_close(in);
    rio_close(out);
}

TEST_F(JpegLines, APieceWithoutTablesIsDecodedByTheFilesOwn)
{
    const test_picture p = make_picture(32, 16, 3);
    unsigned tables[2][64];
    divisors_of_quality(40, tables);
    bytes disk = jpeg_file(p, { 31, 40 });
    const bytes whole = pixels_of(disk, 3);
    disk.resize(1536);
    EXPECT_EQ(pixels_of(disk + plain_encode(p, tables, 1, false), 3), whole);
}
