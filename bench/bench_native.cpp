// bench_native - native files of 8000 x 8000 pixels by lines, in the page cache: every coding read and written, plain and
// tiled, beside memcpy of the decoded bytes, fread of the file, and libtiff's PackBits of the same picture.
#include "RIO/rio.h"
#include "mem.h"
#include "pictures.h"
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <tiffio.h>
#include <unistd.h>
#include <vector>

static constexpr int STRIP_ROWS = 16, TILE = 256;

// The map's lines as bits.
static const std::vector<uint16_t> &drawing()
{
    static std::vector<uint16_t> bits;
    if (bits.empty()) {
        bits.resize(size_t{ SIDE } * SIDE / 16);
        const bytes &map = picture(MAP);
        for (size_t y = 0; y < SIDE; y++)
            rio_pack_bits(&bits[y * SIDE / 16], &map[y * SIDE], SIDE, 20);
    }
    return bits;
}

// Files of this program, which go away with it.
struct work_folder {
    std::string path = std::filesystem::temp_directory_path() / ("bench_native_" + std::to_string(getpid()));
    work_folder() { std::filesystem::create_directories(path); }
    ~work_folder() { std::filesystem::remove_all(path); }
};

static std::string place_of(const std::string &name)
{
    static const work_folder folder;
    return folder.path + "/" + name;
}

static bool is_bits(int type) { return type == RIO_TYPE_BITMAP || type == RIO_TYPE_BITMAP_RLE || type == RIO_TYPE_CCITT4; }
static bool is_colour(int type) { return type == RIO_TYPE_RGB || type == RIO_TYPE_RGB_BYTE_RUN || type == RIO_TYPE_RGB_RLE; }
static int64_t decoded_bytes(int type) { return int64_t{ SIDE } * SIDE * (is_colour(type) ? 3 : 1) / (is_bits(type) ? 8 : 1); }

static void write_file(const std::string &path, int type, int kind, int tile)
{
    RFILE *file = rio_open_w(path.c_str());
    const int32_t side = SIDE;
    rio_set_hdr_data(file, RIO_KEY_WIDTH, &side);
    rio_set_hdr_data(file, RIO_KEY_HEIGHT, &side);
    rio_set_hdr_data(file, RIO_KEY_DATA_TYPE, &type);
    if (tile)
        rio_set_hdr_data(file, RIO_KEY_TILE_WIDTH, &tile);
    for (size_t y = 0; y < SIDE; y++) {
        const uint8_t *gray = &picture(kind)[y * SIDE];
        if (is_bits(type))
            rio_putline(file, &drawing()[y * SIDE / 16]);
        else
            rio_putline_rgb(file, gray, gray, gray);
    }
    rio_close(file);
}

static std::string file_of(int type, int kind, int tile)
{
    const std::string path = place_of(std::to_string(type) + "_" + std::to_string(kind) + "_" + std::to_string(tile));
    if (!std::filesystem::exists(path))
        write_file(path, type, kind, tile);
    return path;
}

// Warm memory for an image of three planes, as bands get it.
static uint8_t *image_memory()
{
    static uint8_t *held;
    if (!held) {
        held = (uint8_t *)mem_alloc(size_t{ SIDE } * SIDE * 3);
        if (!held)
            std::exit(1);
        std::memset(held, 1, size_t{ SIDE } * SIDE * 3);
    }
    return held;
}

// ---- the library -------------------------------------------------------------------------------------------------------

static void read_lines(benchmark::State &state)
{
    const int type = int(state.range(0));
    const std::string path = file_of(type, int(state.range(1)), int(state.range(2)));
    uint8_t *const image = image_memory();
    const size_t row = size_t(decoded_bytes(type) / SIDE / (is_colour(type) ? 3 : 1));
    for (auto _ : state) {
        RFILE *file = rio_open_r(path.c_str());
        if (!is_colour(type) && rio_getlines(file, SIDE, image, int64_t(row)) != SIDE)
            state.SkipWithError("a line cannot be read");
        for (size_t y = 0; is_colour(type) && y < SIDE; y++) {
            uint8_t *at = image + y * row;
            if (rio_getline_rgb(file, at, at + size_t{ SIDE } * SIDE, at + size_t{ SIDE } * SIDE * 2))
                state.SkipWithError("a line cannot be read");
        }
        rio_close(file);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * decoded_bytes(type));
}

