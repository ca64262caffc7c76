// The JPEG packet, the quality key, and what the record asks of a driver.
#include "RIO/CORE/plain_record.h"
#include "RIO/CORE/tests_native.h"
#include "RIO/JPEG/jp.h"
#include "RIO/JPEG/jpeg_files.h"
#include "RIO/NATV/ntv.h"

struct JpegPacket : with_jpeg_driver {};

TEST_F(JpegPacket, StandsBehindTheHeaderWithoutTables)
{
    const bytes disk = jpeg_file(make_picture(8, 4, 1), { 30, 20 });
    // 510 words and a block of 256 for the packet's 36.
    EXPECT_EQ(le_u16(&disk[2]), 510 + 256);
    EXPECT_EQ(le_u16(&disk[4]), 30);
    EXPECT_EQ(le_u32(&disk[540]), 1024u);
    EXPECT_EQ(le_u32(&disk[544]), 36u);
    bytes packet(512, 0);
    packet[0] = 2;      // id
    packet[2] = 12;     // code
    packet[4] = 32;     // words behind the first four
    packet[10] = 20;    // quality
    EXPECT_EQ(bytes(disk.begin() + 1024, disk.begin() + 1536), packet);
    // One JPEG picture, from its first marker to its last.
    EXPECT_EQ(bytes(disk.begin() + 1536, disk.begin() + 1538), (bytes { 0xFF, 0xD8 }));
    EXPECT_EQ(bytes(disk.end() - 2, disk.end()), (bytes { 0xFF, 0xD9 }));
}

TEST_F(JpegPacket, QualityIsFifteenUnlessItIsTold)
{
    for (const auto &[told, kept] : { std::pair { 0, 15 }, { 1, 1 }, { 100, 100 }, { 15, 15 } }) {
        const bytes disk = jpeg_file(make_picture(8, 8, 1), { 30, told });
        EXPECT_EQ(le_i16(&disk[1024 + 10]), kept);
        memory_file memory(disk);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(key_of(file, RIO_KEY_JPEG_QUALITY), kept);
        EXPECT_TRUE(file->flags & RIO_JPEG);
        rio_stat stat;
        EXPECT_EQ(rio_get_stat(file, &stat), 0);
        EXPECT_EQ(stat.jpeg_quality, kept);
        EXPECT_EQ(key_of(file, RIO_KEY_PACKET_WORDS), 0);
        rio_close(file);
    }
}

TEST_F(JpegPacket, QualityMayComeBeforeTheTypeAndGoWithIt)
{
    memory_file memory(20000);
    RFILE *file = memory.open_w();
    EXPECT_EQ(set_key(file, RIO_KEY_JPEG_QUALITY, 40), 0);
    EXPECT_EQ(key_of(file, RIO_KEY_JPEG_QUALITY), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_DATA_TYPE, 30), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_WIDTH, 8), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_HEIGHT, 8), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    EXPECT_EQ(key_of(file, RIO_KEY_JPEG_QUALITY), 40);
    rio_close(file);
    EXPECT_EQ(le_i16(&memory.data[1024 + 10]), 40);

    // A type without JPEG data gives the packet's room back.
    memory_file other(20000);
    file = new_jpeg(other, 8, 8, { 30, 40 });
    EXPECT_EQ(natv_u32(file, NATV_PACKET_WORDS), 36u);
    EXPECT_EQ(set_key(file, RIO_KEY_DATA_TYPE, 2), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    rio_close(file);
    EXPECT_EQ(le_u16(&other.data[2]), 510);
    EXPECT_EQ(le_u32(&other.data[544]), 0u);
}

TEST_F(JpegPacket, QualitiesThatThePacketCannotHoldAreRefused)
{
    memory_file memory(20000);
    RFILE *file = new_jpeg(memory, 8, 8, { 30 });
    for (const int quality : { -1, 32768 }) {
        EXPECT_EQ(set_key(file, RIO_KEY_JPEG_QUALITY, quality), 1);
        EXPECT_EQ(rio_errno, RIO_BAD_VALUE);
    }
    rio_close(file);
}

TEST_F(JpegPacket, AZeroQualityAtTheStartOfWritingIsFifteen)
{
    memory_file memory(20000);
    RFILE *file = new_jpeg(memory, 12, 8, { 30 });
    EXPECT_EQ(jpeg_start_write(file, 0), 0);    // a width of 12 is of whole fours, which is all that is asked
    EXPECT_EQ(file->jpeg->quality, 15);
    EXPECT_EQ(file->jpeg->direction, uint32_t{ JPEG_COMPRESSING });
    EXPECT_EQ(le_i16(natv(file)->jpeg_packet.bytes + 10), 15);
    rio_close(file);
}

