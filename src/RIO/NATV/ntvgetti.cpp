// ntvgetti.cpp - reads tiles: of pixels, and of run lengths.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

// ---- the record as one tile ------------------------------------------------------------------------------------------

natv_tile natv_enter_tile(RFILE *file, int64_t tile)
{
    const rio_tiles *t = file->tiles;
    const natv_tile outside { file->width, file->height, file->current_line, natv_get_entry(file, tile) };
    const int64_t left = tile % t->tiles_across * t->tile_width, top = tile / t->tiles_across * t->tile_height;
    file->width = int32_t(std::min<int64_t>(t->tile_width, file->width - left));
    file->height = int32_t(std::min<int64_t>(t->tile_height, file->height - top));
    file->current_line = 0;
    return outside;
}

void natv_leave_tile(RFILE *file, const natv_tile &tile)
{
    file->width = tile.width;
    file->height = tile.height;
    file->current_line = tile.current;
}

void natv_start_tile(RFILE *file, const natv_entry &entry)
{
    const int64_t at = natv_header_end(file) + entry.offset;
    if (natv_is_ccitt(file->data_type))
        natv_place_ccitt(file, at, entry.used);
    else if (natv_is_jpeg(file->data_type))
        jpeg_enter_picture(file, at, entry.used);
    else if (file->flags & RIO_SCANNABLE)
        natv_start_segments(file, at);
    else
        natv_set_place(file, at);
}

bool natv_tile_is_plain(const RFILE *file)
{
    return file->data_type <= RIO_TYPE_128 && !(file->flags & RIO_SCANNABLE) && file->width == file->tiles->tile_width;
}

bool natv_tile_is_interleaved(const RFILE *file)
{
    return (file->data_type == RIO_TYPE_RGB || file->data_type == RIO_TYPE_4) && !(file->flags & RIO_SCANNABLE)
           && file->width == file->tiles->tile_width;
}

int64_t natv_place_of_tile(RFILE *file, int64_t tile, int64_t *row_bytes)
{
    const natv_entry entry = natv_get_entry(file, tile);
    if (file->data_type > RIO_TYPE_128 || file->flags & RIO_SCANNABLE || entry.offset == 0)
        return -1;
    // The last tile of a row has rows of its live width.
    const rio_tiles *t = file->tiles;
    const int64_t left = tile % t->tiles_across * t->tile_width;
    *row_bytes = rio_row_bytes(file, std::min<int64_t>(t->tile_width, file->width - left));
    return natv_header_end(file) + entry.offset;
}

static bool none_wanted(int count, uint8_t **buffers)
{
    return std::none_of(buffers, buffers + count, [](const uint8_t *b) { return b != nullptr; });
}

static int tile_pixels(const RFILE *file) { return file->tiles->tile_width * file->tiles->tile_height; }

// ---- solid tiles -----------------------------------------------------------------------------------------------------

// Red is in bits 16 to 23 of a level.
static uint8_t part_of(uint32_t level, int plane) { return plane < 3 ? uint8_t(level >> (16 - 8 * plane)) : uint8_t{ 0 }; }

// Bytes a pixel when the present call wants interleaved pixels, else 1.
static int pixel_step(const RFILE *file)
{
    if (!(file->flags & RIO_INTERLEAVE) || file->samples_per_pixel == 1)
        return 1;
    return file->flags & RIO_PAD4 ? 4 : file->samples_per_pixel;
}

static bool is_bilevel(uint32_t type)
{
    return type == RIO_TYPE_BITMAP || type == RIO_TYPE_BITMAP_RLE || natv_is_ccitt(type);
}

static void fill_plane(const RFILE *file, uint8_t *out, uint32_t level, int plane)
{
    const int64_t pixels = tile_pixels(file), bytes = rio_tile_row_bytes(file) * file->tiles->tile_height;
    if (is_bilevel(file->data_type))
        std::memset(out, level ? 255 : 0, size_t(bytes));
    else if (file->samples_per_pixel > 1)
        std::memset(out, part_of(level, plane), size_t(pixels));
    else if (bytes == 2 * pixels)
        std::fill_n((uint16_t *)out, pixels, uint16_t(level));
    else if (file->data_type == RIO_TYPE_32)
        std::fill_n((uint32_t *)out, pixels, level);
    else
        std::memset(out, int(level & 0xFF), size_t(bytes));
}

static void fill_pixels(const RFILE *file, uint8_t *out, uint32_t level)
{
    const int64_t bytes = int64_t{ tile_pixels(file) } * pixel_step(file);
    for (int64_t i = 0; i < bytes; i += pixel_step(file))
        for (int s = 0; s < pixel_step(file); s++)
            out[i + s] = part_of(level, s);
}

// A level for the caller when he takes one; pixels when he does not, or when the level looks like that of no solid tile.
static void give_solid(const RFILE *file, int count, uint8_t **buffers, uint32_t level, int32_t *value)
{
    const int given = int(count - std::count(buffers, buffers + count, nullptr));
    if (value)
        *value = int32_t(level);
    if (value && given == 1 && file->samples_per_pixel > 1 && pixel_step(file) == 1) {
        uint8_t **only = std::find_if(buffers, buffers + count, [](const uint8_t *b) { return b != nullptr; });
        *value = part_of(level, int(only - buffers));
    }
    if (value && *value != -1)
        return;
    if (pixel_step(file) > 1) {
        fill_pixels(file, buffers[0], level);
        return;
    }
    for (int s = 0; s < count; s++)
        if (buffers[s])
            fill_plane(file, buffers[s], level, s);
}

