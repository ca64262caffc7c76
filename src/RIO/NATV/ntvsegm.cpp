// ntvsegm.cpp - lines with headers: each segment of a line begins with four words, the id, the data words and 2 more, the
// line's number and the pixel at which the segment begins. Lines without segments, and pixels without, are zero.
#include "RIO/NATV/ntv.h"
#include <algorithm>
#include <cstring>

enum { HEADER_BYTES = 8, MOST_DATA_WORDS = 65535 - 2, PIECE_WORDS = 32764, BITMAP_PIECE_WORDS = 32765 };

// ---- reading ---------------------------------------------------------------------------------------------------------

natv_input natv_plain_input(RFILE *file)
{
    return { file, natv(file)->feed, INT64_MAX };
}

// The words of the next header as they stand. 0 at the end of the file.
static int read_header(RFILE *file, uint16_t words[4])
{
    natv_input in = natv_plain_input(file);
    // A zero word may lie between a segment's data and the next header.
    if (natv_look(&in, 2) >= 2 && le_u16(natv_at(&in)) == 0)
        natv_take(&in, 2);
    if (natv_look(&in, HEADER_BYTES) < HEADER_BYTES)
        return 0;
    for (int i = 0; i < 4; i++)
        words[i] = le_u16(natv_at(&in) + 2 * i);
    natv_take(&in, HEADER_BYTES);
    return 1;
}

void natv_next_segment(RFILE *file)
{
    natv_specs *specs = natv(file);
    uint16_t *header = specs->line_header;
    specs->segments_end = !read_header(file, header);
    if (specs->segments_end) {
        header[1] = header[3] = 0;
        header[2] = NATV_NO_LINE;
        return;
    }
    header[1] = uint16_t(std::max(header[1] - 2, 0));
    if (!(file->flags & RIO_LINE_ZERO))
        header[2] = uint16_t(header[2] - 1);
}

void natv_start_segments(RFILE *file, int64_t offset)
{
    natv_set_place(file, offset);
    file->flags |= RIO_LINE_ZERO;
    natv_next_segment(file);
    const bool from_zero = !natv(file)->segments_end && natv(file)->line_header[2] == 0;
    if (from_zero)
        return;
    file->flags &= ~uint32_t(RIO_LINE_ZERO);
    if (!natv(file)->segments_end)
        natv(file)->line_header[2]--;
}

static void clear_pixels(const natv_row *row, int item, int64_t from, int64_t to)
{
    if (from >= to)
        return;
    for (int s = 0; s < row->planes; s++) {
        if (!row->plane[s])
            continue;
        if (row->step == 1)
            std::memset(row->plane[s] + from * item, 0, size_t((to - from) * item));
        else
            for (int64_t x = from; x < to; x++)
                row->plane[s][x * row->step] = 0;
    }
}

// The bits of a bitmap are cleared at once: runs of 0 leave them as they are.
static void clear_bits(const natv_row *row)
{
    if (row->plane[0])
        std::memset(row->plane[0], 0, size_t(rio_bitmap_words(row->width)) * 2);
}

int64_t natv_read_segments(RFILE *file, const natv_row *row, int item, natv_decoder decode)
{
    natv_specs *specs = natv(file);
    const uint16_t *header = specs->line_header;
    const auto comes = [&] { return !specs->segments_end && header[2] == uint16_t(row->line); };
    if (item == 0)
        clear_bits(row);
    if (!comes()) {
        clear_pixels(row, item, 0, row->width);
        return row->width;
    }
    int64_t at = 0;
    bool overrun = false, cut = false;
    while (comes()) {
        const int64_t start = std::min<int64_t>(header[3], row->width);
        clear_pixels(row, item, at, start);
        natv_input in { file, specs->feed, 2 * int64_t{ header[1] } };
        at = decode(&in, row, start);
        overrun = overrun || at == NATV_OVERRUN;
        at = std::max<int64_t>(at, 0);
        const int64_t rest = in.left;
        cut = cut || natv_copy(&in, nullptr, rest) < rest;
        natv_next_segment(file);
    }
    clear_pixels(row, item, at, row->width);
    // Uncompressed lines are whole with what is zero in them, unless the file ends within a segment.
    return overrun ? 0 : natv_is_compressed(file->data_type) || cut ? at : row->width;
}

// ---- writing ---------------------------------------------------------------------------------------------------------

static int write_failed(RFILE *file) { return rio_fail(file, RIO_WRITE_FAILED, "ntvsegm"); }

