// The native header: type codes, keys, colour tables, packets, modifying, bad headers.
#include "RIO/CORE/plain_record.h"
#include "RIO/CORE/tests_native.h"
#include "RIO/NATV/ntv.h"
#include <cstring>
#include <gtest/gtest.h>

static bytes operator+(bytes one, const bytes &other)
{
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

struct Native : testing::Test {
    test_folder folder;
    RFILE *file = nullptr;

    RFILE *open(const bytes &content) { return file = rio_open_r(folder.with("a.ntv", content).c_str()); }
    RFILE *modify(const bytes &content) { return file = rio_open_modify(folder.with("a.ntv", content).c_str()); }
    RFILE *create(int width, int height, int type)
    {
        file = rio_open_w((folder / "a.ntv").c_str());
        EXPECT_EQ(set(RIO_KEY_WIDTH, width), 0);
        EXPECT_EQ(set(RIO_KEY_HEIGHT, height), 0);
        EXPECT_EQ(set(RIO_KEY_DATA_TYPE, type), 0);
        return file;
    }
    void close()
    {
        rio_close(file);
        file = nullptr;
    }
    int32_t get(int key)
    {
        int32_t value = -12345;
        EXPECT_EQ(rio_get_hdr_data(file, key, &value), 0) << key;
        return value;
    }
    int set(int key, int32_t value) { return rio_set_hdr_data(file, key, &value); }
    void TearDown() override
    {
        if (file)
            rio_close(file);
    }
};

TEST_F(Native, AWrittenHeaderHasItsFieldsInPlace)
{
    create(300, 2, 2);
    const bytes line(300, 5);
    EXPECT_EQ(rio_putline(file, line.data()), 0);
    EXPECT_EQ(rio_putline(file, line.data()), 0);
    close();
    const bytes disk = folder.content("a.ntv");
    ASSERT_EQ(disk.size(), 1024u + 600);
    EXPECT_EQ(le_u16(&disk[0]), 0x0908);
    EXPECT_EQ(le_u16(&disk[2]), 510);
    EXPECT_EQ(le_u16(&disk[4]), 2);
    EXPECT_EQ(le_u32(&disk[184]), 300u);
    EXPECT_EQ(le_u32(&disk[188]), 2u);
    EXPECT_EQ(disk[194], 4);
    EXPECT_EQ(disk[195], 0);
    EXPECT_EQ(disk[511], 3);
    EXPECT_EQ(le_u16(&disk[532]), 0);
    EXPECT_EQ(disk[1024], 5);
}

TEST_F(Native, TypesFixTheShape)
{
    const int shapes[][3] = { { 2, 1, 8 }, { 10, 1, 8 }, { 29, 1, 8 }, { 30, 1, 8 }, { 25, 3, 8 }, { 27, 3, 8 }, { 28, 3, 8 },
                              { 31, 3, 8 }, { 1, 1, 1 }, { 9, 1, 1 }, { 23, 1, 1 }, { 24, 1, 1 }, { 32, 4, 8 }, { 67, 4, 8 },
                              { 69, 4, 8 }, { 3, 1, 16 }, { 4, 1, 32 }, { 5, 1, 32 }, { 6, 1, 64 }, { 7, 1, 64 }, { 8, 1, 128 } };
    create(4, 4, 2);
    for (const auto &[type, samples, bits] : shapes) {
        EXPECT_EQ(set(RIO_KEY_DATA_TYPE, type), 0);
        EXPECT_EQ(get(RIO_KEY_DATA_TYPE), type);
        EXPECT_EQ(get(RIO_KEY_SAMPLES), samples) << type;
        EXPECT_EQ(get(RIO_KEY_BITS), bits) << type;
    }
    for (int bad : { 0, 11, 22, 33, 64, 65, 66, 68, 70, -1 }) {
        EXPECT_EQ(set(RIO_KEY_DATA_TYPE, bad), 1) << bad;
        EXPECT_EQ(rio_errno, RIO_BAD_VALUE);
    }
}

TEST_F(Native, EveryKeyIsReadBackFromTheFile)
{
    create(4, 2, 2);
    double matrix[16], view[3] = { 1.5, -2.25, 1e10 }, extent[3] = { 4, 5, 6 }, ratio = 1.25, turn = 30.5, skew = -0.125;
    for (int i = 0; i < 16; i++)
        matrix[i] = i * 1.5;
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_TRANSFORM, matrix), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_VIEW_ORIGIN, view), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_VIEW_EXTENT, extent), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_ASPECT_RATIO, &ratio), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_ROTATION, &turn), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_SKEW, &skew), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_CREATOR, "made here"), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_COMMENT, "a comment"), 0);
    EXPECT_EQ(get(RIO_KEY_APPLICATION_TYPE), 9);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_LABEL1, "one"), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_LABEL2, std::string(100, 'x').c_str()), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_LABEL3, "three"), 0);
    const std::pair<int, int> numbers[] = { { RIO_KEY_DEVICE_CODE, -3 }, { RIO_KEY_ORIENTATION, 6 }, { RIO_KEY_TYPE_MODIFIER, 77 },
                                            { RIO_KEY_BACKGROUND_RED, 11 }, { RIO_KEY_BACKGROUND_GREEN, 12 },
                                            { RIO_KEY_BACKGROUND_BLUE, 13 }, { RIO_KEY_VERSION, 3 } };
    for (const auto &[key, value] : numbers)
        EXPECT_EQ(set(key, value), 0);
    const uint8_t low[8] = { 1, 2, 3, 4, 5, 6, 7, 8 }, high[8] = { 11, 12, 13, 14, 15, 16, 17, 18 };
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_MINIMUM8, low), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_MAXIMUM8, high), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    close();

    const bytes disk = folder.content("a.ntv");
    EXPECT_EQ(le_f64(&disk[56 + 8 * 5]), 7.5);
    EXPECT_EQ(le_f64(&disk[8]), 1.5);
    EXPECT_EQ(disk[412], 'm');
    EXPECT_EQ(le_u32(&disk[772]), 12u);
    EXPECT_EQ(disk[780], 'a');
    EXPECT_EQ(disk[492], 1);

    file = rio_open_r((folder / "a.ntv").c_str());
    ASSERT_TRUE(file);
    double back[16];
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_TRANSFORM, back), 0);
    EXPECT_EQ(std::memcmp(back, matrix, sizeof matrix), 0);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_VIEW_ORIGIN, back), 0);
    EXPECT_EQ(back[2], 1e10);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_VIEW_EXTENT, back), 0);
    EXPECT_EQ(back[1], 5);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_ASPECT_RATIO, back), 0);
    EXPECT_EQ(back[0], 1.25);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_ROTATION, back), 0);
    EXPECT_EQ(back[0], 30.5);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_SKEW, back), 0);
    EXPECT_EQ(back[0], -0.125);
    char text[200];
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_CREATOR, text), 0);
    EXPECT_STREQ(text, "made here");
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_COMMENT, text), 0);
    EXPECT_STREQ(text, "a comment");
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_LABEL2, text), 0);
    EXPECT_EQ(std::strlen(text), 65u);
    for (const auto &[key, value] : numbers)
        EXPECT_EQ(get(key), value) << key;
    uint8_t four[8] = {};
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_MINIMUM4, four), 0);
    EXPECT_EQ(four[3], 4);
    EXPECT_EQ(four[4], 0);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_MAXIMUM8, four), 0);
    EXPECT_EQ(four[7], 18);
    EXPECT_EQ(get(RIO_KEY_HEADER_WORDS), 512);
}

