// Lines: checks, colours, bits, interleaving, positions.
#include "plain_record.h"
#include "tests_native.h"
#include <gtest/gtest.h>

using planes = std::vector<std::vector<bytes>>;

TEST(Lines, TheLineAtHeightIsPastTheEndAndThePositionStays)
{
    const planes picture { { { 1, 2 }, { 3, 4 } } };
    RFILE *file = picture_record(picture, 2);
    uint8_t line[2];
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[1], 4);
    EXPECT_EQ(rio_getline(file, line), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_EQ(file->current_line, 2);
    rio_rewind(file);
    EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(line[0], 1);
    rio_close(file);
}

TEST(Lines, ReadAndWriteNeedTheirAccess)
{
    const planes picture { { { 1, 2 } } };
    RFILE *file = picture_record(picture, 2);
    uint8_t line[2] = {};
    file->ops.putline = rio_common_putline;
    EXPECT_EQ(rio_putline(file, line), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_WRITABLE);
    file->access = RIO_ACCESS_WRITE;
    EXPECT_EQ(rio_getline(file, line), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_READABLE);
    for (uint32_t access : { RIO_ACCESS_READ, RIO_ACCESS_MODIFY, RIO_ACCESS_WRITE_READ }) {
        file->access = access;
        EXPECT_EQ(rio_read_check(file), 0);
    }
    rio_close(file);
}

static int header_runs;
static int count_header(RFILE *file)
{
    header_runs++;
    file->flags |= RIO_HEADER_DONE;
    return 0;
}
static bytes put_bytes;
static int keep_line(RFILE *file, int, uint8_t **lines)
{
    put_bytes.insert(put_bytes.end(), lines[0], lines[0] + file->width);
    return file->width;
}

