// Reading lines. Raw lines have a fixed length and are read at their place; text lines are found by reading on, from
// the nearest line whose place is known.
#include "RIO/CORE/bit_lines.h"
#include "RIO/CORE/split_pixels.h"
#include "RIO/PNM/pnm.h"
#include "RIO/PNM/pnmtext.h"

static uint8_t *plane(int count, uint8_t **lines, int sample)
{
    return sample < count ? lines[sample] : nullptr;
}

// Samples are handed out as they are stored, but clipped.
static bool as_stored(const RFILE *file, const pnm_specs *specs)
{
    return !specs->levels || (file->flags & RIO_NO_SHIFT && specs->max_value < 256);
}

// ---- text ----------------------------------------------------------------------------------------------------------

static int text_failure(RFILE *file, pnm_found found)
{
    return rio_fail(file, RIO_READ_FAILED, found == PNM_END          ? "PNM"
                                           : found == PNM_UNEXPECTED ? "Unexpected char in PBM file"
                                                                     : "What the heck is going on?");
}

// The next line of P1 into words, leftmost pixel in the top bit; null words are passed over.
static pnm_found read_text_bits(RFILE *file, pnm_specs *specs, uint16_t *words)
{
    uint32_t word = 0;
    for (int32_t x = 0; x < file->width; x++) {
        int32_t digit;
        const pnm_found found = pnm_digit(&specs->feed, file, &digit);
        if (found != PNM_FOUND)
            return found;
        if (digit > 1)
            return PNM_UNEXPECTED;
        word = word << 1 | uint32_t(digit);
        if (words && x % 16 == 15)
            words[x / 16] = uint16_t(word);
    }
    if (words && file->width % 16)
        words[file->width / 16] = uint16_t(word << (16 - file->width % 16));
    return PNM_FOUND;
}

static pnm_found read_text_samples(RFILE *file, pnm_specs *specs, int count, uint8_t **lines)
{
    const int samples = pnm_samples(specs->kind);
    const bool stored = as_stored(file, specs);
    for (int32_t x = 0; x < file->width; x++)
        for (int s = 0; s < samples; s++) {
            int32_t value;
            const pnm_found found = pnm_number(&specs->feed, file, &value);
            if (found != PNM_FOUND)
                return found;
            const int32_t clipped = value > specs->max_value ? specs->max_value : value;
            if (uint8_t *out = plane(count, lines, s))
                out[x] = stored ? uint8_t(clipped) : specs->levels[clipped];
        }
    return PNM_FOUND;
}

static pnm_found read_text_line(RFILE *file, pnm_specs *specs, int count, uint8_t **lines)
{
    feed_note(&specs->marks, specs->feed_line, { .position = feed_position(&specs->feed), .state = 0 });
    const pnm_found found = pnm_is_bitmap(specs->kind)
                                ? read_text_bits(file, specs, reinterpret_cast<uint16_t *>(lines[0]))
                                : read_text_samples(file, specs, count, lines);
    specs->feed_line++;
    return found;
}

// Brings the feed to the start of the current line.
static pnm_found find_text_line(RFILE *file, pnm_specs *specs)
{
    feed_mark mark { .position = specs->data_offset, .state = 0 };
    const int32_t marked = feed_nearest(&specs->marks, file->current_line, &mark);
    if (marked > specs->feed_line || file->current_line < specs->feed_line) {
        feed_seek(&specs->feed, mark.position);
        specs->feed_line = marked;
    }
    uint8_t *nowhere[] = { nullptr };
    pnm_found found = PNM_FOUND;
    while (found == PNM_FOUND && specs->feed_line < file->current_line)
        found = read_text_line(file, specs, 1, nowhere);
    return found;
}

static int get_text_line(RFILE *file, pnm_specs *specs, int count, uint8_t **lines)
{
    specs->put_line = -1;
    pnm_found found = find_text_line(file, specs);
    if (found == PNM_FOUND)
        found = read_text_line(file, specs, count, lines);
    if (found == PNM_FOUND)
        return 1;
    // What lies behind a fault belongs to no line: the next read begins at a known place again.
    specs->feed_line = PNM_FEED_ASTRAY;
    return text_failure(file, found);
}

// ---- raw -----------------------------------------------------------------------------------------------------------

