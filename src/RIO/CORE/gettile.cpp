// gettile.cpp - tiles to pictures and lines: tile geometry, blocks of tiles, and lines through a row of tiles.
#include "RIO/CORE/rio_format.h"
#include "RIO/CORE/stream_copy.h"
#include <algorithm>
#include <cstring>

// Lines of tiles are gathered in what a cache holds.
static constexpr int64_t MOST_GATHERED = int64_t{ 1 } << 18;
// The largest plane of a tile that is taken for one.
static constexpr int64_t MOST_TILE_BYTES = int64_t{ 1 } << 28;
// A row of tiles takes no more memory than the first, or than so many times the file's size.
static constexpr int64_t MOST_STRIP_BYTES = int64_t{ 1 } << 28, MOST_STRIP_SHARE = 64;

void rio_free_tiles(RFILE *file)
{
    rio_tiles *tiles = file->tiles;
    if (!tiles)
        return;
    for (uint8_t *strip : tiles->strip)
        mem_free(strip);
    mem_free(tiles->strip_cache);
    mem_free(tiles->directory);
    mem_free(tiles);
    file->tiles = nullptr;
}

static int32_t tiles_over(int32_t pixels, int32_t tile)
{
    return int32_t((int64_t{ pixels } + tile - 1) / tile);
}

int rio_set_tile_size(RFILE *file, int width, int height)
{
    if (width == 0 && height == 0) {
        rio_free_tiles(file);
        file->flags &= ~uint32_t(RIO_TILED);
        return 0;
    }
    if (width < 1 || height < 1 || rio_row_bytes(file, width) > MOST_TILE_BYTES / height)
        return rio_fail_status(file, RIO_BAD_TILE_SIZE, "tile size");
    if (!file->tiles)
        file->tiles = (rio_tiles *)mem_calloc(1, sizeof(rio_tiles));
    if (!file->tiles)
        return rio_fail_status(file, RIO_NO_MEMORY, "tiles");
    rio_tiles *tiles = file->tiles;
    tiles->tile_width = width;
    tiles->tile_height = height;
    tiles->tiles_across = tiles_over(file->width, width);
    tiles->tiles_down = tiles_over(file->height, height);
    mem_free(tiles->strip_cache);
    tiles->strip_cache = nullptr;
    tiles->strip_first_line = -1;
    file->flags |= RIO_TILED;
    return 0;
}

int64_t rio_tile_row_bytes(const RFILE *file)
{
    return rio_row_bytes(file, file->tiles->tile_width);
}

int rio_tile_check(RFILE *file)
{
    if (!(file->flags & RIO_TILED) || !file->tiles)
        return rio_fail_status(file, RIO_TILED_ONLY, "get tiles");
    if (!(file->access & RIO_ACCESS_CAN_READ))
        return rio_fail_status(file, RIO_NOT_READABLE, "get tiles");
    if (file->current_line < 0
        || file->current_line >= int64_t{ file->tiles->tiles_across } * file->tiles->tiles_down)
        return rio_fail_status(file, RIO_PAST_END, "get tiles");
    return 0;
}

// ---- blocks of tiles ---------------------------------------------------------------------------------------------

// Bytes from one pixel to the next when the present call wants interleaved lines, else 1.
static int pixel_step(const RFILE *file)
{
    return !(file->flags & RIO_INTERLEAVE) ? 1 : file->flags & RIO_PAD4 ? 4 : file->samples_per_pixel;
}

// ---- tiles where they lie ----------------------------------------------------------------------------------------------

// Rows of a tile in the file.
struct lying_rows {
    int64_t place, apart;
};

// Tiles that are handed out as they lie, in one plane.
static bool lies_plain(const RFILE *file, int planes)
{
    return planes == 1 && file->samples_per_pixel == 1 && pixel_step(file) == 1 && !(file->flags & RIO_SAMPLES_16);
}

static lying_rows rows_of_tile(RFILE *file, int64_t tile)
{
    lying_rows rows { -1, 0 };
    rows.place = file->ops.place_of_tile(file, tile, &rows.apart);
    return rows;
}

