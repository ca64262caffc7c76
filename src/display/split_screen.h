// split_screen.h - two picture windows side by side, linked to each other.
//
// SPLIT_SCR is set while such a pair is meant to exist. Coupled halves pan and zoom together (refresh_view in geometry.h); with
// SPLIT_DECOUPLED they go their own ways. While windows change picture_count is raised by one, so that the colour table is
// not programmed for a single picture in between.
#pragma once

void split_on();                       // the active window moves to the left half
// Ends the split: current_window stays, its partner closes. `resize`: what stays takes the whole screen, its overview and the histogram
// window go back to their places. current_window is kept.
void split_off(bool resize);

void split_screen_enable();            // reads the second image
void split_screen_disable();           // asks which half to keep
void dual_screen_enable();
void split_screen_decouple();
void split_screen_couple();
void toggle_couple();

// A new image in place of the active half.
void split_screen_read_again();
