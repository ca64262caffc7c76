// citg4.cpp - two-dimensional lines and Group 4 (ITU-T T.6).
//
// a0 is the place in the line being coded, a1 and a2 the next changes in it, b1 the first change in the reference line to
// the right of a0 and of the colour opposite to a0's, b2 the change behind b1. With changes held as columns the colour is
// the parity of an index, and b1's index has the parity of a1's.
#include "RIO/CIT/citbits.h"
#include <algorithm>

// ---- decoding ------------------------------------------------------------------------------------------------------

namespace {
struct line_place {
    int64_t a0;                 // -1 at the start: a change at column 0 lies to the right of it
    int64_t count;              // elements so far
};
}

static bool read_horizontal(cit_reader &in, cit_lines &lines, line_place &at)
{
    const int32_t start = at.a0 < 0 ? 0 : int32_t(at.a0);
    const cit_colour colour = at.count & 1 ? CIT_BLACK : CIT_WHITE;
    int32_t first = 0, second = 0;
    cit_refill(in);
    if (!cit_read_run(in, colour, lines.width - start, &first))
        return false;
    const int32_t a1 = start + first;
    cit_refill(in);
    if (!cit_read_run(in, colour == CIT_WHITE ? CIT_BLACK : CIT_WHITE, lines.width - a1, &second))
        return false;
    const int32_t a2 = a1 + second;
    int32_t count = int32_t(at.count);
    if (a1 < lines.width)
        count = cit_add_element(lines.line, count, a1);
    if (a2 < lines.width)
        count = cit_add_element(lines.line, count, a2);
    at.count = count;
    at.a0 = a2;
    return true;
}

// The next b1's place, right of a0 and of the other parity, when the mode at b was vertical. Only what lies left of b can
// be nearer, and seldom is.
static inline int64_t place_behind(const int32_t *reference, int64_t b, int64_t a0)
{
    b = reference[b - 1] > a0 ? b - 1 : b + 1;
    while (reference[b] <= a0)
        b += 2;
    return b;
}

cit_line_end cit_read_line_2d(cit_reader &from, cit_lines &lines)
{
    const int32_t *const reference = lines.reference;
    int32_t *const line = lines.line;
    const int64_t width = lines.width;
    cit_reader in = from;
    line_place at { -1, 0 };
    int64_t b = 0;
    cit_line_end end = CIT_LINE_DONE;
    for (;;) {
        if (in.held < CIT_PAIR_BITS)
            cit_refill(in);
        // Most lines are made of vertical modes that move on: they are taken two at a time.
        const auto pair = cit_pairs.entries[in.bits & (CIT_PAIR_SIZE - 1)];
        const int64_t first = reference[b] + pair.first_delta;
        if (pair.length != 0 && first > at.a0 && first < width) [[likely]] {
            line[at.count] = int32_t(first);
            const int64_t next = place_behind(reference, b, first);
            const int64_t second = reference[next] + pair.second_delta;
            if (second > first && second < width) [[likely]] {
                cit_skip(in, pair.length);
                line[at.count + 1] = int32_t(second);
                at.count += 2;
                at.a0 = second;
                b = place_behind(reference, next, second);
                continue;
            }
            cit_skip(in, pair.first_length);
            at.count++;
            at.a0 = first;
            b = next;
            if (in.held < CIT_MODE_BITS)
                cit_refill(in);
        }
        const auto mode = cit_modes.entries[in.bits & (CIT_MODE_SIZE - 1)];
        cit_skip(in, mode.length);
        if (mode.mode == CIT_VERTICAL) {
            const int64_t a1 = reference[b] + mode.delta;
            if (a1 >= width)
                break;
            // A change at a0 itself leaves no pixel of this colour: nobody codes so, but behind a pass mode it has a meaning.
            if (a1 < at.a0 || (a1 == at.a0 && at.count == 0)) {
                end = CIT_LINE_BAD;
                break;
            }
            at.count = cit_add_element(line, int32_t(at.count), int32_t(a1));
            at.a0 = a1;
            b = place_behind(reference, b, a1);
        } else if (mode.mode == CIT_HORIZONTAL) {
            if (!read_horizontal(in, lines, at)) {
                end = CIT_LINE_BAD;
                break;
            }
            if (at.a0 >= width)
                break;
            while (reference[b] <= at.a0)
                b += 2;
        } else if (mode.mode == CIT_PASS) {
            at.a0 = reference[b + 1];
            if (at.a0 >= width)
                break;
            b += 2;
        } else {
            cit_refill(in);
            end = (in.bits & 0xFFFFF) == CIT_EOL ? CIT_END_MARKER : CIT_LINE_BAD;
            break;
        }
    }
    from = in;
    lines.count = int32_t(at.count);
    cit_close_elements(line, lines.count, lines.width);
    return end;
}

