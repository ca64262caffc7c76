// Opening and closing.
#include "plain_record.h"
#include "tests_native.h"
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

TEST(RioOpen, ANewRecordStartsWithItsDefaults)
{
    RFILE *file = rio_new_record();
    EXPECT_EQ(file->magic, 0xABCDu);
    EXPECT_EQ(file->samples_per_pixel, 1);
    EXPECT_EQ(file->bits_per_sample, 8);
    EXPECT_EQ(file->standard, -1);
    EXPECT_EQ(file->active_overview, -1);
    EXPECT_EQ(file->flags, 0x40000u);
    EXPECT_EQ(file->data_type, 2u);
    EXPECT_EQ(file->significant_bits, 0u);
    EXPECT_EQ(file->current_line, 0);
    rio_discard(file);
}

TEST(RioOpen, WhatCannotBeOpenedFailsWithItsCode)
{
    const test_folder folder;
    EXPECT_EQ(rio_open_r((folder / "absent").c_str()), nullptr);
    EXPECT_EQ(rio_errno, RIO_OPEN_FAILED);
    EXPECT_EQ(rio_open_r(folder.path.c_str()), nullptr);
    EXPECT_EQ(rio_errno, RIO_OPEN_FAILED);
    EXPECT_EQ(rio_open_modify(folder.path.c_str()), nullptr);
    EXPECT_EQ(rio_errno, RIO_OPEN_FAILED);
    EXPECT_EQ(rio_open_w(folder.path.c_str()), nullptr);
    EXPECT_EQ(rio_errno, RIO_OPEN_FAILED);
    EXPECT_EQ(rio_open_raw_r(folder.path.c_str(), 1, 1, 1, 0), nullptr);
    EXPECT_EQ(rio_errno, RIO_OPEN_FAILED);
    EXPECT_EQ(rio_open_raw_w((folder / "no/such/folder").c_str(), 1, 1, 1), nullptr);
    EXPECT_EQ(rio_errno, RIO_OPEN_FAILED);
    EXPECT_EQ(rio_open_r(""), nullptr);
    EXPECT_EQ(rio_errno, RIO_OPEN_FAILED);
    if (getuid() != 0) {
        const std::string locked = folder.with("locked", { 1, 2, 3 });
        chmod(locked.c_str(), 0);
        EXPECT_EQ(rio_open_r(locked.c_str()), nullptr);
        EXPECT_EQ(rio_errno, RIO_OPEN_FAILED);
    }
}

TEST(RioOpen, ReadAndModifySetTheirAccess)
{
    const test_folder folder;
    const std::string path = folder.with("a.ntv", native_bytes(4, 2));
    RFILE *file = rio_open_r(path.c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->access, 1u);
    EXPECT_FALSE(file->flags & RIO_HEADER_DONE);
    EXPECT_TRUE(file->mapping);
    EXPECT_EQ(file->error, 0u);
    EXPECT_EQ(rio_errno, 0u);
    rio_close(file);
    file = rio_open_modify(path.c_str());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->access, 2u);
    EXPECT_TRUE(file->flags & RIO_HEADER_DONE);
    EXPECT_FALSE(file->mapping);
    rio_close(file);
}

TEST(RioOpen, EveryPublicCallRefusesABadRecord)
{
    RFILE *const none = nullptr;
    int value = 0;
    uint8_t line[8];
    EXPECT_EQ(rio_getline(none, line), 1);
    EXPECT_EQ(rio_getline_rgb(none, line, line, line), 1);
    EXPECT_EQ(rio_putline(none, line), 1);
    EXPECT_EQ(rio_putline_rgb(none, line, line, line), 1);
    EXPECT_EQ(rio_seek(none, 0), 1);
    EXPECT_EQ(rio_skip(none, 1), 1);
    EXPECT_EQ(rio_get_hdr_data(none, 1, &value), 1);
    EXPECT_EQ(rio_get_hdr_data(none, RIO_KEY_ERROR, &value), 1);
    EXPECT_EQ(rio_set_hdr_data(none, 1, &value), 1);
    EXPECT_EQ(rio_write_header(none), 1);
    EXPECT_EQ(rio_set_active_ov(none, 0), 1);
    EXPECT_EQ(rio_set_active_image(none, 0), 1);
    EXPECT_EQ(rio_gettile(none, 0, nullptr, nullptr), 1);
    EXPECT_EQ(rio_set_standard(none, 0), 1);
    rio_errno = 0;
    rio_rewind(none);
    EXPECT_EQ(rio_errno, RIO_BAD_RFILE);
    rio_errno = 0;
    rio_close(none);
    EXPECT_EQ(rio_errno, RIO_BAD_RFILE);
}

TEST(RioOpen, TheEnvironmentSetsTheDebugLevel)
{
    const test_folder folder;
    const std::string path = folder.with("a.ntv", native_bytes(4, 2));
    setenv("RIO_DEBUG", "4", 1);
    RFILE *file = rio_open_r(path.c_str());
    EXPECT_EQ(rio_debug, 4);
    setenv("RIO_DEBUG", "0", 1);
    rio_set_standard(file, 0);
    EXPECT_EQ(rio_debug, 0);
    unsetenv("RIO_DEBUG");
    rio_close(file);
}

