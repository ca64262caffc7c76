#include "tools/noise.h"
#include "tools/scene.h"
#include <algorithm>
#include <cmath>

static constexpr uint32_t LAND_SEED = 5;
static constexpr float RELIEF_METRES = 900;
static constexpr int VILLAGES = 9;
static constexpr int VILLAGE_DISTANCE = 62;             // cells between two settlements at least
static constexpr int TOWN_MARGIN = 40;                  // cells from the picture's edge

static float steepness(const float_grid &z, int x, int y)
{
    static constexpr int reach = 4;
    const int x0 = std::max(x - reach, 0), x1 = std::min(x + reach, z.width - 1);
    const int y0 = std::max(y - reach, 0), y1 = std::min(y + reach, z.height - 1);
    return (std::fabs(z.row(y)[x1] - z.row(y)[x0]) + std::fabs(z.row(y1)[x] - z.row(y0)[x]))
        / (2 * reach * SCENE_CELL_METRES);
}

static float most_water_near(const float_grid &drained, int x, int y)
{
    static constexpr int reach = 6;
    float most = 0;
    for (int j = std::max(y - reach, 0); j <= std::min(y + reach, drained.height - 1); j++)
        for (int i = std::max(x - reach, 0); i <= std::min(x + reach, drained.width - 1); i++)
            most = std::max(most, drained.row(j)[i]);
    return most;
}

static bool far_from_others(const std::vector<settlement> &others, int x, int y)
{
    for (const settlement &other : others)
        if (length(float(x) - other.x / SCENE_CELL_PIXELS, float(y) - other.y / SCENE_CELL_PIXELS) < VILLAGE_DISTANCE)
            return false;
    return true;
}

// Towns like flat ground by a river, not too high, and the first one likes the middle of the picture.
static int32_t best_site(const terrain &land, const std::vector<settlement> &others)
{
    const float_grid &z = land.height;
    float best = -1e9f;
    int32_t site = 0;
    for (int y = TOWN_MARGIN; y < z.height - TOWN_MARGIN; y += 3)
        for (int x = TOWN_MARGIN; x < z.width - TOWN_MARGIN; x += 3) {
            if (z.row(y)[x] < 4 || !far_from_others(others, x, y))
                continue;
            const float aside = others.empty()
                ? length(float(x) / float(z.width) - 0.52f, float(y) / float(z.height) - 0.60f) : 0;
            const float worth = 0.35f * std::log(most_water_near(land.drained, x, y)) - 26 * steepness(z, x, y)
                - 0.009f * z.row(y)[x] - 7 * aside + 0.8f * random_place(x, y, 31);
            if (worth > best) {
                best = worth;
                site = y * z.width + x;
            }
        }
    return site;
}

static void settle(landscape *made, std::vector<int32_t> *sites)
{
    for (int i = 0; i <= VILLAGES; i++) {
        const int32_t site = best_site(made->land, made->settlements);
        const float angle = 1.5708f * random_place(i, 0, 32);
        const int width = made->land.height.width;
        const float radius = i == 0 ? 185 : 38 + 42 * random_place(i, 1, 32);
        made->settlements.push_back({ float(site % width * SCENE_CELL_PIXELS), float(site / width * SCENE_CELL_PIXELS),
                                      radius, std::cos(angle), std::sin(angle) });
        sites->push_back(site);
    }
}

// Where roads leave the picture: the lowest dry place of some stretches of its edge.
static void add_edge_targets(const float_grid &z, std::vector<int32_t> *targets)
{
    const auto lowest_dry = [&](int x0, int y0, int x1, int y1) {
        int32_t found = -1;
        for (int y = y0; y <= y1; y++)
            for (int x = x0; x <= x1; x++)
                if (z.row(y)[x] > 3 && (found < 0 || z.row(y)[x] < z.cells[found]))
                    found = y * z.width + x;
        if (found >= 0)
            targets->push_back(found);
    };
    const int right = z.width - 1, bottom = z.height - 1;
    lowest_dry(0, bottom / 2, 0, bottom);
    lowest_dry(right / 10, bottom, right / 2, bottom);
    lowest_dry(right, 0, right, bottom / 3);
    lowest_dry(right, bottom / 3, right, bottom);
    lowest_dry(right / 2, 0, right, 0);
    lowest_dry(0, 0, right / 2, 0);
}

bool landscape_make(landscape *made)
{
    terrain &land = made->land;
    const int width = SCENE_WIDTH / SCENE_CELL_PIXELS, height = SCENE_HEIGHT / SCENE_CELL_PIXELS;
    if (!terrain_make(&land, width, height, SCENE_CELL_METRES, RELIEF_METRES, LAND_SEED)
        || !grid_make(&made->rivers.amount, width, height))
        return false;
    std::copy_n(land.drained.cells.get(), size_t(width) * size_t(height), made->rivers.amount.cells.get());
    made->rivers.next = land.next;
    std::vector<int32_t> sites;
    settle(made, &sites);
    add_edge_targets(land.height, &sites);
    return find_roads(land, SCENE_CELL_METRES, sites[0], sites, &made->roads);
}

float ground_height(const landscape &scenery, float x, float y)
{
    const float scale = 1.0f / SCENE_CELL_PIXELS;
    const float wx = x + 5 * noise(x / 37, y / 37, 20), wy = y + 5 * noise(x / 37, y / 37, 21);
    const float z = grid_cubic(scenery.land.height, (wx - 1.5f) * scale, (wy - 1.5f) * scale);
    const float roughness = 0.7f + 10 * smooth_step(60, 600, z);
    return z + roughness * fractal_noise(x / 36, y / 36, 4, 0.5f, 22);
}
