// hist_window.h - where things lie in the histogram windows, and what the contrast commands draw and point at there.
#pragma once
#include <cstdint>

struct plot_rows {
    int top, bottom;
};
plot_rows hist_plot_rows(int plot);    // 0 red, 1 green, 2 blue
int hist_plot_at(int y);               // the plot whose rows enclose y; -1 between plots
inline int hist_level_at(int x) { return x - 21; }  // one less than the bar's column, which is meant; may lie outside 0 to 255

void draw_hist_plot(int plot);         // columns PLOT_X to PLOT_RIGHT of that plot
void draw_source_hist(const int32_t *counts);  // in the source window; null: nothing is shown there any more

// "Select all bands" above the red plot. While it is shown draw_hist keeps it.
void show_all_bands_banner();
void erase_all_bands_banner();
