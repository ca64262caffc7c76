// ntvputli.cpp - writes lines, coded by the file's type.
#include "RIO/CORE/line_runs.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>

uint8_t *natv_encode_room(RFILE *file, int64_t bytes)
{
    natv_specs *specs = natv(file);
    if (specs->encode_room < bytes || !specs->encode_buffer) {
        const int64_t room = std::max<int64_t>(bytes, NATV_ENCODE_BYTES);
        mem_free(specs->encode_buffer);
        specs->encode_buffer = (uint8_t *)mem_alloc(size_t(room));
        specs->encode_room = specs->encode_buffer ? room : 0;
    }
    if (!specs->encode_buffer)
        rio_fail(file, RIO_NO_MEMORY, "ntvputli");
    return specs->encode_buffer;
}

// ---- what every put does ---------------------------------------------------------------------------------------------

// Coded lines can only be added behind the last.
static int check_at_end(RFILE *file)
{
    const bool coded = natv_is_compressed(file->data_type) || file->flags & RIO_SCANNABLE;
    if (!(file->access & RIO_ACCESS_ON_DISK) || !coded || !(file->flags & RIO_HEADER_DONE) || file->flags & RIO_TILED)
        return 0;
    // A JPEG image is written at its last line: until then its data start is the end.
    const int64_t end = rio_file_size(file), place = natv_is_jpeg(file->data_type) ? natv_data_start(file) : natv_place(file);
    if (natv_is_ccitt(file->data_type) || place >= end) {
        rio_byte_seek(file, natv_place(file));
        return 0;
    }
    natv_set_place(file, end);
    return rio_fail_status(file, RIO_MODIFY_MIDDLE, "ntvputli");
}

int natv_put_check(RFILE *file, bool last_only)
{
    if (last_only && natv_u32(file, NATV_NEXT_IMAGE) != 0)
        return rio_fail_status(file, RIO_NO_IMAGE, "not last multi-image");
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "putline");
    return check_at_end(file) || rio_write_check(file);
}

int64_t natv_begin_put(RFILE *file)
{
    return file->active_overview >= 0 && !(file->flags & RIO_TILED) ? rio_byte_tell(file) : -1;
}

void natv_end_put(RFILE *file, int64_t began)
{
    natv_specs *specs = natv(file);
    if (natv_uses_feed(file) && file->access & RIO_ACCESS_ON_DISK)
        natv_set_place(file, rio_byte_tell(file));
    if (began < 0)
        return;
    const int64_t grown = rio_byte_tell(file) - began;
    uint8_t *entry = natv_overview_entry(file, file->active_overview);
    if (!entry || grown <= 0)
        return;
    specs->file_end = std::max(specs->file_end, began + grown);
    put_le_u32(entry + 4, uint32_t(le_u32(entry + 4) + grown));
    put_le_u32(entry + 8, uint32_t(le_u32(entry + 8) + grown));
    file->flags |= RIO_DIRECTORY_DIRTY;
}

int natv_put_result(RFILE *file, int pixels)
{
    return pixels || file->error ? pixels : rio_fail(file, RIO_WRITE_FAILED, "ntvputli");
}

// ---- one line --------------------------------------------------------------------------------------------------------

// Planes to interleaved pixels; a plane that is not given is zero.
static void weave(uint8_t *out, const natv_row *row, int64_t pixels)
{
    uint8_t *const *plane = row->plane;
    if (row->planes == 3 && plane[0] && plane[1] && plane[2]) {
        rio_join_3(plane[0], plane[1], plane[2], int(pixels), out);
        return;
    }
    for (int s = 0; s < row->planes; s++)
        for (int64_t x = 0; x < pixels; x++)
            out[row->planes * x + s] = plane[s] ? plane[s][x] : uint8_t{ 0 };
}

int natv_write_pixels(RFILE *file, const natv_row *row, int64_t pixels)
{
    const int64_t bytes = pixels * row->planes;
    uint8_t *woven = natv_scratch(file, bytes);
    if (!woven)
        return 0;
    weave(woven, row, pixels);
    return rio_write_exact(file, woven, bytes) ? 1 : rio_fail(file, RIO_WRITE_FAILED, "ntvputli");
}

static int write_plain(RFILE *file, const natv_row *row)
{
    const bool woven = file->data_type == RIO_TYPE_RGB || file->data_type == RIO_TYPE_4;
    const int64_t stride = natv_stride(file);
    const uint8_t *line = row->plane[0];
    if (woven) {
        uint8_t *pixels = natv_scratch(file, stride);
        if (!pixels)
            return 0;
        if (stride > int64_t{ row->planes } * row->width)
            pixels[stride - 1] = 0;
        weave(pixels, row, row->width);
        line = pixels;
    }
    if (!line)
        return rio_fail(file, RIO_NO_OUTPUT, "ntvputli");
    // A file that is read as well keeps one position for both.
    const bool placed = file->access & RIO_ACCESS_ON_DISK && !(file->flags & (RIO_TILED | RIO_SCANNABLE));
    if (placed && !rio_byte_seek(file, natv_data_start(file) + stride * file->current_line))
        return rio_fail(file, RIO_WRITE_FAILED, "ntvputli");
    const int pixel = woven ? row->planes : std::max(row->bits / 8, 1);
    return natv_write_segment(file, line, stride, pixel) ? row->width : 0;
}

static int64_t encode(const RFILE *file, const natv_row *row, uint8_t *out, int64_t room)
{
    switch (file->data_type) {
    case RIO_TYPE_BITMAP_RLE:
        return 2 * rio_bitmap_runs((const uint16_t *)row->plane[0], row->width, (uint16_t *)out, room / 2);
    case RIO_TYPE_BYTE_RLE: return natv_encode_pairs(row, out);
    case RIO_TYPE_PACKED_RLE: return natv_encode_packed(row, out);
    case RIO_TYPE_RGB_RLE: return natv_encode_quads(row, out);
    default: return natv_encode_planes(row, out);
    }
}

int natv_write_row(RFILE *file, const natv_row *row)
{
    if (!row->plane[0] && row->planes == 1)
        return rio_fail(file, RIO_NO_OUTPUT, "ntvputli");
    if (natv_is_ccitt(file->data_type))
        return natv_put_ccitt(file, row->plane[0]);
    if (!natv_is_compressed(file->data_type))
        return write_plain(file, row);
    if (natv_is_jpeg(file->data_type))
        return jpeg_put_lines(file, row->planes, row->plane);
    const int64_t most = natv_most_bytes(file->data_type, row->planes, row->width);
    uint8_t *codes = natv_encode_room(file, most);
    return codes && natv_write_codes(file, codes, encode(file, row, codes, most)) ? row->width : 0;
}

int natv_put_line(RFILE *file, int count, uint8_t **lines)
{
    if (count != 1 && count != 3 && count != 4)
        return rio_fail(file, RIO_BAD_COUNT, "ntvputli");
    const natv_row row = natv_row_of(file, count, lines);
    const int64_t began = natv_begin_put(file);
    const int pixels = natv_put_result(file, natv_write_row(file, &row));
    natv_end_put(file, began);
    return pixels;
}

int natv_putline(RFILE *file, int count, uint8_t **lines)
{
    if (!rio_valid(file, "rio_putline") || natv_put_check(file, false) != 0)
        return 0;
    return file->flags & RIO_TILED ? rio_putlinetotile(file, count, lines) : natv_put_line(file, count, lines);
}
