// citbits.cpp - see citbits.h: the buffers of decoders and encoders, and lines between their forms.
#include "RIO/CIT/citbits.h"
#include "mem.h"
#include <algorithm>

cit_reader cit_reader_at(const uint8_t *bytes, int64_t size, int64_t byte, int bit)
{
    cit_reader in { bytes, size, byte, 0, 0 };
    cit_refill(in);
    cit_skip(in, bit);
    return in;
}

// ---- elements ------------------------------------------------------------------------------------------------------

int32_t *cit_elements_new(int64_t most)
{
    const int64_t bytes = (most + CIT_ELEMENTS_BEFORE + CIT_ELEMENTS_BEHIND) * int64_t{ sizeof(int32_t) };
    int32_t *block = (int32_t *)mem_alloc(size_t(bytes));
    if (!block)
        return nullptr;
    for (int i = 0; i < CIT_ELEMENTS_BEFORE; i++)
        block[i] = -1;
    return block + CIT_ELEMENTS_BEFORE;
}

void cit_elements_free(int32_t *elements)
{
    if (elements)
        mem_free(elements - CIT_ELEMENTS_BEFORE);
}

int32_t cit_elements_of(const uint16_t *runs, int32_t width, int32_t *elements)
{
    int32_t count = 0;
    int64_t x = 0;
    for (int64_t i = 0;; i++) {
        x += runs[i];
        if (x >= width)
            break;
        // Two runs of 0 end the list.
        if (runs[i] == 0 && i > 0 && runs[i - 1] == 0)
            return -1;
        count = cit_add_element(elements, count, int32_t(x));
    }
    if (x > width)
        return -1;
    cit_close_elements(elements, count, width);
    return count;
}

static constexpr int32_t LONGEST_RUN = 65535;

int64_t cit_run_room(int64_t elements, int64_t width)
{
    return elements + 3 + 2 * (width / LONGEST_RUN);
}

static int32_t long_runs_of(const int32_t *elements, int32_t count, int32_t width, uint16_t *runs)
{
    int32_t made = 0;
    for (int32_t i = 0, x = 0; i <= count; i++) {
        const int32_t end = i < count ? elements[i] : width;
        for (; end - x > LONGEST_RUN; x += LONGEST_RUN) {
            runs[made++] = uint16_t(LONGEST_RUN);
            runs[made++] = 0;
        }
        runs[made++] = uint16_t(end - x);
        x = end;
    }
    runs[made] = runs[made + 1] = 0;
    return made;
}

int32_t cit_runs_of(const int32_t *elements, int32_t count, int32_t width, uint16_t *runs)
{
    if (width > LONGEST_RUN)
        return long_runs_of(elements, count, width, runs);
    int32_t x = 0;
    for (int32_t i = 0; i < count; i++) {
        runs[i] = uint16_t(elements[i] - x);
        x = elements[i];
    }
    runs[count] = uint16_t(width - x);
    runs[count + 1] = runs[count + 2] = 0;
    return count + 1;
}

// ---- the decoder's lines -------------------------------------------------------------------------------------------

uint32_t cit_lines_new(cit_lines *lines, uint32_t width, int64_t size)
{
    *lines = {};
    if (width == 0 || width > CIT_WIDEST || size < 0)
        return CIT_BAD_DATA;
    // The last code may lie half behind the end.
    const int64_t most = std::min<int64_t>(width, 8 * size) + 8;
    lines->width = int32_t(width);
    lines->line = cit_elements_new(most);
    lines->reference = cit_elements_new(most);
    lines->runs = (uint16_t *)mem_alloc(size_t(cit_run_room(most, width)) * sizeof(uint16_t));
    if (!lines->line || !lines->reference || !lines->runs) {
        cit_lines_free(lines);
        return CIT_NO_MEMORY;
    }
    cit_close_elements(lines->reference, 0, lines->width);
    return CIT_OK;
}

void cit_lines_free(cit_lines *lines)
{
    cit_elements_free(lines->line);
    cit_elements_free(lines->reference);
    mem_free(lines->runs);
    *lines = {};
}

// ---- the encoder ---------------------------------------------------------------------------------------------------

