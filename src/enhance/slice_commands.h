// slice_commands.h - the commands of the density slice. They change slice_colors and the screen; density_slice_to_3_bands alone
// makes pixels.
#pragma once

void density_slice_on();
void density_slice_off();
void define_density_slice();
void reset_density_slice();
void spectrum12_full();
void spectrum6_full();
void spectrum12_clip();
void spectrum6_clip();
void ramp12_full();
void ramp6_full();
void ramp12_clip();
void ramp6_clip();
void density_slice_to_3_bands();
void density_slice_color_edit();       // listed, without effect
void show_reserved();                  // the colour chart, to look at
