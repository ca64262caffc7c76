// ntvdir.cpp - the tile directory: 128 bytes of head and 12 bytes a tile, at the start of the image's or overview's data.
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

enum dir_field {
    DIR_ID = 0,             // u16, 1
    DIR_CODE = 2,           // u16, 7
    DIR_WORDS = 4,          // u32, words behind the first four
    DIR_VERSION = 8,        // u16, 1
    DIR_KIND = 10,          // u16, 1
    DIR_OVERVIEWS = 16,     // u16, 1; 3 with overviews
    DIR_TYPE = 18,          // u16, the tiles' data type
    DIR_TILE_SIZE = 120,    // u32, the edge of the square tiles
};

int64_t natv_tile_count(const RFILE *file)
{
    return int64_t{ file->tiles->tiles_across } * file->tiles->tiles_down;
}

static uint8_t *entry_at(const RFILE *file, int64_t tile)
{
    return (uint8_t *)file->tiles->directory + NATV_TILE_HEAD + NATV_TILE_ENTRY * tile;
}

natv_entry natv_get_entry(const RFILE *file, int64_t tile)
{
    if (!file->tiles->directory)
        return {};
    const uint8_t *p = entry_at(file, tile);
    return { le_u32(p), le_u32(p + 4), le_u32(p + 8) };
}

void natv_set_entry(RFILE *file, int64_t tile, natv_entry entry)
{
    uint8_t *p = entry_at(file, tile);
    put_le_u32(p, entry.offset);
    put_le_u32(p + 4, entry.allocated);
    put_le_u32(p + 8, entry.used);
    file->flags |= RIO_TILES_DIRTY;
    file->tiles->strip_first_line = -1;     // lines read before are of the old tile
    jpeg_forget_strip(file);
}

void natv_drop_tiles(RFILE *file)
{
    rio_free_tiles(file);
    file->flags &= ~uint32_t(RIO_TILED | RIO_TILES_DIRTY);
}

static int64_t directory_bytes(const RFILE *file)
{
    return NATV_TILE_HEAD + NATV_TILE_ENTRY * natv_tile_count(file);
}

int natv_write_directory(RFILE *file)
{
    if (!file->tiles || !file->tiles->directory)
        return 1;
    if (!rio_write_at(file, natv_data_start(file), file->tiles->directory, directory_bytes(file)))
        return rio_fail(file, RIO_WRITE_FAILED, "tile directory");
    file->flags &= ~uint32_t(RIO_TILES_DIRTY);
    return 1;
}

int natv_make_directory(RFILE *file)
{
    rio_tiles *tiles = file->tiles;
    const int64_t bytes = directory_bytes(file);
    if (natv_tile_count(file) < 1 || bytes > INT32_MAX)
        return rio_fail(file, RIO_BAD_TILE_SIZE, "tile directory");
    mem_free(tiles->directory);
    tiles->directory = mem_calloc(1, size_t(bytes));
    if (!tiles->directory)
        return rio_fail(file, RIO_NO_MEMORY, "tile directory");
    uint8_t *head = (uint8_t *)tiles->directory;
    put_le_u16(head + DIR_ID, 1);
    put_le_u16(head + DIR_CODE, 7);
    put_le_u32(head + DIR_WORDS, uint32_t((bytes - NATV_PACKET_HEAD) / 2));
    put_le_u16(head + DIR_VERSION, 1);
    put_le_u16(head + DIR_KIND, 1);
    put_le_u16(head + DIR_OVERVIEWS, natv_overview_count(file) > 0 ? 3 : 1);
    put_le_u16(head + DIR_TYPE, uint16_t(natv(file)->data_type));
    put_le_u32(head + DIR_TILE_SIZE, uint32_t(tiles->tile_width));
    if (!natv_write_directory(file))
        return 0;
    tiles->next_free = bytes;
    natv(file)->file_end = std::max(natv_file_end(file), natv_data_start(file) + bytes);
    return 1;
}

// The head of the directory: the edge of the tiles and their type.
static int take_head(RFILE *file, const uint8_t *head)
{
    if (le_u16(head + DIR_ID) != 1 || le_u16(head + DIR_CODE) != 7)
        return rio_fail(file, RIO_NOT_STANDARD, "tile directory");
    const uint32_t edge = le_u32(head + DIR_TILE_SIZE);
    if (edge == 0 || edge > INT32_MAX)
        return rio_fail(file, RIO_READ_FAILED, "tile directory");
    const int type = le_u16(head + DIR_TYPE);
    if (!natv_is_data_type(type) || type == RIO_TYPE_TILED)
        return rio_fail(file, RIO_NOT_STANDARD, "tile directory");
    file->data_type = natv(file)->data_type = uint32_t(type);
    rio_set_shape(file, uint32_t(type));
    return rio_size_valid(file->width, file->height, file->samples_per_pixel, file->bits_per_sample)
               ? rio_set_tile_size(file, int(edge), int(edge)) == 0
               : rio_fail(file, RIO_BAD_SIZE, "tile directory");
}

int natv_load_directory(RFILE *file)
{
    uint8_t head[NATV_TILE_HEAD];
    const int64_t at = natv_data_start(file);
    if (!rio_read_at(file, at, head, NATV_TILE_HEAD))
        return rio_fail(file, RIO_READ_FAILED, "tile directory");
    if (!take_head(file, head))
        return 0;
    // The entries must lie in the packet and in the file before memory is asked for.
    const int64_t bytes = directory_bytes(file);
    if (bytes > 2 * int64_t{ le_u32(head + DIR_WORDS) } + NATV_PACKET_HEAD)
        return rio_fail(file, RIO_NOT_STANDARD, "tile directory");
    if (bytes > rio_file_size(file) - at || bytes > INT32_MAX)
        return rio_fail(file, RIO_READ_FAILED, "tile directory");
    rio_tiles *tiles = file->tiles;
    tiles->directory = mem_alloc(size_t(bytes));
    if (!tiles->directory)
        return rio_fail(file, RIO_NO_MEMORY, "Malloc Failed: set_active_ov");
    if (!rio_read_at(file, at, tiles->directory, bytes))
        return rio_fail(file, RIO_READ_FAILED, "tile directory");
    tiles->next_free = bytes;
    for (int64_t i = 0; i < natv_tile_count(file); i++) {
        const natv_entry e = natv_get_entry(file, i);
        tiles->next_free = std::max(tiles->next_free, int64_t{ e.offset } + e.allocated);
    }
    return 1;
}
