// Counting the levels of a plane of 8000 x 8000 beside memcpy of its bytes, the same with OpenCV where it is installed, and each
// contrast operator on a band's tables.
// Each turn runs memcpy and then the count on the same plane; look at x_memcpy, the median of our times over the median of memcpy's.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

#include "enhance/contrast_maps.h"
#include "enhance/hist_kernel.h"
#include "enhance/histogram.h"
#include "timing.h"

#ifdef HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

static constexpr int SIDE = 8000;
static constexpr size_t BYTES = size_t{SIDE} * SIDE;

static uint32_t next_random(uint32_t *state)
{
    return *state = *state * 1664525u + 1013904223u;
}

// Broad shapes with grain, as a photograph has them.
static const uint8_t *photograph()
{
    static const uint8_t *const made = [] {
        uint8_t *plane = plane_memory(BYTES);
        std::vector<double> wave(SIDE);
        for (int x = 0; x < SIDE; x++)
            wave[size_t(x)] = 45 * std::sin(x / 310.0) + 20 * std::sin(x / 37.0);
        uint32_t state = 1;
        for (int y = 0; y < SIDE; y++)
            for (int x = 0; x < SIDE; x++) {
                const double grain = double(next_random(&state) >> 27) - 16;
                plane[size_t(y) * SIDE + size_t(x)] = uint8_t(std::clamp(110 + wave[size_t(x)] + wave[size_t((y + x / 3) % SIDE)] / 2 + grain, 0.0, 255.0));
            }
        return plane;
    }();
    return made;
}

// Areas of one level each, as a map of land cover has them.
static const uint8_t *flat_map()
{
    static const uint8_t *const made = [] {
        static constexpr uint8_t levels[] = { 12, 60, 61, 130, 200, 255 };
        uint8_t *plane = plane_memory(BYTES);
        for (int y = 0; y < SIDE; y++)
            for (int x = 0; x < SIDE; x++)
                plane[size_t(y) * SIDE + size_t(x)] = levels[size_t((x + y / 5) / 700 + y / 450 * 5) % sizeof levels];
        return plane;
    }();
    return made;
}

static void beside_memcpy(benchmark::State &state, const uint8_t *plane, const std::function<void()> &count)
{
    static uint8_t *const copy = plane_memory(BYTES);
    beside_memcpy(state, plane, copy, BYTES, count);
}

static void count_levels(benchmark::State &state, const uint8_t *(*source)(), int step)
{
    const uint8_t *plane = source();
    beside_memcpy(state, plane, [&] {
        int32_t bins[256] = {};
        hist_count(bins, plane, SIDE, SIDE, SIDE, step);
        benchmark::DoNotOptimize(bins);
    });
}

BENCHMARK_CAPTURE(count_levels, photograph_every_pixel, photograph, 1)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(25);
BENCHMARK_CAPTURE(count_levels, flat_map_every_pixel, flat_map, 1)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(25);
BENCHMARK_CAPTURE(count_levels, photograph_every_2nd, photograph, 2)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(25);
BENCHMARK_CAPTURE(count_levels, photograph_every_5th, photograph, 5)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(25);
BENCHMARK_CAPTURE(count_levels, flat_map_every_5th, flat_map, 5)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(25);

#ifdef HAVE_OPENCV
static void count_levels_opencv(benchmark::State &state, const uint8_t *(*source)())
{
    cv::setNumThreads(1);
    const uint8_t *plane = source();
    const cv::Mat image(SIDE, SIDE, CV_8UC1, const_cast<uint8_t *>(plane));
    const int channel = 0, bin_count = 256;
    const float levels[] = { 0, 256 };
    const float *range = levels;
    cv::Mat bins;
    beside_memcpy(state, plane, [&] { cv::calcHist(&image, 1, &channel, cv::Mat(), bins, 1, &bin_count, &range); });
}

BENCHMARK_CAPTURE(count_levels_opencv, photograph_every_pixel, photograph)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);
BENCHMARK_CAPTURE(count_levels_opencv, flat_map_every_pixel, flat_map)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);
#endif

// Each turn starts from the same tables.
static void map_operator(benchmark::State &state, void (*run)(int32_t *hist, int16_t *lut))
{
    int32_t start[256] = {}, hist[256];
    int16_t lut[256];
    hist_count(start, photograph(), SIDE, SIDE, SIDE, 5);
    for (auto _ : state) {
        std::memcpy(hist, start, sizeof hist);
        for (int i = 0; i < 256; i++)
            lut[i] = int16_t(i);
        run(hist, lut);
        benchmark::DoNotOptimize(hist);
        benchmark::DoNotOptimize(lut);
    }
}

BENCHMARK_CAPTURE(map_operator, equalize, [](int32_t *hist, int16_t *lut) { equalize_map(hist, lut, 0.5, 0, 255, 0, 255); });
BENCHMARK_CAPTURE(map_operator, stretch, [](int32_t *hist, int16_t *lut) { stretch_map(hist, lut, 20, 220, 0, 255); });
BENCHMARK_CAPTURE(map_operator, percent_range, [](int32_t *hist, int16_t *lut) {
    int low, high;
    percent_range(hist, 2, &low, &high);
    lut[low & 255] = int16_t(high);
});
BENCHMARK_CAPTURE(map_operator, scale, [](int32_t *hist, int16_t *lut) { scale_map(hist, lut, 1.5, 128); });
BENCHMARK_CAPTURE(map_operator, shift, [](int32_t *hist, int16_t *lut) { shift_map(hist, lut, 20); });
BENCHMARK_CAPTURE(map_operator, map_hist, [](int32_t *hist, int16_t *lut) {
    int32_t mapped[256];
    map_hist(mapped, lut, hist);
    std::memcpy(hist, mapped, sizeof mapped);
});

BENCHMARK_MAIN();
