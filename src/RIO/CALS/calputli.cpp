// calputli.cpp - lines and tiles out. A whole picture leaves at its last line; tiles are kept, coded, until the close.
#include "RIO/CALS/cals.h"
#include <algorithm>
#include <cstring>

// What is coded cannot be changed in its place.
static int is_new(RFILE *file)
{
    return file->access & RIO_ACCESS_MODIFY ? rio_fail(file, RIO_NOT_WRITABLE, "CALS") : 1;
}

int cals_put_line(RFILE *file, int count, uint8_t **lines)
{
    cals_specs *specs = cals_of(file);
    if (count < 1 || !lines[0])
        return rio_fail(file, RIO_BAD_COUNT, "CALS");
    if (!is_new(file))
        return 0;
    if (file->current_line != specs->next_line)
        return rio_fail(file, RIO_LINE_ORDER, "CALS");
    const bool last = file->current_line == file->height - 1;
    if (last && !rio_byte_seek(file, cals_data_start(file)))
        return rio_fail(file, RIO_WRITE_FAILED, "CALS");
    if (!cit_putline(file, reinterpret_cast<const uint16_t *>(lines[0])))
        return 0;
    specs->next_line++;
    if (last) {
        cit_reset(file);
        file->ccitt->data_offset = cals_data_start(file);
    }
    return file->width;
}

// ---- tiles -----------------------------------------------------------------------------------------------------------

// The type of a tile of these pixels.
static uint8_t type_of(const RFILE *file, const uint16_t *words)
{
    const int64_t count = cals_tile_words(file) * file->tiles->tile_height;
    const uint16_t *end = words + count;
    if (words[0] != 0 && words[0] != 0xFFFF)
        return CALS_T6;
    const bool solid = std::all_of(words, end, [first = words[0]](uint16_t word) { return word == first; });
    return solid ? words[0] ? CALS_BLACK : CALS_WHITE : CALS_T6;
}

namespace {

struct tile_coder {
    cit_encoder *encoder;
    uint8_t *out;
    int64_t room;
};

} // namespace

static uint32_t grow(tile_coder &coder)
{
    uint8_t *grown = static_cast<uint8_t *>(mem_realloc(coder.out, size_t(2 * coder.room)));
    if (!grown)
        return CIT_NO_MEMORY;
    coder.out = grown;
    coder.room *= 2;
    cit_encoder_move(coder.encoder, reinterpret_cast<uint16_t *>(grown), coder.room);
    return CIT_OK;
}

// Codes the rows of a tile. CIT_OK with the words of the code.
static uint32_t code_rows(const RFILE *file, const uint16_t *words, tile_coder &coder, int64_t *coded_words)
{
    uint16_t runs[CALS_TILE_SIZE + 3];
    uint32_t result = cit_g4_init(coder.encoder, CALS_TILE_SIZE, CALS_TILE_SIZE, reinterpret_cast<uint16_t *>(coder.out),
                                  coder.room, 0);
    for (int y = 0; y < CALS_TILE_SIZE && result == CIT_OK; y++) {
        cit_scan(CALS_TILE_SIZE, words + y * cals_tile_words(file), runs);
        while ((result = cit_g4_line(coder.encoder, runs)) == CIT_NO_ROOM && grow(coder) == CIT_OK) {
        }
    }
    if (result != CIT_OK)
        return result;
    while ((result = cit_g4_end(coder.encoder, coded_words)) == CIT_NO_ROOM && grow(coder) == CIT_OK) {
    }
    return result;
}

// The tile's code, first pixel in the high bit, hung on it. 1; 0 with the error set.
static int code_tile(RFILE *file, const uint16_t *words, cals_tile *tile)
{
    tile_coder coder { nullptr, static_cast<uint8_t *>(mem_alloc(4096)), 4096 };
    int64_t coded_words = 0;
    const bool coded = coder.out && cit_encoder_new(&coder.encoder) == CIT_OK
                       && code_rows(file, words, coder, &coded_words) == CIT_OK;
    cit_encoder_free(coder.encoder);
    uint8_t *kept = coded ? static_cast<uint8_t *>(mem_realloc(coder.out, size_t(2 * coded_words))) : nullptr;
    if (!kept) {
        mem_free(coder.out);
        return rio_fail(file, RIO_NO_MEMORY, "CALS tile");
    }
    cit_reverse_bytes(kept, 2 * coded_words);
    *tile = { CALS_T6, kept, 0, 2 * coded_words };
    return 1;
}

int cals_put_tile(RFILE *file, int count, uint8_t **buffers, const int32_t *value)
{
    if (!value && (count < 1 || !buffers[0]))
        return rio_fail(file, RIO_BAD_COUNT, "CALS");
    if (!is_new(file) || rio_put_tile_check(file))
        return 0;
    cals_tile &tile = cals_of(file)->tiles[file->current_line];
    cals_tile made {};
    if (value) {
        made.type = *value ? CALS_BLACK : CALS_WHITE;
    } else {
        const uint16_t *words = reinterpret_cast<const uint16_t *>(buffers[0]);
        made.type = type_of(file, words);
        if (made.type == CALS_T6 && !code_tile(file, words, &made))
            return 0;
    }
    mem_free(tile.coded);
    tile = made;
    file->current_line++;
    return CALS_TILE_SIZE * CALS_TILE_SIZE;
}
