// paint.h - from bands to the pixels of a window.
#pragma once
#include <cstdint>

// Paints a rectangle of current_window; corners in any order, may reach one past the window. Pixels outside the image are not touched.
void paint_window(int x0, int y0, int x1, int y1);

typedef void (*paint_hook)(int x0, int y0, int x1, int y1);
void paint_hook_add(paint_hook hook);      // newest first
void paint_hook_remove(paint_hook hook);
int  paint_hook_present(paint_hook hook);

extern int32_t paint_interrupt;        // a click stops a long paint; 1 from start-up on
void paint_reset();                    // frees buffers, forgets hooks