// Live pixels of a tile's row, and lines of a row of tiles.
static int64_t live_width(const RFILE *file, int column)
{
    return std::min<int64_t>(file->tiles->tile_width, file->width - int64_t{ column } * file->tiles->tile_width);
}

static int live_height(const RFILE *file, int row)
{
    return int(std::min<int64_t>(file->tiles->tile_height, file->height - int64_t{ row } * file->tiles->tile_height));
}

static void copy_rows(uint8_t *out, int64_t out_apart, const uint8_t *in, int64_t in_apart, int64_t bytes, int rows)
{
    for (int y = 0; y < rows; y++, out += out_apart, in += in_apart)
        std::memcpy(out, in, size_t(bytes));
}

// Where the tiles of a row of tiles lie in memory, from the first of them on; null when they do not, or not together.
static const uint8_t *look_at_tiles(RFILE *file, int row, int64_t *first)
{
    const rio_tiles *t = file->tiles;
    int64_t begin = INT64_MAX, end = 0;
    for (int column = 0; column < t->tiles_across; column++) {
        const lying_rows rows = rows_of_tile(file, int64_t{ row } * t->tiles_across + column);
        if (rows.place < 0)
            return nullptr;
        begin = std::min(begin, rows.place);
        end = std::max(end, rows.place + rows.apart * live_height(file, row));
    }
    *first = begin;
    return rio_look(file, begin, end - begin);
}

// ---- tiles in buffers --------------------------------------------------------------------------------------------------

enum { MOST_PLANES = 5 };

struct tile_buffers {
    mem_ptr<uint8_t> block;
    uint8_t *plane[MOST_PLANES];
    int64_t row_bytes;
};

static int buffers_alloc(RFILE *file, int count, void *const *wanted, tile_buffers *tile)
{
    tile->row_bytes = rio_tile_row_bytes(file) * pixel_step(file);
    const int64_t bytes = tile->row_bytes * file->tiles->tile_height;
    tile->block.reset((uint8_t *)mem_calloc(size_t(count), size_t(bytes)));
    if (!tile->block)
        return rio_fail(file, RIO_NO_MEMORY, "get tiles");
    for (int i = 0; i < count; i++)
        tile->plane[i] = wanted[i] ? tile->block.get() + bytes * i : nullptr;
    return 1;
}

// The part of a solid tile's level that goes to a plane: red is in bits 16 to 23, unless one plane alone is wanted.
static uint32_t plane_level(int count, void *const *wanted, int plane, int32_t value)
{
    int planes = 0;
    for (int i = 0; i < count; i++)
        planes += wanted[i] != nullptr;
    return planes > 1 && plane < 3 ? uint32_t(value) >> (16 - 8 * plane) & 0xFF : uint32_t(value);
}

static void fill_row(const RFILE *file, uint8_t *row, int64_t bytes, uint32_t level, int32_t value)
{
    const int step = pixel_step(file);
    if (step > 1) {
        for (int64_t i = 0; i < bytes; i++)
            row[i] = i % step < 3 ? uint8_t(uint32_t(value) >> (16 - 8 * (i % step))) : uint8_t{ 0 };
        return;
    }
    switch (file->data_type) {
    case RIO_TYPE_BITMAP:
    case RIO_TYPE_BITMAP_RLE:
    case RIO_TYPE_CCITT3:
    case RIO_TYPE_CCITT4: std::memset(row, level ? 255 : 0, size_t(bytes)); break;
    case RIO_TYPE_16:
        for (int64_t i = 0; i + 2 <= bytes; i += 2)
            put_le_u16(row + i, uint16_t(level));
        break;
    case RIO_TYPE_32:
        for (int64_t i = 0; i + 4 <= bytes; i += 4)
            put_le_u32(row + i, level);
        break;
    default: std::memset(row, int(level & 0xFF), size_t(bytes)); break;
    }
}

