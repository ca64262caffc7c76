#include "filters/orthogonal.h"

#include <algorithm>
#include <cstring>

#include "filters/long_pass.h"
#include "filters/row_output.h"
#include "mem.h"
#include "services/ws.h"

namespace {

constexpr int ROWS_A_MESSAGE = 100;

int stopped(int row, int rows)
{
    if (row % ROWS_A_MESSAGE != 0)
        return 0;
    show_row(row, rows);
    return abort_check();
}

void mirror_row(const uint8_t *__restrict src, uint8_t *__restrict dst, int cols)
{
    for (int c = 0; c < cols; c++)
        dst[c] = src[cols - 1 - c];
}

__attribute__((target("ssse3")))
void mirror_row_fast(const uint8_t *src, uint8_t *dst, int cols)
{
    typedef char bytes16 __attribute__((vector_size(16)));
    constexpr bytes16 backward = { 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0 };
    int c = 0;
    for (; c + 16 <= cols; c += 16) {
        bytes16 v;
        memcpy(&v, src + cols - 16 - c, sizeof v);
        v = __builtin_shuffle(v, backward);
        memcpy(dst + c, &v, sizeof v);
    }
    for (; c < cols; c++)
        dst[c] = src[cols - 1 - c];
}

// --- transposing -------------------------------------------------------------------------------------------------------

constexpr int64_t WHOLE_MAX = 0x100000;
constexpr int TILE = 1024;
constexpr int SQUARE = 16, LINE = 64;  // bytes that are turned at once, and that memory moves at once

typedef uint8_t lanes __attribute__((vector_size(SQUARE)));

// Interleaving row i with row i + 8 moves the top bit of the row number to the bottom of the column number; four times makes them change places.
void transpose_square(const uint8_t *src, int64_t src_stride, uint8_t *dst, int64_t dst_stride)
{
    constexpr lanes low = { 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23 };
    constexpr lanes high = { 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31 };
    lanes a[SQUARE], b[SQUARE];
    for (int i = 0; i < SQUARE; i++)
        memcpy(&a[i], src + i * src_stride, SQUARE);
    for (int turn = 0; turn < 2; turn++) {
        for (int i = 0; i < SQUARE / 2; i++) {
            b[2 * i] = __builtin_shuffle(a[i], a[i + SQUARE / 2], low);
            b[2 * i + 1] = __builtin_shuffle(a[i], a[i + SQUARE / 2], high);
        }
        for (int i = 0; i < SQUARE / 2; i++) {
            a[2 * i] = __builtin_shuffle(b[i], b[i + SQUARE / 2], low);
            a[2 * i + 1] = __builtin_shuffle(b[i], b[i + SQUARE / 2], high);
        }
    }
    for (int i = 0; i < SQUARE; i++)
        memcpy(dst + i * dst_stride, &a[i], SQUARE);
}

void transpose_plainly(const uint8_t *src, int64_t src_stride, uint8_t *dst, int64_t dst_stride, int rows, int cols)
{
    for (int r = 0; r < rows; r++)
        for (int c = 0; c < cols; c++)
            dst[c * dst_stride + r] = src[r * src_stride + c];
}

int transpose_whole(const uint8_t *src, uint8_t *dst, int rows, int cols)
{
    for (int r = 0; r < rows; r += ROWS_A_MESSAGE) {
        if (abort_check()) {
            report(REPORT_WARNING, "Program aborted\n");
            return -4;
        }
        transpose_block(src + int64_t{r} * cols, cols, dst + r, rows, std::min(ROWS_A_MESSAGE, rows - r), cols);
    }
    return 0;
}

void copy_block(const uint8_t *src, int64_t src_stride, uint8_t *dst, int64_t dst_stride, int rows, int cols)
{
    for (int r = 0; r < rows; r++)
        memcpy(dst + r * dst_stride, src + r * src_stride, size_t(cols));
}

// With such rows a column's pixels fall on a few places of the cache.
bool crowds_cache(int row_bytes)
{
    return row_bytes % TILE == 0;
}

// A row block of tiles. Where rows crowd the cache each tile is gathered, transposed close to the processor and put down in whole rows.
int transpose_row_block(const uint8_t *src, uint8_t *dst, int rows, int cols, int r, uint8_t *gathered, uint8_t *turned)
{
    const int tile_rows = std::min(TILE, rows - r);
    for (int c = 0; c < cols; c += TILE) {
        const int tile_cols = std::min(TILE, cols - c);
        if (abort_check()) {
            report(REPORT_WARNING, "Program aborted\n");
            return -4;
        }
        const uint8_t *const from = src + int64_t{r} * cols + c;
        uint8_t *const to = dst + int64_t{c} * rows + r;
        if (crowds_cache(rows) || crowds_cache(cols)) {
            copy_block(from, cols, gathered, tile_cols, tile_rows, tile_cols);
            transpose_block(gathered, tile_cols, turned, tile_rows, tile_rows, tile_cols);
            copy_block(turned, tile_rows, to, rows, tile_cols, tile_rows);
        } else
            transpose_block(from, cols, to, rows, tile_rows, tile_cols);
    }
    return 0;
}

} // namespace

