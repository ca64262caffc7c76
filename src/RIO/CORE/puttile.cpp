// puttile.cpp - lines into tiles: a strip collects a row of tiles, which leaves at the strip's last line.
#include "RIO/CORE/rio_format.h"
#include <algorithm>
#include <cstring>

static int check_place(RFILE *file)
{
    if (!(file->flags & RIO_TILED) || !file->tiles)
        return rio_fail_status(file, RIO_TILED_ONLY, "rio_put_tile");
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "rio_put_tile");
    if (file->flags & RIO_RAW)
        return rio_fail_status(file, RIO_NOT_STANDARD, "raw file cannot be tiled");
    return file->flags & RIO_HEADER_DONE ? 0 : rio_header_out(file);
}

int rio_put_tile_check(RFILE *file)
{
    if (check_place(file) != 0)
        return 1;
    if (file->current_line < 0
        || file->current_line >= int64_t{ file->tiles->tiles_across } * file->tiles->tiles_down)
        return rio_fail_status(file, RIO_PAST_END, "rio_put_tile");
    return 0;
}

enum { MOST_PLANES = 5 };

static int strip_planes(const RFILE *file)
{
    return std::clamp<int>(file->samples_per_pixel, 1, MOST_PLANES);
}

// A strip's rows are of whole tiles, so that a short edge tile is padded by zero.
static int64_t strip_row_bytes(const RFILE *file)
{
    return rio_tile_row_bytes(file) * file->tiles->tiles_across;
}

static int strip_alloc(RFILE *file)
{
    rio_tiles *t = file->tiles;
    for (int s = 0; s < strip_planes(file); s++) {
        if (!t->strip[s])
            t->strip[s] = (uint8_t *)mem_calloc(size_t(t->tile_height), size_t(strip_row_bytes(file)));
        if (!t->strip[s])
            return rio_fail(file, RIO_NO_MEMORY, "putlinetotile");
    }
    return 1;
}

static void strip_free(rio_tiles *t)
{
    for (uint8_t *&strip : t->strip) {
        mem_free(strip);
        strip = nullptr;
    }
}

// Writes the strip out, tile by tile, as row `row` of the tiles, and clears it.
static int flush_strip(RFILE *file, int row)
{
    rio_tiles *t = file->tiles;
    const int planes = strip_planes(file);
    const int64_t tile_row = rio_tile_row_bytes(file), strip_row = strip_row_bytes(file);
    const int64_t tile_bytes = tile_row * t->tile_height;
    mem_ptr<uint8_t> block((uint8_t *)mem_alloc(size_t(tile_bytes * planes)));
    if (!block)
        return rio_fail(file, RIO_NO_MEMORY, "putlinetotile");
    uint8_t *tile[MOST_PLANES] = {};
    for (int s = 0; s < planes; s++)
        tile[s] = block.get() + s * tile_bytes;

    for (int column = 0; column < t->tiles_across; column++) {
        for (int s = 0; s < planes; s++)
            for (int y = 0; y < t->tile_height; y++)
                std::memcpy(tile[s] + y * tile_row, t->strip[s] + y * strip_row + column * tile_row, size_t(tile_row));
        file->current_line = row * t->tiles_across + column;
        // A dummy slot answers 1: its error tells.
        if (file->ops.puttile(file, planes, tile, nullptr) == 0 || file->error != 0)
            return 0;
    }
    for (int s = 0; s < planes; s++)
        std::memset(t->strip[s], 0, size_t(strip_row * t->tile_height));
    return 1;
}

int rio_putlinetotile(RFILE *file, int count, uint8_t **lines)
{
    if (check_place(file) != 0)
        return 0;
    rio_tiles *t = file->tiles;
    const int line = file->current_line;
    if (line >= file->height)
        return rio_fail(file, RIO_PAST_END, "rio_put_tile");
    if (line != t->next_line)
        return rio_fail(file, RIO_LINE_ORDER, "putlinetotile");
    if (!strip_alloc(file))
        return 0;
    for (int s = 0; s < std::min(count, strip_planes(file)); s++)
        if (lines[s])
            std::memcpy(t->strip[s] + (line % t->tile_height) * strip_row_bytes(file), lines[s],
                        size_t(rio_line_bytes(file)));
    if (line % t->tile_height == t->tile_height - 1 || line == file->height - 1) {
        const int done = flush_strip(file, line / t->tile_height);
        file->current_line = line;
        if (!done)
            return 0;
    }
    t->next_line = line + 1;
    if (t->next_line == file->height)
        strip_free(t);
    file->current_line = line + 1;
    return file->width;
}

static void plane_list(int count, const void *const *buffers, uint8_t **planes)
{
    for (int i = 0; i < count; i++)
        planes[i] = buffers ? (uint8_t *)buffers[i] : nullptr;
}

int rio_puttile(RFILE *file, int count, const void *const *buffers, const int32_t *value)
{
    if (!rio_enter(file, "rio_puttile"))
        return 1;
    uint8_t *planes[MOST_PLANES] = {};
    const int n = std::clamp<int>(count, 0, MOST_PLANES);
    plane_list(n, buffers, planes);
    const int result = file->ops.puttile(file, n, planes, value);
    rio_leave(file);
    return result == 0;
}

int rio_puttile16(RFILE *file, const void *buffer, const int32_t *value)
{
    if (!rio_enter(file, "rio_puttile16"))
        return 1;
    uint8_t *planes[1] = { (uint8_t *)buffer };
    const int result = file->ops.puttile16(file, 1, planes, value);
    rio_leave(file);
    return result == 0;
}

int rio_putrletile(RFILE *file, const void *buffer, int size, const int32_t *value)
{
    if (!rio_enter(file, "rio_putrletile"))
        return 1;
    const int result = file->ops.putrletile ? file->ops.putrletile(file, (const uint8_t *)buffer, size, value)
                                            : rio_fail_status(file, RIO_UNSUPPORTED, "Putrletile");
    rio_leave(file);
    return result;
}
