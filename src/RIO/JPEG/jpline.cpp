// jpline.cpp - lines of JPEG data: decoded band after band, or whole for a reader that steps back; coded as they come in order,
// and written when the last has come.
#include "RIO/JPEG/jp.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

// Bytes a pixel of the caller's buffer; 0 when he has planes.
static int pixel_step(const RFILE *file)
{
    return !(file->flags & RIO_INTERLEAVE) ? 0 : file->flags & RIO_PAD4 ? 4 : jpeg_samples(file);
}

// ---- get -------------------------------------------------------------------------------------------------------------

static bool wanted(int count, uint8_t *const *planes)
{
    return std::any_of(planes, planes + count, [](const uint8_t *p) { return p != nullptr; });
}

// What a refused mode is called stays; damage is a failed read.
static int fail_to_decode(RFILE *file)
{
    file->jpeg->damaged = file->error != RIO_NO_MEMORY;
    if (file->error == RIO_JPEG_HW2 && file->data_type != RIO_TYPE_JPEG_4)
        rio_fail(file, RIO_READ_FAILED, "jpline");
    return 0;
}

// Lines that are decoded or coded at a stroke: they stay in the processor's cache.
static int band_rows(const RFILE *file)
{
    enum { BAND_BYTES = 1 << 18, STEP = 16 };
    const int64_t fit = BAND_BYTES / (int64_t{ jpeg_width(file) } * jpeg_samples(file)) / STEP * STEP;
    return int(std::clamp<int64_t>(fit, STEP, std::max<int>(STEP, jpeg_height(file))));
}

// Rows from `first` on into `pixels`. 0 with the error set, and nothing held.
static int decode_rows(RFILE *file, int first, int rows)
{
    jpeg_state *jpeg = file->jpeg;
    jpeg->first_row = first;
    jpeg->rows = std::min(rows, jpeg_height(file) - first);
    if (jpeg_decompress_rows(file, first, jpeg->rows, jpeg->pixels) == 0)
        return 1;
    jpeg_drop_pixels(jpeg);
    return fail_to_decode(file);
}

// Begins at the top of the picture, with room for so many rows at a time.
static int start_decoding(RFILE *file, int rows)
{
    jpeg_state *jpeg = file->jpeg;
    jpeg_drop_pixels(jpeg);
    if (jpeg_read_coded(file) != 0)
        return fail_to_decode(file);
    const int64_t row_bytes = int64_t{ jpeg_width(file) } * jpeg_samples(file);
    jpeg->pixels = (uint8_t *)mem_alloc(size_t(row_bytes * std::min(rows, jpeg_height(file)) + 12));
    return jpeg->pixels ? decode_rows(file, 0, rows) : rio_fail(file, RIO_NO_MEMORY, "jpline");
}

// A reader that goes down gets band after band. One that steps back gets the whole picture decoded once, and then only copies.
static int hold_line(RFILE *file, int line)
{
    jpeg_state *jpeg = file->jpeg;
    if (jpeg->damaged)
        return rio_fail(file, file->data_type == RIO_TYPE_JPEG_4 ? RIO_JPEG_HW2 : RIO_READ_FAILED, "jpline");
    if (!jpeg->pixels && !start_decoding(file, band_rows(file)))
        return 0;
    if (line < jpeg->first_row && !start_decoding(file, jpeg_height(file)))
        return 0;
    while (line >= jpeg->first_row + jpeg->rows)
        if (!decode_rows(file, jpeg->first_row + jpeg->rows, band_rows(file)))
            return 0;
    return 1;
}

static void give_pixels(const uint8_t *row, int samples, int64_t width, int step, uint8_t *out)
{
    if (step == samples) {
        std::memcpy(out, row, size_t(samples * width));
        return;
    }
    for (int64_t x = 0; x < width; x++)
        for (int s = 0; s < step; s++)
            out[step * x + s] = s < samples ? row[samples * x + s] : uint8_t{ 0 };
}

static void give_planes(const uint8_t *row, int samples, int width, int count, uint8_t *const *planes, int64_t at)
{
    if (samples == 1) {
        std::memcpy(planes[0] + at, row, size_t(width));
        return;
    }
    if (samples == 3 && count >= 3 && planes[0] && planes[1] && planes[2]) {
        rio_split_3(row, width, planes[0] + at, planes[1] + at, planes[2] + at);
        return;
    }
    for (int s = 0; s < std::min(count, samples); s++)
        for (int x = 0; planes[s] && x < width; x++)
            planes[s][at + x] = row[samples * x + s];
}

void jpeg_give_row(const RFILE *file, const uint8_t *row, int width, int count, uint8_t *const *planes, int64_t at)
{
    const int samples = jpeg_samples(file), step = pixel_step(file);
    if (step && samples > 1)
        give_pixels(row, samples, width, step, planes[0] + step * at);
    else
        give_planes(row, samples, width, count, planes, at);
}

