// histogram.h - collection of the bands' histograms and the histogram that follows from the look-up table.
#pragma once
#include <cstdint>

// One band over an inclusive rectangle of held pixels, at the automatic or the set sampling increment.
void collect_band_hist(int band, int x0, int y0, int x1, int y1);
void collect_window_hists();           // the active window's bands over its hist_area
void map_hist(int32_t *mapped, const int16_t *lut, const int32_t *unmapped);  // mapped[lut[v]] += unmapped[v]
int  hist_sampling(int width, int height);  // the increment for a rectangle

// Redraws the part of the histogram window in the rectangle; a negative argument means all of it. Nothing without a window.
void draw_hist(int x0, int y0, int x1, int y1);
