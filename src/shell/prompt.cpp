#include "shell/prompt.h"

#include <cstdio>

#include "display/picture_windows.h"
#include "display/paint.h"
#include "display/readout.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "forms/forms.h"
#include "services/ws.h"
#include "shell/menu.h"
#include "shell/open_named.h"
#include "shell/session.h"

// A wait. Title and prompt are copies: a command that runs inside the wait may overwrite what the caller pointed to.
struct wait_state {
    char title[128], prompt[256];
    int flags;
};

static const wait_state *wait_now;     // null outside of waits, and while a menu command runs inside one
static int refresh_done;

const char *prompt_text()
{
    return wait_now ? wait_now->prompt : "";
}

int prompt_takes_keyin()
{
    return wait_now && (wait_now->flags & PROMPT_KEYIN);
}

void prompt_mark_refresh_done()
{
    refresh_done = 1;
}

static void show_prompt(const wait_state &wait)
{
    msg_put(MSG_TITLE, MSG_CENTRED, wait.title);
    if (wait.flags & PROMPT_KEYIN) {
        msg_put(MSG_PROMPT, MSG_RIGHT, wait.prompt);
        msg_keyin_open(MSG_KEYIN, MSG_LEFT, "> ");
    } else {
        msg_put(MSG_PROMPT, MSG_CENTRED, wait.prompt);
    }
}

static void take_palette()
{
    int value = 0;
    if (ws_read_palette(&value) == 0 && value != 0)
        vlt_program();
}

static void take_delete()
{
    int w;
    if (ws_read_delete(&w) == 0) {
        current_window = w;
        close_window(w, true);
    }
}

// The icon itself stands above the strip, where the services have put it.
static void take_collapse()
{
    int w, collapsed;
    if (ws_read_collapse(&w, &collapsed) != 0 || windows[w].flags == 0)
        return;
    const int flags = collapsed ? windows[w].flags | WIN_COLLAPSED : windows[w].flags & ~WIN_COLLAPSED;
    windows[w].flags = int16_t(flags);
    if (w == hist_window)
        menu_check("toggle_hist", !collapsed);
    else if ((flags & CUT) && !(flags & WIN_OVERVIEW))
        menu_check("toggle_cut", !collapsed);
}

// A full-screen image belongs to the system and is a picture all the same.
static void refresh_reserved(int w)
{
    clear_reserved_window();
    if (is_picture(w))
        paint_window(0, 0, windows[w].width, windows[w].height);
}

static void refresh_window(int w, const ws_rect &damage)
{
    window_read_geometry(w);
    const bool picture = is_picture(w);
    if (picture && refresh_done)
        return;
    ws_set_foreground(w, 0);
    ws_fill_rect(w, damage.x0, damage.y0, damage.x1, damage.y1);
    if (picture)
        paint_window(damage.x0, damage.y0, damage.x1 + 1, damage.y1 + 1);
    else if (w == source_hist_window)
        redraw_source_hist();
    else if (windows[w].flags & WIN_HISTOGRAM)
        draw_hist(damage.x0, damage.y0, damage.x1, damage.y1);
}

static void take_refresh()
{
    int w, screen;
    ws_rect old, damage;
    uint32_t flags;
    busy_all();
    if (ws_read_refresh(&w, &screen, &old, &damage, &flags) == 0) {
        current_window = w;
        if (windows[w].flags & RESERVED_WIN)
            refresh_reserved(w);
        else if (windows[w].flags != 0)
            refresh_window(w, damage);
    }
    normal_all();
}

static void take_window_icon()
{
    constexpr int ICON_ACTIVATE = 3;
    int w, icon;
    if (ws_read_window_icon(&w, &icon) == 0 && icon == ICON_ACTIVATE) {
        current_window = w;
        apply_active();
    }
}

static int take_button(const wait_state &wait)
{
    constexpr int BUTTON_HELP = 0, BUTTON_DATA = 1, BUTTON_RESET = 2;
    int w, x, y, button, transition;
    uint32_t time;
    if (ws_read_button(&w, &x, &y, &button, &transition, &time) != 0)
        return 0;
    current_window = w;
    const bool reserved = windows[w].flags & RESERVED_WIN;

    int response = 0;
    if (button == BUTTON_RESET && transition == WS_CLICK)
        response = INPUT_RESET;
    else if (button == BUTTON_DATA && !reserved)
        response = transition == WS_CLICK ? INPUT_POINT : transition == WS_DOWN ? INPUT_BUTTON1 : transition == WS_UP ? INPUT_BUTTON0 : 0;
    if (response) {
        pick_x = x;
        pick_y = y;
        return response;
    }
    const bool asks_for_prompt = button == BUTTON_HELP || (button == BUTTON_DATA && reserved && transition == WS_CLICK);
    if (asks_for_prompt && !form_is_up) {
        msg_keyin_close();
        show_prompt(wait);
    }
    return 0;
}

static int take_keyin()
{
    int length;
    if (ws_read_keyin(&length) != 0)
        return 0;
    const int most = int(sizeof keyin_buffer) - 1;
    keyin_length = length < 0 ? 0 : length > most ? most : length;
    keyin_buffer[keyin_length] = 0;
    return INPUT_KEYIN;
}

// The command runs to its end inside this wait. It leaves the strip empty or covered: the wait's own words come back.
static void take_user(const wait_state &wait)
{
    int value;
    if (ws_read_user(&value) != 0)
        return;
    wait_now = nullptr;
    if (value == USER_OPEN_DROPPED)
        open_dropped_file();
    else
        run_menu_id(uint32_t(value));
    wait_now = &wait;
    if (!quit_requested)
        show_prompt(wait);
}

// One turn: the first class in the order of priority is served, the others stay queued for the next turn.
static int take_events(const wait_state &wait, uint32_t pending)
{
    if (pending & WS_PALETTE)
        take_palette();
    if (pending & WS_DELETE) {
        take_delete();
        return 0;
    }
    if (pending & WS_COLLAPSE)
        take_collapse();
    if (pending & WS_REFRESH) {
        take_refresh();
        return 0;
    }
    if (pending & WS_WINDOW_ICON)
        take_window_icon();
    if (pending & WS_BUTTON)
        return take_button(wait);
    if (pending & WS_KEYIN)
        return take_keyin();
    if (pending & WS_USER)
        take_user(wait);
    return 0;
}

static int wait_for_response(const wait_state &wait)
{
    for (;;) {
        if (quit_requested)
            return INPUT_QUIT;
        if (wait.flags & PROMPT_SHOW_PIXEL)
            show_pixel_readout();
        else if (wait.flags & PROMPT_SHOW_POSITION)
            show_position_readout();

        uint32_t pending = 0;
        if (wait.flags & PROMPT_POLL)
            ws_pending(&pending);
        else
            ws_wait_event(WS_NORMAL_EVENTS, &pending);
        const int response = take_events(wait, pending);
        if (response || (wait.flags & PROMPT_POLL))
            return response;
    }
}

int prompt_input(const char *title, const char *prompt, int flags)
{
    wait_state wait;
    std::snprintf(wait.title, sizeof wait.title, "%s", title);
    std::snprintf(wait.prompt, sizeof wait.prompt, "%s", prompt);
    wait.flags = flags;

    msg_clear(MSG_KEYIN);
    show_prompt(wait);
    refresh_done = 0;

    const wait_state *outer = wait_now;
    wait_now = &wait;
    const int response = wait_for_response(wait);
    wait_now = outer;

    if ((flags & PROMPT_KEYIN) && response != INPUT_KEYIN)
        msg_keyin_close();
    return response;
}
