#include <algorithm>

#include "display/vlt.h"
#include "shell/session.h"

static constexpr int GREY_SLOTS_FIRST = 31, GREY_SLOTS_LAST = 254;   // 8 planes
static constexpr int RAMP_FIRST = 255;                               // 9 planes
static constexpr uint16_t WHITE_8 = 65280, WHITE = 65535;

// The look-up table that is folded into the colour table: that of the one picture there is. Null: none is.
static const int16_t *folded_lut(bool folds)
{
    if (!folds || picture_count != 1 || (display_mode & DEFINING_SLICE) || active_window < 0 || windows[active_window].red_band < 0)
        return nullptr;
    return bands[windows[active_window].red_band].lut;
}

static int ramp_component(const int16_t *lut, int i)
{
    return gamma_table[lut ? lut_level(lut, i) : i] * 256;
}

bool vlt_holds_grey_table()
{
    if (!(display_mode & IFB) || (display_mode & (COLOR | TC)))
        return false;
    return start_planes == 9 || !(display_mode & STATIC_VLT);
}

static void ramp_9_planes()
{
    const int16_t *const lut = folded_lut(true);
    for (int i = 0; i < 256; i++)
        vlt_entries[RAMP_FIRST + i] = vlt_grey(RAMP_FIRST + i, ramp_component(lut, i));
    vlt_count = 512;
}

static void ramp_8_planes()
{
    const int16_t *const lut = folded_lut(!(display_mode & STATIC_VLT));
    for (int i = 0; i < 256; i++)
        grey_slot[i] = uint16_t((i * 224 >> 8) + GREY_SLOTS_FIRST);
    vlt_entry *entry = vlt_entries + reserved_count;
    for (int slot = GREY_SLOTS_FIRST; slot <= GREY_SLOTS_LAST; slot++) {
        const int i = int(std::lower_bound(grey_slot, grey_slot + 256, uint16_t(slot)) - grey_slot);
        *entry++ = vlt_grey(slot, ramp_component(lut, i));
    }
    *entry = vlt_grey(255, WHITE_8);
    vlt_count = reserved_count + 225;
}

void vlt_ramp()
{
    const bool colour = (display_mode & COLOR) && !(display_mode & INTENSITY_VIEW);
    if (start_planes == 9) {
        ramp_9_planes();
    } else if (start_planes == 8) {
        if (!colour)
            ramp_8_planes();
    } else if (start_planes == 4) {
        vlt_entries[15] = vlt_grey(15, WHITE);
        vlt_count = 16;
    } else {
        for (int i = 0; i < 16; i++)
            vlt_entries[15 + i] = vlt_grey(15 + i, i * 4096);
        vlt_entries[31] = vlt_grey(31, WHITE);
        vlt_count = 32;
    }
}
