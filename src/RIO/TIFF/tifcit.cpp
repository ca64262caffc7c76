// Bilevel strips and tiles through the CCITT codec. Reading, each is decoded to lists of runs, once, and its lines are drawn
// from them. A damaged one gives the lines before the damage; those behind it are white, and no error is set. This is meant.
#include "RIO/CIT/cit.h"
#include "RIO/TIFF/tif.h"
#include <algorithm>

enum { FIRST_RUNS = 4096, WHITE_LINE = 2 };

// The runs of a unit whose first `lines` lines may be reached, all white as yet. 0 with RIO_NO_MEMORY set.
static int start_runs(RFILE *file, tif_held &held, int64_t lines)
{
    mem_free(held.runs);
    mem_free(held.run_index);
    held.runs = static_cast<uint16_t *>(mem_calloc(FIRST_RUNS, sizeof(uint16_t)));
    held.run_index = static_cast<uint32_t *>(mem_calloc(size_t(lines), sizeof(uint32_t)));
    held.lines = lines;
    return held.runs && held.run_index ? 1 : rio_fail(file, RIO_NO_MEMORY, "tifcit");
}

static uint32_t decode(const tif_specs *specs, cit_decoder_in *in, cit_decoder_out *out)
{
    switch (specs->compression) {
    case TIF_CCITT_RLE: return cit_1d_decode(in, out, cit_store_line);
    case TIF_CCITT_G3: return cit_g3_2d_decode(in, out, cit_store_line);
    default: return cit_g4_decode(in, out, cit_store_line);
    }
}

static int decode_unit(RFILE *file, tif_specs *specs, const tif_unit &unit)
{
    tif_held &held = specs->held[unit.plane];
    held.index = -1;
    const int64_t coded = tif_read_coded(file, specs, unit.index, tif_row_bytes(specs, unit.width) * unit.rows);
    if (coded < 0)
        return 0;
    cit_reverse_bytes(specs->coded, coded);
    // No line takes less than a bit.
    if (!start_runs(file, held, std::min<int64_t>(unit.rows, coded * 8)))
        return 0;
    cit_decoder_in in {};
    in.k = specs->t4_options & 1 ? 0 : -1;
    in.width = uint32_t(unit.width);
    in.lines = uint32_t(held.lines);
    in.source = specs->coded;
    in.source_size = coded;
    cit_decoder_out out { held.runs, held.run_index, in.width, uint32_t(held.lines), FIRST_RUNS, WHITE_LINE, 1 };
    const uint32_t result = decode(specs, &in, &out);
    held.runs = out.runs;
    if (result == CIT_NO_MEMORY)
        return rio_fail(file, RIO_NO_MEMORY, "tifcit");
    if (result != CIT_OK && rio_debug)
        rio_report(RIO_READ_FAILED, __FILE__, __LINE__, "Bad Return from cit");
    held.index = unit.index;
    return 1;
}

int tif_ccitt_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row, uint16_t *out)
{
    const tif_held &held = specs->held[unit.plane];
    if (held.index != unit.index && !decode_unit(file, specs, unit))
        return 0;
    cit_expand(unit.width, held.runs + (row < held.lines ? held.run_index[row] : 0), out);
    return 1;
}

// ---- writing -------------------------------------------------------------------------------------------------------

static int make_encoder(RFILE *file, tif_specs *specs, const tif_unit &unit)
{
    tif_writing &w = specs->unit;
    const int64_t room = std::max<int64_t>(4096, tif_row_bytes(specs, unit.width) * 2);
    const int64_t run_list = int64_t{unit.width} + unit.width / 32767 + 8;
    if (!w.out || w.out_room < room) {
        mem_free(w.out);
        w.out = static_cast<uint8_t *>(mem_alloc(size_t(room)));
        w.out_room = w.out ? room : 0;
    }
    if (!w.runs)
        w.runs = static_cast<uint16_t *>(mem_alloc(size_t(2 * run_list) * sizeof(uint16_t)));
    if (!w.out || !w.runs || (!w.encoder && cit_encoder_new(&w.encoder) != CIT_OK))
        return rio_fail(file, RIO_NO_MEMORY, "rio_put_line: Malloc failure\n");
    uint16_t *words = reinterpret_cast<uint16_t *>(w.out);
    // Group 3 data are the two-dimensional ones of Group 4, without EOL. This is meant.
    const uint32_t begun = specs->compression == TIF_CCITT_RLE
                               ? cit_g3_init(w.encoder, unit.width, unit.rows, words, w.out_room, 0, -2, 1)
                               : cit_g4_init(w.encoder, unit.width, unit.rows, words, w.out_room, 0);
    return begun == CIT_OK ? 1 : rio_fail(file, RIO_NO_MEMORY, "rio_put_line: Malloc failure\n");
}

static int more_room(RFILE *file, tif_writing &w)
{
    uint8_t *grown = static_cast<uint8_t *>(mem_realloc(w.out, size_t(2 * w.out_room)));
    if (!grown)
        return rio_fail(file, RIO_NO_MEMORY, "rio_put_line: Malloc failure\n");
    w.out = grown;
    w.out_room *= 2;
    cit_encoder_move(w.encoder, reinterpret_cast<uint16_t *>(w.out), w.out_room);
    return 1;
}

int tif_ccitt_add(RFILE *file, tif_specs *specs, const tif_unit &unit, const uint16_t *line)
{
    tif_writing &w = specs->unit;
    if (w.lines == 0 && !make_encoder(file, specs, unit))
        return 0;
    const int64_t run_list = int64_t{unit.width} + unit.width / 32767 + 8;
    uint16_t *runs = w.runs + (w.lines & 1 ? run_list : 0);
    const int32_t count = cit_scan(unit.width, line, runs);
    for (;;) {
        const uint32_t result = specs->compression == TIF_CCITT_RLE ? cit_g3_line(w.encoder, runs, count)
                                                                    : cit_g4_line(w.encoder, runs);
        if (result == CIT_OK)
            return 1;
        if (result != CIT_NO_ROOM)
            return rio_fail(file, RIO_WRITE_FAILED, "tifputbi");
        if (!more_room(file, w))
            return 0;
    }
}

int tif_ccitt_end(RFILE *file, tif_specs *specs, int64_t *bytes)
{
    tif_writing &w = specs->unit;
    for (;;) {
        int64_t words = 0;
        const uint32_t result = specs->compression == TIF_CCITT_RLE ? cit_g3_end(w.encoder, &words)
                                                                    : cit_g4_end(w.encoder, &words);
        if (result == CIT_OK) {
            *bytes = 2 * words;
            cit_reverse_bytes(w.out, *bytes);
            return 1;
        }
        if (result != CIT_NO_ROOM)
            return rio_fail(file, RIO_WRITE_FAILED, "tifputbi");
        if (!more_room(file, w))
            return 0;
    }
}

void tif_free_writing(tif_writing *unit)
{
    for (uint8_t *rows : unit->rows)
        mem_free(rows);
    mem_free(unit->out);
    mem_free(unit->runs);
    lzw_free(&unit->lzw);
    cit_encoder_free(unit->encoder);
    *unit = {};
}
