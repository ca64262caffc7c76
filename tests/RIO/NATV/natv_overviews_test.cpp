// Overviews, several images in a file, Randomize, 16-bit and interleaved lines, copies of native files.
#include "RIO/CORE/plain_record.h"
#include "RIO/CORE/tests_native.h"
#include "RIO/NATV/ntv.h"
#include <gtest/gtest.h>

struct NativeImages : testing::Test {
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
    void create(int width, int height, int type, bool read_back = false)
    {
        file = read_back ? rio_open_wr(path.c_str()) : rio_open_w(path.c_str());
        ASSERT_TRUE(file);
        EXPECT_EQ(set(RIO_KEY_WIDTH, width), 0);
        EXPECT_EQ(set(RIO_KEY_HEIGHT, height), 0);
        EXPECT_EQ(set(RIO_KEY_DATA_TYPE, type), 0);
    }
    // All lines of what is active, of one level a line.
    void put_lines(int width, int height, int level)
    {
        for (int y = 0; y < height; y++) {
            const bytes line(size_t(width), uint8_t(level + y));
            ASSERT_EQ(rio_putline_rgb(file, line.data(), line.data(), line.data()), 0) << y;
        }
    }
    void expect_lines(int width, int height, int level)
    {
        EXPECT_EQ(get(RIO_KEY_WIDTH), width);
        EXPECT_EQ(get(RIO_KEY_HEIGHT), height);
        for (int y = 0; y < height; y++) {
            bytes line(size_t(width), 0);
            ASSERT_EQ(rio_getline(file, line.data()), 0) << y;
            ASSERT_EQ(line, bytes(size_t(width), uint8_t(level + y))) << y;
        }
    }
    void close()
    {
        rio_close(file);
        file = nullptr;
    }
    void reopen()
    {
        file = rio_open_r(path.c_str());
        ASSERT_TRUE(file);
    }
    void TearDown() override
    {
        if (file)
            rio_close(file);
    }
};

// ---- overviews ---------------------------------------------------------------------------------------------------------

TEST_F(NativeImages, TheOverviewDirectoryOfOneAndOfTwo)
{
    // One overview takes 12 u32 words, two take 20 (19 rounded up): 24 and 40 words of 16 bits.
    for (const auto &[count, words] : { std::pair { 1, 24 }, { 2, 40 } }) {
        create(8, 2, 2);
        EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, count), 0);
        put_lines(8, 2, 1);
        close();
        const bytes disk = folder.content("a.ntv");
        ASSERT_EQ(disk.size(), 1024u + 512 + 16);
        EXPECT_EQ(le_u32(&disk[540]), 1024u);
        EXPECT_EQ(le_u32(&disk[544]), uint32_t(words));
        const uint8_t *dir = &disk[1024];
        EXPECT_EQ(le_u16(dir), 1);
        EXPECT_EQ(le_u16(dir + 2), 10);
        EXPECT_EQ(le_u32(dir + 4), uint32_t(words - 4));
        EXPECT_EQ(le_u16(dir + 8), 1);
        EXPECT_EQ(le_u16(dir + 10), 1);
        EXPECT_EQ(le_u32(dir + 16), uint32_t(count));
        reopen();
        EXPECT_EQ(get(RIO_KEY_OVERVIEW_COUNT), count);
        EXPECT_EQ(get(RIO_KEY_PACKET_WORDS), 0);        // none of the application's
        expect_lines(8, 2, 1);
        close();
    }
}

