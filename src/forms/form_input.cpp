#include "forms/form_record.h"
#include "forms/gadget_layout.h"
#include "forms/list_scroll.h"
#include "forms/slider_scale.h"
#include <algorithm>

static constexpr uint32_t DOUBLE_CLICK_MS = 500;
static constexpr int STEP_PERIOD = 6;          // sixtieths of a second between the steps of a held scroll arrow
static constexpr int RESET_BUTTON = 2;

// --- telling the caller ----------------------------------------------------------------------------------------

static void take_answer(form *f, const gadget *g, int answer)
{
    if (f->answer != FORM_STAY || answer == FORM_STAY || answer == FORM_KEEP)
        return;
    f->answer = answer;
    f->last = g ? g->label : 0;
}

static void tell(form *f, gadget *g, int event)
{
    if (f->notify && f->answer == FORM_STAY)
        take_answer(f, g, f->notify(f, g, event, f->data));
}

static void press_button(form *f, gadget *g)
{
    int answer = f->notify ? f->notify(f, g, GADGET_PRESSED, f->data) : g->kind == GADGET_BUTTON ? FORM_DONE : FORM_STAY;
    if (answer == FORM_STAY && g->kind == GADGET_ACCEPT)
        answer = FORM_DONE;
    if (answer == FORM_STAY && g->kind == GADGET_CANCEL)
        answer = FORM_CANCELLED;
    take_answer(f, g, answer);
}

void input_cancel(form *f)
{
    input_release_all(f);
    for (int i = 0; i < f->gadget_count; i++) {
        if (f->gadgets[i]->kind == GADGET_CANCEL && gadget_is_live(f->gadgets[i])) {
            press_button(f, f->gadgets[i]);
            return;
        }
    }
    take_answer(f, nullptr, FORM_CANCELLED);
}

static void choose_radio(form *f, gadget *g)
{
    const int was_on = g->on;
    radio_turn_on(f, g);
    tell(f, g, was_on ? GADGET_PRESSED : GADGET_CHANGED);
}

// What a click, the space bar or, for buttons, Return does.
static void activate(form *f, gadget *g)
{
    switch (g->kind) {
    case GADGET_TOGGLE:
        g->on = !g->on;
        form_changed(f, g);
        tell(f, g, GADGET_CHANGED);
        break;
    case GADGET_RADIO:
    case GADGET_SWATCH:
        choose_radio(f, g);
        break;
    default:
        press_button(f, g);
    }
}

static int stays_down(int transition)
{
    return transition == WS_DOWN || transition == WS_DOUBLE_DOWN;
}

// --- sliders and lists -----------------------------------------------------------------------------------------

static void slide_to(form *f, gadget *g, double value)
{
    if (value == g->position)
        return;
    g->position = value;
    form_changed(f, g);
    tell(f, g, GADGET_CHANGED);
}

static void slide_with_pointer(form *f, gadget *g, int x)
{
    slide_to(f, g, slider_value_at(g, slider_share_at(f, g, x - f->grip)));
}

// A press on the thumb takes hold of it where it is; a press elsewhere, or a quick click, brings its middle to the pointer.
static void press_slider(form *f, gadget *g, int x, int transition)
{
    const ws_rect thumb = slider_thumb(f, g);
    const int takes_hold = stays_down(transition) && x >= thumb.x0 && x <= thumb.x1;
    f->held_part = HELD_SLIDER;
    f->grip = takes_hold ? x - thumb.x0 : rect_width(thumb) / 2;
    slide_with_pointer(f, g, x);
}

static void scroll_by(form *f, gadget *g, int rows)
{
    const int before = g->first_item;
    list_scroll_to(f, g, g->first_item + rows);
    if (g->first_item != before)
        form_changed(f, g);
}

static void pick_item(form *f, gadget *g, int item, int twice)
{
    g->picked = item;
    list_show_item(f, g, item);
    form_changed(f, g);
    tell(f, g, twice ? GADGET_PICKED_TWICE : GADGET_PICKED);
}

