#include "enhance/contrast_frame.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "enhance/contrast_commands.h"
#include "enhance/hist_window.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/prompt.h"

int32_t recursion_enabled = 1;

void enable_recursion()
{
    recursion_enabled = 1;
}

void disable_recursion()
{
    recursion_enabled = 0;
}

// --- bands -------------------------------------------------------------------------------------------------------

int plot_of_choice(int choice)
{
    return choice >= CHOICE_RED && choice <= CHOICE_BLUE ? choice - CHOICE_RED : 0;
}

int bands_of_choice(int choice, int numbers_out[3])
{
    if (active_window < 0 || choice == CHOICE_NONE)
        return 0;
    const win_rec &view = windows[active_window];
    const int shown[3] = { view.red_band, view.green_band, view.blue_band };
    int count = 0;
    for (int plot = 0; plot < 3; plot++) {
        const int n = shown[plot];
        const bool wanted = choice == CHOICE_ALL || plot == plot_of_choice(choice);
        if (wanted && n >= 0 && bands[n].hist_mapped && std::find(numbers_out, numbers_out + count, n) == numbers_out + count)
            numbers_out[count++] = n;
    }
    return count;
}

static int choice_of_point()
{
    if (hist_window < 0 || pick_window != hist_window)
        return CHOICE_NONE;
    const int plot = hist_plot_at(pick_y);
    return plot < 0 ? CHOICE_ALL : CHOICE_RED + plot;
}

static int choice_of_keyin()
{
    switch (keyin_buffer[0]) {
    case 'a': case 'A': return CHOICE_ALL;
    case 'r': case 'R': return CHOICE_RED;
    case 'g': case 'G': return CHOICE_GREEN;
    case 'b': case 'B': return CHOICE_BLUE;
    default: return CHOICE_NONE;
    }
}

static int ask_band(const char *title, bool one_only)
{
    for (;;) {
        const int input = wait_for_answer(title, "Select histogram (point or keyin)", INPUT_POINT | INPUT_KEYIN);
        if (input & (INPUT_RESET | INPUT_QUIT))
            return CHOICE_NONE;
        const int choice = input == INPUT_POINT ? choice_of_point() : choice_of_keyin();
        if (!one_only || choice > CHOICE_ALL)
            return choice;
    }
}

static int select_among(const char *title, bool one_only)
{
    static constexpr const char *words[] = { "All bands selected", "Red band selected", "Green band selected", "Blue band selected" };
    if (!(display_mode & COLOR))
        return CHOICE_SINGLE;
    show_all_bands_banner();
    const int choice = ask_band(title, one_only);
    erase_all_bands_banner();
    if (choice != CHOICE_NONE)
        msg_put(MSG_STATUS, MSG_CENTRED, words[choice]);
    return choice;
}

int select_bands(const char *title)
{
    return select_among(title, false);
}

int select_one_band(const char *title)
{
    return select_among(title, true);
}

// --- prompts -----------------------------------------------------------------------------------------------------

int wait_for_answer(const char *title, const char *prompt, int wanted)
{
    int input;
    do
        input = prompt_input(title, prompt, PROMPT_KEYIN);
    while (!(input & (wanted | INPUT_RESET | INPUT_QUIT)));
    return input;
}

int keyin_level(int otherwise)
{
    int level;
    return sscanf(keyin_buffer, "%d", &level) == 1 ? level : otherwise;
}

static int ask_level(const char *title, const char *which, const char *end, int otherwise, int *level_out)
{
    char prompt[64];
    snprintf(prompt, sizeof prompt, "Select %s %s (0-255)", which, end);
    const int input = wait_for_answer(title, prompt, INPUT_POINT | INPUT_KEYIN);
    if (input & (INPUT_RESET | INPUT_QUIT))
        return 0;
    const int level = input == INPUT_KEYIN ? keyin_level(otherwise) : pick_window == hist_window ? hist_level_at(pick_x) : otherwise;
    *level_out = level_or(level, otherwise);
    return 1;
}

