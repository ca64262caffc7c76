// whole_image.h - private to the room: what the commands over whole images share.
#pragma once
#include <cstdint>

#include "services/ws.h"

// The bands that a command works on, each once.
struct band_set {
    int count;
    int number[3];
};
bool colour_in_view();                 // a colour image, not shown as one of its bands
band_set bands_of_window(int w);
band_set all_bands();                  // of the active window; empty without one
band_set bands_in_view();              // red alone, or all three of a colour image in view
uint32_t mask_of(const band_set &set);

// Whether every band holds bytes in memory, one a pixel; the operator is told when not, and of an empty set nothing.
bool can_be_worked_on(const band_set &set);

void show_processing(int band, int field = MSG_STATUS);  // "Processing %s..." with its label
void fail(const char *words);          // in the status field, with a beep
void begin_command(const char *title); // title; the other fields are cleared
