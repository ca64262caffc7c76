// squetch.cpp - lines at another size: any file comes as out_height lines of out_width pixels.
//
// Horizontally each source line is squeezed as it is read; vertically the squeezed lines are taken, repeated, averaged or
// interpolated. So an image of any size is reduced in one pass with a few lines of memory. Widths and weights count in
// 1/2048 of a source pixel.
#include "RIO/CORE/rio_format.h"
#include <algorithm>
#include <cstring>

static constexpr int64_t UNIT = 2048;
enum { MOST_PLANES = 4 };

static bool averages(const rio_squetch *q) { return q->mode & RIO_SQUEEZE_AVERAGE; }

static bool is_bilevel(const RFILE *file)
{
    const uint32_t t = file->data_type;
    return t == RIO_TYPE_BITMAP || t == RIO_TYPE_BITMAP_RLE || t == RIO_TYPE_CCITT3 || t == RIO_TYPE_CCITT4;
}

// ---- rows of bytes -----------------------------------------------------------------------------------------------

static void row_nearest(const uint8_t *in, int width, uint8_t *out, int out_width)
{
    for (int i = 0; i < out_width; i++)
        out[i] = in[int64_t{ i } * width / out_width];
}

// Linear interpolation between a pixel and the next one; the last has no next.
static void row_interpolate(const uint8_t *in, int width, uint8_t *out, int out_width)
{
    for (int i = 0; i < out_width; i++) {
        const double at = double(i) * width / out_width;
        const int x = int(at);
        const int next = std::min(x + 1, width - 1);
        out[i] = uint8_t(in[x] + int((in[next] - in[x]) * (at - x)));
    }
}

// A box of `step` units for each output pixel; a source pixel on the border counts on both sides by its share.
static void row_average(const uint8_t *in, int width, uint8_t *out, int out_width)
{
    const int64_t step = int64_t(double(width) / out_width * UNIT);
    int64_t remaining = step, sum = 0;
    int written = 0;
    for (int x = 0; x < width && written < out_width; x++) {
        if (remaining > UNIT) {
            remaining -= UNIT;
            sum += in[x] * UNIT;
            continue;
        }
        out[written++] = uint8_t((sum + in[x] * remaining) / step);
        sum = in[x] * (UNIT - remaining);
        remaining = step - (UNIT - remaining);
    }
    // The truncated step never leaves a box open, but for a rounding of the scale.
    for (; written < out_width; written++)
        out[written] = in[width - 1];
}

static void squeeze_bytes(const uint8_t *in, int width, uint8_t *out, int out_width, bool average)
{
    if (!average)
        row_nearest(in, width, out, out_width);
    else if (out_width < width)
        row_average(in, width, out, out_width);
    else
        row_interpolate(in, width, out, out_width);
}

// A byte a pixel, 0 or 1. Averaging sets a pixel when more than half of the bits under it are set.
static void squeeze_bits(const uint16_t *in, int width, uint8_t *out, int out_width, bool average)
{
    const auto bit = [in](int64_t x) { return in[x >> 4] >> (15 - (x & 15)) & 1; };
    for (int i = 0; i < out_width; i++) {
        const int64_t first = int64_t{ i } * width / out_width;
        const int64_t end = std::max(first + 1, (int64_t{ i } + 1) * width / out_width);
        if (!average) {
            out[i] = uint8_t(bit(first));
            continue;
        }
        int64_t set = 0;
        for (int64_t x = first; x < end; x++)
            set += bit(x);
        out[i] = 2 * set > end - first;
    }
}

// ---- source lines ------------------------------------------------------------------------------------------------

// Reads the next source line into in_lines. 1; 0 failed.
static int read_source(RFILE *file)
{
    rio_squetch *q = file->squetch;
    const uint32_t interleave = file->flags & RIO_INTERLEAVE;
    file->flags &= ~interleave;
    const int got = file->flags & RIO_TILED ? file->ops.getlinefromtile(file, q->planes, q->in_lines)
                                            : file->ops.get_line(file, q->planes, q->in_lines);
    file->flags |= interleave;
    if (got >= file->width)
        return 1;
    return file->error ? 0 : rio_fail(file, RIO_READ_FAILED, "squetch");
}

// The next source line, squeezed, in `row`. At the end of the file the last line stays.
static int read_row(RFILE *file)
{
    rio_squetch *q = file->squetch;
    if (file->current_line >= file->height)
        return 1;
    if (!read_source(file))
        return 0;
    for (int s = 0; s < q->planes; s++) {
        if (is_bilevel(file))
            squeeze_bits((const uint16_t *)q->in_lines[s], file->width, q->row[s], q->out_width, averages(q));
        else
            squeeze_bytes(q->in_lines[s], file->width, q->row[s], q->out_width, averages(q));
    }
    return 1;
}

// Source line that output line `line` begins with.
static int64_t source_of(const RFILE *file, int64_t line)
{
    return line * file->height / file->squetch->out_height;
}

