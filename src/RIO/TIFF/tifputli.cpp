// Lines to stored rows, rows to strips, strips to the file.
#include "RIO/CORE/bit_lines.h"
#include "RIO/CORE/line_runs.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/TIFF/tif.h"
#include "RIO/TIFF/tifpack.h"
#include <algorithm>

// ---- rows ----------------------------------------------------------------------------------------------------------

// Samples of wide lines in the file's order: only a file of the other order that is being changed needs a swap.
static void store_samples(const tif_specs *specs, const uint8_t *line, int32_t width, uint8_t *out)
{
    const int bits = specs->bits_per_sample[0];
    if (bits == 1) {
        rio_bits_to_bytes(reinterpret_cast<const uint16_t *>(line), out, (int64_t{width} + 7) / 8);
        return;
    }
    std::memcpy(out, line, size_t(int64_t{width} * bits / 8));
    for (int64_t i = 0; tif_big_endian(specs) && i < width; i++) {
        if (bits == 16)
            put_be_u16(out + 2 * i, le_u16(line + 2 * i));
        else if (bits == 32)
            put_be_u32(out + 4 * i, le_u32(line + 4 * i));
    }
}

static void store_pixels(int samples, int count, uint8_t **lines, int32_t width, uint8_t *out)
{
    if (samples == 3) {
        rio_join_3(lines[0], lines[1], lines[2], width, out);
        return;
    }
    for (int s = 0; s < samples; s++)
        for (int64_t x = 0; x < width; x++)
            out[x * samples + s] = s < count && lines[s] ? lines[s][x] : uint8_t{0};
}

// The stored row of one plane; `out` has room for a byte more. The buffers are there: check_lines has looked.
static void store_row(const tif_specs *specs, int plane, const tif_unit &unit, int count, uint8_t **lines, uint8_t *out)
{
    const int samples = specs->samples_per_pixel;
    if (samples == 1 || tif_is_planar(specs))
        store_samples(specs, lines[plane], unit.width, out);
    else
        store_pixels(samples, count, lines, unit.width, out);
    const int64_t bytes = tif_row_bytes(specs, unit.width);
    if (specs->photometric == TIF_WHITE_IS_ZERO && samples == 1 && specs->bits_per_sample[0] > 1)
        for (int64_t i = 0; i < bytes; i++)
            out[i] = uint8_t(~out[i]);
    if (specs->fill_order == 2)
        for (int64_t i = 0; i < bytes; i++)
            out[i] = rio_reversed(out[i]);
}

static int check_lines(RFILE *file, const tif_specs *specs, int count, uint8_t **lines)
{
    const int samples = specs->samples_per_pixel, bits = specs->bits_per_sample[0];
    if (bits != 8 && (samples != 1 || (bits != 1 && bits != 16 && bits != 32)))
        return rio_fail(file, RIO_UNSUPPORTED, "tif_put_line");
    if (samples == 1)
        return count >= 1 && lines[0] ? 1 : rio_fail(file, RIO_BAD_COUNT, "tif_put_line");
    const bool fits = (samples == 3 && specs->photometric == TIF_RGB) || (samples == 4 && specs->photometric != TIF_PALETTE);
    if (!fits)
        return rio_fail(file, RIO_FEATURE_10, "tiff photometric interpretation");
    for (int s = 0; s < samples; s++)
        if (s >= count || !lines[s])
            return rio_fail(file, RIO_BAD_COUNT, "tif_put_line");
    return 1;
}

// ---- strips --------------------------------------------------------------------------------------------------------

static int make_room(RFILE *file, uint8_t **block, int64_t *room, int64_t used, int64_t bytes)
{
    if (*block && *room - used >= bytes)
        return 1;
    const int64_t wanted = std::max(2 * *room, used + 2 * bytes);
    uint8_t *grown = static_cast<uint8_t *>(mem_realloc(*block, size_t(wanted)));
    if (!grown)
        return rio_fail(file, RIO_NO_MEMORY, "rio_put_line: Malloc failure\n");
    *block = grown;
    *room = wanted;
    return 1;
}

