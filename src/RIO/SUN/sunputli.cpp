#include "RIO/CORE/bit_lines.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/SUN/sun.h"
#include <algorithm>
#include <cstring>

// Bits a pixel for a data type; 0 for one that the format cannot hold.
static uint32_t depth_of_type(uint32_t data_type)
{
    switch (data_type) {
    case RIO_TYPE_BITMAP:
    case RIO_TYPE_BITMAP_RLE:
    case RIO_TYPE_CCITT3:
    case RIO_TYPE_CCITT4:
        return 1;
    case RIO_TYPE_BYTE:
    case RIO_TYPE_BYTE_RLE:
    case RIO_TYPE_BYTE_RUN:
    case RIO_TYPE_JPEG:
        return 8;
    case RIO_TYPE_RGB_RLE:
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_RGB:
    case RIO_TYPE_JPEG_RGB:
        return 24;
    default:
        return 0;
    }
}

// The caller's entries, or the record's table, as thirds. 0 when the file has no colours.
static int gather_map(const RFILE *file, uint8_t map[SUN_MAP_BYTES])
{
    memset(map, 0, SUN_MAP_BYTES);
    for (int i = 0; file->vlt_entries && i < file->vlt_count; i++) {
        const rio_vlt_entry &entry = file->vlt_entries[i];
        const int at = entry.index & 255;
        map[at] = uint8_t(entry.red >> 8);
        map[at + 256] = uint8_t(entry.green >> 8);
        map[at + 512] = uint8_t(entry.blue >> 8);
    }
    if (file->vlt_entries && file->vlt_count)
        return 1;
    for (int i = 0; file->vlt && i < SUN_MAP_BYTES; i++)
        map[i % 3 * 256 + i / 3] = file->vlt[i];
    return file->vlt != nullptr;
}

// What the header says about the lines, from the record's type and sizes. 0 with the error set.
static int choose_form(RFILE *file, sun_specs *specs)
{
    specs->depth = depth_of_type(file->data_type);
    if (!specs->depth)
        return rio_fail(file, RIO_UNSUPPORTED, "SUN");
    if (!rio_size_valid(file->width, file->height, 1, int(specs->depth)))
        return rio_fail(file, RIO_BAD_SIZE, "SUN");
    const bool coded = specs->compression == SUN_BYTE_RUNS || file->data_type == RIO_TYPE_BITMAP_RLE;
    specs->type = coded ? SUN_BYTE_RUNS : SUN_STANDARD;
    specs->row_bytes = sun_row_bytes(file->width, specs->depth);
    const int64_t length = specs->row_bytes * file->height;
    specs->length = length > UINT32_MAX ? 0 : uint32_t(length);     // 0: not told, as old files have it
    file->data_type = specs->depth == 24  ? RIO_TYPE_RGB_BYTE_RUN
                      : specs->depth == 8 ? RIO_TYPE_BYTE
                      : coded             ? RIO_TYPE_BITMAP_RLE
                                          : RIO_TYPE_BITMAP;
    rio_set_shape(file, file->data_type);
    return 1;
}

int sun_wrt_hdr(RFILE *file)
{
    sun_specs *specs = sun_of(file);
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "SUN");
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    if (!choose_form(file, specs))
        return 1;
    uint8_t map[SUN_MAP_BYTES];
    const bool mapped = specs->depth == 8 && gather_map(file, map);
    specs->map_type = mapped ? SUN_MAP_RGB : SUN_MAP_NONE;
    specs->map_length = mapped ? SUN_MAP_BYTES : 0;
    const uint32_t words[] = { SUN_MAGIC,     uint32_t(file->width), uint32_t(file->height), specs->depth,
                               specs->length, specs->type,           specs->map_type,        specs->map_length };
    uint8_t head[SUN_HEADER_BYTES];
    for (int i = 0; i < 8; i++)
        put_be_u32(head + 4 * i, words[i]);
    if (!rio_write_at(file, file->image_offset, head, SUN_HEADER_BYTES)
        || !rio_write_exact(file, map, specs->map_length))
        return rio_fail_status(file, RIO_WRITE_FAILED, "SUN header");
    specs->data_offset = file->image_offset + SUN_HEADER_BYTES + specs->map_length;
    specs->put_line = specs->coded_bytes = 0;
    specs->coded_line = -1;
    file->current_line = 0;
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

// ---- pixels to stored bytes ------------------------------------------------------------------------------------------

static uint8_t sample_at(int count, uint8_t **lines, int sample, int64_t x)
{
    return sample < count && lines[sample] ? lines[sample][x] : uint8_t(0);
}