// One tile into its place in the picture: `rows` rows of `bytes` bytes.
static void place_tile(const RFILE *file, int count, void *const *pictures, const tile_buffers &tile, int64_t at,
                       int64_t row_bytes, int64_t bytes, int rows, int32_t value)
{
    for (int i = 0; i < count; i++) {
        if (!pictures[i])
            continue;
        uint8_t *out = (uint8_t *)pictures[i] + at;
        const uint8_t *in = tile.plane[i];
        const uint32_t level = plane_level(count, pictures, i, value);
        for (int y = 0; y < rows; y++, out += row_bytes, in += tile.row_bytes) {
            if (value != -1)
                fill_row(file, out, bytes, level, value);
            else
                std::memcpy(out, in, size_t(bytes));
        }
    }
}

static int read_tile(RFILE *file, int count, tile_buffers *tile, int32_t *value)
{
    const bool wide = file->flags & RIO_SAMPLES_16 && file->ops.gettile16 != rio_dummy_gettile16;
    *value = -1;
    const int result = (wide ? file->ops.gettile16 : file->ops.gettile)(file, count, tile->plane, value);
    // A dummy slot answers 1: its error tells.
    return result != 0 && file->error == 0;
}

// A tile from where it lies into its place in the picture. 0 when it does not lie so.
static int place_lying(RFILE *file, int64_t tile, uint8_t *out, int64_t row_bytes, int64_t bytes, int height)
{
    const lying_rows rows = rows_of_tile(file, tile);
    const uint8_t *in = rows.place < 0 ? nullptr : rio_look(file, rows.place, rows.apart * height);
    if (!in)
        return 0;
    copy_rows(out, row_bytes, in, rows.apart, bytes, height);
    return rio_look_ended(file);
}

static int64_t tile_rect(RFILE *file, int count, void *const *buffers, int64_t row_bytes, int tiles_wide, int tiles_high)
{
    if (rio_tile_check(file) != 0)
        return 0;
    if (count < 1 || count > MOST_PLANES)
        return rio_fail(file, RIO_BAD_COUNT, "get tiles");
    tile_buffers tile;
    if (!buffers_alloc(file, count, buffers, &tile))
        return 0;
    const bool plain = lies_plain(file, count) && buffers[0];
    const rio_tiles *t = file->tiles;
    const int first_column = file->current_line % t->tiles_across;
    const int first_row = file->current_line / t->tiles_across;
    const int columns = std::min(tiles_wide, t->tiles_across - first_column);
    const int rows = std::min(tiles_high, t->tiles_down - first_row);
    int64_t pixels = 0;
    for (int row = 0; row < rows; row++) {
        const int height = live_height(file, first_row + row);
        for (int column = 0; column < columns; column++) {
            const int64_t width = live_width(file, first_column + column);
            const int64_t into = column * tile.row_bytes, at = int64_t{ row } * t->tile_height * row_bytes + into;
            const int64_t bytes = std::min(rio_row_bytes(file, width) * pixel_step(file), row_bytes - into);
            file->current_line = (first_row + row) * t->tiles_across + first_column + column;
            if (bytes > 0 && plain && place_lying(file, file->current_line, (uint8_t *)buffers[0] + at, row_bytes, bytes, height)) {
                pixels += width * height;
                continue;
            }
            int32_t value;
            if (!read_tile(file, count, &tile, &value))
                return 0;
            if (bytes <= 0)
                continue;
            place_tile(file, count, buffers, tile, at, row_bytes, bytes, height, value);
            pixels += width * height;
        }
    }
    return pixels;
}

int64_t rio_get_tile_rect(RFILE *file, int count, void *const *buffers, int64_t row_bytes, int tiles_wide,
                          int tiles_high)
{
    if (!rio_enter(file, "rio_get_tile_rect"))
        return 0;
    const int64_t pixels = tile_rect(file, count, buffers, row_bytes, tiles_wide, tiles_high);
    rio_leave(file);
    return pixels;
}

// ---- lines -------------------------------------------------------------------------------------------------------