static int add_packed(RFILE *file, tif_specs *specs, int plane, const tif_unit &unit, int count, uint8_t **lines)
{
    tif_writing &w = specs->unit;
    const int64_t row_bytes = tif_row_bytes(specs, unit.width);
    if (!make_room(file, &w.out, &w.out_room, 0, row_bytes + 1)
        || !make_room(file, &w.rows[plane], &w.room[plane], w.fill[plane], packbits_most_bytes(row_bytes)))
        return 0;
    store_row(specs, plane, unit, count, lines, w.out);
    w.fill[plane] += packbits_encode(w.out, w.rows[plane] + w.fill[plane], row_bytes);
    return 1;
}

static int add_stored(RFILE *file, tif_specs *specs, int plane, const tif_unit &unit, int count, uint8_t **lines)
{
    tif_writing &w = specs->unit;
    const int64_t row_bytes = tif_row_bytes(specs, unit.width);
    if (!make_room(file, &w.rows[plane], &w.room[plane], w.fill[plane], row_bytes + 1))
        return 0;
    uint8_t *row = w.rows[plane] + w.fill[plane];
    store_row(specs, plane, unit, count, lines, row);
    if (specs->compression == TIF_LZW && specs->predictor == TIF_DIFFERENCES)
        tif_difference_bytes(row, row_bytes, tif_samples_in_row(specs));
    w.fill[plane] += row_bytes;
    return 1;
}

int tif_add_row(RFILE *file, const tif_unit &unit, int count, uint8_t **lines)
{
    tif_specs *specs = tif_of(file);
    if (!check_lines(file, specs, count, lines))
        return 0;
    for (int plane = 0; plane < tif_planes(specs); plane++) {
        const int added = tif_is_ccitt(specs)
                              ? tif_ccitt_add(file, specs, unit, reinterpret_cast<const uint16_t *>(lines[0]))
                          : specs->compression == TIF_PACKBITS ? add_packed(file, specs, plane, unit, count, lines)
                                                               : add_stored(file, specs, plane, unit, count, lines);
        if (!added)
            return 0;
    }
    specs->unit.lines++;
    return 1;
}

int tif_append(RFILE *file, const uint8_t *bytes, int64_t count, int64_t *offset)
{
    tif_specs *specs = tif_of(file);
    *offset = specs->file_end;
    if (*offset + count > UINT32_MAX || !rio_write_at(file, file->image_offset + *offset, bytes, count))
        return rio_fail(file, RIO_WRITE_FAILED, "tif_put_line");
    specs->file_end += count;
    return 1;
}

static int end_plane(RFILE *file, tif_specs *specs, int plane, int64_t index)
{
    tif_writing &w = specs->unit;
    const uint8_t *bytes = w.rows[plane];
    int64_t count = w.fill[plane], offset;
    if (tif_is_ccitt(specs)) {
        if (!tif_ccitt_end(file, specs, &count))
            return 0;
        bytes = w.out;
    } else if (specs->compression == TIF_LZW) {
        if (!make_room(file, &w.out, &w.out_room, 0, lzw_most_bytes(count)))
            return 0;
        count = lzw_encode(bytes, w.out, count, &w.lzw, file);
        bytes = w.out;
        if (!count)
            return 0;
    }
    w.fill[plane] = 0;
    if (index >= specs->offsets_held || !tif_append(file, bytes, count, &offset))
        return file->error ? 0 : rio_fail(file, RIO_PAST_END, "tif_put_line");
    specs->strip_offsets[index] = uint32_t(offset);
    specs->strip_counts[index] = uint32_t(count);
    return 1;
}

int tif_end_unit(RFILE *file, const tif_unit &unit, int64_t planes_apart)
{
    tif_specs *specs = tif_of(file);
    int done = 1;
    for (int plane = 0; plane < tif_planes(specs); plane++)
        done = done && end_plane(file, specs, plane, unit.index + plane * planes_apart);
    specs->unit.lines = 0;
    specs->state |= TIF_MUST_WRITE;
    return done;
}

