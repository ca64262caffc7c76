// timing.h - what the benches share that stand beside memcpy: processor time, medians, planes as bands have them.
#pragma once
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <vector>

#include "mem.h"

// Processor time of this thread: what other programs take does not count.
inline double seconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

inline double median(std::vector<double> times)
{
    std::nth_element(times.begin(), times.begin() + std::ptrdiff_t(times.size() / 2), times.end());
    return times[times.size() / 2];
}

// Written before: no page of it is new.
inline uint8_t *plane_memory(size_t size)
{
    uint8_t *plane = (uint8_t *)mem_alloc(size);
    if (!plane)
        std::exit(1);
    std::memset(plane, 0, size);
    return plane;
}

// Slopes with grain, in rows of `side` pixels.
inline uint8_t *sloping_plane(size_t side, size_t size)
{
    uint8_t *plane = plane_memory(size);
    uint32_t state = 1;
    for (size_t i = 0; i < size; i++) {
        state = state * 1664525u + 1013904223u;
        plane[i] = uint8_t(i / 61 + i / side / 17 + (state >> 27));
    }
    return plane;
}

// Times `work` in turn with a memcpy of `size` bytes of `plane` to `copy`.
inline void beside_memcpy(benchmark::State &state, const uint8_t *plane, uint8_t *copy, size_t size, const std::function<void()> &work)
{
    std::vector<double> copies, works;
    for (auto _ : state) {
        const double start = seconds();
        std::memcpy(copy, plane, size);
        benchmark::ClobberMemory();
        const double middle = seconds();
        work();
        benchmark::ClobberMemory();
        const double end = seconds();
        copies.push_back(middle - start);
        works.push_back(end - middle);
        state.SetIterationTime(end - middle);
    }
    state.counters["memcpy_ms"] = 1e3 * median(copies);
    state.counters["x_memcpy"] = median(works) / median(copies);
}