TEST_F(Native, BackgroundAndCommentNeedApplicationType9)
{
    ASSERT_TRUE(open(native_bytes(4, 2)));
    char value[200];
    for (int key : { 11, 12, 13, 15 }) {
        EXPECT_EQ(rio_get_hdr_data(file, key, value), 1);
        EXPECT_EQ(rio_errno, 0x0C2A800Eu);
    }
}

// ---- bad headers -------------------------------------------------------------------------------------------------------

TEST_F(Native, HeaderChecks)
{
    bytes old = native_bytes(4, 2);
    put_le_u16(&old[0], 0);
    put_le_u16(&old[2], 254);
    put_le_u16(&old[6], 1);
    old.resize(512);
    old = old + bytes(8, 3);
    ASSERT_TRUE(open(old));                             // from before the magic: data right behind one block
    uint8_t line[4];
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[0], 3);
    double ratio = 0;
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_ASPECT_RATIO, &ratio), 0);
    EXPECT_EQ(ratio, 1.0);
    close();

    bytes bad = old;
    put_le_u16(&bad[4], 5);
    EXPECT_FALSE(open(bad));
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    bad = old;
    put_le_u16(&bad[6], 0);
    EXPECT_FALSE(open(bad));
    bad = native_bytes(4, 2);
    for (int type : { 0, 11, 22, 33, 66, 68, 70, 0x8002 }) {
        put_le_u16(&bad[4], uint16_t(type));
        EXPECT_FALSE(open(bad)) << type;
        EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    }
    setenv("RIO_DEBUG", "1", 1);
    const std::string text = printed([&] { open(bad); });
    setenv("RIO_DEBUG", "0", 1);
    rio_read_debug_environment();
    unsetenv("RIO_DEBUG");
    EXPECT_EQ(text.find("rio_open_r: Failure in header format of file "), 0u);
    EXPECT_NE(text.find("\n            type            0x0908\n            data_type_code  -32766\n            version         "
                        "3\n"), std::string::npos);
}

