#include "tools/terrain.h"
#include "tools/noise.h"
#include <algorithm>
#include <cmath>
#include <queue>

static constexpr int ROUNDS = 30;               // of rise and erosion
static constexpr float SEA_LEVEL = 0;
static constexpr float EROSION = 0.075f;        // share of a cell's drop lost in a round, with the water of one cell
static constexpr float HILLSLOPE_CREEP = 0.08f; // how far a round evens out neighbours

// How far inland a place is: 0 at the low corner of the sea, 1 at the high corner.
static float inland(float x, float y, uint32_t seed)
{
    const float along = 0.5f + 0.42f * (0.62f * (1 - 2 * x) + 0.60f * (1 - 2 * y));
    return along + 0.34f * fractal_noise(x * 2.3f, y * 2.3f, 4, 0.5f, seed);
}

static float first_height(float far_inland, float x, float y, float relief, uint32_t seed)
{
    const float plain = relief * 0.16f * (far_inland - 0.17f);
    const float roughness = relief * (0.012f + 0.24f * smooth_step(0.5f, 0.95f, far_inland));
    return plain + roughness * fractal_noise(x * 9, y * 9, 5, 0.55f, seed + 40);
}

// The sea is the outlet of all water, and always there: the low corner is below its level.
static void start_at_the_sea(terrain *land)
{
    const int32_t cells = land->height.width * land->height.height;
    for (int32_t cell = 0; cell < cells; cell++)
        land->next[size_t(cell)] = land->height.cells[cell] < SEA_LEVEL ? cell : -1;
    land->next[size_t(cells - 1)] = cells - 1;
}

// Works out where each cell's water runs, beginning at the outlets and always going on with the lowest cell met, so
// that water also finds its way out of hollows.
static void find_drainage(terrain *land)
{
    struct met { float level; int32_t cell; };
    const auto higher = [](const met &a, const met &b) {
        return a.level > b.level || (a.level == b.level && a.cell > b.cell);
    };
    std::priority_queue<met, std::vector<met>, decltype(higher)> front(higher);
    const int width = land->height.width, height = land->height.height;
    const float *z = land->height.cells.get();

    land->order.clear();
    start_at_the_sea(land);
    for (int32_t cell = 0; cell < width * height; cell++)
        if (land->next[size_t(cell)] == cell)
            front.push({ z[cell], cell });
    while (!front.empty()) {
        const met lowest = front.top();
        front.pop();
        land->order.push_back(lowest.cell);
        const int x = lowest.cell % width, y = lowest.cell / width;
        for (int dy = -1; dy <= 1; dy++)
            for (int dx = -1; dx <= 1; dx++) {
                if (x + dx < 0 || y + dy < 0 || x + dx >= width || y + dy >= height)
                    continue;
                const int32_t neighbour = (y + dy) * width + x + dx;
                if (land->next[size_t(neighbour)] < 0) {
                    land->next[size_t(neighbour)] = lowest.cell;
                    front.push({ std::max(z[neighbour], lowest.level), neighbour });
                }
            }
    }
}

static void collect_water(terrain *land)
{
    float *drained = land->drained.cells.get();
    for (const int32_t cell : land->order)
        drained[cell] = 1;
    for (size_t i = land->order.size(); i-- > 0;) {
        const int32_t cell = land->order[i], next = land->next[size_t(cell)];
        if (next != cell)
            drained[next] += drained[cell];
    }
}

// Lowers each cell towards the one below it, by the square root of its water. Solved from the outlets up, so that long
// rounds stay stable.
static void rise_and_erode(terrain *land, const float_grid &rise)
{
    float *z = land->height.cells.get();
    for (const int32_t cell : land->order) {
        const int32_t next = land->next[size_t(cell)];
        if (next == cell)
            continue;
        const float cut = EROSION * std::sqrt(land->drained.cells[cell]);
        z[cell] = (z[cell] + rise.cells[cell] + cut * z[next]) / (1 + cut);
    }
}

static void creep(float_grid *z, float_grid *before)
{
    const int width = z->width, height = z->height;
    std::copy_n(z->cells.get(), size_t(width) * size_t(height), before->cells.get());
    for (int y = 1; y < height - 1; y++) {
        const float *above = before->row(y - 1), *here = before->row(y), *below = before->row(y + 1);
        float *out = z->row(y);
        for (int x = 1; x < width - 1; x++)
            out[x] += HILLSLOPE_CREEP * (above[x] + below[x] + here[x - 1] + here[x + 1] - 4 * here[x]);
    }
}

bool terrain_make(terrain *land, int width, int height, float cell_metres, float relief, uint32_t seed)
{
    float_grid rise, before;
    if (!grid_make(&land->height, width, height) || !grid_make(&land->drained, width, height)
        || !grid_make(&rise, width, height) || !grid_make(&before, width, height))
        return false;
    land->next.resize(size_t(width) * size_t(height));
    const float rise_a_round = relief * cell_metres * 0.0013f;
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) {
            const float u = float(x) / float(width), v = float(y) / float(height);
            const float far_inland = inland(u, v, seed);
            land->height.row(y)[x] = first_height(far_inland, u, v, relief, seed);
            rise.row(y)[x] = rise_a_round * (0.02f + smooth_step(0.48f, 0.95f, far_inland));
        }
    for (int i = 0; i < ROUNDS; i++) {
        find_drainage(land);
        collect_water(land);
        rise_and_erode(land, rise);
        creep(&land->height, &before);
    }
    find_drainage(land);
    collect_water(land);
    return true;
}
