// Tiles: each is read as a picture of one strip.
#include "RIO/TIFF/tif.h"
#include <algorithm>

// A tile that lies in the file as it is handed out.
static bool is_plain(const RFILE *file)
{
    const tif_specs *specs = tif_of(file);
    return tif_lies_plain(file, specs) && rio_tile_row_bytes(file) == tif_row_bytes(specs, file->tiles->tile_width);
}

int64_t tif_place_of_tile(RFILE *file, int64_t tile, int64_t *row_bytes)
{
    if (!is_plain(file))
        return -1;
    int64_t place;
    *row_bytes = rio_tile_row_bytes(file);
    return tif_unit_place(file, tif_of(file), tile, &place) >= *row_bytes * file->tiles->tile_height ? place : -1;
}

static int get_rows(RFILE *file, const tif_unit &unit, int64_t planes_apart, int count, uint8_t **buffers)
{
    uint8_t *rows[TIF_MOST_SAMPLES] = {};
    std::copy_n(buffers, count, rows);
    const int64_t step = rio_tile_row_bytes(file);
    if (is_plain(file) && rows[0])
        return tif_read_plain(file, tif_of(file), unit, 0, rows[0], step * unit.rows);
    for (int32_t row = 0; row < unit.rows; row++) {
        if (!tif_get_row(file, unit, planes_apart, row, count, rows))
            return 0;
        for (uint8_t *&at : rows)
            at = at ? at + step : nullptr;
    }
    return 1;
}

int tif_get_tile(RFILE *file, int count, uint8_t **buffers, int32_t *value)
{
    if (rio_tile_check(file) != 0)
        return 0;
    const rio_tiles *t = file->tiles;
    const tif_unit unit { 0, file->current_line, t->tile_width, t->tile_height };
    if (value)
        *value = -1;
    const int wanted = std::clamp<int>(count, 0, TIF_MOST_SAMPLES);
    if (!get_rows(file, unit, int64_t{t->tiles_across} * t->tiles_down, wanted, buffers))
        return file->error ? 0 : rio_fail(file, RIO_READ_FAILED, "tif_get_tile");
    file->current_line++;
    return int(std::min<int64_t>(int64_t{t->tile_width} * t->tile_height, INT32_MAX));
}

int tif_get_line_from_tile(RFILE *file, int count, uint8_t **lines)
{
    const bool single = tif_of(file)->samples_per_pixel == 1;
    const int got = rio_getlinefromtile(file, single ? std::min(count, 1) : count, lines);
    if (got)
        tif_finish_line(file, count, lines);
    return got;
}
