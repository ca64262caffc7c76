// Reading a 64 MB byte image line by line, against one fread of the whole and a memcpy of the same bytes.
#include "RIO/rio.h"
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

static constexpr int32_t SIDE = 8192;
static constexpr int64_t PIXELS = int64_t{ SIDE } * SIDE;

// The file, made once and kept in the page cache; it goes away with the program.
static const std::string &image_path()
{
    struct image_file {
        std::string path = std::filesystem::temp_directory_path() / ("bench_lines_" + std::to_string(getpid()) + ".ntv");
        image_file()
        {
            RFILE *file = rio_open_w(path.c_str());
            rio_set_hdr_data(file, RIO_KEY_WIDTH, &SIDE);
            rio_set_hdr_data(file, RIO_KEY_HEIGHT, &SIDE);
            std::vector<uint8_t> line(SIDE);
            for (int y = 0; y < SIDE; y++) {
                std::memset(line.data(), y, line.size());
                rio_putline(file, line.data());
            }
            rio_close(file);
        }
        ~image_file() { std::filesystem::remove(path); }
    };
    static const image_file file;
    return file.path;
}

static void read_native_lines(benchmark::State &state)
{
    const std::string &path = image_path();
    std::vector<uint8_t> line(SIDE);
    for (auto _ : state) {
        RFILE *file = rio_open_r(path.c_str());
        for (int y = 0; y < SIDE; y++)
            rio_getline(file, line.data());
        rio_close(file);
        benchmark::DoNotOptimize(line.data());
    }
    state.SetBytesProcessed(state.iterations() * PIXELS);
}
BENCHMARK(read_native_lines)->Unit(benchmark::kMillisecond);

static void read_native_lines_into_image(benchmark::State &state)
{
    const std::string &path = image_path();
    std::vector<uint8_t> image(PIXELS);
    for (auto _ : state) {
        RFILE *file = rio_open_r(path.c_str());
        for (int64_t y = 0; y < SIDE; y++)
            rio_getline(file, image.data() + y * SIDE);
        rio_close(file);
        benchmark::DoNotOptimize(image.data());
    }
    state.SetBytesProcessed(state.iterations() * PIXELS);
}
BENCHMARK(read_native_lines_into_image)->Unit(benchmark::kMillisecond);

static void fread_whole(benchmark::State &state)
{
    const std::string &path = image_path();
    std::vector<uint8_t> image(PIXELS);
    for (auto _ : state) {
        FILE *file = std::fopen(path.c_str(), "rb");
        std::fseek(file, 1024, SEEK_SET);
        benchmark::DoNotOptimize(std::fread(image.data(), 1, image.size(), file));
        std::fclose(file);
    }
    state.SetBytesProcessed(state.iterations() * PIXELS);
}
BENCHMARK(fread_whole)->Unit(benchmark::kMillisecond);

static void memcpy_whole(benchmark::State &state)
{
    std::vector<uint8_t> from(PIXELS, 1), to(PIXELS, 2);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * PIXELS);
}
BENCHMARK(memcpy_whole)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
