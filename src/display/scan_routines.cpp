#include <algorithm>
#include <cstring>

#include "display/paint.h"
#include "display/scan_kernels.h"
#include "display/scan_state.h"
#include "services/ws.h"

int paint_interrupted(int y)
{
    static constexpr int LINES_BETWEEN = 32;
    if (!paint_interrupt || (y & (LINES_BETWEEN - 1)) != 0)
        return 0;
    uint32_t pending = 0;
    ws_pending(&pending);
    int window, x, y_button, button, transition;
    uint32_t time;
    return (pending & WS_BUTTON) && ws_read_button(&window, &x, &y_button, &button, &transition, &time) == 0 && transition != WS_UP;
}

// --- what both kinds of walk share ---------------------------------------------------------------------------

// One band of the source, as the samplers read it.
struct source_plane {
    const uint8_t *pixels;             // null: uniform
    uint8_t fill;
    int64_t stride, size;              // bytes; the size serves byte sources only
};

struct source_planes {
    int count;
    bool packed_bits;
    int64_t width, height;             // common to all planes
    const int64_t *row_offsets;
    source_plane plane[3];
};

static source_plane plane_of(const view_source &source, bool packed_bits)
{
    if (packed_bits)
        return { source.pixels, uint8_t(source.fill_value ? 255 : 0), bit_row_bytes(source.stride), 0 };
    const int64_t stride = source.stride;
    return { source.pixels, uint8_t(source.fill_value), stride, (source.height - 1) * stride + source.width };
}

// 0 when there is nothing to read, or no memory for the row table.
static int planes_of(const view_source &source, const scan_value &value, source_planes *out)
{
    source_planes &planes = *out;
    planes.count = value.planes;
    planes.packed_bits = value.packed_bits;
    planes.width = source.width, planes.height = source.height;
    const view_source *band = &source;
    for (int i = 0; i < value.planes; i++) {
        planes.plane[i] = plane_of(*band, value.packed_bits);
        planes.width = std::min<int64_t>(planes.width, band->width);
        planes.height = std::min<int64_t>(planes.height, band->height);
        band = band->next_plane ? band->next_plane : band;
    }
    if (planes.width <= 0 || planes.height <= 0)
        return 0;
    planes.row_offsets = row_offsets_for(source.height, planes.plane[0].stride);
    return planes.row_offsets != nullptr;
}

// --- axis-aligned --------------------------------------------------------------------------------------------

// The source bytes of one window line: the row itself where its pixels follow one another, else gathered in the sample buffers.
static void row_samples(const source_planes &planes, int64_t row, const int32_t *columns, int count, bool straight, const uint8_t *in[3])
{
    for (int i = 0; i < planes.count; i++) {
        const source_plane &plane = planes.plane[i];
        uint8_t *const samples = scratch.samples[i];
        const int64_t offset = plane.stride == planes.plane[0].stride ? planes.row_offsets[row] : row * plane.stride;
        in[i] = samples;
        if (!plane.pixels)
            std::memset(samples, plane.fill, size_t(count));
        else if (planes.packed_bits)
            sample_bits_columns(samples, plane.pixels + offset, columns, count);
        else if (straight)
            in[i] = plane.pixels + offset + columns[0];
        else
            sample_columns(samples, plane.pixels + offset, columns, count, plane.size - offset);
    }
}

static void scan_lines(const scan_state &state, const view_source &source)
{
    static constexpr int64_t ONE = 65536;
    const scan_value &value = *state.value;
    source_planes planes;
    block_start start;
    if (!planes_of(source, value, &planes) || !scan_start(state.steps, state.clip, source.x, source.y, planes.width, planes.height, &start))
        return;
    const scan_output output = output_begin(state, value);
    const int all_columns = column_table(start, state.steps, state.clip, planes.width, scratch.columns);
    const int skipped = std::max(output.limit.x0 - start.x, 0);
    const int x = start.x + skipped, count = std::min(all_columns - skipped, output.limit.x1 - x + 1);
    if (count <= 0)
        return;
    const int32_t *const columns = scratch.columns + skipped;
    const bool straight = state.steps.a == ONE;

    scan_tables tables;
    value.prepare(state, &tables);
    const uint8_t *in[3] = {};
    const void *last_line = nullptr;
    int64_t v = start.v, last_row = -1;
    for (int y = start.y; y <= output.limit.y1 && v < planes.height * ONE; y++, v += state.steps.d) {
        if (paint_interrupted(y))
            break;
        if (y < output.limit.y0)
            continue;
        void *const line = output_line(output, x, y);
        const int64_t row = v >> 16;
        if (row != last_row)
            row_samples(planes, row, columns, count, straight, in);
        if (row != last_row || value.by_place)
            value.map(tables, in, x, y, count, line);
        else if (line != last_line)
            std::memcpy(line, last_line, size_t(count) * size_t(value.bytes));
        output_put(output, x, y, count, line);
        last_row = row;
        last_line = line;
    }
    output_end(output);
}

