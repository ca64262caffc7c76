#include "filters/neighbourhood_rows.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "filters/level_table.h"
#include "filters/long_pass.h"
#include "filters/row_output.h"
#include "services/ws.h"

namespace {

constexpr int KERNEL_MAX = 3;                                            // of a kernel
constexpr int SAMPLE_ROWS = BLOCK_ROWS + KERNEL_MAX - 1;
constexpr int SAMPLE_COLS = OUTPUT_LINE + BLOCK_COLS + KERNEL_MAX - 1;   // a block's rows may start a memory line earlier

} // namespace

int16_t *told_of_memory(void *block)
{
    if (!block)
        fputs("Insufficient memory\n", stderr);
    return (int16_t *)block;
}

mem_ptr<int16_t> sample_memory()
{
    return mem_ptr<int16_t>(told_of_memory(mem_alloc(sizeof(int16_t) * SAMPLE_ROWS * SAMPLE_COLS)));
}

int stopped_at_row(int row, int rows)
{
    if (row % 10 == 0)
        show_row(row, rows);
    return abort_check();
}

void fill_margins(uint8_t *out, int r, int cols, const computed_area &computed)
{
    uint8_t *const row = out + int64_t{r} * cols;
    memset(row + computed.c1 + 1, row[computed.c1], size_t(cols - computed.c1 - 1));
    memset(row, row[computed.c0], size_t(computed.c0));
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

// Samples through the table; of a table that changes nothing the image itself.
struct sample_source {
    const uint8_t *in;
    const int16_t *map;
    int rows, cols;
    bool direct, wide, past_caches;
    uint8_t table[256];
    int16_t *memory;
};

sample_source sample_source_of(const uint8_t *in, const int16_t *map, int rows, int cols, bool has_byte_kernel, int16_t *memory)
{
    sample_source source = { in, map, rows, cols, false, false, int64_t{rows} * cols >= STREAM_FROM, {}, memory };
    source.wide = !has_byte_kernel || !level_table(map, source.table);
    source.direct = !source.wide && is_identity(map);
    return source;
}

// Rows r0 to r1 and columns c0 to c1 of the image, as a block's kernels reach for them.
struct sample_area {
    int r0, c0, r1, c1;
};

void read_block(const sample_source &source, const sample_area &area)
{
    const int count = area.c1 - area.c0 + 1;
    for (int r = area.r0; r <= area.r1; r++) {
        const uint8_t *const from = source.in + int64_t{r} * source.cols + area.c0;
        const int64_t at = int64_t{r - area.r0} * SAMPLE_COLS;
        if (!source.wide) {
            map_levels(from, (uint8_t *)source.memory + at, source.table, size_t(count));
            continue;
        }
        for (int c = 0; c < count; c++)
            source.memory[at + c] = source.map[from[c]];
    }
}

// `count` pixels of a row whose kernels have their top left at row r, column c.
void filter_part(const sample_source &source, const row_filter &filter, const sample_area &area, int r, int c, uint8_t *out, int count)
{
    const int64_t place = int64_t{r - area.r0} * SAMPLE_COLS + c - area.c0;
    if (source.wide) {
        const int16_t *rows[KERNEL_MAX];
        for (int i = 0; i < filter.size; i++)
            rows[i] = source.memory + place + i * SAMPLE_COLS;
        filter.wide_row(out, rows, count, filter.parameters, source.past_caches);
        return;
    }
    const uint8_t *first = (const uint8_t *)source.memory + place;
    int64_t stride = SAMPLE_COLS;
    if (source.direct) {
        first = source.in + int64_t{r} * source.cols + c;
        stride = source.cols;
    }
    const uint8_t *const rows[KERNEL_MAX] = { first, first + stride, first + (filter.size - 1) * stride };
    filter.byte_row(out, rows, count, filter.parameters, source.past_caches);
}

// Columns c0 to c1 of row r; those at the sides of the computed area bring the margins with them.
void put_part(const sample_source &source, const row_filter &filter, const sample_area &area, const computed_area &computed, uint8_t *out, int r,
              int c0, int c1)
{
    const int anchor = filter.size / 2;
    uint8_t *const row = out + int64_t{r} * source.cols;
    filter_part(source, filter, area, r - anchor, c0 - anchor, row + c0, c1 - c0 + 1);
    if (c0 == computed.c0)
        memset(row, row[c0], size_t(c0));
    if (c1 == computed.c1)
        memset(row + c1 + 1, row[c1], size_t(source.cols - 1 - c1));
}

// Starts bringing the samples close that the block to the right will read.
void fetch_ahead(const sample_source &source, int r, int c)
{
    const uint8_t *const from = source.in + int64_t{r} * source.cols;
    for (const int end = std::min(c + BLOCK_COLS, source.cols); c < end; c += OUTPUT_LINE)
        __builtin_prefetch(from + c);
}

// Rows r0 to r1. Inner borders of blocks lie between lines of memory, in each row at its own column at or before that asked for.
void filter_block(const sample_source &source, const row_filter &filter, const computed_area &computed, uint8_t *out, int r0, int r1, int c0)
{
    const int anchor = filter.size / 2, below = filter.size - 1 - anchor;
    const bool first = c0 == computed.c0, last = computed.c1 - c0 < BLOCK_COLS;
    const int c1 = last ? computed.c1 : c0 + BLOCK_COLS - 1;
    const sample_area area = { r0 - anchor, std::max(0, c0 - OUTPUT_LINE), r1 + below, c1 + below };
    if (!source.direct)
        read_block(source, area);
    for (int r = r0; r <= r1; r++) {
        const uint8_t *const row = out + int64_t{r} * source.cols;
        fetch_ahead(source, r + below, c1 + below + 1);
        put_part(source, filter, area, computed, out, r, first ? c0 : c0 - into_line(row + c0), last ? c1 : c1 - into_line(row + c1 + 1));
    }
}

} // namespace

int walk_rows(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, const row_filter &filter, int16_t *memory)
{
    const sample_source source = sample_source_of(in, map, rows, cols, filter.byte_row != nullptr, memory);
    const int anchor = filter.size / 2, below = filter.size - 1 - anchor;
    const computed_area computed = { anchor, anchor, rows - 1 - below, cols - 1 - below };
    for (int r0 = computed.r0; r0 <= computed.r1; r0 += BLOCK_ROWS) {
        const int r1 = std::min(r0 + BLOCK_ROWS - 1, computed.r1);
        for (int r = r0; r <= r1; r++)
            if (stopped_at_row(r, rows))
                return FILTER_STOPPED;
        for (int c0 = computed.c0; c0 <= computed.c1; c0 += BLOCK_COLS)
            filter_block(source, filter, computed, out, r0, r1, c0);
    }
    fill_borders(out, rows, cols, computed);
    msg_clear(MSG_KEYIN);
    return FILTER_DONE;
}
