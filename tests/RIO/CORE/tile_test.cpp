// Tiles to lines and lines to tiles, over a format that keeps its tiles in memory.
#include "plain_record.h"
#include <cstring>
#include <gtest/gtest.h>
#include <map>

// Tile number to planes of bytes; a tile in `solid` has a level instead.
struct tile_store {
    std::map<int, std::vector<bytes>> tiles;
    std::map<int, int32_t> solid;
    int reads = 0;
};
static tile_store store;

static int store_get(RFILE *file, int count, uint8_t **buffers, int32_t *value)
{
    if (rio_tile_check(file) != 0)
        return 0;
    const int number = file->current_line++;
    store.reads++;
    if (store.solid.count(number) && value) {
        *value = store.solid[number];
        return 1;
    }
    const auto &planes = store.tiles[number];
    for (int i = 0; i < count && i < int(planes.size()); i++)
        if (buffers[i])
            std::copy(planes[size_t(i)].begin(), planes[size_t(i)].end(), buffers[i]);
    return file->tiles->tile_width * file->tiles->tile_height;
}

static int store_put(RFILE *file, int count, uint8_t **buffers, const int32_t *)
{
    if (rio_put_tile_check(file) != 0)
        return 0;
    const int64_t size = rio_tile_row_bytes(file) * file->tiles->tile_height;
    std::vector<bytes> planes;
    for (int i = 0; i < count; i++)
        planes.push_back(bytes(buffers[i], buffers[i] + size));
    store.tiles[file->current_line++] = planes;
    return int(size);
}

