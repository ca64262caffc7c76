// ntvpos.cpp - where the lines of an uncompressed image lie.
#include "RIO/NATV/ntv.h"

int64_t natv_data_start(const RFILE *file)
{
    return file->image_offset + 2 * int64_t{ natv_u16(file, NATV_WORDS) } + 4;
}

int64_t natv_stride(const RFILE *file)
{
    const int64_t width = file->width;
    switch (file->data_type) {
    case RIO_TYPE_BITMAP:
    case RIO_TYPE_BYTE:
    case RIO_TYPE_16:
    case RIO_TYPE_32:
    case RIO_TYPE_32B:
    case RIO_TYPE_64:
    case RIO_TYPE_64B:
    case RIO_TYPE_128: return rio_line_bytes(file);
    case RIO_TYPE_RGB: return 3 * width + (file->flags & RIO_PAD_LINE && width % 2 ? 1 : 0);
    case RIO_TYPE_4: return file->samples_per_pixel * width;
    default: return 0;
    }
}

void natv_find_line_pad(RFILE *file)
{
    file->flags &= ~uint32_t(RIO_PAD_LINE);
    if (file->data_type != RIO_TYPE_RGB || file->width % 2 == 0 || file->flags & RIO_TILED)
        return;
    const int64_t plain = 3 * int64_t{ file->width } * file->height;
    if (rio_file_size(file) - natv_data_start(file) == plain + file->height)
        file->flags |= RIO_PAD_LINE;
}

static int plain_seek(RFILE *file, int line)
{
    if (line < 0 || line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "Natv Seek");
    const int64_t stride = natv_stride(file);
    if (file->flags & RIO_TILED) {
        file->current_line = line;
        return 0;
    }
    if (stride == 0 || file->flags & RIO_SCANNABLE)
        return rio_fail_status(file, RIO_UNSUPPORTED, "Natv Seek");
    if (!rio_byte_seek(file, natv_data_start(file) + stride * line))
        return rio_fail_status(file, RIO_READ_FAILED, "Natv Seek");
    file->current_line = line;
    return 0;
}

int natv_seek(RFILE *file, int line)
{
    if (file->flags & RIO_SQUETCH)
        return rio_squetch_seek(file, line, "Natv squetch", plain_seek);
    return plain_seek(file, line);
}

void natv_rewind(RFILE *file)
{
    file->current_line = 0;
    rio_byte_seek(file, natv_data_start(file));
}
