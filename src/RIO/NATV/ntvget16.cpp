// ntvget16.cpp - reads lines and tiles of 16-bit samples: type 3, and type 10 with its values whole.
#include "RIO/NATV/ntv.h"

static const char *const WARNING = "rio_get_line: WARNING data size doesn't match data size in header";

int natv_get_line16(RFILE *file, int count, uint8_t **lines)
{
    if (count != 1)
        return rio_fail(file, RIO_BAD_COUNT, "ntvget16");
    if (file->data_type != RIO_TYPE_16 && file->data_type != RIO_TYPE_BYTE_RLE)
        return rio_fail(file, RIO_NOT_STANDARD, "ntvget16");
    natv_row row = natv_row_of(file, count, lines);
    row.bits = 16;
    const int64_t got = natv_read_row(file, &row);
    if (file->error == RIO_NO_MEMORY)
        return 0;
    file->current_line++;
    natv_note_line(file);
    return natv_line_result(file, got, WARNING);
}

int natv_getline16(RFILE *file, int count, uint8_t **lines)
{
    if (rio_read_check(file) != 0)
        return 0;
    if (file->flags & RIO_SQUETCH)
        return rio_fail(file, RIO_UNSUPPORTED, "ntvget16");
    if (count != 1)
        return rio_fail(file, RIO_BAD_COUNT, "ntvget16");
    if (!(file->flags & RIO_TILED))
        return natv_get_line16(file, count, lines);
    file->flags |= RIO_SAMPLES_16;
    const int result = rio_getlinefromtile(file, count, lines);
    file->flags &= ~uint32_t(RIO_SAMPLES_16);
    return result;
}

int natv_get_tile16(RFILE *file, int count, uint8_t **buffers, int32_t *value)
{
    if (count != 1)
        return rio_fail(file, RIO_BAD_COUNT, "ntvget16");
    const uint32_t held = file->flags & RIO_SAMPLES_16;
    file->flags |= RIO_SAMPLES_16;
    const int pixels = natv_get_tile(file, count, buffers, value);
    file->flags = (file->flags & ~uint32_t(RIO_SAMPLES_16)) | held;
    return pixels;
}
