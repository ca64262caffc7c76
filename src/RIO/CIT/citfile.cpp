// citfile.cpp - the codec behind open files: pictures decoded at once or by blocks of lines, and pictures written line by
// line.
#include "RIO/CIT/cit.h"
#include "RIO/CORE/rio_format.h"
#include <algorithm>
#include <cstring>

// ---- the record's state --------------------------------------------------------------------------------------------

static void free_blocks(cit_state *state)
{
    for (int32_t i = 0; i < state->blocks; i++)
        mem_free(state->block_reference[i]);
    mem_free(state->block_reference);
    mem_free(state->block_byte);
    mem_free(state->block_bit);
    state->block_reference = nullptr;
    state->block_byte = nullptr;
    state->block_bit = nullptr;
    state->blocks = state->blocks_known = 0;
    state->block_first_line = -1;
}

static void free_coded(cit_state *state)
{
    mem_free(state->coded);
    state->coded = nullptr;
    state->coded_room = 0;
}

static void free_runs(cit_state *state)
{
    mem_free(state->runs);
    mem_free(state->run_index);
    state->runs = nullptr;
    state->run_index = nullptr;
    state->index_lines = state->run_buffer_size = 0;
}

static void free_writer(cit_state *state)
{
    cit_encoder_free(state->encoder);
    mem_free(state->line_a);
    mem_free(state->line_b);
    state->encoder = nullptr;
    state->line_a = state->line_b = nullptr;
}

void cit_reset(RFILE *file)
{
    cit_state *state = file->ccitt;
    if (!state)
        return;
    free_blocks(state);
    free_coded(state);
    free_runs(state);
    free_writer(state);
    state->stale = 1;
    state->coded_size = 0;
    state->data_offset = 0;
}

static void free_state(RFILE *file)
{
    cit_reset(file);
    mem_free(file->ccitt);
    file->ccitt = nullptr;
}

int cit_attach(RFILE *file)
{
    if (file->ccitt)
        return 1;
    cit_state *state = (cit_state *)mem_calloc(1, sizeof(cit_state));
    if (!state)
        return rio_fail(file, RIO_NO_MEMORY, "citfile");
    for (int i = 0; i < 256; i++)
        state->bit_reverse[i] = uint8_t(i);
    cit_reverse_bytes(state->bit_reverse, 256);
    state->stale = 1;
    state->keep_runs = 1;
    state->block_first_line = -1;
    file->ccitt = state;
    file->ccitt_free = free_state;
    return 1;
}

void cit_set_block_lines(RFILE *file, int32_t lines)
{
    file->ccitt->block_lines = std::max(lines, 0);
    file->strip_lines = file->ccitt->block_lines;
    free_blocks(file->ccitt);
    free_runs(file->ccitt);
    file->ccitt->stale = 1;
}

// ---- reading -------------------------------------------------------------------------------------------------------

static uint32_t no_memory(RFILE *file)
{
    rio_fail(file, RIO_NO_MEMORY, "citfile");
    return CIT_NO_MEMORY;
}

// The coded bytes, low bit first. A file that ends early gives what it has.
static uint32_t read_coded(RFILE *file, cit_state *state)
{
    const int64_t there = std::max<int64_t>(rio_file_size(file) - state->data_offset, 0);
    const int64_t asked = state->coded_size ? int64_t{ state->coded_size } : there;
    const int64_t size = std::min<int64_t>({ asked, there, UINT32_MAX });
    free_coded(state);
    state->coded = (uint8_t *)mem_alloc(size_t(size));
    if (!state->coded)
        return no_memory(file);
    const int64_t got = rio_byte_seek(file, state->data_offset) ? rio_read(file, state->coded, size) : 0;
    state->coded_size = uint32_t(std::max<int64_t>(got, 0));
    if (!(file->flags & RIO_NATV))
        cit_reverse_bytes(state->coded, state->coded_size);
    return CIT_OK;
}

