#include "RIO/CORE/line_runs.h"
#include "RIO/CORE/rio_format.h"
#include <algorithm>
#include <bit>
#include <cstring>

static constexpr int32_t LONGEST_RUN = 32767;

// Length of the run of bits like bit x, from x on.
static int32_t bit_run(const uint16_t *line, int32_t x, int32_t width)
{
    const int32_t start = x;
    const uint16_t flip = line[x / 16] & (0x8000 >> x % 16) ? 0xFFFF : 0;
    while (x < width) {
        const uint16_t rest = uint16_t((line[x / 16] ^ flip) << x % 16);
        const int32_t same = rest ? std::countl_zero(rest) : 16 - x % 16;
        x += same;
        if (rest)
            break;
    }
    return (x < width ? x : width) - start;
}

int64_t rio_bitmap_runs(const uint16_t *line, int32_t width, uint16_t *runs, int64_t room)
{
    int64_t used = 0;
    int colour = 0;
    const auto emit = [&](int32_t run) {
        if (used < room)
            runs[used] = uint16_t(run);
        used++;
    };
    for (int32_t x = 0; x < width;) {
        const int bit = line[x / 16] >> (15 - x % 16) & 1;
        int32_t run = bit == colour ? bit_run(line, x, width) : 0;
        x += run;
        for (; run > LONGEST_RUN; run -= LONGEST_RUN) {
            emit(LONGEST_RUN);
            emit(0);
        }
        emit(run);
        colour ^= 1;
    }
    // After a last run of 1 pixels the colour has turned to 0: that run of none closes the line.
    if (!colour)
        emit(0);
    return used <= room ? used : -1;
}

int64_t rio_byte_runs(const uint8_t *line, int32_t width, uint16_t *runs, int64_t room)
{
    int64_t used = 0;
    for (int32_t x = 0; x < width; used += 2) {
        int32_t end = x + 1;
        while (end < width && line[end] == line[x] && end - x < LONGEST_RUN)
            end++;
        if (used + 2 > room)
            return -1;
        runs[used] = line[x];
        runs[used + 1] = uint16_t(end - x);
        x = end;
    }
    return used;
}

// Sets `count` bits from bit x on.
static void set_bits(uint16_t *line, int32_t x, int32_t count)
{
    while (count > 0) {
        const int32_t room = 16 - x % 16, part = count < room ? count : room;
        line[x / 16] = uint16_t(line[x / 16] | ((0xFFFF << (16 - part)) & 0xFFFF) >> x % 16);
        x += part;
        count -= part;
    }
}

int rio_runs_to_bitmap(const uint16_t *runs, int64_t words, uint16_t *line, int32_t width)
{
    memset(line, 0, size_t(rio_bitmap_words(width)) * 2);
    int32_t x = 0;
    for (int64_t i = 0; i < words; i++) {
        const int32_t run = runs[i];
        if (run > width - x)
            return 0;
        if (i & 1)
            set_bits(line, x, run);
        x += run;
    }
    return x == width;
}

int rio_runs_to_bytes(const uint16_t *runs, int64_t words, uint8_t *line, int32_t width)
{
    int32_t x = 0;
    for (int64_t i = 0; i + 1 < words; i += 2) {
        const int32_t run = runs[i + 1];
        if (run > width - x)
            return 0;
        memset(line + x, runs[i] & 255, size_t(run));
        x += run;
    }
    return x == width;
}

static int64_t encode_line(const RFILE *file, const uint8_t *line, uint8_t *buffer, int64_t room)
{
    uint16_t *runs = reinterpret_cast<uint16_t *>(buffer);
    return file->bits_per_sample == 1 ? rio_bitmap_runs(reinterpret_cast<const uint16_t *>(line), file->width, runs, room)
                                      : rio_byte_runs(line, file->width, runs, room);
}

int rio_getrleline_by_lines(RFILE *file, uint8_t *buffer, int *size)
{
    if (file->samples_per_pixel != 1 || file->bits_per_sample > 8 || file->flags & RIO_SQUETCH)
        return 0;
    mem_ptr<uint8_t> line(static_cast<uint8_t *>(mem_alloc(size_t(rio_line_bytes(file)))));
    if (!line)
        return rio_fail(file, RIO_NO_MEMORY, "rle line");
    uint8_t *lines[] = { line.get() };
    const int32_t at = file->current_line;
    if (!file->ops.getline(file, 1, lines))
        return 0;
    const int64_t words = encode_line(file, line.get(), buffer, *size / 2);
    if (words < 0) {
        file->current_line = at;
        const int64_t surely = 4 * int64_t{file->width} + 4;
        *size = surely > INT32_MAX ? INT32_MAX : int(surely);
        return rio_fail(file, RIO_RLE_BUFFER, "rle line");
    }
    *size = int(words * 2);
    return file->width;
}

