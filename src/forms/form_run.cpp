#include "forms/form_paint.h"
#include "forms/form_record.h"
#include "forms/gadget_draw.h"
#include "forms/gadget_layout.h"
#include <algorithm>
#include <cstring>

static constexpr uint32_t RUNNING_EVENTS = WS_KEY | WS_MOTION | WS_TIMER;
static constexpr int KEY_BUFFER = 64;
static constexpr int WATCH_PERIOD = 15;        // sixtieths of a second between looks at an ordinary window
static constexpr int TRUE_COLOUR_PLANES = 24;

int32_t form_is_up;
int32_t popup_forms = 1;

static form *top_form;                         // running forms, linked by `covered`, the hidden ones among them
static int shown_forms;
static char key_buffer[KEY_BUFFER];

form *form_top()
{
    form *f = top_form;
    while (f && f->hidden)
        f = f->covered;
    return f;
}

int form_is_drawn(const form *f)
{
    // A covered pop-up cannot be drawn into: window 0 is the one above it.
    return f->running && !f->hidden && (f->window > 0 || form_top() == f);
}

void form_changed(form *f, gadget *g)
{
    if (!f->running)
        return;
    if (!form_is_drawn(f))
        f->stale = 1;
    else if (g->kind == GADGET_GROUP)
        form_draw(f);
    else
        gadget_draw(f, g);
}

// --- showing -------------------------------------------------------------------------------------------------

static void measure(form *f)
{
    for (int i = 0; i < f->gadget_count; i++)
        layout_extent(f->gadgets[i]);
    f->band = popup_forms && *f->title ? form_pixels(FORM_TITLE_BAND) : 0;
    f->pixel_width = std::max(1, form_pixels(f->width));
    f->pixel_height = std::max(1, f->band + form_pixels(f->height));
}

// Kept above the message strip, since that is where the prompts are, unless the form is too high for it.
static void place(form *f, int x, int y)
{
    ws_screen_info screen{};
    int border_x = 0, border_y = 0, caption = 0;
    ws_inquire_screen(&screen);
    if (!popup_forms)
        ws_frame_metrics(&border_x, &border_y, &caption);
    const int above_strip = screen.height - ws_strip_height();
    const int bottom = f->pixel_height + caption + 2 * border_y <= above_strip ? above_strip : screen.height;
    const int right_most = screen.width - f->pixel_width - border_x, lowest = bottom - f->pixel_height - border_y;
    f->x = std::max(border_x, std::min(x < 0 ? (screen.width - f->pixel_width) / 2 : x, right_most));
    f->y = std::max(border_y + caption, std::min(y < 0 ? (bottom - f->pixel_height) / 2 : y, lowest));
}

static int open_popup(form *f)
{
    ws_screen_info screen{};
    ws_inquire_screen(&screen);
    const int planes = forms_get_style()->true_colour ? TRUE_COLOUR_PLANES : screen.planes;
    if (ws_popup_begin(0, planes, &f->window) != 0)
        return 0;
    if (ws_popup_open(f->window, f->x, f->y, f->x + f->pixel_width - 1, f->y + f->pixel_height - 1) == 0)
        return 1;
    ws_popup_end(f->window);
    return 0;
}

static int open_window(form *f)
{
    if (ws_create_window(0, f->title, f->x, f->y, f->x + f->pixel_width - 1, f->y + f->pixel_height - 1, &f->window) != 0)
        return 0;
    ws_set_window_vlt(f->window, forms_get_style()->true_colour ? 2 : 0);
    ws_show_window(f->window);
    if (ws_timer_start(WATCH_PERIOD, &f->watch_timer) != 0)
        f->watch_timer = -1;
    return 1;
}

static void listen()
{
    if (shown_forms++ == 0)
        ws_enable_events(RUNNING_EVENTS | WS_BUTTON);
    ws_set_key_buffer(key_buffer, KEY_BUFFER);
    form_is_up = shown_forms > 0;
}

static void stop_listening()
{
    if (--shown_forms == 0)
        ws_disable_events(RUNNING_EVENTS);
    form_is_up = shown_forms > 0;
}

static int open_form(form *f)
{
    listen();
    if (popup_forms ? open_popup(f) : open_window(f))
        return 1;
    stop_listening();
    return 0;
}

static void redraw_if_stale(form *f)
{
    if (!f || !f->stale || !form_is_drawn(f))
        return;
    f->stale = 0;
    form_draw(f);
}

static void close_form(form *f)
{
    input_release_all(f);
    if (f->watch_timer >= 0)
        ws_timer_stop(f->watch_timer);
    f->watch_timer = -1;
    if (f->window == 0) {
        ws_popup_close(f->window);
        ws_popup_end(f->window);
    } else {
        ws_delete_window(f->window);
    }
    stop_listening();
}

