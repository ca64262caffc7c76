// operator.h - a pair of hands for the tests: what an operator does with mouse and keyboard, on the memory screen. Positions
// are in frame coordinates; the menu bar lies at y below 0. Nothing reaches the program before `pending` or a wait.
#pragma once
#include "services/backend.h"
#include "services/ws.h"
#include "services/ws_menu.h"
#include <cstdio>

inline backend_event event_of_kind(backend_event_kind kind)
{
    backend_event event {};
    event.kind = kind;
    event.time = ws_now();
    return event;
}

inline void pointer_event(backend_event_kind kind, int x, int y, int button = 0, int modifiers = 0)
{
    backend_event event = event_of_kind(kind);
    event.x = x;
    event.y = y + ws_menu_height();
    event.button = button;
    event.modifiers = modifiers;
    memory_backend_queue(&event);
}

// The pending word, after everything queued so far has been taken.
inline uint32_t pending()
{
    uint32_t mask = 0;
    ws_pending(&mask);
    return mask;
}

inline void move_to(int x, int y)
{
    pointer_event(BACKEND_MOVE, x, y);
    pending();
}

inline void press(int x, int y, int button = 0, int modifiers = 0)
{
    pointer_event(BACKEND_PRESS, x, y, button, modifiers);
    pending();
}

inline void release(int x, int y, int button = 0)
{
    pointer_event(BACKEND_RELEASE, x, y, button);
    pending();
}

inline void wait_ms(int ms)
{
    memory_backend_advance(ms);
    pending();
}

inline void click(int x, int y, int button = 0, int modifiers = 0)
{
    press(x, y, button, modifiers);
    wait_ms(50);
    release(x, y, button);
}

inline void key(int code, int modifiers = 0)
{
    backend_event event = event_of_kind(BACKEND_KEY);
    event.key = code;
    event.modifiers = modifiers;
    memory_backend_queue(&event);
    pending();
}

inline void type(const char *text)
{
    for (; *text; text++) {
        backend_event event = event_of_kind(BACKEND_TEXT);
        event.text = *text;
        memory_backend_queue(&event);
    }
    pending();
}

// As keyboards do it: the letter's own text comes right behind.
inline void alt_letter(char letter)
{
    key(KEY_CHARACTER + letter, BACKEND_ALT);
    const char text[] = { letter, 0 };
    type(text);
}

struct button_event {
    int w = -1, x = -1, y = -1, button = -1, transition = -1;
    uint32_t time = 0;
    bool operator==(const button_event &) const = default;
};

inline void PrintTo(const button_event &e, std::ostream *out)
{
    *out << "window " << e.w << " at " << e.x << ", " << e.y << " button " << e.button << " transition " << e.transition << " time " << e.time;
}

inline button_event read_button()
{
    button_event e;
    ws_read_button(&e.w, &e.x, &e.y, &e.button, &e.transition, &e.time);
    return e;
}
