#include "RIO/SYM/sym.h"

int sym_activate(RFILE *file, int glyph)
{
    sym_specs *specs = sym_of(file);
    uint8_t record[SYM_RECORD_BYTES];
    if (!rio_read_at(file, SYM_RECORDS + int64_t{glyph} * SYM_RECORD_BYTES, record, SYM_RECORD_BYTES))
        return 0;
    const int width = record[SYM_WIDTH], height = record[SYM_HEIGHT];
    const int64_t offset = le_u16(record), row_bytes = (width + 7) / 8;
    if (offset + row_bytes * height > specs->bits_bytes)
        return 0;
    specs->glyph_offset = specs->bits_offset + offset;
    specs->empty = !width || !height;
    file->width = specs->empty ? 1 : width;
    file->height = specs->empty ? 1 : height;
    file->current_line = 0;
    return 1;
}

int sym_get_image_count(RFILE *file)
{
    return sym_of(file)->glyphs;
}

int sym_set_active_image(RFILE *file, int image)
{
    const int glyph = image < 0 ? 0 : image;
    if (glyph == file->current_image)
        return 0;
    if (!(file->access & RIO_ACCESS_CAN_READ) || glyph >= sym_of(file)->glyphs)
        return rio_fail_status(file, RIO_NO_IMAGE, "SYM");
    if (!sym_activate(file, glyph))
        return rio_fail_status(file, RIO_READ_FAILED, "SYM");
    file->current_image = glyph;
    return 0;
}

static int seek_line(RFILE *file, int line)
{
    if (line < 0 || line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "SYM seek");
    file->current_line = line;
    return 0;
}

int sym_seek(RFILE *file, int line)
{
    return file->flags & RIO_SQUETCH ? rio_squetch_seek(file, line, "SYM squetch", seek_line) : seek_line(file, line);
}
