#include "filters/neighbourhood_rows.h"

#include <cstdio>
#include <cstring>

#include "filters/level_table.h"
#include "filters/long_pass.h"
#include "filters/row_output.h"
#include "services/ws.h"

int16_t *told_of_memory(void *block)
{
    if (!block)
        fputs("Insufficient memory\n", stderr);
    return (int16_t *)block;
}

mem_ptr<int16_t> sample_memory(int cols)
{
    return mem_ptr<int16_t>(told_of_memory(mem_alloc((SAMPLE_ROWS + 1) * sizeof(int16_t) * size_t(cols))));
}

int stopped_at_row(int row, int rows)
{
    if (row % 10 == 0)
        show_row(row, rows);
    return abort_check();
}

void put_computed_row(uint8_t *out, uint8_t *row, int r, int rows, int cols, const computed_area &computed)
{
    memset(row + computed.c1 + 1, row[computed.c1], size_t(cols - computed.c1 - 1));
    memset(row, row[computed.c0], size_t(computed.c0));
    put_row(out + size_t(r) * size_t(cols), row, size_t(cols), int64_t{rows} * cols);
}

void fill_borders(uint8_t *out, int rows, int cols, const computed_area &computed)
{
    const size_t width = size_t(cols);
    put_rows_done();
    for (int r = computed.r0 - 1; r >= 0; r--)
        memcpy(out + size_t(r) * width, out + size_t(computed.r0) * width, width);
    for (int r = computed.r1 + 1; r < rows; r++)
        memcpy(out + size_t(r) * width, out + size_t(computed.r1) * width, width);
}

namespace {

// The last rows read, through the table: row r lies in place r % SAMPLE_ROWS, unless the table changes nothing and the image serves.
struct sample_source {
    const uint8_t *in;
    const int16_t *map;
    int cols;
    bool direct, wide;
    uint8_t table[256];
    int16_t *memory;
};

sample_source sample_source_of(const uint8_t *in, const int16_t *map, int cols, bool has_byte_kernel, int16_t *memory)
{
    sample_source source = { in, map, cols, false, false, {}, memory };
    source.wide = !has_byte_kernel || !level_table(map, source.table);
    source.direct = !source.wide && is_identity(map);
    return source;
}

uint8_t *byte_place(const sample_source &source, int r)
{
    return (uint8_t *)source.memory + size_t(r % SAMPLE_ROWS) * size_t(source.cols);
}

int16_t *wide_place(const sample_source &source, int r)
{
    return source.memory + size_t(r % SAMPLE_ROWS) * size_t(source.cols);
}

const uint8_t *byte_row(const sample_source &source, int r)
{
    return source.direct ? source.in + size_t(r) * size_t(source.cols) : byte_place(source, r);
}

void read_row(const sample_source &source, int r)
{
    const uint8_t *row = source.in + size_t(r) * size_t(source.cols);
    if (source.direct)
        return;
    if (!source.wide) {
        map_levels(row, byte_place(source, r), source.table, size_t(source.cols));
        return;
    }
    int16_t *place = wide_place(source, r);
    for (int c = 0; c < source.cols; c++)
        place[c] = source.map[row[c]];
}

void filter_row(const sample_source &source, const row_filter &filter, int first, uint8_t *out)
{
    if (source.wide) {
        const int16_t *rows[SAMPLE_ROWS];
        for (int i = 0; i < filter.size; i++)
            rows[i] = wide_place(source, first + i);
        filter.wide_row(out, rows, source.cols, filter.parameters);
    } else {
        const uint8_t *rows[SAMPLE_ROWS];
        for (int i = 0; i < filter.size; i++)
            rows[i] = byte_row(source, first + i);
        filter.byte_row(out, rows, source.cols, filter.parameters);
    }
}

} // namespace

int walk_rows(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, const row_filter &filter, int16_t *memory)
{
    const sample_source source = sample_source_of(in, map, cols, filter.byte_row != nullptr, memory);
    const int anchor = filter.size / 2, below = filter.size - 1 - anchor;
    const computed_area computed = { anchor, anchor, rows - 1 - below, cols - 1 - below };
    uint8_t *const row = (uint8_t *)(memory + size_t(SAMPLE_ROWS) * size_t(cols));
    for (int r = 0; r < filter.size - 1; r++)
        read_row(source, r);
    for (int r = anchor; r < rows - below; r++) {
        if (stopped_at_row(r, rows))
            return FILTER_STOPPED;
        read_row(source, r + below);
        filter_row(source, filter, r - anchor, row);
        put_computed_row(out, row, r, rows, cols, computed);
    }
    fill_borders(out, rows, cols, computed);
    msg_clear(MSG_KEYIN);
    return FILTER_DONE;
}
