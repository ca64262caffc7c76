#include "services/pump.h"
#include "services/events.h"
#include "services/help.h"
#include "services/menu_bar.h"
#include "services/report_box.h"
#include "services/strip.h"
#include "services/timers.h"
#include "services/window_drag.h"

#include <cctype>
#include <cstdlib>

ws_hooks ws_application_hooks;

static constexpr int MOUSE_BUTTONS = 3;
static constexpr uint32_t ECHO_MS = 50;      // an Alt+letter's own text event comes within this time
static constexpr int POINTER_PAUSE_MS = 20;  // between two looks at a pointer that rests

enum press_owner { OWNER_NONE, OWNER_MENU, OWNER_FRAMES, OWNER_CLIENT, OWNER_NOBODY };

// Who got the press of a mouse button gets its release, too.
struct press_record {
    press_owner owner;
    int window, number;                // OWNER_CLIENT: window, and button number as reported
};

static press_record presses[MOUSE_BUTTONS];
static int motion_window = -1;         // the window that was last told of the pointer, -1 none
static bool line_has_keys;
static char echo_letter;               // of an Alt+letter, and when it was pressed
static uint32_t echo_time;
static bool asking_for_close;
static int pointer_questions;
static bool backend_waits;             // what runs now was called by the backend's wait: a script's step

void pump_start()
{
    for (press_record &press : presses)
        press = {};
    motion_window = -1;
    line_has_keys = false;
    echo_letter = 0;
    asking_for_close = false;
    pointer_questions = 0;
    backend_waits = false;
}

void pump_keys_to_forms() { line_has_keys = false; }
void pump_keys_to_line()  { line_has_keys = true; }
void pump_event_read()    { pointer_questions = 0; }

void pump_forget_window(int w)
{
    window_drag_forget(w);
    for (press_record &press : presses)
        if (press.owner == OWNER_CLIENT && press.window == w)
            press.owner = OWNER_NOBODY;
    if (motion_window == w)
        motion_window = -1;
}

void window_point(int w, int frame_x, int frame_y, int *x_out, int *y_out)
{
    const bool frame = w == 0 && !popup_is_open();
    const window_record *window = frame ? nullptr : window_of(w);
    *x_out = frame_x - (window ? window->rect.x0 : 0);
    *y_out = frame_y - (window ? window->rect.y0 : 0);
}

// --- pointer ----------------------------------------------------------------------------------------------------

// A two-button mouse: the left button is the data button, and with Ctrl the help press; the right one resets.
static int button_number(int mouse_button, int modifiers)
{
    if (mouse_button == 2)
        return 2;
    return mouse_button == 0 && (modifiers & BACKEND_CTRL) ? 0 : 1;
}

static int pressed_client_window()
{
    for (const press_record &press : presses)
        if (press.owner == OWNER_CLIENT)
            return press.window;
    return -1;
}

static uint32_t buttons_down()
{
    uint32_t down = 0;
    for (int n = 0; n < MOUSE_BUTTONS; n++)
        if (presses[n].owner == OWNER_CLIENT)
            down |= 1u << n;
    return down;
}

// The window that hears of the pointer: the pressed one while a button is down, else the one under it.
static int window_to_tell()
{
    const int pressed = pressed_client_window();
    if (pressed >= 0)
        return pressed;
    window_part part;
    const int w = window_at(ws_state.pointer_x, ws_state.pointer_y, &part);
    return ws_state.pointer_inside && (part == PART_INSIDE || part == PART_STRIP) ? w : -1;
}

static void tell_motion(int w, int kind)
{
    int x, y;
    window_point(w, ws_state.pointer_x, ws_state.pointer_y, &x, &y);
    queue_motion(w, x, y, kind, buttons_down());
}

static void report_motion()
{
    const int w = window_to_tell();
    if (motion_window >= 0 && motion_window != w)
        tell_motion(motion_window, MOTION_LEAVE);
    motion_window = w;
    if (w >= 0)
        tell_motion(w, MOTION_MOVE);
}

static void set_pointer(const backend_event &event)
{
    ws_state.pointer_x = event.x;
    ws_state.pointer_y = event.y - ws_menu_height();
    ws_state.pointer_inside = true;
}

static void take_move(const backend_event &event)
{
    set_pointer(event);
    if (ws_menu_is_open())
        menu_move(ws_state.pointer_x, ws_state.pointer_y);
    else if (window_drag_active())
        window_drag_move(ws_state.pointer_x, ws_state.pointer_y);
    else
        report_motion();
    cursor_update();
}

static void take_leave()
{
    ws_state.pointer_inside = false;
    if (!ws_menu_is_open() && !window_drag_active())
        report_motion();
}