TEST_F(Native, SizesThatCannotBeAreRefused)
{
    for (const auto &[w, h] : { std::pair<uint32_t, uint32_t> { 0, 5 }, { 5, 0 }, { 0x80000000, 5 }, { 5, 0x80000000 },
                                { 0xFFFFFFFF, 0xFFFFFFFF } }) {
        EXPECT_FALSE(open(native_header(w, h)));
        EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    }
    EXPECT_FALSE(open(native_header(0x7FFFFFFF, 5, 28)));        // a row of 6 GB
    EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    // More pixels than 2^31 are no reason to refuse; the lines that are not there fail.
    const long before = mem_allocation_count;
    ASSERT_TRUE(open(native_header(60000, 60000) + bytes(60000, 1)));
    EXPECT_LT(mem_allocation_count - before, 10);
    bytes line(60000);
    EXPECT_EQ(rio_getline(file, line.data()), 0);
    EXPECT_EQ(rio_getline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    EXPECT_EQ(rio_seek(file, 59999), 0);
    EXPECT_EQ(rio_getline(file, line.data()), 1);
}

TEST_F(Native, HeadersCutAtEveryByte)
{
    const bytes whole = native_bytes(4, 4);
    for (size_t cut = 0; cut <= whole.size(); cut++) {
        bytes content(whole.begin(), whole.begin() + long(cut));
        rio_memory_file memory { .data = content.data(), .size = int64_t(cut), .end = 0, .flags = 0, .position = 0,
                                 .reserved = 0 };
        char name[RIO_MEMORY_NAME_SIZE];
        file = rio_open_r(rio_memory_name(&memory, name));
        const bool opened = file != nullptr;
        EXPECT_EQ(opened, cut >= 189) << cut;           // until both sizes have their lowest byte
        if (!opened) {
            EXPECT_NE(rio_errno, 0u);
            continue;
        }
        uint8_t line[4];
        int lines = 0;
        while (rio_getline(file, line) == 0)
            lines++;
        EXPECT_EQ(lines, cut < 1024 ? 0 : int(cut - 1024) / 4) << cut;
        close();
    }
}

// ---- colour tables -----------------------------------------------------------------------------------------------------

static rio_vlt_entry entry_of(int i)
{
    return { uint16_t(i), uint16_t(i << 8), uint16_t((255 - i) << 8), uint16_t(0x1234) };
}

TEST_F(Native, ATableOf100EntriesTakes128OnDisk)
{
    create(4, 1, 2);
    rio_vlt_entry entries[100];
    for (int i = 0; i < 100; i++)
        entries[i] = entry_of(i);
    EXPECT_EQ(set(RIO_KEY_VLT_TYPE, 2), 0);
    EXPECT_EQ(set(RIO_KEY_VLT_ENTRIES, 100), 0);
    EXPECT_EQ(rio_put_vlt(file, entries), 0);
    const uint8_t line[4] = { 0, 1, 99, 100 };
    EXPECT_EQ(rio_putline(file, line), 0);
    close();
    const bytes disk = folder.content("a.ntv");
    ASSERT_EQ(disk.size(), 1024u + 128 * 8 + 4);
    EXPECT_EQ(le_u16(&disk[2]), 510 + 4 * 128);
    EXPECT_EQ(le_u16(&disk[532]), 2);
    EXPECT_EQ(le_u32(&disk[536]), 100u);
    EXPECT_EQ(le_u16(&disk[1024 + 8 * 99]), 99);
    EXPECT_EQ(le_u16(&disk[1024 + 8 * 99 + 2]), 99 << 8);
    EXPECT_EQ(disk[1024 + 8 * 100], 0);

    file = rio_open_r((folder / "a.ntv").c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(get(RIO_KEY_VLT_TYPE), 2);
    EXPECT_EQ(get(RIO_KEY_VLT_ENTRIES), 100);
    EXPECT_EQ(get(RIO_KEY_SIGNIFICANT_BITS), 8);
    EXPECT_EQ(get(RIO_KEY_VLT_PAD), 28 * 8);
    uint8_t r[4], g[4], b[4];
    EXPECT_EQ(rio_getline_rgb(file, r, g, b), 0);
    EXPECT_EQ(bytes(r, r + 4), (bytes { 0, 1, 99, 0 }));
    EXPECT_EQ(bytes(g, g + 4), (bytes { 255, 254, 156, 0 }));
    EXPECT_EQ(bytes(b, b + 4), (bytes { 0x12, 0x12, 0x12, 0 }));
}

TEST_F(Native, AByteTableLiesOverTheHeadersEnd)
{
    create(4, 1, 2);
    rio_vlt_entry entries[256];
    for (int i = 0; i < 256; i++)
        entries[i] = entry_of(i);
    EXPECT_EQ(set(RIO_KEY_VLT_TYPE, 1), 0);
    EXPECT_EQ(set(RIO_KEY_VLT_ENTRIES, 256), 0);
    EXPECT_EQ(rio_put_vlt(file, entries), 0);
    const uint8_t line[4] = { 3, 2, 1, 0 };
    EXPECT_EQ(rio_putline(file, line), 0);
    close();
    const bytes disk = folder.content("a.ntv");
    ASSERT_EQ(disk.size(), 768u + 768 + 4);
    EXPECT_EQ(le_u16(&disk[2]), 0x2FE);
    EXPECT_EQ(disk[768 + 3 * 200], 200);
    EXPECT_EQ(disk[768 + 3 * 200 + 1], 55);
    file = rio_open_r((folder / "a.ntv").c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(get(RIO_KEY_VLT_ENTRIES), 256);
    uint8_t r[4], g[4], b[4];
    EXPECT_EQ(rio_getline_rgb(file, r, g, b), 0);
    EXPECT_EQ(bytes(r, r + 4), (bytes { 3, 2, 1, 0 }));
    EXPECT_EQ(bytes(g, g + 4), (bytes { 252, 253, 254, 255 }));
}

TEST_F(Native, TablesThatCannotBeAreIgnored)
{
    bytes disk = native_bytes(4, 2);
    put_le_u16(&disk[532], 2);
    put_le_u32(&disk[536], 513);
    setenv("RIO_DEBUG", "1", 1);
    const std::string text = printed([&] { ASSERT_TRUE(open(disk)); });
    setenv("RIO_DEBUG", "0", 1);
    rio_read_debug_environment();
    unsetenv("RIO_DEBUG");
    EXPECT_EQ(text, "rio_open_r: WARNING - Color table in file ignored\n");
    rio_vlt_entry entries[256];
    EXPECT_EQ(rio_get_vlt(file, entries), 1);
    EXPECT_EQ(rio_errno, RIO_NO_VLT);
    close();
    put_le_u16(&disk[532], 3);
    put_le_u32(&disk[536], 5);
    ASSERT_TRUE(open(disk));
    EXPECT_FALSE(file->vlt);
    close();
    put_le_u16(&disk[532], 2);
    put_le_u32(&disk[536], 256);                // 2048 bytes of table in a file that has 8 behind its header
    ASSERT_TRUE(open(disk));
    EXPECT_FALSE(file->vlt);
    EXPECT_EQ(get(RIO_KEY_SIGNIFICANT_BITS), 0);
    close();
    create(4, 1, 2);
    EXPECT_EQ(set(RIO_KEY_VLT_ENTRIES, 513), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_VALUE);
    EXPECT_EQ(set(RIO_KEY_VLT_TYPE, 3), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_VALUE);
}

TEST_F(Native, ATypeWithoutEntriesGoesAway)
{
    create(4, 1, 2);
    EXPECT_EQ(set(RIO_KEY_VLT_TYPE, 2), 0);
    EXPECT_EQ(set(RIO_KEY_VLT_ENTRIES, 256), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    EXPECT_EQ(get(RIO_KEY_VLT_TYPE), 0);
    EXPECT_EQ(get(RIO_KEY_VLT_ENTRIES), 0);
    EXPECT_EQ(get(RIO_KEY_HEADER_WORDS), 512);
}

// ---- packets -------------------------------------------------------------------------------------------------------------

static bytes packet(int id, int code, uint32_t words, uint8_t level)
{
    bytes p(8 + 2 * words, level);
    put_le_u16(&p[0], uint16_t(id));
    put_le_u16(&p[2], uint16_t(code));
    put_le_u32(&p[4], words);
    return p;
}

TEST_F(Native, PacketsAreWrittenBehindTheHeaderAndReadBack)
{
    create(4, 1, 2);
    const bytes mine = packet(40, 1, 6, 0xAA) + packet(41, 2, 2, 0xBB);     // 10 and 6 words
    EXPECT_EQ(set(RIO_KEY_PACKET_WORDS, 10), 0);
    EXPECT_EQ(set(RIO_KEY_PACKET_WORDS, 6), 0);                             // a set adds
    EXPECT_EQ(get(RIO_KEY_PACKET_WORDS), 16);
    EXPECT_EQ(rio_put_packet(file, mine.data()), 0);
    const uint8_t line[4] = { 1, 2, 3, 4 };
    EXPECT_EQ(rio_putline(file, line), 0);
    close();
    const bytes disk = folder.content("a.ntv");
    ASSERT_EQ(disk.size(), 1024u + 512 + 4);
    EXPECT_EQ(le_u16(&disk[2]), 510 + 256);
    EXPECT_EQ(le_u32(&disk[540]), 1024u);
    EXPECT_EQ(le_u32(&disk[544]), 16u);
    EXPECT_EQ(bytes(disk.begin() + 1024, disk.begin() + 1024 + 32), mine);
    EXPECT_EQ(disk[1024 + 32], 0);

    file = rio_open_r((folder / "a.ntv").c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(get(RIO_KEY_PACKET_WORDS), 16);
    EXPECT_EQ(get(RIO_KEY_PACKET_FREE), 512 - 32);
    bytes back(32);
    EXPECT_EQ(rio_get_packet(file, back.data()), 0);
    EXPECT_EQ(back, mine);
    uint8_t got[4];
    EXPECT_EQ(rio_getline(file, got), 0);
    EXPECT_EQ(got[3], 4);
}

TEST_F(Native, TheLibrarysOwnPacketsAreLeftOut)
{
    // Overviews: 10 + 4 words; JPEG: 2 + 4; the application's: 6 + 4.
    bytes block = packet(1, 10, 10, 0) + packet(2, 12, 2, 0) + packet(50, 3, 6, 0xCC);
    block.resize(512, 0);
    bytes disk = native_bytes(4, 1);
    disk.resize(1024);
    put_le_u16(&disk[2], 510 + 256);
    put_le_u32(&disk[540], 1024);
    put_le_u32(&disk[544], 14 + 6 + 10);
    ASSERT_TRUE(open(disk + block + bytes { 1, 2, 3, 4 }));
    EXPECT_EQ(natv(file)->overview_dir.words, 14);
    EXPECT_EQ(natv(file)->jpeg_packet.words, 6);
    EXPECT_EQ(get(RIO_KEY_PACKET_WORDS), 10);
    bytes back(20);
    EXPECT_EQ(rio_get_packet(file, back.data()), 0);
    EXPECT_EQ(back, packet(50, 3, 6, 0xCC));
    close();
    put_le_u32(&disk[544], 14 + 6);
    ASSERT_TRUE(open(disk + block + bytes { 1, 2, 3, 4 }));
    rio_debug = 1;
    const std::string text = printed([&] { EXPECT_EQ(rio_get_packet(file, back.data()), 1); });
    rio_debug = 0;
    EXPECT_EQ(rio_errno, RIO_NO_PACKETS);
    EXPECT_NE(text.find("No application packet data found"), std::string::npos);
}

TEST_F(Native, PacketsThatLieAboutTheirLengthDoNoHarm)
{
    bytes disk = native_bytes(4, 1);
    disk.resize(1024);
    put_le_u16(&disk[2], 510 + 256);
    put_le_u32(&disk[540], 1024);
    for (uint32_t words : { 4u, 30u, 256u }) {
        for (uint32_t length : { 0u, 20u, 0x7FFFFFFFu, 0xFFFFFFFCu, 0xFFFFFFFFu }) {
            bytes block = packet(1, 10, 2, 9);
            put_le_u32(&block[4], length);
            block.resize(512, 7);
            put_le_u32(&disk[544], words);
            ASSERT_TRUE(open(disk + block + bytes { 1, 2, 3, 4 }));
            bytes out(2 * words);
            rio_get_packet(file, out.data());
            close();
        }
    }
    // Out of position: at the end of the file, where the header's length does not reach.
    bytes behind = native_bytes(4, 1);
    put_le_u32(&behind[540], 1028);
    put_le_u32(&behind[544], 14);
    setenv("RIO_DEBUG", "1", 1);
    std::string text = printed([&] { ASSERT_TRUE(open(behind + packet(1, 10, 10, 0))); });
    EXPECT_EQ(text, "rio_open_r: WARNING - Application packet infile out of position\n");
    EXPECT_EQ(natv(file)->overview_dir.words, 14);
    close();
    text = printed([&] { ASSERT_TRUE(open(behind)); });
    setenv("RIO_DEBUG", "0", 1);
    rio_read_debug_environment();
    unsetenv("RIO_DEBUG");
    EXPECT_EQ(get(RIO_KEY_PACKET_WORDS), 0);
}

TEST_F(Native, FailedMemoryForPacketsOpensWithout)
{
    bytes disk = native_bytes(4, 1);
    disk.resize(1024);
    put_le_u16(&disk[2], 510 + 256);
    put_le_u32(&disk[540], 1024);
    put_le_u32(&disk[544], 14);
    bytes block = packet(1, 10, 10, 0);
    block.resize(512, 0);
    const std::string path = folder.with("a.ntv", disk + block + bytes { 1, 2, 3, 4 });
    int opened = 0;
    for (long n = 0; n < 10; n++) {
        mem_fail_countdown = n;
        file = rio_open_r(path.c_str());
        mem_fail_countdown = -1;
        if (file) {
            opened++;
            EXPECT_EQ(get(RIO_KEY_PACKET_WORDS), 0);        // the library's own, or forgotten
            close();
        }
    }
    EXPECT_GT(opened, 4);
}

// ---- modifying -------------------------------------------------------------------------------------------------------------

TEST_F(Native, HeaderFieldsOfAnExistingFileChangeInPlace)
{
    ASSERT_TRUE(modify(native_bytes(4, 2)));
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_CREATOR, "later"), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    close();
    const bytes disk = folder.content("a.ntv");
    ASSERT_EQ(disk.size(), 1024u + 8);
    EXPECT_EQ(disk[412], 'l');
    EXPECT_EQ(disk[1024 + 7], 7);
}

TEST_F(Native, AnExistingHeaderCannotGrow)
{
    ASSERT_TRUE(modify(native_bytes(4, 2)));
    EXPECT_EQ(set(RIO_KEY_PACKET_WORDS, 20), 0);
    EXPECT_EQ(rio_write_header(file), 1);
    EXPECT_EQ(rio_errno, RIO_HEADER_FULL);
    close();
    EXPECT_EQ(folder.content("a.ntv"), native_bytes(4, 2));
}

TEST_F(Native, AnExistingTableStaysWhenOtherFieldsChange)
{
    create(4, 1, 2);
    rio_vlt_entry entries[300];
    for (int i = 0; i < 300; i++)
        entries[i] = { uint16_t(i), uint16_t(i * 100), 7, 9 };
    set(RIO_KEY_VLT_TYPE, 2);
    set(RIO_KEY_VLT_ENTRIES, 300);
    rio_put_vlt(file, entries);
    const uint8_t line[4] = { 1, 2, 3, 4 };
    EXPECT_EQ(rio_putline(file, line), 0);
    close();
    const bytes before = folder.content("a.ntv");
    file = rio_open_modify((folder / "a.ntv").c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(set(RIO_KEY_DEVICE_CODE, 5), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    close();
    bytes after = folder.content("a.ntv");
    EXPECT_EQ(le_u16(&after[192]), 5);
    after[192] = before[192];
    EXPECT_EQ(after, before);
}

TEST_F(Native, AReadOnlyHeaderIsNotWritten)
{
    ASSERT_TRUE(open(native_bytes(4, 2)));
    EXPECT_EQ(rio_write_header(file), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_WRITABLE);
}

TEST_F(Native, JpegSizesAreTestedByFoursAndToldByEights)
{
    create(6, 4, 30);
    rio_debug = 1;
    std::string text = printed([&] { EXPECT_EQ(rio_write_header(file), 1); });
    EXPECT_EQ(rio_errno, RIO_BAD_FIELD);
    EXPECT_NE(text.find("JPEG xsize must be multiple of 8\n"), std::string::npos);
    set(RIO_KEY_WIDTH, 4);
    set(RIO_KEY_HEIGHT, 6);
    text = printed([&] { EXPECT_EQ(rio_write_header(file), 1); });
    EXPECT_NE(text.find("JPEG ysize must be multiple of 8\n"), std::string::npos);
    rio_debug = 0;
}

// ---- old floating-point numbers ------------------------------------------------------------------------------------------

TEST(VaxNumbers, KnownValuesInBothDirections)
{
    // 1.0 is 0.5 * 2^1: exponent 129, so the first word is 129 << 7 = 0x4080. -2.5 is -0.625 * 2^2: exponent 130 and, behind
    // the hidden bit of 0.625 = 0.101, the fraction 01: 130 << 7 | 0x20 with the sign = 0xC120. 0.1 from its bits:
    // 0.8 * 2^-3, exponent 125 = 0x3E80, fraction bits 1001 1001 ... of 0.8 after the first.
    const std::pair<double, uint16_t> values[] = { { 1.0, 0x4080 }, { -2.5, 0xC120 }, { 0.5, 0x4000 }, { 0.0, 0 }, { 100, 0x43C8 } };
    for (const auto &[value, word] : values) {
        const uint8_t on_disk[8] = { uint8_t(word), uint8_t(word >> 8), 0, 0, 0, 0, 0, 0 };
        EXPECT_EQ(natv_from_vax(on_disk), value);
        uint8_t back[8];
        natv_to_vax(back, value);
        EXPECT_EQ(bytes(back, back + 8), bytes(on_disk, on_disk + 8)) << value;
    }
    for (double value : { 0.1, 3.14159265358979, -1e30, 1e-30, 123456789.123456 }) {
        uint8_t disk[8];
        natv_to_vax(disk, value);
        EXPECT_EQ(natv_from_vax(disk), value);
    }
    uint8_t disk[8];
    natv_to_vax(disk, 1e300);
    EXPECT_GT(natv_from_vax(disk), 1.7e38);
    natv_to_vax(disk, 1e-300);
    EXPECT_EQ(natv_from_vax(disk), 0.0);
    const uint8_t negative_zero[8] = { 0, 0x80, 1, 2, 3, 4, 5, 6 };
    EXPECT_EQ(natv_from_vax(negative_zero), 0.0);
}

TEST_F(Native, OldFilesHoldOldNumbersInViewAndAngles)
{
    bytes disk = native_bytes(4, 2);
    disk[511] = 2;
    put_le_u16(&disk[6], 1);
    put_le_u16(&disk[8], 0x4080);               // view origin 1.0
    put_le_u16(&disk[196], 0xC120);             // rotation -2.5
    put_le_f64(&disk[56], 3.0);                 // the matrix is of today's form
    ASSERT_TRUE(modify(disk));
    double view[16];
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_VIEW_ORIGIN, view), 0);
    EXPECT_EQ(view[0], 1.0);
    EXPECT_EQ(view[1], 0.0);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_ROTATION, view), 0);
    EXPECT_EQ(view[0], -2.5);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_TRANSFORM, view), 0);
    EXPECT_EQ(view[0], 3.0);
    const double skew = 100;
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_SKEW, &skew), 0);
    EXPECT_EQ(le_u16(natv(file)->header + NATV_SKEW), 0x43C8);
    EXPECT_EQ(get(RIO_KEY_VERSION), 2);
}

