// histogram.h - the bands' histograms and look-up tables, and the window that shows them.
//
//   histogram.cpp         collection, and the histogram that follows from the look-up table
//   hist_tiles.cpp        collection over the tiles of a band that lives outside memory
//   hist_kernel.cpp       counting levels
//   lut_refresh.cpp       the screen after a change of look-up tables
//   hist_window.cpp       the histogram window and the source histogram window
//   hist_plot.cpp         how one histogram is drawn
//   hist_commands.cpp     the commands of collection and display
//   contrast_maps.cpp     the contrast operators as kernels
//   contrast_frame.cpp    what the contrast commands share: bands, ranges, fresh tables, redrawing
//   equalize.cpp, stretch.cpp, piecewise.cpp, scale_shift.cpp   the contrast commands
//
// hist_mapped[k] is the sum of hist_unmapped[v] over all v with lut[v] == k, whenever a command has ended.
// Counts are of sampled pixels: nothing rescales them.
#pragma once
#include <cstdint>

// --- collection ----------------------------------------------------------------------------------------------

// One band over an inclusive rectangle of held pixels, cut to the band, at the automatic or the set sampling increment.
void collect_band_hist(int band, int x0, int y0, int x1, int y1);
void collect_window_hists();           // the active window's bands over its hist_area
void map_hist(int32_t *mapped, const int16_t *lut, const int32_t *unmapped);  // mapped[lut[v]] += unmapped[v]
int  hist_sampling(int width, int height);  // the increment for a rectangle

// The tables of a band whose pixels have become 255 - pixel.
void reverse_band_hist(int32_t *mapped, int16_t *lut, int32_t *unmapped);

// --- look-up tables ------------------------------------------------------------------------------------------

// The pictures, and the overview of the active window, after its bands' look-up tables have changed. Afterwards current_window is -1
// where pictures had to be painted.
void refresh_after_lut();
void reload_lut(uint32_t mask);        // the colour tables of the pictures that show a band of the mask
void reset_lut(uint32_t mask);         // identity in the bands of the mask, then reload_lut; hist_mapped is the caller's to collect

// --- the histogram window --------------------------------------------------------------------------------------

// Redraws the part of the histogram window in the rectangle; a negative argument means all of it. Nothing without a window.
void draw_hist(int x0, int y0, int x1, int y1);

void open_hist_window();               // sets hist_window; linked to no picture, not drawn. Stays -1 when no window is free
void open_source_hist(int row);        // sets source_hist_window, beside plot `row` of the histogram window; closes an earlier one
void redraw_source_hist();             // what it shows; nothing without that window
void open_hist_in_new_session();       // for the session's first image, where auto_windows asks for it and the image has levels

void collect_hist_full();
void collect_hist_area();
void set_sampling_incr();
void reset_sampling_incr();
void reset_hist();
void toggle_hist();
void display_hist();
