// Stored rows to lines: samples of any width taken apart, put in the machine's order, and the planes filled.
#include "RIO/CORE/bit_lines.h"
#include "RIO/CORE/line_runs.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/TIFF/tif.h"
#include <algorithm>

// ---- one sample of each pixel --------------------------------------------------------------------------------------

// Takes samples of a row one after another, first bit at the high end; those of 16 and 32 bits in the file's byte order.
struct sample_reader {
    const uint8_t *row;
    int bits;
    bool big_endian;
};

static inline uint32_t sample_at(const sample_reader &r, int64_t i)
{
    if (r.bits == 16)
        return r.big_endian ? be_u16(r.row + 2 * i) : le_u16(r.row + 2 * i);
    if (r.bits == 32)
        return r.big_endian ? be_u32(r.row + 4 * i) : le_u32(r.row + 4 * i);
    const int64_t first = i * r.bits, last = first + r.bits - 1;
    uint64_t word = 0;
    for (int64_t byte = first / 8; byte <= last / 8; byte++)
        word = word << 8 | r.row[byte];
    return uint32_t(word >> (7 - last % 8) & ((uint64_t{1} << r.bits) - 1));
}

// What is done to each sample: inverted where white is 0, and shifted to the top of its byte.
struct sample_form {
    uint32_t flip;
    int shift;
};

static sample_form form_of(const RFILE *file, const tif_specs *specs)
{
    const int bits = specs->bits_per_sample[0];
    const bool inverted = specs->photometric == TIF_WHITE_IS_ZERO && specs->samples_per_pixel == 1 && bits > 1;
    const bool shifted = bits < 8 && specs->photometric != TIF_PALETTE && !(file->flags & RIO_NO_SHIFT);
    return { inverted ? uint32_t((uint64_t{1} << bits) - 1) : 0, shifted ? 8 - bits : 0 };
}

// Every `step`-th sample from `first` on.
static void spread(const tif_specs *specs, const uint8_t *row, int first, int step, int32_t width, sample_form form,
                   uint8_t *out)
{
    const int bits = specs->bits_per_sample[0];
    if (bits == 8) {
        for (int32_t x = 0; x < width; x++)
            out[x] = uint8_t(row[int64_t{x} * step + first] ^ form.flip);
        return;
    }
    const sample_reader r { row, bits, tif_big_endian(specs) };
    for (int32_t x = 0; x < width; x++) {
        const uint32_t sample = (sample_at(r, int64_t{x} * step + first) ^ form.flip) << form.shift;
        if (bits < 8)
            out[x] = uint8_t(sample);
        else if (bits <= 16)
            put_le_u16(out + 2 * int64_t{x}, uint16_t(sample));
        else
            put_le_u32(out + 4 * int64_t{x}, sample);
    }
}

// ---- rows ----------------------------------------------------------------------------------------------------------

static int bilevel_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row, uint8_t *out)
{
    if (tif_is_ccitt(specs))
        return tif_ccitt_row(file, specs, unit, row, reinterpret_cast<uint16_t *>(out));
    const uint8_t *stored = tif_stored_row(file, specs, unit, row);
    if (!stored)
        return 0;
    std::memcpy(out, stored, size_t((int64_t{unit.width} + 7) / 8));
    rio_bits_from_bytes(out, unit.width);
    return 1;
}

// Samples that are handed out as they are stored.
static bool as_stored(const RFILE *file, const tif_specs *specs)
{
    const int bits = specs->bits_per_sample[0];
    return specs->samples_per_pixel == 1 && (bits == 8 || (bits == 16 && !tif_big_endian(specs))) && !form_of(file, specs).flip;
}

bool tif_lies_plain(const RFILE *file, const tif_specs *specs)
{
    return specs->compression == TIF_UNCOMPRESSED && specs->fill_order != 2 && as_stored(file, specs);
}

static int single_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row, uint8_t *out)
{
    if (specs->bits_per_sample[0] == 1)
        return bilevel_row(file, specs, unit, row, out);
    if (tif_lies_plain(file, specs))
        return tif_read_plain(file, specs, unit, row, out, tif_row_bytes(specs, unit.width));
    const uint8_t *stored = tif_stored_row(file, specs, unit, row);
    if (!stored)
        return 0;
    if (as_stored(file, specs))
        std::memcpy(out, stored, size_t(tif_row_bytes(specs, unit.width)));
    else
        spread(specs, stored, 0, 1, unit.width, form_of(file, specs), out);
    return 1;
}

static int contiguous_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row, int count, uint8_t **lines)
{
    const uint8_t *stored = tif_stored_row(file, specs, unit, row);
    if (!stored)
        return 0;
    const int samples = specs->samples_per_pixel;
    if (samples == 3 && count >= 3 && lines[0] && lines[1] && lines[2] && specs->bits_per_sample[0] == 8) {
        rio_split_3(stored, unit.width, lines[0], lines[1], lines[2]);
        return 1;
    }
    for (int s = 0; s < std::min(count, samples); s++)
        if (lines[s])
            spread(specs, stored, s, samples, unit.width, form_of(file, specs), lines[s]);
    return 1;
}

