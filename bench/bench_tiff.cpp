// bench_tiff - the coders of TIFF data and whole files in memory, beside libtiff and memcpy of the same bytes.
#include "RIO/TIFF/tiflzw.h"
#include "RIO/TIFF/tifpack.h"
#include "RIO/rio.h"
#include "mem.h"
#include "pictures.h"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstring>
#include <tiffio.h>
#include <vector>

enum { STRIP_ROWS = 16, STRIPS = SIDE / STRIP_ROWS, STRIP_BYTES = SIDE * STRIP_ROWS };

// ---- libtiff on a file in memory -------------------------------------------------------------------------------------

struct memory_tiff {
    bytes data;
    size_t position = 0;
};

static tmsize_t read_memory(thandle_t handle, void *out, tmsize_t count)
{
    memory_tiff *m = static_cast<memory_tiff *>(handle);
    const size_t n = std::min(size_t(count), m->data.size() - std::min(m->position, m->data.size()));
    memcpy(out, m->data.data() + m->position, n);
    m->position += n;
    return tmsize_t(n);
}

static tmsize_t write_memory(thandle_t handle, void *in, tmsize_t count)
{
    memory_tiff *m = static_cast<memory_tiff *>(handle);
    if (m->data.size() < m->position + size_t(count))
        m->data.resize(m->position + size_t(count));
    memcpy(m->data.data() + m->position, in, size_t(count));
    m->position += size_t(count);
    return count;
}

static toff_t seek_memory(thandle_t handle, toff_t offset, int whence)
{
    memory_tiff *m = static_cast<memory_tiff *>(handle);
    m->position = size_t(offset) + (whence == SEEK_CUR ? m->position : whence == SEEK_END ? m->data.size() : 0);
    return m->position;
}

static int close_memory(thandle_t) { return 0; }
static toff_t size_memory(thandle_t handle) { return static_cast<memory_tiff *>(handle)->data.size(); }

static int map_memory(thandle_t handle, void **base, toff_t *size)
{
    memory_tiff *m = static_cast<memory_tiff *>(handle);
    *base = m->data.data();
    *size = m->data.size();
    return 1;
}

static void unmap_memory(thandle_t, void *, toff_t) {}

static TIFF *open_memory(memory_tiff *m, const char *mode)
{
    m->position = 0;
    return TIFFClientOpen("memory", mode, m, read_memory, write_memory, seek_memory, close_memory, size_memory, map_memory,
                          unmap_memory);
}

static void write_libtiff(memory_tiff *m, const bytes &pixels, uint16_t compression, uint16_t predictor, bool tiled = false)
{
    m->data.reserve(pixels.size() * 2);
    TIFF *tiff = open_memory(m, "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, SIDE);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, SIDE);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    if (predictor > 1)
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, predictor);
    if (tiled) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 256);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, 256);
        bytes tile(256 * 256);
        for (uint32_t y = 0; y < SIDE; y += 256)
            for (uint32_t x = 0; x < SIDE; x += 256) {
                for (uint32_t row = 0; row < 256 && y + row < SIDE; row++)
                    memcpy(&tile[row * 256], &pixels[size_t(y + row) * SIDE + x], std::min<size_t>(256, SIDE - x));
                TIFFWriteTile(tiff, tile.data(), x, y, 0, 0);
            }
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, STRIP_ROWS);
        bytes strip(STRIP_BYTES);
        for (uint32_t s = 0; s < STRIPS; s++) {
            memcpy(strip.data(), &pixels[s * STRIP_BYTES], STRIP_BYTES);
            TIFFWriteEncodedStrip(tiff, s, strip.data(), STRIP_BYTES);
        }
    }
    TIFFClose(tiff);
}

static const memory_tiff &tiff_of(int kind, uint16_t compression, uint16_t predictor)
{
    static memory_tiff held[2][3];
    memory_tiff &m = held[kind][compression == COMPRESSION_PACKBITS ? 2 : predictor - 1];
    if (m.data.empty())
        write_libtiff(&m, picture(kind), compression, predictor);
    return m;
}

// ---- strips of a file, taken out ----------------------------------------------------------------------------------------

