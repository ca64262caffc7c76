#include "tools/land_cover.h"
#include "tools/noise.h"
#include <algorithm>
#include <cmath>

static constexpr float BLOCK_PIXELS = 190;      // farmland between two tracks
static constexpr colour TRACK = { 172, 162, 138 };
static constexpr colour HEDGE = { 50, 66, 40 };

static constexpr colour crops[] = {
    { 92, 116, 60 }, { 78, 104, 54 }, { 104, 126, 66 }, { 128, 142, 78 }, { 118, 128, 80 },   // green
    { 186, 170, 116 }, { 172, 154, 98 }, { 196, 182, 134 },                                   // ripe
    { 134, 108, 80 }, { 112, 88, 66 }, { 150, 126, 96 },                                      // ploughed
    { 198, 186, 84 },                                                                         // in flower
    { 140, 138, 96 }, { 110, 122, 72 },                                                       // resting
};

struct block {
    int32_t number_x, number_y;     // the cell of the lattice that its middle lies in
    float to_edge;                  // pixels from the place to the nearest other block
};

static block block_at(float x, float y)
{
    const int32_t i = int32_t(std::floor(x / BLOCK_PIXELS)), j = int32_t(std::floor(y / BLOCK_PIXELS));
    block found{};
    float nearest = 1e9f, second = 1e9f;
    for (int32_t cy = j - 1; cy <= j + 1; cy++)
        for (int32_t cx = i - 1; cx <= i + 1; cx++) {
            const float mx = (float(cx) + 0.15f + 0.7f * random_place(cx, cy, 71)) * BLOCK_PIXELS;
            const float my = (float(cy) + 0.15f + 0.7f * random_place(cx, cy, 72)) * BLOCK_PIXELS;
            const float distance = length(x - mx, y - my);
            if (distance < nearest) {
                second = nearest;
                nearest = distance;
                found.number_x = cx;
                found.number_y = cy;
            } else {
                second = std::min(second, distance);
            }
        }
    found.to_edge = 0.5f * (second - nearest);
    return found;
}

// Cuts a line into pieces of uneven length: the piece's number and the distance to its nearer end.
static int32_t piece_at(float along, float spacing, int32_t salt, uint32_t seed, float *to_end)
{
    const int32_t i = int32_t(std::floor(along / spacing));
    const auto start = [=](int32_t k) { return (float(k) + 0.55f * (random_place(k, salt, seed) - 0.5f)) * spacing; };
    int32_t piece = i;
    if (along < start(i))
        piece = i - 1;
    else if (along >= start(i + 1))
        piece = i + 1;
    *to_end = std::min(along - start(piece), start(piece + 1) - along);
    return piece;
}

colour farmland(float x, float y)
{
    const float wx = x + 14 * noise(x / 120, y / 120, 60), wy = y + 14 * noise(x / 120, y / 120, 61);
    const block in = block_at(wx, wy);
    const uint32_t own = hash_place(in.number_x, in.number_y, 73);
    const float angle = 6.2832f * float(own & 0xffff) / 65536.0f;
    const float u = wx * std::cos(angle) + wy * std::sin(angle), v = wy * std::cos(angle) - wx * std::sin(angle);
    float to_side, to_head;
    const int32_t strip = piece_at(u, 30 + float(own >> 16 & 31), int32_t(own & 0xff), 74, &to_side);
    const int32_t parcel = piece_at(v, 80 + float(own >> 21 & 63), strip, 75, &to_head);

    const uint32_t sown = hash_place(strip, parcel, own);
    constexpr uint32_t kinds = sizeof crops / sizeof crops[0];
    colour ground = brighten(crops[sown % kinds], 0.92f + 0.16f * float(sown >> 8 & 0xff) / 255.0f);
    const float rows = std::sin(u * (1.5f + 0.6f * float(sown >> 16 & 3))) * 0.025f;
    const float soil = 0.11f * fractal_noise(x / 34, y / 34, 3, 0.6f, 76) + 0.05f * noise(x / 2.1f, y / 2.1f, 79);
    ground = brighten(ground, 1 + rows + soil);

    const float hedge_growth = noise(x / 40, y / 40, 77) + 0.5f * noise(x / 5, y / 5, 78);
    const float border = std::min(to_side, to_head);
    if (border < 1.6f)
        ground = mix(ground, hedge_growth > -0.08f ? HEDGE : TRACK, hedge_growth > -0.08f ? 0.75f : 0.25f);
    if (in.to_edge < 1.5f)
        ground = mix(TRACK, ground, smooth_step(0.5f, 1.5f, in.to_edge));
    else if (in.to_edge < 4 && hedge_growth > 0.1f)
        ground = mix(ground, HEDGE, 0.8f);
    return ground;
}

colour woodland(float x, float y, float conifers)
{
    const colour leaves = mix({ 58, 80, 42 }, { 40, 60, 44 }, conifers);
    // Crowns are lit from the upper left: light is the fall of their rounded tops to the lower right.
    const float here = noise(x / 3.4f, y / 3.4f, 80) + 0.5f * noise(x / 1.9f, y / 1.9f, 81);
    const float beyond = noise((x + 1) / 3.4f, (y + 1) / 3.4f, 80) + 0.5f * noise((x + 1) / 1.9f, (y + 1) / 1.9f, 81);
    const float stand = 0.16f * fractal_noise(x / 60, y / 60, 3, 0.5f, 82);
    return brighten(leaves, 1 + stand + 0.22f * here + 0.55f * (here - beyond));
}

