// interleave.cpp - pixel-interleaved lines of any format, made on top of its getline and putline.
#include "RIO/CORE/rio_format.h"
#include "RIO/CORE/split_pixels.h"

// Rows of a line's samples, one block behind another.
struct sample_rows {
    mem_ptr<uint8_t> block;
    uint8_t *row[4];
    int width;
    int step;       // bytes a pixel in the interleaved line
};

// 1 when the line is interleaved by the rows; 0 when it goes straight to the one-buffer call.
static int needs_rows(RFILE *file, int *samples)
{
    *samples = file->vlt && file->samples_per_pixel == 1 ? 3 : file->samples_per_pixel;
    return *samples > 1 && *samples <= 4 && file->bits_per_sample == 8;
}

static int rows_alloc(RFILE *file, int samples, sample_rows *rows)
{
    rows->width = file->flags & RIO_SQUETCH ? file->squetch->out_width : file->width;
    rows->block.reset((uint8_t *)mem_alloc(size_t(samples) * size_t(rows->width)));
    if (!rows->block)
        return rio_fail(file, RIO_NO_MEMORY, "interleaved line");
    for (int s = 0; s < samples; s++)
        rows->row[s] = rows->block.get() + size_t(s) * size_t(rows->width);
    rows->step = file->flags & RIO_PAD4 ? 4 : samples;
    return 1;
}

static void join_rows(const sample_rows &rows, int samples, uint8_t *line)
{
    if (samples == 3 && rows.step == 3) {
        rio_join_3(rows.row[0], rows.row[1], rows.row[2], rows.width, line);
        return;
    }
    for (int s = 0; s < samples; s++) {
        uint8_t *out = line + s;
        for (int x = 0; x < rows.width; x++, out += rows.step)
            *out = rows.row[s][x];
    }
}

static void split_rows(const uint8_t *line, int samples, const sample_rows &rows)
{
    if (samples == 3 && rows.step == 3) {
        rio_split_3(line, rows.width, rows.row[0], rows.row[1], rows.row[2]);
        return;
    }
    for (int s = 0; s < samples; s++) {
        const uint8_t *in = line + s;
        for (int x = 0; x < rows.width; x++, in += rows.step)
            rows.row[s][x] = *in;
    }
}

int rio_dummy_getline_interleaved(RFILE *file, uint8_t *buffer)
{
    if (!rio_valid(file, "Getline interleaved"))
        return 1;
    int samples;
    if (!needs_rows(file, &samples))
        return file->ops.getline(file, 1, &buffer);

    sample_rows rows;
    if (!rows_alloc(file, samples, &rows))
        return 0;
    // The rows themselves are planes.
    const uint32_t interleave = file->flags & RIO_INTERLEAVE;
    file->flags &= ~interleave;
    const int result = file->ops.getline(file, samples, rows.row);
    file->flags |= interleave;
    if (result != 0 && buffer)
        join_rows(rows, samples, buffer);
    return result;
}

int rio_dummy_putline_interleaved(RFILE *file, uint8_t *buffer)
{
    if (!rio_valid(file, "Putline interleaved"))
        return 1;
    int samples;
    if (!needs_rows(file, &samples))
        return file->ops.putline(file, 1, &buffer);

    sample_rows rows;
    if (!rows_alloc(file, samples, &rows))
        return 0;
    split_rows(buffer, samples, rows);
    const uint32_t interleave = file->flags & RIO_INTERLEAVE;
    file->flags &= ~interleave;
    const int result = file->ops.putline(file, samples, rows.row);
    file->flags |= interleave;
    return result;
}
