#include "display/dither.h"

#include <cmath>

#include "display/vlt.h"
#include "display/vmap.h"
#include "shell/session.h"

const int16_t dither_thresholds[DITHER_CELLS] = { 0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5 };

uint8_t  dither_table[DITHER_CELLS][256];
uint8_t  level_values[16];
uint16_t colour_map[512];
uint8_t  grey_levels[32];
dither_mode dither_kind = DITHER_COLOUR;

int dither_mono(int x, int y, int value)
{
    return grey_levels[dither_table[dither_cell(x, y)][value & 255]];
}

int dither_colour(int x, int y, int r, int g, int b)
{
    if (vmap_in_use())
        return vmap_slot(vmap_entry(r, g, b), dither_cell(x, y));
    const uint8_t *level = dither_table[dither_cell(x, y)];
    return colour_map[(level[r & 255] << 6) + (level[g & 255] << 3) + level[b & 255]];
}

int dither_level(double proportion, int levels, int threshold)
{
    const int q = int(proportion * ((levels - 1) * 16) + 0.5);
    if (q == 0)
        return 0;
    return (q - 1) / 16 + (((q - 1) & 15) >= threshold);
}

void dither_build(double gamma, int levels)
{
    const double exponent = gamma > 0 ? 1 / gamma : 1;
    for (int i = 0; i < levels; i++) {
        const int value = 255 * i / (levels - 1);
        level_values[i] = gamma > 0 ? uint8_t(value) : gamma_table[value];
    }
    for (int i = 0; i < 256; i++) {
        const double p = std::pow(i / 255.0, exponent);
        gamma_table[i] = uint8_t(255 * p + 0.5);
        for (int cell = 0; cell < DITHER_CELLS; cell++)
            dither_table[cell][i] = uint8_t(dither_level(p, levels, dither_thresholds[cell]));
    }
}