// The run buffer and an index of `lines` lines, all of them white.
static uint32_t start_runs(RFILE *file, cit_state *state, int64_t lines)
{
    free_runs(state);
    constexpr uint32_t START = 4096;
    state->runs = (uint16_t *)mem_calloc(START, sizeof(uint16_t));
    state->run_index = (uint32_t *)mem_calloc(size_t(lines), sizeof(uint32_t));
    if (!state->runs || !state->run_index) {
        free_runs(state);
        return no_memory(file);
    }
    state->run_buffer_size = START * sizeof(uint16_t);
    state->index_lines = uint32_t(lines);
    return CIT_OK;
}

// A white line lies at the start of `runs`.
static constexpr uint32_t FIRST_POSITION = 2;

static cit_decoder_out sink_of(const RFILE *file, const cit_state *state)
{
    return { state->runs,  state->run_index, uint32_t(file->width), state->index_lines, state->run_buffer_size / 2,
             FIRST_POSITION, state->keep_runs };
}

static void keep_sink(cit_state *state, const cit_decoder_out &sink)
{
    state->runs = sink.runs;
    state->run_buffer_size = uint32_t(std::min<uint64_t>(uint64_t{ sink.room } * 2, UINT32_MAX & ~1u));
}

static cit_decoder_in source_of(const RFILE *file, const cit_state *state, uint32_t lines)
{
    return { .flags = 0, .k = -1, .width = uint32_t(file->width), .lines = lines, .source = state->coded, .consumed = 0,
             .polarity_step = 0, .source_size = state->coded_size };
}

static void report_damage(uint32_t result)
{
    if (result != CIT_OK && rio_debug)
        rio_report(RIO_READ_FAILED, __FILE__, __LINE__, "Bad Return from cit");
}

static uint32_t decode_whole(RFILE *file, cit_state *state, int64_t lines)
{
    if (start_runs(file, state, lines) != CIT_OK)
        return CIT_NO_MEMORY;
    cit_decoder_in source = source_of(file, state, uint32_t(lines));
    cit_decoder_out sink = sink_of(file, state);
    const uint32_t result = file->data_type == RIO_TYPE_CCITT4 ? cit_g4_decode(&source, &sink, cit_store_line)
                                                               : cit_g3_2d_decode(&source, &sink, cit_store_line);
    keep_sink(state, sink);
    free_coded(state);
    report_damage(result);
    return result == CIT_NO_MEMORY ? no_memory(file) : result;
}

static uint32_t start_blocks(RFILE *file, cit_state *state, int64_t lines)
{
    const int64_t blocks = lines / state->block_lines + 2;
    free_blocks(state);
    state->block_byte = (int64_t *)mem_calloc(size_t(blocks), sizeof(int64_t));
    state->block_bit = (uint8_t *)mem_calloc(size_t(blocks), 1);
    state->block_reference = (uint16_t **)mem_calloc(size_t(blocks), sizeof(uint16_t *));
    if (!state->block_byte || !state->block_bit || !state->block_reference) {
        free_blocks(state);
        return no_memory(file);
    }
    state->blocks = int32_t(blocks);
    state->blocks_known = 1;        // the first one begins with the data
    if (start_runs(file, state, std::min<int64_t>(state->block_lines, lines)) != CIT_OK) {
        free_blocks(state);
        return CIT_NO_MEMORY;
    }
    return CIT_OK;
}

uint32_t cit_decode_image(RFILE *file)
{
    cit_state *state = file->ccitt;
    if (state->block_lines > 0 && file->data_type != RIO_TYPE_CCITT4) {
        rio_fail(file, RIO_UNSUPPORTED, "citfile");
        return CIT_BAD_DATA;
    }
    if (read_coded(file, state) != CIT_OK)
        return CIT_NO_MEMORY;
    // A line takes a bit at least, whatever the header's height says; the others are white.
    const int64_t lines = std::clamp<int64_t>(8 * int64_t{ state->coded_size }, 1, std::max(file->height, 1));
    const uint32_t result = state->block_lines > 0 ? start_blocks(file, state, lines) : decode_whole(file, state, lines);
    state->stale = result == CIT_NO_MEMORY;
    return result;
}

