// Reading lines, a chunk of stored bytes at a time. Plain lines are read at their place; coded ones are found by
// decoding on, from the nearest line whose place is known.
#include "RIO/CORE/bit_lines.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/SUN/sun.h"
#include <algorithm>

static uint8_t *plane(int count, uint8_t **lines, int sample)
{
    return sample < count ? lines[sample] : nullptr;
}

// Brings the coded data to the start of the current line. 0 when they end before it.
static int find_coded_line(RFILE *file, sun_specs *specs)
{
    feed_mark mark { .position = specs->data_offset, .state = 0 };
    const int32_t marked = feed_nearest(&specs->marks, file->current_line, &mark);
    if (marked > specs->coded_line || file->current_line < specs->coded_line) {
        sun_return(&specs->coded, mark);
        specs->coded_line = marked;
    }
    for (; specs->coded_line < file->current_line; specs->coded_line++) {
        feed_note(&specs->marks, specs->coded_line, sun_tell(&specs->coded));
        if (sun_decode(&specs->coded, file, nullptr, specs->row_bytes) != specs->row_bytes)
            return 0;
    }
    feed_note(&specs->marks, specs->coded_line, sun_tell(&specs->coded));
    return 1;
}

static int find_line(RFILE *file, sun_specs *specs)
{
    specs->put_line = -1;
    return specs->type == SUN_BYTE_RUNS
               ? find_coded_line(file, specs)
               : rio_byte_seek(file, specs->data_offset + file->current_line * specs->row_bytes);
}

// The next stored bytes of the line; a null `out` passes over them.
static int take(RFILE *file, sun_specs *specs, uint8_t *out, int64_t bytes)
{
    if (specs->type == SUN_BYTE_RUNS)
        return sun_decode(&specs->coded, file, out, bytes) == bytes;
    return !out || rio_read_exact(file, out, bytes);
}

static void spread_bits(const uint8_t *stored, int pixels, uint8_t *out)
{
    for (int i = 0; i < pixels; i++)
        out[i] = stored[i / 8] >> (7 - i % 8) & 1;
}

static void spread_nibbles(const uint8_t *stored, int pixels, uint8_t *out)
{
    for (int i = 0; i < pixels; i++)
        out[i] = i & 1 ? stored[i / 2] & 15 : stored[i / 2] >> 4;
}

// One sample of each pixel; `stored` is that sample of the first.
static void spread_sample(const uint8_t *stored, int pixels, int pixel_bytes, uint8_t *out)
{
    for (int i = 0; i < pixels; i++)
        out[i] = stored[i * pixel_bytes];
}

static void spread(const sun_specs *specs, int pixels, int count, uint8_t **lines, int64_t x)
{
    if (specs->depth <= 4) {
        if (lines[0])
            (specs->depth == 1 ? spread_bits : spread_nibbles)(specs->chunk, pixels, lines[0] + x);
        return;
    }
    const int pixel_bytes = int(specs->depth / 8);
    if (pixel_bytes == 3 && count >= 3 && lines[0] && lines[1] && lines[2]) {
        const int first = specs->type == SUN_RGB ? 0 : 2;
        rio_split_3(specs->chunk, pixels, lines[first] + x, lines[1] + x, lines[2 - first] + x);
        return;
    }
    for (int s = 0; s < 3; s++)
        if (uint8_t *out = plane(count, lines, s)) {
            const int place = pixel_bytes - 3 + (specs->type == SUN_RGB ? s : 2 - s);
            spread_sample(specs->chunk + place, pixels, pixel_bytes, out + x);
        }
}

static int get_chunks(RFILE *file, sun_specs *specs, int count, uint8_t **lines)
{
    const int most = int(SUN_CHUNK / 4 / 8 * 8);        // whole bytes, at any depth
    for (int64_t x = 0; x < file->width; x += most) {
        const int pixels = int(std::min<int64_t>(file->width - x, most));
        if (!take(file, specs, specs->chunk, (int64_t{pixels} * specs->depth + 7) / 8))
            return 0;
        spread(specs, pixels, count, lines, x);
    }
    return 1;
}

static int get_stored_line(RFILE *file, sun_specs *specs, int count, uint8_t **lines)
{
    const int64_t bytes = (int64_t{file->width} * specs->depth + 7) / 8;
    const bool as_it_lies = file->bits_per_sample == 1 || specs->depth == 8;
    const int got = as_it_lies ? take(file, specs, lines[0], bytes) : get_chunks(file, specs, count, lines);
    if (!got || (specs->type == SUN_BYTE_RUNS && !take(file, specs, nullptr, specs->row_bytes - bytes)))
        return 0;
    specs->coded_line++;
    if (!lines[0] || file->bits_per_sample != 1)
        return 1;
    if (specs->invert)
        for (int64_t i = 0; i < bytes; i++)
            lines[0][i] = uint8_t(~lines[0][i]);
    rio_bits_from_bytes(lines[0], file->width);
    return 1;
}

int sun_get_line(RFILE *file, int count, uint8_t **lines)
{
    sun_specs *specs = sun_of(file);
    if (count < 1 || count > 4)
        return rio_fail(file, RIO_BAD_COUNT, "SUN");
    if (!find_line(file, specs) || !get_stored_line(file, specs, count, lines)) {
        specs->coded_line = -1;
        return rio_fail(file, RIO_READ_FAILED, "SUN");
    }
    file->current_line++;
    if (lines[0] && file->data_type == RIO_TYPE_BYTE)
        rio_finish_line(file, count, lines);
    return file->width;
}
