// ntvgetrl.cpp - hands out lines as run lengths: bitmaps as runs (type 9), gray as pairs (type 10), types 25 as they stand.
#include "RIO/CORE/line_runs.h"
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

enum { WORD = 2, PAIR = 4, LINE_HEADER = 8 };

struct run_room {
    uint8_t *bytes;
    int64_t room, used;
};

// The line's place, to come back to when the buffer is too small.
struct line_start {
    int64_t place;
    int32_t line;
    uint16_t header[4];
    bool end;
};

static line_start remember(RFILE *file)
{
    const natv_specs *specs = natv(file);
    line_start start { natv_place(file), file->current_line, {}, specs->segments_end };
    std::memcpy(start.header, specs->line_header, sizeof start.header);
    return start;
}

static void return_to(RFILE *file, const line_start &start)
{
    natv_specs *specs = natv(file);
    natv_set_place(file, start.place);
    file->current_line = start.line;
    std::memcpy(specs->line_header, start.header, sizeof start.header);
    specs->segments_end = start.end;
}

static int too_small(RFILE *file, int *size, int64_t needed)
{
    *size = int(std::clamp<int64_t>(needed, 0, INT32_MAX));
    return rio_fail(file, RIO_RLE_BUFFER, "getrleline");
}

static int finish(RFILE *file, int64_t bytes, int *size)
{
    *size = int(bytes);
    file->rle_position = uint32_t(bytes / WORD);
    file->rle_count = uint32_t(bytes);
    file->current_line++;
    return file->width;
}

// ---- lines that are runs already -------------------------------------------------------------------------------------

enum copy_result { COPIED, FULL, BROKEN };

static bool put(run_room *out, const uint8_t *code, int bytes)
{
    if (out->used + bytes > out->room)
        return false;
    std::memcpy(out->bytes + out->used, code, size_t(bytes));
    out->used += bytes;
    return true;
}

static copy_result copy_bitmap(natv_input *in, const natv_row *row, run_room *out, int64_t *at)
{
    int colour = 0;
    for (; *at < row->width; colour ^= 1) {
        if (natv_look(in, WORD) < WORD)
            return BROKEN;
        const int run = le_u16(natv_at(in));
        if (run > row->width - *at)
            return BROKEN;
        if (!put(out, natv_at(in), WORD))
            return FULL;
        natv_take(in, WORD);
        *at += run;
    }
    if (colour || natv_look(in, WORD) < WORD || le_u16(natv_at(in)) != 0)
        return COPIED;
    if (!put(out, natv_at(in), WORD))
        return FULL;
    natv_take(in, WORD);
    return COPIED;
}

// The last pair is cut to fit.
static copy_result copy_pairs(natv_input *in, const natv_row *row, run_room *out, int64_t *at)
{
    while (*at < row->width) {
        if (natv_look(in, PAIR) < PAIR)
            return BROKEN;
        uint8_t pair[PAIR];
        std::memcpy(pair, natv_at(in), PAIR);
        const int64_t count = std::min<int64_t>(le_u16(pair + 2), row->width - *at);
        put_le_u16(pair + 2, uint16_t(count));
        if (!put(out, pair, PAIR))
            return FULL;
        natv_take(in, PAIR);
        *at += count;
    }
    return COPIED;
}

static copy_result copy_packed(natv_input *in, const natv_row *row, run_room *out, int64_t *at)
{
    while (*at < row->width) {
        const int64_t there = natv_look(in, PAIR);
        if (there < WORD)
            return BROKEN;
        const uint32_t word = le_u16(natv_at(in));
        const bool longer = word >> row->bits == 0 && there >= PAIR;
        const int64_t count = longer ? le_u16(natv_at(in) + WORD) : word >> row->bits;
        if (count > row->width - *at)
            return BROKEN;
        uint8_t pair[PAIR];
        put_le_u16(pair, uint16_t(word & ((1u << row->bits) - 1)));
        put_le_u16(pair + 2, uint16_t(count));
        if (!put(out, pair, PAIR))
            return FULL;
        natv_take(in, longer ? PAIR : WORD);
        *at += count;
    }
    return COPIED;
}