static int planar_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int64_t planes_apart, int32_t row, int count,
                      uint8_t **lines)
{
    for (int s = 0; s < std::min<int>(count, specs->samples_per_pixel); s++) {
        if (!lines[s])
            continue;
        const tif_unit plane { s, unit.index + s * planes_apart, unit.width, unit.rows };
        const uint8_t *stored = tif_stored_row(file, specs, plane, row);
        if (!stored)
            return 0;
        spread(specs, stored, 0, 1, unit.width, form_of(file, specs), lines[s]);
    }
    return 1;
}

static int check_colours(RFILE *file, const tif_specs *specs)
{
    const int samples = specs->samples_per_pixel;
    if (samples != 3 && samples != 4)
        return rio_fail(file, RIO_FEATURE_10, "Tiff samp/pix");
    if (specs->photometric != TIF_RGB && specs->photometric != TIF_YCBCR && specs->photometric != TIF_CMYK)
        return rio_fail(file, RIO_FEATURE_10, "Tiff RGB/CMYK");
    if (specs->planar_config != TIF_CONTIGUOUS && specs->planar_config != TIF_PLANAR)
        return rio_fail(file, RIO_FEATURE_10, "Tiff planar");
    return 1;
}

int tif_get_row(RFILE *file, const tif_unit &unit, int64_t planes_apart, int32_t row, int count, uint8_t **lines)
{
    tif_specs *specs = tif_of(file);
    if (specs->samples_per_pixel == 1) {
        uint8_t **first = std::find_if(lines, lines + count, [](const uint8_t *line) { return line != nullptr; });
        return first == lines + count || single_row(file, specs, unit, row, *first);
    }
    if (!check_colours(file, specs))
        return 0;
    return tif_is_planar(specs) ? planar_row(file, specs, unit, planes_apart, row, count, lines)
                                : contiguous_row(file, specs, unit, row, count, lines);
}

// ---- lines ---------------------------------------------------------------------------------------------------------

// Gray has its place in the byte already, and indices are never shifted.
void tif_finish_line(RFILE *file, int count, uint8_t **lines)
{
    if (count < 3 || !lines[0] || tif_of(file)->samples_per_pixel != 1)
        return;
    if (file->vlt && file->bits_per_sample > 1) {
        rio_translate_line(file, lines[0], lines[1], lines[2], file->width);
        return;
    }
    for (int i = 1; i < 3; i++)
        if (lines[i])
            std::memcpy(lines[i], lines[0], size_t(rio_line_bytes(file)));
}

int tif_get_line(RFILE *file, int count, uint8_t **lines)
{
    const tif_specs *specs = tif_of(file);
    const int32_t strip = file->current_line / specs->rows_per_strip;
    const int32_t strips = int32_t(specs->strip_count) / tif_planes(specs);
    const int32_t rows = strip == strips - 1 ? specs->last_strip_rows : specs->rows_per_strip;
    const tif_unit unit { 0, strip, file->width, rows };
    if (!tif_get_row(file, unit, strips, file->current_line % specs->rows_per_strip, count, lines))
        return file->error ? 0 : rio_fail(file, RIO_READ_FAILED, "tif_get_line");
    tif_finish_line(file, count, lines);
    file->current_line++;
    return file->width;
}

// Strips that lie one behind another are as one.
int64_t tif_place_of_lines(RFILE *file, int *lines)
{
    tif_specs *specs = tif_of(file);
    if (!tif_lies_plain(file, specs))
        return -1;
    const int64_t row_bytes = tif_row_bytes(specs, file->width);
    int64_t strip = file->current_line / specs->rows_per_strip, place, next;
    const int64_t into = file->current_line % specs->rows_per_strip;
    const int64_t left = tif_unit_place(file, specs, strip, &place);
    int64_t there = specs->rows_per_strip - into;
    while (there < *lines && tif_unit_place(file, specs, ++strip, &next) && next == place + (into + there) * row_bytes)
        there += specs->rows_per_strip;
    *lines = int(std::min<int64_t>(*lines, there));
    return left >= (into + *lines) * row_bytes ? place + into * row_bytes : -1;
}

int tif_get_rle_line(RFILE *file, uint8_t *buffer, int *size)
{
    if (file->flags & RIO_SQUETCH)
        return rio_fail(file, RIO_UNSUPPORTED, "No squetch for RLE lines");
    if (file->flags & RIO_TILED)
        return rio_fail(file, RIO_UNSUPPORTED, "No RLE line for Tiled files");
    switch (file->data_type) {
    case RIO_TYPE_BITMAP_RLE:
    case RIO_TYPE_CCITT3:
    case RIO_TYPE_CCITT4: return rio_getrleline_by_lines(file, buffer, size);
    default: return rio_fail(file, RIO_UNSUPPORTED, "No RLE line this file");
    }
}