// ---- tiles with data -------------------------------------------------------------------------------------------------

// Rows of the tile one after another, `row_bytes` apart.
static int read_rows(RFILE *file, int count, uint8_t **buffers)
{
    if (natv_is_jpeg(file->data_type))
        return jpeg_get_tile(file, count, buffers) != 0;
    const int step = pixel_step(file);
    const int64_t row_bytes = rio_tile_row_bytes(file) * step;
    if (natv_tile_is_plain(file))
        return rio_read_exact(file, buffers[0], row_bytes * file->height)
                   ? 1 : rio_fail(file, RIO_READ_FAILED, "ntvgetti");
    if (natv_tile_is_interleaved(file) && step == 1) {
        const natv_row row = natv_row_of(file, count, buffers);
        const int64_t pixels = int64_t{ file->width } * file->height;
        return natv_read_pixels(file, &row, pixels * row.planes, pixels) || rio_fail(file, RIO_READ_FAILED, "ntvgetti");
    }
    for (; file->current_line < file->height; file->current_line++) {
        natv_row row = natv_row_of(file, count, buffers);
        const int64_t into = row_bytes * file->current_line;
        row.step = step;
        for (int s = 0; s < row.planes; s++)
            row.plane[s] = step > 1 ? buffers[0] + into + s : row.plane[s] ? row.plane[s] + into : nullptr;
        if (!natv_line_result(file, natv_read_row(file, &row), "rio_get_line:WARNING - data size doesn't match data size in header."))
            return 0;
    }
    return 1;
}

int natv_get_tile(RFILE *file, int count, uint8_t **buffers, int32_t *value)
{
    if (rio_tile_check(file) != 0)
        return 0;
    const int tile = file->current_line;
    const natv_entry entry = natv_get_entry(file, tile);
    if (value)
        *value = -1;
    if (entry.offset == 0 && !none_wanted(count, buffers)) {
        give_solid(file, count, buffers, entry.used, value);
    } else if (!none_wanted(count, buffers)) {
        if (file->samples_per_pixel == 1 && !buffers[0])
            return rio_fail(file, RIO_NO_OUTPUT, "ntvgetti");
        const natv_tile outside = natv_enter_tile(file, tile);
        natv_start_tile(file, entry);
        const int done = read_rows(file, count, buffers);
        natv_leave_tile(file, outside);
        if (!done)
            return 0;
    }
    file->current_line = tile + 1;
    return tile_pixels(file);
}

// ---- run lengths -----------------------------------------------------------------------------------------------------

// Rows of a solid tile: one run of 0, or none and one run of 1; or a pair of value and count.
static int64_t solid_words(const RFILE *file, uint32_t level, uint16_t row[3])
{
    const uint16_t width = uint16_t(file->tiles->tile_width);
    if (!is_bilevel(file->data_type)) {
        row[0] = uint16_t(level);
        row[1] = width;
        return 2;
    }
    row[0] = level ? 0 : width;
    row[1] = width;
    row[2] = 0;
    return level ? 3 : 1;
}

static int solid_runs(RFILE *file, uint32_t level, uint8_t *buffer, int *size)
{
    const uint32_t type = file->data_type;
    const bool gray = type == RIO_TYPE_BYTE || type == RIO_TYPE_BYTE_RLE || type == RIO_TYPE_BYTE_RUN
                      || type == RIO_TYPE_PACKED_RLE || type == RIO_TYPE_JPEG;
    if ((!gray && !is_bilevel(type)) || file->tiles->tile_width > INT16_MAX)
        return rio_fail(file, RIO_BAD_COUNT, "ntvgetti");
    uint16_t row[3];
    const int64_t words = solid_words(file, level, row), bytes = 2 * words * file->tiles->tile_height;
    if (bytes > *size) {
        *size = int(std::min<int64_t>(bytes, INT32_MAX));
        return rio_fail(file, RIO_RLE_BUFFER, "ntvgetti");
    }
    for (int y = 0; y < file->tiles->tile_height; y++)
        std::memcpy(buffer + 2 * words * y, row, size_t(2 * words));
    *size = int(bytes);
    return 1;
}

static int data_runs(RFILE *file, uint8_t *buffer, int *size)
{
    int used = 0;
    while (file->current_line < file->height) {
        int left = *size - used;
        if (!natv_read_rle_row(file, buffer + used, &left))
            return 0;
        used += left;
    }
    *size = used;
    return 1;
}

int natv_get_rle_tile(RFILE *file, uint8_t *buffer, int *size, int32_t *value)
{
    if (rio_tile_check(file) != 0)
        return 0;
    const int tile = file->current_line;
    const natv_entry entry = natv_get_entry(file, tile);
    if (value)
        *value = -1;
    int done = 1;
    if (buffer && entry.offset == 0 && value) {
        *value = int32_t(entry.used);
        *size = 0;
    } else if (buffer && entry.offset == 0) {
        done = solid_runs(file, entry.used, buffer, size);
    } else if (buffer) {
        const natv_tile outside = natv_enter_tile(file, tile);
        natv_start_tile(file, entry);
        done = data_runs(file, buffer, size);
        natv_leave_tile(file, outside);
    }
    if (!done)
        return 0;
    file->current_line = tile + 1;
    return tile_pixels(file);
}
