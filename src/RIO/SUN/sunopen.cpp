#include "RIO/CORE/line_runs.h"
#include "RIO/SUN/sun.h"
#include <algorithm>
#include <cstring>

static void free_specs(RFILE *file)
{
    if (sun_of(file))
        feed_free_marks(&sun_of(file)->marks);
}

static const rio_ops sun_ops {
    .getline = rio_common_getline,
    .get_line = sun_get_line,
    .getrleline = rio_getrleline_by_lines,
    .putline = rio_common_putline,
    .put_line = sun_put_line,
    .putrleline = rio_putrleline_by_lines,
    .get_hdr_data = sun_get_hdr_data,
    .set_hdr_data = sun_set_hdr_data,
    .get_stat = rio_plain_get_stat,
    .set_stat = rio_plain_set_stat,
    .get_vlt = rio_plain_get_vlt,
    .get_format = rio_plain_get_format,
    .copydata = rio_copy_lines,
    .init_std_hdr = sun_init_std_hdr,
    .wrt_hdr = sun_wrt_hdr,
    .seek = sun_seek,
    .randomize = rio_plain_randomize,
    .rewind = rio_plain_rewind,
    .close = sun_close,
    .free_specs = free_specs,
    .get_image_offset = sun_get_image_offset,
};

static int is_sun_magic(uint32_t word)
{
    return word == SUN_MAGIC || word == SUN_MAGIC_SWAPPED;
}

int sun_detect(const uint8_t *head, int bytes)
{
    return bytes >= 4 && is_sun_magic(be_u32(head));
}

// The header's words in the file's own order, and what they allow. 1; 0 with the error set.
static int read_header(RFILE *file, sun_specs *specs)
{
    uint8_t head[SUN_HEADER_BYTES];
    if (!rio_read_at(file, file->image_offset, head, SUN_HEADER_BYTES))
        return rio_fail(file, RIO_READ_FAILED, "SUN header");
    if (!is_sun_magic(be_u32(head)))
        return rio_fail(file, RIO_NOT_STANDARD, "SUN");
    const bool swapped = be_u32(head) == SUN_MAGIC_SWAPPED;
    const auto word = [&](int i) { return swapped ? le_u32(head + 4 * i) : be_u32(head + 4 * i); };
    specs->byte_order = swapped ? SUN_ORDER_SWAPPED : SUN_ORDER_BIG;
    specs->depth = word(3);
    specs->length = word(4);
    specs->type = word(5);
    specs->map_type = word(6);
    specs->map_length = word(7);
    if (specs->type > SUN_IFF)
        return rio_fail(file, RIO_NOT_STANDARD, "SUN");
    if (specs->type == SUN_TIFF || specs->type == SUN_IFF)
        return rio_fail(file, RIO_FEATURE_1, "SUN");      // another format's file behind the header
    constexpr uint32_t depths[] = { 1, 4, 8, 24, 32 };
    if (!std::count(std::begin(depths), std::end(depths), specs->depth))
        return rio_fail(file, RIO_FEATURE_2, "SUN");
    if (!rio_size_valid(word(1), word(2), 1, int(specs->depth)))
        return rio_fail(file, RIO_BAD_SIZE, "SUN");
    if (specs->map_type == SUN_MAP_RGB && specs->map_length > SUN_MAP_BYTES && specs->map_length % 3)
        return rio_fail(file, RIO_NOT_STANDARD, "SUN");
    file->width = int32_t(word(1));
    file->height = int32_t(word(2));
    specs->row_bytes = sun_row_bytes(file->width, specs->depth);
    specs->data_offset = file->image_offset + SUN_HEADER_BYTES + specs->map_length;
    return 1;
}

