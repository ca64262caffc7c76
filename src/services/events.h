// events.h - the queues of the event classes, for the files of the services that produce events. A class that is not enabled is
// never queued; the functions then do nothing. Window coordinates are those of the window's drawable area.
#pragma once
#include "services/ws.h"

bool event_enabled(uint32_t event_class);
uint32_t pending_events();             // ws_event_class bits of the queues that are not empty

// The button (0 to 2) of a window went down or came up; goes through the click logic.
void queue_button_change(int w, int x, int y, int button, bool down, uint32_t time);
void queue_reset(uint32_t time);       // Esc: a click of button 2 at window 0, position 0, 0
void queue_due_button(uint32_t now);   // a press that will be no click any more
int  button_due_in(uint32_t now);      // milliseconds until there may be one, or -1

void queue_key(int key_byte);
void queue_keyin(int length);
void queue_motion(int w, int x, int y, int kind, uint32_t buttons_down);
void queue_timer(int number);
void forget_timer(int number);         // takes its event out of the queue

enum motion_kind { MOTION_LEAVE = 0, MOTION_MOVE = 1 };
