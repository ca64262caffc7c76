#include "services/timers.h"
#include "services/events.h"
#include "services/ws.h"

#include <algorithm>

static constexpr int TIMERS = 32;
static constexpr int PERIODS_A_SECOND = 60;

struct timer_record {
    bool running;
    int period;                        // sixtieths of a second
    uint32_t start;                    // milliseconds
    int64_t runs;                      // how often it has run out
};

static timer_record timers[TIMERS];

// Counted from the start, so that periods which are no whole milliseconds do not drift.
static uint32_t due_time(const timer_record &timer)
{
    return timer.start + uint32_t((timer.runs + 1) * timer.period * 1000 / PERIODS_A_SECOND);
}

int ws_timer_start(int period, int *number_out)
{
    for (int n = 0; n < TIMERS; n++) {
        if (!timers[n].running) {
            timers[n] = { true, period > 0 ? period : 1, ws_now(), 0 };
            *number_out = n;
            return 0;
        }
    }
    return -1;
}

int ws_timer_stop(int number)
{
    if (number < 0 || number >= TIMERS || !timers[number].running)
        return -1;
    timers[number].running = false;
    forget_timer(number);
    return 0;
}

void timers_run(uint32_t now)
{
    for (int n = 0; n < TIMERS; n++) {
        timer_record &timer = timers[n];
        if (!timer.running || int32_t(now - due_time(timer)) < 0)
            continue;
        queue_timer(n);
        // After a long wait in a command the missed periods are left out.
        const int64_t elapsed = uint32_t(now - timer.start);
        timer.runs = std::max(timer.runs + 1, elapsed * PERIODS_A_SECOND / (int64_t{timer.period} * 1000));
    }
}

int timers_due_in(uint32_t now)
{
    int soonest = -1;
    for (const timer_record &timer : timers) {
        if (!timer.running)
            continue;
        const int32_t left = int32_t(due_time(timer) - now);
        const int wait = left > 0 ? left : 0;
        if (soonest < 0 || wait < soonest)
            soonest = wait;
    }
    return soonest;
}

void timers_stop_all()
{
    for (timer_record &timer : timers)
        timer.running = false;
}