// Room in the strip for `lines` lines of each plane. 0 with RIO_NO_MEMORY set.
static int make_strip(RFILE *file, int64_t lines, int64_t line_bytes, int planes)
{
    rio_tiles *t = file->tiles;
    const int64_t bytes = lines * line_bytes;
    // Solid tiles take no bytes: a small file may tell of a row of them that no memory holds.
    if (bytes > MOST_STRIP_BYTES / planes && bytes > MOST_STRIP_SHARE * rio_file_size(file) / planes)
        return rio_fail(file, RIO_NO_MEMORY, "getlinefromtile");
    t->strip_first_line = -1;
    t->strip_lines = int32_t(lines);
    if (!t->strip_cache || t->strip_planes != planes || t->strip_bytes != bytes) {
        t->strip_bytes = bytes;
        mem_free(t->strip_cache);
        t->strip_cache = (uint8_t *)mem_alloc(size_t(bytes * planes));
        t->strip_planes = planes;
    }
    return t->strip_cache ? 1 : rio_fail(file, RIO_NO_MEMORY, "getlinefromtile");
}

// Fills the strip with lines from the present one on, from where the tiles lie. 0 when they do not lie so.
static int gather_strip(RFILE *file, int64_t line_bytes)
{
    rio_tiles *t = file->tiles;
    const int row = file->current_line / t->tile_height, into = file->current_line % t->tile_height;
    const int lines = int(std::min<int64_t>(live_height(file, row) - into, std::max<int64_t>(MOST_GATHERED / line_bytes, 1)));
    int64_t first;
    const uint8_t *lie = look_at_tiles(file, row, &first);
    if (!lie || !make_strip(file, lines, line_bytes, 1))
        return 0;
    for (int column = 0; column < t->tiles_across; column++) {
        const lying_rows rows = rows_of_tile(file, int64_t{ row } * t->tiles_across + column);
        copy_rows(t->strip_cache + column * rio_tile_row_bytes(file), line_bytes, lie + (rows.place - first) + into * rows.apart,
                  rows.apart, rio_row_bytes(file, live_width(file, column)), lines);
    }
    if (rio_look_ended(file))
        t->strip_first_line = file->current_line;
    return t->strip_first_line >= 0;
}

// Fills the strip with the row of tiles of the present line, which stays.
static int fill_strip(RFILE *file, int64_t line_bytes, int planes)
{
    rio_tiles *t = file->tiles;
    if (lies_plain(file, planes) && file->access == RIO_ACCESS_READ && gather_strip(file, line_bytes))
        return 1;
    const int line = file->current_line;
    if (!make_strip(file, std::min(t->tile_height, file->height), line_bytes, planes))
        return 0;
    void *plane[MOST_PLANES];
    for (int i = 0; i < planes; i++)
        plane[i] = t->strip_cache + i * t->strip_bytes;

    const uint32_t squeezed = file->flags & RIO_SQUETCH;
    file->flags &= ~squeezed;
    t->strip_first_line = line - line % t->tile_height;
    file->current_line = line / t->tile_height * t->tiles_across;
    const bool filled = tile_rect(file, planes, plane, line_bytes, t->tiles_across, 1) != 0;
    file->current_line = line;
    file->flags |= squeezed;
    if (!filled)
        t->strip_first_line = -1;
    return filled;
}

// The strip holds the present line, with lines of so many bytes.
static int strip_ready(RFILE *file, int64_t line_bytes, int planes)
{
    const rio_tiles *t = file->tiles;
    const bool held = t->strip_cache && t->strip_planes == planes && t->strip_bytes == t->strip_lines * line_bytes
                      && t->strip_first_line >= 0 && t->strip_first_line <= file->current_line
                      && file->current_line - t->strip_first_line < t->strip_lines;
    return held || fill_strip(file, line_bytes, planes);
}

static bool is_bilevel(uint32_t type)
{
    return type == RIO_TYPE_BITMAP || type == RIO_TYPE_BITMAP_RLE || type == RIO_TYPE_CCITT3 || type == RIO_TYPE_CCITT4;
}

