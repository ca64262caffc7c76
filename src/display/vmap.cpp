// The map has one entry for each 5-bit colour. An entry names a group of four standard colours, the corners of a tetrahedron in
// the colour solid, and how many of the 16 pixels of a cell each of them gets: number of the group * 969 + number of the split.
// There are 969 ways to split 16 pixels among four colours (19 choose 3).
#include "display/vmap.h"

#include <algorithm>
#include <cmath>

#include "display/dither.h"
#include "mem.h"
#include "services/ws.h"

// Where forms and graphics take a slot for a named colour, the named colour stands there (slots 0, 1, 2, 4 to 10 and 15).
const uint32_t standard_colours[16] = {
    0x000000, 0xEEEEEE, 0x888888, 0x00FFFF, 0xFFFF00, 0xAAAAAA, 0x555555, 0xFFFFFF,
    0xFF0000, 0x00FF00, 0x0000FF, 0xFF00FF, 0x880000, 0x008800, 0x000088, 0xFFFFFF,
};

enum standard_slot : uint8_t { BLACK = 0, SILVER = 1, GREY = 2, CYAN = 3, YELLOW = 4, LIGHT = 5, DARK = 6, RED = 8, GREEN = 9, BLUE = 10,
                               MAGENTA = 11, DEEP_RED = 12, DEEP_GREEN = 13, DEEP_BLUE = 14, WHITE = 15 };

const uint8_t vmap_groups[VMAP_GROUPS][4] = {
    // Greys.
    { BLACK, DARK, LIGHT, WHITE },
    // Between neighbouring pure hues: towards white, about the middle, towards black.
    { RED, YELLOW, LIGHT, WHITE },   { YELLOW, GREEN, LIGHT, WHITE }, { GREEN, CYAN, LIGHT, WHITE },
    { CYAN, BLUE, LIGHT, WHITE },    { BLUE, MAGENTA, LIGHT, WHITE }, { MAGENTA, RED, LIGHT, WHITE },
    { RED, YELLOW, DARK, LIGHT },    { YELLOW, GREEN, DARK, LIGHT },  { GREEN, CYAN, DARK, LIGHT },
    { CYAN, BLUE, DARK, LIGHT },     { BLUE, MAGENTA, DARK, LIGHT },  { MAGENTA, RED, DARK, LIGHT },
    { RED, YELLOW, BLACK, DARK },    { YELLOW, GREEN, BLACK, DARK },  { GREEN, CYAN, BLACK, DARK },
    { CYAN, BLUE, BLACK, DARK },     { BLUE, MAGENTA, BLACK, DARK },  { MAGENTA, RED, BLACK, DARK },
    // Between deep hues, where shadows lie.
    { DEEP_RED, DEEP_GREEN, BLACK, GREY }, { DEEP_GREEN, DEEP_BLUE, BLACK, GREY }, { DEEP_BLUE, DEEP_RED, BLACK, GREY },
    // From a deep hue to its pure one.
    { DEEP_RED, RED, GREY, YELLOW },   { DEEP_RED, RED, GREY, MAGENTA },
    { DEEP_GREEN, GREEN, GREY, YELLOW }, { DEEP_GREEN, GREEN, GREY, CYAN },
    { DEEP_BLUE, BLUE, GREY, CYAN },   { DEEP_BLUE, BLUE, GREY, MAGENTA },
};

static constexpr int SPLITS = 969, CELL_PIXELS = 16;
static constexpr int MAP_ENTRIES = 32 * 32 * 32;

static uint16_t *map;
static uint8_t split_counts[SPLITS][4];
static uint16_t split_number[CELL_PIXELS + 1][CELL_PIXELS + 1][CELL_PIXELS + 1];  // by the first three counts
static int in_use;

struct rgb {
    double r, g, b;
};

static rgb standard(int slot)
{
    const uint32_t c = standard_colours[slot];
    return { double(c >> 16 & 255), double(c >> 8 & 255), double(c & 255) };
}

static rgb minus(const rgb &x, const rgb &y) { return { x.r - y.r, x.g - y.g, x.b - y.b }; }
static double dot(const rgb &x, const rgb &y) { return x.r * y.r + x.g * y.g + x.b * y.b; }
static rgb cross(const rgb &x, const rgb &y) { return { x.g * y.b - x.b * y.g, x.b * y.r - x.r * y.b, x.r * y.g - x.g * y.r }; }