static void click_item(form *f, gadget *g, int item, int transition, uint32_t time)
{
    const int twice = transition == WS_DOUBLE_CLICK
        || (f->click_list == g && f->click_item == item && time - f->click_time <= DOUBLE_CLICK_MS);
    f->click_list = g;
    f->click_item = twice ? -1 : item;
    f->click_time = time;
    pick_item(f, g, item, twice);
}

static void hold_step(form *f, gadget *g, int rows, int y, int down)
{
    f->held_part = HELD_LIST_STEP;
    f->step = rows;
    f->grip = y;
    scroll_by(f, g, rows);
    if (down && ws_timer_start(STEP_PERIOD, &f->timer) != 0)
        f->timer = -1;
}

static void press_list(form *f, gadget *g, int x, int y, int transition, uint32_t time)
{
    const ws_rect thumb = list_thumb(f, g);
    const int visible = list_visible_rows(f, g), down = stays_down(transition);
    const int item = list_item_at(f, g, x, y);
    if (item >= 0)
        click_item(f, g, item, transition, time);
    else if (rect_contains(list_up_arrow(f, g), x, y))
        hold_step(f, g, -1, y, down);
    else if (rect_contains(list_down_arrow(f, g), x, y))
        hold_step(f, g, 1, y, down);
    else if (rect_contains(thumb, x, y)) {
        f->held_part = HELD_LIST_THUMB;
        f->grip = y - thumb.y0;
    } else if (rect_contains(list_trough(f, g), x, y))
        hold_step(f, g, y < thumb.y0 ? -visible : visible, y, down);
}

void input_step(form *f)
{
    gadget *const g = f->held;
    if (!g || f->held_part != HELD_LIST_STEP)
        return;
    // Paging ends where the thumb has come under the pointer.
    const ws_rect thumb = list_thumb(f, g);
    const int paging = rect_contains(list_trough(f, g), thumb.x0, f->grip);
    const int reached = f->step < 0 ? thumb.y0 <= f->grip : thumb.y1 >= f->grip;
    if (!paging || !reached)
        scroll_by(f, g, f->step);
}

static void drag_list_thumb(form *f, gadget *g, int y)
{
    const ws_rect trough = list_trough(f, g);
    const int before = g->first_item;
    g->first_item = scroll_first_at(rect_height(trough), rect_height(list_thumb(f, g)), g->item_count, list_visible_rows(f, g),
                                    y - f->grip - trough.y0);
    if (g->first_item != before)
        form_changed(f, g);
}

// --- fields ------------------------------------------------------------------------------------------------------

static void scroll_field(form *f, gadget *g)
{
    edit_scroll(&f->edit, g->value, rect_width(field_text_rect(f, g)), field_text_advance);
    form_changed(f, g);
}

static void caret_to_pointer(form *f, gadget *g, int x, int extend)
{
    const int position = edit_position_at(&f->edit, g->value, x - field_text_rect(f, g).x0, field_text_advance);
    if (extend && position == f->edit.caret)
        return;
    edit_place(&f->edit, g->value, position, extend);
    scroll_field(f, g);
}

static void press_field(form *f, gadget *g, int x, int transition)
{
    f->held_part = HELD_FIELD;
    if (transition >= WS_DOUBLE_DOWN) {
        edit_select_all(&f->edit, g->value);
        scroll_field(f, g);
    } else {
        caret_to_pointer(f, g, x, 0);
    }
}

// Return and Tab. 1 when the form goes on and nobody has moved the focus meanwhile.
static int complete_field(form *f)
{
    gadget *const field = f->focus;
    f->focus_called = 0;
    tell(f, field, GADGET_COMPLETED);
    return f->answer == FORM_STAY && !f->focus_called && f->focus == field;
}

// --- the pointer -------------------------------------------------------------------------------------------------

void input_release_all(form *f)
{
    gadget *const held = f->held;
    if (f->timer >= 0)
        ws_timer_stop(f->timer);
    f->timer = -1;
    f->held = nullptr;
    f->held_part = HELD_NOTHING;
    f->held_inside = 0;
    if (held)
        form_changed(f, held);
}

