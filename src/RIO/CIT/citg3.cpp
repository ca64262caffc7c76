// citg3.cpp - one-dimensional lines; Group 3 (ITU-T T.4) in one and two dimensions; lines without EOL that begin at whole
// bytes, which TIFF calls compression 2.
#include "RIO/CIT/citbits.h"
#include <algorithm>

// ---- decoding ------------------------------------------------------------------------------------------------------

cit_line_end cit_read_line_1d(cit_reader &from, cit_lines &lines)
{
    const int32_t width = lines.width;
    cit_reader in = from;
    int32_t x = 0, count = 0;
    cit_line_end end = CIT_LINE_DONE;
    for (cit_colour colour = CIT_WHITE; x < width; colour = colour == CIT_WHITE ? CIT_BLACK : CIT_WHITE) {
        if (in.held < CIT_LOOK_BITS)
            cit_refill(in);
        int32_t run;
        if (!cit_read_run(in, colour, width - x, &run)) {
            end = CIT_LINE_BAD;
            break;
        }
        x += run;
        if (x < width)
            count = cit_add_element(lines.line, count, x);
    }
    from = in;
    lines.count = count;
    cit_close_elements(lines.line, count, width);
    return end;
}

static uint32_t hand_over(cit_lines &lines, cit_decoder_out *sink, cit_line_callback take, uint32_t number)
{
    const int32_t runs = cit_runs_of(lines.line, lines.count, lines.width, lines.runs);
    return take(sink, lines.runs, uint32_t(runs), number);
}

// Black for white: a first run of 0 is left out, or one is put in front.
static void invert(cit_lines &lines)
{
    int32_t *line = lines.line;
    if (lines.count > 0 && line[0] == 0) {
        std::copy(line + 1, line + lines.count, line);
        lines.count--;
    } else {
        std::copy_backward(line, line + lines.count, line + lines.count + 1);
        line[0] = 0;
        lines.count++;
    }
    cit_close_elements(line, lines.count, lines.width);
}

static uint32_t read_byte_lines(cit_reader &in, cit_lines &lines, cit_decoder_in *source, cit_decoder_out *sink,
                                cit_line_callback take)
{
    const uint32_t wanted = source->lines;
    uint32_t polarity = 0;
    for (source->lines = 0; source->lines < wanted; source->lines++) {
        if (cit_read_line_1d(in, lines) != CIT_LINE_DONE || cit_past_end(in))
            return CIT_BAD_DATA;
        // `held` is a count of whole bytes more than what is left of the present one.
        cit_skip(in, in.held & 7);
        if (source->flags & CIT_ALTERNATE_POLARITY) {
            polarity += uint32_t(source->polarity_step);
            if (polarity != 0)
                invert(lines);
        }
        const uint32_t result = hand_over(lines, sink, take, source->lines);
        if (!(result & 1))
            return result;
    }
    return CIT_OK;
}

// Drops fill bits and the EOL behind them, when the next bits are zeros; a line without EOL is left as it is. False where
// nothing but zeros follows.
static bool pass_eol(cit_reader &in)
{
    cit_refill(in);
    if ((in.bits & 0xFFF) == CIT_EOL) {
        cit_skip(in, CIT_EOL_BITS);
        return true;
    }
    if ((in.bits & 0xFFF) != 0)
        return true;
    for (; (in.bits & 0xFFF) == 0; cit_refill(in)) {
        if (cit_past_end(in))
            return false;
        cit_skip(in, CIT_EOL_BITS);
    }
    cit_skip(in, std::countr_zero(in.bits) + 1);
    return true;
}

// Tagged data begin with the EOL of a one-dimensional line, which fill bits may precede. Leaves it where it is.
static bool begins_tagged(cit_reader in)
{
    cit_refill(in);
    while ((in.bits & 0xFFF) == 0) {
        if (cit_past_end(in))
            return false;
        cit_skip(in, 1);
        cit_refill(in);
    }
    return (in.bits & 0x1FFF) == CIT_EOL_TAG_1D;
}

static uint32_t read_eol_lines(cit_reader &in, cit_lines &lines, cit_decoder_in *source, cit_decoder_out *sink,
                               cit_line_callback take)
{
    const uint32_t wanted = source->lines;
    const bool tagged = source->k >= 0;
    source->lines = 0;
    if (tagged && !begins_tagged(in))
        return CIT_BAD_DATA;
    for (; source->lines < wanted; source->lines++) {
        if (!pass_eol(in))
            return CIT_BAD_DATA;
        bool one_dimensional = true;
        cit_refill(in);
        if (tagged) {
            one_dimensional = in.bits & 1;
            cit_skip(in, 1);
        }
        if ((in.bits & 0xFFF) == CIT_EOL)
            return CIT_OK;
        const cit_line_end end = one_dimensional ? cit_read_line_1d(in, lines) : cit_read_line_2d(in, lines);
        if (end != CIT_LINE_DONE || cit_past_end(in))
            return CIT_BAD_DATA;
        const uint32_t result = hand_over(lines, sink, take, source->lines);
        if (!(result & 1))
            return result;
        cit_next_line(lines);
    }
    return CIT_OK;
}

