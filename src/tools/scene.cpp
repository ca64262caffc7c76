#include "tools/scene.h"
#include "tools/noise.h"
#include <algorithm>
#include <cmath>

static constexpr float PIXEL_METRES = SCENE_CELL_METRES / SCENE_CELL_PIXELS;
static constexpr float RIVER_LEAST = 500;               // cells whose water makes a visible river
static constexpr float TREE_LINE = 560, SNOW_LINE = 780;

struct ground {
    float height, slope;
    float light;                    // 1 on flat land
    float wildness = 0;             // what tells woods from meadows and fields, about -1 to 1
};

// Sun in the upper left, 40 degrees high.
static ground ground_at(const float *above, const float *here, const float *below, int x, int width)
{
    static constexpr float exaggeration = 1.5f;
    const int left = std::max(x - 1, 0), right = std::min(x + 1, width - 1);
    const float fall_x = (here[right] - here[left]) / (2 * PIXEL_METRES);
    const float fall_y = (below[x] - above[x]) / (2 * PIXEL_METRES);
    const float ex = exaggeration * fall_x, ey = exaggeration * fall_y;
    const float lit = (0.643f + 0.766f * 0.7071f * (ex + ey)) / std::sqrt(1 + ex * ex + ey * ey) / 0.643f;
    return { .height = here[x], .slope = length(fall_x, fall_y), .light = std::clamp(lit, 0.0f, 1.7f) };
}

static colour wild_land(float x, float y, const ground &at)
{
    const float high = at.height + 70 * fractal_noise(x / 70, y / 70, 4, 0.55f, 52);
    const float wood = smooth_step(-0.02f, 0.05f, at.wildness + 1.3f * at.slope - 0.16f)
        * (1 - smooth_step(TREE_LINE - 40, TREE_LINE + 30, high));
    const float rock = std::max(smooth_step(0.62f, 0.95f, at.slope + 0.25f * at.wildness),
                                smooth_step(TREE_LINE + 40, SNOW_LINE, high));
    const float snow = smooth_step(SNOW_LINE - 15, SNOW_LINE + 25, high - 110 * (at.slope - 0.35f));
    const float strata = 0.12f * fractal_noise(x / 14, y / 14, 4, 0.6f, 53);
    colour cover = mix(meadow(x, y), brighten({ 132, 122, 110 }, 1 + strata), rock);
    if (wood > 0)
        cover = mix(cover, woodland(x, y, smooth_step(120, 380, high)), wood);
    return mix(cover, { 238, 241, 246 }, snow);
}

static float farmed_share(const ground &at)
{
    return (1 - smooth_step(0.10f, 0.16f, at.slope)) * (1 - smooth_step(0.06f, 0.10f, at.wildness - 0.10f))
        * (1 - smooth_step(150, 230, at.height)) * smooth_step(1.2f, 2.2f, at.height);
}

static colour sea(float x, float y, float depth)
{
    const float swell = 0.025f * noise(x / 9 + y / 20, y / 6, 54)
        + 0.05f * fractal_noise(x / 120, y / 120, 3, 0.5f, 55);
    const colour shallow = mix({ 96, 128, 116 }, { 44, 88, 104 }, smooth_step(0, 4, depth));
    return brighten(mix(shallow, { 16, 44, 70 }, smooth_step(2, 20, depth)), 1 + swell);
}

static colour dry_land(const landscape &scenery, float x, float y, ground at)
{
    at.wildness = fractal_noise(x / 150, y / 150, 5, 0.55f, 50);
    colour cover = wild_land(x, y, at);
    const float farmed = farmed_share(at);
    if (farmed > 0)
        cover = mix(cover, farmland(x, y), farmed);
    const settlement *in = nullptr;
    const float density = building_density(scenery.settlements, x, y, &in);
    if (density > 0 && at.slope < 0.3f)
        cover = mix(cover, town(*in, density, x, y), smooth_step(0, 0.04f, density));
    return cover;
}