static int no_header(RFILE *file)
{
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

static RFILE *tiled_record(int width, int height, int tile, int samples = 1)
{
    store = {};
    RFILE *file = rio_new_record();
    file->access = RIO_ACCESS_WRITE_READ;
    file->width = width;
    file->height = height;
    file->samples_per_pixel = samples;
    file->data_type = samples == 3 ? RIO_TYPE_RGB : RIO_TYPE_BYTE;
    file->ops.getline = rio_common_getline;
    file->ops.putline = rio_common_putline;
    file->ops.getlinefromtile = rio_getlinefromtile;
    file->ops.gettile = store_get;
    file->ops.puttile = store_put;
    file->ops.wrt_hdr = no_header;
    file->ops.get_format = rio_plain_get_format;
    file->ops.close = rio_plain_close;
    EXPECT_EQ(rio_set_tile_size(file, tile, tile), 0);
    return file;
}

static bytes pattern(int width, int line, int sample = 0)
{
    bytes row;
    for (int x = 0; x < width; x++)
        row.push_back(uint8_t(x * 3 + line * 7 + sample * 50));
    return row;
}

TEST(Tiles, SizesAreRoundedUp)
{
    RFILE *file = tiled_record(100, 65, 64);
    EXPECT_EQ(file->tiles->tiles_across, 2);
    EXPECT_EQ(file->tiles->tiles_down, 2);
    EXPECT_TRUE(file->flags & RIO_TILED);
    EXPECT_EQ(rio_set_tile_size(file, 0, 0), 0);
    EXPECT_FALSE(file->tiles);
    EXPECT_FALSE(file->flags & RIO_TILED);
    EXPECT_EQ(rio_set_tile_size(file, -1, 64), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_TILE_SIZE);
    EXPECT_EQ(rio_set_tile_size(file, 0x40000000, 0x40000000), 1);
    EXPECT_EQ(rio_errno, RIO_BAD_TILE_SIZE);
    EXPECT_EQ(rio_set_tile_size(file, INT32_MAX, 1), 1);
    rio_close(file);
}

TEST(Tiles, LinesGoInAndComeOutAgain)
{
    for (int samples : { 1, 3 }) {
        RFILE *file = tiled_record(100, 100, 64, samples);
        for (int y = 0; y < 100; y++) {
            const bytes a = pattern(100, y), b = pattern(100, y, 1), c = pattern(100, y, 2);
            if (samples == 1)
                ASSERT_EQ(rio_putline(file, a.data()), 0);
            else
                ASSERT_EQ(rio_putline_rgb(file, a.data(), b.data(), c.data()), 0);
            ASSERT_EQ(file->current_line, y + 1);
        }
        // The last strip has 36 live lines and its tiles 36 live columns; the rest is zero.
        ASSERT_EQ(store.tiles.size(), 4u);
        const bytes &corner = store.tiles[3][0];
        EXPECT_EQ(corner[35 * 64 + 35], pattern(100, 99)[99]);
        EXPECT_EQ(corner[35 * 64 + 36], 0);
        EXPECT_EQ(corner[36 * 64], 0);
        EXPECT_EQ(file->tiles->strip[0], nullptr);

        file->current_line = 0;
        store.reads = 0;
        bytes line[3] = { bytes(100), bytes(100), bytes(100) };
        for (int y = 0; y < 100; y++) {
            ASSERT_EQ(rio_getline_rgb(file, line[0].data(), line[1].data(), line[2].data()), 0);
            for (int s = 0; s < 3; s++)
                ASSERT_EQ(line[s], pattern(100, y, samples == 3 ? s : 0)) << y;
        }
        EXPECT_EQ(store.reads, 4);              // each tile is touched once
        rio_close(file);
    }
}

TEST(Tiles, LinesMustComeInOrder)
{
    RFILE *file = tiled_record(10, 10, 32);
    const bytes line = pattern(10, 0);
    for (int y = 0; y <= 3; y++)
        ASSERT_EQ(rio_putline(file, line.data()), 0);
    file->current_line = 5;
    rio_debug = 1;
    const std::string text = printed([&] { EXPECT_EQ(rio_putline(file, line.data()), 1); });
    rio_debug = 0;
    EXPECT_EQ(rio_errno, RIO_LINE_ORDER);
    EXPECT_EQ(text.find("An attempt was made to write *lines* out of order\nto a tiled file."), 0u);
    rio_close(file);
}

TEST(Tiles, ChecksBeforeATile)
{
    RFILE *file = tiled_record(100, 100, 64);
    uint8_t tile[64 * 64];
    void *buffers[1] = { tile };
    const void *outgoing[1] = { tile };
    file->current_line = 4;                     // tiles_across times tiles_down
    int32_t value;
    EXPECT_EQ(rio_gettile(file, 1, buffers, &value), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    EXPECT_EQ(rio_puttile(file, 1, outgoing, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_PAST_END);
    file->current_line = 0;
    EXPECT_EQ(rio_puttile(file, 1, outgoing, nullptr), 0);
    file->access = RIO_ACCESS_READ;
    EXPECT_EQ(rio_puttile(file, 1, outgoing, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_WRITABLE);
    file->access = RIO_ACCESS_WRITE;
    EXPECT_EQ(rio_gettile(file, 1, buffers, &value), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_READABLE);
    file->flags |= RIO_RAW;
    EXPECT_EQ(rio_puttile(file, 1, outgoing, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_NOT_STANDARD);
    file->flags &= ~uint32_t(RIO_RAW | RIO_TILED);
    EXPECT_EQ(rio_gettile(file, 1, buffers, &value), 1);
    EXPECT_EQ(rio_errno, RIO_TILED_ONLY);
    EXPECT_EQ(rio_putrletile(file, tile, 1, nullptr), 1);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
    rio_close(file);
}

TEST(Tiles, SolidTilesAreFilledByPlane)
{
    RFILE *file = tiled_record(40, 32, 32, 3);
    store.tiles[0] = std::vector<bytes>(3, bytes(32 * 32, 1));
    store.solid[1] = 0x102030;
    bytes line[3] = { bytes(40), bytes(40), bytes(40) };
    EXPECT_EQ(rio_getline_rgb(file, line[0].data(), line[1].data(), line[2].data()), 0);
    EXPECT_EQ(line[0][31], 1);
    EXPECT_EQ(line[0][32], 0x10);
    EXPECT_EQ(line[1][39], 0x20);
    EXPECT_EQ(line[2][39], 0x30);
    rio_close(file);

    file = tiled_record(40, 32, 32);
    file->data_type = RIO_TYPE_BITMAP;
    file->bits_per_sample = 1;
    store.solid[0] = 7;
    store.solid[1] = 0;
    uint16_t bits[3];
    EXPECT_EQ(rio_getline(file, bits), 0);
    EXPECT_EQ(bits[0], 0xFFFF);
    EXPECT_EQ(bits[1], 0xFFFF);
    EXPECT_EQ(bits[2], 0);
    rio_close(file);
}

TEST(Tiles, ABlockOfTilesIsClippedToTheImage)
{
    RFILE *file = tiled_record(40, 40, 32);
    for (int n = 0; n < 4; n++)
        store.tiles[n] = { bytes(32 * 32, uint8_t(n + 1)) };
    bytes picture(40 * 40, 0xEE);
    void *buffers[1] = { picture.data() };
    file->current_line = 0;
    EXPECT_EQ(rio_get_tile_rect(file, 1, buffers, 40, 9, 9), 1600);
    EXPECT_EQ(picture[0], 1);
    EXPECT_EQ(picture[39], 2);
    EXPECT_EQ(picture[39 * 40], 3);
    EXPECT_EQ(picture[39 * 40 + 39], 4);
    bytes narrow(8 * 33 + 8, 0xEE);             // one tile into rows of 8 bytes
    buffers[0] = narrow.data();
    file->current_line = 1;
    EXPECT_EQ(rio_get_tile_rect(file, 1, buffers, 8, 1, 1), 8 * 32);
    EXPECT_EQ(narrow[8 * 31 + 7], 2);
    EXPECT_EQ(narrow[8 * 32], 0xEE);
    mem_fail_countdown = 0;
    file->current_line = 1;
    EXPECT_EQ(rio_get_tile_rect(file, 1, buffers, 8, 1, 1), 0);
    mem_fail_countdown = -1;
    EXPECT_EQ(rio_errno, RIO_NO_MEMORY);
    rio_close(file);
}

TEST(Tiles, AFormatWithoutTilesFailsItsLines)
{
    RFILE *file = tiled_record(40, 40, 32);
    file->ops.gettile = rio_dummy_gettile;
    file->ops.puttile = rio_dummy_puttile;
    bytes line(40);
    EXPECT_EQ(rio_getline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
    for (int y = 0; y < 31; y++)
        EXPECT_EQ(rio_putline(file, line.data()), 0);
    EXPECT_EQ(rio_putline(file, line.data()), 1);
    EXPECT_EQ(rio_errno, RIO_UNSUPPORTED);
    rio_close(file);
}
