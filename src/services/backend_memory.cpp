// backend_memory.cpp - a screen without a display: the picture is an array, input is what a test or script queues, and time
// passes only when an event or the caller says so.
#include "services/backend.h"
#include "services/ws_menu.h"
#include "mem.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>

static constexpr int TRUE_COLOUR_DEPTH = 24;
static constexpr int BEEP_KINDS = 3;
static constexpr int STALL_MS = 60 * 60 * 1000;   // simulated; waits that add up to this without any input never end

struct memory_screen {
    int width = 1280, height = 1024;   // of the frame's drawable area
    int planes = TRUE_COLOUR_DEPTH;
    uint32_t flags = 0;
    uint32_t *pixels = nullptr;
    int picture_height = 0;
    uint32_t clock = 0;
    int idle_ms = 0;                   // waited since the last event
    int beeps[BEEP_KINDS] = {};
    int (*idle)() = nullptr;
};

static memory_screen screen;
static std::deque<backend_event> events;

void memory_backend_configure(int width, int height, int planes, uint32_t flags)
{
    screen.width = width;
    screen.height = height;
    screen.planes = planes;
    screen.flags = flags;
}

void memory_backend_on_idle(int (*idle)())
{
    screen.idle = idle;
}

void memory_backend_queue(const backend_event *event)
{
    events.push_back(*event);
}

void memory_backend_advance(int ms)
{
    screen.clock += uint32_t(ms);
}

const uint32_t *memory_backend_pixels(int *width_out, int *height_out)
{
    *width_out = screen.pixels ? screen.width : 0;
    *height_out = screen.pixels ? screen.picture_height : 0;
    return screen.pixels;
}

int memory_backend_beeps(int kind)
{
    return kind >= 0 && kind < BEEP_KINDS ? screen.beeps[kind] : 0;
}

static int memory_open(const char *, backend_display *display_out)
{
    const bool true_colour = screen.planes == TRUE_COLOUR_DEPTH;
    const bool depth_known = true_colour || (screen.planes >= 1 && screen.planes <= 10);
    if (screen.width <= 0 || screen.height <= 0 || !depth_known)
        return EINVAL;
    screen.picture_height = screen.height + ws_menu_height();
    screen.pixels = (uint32_t *)mem_calloc(size_t(screen.width) * size_t(screen.picture_height), sizeof(uint32_t));
    if (!screen.pixels)
        return ENOMEM;
    screen.clock = 0;
    screen.idle_ms = 0;
    std::fill(screen.beeps, screen.beeps + BEEP_KINDS, 0);
    *display_out = { screen.width, screen.picture_height, true_colour ? 8 : screen.planes, screen.flags };
    if (true_colour)
        display_out->flags |= WS_CAP_TRUECOLOUR;
    return 0;
}

static void memory_close()
{
    mem_free(screen.pixels);
    screen.pixels = nullptr;
    events.clear();
}

// An event that names no time happens now; one of a later time brings the clock there.
static int memory_poll(backend_event *event_out)
{
    if (events.empty())
        return 0;
    *event_out = events.front();
    events.pop_front();
    if (event_out->time == 0 || int32_t(event_out->time - screen.clock) < 0)
        event_out->time = screen.clock;
    screen.clock = event_out->time;
    screen.idle_ms = 0;
    return 1;
}

static void end_of_input(const char *why)
{
    fprintf(stderr, "kestrel: %s\n", why);
    std::exit(EXIT_FAILURE);
}

static void memory_wait(int timeout_ms)
{
    if (!events.empty())
        return;
    const uint32_t before = screen.clock;
    if (screen.idle && screen.idle())
        return;
    if (!events.empty() || screen.clock != before)
        return;
    if (timeout_ms < 0)
        end_of_input("the program waits for input, and there is none left");
    screen.clock += uint32_t(timeout_ms);
    screen.idle_ms += timeout_ms;
    if (screen.idle_ms >= STALL_MS)
        end_of_input("the program has waited an hour for input that does not come");
}

static uint32_t memory_now()
{
    return screen.clock;
}

static void memory_present(const uint32_t *pixels, int stride, const ws_rect *rects, int count)
{
    for (int i = 0; i < count; i++) {
        const ws_rect &r = rects[i];
        for (int y = r.y0; y <= r.y1; y++)
            memcpy(screen.pixels + size_t(y) * size_t(screen.width) + r.x0, pixels + size_t(y) * size_t(stride) + r.x0,
                   size_t(r.x1 - r.x0 + 1) * sizeof(uint32_t));
    }
}

static void memory_beep(int kind)
{
    screen.beeps[kind == BEEP_INFO || kind == BEEP_ERROR ? kind : BEEP_PLAIN]++;
}

static void memory_ignore_text(const char *) {}
static void memory_ignore_cursor(int) {}

// The pointer is where the services left it; no motion event follows.
static void memory_ignore_place(int, int) {}

const ws_backend backend_memory {
    .name = "memory",
    .open = memory_open,
    .close = memory_close,
    .poll = memory_poll,
    .wait = memory_wait,
    .now = memory_now,
    .present = memory_present,
    .set_title = memory_ignore_text,
    .set_cursor = memory_ignore_cursor,
    .warp_pointer = memory_ignore_place,
    .beep = memory_beep,
};
