// float_grid.h - a rectangle of numbers, row by row: heights, shares, distances.
#pragma once
#include "mem.h"
#include <cstdint>

struct float_grid {
    int width = 0, height = 0;
    mem_ptr<float> cells;

    float *row(int y) { return cells.get() + int64_t{ y } * width; }
    const float *row(int y) const { return cells.get() + int64_t{ y } * width; }
};

// All cells 0. False without memory.
bool grid_make(float_grid *grid, int width, int height);

// The value at a place between cell centres, which lie on whole numbers; outside, the nearest edge counts.
float grid_linear(const float_grid &grid, float x, float y);
// The same by cubic curves through the 16 nearest cells, smooth where linear shows creases.
float grid_cubic(const float_grid &grid, float x, float y);