int jpeg_get_lines(RFILE *file, int plane_count, uint8_t *const *planes)
{
    if (!wanted(plane_count, planes))
        return file->width;
    if (!file->jpeg && jpeg_check_open(file) != 0)
        return 0;
    jpeg_state *jpeg = file->jpeg;
    // Lines that have been put are no picture before the last of them has come.
    if (jpeg->pixels && jpeg->direction & JPEG_COMPRESSING)
        return rio_fail(file, RIO_READ_FAILED, "jpline");
    jpeg_set_direction(file, JPEG_DECOMPRESSING);
    if (file->error || !hold_line(file, file->current_line))
        return 0;
    const int64_t row_bytes = int64_t{ jpeg_width(file) } * jpeg_samples(file);
    jpeg_give_row(file, jpeg->pixels + (file->current_line - jpeg->first_row) * row_bytes, file->width, plane_count, planes, 0);
    return file->width;
}

// ---- put -------------------------------------------------------------------------------------------------------------

// A plane that is missing is zero.
static void take_planes(uint8_t *row, int samples, int width, int count, uint8_t *const *planes)
{
    if (samples == 1) {
        std::memcpy(row, planes[0], size_t(width));
        return;
    }
    if (samples == 3 && count >= 3 && planes[0] && planes[1] && planes[2]) {
        rio_join_3(planes[0], planes[1], planes[2], width, row);
        return;
    }
    for (int s = 0; s < samples; s++)
        for (int x = 0; x < width; x++)
            row[samples * x + s] = s < count && planes[s] ? planes[s][x] : uint8_t{ 0 };
}

static void take_pixels(uint8_t *row, int samples, int64_t width, int step, const uint8_t *in)
{
    if (step == samples) {
        std::memcpy(row, in, size_t(samples * width));
        return;
    }
    for (int64_t x = 0; x < width; x++)
        std::copy_n(in + step * x, samples, row + samples * x);
}

static int fail_to_code(RFILE *file)
{
    jpeg_drop_pixels(file->jpeg);
    const bool stays = file->data_type == RIO_TYPE_JPEG_4 || file->error == RIO_NO_MEMORY;
    return stays ? 0 : rio_fail(file, RIO_WRITE_FAILED, "jpline");
}

// Rows that came in order go to the driver while they are in the cache.
static int code_rows(RFILE *file, int from, int to)
{
    jpeg_state *jpeg = file->jpeg;
    const int64_t row_bytes = int64_t{ jpeg_width(file) } * jpeg_samples(file);
    if (from == 0 && jpeg_make_coded(file) != 0)
        return fail_to_code(file);
    if (jpeg_compress_rows(file, from, to - from, jpeg->pixels + row_bytes * from) != 0)
        return fail_to_code(file);
    jpeg->coded_rows = to;
    return 1;
}

static int write_picture(RFILE *file)
{
    jpeg_state *jpeg = file->jpeg;
    if (!code_rows(file, jpeg->disordered ? 0 : jpeg->coded_rows, file->height))
        return 0;
    jpeg_drop_pixels(jpeg);
    return rio_byte_seek(file, natv_data_start(file)) ? jpeg_write_coded(file) == 0 : rio_fail(file, RIO_WRITE_FAILED, "jpline");
}

// The line that has been taken. Lines may come in any order; then the picture is coded at its last line.
static int code_line(RFILE *file, int line)
{
    jpeg_state *jpeg = file->jpeg;
    jpeg->disordered = jpeg->disordered || line != jpeg->rows;
    jpeg->rows = line + 1;
    if (line == file->height - 1)
        return write_picture(file);
    return jpeg->disordered || jpeg->rows - jpeg->coded_rows < band_rows(file) || code_rows(file, jpeg->coded_rows, jpeg->rows);
}

int jpeg_put_lines(RFILE *file, int plane_count, uint8_t *const *planes)
{
    jpeg_state *jpeg = file->jpeg;
    if (!jpeg || file->flags & RIO_SCANNABLE)
        return rio_fail(file, RIO_NOT_STANDARD, "jpline");
    jpeg_set_direction(file, JPEG_COMPRESSING);
    if (file->error)
        return 0;
    const int samples = jpeg_samples(file), step = pixel_step(file);
    const int64_t row_bytes = int64_t{ file->width } * samples;
    if (!jpeg->pixels && !(jpeg->pixels = (uint8_t *)mem_calloc(size_t(file->height), size_t(row_bytes))))
        return rio_fail(file, RIO_NO_MEMORY, "jpline");
    uint8_t *row = jpeg->pixels + row_bytes * file->current_line;
    if (step && samples > 1)
        take_pixels(row, samples, file->width, step, planes[0]);
    else
        take_planes(row, samples, file->width, plane_count, planes);
    return code_line(file, file->current_line) ? file->width : 0;
}
