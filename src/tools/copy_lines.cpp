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

// The wanted columns, to the start of the line, in the order in which they are written.
void pick_columns(const copy_lines &copy, uint8_t *line)
{
    const int columns = copied_columns(copy), size = copy.sample_bytes;
    if (copy.x0 > 0 || copy.step > 1)
        for (int x = 0; x < columns; x++)
            memmove(line + int64_t{x} * size, line + (copy.x0 + int64_t{x} * copy.step) * size, size_t(size));
    for (int x = 0; copy.mirrored && x < columns / 2; x++)
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

} // namespace

int copied_columns(const copy_lines &copy) { return (copy.x1 - copy.x0) / copy.step + 1; }
int copied_rows(const copy_lines &copy) { return (copy.y1 - copy.y0) / copy.step + 1; }

copy_result copy_all_lines(const copy_lines &copy, void (*shown)(int done, void *data), void *data, int *line_out)
{
    const size_t row = (size_t(copy.width) + 32) * size_t(copy.sample_bytes);
    mem_ptr<uint8_t> room((uint8_t *)mem_alloc(row * MOST_PLANES));
    mem_ptr<uint16_t> bits((uint16_t *)mem_calloc(size_t(copy.width) / 16 + 2, sizeof(uint16_t)));
    if (!room || !bits)
        return COPY_NO_MEMORY;
    lines held;
    for (size_t i = 0; i < MOST_PLANES; i++)
        held.plane[i] = room.get() + i * row;

    const int rows = copied_rows(copy);
    int at = 0;                        // the line of `in` that comes next
    rio_rewind(copy.in);
    for (int n = 0; n < rows; n++) {
        const int line = copy.y0 + (copy.upside_down ? rows - 1 - n : n) * copy.step;
        *line_out = line;
        if (line != at && rio_seek(copy.in, line) != 0)
            return COPY_READ_FAILED;
        if (!read_line(copy, bits.get(), held))
            return COPY_READ_FAILED;
        at = line + 1;
        for (int s = 0; s < planes_of(copy.from); s++)
            pick_columns(copy, held.plane[s]);
        if (!write_line(copy, held, bits.get()))
            return COPY_WRITE_FAILED;
        shown(n + 1, data);
    }
    return COPY_DONE;
}
