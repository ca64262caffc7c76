// calgetli.cpp - lines and tiles in. The lines of a tiled file are drawn from a row of its tiles.
#include "RIO/CALS/cals.h"
#include <algorithm>
#include <cstring>

// A picture that is being written is not there before its last line.
static bool is_whole(RFILE *file)
{
    return !(file->access & RIO_ACCESS_WRITE_READ) || cals_of(file)->next_line == file->height;
}

int cals_get_line(RFILE *file, int count, uint8_t **lines)
{
    if (count < 1)
        return rio_fail(file, RIO_BAD_COUNT, "CALS");
    if (!file->ccitt || !is_whole(file))
        return rio_fail(file, RIO_READ_FAILED, "CALS");
    if (lines[0] && !cit_getline(file, reinterpret_cast<uint16_t *>(lines[0])))
        return 0;
    file->current_line++;
    return file->width;
}

// ---- tiles -----------------------------------------------------------------------------------------------------------

namespace {

// A sink whose lines go straight to pixels.
struct pixel_sink {
    cit_decoder_out out;            // first, so that the codec's sink is this one
    uint16_t *words;
    int64_t row_words;
};

} // namespace

static uint32_t expand_line(cit_decoder_out *sink, const uint16_t *runs, uint32_t, uint32_t line)
{
    const pixel_sink *pixels = reinterpret_cast<const pixel_sink *>(sink);
    cit_expand(int32_t(sink->width), runs, pixels->words + line * pixels->row_words);
    return CIT_OK;
}

static uint32_t decode(uint8_t type, cit_decoder_in *in, cit_decoder_out *out)
{
    in->k = type == CALS_T4_2D || type == CALS_T4_2D_LOW ? 0 : -1;
    return type == CALS_T6 || type == CALS_T6_LOW ? cit_g4_decode(in, out, expand_line)
                                                  : cit_g3_2d_decode(in, out, expand_line);
}

// Rows of bytes, first pixel in the high bit, to rows of words.
static void unpack_bitmap(const uint8_t *stored, int64_t bytes, int32_t width, int32_t height, uint16_t *words)
{
    const int64_t row_bytes = (int64_t{ width } + 7) / 8, row_words = rio_bitmap_words(width);
    for (int32_t y = 0; y < height; y++) {
        for (int64_t i = 0; i < row_bytes; i++) {
            const int64_t at = y * row_bytes + i;
            const uint32_t byte = at < bytes ? stored[at] : 0;
            words[y * row_words + i / 2] |= uint16_t(i % 2 ? byte : byte << 8);
        }
    }
}

int cals_decode_tile(RFILE *file, int64_t index, uint16_t *words)
{
    const cals_tile &tile = cals_of(file)->tiles[index];
    const int32_t width = file->tiles->tile_width, height = file->tiles->tile_height;
    const int64_t row_words = cals_tile_words(file);
    std::memset(words, 0, size_t(2 * row_words * height));
    mem_ptr<uint8_t> coded(static_cast<uint8_t *>(mem_alloc(size_t(tile.bytes))));
    if (!coded)
        return rio_fail(file, RIO_NO_MEMORY, "CALS tile");
    if (tile.coded)
        std::memcpy(coded.get(), tile.coded, size_t(tile.bytes));
    else if (tile.bytes && !rio_read_at(file, tile.offset, coded.get(), tile.bytes))
        return rio_fail(file, RIO_READ_FAILED, "CALS tile");
    if (tile.type == CALS_BITMAP) {
        unpack_bitmap(coded.get(), tile.bytes, width, height, words);
        return 1;
    }
    if (tile.type > CALS_BITMAP)
        cit_reverse_bytes(coded.get(), tile.bytes);
    cit_decoder_in in {};
    in.width = uint32_t(width);
    in.lines = uint32_t(height);
    in.source = coded.get();
    in.source_size = tile.bytes;
    pixel_sink sink { { nullptr, nullptr, in.width, in.lines, 0, 0, 0 }, words, row_words };
    const uint32_t result = decode(tile.type, &in, &sink.out);
    if (result == CIT_NO_MEMORY)
        return rio_fail(file, RIO_NO_MEMORY, "CALS tile");
    if (result != CIT_OK && rio_debug)
        rio_report(RIO_READ_FAILED, __FILE__, __LINE__, "Bad Return from cit");
    return 1;
}

int cals_get_tile(RFILE *file, int count, uint8_t **buffers, int32_t *value)
{
    if (rio_tile_check(file))
        return 0;
    const int64_t index = file->current_line;
    if (index >= cals_of(file)->tile_count)
        return rio_fail(file, RIO_READ_FAILED, "CALS tile");
    const cals_tile &tile = cals_of(file)->tiles[index];
    const bool solid = cals_is_solid(tile), black = tile.type == CALS_BLACK;
    if (value)
        *value = solid ? black : -1;
    if (count > 0 && buffers[0] && !(solid && value)) {
        uint16_t *words = reinterpret_cast<uint16_t *>(buffers[0]);
        if (solid)
            std::memset(words, black ? 255 : 0, size_t(2 * cals_tile_words(file) * file->tiles->tile_height));
        else if (!cals_decode_tile(file, index, words))
            return 0;
    }
    file->current_line++;
    return file->tiles->tile_width * file->tiles->tile_height;
}
