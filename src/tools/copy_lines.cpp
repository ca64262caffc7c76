#include "tools/copy_lines.h"

#include <algorithm>
#include <cstring>

#include "mem.h"

namespace {

constexpr int MOST_PLANES = 4, THRESHOLD = 128;

struct lines {
    uint8_t *plane[MOST_PLANES];
};

int planes_of(copy_class samples)
{
    return samples == COPY_COLOUR ? 3 : samples == COPY_FOUR ? 4 : 1;
}

// A line of `in` as whole samples; bits are spread to 0 and 255, black being 0.
int read_line(const copy_lines &copy, uint16_t *bits, const lines &to)
{
    if (copy.from != COPY_BITS)
        return rio_getline_planes(copy.in, planes_of(copy.from), (void *const *)to.plane) == 0 && !rio_errno;
    if (rio_getline(copy.in, bits) != 0 || rio_errno)
        return 0;
    rio_unpack_bits(bits, to.plane[0], copy.width, copy.ones_are_white ? 0 : 255, copy.ones_are_white ? 255 : 0);
    return 1;
}

int picked_columns(const copy_lines &copy) { return (copy.x1 - copy.x0) / copy.step + 1; }
int picked_rows(const copy_lines &copy) { return (copy.y1 - copy.y0) / copy.step + 1; }

// The wanted columns, to the start of the line.
void pick_columns(const copy_lines &copy, uint8_t *line)
{
    const int columns = picked_columns(copy), size = copy.sample_bytes;
    if (copy.x0 > 0 || copy.step > 1)
        for (int x = 0; x < columns; x++)
            memmove(line + int64_t{x} * size, line + (copy.x0 + int64_t{x} * copy.step) * size, size_t(size));
}

void mirror_line(uint8_t *line, int columns, int size)
{
    for (int x = 0; x < columns / 2; x++)
        std::swap_ranges(line + int64_t{x} * size, line + int64_t{x + 1} * size, line + int64_t{columns - 1 - x} * size);
}

void make_gray(const lines &from, int count, uint8_t *out)
{
    for (int x = 0; x < count; x++)
        out[x] = uint8_t((77 * from.plane[0][x] + 150 * from.plane[1][x] + 29 * from.plane[2][x] + 128) >> 8);
}

void make_bits(const uint8_t *gray, int count, uint16_t *out)
{
    rio_pack_bits(out, gray, count, THRESHOLD);
    for (int i = 0; i < (count + 15) / 16; i++)
        out[i] = uint16_t(~out[i]);
    if (count % 16)
        out[count / 16] = uint16_t(out[count / 16] & (0xFFFF << (16 - count % 16)));
}

int write_line(const copy_lines &copy, lines from, uint16_t *bits)
{
    const int columns = copied_columns(copy);
    for (int s = 0; copy.mirrored && s < planes_of(copy.from); s++)
        mirror_line(from.plane[s], columns, copy.sample_bytes);
    if (copy.from == COPY_COLOUR && copy.to != COPY_COLOUR)
        make_gray(from, columns, from.plane[0]);
    if (copy.to == COPY_BITS) {
        make_bits(from.plane[0], columns, bits);
        return rio_putline(copy.out, bits) == 0 && !rio_errno;
    }
    if (copy.to == COPY_COLOUR && copy.from != COPY_COLOUR)
        from.plane[1] = from.plane[2] = from.plane[0];
    return rio_putline_planes(copy.out, planes_of(copy.to), (const void *const *)from.plane) == 0 && !rio_errno;
}

// A copy at work.
struct course {
    const copy_lines &copy;
    void (*shown)(int done, void *data);
    void *data;
    int *line_out;
    lines held;                        // room for a line of either file
    uint16_t *bits;
    int at;                            // the line of `in` that comes next
};

// The wanted samples of line n of those wanted.
int read_picked(course &c, int n)
{
    const int line = c.copy.y0 + n * c.copy.step;
    *c.line_out = line;
    if (line != c.at && rio_seek(c.copy.in, line) != 0)
        return 0;
    if (!read_line(c.copy, c.bits, c.held))
        return 0;
    c.at = line + 1;
    for (int s = 0; s < planes_of(c.copy.from); s++)
        pick_columns(c.copy, c.held.plane[s]);
    return 1;
}

copy_result copy_as_they_lie(course &c)
{
    const int rows = picked_rows(c.copy);
    for (int n = 0; n < rows; n++) {
        if (!read_picked(c, c.copy.upside_down ? rows - 1 - n : n))
            return COPY_READ_FAILED;
        if (!write_line(c.copy, c.held, c.bits))
            return COPY_WRITE_FAILED;
        c.shown(n + 1, c.data);
    }
    return COPY_DONE;
}

// A line becomes column `column` of a plane of `height` lines' columns.
void put_column(uint8_t *plane, const uint8_t *line, int count, int size, int64_t height, int column)
{
    for (int x = 0; x < count; x++)
        memcpy(plane + (x * height + column) * size, line + int64_t{x} * size, size_t(size));
}

copy_result copy_turned(course &c)
{
    const int columns = picked_columns(c.copy), rows = picked_rows(c.copy), planes = planes_of(c.copy.from), size = c.copy.sample_bytes;
    const int64_t line_bytes = int64_t{rows} * size, plane_bytes = line_bytes * columns;
    mem_ptr<uint8_t> image((uint8_t *)mem_alloc(size_t(plane_bytes * planes)));
    if (!image)
        return COPY_NO_MEMORY;
    for (int n = 0; n < rows; n++) {
        if (!read_picked(c, n))
            return COPY_READ_FAILED;
        for (int s = 0; s < planes; s++)
            put_column(image.get() + s * plane_bytes, c.held.plane[s], columns, size, rows, n);
    }
    for (int n = 0; n < columns; n++) {
        const int64_t at = (c.copy.upside_down ? columns - 1 - n : n) * line_bytes;
        for (int s = 0; s < planes; s++)
            memcpy(c.held.plane[s], image.get() + s * plane_bytes + at, size_t(line_bytes));
        if (!write_line(c.copy, c.held, c.bits))
            return COPY_WRITE_FAILED;
        c.shown(n + 1, c.data);
    }
    return COPY_DONE;
}

} // namespace

int copied_columns(const copy_lines &copy) { return copy.transposed ? picked_rows(copy) : picked_columns(copy); }
int copied_rows(const copy_lines &copy) { return copy.transposed ? picked_columns(copy) : picked_rows(copy); }

copy_result copy_all_lines(const copy_lines &copy, void (*shown)(int done, void *data), void *data, int *line_out)
{
    const size_t pixels = size_t(std::max(copy.width, copied_columns(copy))) + 32, row = pixels * size_t(copy.sample_bytes);
    mem_ptr<uint8_t> room((uint8_t *)mem_alloc(row * MOST_PLANES));
    mem_ptr<uint16_t> bits((uint16_t *)mem_calloc(pixels / 16 + 1, sizeof(uint16_t)));
    if (!room || !bits)
        return COPY_NO_MEMORY;
    course c = { copy, shown, data, line_out, {}, bits.get(), 0 };
    for (size_t i = 0; i < MOST_PLANES; i++)
        c.held.plane[i] = room.get() + i * row;
    rio_rewind(copy.in);
    return copy.transposed ? copy_turned(c) : copy_as_they_lie(c);
}
