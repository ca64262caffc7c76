// ntvgetli.cpp - reads lines: one table for lines as they stand, one for lines with headers.
#include "RIO/CORE/split_pixels.h"
#include "RIO/JPEG/jp.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstdio>

uint8_t *natv_scratch(RFILE *file, int64_t bytes)
{
    natv_specs *specs = natv(file);
    if (specs->scratch_room < bytes) {
        mem_free(file->scratch);
        file->scratch = mem_calloc(1, size_t(bytes));
        specs->scratch_room = file->scratch ? bytes : 0;
    }
    if (!file->scratch)
        rio_fail(file, RIO_NO_MEMORY, "ntvgetli");
    return (uint8_t *)file->scratch;
}

// ---- uncompressed lines ----------------------------------------------------------------------------------------------

template <int SAMPLES> static void split_one(const uint8_t *in, uint8_t *out, int64_t width)
{
    for (int64_t x = 0; x < width; x++)
        out[x] = in[SAMPLES * x];
}

// Samples of interleaved pixels to the planes that are wanted, from pixel `at` on.
static void split(const uint8_t *in, const natv_row *row, int64_t at, int64_t pixels)
{
    uint8_t *const *plane = row->plane;
    if (row->step > 1) {
        for (int s = 0; s < row->planes; s++)
            for (int64_t x = 0; x < pixels; x++)
                plane[s][(at + x) * row->step] = in[row->planes * x + s];
        return;
    }
    if (row->planes == 3 && plane[0] && plane[1] && plane[2]) {
        rio_split_3(in, int(pixels), plane[0] + at, plane[1] + at, plane[2] + at);
        return;
    }
    for (int s = 0; s < row->planes; s++)
        if (plane[s])
            row->planes == 3 ? split_one<3>(in + s, plane[s] + at, pixels) : split_one<4>(in + s, plane[s] + at, pixels);
}

// A file that is written as well keeps one position for both: it is set before each line.
static int find_line(RFILE *file, int64_t stride)
{
    if (!(file->access & RIO_ACCESS_ON_DISK) || file->flags & RIO_TILED)
        return 1;
    return rio_byte_seek(file, natv_data_start(file) + stride * file->current_line);
}

static bool is_interleaved(uint32_t type) { return type == RIO_TYPE_RGB || type == RIO_TYPE_4; }

static bool wanted(const natv_row *row)
{
    return std::any_of(row->plane, row->plane + row->planes, [](const uint8_t *p) { return p != nullptr; });
}

int natv_read_pixels(RFILE *file, const natv_row *row, int64_t bytes, int64_t pixels)
{
    if (const uint8_t *lying = rio_look(file, rio_byte_tell(file), bytes)) {
        split(lying, row, 0, pixels);
        if (rio_look_ended(file))
            return file->io.f_seek(file->stream, bytes, SEEK_CUR) == 0;
    }
    uint8_t *held = natv_scratch(file, bytes);
    if (!held || !rio_read_exact(file, held, bytes))
        return 0;
    split(held, row, 0, pixels);
    return 1;
}

int64_t natv_place_of_lines(RFILE *file, int *)
{
    const bool plain = file->data_type <= RIO_TYPE_128 && !natv_uses_feed(file) && file->access == RIO_ACCESS_READ;
    return plain && !file->line_offsets ? rio_byte_tell(file) : -1;
}

static int64_t read_plain(RFILE *file, const natv_row *row, int64_t stride)
{
    if (!find_line(file, stride))
        return 0;
    if (!wanted(row))
        return file->io.f_seek(file->stream, stride, SEEK_CUR) == 0 ? row->width : 0;
    if (!is_interleaved(file->data_type))
        return rio_read_exact(file, row->plane[0], stride) ? row->width : 0;
    if (row->step == row->planes && !(file->flags & RIO_PAD_LINE))
        return rio_read_exact(file, row->plane[0], stride) ? row->width : 0;
    return natv_read_pixels(file, row, stride, row->width) ? row->width : 0;
}

// ---- uncompressed lines in segments ----------------------------------------------------------------------------------

static int64_t decode_samples(natv_input *in, const natv_row *row, int64_t at)
{
    const int64_t item = row->bits / 8;
    return at + natv_copy(in, row->plane[0] ? row->plane[0] + at * item : nullptr, (row->width - at) * item) / item;
}

static int64_t decode_bits(natv_input *in, const natv_row *row, int64_t at)
{
    const int64_t word = at / 16, left = rio_bitmap_words(row->width) - word;
    const int64_t got = natv_copy(in, row->plane[0] ? row->plane[0] + 2 * word : nullptr, 2 * left);
    return std::min<int64_t>(16 * word + 8 * got, row->width);
}

static int64_t decode_pixels(natv_input *in, const natv_row *row, int64_t at)
{
    while (at < row->width) {
        const int64_t pixels = std::min(natv_look(in, row->planes) / row->planes, row->width - at);
        if (pixels <= 0)
            break;
        split(natv_at(in), row, at, pixels);
        natv_take(in, pixels * row->planes);
        at += pixels;
    }
    return at;
}

// ---- any line --------------------------------------------------------------------------------------------------------