static press_record press_in_window(const backend_event &event, int w)
{
    const press_record press { OWNER_CLIENT, w, button_number(event.button, event.modifiers) };
    int x, y;
    window_point(w, ws_state.pointer_x, ws_state.pointer_y, &x, &y);
    queue_button_change(w, x, y, press.number, true, event.time);
    return press;
}

static press_record give_press(const backend_event &event)
{
    const int x = ws_state.pointer_x, y = ws_state.pointer_y;
    const bool left = event.button == 0;
    if (plain_box_is_open()) {
        plain_box_close();
        return { OWNER_NOBODY, 0, 0 };
    }
    if (ws_menu_is_open() || (left && y < 0 && !popup_is_open())) {
        menu_press(x, y);
        return { OWNER_MENU, 0, 0 };
    }
    window_part part;
    int w = window_at(x, y, &part);
    if (popup_is_open()) {
        if (part != PART_INSIDE)
            beep(BEEP_PLAIN);
        return press_in_window(event, 0);
    }
    if (left && window_drag_press(w, part, x, y))
        return { OWNER_FRAMES, 0, 0 };
    if (left && part == PART_STRIP && strip_press(x, y))
        return { OWNER_NOBODY, 0, 0 };
    return press_in_window(event, w);
}

static void take_press(const backend_event &event)
{
    set_pointer(event);
    if (event.button < 0 || event.button >= MOUSE_BUTTONS)
        return;
    // A second button during work on a window's frame means: never mind.
    if (window_drag_active()) {
        window_drag_cancel();
        presses[event.button].owner = OWNER_NOBODY;
        return;
    }
    presses[event.button] = give_press(event);
    cursor_update();
}

static void take_release(const backend_event &event)
{
    set_pointer(event);
    if (event.button < 0 || event.button >= MOUSE_BUTTONS)
        return;
    const press_record press = presses[event.button];
    presses[event.button] = {};
    const int x = ws_state.pointer_x, y = ws_state.pointer_y;
    if (press.owner == OWNER_MENU && ws_menu_is_open())
        menu_release(x, y);
    else if (press.owner == OWNER_FRAMES && window_drag_active())
        window_drag_release(x, y);
    else if (press.owner == OWNER_CLIENT) {
        int x_window, y_window;
        window_point(press.window, x, y, &x_window, &y_window);
        queue_button_change(press.window, x_window, y_window, press.number, false, event.time);
    }
    if (ws_state.entered)
        cursor_update();
}

static void take_wheel(const backend_event &event)
{
    if (ws_menu_is_open()) {
        menu_wheel(event.y);
        return;
    }
    for (int n = std::abs(event.y); n > 0; n--)
        queue_key(event.y > 0 ? WS_KEY_UP : WS_KEY_DOWN);
}

// --- keyboard ---------------------------------------------------------------------------------------------------

static int key_byte(int key, int modifiers)
{
    switch (key) {
    case KEY_RETURN:    return WS_KEY_RETURN;
    case KEY_TAB:       return modifiers & BACKEND_SHIFT ? WS_KEY_BACKTAB : WS_KEY_TAB;
    case KEY_BACKSPACE: return WS_KEY_BACKSPACE;
    case KEY_DELETE:    return modifiers & BACKEND_CTRL ? WS_KEY_CTRL_DELETE : WS_KEY_DELETE;
    case KEY_HOME:      return WS_KEY_HOME;
    case KEY_END:       return WS_KEY_END;
    case KEY_LEFT:      return WS_KEY_LEFT;
    case KEY_RIGHT:     return WS_KEY_RIGHT;
    case KEY_UP:        return WS_KEY_UP;
    case KEY_DOWN:      return WS_KEY_DOWN;
    default:            return 0;
    }
}

static bool keys_go_to_line()
{
    return strip_line_is_open() && (line_has_keys || !event_enabled(WS_KEY));
}

static bool is_alt_letter(const backend_event &event)
{
    return event.key >= KEY_CHARACTER && (event.modifiers & BACKEND_ALT);
}

static void take_alt_letter(const backend_event &event)
{
    const char letter = char(event.key - KEY_CHARACTER);
    echo_letter = letter;
    echo_time = event.time;
    if (popup_is_open())
        return;
    if (!menu_open_by_letter(letter) && ws_menu_is_open())
        menu_letter(letter);
}

