// Bilevel strips and tiles through the CCITT codec: each is decoded to lists of runs, once, and its lines are drawn from
// them. A damaged one gives the lines before the damage; those behind it are white, and no error is set. This is meant.
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
