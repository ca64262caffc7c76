// ntvputli.cpp - writes the lines of uncompressed native files.
#include "RIO/NATV/ntv.h"

static uint8_t *line_scratch(RFILE *file, int64_t bytes)
{
    if (!file->scratch)
        file->scratch = mem_calloc(1, size_t(bytes));
    if (!file->scratch)
        rio_fail(file, RIO_NO_MEMORY, "ntvputli");
    return (uint8_t *)file->scratch;
}

// Planes to interleaved pixels; a plane that is not given is zero.
static void weave(uint8_t *out, uint8_t **lines, int count, int samples, int width)
{
    for (int s = 0; s < samples; s++) {
        const uint8_t *in = s < count ? lines[s] : nullptr;
        for (int x = 0; x < width; x++)
            out[samples * x + s] = in ? in[x] : uint8_t{ 0 };
    }
}

int natv_put_line(RFILE *file, int count, uint8_t **lines)
{
    if (count != 1 && count != 3 && count != 4)
        return rio_fail(file, RIO_BAD_COUNT, "ntvputli");
    const int64_t stride = natv_stride(file);
    if (stride == 0 || file->flags & (RIO_TILED | RIO_SCANNABLE))
        return rio_fail(file, RIO_UNSUPPORTED, "ntvputli");
    const uint8_t *line = lines[0];
    if (file->data_type == RIO_TYPE_RGB || file->data_type == RIO_TYPE_4) {
        uint8_t *woven = line_scratch(file, stride);
        if (!woven)
            return 0;
        weave(woven, lines, count, file->samples_per_pixel, file->width);
        line = woven;
    }
    if (!line)
        return rio_fail(file, RIO_NO_OUTPUT, "ntvputli");
    // A file that is read as well keeps one position for both.
    if (file->access & RIO_ACCESS_ON_DISK && !rio_byte_seek(file, natv_data_start(file) + stride * file->current_line))
        return rio_fail(file, RIO_WRITE_FAILED, "ntvputli");
    if (!rio_write_exact(file, line, stride))
        return rio_fail(file, RIO_WRITE_FAILED, "ntvputli");
    return file->width;
}
