// pump.h - the one place that takes input from the backend and gives it to whom it belongs: the services' own report box, the
// open menu, the menu bar, the frames of windows, the key-in line, and then the event queues.
#pragma once
#include "services/ws_state.h"

void pump_start();
void pump();                           // takes all that has come, and does what is due by the clock
int  pump_due_in();                    // milliseconds until something is due without any input, or -1

void pump_forget_window(int w);
void pump_keys_to_forms();             // who opens last gets the keyboard: forms by WS_KEY,
void pump_keys_to_line();              // or the key-in line

// Commands that follow the pointer ask for it again and again. The second question in a row, with no event between,
// waits a moment for input, so that such a loop leaves the processor alone (and a script gets its turn).
void pump_pointer_asked();
void pump_event_read();

// A point of the frame in the coordinates of window w: 0 is the open pop-up, or else the frame.
void window_point(int w, int frame_x, int frame_y, int *x_out, int *y_out);