TEST_F(NativeImages, OverviewsOfEveryShapeComeBack)
{
    for (int type : { 2, 29, 10, 27, 28 })
        for (int base_tile : { 0, 32 })
            for (int tile : { 0, 32 }) {
                SCOPED_TRACE(type * 10000 + base_tile * 100 + tile);
                create(101, 50, type);
                EXPECT_EQ(set(RIO_KEY_TILE_WIDTH, base_tile), 0);
                EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 2), 0);
                put_lines(101, 50, 1);
                for (int n = 0; n < 2; n++) {
                    ASSERT_EQ(rio_set_active_ov(file, n), 0);
                    EXPECT_EQ(get(RIO_KEY_WIDTH), 0);
                    EXPECT_EQ(set(RIO_KEY_WIDTH, 50 >> n), 0);
                    EXPECT_EQ(set(RIO_KEY_HEIGHT, 40 >> n), 0);
                    EXPECT_EQ(set(RIO_KEY_TILE_WIDTH, tile), 0);
                    EXPECT_EQ(set(RIO_KEY_OVERVIEW_FACTOR, 2 << n), 0);
                    put_lines(50 >> n, 40 >> n, 100 * (n + 1));
                }
                close();
                reopen();
                expect_lines(101, 50, 1);
                for (int n : { 1, 0 }) {
                    ASSERT_EQ(rio_set_active_ov(file, n), 0);
                    EXPECT_EQ(get(RIO_KEY_TILE_WIDTH), tile);
                    EXPECT_EQ(get(RIO_KEY_OVERVIEW_FACTOR), 2 << n);
                    EXPECT_EQ(get(RIO_KEY_DATA_TYPE), type);
                    expect_lines(50 >> n, 40 >> n, 100 * (n + 1));
                    EXPECT_EQ(rio_seek(file, 5), 0);
                    bytes line(size_t(50 >> n));
                    EXPECT_EQ(rio_getline(file, line.data()), 0);
                    EXPECT_EQ(line[0], uint8_t(100 * (n + 1) + 5));
                }
                EXPECT_EQ(rio_set_active_ov(file, -7), 0);      // below 0 is the base image
                EXPECT_EQ(get(RIO_KEY_TILE_WIDTH), base_tile);
                expect_lines(101, 50, 1);
                EXPECT_EQ(rio_set_active_ov(file, 2), 1);
                EXPECT_EQ(rio_errno, RIO_NO_OVERVIEW);
                EXPECT_EQ(rio_set_active_ov(file, -1), 0);
                close();
            }
}

TEST_F(NativeImages, OverviewsBeginOnEightBytesAndCountWhatTheyTake)
{
    create(5, 1, 2);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 1), 0);
    put_lines(5, 1, 1);
    ASSERT_EQ(rio_set_active_ov(file, 0), 0);
    EXPECT_EQ(set(RIO_KEY_WIDTH, 3), 0);
    EXPECT_EQ(set(RIO_KEY_HEIGHT, 2), 0);
    put_lines(3, 2, 9);
    close();
    const bytes disk = folder.content("a.ntv");
    const uint8_t *record = &disk[1024 + 20], *entry = record + 16;
    EXPECT_EQ(le_u32(record), 2u);                  // lines, then pixels
    EXPECT_EQ(le_u32(record + 4), 3u);
    EXPECT_EQ(le_u32(record + 8), 0u);
    EXPECT_EQ(le_u32(entry), 8u);                   // 1536 + 5 up to a multiple of 8, less 1536
    EXPECT_EQ(le_u32(entry + 4), 6u);
    EXPECT_EQ(le_u32(entry + 8), 6u);
    EXPECT_EQ(disk.size(), 1024u + 512 + 8 + 6);
}

TEST_F(NativeImages, OverviewsOfAnExistingFileCanGrowButNotShrink)
{
    create(8, 2, 2);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 2), 0);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 3), 0);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 2), 0);   // a new file takes any
    put_lines(8, 2, 1);
    close();
    file = rio_open_modify(path.c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 1), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_VALUE);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 5), 0);
    EXPECT_EQ(rio_write_header(file), 0);           // the block of 256 words has room
    ASSERT_EQ(rio_set_active_ov(file, 4), 0);
    EXPECT_EQ(set(RIO_KEY_WIDTH, 4), 0);
    EXPECT_EQ(set(RIO_KEY_HEIGHT, 1), 0);
    put_lines(4, 1, 77);
    close();
    reopen();
    EXPECT_EQ(get(RIO_KEY_OVERVIEW_COUNT), 5);
    expect_lines(8, 2, 1);
    ASSERT_EQ(rio_set_active_ov(file, 4), 0);
    expect_lines(4, 1, 77);
}

TEST_F(NativeImages, DirectoriesCountedInLongWordsAreTakenAsWell)
{
    create(8, 2, 2);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 2), 0);
    put_lines(8, 2, 1);
    close();
    bytes disk = folder.content("a.ntv");
    put_le_u32(&disk[544], 20);
    folder.with("a.ntv", disk);
    reopen();
    EXPECT_EQ(get(RIO_KEY_OVERVIEW_COUNT), 2);
    expect_lines(8, 2, 1);
}

// ---- several images ------------------------------------------------------------------------------------------------------