int rio_getlinefromtile(RFILE *file, int count, uint8_t **lines)
{
    if (!file->tiles)
        return rio_fail(file, RIO_TILED_ONLY, "getlinefromtile");
    const int step = pixel_step(file);
    const int planes = step > 1 ? 1 : std::clamp<int>(file->samples_per_pixel, 1, MOST_PLANES);
    const int64_t bytes = rio_line_bytes(file) * step;
    if (!strip_ready(file, bytes, planes))
        return 0;
    const rio_tiles *t = file->tiles;
    const uint8_t *row = t->strip_cache + (file->current_line - t->strip_first_line) * bytes;
    for (int s = 0; s < std::min(count, planes); s++)
        if (lines[s])
            std::memcpy(lines[s], row + s * t->strip_bytes, size_t(bytes));
    if (planes == 1 && step == 1 && count >= 3 && lines[0] && !is_bilevel(file->data_type))
        rio_translate_line(file, lines[0], lines[1], lines[2], file->width);
    file->current_line++;
    return file->width;
}

int rio_getlinesfromtile(RFILE *file, int count, uint8_t *rows, int64_t row_bytes, bool large)
{
    const int64_t bytes = rio_line_bytes(file);
    if (!file->tiles || file->samples_per_pixel != 1 || pixel_step(file) != 1 || !strip_ready(file, bytes, 1))
        return 0;
    const rio_tiles *t = file->tiles;
    const int ahead = std::min(t->strip_first_line + t->strip_lines, file->height) - file->current_line, lines = std::min(count, ahead);
    const uint8_t *from = t->strip_cache + (file->current_line - t->strip_first_line) * bytes;
    if (row_bytes == bytes && large)
        rio_stream_copy(rows, from, size_t(lines * bytes));
    else
        copy_rows(rows, row_bytes, from, bytes, bytes, lines);
    file->current_line += lines;
    return lines;
}

// ---- public calls ------------------------------------------------------------------------------------------------

static int plane_list(int count, void *const *buffers, uint8_t **planes)
{
    const int n = std::clamp<int>(count, 0, MOST_PLANES);
    for (int i = 0; i < n; i++)
        planes[i] = buffers ? (uint8_t *)buffers[i] : nullptr;
    return n;
}

// A whole tile from where it lies in the file. Who gives another buffer for each tile keeps them, and they go there past the caches; who gives
// the same again works on it at once. 0 when the tile does not lie so.
static int get_lying_tile(RFILE *file, int planes, uint8_t *out)
{
    if (file->access != RIO_ACCESS_READ || !lies_plain(file, planes) || !out || rio_tile_check(file) != 0)
        return 0;
    rio_tiles *t = file->tiles;
    const int column = file->current_line % t->tiles_across, row = file->current_line / t->tiles_across;
    if (live_width(file, column) < t->tile_width || live_height(file, row) < t->tile_height)
        return 0;
    const lying_rows rows = rows_of_tile(file, file->current_line);
    if (rows.place < 0 || rows.apart != rio_tile_row_bytes(file))
        return 0;
    const bool kept = out != t->last_buffer;
    t->last_buffer = out;
    if (!(kept ? rio_stream_at : rio_read_at)(file, rows.place, out, rows.apart * t->tile_height))
        return 0;
    file->current_line++;
    return 1;
}

int rio_gettile(RFILE *file, int count, void *const *buffers, int32_t *value)
{
    if (!rio_enter(file, "rio_gettile"))
        return 1;
    uint8_t *planes[MOST_PLANES] = {};
    const int n = plane_list(count, buffers, planes);
    const bool lying = get_lying_tile(file, n, planes[0]);
    if (lying && value)
        *value = -1;
    const int result = lying || file->ops.gettile(file, n, planes, value);
    rio_leave(file);
    return result == 0;
}

int rio_gettile16(RFILE *file, void *buffer, int32_t *value)
{
    if (!rio_enter(file, "rio_gettile16"))
        return 1;
    uint8_t *planes[1] = { (uint8_t *)buffer };
    const int result = file->ops.gettile16(file, 1, planes, value);
    rio_leave(file);
    return result == 0;
}

int rio_getrletile(RFILE *file, void *buffer, int *size, int32_t *value)
{
    if (!rio_enter(file, "rio_getrletile"))
        return 1;
    const int result = file->ops.getrletile(file, (uint8_t *)buffer, size, value);
    rio_leave(file);
    return result == 0;
}