// --- general ---------------------------------------------------------------------------------------------------

static constexpr int STRIP = 32;       // lines; between two looks at the events
// Placed lines are made in pieces of this many columns, a strip at a time: what a piece reads of the source then lies in few
// pages and cache lines, while whole lines would run through as many source rows as they have pixels.
static constexpr int PIECE = 64;

struct line_span {
    int first, last;                   // pixels from the clip's first one; empty: last below first
    int64_t u, v;                      // of the clip's first pixel in this line
};

static void slanted_samples(const source_planes &planes, int64_t u, int64_t v, const scan_steps &steps, int count, const uint8_t *in[3])
{
    for (int i = 0; i < planes.count; i++) {
        const source_plane &plane = planes.plane[i];
        uint8_t *const samples = scratch.samples[i];
        const slanted_walk walk { plane.pixels, planes.row_offsets, plane.stride, plane.size, u, v, steps.a, steps.c };
        in[i] = samples;
        if (!plane.pixels)
            std::memset(samples, plane.fill, size_t(count));
        else if (planes.packed_bits)
            sample_bits_slant(samples, walk, count);
        else
            sample_slant(samples, walk, count);
    }
}

// The pixels of a line that show the source. All of them are found in one step, since the positions lie on a straight line.
static line_span span_of_line(const scan_state &state, const window_rect &limit, int64_t u, int64_t v, const source_planes &planes)
{
    line_span span { limit.x0 - state.clip.x0, limit.x1 - state.clip.x0, u, v };
    if (!span_inside(u, state.steps.a, planes.width << 16, &span.first, &span.last)
        || !span_inside(v, state.steps.c, planes.height << 16, &span.first, &span.last))
        span.last = span.first - 1;
    return span;
}

static void scan_slanted(const scan_state &state, const view_source &source)
{
    const scan_value &value = *state.value;
    const scan_steps &steps = state.steps;
    source_planes planes;
    if (!planes_of(source, value, &planes))
        return;
    const scan_output output = output_begin(state, value);
    double x_source, y_source;
    scan_source_point(steps, state.clip.x0, state.clip.y0, &x_source, &y_source);
    const int64_t u0 = to_16_16(x_source - source.x), v0 = to_16_16(y_source - source.y);
    const int first_column = output.limit.x0 - state.clip.x0, last_column = output.limit.x1 - state.clip.x0;
    const int piece = output.placed ? PIECE : std::max(last_column - first_column + 1, 1);

    scan_tables tables;
    value.prepare(state, &tables);
    const uint8_t *in[3] = {};
    for (int y = output.limit.y0; y <= output.limit.y1; y = (y | (STRIP - 1)) + 1) {
        if (paint_interrupted(y))
            break;
        const int lines = std::min(y | (STRIP - 1), output.limit.y1) - y + 1;
        line_span spans[STRIP];
        for (int i = 0; i < lines; i++) {
            const int64_t below = int64_t{y} + i - state.clip.y0;
            spans[i] = span_of_line(state, output.limit, u0 + below * steps.b, v0 + below * steps.d, planes);
        }
        for (int left = first_column; left <= last_column; left += piece)
            for (int i = 0; i < lines; i++) {
                const line_span &span = spans[i];
                const int first = std::max(span.first, left), last = std::min(span.last, left + piece - 1);
                if (first > last)
                    continue;
                const int x = state.clip.x0 + first, count = last - first + 1;
                void *const line = output_line(output, x, y + i);
                slanted_samples(planes, span.u + first * steps.a, span.v + first * steps.c, steps, count, in);
                value.map(tables, in, x, y + i, count, line);
                output_put(output, x, y + i, count, line);
            }
    }
    output_end(output);
}

// --- the fourteen ------------------------------------------------------------------------------------------------

static void walk_nothing(const scan_state &, const view_source &)
{
}

// Only lines of single bytes have a variant in memory; the others then write nothing.
const scan_routine scan_nothing { walk_nothing, &scan_nothing };
const scan_routine scan_bits      { scan_lines, &scan_nothing },   scan_bits_rot      { scan_slanted, &scan_nothing };
const scan_routine scan_dither    { scan_lines, &scan_to_memory }, scan_dither_rot    { scan_slanted, &scan_to_memory_rot };
const scan_routine scan_grey24    { scan_lines, &scan_nothing },   scan_grey24_rot    { scan_slanted, &scan_nothing };
const scan_routine scan_8         { scan_lines, &scan_to_memory }, scan_8_rot         { scan_slanted, &scan_to_memory_rot };
const scan_routine scan_16        { scan_lines, &scan_nothing },   scan_16_rot        { scan_slanted, &scan_nothing };
const scan_routine scan_rgb       { scan_lines, &scan_nothing },   scan_rgb_rot       { scan_slanted, &scan_nothing };
const scan_routine scan_to_memory { scan_lines, &scan_to_memory }, scan_to_memory_rot { scan_slanted, &scan_to_memory_rot };
