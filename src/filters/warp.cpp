#include "filters/warp.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "filters/warp_strip.h"
#include "mem.h"
#include "services/ws.h"

warp_working_set warp_set;

namespace {

constexpr int ROWS_A_MESSAGE = 10;

int make_weights(double parameter)
{
    int32_t **const tables[] = { &warp_set.cc_w0, &warp_set.cc_w1, &warp_set.cc_w2, &warp_set.cc_w3 };
    int failure = 0;
    for (int32_t **table : tables) {
        failure--;
        if (!(*table = (int32_t *)mem_alloc(CUBIC_ENTRIES * sizeof **table)))
            return failure;
    }
    cubic_weights(parameter, warp_set.cc_w0, warp_set.cc_w1, warp_set.cc_w2, warp_set.cc_w3);
    return 0;
}

void free_coordinates()
{
    mem_free(warp_set.row_start);
    mem_free(warp_set.row_coords);
    mem_free(warp_set.col_coords);
    warp_set.row_start = nullptr;
    warp_set.row_coords = warp_set.col_coords = nullptr;
}

int make_coordinates(size_t rows, size_t out_cols)
{
    if (!(warp_set.row_start = (int64_t *)mem_alloc(rows * sizeof *warp_set.row_start)))
        return -5;
    if (!(warp_set.row_coords = (double *)mem_calloc(out_cols, sizeof *warp_set.row_coords)))
        return -6;
    if (!(warp_set.col_coords = (double *)mem_calloc(out_cols, sizeof *warp_set.col_coords)))
        return -7;
    return 0;
}

// Pixels from one bound to the other; 0 where that is no size.
int pixels_between(double from, double to, double step)
{
    const double count = fabs(to - from) / fabs(step) + 1.0;
    return count <= INT32_MAX ? int(count) : 0;
}

// The rectangle that a warp fills, from an image.
struct warp_job {
    warp_source in;
    uint8_t *out;
    int out_rows, out_cols;
    int method, kind;
};

// Messages and stop tests of the rows from `row` to before `end`.
int stopped_at(int row, int end, int rows)
{
    for (int r = row; r < end; r++) {
        if (r % ROWS_A_MESSAGE != 0)
            continue;
        show_row(r, rows);
        if (abort_check())
            return 1;
    }
    return 0;
}

// What lies at the coordinates of the working set goes into columns first to last of an output row.
void put_run(const warp_source &in, uint8_t *out, int out_cols, int row, int first, int last, int method, int kind)
{
    const auto &[row_start, rows, cols, w0, w1, w2, w3] = warp_set;
    if (kind == WARP_BITS)
        resample_bits(in.pixels, out, in.rows, in.cols, first, last, rows, cols, row, row_start);
    else
        resample_row(in.pixels, out + int64_t{row} * out_cols + first, in.rows, in.cols, last - first + 1, method, rows, cols, row_start, w0,
                     w1, w2, w3);
}

void put_straight_row(const warp_job &job, int row, const warp_line &line)
{
    const auto [rs, cs, re, ce] = line;
    const auto &[in, out, out_rows, out_cols, method, kind] = job;
    if (method == WARP_NEAREST && kind == WARP_BYTES) {
        nearest_run(in.pixels, out + int64_t{row} * out_cols, in.rows, in.cols, out_cols, rs, cs, re, ce, in.row_start);
        return;
    }
    lerp_run(rs, cs, re, ce, out_cols, warp_set.row_coords, warp_set.col_coords);
    put_run(in, out, out_cols, row, 0, out_cols - 1, method, kind);
}

// The lines of an affine warp's rows lie evenly between those of the first and the last.
struct edge_walk {
    warp_line line, step;
};

edge_walk edges_of(const double rows[4], const double cols[4], int out_rows)
{
    const int steps = out_rows - 1;    // with one row the steps are not finite, and are not used
    return { { rows[0], cols[0], rows[1], cols[1] },
             { (rows[2] - rows[0]) / steps, (cols[2] - cols[0]) / steps, (rows[3] - rows[1]) / steps, (cols[3] - cols[1]) / steps } };
}

warp_line next_line(edge_walk *edges)
{
    const warp_line line = edges->line;
    edges->line.row += edges->step.row;
    edges->line.col += edges->step.col;
    edges->line.row_end += edges->step.row_end;
    edges->line.col_end += edges->step.col_end;
    return line;
}

// Bytes go strip by strip, and single rows where no strip is left.
int warp_straight_rows(const warp_job &job, edge_walk edges)
{
    cubic_table table = {};
    if (job.method == WARP_CUBIC)
        fill_cubic_table(&table, warp_set.cc_w0, warp_set.cc_w1, warp_set.cc_w2, warp_set.cc_w3);
    for (int row = 0, count = 0; row < job.out_rows; row += count) {
        count = job.kind == WARP_BYTES && job.out_rows - row >= STRIP_ROWS ? STRIP_ROWS : 1;
        if (stopped_at(row, row + count, job.out_rows))
            return WARP_STOPPED;
        warp_line lines[STRIP_ROWS];
        for (int k = 0; k < count; k++)
            lines[k] = next_line(&edges);
        if (count == STRIP_ROWS)
            warp_strip(job.in, job.out + int64_t{row} * job.out_cols, job.out_cols, lines, job.method, table);
        else
            put_straight_row(job, row, lines[0]);
    }
    return 0;
}

int warp_curved_rows(const warp_job &job, double r0, double r_step, double c0, double c1, double c_step, int model, const double *coefficients)
{
    double output_row = r0;
    for (int row = 0; row < job.out_rows; row++, output_row += r_step) {
        if (stopped_at(row, row + 1, job.out_rows))
            return WARP_STOPPED;
        trans_row_within(output_row, c0, c1, c_step, job.out_cols, model, coefficients, warp_set.row_coords, warp_set.col_coords);
        put_run(job.in, job.out, job.out_cols, row, 0, job.out_cols - 1, job.method, job.kind);
    }
    return 0;
}

int splice_stopped_at(int row)
{
    if (row % ROWS_A_MESSAGE != 0)
        return 0;
    char text[64];
    snprintf(text, sizeof text, "Processing row %d", row);
    msg_put(MSG_KEYIN, MSG_CENTRED, text);
    return abort_check();
}

} // namespace