static void press(form *f, int x, int y, int transition, uint32_t time)
{
    gadget *const g = gadget_at(f, x, y);
    input_release_all(f);
    if (!g || g->kind != GADGET_LIST || g != f->click_list)
        f->click_item = -1;
    if (!g)
        return;
    if (f->focus != g)
        focus_give(f, g, 0);
    f->held = g;
    switch (g->kind) {
    case GADGET_FIELD:  press_field(f, g, x, transition); break;
    case GADGET_SLIDER: press_slider(f, g, x, transition); break;
    case GADGET_LIST:   press_list(f, g, x, y, transition, time); break;
    default:
        f->held_part = HELD_BUTTON;
        f->held_inside = 1;
        form_changed(f, g);
    }
}

static void release(form *f, int x, int y)
{
    gadget *const g = f->held;
    if (!g)
        return;
    input_motion(f, x, y);
    const int pressed = f->held == g && f->held_part == HELD_BUTTON && f->held_inside;
    input_release_all(f);
    if (pressed && f->answer == FORM_STAY)
        activate(f, g);
}

void input_motion(form *f, int x, int y)
{
    gadget *const g = f->held;
    if (f->canvas.motion && !g && f->canvas.motion(f->window, x, y, f->canvas_data))
        return;
    if (!g || f->answer != FORM_STAY)
        return;
    const int inside = rect_contains(gadget_rect(f, g), x, y);
    switch (f->held_part) {
    case HELD_SLIDER:     slide_with_pointer(f, g, x); break;
    case HELD_LIST_THUMB: drag_list_thumb(f, g, y); break;
    case HELD_FIELD:      caret_to_pointer(f, g, x, 1); break;
    case HELD_BUTTON:
        if (inside != f->held_inside) {
            f->held_inside = inside;
            form_changed(f, g);
        }
        break;
    }
}

// A press is reported only when it has lasted a while; the pointer may have moved on since.
static void catch_up_with_pointer(form *f)
{
    int x, y, inside;
    if (f->held && f->answer == FORM_STAY && ws_pointer_in_window(f->window, &x, &y, &inside) == 0)
        input_motion(f, x, y);
}

void input_button(form *f, int x, int y, int button, int transition, uint32_t time)
{
    const int before = f->last_transition;
    f->last_transition = transition;
    if (button == RESET_BUTTON) {
        if (transition != WS_UP)
            input_cancel(f);
    } else if (f->canvas.button && !f->held && f->canvas.button(f->window, x, y, button, transition, f->canvas_data)) {
        return;
    } else if (transition == WS_UP) {
        release(f, x, y);
    } else if (transition == WS_DOWN) {
        press(f, x, y, transition, time);
        catch_up_with_pointer(f);
    } else if (transition != WS_DOUBLE_CLICK || before != WS_DOUBLE_DOWN) {
        // A double click that was already reported as a double press counts once.
        press(f, x, y, transition, time);
        release(f, x, y);
    }
}

// --- the keyboard ------------------------------------------------------------------------------------------------

static int key_direction(int key)
{
    return key == WS_KEY_LEFT || key == WS_KEY_UP ? -1 : key == WS_KEY_RIGHT || key == WS_KEY_DOWN ? 1 : 0;
}

static int is_button(const gadget *g)
{
    return g->kind == GADGET_BUTTON || g->kind == GADGET_ACCEPT || g->kind == GADGET_CANCEL;
}

static void key_return(form *f)
{
    gadget *const g = f->focus;
    if (g && g->kind == GADGET_FIELD) {
        if (!complete_field(f))
            return;
        if (gadget *const next = focus_next_field(f)) {
            focus_give(f, next, 1);
            return;
        }
    } else if (g && is_button(g)) {
        press_button(f, g);
        return;
    } else if (g && g->kind == GADGET_LIST && g->picked >= 0) {
        pick_item(f, g, g->picked, 1);
        return;
    }
    if (gadget *const button = default_button(f))
        press_button(f, button);
}