TEST_F(NativeImages, ImagesAreAppendedCountedAndSwitched)
{
    create(8, 3, 2);
    put_lines(8, 3, 1);
    ASSERT_EQ(rio_set_active_image(file, 1), 0);
    EXPECT_EQ(set(RIO_KEY_WIDTH, 5), 0);
    EXPECT_EQ(set(RIO_KEY_HEIGHT, 4), 0);
    EXPECT_EQ(set(RIO_KEY_DATA_TYPE, 29), 0);
    put_lines(5, 4, 50);
    ASSERT_EQ(rio_set_active_image(file, 2), 0);
    EXPECT_EQ(set(RIO_KEY_WIDTH, 40), 0);
    EXPECT_EQ(set(RIO_KEY_HEIGHT, 35), 0);
    EXPECT_EQ(set(RIO_KEY_DATA_TYPE, 27), 0);
    EXPECT_EQ(set(RIO_KEY_TILE_WIDTH, 32), 0);
    put_lines(40, 35, 100);
    close();
    const bytes disk = folder.content("a.ntv");
    EXPECT_EQ(le_u32(&disk[528]), 1024u + 24);      // right at the end of the first, which is not filled up
    EXPECT_EQ(le_u32(&disk[1048 + 528]), 1048u + 1024 + 4 * 2);

    reopen();
    EXPECT_EQ(get(RIO_KEY_IMAGES), 3);
    expect_lines(8, 3, 1);
    const struct { int image, width, height, level; } order[] = { { 2, 40, 35, 100 }, { 0, 8, 3, 1 }, { 1, 5, 4, 50 }, { 2, 40, 35, 100 }, { -4, 8, 3, 1 } };
    for (const auto &o : order) {
        ASSERT_EQ(rio_set_active_image(file, o.image), 0);
        expect_lines(o.width, o.height, o.level);
        EXPECT_EQ(get(RIO_KEY_IMAGES), o.image > 0 ? -1 : 3);      // not while another than the first is active
    }
    EXPECT_EQ(rio_set_active_image(file, 3), 1);
    EXPECT_EQ(rio_errno, RIO_NO_IMAGE);
}

TEST_F(NativeImages, ASingleImageThatIsOnlyReadHasNoOther)
{
    folder.with("a.ntv", native_bytes(4, 2));
    reopen();
    EXPECT_EQ(rio_set_active_image(file, 0), 0);
    EXPECT_EQ(rio_set_active_image(file, 1), 1);
    EXPECT_EQ(rio_errno, RIO_NO_IMAGE);
    EXPECT_EQ(get(RIO_KEY_IMAGES), 1);
}

TEST_F(NativeImages, ChainsThatGoBackOrOutsideEnd)
{
    const bytes one = native_bytes(4, 2);
    for (const auto &[next, images] : { std::pair<uint32_t, int> { 1032, 1 + 1 }, { 4096, 1 }, { 0xFFFFFFFF, 1 } }) {
        bytes disk = one;
        put_le_u32(&disk[528], next);
        bytes second = one;
        put_le_u32(&second[528], 1032);             // itself
        disk.insert(disk.end(), second.begin(), second.end());
        folder.with("a.ntv", disk);
        reopen();
        EXPECT_EQ(get(RIO_KEY_IMAGES), images);
        EXPECT_EQ(rio_set_active_image(file, 5), 1);
        close();
    }
    bytes loop = one;
    put_le_u32(&loop[528], 1032);
    bytes back = one;
    put_le_u32(&back[528], 16);
    loop.insert(loop.end(), back.begin(), back.end());
    folder.with("a.ntv", loop);
    reopen();
    EXPECT_EQ(get(RIO_KEY_IMAGES), 2);
    EXPECT_EQ(rio_set_active_image(file, 1), 0);
    EXPECT_EQ(rio_set_active_image(file, 2), 1);
    close();
    loop.resize(1032 + 600);                        // the second header is cut
    folder.with("a.ntv", loop);
    reopen();
    EXPECT_EQ(rio_set_active_image(file, 1), 1);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    EXPECT_EQ(get(RIO_KEY_IMAGES), 0);
    bytes line(4);
    EXPECT_EQ(rio_getline(file, line.data()), 0);   // the first image is still the active one
    EXPECT_EQ(line, (bytes { 0, 1, 2, 3 }));
}

