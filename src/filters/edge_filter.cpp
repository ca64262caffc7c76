#include "filters/neighbourhood_rows.h"
#include "filters/row_kernels.h"

const int32_t edge_base_kernel[9] = {
     1,  1,  1,
     0,  0,  0,
    -1, -1, -1,
};

namespace {

// --- directional edges -------------------------------------------------------------------------------------------

constexpr int RING = 8;
constexpr int ring_place[RING] = { 0, 1, 2, 5, 8, 7, 6, 3 };  // around the kernel's centre, clockwise from the top left
constexpr double EIGHTHS_PER_DEGREE = 0.022222222222222223;

struct place {
    int row, column;
};

struct edge_kernel {
    int32_t tap[9];
    place plus[3], minus[3];           // where +1 and -1 stand, when the kernel is three of each
};

edge_kernel turned(const int32_t base[9], int eighths)
{
    edge_kernel kernel = {};
    kernel.tap[4] = base[4];
    for (int i = 0; i < RING; i++)
        kernel.tap[ring_place[(i + eighths) % RING]] = base[ring_place[i]];
    return kernel;
}

// Three +1 and three -1, as all turns of the base kernel have them.
bool find_signs(edge_kernel &kernel)
{
    int plus = 0, minus = 0;
    for (int i = 0; i < 9; i++) {
        const int32_t tap = kernel.tap[i];
        if (tap == 0)
            continue;
        if (tap == 1 && plus < 3)
            kernel.plus[plus++] = { i / 3, i % 3 };
        else if (tap == -1 && minus < 3)
            kernel.minus[minus++] = { i / 3, i % 3 };
        else
            return false;
    }
    return plus == 3 && minus == 3;
}

void edge_byte_row(uint8_t *out, const uint8_t *const *rows, int count, const void *parameters, bool past_caches)
{
    const edge_kernel &k = *(const edge_kernel *)parameters;
    const uint8_t *plus[3], *minus[3];
    for (int i = 0; i < 3; i++) {
        plus[i] = rows[k.plus[i].row] + k.plus[i].column;
        minus[i] = rows[k.minus[i].row] + k.minus[i].column;
    }
    row_kernels_best().edge(out, plus, minus, count, past_caches);
}

void edge_wide_row(uint8_t *out, const int16_t *const *rows, int count, const void *parameters, bool)
{
    const edge_kernel &k = *(const edge_kernel *)parameters;
    for (int c = 0; c < count; c++) {
        int64_t sum = 0;
        for (int i = 0; i < 9; i++)
            sum += int64_t{k.tap[i]} * rows[i / 3][c + i % 3];
        out[c] = clamp_level(sum);
    }
}

// --- Laplacian ---------------------------------------------------------------------------------------------------

void laplacian_byte_row(uint8_t *out, const uint8_t *const *rows, int count, const void *parameters, bool past_caches)
{
    row_kernels_best().laplace(out, rows[0], rows[1], rows[2], count, *(const laplacian *)parameters, past_caches);
}

void laplacian_wide_row(uint8_t *out, const int16_t *const *rows, int count, const void *parameters, bool)
{
    const laplacian &p = *(const laplacian *)parameters;
    for (int c = 0; c < count; c++) {
        const int64_t sum = int64_t{p.weight} * rows[1][c + 1] - rows[0][c + 1] - rows[2][c + 1] - rows[1][c] - rows[1][c + 2];
        out[c] = clamp_level(sum / p.divisor);
    }
}

constexpr int BYTE_WEIGHT_MIN = 4, BYTE_WEIGHT_MAX = 12;

} // namespace

int edge_filter(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, int angle, const int32_t base[9])
{
    const double eighths = angle * EIGHTHS_PER_DEGREE + 0.5;
    if (eighths <= -1 || eighths >= RING + 1)
        return FILTER_BAD_ANGLE;
    if (rows < 3 || cols < 3)
        return FILTER_TOO_SMALL;
    const mem_ptr<int16_t> memory = sample_memory();
    if (!memory)
        return FILTER_NO_MEMORY;
    edge_kernel kernel = turned(base, int(eighths));
    const bool signs_only = find_signs(kernel);
    return walk_rows(in, out, map, rows, cols, { 3, signs_only ? edge_byte_row : nullptr, edge_wide_row, &kernel }, memory.get());
}

int enhance_filter(const uint8_t *in, uint8_t *out, const int16_t *map, int rows, int cols, int weight)
{
    if (rows < 3 || cols < 3)
        return FILTER_TOO_SMALL;
    const mem_ptr<int16_t> memory = sample_memory();
    if (!memory)
        return FILTER_NO_MEMORY;
    // Two rows that nothing is written to: they count in the memory that this filter asks for, which is meant.
    const mem_ptr<int16_t> scratch(told_of_memory(mem_alloc(2 * 4 * size_t(cols))));
    if (!scratch)
        return FILTER_NO_SCRATCH;
    const int divisor = weight == 4 ? 1 : weight - 4;
    const bool in_bytes = weight >= BYTE_WEIGHT_MIN && weight <= BYTE_WEIGHT_MAX;
    const laplacian p = { weight, divisor, in_bytes ? uint16_t((32768 + divisor - 1) / divisor) : uint16_t{0} };
    return walk_rows(in, out, map, rows, cols, { 3, in_bytes ? laplacian_byte_row : nullptr, laplacian_wide_row, &p }, memory.get());
}
