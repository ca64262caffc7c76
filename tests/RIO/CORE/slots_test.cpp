// Slots, their dummies, binding a format, the capability table.
#include "plain_record.h"
#include <cstring>
#include <gtest/gtest.h>

struct SlotsTest : testing::Test {
    RFILE *file = rio_new_record();
    void TearDown() override { rio_discard(file); }

    // Runs a dummy: its answer must be `value`, and the error RIO_UNSUPPORTED under its name.
    template <typename CALL> void expect_dummy(const char *name, int64_t value, CALL call)
    {
        file->error = rio_errno = 0;
        rio_debug = 1;
        int64_t answer = -77;
        const std::string text = printed([&] { answer = int64_t(call()); });
        rio_debug = 0;
        EXPECT_EQ(answer, value) << name;
        EXPECT_EQ(file->error, RIO_UNSUPPORTED) << name;
        EXPECT_EQ(rio_errno, RIO_UNSUPPORTED) << name;
        const std::string start = std::string("This function is unsupported for the current format:\n ") + name + " - ";
        EXPECT_EQ(text.substr(0, start.size()), start);
    }
};

TEST_F(SlotsTest, EveryDummyReportsItsNameAndItsOwnResult)
{
    rio_ops &ops = file->ops;
    uint8_t buffer[8] = {};
    uint8_t *lines[1] = { buffer };
    int size = 8;
    int32_t value = 0;
    rio_stat stat {};
    rio_vlt_entry entries[256];
    expect_dummy("Getline", 1, [&] { return ops.getline(file, 1, lines); });
    expect_dummy("Get_line", 1, [&] { return ops.get_line(file, 1, lines); });
    expect_dummy("Getline16", 1, [&] { return ops.getline16(file, 1, lines); });
    expect_dummy("Get_line16", 1, [&] { return ops.get_line16(file, 1, lines); });
    expect_dummy("Getlinefromtile", 1, [&] { return ops.getlinefromtile(file, 1, lines); });
    expect_dummy("Getrleline", 1, [&] { return ops.getrleline(file, buffer, &size); });
    expect_dummy("Getrlestrip", 1, [&] { return ops.getrlestrip(file, buffer, &size); });
    expect_dummy("Putline", 1, [&] { return ops.putline(file, 1, lines); });
    expect_dummy("Put_line", 1, [&] { return ops.put_line(file, 1, lines); });
    expect_dummy("Putline16", 1, [&] { return ops.putline16(file, 1, lines); });
    expect_dummy("Put_line16", 1, [&] { return ops.put_line16(file, 1, lines); });
    expect_dummy("Putrleline", 1, [&] { return ops.putrleline(file, buffer, 8); });
    expect_dummy("Putlinetotile", 1, [&] { return ops.putlinetotile(file, 1, lines); });
    expect_dummy("Gettile", 1, [&] { return ops.gettile(file, 1, lines, &value); });
    expect_dummy("Puttile", 1, [&] { return ops.puttile(file, 1, lines, &value); });
    expect_dummy("Gettile (16-bit)", 1, [&] { return ops.gettile16(file, 1, lines, &value); });
    expect_dummy("Puttile (16-bit)", 1, [&] { return ops.puttile16(file, 1, lines, &value); });
    expect_dummy("Getrletile", 1, [&] { return ops.getrletile(file, buffer, &size, &value); });
    expect_dummy("Get hdr data", 1, [&] { return ops.get_hdr_data(file, 1, &value); });
    expect_dummy("Set hdr data", 1, [&] { return ops.set_hdr_data(file, 1, &value); });
    expect_dummy("Get_stat", 1, [&] { return ops.get_stat(file, &stat); });
    expect_dummy("Set_stat", 1, [&] { return ops.set_stat(file, &stat); });
    expect_dummy("Get_vlt", 0, [&] { return ops.get_vlt(file, entries); });
    expect_dummy("Get format", 2, [&] { return ops.get_format(file); });
    expect_dummy("Get packet", 0, [&] { return ops.get_packet(file, buffer); });
    expect_dummy("Put Packet", 0, [&] { return ops.put_packet(file, buffer); });
    expect_dummy("copydata", 1, [&] { return ops.copydata(file, file); });
    expect_dummy("init std hdr", 1, [&] { return ops.init_std_hdr(file, file); });
    expect_dummy("init ov", 1, [&] { return ops.init_ov(file, file); });
    expect_dummy("setactiveov", 1, [&] { return ops.setactiveov(file, 0); });
    expect_dummy("Wrt_hdr", 1, [&] { return ops.wrt_hdr(file); });
    expect_dummy("Seek", 1, [&] { return ops.seek(file, 5); });
    expect_dummy("Get Number of Images", 1, [&] { return ops.get_image_count(file); });
    expect_dummy("Set Number of Images", 1, [&] { return ops.set_image_count(file, 1); });
    expect_dummy("Set Active Image", 1, [&] { return ops.set_active_image(file, 0); });
    expect_dummy("Randomize", 1, [&] { return ops.randomize(file); });
    expect_dummy("Rewind", 0, [&] { return ops.rewind(file), 0; });
    expect_dummy("ckJPEG", 0, [&] { return ops.ck_jpeg(file, 0), 0; });
    expect_dummy("Close", 0, [&] { return ops.close(file), 0; });
    expect_dummy("Free specs", 0, [&] { return ops.free_specs(file), 0; });
    expect_dummy("Get Image Offset", 0, [&] { return ops.get_image_offset(file); });
    EXPECT_EQ(ops.putrletile, nullptr);
}

