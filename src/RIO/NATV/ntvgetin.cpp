// ntvgetin.cpp - reads lines of interleaved pixels.
#include "RIO/NATV/ntv.h"
#include <cstring>

static const char *const WARNING = "rio_get_line:WARNING - data size doesn't match data size in header.";

static bool has_interleaved_lines(const RFILE *file)
{
    const bool scannable = file->flags & RIO_SCANNABLE;
    switch (file->data_type) {
    case RIO_TYPE_RGB_RLE:
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_4_BYTE_RUN:
    case RIO_TYPE_RGB: return true;
    case RIO_TYPE_BYTE_RUN:
    case RIO_TYPE_JPEG:
    case RIO_TYPE_JPEG_RGB:
    case RIO_TYPE_JPEG_4:
    case RIO_TYPE_4: return !scannable;
    default: return false;
    }
}

// Bytes a pixel in the caller's line. Byte runs of gray go to every third byte, whatever the line's own step; this is
// meant.
static int step_of(const RFILE *file)
{
    if (file->data_type == RIO_TYPE_BYTE_RUN)
        return 3;
    return file->flags & RIO_PAD4 ? 4 : file->samples_per_pixel;
}

int natv_get_interleaved(RFILE *file, uint8_t *buffer)
{
    // Files of one sample through colour tables, squeezed lines and tiles go by the common road.
    if (file->flags & (RIO_SQUETCH | RIO_TILED))
        return file->samples_per_pixel > 1 && !(file->flags & RIO_SQUETCH) ? natv_getline(file, 1, &buffer)
                                                                          : rio_dummy_getline_interleaved(file, buffer);
    if (rio_read_check(file) != 0)
        return 0;
    uint8_t *none[1] = { nullptr };
    if (!buffer)
        return natv_get_line(file, 1, none);
    if (!has_interleaved_lines(file))
        return rio_fail(file, RIO_NOT_STANDARD, "ntvgetin");
    const int step = step_of(file);
    natv_row row = natv_row_of(file, 0, nullptr);
    row.step = step;
    for (int s = 0; s < row.planes; s++)
        row.plane[s] = buffer + s;
    const int64_t got = natv_read_row(file, &row);
    // The fourth byte that no sample fills.
    if (step == 4 && row.planes == 3)
        for (int64_t x = 0; x < row.width; x++)
            buffer[4 * x + 3] = 0;
    const int result = natv_line_result(file, got, WARNING);
    if (result || file->error == RIO_READ_FAILED) {
        file->current_line++;
        natv_note_line(file);
    }
    return result;
}
