// windows.h - the window table: what screen.cpp and popups.cpp need of windows.cpp.
#pragma once
#include "services/ws_state.h"

constexpr int WINDOW_SIDE_MAX = 32767;     // pixels; a window may be larger than the screen, not without limit
constexpr int WINDOW_PLACE_MAX = 1 << 20;  // and its corners stay within this of the frame's origin

void windows_start();                      // the frame is window 0
void windows_stop();

// Everything a record starts with; the slot is in use, not shown.
void window_reset(window_record &window, window_style style, const ws_rect &rect);
bool window_rect_valid(const ws_rect &rect);

// Gives the window its backing store, or the one of a new size. Pixels that are new take the background colour.
void window_shape(window_record &window);
void window_damage(const window_record &window);
pixel_format window_format(const window_record &window);
