// hist_plot.h - one histogram as bars over an axis, with its label and slice strip. Coordinates are pixels of the histogram window.
//
//      top            a bar of full height reaches the row below it
//      baseline       top + H + 1; bars stand on it, the axis is drawn over their feet
//      bottom         baseline + 10
//
// H is layout.hist_graph_height. Colours are slots; a true colour window gets the colours that these slots have by name.
#pragma once
#include <cstdint>

constexpr int PLOT_X = 20, PLOT_RIGHT = 283;   // columns of a plot; level v stands at PLOT_X + v

int plot_baseline(int plot_bottom);
int plot_ink(int slot);                // a slot as ws_set_foreground takes it in the histogram windows

// Height of each bar: 0 none, above `highest` one that does not fit. The scale makes the largest count between the first and the last
// occupied level `highest` pixels high; these two do not count, so that saturated ends do not flatten the rest. Heights are ceil(x - 0.5).
void bar_heights(const int32_t *counts, int highest, int heights_out[256]);

void plot_bars(int window, int baseline, const int32_t *counts, int ink);
void plot_axis(int window, int baseline);
void plot_label(int window, int baseline, const char *label);   // turned, in columns 2 to 19, its lower end at the baseline
void plot_slice_strip(int window, int baseline, const int16_t *slice_colors, const int16_t *lut);  // lut null: by held level