TEST_F(NativeImages, AnOverviewOfSeveralImagesIsRefused)
{
    create(8, 3, 2);
    put_lines(8, 3, 1);
    ASSERT_EQ(rio_set_active_image(file, 1), 0);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 1), 0);
    put_lines(8, 3, 9);
    EXPECT_EQ(rio_set_active_ov(file, 0), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_COUNT);
}

TEST_F(NativeImages, TheLastImageOfAnExistingFileGetsAnother)
{
    folder.with("a.ntv", native_bytes(4, 2));
    file = rio_open_modify(path.c_str());
    ASSERT_TRUE(file);
    ASSERT_EQ(rio_set_active_image(file, 1), 0);
    EXPECT_EQ(set(RIO_KEY_HEIGHT, 3), 0);
    put_lines(4, 3, 60);
    close();
    reopen();
    EXPECT_EQ(get(RIO_KEY_IMAGES), 2);
    ASSERT_EQ(rio_set_active_image(file, 1), 0);
    expect_lines(4, 3, 60);
}

// ---- modifying coded files -------------------------------------------------------------------------------------------------

TEST_F(NativeImages, CodedLinesAreOnlyAddedBehindTheLast)
{
    bytes disk = native_header(4, 3, 29);
    disk.insert(disk.end(), { 252, 1, 252, 2 });
    folder.with("a.ntv", disk);
    file = rio_open_modify(path.c_str());
    ASSERT_TRUE(file);
    const bytes line(4, 3);
    EXPECT_EQ(rio_putline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_MODIFY_MIDDLE);
    close();
    file = rio_open_modify(path.c_str());
    EXPECT_EQ(rio_seek(file, 2), 0);
    EXPECT_EQ(rio_putline(file, line.data()), 0);
    close();
    disk.insert(disk.end(), { 252, 3 });
    EXPECT_EQ(folder.content("a.ntv"), disk);
}

TEST_F(NativeImages, CodedFilesAreWrittenAndReadThroughOneRecord)
{
    for (int type : { 29, 10, 25, 9 }) {
        create(16, 3, type, true);
        const uint8_t lines[3][16] = { { 1, 1, 1, 1, 5 }, { 2 }, { 3, 4 } };
        for (const auto &line : lines)
            ASSERT_EQ(rio_putline_rgb(file, line, line, line), 0) << type;
        uint8_t got[16] = {};
        EXPECT_EQ(rio_seek(file, 1), 0);
        EXPECT_EQ(rio_getline(file, got), 0);
        EXPECT_EQ(got[0], 2) << type;
        rio_rewind(file);
        EXPECT_EQ(rio_getline(file, got), 0);
        EXPECT_EQ(got[0], 1) << type;
        close();
    }
}

// ---- interleaved and 16-bit lines --------------------------------------------------------------------------------------------

TEST_F(NativeImages, InterleavedLinesOfColours)
{
    for (int type : { 25, 27, 28, 67, 69 })
        for (int pad : { 0, 1 }) {
            SCOPED_TRACE(type * 10 + pad);
            const size_t samples = type > 60 ? 4 : 3, step = pad ? 4 : samples;
            create(7, 2, type);
            EXPECT_EQ(set(RIO_KEY_PAD4, pad), 0);
            bytes line(7 * step, 0);
            for (size_t x = 0; x < 7; x++)
                for (size_t s = 0; s < samples; s++)
                    line[x * step + s] = uint8_t(x / 3 * 10 + s + 1);
            EXPECT_EQ(rio_putline_interleaved(file, line.data()), 0);
            EXPECT_EQ(rio_putline_interleaved(file, line.data()), 0);
            close();
            reopen();
            EXPECT_EQ(set(RIO_KEY_PAD4, pad), 0);
            for (int y = 0; y < 2; y++) {
                bytes got(7 * step, 0xEE);
                EXPECT_EQ(rio_getline_interleaved(file, got.data()), 0);
                EXPECT_EQ(got, line);
            }
            rio_rewind(file);
            bytes third(7);
            EXPECT_EQ(rio_getline_rgb(file, nullptr, nullptr, third.data()), 0);
            EXPECT_EQ(third, (bytes { 3, 3, 3, 13, 13, 13, 23 }));
            close();
        }
}

