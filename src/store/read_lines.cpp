#include "store/read_lines.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "mem.h"
#include "services/ws.h"
#include "store/file_info.h"

namespace {

constexpr int PROGRESS_LINES = 10;

int columns_of(const line_range &range)
{
    return (range.x1 - range.x0) / range.increment + 1;
}

int rows_of(const line_range &range)
{
    return (range.y1 - range.y0) / range.increment + 1;
}

void show_progress(const char *format, int line, int last)
{
    char text[80];
    snprintf(text, sizeof text, format, line, last);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
}

int no_line_memory()
{
    msg_put(MSG_STATUS, MSG_CENTRED, "failed to allocate memory for temporary buffer");
    beep(BEEP_ERROR);
    return READ_NO_MEMORY;
}

int ended_early()
{
    msg_put(MSG_STATUS, MSG_CENTRED, "Premature EOF encountered");
    return READ_SHORT;
}

int skip_to(RFILE *file, int line)
{
    if (line <= 0)
        return 0;
    char text[40];
    snprintf(text, sizeof text, "Skipping to line %d\n", line);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    return rio_seek(file, line);
}

int skip_between(RFILE *file, int line, const line_range &range)
{
    return range.increment > 1 && line + range.increment <= range.y1 ? rio_skip(file, range.increment - 1) : 0;
}

void take_columns(const uint8_t *line, const line_range &range, int columns, uint8_t *out)
{
    const uint8_t *in = line + range.x0;
    if (range.increment == 1)
        memcpy(out, in, size_t(columns));
    else
        for (int i = 0; i < columns; i++)
            out[i] = in[int64_t{i} * range.increment];
}

// A line that is wanted whole can be read straight into its row.
bool whole_lines(const line_range &range)
{
    return range.increment == 1 && columns_of(range) == range.width;
}

// One line of samples; bits become 0 and 255.
int get_samples(RFILE *file, bool bits, uint16_t *bit_line, uint8_t *line, int width)
{
    if (!bits)
        return rio_getline(file, line);
    if (rio_getline(file, bit_line) != 0)
        return 1;
    rio_unpack_bits(bit_line, line, width, 0, 255);
    return 0;
}

// Lines up to the next one that is shown, straight into their rows. Answers how many were read.
int get_rows(RFILE *file, int row, int rows, int columns, uint8_t *out)
{
    return rio_getlines(file, std::min(PROGRESS_LINES - row % PROGRESS_LINES, rows - row), out, columns);
}

} // namespace

int read_gray_lines(RFILE *file, int type, const line_range &range, int clear_tail, uint8_t *out)
{
    const int columns = columns_of(range), rows = rows_of(range);
    const bool direct = whole_lines(range), bits = is_bitmap_type(type);
    mem_ptr<uint8_t> line(direct ? nullptr : (uint8_t *)mem_alloc(size_t(range.width)));
    mem_ptr<uint16_t> bit_line(bits ? (uint16_t *)mem_calloc((size_t(range.width) + 15) / 16, 2) : nullptr);
    if ((!direct && !line) || (bits && !bit_line))
        return no_line_memory();

    int failed = skip_to(file, range.y0);
    for (int row = 0, got = 1; row < rows; row += got) {
        const int y = range.y0 + row * range.increment;
        uint8_t *target = out + int64_t{row} * columns;
        if (row % PROGRESS_LINES == 0)
            show_progress("Reading 8bit image file... line %d/%d\n", y, range.y1);
        if (direct && !bits && !failed)
            failed = (got = get_rows(file, row, rows, columns, target)) == 0;
        else
            failed = failed || get_samples(file, bits, bit_line.get(), direct ? target : line.get(), range.width);
        if (failed) {
            memset(target, 0, (clear_tail ? size_t(rows - row) : 1) * size_t(columns));
            return ended_early();
        }
        if (!direct)
            take_columns(line.get(), range, columns, target);
        failed = skip_between(file, y, range);
    }
    return READ_WHOLE;
}

int read_rgb_lines(RFILE *file, const line_range &range, int clear_tail, uint8_t *const out[3])
{
    const int columns = columns_of(range), rows = rows_of(range);
    const bool direct = whole_lines(range);
    mem_ptr<uint8_t> lines(direct ? nullptr : (uint8_t *)mem_alloc(3 * size_t(range.width)));
    if (!direct && !lines)
        return no_line_memory();

    int failed = skip_to(file, range.y0);
    int countdown = range.y0 % PROGRESS_LINES == 0 ? 1 : PROGRESS_LINES + 1 - range.y0 % PROGRESS_LINES;
    for (int row = 0; row < rows; row++) {
        const int y = range.y0 + row * range.increment;
        uint8_t *target[3], *line[3];
        for (int s = 0; s < 3; s++) {
            target[s] = out[s] + int64_t{row} * columns;
            line[s] = direct ? target[s] : lines.get() + size_t(s) * size_t(range.width);
        }
        if (--countdown <= 0) {
            show_progress("Reading 24bit image file... line %d/%d\n", y, range.y1);
            countdown = PROGRESS_LINES;
        }
        failed = failed || rio_getline_rgb(file, line[0], line[1], line[2]);
        for (int s = 0; s < 3; s++) {
            if (failed)
                memset(target[s], 0, (clear_tail ? size_t(rows - row) : 1) * size_t(columns));
            else if (!direct)
                take_columns(line[s], range, columns, target[s]);
        }
        if (failed)
            return ended_early();
        failed = skip_between(file, y, range);
    }
    return READ_WHOLE;
}

int read_bin_lines(RFILE *file, int width, int height, int clear_tail, uint8_t *out)
{
    const size_t row_bytes = ((size_t(width) + 15) >> 4) * 2;
    int counter = PROGRESS_LINES - 1;
    for (int y = 0; y < height; y++) {
        uint8_t *target = out + size_t(y) * row_bytes;
        if (++counter >= PROGRESS_LINES) {
            show_progress("Reading binary image file... line %d/%d\n", y, height - 1);
            counter = 0;
        }
        if (rio_getline(file, target) != 0) {
            memset(target, 0, (clear_tail ? size_t(height - y) : 1) * row_bytes);
            return ended_early();
        }
    }
    return READ_WHOLE;
}
