#include <algorithm>
#include <cstring>

#include "display/vlt.h"
#include "store/bands.h"

namespace {

uint16_t out_tables[3][256];

bool is_identity(const int16_t *lut)
{
    for (int i = 0; i < 256; i++)
        if (lut[i] != i)
            return false;
    return true;
}

int level(int16_t value)
{
    return std::clamp<int>(value, 0, 255);
}

// The inverse of the display gamma: what the operator sees becomes the levels written. 0 when the gamma changes nothing.
int invert_gamma(uint8_t t[256])
{
    bool linear = true;
    for (int i = 0; i < 256; i++)
        linear = linear && gamma_table[i] == i;
    if (linear)
        return 0;
    memset(t, 255, 256);
    for (int i = 0; i < 256; i++)
        t[gamma_table[i]] = uint8_t(i);
    t[0] = 0;
    for (int i = 254; i >= 1; i--)
        if (t[i] > 254)
            t[i] = t[i + 1];
    return 1;
}

} // namespace

void output_tables(int undo_gamma, const int16_t *red_lut, const int16_t *green_lut, const int16_t *blue_lut,
                   const uint16_t **r_out, const uint16_t **g_out, const uint16_t **b_out)
{
    const int16_t *const luts[3] = { red_lut, green_lut, blue_lut };
    const uint16_t **const outs[3] = { r_out, g_out, b_out };
    uint8_t t[256];
    for (int i = 0; i < 256; i++)
        t[i] = uint8_t(i);
    if (undo_gamma)
        undo_gamma = invert_gamma(t);

    const bool full_range = fwrite_min == 0 && fwrite_max == 255;
    if (full_range && !undo_gamma) {
        const bool plain = is_identity(red_lut) && is_identity(green_lut) && is_identity(blue_lut);
        for (int c = 0; c < 3; c++)
            *outs[c] = plain ? nullptr : (const uint16_t *)luts[c];
        return;
    }
    // With a narrowed range entry 255 keeps what an earlier call left there: that is meant.
    const int last = full_range ? 255 : 254;
    for (int c = 0; c < 3; c++) {
        for (int i = 0; i <= last; i++) {
            const int value = t[level(luts[c][i])];
            out_tables[c][i] = uint16_t(full_range ? value : fwrite_min + value * (fwrite_max - fwrite_min + 1) / 256);
        }
        *outs[c] = out_tables[c];
    }
}
