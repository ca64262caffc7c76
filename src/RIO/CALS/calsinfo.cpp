#include "RIO/CALS/cals.h"
#include <algorithm>
#include <cstring>

// ---- orientation -----------------------------------------------------------------------------------------------------

// By scan-line code: the direction in which pixels follow one another, anticlockwise from rightward, and that in which
// lines do, counted from the first one.
static constexpr cals_pair pairs[] = {
    { 270, 90 }, { 270, 270 }, { 90, 270 }, { 90, 90 }, { 0, 270 }, { 180, 90 }, { 0, 90 }, { 180, 270 },
};
static constexpr int32_t ROWS_DOWN = 4;

cals_pair cals_pair_of(int32_t orientation) { return pairs[orientation & 7]; }

// Some encoders give the second direction as the first, from rightward. One of 0 or 180 can only be that: lines do not
// follow along themselves.
int32_t cals_orientation_of(cals_pair pair)
{
    if (pair.lines == 0 || pair.lines == 180)
        pair.lines = (pair.lines - pair.pels % 360 + 360) % 360;
    for (int32_t code = 0; code < 8; code++)
        if (pairs[code].pels == pair.pels && pairs[code].lines == pair.lines)
            return code;
    return ROWS_DOWN;
}

// New files have rows, or columns from the right.
static int32_t allowed_orientation(int32_t code)
{
    return code >= 3 && code <= 6 ? code : ROWS_DOWN;
}

// ---- keys ------------------------------------------------------------------------------------------------------------

int cals_get_hdr_data(RFILE *file, int key, void *value)
{
    if (key == RIO_KEY_ORIENTATION)
        return rio_answer(value, cals_of(file)->orientation);
    return rio_plain_get_hdr_data(file, key, value);
}

static int set_tile_size(RFILE *file, int32_t size)
{
    if (size != 0 && size != CALS_TILE_SIZE)
        return rio_fail_status(file, RIO_BAD_TILE_SIZE, "CALS tile size");
    return rio_set_tile_size(file, size, size);
}

int cals_set_hdr_data(RFILE *file, int key, const void *value)
{
    int32_t number = 0;
    if (key == RIO_KEY_STRIP_LINES || key == RIO_KEY_ORIENTATION || key == RIO_KEY_TILE_WIDTH || key == RIO_KEY_TILE_HEIGHT)
        memcpy(&number, value, sizeof number);
    if (key == RIO_KEY_STRIP_LINES) {
        if (file->ccitt && file->access & RIO_ACCESS_READ)
            cit_set_block_lines(file, number);
        return 0;
    }
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    switch (key) {
    case RIO_KEY_ORIENTATION: cals_of(file)->orientation = allowed_orientation(number); return 0;
    case RIO_KEY_TILE_WIDTH:
    case RIO_KEY_TILE_HEIGHT: return set_tile_size(file, number);
    default: return rio_plain_set_hdr_data(file, key, value);
    }
}

int cals_get_stat(RFILE *file, rio_stat *stat)
{
    rio_plain_get_stat(file, stat);
    stat->orientation = cals_of(file)->orientation;
    return 0;
}

int cals_set_stat(RFILE *file, const rio_stat *stat)
{
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    if (rio_plain_set_stat(file, stat))
        return 1;
    cals_of(file)->orientation = allowed_orientation(stat->orientation);
    return 0;
}

// ---- places ----------------------------------------------------------------------------------------------------------

// A tiled file is sought by line or by tile.
static int seek_line(RFILE *file, int line)
{
    if (line < 0 || line >= std::max<int64_t>(file->height, cals_of(file)->tile_count))
        return rio_fail_status(file, RIO_PAST_END, "CALS seek");
    file->current_line = line;
    return 0;
}

int cals_seek(RFILE *file, int line)
{
    return file->flags & RIO_SQUETCH ? rio_squetch_seek(file, line, "CALS squetch", seek_line) : seek_line(file, line);
}

int64_t cals_get_image_offset(RFILE *file) { return cals_data_start(file); }