// The weights of the four colours of a group that mix to a colour, those outside the group drawn in to its border.
static void mixing_weights(const uint8_t *group, const rgb &colour, double weights[4])
{
    const rgb base = standard(group[3]), p = minus(colour, base);
    const rgb x = minus(standard(group[0]), base), y = minus(standard(group[1]), base), z = minus(standard(group[2]), base);
    const double volume = dot(x, cross(y, z));
    if (volume == 0) {                 // the greys: by brightness between the two that enclose it
        const double grey = (colour.r + colour.g + colour.b) / 3;
        std::fill(weights, weights + 4, 0.0);
        int k = 0;
        while (k < 2 && grey > standard(group[k + 1]).r)
            k++;
        const double low = standard(group[k]).r, high = standard(group[k + 1]).r;
        weights[k + 1] = (grey - low) / (high - low);
        weights[k] = 1 - weights[k + 1];
        return;
    }
    weights[0] = dot(p, cross(y, z)) / volume;
    weights[1] = dot(x, cross(p, z)) / volume;
    weights[2] = dot(x, cross(y, p)) / volume;
    weights[3] = 1 - weights[0] - weights[1] - weights[2];
    double sum = 0;
    for (int k = 0; k < 4; k++)
        sum += weights[k] = std::max(weights[k], 0.0);
    for (int k = 0; k < 4; k++)
        weights[k] /= sum;
}

// Whole pixels that come closest to the weights and add up to 16: the largest remainders are rounded up.
static void pixel_counts(const double weights[4], int counts[4])
{
    double remainder[4];
    int left = CELL_PIXELS;
    for (int k = 0; k < 4; k++) {
        counts[k] = int(weights[k] * CELL_PIXELS);
        remainder[k] = weights[k] * CELL_PIXELS - counts[k];
        left -= counts[k];
    }
    for (; left > 0; left--) {
        double *const most = std::max_element(remainder, remainder + 4);
        counts[most - remainder]++;
        *most = -1;
    }
}

// How bad a mixture looks: its distance from the colour, and a little of how far apart the mixed colours are.
static double mixture_cost(const uint8_t *group, const int counts[4], const rgb &colour)
{
    static constexpr double COARSENESS = 0.03;
    rgb mean { 0, 0, 0 };
    double spread = 0;
    for (int k = 0; k < 4; k++) {
        const rgb c = standard(group[k]), off = minus(c, colour);
        const double share = counts[k] / double(CELL_PIXELS);
        mean.r += c.r * share, mean.g += c.g * share, mean.b += c.b * share;
        spread += dot(off, off) * share;
    }
    const rgb error = minus(mean, colour);
    return dot(error, error) + COARSENESS * spread;
}

static uint16_t best_entry(const rgb &colour)
{
    const int groups = colour.r == colour.g && colour.g == colour.b ? 1 : VMAP_GROUPS;  // greys are mixed of greys alone
    double least = INFINITY;
    int entry = 0;
    for (int g = 0; g < groups; g++) {
        double weights[4];
        int counts[4];
        mixing_weights(vmap_groups[g], colour, weights);
        pixel_counts(weights, counts);
        const double cost = mixture_cost(vmap_groups[g], counts, colour);
        if (cost < least) {
            least = cost;
            entry = g * SPLITS + split_number[counts[0]][counts[1]][counts[2]];
        }
    }
    return uint16_t(entry);
}

static void number_splits()
{
    int number = 0;
    for (int i = 0; i <= CELL_PIXELS; i++)
        for (int j = 0; i + j <= CELL_PIXELS; j++)
            for (int k = 0; i + j + k <= CELL_PIXELS; k++, number++) {
                split_number[i][j][k] = uint16_t(number);
                const int counts[4] = { i, j, k, CELL_PIXELS - i - j - k };
                std::copy(counts, counts + 4, split_counts[number]);
            }
}

int vmap_init()
{
    if (map)
        return 1;
    map = static_cast<uint16_t *>(mem_alloc(MAP_ENTRIES * sizeof *map));
    if (!map) {
        report(REPORT_WARNING, "init_vmap: out of memory\n");
        return 0;
    }
    number_splits();
    const auto full = [](int five_bits) { return five_bits * 255 / 31.0; };
    for (int i = 0; i < MAP_ENTRIES; i++)
        map[i] = best_entry({ full(i >> 10), full(i >> 5 & 31), full(i & 31) });
    return 1;
}

void vmap_use(int on)
{
    in_use = on && map;
}

int vmap_in_use()
{
    return in_use;
}

void vmap_free()
{
    mem_free(map);
    map = nullptr;
    in_use = 0;
}

uint16_t vmap_entry(int r, int g, int b)
{
    return vmap_entry_of_key((r >> 3 & 31) << 10 | (g >> 3 & 31) << 5 | (b >> 3 & 31));
}

uint16_t vmap_entry_of_key(int key)
{
    return map[key & (MAP_ENTRIES - 1)];
}

int vmap_slot(uint16_t entry, int cell)
{
    const uint8_t *const group = vmap_groups[entry / SPLITS], *const counts = split_counts[entry % SPLITS];
    int rank = dither_thresholds[cell], k = 0;
    while (k < 3 && rank >= counts[k])
        rank -= counts[k++];
    return group[k];
}