TEST_F(JpegPacket, SidesThatAreNotOfWholeFoursAreRefusedWithoutTiles)
{
    memory_file memory(60000);
    for (const auto &[width, height] : { std::pair { 6, 8 }, { 8, 6 }, { 5, 5 } }) {
        RFILE *file = new_jpeg(memory, width, height, { 30 });
        EXPECT_EQ(rio_write_header(file), 1);
        EXPECT_EQ(rio_errno, RIO_BAD_FIELD);
        rio_close(file);
        file = new_jpeg(memory, width, height, { 30, 0, 32 });
        EXPECT_EQ(rio_write_header(file), 0);
        rio_close(file);
    }
    // Beyond what a JPEG picture's own numbers hold.
    RFILE *file = new_jpeg(memory, 65536, 4, { 30 });
    EXPECT_EQ(rio_write_header(file), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    rio_close(file);
}

// A file whose packet holds `count` tables, all of the level given.
static bytes with_tables(const bytes &plain, int count, int level0, int level1)
{
    bytes disk = plain;
    put_le_u32(&disk[544], uint32_t(36 + 32 * count));
    put_le_u32(&disk[1024 + 4], uint32_t(32 + 32 * count));
    disk[1024 + 14] = uint8_t(count);
    std::fill_n(&disk[1024 + 72], 64, uint8_t(level0));
    if (count == 2)
        std::fill_n(&disk[1024 + 136], 64, uint8_t(level1));
    return disk;
}

TEST_F(JpegPacket, TablesOfThePacketTakeThePlaceOfTheUsualOnes)
{
    const bytes plain = jpeg_file(make_picture(8, 8, 1), { 30, 50 });
    for (const int count : { 0, 1, 2 }) {
        memory_file memory(count ? with_tables(plain, count, 30, 40) : plain);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        const jpeg_state *jpeg = file->jpeg;
        EXPECT_EQ(jpeg->luminance[63], count ? 30 : 99);
        EXPECT_EQ(jpeg->chrominance[0], count == 2 ? 40 : 17);
        EXPECT_EQ(jpeg->direction & 3, count == 2 ? 3u : uint32_t(count));
        EXPECT_TRUE(jpeg->direction & JPEG_DECOMPRESSING);
        // Reading, the inverse values stand first: 30 is 3 places down, 8 * 64 * 30 / 2 = 7680, and 1920 without two bits.
        if (count) {
            EXPECT_EQ(jpeg->board_tables[0][0], 1920 + (4 << 13));
        }
        EXPECT_EQ(jpeg->board_tables[2][0], count ? 68 : 128);      // 2048 / 30 = 68.3, 2048 / 16
        rio_close(file);
    }
}

TEST_F(JpegPacket, TablesThatThePacketHasNoRoomForAreNotTaken)
{
    const bytes plain = jpeg_file(make_picture(8, 8, 1), { 30, 50 });
    for (const int told : { 1, 2, 3, -1 }) {
        bytes disk = plain;
        put_le_u16(&disk[1024 + 14], uint16_t(told));
        memory_file memory(disk);
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(file->jpeg->luminance[0], 16);
        rio_close(file);
    }
}

TEST_F(JpegPacket, AFileWithoutAPacketIsReadAtFifteen)
{
    bytes disk = jpeg_file(make_picture(8, 8, 1), { 30, 50 });
    put_le_u32(&disk[540], 0);
    put_le_u32(&disk[544], 0);
    memory_file memory(disk);
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(key_of(file, RIO_KEY_JPEG_QUALITY), 15);
    EXPECT_EQ(next_pixels(file, 1).size(), 8u);     // the piece brings its own tables along
    rio_close(file);
}

TEST_F(JpegPacket, StandsBetweenTheOverviewDirectoryAndTheApplicationsPackets)
{
    memory_file memory(40000);
    RFILE *file = new_jpeg(memory, 8, 8, { 30, 7, 32, 1 });
    bytes mine(16, 0xAB);
    put_le_u16(&mine[0], 50);
    put_le_u16(&mine[2], 3);
    put_le_u32(&mine[4], 4);
    EXPECT_EQ(rio_put_packet(file, mine.data()), 0);
    EXPECT_EQ(set_key(file, RIO_KEY_PACKET_WORDS, 8), 0);
    EXPECT_EQ(put_picture(file, make_picture(8, 8, 1)), 0);
    rio_close(file);
    // One overview: 12 words of 32 bits are 24; then 36, then 8.
    const uint8_t *block = &memory.data[1024];
    EXPECT_EQ(le_u32(&memory.data[544]), 24u + 36 + 8);
    EXPECT_EQ(le_u16(block + 2), 10);
    EXPECT_EQ(le_u16(block + 48 + 2), 12);
    EXPECT_EQ(le_u16(block + 48 + 10), 7);
    EXPECT_EQ(bytes(block + 48 + 72, block + 48 + 72 + 16), mine);
    memory_file again(memory.data);
    file = again.open_r();
    ASSERT_TRUE(file);
    bytes back(16);
    EXPECT_EQ(rio_get_packet(file, back.data()), 0);
    EXPECT_EQ(back, mine);
    rio_close(file);
}

// ---- the driver ----------------------------------------------------------------------------------------------------------

TEST(JpegWithoutDriver, FilesAreRefusedInClearWords)
{
    rio_jpeg_driver = &jpeg_driver;
    const bytes disk = jpeg_file(make_picture(8, 8, 1), { 30 });
    rio_jpeg_driver = nullptr;
    memory_file memory(disk);
    rio_debug = 1;
    const std::string text = printed([&] { EXPECT_FALSE(memory.open_r()); });
    rio_debug = 0;
    EXPECT_EQ(rio_errno, RIO_JPEG_FAIL);
    EXPECT_NE(text.find("no JPEG driver is installed"), std::string::npos);
    memory_file fresh(20000);
    RFILE *file = new_file(fresh, RIO_FORMAT_NATV, 8, 8, 30);
    EXPECT_EQ(put_picture(file, make_picture(8, 8, 1)), 1);
    EXPECT_EQ(rio_errno, RIO_JPEG_FAIL);
    rio_close(file);
}

// A driver that notes what it is asked, and answers `fault` to one message.
static struct {
    std::vector<uint32_t> sent;
    int opened, closed;
    uint32_t faulty;
    int32_t fault, open_status, close_status;
    codec_call last;
    uint16_t first_table;
} asked;

static int32_t note_open(const char *handler, int32_t mode, void **driver_out)
{
    EXPECT_STREQ(handler, "JPEG");
    EXPECT_EQ(mode, 2);
    asked.opened++;
    *driver_out = &asked;
    return asked.open_status;
}
static int32_t note_close(void *driver)
{
    EXPECT_EQ(driver, &asked);
    asked.closed++;
    return asked.close_status;
}
static int32_t note_message(void *, uint32_t message, codec_call *call)
{
    asked.sent.push_back(message);
    asked.last = *call;
    if (message == CODEC_SET_TABLES)
        asked.first_table = call->tables[0][0];
    if (message == asked.faulty)
        return asked.fault;
    call->made = 4;
    return 0;
}
static constexpr codec_driver noting_driver = { note_open, note_close, note_message };

struct JpegCalls : testing::Test {
    void SetUp() override
    {
        asked = {};
        rio_jpeg_driver = &noting_driver;
    }
    void TearDown() override { rio_jpeg_driver = nullptr; }
};

TEST_F(JpegCalls, AnImageIsWrittenByOneCallAfterItsTables)
{
    memory_file memory(20000);
    RFILE *file = new_jpeg(memory, 12, 4, { 31, 50 });
    EXPECT_EQ(put_picture(file, make_picture(12, 4, 3)), 0);
    EXPECT_EQ(asked.sent, (std::vector<uint32_t> { 24579, 24580, 24584, 24577 }));
    EXPECT_EQ(asked.last.width, 12);
    EXPECT_EQ(asked.last.height, 4);
    EXPECT_EQ(asked.last.bits, 24);
    EXPECT_EQ(asked.last.timeout, 1000);
    EXPECT_GE(asked.last.coded_bytes, 12 * 4 * 3 + 16);
    EXPECT_EQ(asked.first_table, 128);      // the forward value of 16
    // Looked for at the start, opened for the call, and closed after it.
    EXPECT_EQ(asked.opened, asked.closed);
    EXPECT_EQ(file->jpeg_mode, 0u);
    rio_close(file);
    EXPECT_EQ(written(memory).size(), 1536u + 4);
}

TEST_F(JpegCalls, ADriverInUseIsKeptAndLetGoAtTheEnd)
{
    memory_file memory(20000);
    RFILE *file = new_jpeg(memory, 12, 4, { 30 });
    EXPECT_EQ(set_key(file, RIO_KEY_JPEG_BOARD, 1), 0);
    EXPECT_EQ(put_picture(file, make_picture(12, 4, 1)), 0);
    EXPECT_EQ(file->jpeg_mode & (RIO_JPEG_BOARD_OPEN | RIO_JPEG_TABLES_SENT), 3u);
    EXPECT_EQ(asked.opened, asked.closed + 1);
    rio_close(file);
    EXPECT_EQ(asked.opened, asked.closed);
}

TEST_F(JpegCalls, EachTurnOfDirectionSendsItsTables)
{
    memory_file memory(native_header(4, 4, 30) + bytes(40, 1));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_TRUE(asked.sent.empty());
    jpeg_set_direction(file, JPEG_DECOMPRESSING);   // as it is
    jpeg_set_direction(file, 3);                    // none at all
    EXPECT_TRUE(asked.sent.empty());
    jpeg_set_direction(file, JPEG_COMPRESSING);
    EXPECT_EQ(asked.sent, (std::vector<uint32_t> { 24579, 24580, 24584 }));
    EXPECT_EQ(asked.first_table, 2048 / 4);         // 16 at 15 is 4
    EXPECT_TRUE(file->jpeg->coded);
    jpeg_set_direction(file, JPEG_DECOMPRESSING);
    EXPECT_EQ(asked.sent.size(), 6u);
    EXPECT_EQ(asked.first_table, 1024 + (2 << 13));
    rio_close(file);
    EXPECT_EQ(asked.opened, asked.closed);
}

TEST_F(JpegCalls, RefusedTablesAndCallsAreHardwareErrors)
{
    for (const uint32_t message : { CODEC_BEGIN, CODEC_END, CODEC_SET_TABLES, CODEC_DECOMPRESS }) {
        memory_file memory(native_header(4, 4, 30) + bytes(40, 1));
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        asked.faulty = message;
        asked.fault = CODEC_REFUSED;
        uint8_t pixels[16];
        uint8_t *planes[1] = { pixels };
        EXPECT_EQ(jpeg_read_coded(file), 0);
        EXPECT_EQ(jpeg_decompress(file, 1, planes), 1);
        EXPECT_EQ(file->error, RIO_JPEG_HW2);
        EXPECT_EQ(file->jpeg_mode & RIO_JPEG_BOARD_OPEN, 0u);
        // By lines it is a failed read, and is not tried again.
        const size_t calls = asked.sent.size();
        EXPECT_EQ(rio_getline(file, pixels), 1);
        EXPECT_EQ(rio_errno, RIO_READ_FAILED);
        EXPECT_GT(asked.sent.size(), calls);
        const size_t again = asked.sent.size();
        EXPECT_EQ(rio_getline(file, pixels), 1);
        EXPECT_EQ(asked.sent.size(), again);
        rio_close(file);
        asked.faulty = 0;
    }
}

TEST_F(JpegCalls, ADriverThatDoesNotOpenFailsTheFile)
{
    asked.open_status = 218;
    memory_file memory(native_header(4, 4, 30) + bytes(40, 1));
    rio_debug = 1;
    const std::string text = printed([&] { EXPECT_FALSE(memory.open_r()); });
    rio_debug = 0;
    EXPECT_EQ(rio_errno, RIO_JPEG_FAIL);
    EXPECT_NE(text.find("Zpak board in use\n"), std::string::npos);
}

TEST_F(JpegCalls, ADriverThatDoesNotCloseKeepsTheRecord)
{
    memory_file memory(native_header(4, 4, 30) + bytes(40, 1));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    EXPECT_EQ(set_key(file, RIO_KEY_JPEG_BOARD, 1), 0);
    uint8_t pixels[16];
    rio_getline(file, pixels);
    asked.close_status = CODEC_BOARD_INVALID;
    rio_close(file);
    EXPECT_EQ(rio_errno, RIO_JPEG_HW);
    EXPECT_TRUE(file->jpeg);
    rio_close(file);    // the board is taken to be gone now
    EXPECT_EQ(rio_errno, 0u);
}

TEST_F(JpegCalls, AMissingPlaneIsNoOutput)
{
    memory_file memory(native_header(4, 4, 31) + bytes(40, 1));
    RFILE *file = memory.open_r();
    ASSERT_TRUE(file);
    uint8_t red[16], blue[16];
    uint8_t *planes[3] = { red, nullptr, blue };
    EXPECT_EQ(jpeg_decompress(file, 3, planes), 1);
    EXPECT_EQ(file->error, RIO_NO_OUTPUT);
    rio_close(file);
}

TEST_F(JpegCalls, APieceIsFilledUpWithFF)
{
    // n + 7 without its two lowest bits: 4 more on 40, 7 on 41, 6 on 42, 5 on 43.
    for (const auto &[bytes_there, room] : { std::pair { 40, 44 }, { 41, 48 }, { 42, 48 }, { 43, 48 } }) {
        memory_file memory(native_header(4, 4, 30) + bytes(size_t(bytes_there), 1));
        RFILE *file = memory.open_r();
        ASSERT_TRUE(file);
        EXPECT_EQ(jpeg_read_coded(file), 0);
        EXPECT_EQ(file->jpeg->coded_bytes, room);
        EXPECT_EQ(file->jpeg->coded[bytes_there - 1], 1);
        for (int i = bytes_there; i < room; i++)
            EXPECT_EQ(file->jpeg->coded[i], 0xFF) << i;
        rio_close(file);
    }
}