int flip_band(const uint8_t *src, uint8_t *dst, int rows, int cols)
{
    const size_t width = size_t(cols);
    for (int r = 0; r < rows; r++) {
        if (stopped(r, rows))
            return PASS_STOPPED;
        put_row(dst + size_t(r) * width, src + size_t(rows - 1 - r) * width, width, int64_t{rows} * cols);
    }
    put_rows_done();
    msg_clear(MSG_KEYIN);
    return 0;
}

int mirror_band(const uint8_t *src, uint8_t *dst, int rows, int cols)
{
    const auto reverse = __builtin_cpu_supports("ssse3") ? mirror_row_fast : mirror_row;
    for (int r = 0; r < rows; r++) {
        if (stopped(r, rows))
            return PASS_STOPPED;
        reverse(src + int64_t{r} * cols, dst + int64_t{r} * cols, cols);
    }
    msg_clear(MSG_KEYIN);
    return 0;
}

void transpose_block(const uint8_t *src, int64_t src_stride, uint8_t *dst, int64_t dst_stride, int rows, int cols)
{
    const int whole_rows = rows & -SQUARE, whole_cols = cols & -SQUARE;
    for (int left = 0; left < whole_cols; left += LINE)
        for (int top = 0; top < whole_rows; top += LINE)
            for (int c = left; c < std::min(left + LINE, whole_cols); c += SQUARE)
                for (int r = top; r < std::min(top + LINE, whole_rows); r += SQUARE)
                    transpose_square(src + r * src_stride + c, src_stride, dst + c * dst_stride + r, dst_stride);
    transpose_plainly(src + whole_cols, src_stride, dst + whole_cols * dst_stride, dst_stride, whole_rows, cols - whole_cols);
    transpose_plainly(src + whole_rows * src_stride, src_stride, dst + whole_rows, dst_stride, rows - whole_rows, cols);
}

int transpose_band(const uint8_t *src, uint8_t *dst, int rows, int cols)
{
    if (int64_t{rows} * cols <= WHOLE_MAX)
        return transpose_whole(src, dst, rows, cols);
    const mem_ptr<uint8_t> gathered((uint8_t *)mem_alloc(TILE * TILE));
    if (!gathered)
        return -1;
    const mem_ptr<uint8_t> turned((uint8_t *)mem_alloc(TILE * TILE));
    if (!turned)
        return -2;
    for (int r = 0; r < rows; r += TILE) {
        show_row(r, rows);
        if (const int result = transpose_row_block(src, dst, rows, cols, r, gathered.get(), turned.get()); result < 0)
            return result;
    }
    msg_clear(MSG_KEYIN);
    return 0;
}