static copy_result copy_quads(natv_input *in, const natv_row *row, run_room *out, int64_t *at)
{
    while (*at < row->width) {
        if (natv_look(in, PAIR) < PAIR || natv_at(in)[3] > row->width - *at)
            return BROKEN;
        const int64_t count = natv_at(in)[3];
        if (!put(out, natv_at(in), PAIR))
            return FULL;
        natv_take(in, PAIR);
        *at += count;
    }
    return COPIED;
}

using copier = copy_result (*)(natv_input *in, const natv_row *row, run_room *out, int64_t *at);

static copier copier_of(const RFILE *file)
{
    switch (file->data_type) {
    case RIO_TYPE_BITMAP_RLE: return copy_bitmap;
    case RIO_TYPE_BYTE_RLE: return copy_pairs;
    case RIO_TYPE_PACKED_RLE: return file->bits_per_sample == 16 ? copy_pairs : copy_packed;
    case RIO_TYPE_RGB_RLE: return copy_quads;
    default: return nullptr;
    }
}

static int copy_line(RFILE *file, copier copy, uint8_t *buffer, int *size)
{
    if (!natv(file)->feed)
        return rio_fail(file, RIO_NO_MEMORY, "getrleline");
    const line_start start = remember(file);
    const natv_row row = natv_row_of(file, 0, nullptr);
    natv_input in = natv_plain_input(file);
    run_room out { buffer, *size, 0 };
    int64_t at = 0;
    const copy_result result = copy(&in, &row, &out, &at);
    if (result == COPIED)
        return finish(file, out.used, size);
    return_to(file, start);
    if (result == BROKEN)
        return rio_fail(file, RIO_READ_FAILED, "getrleline");
    // What the whole line will take if it goes on like this.
    return too_small(file, size, at ? out.used * row.width / at + 128 : 4 * int64_t{ row.width } + 128);
}

// ---- lines through pixels --------------------------------------------------------------------------------------------

static bool is_bilevel(uint32_t type)
{
    return type == RIO_TYPE_BITMAP || type == RIO_TYPE_BITMAP_RLE || natv_is_ccitt(type);
}

static bool is_gray(const RFILE *file)
{
    const uint32_t type = file->data_type;
    return type == RIO_TYPE_BYTE || type == RIO_TYPE_BYTE_RLE || type == RIO_TYPE_BYTE_RUN
           || type == RIO_TYPE_PACKED_RLE || type == RIO_TYPE_JPEG;
}

// Runs of a line in memory. -1 when the room is too small.
static int64_t runs_of(RFILE *file, const uint8_t *line, uint8_t *out, int64_t room)
{
    const int64_t words = room / WORD;
    uint16_t *runs = (uint16_t *)out;
    if (is_bilevel(file->data_type))
        return WORD * rio_bitmap_runs((const uint16_t *)line, file->width, runs, words);
    if (file->bits_per_sample <= 8)
        return WORD * rio_byte_runs(line, file->width, runs, words);
    natv_row row = natv_row_of(file, 0, nullptr);
    row.plane[0] = (uint8_t *)line;
    return room < PAIR * int64_t{ file->width } ? -1 : natv_encode_pairs(&row, out);
}

// A header and one pair for a line without segments; its count of 3 is meant.
static int blank_line(RFILE *file, uint8_t *buffer, int *size)
{
    if (*size < LINE_HEADER + PAIR)
        return too_small(file, size, LINE_HEADER + PAIR);
    const uint16_t words[6] = { NATV_LINE_HEADER_ID, 3, uint16_t(file->current_line), 0, 0, uint16_t(file->width) };
    for (int i = 0; i < 6; i++)
        put_le_u16(buffer + WORD * i, words[i]);
    file->current_line++;
    natv_note_line(file);
    *size = LINE_HEADER + PAIR;
    return file->width;
}

