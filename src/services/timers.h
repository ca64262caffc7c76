// timers.h - up to 32 timers, each of which queues a WS_TIMER event every time that its period has passed.
#pragma once
#include <cstdint>

void timers_run(uint32_t now);         // queues the events of all that ran out; a timer waits in the queue only once
int  timers_due_in(uint32_t now);      // milliseconds until the next runs out, or -1
void timers_stop_all();
