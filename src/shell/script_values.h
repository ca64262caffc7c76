// script_values.h - values of the screen and the session as scripts name them.
#pragma once
#include "shell/script_player.h"
#include "shell/session.h"

int  script_field(const script_step &step, int word);    // a field of the strip, 1 to 4
// The pixel of "W X Y": its value as held (a slot, or 0xRRGGBB) and its colour. 0 after a failure.
int  script_pixel(const script_step &step, int word, uint32_t *value_out, uint32_t *rgb_out);
const band_rec *script_band(const script_step &step, int word);  // null after a failure; a band with pixels and tables
int  script_held_value(const band_rec &band, int x, int y);
bool script_window_counts(const win_rec &window);        // in use, and not the system's own
std::string script_colour(uint32_t rgb);                 // "#RRGGBB"
std::string script_upper(std::string text);
