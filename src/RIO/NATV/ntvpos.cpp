// ntvpos.cpp - where the lines of an image lie, and how to get there.
#include "RIO/NATV/ntv.h"
#include <algorithm>

bool natv_is_jpeg(uint32_t type)
{
    return type >= RIO_TYPE_JPEG && type <= RIO_TYPE_JPEG_4;
}

bool natv_is_ccitt(uint32_t type)
{
    return type == RIO_TYPE_CCITT3 || type == RIO_TYPE_CCITT4;
}

bool natv_is_compressed(uint32_t type)
{
    return type > RIO_TYPE_128 && type != RIO_TYPE_RGB && type != RIO_TYPE_4;
}

bool natv_uses_feed(const RFILE *file)
{
    const uint32_t type = file->data_type;
    return file->flags & RIO_SCANNABLE || (natv_is_compressed(type) && !natv_is_jpeg(type) && !natv_is_ccitt(type));
}

int64_t natv_header_end(const RFILE *file)
{
    return file->image_offset + 2 * int64_t{ natv_u16(file, NATV_WORDS) } + 4;
}

int64_t natv_data_start(const RFILE *file)
{
    return natv_header_end(file) + natv_overview_offset(file);
}

int64_t natv_stride(const RFILE *file)
{
    const int64_t width = file->width;
    switch (file->data_type) {
    case RIO_TYPE_BITMAP:
    case RIO_TYPE_BYTE:
    case RIO_TYPE_16:
    case RIO_TYPE_32:
    case RIO_TYPE_32B:
    case RIO_TYPE_64:
    case RIO_TYPE_64B:
    case RIO_TYPE_128: return rio_line_bytes(file);
    case RIO_TYPE_RGB: return 3 * width + (file->flags & RIO_PAD_LINE && width % 2 ? 1 : 0);
    case RIO_TYPE_4: return file->samples_per_pixel * width;
    default: return 0;
    }
}

int64_t natv_data_end(RFILE *file)
{
    const uint32_t next_image = natv_u32(file, NATV_NEXT_IMAGE);
    int64_t end = next_image > file->image_offset ? int64_t{ next_image } : rio_file_size(file);
    for (int i = 0; i < natv_overview_count(file); i++) {
        const uint32_t offset = le_u32(natv_overview_entry(file, i));
        if (offset && natv_header_end(file) + offset > natv_data_start(file))
            end = std::min(end, natv_header_end(file) + offset);
    }
    return end;
}

void natv_find_line_pad(RFILE *file)
{
    file->flags &= ~uint32_t(RIO_PAD_LINE);
    if (file->data_type != RIO_TYPE_RGB || file->width % 2 == 0 || file->flags & (RIO_TILED | RIO_SCANNABLE))
        return;
    const int64_t plain = 3 * int64_t{ file->width } * file->height;
    if (natv_data_end(file) - natv_data_start(file) == plain + file->height)
        file->flags |= RIO_PAD_LINE;
}

// ---- the place in the file -------------------------------------------------------------------------------------------

int64_t natv_place(RFILE *file)
{
    return natv_uses_feed(file) && natv(file)->feed ? feed_position(natv(file)->feed) : rio_byte_tell(file);
}

// Without memory for the feed the line that needs it fails.
void natv_set_place(RFILE *file, int64_t offset)
{
    natv_specs *specs = natv(file);
    if (!natv_uses_feed(file)) {
        rio_byte_seek(file, offset);
        return;
    }
    if (!specs->feed) {
        specs->feed = (byte_feed *)mem_alloc(sizeof(byte_feed));
        if (!specs->feed)
            return;
        specs->feed->next = specs->feed->at = specs->feed->used = 0;
    }
    // What the feed holds may have been written over.
    if (file->access & RIO_ACCESS_CAN_WRITE) {
        specs->feed->used = specs->feed->at = 0;
        specs->feed->next = offset;
        rio_byte_seek(file, offset);
        return;
    }
    feed_seek(specs->feed, offset);
}

void natv_note_line(RFILE *file)
{
    if (!file->line_offsets || file->current_line >= file->height || file->line_offsets[file->current_line] > 0)
        return;
    const bool headed = file->flags & RIO_SCANNABLE && !natv(file)->segments_end;
    file->line_offsets[file->current_line] = natv_place(file) - (headed ? 8 : 0) - file->image_offset;
}

// ---- seek ------------------------------------------------------------------------------------------------------------

// Goes to a line whose place is noted.
static void go_to_noted(RFILE *file, int line)
{
    natv_set_place(file, file->image_offset + file->line_offsets[line]);
    if (file->flags & RIO_SCANNABLE)
        natv_next_segment(file);
    file->current_line = line;
}

// Lines from the present one on that no segment belongs to. Line numbers are of 16 bits.
static int empty_lines(const RFILE *file)
{
    if (!(file->flags & RIO_SCANNABLE))
        return 0;
    const natv_specs *specs = natv(file);
    return specs->segments_end ? INT32_MAX : uint16_t(specs->line_header[2] - file->current_line);
}

// Lines without a length of their own are passed one by one.
static int pass_lines(RFILE *file, int line)
{
    if (file->line_offsets) {
        int known = line;
        while (known > 0 && file->line_offsets[known] == -1)
            known--;
        // The first header decides how lines are counted.
        if (known == 0)
            natv_rewind(file);
        else
            go_to_noted(file, known);
    } else if (line < file->current_line) {
        natv_rewind(file);
    }
    uint8_t *none[1] = { nullptr };
    while (file->current_line < line) {
        if (const int empty = empty_lines(file))
            file->current_line = int(std::min<int64_t>(line, int64_t{ file->current_line } + empty));
        else if (!natv_get_line(file, 1, none) && file->error)
            return rio_fail_status(file, RIO_READ_FAILED, "Natv Seek");
    }
    return 0;
}

static int64_t most_places(const RFILE *file)
{
    return file->flags & RIO_TILED && file->tiles ? std::max<int64_t>(natv_tile_count(file), file->height)
                                                  : int64_t{ file->height };
}

static int plain_seek(RFILE *file, int line)
{
    if (line < 0 || line >= most_places(file))
        return rio_fail_status(file, RIO_PAST_END, "Natv Seek");
    const uint32_t type = file->data_type;
    if (natv_uses_feed(file) && !(file->flags & RIO_TILED)) {
        if (file->access & RIO_ACCESS_CAN_READ)
            return pass_lines(file, line);
    } else if (!(file->flags & RIO_TILED) && !natv_is_ccitt(type) && !natv_is_jpeg(type)
               && !rio_byte_seek(file, natv_data_start(file) + natv_stride(file) * line)) {
        return rio_fail_status(file, RIO_READ_FAILED, "Natv Seek");
    }
    file->current_line = line;
    return 0;
}

int natv_seek(RFILE *file, int line)
{
    if (file->flags & RIO_SQUETCH)
        return rio_squetch_seek(file, line, "Natv squetch", plain_seek);
    return plain_seek(file, line);
}

void natv_rewind(RFILE *file)
{
    file->current_line = 0;
    if (!(file->flags & RIO_TILED) && file->flags & RIO_SCANNABLE && file->access & RIO_ACCESS_CAN_READ)
        natv_start_segments(file, natv_data_start(file));
    else
        natv_set_place(file, natv_data_start(file));
}