static void write_lines(benchmark::State &state)
{
    const int type = int(state.range(0));
    picture(int(state.range(1)));
    drawing();
    for (auto _ : state)
        write_file(place_of("out"), type, int(state.range(1)), int(state.range(2)));
    state.SetBytesProcessed(state.iterations() * decoded_bytes(type));
}

// type, picture, tile
static void codings(benchmark::internal::Benchmark *bench)
{
    for (int type : { RIO_TYPE_BYTE, RIO_TYPE_RGB, RIO_TYPE_BYTE_RUN, RIO_TYPE_BYTE_RLE, RIO_TYPE_PACKED_RLE,
                      RIO_TYPE_RGB_BYTE_RUN, RIO_TYPE_RGB_RLE })
        bench->Args({ type, MAP, 0 });
    bench->Args({ RIO_TYPE_BYTE_RUN, SCENE, 0 })->Args({ RIO_TYPE_BYTE_RLE, SCENE, 0 });
    bench->Args({ RIO_TYPE_BITMAP_RLE, MAP, 0 })->Args({ RIO_TYPE_CCITT4, MAP, 0 });
    for (int type : { RIO_TYPE_BYTE, RIO_TYPE_BYTE_RUN, RIO_TYPE_RGB })
        bench->Args({ type, MAP, TILE });
}
BENCHMARK(read_lines)->Apply(codings)->Unit(benchmark::kMillisecond);
BENCHMARK(write_lines)->Apply(codings)->Unit(benchmark::kMillisecond);

// ---- what it is measured by ----------------------------------------------------------------------------------------------

static void read_file(benchmark::State &state)
{
    const int type = int(state.range(0));
    const std::string path = file_of(type, MAP, 0);
    uint8_t *const image = image_memory();
    for (auto _ : state) {
        FILE *file = std::fopen(path.c_str(), "rb");
        std::fseek(file, 1024, SEEK_SET);
        benchmark::DoNotOptimize(std::fread(image, 1, size_t(decoded_bytes(type)), file));
        std::fclose(file);
    }
    state.SetBytesProcessed(state.iterations() * decoded_bytes(type));
}
BENCHMARK(read_file)->Arg(RIO_TYPE_BYTE)->Arg(RIO_TYPE_RGB)->Unit(benchmark::kMillisecond);

static void copy_memory(benchmark::State &state)
{
    const bytes from(size_t(state.range(0)), 1);
    uint8_t *const to = image_memory();
    for (auto _ : state) {
        std::memcpy(to, from.data(), from.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(copy_memory)->Arg(SIDE * SIDE)->Arg(SIDE * SIDE / 8)->Unit(benchmark::kMillisecond);

static void write_packbits(const std::string &path, int kind)
{
    TIFF *tiff = TIFFOpen(path.c_str(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, int{ SIDE });
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, int{ SIDE });
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, STRIP_ROWS);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    bytes line(SIDE);
    for (uint32_t y = 0; y < SIDE; y++) {
        std::memcpy(line.data(), &picture(kind)[size_t{ y } * SIDE], SIDE);
        TIFFWriteScanline(tiff, line.data(), y, 0);
    }
    TIFFClose(tiff);
}

static void libtiff_packbits(benchmark::State &state)
{
    const std::string path = place_of("packbits_" + std::to_string(state.range(0)));
    if (!std::filesystem::exists(path))
        write_packbits(path, int(state.range(0)));
    uint8_t *const image = image_memory();
    for (auto _ : state) {
        TIFF *tiff = TIFFOpen(path.c_str(), "r");
        for (uint32_t strip = 0; strip < SIDE / STRIP_ROWS; strip++)
            TIFFReadEncodedStrip(tiff, strip, image + size_t{ strip } * STRIP_ROWS * SIDE, STRIP_ROWS * SIDE);
        TIFFClose(tiff);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * SIDE * SIDE);
}
BENCHMARK(libtiff_packbits)->Arg(MAP)->Arg(SCENE)->Unit(benchmark::kMillisecond);

static void libtiff_writes_packbits(benchmark::State &state)
{
    picture(int(state.range(0)));
    for (auto _ : state)
        write_packbits(place_of("packbits_out"), int(state.range(0)));
    state.SetBytesProcessed(state.iterations() * SIDE * SIDE);
}
BENCHMARK(libtiff_writes_packbits)->Arg(MAP)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
