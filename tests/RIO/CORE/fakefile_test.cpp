// Files in memory and mapped files.
#include "RIO/CORE/view_guard.h"
#include "plain_record.h"
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

static rio_memory_file memory_over(bytes &data)
{
    return { .data = data.data(), .size = int64_t(data.size()), .end = 0, .flags = 0, .position = 0, .reserved = 0 };
}

TEST(MemoryFile, ReadsWholeItemsAndClipsToItsSize)
{
    bytes data { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 };
    rio_memory_file m = memory_over(data);
    uint8_t out[16] = {};
    EXPECT_EQ(rio_memory_ops.f_read(out, 3, 2, &m), 2);
    EXPECT_EQ(m.position, 6);
    EXPECT_EQ(rio_memory_ops.f_read(out, 3, 2, &m), 1);    // 4 bytes left: one item of 3, but all are passed
    EXPECT_EQ(m.position, 10);
    EXPECT_EQ(rio_memory_ops.f_read(out, 1, 1, &m), 0);
    EXPECT_EQ(rio_memory_ops.f_getc(&m), -1);
    m.position = 0;
    EXPECT_EQ(rio_memory_ops.f_read(out, 1, -1, &m), 0);   // a negative count reads nothing
    EXPECT_EQ(rio_memory_ops.f_read(out, INT64_MAX, INT64_MAX, &m), 0);
}

TEST(MemoryFile, NeverGrows)
{
    bytes data(4, 0);
    rio_memory_file m = memory_over(data);
    const uint8_t in[6] = { 1, 2, 3, 4, 5, 6 };
    EXPECT_EQ(rio_memory_ops.f_write(in, 1, 6, &m), 4);
    EXPECT_EQ(data, (bytes { 1, 2, 3, 4 }));
    EXPECT_EQ(rio_memory_ops.f_putc(9, &m), -1);
    m.position = 3;
    EXPECT_EQ(rio_memory_ops.f_putc(9, &m), 9);
    EXPECT_EQ(data[3], 9);
}

TEST(MemoryFile, SeekFromTheEndSubtracts)
{
    bytes data(100, 0);
    rio_memory_file m = memory_over(data);
    rio_memory_ops.f_seek(&m, 10, SEEK_END);
    EXPECT_EQ(rio_memory_ops.f_tell(&m), 90);
    rio_memory_ops.f_seek(&m, -20, SEEK_CUR);
    EXPECT_EQ(m.position, 70);
    rio_memory_ops.f_seek(&m, 1000, SEEK_CUR);
    EXPECT_EQ(m.position, 100);
    rio_memory_ops.f_seek(&m, -1, SEEK_SET);
    EXPECT_EQ(m.position, 0);
    rio_memory_ops.f_seek(&m, -5, SEEK_END);
    EXPECT_EQ(m.position, 100);
    rio_memory_ops.f_seek(&m, INT64_MAX, SEEK_CUR);
    EXPECT_EQ(m.position, 100);
    rio_memory_ops.f_rewind(&m);
    EXPECT_EQ(m.position, 0);
}

TEST(MemoryFile, CloseFreesTheRecordOnlyWhenItsFlagSays)
{
    rio_memory_file *m = (rio_memory_file *)rio_memory_ops.f_open(nullptr, nullptr);
    ASSERT_TRUE(m);
    EXPECT_EQ(m->flags & ~1u, 0u);
    m->flags = 1;
    EXPECT_EQ(rio_memory_ops.f_close(m), 0);
    bytes data(4, 0);
    rio_memory_file own = memory_over(data);
    EXPECT_EQ(rio_memory_ops.f_close(&own), 0);
    EXPECT_EQ(own.size, 4);
}

TEST(MemoryFile, WriteHeaderMarksItsEnd)
{
    bytes data(4096, 0);
    rio_memory_file m = memory_over(data);
    char name[RIO_MEMORY_NAME_SIZE];
    RFILE *file = rio_open_w(rio_memory_name(&m, name));
    ASSERT_TRUE(file);
    const int32_t size = 10;
    rio_set_hdr_data(file, RIO_KEY_WIDTH, &size);
    rio_set_hdr_data(file, RIO_KEY_HEIGHT, &size);
    EXPECT_EQ(rio_write_header(file), 0);
    EXPECT_EQ(m.end, 1024);
    rio_close(file);
}

