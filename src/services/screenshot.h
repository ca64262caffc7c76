// screenshot.h - what is on the screen, for session scripts and tests.
#pragma once
#include <cstdint>

// Writes a PNG file: the whole picture with menu bar and decorations for w = -1, else the drawable area of window w as it is in
// the window, covered or not. 0; or -1, no file left behind, when it cannot be written.
int ws_screenshot(const char *host_file, int w);

// The pixel of a shown window: the value it holds (a slot or 0xRRGGBB) and the colour it shows as, 0xRRGGBB.
// -1 for a point outside and for a window that is not shown or is collapsed. Either result may be null.
int ws_window_pixel(int w, int x, int y, uint32_t *value_out, uint32_t *rgb_out);