using lines_reader = uint32_t (*)(cit_reader &, cit_lines &, cit_decoder_in *, cit_decoder_out *, cit_line_callback);

static uint32_t decode(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line, lines_reader read)
{
    const uint32_t wanted = in->lines;
    in->lines = 0;
    in->consumed = 0;
    cit_lines lines;
    const uint32_t started = cit_lines_new(&lines, in->width, in->source_size);
    if (started != CIT_OK)
        return started;
    in->lines = wanted;
    cit_reader reader = cit_reader_at(in->source, in->source_size, 0, 0);
    const uint32_t result = read(reader, lines, in, sink, line);
    in->consumed = std::min((cit_place(reader) + 7) / 8, in->source_size);
    cit_lines_free(&lines);
    return result;
}

uint32_t cit_g3_2d_decode(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line)
{
    return decode(in, sink, line, read_eol_lines);
}

uint32_t cit_1d_decode(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line)
{
    return decode(in, sink, line, read_byte_lines);
}

// ---- encoding ------------------------------------------------------------------------------------------------------

void cit_write_line_1d(cit_writer &to, const int32_t *line, int32_t count, int32_t width)
{
    cit_writer out = to;
    int32_t x = 0;
    for (int32_t i = 0; i <= count; i++) {
        const int32_t end = i < count ? line[i] : width;
        cit_put_run(out, i & 1 ? CIT_BLACK : CIT_WHITE, end - x);
        cit_flush(out);
        x = end;
    }
    to = out;
}

uint32_t cit_g3_init(cit_encoder *state, int32_t width, int32_t height, uint16_t *buffer, int64_t size, int32_t size_only,
                     int32_t k, int32_t pad_words)
{
    const uint32_t result = cit_encoder_start(state, width, height, buffer, size, size_only, pad_words);
    if (result != CIT_OK)
        return result;
    state->flags = k >= 0 ? CIT_TAGGED : k == -1 ? 0 : CIT_NO_EOL;
    state->k_period = k >= 0 ? k : 1;
    state->k_left = 1;
    return CIT_OK;
}

static void put_eol(cit_writer &out, const cit_encoder *state, bool one_dimensional)
{
    if (state->flags & CIT_TAGGED)
        cit_put(out, one_dimensional ? CIT_EOL_TAG_1D : CIT_EOL_TAG_2D, CIT_TAGGED_EOL_BITS);
    else if (!(state->flags & CIT_NO_EOL))
        cit_put(out, CIT_EOL, CIT_EOL_BITS);
    cit_flush(out);
}

// Bits of this line that are in the writer; `before` were left over from the last one.
static int64_t line_bits(const cit_encoder *state, const cit_writer &out, int32_t before)
{
    return (out.to - state->line_code) * 8 + out.held - before;
}

static void fill(cit_writer &out, int64_t bits)
{
    for (; bits > 0; bits -= 32) {
        cit_put(out, 0, int(std::min<int64_t>(bits, 32)));
        cit_flush(out);
    }
}

uint32_t cit_g3_line(cit_encoder *state, const uint16_t *runs, int32_t count)
{
    int32_t *line = state->elements[state->reference == state->elements[0]];
    int64_t sum = 0;
    for (int32_t i = 0; i < count; i++)
        sum += runs[i];
    if (sum != state->width)
        return CIT_BAD_DATA;
    const int32_t elements = cit_elements_of(runs, state->width, line);
    if (elements < 0)
        return CIT_BAD_DATA;
    const bool one_dimensional = state->k_left == 1;
    cit_writer out = cit_line_begin(state);
    put_eol(out, state, one_dimensional);
    if (one_dimensional)
        cit_write_line_1d(out, line, elements, state->width);
    else
        cit_write_line_2d(out, line, state->reference, state->width);
    // TIFF's compression 2 leaves no whole byte of fill between lines, so they are not filled to a length.
    if (state->flags & CIT_NO_EOL)
        fill(out, (8 - out.held) % 8);
    else
        fill(out, 16 * int64_t{ state->pad_words } - line_bits(state, out, state->bit_count));
    const uint32_t result = cit_line_write(state, out);
    if (result == CIT_OK) {
        state->reference = line;
        state->k_left = one_dimensional ? state->k_period : std::max(state->k_left - 1, 0);
    }
    return result;
}

uint32_t cit_g3_end(cit_encoder *state, int64_t *words)
{
    cit_writer out = cit_line_begin(state);
    for (int i = 0; i < 6; i++)
        put_eol(out, state, true);
    return cit_encoder_end(state, out, words);
}
