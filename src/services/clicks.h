// clicks.h - turns presses and releases of the pointer's buttons into presses, releases, clicks and double clicks. It holds one
// event back: a press may still become a click. Times are milliseconds of a clock that may wrap around; nothing here
// reads a clock, so the caller says what time it is.
#pragma once
#include <cstdint>

struct click_event {
    int window, x, y, button;          // button 0 to 2
    int transition;                    // ws_transition
    uint32_t time;                     // of the press that began it
};

enum click_mode {
    CLICKS_SINGLE = 1,                 // a click is reported at once, so two quick ones are two clicks
    CLICKS_MULTIPLE = 2,               // a click may still become a double click, and that a triple one
};

struct click_state {
    bool holding;
    click_event held;
    uint32_t changed;                  // when the held event last changed
    int last_reported[3];              // transition, a button
};

// The button of `now` went down, or came up, in `now.window` at `now.time`; its transition is not looked at. What is to be reported,
// oldest first, goes to `out`: none, one or two events, whose count is the answer. A release whose press was never
// reported is dropped.
int clicks_change(click_state *state, int mode, const click_event &now, bool down, click_event out[2]);

// Reports the held event when it has waited long enough. 1 with the event, or 0.
int clicks_tick(click_state *state, uint32_t now, click_event *out);

// Reports the held event at once: something else happened that must come after it. 1 with the event, or 0.
int clicks_release_held(click_state *state, click_event *out);

// Milliseconds until clicks_tick has something to report, or -1.
int clicks_due_in(const click_state &state, uint32_t now);

// Forgets the held event; the release that ends a forgotten press is dropped.
void clicks_forget(click_state *state);
