#include "RIO/CORE/bit_lines.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/PNM/pnm.h"
#include <algorithm>
#include <cstdio>

enum { TEXT_WIDTH = 4 };            // "%4d": no level takes more than three digits

// The kind for a data type; 0 for one that the format cannot hold.
static int32_t kind_of_type(uint32_t data_type)
{
    switch (data_type) {
    case RIO_TYPE_BITMAP:
    case RIO_TYPE_BITMAP_RLE:
    case RIO_TYPE_CCITT3:
    case RIO_TYPE_CCITT4:
        return PNM_BITMAP;
    case RIO_TYPE_BYTE:
    case RIO_TYPE_BYTE_RLE:
    case RIO_TYPE_BYTE_RUN:
    case RIO_TYPE_JPEG:
        return PNM_GRAY;
    case RIO_TYPE_RGB_RLE:
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_RGB:
    case RIO_TYPE_JPEG_RGB:
        return PNM_RGB;
    default:
        return 0;
    }
}

// The header of a new file. On one whose header is on disk already, nothing that it says can have changed.
int pnm_wrt_hdr(RFILE *file)
{
    pnm_specs *specs = pnm_of(file);
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "PNM");
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    const int32_t kind = kind_of_type(file->data_type);
    if (!kind)
        return rio_fail_status(file, RIO_UNSUPPORTED, "Invalid file format for pnm");
    if (!rio_size_valid(file->width, file->height, pnm_samples(kind), 8))
        return rio_fail_status(file, RIO_BAD_SIZE, "PNM");
    // The text kinds stand three below their raw twins.
    specs->kind = specs->compression == PNM_ASCII ? kind - 3 : kind;
    file->data_type = pnm_is_bitmap(kind)      ? RIO_TYPE_BITMAP
                      : pnm_samples(kind) == 3 ? RIO_TYPE_RGB_BYTE_RUN
                                               : RIO_TYPE_BYTE;
    rio_set_shape(file, file->data_type);
    specs->row_bytes = pnm_row_bytes(file->width, kind, specs->max_value);

    char text[64];
    const int bytes = pnm_is_bitmap(kind)
                          ? snprintf(text, sizeof text, "P%1d %d %d\n", specs->kind, file->width, file->height)
                          : snprintf(text, sizeof text, "P%1d %d %d %d\n", specs->kind, file->width, file->height,
                                     specs->max_value);
    if (!rio_write_at(file, file->image_offset, text, bytes))
        return rio_fail_status(file, RIO_WRITE_FAILED, "PNM header");
    specs->data_offset = file->image_offset + bytes;
    specs->put_line = 0;
    file->current_line = 0;
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

static uint8_t sample_at(int count, uint8_t **lines, int sample, int64_t x)
{
    return sample < count && lines[sample] ? lines[sample][x] : uint8_t(0);
}

static int bit_at(const uint8_t *line, int64_t x)
{
    return le_u16(line + x / 16 * 2) >> (15 - x % 16) & 1;
}

// A line as text; it ends in a newline so that no line of the file is longer than one of the picture.
static int put_text_line(RFILE *file, pnm_specs *specs, int count, uint8_t **lines)
{
    const int samples = pnm_samples(specs->kind);
    char *text = reinterpret_cast<char *>(specs->chunk);
    int used = 0;
    for (int32_t x = 0; x < file->width; x++) {
        for (int s = 0; s < samples; s++, used += TEXT_WIDTH) {
            const int value = pnm_is_bitmap(specs->kind) ? bit_at(lines[0], x) : sample_at(count, lines, s, x);
            text[used] = ' ';
            text[used + 1] = value < 100 ? ' ' : char('0' + value / 100);
            text[used + 2] = value < 10 ? ' ' : char('0' + value / 10 % 10);
            text[used + 3] = char('0' + value % 10);
        }
        const bool last = x + 1 == file->width;
        if (last)
            text[used++] = '\n';
        if (last || used > PNM_CHUNK - 3 * TEXT_WIDTH - 1) {
            if (!rio_write_exact(file, text, used))
                return 0;
            used = 0;
        }
    }
    return 1;
}

static int put_bits(RFILE *file, pnm_specs *specs, const uint8_t *line)
{
    for (int64_t done = 0; done < specs->row_bytes; done += PNM_CHUNK) {
        const int bytes = int(std::min<int64_t>(specs->row_bytes - done, PNM_CHUNK));
        rio_bits_to_bytes(reinterpret_cast<const uint16_t *>(line + done), specs->chunk, bytes);
        if (!rio_write_exact(file, specs->chunk, bytes))
            return 0;
    }
    return 1;
}

// Three planes, sample by sample; a plane that is not there is written as 0.
static int put_colours(RFILE *file, pnm_specs *specs, int count, uint8_t **lines)
{
    const int most = PNM_CHUNK / 3;
    const bool whole = count >= 3 && lines[0] && lines[1] && lines[2];
    for (int64_t x = 0; x < file->width; x += most) {
        const int pixels = int(std::min<int64_t>(file->width - x, most));
        if (whole)
            rio_join_3(lines[0] + x, lines[1] + x, lines[2] + x, pixels, specs->chunk);
        else
            for (int i = 0; i < pixels; i++)
                for (int s = 0; s < 3; s++)
                    specs->chunk[3 * i + s] = sample_at(count, lines, s, x + i);
        if (!rio_write_exact(file, specs->chunk, int64_t{pixels} * 3))
            return 0;
    }
    return 1;
}

static int put_raw_line(RFILE *file, pnm_specs *specs, int count, uint8_t **lines)
{
    if (specs->kind == PNM_BITMAP)
        return put_bits(file, specs, lines[0]);
    if (specs->kind == PNM_RGB)
        return put_colours(file, specs, count, lines);
    return rio_write_exact(file, lines[0], specs->row_bytes);
}

// Brings the stream to the start of the current line. Text lines can only follow one another, and samples that were
// scaled on the way in cannot be put back.
static int find_put_line(RFILE *file, pnm_specs *specs)
{
    if (specs->levels || (pnm_is_text(specs->kind) && specs->put_line != file->current_line))
        return rio_fail(file, RIO_MODIFY_MIDDLE, "PNM putline");
    if (specs->put_line != file->current_line
        && !rio_byte_seek(file, specs->data_offset + file->current_line * specs->row_bytes))
        return rio_fail(file, RIO_WRITE_FAILED, "PNM putline");
    return 1;
}

int pnm_put_line(RFILE *file, int count, uint8_t **lines)
{
    pnm_specs *specs = pnm_of(file);
    if (count < 1 || count > 4 || !lines[0])
        return rio_fail(file, RIO_BAD_COUNT, "PNM putline");
    if (!find_put_line(file, specs))
        return 0;
    const int put = pnm_is_text(specs->kind) ? put_text_line(file, specs, count, lines)
                                             : put_raw_line(file, specs, count, lines);
    // What the feed holds may be out of date now.
    specs->feed.at = specs->feed.used = 0;
    specs->feed_line = PNM_FEED_ASTRAY;
    specs->put_line = put ? file->current_line + 1 : -1;
    return put ? file->width : rio_fail(file, RIO_WRITE_FAILED, "PNM putline");
}