static std::string resolved_to;
static int resolve(const char *name, char *out, int size)
{
    if (std::string(name) != "c:\\scene.ntv")
        return 0;
    std::snprintf(out, size_t(size), "%s", resolved_to.c_str());
    return 1;
}

TEST(RioOpen, NamesGoThroughTheResolver)
{
    const test_folder folder;
    resolved_to = folder.with("real.ntv", native_bytes(4, 2));
    rio_path_resolver = resolve;
    RFILE *file = rio_open_r("c:\\scene.ntv");
    ASSERT_TRUE(file);
    EXPECT_STREQ(file->file_name, "c:\\scene.ntv");
    rio_close(file);
    file = rio_open_r(resolved_to.c_str());     // the resolver declines: the name as it stands
    EXPECT_TRUE(file);
    rio_close(file);
    file = rio_open_raw_r("c:\\scene.ntv", 4, 2, 1, 1024);
    EXPECT_TRUE(file);
    rio_close(file);
    rio_path_resolver = nullptr;
}

// Runs `work` with the standard input read from `fd`.
static void with_input(int fd, const std::function<void()> &work)
{
    const int kept = dup(STDIN_FILENO);
    dup2(fd, STDIN_FILENO);
    work();
    dup2(kept, STDIN_FILENO);
    close(kept);
}

TEST(RioOpen, NullReadsTheStandardInputFromAFileAndFromAPipe)
{
    const test_folder folder;
    const bytes file_bytes = native_bytes(4, 2);
    const auto read_it = [] {
        RFILE *file = rio_open_r(nullptr);
        ASSERT_TRUE(file);
        uint8_t line[4];
        EXPECT_EQ(rio_seek(file, 1), 0);
        EXPECT_EQ(rio_getline(file, line), 0);
        EXPECT_EQ(line[0], 4);
        rio_close(file);
        EXPECT_NE(fcntl(STDIN_FILENO, F_GETFD), -1);    // still open
    };
    const int fd = open(folder.with("a.ntv", file_bytes).c_str(), O_RDONLY);
    with_input(fd, read_it);
    close(fd);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], file_bytes.data(), file_bytes.size()), ssize_t(file_bytes.size()));
    close(ends[1]);
    with_input(ends[0], read_it);
    close(ends[0]);
}

TEST(RioOpen, NullWritesTheStandardOutputAtClose)
{
    const test_folder folder;
    const std::string path = folder / "out";
    std::fflush(stdout);
    const int kept = dup(STDOUT_FILENO);
    const int fd = open(path.c_str(), O_CREAT | O_WRONLY, 0600);
    dup2(fd, STDOUT_FILENO);
    RFILE *file = rio_open_w(nullptr);
    const int32_t width = 4, height = 1;
    rio_set_hdr_data(file, RIO_KEY_WIDTH, &width);
    rio_set_hdr_data(file, RIO_KEY_HEIGHT, &height);
    const uint8_t line[4] = { 5, 6, 7, 8 };
    const int put = rio_putline(file, line);
    rio_close(file);
    const uint32_t error = rio_errno;
    dup2(kept, STDOUT_FILENO);
    close(kept);
    close(fd);
    EXPECT_EQ(put, 0);
    EXPECT_EQ(error, 0u);
    const bytes out = folder.content("out");
    ASSERT_EQ(out.size(), 1028u);
    EXPECT_EQ(out[0], 8);
    EXPECT_EQ(out[1027], 8);
}

TEST(RioOpen, ACatalogueFileIsNeverTruncated)
{
    const test_folder folder;
    const bytes catalogue { 'S', 'U', 'P', 'E', 'R', 'T', '!', '\n', 'x' };
    const std::string path = folder.with("c", catalogue);
    if (RFILE *file = rio_open_w(path.c_str()))
        rio_close(file);
    EXPECT_GE(folder.content("c").size(), catalogue.size());
    EXPECT_EQ(folder.content("c")[0], 'S');
}

TEST(RioOpen, FailedMemoryLeavesNothingOpen)
{
    const test_folder folder;
    const std::string path = folder.with("a.ntv", native_bytes(4, 2));
    int failed = 0;
    for (long n = 0; n < 100; n++) {
        mem_fail_countdown = n;
        RFILE *file = rio_open_r(path.c_str());
        const bool reached = mem_fail_countdown == -1;
        mem_fail_countdown = -1;
        if (file)
            rio_close(file);
        else
            failed++;
        if (!reached)
            break;
    }
    EXPECT_GE(failed, 3);       // handle, record, private record
    mem_fail_countdown = 0;
    EXPECT_EQ(rio_open_w((folder / "new").c_str()), nullptr);
    mem_fail_countdown = -1;
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
}
