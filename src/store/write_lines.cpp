#include "store/write_lines.h"

#include <cstdio>

#include "mem.h"
#include "services/ws.h"

namespace {

constexpr int PROGRESS_LINES = 10;

// Every tenth line is shown, counted from the image's top.
int first_countdown(int y0)
{
    return y0 % PROGRESS_LINES == 0 ? 1 : PROGRESS_LINES + 1 - y0 % PROGRESS_LINES;
}

void count_line(int *countdown, const char *format, int line, int last)
{
    if (--*countdown > 0)
        return;
    char text[80];
    snprintf(text, sizeof text, format, line, last);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    *countdown = PROGRESS_LINES;
}

int stopped(const char *text)
{
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    beep(BEEP_ERROR);
    return 0;
}

int no_memory()
{
    return stopped("failed to allocate memory for temporary buffer");
}

// A put that the format has no function for answers success; its error stands in rio_errno.
int put_done(int status)
{
    return status == 0 && rio_errno == 0 ? 1 : stopped("Error writing file");
}

void map_row(const uint8_t *in, int count, const uint16_t *table, uint8_t *out)
{
    for (int x = 0; x < count; x++)
        out[x] = uint8_t(table[in[x]]);
}

int done()
{
    msg_clear(MSG_STATUS);
    return 1;
}

} // namespace

int write_gray_lines(RFILE *file, int row_bytes, const held_area &area, const uint8_t *data, const uint16_t *table)
{
    const int columns = area.x1 - area.x0 + 1;
    mem_ptr<uint8_t> mapped(table ? (uint8_t *)mem_alloc(size_t(row_bytes)) : nullptr);
    if (table && !mapped)
        return no_memory();
    int countdown = first_countdown(area.y0);
    for (int y = area.y0; y <= area.y1; y++) {
        count_line(&countdown, "Writing 8bit image file... line %d/%d", y, area.y1);
        const uint8_t *row = data + int64_t{y} * row_bytes + area.x0;
        if (table)
            map_row(row, columns, table, mapped.get());
        if (!put_done(rio_putline(file, table ? mapped.get() : row)))
            return 0;
    }
    return done();
}

int write_rgb_lines(RFILE *file, int row_bytes, const held_area &area, const uint8_t *const data[3], const uint16_t *const tables[3])
{
    const int columns = area.x1 - area.x0 + 1;
    const bool with_tables = tables[0] && tables[1] && tables[2];
    mem_ptr<uint8_t> mapped(with_tables ? (uint8_t *)mem_alloc(3 * size_t(row_bytes)) : nullptr);
    if (with_tables && !mapped)
        return no_memory();
    int countdown = first_countdown(area.y0);
    for (int y = area.y0; y <= area.y1; y++) {
        count_line(&countdown, "Writing 24bit image file... line %d/%d\n", y, area.y1);
        const uint8_t *rows[3];
        for (int s = 0; s < 3; s++) {
            rows[s] = data[s] + int64_t{y} * row_bytes + area.x0;
            if (!with_tables)
                continue;
            uint8_t *out = mapped.get() + size_t(s) * size_t(row_bytes);
            map_row(rows[s], columns, tables[s], out);
            rows[s] = out;
        }
        if (!put_done(rio_putline_rgb(file, rows[0], rows[1], rows[2])))
            return 0;
    }
    return done();
}

int write_bin_lines(RFILE *file, int width, int height, const uint8_t *data)
{
    const int64_t row_bytes = ((int64_t{width} + 15) >> 4) * 2;
    int countdown = first_countdown(0);
    for (int y = 0; y < height; y++) {
        count_line(&countdown, "Writing image file... line %d/%d", y, height - 1);
        if (!put_done(rio_putline(file, data + y * row_bytes)))
            return 0;
    }
    return done();
}
