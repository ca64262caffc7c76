// ntvgetli.cpp - reads the lines of uncompressed native files.
#include "RIO/NATV/ntv.h"

// A file that is written as well keeps one position for both: it is set before each line.
static int find_line(RFILE *file, int64_t stride)
{
    if (!(file->access & RIO_ACCESS_ON_DISK))
        return 1;
    return rio_byte_seek(file, natv_data_start(file) + stride * file->current_line);
}

static int skip_line(RFILE *file, int64_t stride)
{
    return rio_byte_seek(file, natv_data_start(file) + stride * (int64_t{ file->current_line } + 1));
}

// The general buffer, a line long; null with RIO_NO_MEMORY.
static uint8_t *line_scratch(RFILE *file, int64_t bytes)
{
    if (!file->scratch)
        file->scratch = mem_alloc(size_t(bytes));
    if (!file->scratch)
        rio_fail(file, RIO_NO_MEMORY, "ntvgetli");
    return (uint8_t *)file->scratch;
}

template <int SAMPLES> static void split_one(const uint8_t *in, uint8_t *out, int width)
{
    for (int x = 0; x < width; x++)
        out[x] = in[SAMPLES * x];
}

static void split_three(const uint8_t *in, uint8_t **lines, int width)
{
    uint8_t *first = lines[0], *second = lines[1], *third = lines[2];
    for (int x = 0; x < width; x++) {
        first[x] = in[3 * x];
        second[x] = in[3 * x + 1];
        third[x] = in[3 * x + 2];
    }
}

// Samples of interleaved pixels to the planes that are wanted.
static void split(const uint8_t *in, uint8_t **lines, int count, int samples, int width)
{
    if (samples == 3 && count >= 3 && lines[0] && lines[1] && lines[2]) {
        split_three(in, lines, width);
        return;
    }
    for (int s = 0; s < count && s < samples; s++)
        if (lines[s])
            samples == 3 ? split_one<3>(in + s, lines[s], width) : split_one<4>(in + s, lines[s], width);
}

static bool none_wanted(int count, uint8_t **lines)
{
    for (int s = 0; s < count; s++)
        if (lines[s])
            return false;
    return true;
}

static int read_samples(RFILE *file, int count, uint8_t **lines, int64_t stride)
{
    const bool interleaved = file->data_type == RIO_TYPE_RGB || file->data_type == RIO_TYPE_4;
    uint8_t *into = interleaved || !lines[0] ? line_scratch(file, stride) : lines[0];
    if (!into)
        return 0;
    if (!find_line(file, stride) || !rio_read_exact(file, into, stride))
        return rio_fail(file, RIO_READ_FAILED, "ntvgetli");
    if (interleaved) {
        split(into, lines, count, file->samples_per_pixel, file->width);
        return 1;
    }
    // Colours are of byte samples; wider ones and bits go to the other planes as they are.
    if (count >= 3 && file->data_type == RIO_TYPE_BYTE)
        rio_translate_line(file, into, lines[1], lines[2], file->width);
    return 1;
}

int natv_get_line(RFILE *file, int count, uint8_t **lines)
{
    if (count != 1 && count != 3 && count != 4)
        return rio_fail(file, RIO_BAD_COUNT, "ntvgetli");
    const int64_t stride = natv_stride(file);
    if (stride == 0 || file->flags & (RIO_TILED | RIO_SCANNABLE))
        return rio_fail(file, RIO_UNSUPPORTED, "ntvgetli");
    if (none_wanted(count, lines)) {
        if (!skip_line(file, stride))
            return rio_fail(file, RIO_READ_FAILED, "ntvgetli");
    } else if (!read_samples(file, count, lines, stride)) {
        return 0;
    }
    file->current_line++;
    return file->width;
}
