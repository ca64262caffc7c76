// paint.h - from bands to the pixels of a window.
#pragma once
#include <cstdint>

// Paints a rectangle of current_window; corners in any order, may reach one past the window. Pixels outside the image are not touched.
void paint_window(int x0, int y0, int x1, int y1);

// Source-to-window matrix of a picture window, row by row, as scan_prepare takes it: from held pixels of the red band.
// The window's centre is ((width - 1) / 2, (height - 1) / 2) here, half a pixel off that of geometry.h for even sizes, which is meant.
void view_matrix(int window, double matrix_out[16]);

// Grey of a row of three bands through their look-up tables: 0.3 r + 0.6 g + 0.1 b, rounded, at most 255.
void intensity_row(uint8_t *out, const uint8_t *const in[3], const int16_t *const luts[3], int count);

typedef void (*paint_hook)(int x0, int y0, int x1, int y1);
void paint_hook_add(paint_hook hook);      // newest first
void paint_hook_remove(paint_hook hook);
int  paint_hook_present(paint_hook hook);
void paint_hooks_run(int x0, int y0, int x1, int y1);  // a hook may add or remove hooks
void paint_hooks_forget();

extern int32_t paint_interrupt;        // a click stops a long paint; 1 from start-up on
void paint_reset();                    // frees buffers, forgets hooks
