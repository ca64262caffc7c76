// tune_panel.h - the panel of `tune`: a thumbnail, and for each band a pad whose cross is brightness (x) and contrast (y).
//
//   tune_map.cpp    the brightness curve
//   thumbnail.cpp   the whole image in a small square
//   tune_panel.cpp  the panel: drawing, the pointer, the trial tables
//   tune.cpp        the command: display state before and after, accepting
#pragma once
#include <cstdint>

constexpr int TUNE_BANDS = 3;          // red, green, blue; one band uses red only

// What the operator tries on one band. The band's own tables are read and never written by the panel.
struct tune_band {
    int band;                          // number
    int brightness_x, contrast_y;      // the cross: 0 to 127, 0 to 80
    int dirty;                         // moved since the last update
    int32_t tune_hist[256];
    int16_t tune_lut[256];
};

struct tune_state {
    int colour;                        // three bands with a pad each
    tune_band bands[TUNE_BANDS];
    const uint8_t *planes[TUNE_BANDS]; // the thumbnail's held levels
    int grabbed;                       // the pad that is being dragged, -1 none
    int grabbed_pad;                   // whose place counts: the pad under the press
    int grab_x_locked, grab_y_locked;  // a coordinate keeps its value during the drag
};

constexpr int CROSS_X_MAX = 127, CROSS_Y_MAX = 80, CROSS_X_START = 63, CROSS_Y_START = 64;

// The trial tables of one band, from its accepted ones: moves do not compound.
void tune_update_band(tune_band *b);

// Runs the panel: 1 accepted, with the trial tables up to date; 0 cancelled, or without memory.
int tune_panel_run(tune_state *state);
