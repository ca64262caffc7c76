#include "shell/screen_planes.h"

#include "shell/session.h"

static int colour_table_planes(const ws_screen_info &screen)
{
    int planes = screen.planes;
    if (planes > 9)
        planes = 9;
    else if (screen.flags & WS_CAP_TOP)
        planes = 8;
    else if (planes == 6)
        planes = 5;
    if (planes == 9 && (screen.flags & WS_CAP_HIGHLIGHT))
        planes = 8;                    // the ninth is the highlight's
    return planes;
}

int choose_planes(const ws_screen_info &screen, plane_choice *choice_out)
{
    if (screen.planes < PLANES_LEAST)
        return 0;
    plane_choice choice {};
    if (screen.flags & WS_CAP_TRUECOLOUR) {
        choice.num_planes = 8;
        choice.plane_mask = ~uint32_t{0};
        choice.mode_bits = TC;
    } else {
        choice.num_planes = colour_table_planes(screen);
        choice.plane_mask = (uint32_t{1} << choice.num_planes) - 1;
        if (screen.planes >= 8 && screen.dac_bits >= 8)
            choice.mode_bits = IFB;
    }
    const uint32_t overlay = WS_CAP_OVERLAY | WS_CAP_HIGHLIGHT;
    choice.hardware_highlight = (screen.flags & overlay) == overlay;
    *choice_out = choice;
    return 1;
}