static void key_tab(form *f, int direction)
{
    if (!f->focus || f->focus->kind != GADGET_FIELD || complete_field(f))
        focus_step(f, direction);
}

static void key_in_slider(form *f, gadget *g, int key)
{
    double value = g->position;
    switch (key) {
    case WS_KEY_LEFT:
    case WS_KEY_DOWN:  value -= slider_key_step(g); break;
    case WS_KEY_RIGHT:
    case WS_KEY_UP:    value += slider_key_step(g); break;
    case WS_KEY_HOME:  value = g->low; break;
    case WS_KEY_END:   value = g->high; break;
    default:           return;
    }
    slide_to(f, g, slider_nearest(g, value));
}

static void key_in_list(form *f, gadget *g, int key)
{
    int item = g->picked;
    if (key == WS_KEY_UP || key == WS_KEY_DOWN)
        item = item < 0 ? g->first_item : std::clamp(item + key_direction(key), 0, std::max(0, g->item_count - 1));
    else if (key == WS_KEY_HOME)
        item = 0;
    else if (key == WS_KEY_END)
        item = g->item_count - 1;
    else if (key > ' ')
        item = list_find_initial(g, key);
    if (item >= 0 && item < g->item_count && item != g->picked)
        pick_item(f, g, item, 0);
}

static void key_in_radio(form *f, gadget *g, int key)
{
    gadget *const next = radio_in_group(f, g, key_direction(key));
    if (next && next != g) {
        focus_give(f, next, 0);
        choose_radio(f, next);
    }
}

static void key_in_button(form *f, gadget *g, int key)
{
    const int count = f->gadget_count;
    const int start = int(std::find(f->gadgets, f->gadgets + count, g) - f->gadgets);
    for (int i = 1; i < count; i++) {
        gadget *const other = f->gadgets[(start + key_direction(key) * i + count) % count];
        if (gadget_is_live(other) && is_button(other)) {
            focus_give(f, other, 0);
            return;
        }
    }
}

// The wheel comes as Up and Down keys: they go to the list under the pointer, unless that list has the focus.
static gadget *list_under_pointer(form *f)
{
    int x, y, inside;
    if (ws_pointer_in_window(f->window, &x, &y, &inside) != 0 || !inside)
        return nullptr;
    gadget *const g = gadget_at(f, x, y);
    return g && g->kind == GADGET_LIST && g != f->focus ? g : nullptr;
}

static void key_in_focus(form *f, gadget *g, int key)
{
    const int is_radio = g->kind == GADGET_RADIO || g->kind == GADGET_SWATCH;
    if (g->kind == GADGET_FIELD) {
        if (edit_key(&f->edit, g->value, g->value_size, key))
            scroll_field(f, g);
    } else if (g->kind == GADGET_SLIDER) {
        key_in_slider(f, g, key);
    } else if (g->kind == GADGET_LIST) {
        key_in_list(f, g, key);
    } else if (key == ' ') {
        activate(f, g);
    } else if (key_direction(key) && is_radio) {
        key_in_radio(f, g, key);
    } else if (key_direction(key) && is_button(g)) {
        key_in_button(f, g, key);
    }
}

static void input_key(form *f, int key)
{
    if (key == WS_KEY_TAB)
        key_tab(f, 1);
    else if (key == WS_KEY_BACKTAB)
        key_tab(f, -1);
    else if (key == WS_KEY_RETURN)
        key_return(f);
    else if (gadget *const list = key == WS_KEY_UP || key == WS_KEY_DOWN ? list_under_pointer(f) : nullptr)
        scroll_by(f, list, key_direction(key));
    else if (f->focus)
        key_in_focus(f, f->focus, key);
}

void input_keys(form *f, const uint8_t *bytes, int count)
{
    for (int i = 0; i < count && f->answer == FORM_STAY; i++)
        input_key(f, bytes[i]);
}