TEST(MemoryFile, AZeroNumberIsNoFile)
{
    EXPECT_EQ(rio_open_r("/INMEM/0"), nullptr);
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
    EXPECT_EQ(rio_open_w("/INMEM/0"), nullptr);
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
}

TEST(MemoryFile, CannotBeMapped)
{
    bytes data { 'P', '5', '\n', '2', ' ', '1', ' ', '2', '5', '5', '\n', 7, 8 };
    rio_memory_file m = memory_over(data);
    char name[RIO_MEMORY_NAME_SIZE];
    RFILE *file = rio_open_r(rio_memory_name(&m, name));
    ASSERT_TRUE(file);
    const int32_t on = 1;
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_MAPPED, &on), 1);
    EXPECT_EQ(file->error, RIO_UNSUPPORTED);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
    rio_close(file);
}

// ---- mapped files ----------------------------------------------------------------------------------------------------

static bytes counting(size_t size)
{
    bytes data(size);
    for (size_t i = 0; i < size; i++)
        data[i] = uint8_t(i * 7 + i / 251);
    return data;
}

// A record with a handle on the file, as an open for reading makes it.
static RFILE *handle_record(const std::string &path, uint32_t access)
{
    RFILE *file = rio_new_record();
    file->access = access;
    file->io = rio_handle_ops;
    file->stream = rio_handle_ops.f_open(path.c_str(), access == RIO_ACCESS_READ ? "rb" : "r+b");
    file->ops.close = rio_plain_close;
    return file;
}

TEST(MappedFile, ReadsAcrossWindowsGiveTheSameBytesAsAPlainRead)
{
    const test_folder folder;
    const bytes data = counting(3 * RIO_VIEW_SIZE + 1000);
    RFILE *file = handle_record(folder.with("a", data), RIO_ACCESS_READ);
    ASSERT_EQ(rio_map_file(file, 1), 0);
    ASSERT_TRUE(file->mapping);
    EXPECT_EQ(file->mapping->window_size, 0x20000);
    EXPECT_EQ(file->mapping->size, int64_t(data.size()));
    const int64_t W = RIO_VIEW_SIZE, S = int64_t(data.size());
    const std::pair<int64_t, int64_t> pieces[] = {
        { 0, 10 }, { W - 5, 10 }, { W - 10, 10 }, { W, 10 }, { W - 1, 1 }, { W - 100, 200000 }, { 2 * W - 3, 6 },
        { 0, S }, { S - 7, 7 }, { 5, W }, { 3 * W - 1, 1001 },
    };
    for (const auto &[at, size] : pieces) {
        bytes got(size_t(size), 0);
        ASSERT_EQ(rio_read_at(file, at, got.data(), size), 1) << at << " " << size;
        EXPECT_TRUE(std::equal(got.begin(), got.end(), data.begin() + at)) << at << " " << size;
        EXPECT_EQ(rio_byte_tell(file), at + size);
    }
    rio_close(file);
}

TEST(MappedFile, ByteReadsMoveTheWindowOn)
{
    const test_folder folder;
    const bytes data = counting(RIO_VIEW_SIZE + 3);
    RFILE *file = handle_record(folder.with("a", data), RIO_ACCESS_READ);
    rio_map_file(file, 1);
    rio_byte_seek(file, RIO_VIEW_SIZE - 2);
    for (size_t i = RIO_VIEW_SIZE - 2; i < data.size(); i++)
        EXPECT_EQ(rio_getc(file), data[i]);
    EXPECT_EQ(rio_getc(file), -1);
    EXPECT_EQ(rio_putc(file, 1), -1);       // opened for reading
    file->io.f_rewind(file->stream);
    EXPECT_EQ(rio_getc(file), data[0]);
    rio_close(file);
}

