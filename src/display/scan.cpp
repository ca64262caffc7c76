#include "display/scan.h"

#include <limits>

#include "display/dither.h"
#include "display/scan_state.h"
#include "mem.h"
#include "shell/session.h"

static scan_state states[WINDOWS];
scan_scratch scratch;

// --- the buffers that all paints share, kept and grown -----------------------------------------------------------

static void *scratch_block;

// Room for one clip width. 0 without memory.
static int scratch_for(int64_t width)
{
    static constexpr int64_t COLUMN = sizeof(int32_t), LINE_PIXEL = 4, BYTES = COLUMN + 2 * LINE_PIXEL + 3 * SCAN_STRIP;
    if (width <= scratch.width)
        return 1;
    uint8_t *const block = static_cast<uint8_t *>(mem_alloc(size_t(width * BYTES)));
    if (!block)
        return 0;
    mem_free(scratch_block);
    scratch_block = block;
    scratch.width = width;
    scratch.columns = reinterpret_cast<int32_t *>(block);
    scratch.line = block + width * COLUMN;
    scratch.values = block + width * (COLUMN + LINE_PIXEL);
    for (int i = 0; i < 3; i++)
        scratch.samples[i] = block + width * (COLUMN + 2 * LINE_PIXEL + i * SCAN_STRIP);
    return 1;
}

static int64_t *row_offsets;           // bytes to each row of the source last prepared
static int64_t rows_held, rows_filled, rows_stride;

const int64_t *row_offsets_for(int64_t height, int64_t stride)
{
    if (height == rows_filled && stride == rows_stride)
        return row_offsets;
    if (height > rows_held) {
        if (height > std::numeric_limits<int64_t>::max() / int64_t{sizeof *row_offsets})
            return nullptr;
        void *const grown = mem_realloc(row_offsets, size_t(height) * sizeof *row_offsets);
        if (!grown)
            return nullptr;
        row_offsets = static_cast<int64_t *>(grown);
        rows_held = height;
    }
    for (int64_t row = 0; row < height; row++)
        row_offsets[row] = row * stride;
    rows_filled = height;
    rows_stride = stride;
    return row_offsets;
}

void scan_reset()
{
    mem_free(scratch_block);
    mem_free(row_offsets);
    scratch_block = nullptr;
    row_offsets = nullptr;
    scratch = {};
    rows_held = rows_filled = rows_stride = 0;
    for (scan_state &state : states)
        state = {};
}

// --- choosing ----------------------------------------------------------------------------------------------------

struct scan_choice {
    const scan_routine *axis_aligned, *general;
    const scan_value *value;
};

static scan_choice choose(int depth, uint32_t value_mask)
{
    static constexpr uint32_t PACKED = 16777215;
    if (depth == 1)
        return { &scan_bits, &scan_bits_rot, &value_bits };
    if (depth == 24) {
        const scan_value *const value = value_mask == PACKED ? &value_rgb24 : value_mask > 255 ? &value_rgb_wide_slots : &value_rgb_slots;
        return { &scan_rgb, &scan_rgb_rot, value };
    }
    if (dither_kind == DITHER_MONO)
        return { &scan_dither, &scan_dither_rot, &value_dither };
    if (value_mask == PACKED)
        return { &scan_grey24, &scan_grey24_rot, &value_grey24 };
    if (value_mask <= 255)
        return { &scan_8, &scan_8_rot, &value_8 };
    return { &scan_16, &scan_16_rot, &value_16 };
}

void scan_prepare(int window, int x0, int y0, int x1, int y1, uint32_t value_mask, int source_width, int source_height, int depth,
                  const uint16_t *red_table, const uint16_t *green_table, const uint16_t *blue_table, const double matrix[16])
{
    scan_state &state = states[window];
    state = { window, { x0, y0, x1, y1 }, value_mask, { red_table, green_table, blue_table }, {}, &scan_nothing, nullptr, nullptr };
    if (x0 > x1 || y0 > y1 || !scan_steps_of(matrix, &state.steps))
        return;
    const int64_t row_bytes = depth == 1 ? bit_row_bytes(source_width) : source_width;
    if (!row_offsets_for(source_height, row_bytes) || !scratch_for(int64_t{x1} - x0 + 1))
        return;
    const scan_steps &t = state.steps;
    const bool axis_aligned = t.a >= 1 && t.d >= 1 && t.b == 0 && t.c == 0;
    const scan_choice choice = choose(depth, value_mask);
    state.scan = axis_aligned ? choice.axis_aligned : choice.general;
    state.value = choice.value;
}

void scan_set_target(int window, uint8_t *buffer)
{
    scan_state &state = states[window];
    if (state.target || !state.scan)
        return;
    state.target = buffer;
    state.scan = state.scan->in_memory;
}

void scan_run(int window, const view_source *source)
{
    const scan_state &state = states[window];
    if (state.scan)
        state.scan->walk(state, *source);
}

const scan_state *scan_state_of(int window)
{
    return &states[window];
}
