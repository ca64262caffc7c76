// jptile.cpp - tiles of JPEG data: each is a piece of its own and always whole, at the picture's edges too.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

static int64_t tile_pixels(const RFILE *file) { return int64_t{ jpeg_width(file) } * jpeg_height(file); }

// The driver is kept from tile to tile, unless the file or the program has its own wish.
static void keep_board(RFILE *file)
{
    if (!(file->jpeg_mode & (RIO_JPEG_BOARD | RIO_JPEG_BOARD_FILE)))
        file->jpeg_mode |= RIO_JPEG_KEPT;
}

// Interleaved pixels with a fourth byte come through the weaving room.
static int get_padded(RFILE *file, uint8_t *out)
{
    const int64_t pixels = tile_pixels(file);
    uint8_t *whole = jpeg_weaving_room(file, 3 * pixels);
    if (!whole || jpeg_decompress(file, 1, &whole) != 0)
        return 0;
    for (int64_t i = 0; i < pixels; i++) {
        std::memcpy(out + 4 * i, whole + 3 * i, 3);
        out[4 * i + 3] = 0;
    }
    return 1;
}

int jpeg_get_tile(RFILE *file, int plane_count, uint8_t *const *planes)
{
    if (!file->jpeg && jpeg_check_open(file) != 0)
        return 0;
    keep_board(file);
    jpeg_set_direction(file, JPEG_DECOMPRESSING);
    if (file->error || jpeg_read_coded(file) != 0)
        return 0;
    const bool padded = file->flags & RIO_INTERLEAVE && file->flags & RIO_PAD4 && file->data_type == RIO_TYPE_JPEG_RGB;
    const int done = padded ? get_padded(file, planes[0]) : jpeg_decompress(file, plane_count, planes) == 0;
    return done ? int(tile_pixels(file)) : 0;
}

// ---- lines through a row of tiles ------------------------------------------------------------------------------------

// A row of tiles takes no more memory than the first, or than so many times the file's size.
static constexpr int64_t MOST_STRIP_BYTES = int64_t{ 1 } << 28, MOST_STRIP_SHARE = 512;

static int strip_room(RFILE *file, int64_t bytes)
{
    jpeg_state *jpeg = file->jpeg;
    if (jpeg->strip_room >= bytes)
        return 1;
    mem_free(jpeg->strip);
    jpeg->strip_room = 0;
    const bool sane = bytes <= MOST_STRIP_BYTES || bytes <= MOST_STRIP_SHARE * rio_file_size(file);
    jpeg->strip = sane ? (uint8_t *)mem_alloc(size_t(bytes)) : nullptr;
    if (!jpeg->strip)
        return rio_fail(file, RIO_NO_MEMORY, "jptile");
    jpeg->strip_room = bytes;
    return 1;
}

// Red is in bits 16 to 23 of a solid tile's level; gray is all of it.
static void fill_solid(const RFILE *file, uint32_t level, uint8_t *out)
{
    const int samples = jpeg_samples(file);
    const int64_t bytes = tile_pixels(file) * samples;
    if (samples == 1) {
        std::memset(out, int(level & 0xFF), size_t(bytes));
        return;
    }
    for (int64_t i = 0; i < bytes; i++)
        out[i] = uint8_t(level >> (16 - 8 * (i % samples)));
}

static int decode_tile(RFILE *file, int64_t tile, uint8_t *out)
{
    const natv_entry entry = natv_get_entry(file, tile);
    if (entry.offset == 0) {
        fill_solid(file, entry.used, out);
        return 1;
    }
    const natv_tile outside = natv_enter_tile(file, tile);
    natv_start_tile(file, entry);
    const int done = jpeg_read_coded(file) == 0 && jpeg_decompress_rows(file, 0, jpeg_height(file), out) == 0;
    natv_leave_tile(file, outside);
    return done;
}

// Lines of a damaged row are not tried again one by one.
static int fail_row(RFILE *file, int row)
{
    if (file->error == RIO_NO_MEMORY)
        return 0;
    file->jpeg->damaged_row = row;
    return rio_fail(file, RIO_READ_FAILED, "jptile");
}

