// ntvrand.cpp - Randomize: the places of lines, from the image's header on, so that a seek need not pass all lines.
#include "RIO/NATV/ntv.h"

enum { ALWAYS_LINES = 1 << 20 };

// Bytes a line of types 2 to 8; 0 for the others, whose places are found as the lines are read.
static int64_t known_stride(const RFILE *file)
{
    const bool plain = file->data_type >= RIO_TYPE_BYTE && file->data_type <= RIO_TYPE_128;
    return plain && !(file->flags & RIO_SCANNABLE) ? natv_stride(file) : 0;
}

int natv_randomize(RFILE *file)
{
    if (file->flags & RIO_TILED || file->ccitt_kind == 5 || file->line_offsets)
        return 0;
    // A header may tell of more lines than memory has room for: a table of many needs a file that can hold them.
    const int64_t lines = file->height;
    if (lines > ALWAYS_LINES && lines > rio_file_size(file))
        return rio_fail_status(file, RIO_NO_MEMORY, "ntvrand");
    file->line_offsets = (int64_t *)mem_alloc(size_t(lines) * sizeof(int64_t));
    if (!file->line_offsets)
        return rio_fail_status(file, RIO_NO_MEMORY, "ntvrand");
    const int64_t first = natv_data_start(file) - file->image_offset, stride = known_stride(file);
    for (int64_t y = 1; y < lines; y++)
        file->line_offsets[y] = stride ? first + y * stride : -1;
    file->line_offsets[0] = first;
    natv_rewind(file);
    rio_errno = file->error;
    return 0;
}
