#include "RIO/CALS/cals.h"
#include "RIO/CORE/line_runs.h"
#include <algorithm>
#include <cstring>
#include <strings.h>

static void free_specs(RFILE *file)
{
    if (cals_of(file))
        cals_free_tiles(cals_of(file));
}

void cals_free_tiles(cals_specs *specs)
{
    for (int64_t i = 0; i < specs->tile_count; i++)
        mem_free(specs->tiles[i].coded);
    mem_free(specs->tiles);
    specs->tiles = nullptr;
    specs->tile_count = 0;
}

static const rio_ops cals_ops {
    .getline = rio_common_getline,
    .get_line = cals_get_line,
    .getlinefromtile = rio_getlinefromtile,
    .getrleline = rio_getrleline_by_lines,
    .putline = rio_common_putline,
    .put_line = cals_put_line,
    .putrleline = rio_putrleline_by_lines,
    .gettile = cals_get_tile,
    .puttile = cals_put_tile,
    .getrletile = rio_getrletile_by_rows,
    .get_hdr_data = cals_get_hdr_data,
    .set_hdr_data = cals_set_hdr_data,
    .get_stat = cals_get_stat,
    .set_stat = cals_set_stat,
    .get_format = rio_plain_get_format,
    .wrt_hdr = cals_wrt_hdr,
    .seek = cals_seek,
    .set_image_count = rio_single_set_image_count,
    .randomize = rio_plain_randomize,
    .rewind = rio_plain_rewind,
    .close = cals_close,
    .free_specs = free_specs,
    .get_image_offset = cals_get_image_offset,
};

int cals_detect(const uint8_t *head, int bytes)
{
    for (const char *first : { "specversion:", "srcdocid:" })
        if (bytes >= CALS_RECORD_BYTES && !memcmp(head, first, strlen(first)))
            return 1;
    return 0;
}

// ---- the text records ------------------------------------------------------------------------------------------------

using record_block = char[CALS_HEADER_BYTES];

// The value of the record of that name, in capitals or not; null when there is none. It ends where its record does.
static const char *find_value(const record_block &block, const char *name)
{
    const size_t length = strlen(name);
    for (int i = 0; i < CALS_RECORDS; i++) {
        const char *record = block + i * CALS_RECORD_BYTES;
        if (!strncasecmp(record, name, length) && record[length] == ':')
            return record + length + 1;
    }
    return nullptr;
}

static const char *end_of_record(const record_block &block, const char *value)
{
    return value + (CALS_RECORD_BYTES - (value - block) % CALS_RECORD_BYTES);
}

// Up to `count` whole numbers below 2^31, blanks and a comma before each. Answers how many there are.
static int scan_numbers(const record_block &block, const char *value, int count, int32_t *out)
{
    const char *end = end_of_record(block, value);
    for (int i = 0; i < count; i++) {
        while (value < end && (*value == ' ' || *value == '\t' || (i > 0 && *value == ',')))
            value++;
        if (value == end || *value < '0' || *value > '9')
            return i;
        int64_t number = 0;
        for (; value < end && *value >= '0' && *value <= '9'; value++)
            number = std::min<int64_t>(10 * number + (*value - '0'), INT64_C(1) << 31);
        if (number > INT32_MAX)
            return i;
        out[i] = int32_t(number);
    }
    return count;
}

// The size, the orientation and the type of the file. 1; 0 with the error set.
static int read_records(RFILE *file, cals_specs *specs, int32_t *type)
{
    record_block block;
    if (!rio_read_at(file, file->image_offset, block, CALS_HEADER_BYTES))
        return rio_fail(file, RIO_READ_FAILED, "CALS header");
    const char *value = find_value(block, "rpelcnt");
    int32_t size[2];
    if (!value || scan_numbers(block, value, 2, size) != 2 || !rio_size_valid(size[0], size[1], 1, 1))
        return rio_fail(file, RIO_BAD_SIZE, "CALS rpelcnt");
    file->width = size[0];
    file->height = size[1];
    int32_t pair[2] = { 0, 270 };
    value = find_value(block, "rorient");
    if (value && scan_numbers(block, value, 2, pair) != 2)
        return rio_fail(file, RIO_NOT_STANDARD, "CALS rorient");
    specs->orientation = cals_orientation_of({ pair[0], pair[1] });
    *type = 1;
    value = find_value(block, "rtype");
    if (value && (scan_numbers(block, value, 1, type) != 1 || *type < 1 || *type > 2))
        return rio_fail(file, RIO_FEATURE_1, "CALS rtype");
    return 1;
}

// ---- binding ---------------------------------------------------------------------------------------------------------

static void bind(RFILE *file)
{
    file->standard = RIO_FORMAT_CALS;
    file->data_type = RIO_TYPE_CCITT4;
    rio_set_shape(file, file->data_type);
    file->ccitt_kind = 5;
    file->ccitt_group = 4;
    file->ops = cals_ops;
}

static int open_picture(RFILE *file)
{
    // A file without data is refused, so that no caller makes room for a picture that is not there.
    const int64_t size = rio_file_size(file);
    if (size >= 0 && size <= cals_data_start(file))
        return rio_fail(file, RIO_READ_FAILED, "CALS");
    if (!cit_attach(file))
        return 0;
    file->ccitt->data_offset = cals_data_start(file);
    return 1;
}

RFILE *cals_open_r(RFILE *file)
{
    cals_specs *specs = static_cast<cals_specs *>(rio_alloc_specs(file, sizeof(cals_specs)));
    if (!specs)
        return rio_fail_open(file, RIO_NO_MEMORY, "CALS");
    bind(file);
    int32_t type;
    if (!read_records(file, specs, &type))
        return rio_fail_open(file, file->error, "CALS header");
    if (!(type == 2 ? cals_read_stream(file) : open_picture(file)))
        return rio_fail_open(file, file->error, "CALS");
    return file;
}

int cals_init_w(RFILE *file)
{
    cals_specs *specs = static_cast<cals_specs *>(rio_alloc_specs(file, sizeof(cals_specs)));
    if (!specs)
        return rio_fail_status(file, RIO_NO_MEMORY, "CALS");
    specs->orientation = cals_orientation_of({ 0, 270 });
    bind(file);
    return 0;
}