int ask_range(const char *title, const char *which, int *min, int *max)
{
    return ask_level(title, which, "minimum", 0, min) && ask_level(title, which, "maximum", 255, max);
}

// A key-in of which `format` reads nothing is asked for again.
static int ask_number(const char *title, const char *prompt, const char *format, void *value)
{
    while (wait_for_answer(title, prompt, INPUT_KEYIN) == INPUT_KEYIN) {
        if (sscanf(keyin_buffer, format, value) == 1)
            return 1;
        msg_put(MSG_STATUS, MSG_CENTRED, "that is not a number");
        beep(BEEP_ERROR);
    }
    return 0;
}

int ask_real(const char *title, const char *prompt, double *value)
{
    return ask_number(title, prompt, "%lf", value);
}

int ask_whole(const char *title, const char *prompt, int *value)
{
    return ask_number(title, prompt, "%d", value);
}

int slider_x()
{
    constexpr int LEFT = 5;
    return LEFT + (display_mode & SPLIT_SCR ? layout.right_hist_x : 0);
}

// --- words and pictures --------------------------------------------------------------------------------------------

void show_ranges(int choice, const level_ranges &r)
{
    static constexpr const char *whose[] = { "all: ", "red: ", "green: ", "blue: ", "" };
    char text[96];
    snprintf(text, sizeof text, "%sinput range %d-%d, output range %d-%d", whose[choice], r.in_min, r.in_max, r.out_min, r.out_max);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
}

void show_operator_change(int choice)
{
    if (choice == CHOICE_ALL)
        draw_hist(-1, -1, -1, -1);
    else
        draw_hist_plot(plot_of_choice(choice));
    window_set_changed(active_window, 1);
}

void clear_strip()
{
    for (const int field : { MSG_TITLE, MSG_STATUS, MSG_PROMPT, MSG_KEYIN })
        msg_clear(field);
}

// --- the frame -----------------------------------------------------------------------------------------------------

static void set_table(int n, const int16_t *lut)
{
    memcpy(bands[n].lut, lut, 256 * sizeof *lut);
    map_hist(bands[n].hist_mapped, bands[n].lut, bands[n].hist_unmapped);
}

void begin_fresh(saved_tables *saved)
{
    if (recursion_enabled)
        return;
    int16_t identity[256];
    for (int i = 0; i < 256; i++)
        identity[i] = int16_t(i);
    saved->count = bands_of_choice(display_mode & COLOR ? CHOICE_ALL : CHOICE_SINGLE, saved->bands);
    for (int i = 0; i < saved->count; i++) {
        memcpy(saved->lut[i], bands[saved->bands[i]].lut, sizeof saved->lut[i]);
        set_table(saved->bands[i], identity);
    }
    draw_hist(-1, -1, -1, -1);
}

void put_back(const saved_tables &saved)
{
    for (int i = 0; i < saved.count; i++)
        if (bands[saved.bands[i]].hist_mapped)
            set_table(saved.bands[i], saved.lut[i]);
    if (saved.count > 0)
        draw_hist(-1, -1, -1, -1);
}

void contrast_frame(const std::function<int(int first)> &pass)
{
    constexpr int PASSES_MAX = 3;
    if (active_window < 0)
        return;
    saved_tables saved;
    begin_fresh(&saved);
    if (hist_window < 0)
        display_hist();

    int done = 0;
    while (done < PASSES_MAX) {
        const int choice = pass(done == 0);
        if (choice == CHOICE_NONE)
            break;
        done++;
        if (choice == CHOICE_ALL || choice == CHOICE_SINGLE)
            break;
    }
    if (done > 0)
        refresh_after_lut();
    else
        put_back(saved);
    clear_strip();
}

void map_bands(int choice, const std::function<void(int32_t *hist, int16_t *lut)> &kernel)
{
    int numbers[3];
    const int count = bands_of_choice(choice, numbers);
    for (int i = 0; i < count; i++) {
        const band_rec &band = bands[numbers[i]];
        kernel(band.hist_mapped, band.lut);
        map_hist(band.hist_mapped, band.lut, band.hist_unmapped);
    }
}
