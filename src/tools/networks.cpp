#include "tools/networks.h"
#include "tools/noise.h"
#include <algorithm>
#include <cmath>
#include <queue>

static constexpr int SMOOTHING_ROUNDS = 10;
static constexpr float RIVER_WATER = 600;       // cells drained that make a river worth a bridge

struct place { float x, y; };

// The neighbour up the tree through which most comes, for every cell; -1 where the tree begins.
static std::vector<int32_t> main_feeders(const network &tree)
{
    std::vector<int32_t> feeder(tree.next.size(), -1);
    const float *amount = tree.amount.cells.get();
    for (size_t cell = 0; cell < tree.next.size(); cell++) {
        const int32_t next = tree.next[cell];
        if (next < 0 || size_t(next) == cell)
            continue;
        int32_t &best = feeder[size_t(next)];
        if (best < 0 || amount[cell] > amount[best])
            best = int32_t(cell);
    }
    return feeder;
}

// Cells lie on a grid and their chains have corners: each is drawn towards the middle of its neighbours in the chain.
static std::vector<place> smooth_places(const network &tree, float least)
{
    const int width = tree.amount.width;
    const std::vector<int32_t> feeder = main_feeders(tree);
    std::vector<place> places(tree.next.size());
    for (size_t cell = 0; cell < places.size(); cell++)
        places[cell] = { float(int(cell) % width), float(int(cell) / width) };
    for (int round = 0; round < SMOOTHING_ROUNDS; round++) {
        const std::vector<place> before = places;
        for (size_t cell = 0; cell < places.size(); cell++) {
            if (tree.amount.cells[cell] < least || feeder[cell] < 0 || tree.next[cell] < 0)
                continue;
            const place &up = before[size_t(feeder[cell])], &down = before[size_t(tree.next[cell])];
            places[cell].x = 0.5f * before[cell].x + 0.25f * (up.x + down.x);
            places[cell].y = 0.5f * before[cell].y + 0.25f * (up.y + down.y);
        }
    }
    return places;
}

static void draw_stroke(float_grid *cover, place a, place b, float half_width)
{
    const float reach = half_width + 1;
    const int x0 = std::max(int(std::min(a.x, b.x) - reach), 0), y0 = std::max(int(std::min(a.y, b.y) - reach), 0);
    const int x1 = std::min(int(std::max(a.x, b.x) + reach), cover->width - 1);
    const int y1 = std::min(int(std::max(a.y, b.y) + reach), cover->height - 1);
    const float dx = b.x - a.x, dy = b.y - a.y, square = std::max(dx * dx + dy * dy, 1e-6f);
    for (int y = y0; y <= y1; y++)
        for (int x = x0; x <= x1; x++) {
            const float px = float(x) - a.x, py = float(y) - a.y;
            const float along = std::clamp((px * dx + py * dy) / square, 0.0f, 1.0f);
            const float distance = length(px - along * dx, py - along * dy);
            float &cell = cover->row(y)[x];
            cell = std::max(cell, std::clamp(half_width + 0.5f - distance, 0.0f, 1.0f));
        }
}

bool draw_network(const network &tree, float least, stroke_width width, int cell_pixels, float_grid *cover)
{
    if (!grid_make(cover, tree.amount.width * cell_pixels, tree.amount.height * cell_pixels))
        return false;
    const std::vector<place> places = smooth_places(tree, least);
    const float scale = float(cell_pixels), centre = 0.5f * (scale - 1);
    for (size_t cell = 0; cell < places.size(); cell++) {
        const int32_t next = tree.next[cell];
        const float amount = tree.amount.cells[cell];
        if (next < 0 || amount < least)
            continue;
        const float half_width = width.least + width.growth * (std::sqrt(amount / least) - 1);
        const place from = places[cell], to = places[size_t(next)];
        draw_stroke(cover, { from.x * scale + centre, from.y * scale + centre },
                    { to.x * scale + centre, to.y * scale + centre }, half_width);
    }
    return true;
}

static float step_cost(const terrain &land, float cell_metres, int32_t from, int32_t to, float cells)
{
    const float *z = land.height.cells.get();
    const float slope = (z[to] - z[from]) / (cells * cell_metres);
    float cost = 1 + 220 * slope * slope;
    if (z[to] < 1)
        cost += 60;
    else if (land.drained.cells[to] > RIVER_WATER)
        cost += 5;
    return cost * cells;
}

bool find_roads(const terrain &land, float cell_metres, int32_t root, const std::vector<int32_t> &targets,
                network *roads)
{
    struct met { float cost; int32_t cell; };
    const auto dearer = [](const met &a, const met &b) {
        return a.cost > b.cost || (a.cost == b.cost && a.cell > b.cell);
    };
    const int width = land.height.width, height = land.height.height;
    if (!grid_make(&roads->amount, width, height))
        return false;
    std::priority_queue<met, std::vector<met>, decltype(dearer)> front(dearer);
    std::vector<float> cost(size_t(width) * size_t(height), 1e30f);
    roads->next.assign(cost.size(), -1);
    roads->next[size_t(root)] = root;
    cost[size_t(root)] = 0;
    front.push({ 0, root });
    while (!front.empty()) {
        const met here = front.top();
        front.pop();
        if (here.cost > cost[size_t(here.cell)])
            continue;
        const int x = here.cell % width, y = here.cell / width;
        for (int dy = -1; dy <= 1; dy++)
            for (int dx = -1; dx <= 1; dx++) {
                if (x + dx < 0 || y + dy < 0 || x + dx >= width || y + dy >= height)
                    continue;
                const int32_t neighbour = (y + dy) * width + x + dx;
                const float through = here.cost
                    + step_cost(land, cell_metres, here.cell, neighbour, dx && dy ? 1.4142f : 1.0f);
                if (through < cost[size_t(neighbour)]) {
                    cost[size_t(neighbour)] = through;
                    roads->next[size_t(neighbour)] = here.cell;
                    front.push({ through, neighbour });
                }
            }
    }
    for (int32_t cell : targets)
        for (roads->amount.cells[cell] += 1; roads->next[size_t(cell)] != cell; roads->amount.cells[cell] += 1)
            cell = roads->next[size_t(cell)];
    return true;
}
