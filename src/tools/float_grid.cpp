#include "tools/float_grid.h"
#include <algorithm>
#include <cmath>

bool grid_make(float_grid *grid, int width, int height)
{
    grid->width = width;
    grid->height = height;
    grid->cells.reset(static_cast<float *>(mem_calloc(size_t(width) * size_t(height), sizeof(float))));
    return grid->cells != nullptr;
}

float grid_linear(const float_grid &grid, float x, float y)
{
    x = std::clamp(x, 0.0f, float(grid.width - 1));
    y = std::clamp(y, 0.0f, float(grid.height - 1));
    const int x0 = int(x), y0 = int(y);
    const int x1 = std::min(x0 + 1, grid.width - 1), y1 = std::min(y0 + 1, grid.height - 1);
    const float *upper = grid.row(y0), *lower = grid.row(y1);
    const float fx = x - float(x0), fy = y - float(y0);
    const float a = upper[x0] + fx * (upper[x1] - upper[x0]), b = lower[x0] + fx * (lower[x1] - lower[x0]);
    return a + fy * (b - a);
}

// Catmull and Rom's curve between b and c.
static float cubic(float a, float b, float c, float d, float t)
{
    return b + 0.5f * t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)));
}

float grid_cubic(const float_grid &grid, float x, float y)
{
    x = std::clamp(x, 0.0f, float(grid.width - 1));
    y = std::clamp(y, 0.0f, float(grid.height - 1));
    const int x0 = int(x), y0 = int(y);
    const float fx = x - float(x0), fy = y - float(y0);
    const int xs[4] = { std::max(x0 - 1, 0), x0, std::min(x0 + 1, grid.width - 1), std::min(x0 + 2, grid.width - 1) };
    float down[4];
    for (int i = 0; i < 4; i++) {
        const float *row = grid.row(std::clamp(y0 - 1 + i, 0, grid.height - 1));
        down[i] = cubic(row[xs[0]], row[xs[1]], row[xs[2]], row[xs[3]], fx);
    }
    return cubic(down[0], down[1], down[2], down[3], fy);
}