static int through_pixels(RFILE *file, uint8_t *buffer, int *size)
{
    const bool headed = file->flags & RIO_SCANNABLE && (file->data_type == RIO_TYPE_BYTE || file->data_type == RIO_TYPE_BYTE_RLE);
    const natv_specs *specs = natv(file);
    if (headed && (specs->segments_end || specs->line_header[2] != uint16_t(file->current_line)))
        return blank_line(file, buffer, size);
    const int64_t surely = headed ? LINE_HEADER : 0, most = surely + 4 * int64_t{ file->width } + 4;
    if (file->data_type == RIO_TYPE_BYTE && *size < surely + 4 * int64_t{ file->width })
        return too_small(file, size, surely + 4 * int64_t{ file->width });
    const line_start start = remember(file);
    mem_ptr<uint8_t> line((uint8_t *)mem_alloc(size_t(rio_line_bytes(file))));
    if (!line)
        return rio_fail(file, RIO_NO_MEMORY, "getrleline");
    uint8_t *lines[1] = { line.get() };
    const natv_row row = natv_row_of(file, 1, lines);
    if (!natv_line_result(file, natv_read_row(file, &row), ""))
        return 0;
    const int64_t bytes = runs_of(file, line.get(), buffer + surely, *size - surely);
    if (bytes < 0) {
        return_to(file, start);
        return too_small(file, size, most);
    }
    if (headed) {
        const uint16_t words[4] = { NATV_LINE_HEADER_ID, uint16_t(bytes / WORD + 2), uint16_t(file->current_line), 0 };
        for (int i = 0; i < 4; i++)
            put_le_u16(buffer + WORD * i, words[i]);
    }
    const int pixels = finish(file, surely + bytes, size);
    natv_note_line(file);
    return pixels;
}

int natv_read_rle_row(RFILE *file, uint8_t *buffer, int *size)
{
    const copier copy = file->flags & RIO_SCANNABLE ? nullptr : copier_of(file);
    if (copy)
        return copy_line(file, copy, buffer, size);
    if (is_bilevel(file->data_type) || is_gray(file))
        return through_pixels(file, buffer, size);
    return file->samples_per_pixel > 1 ? 0 : rio_fail(file, RIO_NOT_STANDARD, "getrleline");
}

// A line of the strip of tiles, as runs.
static int line_of_tiles(RFILE *file, uint8_t *buffer, int *size)
{
    if (!is_bilevel(file->data_type) && !is_gray(file))
        return 0;
    mem_ptr<uint8_t> line((uint8_t *)mem_alloc(size_t(rio_line_bytes(file))));
    if (!line)
        return rio_fail(file, RIO_NO_MEMORY, "getrleline from tiled");
    uint8_t *lines[1] = { line.get() };
    if (!rio_getlinefromtile(file, 1, lines)) {
        const uint32_t error = file->error ? file->error : uint32_t(RIO_READ_FAILED);
        return rio_fail(file, error, "getrleline from tiled");
    }
    file->current_line--;
    const int64_t bytes = runs_of(file, line.get(), buffer, *size);
    return bytes < 0 ? too_small(file, size, 4 * int64_t{ file->width } + 4) : finish(file, bytes, size);
}

int natv_get_rle_line(RFILE *file, uint8_t *buffer, int *size)
{
    if (file->flags & RIO_SQUETCH || rio_read_check(file) != 0)
        return 0;
    if (file->flags & RIO_TILED)
        return line_of_tiles(file, buffer, size);
    if (natv_is_jpeg(file->data_type) && file->flags & RIO_SCANNABLE)
        return rio_fail(file, RIO_NOT_STANDARD, "getrleline");
    return natv_read_rle_row(file, buffer, size);
}