// The lines of a source, until they are done or stop; `in` ends behind the last whole line, or behind EOFB.
static uint32_t read_lines(cit_reader &in, cit_lines &lines, cit_decoder_in *source, cit_decoder_out *sink,
                           cit_line_callback take)
{
    const uint32_t wanted = source->lines;
    for (source->lines = 0; source->lines < wanted; source->lines++) {
        const cit_reader start = in;
        const cit_line_end end = cit_read_line_2d(in, lines);
        if (end == CIT_END_MARKER) {
            cit_skip(in, 2 * CIT_EOL_BITS);
            return CIT_OK;
        }
        if (end == CIT_LINE_BAD || cit_past_end(in)) {
            in = start;
            return CIT_BAD_DATA;
        }
        const int32_t runs = cit_runs_of(lines.line, lines.count, lines.width, lines.runs);
        const uint32_t result = take(sink, lines.runs, uint32_t(runs), source->lines);
        if (!(result & 1))
            return result;
        cit_next_line(lines);
    }
    return CIT_OK;
}

uint32_t cit_g4_decode_from(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line, cit_g4_place *place)
{
    const uint32_t wanted = in->lines;
    in->lines = 0;
    in->consumed = 0;
    cit_lines lines;
    const uint32_t started = cit_lines_new(&lines, in->width, in->source_size);
    if (started != CIT_OK)
        return started;
    cit_reader reader = cit_reader_at(in->source, in->source_size, place->byte, place->bit);
    uint32_t result = CIT_BAD_DATA;
    if (!place->reference || cit_elements_of(place->reference, lines.width, lines.reference) >= 0) {
        in->lines = wanted;
        result = read_lines(reader, lines, in, sink, line);
    }
    const int64_t bit = cit_place(reader);
    in->consumed = std::min((bit + 7) / 8, in->source_size);
    place->byte = bit / 8;
    place->bit = int32_t(bit % 8);
    place->ended = in->lines < wanted;
    cit_lines_free(&lines);
    return result;
}

uint32_t cit_g4_decode(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line)
{
    cit_g4_place start {};
    return cit_g4_decode_from(in, sink, line, &start);
}

// ---- encoding ------------------------------------------------------------------------------------------------------

void cit_write_line_2d(cit_writer &to, const int32_t *line, const int32_t *reference, int32_t width)
{
    cit_writer out = to;
    int64_t a0 = -1, a = 0, b = 0;
    while (a0 < width) {
        const int64_t a1 = line[a], b1 = reference[b], b2 = reference[b + 1];
        const int64_t delta = a1 - b1;
        if (b2 < a1) {
            cit_put(out, cit_mode_code.pass.bits, cit_mode_code.pass.length);
            a0 = b2;
            b += 2;
        } else if (uint64_t(delta + 3) <= 6) {
            const cit_code code = cit_mode_code.vertical[delta + 3];
            cit_put(out, code.bits, code.length);
            a0 = a1;
            a++;
            if (a0 < width)
                b = place_behind(reference, b, a0);
        } else {
            const int64_t a2 = line[a + 1];
            const cit_colour colour = a & 1 ? CIT_BLACK : CIT_WHITE;
            cit_put(out, cit_mode_code.horizontal.bits, cit_mode_code.horizontal.length);
            cit_put_run(out, colour, int32_t(a1 - (a0 < 0 ? 0 : a0)));
            cit_flush(out);
            cit_put_run(out, colour == CIT_WHITE ? CIT_BLACK : CIT_WHITE, int32_t(a2 - a1));
            a0 = a2;
            a += 2;
            while (reference[b] <= a0 && reference[b] < width)
                b += 2;
        }
        cit_flush(out);
    }
    to = out;
}

uint32_t cit_g4_init(cit_encoder *state, int32_t width, int32_t height, uint16_t *buffer, int64_t size, int32_t size_only)
{
    return cit_encoder_start(state, width, height, buffer, size, size_only, 0);
}

uint32_t cit_g4_line(cit_encoder *state, const uint16_t *runs)
{
    int32_t *line = state->elements[state->reference == state->elements[0]];
    if (cit_elements_of(runs, state->width, line) < 0)
        return CIT_BAD_DATA;
    cit_writer out = cit_line_begin(state);
    cit_write_line_2d(out, line, state->reference, state->width);
    const uint32_t result = cit_line_write(state, out);
    if (result == CIT_OK)
        state->reference = line;
    return result;
}

uint32_t cit_g4_end(cit_encoder *state, int64_t *words)
{
    cit_writer out = cit_line_begin(state);
    cit_put(out, CIT_EOL, CIT_EOL_BITS);
    cit_put(out, CIT_EOL, CIT_EOL_BITS);
    return cit_encoder_end(state, out, words);
}