// ---- more lines than the file has --------------------------------------------------------------------------------

static int rows_enlarged(RFILE *file, uint8_t *const *out)
{
    rio_squetch *q = file->squetch;
    const bool restart = q->mode & RIO_SQUEEZE_RESTART;
    const bool interpolate = averages(q) && !is_bilevel(file);
    if (restart || source_of(file, q->out_line) != source_of(file, int64_t{ q->out_line } - 1)) {
        if (restart && !read_row(file))
            return 0;
        if (interpolate) {
            // The row read ahead becomes the present one.
            for (int s = 0; s < q->planes; s++)
                std::memcpy(q->older[s], q->row[s], size_t(q->out_width));
        }
        if ((interpolate || !restart) && !read_row(file))
            return 0;
    }
    const double at = double(q->out_line) * file->height / q->out_height;
    const double share = at - double(source_of(file, q->out_line));
    for (int s = 0; s < q->planes; s++)
        for (int x = 0; x < q->out_width; x++)
            out[s][x] = interpolate ? uint8_t(q->older[s][x] + int((q->row[s][x] - q->older[s][x]) * share))
                                    : q->row[s][x];
    return 1;
}

// ---- fewer lines than the file has -------------------------------------------------------------------------------

// The first of the lines under the output line; the others are consumed only.
static int rows_first(RFILE *file, uint8_t *const *out)
{
    rio_squetch *q = file->squetch;
    const int64_t target = source_of(file, int64_t{ q->out_line } + 1);
    if (!read_row(file))
        return 0;
    for (int s = 0; s < q->planes; s++)
        std::memcpy(out[s], q->row[s], size_t(q->out_width));
    while (file->current_line < target)
        if (!read_source(file))
            return 0;
    return 1;
}

// A box of `step` units of lines, the one on the border on both sides by its share, which `accum` and `carry` keep.
static int rows_average(RFILE *file, uint8_t *const *out)
{
    rio_squetch *q = file->squetch;
    const int64_t step = int64_t(double(file->height) / q->out_height * UNIT);
    if (q->mode & RIO_SQUEEZE_RESTART) {
        q->carry = 0;
        for (int s = 0; s < q->planes; s++)
            std::memset(q->accum[s], 0, size_t(q->out_width) * sizeof(int64_t));
    }
    int64_t left = step - q->carry, weight = 0;
    while (left > 0) {
        if (!read_row(file))
            return 0;
        weight = std::min(left, UNIT);
        left -= weight;
        for (int s = 0; s < q->planes; s++)
            for (int x = 0; x < q->out_width; x++)
                q->accum[s][x] += q->row[s][x] * weight;
    }
    for (int s = 0; s < q->planes; s++)
        for (int x = 0; x < q->out_width; x++) {
            out[s][x] = uint8_t(q->accum[s][x] / step);
            q->accum[s][x] = q->row[s][x] * (UNIT - weight);
        }
    q->carry = int32_t(UNIT - weight);
    return 1;
}

// Bits: any bit under the pixel sets it, so that thin lines stay; averaging asks for half of the lines. A hit counts
// twice, so that half is the count of lines.
static int rows_bits(RFILE *file, uint8_t *const *out)
{
    rio_squetch *q = file->squetch;
    const int64_t target = std::max(source_of(file, int64_t{ q->out_line } + 1), int64_t{ file->current_line } + 1);
    std::memset(q->accum[0], 0, size_t(q->out_width) * sizeof(int64_t));
    int64_t lines = 0;
    for (; file->current_line < target && file->current_line < file->height; lines++) {
        if (!read_row(file))
            return 0;
        for (int x = 0; x < q->out_width; x++)
            q->accum[0][x] += 2 * q->row[0][x];
    }
    for (int x = 0; x < q->out_width; x++)
        out[0][x] = q->accum[0][x] >= (averages(q) ? std::max<int64_t>(lines, 1) : 1);
    return 1;
}

static int squeeze_rows(RFILE *file, uint8_t *const *out)
{
    if (file->squetch->out_height >= file->height)
        return rows_enlarged(file, out);
    if (is_bilevel(file))
        return rows_bits(file, out);
    return averages(file->squetch) ? rows_average(file, out) : rows_first(file, out);
}

// ---- out to the caller -------------------------------------------------------------------------------------------

static void hand_out_bytes(RFILE *file, int count, uint8_t **lines, uint8_t *const *rows)
{
    const rio_squetch *q = file->squetch;
    if (file->flags & RIO_INTERLEAVE && q->planes > 1) {
        const int step = file->flags & RIO_PAD4 ? 4 : q->planes;
        for (int s = 0; s < q->planes; s++)
            for (int x = 0; x < q->out_width; x++)
                lines[0][int64_t{ x } * step + s] = rows[s][x];
        return;
    }
    for (int s = 0; s < count; s++)
        if (lines[s])
            std::memcpy(lines[s], rows[std::min(s, q->planes - 1)], size_t(q->out_width));
    // The rows were shifted when they were read, so that only colours are left to do.
    if (q->planes == 1 && count == 3 && file->vlt && lines[0])
        rio_translate_line(file, lines[0], lines[1], lines[2], q->out_width);
}