// The colour map, stored in thirds, into the table; entries past its end stay black. 1; 0 with the error set.
static int read_map(RFILE *file, const sun_specs *specs)
{
    const int64_t entries = specs->map_length / 3;
    if (specs->map_type != SUN_MAP_RGB || !entries || specs->depth > 8)
        return 1;
    uint8_t *vlt = rio_alloc_vlt(file);
    if (!vlt)
        return rio_fail(file, RIO_NO_MEMORY, "SUN");
    uint8_t third[256];
    const int64_t kept = std::min<int64_t>(entries, 256);
    for (int c = 0; c < 3; c++) {
        if (!rio_read_at(file, file->image_offset + SUN_HEADER_BYTES + c * entries, third, kept))
            return rio_fail(file, RIO_READ_FAILED, "SUN color map");
        for (int i = 0; i < kept; i++)
            vlt[3 * i + c] = third[i];
    }
    return 1;
}

// A one-bit picture whose map is black and white needs no table: a 1 is handed out for black. Any other two colours
// make it a picture of indices.
static void settle_bilevel(RFILE *file, sun_specs *specs)
{
    static constexpr uint8_t black_white[] = { 0, 0, 0, 255, 255, 255 }, white_black[] = { 255, 255, 255, 0, 0, 0 };
    const bool inverted = file->vlt && !memcmp(file->vlt, black_white, sizeof black_white);
    if (file->vlt && !inverted && memcmp(file->vlt, white_black, sizeof white_black))
        return;
    specs->invert = inverted;
    mem_free(file->vlt);
    file->vlt = nullptr;
    file->significant_bits = 0;
    file->data_type = specs->type == SUN_BYTE_RUNS ? RIO_TYPE_BITMAP_RLE : RIO_TYPE_BITMAP;
}

// Some encoders leave the pad byte of odd lines out of the coded data: their data decode to just that many bytes.
static void settle_row_bytes(RFILE *file, sun_specs *specs)
{
    const int64_t unpadded = (int64_t{file->width} * specs->depth + 7) / 8;
    if (specs->type != SUN_BYTE_RUNS || unpadded == specs->row_bytes)
        return;
    feed_seek(&specs->coded.feed, specs->data_offset);
    if (sun_decode(&specs->coded, file, nullptr, specs->row_bytes * file->height) == unpadded * file->height)
        specs->row_bytes = unpadded;
}

// A file too short for its first line is refused, so that no caller makes room for a picture that is not there. Three
// coded bytes hold at most 256.
static int first_line_fits(RFILE *file, const sun_specs *specs)
{
    const int64_t size = rio_file_size(file);
    const int64_t least = specs->type == SUN_BYTE_RUNS ? (specs->row_bytes * 3 + 255) / 256 : specs->row_bytes;
    return size < 0 || size - specs->data_offset >= least;
}

RFILE *sun_open_r(RFILE *file)
{
    sun_specs *specs = static_cast<sun_specs *>(rio_alloc_specs(file, sizeof(sun_specs)));
    if (!specs)
        return rio_fail_open(file, RIO_NO_MEMORY, "SUN");
    file->ops.free_specs = free_specs;
    if (!read_header(file, specs) || !read_map(file, specs))
        return rio_fail_open(file, file->error, "SUN");
    if (!first_line_fits(file, specs))
        return rio_fail_open(file, RIO_READ_FAILED, "SUN");
    settle_row_bytes(file, specs);
    specs->put_line = specs->coded_line = -1;
    feed_note(&specs->marks, 0, { .position = specs->data_offset, .state = 0 });

    file->standard = RIO_FORMAT_SUN;
    file->data_type = specs->depth > 8 ? RIO_TYPE_RGB_BYTE_RUN : RIO_TYPE_BYTE;
    if (specs->depth == 1)
        settle_bilevel(file, specs);
    rio_set_shape(file, file->data_type);
    if (specs->depth == 4 && !file->vlt)
        file->bits_per_sample = 4;
    file->ops = sun_ops;
    return file;
}

int sun_init_w(RFILE *file)
{
    sun_specs *specs = static_cast<sun_specs *>(rio_alloc_specs(file, sizeof(sun_specs)));
    if (!specs)
        return rio_fail_status(file, RIO_NO_MEMORY, "SUN");
    specs->byte_order = SUN_ORDER_BIG;
    file->ops = sun_ops;
    return 0;
}