// ---- the text variant ------------------------------------------------------------------------------------------------------

static bytes text_file(const std::string &header)
{
    bytes file(header.begin(), header.end());
    file.resize(2048, 0);
    return file;
}

TEST_F(Native, TheTextVariantGivesSizesBackgroundAndTexts)
{
    ASSERT_TRUE(open(text_file("Raster! 1\nrgb\n64\n48\n10\n20\n30\n0\nsome maker\nlong comment here\n")));
    EXPECT_EQ(get(RIO_KEY_WIDTH), 64);
    EXPECT_EQ(get(RIO_KEY_HEIGHT), 48);
    EXPECT_EQ(get(RIO_KEY_DATA_TYPE), 27);
    EXPECT_EQ(get(RIO_KEY_SAMPLES), 3);
    EXPECT_EQ(get(RIO_KEY_BITS), 8);
    EXPECT_EQ(le_u32(natv(file)->header + 772), 20u);
    char text[80];
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_CREATOR, text), 0);
    EXPECT_STREQ(text, "some maker");
    EXPECT_STREQ((const char *)natv(file)->header + 780, "long comment here");
    EXPECT_EQ(file->ops.getline16, rio_dummy_getline16);
    EXPECT_EQ(file->ops.set_active_image, rio_dummy_set_active_image);
    close();
    EXPECT_FALSE(open(text_file("Raster! 2\nrgb\n64\n48\n10\n20\n30\n0\n")));
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    EXPECT_FALSE(open(text_file("Raster! x")));
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    EXPECT_FALSE(open(text_file("Raster! 1\nrgb\n-64\n48\n10\n20\n30\n0\n")));
    EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    EXPECT_FALSE(open(text_file("Raster! 1\nrgb\n64\n48\n10\n")));
    EXPECT_EQ(rio_errno, RIO_READ_FAILED);
    ASSERT_TRUE(open(text_file("Raster! 1\nrgb\n64\n48\n10\n20\n30\n0\n" + std::string(600, 'y'))));
}
