// getline.cpp - how lines leave a file: the public calls, the read check and the common front door.
#include "RIO/CORE/rio_format.h"
#include <algorithm>

int rio_read_check(RFILE *file)
{
    if (!(file->access & RIO_ACCESS_CAN_READ))
        return rio_fail_status(file, RIO_NOT_READABLE, "getline");
    const bool squeezed = file->flags & RIO_SQUETCH && file->squetch;
    const int line = squeezed ? file->squetch->out_line : file->current_line;
    const int end = squeezed ? file->squetch->out_height : file->height;
    if (line >= end)
        return rio_fail_status(file, RIO_PAST_END, "getline");
    return 0;
}

int rio_common_getline(RFILE *file, int count, uint8_t **lines)
{
    if (rio_read_check(file) != 0)
        return 0;
    const int result = file->flags & RIO_SQUETCH ? rio_squetch_getline(file, count, lines)
                       : file->flags & RIO_TILED ? file->ops.getlinefromtile(file, count, lines)
                                                 : file->ops.get_line(file, count, lines);
    if (result != 0 && file->line_offsets && file->current_line < file->height)
        file->line_offsets[file->current_line] = rio_byte_tell(file);
    return result;
}

// The types whose lines are three planes.
static bool is_colour(uint32_t type)
{
    return type == RIO_TYPE_RGB_BYTE_RUN || type == RIO_TYPE_RGB || type == RIO_TYPE_JPEG_RGB || type == RIO_TYPE_RGB_RLE;
}

static int get_planes(RFILE *file, const char *text, int count, uint8_t **lines)
{
    if (!rio_enter(file, text))
        return 1;
    const int result = file->ops.getline(file, count, lines);
    rio_leave(file);
    return result == 0;
}

int rio_getline(RFILE *file, void *line)
{
    uint8_t *lines[3] = { (uint8_t *)line, nullptr, nullptr };
    const bool colour = file && file->magic == RIO_MAGIC && is_colour(file->data_type);
    return get_planes(file, "rio_getline", colour ? 3 : 1, lines);
}

bool rio_is_large(const RFILE *file)
{
    constexpr int64_t LARGE = int64_t{ 1 } << 23;
    return rio_line_bytes(file) * file->height >= LARGE;
}

int64_t rio_no_place_of_lines(RFILE *, int *) { return -1; }
int64_t rio_no_place_of_tile(RFILE *, int64_t, int64_t *) { return -1; }

// Lines that lie close together, into rows as close; what is not all there is left to be read line by line.
static int read_together(RFILE *file, int count, uint8_t *rows, bool large)
{
    int lines = std::min(count, file->height - file->current_line);
    const int64_t place = file->ops.place_of_lines(file, &lines), bytes = rio_line_bytes(file) * lines;
    if (place < 0)
        return 0;
    if (!(large ? rio_stream_at : rio_read_at)(file, place, rows, bytes)) {
        rio_byte_seek(file, place);
        return 0;
    }
    file->current_line += lines;
    return lines;
}

static int lines_at_a_stroke(RFILE *file, int count, uint8_t *rows, int64_t row_bytes)
{
    if (file->flags & (RIO_SQUETCH | RIO_SAMPLES_16) || rio_read_check(file) != 0)
        return 0;
    const bool large = rio_is_large(file);
    if (file->flags & RIO_TILED)
        return file->ops.place_of_tile == rio_no_place_of_tile ? 0 : rio_getlinesfromtile(file, count, rows, row_bytes, large);
    return row_bytes == rio_line_bytes(file) ? read_together(file, count, rows, large) : 0;
}

static int next_line(RFILE *file, uint8_t *line)
{
    uint8_t *lines[3] = { line, nullptr, nullptr };
    return file->ops.getline(file, is_colour(file->data_type) ? 3 : 1, lines) != 0;
}

int rio_getlines(RFILE *file, int count, void *rows, int64_t row_bytes)
{
    if (!rio_enter(file, "rio_getlines"))
        return 0;
    int done = 0;
    while (done < count) {
        uint8_t *const row = (uint8_t *)rows + done * row_bytes;
        int lines = lines_at_a_stroke(file, count - done, row, row_bytes);
        if (lines == 0)
            lines = next_line(file, row);
        if (lines == 0)
            break;
        done += lines;
    }
    rio_leave(file);
    return done;
}

int rio_getline_rgb(RFILE *file, void *red, void *green, void *blue)
{
    uint8_t *lines[3] = { (uint8_t *)red, (uint8_t *)green, (uint8_t *)blue };
    return get_planes(file, "rio_getline_rgb", 3, lines);
}