static colour view_at(const landscape &scenery, float x, float y, const ground &at, float river, float road)
{
    colour seen;
    if (at.height < -0.3f && road <= 0) {
        seen = sea(x, y, -at.height);
    } else {
        seen = dry_land(scenery, x, y, at);
        const float beach = (1 - smooth_step(0.5f, 1.3f, at.height)) * (1 - smooth_step(0.1f, 0.3f, at.slope));
        seen = mix(seen, { 196, 184, 148 }, beach * 0.85f);
        seen = brighten(seen, 0.34f + 0.66f * at.light);
        // Shadows are lit by the sky.
        seen.blue += 9 * std::max(0.0f, 1 - at.light);
        seen = mix(sea(x, y, -at.height), seen, smooth_step(-0.3f, 0.2f, at.height));
        const float brook = river * (1 - smooth_step(380, 560, at.height));
        seen = mix(seen, brighten({ 44, 74, 82 }, 1 + 0.1f * noise(x / 7, y / 7, 56)), brook);
    }
    return mix(seen, { 178, 174, 168 }, road * 0.92f);
}

// The air scatters blue light into the view; a few levels of noise are the camera's.
static colour through_the_air(colour seen, int x, int y)
{
    const colour hazy = mix(seen, { 164, 182, 204 }, 0.055f);
    const float grain = 5 * (random_place(x, y, 57) - 0.5f);
    return { hazy.red * 1.08f - 2 + grain, hazy.green * 1.08f - 3 + grain, hazy.blue * 1.08f - 3 + grain };
}

static uint8_t level(float value)
{
    return uint8_t(std::clamp(value + 0.5f, 0.0f, 255.0f));
}

// A lens doesn't draw edges sharper than a pixel: half of each pixel comes from its four neighbours.
// `rows` has room for two rows as they were before.
static void soften(uint8_t *rgb, int width, int height, uint8_t *rows)
{
    const size_t row_bytes = size_t(width) * 3;
    uint8_t *above = rows, *here = rows + row_bytes;
    std::copy_n(rgb, row_bytes, above);
    for (int y = 0; y < height; y++) {
        uint8_t *row = rgb + size_t(y) * row_bytes;
        const uint8_t *below = y + 1 < height ? row + row_bytes : row;
        std::copy_n(row, row_bytes, here);
        for (size_t i = 3; i < row_bytes - 3; i++)
            row[i] = uint8_t((here[i - 3] + here[i + 3] + above[i] + below[i] + 4 * here[i] + 4) / 8);
        std::swap(above, here);
    }
}

bool paint_scene(const landscape &scenery, uint8_t *rgb)
{
    float_grid heights, rivers, roads;
    mem_ptr<uint8_t> rows(static_cast<uint8_t *>(mem_alloc(size_t(SCENE_WIDTH) * 6)));
    if (!rows || !grid_make(&heights, SCENE_WIDTH, SCENE_HEIGHT)
        || !draw_network(scenery.rivers, RIVER_LEAST, { 0.55f, 0.34f }, SCENE_CELL_PIXELS, &rivers)
        || !draw_network(scenery.roads, 1, { 1.1f, 0.55f }, SCENE_CELL_PIXELS, &roads))
        return false;
    for (int y = 0; y < SCENE_HEIGHT; y++)
        for (int x = 0; x < SCENE_WIDTH; x++)
            heights.row(y)[x] = ground_height(scenery, float(x), float(y));
    for (int y = 0; y < SCENE_HEIGHT; y++) {
        const float *above = heights.row(std::max(y - 1, 0)), *below = heights.row(std::min(y + 1, SCENE_HEIGHT - 1));
        for (int x = 0; x < SCENE_WIDTH; x++) {
            const ground at = ground_at(above, heights.row(y), below, x, SCENE_WIDTH);
            const colour seen = through_the_air(
                view_at(scenery, float(x), float(y), at, rivers.row(y)[x], roads.row(y)[x]), x, y);
            *rgb++ = level(seen.red);
            *rgb++ = level(seen.green);
            *rgb++ = level(seen.blue);
        }
    }
    soften(rgb - size_t(SCENE_WIDTH) * SCENE_HEIGHT * 3, SCENE_WIDTH, SCENE_HEIGHT, rows.get());
    return true;
}
