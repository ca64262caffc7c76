#include "RIO/SYM/sym.h"
#include <cstring>

static const rio_ops sym_ops {
    .getline = rio_common_getline,
    .get_line = sym_get_line,
    .putline = rio_common_putline,
    .put_line = sym_put_line,
    .get_hdr_data = rio_plain_get_hdr_data,
    .set_hdr_data = rio_plain_set_hdr_data,
    .get_stat = rio_plain_get_stat,
    .set_stat = rio_plain_set_stat,
    .get_vlt = rio_plain_get_vlt,
    .get_format = rio_plain_get_format,
    .wrt_hdr = sym_wrt_hdr,
    .seek = sym_seek,
    .get_image_count = sym_get_image_count,
    .set_image_count = rio_single_set_image_count,
    .set_active_image = sym_set_active_image,
    .randomize = rio_plain_randomize,
    .rewind = rio_plain_rewind,
    .close = rio_plain_close,
    .free_specs = rio_plain_free_specs,
};

// Both sizes make sense by themselves; whether the file is that long, the open finds out.
static int sizes_valid(const uint8_t *head)
{
    const uint32_t size = le_u32(head + SYM_SIZE), start = le_u32(head + SYM_BITS_START);
    return start >= SYM_LEAST_START && (start - SYM_LEAST_START) % SYM_RECORD_BYTES == 0 && size >= start;
}

int sym_detect(const uint8_t *head, int bytes)
{
    return bytes >= SYM_RECORDS && !memcmp(head, "FONT", 4) && sizes_valid(head);
}

// The sizes, and that every glyph lies inside the bits.
static int read_header(RFILE *file, sym_specs *specs)
{
    uint8_t head[SYM_MAP];
    if (!rio_read_at(file, 0, head, SYM_MAP) || !sizes_valid(head))
        return 0;
    const int64_t size = le_u32(head + SYM_SIZE), start = le_u32(head + SYM_BITS_START);
    const int64_t file_bytes = rio_file_size(file);
    specs->bits_offset = SYM_COUNTED_FROM + start;
    specs->bits_bytes = size - start;
    specs->glyphs = int32_t((start - SYM_LEAST_START) / SYM_RECORD_BYTES);
    if (!specs->glyphs || (file_bytes >= 0 && SYM_COUNTED_FROM + size > file_bytes))
        return 0;
    for (int glyph = specs->glyphs - 1; glyph >= 0; glyph--)
        if (!sym_activate(file, glyph))
            return 0;
    return 1;
}

RFILE *sym_open_r(RFILE *file)
{
    sym_specs *specs = static_cast<sym_specs *>(rio_alloc_specs(file, sizeof(sym_specs)));
    if (!specs)
        return rio_fail_open(file, RIO_NO_MEMORY, "SYM");
    if (!read_header(file, specs))
        return rio_fail_open(file, RIO_NOT_STANDARD, "SYM");
    if (specs->glyphs > 1)
        file->flags |= RIO_MULTI_IMAGE;
    file->standard = RIO_FORMAT_SYM;
    file->data_type = RIO_TYPE_BITMAP;
    rio_set_shape(file, file->data_type);
    file->ops = sym_ops;
    return file;
}

int sym_init_w(RFILE *file)
{
    sym_specs *specs = static_cast<sym_specs *>(rio_alloc_specs(file, sizeof(sym_specs)));
    if (!specs)
        return rio_fail_status(file, RIO_NO_MEMORY, "SYM");
    specs->glyphs = 1;
    if (!rio_write_at(file, file->image_offset, "FONT", 4))
        return rio_fail_status(file, RIO_WRITE_FAILED, "SYM");
    file->data_type = RIO_TYPE_BITMAP;
    rio_set_shape(file, file->data_type);
    file->ops = sym_ops;
    return 0;
}
