// putline.cpp - how lines enter a file: the public calls, the write check and the common front door.
#include "RIO/CORE/rio_format.h"
#include <algorithm>

int rio_header_out(RFILE *file)
{
    const int result = file->ops.wrt_hdr(file);
    file->data_type = uint32_t(file->ops.get_format(file));
    if (file->flags & RIO_INMEM) {
        rio_memory_file *memory = (rio_memory_file *)file->stream;
        memory->end = memory->position;
    }
    return result;
}

int rio_write_header(RFILE *file)
{
    if (!rio_enter(file, "rio_write_header"))
        return 1;
    const int result = rio_header_out(file);
    rio_leave(file);
    return result;
}

int rio_write_check(RFILE *file)
{
    if (!(file->access & RIO_ACCESS_CAN_WRITE))
        return rio_fail_status(file, RIO_NOT_WRITABLE, "putline");
    if (file->current_line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "putline");
    if (!(file->flags & (RIO_HEADER_DONE | RIO_RAW)) && rio_header_out(file) != 0)
        return 1;
    // The header's writer may have changed the height.
    if (file->current_line >= file->height)
        return rio_fail_status(file, RIO_PAST_END, "putline");
    return 0;
}

static bool is_compressed(uint32_t type)
{
    switch (type) {
    case RIO_TYPE_RGB_RLE:
    case RIO_TYPE_PACKED_RLE:
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_BYTE_RUN:
    case RIO_TYPE_BITMAP_RLE:
    case RIO_TYPE_BYTE_RLE:
        return true;
    default:
        return false;
    }
}

int rio_common_putline(RFILE *file, int count, uint8_t **lines)
{
    if (!rio_valid(file, "rio_putline"))
        return 0;
    if (file->access & RIO_ACCESS_MODIFY && (is_compressed(file->data_type) || file->flags & RIO_SCANNABLE))
        return rio_fail(file, RIO_NOT_WRITABLE, "Cannot modify compressed or scan format data");
    if (rio_write_check(file) != 0)
        return 0;
    return file->flags & RIO_TILED ? rio_putlinetotile(file, count, lines) : file->ops.put_line(file, count, lines);
}

// The line after the one that was put is the next, whether the format counts or not.
static int end_put(RFILE *file, int line, bool done)
{
    if (done)
        file->current_line = line + 1;
    rio_leave(file);
    return done ? 0 : 1;
}

static int put_planes(RFILE *file, const char *text, int count, uint8_t **lines)
{
    if (!rio_enter(file, text))
        return 1;
    const int line = file->current_line;
    return end_put(file, line, file->ops.putline(file, count, lines) != 0);
}

int rio_putline(RFILE *file, const void *line)
{
    uint8_t *lines[1] = { (uint8_t *)line };
    return put_planes(file, "rio_putline", 1, lines);
}

int rio_putline_rgb(RFILE *file, const void *red, const void *green, const void *blue)
{
    uint8_t *lines[3] = { (uint8_t *)red, (uint8_t *)green, (uint8_t *)blue };
    return put_planes(file, "rio_putline_rgb", 3, lines);
}

enum { MOST_PLANES = 16 };

int rio_putline_planes(RFILE *file, int count, const void *const *planes)
{
    uint8_t *lines[MOST_PLANES] = {};
    for (int i = 0; i < std::min<int>(count, MOST_PLANES); i++)
        lines[i] = (uint8_t *)planes[i];
    return put_planes(file, "rio_putline_planes", std::min<int>(count, MOST_PLANES), lines);
}

int rio_putline_interleaved(RFILE *file, const void *line)
{
    if (!rio_enter(file, "rio_putline_interleaved"))
        return 1;
    const int at = file->current_line;
    file->flags |= RIO_INTERLEAVE;
    const int result = file->ops.putline_interleaved(file, (uint8_t *)line);
    file->flags &= ~uint32_t(RIO_INTERLEAVE);
    return end_put(file, at, result != 0);
}

int rio_putline16(RFILE *file, const uint16_t *line)
{
    if (!rio_enter(file, "rio_putline16"))
        return 1;
    uint8_t *lines[1] = { (uint8_t *)line };
    const int at = file->current_line;
    return end_put(file, at, file->ops.putline16(file, 1, lines) != 0);
}

// The slot answers a status here, not a count.
int rio_putrleline(RFILE *file, const void *runs, int size)
{
    if (!rio_enter(file, "rio_putrleline"))
        return 1;
    const int at = file->current_line;
    return end_put(file, at, file->ops.putrleline(file, (const uint8_t *)runs, size) == 0);
}