// ---- blocks --------------------------------------------------------------------------------------------------------

static constexpr int64_t NO_FURTHER_LINE = -1;

static uint16_t *copy_runs(const uint16_t *runs)
{
    size_t count = 3;
    while (runs[count - 1] != 0 || runs[count - 2] != 0)
        count++;
    uint16_t *copy = (uint16_t *)mem_alloc(count * sizeof(uint16_t));
    if (copy)
        std::memcpy(copy, runs, count * sizeof(uint16_t));
    return copy;
}

// Notes where the block behind `block` begins.
static bool note_next_block(cit_state *state, int32_t block, const cit_g4_place &place)
{
    const int32_t next = block + 1;
    if (next < state->blocks_known || next >= state->blocks)
        return true;
    if (place.ended) {
        state->block_byte[next] = NO_FURTHER_LINE;
    } else {
        state->block_reference[next] = copy_runs(state->runs + state->run_index[state->index_lines - 1]);
        if (!state->block_reference[next])
            return false;
        state->block_byte[next] = place.byte;
        state->block_bit[next] = uint8_t(place.bit);
    }
    state->blocks_known = next + 1;
    return true;
}

// Decodes a block whose beginning is known into `runs`.
static bool decode_block(RFILE *file, cit_state *state, int32_t block)
{
    state->block_first_line = -1;
    std::memset(state->run_index, 0, size_t{ state->index_lines } * sizeof(uint32_t));
    cit_g4_place place { state->block_byte[block], state->block_bit[block], state->block_reference[block], 0 };
    if (place.byte == NO_FURTHER_LINE) {
        place.ended = 1;
    } else {
        cit_decoder_in source = source_of(file, state, state->index_lines);
        cit_decoder_out sink = sink_of(file, state);
        const uint32_t result = cit_g4_decode_from(&source, &sink, cit_store_line, &place);
        keep_sink(state, sink);
        report_damage(result);
        if (result == CIT_NO_MEMORY)
            return false;
    }
    state->block_first_line = block * state->block_lines;
    return note_next_block(state, block, place);
}

static bool load_block(RFILE *file, cit_state *state, int32_t block)
{
    if (state->block_first_line == block * state->block_lines)
        return true;
    while (state->blocks_known <= block)
        if (!decode_block(file, state, state->blocks_known - 1))
            return false;
    return decode_block(file, state, block);
}

// ---- lines ---------------------------------------------------------------------------------------------------------

static constexpr uint16_t white_line[2] = { 0, 0 };

const uint16_t *cit_line_runs(RFILE *file, int32_t line)
{
    cit_state *state = file->ccitt;
    if (line < 0 || line >= file->height) {
        rio_fail(file, RIO_PAST_END, "cit_getline");
        return nullptr;
    }
    if (state->stale) {
        cit_decode_image(file);
        if (state->stale)
            return nullptr;
    }
    if (state->block_lines == 0)
        return uint32_t(line) < state->index_lines ? state->runs + state->run_index[line] : white_line;
    const int32_t block = line / state->block_lines;
    if (block >= state->blocks)
        return white_line;
    if (!load_block(file, state, block)) {
        no_memory(file);
        return nullptr;
    }
    const uint32_t within = uint32_t(line - state->block_first_line);
    return within < state->index_lines ? state->runs + state->run_index[within] : white_line;
}

int cit_getline(RFILE *file, uint16_t *out)
{
    const uint16_t *runs = cit_line_runs(file, file->current_line);
    if (!runs)
        return 0;
    cit_expand(file->width, runs, out);
    return file->width;
}

// ---- writing -------------------------------------------------------------------------------------------------------

