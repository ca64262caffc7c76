// cgetrlet.cpp - tiles as run lengths: the runs of each row as native type 9 has them, row after row.
#include "RIO/CALS/cals.h"
#include "RIO/CORE/line_runs.h"
#include <algorithm>

// The runs that surely fit: a row of single pixels has one for each, and two more.
static int64_t surely_bytes(const RFILE *file)
{
    return 2 * (int64_t{ file->tiles->tile_width } + 2 + file->tiles->tile_width / 32767 * 2) * file->tiles->tile_height;
}

int cals_get_rle_tile(RFILE *file, uint8_t *buffer, int *size, int32_t *value)
{
    if (rio_tile_check(file))
        return 0;
    const int32_t tile = file->current_line, width = file->tiles->tile_width, height = file->tiles->tile_height;
    const int64_t row_words = cals_tile_words(file), words = *size / 2;
    mem_ptr<uint16_t> pixels(static_cast<uint16_t *>(mem_alloc(size_t(2 * row_words * height))));
    if (!pixels)
        return rio_fail(file, RIO_NO_MEMORY, "CALS tile");
    uint8_t *buffers[] = { buffer ? reinterpret_cast<uint8_t *>(pixels.get()) : nullptr };
    const int got = cals_get_tile(file, 1, buffers, value);
    if (!got || !buffer)
        return got;
    uint16_t *runs = reinterpret_cast<uint16_t *>(buffer);
    int64_t used = 0;
    for (int32_t y = 0; y < height && !(value && *value != -1); y++) {
        const int64_t row = rio_bitmap_runs(pixels.get() + y * row_words, width, runs + used, words - used);
        if (row < 0) {
            file->current_line = tile;
            *size = int(std::min<int64_t>(surely_bytes(file), INT32_MAX));
            return rio_fail(file, RIO_RLE_BUFFER, "CALS tile");
        }
        used += row;
    }
    *size = int(2 * used);
    return got;
}
