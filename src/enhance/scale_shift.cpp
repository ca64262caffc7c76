// scale_shift.cpp - scale and shift the shown levels. They compound always, whatever recursion says, which is meant.
#include <algorithm>
#include <cstdio>

#include "enhance/contrast_commands.h"
#include "enhance/contrast_frame.h"
#include "enhance/contrast_maps.h"
#include "enhance/hist_window.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/prompt.h"

static constexpr const char *whose[] = { "all histograms", "red histogram", "green histogram", "blue histogram", "histogram" };

static void show_result(int choice)
{
    show_operator_change(choice);
    refresh_after_lut();
}

// --- scale -----------------------------------------------------------------------------------------------------------

static int ask_intensity(const char *title, int *about)
{
    const int input = wait_for_answer(title, "Select intensity to scale about (0-255)", INPUT_POINT | INPUT_KEYIN);
    if (input & (INPUT_RESET | INPUT_QUIT))
        return 0;
    const int level = input == INPUT_KEYIN ? keyin_level(0) : pick_window == hist_window ? hist_level_at(pick_x) : 0;
    *about = std::clamp(level, 0, 255);
    return 1;
}

void scale_hist()
{
    constexpr const char *title = "Scale histogram";
    double factor = 1;
    int about = 0;
    if (active_window < 0)
        return;
    const int choice = select_bands(title);
    if (choice != CHOICE_NONE && ask_real(title, "Enter scale factor", &factor) && ask_intensity(title, &about)) {
        char text[400];
        snprintf(text, sizeof text, "Scaling %s by %f about %d", whose[choice], factor, about);
        msg_put(MSG_STATUS, MSG_CENTRED, text);
        map_bands(choice, [=](int32_t *hist, int16_t *lut) { scale_map(hist, lut, factor, about); });
        show_result(choice);
    }
    clear_strip();
}

// --- shift -----------------------------------------------------------------------------------------------------------

void shift_hist()
{
    constexpr const char *title = "Shift histogram";
    int amount = 0;
    if (active_window < 0)
        return;
    const int choice = select_bands(title);
    // Amounts beyond the bounds that the prompt names saturate, which is meant.
    if (choice != CHOICE_NONE && ask_whole(title, "Enter value between -128 and 128", &amount)) {
        char text[80];
        snprintf(text, sizeof text, "Shifting %s by %d", whose[choice], amount);
        msg_put(MSG_STATUS, MSG_CENTRED, text);
        map_bands(choice, [=](int32_t *hist, int16_t *lut) { shift_map(hist, lut, amount); });
        show_result(choice);
    }
    clear_strip();
}