TEST_F(SlotsTest, DummiesRefuseBadRecords)
{
    RFILE *const none = nullptr;
    EXPECT_EQ(file->ops.get_format(none), -1);
    EXPECT_EQ(rio_errno, RIO_BAD_RFILE);
    EXPECT_EQ(file->ops.getline(none, 1, nullptr), 1);
    EXPECT_EQ(file->ops.seek(none, 1), 1);
    file->error = 0;
    rio_errno = 0;
    EXPECT_EQ(file->ops.copydata(file, none), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_RFILE);
    EXPECT_EQ(file->error, 0u);
}

TEST_F(SlotsTest, SeekDummyTakesTheTileNumberOfATiledFile)
{
    file->flags |= RIO_TILED;
    EXPECT_EQ(file->ops.seek(file, 17), 0);
    EXPECT_EQ(file->current_line, 17);
}

TEST_F(SlotsTest, ADummyLineReadsAsSuccessAndTouchesNothing)
{
    uint8_t line[4] = { 9, 9, 9, 9 };
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
    EXPECT_EQ(line[0], 9);
    rio_vlt_entry entries[256];
    EXPECT_EQ(rio_get_vlt(file, entries), 0);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
}

// ---- binding a format ------------------------------------------------------------------------------------------------

TEST(SetStandard, UnknownIdsFallBackToNative)
{
    const test_folder folder;
    RFILE *file = rio_open_w((folder / "a").c_str());
    ASSERT_TRUE(file);
    rio_debug = 1;
    for (int id : { 8, 7, 17, 18, 22, 99 }) {
        const std::string text = printed([&] { EXPECT_EQ(rio_set_standard(file, id), 0); });
        EXPECT_EQ(text, "Unknown standard ");
        EXPECT_EQ(file->standard, RIO_FORMAT_NATV);
        EXPECT_TRUE(file->flags & RIO_NATV);
        EXPECT_TRUE(file->specs);
    }
    rio_debug = 0;
    rio_close(file);
}

TEST(SetStandard, TheSameIdTwiceRunsTheInitOnce)
{
    const test_folder folder;
    RFILE *file = rio_open_w((folder / "a").c_str());
    void *const specs = file->specs;
    EXPECT_EQ(rio_set_standard(file, 0), 0);
    EXPECT_EQ(file->specs, specs);
    const int32_t native = 0, pnm = RIO_FORMAT_PNM;
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_FORMAT, &native), 0);
    EXPECT_EQ(file->specs, specs);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_FORMAT, &pnm), 0);
    void *const pnm_specs = file->specs;
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_FORMAT, &pnm), 0);
    EXPECT_EQ(file->specs, pnm_specs);
    EXPECT_EQ(file->standard, RIO_FORMAT_PNM);
    EXPECT_FALSE(file->flags & RIO_NATV);
    rio_close(file);
}