TEST_F(NativeImages, InterleavedByteRunsOfGrayGoToEveryThirdByte)
{
    bytes disk = native_header(3, 1, 29);
    disk.insert(disk.end(), { 254, 5, 1, 6 });
    folder.with("a.ntv", disk);
    reopen();
    bytes line(9, 0xEE);
    EXPECT_EQ(rio_getline_interleaved(file, line.data()), 0);
    EXPECT_EQ(line, (bytes { 5, 0xEE, 0xEE, 5, 0xEE, 0xEE, 6, 0xEE, 0xEE }));
    close();
    create(3, 1, 29);
    EXPECT_EQ(rio_putline_interleaved(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
}

TEST_F(NativeImages, SixteenBitLines)
{
    const uint16_t line[4] = { 1000, 1000, 65535, 0 };
    for (int type : { 3, 10 }) {
        create(4, 1, type);
        EXPECT_EQ(rio_putline16(file, line), 0);
        close();
        reopen();
        uint16_t got[4] = {};
        EXPECT_EQ(rio_getline16(file, got), 0);
        EXPECT_TRUE(std::equal(line, line + 4, got));
        rio_rewind(file);
        uint8_t low[8] = {};
        if (type == 10) {
            EXPECT_EQ(rio_getline(file, low), 0);   // as bytes
            EXPECT_EQ(bytes(low, low + 4), (bytes { 1000 & 255, 1000 & 255, 255, 0 }));
        }
        close();
    }
    const bytes disk = folder.content("a.ntv");
    EXPECT_EQ(le_u16(&disk[1024 + 2]), 8);          // three pairs, and 2
    EXPECT_EQ(le_u16(&disk[1024 + 8]), 1000);
    EXPECT_EQ(le_u16(&disk[1024 + 10]), 2);
    create(4, 1, 2);
    EXPECT_EQ(rio_putline16(file, line), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
}

// ---- Randomize, copies ---------------------------------------------------------------------------------------------------------

TEST_F(NativeImages, PlacesOfLines)
{
    folder.with("a.ntv", native_bytes(4, 3));
    reopen();
    EXPECT_EQ(rio_randomize(file), 0);
    EXPECT_EQ(file->line_offsets[2], 1024 + 8);
    close();
    bytes disk = native_header(4, 3, 29);
    disk.insert(disk.end(), { 252, 1, 4, 2, 3, 4, 5, 252, 6 });
    folder.with("a.ntv", disk);
    reopen();
    EXPECT_EQ(rio_randomize(file), 0);
    EXPECT_EQ(file->line_offsets[0], 1024);
    EXPECT_EQ(file->line_offsets[1], -1);
    bytes line(4);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(file->line_offsets[1], 1026);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(file->line_offsets[2], 1031);
}

TEST_F(NativeImages, HeaderOverviewsAndDataAreCopied)
{
    create(40, 35, 29);
    EXPECT_EQ(set(RIO_KEY_OVERVIEW_COUNT, 3), 0);
    put_lines(40, 35, 1);
    close();
    reopen();
    RFILE *target = rio_open_w((folder / "b.ntv").c_str());
    EXPECT_EQ(rio_init_std_hdr(file, target), 0);
    EXPECT_EQ(rio_init_ov(file, target), 0);
    EXPECT_EQ(rio_copydata(file, target), 0);
    close();
    rio_close(target);
    EXPECT_EQ(folder.content("b.ntv"), folder.content("a.ntv"));
}

TEST_F(NativeImages, NewHeadersHoldTheIdentityAndTablesTheirWholeLevels)
{
    create(4, 1, 2);
    const rio_vlt_entry entries[2] = { { 0, 0x1234, 0x5678, 0x9ABC }, { 1, 1, 2, 3 } };
    EXPECT_EQ(set(RIO_KEY_VLT_TYPE, 2), 0);
    EXPECT_EQ(set(RIO_KEY_VLT_ENTRIES, 2), 0);
    EXPECT_EQ(rio_put_vlt(file, entries), 0);
    put_lines(4, 1, 0);
    close();
    const bytes disk = folder.content("a.ntv");
    for (int i = 0; i < 16; i++)
        EXPECT_EQ(le_f64(&disk[size_t(56 + 8 * i)]), i % 5 ? 0.0 : 1.0);
    EXPECT_EQ(le_f64(&disk[520]), 1.0);
    reopen();
    rio_vlt_entry got[256];
    EXPECT_EQ(rio_get_vlt(file, got), 0);
    EXPECT_EQ(got[0].red, 0x1234);
    EXPECT_EQ(got[0].blue, 0x9ABC);
    EXPECT_EQ(got[1].green, 2);
}