static int write_header(RFILE *file, int64_t data_words, int64_t start_pixel)
{
    if (start_pixel > UINT16_MAX)
        return rio_fail(file, RIO_BAD_SIZE, "ntvsegm");
    uint8_t header[HEADER_BYTES];
    put_le_u16(header, NATV_LINE_HEADER_ID);
    put_le_u16(header + 2, uint16_t(data_words + 2));
    put_le_u16(header + 4, uint16_t(file->current_line + 1));
    put_le_u16(header + 6, uint16_t(start_pixel));
    return rio_write_exact(file, header, HEADER_BYTES) ? 1 : write_failed(file);
}

int natv_write_segment(RFILE *file, const uint8_t *bytes, int64_t count, int pixel)
{
    if (!(file->flags & RIO_SCANNABLE))
        return rio_write_exact(file, bytes, count) ? 1 : write_failed(file);
    const int64_t most = 2 * int64_t{ MOST_DATA_WORDS } / pixel * pixel;
    for (int64_t done = 0; done < count;) {
        const int64_t part = std::min(count - done, most), even = part + part % 2;
        // Two more bytes follow, which no count holds, when the even count is no multiple of 4 and 2: this is meant.
        const int64_t zeros = even - part + (even & 2 ? 0 : 2);
        if (!write_header(file, even / 2, done / pixel))
            return 0;
        if (!rio_write_exact(file, bytes + done, part) || !rio_write_zeros(file, zeros))
            return write_failed(file);
        done += part;
    }
    return 1;
}

// One code of a run-length line: its bytes and its pixels.
struct code {
    int bytes;
    int64_t pixels;
};

static code code_at(const RFILE *file, const uint8_t *p, bool first)
{
    const int bits = file->bits_per_sample;
    switch (file->data_type) {
    case RIO_TYPE_BITMAP_RLE: return { 2, le_u16(p) };
    case RIO_TYPE_RGB_RLE: return { 4, p[3] };
    case RIO_TYPE_PACKED_RLE:
        if (bits < 16) {
            const int64_t field = le_u16(p) >> bits;
            // Runs of wide samples are stored one short, but for the first.
            const int64_t more = bits > 8 && !first ? 1 : 0;
            return field ? code { 2, field + more } : code { 4, le_u16(p + 2) + more };
        }
        [[fallthrough]];
    default: return { 4, le_u16(p + 2) };
    }
}

// A bitmap's segment begins with a run of 0 pixels: one that goes on with 1 pixels has a word 0 first.
static int write_piece(RFILE *file, const uint8_t *codes, int64_t bytes, int64_t start_pixel, bool from_one)
{
    static const uint8_t none[2] = { 0, 0 };
    if (!write_header(file, bytes / 2 + from_one, start_pixel))
        return 0;
    const bool done = (!from_one || rio_write_exact(file, none, 2)) && rio_write_exact(file, codes, bytes);
    return done ? 1 : write_failed(file);
}

int natv_write_whole(RFILE *file, const uint8_t *codes, int64_t bytes)
{
    if (!(file->flags & RIO_SCANNABLE))
        return rio_write_exact(file, codes, bytes) ? 1 : write_failed(file);
    const int64_t words = (bytes + 1) / 2;
    if (words > MOST_DATA_WORDS)
        return rio_fail(file, RIO_BAD_SIZE, "ntvsegm");
    if (!write_header(file, words, 0))
        return 0;
    return rio_write_exact(file, codes, bytes) && rio_write_zeros(file, bytes % 2) ? 1 : write_failed(file);
}

static bool holds_bytes(uint32_t type)
{
    return type == RIO_TYPE_BYTE_RUN || type == RIO_TYPE_RGB_BYTE_RUN || type == RIO_TYPE_4_BYTE_RUN;
}

int natv_write_codes(RFILE *file, const uint8_t *codes, int64_t bytes)
{
    if (!(file->flags & RIO_SCANNABLE) || holds_bytes(file->data_type))
        return natv_write_whole(file, codes, bytes);
    const bool bitmap = file->data_type == RIO_TYPE_BITMAP_RLE;
    const int64_t most = 2 * (bitmap ? BITMAP_PIECE_WORDS : PIECE_WORDS);
    int64_t begin = 0, start_pixel = 0, at = 0, pixel = 0, runs = 0;
    bool from_one = false;
    while (at < bytes) {
        const code next = code_at(file, codes + at, runs++ == 0);
        if (at - begin + 2 * from_one + next.bytes > most) {
            if (!write_piece(file, codes + begin, at - begin, start_pixel, from_one))
                return 0;
            begin = at;
            start_pixel = pixel;
            from_one = bitmap && at / 2 % 2;
        }
        at += next.bytes;
        pixel += next.pixels;
    }
    return write_piece(file, codes + begin, bytes - begin, start_pixel, from_one);
}