int init_warp(int rows, int stride, int out_cols, int method, double cc_parameter)
{
    free_warp();
    rows = std::max(rows, 0);
    int failure = method == WARP_CUBIC ? make_weights(cc_parameter) : 0;
    if (failure < 0)
        return failure;
    failure = make_coordinates(size_t(rows), size_t(std::max(out_cols, 0)));
    if (failure < 0) {
        free_coordinates();
        return failure;
    }
    for (int i = 0; i < rows; i++)
        warp_set.row_start[i] = int64_t{i} * stride;
    return 0;
}

void free_warp()
{
    free_coordinates();
    for (int32_t *table : { warp_set.cc_w0, warp_set.cc_w1, warp_set.cc_w2, warp_set.cc_w3 })
        mem_free(table);
    warp_set = {};
}

int dwarp_it(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, double c0, double r0, double c1, double r1, double c_step,
             double r_step, const double *coefficients, int model, int method, double cc_parameter, int kind)
{
    const int out_rows = pixels_between(r0, r1, r_step), out_cols = pixels_between(c0, c1, c_step);
    if (const int failure = init_warp(in_rows, in_cols, out_cols, method, cc_parameter); failure < 0) {
        report(REPORT_WARNING, "dwarp_it(): error %d in init_warp()\n", failure);
        return -1;
    }
    const warp_job job = { { in, in_rows, in_cols, warp_set.row_start }, out, out_rows, out_cols, method, kind };
    int result = 0;
    if (model == MODEL_AFFINE) {
        double rows[4], cols[4];
        trans_corners(r0, c0, r1, c1, model, coefficients, rows, cols);
        result = warp_straight_rows(job, edges_of(rows, cols, out_rows));
    } else
        result = warp_curved_rows(job, r0, r_step, c0, c1, c_step, model, coefficients);
    if (result < 0)
        return result;
    msg_clear(MSG_KEYIN);
    free_warp();
    return 0;
}

int splice_it(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, int out_rows, int out_cols, const int32_t *mask,
              const double *model_coefficients, int model, int method, double cc_parameter, int kind)
{
    if (init_warp(in_rows, in_cols, out_cols, method, cc_parameter) < 0)
        return -1;
    const warp_source source = { in, in_rows, in_cols, warp_set.row_start };
    for (const int32_t *triple = mask; out_cols > 0; triple += 3) {
        const int row = triple[0];
        if (row >= out_rows || (row == -1 && !(triple > mask && triple[-3] == -2)))
            break;
        if (row < 0)
            continue;
        const int first = std::clamp(triple[1], 0, out_cols - 1), end = std::clamp(triple[2], 0, out_cols - 1);
        if (splice_stopped_at(row))
            return WARP_STOPPED;
        trans_span(row, first, end - 1, model, model_coefficients, warp_set.row_coords, warp_set.col_coords);
        put_run(source, out, out_cols, row, first, end, method, kind);
    }
    msg_clear(MSG_KEYIN);
    free_warp();
    return 0;
}
