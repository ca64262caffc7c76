// How many planes images take on a display of 8 or 9 planes: fewer planes leave slots to other windows.
#include <algorithm>
#include <cstdio>

#include "display/colour_commands.h"
#include "display/picture_windows.h"
#include "display/vlt.h"
#include "forms/forms.h"
#include "shell/session.h"

static constexpr int FEWEST = 3;

// Programs the colour table for num_planes and paints all pictures again.
static void show_planes()
{
    msg_put(MSG_STATUS, MSG_CENTRED, "Patience...");
    clear_all_pictures();
    vlt_program();
    paint_all_pictures();
}

static int shades_for(int planes)
{
    return planes == 9 ? 8 : planes == FEWEST ? 2 : planes - 2;
}

void num_planes_command()
{
    static constexpr int SLIDER_LENGTH = 200;
    if (!(display_mode & IFB) || active_window < 0)
        return;
    double wanted = num_planes;
    if (value_slider_dialog(windows[active_window].x, windows[active_window].y, FEWEST, start_planes, &wanted, SLIDER_LENGTH, 1,
                            "Select number of planes", "# Planes", "N plane display", "Select number of planes")) {
        num_planes = std::clamp(int(wanted), FEWEST, std::max(int(start_planes), FEWEST));
        if (num_planes == 9)
            display_mode &= ~uint32_t{MIXED_VLT};
        show_planes();
        const int shades = shades_for(num_planes);
        char text[80];
        std::snprintf(text, sizeof text, "%d planes -- %d shades -- %d colors", num_planes, shades, shades * shades * shades);
        msg_put(MSG_STATUS, MSG_CENTRED, text);
    }
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

void eight_planes()
{
    if (!(display_mode & IFB))
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Eight plane display");
    num_planes = 8;
    display_mode |= MIXED_VLT;
    show_planes();
    msg_clear(MSG_TITLE);
    msg_clear(MSG_STATUS);
}

void nine_planes()
{
    if (start_planes <= 8)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Nine plane display");
    num_planes = 9;
    display_mode &= ~uint32_t{MIXED_VLT};
    show_planes();
    msg_clear(MSG_TITLE);
    msg_clear(MSG_STATUS);
}
