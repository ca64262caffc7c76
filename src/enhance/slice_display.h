// slice_display.h - how density slices come to the screen: through the colour table where every held level has a slot of its own,
// painted where several windows share the slots.
//
//   slice_map.cpp        levels to colours, as kernels
//   slice_display.cpp    the colour table, the painting of sliced windows, turning a slice on and off
//   slice_chart.cpp      the colour chart
//   slice_commands.cpp   on, off, reset, the spreads over a range
//   slice_define.cpp     the defining loop
//   slice_to_bands.cpp   a slice as a new colour image
#pragma once
#include <cstdint>

extern int32_t slicing_band;           // what the running command works on, -1

// Density slices need a colour table of eight planes or more; where there is none field 2 says so and the answer is 0.
int slice_display_ready();

int  slice_on(int band);               // in the active window; 0 when it does not show the band
void slice_off();                      // in the active window; closes the chart
void slice_paint(int w);               // a sliced window with its present colours; nothing for one without a slice
void slice_paint_all();

// 0xRRGGBB of a colour index: a named colour, or what the colour table holds there.
uint32_t slice_rgb(int index);
// 1 when the named colours above the reserved ones have slots under their own numbers: grey sessions leave these slots free.
int slice_colours_have_slots();
// The slot to draw a colour with at a place: its own, or one of the images' that dithers to it.
int slice_slot(int colour, int x, int y);

// Assigns a colour to levels of slicing_band and shows that in the window and under the histogram.
void slice_apply_range(int colour, int low, int high);

// Writes the slices into the colour table, over what vlt_program has put there, or paints them again where they are painted. Nothing
// without a slice.
void slice_write_table();
void slice_refresh();                  // the sliced windows after a change of look-up tables
