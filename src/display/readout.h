// readout.h - the pointer's position and the pixel under it, shown in message field 2 while nothing else happens.
#pragma once

int  pointer_changed(int *x, int *y);  // 1 when the pointer moved within a window; 0 when an event is pending
void show_pixel_readout();
void show_position_readout();

void show_intensity();                 // "In&tensity": the pixel under the pointer until something happens
