// colour_commands.h - the commands that change the colour table, the planes and the bands in view.
#pragma once

void reset_vlt();
void linearize();                      // asks for the gamma
void test_gamma();                     // one view of the active image with the gamma in the table and not in the dither

void num_planes_command();             // "num_planes": asks how many planes images may take
void eight_planes();
void nine_planes();

void band_on();
void band_off();
void swap_red_green();
void swap_red_blue();
void swap_green_blue();
void red_to_mono();
void green_to_mono();
void blue_to_mono();
void mono_to_color();
