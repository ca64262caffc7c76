// filters_bench.h - the planes that bench_filters works on, and how a row of its table is measured.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

constexpr int SIDE = 8000, COLOUR_SIDE = 4000;
constexpr size_t BYTES = size_t{SIDE} * SIDE, COLOUR_BYTES = size_t{COLOUR_SIDE} * COLOUR_SIDE;

uint8_t *photograph();                 // slopes with grain; the input
uint8_t *target();                     // as large, and written before: no page of it is new

// Times `work` in turn with a memcpy of `bytes`.
void add(const std::string &name, size_t bytes, const std::function<void()> &work);

void add_opencv();
void add_libyuv();
