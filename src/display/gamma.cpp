#include <algorithm>

#include "display/colour_commands.h"
#include "display/paint.h"
#include "display/picture_windows.h"
#include "display/vlt.h"
#include "forms/forms.h"
#include "shell/session.h"

double  gamma_value = 2.2, gamma_default = 2.2;
uint8_t gamma_ref[256], gamma_table[256];
uint8_t fix[256];

// fix[v] is the level whose gamma_table value comes closest to what gamma_ref gives for v.
void fix_build()
{
    static constexpr uint8_t HOLE = 255;
    std::fill(fix, fix + 256, HOLE);
    for (int i = 0; i < 256; i++)
        fix[std::clamp(gamma_ref[i] - gamma_table[i] + i, 0, 255)] = uint8_t(i);
    fix[0] = 0;
    for (int i = 254; i >= 1; i--)
        if (fix[i] == HOLE)
            fix[i] = fix[i + 1];
}

void gamma_apply()
{
    gamma_value = std::clamp(gamma_value, 1.0, gamma_default);
    if (!(display_mode & TC) || (display_mode & STATIC_VLT)) {
        vlt_program();
        return;
    }
    const int32_t active = active_window;
    for (int w = 0; w < WINDOWS; w++)
        if (is_picture(w)) {
            active_window = w;
            vlt_program();
            windows[w].changed = 1;    // the table is part of its look
        }
    const uint32_t mode = display_mode;
    active_window = -1;
    display_mode &= ~uint32_t{COLOR};
    vlt_program();
    display_mode = mode;
    active_window = active;
}

// --- commands ------------------------------------------------------------------------------------------------

void reset_vlt()
{
    msg_put(MSG_TITLE, MSG_CENTRED, "Reset VLT");
    vlt_program();
    msg_clear(MSG_TITLE);
}

void linearize()
{
    static constexpr int CENTRED = -1, SLIDER_LENGTH = 200;
    double wanted = gamma_value;
    if (value_slider_dialog(CENTRED, CENTRED, 1.0, gamma_default, &wanted, SLIDER_LENGTH, 0, "Gamma", "gamma on", "Linearize display",
                            "Select gamma")
        && wanted != gamma_value) {
        gamma_value = wanted;
        gamma_apply();
        clear_all_pictures();
        vlt_program();
        paint_all_pictures();
    }
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

void test_gamma()
{
    gamma_value = -gamma_value;
    vlt_program();
    if (active_window < 0)
        return;
    current_window = active_window;
    paint_window(0, 0, windows[active_window].width, windows[active_window].height);
}