static constexpr float LEAST_TOWN_RADIUS = 120;

colour meadow(float x, float y)
{
    const float dry = smooth_step(-0.35f, 0.45f, fractal_noise(x / 90, y / 90, 4, 0.55f, 84));
    const float tufts = 0.10f * noise(x / 3, y / 3, 85) + 0.08f * noise(x / 11, y / 11, 86);
    return brighten(mix({ 98, 112, 64 }, { 142, 134, 92 }, dry), 1 + tufts);
}

float building_density(const std::vector<settlement> &settlements, float x, float y, const settlement **in)
{
    float densest = -1;
    for (const settlement &candidate : settlements) {
        const float distance = length(x - candidate.x, y - candidate.y) / candidate.radius;
        if (distance < 1.6f && 1 - distance > densest) {
            densest = 1 - distance;
            *in = &candidate;
        }
    }
    if (densest < -0.6f)
        return -1;
    const float density = densest + 0.75f * fractal_noise(x / 75, y / 75, 3, 0.5f, 90);
    return (*in)->radius < LEAST_TOWN_RADIUS ? std::min(density, 0.6f) : density;
}

struct house_part {
    bool roof = false, lit = false;
    uint32_t kind = 0;
};

static constexpr float STREET_U = 46, STREET_V = 33, STREET_HALF_WIDTH = 1.4f;

// What stands at a place of a town, in coordinates along its streets.
static house_part house_at(float u, float v, float density)
{
    const int32_t bu = int32_t(std::floor(u / STREET_U)), bv = int32_t(std::floor(v / STREET_V));
    const float in_u = u - float(bu) * STREET_U, in_v = v - float(bv) * STREET_V;
    const bool centre = density > 0.62f;
    const float lot_u = centre ? 14.6f : 8.4f, lot_v = centre ? 15 : 10;
    const int32_t lu = int32_t((in_u - 2) / lot_u), lv = int32_t((in_v - 2) / lot_v);
    const uint32_t own = hash_place(bu * 16 + lu, bv * 16 + lv, centre ? 91 : 92);
    if (in_u < 2 || in_v < 2 || in_u > STREET_U - 2 || in_v > STREET_V - 2
        || float(own & 0xff) > 255 * (0.35f + 0.9f * density))
        return {};
    const float house_u = lot_u * (0.46f + 0.34f * float(own >> 8 & 0xff) / 255);
    const float house_v = lot_v * (0.42f + 0.30f * float(own >> 16 & 0xff) / 255);
    const float from_u = in_u - 2 - float(lu) * lot_u - 1, from_v = in_v - 2 - float(lv) * lot_v - 1;
    if (from_u < 0 || from_v < 0 || from_u > house_u || from_v > house_v)
        return {};
    return { true, house_u > house_v ? from_v < house_v / 2 : from_u < house_u / 2, own };
}

static colour roof_colour(uint32_t kind, float density)
{
    static constexpr colour roofs[] = { { 158, 96, 74 }, { 142, 84, 66 }, { 170, 116, 88 }, { 112, 100, 94 },
        { 128, 74, 60 }, { 96, 92, 92 }, { 176, 128, 100 }, { 150, 92, 72 } };
    static constexpr colour flat_roofs[] = { { 168, 164, 158 }, { 140, 138, 136 }, { 196, 192, 186 }, { 152, 98, 78 } };
    return density > 0.62f ? flat_roofs[kind >> 24 & 3] : roofs[kind >> 24 & 7];
}

struct street_place {
    float u, v;
};

// Coordinates along the streets, which bend a little.
static street_place along_streets(const settlement &in, float x, float y, float shift)
{
    const float px = x + 18 * noise(x / 170, y / 170, 93) - in.x + shift;
    const float py = y + 18 * noise(x / 170, y / 170, 94) - in.y + shift;
    return { px * in.cosine + py * in.sine, py * in.cosine - px * in.sine };
}

bool house_stands(const settlement &in, float density, float x, float y)
{
    const street_place at = along_streets(in, x, y, 0);
    return house_at(at.u, at.v, density).roof;
}

colour town(const settlement &in, float density, float x, float y)
{
    static constexpr float shadow_length = 1.7f;
    const street_place at = along_streets(in, x, y, 0);
    const float street = std::min(std::fabs(at.u - STREET_U * std::round(at.u / STREET_U)),
                                  std::fabs(at.v - STREET_V * std::round(at.v / STREET_V)));

    const house_part house = house_at(at.u, at.v, density);
    if (house.roof)
        return brighten(roof_colour(house.kind, density), (house.lit ? 1.12f : 0.84f) + 0.1f * noise(x / 2, y / 2, 95));
    const float trees = noise(x / 4.5f, y / 4.5f, 96);
    colour ground = mix({ 112, 118, 78 }, { 150, 144, 134 }, smooth_step(0.35f, 0.8f, density));
    ground = trees > 0.16f ? woodland(x, y, 0.2f) : brighten(ground, 1 + 0.2f * noise(x / 3, y / 3, 97));
    if (street < STREET_HALF_WIDTH)
        ground = mix({ 150, 148, 144 }, ground, smooth_step(STREET_HALF_WIDTH - 0.8f, STREET_HALF_WIDTH, street));
    const street_place sunward = along_streets(in, x, y, -shadow_length);
    if (house_at(sunward.u, sunward.v, density).roof)
        ground = brighten(ground, 0.58f);
    return ground;
}
