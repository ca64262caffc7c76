#include "RIO/CORE/bit_lines.h"
#include "RIO/SYM/sym.h"

int sym_get_line(RFILE *file, int count, uint8_t **lines)
{
    const sym_specs *specs = sym_of(file);
    if (count < 1 || count > 4)
        return rio_fail(file, RIO_BAD_COUNT, "SYM");
    const int bytes = (file->width + 7) / 8;
    uint8_t row[(SYM_LARGEST + 7) / 8 + 1] = {};
    if (!specs->empty && !rio_read_at(file, specs->glyph_offset + int64_t{file->current_line} * bytes, row, bytes))
        return rio_fail(file, RIO_READ_FAILED, "SYM");
    file->current_line++;
    if (!lines[0])
        return file->width;
    for (int i = 0; i < bytes; i++)
        lines[0][i] = rio_reversed(row[i]);
    rio_bits_from_bytes(lines[0], file->width);
    return file->width;
}