static void hand_out_bits(RFILE *file, int count, uint8_t **lines, uint8_t *const *rows)
{
    for (int s = 0; s < count; s++)
        if (lines[s])
            rio_pack_bits((uint16_t *)lines[s], rows[0], file->squetch->out_width, 1);
}

int rio_squetch_getline(RFILE *file, int count, uint8_t **lines)
{
    rio_squetch *q = file->squetch;
    bool wanted = false;
    for (int s = 0; s < count; s++)
        wanted |= lines[s] != nullptr;
    if (!q || !wanted || file->width > q->in_width)
        return rio_fail(file, RIO_NO_OUTPUT, "squetch");

    mem_ptr<uint8_t> block((uint8_t *)mem_alloc(size_t(q->planes) * size_t(q->out_width)));
    if (!block)
        return rio_fail(file, RIO_NO_MEMORY, "squetch");
    uint8_t *rows[MOST_PLANES] = {};
    for (int s = 0; s < q->planes; s++)
        rows[s] = block.get() + size_t(s) * size_t(q->out_width);
    if (!squeeze_rows(file, rows))
        return 0;
    q->out_line++;
    q->mode &= ~uint32_t(RIO_SQUEEZE_RESTART);
    if (is_bilevel(file))
        hand_out_bits(file, count, lines, rows);
    else
        hand_out_bytes(file, count, lines, rows);
    return q->out_width;
}

// ---- arming, seeking ---------------------------------------------------------------------------------------------

void rio_free_squetch(RFILE *file)
{
    rio_squetch *q = file->squetch;
    if (!q)
        return;
    for (int s = 0; s < MOST_PLANES; s++) {
        mem_free(q->in_lines[s]);
        mem_free(q->row[s]);
        mem_free(q->older[s]);
        mem_free(q->accum[s]);
    }
    mem_free(q);
    file->squetch = nullptr;
    file->flags &= ~uint32_t(RIO_SQUETCH);
}

static int squetch_alloc(RFILE *file, int out_width)
{
    rio_squetch *q = file->squetch = (rio_squetch *)mem_calloc(1, sizeof(rio_squetch));
    if (!q)
        return 0;
    q->planes = std::clamp<int>(file->samples_per_pixel, 1, MOST_PLANES);
    q->in_width = file->width;
    for (int s = 0; s < q->planes; s++) {
        q->in_lines[s] = (uint8_t *)mem_alloc(size_t(rio_line_bytes(file)));
        q->row[s] = (uint8_t *)mem_alloc(size_t(out_width));
        q->older[s] = (uint8_t *)mem_alloc(size_t(out_width));
        q->accum[s] = (int64_t *)mem_calloc(size_t(out_width), sizeof(int64_t));
        if (!q->in_lines[s] || !q->row[s] || !q->older[s] || !q->accum[s])
            return 0;
    }
    return 1;
}

static int arm(RFILE *file, int out_width, int out_height, uint32_t mode)
{
    rio_free_squetch(file);
    if (out_width == 0 && out_height == 0)
        return 0;
    if (out_width < 1 || out_height < 1 || !rio_size_valid(file->width, file->height, 1, 8))
        return rio_fail_status(file, RIO_BAD_SIZE, "squetch");
    if (file->bits_per_sample > 8)
        return rio_fail_status(file, RIO_UNSUPPORTED, "squetch");
    if (!squetch_alloc(file, out_width)) {
        rio_free_squetch(file);
        return rio_fail_status(file, RIO_NO_MEMORY, "squetch");
    }
    file->squetch->out_width = out_width;
    file->squetch->out_height = out_height;
    file->squetch->mode = mode | RIO_SQUEEZE_RESTART;
    file->flags |= RIO_SQUETCH;
    return 0;
}

int rio_arm_squetch(RFILE *file, int out_width, int out_height, uint32_t mode)
{
    if (!rio_enter(file, "rio_arm_squetch"))
        return 1;
    const int result = arm(file, out_width, out_height, mode);
    file->ops.rewind(file);
    rio_leave(file);
    return result;
}

int rio_squetch_seek(RFILE *file, int line, const char *text, int (*seek)(RFILE *file, int line))
{
    rio_squetch *q = file->squetch;
    if (!q || line < 0 || line >= q->out_height)
        return rio_fail_status(file, RIO_PAST_END, text);
    if (seek(file, int(source_of(file, line))) != 0)
        return 1;
    q->out_line = line;
    q->mode |= RIO_SQUEEZE_RESTART;
    return 0;
}

void rio_squetch_rewind(RFILE *file)
{
    if (file->squetch) {
        file->squetch->out_line = 0;
        file->squetch->mode |= RIO_SQUEEZE_RESTART;
    }
}