static void gather_colours(const sun_specs *specs, int pixels, int count, uint8_t **lines, int64_t x, uint8_t *stored)
{
    const int pixel_bytes = int(specs->depth / 8);
    if (pixel_bytes == 3 && count >= 3 && lines[0] && lines[1] && lines[2]) {
        const int first = specs->type == SUN_RGB ? 0 : 2;
        rio_join_3(lines[first] + x, lines[1] + x, lines[2 - first] + x, pixels, stored);
        return;
    }
    for (int i = 0; i < pixels; i++) {
        uint8_t *pixel = stored + i * pixel_bytes;
        if (pixel_bytes == 4)
            *pixel++ = 0;
        for (int s = 0; s < 3; s++)
            pixel[specs->type == SUN_RGB ? s : 2 - s] = sample_at(count, lines, s, x + i);
    }
}

// `pixels` pixels from x on into the chunk, as the file holds them. x is a multiple of 16.
static void gather(const RFILE *file, sun_specs *specs, int pixels, int count, uint8_t **lines, int64_t x)
{
    uint8_t *stored = specs->chunk;
    const int bytes = int((int64_t{pixels} * specs->depth + 7) / 8);
    if (specs->depth > 8) {
        gather_colours(specs, pixels, count, lines, x, stored);
    } else if (specs->depth == 8) {
        memcpy(stored, lines[0] + x, size_t(bytes));
    } else if (file->bits_per_sample == 1) {
        rio_bits_to_bytes(reinterpret_cast<const uint16_t *>(lines[0] + x / 8), stored, bytes);
        for (int i = 0; specs->invert && i < bytes; i++)
            stored[i] = uint8_t(~stored[i]);
    } else {
        const int depth = int(specs->depth), drop = file->bits_per_sample == 4 && !(file->flags & RIO_NO_SHIFT) ? 4 : 0;
        memset(stored, 0, size_t(bytes));
        for (int i = 0; i < pixels; i++) {
            const int sample = lines[0][x + i] >> drop & ((1 << depth) - 1), bit = i * depth;
            stored[bit / 8] = uint8_t(stored[bit / 8] | sample << (8 - depth - bit % 8));
        }
    }
}

static int put_stored(RFILE *file, sun_specs *specs, int bytes)
{
    if (specs->type != SUN_BYTE_RUNS)
        return rio_write_exact(file, specs->chunk, bytes);
    uint8_t coded[2 * SUN_CHUNK];
    const int coded_bytes = sun_encode(specs->chunk, bytes, coded);
    specs->coded_bytes += coded_bytes;
    return rio_write_exact(file, coded, coded_bytes);
}

static int put_chunks(RFILE *file, sun_specs *specs, int count, uint8_t **lines)
{
    const int most = SUN_CHUNK / 4 / 16 * 16 - 16;      // a pad byte fits behind the last chunk
    for (int64_t x = 0; x < file->width; x += most) {
        const int pixels = int(std::min<int64_t>(file->width - x, most));
        gather(file, specs, pixels, count, lines, x);
        int bytes = int((int64_t{pixels} * specs->depth + 7) / 8);
        if (x + pixels == file->width && bytes & 1)
            specs->chunk[bytes++] = 0;
        if (!put_stored(file, specs, bytes))
            return 0;
    }
    return 1;
}

// ---- slots -----------------------------------------------------------------------------------------------------------

int sun_put_line(RFILE *file, int count, uint8_t **lines)
{
    sun_specs *specs = sun_of(file);
    if (count < 1 || count > 4 || !lines[0])
        return rio_fail(file, RIO_BAD_COUNT, "SUN");
    const bool in_place = specs->put_line == file->current_line;
    if (!in_place && specs->type == SUN_BYTE_RUNS)
        return rio_fail(file, RIO_MODIFY_MIDDLE, "SUN");
    specs->put_line = -1;
    specs->coded.feed.at = specs->coded.feed.used = 0;      // what the feed holds may be out of date now
    specs->coded_line = -1;
    if ((!in_place && !rio_byte_seek(file, specs->data_offset + file->current_line * specs->row_bytes))
        || !put_chunks(file, specs, count, lines))
        return rio_fail(file, RIO_WRITE_FAILED, "SUN");
    specs->put_line = file->current_line + 1;
    return file->width;
}

// Other programs read as many coded bytes as the header of a type 2 file says.
void sun_close(RFILE *file)
{
    const sun_specs *specs = sun_of(file);
    if (!specs || !specs->coded_bytes || specs->coded_bytes > UINT32_MAX)
        return;
    uint8_t length[4];
    put_be_u32(length, uint32_t(specs->coded_bytes));
    if (!rio_write_at(file, file->image_offset + SUN_LENGTH_OFFSET, length, 4))
        rio_fail(file, RIO_WRITE_FAILED, "SUN header");
}
