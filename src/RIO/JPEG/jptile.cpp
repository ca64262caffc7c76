// jptile.cpp - tiles of JPEG data: each is a piece of its own and always whole, at the picture's edges too.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
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
