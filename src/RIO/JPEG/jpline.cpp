// jpline.cpp - lines of JPEG data: the picture is decoded whole before its first line is handed out, and coded whole when
// its last line has come.
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

static int decode_picture(RFILE *file)
{
    jpeg_state *jpeg = file->jpeg;
    if (jpeg->damaged)
        return rio_fail(file, file->data_type == RIO_TYPE_JPEG_4 ? RIO_JPEG_HW2 : RIO_READ_FAILED, "jpline");
    if (jpeg_read_coded(file) != 0)
        return fail_to_decode(file);
    const int64_t bytes = int64_t{ jpeg_width(file) } * jpeg_height(file) * jpeg_samples(file);
    jpeg->pixels = (uint8_t *)mem_alloc(size_t(bytes + 12));
    if (!jpeg->pixels)
        return rio_fail(file, RIO_NO_MEMORY, "jpline");
    // Held as whole pixels, as the driver gives them: each line is split when it is asked for.
    const uint32_t asked = file->flags & RIO_INTERLEAVE;
    file->flags |= RIO_INTERLEAVE;
    const int failed = jpeg_decompress(file, 1, &jpeg->pixels);
    file->flags = (file->flags & ~uint32_t(RIO_INTERLEAVE)) | asked;
    if (!failed)
        return 1;
    mem_free(jpeg->pixels);
    jpeg->pixels = nullptr;
    return fail_to_decode(file);
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

static void give_planes(const uint8_t *row, int samples, int width, int count, uint8_t *const *planes)
{
    if (samples == 1) {
        std::memcpy(planes[0], row, size_t(width));
        return;
    }
    if (samples == 3 && count >= 3 && planes[0] && planes[1] && planes[2]) {
        rio_split_3(row, width, planes[0], planes[1], planes[2]);
        return;
    }
    for (int s = 0; s < std::min(count, samples); s++)
        for (int x = 0; planes[s] && x < width; x++)
            planes[s][x] = row[samples * x + s];
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
    if (file->error || (!jpeg->pixels && !decode_picture(file)))
        return 0;
    const int samples = jpeg_samples(file), step = pixel_step(file);
    const uint8_t *row = jpeg->pixels + int64_t{ file->current_line } * jpeg_width(file) * samples;
    if (step && samples > 1)
        give_pixels(row, samples, file->width, step, planes[0]);
    else
        give_planes(row, samples, file->width, plane_count, planes);
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

static int code_picture(RFILE *file)
{
    jpeg_state *jpeg = file->jpeg;
    const uint32_t asked = file->flags & RIO_INTERLEAVE;
    file->flags |= RIO_INTERLEAVE;
    const int failed = jpeg_make_coded(file) || jpeg_compress(file, 1, &jpeg->pixels);
    file->flags = (file->flags & ~uint32_t(RIO_INTERLEAVE)) | asked;
    mem_free(jpeg->pixels);
    jpeg->pixels = nullptr;
    if (failed)
        return file->data_type == RIO_TYPE_JPEG_4 || file->error == RIO_NO_MEMORY ? 0
                                                                                 : rio_fail(file, RIO_WRITE_FAILED, "jpline");
    return rio_byte_seek(file, natv_data_start(file)) ? jpeg_write_coded(file) == 0 : rio_fail(file, RIO_WRITE_FAILED, "jpline");
}

int jpeg_put_lines(RFILE *file, int plane_count, uint8_t *const *planes)
{
    jpeg_state *jpeg = file->jpeg;
    if (!jpeg || file->flags & RIO_SCANNABLE)
        return rio_fail(file, RIO_NOT_STANDARD, "jpline");
    if (jpeg->direction & JPEG_DECOMPRESSING)
        jpeg_enter_picture(file, 0, 0);
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
    return file->current_line == file->height - 1 && !code_picture(file) ? 0 : file->width;
}
