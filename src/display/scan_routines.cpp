#include <algorithm>
#include <cstring>

#include "display/paint.h"
#include "display/scan_state.h"
#include "services/ws.h"

int paint_interrupted(int y)
{
    if (!paint_interrupt || (y & (SCAN_STRIP - 1)) != 0)
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

static int64_t row_offset(const source_planes &planes, const source_plane &plane, int64_t row)
{
    return plane.stride == planes.plane[0].stride ? planes.row_offsets[row] : row * plane.stride;
}

// --- axis-aligned --------------------------------------------------------------------------------------------

// The columns of a line, and how they follow one another.
struct line_columns {
    const int32_t *columns;
    int count;
    int64_t step;                      // source pixels from each to the next in 16.16
};

static constexpr int64_t ONE = 65536;  // 1.0 in 16.16

// The source bytes of one window line: the row itself where its pixels follow one another, else collected in the sample buffers.
static void row_samples(const source_planes &planes, int64_t row, const line_columns &line, const uint8_t *in[3])
{
    for (int i = 0; i < planes.count; i++) {
        const source_plane &plane = planes.plane[i];
        uint8_t *const samples = scratch.samples[i];
        const int64_t offset = row_offset(planes, plane, row), first = offset + line.columns[0];
        in[i] = samples;
        if (!plane.pixels)
            std::memset(samples, plane.fill, size_t(line.count));
        else if (planes.packed_bits)
            sample_bits_columns(samples, plane.pixels + offset, line.columns, line.count);
        else if (line.step == ONE)
            in[i] = plane.pixels + first;
        else if (line.step % ONE == 0)
            sample_steps(samples, plane.pixels + first, int(line.step / ONE), line.count, plane.size - first);
        else
            sample_columns(samples, plane.pixels + offset, line.columns, line.count, plane.size - offset);
    }
}

static void repeat_values(void *line, const void *values, int bytes, const line_columns &columns)
{
    if (bytes == 1)
        repeat_8(static_cast<uint8_t *>(line), static_cast<const uint8_t *>(values), columns.columns, columns.count);
    else if (bytes == 2)
        repeat_16(static_cast<uint16_t *>(line), static_cast<const uint16_t *>(values), columns.columns, columns.count);
    else
        repeat_32(static_cast<uint32_t *>(line), static_cast<const uint32_t *>(values), columns.columns, columns.count);
}

// Zoomed in, source pixels are mapped once each and their values repeated: the same line, with fewer look-ups.
static void repeated_line(const source_planes &planes, const scan_value &value, const scan_tables &tables, int64_t row, const line_columns &columns,
                          int x, int y, void *line)
{
    const int32_t pixels = columns.columns[columns.count - 1] - columns.columns[0] + 1;
    const line_columns once { columns.columns, pixels, ONE };
    const uint8_t *in[3] = {};
    row_samples(planes, row, once, in);
    value.map(tables, in, x, y, pixels, scratch.values);
    repeat_values(line, scratch.values, value.bytes, columns);
}

// Asks for the bytes of a row that will be read next. Zoomed out, rows are too far apart for the processor to guess.
static void fetch_row(const source_planes &planes, int64_t row, const line_columns &line)
{
    static constexpr int CACHE_LINE = 64;
    if (row >= planes.height || line.step <= ONE || planes.packed_bits)
        return;
    for (int i = 0; i < planes.count; i++) {
        const source_plane &plane = planes.plane[i];
        const uint8_t *const pixels = plane.pixels + row_offset(planes, plane, row);
        for (int64_t x = line.columns[0]; plane.pixels && x <= line.columns[line.count - 1]; x += CACHE_LINE)
            __builtin_prefetch(pixels + x);
    }
}

// In pieces, so that the next row arrives while this one is worked on.
static void mapped_line(const source_planes &planes, const scan_value &value, const scan_tables &tables, int64_t row, int64_t next_row,
                        const line_columns &columns, int x, int y, uint8_t *line)
{
    static constexpr int PIECE_OF_LINE = 128;
    const int piece = columns.step > ONE && !planes.packed_bits ? PIECE_OF_LINE : columns.count;
    for (int i = 0; i < columns.count; i += piece) {
        const line_columns part { columns.columns + i, std::min(piece, columns.count - i), columns.step };
        const uint8_t *in[3] = {};
        fetch_row(planes, next_row, part);
        row_samples(planes, row, part, in);
        value.map(tables, in, x + i, y, part.count, line + int64_t{i} * value.bytes);
    }
}

static void scan_lines(const scan_state &state, const view_source &source)
{
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
    const line_columns columns { scratch.columns + skipped, count, state.steps.a };
    const bool repeats = columns.step < ONE && !value.by_place && !value.packed_bits;

    scan_tables tables;
    value.prepare(state, &tables);
    const uint8_t *last_line = nullptr;
    int64_t v = start.v, last_row = -1;
    for (int y = start.y; y <= output.limit.y1 && v < planes.height * ONE; y++, v += state.steps.d) {
        if (paint_interrupted(y))
            break;
        if (y < output.limit.y0)
            continue;
        uint8_t *const line = output_line(output, x, y);
        const int64_t row = v >> 16;
        if (row == last_row && !value.by_place) {
            if (line != last_line)
                std::memcpy(line, last_line, size_t(count) * size_t(value.bytes));
        } else if (repeats) {
            repeated_line(planes, value, tables, row, columns, x, y, line);
        } else {
            mapped_line(planes, value, tables, row, (v + state.steps.d) >> 16, columns, x, y, line);
        }
        output_put(output, x, y, count, line);
        last_row = row;
        last_line = line;
    }
    output_end(output);
}

// --- general ---------------------------------------------------------------------------------------------------

// A strip is what is painted between two looks at the events. Its source bytes are collected in pieces of this many columns: what a
// piece reads then lies in few pages and cache lines, while whole lines run through as many source rows as they have pixels.
static constexpr int PIECE = 128;

// Lines and pixels are counted from the clip's first ones, where the walks begin.
struct strip {
    int y, lines;
    line_part spans[SCAN_STRIP];       // pixels that show the source
};

static slanted_walk walk_of(const source_planes &planes, const source_plane &plane, const scan_steps &steps, int64_t u, int64_t v)
{
    return { plane.pixels, planes.row_offsets, plane.stride, plane.size, u, v, steps.a, steps.b, steps.c, steps.d };
}

// All pixels of a line that show the source are found in one step, since their positions lie on a straight line.
static line_part span_of_line(const scan_steps &steps, const source_planes &planes, int64_t u, int64_t v, line_part span)
{
    if (!span_inside(u, steps.a, planes.width << 16, &span.first, &span.last)
        || !span_inside(v, steps.c, planes.height << 16, &span.first, &span.last))
        span.last = span.first - 1;
    return span;
}

static uint8_t *strip_samples(int plane, int line)
{
    return scratch.samples[plane] + int64_t{line} * scratch.width;
}

static void collect_piece(const source_planes &planes, int plane, const slanted_walk &walk, const line_part *parts, int lines)
{
    uint8_t *const samples = strip_samples(plane, 0);
    if (planes.packed_bits)
        sample_bits_slant(samples, scratch.width, walk, parts, lines);
    else
        sample_slant(samples, scratch.width, walk, parts, lines);
}

static void collect_strip(const source_planes &planes, int plane, const slanted_walk &walk, const strip &s)
{
    int left = INT32_MAX, right = -1;
    for (int i = 0; i < s.lines; i++)
        if (s.spans[i].first <= s.spans[i].last) {
            left = std::min(left, s.spans[i].first);
            right = std::max(right, s.spans[i].last);
        }
    for (; left <= right; left += PIECE) {
        line_part parts[SCAN_STRIP];
        for (int i = 0; i < s.lines; i++)
            parts[i] = { std::max(s.spans[i].first, left), std::min(s.spans[i].last, left + PIECE - 1) };
        collect_piece(planes, plane, walk, parts, s.lines);
    }
}

static void collect_samples(const source_planes &planes, const scan_steps &steps, int64_t u, int64_t v, const strip &s)
{
    for (int i = 0; i < planes.count; i++) {
        const source_plane &plane = planes.plane[i];
        if (plane.pixels)
            collect_strip(planes, i, walk_of(planes, plane, steps, u, v), s);
        else
            std::memset(strip_samples(i, 0), plane.fill, size_t(s.lines) * size_t(scratch.width));
    }
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

    scan_tables tables;
    value.prepare(state, &tables);
    const line_part whole { output.limit.x0 - state.clip.x0, output.limit.x1 - state.clip.x0 };
    strip s;
    for (s.y = output.limit.y0; s.y <= output.limit.y1; s.y += s.lines) {
        if (paint_interrupted(s.y))
            break;
        const int64_t below = int64_t{s.y} - state.clip.y0, u = u0 + below * steps.b, v = v0 + below * steps.d;
        s.lines = std::min(s.y | (SCAN_STRIP - 1), output.limit.y1) - s.y + 1;
        for (int i = 0; i < s.lines; i++)
            s.spans[i] = span_of_line(steps, planes, u + i * steps.b, v + i * steps.d, whole);
        collect_samples(planes, steps, u, v, s);
        for (int i = 0; i < s.lines; i++) {
            const line_part &span = s.spans[i];
            const int x = state.clip.x0 + span.first, count = span.last - span.first + 1;
            if (count <= 0)
                continue;
            uint8_t *const line = output_line(output, x, s.y + i);
            const uint8_t *const in[3] = { strip_samples(0, i) + span.first, strip_samples(1, i) + span.first, strip_samples(2, i) + span.first };
            value.map(tables, in, x, s.y + i, count, line);
            output_put(output, x, s.y + i, count, line);
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