enum { MOST_PLANES = 16 };

int rio_getline_planes(RFILE *file, int count, void *const *planes)
{
    uint8_t *lines[MOST_PLANES] = {};
    for (int i = 0; i < std::min<int>(count, MOST_PLANES); i++)
        lines[i] = (uint8_t *)planes[i];
    return get_planes(file, "rio_getline_planes", std::min<int>(count, MOST_PLANES), lines);
}

int rio_getline_interleaved(RFILE *file, void *line)
{
    if (!rio_enter(file, "rio_getline_interleaved"))
        return 1;
    file->flags |= RIO_INTERLEAVE;
    const int result = file->ops.getline_interleaved(file, (uint8_t *)line);
    file->flags &= ~uint32_t(RIO_INTERLEAVE);
    rio_leave(file);
    return result == 0;
}

int rio_getline16(RFILE *file, uint16_t *line)
{
    if (!rio_enter(file, "rio_getline16"))
        return 1;
    uint8_t *lines[1] = { (uint8_t *)line };
    const int result = file->ops.getline16(file, 1, lines);
    rio_leave(file);
    return result == 0;
}

int rio_getrleline(RFILE *file, void *runs, int *size)
{
    if (!rio_enter(file, "rio_getrleline"))
        return 0;
    const int result = file->ops.getrleline(file, (uint8_t *)runs, size);
    rio_leave(file);
    return result;
}

int rio_getrlestrip(RFILE *file, void *runs, int *size)
{
    if (!rio_enter(file, "rio_getrlestrip"))
        return 0;
    const int result = file->ops.getrlestrip(file, (uint8_t *)runs, size);
    rio_leave(file);
    return result;
}

// ---- what a line needs after it was read -------------------------------------------------------------------------

static void copy_line(uint8_t *to, const uint8_t *from, int count)
{
    if (to)
        std::copy_n(from, count, to);
}

static void shift_samples(uint8_t *line, int count, int shift)
{
    for (int x = 0; x < count; x++)
        line[x] = uint8_t(line[x] << shift);
}

void rio_shift_line(RFILE *file, uint8_t *line, int count)
{
    if (!file->vlt && !(file->flags & RIO_NO_SHIFT) && file->bits_per_sample < 8)
        shift_samples(line, count, 8 - file->bits_per_sample);
}

void rio_translate_line(RFILE *file, uint8_t *first, uint8_t *second, uint8_t *third, int count)
{
    const int bits = int(file->significant_bits);
    const bool shifted = bits != 8 && !(file->flags & RIO_NO_SHIFT);
    if (!file->vlt) {
        if (shifted)
            rio_shift_line(file, first, count);
        copy_line(second, first, count);
        copy_line(third, first, count);
        return;
    }
    const int shift = shifted && bits < 8 ? 8 - bits : 0;
    uint8_t table[3][RIO_VLT_SIZE];
    for (int i = 0; i < RIO_VLT_SIZE; i++)
        for (int s = 0; s < 3; s++)
            table[s][i] = uint8_t(file->vlt[3 * i + s] << shift);
    // The first plane holds the indices, so it is the last to be replaced.
    if (third)
        for (int x = 0; x < count; x++)
            third[x] = table[2][first[x]];
    if (second)
        for (int x = 0; x < count; x++)
            second[x] = table[1][first[x]];
    for (int x = 0; x < count; x++)
        first[x] = table[0][first[x]];
}

void rio_finish_line(RFILE *file, int count, uint8_t **lines)
{
    if (count >= 3)
        rio_translate_line(file, lines[0], lines[1], lines[2], file->width);
    else
        rio_shift_line(file, lines[0], file->width);
}

// ---- bits and bytes ----------------------------------------------------------------------------------------------

void rio_pack_bits(uint16_t *out, const uint8_t *in, int count, int threshold)
{
    int x = 0;
    while (x < count) {
        const int n = std::min(16, count - x);
        unsigned word = 0;
        for (int bit = 0; bit < n; bit++)
            word |= unsigned(in[x + bit] >= threshold) << (15 - bit);
        *out++ = uint16_t(word);
        x += n;
    }
}

void rio_unpack_bits(const uint16_t *in, uint8_t *out, int count, uint8_t zero, uint8_t one)
{
    for (int x = 0; x < count; x++)
        out[x] = in[x >> 4] >> (15 - (x & 15)) & 1 ? one : zero;
}
