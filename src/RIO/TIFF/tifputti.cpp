// Tiles out: each is written as a picture of one strip, with a compression unit of its own.
#include "RIO/TIFF/tif.h"
#include <algorithm>

// A tile of one level; red is in bits 16 to 23 of a colour.
static int fill_solid(RFILE *file, uint8_t *block, int64_t plane_bytes, int planes, int32_t value)
{
    const int bits = file->bits_per_sample;
    if (bits > 8)
        return rio_fail(file, RIO_UNSUPPORTED, "solid tile");
    for (int s = 0; s < planes; s++) {
        const int colour = s < 3 ? value >> (16 - 8 * s) & 255 : 0;
        const int gray = bits == 1 && value ? 255 : value & 255;
        std::memset(block + s * plane_bytes, planes >= 3 ? colour : gray, size_t(plane_bytes));
    }
    return 1;
}

static int put_rows(RFILE *file, const tif_unit &unit, int count, uint8_t **planes)
{
    const rio_tiles *t = file->tiles;
    const int64_t apart = int64_t{t->tiles_across} * t->tiles_down, step = rio_tile_row_bytes(file);
    const bool in_place = file->access & RIO_ACCESS_MODIFY;
    for (int32_t row = 0; row < unit.rows; row++) {
        uint8_t *lines[TIF_MOST_SAMPLES] = {};
        for (int s = 0; s < count; s++)
            lines[s] = planes[s] ? planes[s] + row * step : nullptr;
        if (!(in_place ? tif_replace_row(file, unit, apart, row, count, lines) : tif_add_row(file, unit, count, lines)))
            return 0;
    }
    return in_place || tif_end_unit(file, unit, apart);
}

int tif_put_tile(RFILE *file, int count, uint8_t **buffers, const int32_t *value)
{
    tif_specs *specs = tif_of(file);
    if (file->access & RIO_ACCESS_MODIFY && specs->compression != TIF_UNCOMPRESSED)
        return rio_fail(file, RIO_MODIFY_MIDDLE, "Cannot modify compressed data");
    if (rio_put_tile_check(file) != 0)
        return 0;
    const rio_tiles *t = file->tiles;
    const tif_unit unit { 0, file->current_line, t->tile_width, t->tile_height };
    uint8_t *planes[TIF_MOST_SAMPLES] = {};
    int given = std::clamp<int>(count, 0, TIF_MOST_SAMPLES);
    std::copy_n(buffers, given, planes);
    mem_ptr<uint8_t> solid;
    if (value) {
        given = std::min<int>(specs->samples_per_pixel, TIF_MOST_SAMPLES);
        const int64_t plane_bytes = rio_tile_row_bytes(file) * t->tile_height;
        solid.reset(static_cast<uint8_t *>(mem_alloc(size_t(plane_bytes * given))));
        if (!solid)
            return rio_fail(file, RIO_NO_MEMORY, "Malloc Failed");
        if (!fill_solid(file, solid.get(), plane_bytes, given, *value))
            return 0;
        for (int s = 0; s < given; s++)
            planes[s] = solid.get() + s * plane_bytes;
    }
    if (!put_rows(file, unit, given, planes))
        return 0;
    tif_drop_strips(specs);
    file->current_line++;
    return int(std::min<int64_t>(int64_t{t->tile_width} * t->tile_height, INT32_MAX));
}
