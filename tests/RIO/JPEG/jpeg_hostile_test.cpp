// Damaged JPEG data in native files: each call ends, nothing is read or written out of its place (the sanitizers see to
// that), and what cannot be decoded is told.
#include "RIO/CORE/byte_order.h"
#include "RIO/CORE/tests_native.h"
#include "RIO/JPEG/jpeg_files.h"
#include "fuzz/fuzz_reader.h"

struct JpegHostile : with_jpeg_driver {};

static std::vector<bytes> good_files()
{
    std::vector<bytes> files;
    for (const int type : { 30, 31 })
        for (const int tile : { 0, 32 })
            files.push_back(jpeg_file(make_picture(36, 36, type == 30 ? 1 : 3), { type, 60, tile }));
    return files;
}

static void read_all(const bytes &content) { fuzz_reader(content.data(), content.size(), RIO_FORMAT_NATV); }

TEST_F(JpegHostile, CutAtEveryByte)
{
    for (const bytes &whole : good_files()) {
        // What lies before is the header, whose cuts are those of any native file.
        for (size_t n = 1020; n < whole.size(); n++)
            read_all(bytes(whole.begin(), whole.begin() + long(n)));
        EXPECT_EQ(read_through(whole), 36);
    }
}

TEST_F(JpegHostile, APictureThatIsCutIsNotHandedOut)
{
    const bytes whole = jpeg_file(make_picture(36, 36, 1), { 30, 60 });
    for (size_t n = 1537; n < whole.size() - 3; n += 7) {
        EXPECT_EQ(read_through(bytes(whole.begin(), whole.begin() + long(n))), 0) << n;
        EXPECT_EQ(rio_errno, RIO_READ_FAILED) << n;
    }
    EXPECT_EQ(read_through(bytes(whole.begin(), whole.begin() + 1536)), 0);     // no piece at all
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
}

TEST_F(JpegHostile, BitsTurned)
{
    for (const bytes &whole : good_files())
        for (size_t i = 1024; i < whole.size(); i = i == 1040 ? 1536 : i + 1)
            for (int bit = int(i % 3); bit < 8; bit += 3) {
                bytes damaged = whole;
                damaged[i] = uint8_t(damaged[i] ^ 1 << bit);
                read_all(damaged);
            }
}

static bytes native_with(const test_picture &shape, const bytes &piece)
{
    bytes disk = native_header(uint32_t(shape.width), uint32_t(shape.height), shape.samples == 1 ? 30 : 31);
    return disk + piece;
}

TEST_F(JpegHostile, PicturesOfAnotherShapeAreRefused)
{
    unsigned tables[2][64];
    divisors_of_quality(30, tables);
    const test_picture gray = make_picture(32, 16, 1), colour = make_picture(32, 16, 3), other = make_picture(16, 32, 1);
    EXPECT_EQ(read_through(native_with(gray, plain_encode(gray, tables))), 16);
    EXPECT_EQ(read_through(native_with(gray, plain_encode(other, tables))), 0);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    EXPECT_EQ(read_through(native_with(gray, plain_encode(colour, tables))), 0);
    EXPECT_EQ(read_through(native_with(colour, plain_encode(gray, tables))), 0);
    // Subsampled colours of another coder are taken; pictures in many scans are not.
    EXPECT_EQ(read_through(native_with(colour, plain_encode(colour, tables, 2))), 16);
    EXPECT_EQ(read_through(native_with(colour, plain_encode(colour, tables, 1, true, true))), 0);
    EXPECT_EQ(read_through(native_with(gray, plain_encode(gray, tables, 1, true, true))), 0);
}

TEST_F(JpegHostile, AHeaderThatTellsOfMuchGetsNoMemory)
{
    unsigned tables[2][64];
    divisors_of_quality(30, tables);
    const bytes piece = plain_encode(make_picture(32, 16, 1), tables);
    bytes disk = native_header(65500, 65500, 31) + piece;
    memory_file memory(disk);
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    bytes line(65500);
    mem_fail_countdown = 1000;
    const long before = mem_allocation_count;
    EXPECT_EQ(rio_getline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    EXPECT_EQ(mem_allocation_count, before);
    mem_fail_countdown = -1;
    rio_close(file);
}

TEST_F(JpegHostile, APacketTooShortForItsFields)
{
    bytes disk = jpeg_file(make_picture(8, 8, 1), { 30, 50 });
    for (const int body : { 0, 1, 2, 3, 31 }) {
        put_le_u32(&disk[1024 + 4], uint32_t(body));
        put_le_u32(&disk[544], uint32_t(body + 4));
        disk[1024 + 14] = 2;
        memory_file memory(disk);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file) << body;
        EXPECT_EQ(key_of(file, RIO_KEY_JPEG_QUALITY), body < 2 ? 15 : 50) << body;
        EXPECT_EQ(next_pixels(file, 1).size(), 8u);
        rio_close(file);
    }
}

TEST_F(JpegHostile, AnOverviewMayBeJpegWhereItsImageIsNot)
{
    memory_file memory(80000);
    RFILE *file = new_jpeg(memory, 40, 40, { 30, 5, 32, 1 });
    const test_picture p = make_picture(40, 40, 1), half = make_picture(20, 20, 1);
    EXPECT_EQ(put_picture(file, p), 0);
    EXPECT_EQ(rio_set_active_ov(file, 0), 0);
    set_key(file, RIO_KEY_WIDTH, 20);
    set_key(file, RIO_KEY_HEIGHT, 20);
    set_key(file, RIO_KEY_TILE_WIDTH, 32);
    EXPECT_EQ(put_picture(file, half), 0);
    rio_close(file);
    bytes disk = written(memory);
    disk[1536 + 18] = 29;       // the base image's tiles are told to be byte runs
    memory_file mixed(disk);
    file = mixed.open_r();
    ASSERT_TRUE(file);
    EXPECT_FALSE(key_of(file, RIO_KEY_JPEG_QUALITY));
    EXPECT_EQ(rio_set_active_ov(file, 0), 0);
    EXPECT_GT(psnr(half, rest_of(file, 1)), 35);
    rio_close(file);
}

TEST_F(JpegHostile, EveryFailedAllocationIsTold)
{
    for (const bytes &whole : good_files())
        EXPECT_GT(read_with_memory_faults(whole), 3);
    for (const int tile : { 0, 32 })
        for (const int type : { 30, 31 }) {
            const test_picture p = make_picture(36, 36, type == 30 ? 1 : 3);
            int n = 0;
            for (; n < 60; n++) {
                memory_file memory(40000);
                mem_fail_countdown = n;
                RFILE *file = memory.open_w();
                int done = 0;
                if (file) {
                    done = set_key(file, RIO_KEY_WIDTH, 36) == 0 && set_key(file, RIO_KEY_HEIGHT, 36) == 0
                           && set_key(file, RIO_KEY_DATA_TYPE, type) == 0 && (!tile || set_key(file, RIO_KEY_TILE_WIDTH, tile) == 0)
                           && put_picture(file, p) == 0;
                }
                const uint32_t error = rio_errno;
                rio_close(file);
                const bool reached = mem_fail_countdown < 0;
                mem_fail_countdown = -1;
                if (!reached) {
                    EXPECT_TRUE(done);
                    break;
                }
                EXPECT_TRUE(!done && error == RIO_NO_MEMORY) << n << " " << error << " " << tile << " " << type;
            }
            EXPECT_LT(n, 60);
            EXPECT_GT(n, 4);
        }
}
