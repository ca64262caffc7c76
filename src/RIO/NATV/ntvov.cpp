// ntvov.cpp - makes the base image the active one: its size, its real type, its tiles.
#include "RIO/NATV/ntv.h"

// Head of a tile directory: the packet head, and at 18 the real data type, at 120 the edge of the square tiles.
enum { TILE_HEAD_BYTES = 128, TILE_ID = 1, TILE_CODE = 7, TILE_TYPE = 18, TILE_SIZE = 120 };

static int take_tile_head(RFILE *file)
{
    uint8_t head[TILE_HEAD_BYTES];
    const int64_t at = file->image_offset + 2 * int64_t{ natv_u16(file, NATV_WORDS) } + 4;
    if (!rio_read_at(file, at, head, TILE_HEAD_BYTES))
        return rio_fail(file, RIO_READ_FAILED, "tile directory");
    if (le_u16(head) != TILE_ID || le_u16(head + 2) != TILE_CODE)
        return rio_fail(file, RIO_NOT_STANDARD, "tile directory");
    const uint32_t edge = le_u32(head + TILE_SIZE);
    if (edge == 0 || edge > INT32_MAX)
        return rio_fail(file, RIO_READ_FAILED, "tile directory");
    const int type = le_u16(head + TILE_TYPE);
    if (!natv_is_data_type(type) || type == RIO_TYPE_TILED)
        return rio_fail(file, RIO_NOT_STANDARD, "tile directory");
    natv(file)->data_type = uint32_t(type);
    return rio_set_tile_size(file, int(edge), int(edge)) == 0;
}

static int activate_base(RFILE *file)
{
    natv_specs *specs = natv(file);
    file->active_overview = -1;
    file->width = int32_t(natv_u32(file, NATV_WIDTH));
    file->height = int32_t(natv_u32(file, NATV_HEIGHT));
    specs->data_type = uint32_t(natv_i16(file, NATV_DATA_TYPE));
    if (specs->data_type == RIO_TYPE_TILED && !take_tile_head(file))
        return 1;
    rio_set_shape(file, specs->data_type);
    file->data_type = specs->data_type;
    natv_find_line_pad(file);
    natv_rewind(file);
    return 0;
}

int natv_set_active_ov(RFILE *file, int overview)
{
    file->error = 0;
    if (overview < 0)
        return file->active_overview == -1 || !(file->access & RIO_ACCESS_CAN_READ) ? 0 : activate_base(file);
    if (!natv(file)->overview_dir.bytes)
        return rio_fail_status(file, RIO_NO_OVERVIEW, "set_active_overview");
    return rio_fail_status(file, RIO_UNSUPPORTED, "native overviews");
}
