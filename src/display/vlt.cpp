#include "display/vlt.h"

#include <algorithm>
#include <cmath>

#include "display/dither.h"
#include "display/vmap.h"
#include "enhance/slice_display.h"
#include "shell/session.h"

const uint8_t levels_for_planes[13] = { 0, 0, 0, 2, 2, 3, 4, 5, 6, 8, 10, 12, 16 };

vlt_entry vlt_entries[VLT_ENTRIES + 1];
int32_t   vlt_count;
vlt_entry tc_entries[256];
uint16_t  grey_slot[256];

static constexpr int NAMED_SLOTS = 15; // of the named colours, from the first vlt_program on

static int    vlt_cache_planes;        // what the dither tables were last built for
static double vlt_cache_gamma;

void vlt_init()
{
    gamma_default = 2.2;
    gamma_value = gamma_default;
    for (int i = 0; i < 256; i++)
        gamma_ref[i] = uint8_t(255 * std::pow(i / 255.0, 1 / 2.2) + 0.5);
    std::copy(gamma_ref, gamma_ref + 256, gamma_table);
    for (int i = 0; i <= VLT_ENTRIES; i++)
        vlt_entries[i] = vlt_grey(i, 0);
    vlt_count = 0;
    reserved_count = 0;
    mono_channel = 0;
    vlt_cache_planes = 0;
    vlt_cache_gamma = 0;
    vmap_use(0);
}

void vlt_forget()
{
    reserved_count = 0;
}

vlt_entry vlt_grey(int slot, int component)
{
    const uint16_t c = uint16_t(component);
    return { uint16_t(slot), c, c, c };
}

vlt_entry vlt_packed(int slot, uint32_t colour)
{
    return { uint16_t(slot), uint16_t((colour >> 16) * 256), uint16_t((colour >> 8 & 255) * 256), uint16_t((colour & 255) * 256) };
}

// --- dither --------------------------------------------------------------------------------------------------

// What painting dithers one-band images with: the levels of the grey ramp that 4, and 5 to 7 planes have.
static void hand_over_dither(int planes, int levels)
{
    static constexpr uint8_t four_planes[] = { 0, 2, 5, 7 };
    static constexpr int RAMP_TOP = 31, RAMP_BOTTOM = 15;
    dither_kind = (display_mode & COLOR) || start_planes > 7 ? DITHER_COLOUR : DITHER_MONO;
    if (dither_kind == DITHER_COLOUR)
        return;
    if (planes == 4) {
        std::copy(four_planes, four_planes + 4, grey_levels);
    } else {
        // All 16 grey slots above the first; a display of 7 planes dithers fewer levels, spread over the same ramp.
        for (int i = 0; i < levels; i++)
            grey_levels[i] = uint8_t(levels == 16 ? RAMP_BOTTOM + 1 + i : RAMP_BOTTOM + i * (RAMP_TOP - RAMP_BOTTOM) / (levels - 1));
    }
}

static void rebuild_dither(int working_planes, int levels, int planes)
{
    if (working_planes == vlt_cache_planes && gamma_value == vlt_cache_gamma)
        return;
    dither_build(gamma_value, levels);
    if (start_planes == 4 && planes == 4)
        fix_build();
    vlt_cache_planes = working_planes;
    vlt_cache_gamma = gamma_value;
    gamma_value = std::fabs(gamma_value);  // a negative one has had its effect, for this one rebuild
}

// --- tables that end the work early --------------------------------------------------------------------------

static int window_component(int band, int i, uint32_t shown)
{
    if (!(display_mode & shown))
        return 0;
    return gamma_table[band >= 0 && bands[band].lut ? lut_level(bands[band].lut, i) : i] * 256;
}

static void program_true_colour_window()
{
    const win_rec &view = windows[active_window];
    const bool colour = display_mode & COLOR;
    for (int i = 0; i < 256; i++) {
        tc_entries[i] = vlt_grey(i, i * 256);
        if (display_mode & STATIC_VLT)
            continue;
        tc_entries[i].red = uint16_t(window_component(view.red_band, i, RED_BAND_ON));
        tc_entries[i].green = uint16_t(window_component(colour ? view.green_band : view.red_band, i, GRN_BAND_ON));
        tc_entries[i].blue = uint16_t(window_component(colour ? view.blue_band : view.red_band, i, BLU_BAND_ON));
    }
    ws_write_window_vlt(screen_no, view.vlt_id, tc_entries, 256);
}

static void program_standard_colours()
{
    vmap_use(vmap_init());
    for (int i = 0; i < 16; i++)
        vlt_entries[i] = vlt_packed(i, standard_colours[i]);
    vlt_count = 16;
    ws_write_vlt(screen_no, vlt_entries, vlt_count);
}

// --- the whole -----------------------------------------------------------------------------------------------

static void black_out_hidden_bands()
{
    for (int i = 0; i < vlt_count; i++) {
        if (!(display_mode & RED_BAND_ON))
            vlt_entries[i].red = 0;
        if (!(display_mode & GRN_BAND_ON))
            vlt_entries[i].green = 0;
        if (!(display_mode & BLU_BAND_ON))
            vlt_entries[i].blue = 0;
    }
}

static void program_shared_table(int planes, int levels, int step)
{
    const bool colour = display_mode & COLOR, mixed = display_mode & MIXED_VLT;
    if (colour || mixed) {
        vlt_cube(levels, step, planes);
        black_out_hidden_bands();
    }
    if (!colour || mixed || (display_mode & INTENSITY_VIEW)) {
        vlt_ramp();
        if (!colour)
            for (int i = 0; i < reserved_count; i++)
                vlt_entries[i] = vlt_packed(i, named_colours[i]);
    }
    ws_write_vlt(screen_no, vlt_entries, vlt_count);
    slice_write_table();
}

void vlt_program()
{
    const bool colour = display_mode & COLOR;
    const int planes = num_planes;
    int working_planes = start_planes == 4 ? 6 : 12, step = 1;
    if (colour || start_planes > 5) {
        working_planes = planes;
        if (reserved_count == 0 && start_planes == 8) {
            working_planes = 9;        // the first table of all: 8 by 8 by 4 colours, no named ones
            step = 2;
        }
    }
    working_planes = std::clamp(working_planes, 3, 12);
    const int levels = levels_for_planes[working_planes];
    rebuild_dither(working_planes, levels, planes);
    hand_over_dither(planes, levels);
    vmap_use(0);

    if ((display_mode & TC) && active_window >= 0)
        program_true_colour_window();
    else if (colour && planes == 4)
        program_standard_colours();
    else
        program_shared_table(planes, levels, step);
    if (reserved_count == 0)
        reserved_count = NAMED_SLOTS;
}
