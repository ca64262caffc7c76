// Damaged native files of every variant: cut at every byte, and with bits turned. Nothing is asked of what they give
// but that each call ends, and that no line is wider than it says (the sanitizers see to the rest).
#include "RIO/CORE/byte_order.h"
#include "RIO/CORE/tests_native.h"
#include "RIO/memory_files.h"
#include "fuzz/fuzz_reader.h"
#include <gtest/gtest.h>

struct variant {
    int type, tile, headed, overviews, images;
};

static constexpr variant variants[] = {
    { 1, 0, 0, 0, 1 },  { 2, 0, 1, 0, 1 },  { 3, 0, 0, 0, 1 },  { 9, 0, 0, 0, 1 },   { 9, 0, 1, 0, 1 },  { 10, 0, 1, 0, 1 },
    { 25, 0, 0, 0, 1 }, { 25, 0, 1, 0, 1 }, { 26, 0, 0, 0, 1 }, { 26, 0, 1, 0, 1 },  { 27, 0, 0, 0, 1 }, { 27, 0, 1, 0, 1 },
    { 28, 0, 0, 0, 1 }, { 28, 0, 1, 0, 1 }, { 29, 0, 0, 0, 1 }, { 29, 0, 1, 0, 1 },  { 67, 0, 0, 0, 1 }, { 69, 0, 0, 0, 1 },
    { 23, 0, 0, 0, 1 }, { 24, 0, 0, 0, 1 }, { 2, 32, 0, 0, 1 }, { 29, 32, 0, 0, 1 }, { 10, 32, 0, 0, 1 }, { 27, 32, 1, 0, 1 },
    { 28, 32, 0, 0, 1 }, { 9, 32, 0, 0, 1 }, { 24, 512, 0, 0, 1 }, { 2, 0, 0, 2, 1 }, { 29, 32, 0, 2, 1 }, { 29, 0, 0, 0, 3 },
};

static void put_lines(RFILE *file, int samples, int width, int height)
{
    for (int y = 0; y < height; y++) {
        uint16_t planes[4][64];
        for (int s = 0; s < 4; s++)
            for (int x = 0; x < width; x++)
                planes[s][x] = uint16_t(x < 9 ? 0 : (x * 31 + y * 17 + s) * 259);
        const void *lines[4] = { planes[0], planes[1], planes[2], planes[3] };
        ASSERT_EQ(rio_putline_planes(file, samples, lines), 0);
    }
}

static bytes good_file(const variant &v)
{
    memory_file memory(20000);
    RFILE *file = new_file(memory, RIO_FORMAT_NATV, 37, 5, v.type);
    set_key(file, RIO_KEY_SCANNABLE, v.headed);
    const int samples = key_of(file, RIO_KEY_SAMPLES);
    if (v.tile)
        set_key(file, RIO_KEY_TILE_WIDTH, v.tile);
    if (v.overviews)
        set_key(file, RIO_KEY_OVERVIEW_COUNT, v.overviews);
    put_lines(file, samples, 37, 5);
    for (int n = 0; n < v.overviews; n++) {
        EXPECT_EQ(rio_set_active_ov(file, n), 0);
        set_key(file, RIO_KEY_WIDTH, 16);
        set_key(file, RIO_KEY_HEIGHT, 2);
        set_key(file, RIO_KEY_TILE_WIDTH, v.tile);
        put_lines(file, samples, 16, 2);
    }
    for (int n = 1; n < v.images; n++) {
        EXPECT_EQ(rio_set_active_image(file, n), 0);
        put_lines(file, samples, 37, 5);
    }
    rio_close(file);
    // The rest of the memory was never written.
    size_t end = memory.data.size();
    while (end > 0 && memory.data[end - 1] == 0xEE)
        end--;
    memory.data.resize(end);
    return memory.data;
}

static void read_all(const bytes &content)
{
    fuzz_reader(content.data(), content.size(), RIO_FORMAT_NATV);
}

