#include "filters/polygon_mask.h"

#include <algorithm>
#include <cstdlib>

#include "services/ws.h"

namespace {

constexpr int ROW_RECORDS = 101;

// What an edge, or edges that meet on the row, cover of it.
struct outline_run {
    int64_t start, length;
    bool crosses;                      // the outline goes on to the other side of the row; otherwise it touches it and turns back
};

struct row_records {
    int count;
    outline_run at[ROW_RECORDS];
};

struct row_range {
    int64_t first, last;
};

struct outline {
    const int32_t *vertices;
    int count;
    int64_t row(int i) const { return vertices[2 * i]; }
    int64_t column(int i) const { return vertices[2 * i + 1]; }
};

row_range rows_of(const outline &shape, int32_t first_row, int32_t last_row)
{
    row_range range = { shape.row(0), shape.row(0) };
    for (int i = 1; i < shape.count; i++)
        range = { std::min(range.first, shape.row(i)), std::max(range.last, shape.row(i)) };
    return { std::max<int64_t>(range.first, first_row), std::min<int64_t>(range.last, last_row) };
}

// The line drawn from vertex i to the next one, on row y.
outline_run run_of_edge(const outline &shape, int i, int64_t y)
{
    int low = i, high = i + 1;
    if (shape.row(high) < shape.row(low))
        std::swap(low, high);
    const int64_t r0 = shape.row(low), c0 = shape.column(low), c1 = shape.column(high);
    const int64_t dc = std::abs(c1 - c0), dr = shape.row(high) - r0;
    int64_t offset, length = 1;
    if (dc >= dr) {
        const double width = double(dc + 1), height = double(dr + 1);
        offset = int64_t(double(y - r0) * width / height + 0.5);
        length = int64_t(double(y - r0 + 1) * width / height - double(offset) + 0.5);
    } else {
        offset = int64_t(double(y - r0) * double(dc) / double(dr) + 0.5);
    }
    return { c1 < c0 ? c0 - offset - length + 1 : c0 + offset, length, true };
}

// The nearest row that is not y from vertex `from` on, forward or backward; y for a flat polygon.
int64_t next_other_row(const outline &shape, int from, int step, int64_t y)
{
    for (int walked = 0, i = from; walked <= shape.count; walked++) {
        if (shape.row(i) != y)
            return shape.row(i);
        i = (i + step + shape.count) % shape.count;
    }
    return y;
}

bool passes_through(int64_t previous, int64_t y, int64_t next)
{
    return (previous < y && y < next) || (previous > y && y > next);
}

void merge(outline_run &into, const outline_run &run)
{
    into.start = std::min(into.start, run.start);
    into.length = std::max(into.length, run.length);
}

int add(row_records &records, const outline_run &run)
{
    if (records.count == ROW_RECORDS)
        return 0;
    records.at[records.count++] = run;
    return 1;
}

// An edge that starts on row y. Its vertex was reached by the edge before it, whose record takes it in; the first edge opens the record of
// its own vertex.
int add_starting_edge(const outline &shape, int i, int64_t y, row_records &records, outline_run run)
{
    if (i == 0) {
        run.crosses = passes_through(next_other_row(shape, shape.count - 1, -1, y), y, next_other_row(shape, 0, 1, y));
        return add(records, run);
    }
    outline_run &before = records.at[records.count - 1];
    merge(before, run);
    // A last edge along the row leads back to the first vertex: both records are of one part of the outline, which counts once.
    if (i == shape.count - 2 && shape.row(0) == y && records.count > 1) {
        merge(records.at[0], before);
        records.count--;
    }
    return 1;
}

int add_edge(const outline &shape, int i, int64_t y, row_records &records)
{
    outline_run run = run_of_edge(shape, i, y);
    if (shape.row(i) == y)
        return add_starting_edge(shape, i, y, records, run);
    if (shape.row(i + 1) != y)
        return add(records, run);
    if (i == shape.count - 2) {
        merge(records.at[0], run);
        return 1;
    }
    run.crosses = passes_through(shape.row(i), y, next_other_row(shape, i + 1, 1, y));
    return add(records, run);
}

int collect_row(const outline &shape, int64_t y, row_records &records)
{
    records.count = 0;
    for (int i = 0; i < shape.count - 1; i++) {
        const auto [low, high] = std::minmax({ shape.row(i), shape.row(i + 1) });
        if (low <= y && y <= high && !add_edge(shape, i, y, records))
            return 0;
    }
    return 1;
}

void sort_by_start(row_records &records)
{
    for (int i = 1; i < records.count; i++)
        for (int k = i; k > 0 && records.at[k].start < records.at[k - 1].start; k--)
            std::swap(records.at[k], records.at[k - 1]);
}

// Records that meet become one, which ends where the later one of them ends. Two crossings at one place are none.
void join_neighbours(row_records &records)
{
    int kept = 0;
    for (int k = 1; k < records.count; k++) {
        outline_run &before = records.at[kept];
        const outline_run &run = records.at[k];
        if (run.start > before.start + before.length) {
            records.at[++kept] = run;
            continue;
        }
        before.length = run.start + run.length - before.start;
        before.crosses = before.crosses != run.crosses;
    }
    records.count = std::min(records.count, kept + 1);
}

int32_t held(int64_t column)
{
    return int32_t(std::clamp<int64_t>(column, INT32_MIN, INT32_MAX));
}

// The last record of a row never opens an interval.
int32_t *write_intervals(const row_records &records, int64_t y, int32_t *mask)
{
    bool inside = false;
    for (int k = 0; k + 1 < records.count; k++) {
        const outline_run &run = records.at[k];
        inside = run.crosses != inside;
        if (!inside)
            continue;
        *mask++ = int32_t(y);
        *mask++ = held(run.start + run.length);
        *mask++ = held(records.at[k + 1].start);
    }
    return mask;
}

} // namespace

int64_t poly_mask_bytes(const int32_t *vertices, int count, int32_t first_row, int32_t last_row)
{
    constexpr int64_t TRIPLE = 3 * sizeof(int32_t);
    if (count < 1)
        return TRIPLE;
    const row_range rows = rows_of({ vertices, count }, first_row, last_row);
    const int64_t a_row = std::min(count, ROW_RECORDS);
    return TRIPLE * (std::max<int64_t>(rows.last - rows.first + 1, 0) * a_row + 1);
}

int poly_to_rast(const int32_t *vertices, int count, int32_t *mask, int32_t first_row, int32_t last_row)
{
    const outline shape = { vertices, count };
    const row_range rows = count < 1 ? row_range{ 0, -1 } : rows_of(shape, first_row, last_row);
    for (int64_t y = rows.first; y <= rows.last; y++) {
        row_records records;
        if (!collect_row(shape, y, records)) {
            report(REPORT_WARNING, "poly_to_rast(): Intersection interval buffer overflow\n");
            return -1;
        }
        sort_by_start(records);
        join_neighbours(records);
        mask = write_intervals(records, y, mask);
    }
    *mask = -1;
    return 0;
}
