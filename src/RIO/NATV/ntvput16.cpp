// ntvput16.cpp - writes lines and tiles of 16-bit samples.
#include "RIO/NATV/ntv.h"

static int write_row16(RFILE *file, uint8_t *line)
{
    if (file->data_type != RIO_TYPE_16 && file->data_type != RIO_TYPE_BYTE_RLE)
        return rio_fail(file, RIO_NOT_STANDARD, "ntvput16");
    natv_row row = natv_row_of(file, 1, &line);
    row.bits = 16;
    return natv_write_row(file, &row);
}

int natv_put_line16(RFILE *file, int count, uint8_t **lines)
{
    if (count != 1)
        return rio_fail(file, RIO_BAD_COUNT, "ntvput16");
    const int64_t began = natv_begin_put(file);
    const int pixels = natv_put_result(file, write_row16(file, lines[0]));
    natv_end_put(file, began);
    return pixels;
}

int natv_putline16(RFILE *file, int count, uint8_t **lines)
{
    if (natv_put_check(file, true) != 0)
        return 0;
    if (count != 1)
        return rio_fail(file, RIO_BAD_COUNT, "ntvput16");
    if (!(file->flags & RIO_TILED))
        return natv_put_line16(file, count, lines);
    file->flags |= RIO_SAMPLES_16;
    const int result = rio_putlinetotile(file, count, lines);
    file->flags &= ~uint32_t(RIO_SAMPLES_16);
    return result;
}

// Rows of a tile that cannot be written at once lie four bytes a pixel of the tile's width apart on types 3 and 10; this
// is meant. The strip of lines hands its tiles over row by row behind each other.
static int64_t row_step(const RFILE *file)
{
    return 4 * int64_t{ file->tiles->tile_width };
}

static int write_rows16(RFILE *file, uint8_t *buffer, int64_t step)
{
    if (natv_tile_is_plain(file))
        return rio_write_exact(file, buffer, rio_tile_row_bytes(file) * file->height);
    for (; file->current_line < file->height; file->current_line++)
        if (!write_row16(file, buffer + step * file->current_line))
            return 0;
    return 1;
}

int natv_put_tile16(RFILE *file, int count, uint8_t **buffers, const int32_t *value)
{
    if (count != 1)
        return rio_fail(file, RIO_BAD_COUNT, "ntvput16");
    if (value || !buffers[0])
        return natv_put_tile(file, count, buffers, value);
    if (!natv_put_tile_check(file))
        return 0;
    // The strip's tiles come with the flag set, and rows behind each other.
    const bool of_strip = file->flags & RIO_SAMPLES_16;
    const int64_t step = of_strip ? rio_tile_row_bytes(file) : row_step(file);
    const natv_tile outside = natv_enter_tile(file, file->current_line);
    int64_t at;
    const int done = natv_begin_tile(file, outside, &at) && write_rows16(file, buffers[0], step);
    natv_leave_tile(file, outside);
    if (!done)
        return natv_put_result(file, 0);
    if (!natv_end_tile(file, outside, at))
        return 0;
    file->current_line++;
    return file->tiles->tile_width * file->tiles->tile_height;
}
