// A symbol file of one glyph, the picture, under one character.
#include "RIO/CORE/bit_lines.h"
#include "RIO/SYM/sym.h"
#include <cstring>

int sym_wrt_hdr(RFILE *file)
{
    sym_specs *specs = sym_of(file);
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "SYM");
    if (file->flags & RIO_HEADER_DONE)
        return 0;
    rio_set_shape(file, file->data_type);
    if (file->samples_per_pixel != 1 || file->bits_per_sample != 1)
        return rio_fail_status(file, RIO_UNSUPPORTED, "SYM");
    if (file->width < 1 || file->width > SYM_LARGEST || file->height < 1 || file->height > SYM_LARGEST)
        return rio_fail_status(file, RIO_BAD_SIZE, "SYM");
    file->data_type = RIO_TYPE_BITMAP;

    uint8_t head[SYM_RECORDS + SYM_RECORD_BYTES] = {};
    const uint32_t start = SYM_LEAST_START + SYM_RECORD_BYTES;
    specs->bits_bytes = int64_t{file->height} * ((file->width + 7) / 8);
    memcpy(head, "FONT", 4);
    put_le_u32(head + SYM_SIZE, start + uint32_t(specs->bits_bytes));
    put_le_u32(head + SYM_BITS_START, start);
    head[SYM_MAP + SYM_NEW_CHARACTER] = 1;
    uint8_t *record = head + SYM_RECORDS;
    record[SYM_WIDTH] = record[SYM_ADVANCE] = uint8_t(file->width);
    record[SYM_HEIGHT] = record[SYM_ASCENT] = uint8_t(file->height);
    if (!rio_write_at(file, file->image_offset, head, sizeof head))
        return rio_fail_status(file, RIO_WRITE_FAILED, "SYM header");
    specs->bits_offset = specs->glyph_offset = file->image_offset + int64_t(sizeof head);
    file->current_line = 0;
    file->flags |= RIO_HEADER_DONE;
    return 0;
}

int sym_put_line(RFILE *file, int count, uint8_t **lines)
{
    const sym_specs *specs = sym_of(file);
    if (count < 1 || !lines[0])
        return rio_fail(file, RIO_BAD_COUNT, "SYM");
    if (specs->empty)
        return rio_fail(file, RIO_BAD_SIZE, "SYM");
    const int bytes = (file->width + 7) / 8;
    uint8_t row[(SYM_LARGEST + 7) / 8 + 1];
    rio_bits_to_bytes(reinterpret_cast<const uint16_t *>(lines[0]), row, bytes);
    for (int i = 0; i < bytes; i++)
        row[i] = rio_reversed(row[i]);
    if (!rio_write_at(file, specs->glyph_offset + int64_t{file->current_line} * bytes, row, bytes))
        return rio_fail(file, RIO_WRITE_FAILED, "SYM");
    return file->width;
}