static void take_key(const backend_event &event)
{
    if (plain_box_is_open())
        plain_box_close();
    else if (is_alt_letter(event))
        take_alt_letter(event);
    else if (ws_menu_is_open())
        menu_key(event.key);
    else if (window_drag_active() && event.key == KEY_ESC)
        window_drag_cancel();
    else if (event.key == KEY_F10 && !popup_is_open())
        menu_open_first();
    else if (event.key == KEY_F1)
        open_help_file();
    else if (event.key == KEY_ESC)
        queue_reset(event.time);
    else if (keys_go_to_line())
        strip_key(event.key);
    else if (const int byte = key_byte(event.key, event.modifiers))
        queue_key(byte);
}

// The text that comes with an Alt+letter is the mnemonic once more, and no typing.
static bool is_mnemonic_echo(const backend_event &event)
{
    const char letter = echo_letter;
    echo_letter = 0;
    return (event.modifiers & BACKEND_ALT)
        || (letter && letter == std::tolower(uint8_t(event.text)) && event.time - echo_time <= ECHO_MS);
}

static void take_text(const backend_event &event)
{
    if (is_mnemonic_echo(event))
        return;
    if (plain_box_is_open())
        plain_box_close();
    else if (ws_menu_is_open())
        menu_letter(event.text);
    else if (keys_go_to_line())
        strip_type(event.text);
    else
        queue_key(uint8_t(event.text));
}

// --- the rest ---------------------------------------------------------------------------------------------------

static void take_close()
{
    if (asking_for_close)
        return;
    asking_for_close = true;
    const int allowed = ws_application_hooks.frame_close ? ws_application_hooks.frame_close() : 1;
    asking_for_close = false;
    if (!allowed)
        return;
    ws_exit();
    if (ws_application_hooks.end_process)
        ws_application_hooks.end_process(0);
    else
        std::exit(0);
}

static void take_event(const backend_event &event)
{
    switch (event.kind) {
    case BACKEND_MOVE:    take_move(event); break;
    case BACKEND_LEAVE:   take_leave(); break;
    case BACKEND_PRESS:   take_press(event); break;
    case BACKEND_RELEASE: take_release(event); break;
    case BACKEND_WHEEL:   take_wheel(event); break;
    case BACKEND_KEY:     take_key(event); break;
    case BACKEND_TEXT:    take_text(event); break;
    case BACKEND_EXPOSED: damage_add_all(); break;
    case BACKEND_CLOSE:   take_close(); break;
    case BACKEND_RESIZED: break;
    case BACKEND_DROP:
        if (ws_application_hooks.file_dropped)
            ws_application_hooks.file_dropped(event.path);
        break;
    }
}

void pump()
{
    if (ws_menu_is_open() && popup_is_open())
        menu_close();
    backend_event event {};
    while (ws_state.entered && ws_state.backend->poll(&event)) {
        pointer_questions = 0;
        timers_run(event.time);
        take_event(event);
    }
    if (!ws_state.entered)
        return;
    const uint32_t now = ws_now();
    timers_run(now);
    queue_due_button(now);
    strip_run(now);
}

static int sooner(int a, int b)
{
    if (a < 0 || b < 0)
        return a < 0 ? b : a;
    return a < b ? a : b;
}

int pump_due_in()
{
    const uint32_t now = ws_now();
    return sooner(sooner(timers_due_in(now), button_due_in(now)), strip_due_in(now));
}

static void wait_for_input(int timeout_ms)
{
    compose_and_present();
    backend_waits = true;
    ws_state.backend->wait(timeout_ms);
    backend_waits = false;
}

void pump_pointer_asked()
{
    if (!ws_state.entered || backend_waits || pointer_questions++ == 0 || (pending_events() & WS_BUTTON))
        return;
    wait_for_input(sooner(POINTER_PAUSE_MS, pump_due_in()));
    pump();
}

// --- the operations that wait -------------------------------------------------------------------------------------

uint32_t ws_now()
{
    return ws_state.backend ? ws_state.backend->now() : 0;
}

int ws_pending(uint32_t *mask_out)
{
    backend_waits = false;             // a command that a script's step runs polls like any other
    pump();
    if (ws_state.entered)
        present_if_due();
    *mask_out = pending_events();
    return ws_state.entered ? 0 : -1;
}

int ws_wait_event(uint32_t mask, uint32_t *pending_out)
{
    for (;;) {
        if (ws_pending(pending_out) != 0)
            return -1;
        if (*pending_out & mask)
            return 0;
        wait_for_input(pump_due_in());
    }
}

int ws_wait_first(uint32_t mask, uint32_t *class_out)
{
    uint32_t pending;
    if (ws_wait_event(mask, &pending) != 0)
        return -1;
    const uint32_t wanted = pending & mask;
    *class_out = wanted & (~wanted + 1);   // its lowest bit
    return 0;
}
