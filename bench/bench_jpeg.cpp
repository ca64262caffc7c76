// bench_jpeg - native files of JPEG data by lines, plain and tiled, beside libjpeg-turbo with the same divisors on the same
// picture: from a file in the page cache to an image in memory, and back.
#include "RIO/rio.h"
#include "services/jpeg_driver.h"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <jpeglib.h>
#include <string>
#include <unistd.h>
#include <vector>

// No power of two: rows apart by one fall into the same places of the caches.
enum { SIDE = 3840, TILE = 256, QUALITY = 15 };

using bytes = std::vector<uint8_t>;

// Slow shades with sensor noise; interleaved.
static const bytes &picture(int samples)
{
    static bytes held[4];
    bytes &out = held[samples];
    uint32_t seed = 1;
    for (int y = 0; out.size() < size_t{ SIDE } * SIDE * size_t(samples); y++)
        for (int x = 0; x < SIDE; x++)
            for (int s = 0; s < samples; s++) {
                seed = seed * 1664525 + 1013904223;
                const double shade = 128 + 60 * std::sin(x / 301.0 + y / 97.0 + s) + 50 * std::sin(y / 207.0 - x / 81.0 - s);
                out.push_back(uint8_t(std::clamp(int(shade) + int(seed >> 24 & 3) + int(seed >> 26 & 3) - 3, 0, 255)));
            }
    return out;
}

static bytes plane_of(int samples, int s)
{
    const bytes &all = picture(samples);
    bytes plane;
    for (size_t i = size_t(s); i < all.size(); i += size_t(samples))
        plane.push_back(all[i]);
    return plane;
}

struct work_folder {
    std::string path = std::filesystem::temp_directory_path() / ("bench_jpeg_" + std::to_string(getpid()));
    work_folder() { std::filesystem::create_directories(path); }
    ~work_folder() { std::filesystem::remove_all(path); }
};

static std::string place_of(const std::string &name)
{
    static const work_folder folder;
    return folder.path + "/" + name;
}

// ---- the library -------------------------------------------------------------------------------------------------------

enum line_form { PLANES, PIXELS };

static void set_key(RFILE *file, int key, int32_t value) { rio_set_hdr_data(file, key, &value); }

static void write_native(const std::string &path, int samples, int tile, int form)
{
    static const bytes planes[] = { plane_of(3, 0), plane_of(3, 1), plane_of(3, 2) };
    rio_jpeg_driver = &jpeg_driver;
    RFILE *file = rio_open_w(path.c_str());
    set_key(file, RIO_KEY_WIDTH, SIDE);
    set_key(file, RIO_KEY_HEIGHT, SIDE);
    set_key(file, RIO_KEY_DATA_TYPE, samples == 1 ? RIO_TYPE_JPEG : RIO_TYPE_JPEG_RGB);
    set_key(file, RIO_KEY_JPEG_QUALITY, QUALITY);
    if (tile)
        set_key(file, RIO_KEY_TILE_WIDTH, tile);
    for (size_t y = 0; y < SIDE; y++) {
        const size_t at = y * SIDE;
        if (samples == 1)
            rio_putline(file, &picture(1)[at]);
        else if (form == PIXELS)
            rio_putline_interleaved(file, &picture(3)[3 * at]);
        else
            rio_putline_rgb(file, &planes[0][at], &planes[1][at], &planes[2][at]);
    }
    rio_close(file);
}

static std::string file_of(int samples, int tile)
{
    const std::string path = place_of(std::to_string(samples) + "_" + std::to_string(tile));
    if (!std::filesystem::exists(path))
        write_native(path, samples, tile, PLANES);
    return path;
}

static void read_lines(benchmark::State &state)
{
    const int samples = int(state.range(0)), form = int(state.range(2));
    const std::string path = file_of(samples, int(state.range(1)));
    bytes image(size_t{ SIDE } * SIDE * size_t(samples));
    for (auto _ : state) {
        RFILE *file = rio_open_r(path.c_str());
        for (size_t y = 0; y < SIDE; y++) {
            uint8_t *at = &image[y * SIDE * size_t(samples)];
            const int failed = samples == 1 ? rio_getline(file, at) : form == PIXELS ? rio_getline_interleaved(file, at)
                               : rio_getline_rgb(file, at, at + SIDE, at + 2 * SIDE);
            if (failed)
                state.SkipWithError("a line cannot be read");
        }
        rio_close(file);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(image.size()));
}