TEST(HostileNative, GoodOnesAreWhatTheyShouldBe)
{
    for (const variant &v : variants) {
        const bytes content = good_file(v);
        memory_file memory(content);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file) << v.type;
        EXPECT_EQ(key_of(file, RIO_KEY_DATA_TYPE), v.type);
        EXPECT_EQ(key_of(file, RIO_KEY_IMAGES), v.images);
        EXPECT_EQ(key_of(file, RIO_KEY_OVERVIEW_COUNT), v.overviews);
        rio_close(file);
        EXPECT_EQ(read_through(content), 5) << v.type << " " << v.tile;
    }
}

TEST(HostileNative, SmallFilesThatTellOfMuchGetLittleMemory)
{
    // A row of 64 solid tiles of 16384 would be 16 GB.
    bytes content = native_header(1 << 20, 16384, 65);
    content.resize(1024 + 128 + 12 * 64, 0);
    put_le_u16(&content[1024], 1);
    put_le_u16(&content[1026], 7);
    put_le_u32(&content[1028], 60 + 6 * 64);
    put_le_u16(&content[1024 + 18], 2);
    put_le_u32(&content[1024 + 120], 16384);
    memory_file tiles(content);
    RFILE *file = tiles.open_r();
    ASSERT_TRUE(file);
    bytes line(1 << 20);
    EXPECT_EQ(rio_getline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
    rio_close(file);

    memory_file lines(native_header(4, 2000000000, 29));
    file = lines.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(rio_randomize(file), 1);
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
    rio_close(file);
}

// 1 when all lines went out; 0 with rio_errno.
static int write_small(int type, int tile)
{
    memory_file memory(20000);
    RFILE *file = new_file(memory, RIO_FORMAT_NATV, 37, 5, type);
    if (!file)
        return 0;
    int done = (!tile || set_key(file, RIO_KEY_TILE_WIDTH, tile) == 0) && set_key(file, RIO_KEY_OVERVIEW_COUNT, 1) == 0;
    const bytes line(64, 3);
    for (int y = 0; done && y < 5; y++)
        done = rio_putline_rgb(file, line.data(), line.data(), line.data()) == 0;
    const uint32_t error = rio_errno;
    rio_close(file);
    rio_errno = done ? 0 : error;
    return done;
}

TEST(HostileNative, EveryFailedAllocationOfAWriterIsTold)
{
    for (const auto &[type, tile] : { std::pair { 29, 0 }, { 27, 32 }, { 28, 0 }, { 10, 0 }, { 9, 32 }, { 24, 0 } }) {
        int n = 0;
        for (; n < 60; n++) {
            mem_fail_countdown = n;
            const int done = write_small(type, tile);
            const bool reached = mem_fail_countdown < 0;
            mem_fail_countdown = -1;
            if (!reached) {
                EXPECT_EQ(done, 1) << type;
                break;
            }
            EXPECT_TRUE(done || rio_errno == RIO_NO_MEMORY) << type << " " << n << " " << rio_errno;
        }
        EXPECT_LT(n, 60) << type;
        EXPECT_GT(n, 2) << type;
    }
}

TEST(HostileNative, CutAtEveryByte)
{
    for (const variant &v : variants) {
        const bytes whole = good_file(v);
        for (size_t cut = 0; cut < whole.size() && cut < 2048; cut++)
            read_all(bytes(whole.begin(), whole.begin() + long(cut)));
    }
}

TEST(HostileNative, BitsTurnedInEveryByte)
{
    for (const variant &v : variants) {
        const bytes whole = good_file(v);
        for (size_t at = 0; at < whole.size(); at++) {
            // The middle of a header is texts and numbers that nobody acts on: one bit of each byte is enough.
            const bool text = at > 200 && at < 1024 && at != 511 && (at < 520 || at > 547);
            bytes bad = whole;
            for (int bit = text ? int(at % 8) : 0; bit < 8; bit += text ? 8 : 1) {
                bad[at] = uint8_t(whole[at] ^ (1 << bit));
                read_all(bad);
            }
        }
    }
}
