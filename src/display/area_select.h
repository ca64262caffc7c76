// area_select.h - a rectangle of a window by rubber band.
#pragma once

// 1 with the rectangle in window pixels of current_window, ordered; 0 when given up. With all four values given as non-negative the rectangle
// is known and the operator only confirms it.
int select_window_area(const char *title, int *x0, int *y0, int *x1, int *y1);
int rubber_band_init();                // the edge buffers; 0 without memory

