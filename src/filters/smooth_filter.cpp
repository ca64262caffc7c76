// smooth_filter.cpp - the mean over a rectangle. Sums over the kernel's rows are kept for each column: going down a row, each gains
// the sample that enters at the bottom and loses the one that leaves at the top, so that the cost does not grow with the kernel's height.
#include "filters/neighbourhood_rows.h"
#include "filters/row_kernels.h"
#include "filters/row_output.h"

#include <algorithm>
#include <bit>

#include "services/ws.h"

namespace {

// --- small kernels, in 16 bits -------------------------------------------------------------------------------------

constexpr int SMALL_AREA_MIN = 2, SMALL_AREA_MAX = 127;

// floor(n / area) is n * factor >> (16 + shift), exact for n up to 256 * area since factor * area exceeds 2^(16 + shift) by less than
// area and area * area * 256 is below 2^(16 + shift) for areas up to 127.
small_mean small_mean_of(int area)
{
    const int shift = std::bit_width(unsigned(area - 1)) - 1;
    return { uint16_t(area / 2), uint16_t(((uint32_t{1} << (16 + shift)) + uint32_t(area) - 1) / uint32_t(area)), shift };
}

// --- kernels of any size ---------------------------------------------------------------------------------------------

// The total over the kernel's columns runs along the row in the same way.
void mean_large_row(uint8_t *out, const uint64_t *sums, int count, int width, uint64_t area)
{
    uint64_t total = area / 2;
    for (int c = 0; c < width - 1; c++)
        total += sums[c];
    for (int c = 0; c < count; c++) {
        total += sums[c + width - 1];
        out[c] = uint8_t(total / area);
        total -= sums[c];
    }
}

struct smoothing {
    const uint8_t *in;
    int rows, cols, kernel_rows, kernel_cols;
    const uint8_t *nothing;            // a row of zeros
};

// Row i of the kernel's places, from the first column that is computed on; the sums are those of the rows before.
typedef void (*smooth_row)(const smoothing &s, int i, void *sums, uint8_t *out);

void small_row(const smoothing &s, int i, void *memory, uint8_t *out)
{
    const row_kernels &kernels = row_kernels_best();
    uint16_t *const sums = (uint16_t *)memory;
    const size_t width = size_t(s.cols);
    if (i == 0)
        for (int r = 0; r < s.kernel_rows; r++)
            kernels.next_sums(sums, s.in + size_t(r) * width, s.nothing, s.cols);
    else
        kernels.next_sums(sums, s.in + size_t(i + s.kernel_rows - 1) * width, s.in + size_t(i - 1) * width, s.cols);
    const bool past_caches = int64_t{s.rows} * s.cols >= STREAM_FROM;
    kernels.mean(out, sums, s.cols, s.kernel_cols, small_mean_of(s.kernel_rows * s.kernel_cols), past_caches);
}

void large_row(const smoothing &s, int i, void *memory, uint8_t *out)
{
    uint64_t *const sums = (uint64_t *)memory;
    const size_t width = size_t(s.cols);
    const uint8_t *bottom = s.in + size_t(i + s.kernel_rows - 1) * width;
    if (i == 0) {
        for (int r = 0; r < s.kernel_rows; r++)
            for (size_t c = 0; c < width; c++)
                sums[c] += s.in[size_t(r) * width + c];
    } else {
        const uint8_t *leaving = s.in + size_t(i - 1) * width;
        for (size_t c = 0; c < width; c++)
            sums[c] = sums[c] + bottom[c] - leaving[c];
    }
    mean_large_row(out, sums, s.cols - s.kernel_cols + 1, s.kernel_cols,
                   uint64_t(s.kernel_rows) * uint64_t(s.kernel_cols));
}

} // namespace

int smooth_filter(const uint8_t *in, uint8_t *out, int rows, int cols, int kernel_rows, int kernel_cols)
{
    if (kernel_rows <= 0 || kernel_cols <= 0)
        return FILTER_NO_KERNEL;
    if (kernel_rows > rows || kernel_cols > cols)
        return FILTER_TOO_SMALL;
    const mem_ptr<int16_t> sums(told_of_memory(mem_calloc(size_t(sums_count(cols)), sizeof(uint64_t))));
    if (!sums)
        return FILTER_NO_MEMORY;
    const mem_ptr<int16_t> nothing(told_of_memory(mem_calloc(size_t(cols), 1)));
    if (!nothing)
        return FILTER_NO_SCRATCH;
    const smoothing s = { in, rows, cols, kernel_rows, kernel_cols, (const uint8_t *)nothing.get() };
    const int64_t area = int64_t{kernel_rows} * kernel_cols;
    const bool small = kernel_cols <= SMALL_WIDTH && area >= SMALL_AREA_MIN && area <= SMALL_AREA_MAX;
    const smooth_row do_row = small ? small_row : large_row;
    const int down = kernel_rows / 2, right = kernel_cols / 2;
    const computed_area computed = { down, right, down + rows - kernel_rows, right + cols - kernel_cols };
    for (int i = 0; i <= rows - kernel_rows; i++) {
        if (stopped_at_row(i + down, rows))
            return FILTER_STOPPED;
        do_row(s, i, sums.get(), out + int64_t{i + down} * cols + right);
        fill_margins(out, i + down, cols, computed);
    }
    fill_borders(out, rows, cols, computed);
    msg_clear(MSG_KEYIN);
    return FILTER_DONE;
}
