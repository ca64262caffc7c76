// events.cpp - one queue a class, first in, first out, and the operations that fill and read them.
#include "services/events.h"
#include "services/clicks.h"
#include "services/pump.h"
#include "services/timers.h"
#include "services/ws_state.h"

#include <algorithm>
#include <deque>

struct refresh_event {
    int window;
    ws_rect old_rect, damage;
    uint32_t flags;
};

struct collapse_event {
    int window, state;
};

struct motion_event {
    int window, x, y, kind;
    uint32_t buttons_down;
};

static std::deque<uint8_t> keys;
static std::deque<click_event> buttons;
static std::deque<refresh_event> refreshes;
static std::deque<int> deletes;
static std::deque<int> keyins;
static std::deque<collapse_event> collapses;
static std::deque<int> timer_events;
static std::deque<int> user_values;
static std::deque<motion_event> motions;

static uint32_t enabled_classes;
static click_state clicks;
static char *key_buffer;
static int key_buffer_size;

// --- enabling and pending ---------------------------------------------------------------------------------------

bool event_enabled(uint32_t event_class)
{
    return (enabled_classes & event_class) != 0;
}

uint32_t pending_events()
{
    uint32_t pending = 0;
    if (!keys.empty())         pending |= WS_KEY;
    if (!buttons.empty())      pending |= WS_BUTTON;
    if (!refreshes.empty())    pending |= WS_REFRESH;
    if (!deletes.empty())      pending |= WS_DELETE;
    if (!keyins.empty())       pending |= WS_KEYIN;
    if (!collapses.empty())    pending |= WS_COLLAPSE;
    if (!timer_events.empty()) pending |= WS_TIMER;
    if (!user_values.empty())  pending |= WS_USER;
    if (!motions.empty())      pending |= WS_MOTION;
    return pending;
}

static void empty_queues(uint32_t mask)
{
    if (mask & WS_KEY)      keys.clear();
    if (mask & WS_REFRESH)  refreshes.clear();
    if (mask & WS_DELETE)   deletes.clear();
    if (mask & WS_KEYIN)    keyins.clear();
    if (mask & WS_COLLAPSE) collapses.clear();
    if (mask & WS_TIMER)    timer_events.clear();
    if (mask & WS_USER)     user_values.clear();
    if (mask & WS_MOTION)   motions.clear();
    if (mask & WS_BUTTON) {
        buttons.clear();
        clicks_forget(&clicks);
    }
}

int ws_enable_events(uint32_t mask)
{
    enabled_classes |= mask;
    if (mask & WS_KEY)
        pump_keys_to_forms();
    return 0;
}

int ws_disable_events(uint32_t mask)
{
    enabled_classes &= ~mask;
    empty_queues(mask);
    return 0;
}

static int flush_class(uint32_t event_class)
{
    empty_queues(event_class);
    return 0;
}

int ws_flush_keys()     { return flush_class(WS_KEY); }
int ws_flush_buttons()  { return flush_class(WS_BUTTON); }
int ws_flush_refresh()  { return flush_class(WS_REFRESH); }
int ws_flush_delete()   { return flush_class(WS_DELETE); }
int ws_flush_keyin()    { return flush_class(WS_KEYIN); }
int ws_flush_collapse() { return flush_class(WS_COLLAPSE); }
int ws_flush_user()     { return flush_class(WS_USER); }
int ws_flush_motion()   { return flush_class(WS_MOTION); }
int ws_flush_timer()    { return flush_class(WS_TIMER); }

void events_start()
{
    enabled_classes = 0;
    empty_queues(~0u);
    clicks = {};
    pump_start();
}

void events_stop()
{
    enabled_classes = 0;
    empty_queues(~0u);
    timers_stop_all();
    key_buffer = nullptr;
    key_buffer_size = 0;
}

void events_forget_window(int w)
{
    const auto of_window = [w](const auto &event) { return event.window == w; };
    std::erase_if(buttons, of_window);
    std::erase_if(refreshes, of_window);
    std::erase_if(collapses, of_window);
    std::erase_if(motions, of_window);
    if (clicks.holding && clicks.held.window == w)
        clicks_forget(&clicks);
    pump_forget_window(w);
}

// --- filling the queues -----------------------------------------------------------------------------------------

static void queue_buttons(const click_event *events, int count)
{
    if (event_enabled(WS_BUTTON))
        buttons.insert(buttons.end(), events, events + count);
}

void queue_button_change(int w, int x, int y, int button, bool down, uint32_t time)
{
    const window_record *window = window_of(w);
    const int mode = window && window->button_mode == CLICKS_MULTIPLE ? CLICKS_MULTIPLE : CLICKS_SINGLE;
    click_event reported[2];
    queue_buttons(reported, clicks_change(&clicks, mode, { w, x, y, button, WS_UP, time }, down, reported));
}

void queue_reset(uint32_t time)
{
    click_event held;
    queue_buttons(&held, clicks_release_held(&clicks, &held));
    const click_event reset { 0, 0, 0, 2, WS_CLICK, time };
    queue_buttons(&reset, 1);
}

void queue_due_button(uint32_t now)
{
    click_event held;
    queue_buttons(&held, clicks_tick(&clicks, now, &held));
}

int button_due_in(uint32_t now)
{
    return clicks_due_in(clicks, now);
}

void queue_key(int key_byte)
{
    if (event_enabled(WS_KEY))
        keys.push_back(uint8_t(key_byte));
}

