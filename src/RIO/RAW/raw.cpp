// raw.cpp - files without a header: rows of `width` bytes from image_offset on. No header is ever written.
#include "RIO/CORE/rio_format.h"

// One byte row, as it lies in the file.
static int raw_get_line(RFILE *file, int count, uint8_t **lines)
{
    if (count != 1)
        return rio_fail(file, RIO_BAD_COUNT, "Raw getline");
    if (!lines[0])
        return rio_fail(file, RIO_NO_OUTPUT, "Raw getline");
    if (!rio_read_exact(file, lines[0], file->width))
        return rio_fail(file, RIO_READ_FAILED, "Raw getline");
    file->current_line++;
    return file->width;
}

static int64_t raw_place_of_lines(RFILE *file, int *)
{
    return file->access == RIO_ACCESS_READ ? rio_byte_tell(file) : -1;
}

static int raw_getline(RFILE *file, int count, uint8_t **lines)
{
    return count == 1 ? rio_common_getline(file, count, lines) : rio_fail(file, RIO_BAD_COUNT, "Raw getline");
}

static int raw_putline(RFILE *file, int count, uint8_t **lines)
{
    if (count != 1)
        return rio_fail(file, RIO_BAD_COUNT, "Raw putline");
    if (rio_write_check(file) != 0)
        return 0;
    if (!lines[0])
        return rio_fail(file, RIO_NO_OUTPUT, "Raw putline");
    if (!rio_write_exact(file, lines[0], file->width))
        return rio_fail(file, RIO_WRITE_FAILED, "Raw putline");
    return file->width;
}

static int raw_plain_seek(RFILE *file, int line)
{
    if (line < 0 || line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "Raw Seek");
    if (!rio_byte_seek(file, file->image_offset + int64_t{ line } * file->width))
        return rio_fail_status(file, RIO_READ_FAILED, "Raw Seek");
    file->current_line = line;
    return 0;
}

static int raw_seek(RFILE *file, int line)
{
    if (file->flags & RIO_SQUETCH)
        return rio_squetch_seek(file, line, "Raw Squetch", raw_plain_seek);
    return raw_plain_seek(file, line);
}

static void raw_rewind(RFILE *file) { raw_plain_seek(file, 0); }

// Key 403 by 1, any other by 0.
static int raw_get_hdr_data(RFILE *, int key, void *value)
{
    return rio_answer(value, key == RIO_KEY_IMAGE_CLASS ? 1 : 0);
}

static int raw_write_header(RFILE *file)
{
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

static int64_t raw_get_image_offset(RFILE *file) { return file->image_offset; }

void raw_bind(RFILE *file)
{
    rio_ops ops {};
    ops.getline = raw_getline;
    ops.get_line = raw_get_line;
    ops.putline = raw_putline;
    ops.put_line = raw_putline;
    ops.get_hdr_data = raw_get_hdr_data;
    ops.get_stat = rio_plain_get_stat;
    ops.get_format = rio_plain_get_format;
    ops.wrt_hdr = raw_write_header;
    ops.seek = raw_seek;
    ops.rewind = raw_rewind;
    ops.close = rio_plain_close;
    ops.free_specs = rio_plain_free_specs;
    ops.randomize = rio_plain_randomize;
    ops.get_image_offset = raw_get_image_offset;
    ops.place_of_lines = raw_place_of_lines;
    file->ops = ops;
}