uint32_t cit_encoder_new(cit_encoder **state)
{
    *state = (cit_encoder *)mem_calloc(1, sizeof(cit_encoder));
    return *state ? CIT_OK : CIT_NO_MEMORY;
}

static void free_lines(cit_encoder *state)
{
    for (int32_t *&elements : state->elements) {
        cit_elements_free(elements);
        elements = nullptr;
    }
    mem_free(state->line_code);
    state->line_code = nullptr;
}

void cit_encoder_free(cit_encoder *state)
{
    if (!state)
        return;
    free_lines(state);
    mem_free(state);
}

// A horizontal mode of two runs of one pixel is 12 bits, and no mode takes more bits a pixel; a mode of a run of 0 is
// only at the ends of a line. Longer runs take less, and the codes of 2560 and the fill bits are counted by themselves.
static int64_t longest_line_code(int32_t width, int32_t pad_words)
{
    return 2 * (int64_t{ width } + pad_words) + 256;
}

uint32_t cit_encoder_start(cit_encoder *state, int32_t width, int32_t height, uint16_t *buffer, int64_t size,
                           int32_t size_only, int32_t pad_words)
{
    if (width <= 0 || width > CIT_WIDEST || size < 0 || pad_words < 0)
        return CIT_BAD_DATA;
    if (state->width != width || state->pad_words != pad_words || !state->line_code) {
        free_lines(state);
        state->elements[0] = cit_elements_new(int64_t{ width } + 1);
        state->elements[1] = cit_elements_new(int64_t{ width } + 1);
        state->line_code_size = longest_line_code(width, pad_words);
        state->line_code = (uint8_t *)mem_alloc(size_t(state->line_code_size));
        if (!state->elements[0] || !state->elements[1] || !state->line_code) {
            free_lines(state);
            return CIT_NO_MEMORY;
        }
    }
    cit_close_elements(state->elements[1], 0, width);
    state->reference = state->elements[1];
    state->flags = 0;
    state->height = height;
    state->width = width;
    state->bit_buffer = state->bit_count = 0;
    state->out = state->base = buffer;
    state->size = size;
    state->room = size / 2;
    state->size_only = size_only;
    state->counted = 0;
    state->k_period = state->k_left = 0;
    state->pad_words = pad_words;
    return CIT_OK;
}

void cit_encoder_move(cit_encoder *state, uint16_t *buffer, int64_t size)
{
    const int64_t done = state->out - state->base;
    state->base = buffer;
    state->out = buffer + done;
    state->size = size;
    state->room = size / 2 - done;
}

cit_writer cit_line_begin(cit_encoder *state)
{
    cit_writer out { state->line_code, uint64_t(state->bit_buffer), state->bit_count };
    cit_flush(out);
    return out;
}

uint32_t cit_line_write(cit_encoder *state, const cit_writer &out)
{
    const int64_t bits = (out.to - state->line_code) * 8 + out.held;
    const int64_t words = bits / 16;
    if (!state->size_only) {
        if (words > state->room)
            return CIT_NO_ROOM;
        std::memcpy(state->out, state->line_code, size_t(2 * words));
        state->out += words;
        state->room -= words;
    }
    state->counted += 2 * words;
    state->bit_count = int32_t(bits % 16);
    // Between a whole word and the flushed end lies one byte or none.
    const bool byte_left = (out.to - state->line_code) % 2 != 0;
    const uint32_t rest = byte_left ? out.to[-1] | uint32_t(out.bits) << 8 : uint32_t(out.bits);
    state->bit_buffer = int32_t(rest & ((1u << state->bit_count) - 1));
    return CIT_OK;
}

uint32_t cit_encoder_end(cit_encoder *state, cit_writer &out, int64_t *words)
{
    cit_flush(out);
    const int64_t bits = (out.to - state->line_code) * 8 + out.held + state->counted * 8;
    int64_t fill = (32 - bits % 32) % 32;
    cit_put(out, 0, int(fill));
    cit_flush(out);
    const uint32_t result = cit_line_write(state, out);
    *words = state->counted / 2;
    if (result == CIT_OK && state->size_only)
        return CIT_SIZE_ONLY;
    return result;
}
