// backend.h - what stands behind the services: a desktop window or plain memory.
// The services draw into their own 32-bit picture of frame and menu bar and hand over the rectangles that changed; a
// backend shows them and delivers raw input. Coordinates here are those of that picture: the menu bar on top, the
// frame's drawable area beneath it.
#pragma once
#include "services/ws.h"

// What a display offers. Filled by the backend's open; the memory backend copies what memory_backend_configure was given.
struct backend_display {
    int width, height;                 // of the whole picture, menu bar included
    int planes;                        // 4 to 10, or 8 with true colour
    uint32_t flags;                    // ws_capability
};

enum backend_event_kind {
    BACKEND_MOVE,                      // x, y
    BACKEND_LEAVE,
    BACKEND_PRESS, BACKEND_RELEASE,    // x, y, button 0 left, 1 middle, 2 right; modifiers
    BACKEND_WHEEL,                     // y: steps, up positive
    BACKEND_KEY,                       // key, modifiers; for keys that are no text
    BACKEND_TEXT,                      // text: one character in Latin-1
    BACKEND_RESIZED,                   // the OS window's size changed: the picture is scaled to fit, nothing to do
    BACKEND_EXPOSED,                   // the OS window wants everything presented again
    BACKEND_CLOSE,                     // close button of the OS window
    BACKEND_DROP,                      // path
};

enum backend_modifier { BACKEND_CTRL = 1, BACKEND_SHIFT = 2, BACKEND_ALT = 4 };

enum backend_key {
    KEY_NONE, KEY_ESC, KEY_RETURN, KEY_TAB, KEY_BACKSPACE, KEY_DELETE, KEY_HOME, KEY_END, KEY_LEFT, KEY_RIGHT, KEY_UP, KEY_DOWN,
    KEY_PAGE_UP, KEY_PAGE_DOWN, KEY_F1, KEY_F10,
    KEY_CHARACTER = 256,               // plus the lower-case character, for Alt+letter
};

struct backend_event {
    backend_event_kind kind;
    int x, y, button;
    int key, modifiers;
    char text;
    uint32_t time;                     // milliseconds of the backend's clock
    char path[1024];
};

enum backend_cursor { CURSOR_ARROW, CURSOR_BUSY, CURSOR_CROSS, CURSOR_TEXT, CURSOR_SIZE_H, CURSOR_SIZE_V, CURSOR_SIZE_DIAGONAL, CURSOR_MOVE, CURSOR_HIDDEN };

struct ws_backend {
    const char *name;
    int (*open)(const char *title, backend_display *display_out);   // 0 or an error number
    void (*close)();
    int (*poll)(backend_event *event_out);          // 1 and the next event, 0 when there is none
    void (*wait)(int timeout_ms);                   // until input may have come, or the time is over (-1: no limit)
    uint32_t (*now)();
    void (*present)(const uint32_t *pixels, int stride, const ws_rect *rects, int count);
    void (*set_title)(const char *text);
    void (*set_cursor)(int cursor);
    void (*warp_pointer)(int x, int y);
    void (*beep)(int kind);
};

extern const ws_backend backend_memory;
extern const ws_backend backend_sdl;                // null members never; open fails when there is no display

// The one in use. Set before ws_enter.
void ws_use_backend(const ws_backend *backend);

// --- memory backend: tests, scripts and machines with no display -----------------------------------------------

// Before ws_enter. width and height are those of the frame's drawable area (the menu bar comes on top);
// planes 1 to 10, or 24 for true colour; flags are added to what the depth implies.
void memory_backend_configure(int width, int height, int planes, uint32_t flags);

// Called when the program waits and no event is queued: the function queues events, or moves the clock on. A null function, or
// one that answers 0, leaves a wait with no time limit no way to end: the process ends with a message.
void memory_backend_on_idle(int (*idle)());
void memory_backend_queue(const backend_event *event);
void memory_backend_advance(int ms);                // simulated time
const uint32_t *memory_backend_pixels(int *width_out, int *height_out);  // the whole picture as last presented
int memory_backend_beeps(int kind);                 // how often that beep has sounded
