#include "filters/orthogonal.h"

#include <algorithm>
#include <cstring>

#include "filters/long_pass.h"
#include "filters/row_output.h"
#include "filters/transpose_strip.h"
#include "mem.h"
#include "services/ws.h"

namespace {

constexpr int ROWS_A_MESSAGE = 100;
constexpr int LINE = OUTPUT_LINE;

int stopped(int row, int rows)
{
    if (row % ROWS_A_MESSAGE != 0)
        return 0;
    show_row(row, rows);
    return abort_check();
}

// --- flip and mirror: in blocks, so that several streams of memory are under way -------------------------------------

constexpr int BLOCK_ROWS = 8, BLOCK_COLS = 256;

struct plane_pair {
    const uint8_t *src;
    uint8_t *dst;
    int rows, cols;
    int64_t bytes() const { return int64_t{rows} * cols; }
};

// Columns c0 to c1 - 1 of row r of the destination.
typedef void (*part_mover)(const plane_pair &p, int r, int c0, int c1);

void flip_part(const plane_pair &p, int r, int c0, int c1)
{
    const uint8_t *const row = p.src + int64_t{p.rows - 1 - r} * p.cols;
    put_row(p.dst + int64_t{r} * p.cols + c0, row + c0, size_t(c1 - c0), p.bytes(), BLOCK_COLS);
}

void mirror_part(const plane_pair &p, int r, int c0, int c1)
{
    const uint8_t *const row = p.src + int64_t{r} * p.cols;
    put_row_backwards(p.dst + int64_t{r} * p.cols + c0, row + p.cols - c1, size_t(c1 - c0), p.bytes(), BLOCK_COLS);
}

// Inner borders of blocks lie between lines of the destination.
int move_rows(const plane_pair &p, part_mover move)
{
    for (int r0 = 0; r0 < p.rows; r0 += BLOCK_ROWS) {
        const int r1 = std::min(r0 + BLOCK_ROWS, p.rows);
        for (int r = r0; r < r1; r++)
            if (stopped(r, p.rows))
                return PASS_STOPPED;
        for (int c0 = 0; c0 < p.cols; c0 += BLOCK_COLS)
            for (int r = r0; r < r1; r++) {
                const uint8_t *const row = p.dst + int64_t{r} * p.cols;
                const int from = c0 == 0 ? 0 : c0 - into_line(row + c0), c1 = c0 + BLOCK_COLS;
                move(p, r, from, c1 >= p.cols ? p.cols : c1 - into_line(row + c1));
            }
    }
    put_rows_done();
    msg_clear(MSG_KEYIN);
    return 0;
}

// --- transposing -------------------------------------------------------------------------------------------------------

constexpr int64_t WHOLE_MAX = 0x100000;
constexpr int TILE = 1024;
constexpr int SQUARE = 16;            // bytes that are turned at once

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

int aborted()
{
    if (!abort_check())
        return 0;
    report(REPORT_WARNING, "Program aborted\n");
    return 1;
}

int transpose_whole(const uint8_t *src, uint8_t *dst, int rows, int cols)
{
    for (int r = 0; r < rows; r += ROWS_A_MESSAGE) {
        if (aborted())
            return -4;
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

// Where all rows of dst lie alike in their lines: strips of whole lines, and what is left at the sides.
int transpose_in_strips(strip_transposer transpose_strip, const uint8_t *src, uint8_t *dst, int rows, int cols)
{
    const int strip_cols = cols & -STRIP_COLS;
    const auto block = [&](int from, int to, int c) {
        transpose_block(src + int64_t{from} * cols + c, cols, dst + int64_t{c} * rows + from, rows, to - from, cols - c);
    };
    int top = -into_line(dst) & (LINE - 1), shown = 0;
    const auto show_blocks_before = [&](int row) {
        for (; shown < row; shown += TILE)
            show_row(shown, rows);
    };
    block(0, top, 0);
    for (; top + STRIP_ROWS <= rows; top += STRIP_ROWS) {
        show_blocks_before(top + STRIP_ROWS);
        if (aborted())
            return -4;
        transpose_strip(src + int64_t{top} * cols, cols, dst + top, rows, strip_cols);
        block(top, top + STRIP_ROWS, strip_cols);
    }
    show_blocks_before(rows);
    block(top, rows, 0);
    put_rows_done();
    return 0;
}

// A row block of tiles. Where rows crowd the cache each tile is gathered, transposed close to the processor and put down in whole rows.
int transpose_row_block(const uint8_t *src, uint8_t *dst, int rows, int cols, int r, uint8_t *gathered, uint8_t *turned)
{
    const int tile_rows = std::min(TILE, rows - r);
    for (int c = 0; c < cols; c += TILE) {
        const int tile_cols = std::min(TILE, cols - c);
        if (aborted())
            return -4;
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

int transpose_in_tiles(const uint8_t *src, uint8_t *dst, int rows, int cols, uint8_t *gathered, uint8_t *turned)
{
    for (int r = 0; r < rows; r += TILE) {
        show_row(r, rows);
        if (const int result = transpose_row_block(src, dst, rows, cols, r, gathered, turned); result < 0)
            return result;
    }
    return 0;
}

} // namespace

int flip_band(const uint8_t *src, uint8_t *dst, int rows, int cols)
{
    return move_rows({ src, dst, rows, cols }, flip_part);
}

int mirror_band(const uint8_t *src, uint8_t *dst, int rows, int cols)
{
    return move_rows({ src, dst, rows, cols }, mirror_part);
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
    int result = 0;
    if (const strip_transposer by_strips = rows % LINE == 0 ? transpose_strip_way() : nullptr)
        result = transpose_in_strips(by_strips, src, dst, rows, cols);
    else
        result = transpose_in_tiles(src, dst, rows, cols, gathered.get(), turned.get());
    if (result < 0)
        return result;
    msg_clear(MSG_KEYIN);
    return 0;
}