static natv_decoder decoder_of(uint32_t type)
{
    switch (type) {
    case RIO_TYPE_BITMAP: return decode_bits;
    case RIO_TYPE_RGB:
    case RIO_TYPE_4: return decode_pixels;
    case RIO_TYPE_BITMAP_RLE: return natv_decode_bitmap;
    case RIO_TYPE_BYTE_RLE: return natv_decode_pairs;
    case RIO_TYPE_PACKED_RLE: return natv_decode_packed;
    case RIO_TYPE_RGB_RLE: return natv_decode_quads;
    case RIO_TYPE_BYTE_RUN:
    case RIO_TYPE_RGB_BYTE_RUN:
    case RIO_TYPE_4_BYTE_RUN: return natv_decode_planes;
    default: return type <= RIO_TYPE_128 ? decode_samples : nullptr;
    }
}

// Bytes a sample where zeros are due; 0 for bits.
static int item_of(const RFILE *file, const natv_row *row)
{
    const bool bilevel = file->data_type == RIO_TYPE_BITMAP || file->data_type == RIO_TYPE_BITMAP_RLE;
    return bilevel ? 0 : (row->bits + 7) / 8;
}

int64_t natv_read_row(RFILE *file, const natv_row *row)
{
    if (natv_is_ccitt(file->data_type))
        return natv_get_ccitt(file, row->plane[0]);
    if (natv_is_jpeg(file->data_type))
        return jpeg_get_lines(file, row->planes, row->plane);
    const natv_decoder decode = decoder_of(file->data_type);
    if (!decode)
        return rio_fail(file, RIO_UNSUPPORTED, "ntvgetli");
    if (!natv_uses_feed(file))
        return read_plain(file, row, natv_stride(file));
    if (!natv(file)->feed)
        return rio_fail(file, RIO_NO_MEMORY, "ntvgetli");
    if (file->flags & RIO_SCANNABLE)
        return natv_read_segments(file, row, item_of(file, row), decode);
    if (file->data_type == RIO_TYPE_BITMAP_RLE && row->plane[0])
        std::fill_n((uint16_t *)row->plane[0], rio_bitmap_words(row->width), uint16_t{ 0 });
    natv_input in = natv_plain_input(file);
    return decode(&in, row, 0);
}

natv_row natv_row_of(const RFILE *file, int count, uint8_t **lines)
{
    natv_row row {};
    row.planes = std::min<int>(file->samples_per_pixel, NATV_PLANES);
    for (int s = 0; s < std::min(count, row.planes); s++)
        row.plane[s] = lines[s];
    row.step = 1;
    row.width = file->width;
    row.line = file->current_line;
    row.bits = file->bits_per_sample;
    // Run lengths of gray are handed over as bytes, unless 16-bit samples are asked for.
    if (file->data_type == RIO_TYPE_BYTE_RLE)
        row.bits = file->flags & RIO_SAMPLES_16 ? 16 : 8;
    return row;
}

int natv_line_result(RFILE *file, int64_t got, const char *warning)
{
    if (got == file->width)
        return file->width;
    const bool tolerated = got > 0 && file->flags & RIO_SCANNABLE && natv_is_compressed(file->data_type);
    if (tolerated) {
        if (rio_debug)
            std::fputs(warning, stderr);
        return int(got);
    }
    if (file->error == 0)
        rio_fail(file, RIO_READ_FAILED, "ntvgetli");
    return 0;
}

// Colours are of byte samples; wider ones and bits go to the other planes as they are.
static bool has_colours(const RFILE *file)
{
    return file->samples_per_pixel == 1 && file->bits_per_sample > 1 && file->bits_per_sample <= 8;
}

int natv_get_line(RFILE *file, int count, uint8_t **lines)
{
    if (count != 1 && count != 3 && count != 4)
        return rio_fail(file, RIO_BAD_COUNT, "ntvgetli");
    natv_row row = natv_row_of(file, count, lines);
    const bool others = count >= 3 && (lines[1] || lines[2]) && row.planes == 1;
    if (!row.plane[0] && others && !(row.plane[0] = natv_scratch(file, rio_line_bytes(file))))
        return 0;
    const int64_t got = natv_read_row(file, &row);
    if (file->error == RIO_NO_MEMORY)
        return 0;
    file->current_line++;
    natv_note_line(file);
    const int result = natv_line_result(file, got, "rio_get_line:WARNING - data size doesn't match data size in header.");
    if (result && count >= 3 && row.plane[0] && has_colours(file))
        rio_translate_line(file, row.plane[0], lines[1], lines[2], result);
    return result;
}

int natv_getline(RFILE *file, int count, uint8_t **lines)
{
    if (rio_read_check(file) != 0)
        return 0;
    if (file->flags & RIO_SQUETCH)
        return rio_squetch_getline(file, count, lines);
    if (!(file->flags & RIO_TILED))
        return natv_get_line(file, count, lines);
    return jpeg_has_lines_of_tiles(file, count, lines) ? jpeg_get_line_of_tiles(file, count, lines)
                                                       : rio_getlinefromtile(file, count, lines);
}