TEST(MappedFile, ReadsAndSeeksEndAtTheFilesEnd)
{
    const test_folder folder;
    RFILE *file = handle_record(folder.with("a", counting(100)), RIO_ACCESS_READ);
    rio_map_file(file, 1);
    uint8_t out[200];
    EXPECT_EQ(file->io.f_read(out, 30, 4, file->stream), 3);    // 100 bytes are three whole items of 30
    EXPECT_EQ(rio_byte_tell(file), 100);
    file->io.f_seek(file->stream, -10, SEEK_END);
    EXPECT_EQ(rio_byte_tell(file), 90);
    file->io.f_seek(file->stream, -200, SEEK_END);
    EXPECT_EQ(rio_byte_tell(file), 0);
    file->io.f_seek(file->stream, -1, SEEK_CUR);
    EXPECT_EQ(rio_byte_tell(file), 0);
    file->io.f_seek(file->stream, 1000, SEEK_SET);
    EXPECT_EQ(rio_byte_tell(file), 100);
    EXPECT_EQ(file->io.f_read(out, 1, -1, file->stream), 0);
    rio_close(file);
}

TEST(MappedFile, Key34GoesBackToTheHandleAtTheSamePlace)
{
    const test_folder folder;
    const bytes data = counting(1000);
    RFILE *file = handle_record(folder.with("a", data), RIO_ACCESS_READ);
    int32_t on = 1;
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_MAPPED, &on), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_MAPPED, &on), 0);      // twice is once
    rio_byte_seek(file, 300);
    EXPECT_EQ(rio_getc(file), data[300]);
    on = 0;
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_MAPPED, &on), 0);
    EXPECT_EQ(file->mapping, nullptr);
    EXPECT_EQ(file->io.f_read, rio_handle_ops.f_read);
    EXPECT_EQ(rio_getc(file), data[301]);
    EXPECT_EQ(rio_get_hdr_data(file, RIO_KEY_MAPPED, &on), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_FIELD);
    rio_close(file);
}

TEST(MappedFile, WritesGrowTheFileAndAreReadBack)
{
    const test_folder folder;
    RFILE *file = handle_record(folder.with("a", counting(10)), RIO_ACCESS_MODIFY);
    ASSERT_EQ(rio_map_file(file, 1), 0);
    EXPECT_EQ(rio_getc(file), 0);           // loads the view
    const bytes block = counting(RIO_VIEW_SIZE + 50);
    EXPECT_EQ(rio_write_at(file, 5, block.data(), int64_t(block.size())), 1);
    EXPECT_EQ(rio_putc(file, 77), 77);
    EXPECT_EQ(rio_file_size(file), 5 + int64_t(block.size()) + 1);
    bytes back(block.size());
    EXPECT_EQ(rio_read_at(file, 5, back.data(), int64_t(back.size())), 1);
    EXPECT_EQ(back, block);
    EXPECT_EQ(rio_getc(file), 77);
    rio_close(file);
    const bytes disk = folder.content("a");
    EXPECT_EQ(disk.size(), 5 + block.size() + 1);
    EXPECT_EQ(disk.back(), 77);
    EXPECT_EQ(disk[4], counting(10)[4]);
}

TEST(MappedFile, FailedMemoryKeepsTheHandle)
{
    const test_folder folder;
    for (long n : { 0, 1 }) {
        RFILE *file = handle_record(folder.with("a", counting(10)), RIO_ACCESS_READ);
        mem_fail_countdown = n;
        EXPECT_EQ(rio_map_file(file, 1), 1);
        mem_fail_countdown = -1;
        EXPECT_EQ(file->error, RIO_NO_MEMORY);
        EXPECT_EQ(file->mapping, nullptr);
        EXPECT_EQ(rio_getc(file), 0);
        rio_close(file);
    }
}

TEST(MappedFile, AFileThatIsCutMeanwhileEndsEarly)
{
    const test_folder folder;
    const std::string path = folder.with("a", counting(RIO_VIEW_SIZE * 2));
    RFILE *file = handle_record(path, RIO_ACCESS_READ);
    rio_map_file(file, 1);
    ASSERT_EQ(truncate(path.c_str(), 100), 0);
    uint8_t out[200];
    EXPECT_EQ(rio_read_at(file, RIO_VIEW_SIZE, out, 200), 0);
    EXPECT_EQ(rio_read(file, out, 200), 0);
    EXPECT_EQ(rio_getc(file), -1);
    rio_close(file);
}