static bool start_picture(RFILE *file, cit_state *state)
{
    const int64_t width = file->width, pixels = width * file->height;
    free_writer(state);
    free_coded(state);
    state->line_a = (uint16_t *)mem_alloc(size_t(8 * width));
    state->line_b = (uint16_t *)mem_alloc(size_t(8 * width));
    const int64_t room = pixels >= 8000 && !(file->flags & RIO_TILED) ? pixels / 115 : pixels;
    state->coded_room = uint32_t(std::min<int64_t>(room, INT32_MAX));
    state->coded = (uint8_t *)mem_alloc(state->coded_room);
    if (!state->line_a || !state->line_b || !state->coded || cit_encoder_new(&state->encoder) != CIT_OK)
        return false;
    uint16_t *out = (uint16_t *)state->coded;
    const uint32_t result =
        file->data_type == RIO_TYPE_CCITT4
            ? cit_g4_init(state->encoder, file->width, file->height, out, state->coded_room, 0)
            : cit_g3_init(state->encoder, file->width, file->height, out, state->coded_room, 0, -1, 0);
    return result == CIT_OK;
}

// More room for the coded bytes: what the picture will take if it goes on as it did, and two lines more at the least.
static bool grow_coded(RFILE *file, cit_state *state)
{
    const int64_t room = state->coded_room, width = file->width;
    const int64_t estimate = (int64_t{ file->height } + width) / (file->current_line + 1) * room + width;
    // The first lines tell little about the others.
    const int64_t wanted = std::max(std::min(estimate, 4 * room), room + 2 * width + 64);
    if (wanted > UINT32_MAX)
        return false;
    uint8_t *coded = (uint8_t *)mem_realloc(state->coded, size_t(wanted));
    if (!coded)
        return false;
    state->coded = coded;
    state->coded_room = uint32_t(wanted);
    cit_encoder_move(state->encoder, (uint16_t *)coded, wanted);
    return true;
}

static uint32_t code_line(const RFILE *file, cit_state *state, const uint16_t *runs, int32_t count)
{
    return file->data_type == RIO_TYPE_CCITT4 ? cit_g4_line(state->encoder, runs)
                                              : cit_g3_line(state->encoder, runs, count);
}

static uint32_t code_end(const RFILE *file, cit_state *state, int64_t *words)
{
    return file->data_type == RIO_TYPE_CCITT4 ? cit_g4_end(state->encoder, words) : cit_g3_end(state->encoder, words);
}

static int end_picture(RFILE *file, cit_state *state)
{
    int64_t words = 0;
    while (code_end(file, state, &words) == CIT_NO_ROOM)
        if (!grow_coded(file, state))
            return rio_fail(file, RIO_NO_MEMORY, "citfile");
    free_writer(state);
    state->coded_size = uint32_t(2 * words);
    if (!(file->flags & RIO_NATV))
        cit_reverse_bytes(state->coded, state->coded_size);
    if (!rio_write_exact(file, state->coded, state->coded_size))
        return rio_fail(file, RIO_WRITE_FAILED, "citfile");
    return 1;
}

int cit_putline(RFILE *file, const uint16_t *words)
{
    cit_state *state = file->ccitt;
    if (file->current_line == 0 && !start_picture(file, state)) {
        free_writer(state);
        return rio_fail(file, RIO_NO_MEMORY, "citfile");
    }
    if (!state->encoder)
        return rio_fail(file, RIO_LINE_ORDER, "citfile");
    uint16_t *runs = file->current_line % 2 ? state->line_b : state->line_a;
    const int32_t count = cit_scan(file->width, words, runs);
    while (code_line(file, state, runs, count) == CIT_NO_ROOM)
        if (!grow_coded(file, state))
            return rio_fail(file, RIO_NO_MEMORY, "citfile");
    const bool last = file->current_line >= file->height - 1;
    if (!last && 2 * state->encoder->room < file->width && !grow_coded(file, state))
        return rio_fail(file, RIO_NO_MEMORY, "citfile");
    if (last && !end_picture(file, state))
        return 0;
    return file->width;
}