TEST(Lines, TheFirstPutWritesTheHeaderOnce)
{
    RFILE *file = rio_new_record();
    file->access = RIO_ACCESS_WRITE;
    file->width = 2;
    file->height = 2;
    file->ops.putline = rio_common_putline;
    file->ops.put_line = keep_line;
    file->ops.wrt_hdr = count_header;
    file->ops.get_format = rio_plain_get_format;
    header_runs = 0;
    put_bytes.clear();
    const uint8_t line[2] = { 7, 8 };
    EXPECT_EQ(rio_putline(file, line), 0);
    EXPECT_EQ(header_runs, 1);
    EXPECT_EQ(file->current_line, 1);
    EXPECT_EQ(rio_putline(file, line), 0);
    EXPECT_EQ(header_runs, 1);
    EXPECT_EQ(put_bytes, (bytes { 7, 8, 7, 8 }));
    EXPECT_EQ(rio_putline(file, line), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_EQ(file->current_line, 2);
    rio_discard(file);
}

TEST(Lines, CompressedFilesCannotBeModified)
{
    RFILE *file = rio_new_record();
    file->access = RIO_ACCESS_MODIFY;
    file->flags |= RIO_HEADER_DONE;
    file->width = file->height = 2;
    file->ops.putline = rio_common_putline;
    file->ops.put_line = keep_line;
    const uint8_t line[2] = {};
    rio_debug = 1;
    for (uint32_t type : { 25, 26, 27, 29, 9, 10 }) {
        file->data_type = type;
        const std::string text = printed([&] { EXPECT_EQ(rio_putline(file, line), 1); });
        EXPECT_EQ(rio_errno, RIO_NOT_WRITABLE);
        EXPECT_NE(text.find("Cannot modify compressed or scan format data"), std::string::npos);
    }
    rio_debug = 0;
    file->data_type = 2;
    EXPECT_EQ(rio_putline(file, line), 0);
    file->flags |= RIO_SCANNABLE;
    EXPECT_EQ(rio_putline(file, line), 1);
    rio_discard(file);
}

TEST(Lines, SkipMovesFromTheCurrentLineAndReportsTheSeeksError)
{
    const planes picture { { { 1 }, { 2 }, { 3 } } };
    RFILE *file = picture_record(picture, 1);
    EXPECT_EQ(rio_skip(file, 2), 0);
    EXPECT_EQ(file->current_line, 2);
    EXPECT_EQ(rio_skip(file, -1), 0);
    EXPECT_EQ(file->current_line, 1);
    rio_debug = 1;
    const std::string text = printed([&] { EXPECT_EQ(rio_skip(file, 5), 1); });
    rio_debug = 0;
    EXPECT_NE(text.find("picture"), std::string::npos);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_EQ(rio_skip(file, INT32_MAX), 1);
    rio_close(file);
}

static int slot_calls;
static int count_overview(RFILE *, int)
{
    slot_calls++;
    return 0;
}

TEST(Lines, TheActiveOverviewIsNotActivatedAgain)
{
    RFILE *file = rio_new_record();
    file->ops.setactiveov = count_overview;
    slot_calls = 0;
    EXPECT_EQ(rio_set_active_ov(file, -1), 0);
    EXPECT_EQ(slot_calls, 0);
    EXPECT_EQ(rio_set_active_ov(file, 0), 0);
    EXPECT_EQ(slot_calls, 1);
    rio_discard(file);
}

TEST(Lines, PositionsOfLinesPassedAreKept)
{
    const test_folder folder;
    RFILE *file = rio_open_r(folder.with("a.ntv", native_bytes(4, 3)).c_str());
    ASSERT_TRUE(file);
    file->line_offsets = (int64_t *)mem_calloc(3, sizeof(int64_t));
    uint8_t line[4];
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(rio_getline(file, line), 0);
    EXPECT_EQ(file->line_offsets[1], 1024 + 4);
    EXPECT_EQ(file->line_offsets[2], 1024 + 8);
    rio_close(file);
}

// ---- colours ---------------------------------------------------------------------------------------------------------

TEST(TranslateLine, IndicesGoThroughTheTable)
{
    RFILE *file = rio_new_record();
    uint8_t *vlt = rio_alloc_vlt(file);
    for (int i = 0; i < 256; i++) {
        vlt[3 * i] = uint8_t(i + 1);
        vlt[3 * i + 1] = uint8_t(2 * i);
        vlt[3 * i + 2] = uint8_t(255 - i);
    }
    uint8_t r[3] = { 0, 10, 255 }, g[3], b[3];
    rio_translate_line(file, r, g, b, 3);
    EXPECT_EQ(bytes(r, r + 3), (bytes { 1, 11, 0 }));
    EXPECT_EQ(bytes(g, g + 3), (bytes { 0, 20, 254 }));
    EXPECT_EQ(bytes(b, b + 3), (bytes { 255, 245, 0 }));
    uint8_t only[1] = { 10 };
    rio_translate_line(file, only, nullptr, nullptr, 1);
    EXPECT_EQ(only[0], 11);

    file->significant_bits = 5;             // 8 - 5: three places up
    uint8_t five[2] = { 2, 4 };
    rio_translate_line(file, five, nullptr, nullptr, 2);
    EXPECT_EQ(bytes(five, five + 2), (bytes { 3 << 3, 5 << 3 }));
    file->flags |= RIO_NO_SHIFT;
    uint8_t unshifted[2] = { 2, 4 };
    rio_translate_line(file, unshifted, nullptr, nullptr, 2);
    EXPECT_EQ(bytes(unshifted, unshifted + 2), (bytes { 3, 5 }));
    rio_discard(file);
}

TEST(TranslateLine, GrayIsShiftedToTheTopAndCopied)
{
    RFILE *file = rio_new_record();
    file->bits_per_sample = 4;
    uint8_t a[2] = { 3, 15 }, b[2], c[2];
    rio_translate_line(file, a, b, c, 2);
    EXPECT_EQ(bytes(a, a + 2), (bytes { 48, 240 }));
    EXPECT_EQ(bytes(b, b + 2), (bytes { 48, 240 }));
    EXPECT_EQ(bytes(c, c + 2), (bytes { 48, 240 }));
    uint8_t d[1] = { 3 };
    rio_shift_line(file, d, 1);
    EXPECT_EQ(d[0], 48);
    file->flags |= RIO_NO_SHIFT;
    uint8_t e[1] = { 3 }, f[1];
    rio_translate_line(file, e, f, nullptr, 1);
    EXPECT_EQ(e[0], 3);
    EXPECT_EQ(f[0], 3);
    rio_shift_line(file, e, 1);
    EXPECT_EQ(e[0], 3);
    file->flags &= ~uint32_t(RIO_NO_SHIFT);
    rio_alloc_vlt(file);
    rio_shift_line(file, e, 1);         // indices are not gray
    EXPECT_EQ(e[0], 3);
    rio_discard(file);
}

TEST(PackBits, FromBit15DownWithAPartialLastWord)
{
    uint8_t in[18] = { 200, 0, 128, 127, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 129 };
    uint16_t out[2] = { 0xFFFF, 0xFFFF };
    rio_pack_bits(out, in, 18, 128);
    EXPECT_EQ(out[0], 0xA001);      // bits 15 and 13, and bit 0
    EXPECT_EQ(out[1], 0x4000);
    uint8_t back[18];
    rio_unpack_bits(out, back, 18, 10, 20);
    for (int i = 0; i < 18; i++)
        EXPECT_EQ(back[i], in[i] >= 128 ? 20 : 10) << i;
}

// ---- interleaved -----------------------------------------------------------------------------------------------------

TEST(Interleaved, ThreePlanesBecomePixels)
{
    const planes picture { { { 1, 2 } }, { { 11, 12 } }, { { 21, 22 } } };
    RFILE *file = picture_record(picture, 2);
    uint8_t line[8] = {};
    EXPECT_EQ(rio_getline_interleaved(file, line), 0);
    EXPECT_EQ(bytes(line, line + 6), (bytes { 1, 11, 21, 2, 12, 22 }));
    rio_rewind(file);
    const int32_t on = 1;
    rio_set_hdr_data(file, RIO_KEY_PAD4, &on);
    uint8_t padded[8] = { 9, 9, 9, 9, 9, 9, 9, 9 };
    EXPECT_EQ(rio_getline_interleaved(file, padded), 0);
    EXPECT_EQ(bytes(padded, padded + 8), (bytes { 1, 11, 21, 9, 2, 12, 22, 9 }));
    EXPECT_FALSE(file->flags & RIO_INTERLEAVE);
    rio_close(file);
}

TEST(Interleaved, OneSamplePassesStraightOnAndATableMakesThree)
{
    const planes picture { { { 0, 1 } } };
    RFILE *file = picture_record(picture, 2);
    uint8_t line[6] = {};
    EXPECT_EQ(rio_getline_interleaved(file, line), 0);
    EXPECT_EQ(bytes(line, line + 2), (bytes { 0, 1 }));
    rio_close(file);

    const test_folder folder;
    bytes native = native_bytes(2, 1);
    put_le_u16(&native[532], 2);
    put_le_u32(&native[536], 2);
    put_le_u16(&native[2], 510 + 256);
    native.resize(1024);
    bytes table(512, 0);
    const uint16_t entries[8] = { 0, 0x1000, 0x2000, 0x3000, 1, 0x4000, 0x5000, 0x6000 };
    for (size_t i = 0; i < 8; i++)
        put_le_u16(&table[2 * i], entries[i]);
    native.insert(native.end(), table.begin(), table.end());
    native.insert(native.end(), { 0, 1 });
    file = rio_open_r(folder.with("a.ntv", native).c_str());
    ASSERT_TRUE(file);
    file->ops.getline_interleaved = rio_dummy_getline_interleaved;     // the native one takes colours only
    EXPECT_EQ(rio_getline_interleaved(file, line), 0);
    EXPECT_EQ(bytes(line, line + 6), (bytes { 0x10, 0x20, 0x30, 0x40, 0x50, 0x60 }));
    rio_rewind(file);
    EXPECT_EQ(rio_getline(file, line), 0);          // one buffer gives indices
    EXPECT_EQ(bytes(line, line + 2), (bytes { 0, 1 }));
    rio_close(file);
}

static bytes put_planes[3];
static int keep_planes(RFILE *file, int count, uint8_t **lines)
{
    for (int s = 0; s < count && s < 3; s++)
        put_planes[s].assign(lines[s], lines[s] + file->width);
    return file->width;
}

TEST(Interleaved, PixelsBecomePlanesOnTheWayOut)
{
    RFILE *file = rio_new_record();
    file->access = RIO_ACCESS_WRITE;
    file->width = 2;
    file->height = 1;
    file->samples_per_pixel = 3;
    file->ops.putline = keep_planes;
    const uint8_t pixels[8] = { 1, 11, 21, 0, 2, 12, 22, 0 };
    file->flags |= RIO_PAD4;
    EXPECT_EQ(rio_putline_interleaved(file, pixels), 0);
    EXPECT_EQ(put_planes[0], (bytes { 1, 2 }));
    EXPECT_EQ(put_planes[1], (bytes { 11, 12 }));
    EXPECT_EQ(put_planes[2], (bytes { 21, 22 }));
    EXPECT_EQ(file->current_line, 1);
    rio_discard(file);
}