// `pixels` pixels of the chunk into the planes that are wanted, from pixel `x` on.
static void spread_bytes(const uint8_t *chunk, int pixels, int count, uint8_t **lines, int64_t x)
{
    uint8_t *red = plane(count, lines, 0), *green = plane(count, lines, 1), *blue = plane(count, lines, 2);
    if (red && green && blue) {
        rio_split_3(chunk, pixels, red + x, green + x, blue + x);
        return;
    }
    for (int s = 0; s < 3; s++)
        if (uint8_t *out = plane(count, lines, s))
            for (int i = 0; i < pixels; i++)
                out[x + i] = chunk[3 * i + s];
}

static void spread_words(const pnm_specs *specs, int pixels, int samples, int count, uint8_t **lines, int64_t x)
{
    for (int s = 0; s < samples; s++) {
        uint8_t *out = plane(count, lines, s);
        for (int i = 0; out && i < pixels; i++) {
            out[x + i] = specs->levels[be_u16(specs->chunk + 2 * (i * samples + s))];
        }
    }
}

// Colours of a byte each, from where they lie in memory. 0 when they do not.
static int spread_lying(RFILE *file, const pnm_specs *specs, int64_t place, int count, uint8_t **lines)
{
    const uint8_t *lying = specs->max_value < 256 ? rio_look(file, place, specs->row_bytes) : nullptr;
    if (!lying)
        return 0;
    spread_bytes(lying, file->width, count, lines, 0);
    return rio_look_ended(file);
}

// Lines that do not lie in the file as they are handed out, a chunk at a time.
static int get_chunks(RFILE *file, pnm_specs *specs, int count, uint8_t **lines)
{
    const int samples = pnm_samples(specs->kind), wide = specs->max_value > 255;
    const int pixel_bytes = samples << wide, most = PNM_CHUNK / pixel_bytes;
    for (int64_t x = 0; x < file->width; x += most) {
        const int pixels = int(file->width - x < most ? file->width - x : most);
        if (!rio_read_exact(file, specs->chunk, int64_t{pixels} * pixel_bytes))
            return 0;
        if (wide)
            spread_words(specs, pixels, samples, count, lines, x);
        else
            spread_bytes(specs->chunk, pixels, count, lines, x);
    }
    return 1;
}

static void scale_bytes(const RFILE *file, const pnm_specs *specs, uint8_t *line)
{
    if (as_stored(file, specs)) {
        const uint8_t most = uint8_t(specs->max_value);
        for (int32_t x = 0; x < file->width; x++)
            line[x] = line[x] > most ? most : line[x];
        return;
    }
    for (int32_t x = 0; x < file->width; x++)
        line[x] = specs->levels[line[x]];
}

static int get_raw_line(RFILE *file, pnm_specs *specs, int count, uint8_t **lines)
{
    specs->put_line = -1;
    const int64_t place = specs->data_offset + int64_t{file->current_line} * specs->row_bytes;
    const bool as_it_lies = pnm_samples(specs->kind) == 1 && specs->max_value < 256;
    if (!lines[0] && as_it_lies)
        return 1;
    const int read = as_it_lies ? rio_read_at(file, place, lines[0], specs->row_bytes)
                                : spread_lying(file, specs, place, count, lines)
                                      || (rio_byte_seek(file, place) && get_chunks(file, specs, count, lines));
    if (!read)
        return rio_fail(file, RIO_READ_FAILED, "PNM");
    if (pnm_is_bitmap(specs->kind))
        rio_bits_from_bytes(lines[0], file->width);
    else if (specs->levels && specs->max_value < 256)
        for (int s = 0; s < pnm_samples(specs->kind); s++)
            if (uint8_t *line = plane(count, lines, s))
                scale_bytes(file, specs, line);
    return 1;
}

int64_t pnm_place_of_lines(RFILE *file, int *)
{
    pnm_specs *specs = pnm_of(file);
    if (specs->kind != PNM_GRAY || specs->levels || specs->max_value != 255 || file->bits_per_sample != 8)
        return -1;
    specs->put_line = -1;
    return specs->data_offset + int64_t{file->current_line} * specs->row_bytes;
}

int pnm_get_line(RFILE *file, int count, uint8_t **lines)
{
    pnm_specs *specs = pnm_of(file);
    if (count < 1 || count > 4)
        return rio_fail(file, RIO_BAD_COUNT, "PNM");
    const int got = pnm_is_text(specs->kind) ? get_text_line(file, specs, count, lines)
                                             : get_raw_line(file, specs, count, lines);
    if (!got)
        return 0;
    file->current_line++;
    if (lines[0] && file->data_type == RIO_TYPE_BYTE)
        rio_finish_line(file, count, lines);
    return file->width;
}
