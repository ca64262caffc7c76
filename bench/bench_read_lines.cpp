// bench_read_lines - plain files of 64 MB in the page cache into a band, as the workstation loads them, beside what the
// machine itself takes for it: memcpy of the same bytes, and one read of the whole file.
// Each turn runs memcpy and then the read, into the same warm memory; look at x_memcpy, the median of the reads over the
// median of memcpy's.
#include "RIO/rio.h"
#include "mem.h"
#include "pictures.h"
#include "store/read_lines.h"
#include "timing.h"
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

static constexpr size_t PIXELS = size_t{ SIDE } * SIDE;
static constexpr int TILE = 256;

// Files of this program, which go away with it.
struct work_folder {
    std::string path = std::filesystem::temp_directory_path() / ("bench_lines_" + std::to_string(getpid()));
    work_folder() { std::filesystem::create_directories(path); }
    ~work_folder() { std::filesystem::remove_all(path); }
};

struct file_shape {
    const char *name;
    int32_t format, type, tile;
};

static void write_file(const std::string &path, const file_shape &shape)
{
    RFILE *file = rio_open_w(path.c_str());
    const int32_t side = SIDE;
    rio_set_hdr_data(file, RIO_KEY_FORMAT, &shape.format);
    rio_set_hdr_data(file, RIO_KEY_WIDTH, &side);
    rio_set_hdr_data(file, RIO_KEY_HEIGHT, &side);
    rio_set_hdr_data(file, RIO_KEY_DATA_TYPE, &shape.type);
    if (shape.tile)
        rio_set_hdr_data(file, RIO_KEY_TILE_WIDTH, &shape.tile);
    for (size_t y = 0; y < SIDE; y++) {
        const uint8_t *row = &picture(SCENE)[y * SIDE];
        rio_putline_rgb(file, row, row, row);
    }
    rio_close(file);
}

static const std::string &file_of(const file_shape &shape)
{
    static const work_folder folder;
    static std::string path;
    path = folder.path + "/" + shape.name;
    if (!std::filesystem::exists(path))
        write_file(path, shape);
    return path;
}

// A band's memory, warm.
static uint8_t *band_memory(int index)
{
    static uint8_t *held[4];
    if (!held[index]) {
        held[index] = (uint8_t *)mem_alloc(PIXELS);
        if (!held[index])
            std::exit(1);
        std::memset(held[index], 1, PIXELS);
    }
    return held[index];
}

static double wall_seconds()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

static double time_of(const std::function<void()> &work)
{
    const double start = wall_seconds();
    work();
    benchmark::ClobberMemory();
    return wall_seconds() - start;
}

// `bands` planes are filled by each turn.
static void measure(benchmark::State &state, int bands, const std::function<void()> &work)
{
    uint8_t *from = band_memory(3);
    std::vector<double> copies, reads;
    for (auto _ : state) {
        copies.push_back(time_of([&] {
            for (int i = 0; i < bands; i++)
                std::memcpy(band_memory(i), from, PIXELS);
        }));
        reads.push_back(time_of(work));
        state.SetIterationTime(reads.back());
    }
    state.counters["x_memcpy"] = median(reads) / median(copies);
}

// ---- the library -----------------------------------------------------------------------------------------------------

static void load(benchmark::State &state, const file_shape &shape)
{
    const std::string path = file_of(shape);
    const line_range whole { SIDE, 0, 0, SIDE - 1, SIDE - 1, 1 };
    uint8_t *const planes[] = { band_memory(0), band_memory(1), band_memory(2) };
    const bool colour = shape.type == RIO_TYPE_RGB;
    measure(state, colour ? 3 : 1, [&] {
        RFILE *file = rio_open_r(path.c_str());
        const int got = colour ? read_rgb_lines(file, whole, 1, planes) : read_gray_lines(file, shape.type, whole, 1, planes[0]);
        if (got != READ_WHOLE)
            state.SkipWithError("the file cannot be read");
        rio_close(file);
    });
    if (std::memcmp(planes[0], picture(SCENE).data(), PIXELS) != 0)
        state.SkipWithError("the band differs from the picture");
}

// One line after another into the image, as a caller without bands reads.
static void lines(benchmark::State &state, const file_shape &shape)
{
    const std::string path = file_of(shape);
    uint8_t *image = band_memory(0);
    measure(state, 1, [&] {
        RFILE *file = rio_open_r(path.c_str());
        for (size_t y = 0; y < SIDE; y++)
            rio_getline(file, image + y * SIDE);
        rio_close(file);
    });
}

// ---- the machine -----------------------------------------------------------------------------------------------------

static void read_whole(benchmark::State &state, const file_shape &shape)
{
    const std::string path = file_of(shape);
    const int bands = shape.type == RIO_TYPE_RGB ? 3 : 1;
    measure(state, bands, [&] {
        const int file = open(path.c_str(), O_RDONLY);
        lseek(file, 1024, SEEK_SET);
        for (int i = 0; i < bands; i++)
            benchmark::DoNotOptimize(read(file, band_memory(i), PIXELS));
        close(file);
    });
}

static void fread_whole(benchmark::State &state, const file_shape &shape)
{
    const std::string path = file_of(shape);
    const int bands = shape.type == RIO_TYPE_RGB ? 3 : 1;
    measure(state, bands, [&] {
        FILE *file = std::fopen(path.c_str(), "rb");
        std::fseek(file, 1024, SEEK_SET);
        for (int i = 0; i < bands; i++)
            benchmark::DoNotOptimize(std::fread(band_memory(i), 1, PIXELS, file));
        std::fclose(file);
    });
}

int main(int argc, char **argv)
{
    static constexpr file_shape shapes[] = {
        { "p5", RIO_FORMAT_PNM, RIO_TYPE_BYTE, 0 },          { "native", RIO_FORMAT_NATV, RIO_TYPE_BYTE, 0 },
        { "native_tiles", RIO_FORMAT_NATV, RIO_TYPE_BYTE, TILE }, { "tiff", RIO_FORMAT_TIFF, RIO_TYPE_BYTE, 0 },
        { "tiff_tiles", RIO_FORMAT_TIFF, RIO_TYPE_BYTE, TILE }, { "p6", RIO_FORMAT_PNM, RIO_TYPE_RGB, 0 },
        { "native_28", RIO_FORMAT_NATV, RIO_TYPE_RGB, 0 },
    };
    struct job {
        const char *name;
        void (*run)(benchmark::State &, const file_shape &);
    };
    static constexpr job jobs[] = { { "load", load }, { "lines", lines }, { "read_whole", read_whole }, { "fread_whole", fread_whole } };
    for (const file_shape &shape : shapes)
        for (const job &j : jobs) {
            if (j.run == lines && shape.type == RIO_TYPE_RGB)
                continue;       // gives the first band only
            benchmark::RegisterBenchmark((std::string(j.name) + "/" + shape.name).c_str(), j.run, shape)
                ->Unit(benchmark::kMillisecond)->Iterations(9)->UseManualTime();
        }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
