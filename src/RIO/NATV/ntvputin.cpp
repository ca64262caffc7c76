// ntvputin.cpp - writes lines of interleaved pixels.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"

static bool has_interleaved_lines(const RFILE *file)
{
    switch (file->data_type) {
    case RIO_TYPE_RGB_RLE: return true;
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_4_BYTE_RUN:
    case RIO_TYPE_RGB:
    case RIO_TYPE_JPEG_RGB:
    case RIO_TYPE_JPEG_4:
    case RIO_TYPE_4: return !(file->flags & RIO_SCANNABLE);
    default: return false;
    }
}

// Whole pixels go out as they stand.
static int write_pixels(RFILE *file, const uint8_t *buffer)
{
    const int64_t stride = natv_stride(file);
    if (file->access & RIO_ACCESS_ON_DISK && !rio_byte_seek(file, natv_data_start(file) + stride * file->current_line))
        return 0;
    const int64_t pixels = int64_t{ file->samples_per_pixel } * file->width;
    return rio_write_exact(file, buffer, pixels) && rio_write_zeros(file, stride - pixels) ? file->width : 0;
}

static int write_planes(RFILE *file, const uint8_t *buffer, int step)
{
    const int samples = file->samples_per_pixel;
    const int64_t width = file->width;
    mem_ptr<uint8_t> block((uint8_t *)mem_alloc(size_t(samples * width)));
    if (!block)
        return rio_fail(file, RIO_NO_MEMORY, "ntvputin");
    uint8_t *lines[NATV_PLANES] = {};
    for (int s = 0; s < samples && s < NATV_PLANES; s++) {
        lines[s] = block.get() + s * width;
        for (int64_t x = 0; x < width; x++)
            lines[s][x] = buffer[x * step + s];
    }
    const natv_row row = natv_row_of(file, samples, lines);
    return natv_write_row(file, &row);
}

int natv_put_interleaved(RFILE *file, uint8_t *buffer)
{
    if (file->flags & RIO_TILED)
        return rio_dummy_putline_interleaved(file, buffer);
    if (natv_put_check(file, true) != 0)
        return 0;
    if (!has_interleaved_lines(file))
        return rio_fail(file, RIO_NOT_STANDARD, "ntvputin");
    const int step = file->flags & RIO_PAD4 ? 4 : file->samples_per_pixel;
    const bool as_they_stand = !natv_is_compressed(file->data_type) && step == file->samples_per_pixel;
    const int64_t began = natv_begin_put(file);
    const int pixels = natv_put_result(file, as_they_stand ? write_pixels(file, buffer)
                                             : natv_is_jpeg(file->data_type) ? jpeg_put_lines(file, 1, &buffer)
                                                                             : write_planes(file, buffer, step));
    natv_end_put(file, began);
    return pixels;
}
