// ntvputti.cpp - writes tiles: of pixels, and of run lengths. A tile rewritten elsewhere leaves its old place unused.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>

static int tile_pixels(const RFILE *file) { return file->tiles->tile_width * file->tiles->tile_height; }

// An uncompressed tile of an existing file is written over.
static bool in_place(const RFILE *file, const natv_entry &entry)
{
    return file->access & RIO_ACCESS_ON_DISK && entry.offset != 0 && !natv_is_compressed(file->data_type)
           && !(file->flags & RIO_SCANNABLE);
}

int natv_begin_tile(RFILE *file, const natv_tile &tile, int64_t *at)
{
    const int64_t base = natv_header_end(file);
    *at = in_place(file, tile.entry) ? base + tile.entry.offset : natv_file_end(file);
    if (*at - base > UINT32_MAX)
        return rio_fail(file, RIO_BAD_SIZE, "ntvputti");
    return rio_byte_seek(file, *at) ? 1 : rio_fail(file, RIO_WRITE_FAILED, "ntvputti");
}

// Bytes that the active overview has grown by.
static void add_to_overview(RFILE *file, uint32_t bytes)
{
    if (file->active_overview < 0)
        return;
    if (uint8_t *entry = natv_overview_entry(file, file->active_overview)) {
        put_le_u32(entry + 4, le_u32(entry + 4) + bytes);
        put_le_u32(entry + 8, le_u32(entry + 8) + bytes);
        file->flags |= RIO_DIRECTORY_DIRTY;
    }
}

int natv_end_tile(RFILE *file, const natv_tile &tile, int64_t at)
{
    const int64_t end = rio_byte_tell(file), base = natv_header_end(file);
    if (end < at || end - at > UINT32_MAX)
        return rio_fail(file, RIO_WRITE_FAILED, "ntvputti");
    const uint32_t bytes = uint32_t(end - at);
    const bool again = in_place(file, tile.entry);
    natv_set_entry(file, tile.current, { uint32_t(at - base), again ? std::max(tile.entry.allocated, bytes) : bytes, bytes });
    if (!again)
        add_to_overview(file, bytes);
    natv(file)->file_end = std::max(natv(file)->file_end, end);
    file->tiles->next_free = std::max(file->tiles->next_free, end - base);
    return 1;
}

static void put_solid(RFILE *file, int32_t value)
{
    natv_set_entry(file, file->current_line, { 0, 0, uint32_t(value) });
}

static int write_rows(RFILE *file, int count, uint8_t **buffers)
{
    if (natv_is_jpeg(file->data_type))
        return jpeg_put_tile(file, count, buffers) != 0;
    const int64_t row_bytes = rio_tile_row_bytes(file);
    if (natv_tile_is_plain(file) && buffers[0])
        return rio_write_exact(file, buffers[0], row_bytes * file->height)
                   ? 1 : rio_fail(file, RIO_WRITE_FAILED, "ntvputti");
    if (natv_tile_is_interleaved(file)) {
        const natv_row row = natv_row_of(file, count, buffers);
        return natv_write_pixels(file, &row, int64_t{ file->width } * file->height);
    }
    for (; file->current_line < file->height; file->current_line++) {
        natv_row row = natv_row_of(file, count, buffers);
        for (int s = 0; s < row.planes; s++)
            row.plane[s] = row.plane[s] ? row.plane[s] + row_bytes * file->current_line : nullptr;
        if (!natv_write_row(file, &row))
            return 0;
    }
    return 1;
}

int natv_put_tile_check(RFILE *file)
{
    if (natv_u32(file, NATV_NEXT_IMAGE) != 0)
        return rio_fail(file, RIO_NO_IMAGE, "not last multi-image");
    if (rio_put_tile_check(file) != 0)
        return 0;
    return file->tiles->directory || natv_make_directory(file);
}

// Steps over a tile that `write` has put at its place.
template <typename WRITE> static int put_data(RFILE *file, WRITE write)
{
    const natv_tile outside = natv_enter_tile(file, file->current_line);
    int64_t at;
    const int done = natv_begin_tile(file, outside, &at) && write();
    natv_leave_tile(file, outside);
    if (!done)
        return natv_put_result(file, 0);
    if (!natv_end_tile(file, outside, at))
        return 0;
    file->current_line++;
    return tile_pixels(file);
}

int natv_put_tile(RFILE *file, int count, uint8_t **buffers, const int32_t *value)
{
    if (count != 1 && count != 3 && count != 4)
        return rio_fail(file, RIO_BAD_COUNT, "ntvputti");
    if (!natv_put_tile_check(file))
        return 0;
    if (value) {
        put_solid(file, *value);
        file->current_line++;
        return tile_pixels(file);
    }
    if (std::none_of(buffers, buffers + count, [](const uint8_t *b) { return b != nullptr; }))
        return rio_fail(file, RIO_NO_MEMORY, "ntvputti");
    return put_data(file, [&] { return write_rows(file, count, buffers); });
}

int natv_put_rle_tile(RFILE *file, const uint8_t *buffer, int size, const int32_t *value)
{
    if (!natv_put_tile_check(file))
        return 1;
    if (value) {
        put_solid(file, *value);
        file->current_line++;
        return 0;
    }
    if (!buffer || size < 0)
        return rio_fail_status(file, RIO_NO_MEMORY, "ntvputti");
    return put_data(file, [&] { return rio_write_exact(file, buffer, size); }) == 0;
}