// The runs that surely fit: a row of single pixels has one for each, and two more.
static int surely_bytes(const rio_tiles *t)
{
    const int64_t bytes = 2 * (int64_t{ t->tile_width } + 2 + t->tile_width / LONGEST_RUN * 2) * t->tile_height;
    return int(std::min<int64_t>(bytes, INT32_MAX));
}

int rio_getrletile_by_rows(RFILE *file, uint8_t *buffer, int *size, int32_t *value)
{
    if (rio_tile_check(file))
        return 0;
    if (file->samples_per_pixel != 1 || file->bits_per_sample != 1)
        return rio_fail(file, RIO_UNSUPPORTED, "No RLE tile this file");
    const rio_tiles *t = file->tiles;
    const int32_t tile = file->current_line;
    const int64_t row_words = rio_bitmap_words(t->tile_width), words = *size / 2;
    mem_ptr<uint16_t> pixels(static_cast<uint16_t *>(mem_alloc(size_t(2 * row_words * t->tile_height))));
    if (!pixels)
        return rio_fail(file, RIO_NO_MEMORY, "rle tile");
    uint8_t *buffers[] = { buffer ? reinterpret_cast<uint8_t *>(pixels.get()) : nullptr };
    const int got = file->ops.gettile(file, 1, buffers, value);
    if (!got || !buffer)
        return got;
    uint16_t *runs = reinterpret_cast<uint16_t *>(buffer);
    int64_t used = 0;
    for (int32_t y = 0; y < t->tile_height && !(value && *value != -1); y++) {
        const int64_t row = rio_bitmap_runs(pixels.get() + y * row_words, t->tile_width, runs + used, words - used);
        if (row < 0) {
            file->current_line = tile;
            *size = surely_bytes(t);
            return rio_fail(file, RIO_RLE_BUFFER, "rle tile");
        }
        used += row;
    }
    *size = int(2 * used);
    return got;
}

int rio_putrleline_by_lines(RFILE *file, const uint8_t *runs, int size)
{
    if (rio_write_check(file))
        return 1;
    if (file->samples_per_pixel != 1)
        return rio_fail_status(file, RIO_BAD_COUNT, "rle line");
    mem_ptr<uint8_t> line(static_cast<uint8_t *>(mem_alloc(size_t(rio_line_bytes(file)))));
    if (!line)
        return rio_fail_status(file, RIO_NO_MEMORY, "rle line");
    const uint16_t *words = reinterpret_cast<const uint16_t *>(runs);
    const int whole = file->bits_per_sample == 1
                          ? rio_runs_to_bitmap(words, size / 2, reinterpret_cast<uint16_t *>(line.get()), file->width)
                          : rio_runs_to_bytes(words, size / 2, line.get(), file->width);
    if (!whole)
        return rio_fail_status(file, RIO_BAD_VALUE, "rle line");
    uint8_t *lines[] = { line.get() };
    return file->ops.putline(file, 1, lines) ? 0 : 1;
}

int rio_copy_lines(RFILE *file, RFILE *target)
{
    const int planes = file->samples_per_pixel;
    const int64_t row = rio_line_bytes(file);
    mem_ptr<uint8_t> buffer(static_cast<uint8_t *>(mem_alloc(size_t(row * planes))));
    if (!buffer)
        return rio_fail_status(file, RIO_NO_MEMORY, "copydata");
    uint8_t *lines[4] = {};
    for (int s = 0; s < planes && s < 4; s++)
        lines[s] = buffer.get() + s * row;
    if (file->ops.seek(file, 0))
        return 1;
    // Some formats count the lines put themselves.
    for (int32_t y = 0, to = target->current_line; y < file->height; y++) {
        if (!file->ops.getline(file, planes, lines) || !target->ops.putline(target, planes, lines))
            return 1;
        target->current_line = ++to;
    }
    return 0;
}
