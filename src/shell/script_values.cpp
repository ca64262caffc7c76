#include "shell/script_values.h"

#include <cctype>
#include <cstdio>

#include "services/screenshot.h"
#include "store/bands.h"

int script_field(const script_step &step, int word)
{
    static const char *const names[] = { "title", "status", "prompt", "keyin" };
    for (int field = MSG_TITLE; field <= MSG_KEYIN; field++)
        if (step.words[size_t(word)] == names[field - 1])
            return field;
    const int field = script_int(step, word);
    if (field >= MSG_TITLE && field <= MSG_KEYIN)
        return field;
    script_fail("a field of the strip, 1 to 4", step.words[size_t(word)]);
    return MSG_TITLE;
}

int script_pixel(const script_step &step, int word, uint32_t *value_out, uint32_t *rgb_out)
{
    const int w = script_window(step, word), x = script_int(step, word + 1), y = script_int(step, word + 2);
    if (w < 0)
        return 0;
    if (ws_window_pixel(w, x, y, value_out, rgb_out) == 0)
        return 1;
    script_fail("a pixel of window " + step.words[size_t(word)], "a point outside of it, or the window not shown");
    return 0;
}

const band_rec *script_band(const script_step &step, int word)
{
    const int n = script_int(step, word);
    const bool held = n >= 0 && n < BANDS && bands[n].data && bands[n].hist_mapped;
    if (!held)
        script_fail("band " + step.words[size_t(word)], "none with pixels");
    return held ? &bands[n] : nullptr;
}

int script_held_value(const band_rec &band, int x, int y)
{
    const uint8_t *row = band.data + int64_t{y} * band_row_bytes(&band);
    if ((band.format & KIND_MASK) != KIND_BIN)
        return row[x];
    const uint16_t *words = reinterpret_cast<const uint16_t *>(row);
    return words[x / 16] >> (15 - x % 16) & 1;
}

bool script_window_counts(const win_rec &window)
{
    return window.flags != 0 && !(window.flags & RESERVED_WIN);
}

std::string script_colour(uint32_t rgb)
{
    char text[8];
    std::snprintf(text, sizeof text, "#%06X", unsigned(rgb & 0xFFFFFF));
    return text;
}

std::string script_upper(std::string text)
{
    for (char &c : text)
        c = char(std::toupper(uint8_t(c)));
    return text;
}