static std::vector<bytes> raw_strips(const memory_tiff &m)
{
    memory_tiff copy = m;
    TIFF *tiff = open_memory(&copy, "r");
    std::vector<bytes> out;
    for (uint32_t s = 0; s < STRIPS; s++) {
        bytes strip(size_t(TIFFRawStripSize(tiff, s)));
        TIFFReadRawStrip(tiff, s, strip.data(), tmsize_t(strip.size()));
        out.push_back(strip);
    }
    TIFFClose(tiff);
    return out;
}

static void count_bytes(benchmark::State &state)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * SIDE * SIDE);
}

static void copy_picture(benchmark::State &state)
{
    const bytes &in = picture(SCENE);
    bytes out(in.size() + 2048);
    for (auto _ : state) {
        memcpy(out.data() + 2048, in.data(), in.size());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    count_bytes(state);
}

static void decode_ours(benchmark::State &state)
{
    const int kind = int(state.range(0)), predictor = int(state.range(1));
    const auto strips = raw_strips(tiff_of(kind, COMPRESSION_LZW, uint16_t(predictor)));
    bytes out(STRIP_BYTES);
    for (auto _ : state)
        for (const bytes &strip : strips) {
            lzw_decode(strip.data(), out.data(), 8, STRIP_BYTES, nullptr, int64_t(strip.size()));
            for (int row = 0; predictor == 2 && row < STRIP_ROWS; row++)
                tif_sum_bytes(&out[size_t(row) * SIDE], SIDE, 1);
            benchmark::DoNotOptimize(out.data());
        }
    count_bytes(state);
}

static void decode_libtiff(benchmark::State &state, uint16_t compression, int predictor)
{
    memory_tiff m = tiff_of(int(state.range(0)), compression, uint16_t(predictor));
    bytes out(STRIP_BYTES);
    for (auto _ : state) {
        TIFF *tiff = open_memory(&m, "r");
        for (uint32_t s = 0; s < STRIPS; s++)
            TIFFReadEncodedStrip(tiff, s, out.data(), STRIP_BYTES);
        TIFFClose(tiff);
    }
    count_bytes(state);
}

static void lzw_decode_libtiff(benchmark::State &state)
{
    decode_libtiff(state, COMPRESSION_LZW, int(state.range(1)));
}

static void lzw_encode_ours(benchmark::State &state)
{
    const bytes &in = picture(int(state.range(0)));
    bytes out(size_t(lzw_most_bytes(STRIP_BYTES)));
    lzw_state table {};
    for (auto _ : state)
        for (size_t s = 0; s < STRIPS; s++)
            benchmark::DoNotOptimize(lzw_encode(&in[s * STRIP_BYTES], out.data(), STRIP_BYTES, &table, nullptr));
    lzw_free(&table);
    count_bytes(state);
}

static void encode_libtiff(benchmark::State &state, uint16_t compression)
{
    memory_tiff m;
    for (auto _ : state)
        write_libtiff(&m, picture(int(state.range(0))), compression, 1);
    count_bytes(state);
}

static void lzw_encode_libtiff(benchmark::State &state) { encode_libtiff(state, COMPRESSION_LZW); }
static void packbits_encode_libtiff(benchmark::State &state) { encode_libtiff(state, COMPRESSION_PACKBITS); }
static void packbits_decode_libtiff(benchmark::State &state) { decode_libtiff(state, COMPRESSION_PACKBITS, 1); }

static void packbits_decode_ours(benchmark::State &state)
{
    const auto strips = raw_strips(tiff_of(int(state.range(0)), COMPRESSION_PACKBITS, 1));
    bytes out(STRIP_BYTES);
    for (auto _ : state)
        for (const bytes &strip : strips) {
            int64_t at = 0, written;
            for (int64_t row = 0; row < STRIP_ROWS; row++)
                at += packbits_decode(&strip[size_t(at)], &out[size_t(row * SIDE)], SIDE, int64_t(strip.size()) - at, &written);
            benchmark::DoNotOptimize(out.data());
        }
    count_bytes(state);
}

static void packbits_encode_ours(benchmark::State &state)
{
    const bytes &in = picture(int(state.range(0)));
    bytes out(size_t(packbits_most_bytes(SIDE)) * STRIP_ROWS);
    for (auto _ : state)
        for (size_t s = 0; s < STRIPS; s++) {
            int64_t at = 0;
            for (size_t row = 0; row < STRIP_ROWS; row++)
                at += packbits_encode(&in[s * STRIP_BYTES + row * SIDE], &out[size_t(at)], SIDE);
            benchmark::DoNotOptimize(out.data());
        }
    count_bytes(state);
}

// ---- whole files -----------------------------------------------------------------------------------------------------

enum layout { STRIPS_FILE, TILES_FILE };

static const memory_tiff &plain_file(int layout)
{
    static memory_tiff held[2];
    if (held[layout].data.empty())
        write_libtiff(&held[layout], picture(SCENE), COMPRESSION_NONE, 1, layout == TILES_FILE);
    return held[layout];
}

static RFILE *open_ours(const memory_tiff &m, rio_memory_file *record)
{
    *record = {};
    record->data = const_cast<uint8_t *>(m.data.data());
    record->size = int64_t(m.data.size());
    char name[RIO_MEMORY_NAME_SIZE];
    return rio_open_r(rio_memory_name(record, name));
}

// Addresses that agree in their low bits but for a few make copies slow, for whoever does them.
enum { APART = 2048 };
// As the workstation reads them, to show its progress.
enum { LINES_A_CALL = 10 };

static void plain_strips_ours(benchmark::State &state)
{
    bytes room(picture(SCENE).size() + APART);
    uint8_t *const out = room.data() + APART;
    for (auto _ : state) {
        rio_memory_file record;
        RFILE *file = open_ours(plain_file(STRIPS_FILE), &record);
        for (size_t y = 0; y < SIDE; y += LINES_A_CALL)
            rio_getlines(file, LINES_A_CALL, &out[y * SIDE], SIDE);
        rio_close(file);
    }
    count_bytes(state);
}

static void plain_strips_libtiff(benchmark::State &state)
{
    memory_tiff m = plain_file(STRIPS_FILE);
    bytes room(picture(SCENE).size() + APART);
    uint8_t *const out = room.data() + APART;
    for (auto _ : state) {
        TIFF *tiff = open_memory(&m, "r");
        for (uint32_t s = 0; s < STRIPS; s++)
            TIFFReadEncodedStrip(tiff, s, &out[size_t{s} * STRIP_BYTES], STRIP_BYTES);
        TIFFClose(tiff);
    }
    count_bytes(state);
}

enum { TILES = 32 * 32, TILE_BYTES = 256 * 256 };
// Tiles are kept side by side, or worked on one by one in one place.
enum { IN_ONE_PLACE, SIDE_BY_SIDE };

static void plain_tiles_ours(benchmark::State &state)
{
    const size_t apart = state.range(0) == SIDE_BY_SIDE ? TILE_BYTES : 0;
    bytes room(size_t{TILES} * TILE_BYTES + APART);
    uint8_t *const out = room.data() + APART;
    for (auto _ : state) {
        rio_memory_file record;
        RFILE *file = open_ours(plain_file(TILES_FILE), &record);
        for (size_t t = 0; t < TILES; t++) {
            void *const planes[] = { &out[t * apart] };
            rio_gettile(file, 1, planes, nullptr);
        }
        rio_close(file);
    }
    count_bytes(state);
}

static void plain_tiles_libtiff(benchmark::State &state)
{
    const size_t apart = state.range(0) == SIDE_BY_SIDE ? TILE_BYTES : 0;
    memory_tiff m = plain_file(TILES_FILE);
    bytes room(size_t{TILES} * TILE_BYTES + APART);
    uint8_t *const out = room.data() + APART;
    for (auto _ : state) {
        TIFF *tiff = open_memory(&m, "r");
        for (uint32_t t = 0; t < TILES; t++)
            TIFFReadEncodedTile(tiff, t, &out[t * apart], TILE_BYTES);
        TIFFClose(tiff);
    }
    count_bytes(state);
}

// What memcpy takes when the bytes come in pieces of a tile.
static void copy_tiles(benchmark::State &state)
{
    const size_t apart = state.range(0) == SIDE_BY_SIDE ? TILE_BYTES : 0;
    const memory_tiff &m = plain_file(TILES_FILE);
    bytes room(size_t{TILES} * TILE_BYTES + APART);
    const size_t behind = m.data.size() - size_t{TILES} * TILE_BYTES;
    for (auto _ : state) {
        for (size_t t = 0; t < TILES; t++)
            memcpy(&room[APART + t * apart], &m.data[behind + t * TILE_BYTES], TILE_BYTES);
        benchmark::ClobberMemory();
    }
    count_bytes(state);
}

// Lines of a tiled file.
static void plain_tile_lines_ours(benchmark::State &state)
{
    bytes room(picture(SCENE).size() + APART);
    uint8_t *const out = room.data() + APART;
    for (auto _ : state) {
        rio_memory_file record;
        RFILE *file = open_ours(plain_file(TILES_FILE), &record);
        for (size_t y = 0; y < SIDE; y += LINES_A_CALL)
            rio_getlines(file, LINES_A_CALL, &out[y * SIDE], SIDE);
        rio_close(file);
    }
    count_bytes(state);
}

static void plain_write_ours(benchmark::State &state)
{
    static bytes room(picture(SCENE).size() + (1 << 20));
    for (auto _ : state) {
        rio_memory_file record {};
        record.data = room.data();
        record.size = int64_t(room.size());
        char name[RIO_MEMORY_NAME_SIZE];
        RFILE *file = rio_open_w(rio_memory_name(&record, name));
        const int32_t format = RIO_FORMAT_TIFF, side = SIDE, type = RIO_TYPE_BYTE, rows = STRIP_ROWS;
        rio_set_hdr_data(file, RIO_KEY_FORMAT, &format);
        rio_set_hdr_data(file, RIO_KEY_WIDTH, &side);
        rio_set_hdr_data(file, RIO_KEY_HEIGHT, &side);
        rio_set_hdr_data(file, RIO_KEY_DATA_TYPE, &type);
        rio_set_hdr_data(file, 505, &rows);
        for (size_t y = 0; y < SIDE; y++)
            rio_putline(file, &picture(SCENE)[y * SIDE]);
        rio_close(file);
    }
    count_bytes(state);
}

static void plain_write_libtiff(benchmark::State &state)
{
    static memory_tiff m;       // warm, as ours is
    write_libtiff(&m, picture(SCENE), COMPRESSION_NONE, 1);
    for (auto _ : state)
        write_libtiff(&m, picture(SCENE), COMPRESSION_NONE, 1);
    count_bytes(state);
}

#define KINDS_AND_PREDICTORS Args({ SCENE, 1 })->Args({ MAP, 1 })->Args({ SCENE, 2 })->Args({ MAP, 2 })
BENCHMARK(copy_picture);
BENCHMARK(decode_ours)->Name("lzw_decode_ours")->KINDS_AND_PREDICTORS;
BENCHMARK(lzw_decode_libtiff)->KINDS_AND_PREDICTORS;
BENCHMARK(lzw_encode_ours)->Arg(SCENE)->Arg(MAP);
BENCHMARK(lzw_encode_libtiff)->Arg(SCENE)->Arg(MAP);
BENCHMARK(packbits_decode_ours)->Arg(SCENE)->Arg(MAP);
BENCHMARK(packbits_decode_libtiff)->Arg(SCENE)->Arg(MAP);
BENCHMARK(packbits_encode_ours)->Arg(SCENE)->Arg(MAP);
BENCHMARK(packbits_encode_libtiff)->Arg(SCENE)->Arg(MAP);
BENCHMARK(plain_strips_ours);
BENCHMARK(plain_strips_libtiff);
BENCHMARK(plain_tiles_ours)->ArgName("side_by_side")->DenseRange(IN_ONE_PLACE, SIDE_BY_SIDE);
BENCHMARK(plain_tiles_libtiff)->ArgName("side_by_side")->DenseRange(IN_ONE_PLACE, SIDE_BY_SIDE);
BENCHMARK(copy_tiles)->ArgName("side_by_side")->DenseRange(IN_ONE_PLACE, SIDE_BY_SIDE);
BENCHMARK(plain_tile_lines_ours);
BENCHMARK(plain_write_ours);
BENCHMARK(plain_write_libtiff);
BENCHMARK_MAIN();