TEST(MappedFile, AFileThatIsCutUnderItsViewEndsWhereItWasCut)
{
    const test_folder folder;
    const bytes data = counting(RIO_VIEW_SIZE * 2);
    const std::string path = folder.with("a", data);
    RFILE *file = handle_record(path, RIO_ACCESS_READ);
    rio_map_file(file, 1);
    const int cut = RIO_VIEW_SIZE + 5000;       // the second page of the second window
    bytes got(data.size());
    ASSERT_EQ(rio_read_at(file, 0, got.data(), 100), 1);        // the view is there
    ASSERT_EQ(truncate(path.c_str(), cut), 0);
    rio_byte_seek(file, 0);
    EXPECT_EQ(rio_read(file, got.data(), int64_t(data.size())), cut);
    EXPECT_TRUE(std::equal(got.begin(), got.begin() + cut, data.begin()));
    EXPECT_EQ(rio_file_size(file), cut);
    EXPECT_EQ(rio_getc(file), -1);
    rio_close(file);
}

TEST(MappedFile, ALookSeesThatItsFileWasCut)
{
    const test_folder folder;
    const bytes data = counting(RIO_VIEW_SIZE);
    const std::string path = folder.with("a", data);
    RFILE *file = handle_record(path, RIO_ACCESS_READ);
    rio_map_file(file, 1);
    const uint8_t *lie = rio_look(file, 1000, 100000);
    ASSERT_TRUE(lie);
    EXPECT_EQ(bytes(lie, lie + 100000), bytes(data.begin() + 1000, data.begin() + 101000));
    EXPECT_EQ(rio_look_ended(file), 1);
    ASSERT_EQ(truncate(path.c_str(), 8192), 0);
    lie = rio_look(file, 1000, 100000);
    ASSERT_TRUE(lie);
    EXPECT_EQ(lie[7191], data[8191]);           // the last byte that is left
    EXPECT_EQ(lie[50000], 0);                   // gone: zero, and the program goes on
    EXPECT_EQ(rio_look_ended(file), 0);
    EXPECT_EQ(rio_look(file, 1000, 100000), nullptr);
    EXPECT_EQ(rio_file_size(file), 8192);
    rio_close(file);
}

TEST(MappedFile, MoreViewsThanThereIsRoomForAreReadThroughTheirHandles)
{
    const test_folder folder;
    const std::string path = folder.with("a", counting(100));
    std::vector<RFILE *> files;
    int mapped = 0;
    for (int i = 0; i < 100; i++) {
        files.push_back(handle_record(path, RIO_ACCESS_READ));
        mapped += rio_map_file(files.back(), 1) == 0;
    }
    EXPECT_EQ(mapped, 64);
    for (RFILE *file : files) {
        EXPECT_EQ(rio_getc(file), 0);
        EXPECT_EQ(rio_getc(file), 7);           // counting: i * 7
        rio_close(file);
    }
    RFILE *file = handle_record(path, RIO_ACCESS_READ);
    EXPECT_EQ(rio_map_file(file, 1), 0);        // the places are free again
    rio_close(file);
}

// A page that is lost and lies in no view is for whoever cared for such signals before.
TEST(MappedFile, OtherLostPagesGoToTheHandlerBefore)
{
    // The guard's handler is set once a process: the child begins anew.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            struct sigaction mine = {};
            mine.sa_handler = [](int) { _exit(42); };
            sigaction(SIGBUS, &mine, nullptr);
            guard_take();
            const int fd = memfd_create("pages", 0);
            if (ftruncate(fd, 8192) != 0)
                _exit(1);
            const volatile uint8_t *page = (const uint8_t *)mmap(nullptr, 8192, PROT_READ, MAP_SHARED, fd, 0);
            if (ftruncate(fd, 100) == 0)
                _exit(page[5000]);
        },
        testing::ExitedWithCode(42), "");
}