void form_hide(form *f)
{
    // A pop-up beneath another one cannot go: the upper one would close in its place.
    if (!f || !f->running || f->hidden || (f->window == 0 && form_top() != f))
        return;
    close_form(f);
    f->hidden = 1;
    redraw_if_stale(form_top());
}

void form_unhide(form *f)
{
    if (!f || !f->running || !f->hidden || !open_form(f))
        return;
    f->hidden = 0;
    f->stale = 0;
    form_draw(f);
}

void running_forms_forget()
{
    for (form *f = top_form; f; f = f->covered)
        f->running = 0;
    top_form = nullptr;
    shown_forms = 0;
    form_is_up = 0;
}

// --- the loop --------------------------------------------------------------------------------------------------

static void take_button(form *f)
{
    int w, x, y, button, transition;
    uint32_t time;
    if (ws_read_button(&w, &x, &y, &button, &transition, &time) != 0)
        return;
    const int reset = button == 2;             // Esc comes from window 0, whichever has the form
    if (w == f->window || reset)
        input_button(f, x, y, button, transition, time);
    else if (transition != WS_UP)
        beep(BEEP_PLAIN);
}

static void take_keys(form *f)
{
    int count;
    if (ws_read_keys(&count) != 0)
        return;
    uint8_t bytes[KEY_BUFFER];                 // a nested form uses the buffer again
    count = std::clamp(count, 0, KEY_BUFFER);
    std::memcpy(bytes, key_buffer, size_t(count));
    input_keys(f, bytes, count);
}

static void take_motion(form *f)
{
    int w, x, y, kind;
    uint32_t flag;
    if (ws_read_motion(&w, &x, &y, &kind, &flag) == 0 && w == f->window)
        input_motion(f, x, y);
}

// What the operator did to a form that is an ordinary window: closed it, or changed its place or size.
static void look_at_window(form *f)
{
    int x0, y0, x1, y1;
    if (!ws_window_shown(f->window) || ws_window_rect(f->window, &x0, &y0, &x1, &y1) != 0) {
        input_cancel(f);
        if (f->answer == FORM_STAY)            // there is nothing left to keep up
            f->answer = FORM_CANCELLED;
        return;
    }
    const int resized = x1 - x0 + 1 != f->pixel_width || y1 - y0 + 1 != f->pixel_height;
    const int restored = f->collapsed && !ws_window_collapsed(f->window);
    f->x = x0;
    f->y = y0;
    f->pixel_width = x1 - x0 + 1;
    f->pixel_height = y1 - y0 + 1;
    f->collapsed = ws_window_collapsed(f->window);
    if (resized || restored)
        form_draw(f);
}

static void take_timer(form *f)
{
    int number;
    if (ws_read_timer(&number) != 0)
        return;
    if (number == f->timer)
        input_step(f);
    else if (number == f->watch_timer)
        look_at_window(f);
}

static void take_event(form *f, uint32_t pending)
{
    if (pending & WS_BUTTON)
        take_button(f);
    else if (pending & WS_KEY)
        take_keys(f);
    else if (pending & WS_TIMER)
        take_timer(f);
    else if (pending & WS_MOTION)
        take_motion(f);
}

static void loop(form *f)
{
    while (f->answer == FORM_STAY) {
        uint32_t pending = 0;
        redraw_if_stale(f);
        if (f->hidden)                         // the notify function forgot to put it back
            form_unhide(f);
        if (f->hidden || ws_wait_event(WS_BUTTON | WS_KEY | WS_TIMER | WS_MOTION, &pending) != 0)
            f->answer = FORM_CANCELLED;
        else
            take_event(f, pending);
    }
}

int form_run(form *f, int x, int y, form_notify notify, void *data, int *last_out)
{
    if (!f || f->incomplete || f->running)
        return FORM_CANCELLED;
    if (form *const beneath = form_top())
        input_release_all(beneath);            // the release of what it holds will not reach it
    measure(f);
    place(f, x, y);
    if (!open_form(f))
        return FORM_CANCELLED;
    f->running = 1;
    f->hidden = f->stale = 0;
    f->notify = notify;
    f->data = data;
    f->answer = FORM_STAY;
    f->last = 0;
    f->last_transition = WS_UP;
    f->click_item = -1;
    f->covered = top_form;
    top_form = f;
    focus_first(f);
    form_draw(f);
    loop(f);
    if (!f->hidden)
        close_form(f);
    top_form = f->covered;
    f->running = 0;
    f->hidden = 0;
    f->focus = nullptr;
    redraw_if_stale(form_top());
    if (last_out)
        *last_out = f->last;
    return f->answer;
}