static int hold_row(RFILE *file, int row)
{
    jpeg_state *jpeg = file->jpeg;
    if (jpeg->strip_row == row)
        return 1;
    if (jpeg->damaged_row == row)
        return rio_fail(file, RIO_READ_FAILED, "jptile");
    const int across = file->tiles->tiles_across;
    const int64_t tile_bytes = tile_pixels(file) * jpeg_samples(file);
    jpeg->strip_row = -1;
    if (!strip_room(file, tile_bytes * across))
        return 0;
    for (int column = 0; column < across; column++)
        if (!decode_tile(file, int64_t{ row } * across + column, jpeg->strip + tile_bytes * column))
            return fail_row(file, row);
    jpeg->strip_row = row;
    return 1;
}

bool jpeg_has_lines_of_tiles(const RFILE *file, int plane_count, uint8_t *const *planes)
{
    if (!natv_is_jpeg(file->data_type) || !file->tiles || !file->tiles->directory || !planes[0])
        return false;
    return file->data_type == RIO_TYPE_JPEG_RGB || (file->data_type == RIO_TYPE_JPEG && plane_count == 1);
}

int jpeg_get_line_of_tiles(RFILE *file, int plane_count, uint8_t *const *planes)
{
    if (!file->jpeg && jpeg_check_open(file) != 0)
        return 0;
    keep_board(file);
    jpeg_set_direction(file, JPEG_DECOMPRESSING);
    const rio_tiles *t = file->tiles;
    if (file->error || !hold_row(file, file->current_line / t->tile_height))
        return 0;
    const int samples = jpeg_samples(file);
    const int64_t tile_bytes = tile_pixels(file) * samples;
    const uint8_t *row = file->jpeg->strip + int64_t{ file->current_line % t->tile_height } * t->tile_width * samples;
    for (int64_t left = 0; left < file->width; left += t->tile_width, row += tile_bytes)
        jpeg_give_row(file, row, int(std::min<int64_t>(t->tile_width, file->width - left)), plane_count, planes, left);
    file->current_line++;
    return file->width;
}

// ---- tiles that are written ------------------------------------------------------------------------------------------

// The last pixels of an edge tile go on to its end: what lies outside the picture would else be seen in it.
static void extend(const uint8_t *in, uint8_t *out, int width, int height, int live_width, int live_height)
{
    for (int y = 0; y < live_height; y++, in += width, out += width) {
        std::memcpy(out, in, size_t(live_width));
        std::memset(out + live_width, out[live_width - 1], size_t(width - live_width));
    }
    for (int y = live_height; y < height; y++, out += width)
        std::memcpy(out, out - width, size_t(width));
}

// The tile as it is given, or extended when the picture's edge runs through it.
static int compress_tile(RFILE *file, int count, uint8_t *const *planes)
{
    const int width = jpeg_width(file), height = jpeg_height(file), samples = jpeg_samples(file);
    if (file->width == width && file->height == height)
        return jpeg_compress(file, count, planes) == 0;
    mem_ptr<uint8_t> block((uint8_t *)mem_alloc(size_t(tile_pixels(file) * samples)));
    if (!block)
        return rio_fail(file, RIO_NO_MEMORY, "jptile");
    uint8_t *extended[4] = {};
    for (int s = 0; s < samples && s < count; s++)
        if (planes[s]) {
            extended[s] = block.get() + s * tile_pixels(file);
            extend(planes[s], extended[s], width, height, file->width, file->height);
        }
    return jpeg_compress(file, samples, extended) == 0;
}

int jpeg_put_tile(RFILE *file, int plane_count, uint8_t *const *planes)
{
    if (!file->jpeg || file->flags & RIO_SCANNABLE)
        return rio_fail(file, RIO_NOT_STANDARD, "jptile");
    keep_board(file);
    jpeg_set_direction(file, JPEG_COMPRESSING);
    if (file->error || jpeg_make_coded(file) != 0)
        return 0;
    if (!compress_tile(file, plane_count, planes)) {
        if (file->error == RIO_JPEG_HW2 && file->data_type != RIO_TYPE_JPEG_4)
            rio_fail(file, RIO_WRITE_FAILED, "jptile");
        return 0;
    }
    return jpeg_write_coded(file) == 0 ? int(tile_pixels(file)) : 0;
}
