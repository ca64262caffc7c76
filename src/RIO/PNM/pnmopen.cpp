#include "RIO/CORE/line_runs.h"
#include "RIO/PNM/pnm.h"
#include "RIO/PNM/pnmtext.h"

int64_t pnm_row_bytes(int64_t width, int32_t kind, int32_t max_value)
{
    if (pnm_is_bitmap(kind))
        return (width + 7) / 8;
    return width * pnm_samples(kind) * (max_value > 255 ? 2 : 1);
}

uint8_t pnm_level(int32_t value, int32_t max_value)
{
    const int32_t v = value > max_value ? max_value : value;
    if (max_value > 255)
        return uint8_t((int64_t{v} * 65535 + max_value / 2) / max_value >> 8);
    const int32_t whole = v * 255 / max_value, twice_rest = v * 255 % max_value * 2;
    const bool up = twice_rest > max_value || (twice_rest == max_value && whole % 2);
    return uint8_t(whole + up);
}

static void free_specs(RFILE *file)
{
    pnm_specs *specs = pnm_of(file);
    if (!specs)
        return;
    mem_free(specs->levels);
    feed_free_marks(&specs->marks);
}

static const rio_ops pnm_read_ops {
    .getline = rio_common_getline,
    .get_line = pnm_get_line,
    .getrleline = rio_getrleline_by_lines,
    .putline = rio_common_putline,
    .put_line = pnm_put_line,
    .get_hdr_data = pnm_get_hdr_data,
    .set_hdr_data = pnm_set_hdr_data,
    .get_stat = rio_plain_get_stat,
    .set_stat = rio_plain_set_stat,
    .get_format = rio_plain_get_format,
    .copydata = rio_copy_lines,
    .wrt_hdr = pnm_wrt_hdr,
    .seek = pnm_seek,
    .get_image_count = rio_single_get_image_count,
    .randomize = rio_plain_randomize,
    .rewind = rio_plain_rewind,
    .close = rio_plain_close,
    .free_specs = free_specs,
    .place_of_lines = pnm_place_of_lines,
};

int pnm_detect(const uint8_t *head, int bytes)
{
    return bytes >= 2 && head[0] == 'P' && head[1] >= '1' && head[1] <= '6';
}

// The numbers of the header, behind the magic; then the one blank that ends it. A comment that ends at the last
// number's line has its line end for that blank.
static int read_header(RFILE *file, pnm_specs *specs)
{
    byte_feed *feed = &specs->feed;
    feed_seek(feed, file->image_offset);
    if (feed_byte(feed, file) != 'P')
        return 0;
    specs->kind = feed_byte(feed, file) - '0';
    const int behind_magic = feed_byte(feed, file);
    if (specs->kind < 1 || specs->kind > 6 || !(pnm_is_blank(behind_magic) || behind_magic == '#'))
        return 0;
    feed_back(feed);
    specs->max_value = pnm_is_bitmap(specs->kind) ? 1 : 255;
    if (pnm_number(feed, file, &file->width) != PNM_FOUND || pnm_number(feed, file, &file->height) != PNM_FOUND)
        return 0;
    if (!pnm_is_bitmap(specs->kind) && pnm_number(feed, file, &specs->max_value) != PNM_FOUND)
        return 0;
    int byte = feed_byte(feed, file);
    if (byte == '#')
        while (byte != 10 && byte != 13 && byte != -1)
            byte = feed_byte(feed, file);
    specs->data_offset = feed_position(feed);
    return pnm_is_blank(byte);
}

// The scaling of samples whose maximum value is not 255. 1; 0 with no memory.
static int make_levels(pnm_specs *specs)
{
    if (pnm_is_bitmap(specs->kind) || specs->max_value == 255)
        return 1;
    const int32_t entries = specs->max_value > 255 ? 65536 : 256;
    specs->levels = static_cast<uint8_t *>(mem_alloc(size_t(entries)));
    if (!specs->levels)
        return 0;
    for (int32_t v = 0; v < entries; v++)
        specs->levels[v] = pnm_level(v, specs->max_value);
    return 1;
}

// A file too short for its first line is refused, so that no caller makes room for a picture that is not there.
static int first_line_fits(RFILE *file, const pnm_specs *specs)
{
    const int64_t size = rio_file_size(file);
    const int64_t samples = int64_t{file->width} * pnm_samples(specs->kind);
    const int64_t least = specs->kind == PNM_BITMAP_TEXT ? samples
                          : pnm_is_text(specs->kind)     ? samples * 2 - 1
                                                         : specs->row_bytes;
    return size < 0 || size - specs->data_offset >= least;
}

RFILE *pnm_open_r(RFILE *file)
{
    pnm_specs *specs = static_cast<pnm_specs *>(rio_alloc_specs(file, sizeof(pnm_specs)));
    file->ops.free_specs = free_specs;
    if (!specs)
        return rio_fail_open(file, RIO_NO_MEMORY, "PNM");
    if (!read_header(file, specs))
        return rio_fail_open(file, RIO_READ_FAILED, "Bad Stack");
    if (specs->max_value < 1 || specs->max_value > 65535)
        return rio_fail_open(file, RIO_NOT_STANDARD, "PNM");
    if (!rio_size_valid(file->width, file->height, pnm_samples(specs->kind), specs->max_value > 255 ? 16 : 8))
        return rio_fail_open(file, RIO_BAD_SIZE, "PNM");
    specs->row_bytes = pnm_row_bytes(file->width, specs->kind, specs->max_value);
    if (!first_line_fits(file, specs))
        return rio_fail_open(file, RIO_READ_FAILED, "PNM");
    if (!make_levels(specs))
        return rio_fail_open(file, RIO_NO_MEMORY, "PNM");
    specs->put_line = -1;
    feed_note(&specs->marks, 0, { .position = specs->data_offset, .state = 0 });

    file->standard = RIO_FORMAT_PNM;
    file->data_type = pnm_is_bitmap(specs->kind)      ? RIO_TYPE_BITMAP
                      : pnm_samples(specs->kind) == 3 ? RIO_TYPE_RGB_BYTE_RUN
                                                      : RIO_TYPE_BYTE;
    rio_set_shape(file, file->data_type);
    file->ops = pnm_read_ops;
    return file;
}

int pnm_init_w(RFILE *file)
{
    pnm_specs *specs = static_cast<pnm_specs *>(rio_alloc_specs(file, sizeof(pnm_specs)));
    if (!specs)
        return rio_fail_status(file, RIO_NO_MEMORY, "PNM");
    specs->max_value = 255;
    file->ops = pnm_read_ops;
    return 0;
}