void queue_keyin(int length)
{
    if (event_enabled(WS_KEYIN))
        keyins.push_back(length);
}

static ws_rect rect_union(const ws_rect &a, const ws_rect &b)
{
    return { std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1) };
}

void queue_refresh(int w, const ws_rect &old_rect, const ws_rect &damage, uint32_t flags)
{
    if (!event_enabled(WS_REFRESH))
        return;
    refresh_event event { w, old_rect, damage, flags };
    const bool goes_first = w == 0 && popup_is_open();
    const auto queued = std::find_if(refreshes.begin(), refreshes.end(), [w](const refresh_event &r) { return r.window == w; });
    if (queued != refreshes.end()) {
        event.damage = rect_union(queued->damage, damage);
        event.flags |= queued->flags;
        *queued = event;
        if (!goes_first)
            return;
        refreshes.erase(queued);
    }
    if (goes_first)
        refreshes.push_front(event);
    else
        refreshes.push_back(event);
}

void queue_collapse(int w, int state)
{
    if (event_enabled(WS_COLLAPSE))
        collapses.push_back({ w, state });
}

void queue_delete(int w)
{
    if (event_enabled(WS_DELETE))
        deletes.push_back(w);
}

bool delete_is_queued(int w)
{
    return std::find(deletes.begin(), deletes.end(), w) != deletes.end();
}

void queue_timer(int number)
{
    if (event_enabled(WS_TIMER) && std::find(timer_events.begin(), timer_events.end(), number) == timer_events.end())
        timer_events.push_back(number);
}

void forget_timer(int number)
{
    std::erase(timer_events, number);
}

// Only the newest position counts, so a move replaces the move that waits before it.
void queue_motion(int w, int x, int y, int kind, uint32_t buttons_down)
{
    if (!event_enabled(WS_MOTION))
        return;
    const motion_event event { w, x, y, kind, buttons_down };
    if (!motions.empty() && motions.back().window == w && motions.back().kind == MOTION_MOVE && kind == MOTION_MOVE)
        motions.back() = event;
    else
        motions.push_back(event);
}

int ws_post_user_event(int value)
{
    if (event_enabled(WS_USER))
        user_values.push_back(value);
    return 0;
}

// --- reading them -----------------------------------------------------------------------------------------------

template <typename T> static bool take_first(std::deque<T> &queue, T *event_out)
{
    pump_event_read();
    if (queue.empty())
        return false;
    *event_out = queue.front();
    queue.pop_front();
    return true;
}

static void give_button(const click_event &event, int *w_out, int *x_out, int *y_out, int *button_out, int *transition_out,
                        uint32_t *time_out)
{
    *w_out = event.window;
    *x_out = event.x;
    *y_out = event.y;
    *button_out = event.button;
    *transition_out = event.transition;
    *time_out = event.time;
}

int ws_read_button(int *w_out, int *x_out, int *y_out, int *button_out, int *transition_out, uint32_t *time_out)
{
    click_event event;
    if (!take_first(buttons, &event))
        return -1;
    give_button(event, w_out, x_out, y_out, button_out, transition_out, time_out);
    return 0;
}

int ws_peek_button(int *w_out, int *x_out, int *y_out, int *button_out, int *transition_out, uint32_t *time_out)
{
    if (buttons.empty())
        return -1;
    give_button(buttons.front(), w_out, x_out, y_out, button_out, transition_out, time_out);
    return 0;
}

int ws_read_refresh(int *w_out, int *screen_out, ws_rect *old_out, ws_rect *damage_out, uint32_t *flags_out)
{
    refresh_event event;
    if (!take_first(refreshes, &event))
        return -1;
    *w_out = event.window;
    *screen_out = 0;
    *old_out = event.old_rect;
    *damage_out = event.damage;
    *flags_out = event.flags;
    return 0;
}

int ws_read_collapse(int *w_out, int *state_out)
{
    collapse_event event;
    if (!take_first(collapses, &event))
        return -1;
    *w_out = event.window;
    *state_out = event.state;
    return 0;
}

int ws_read_motion(int *w_out, int *x_out, int *y_out, int *kind_out, uint32_t *flag_out)
{
    motion_event event;
    if (!take_first(motions, &event))
        return -1;
    *w_out = event.window;
    *x_out = event.x;
    *y_out = event.y;
    *kind_out = event.kind;
    *flag_out = event.buttons_down;
    return 0;
}

int ws_read_delete(int *w_out)      { return take_first(deletes, w_out) ? 0 : -1; }
int ws_read_keyin(int *length_out)  { return take_first(keyins, length_out) ? 0 : -1; }
int ws_read_user(int *value_out)    { return take_first(user_values, value_out) ? 0 : -1; }
int ws_read_timer(int *number_out)  { return take_first(timer_events, number_out) ? 0 : -1; }

// Nothing in this system changes the palette from outside or presses window icons: these queues are always empty.
int ws_read_palette(int *)          { return -1; }
int ws_read_window_icon(int *, int *) { return -1; }

int ws_set_key_buffer(char *buffer, int size)
{
    key_buffer = buffer;
    key_buffer_size = buffer ? size : 0;
    return 0;
}

int ws_read_keys(int *count_out)
{
    uint8_t key;
    if (key_buffer_size < 1 || !take_first(keys, &key))
        return -1;
    key_buffer[0] = char(key);
    *count_out = 1;
    return 0;
}
