// screen_planes.h - how many image planes a display gives the session, and in which display mode.
#pragma once
#include <cstdint>

#include "services/ws.h"

constexpr int PLANES_LEAST = 4;        // displays with fewer are refused

struct plane_choice {
    int num_planes;                    // 4, 5, 7, 8 or 9; 8 on true colour
    uint32_t plane_mask;               // all ones on true colour
    uint32_t mode_bits;                // TC or IFB, to be set in display_mode
    int hardware_highlight;            // a plane of its own for graphics
};

// 1; or 0, with nothing written, for a display with too few planes.
int choose_planes(const ws_screen_info &screen, plane_choice *choice_out);
