// Header values by key.
#include "plain_record.h"
#include "tests_native.h"
#include <cstring>
#include <gtest/gtest.h>

struct KeyTest : testing::Test {
    test_folder folder;
    RFILE *file = nullptr;

    void open_read(const bytes &content)
    {
        file = rio_open_r(folder.with("a.ntv", content).c_str());
        ASSERT_TRUE(file);
    }
    void open_modify(const bytes &content)
    {
        file = rio_open_modify(folder.with("a.ntv", content).c_str());
        ASSERT_TRUE(file);
    }
    void open_write()
    {
        file = rio_open_w((folder / "new.ntv").c_str());
        ASSERT_TRUE(file);
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

TEST_F(KeyTest, TheCoreAnswersItsOwn)
{
    open_read(native_bytes(5, 3));
    EXPECT_EQ(get(1), 5);
    EXPECT_EQ(get(2), 3);
    EXPECT_EQ(get(3), 2);
    EXPECT_EQ(get(31), 0);
    EXPECT_EQ(get(32), -1);
    EXPECT_EQ(get(35), 0);
    EXPECT_EQ(get(36), 0);
    EXPECT_EQ(get(100), 0);
    EXPECT_EQ(get(402), 1);
    EXPECT_EQ(get(403), 1);
    EXPECT_EQ(get(404), 1);
    EXPECT_EQ(get(405), 0);
    EXPECT_EQ(get(406), 0);
    EXPECT_EQ(get(407), 1);
    EXPECT_EQ(get(500), 0);
    EXPECT_EQ(get(506), 1);
    EXPECT_EQ(get(507), 8);
    EXPECT_EQ(get(508), 0);
    EXPECT_EQ(get(701), 0);
    EXPECT_EQ(get(702), 0);
    file->current_image = 1;
    EXPECT_EQ(get(402), -1);
    file->flags |= RIO_F_KEY36;
    EXPECT_EQ(get(36), 1);
}

TEST_F(KeyTest, UnknownKeysAreRefused)
{
    open_write();
    int32_t value = 1;
    for (int key : { 0, -1, 34, 37, 99, 105, 202, 399, 408, 499, 510, 599, 610, 653, 673, 707, 721, 1000 }) {
        EXPECT_EQ(rio_get_hdr_data(file, key, &value), 1) << key;
        EXPECT_EQ(rio_errno, RIO_BAD_FIELD) << key;
    }
    for (int key : { 0, 20, 36, 101, 102, 103, 702, 1000 }) {
        EXPECT_EQ(rio_set_hdr_data(file, key, &value), 1) << key;
        EXPECT_EQ(rio_errno, RIO_BAD_FIELD) << key;
    }
}

TEST_F(KeyTest, KeysOfOtherFormatsStoreZero)
{
    open_read(native_bytes(5, 3));
    for (int key : { 501, 505, 509, 600, 609, 630, 640, 652, 660, 667, 672, 692, 699, 700, 703, 706, 720 })
        EXPECT_EQ(get(key), 0) << key;
}

TEST_F(KeyTest, TheErrorKeyAnswersTheErrorAndLeavesIt)
{
    open_read(native_bytes(5, 3));
    EXPECT_EQ(rio_seek(file, 99), 1);
    EXPECT_EQ(uint32_t(get(702)), RIO_PAST_END);
    EXPECT_EQ(uint32_t(get(702)), RIO_PAST_END);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_EQ(get(1), 5);
    EXPECT_EQ(get(702), 0);
    EXPECT_EQ(rio_errno, 0u);
}

TEST_F(KeyTest, SetsNeedWriteAccessButForAFew)
{
    open_read(native_bytes(5, 3));
    for (int key : { 1, 2, 3, 9, 31, 100, 200, 402, 407, 500, 506, 507, 508, 600 }) {
        EXPECT_EQ(set(key, 1), 1) << key;
        EXPECT_EQ(rio_errno, RIO_NOT_WRITABLE) << key;
    }
    for (int key : { 32, 405, 406, 701, 404, 34, 35 })
        EXPECT_EQ(set(key, 1), 0) << key;
    EXPECT_EQ(get(405), 1);
    EXPECT_EQ(get(406), 1);
    EXPECT_EQ(get(701), 1);
    EXPECT_EQ(set(701, 2), 0);      // any value but 1 clears
    EXPECT_EQ(get(701), 0);
    EXPECT_EQ(set(404, 0), 0);
    EXPECT_EQ(get(404), 0);
    EXPECT_EQ(get(1), 5);
}

TEST_F(KeyTest, ANullOrBadRecordPrintsTheGetsName)
{
    int32_t value = 0;
    file = rio_new_record();
    file->ops.close = rio_plain_close;
    file->magic = 1;
    rio_debug = 1;
    EXPECT_NE(printed([&] { rio_set_hdr_data(file, 1, &value); }).find("rio_get_hdr_data"), std::string::npos);
    EXPECT_NE(printed([&] { rio_write_header(file); }).find("rio_write_header"), std::string::npos);
    rio_debug = 0;
    file->magic = RIO_MAGIC;
    rio_discard(file);
    file = nullptr;
}

TEST_F(KeyTest, SizesAreFixedOnceTheHeaderIsOnDisk)
{
    open_modify(native_bytes(5, 3));
    EXPECT_EQ(set(1, 50), 0);
    EXPECT_EQ(get(1), 5);
    EXPECT_EQ(set(506, 3), 0);
    EXPECT_EQ(get(506), 1);
    EXPECT_EQ(set(3, 28), 0);
    EXPECT_EQ(get(3), 2);
    EXPECT_EQ(set(2, 4), 0);        // the height of a file opened for modify may change
    EXPECT_EQ(get(2), 4);
    rio_close(file);
    open_write();
    EXPECT_EQ(set(1, 0), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    EXPECT_EQ(set(2, -1), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_SIZE);
    EXPECT_EQ(set(1, 7), 0);
    EXPECT_EQ(set(2, 7), 0);
    EXPECT_EQ(rio_write_header(file), 0);
    EXPECT_EQ(set(1, 8), 0);
    EXPECT_EQ(get(1), 7);
}

TEST_F(KeyTest, HardwareKeyIsTheComplementOfTheSoftwareBit)
{
    open_write();
    EXPECT_EQ(set(407, 0), 0);
    EXPECT_EQ(get(407), 0);
    EXPECT_EQ(file->jpeg_mode & 32, 32u);
    EXPECT_EQ(set(407, 1), 0);
    EXPECT_EQ(get(407), 1);
    EXPECT_EQ(set(405, 1), 0);      // with a board in use a 1 forces software
    EXPECT_EQ(set(407, 1), 0);
    EXPECT_EQ(get(407), 0);
}

TEST_F(KeyTest, ImageClassByTypeAndBits)
{
    open_read(native_bytes(5, 3));
    const std::pair<int, int> classes[] = {
        { 27, 0 }, { 28, 0 }, { 31, 0 }, { 25, 0 }, { 2, 1 }, { 29, 1 }, { 30, 1 }, { 1, 2 }, { 9, 2 }, { 23, 2 },
        { 24, 2 }, { 3, 3 }, { 4, 4 }, { 5, 5 }, { 6, 6 }, { 7, 7 }, { 8, 8 }, { 32, 10 }, { 67, 10 }, { 69, 10 },
        { 65, -1 }, { 0, -1 }, { 11, -1 },
    };
    for (const auto &[type, wanted] : classes) {
        file->data_type = uint32_t(type);
        EXPECT_EQ(get(403), wanted) << type;
    }
    const std::pair<int, int> by_bits[] = { { 1, 2 }, { 2, 1 }, { 8, 1 }, { 9, 3 }, { 16, 3 }, { 17, 4 }, { 32, 4 }, { 33, -1 } };
    for (uint32_t type : { 10u, 26u })
        for (const auto &[bits, wanted] : by_bits) {
            file->data_type = type;
            file->bits_per_sample = bits;
            EXPECT_EQ(get(403), wanted) << bits;
        }
}

TEST_F(KeyTest, WhileAnOverviewIsActiveFewKeysAnswer)
{
    open_write();
    set(1, 4);
    set(2, 4);
    file->active_overview = 0;
    int32_t value[64];
    for (int key : { 1, 2, 32, 100, 104, 201, 3, 4, 5, 6, 9, 403, 702 })
        EXPECT_EQ(rio_get_hdr_data(file, key, value), 0) << key;
    for (int key : { 7, 8, 10, 14, 31, 101, 200, 402, 500, 506, 701 }) {
        EXPECT_EQ(rio_get_hdr_data(file, key, value), 1) << key;
        EXPECT_EQ(rio_errno, RIO_BAD_FIELD) << key;
        EXPECT_EQ(set(key, 1), 1) << key;
        EXPECT_EQ(rio_errno, RIO_BAD_FIELD) << key;
    }
    EXPECT_EQ(set(1, 2), 0);
    EXPECT_EQ(get(1), 2);
}

TEST_F(KeyTest, AMatrixThatNobodySetIsTheIdentity)
{
    for (bool native : { true, false }) {
        const bytes pnm { 'P', '5', ' ', '1', ' ', '1', ' ', '2', '5', '5', '\n', 0 };
        open_read(native ? native_bytes(5, 3) : pnm);
        double m[16];
        EXPECT_EQ(rio_get_hdr_data(file, 4, m), 0);
        for (int i = 0; i < 16; i++)
            EXPECT_EQ(m[i], i % 5 == 0 ? 1.0 : 0.0);
        double ratio = 0;
        EXPECT_EQ(rio_get_hdr_data(file, 26, &ratio), 0);
        EXPECT_EQ(ratio, 1.0);
        rio_close(file);
    }
    file = nullptr;
}

TEST_F(KeyTest, ColourEntriesAreEightBytes)
{
    open_read(native_bytes(5, 3));
    rio_vlt_entry entries[256];
    EXPECT_EQ(rio_get_vlt(file, entries), 1);
    EXPECT_EQ(rio_errno, RIO_NO_VLT);
    uint8_t *vlt = rio_alloc_vlt(file);
    vlt[3 * 7] = 0x12;
    vlt[3 * 7 + 1] = 0x34;
    vlt[3 * 7 + 2] = 0x56;
    EXPECT_EQ(rio_get_vlt(file, entries), 0);
    EXPECT_EQ(entries[7].index, 7);
    EXPECT_EQ(entries[7].red, 0x1200);
    EXPECT_EQ(entries[7].green, 0x3400);
    EXPECT_EQ(entries[7].blue, 0x5600);
    EXPECT_EQ(entries[8].red, 0);
    EXPECT_EQ(get(31), 8);
    EXPECT_EQ(rio_put_vlt(file, entries), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_WRITABLE);
}
