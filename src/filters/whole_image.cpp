#include "filters/whole_image.h"

#include <algorithm>
#include <cstdio>

#include "display/vlt.h"
#include "shell/session.h"

bool colour_in_view()
{
    return (display_mode & COLOR) && mono_channel == 0;
}

static void add_band(band_set &set, int n)
{
    if (n >= 0 && std::find(set.number, set.number + set.count, n) == set.number + set.count)
        set.number[set.count++] = n;
}

band_set bands_of_window(int w)
{
    band_set set = {};
    add_band(set, windows[w].red_band);
    add_band(set, windows[w].green_band);
    add_band(set, windows[w].blue_band);
    return set;
}

band_set all_bands()
{
    return active_window < 0 ? band_set{} : bands_of_window(active_window);
}

band_set bands_in_view()
{
    band_set set = all_bands();
    if (!colour_in_view())
        set.count = std::min(set.count, 1);
    return set;
}

uint32_t mask_of(const band_set &set)
{
    uint32_t mask = 0;
    for (int i = 0; i < set.count; i++)
        mask |= uint32_t{1} << set.number[i];
    return mask;
}

bool can_be_worked_on(const band_set &set)
{
    for (int i = 0; i < set.count; i++) {
        const band_rec &band = bands[set.number[i]];
        if (band.alloc_bytes == 0 || !band.data || (band.format & KIND_TILED) || (band.format & KIND_MASK) == KIND_BIN) {
            fail("The image has no levels in memory to work on");
            return false;
        }
    }
    return set.count > 0;
}

void show_processing(int band, int field)
{
    char text[BAND_LABEL_SIZE + 20];
    snprintf(text, sizeof text, "Processing %.23s...", bands[band].label);
    msg_put(field, MSG_CENTRED, text);
}

void fail(const char *words)
{
    msg_put(MSG_STATUS, MSG_CENTRED, words);
    beep(BEEP_ERROR);
}

void begin_command(const char *title)
{
    msg_put(MSG_TITLE, MSG_CENTRED, title);
    msg_clear(MSG_STATUS);
    msg_clear(MSG_PROMPT);
    msg_clear(MSG_KEYIN);
}
