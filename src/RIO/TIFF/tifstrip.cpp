// Stored rows of strips and tiles. Uncompressed rows are read one by one at their place; of the rest a whole strip or tile
// is read and decoded, once.
#include "RIO/CORE/bit_lines.h"
#include "RIO/TIFF/tif.h"
#include "RIO/TIFF/tifpack.h"
#include <algorithm>

void tif_drop_strips(tif_specs *specs)
{
    for (tif_held &held : specs->held) {
        mem_free(held.pixels);
        mem_free(held.runs);
        mem_free(held.run_index);
        held = { .index = -1, .pixels = nullptr, .bytes = 0, .room = 0, .runs = nullptr, .run_index = nullptr, .lines = 0 };
    }
    mem_free(specs->coded);
    specs->coded = nullptr;
    specs->coded_room = 0;
}

// A block that only grows; what it held is lost. 0 with RIO_NO_MEMORY set.
static int make_room(RFILE *file, uint8_t **block, int64_t *room, int64_t bytes)
{
    if (*block && *room >= bytes)
        return 1;
    mem_free(*block);
    *block = static_cast<uint8_t *>(mem_alloc(size_t(bytes)));
    *room = *block ? bytes : 0;
    return *block ? 1 : rio_fail(file, RIO_NO_MEMORY, "tifstrip");
}

static void reverse_bytes(uint8_t *bytes, int64_t count)
{
    for (int64_t i = 0; i < count; i++)
        bytes[i] = rio_reversed(bytes[i]);
}

int64_t tif_unit_place(RFILE *file, const tif_specs *specs, int64_t index, int64_t *offset)
{
    *offset = index < specs->offsets_held ? file->image_offset + specs->strip_offsets[index] : 0;
    return *offset > file->image_offset ? std::max<int64_t>(rio_file_size(file) - *offset, 0) : 0;
}

int64_t tif_read_coded(RFILE *file, tif_specs *specs, int64_t index, int64_t expected)
{
    int64_t offset;
    const int64_t left = tif_unit_place(file, specs, index, &offset);
    const int64_t count = index < specs->counts_held ? specs->strip_counts[index] : 0;
    const int64_t bytes = std::min(count ? count : expected, left);
    if (bytes <= 0) {
        rio_fail(file, RIO_READ_FAILED, "reading strip");
        return -1;
    }
    if (!make_room(file, &specs->coded, &specs->coded_room, bytes))
        return -1;
    if (!rio_read_at(file, offset, specs->coded, bytes)) {
        rio_fail(file, RIO_READ_FAILED, "reading strip");
        return -1;
    }
    if (specs->fill_order == 2)
        reverse_bytes(specs->coded, bytes);
    return bytes;
}

// Rows of the unit whose bytes are all there.
static int64_t expand_packbits(const tif_specs *specs, int64_t coded, uint8_t *out, int64_t row_bytes, int64_t rows)
{
    int64_t used = 0, row = 0;
    for (; row < rows && used < coded; row++) {
        int64_t written;
        used += packbits_decode(specs->coded + used, out + row * row_bytes, row_bytes, coded - used, &written);
        if (written < row_bytes)
            return row * row_bytes + written;
    }
    return row * row_bytes;
}

static void undo_differences(const tif_specs *specs, const tif_unit &unit, uint8_t *pixels, int64_t bytes, int64_t row_bytes)
{
    const int step = tif_samples_in_row(specs);
    for (int64_t at = 0; at < bytes; at += row_bytes) {
        const int64_t here = std::min(row_bytes, bytes - at);
        if (specs->bits_per_sample[0] == 16)
            tif_sum_words(pixels + at, std::min<int64_t>(here / 2, int64_t{unit.width} * step), step, tif_big_endian(specs));
        else
            tif_sum_bytes(pixels + at, here, step);
    }
}

// Coded bytes cannot stand for more than so many times their number: a code of nine bits for the longest string, or two
// bytes for a run of 128. So a few bytes that claim to be a huge strip get little memory.
enum { LZW_MOST_GROWTH = 3838, PACKBITS_MOST_GROWTH = 64 };

static int decode_strip(RFILE *file, tif_specs *specs, const tif_unit &unit)
{
    tif_held &held = specs->held[unit.plane];
    const int64_t row_bytes = tif_row_bytes(specs, unit.width);
    const int64_t whole = row_bytes * unit.rows;
    held.index = -1;
    const int64_t coded = tif_read_coded(file, specs, unit.index, whole);
    if (coded < 0)
        return 0;
    const bool lzw = specs->compression == TIF_LZW;
    const int64_t growth = lzw ? LZW_MOST_GROWTH : PACKBITS_MOST_GROWTH;
    const int64_t bytes = std::min({ whole, coded * growth, int64_t{UINT32_MAX} });
    if (!make_room(file, &held.pixels, &held.room, bytes))
        return 0;
    held.bytes = lzw ? lzw_decode(specs->coded, held.pixels, 8, bytes, file, coded)
                     : expand_packbits(specs, coded, held.pixels, row_bytes, bytes / row_bytes);
    if (lzw && specs->predictor == TIF_DIFFERENCES)
        undo_differences(specs, unit, held.pixels, held.bytes, row_bytes);
    held.index = unit.index;
    return 1;
}

static const uint8_t *plain_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row)
{
    tif_held &held = specs->held[unit.plane];
    const int64_t row_bytes = tif_row_bytes(specs, unit.width);
    int64_t offset;
    const int64_t left = tif_unit_place(file, specs, unit.index, &offset);
    if (left < (int64_t{row} + 1) * row_bytes) {
        rio_fail(file, RIO_READ_FAILED, "reading strip");
        return nullptr;
    }
    if (!make_room(file, &held.pixels, &held.room, row_bytes))
        return nullptr;
    if (!rio_read_at(file, offset + row * row_bytes, held.pixels, row_bytes)) {
        rio_fail(file, RIO_READ_FAILED, "reading strip");
        return nullptr;
    }
    if (specs->fill_order == 2)
        reverse_bytes(held.pixels, row_bytes);
    return held.pixels;
}

const uint8_t *tif_stored_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row)
{
    if (specs->compression == TIF_UNCOMPRESSED)
        return plain_row(file, specs, unit, row);
    const tif_held &held = specs->held[unit.plane];
    if (held.index != unit.index && !decode_strip(file, specs, unit))
        return nullptr;
    const int64_t row_bytes = tif_row_bytes(specs, unit.width);
    if (held.bytes < (int64_t{row} + 1) * row_bytes) {
        rio_fail(file, RIO_READ_FAILED, "reading strip");
        return nullptr;
    }
    return held.pixels + row * row_bytes;
}

int tif_read_plain(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row, uint8_t *out, int64_t bytes)
{
    int64_t offset;
    const int64_t left = tif_unit_place(file, specs, unit.index, &offset);
    const int64_t begin = row * tif_row_bytes(specs, unit.width);
    if (left < begin + bytes || !rio_read_at(file, offset + begin, out, bytes))
        return rio_fail(file, RIO_READ_FAILED, "reading strip");
    return 1;
}