int tif_replace_row(RFILE *file, const tif_unit &unit, int64_t planes_apart, int32_t row, int count, uint8_t **lines)
{
    tif_specs *specs = tif_of(file);
    const int64_t row_bytes = tif_row_bytes(specs, unit.width);
    tif_writing &w = specs->unit;
    if (!check_lines(file, specs, count, lines) || !make_room(file, &w.out, &w.out_room, 0, row_bytes + 1))
        return 0;
    for (int plane = 0; plane < tif_planes(specs); plane++) {
        const int64_t index = unit.index + plane * planes_apart;
        if (index >= specs->offsets_held || !specs->strip_offsets[index])
            return rio_fail(file, RIO_PAST_END, "tif_put_line");
        store_row(specs, plane, unit, count, lines, w.out);
        const int64_t at = file->image_offset + specs->strip_offsets[index] + row * row_bytes;
        if (at + row_bytes > rio_file_size(file) || !rio_write_at(file, at, w.out, row_bytes))
            return rio_fail(file, RIO_WRITE_FAILED, "tif_put_line");
    }
    return 1;
}

// ---- lines ---------------------------------------------------------------------------------------------------------

int tif_put_line(RFILE *file, int count, uint8_t **lines)
{
    tif_specs *specs = tif_of(file);
    const int32_t line = file->current_line, strip = line / specs->rows_per_strip;
    const int32_t strips = int32_t(specs->strip_count) / tif_planes(specs);
    const int32_t rows = strip == strips - 1 ? specs->last_strip_rows : specs->rows_per_strip;
    const tif_unit unit { 0, strip, file->width, rows };
    if (file->access & RIO_ACCESS_MODIFY) {
        tif_drop_strips(specs);
        return tif_replace_row(file, unit, strips, line % specs->rows_per_strip, count, lines) ? file->width : 0;
    }
    if (line != specs->unit.next_line)
        return rio_fail(file, RIO_LINE_ORDER, "tif_put_line");
    if (!tif_add_row(file, unit, count, lines))
        return 0;
    specs->unit.next_line++;
    if (specs->unit.lines == rows && !tif_end_unit(file, unit, strips))
        return 0;
    return file->width;
}

int tif_putline(RFILE *file, int count, uint8_t **lines)
{
    if (file->access & RIO_ACCESS_MODIFY && tif_of(file)->compression != TIF_UNCOMPRESSED)
        return rio_fail(file, RIO_MODIFY_MIDDLE, "Cannot modify compressed data");
    if (rio_write_check(file) != 0)
        return 0;
    return file->flags & RIO_TILED ? rio_putlinetotile(file, count, lines) : tif_put_line(file, count, lines);
}

int tif_put_rle_line(RFILE *file, const uint8_t *runs, int size)
{
    if (file->flags & RIO_TILED)
        return rio_fail_status(file, RIO_UNSUPPORTED, "No RLE line for Tiled files");
    if (tif_of(file)->samples_per_pixel != 1 || tif_of(file)->bits_per_sample[0] != 1)
        return rio_fail_status(file, RIO_UNSUPPORTED, "No RLE line this file");
    mem_ptr<uint8_t> line(static_cast<uint8_t *>(mem_alloc(size_t(rio_bitmap_words(file->width)) * 2)));
    if (!line)
        return rio_fail_status(file, RIO_NO_MEMORY, "rio_put_line: Malloc failure\n");
    if (!rio_runs_to_bitmap(reinterpret_cast<const uint16_t *>(runs), size / 2, reinterpret_cast<uint16_t *>(line.get()),
                            file->width))
        return rio_fail_status(file, RIO_BAD_VALUE, "Bad return from cit");
    uint8_t *lines[] = { line.get() };
    return tif_putline(file, 1, lines) ? 0 : 1;
}