TEST(SetStandard, TheEnvironmentNamesTheFormatOfNewFiles)
{
    const test_folder folder;
    setenv("RIO_STANDARD", "14", 1);
    RFILE *file = rio_open_w((folder / "a").c_str());
    unsetenv("RIO_STANDARD");
    ASSERT_TRUE(file);
    EXPECT_EQ(file->standard, RIO_FORMAT_PNM);
    const int32_t width = 2, height = 1;
    rio_set_hdr_data(file, RIO_KEY_WIDTH, &width);
    rio_set_hdr_data(file, RIO_KEY_HEIGHT, &height);
    const uint8_t line[2] = { 'a', 'b' };
    EXPECT_EQ(rio_putline(file, line), 0);
    rio_close(file);
    EXPECT_EQ(folder.content("a")[0], 'P');
}

TEST(SetStandard, IsIgnoredOnceTheHeaderIsOnDisk)
{
    const test_folder folder;
    RFILE *file = rio_open_w((folder / "a").c_str());
    const int32_t size = 4, pnm = RIO_FORMAT_PNM;
    rio_set_hdr_data(file, RIO_KEY_WIDTH, &size);
    rio_set_hdr_data(file, RIO_KEY_HEIGHT, &size);
    EXPECT_EQ(rio_write_header(file), 0);
    EXPECT_EQ(rio_set_hdr_data(file, RIO_KEY_FORMAT, &pnm), 0);
    EXPECT_EQ(file->standard, RIO_FORMAT_NATV);
    rio_close(file);
}

// ---- capabilities ----------------------------------------------------------------------------------------------------

static const rio_capability *find_capability(uint32_t format, int samples, int bits, uint32_t type, const char *name)
{
    const rio_capability *rows = rio_capabilities();
    for (int i = 0; i < RIO_CAPABILITY_ROWS; i++)
        if (rows[i].format == format && rows[i].shape == (samples << 8 | bits) && rows[i].data_type == type
            && std::strcmp(rows[i].compression_name, name) == 0)
            return rows + i;
    return nullptr;
}

TEST(Capabilities, RowsAreSortedByFormatAndCountedByFormat)
{
    const rio_capability *rows = rio_capabilities();
    int counts[23] = {};
    for (int i = 0; i < 172; i++) {
        EXPECT_LE(rows[i ? i - 1 : 0].format, rows[i].format);
        counts[rows[i].format]++;
        EXPECT_STREQ(rows[i].format_name, rio_format_name(int32_t(rows[i].format)));
    }
    // TIFF: 2 CCITT, and three compressions of 1 + 7 + 8 + 8 rows each. NITF: 1 + 7 + 8 + 1.
    const int wanted[23] = { 21, 2 + 3 * 24, 8, 6, 7, 4, 2, 0, 2, 2, 1, 1, 17, 1, 6, 4, 2, 4, 1, 6, 2, 0, 1 };
    for (int i = 0; i < 23; i++)
        EXPECT_EQ(counts[i], wanted[i]) << i;
}

TEST(Capabilities, SomeRows)
{
    ASSERT_TRUE(find_capability(0, 1, 8, 2, "Uncomp."));
    EXPECT_EQ(find_capability(0, 1, 8, 2, "Uncomp.")->orientations, 0x4Fu);
    EXPECT_EQ(find_capability(0, 1, 1, 24, "CCITT Group 4")->tile_sizes, 0x200u);
    EXPECT_EQ(find_capability(1, 3, 5, 27, "LZW")->compression, 5);
    EXPECT_EQ(find_capability(1, 4, 8, 67, "Packbits")->compression, 32773);
    EXPECT_EQ(find_capability(1, 1, 1, 23, "CCITT Group 3b")->compression, 2);
    EXPECT_EQ(find_capability(11, 1, 1, 24, "Comp.")->orientations, 0x78u);
    EXPECT_EQ(find_capability(12, 1, 12, 3, "Uncomp.")->tile_sizes, 0x7E0u);
    EXPECT_EQ(find_capability(14, 3, 8, 27, "Ascii")->compression, 7);
    EXPECT_EQ(find_capability(17, 1, 3, 2, "Uncomp.")->tile_sizes, 0x10u);
    EXPECT_EQ(find_capability(1, 1, 1, 2, "Uncomp."), nullptr);
    EXPECT_STREQ(rio_format_name(8), "ADRI, ADRG");
    EXPECT_EQ(rio_format_name(23), nullptr);
    EXPECT_EQ(rio_format_name(-1), nullptr);
}