static void write_lines(benchmark::State &state)
{
    const int samples = int(state.range(0));
    picture(samples);
    write_native(place_of("out"), samples, 0, PLANES);
    for (auto _ : state)
        write_native(place_of("out"), samples, int(state.range(1)), int(state.range(2)));
    state.SetBytesProcessed(state.iterations() * SIDE * SIDE * samples);
}

// samples, tile, line form
static void forms(benchmark::internal::Benchmark *bench)
{
    for (const int tile : { 0, int{ TILE } })
        bench->Args({ 1, tile, PLANES })->Args({ 3, tile, PLANES })->Args({ 3, tile, PIXELS });
}
BENCHMARK(read_lines)->Apply(forms)->Unit(benchmark::kMillisecond);
BENCHMARK(write_lines)->Apply(forms)->Unit(benchmark::kMillisecond);

// ---- what it is measured by ----------------------------------------------------------------------------------------------

// The coded picture of an untiled file of ours: behind the header and the block of the packet.
static void libjpeg_reads(benchmark::State &state)
{
    const int samples = int(state.range(0));
    const std::string path = file_of(samples, 0);
    bytes image(size_t{ SIDE } * SIDE * size_t(samples));
    for (auto _ : state) {
        jpeg_decompress_struct d;
        jpeg_error_mgr errors;
        d.err = jpeg_std_error(&errors);
        jpeg_create_decompress(&d);
        FILE *file = std::fopen(path.c_str(), "rb");
        std::fseek(file, 1536, SEEK_SET);
        jpeg_stdio_src(&d, file);
        jpeg_read_header(&d, TRUE);
        d.out_color_space = samples == 1 ? JCS_GRAYSCALE : JCS_RGB;
        jpeg_start_decompress(&d);
        while (d.output_scanline < SIDE) {
            JSAMPROW row = &image[size_t{ d.output_scanline } * SIDE * size_t(samples)];
            jpeg_read_scanlines(&d, &row, 1);
        }
        jpeg_finish_decompress(&d);
        jpeg_destroy_decompress(&d);
        std::fclose(file);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(image.size()));
}
BENCHMARK(libjpeg_reads)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

// With the divisors that the library's file has.
static void copy_tables(const std::string &path, jpeg_compress_struct *out)
{
    jpeg_decompress_struct d;
    jpeg_error_mgr errors;
    d.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&d);
    FILE *file = std::fopen(path.c_str(), "rb");
    std::fseek(file, 1536, SEEK_SET);
    jpeg_stdio_src(&d, file);
    jpeg_read_header(&d, TRUE);
    for (int t = 0; t < 2; t++) {
        unsigned table[64];
        std::copy_n(d.quant_tbl_ptrs[d.num_components == 1 ? 0 : t]->quantval, 64, table);
        jpeg_add_quant_table(out, t, table, 100, TRUE);
    }
    jpeg_destroy_decompress(&d);
    std::fclose(file);
}

static void libjpeg_writes(benchmark::State &state)
{
    const int samples = int(state.range(0));
    const std::string path = file_of(samples, 0);
    const bytes &image = picture(samples);
    for (auto _ : state) {
        jpeg_compress_struct c;
        jpeg_error_mgr errors;
        c.err = jpeg_std_error(&errors);
        jpeg_create_compress(&c);
        FILE *file = std::fopen(place_of("out.jpg").c_str(), "wb");
        jpeg_stdio_dest(&c, file);
        c.image_width = c.image_height = SIDE;
        c.input_components = samples;
        c.in_color_space = samples == 1 ? JCS_GRAYSCALE : JCS_RGB;
        jpeg_set_defaults(&c);
        c.comp_info[0].h_samp_factor = c.comp_info[0].v_samp_factor = 1;
        copy_tables(path, &c);
        jpeg_start_compress(&c, TRUE);
        while (c.next_scanline < SIDE) {
            JSAMPROW row = (JSAMPROW)&image[size_t{ c.next_scanline } * SIDE * size_t(samples)];
            jpeg_write_scanlines(&c, &row, 1);
        }
        jpeg_finish_compress(&c);
        jpeg_destroy_compress(&c);
        std::fclose(file);
    }
    state.SetBytesProcessed(state.iterations() * int64_t(image.size()));
}
BENCHMARK(libjpeg_writes)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
