// script_input.cpp - the steps that do what an operator does.
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "forms/forms.h"
#include "services/ws_menu.h"
#include "shell/command_table.h"
#include "shell/menu.h"
#include "shell/prompt.h"
#include "shell/script_player.h"
#include "shell/session.h"

constexpr int ANY_KIND = -1;

enum mouse_button { LEFT_BUTTON = 0, RIGHT_BUTTON = 2 };

// --- commands ------------------------------------------------------------------------------------------------

static int commands_can_start(const std::string &wanted)
{
    if (!form_top())
        return 1;
    script_fail(wanted, std::string("the form \"") + form_title(form_top()) + "\" up, and the menu dead");
    return 0;
}

static void step_menu(const script_step &step)
{
    const std::string &item = step.words[1];
    const int id = menu_id_of(item.c_str());
    if (id < 0)
        script_fail("a menu item", "no \"" + item + "\"");
    else if (ws_menu_enabled(id) != 1)
        script_fail("menu item \"" + item + "\" to choose", "it grey");
    else if (commands_can_start("menu item \"" + item + "\""))
        ws_post_user_event(id);
}

// Rows without a menu item get an identifier that no item has, and take the same road.
static void step_run(const script_step &step)
{
    constexpr uint32_t FIRST_FREE_ID = 50000;
    command_row *row = command_find(step.words[1].c_str());
    if (!row) {
        script_fail("a command", "no \"" + step.words[1] + "\"");
        return;
    }
    if (!commands_can_start("command " + step.words[1]))
        return;
    if (row->menu_id == 0)
        row->menu_id = FIRST_FREE_ID + uint32_t(row - command_table);
    ws_post_user_event(int(row->menu_id));
}

// --- the pointer ---------------------------------------------------------------------------------------------

static void click_in_window(const script_step &step, int button, int modifiers)
{
    int x, y, w;
    if (script_place(step, 1, &x, &y, &w))
        script_aim(w, x, y, [=] { script_click(x, y, button, modifiers); });
}

static void step_point(const script_step &step)
{
    click_in_window(step, LEFT_BUTTON, 0);
}

static void step_help(const script_step &step)
{
    click_in_window(step, LEFT_BUTTON, BACKEND_CTRL);
}

static void queue_pointer(backend_event_kind kind, int frame_x, int frame_y)
{
    backend_event event {};
    event.kind = kind;
    event.x = frame_x;
    event.y = frame_y + ws_menu_height();
    event.button = LEFT_BUTTON;
    script_queue(event);
}

// A press counts as one when nothing follows for the time of a click.
static void step_press(const script_step &step)
{
    int x, y, w;
    if (!script_place(step, 1, &x, &y, &w))
        return;
    script_aim(w, x, y, [=] {
        queue_pointer(BACKEND_PRESS, x, y);
        script_settle(WS_CLICK_MS + 1);
    });
}

static void step_move(const script_step &step)
{
    int x, y, w;
    if (script_place(step, 1, &x, &y, &w))
        queue_pointer(BACKEND_MOVE, x, y);
}

static void step_release(const script_step &step)
{
    int x, y, w;
    if (!script_place(step, 1, &x, &y, &w))
        return;
    queue_pointer(BACKEND_MOVE, x, y);
    queue_pointer(BACKEND_RELEASE, x, y);
    script_settle(WS_CLICK_MS + 1);
}

static void step_reset(const script_step &step)
{
    if (step.words.size() == 1)
        script_queue_key(KEY_ESC, 0);
    else if (step.words.size() == 4)
        click_in_window(step, RIGHT_BUTTON, 0);
    else
        script_fail("reset, or reset W X Y", "another number of arguments");
}

// --- the keyboard --------------------------------------------------------------------------------------------

static void step_keyin(const script_step &step)
{
    if (!form_top() && !prompt_takes_keyin()) {
        script_fail("a prompt that takes a key-in", std::string("\"") + prompt_text() + "\"");
        return;
    }
    script_queue_text(step.words[1]);
    script_queue_key(KEY_RETURN, 0);
}

static void step_type(const script_step &step)
{
    script_queue_text(step.words[1]);
}

struct key_name {
    const char *name;
    int key;
};

static constexpr key_name key_names[] = {
    { "Esc", KEY_ESC },     { "Return", KEY_RETURN }, { "Tab", KEY_TAB },         { "Backspace", KEY_BACKSPACE },
    { "Delete", KEY_DELETE }, { "Home", KEY_HOME },   { "End", KEY_END },         { "Left", KEY_LEFT },
    { "Right", KEY_RIGHT }, { "Up", KEY_UP },         { "Down", KEY_DOWN },       { "PageUp", KEY_PAGE_UP },
    { "PageDown", KEY_PAGE_DOWN }, { "F1", KEY_F1 },  { "F10", KEY_F10 },
};

static int take_prefix(std::string *name, const char *prefix)
{
    const size_t length = std::strlen(prefix);
    if (name->size() <= length || name->compare(0, length, prefix) != 0)
        return 0;
    name->erase(0, length);
    return 1;
}

static void step_key(const script_step &step)
{
    std::string name = step.words[1];
    int modifiers = 0;
    for (bool more = true; more;) {
        if (take_prefix(&name, "Shift+"))
            modifiers |= BACKEND_SHIFT;
        else if (take_prefix(&name, "Ctrl+"))
            modifiers |= BACKEND_CTRL;
        else if (take_prefix(&name, "Alt+"))
            modifiers |= BACKEND_ALT;
        else
            more = false;
    }
    const int times = step.words.size() > 2 ? script_int(step, 2) : 1;
    for (const key_name &row : key_names) {
        if (name != row.name)
            continue;
        for (int i = 0; i < times; i++)
            script_queue_key(row.key, modifiers);
        return;
    }
    if (name.size() == 1 && (modifiers & BACKEND_ALT))
        script_queue_key(KEY_CHARACTER + std::tolower(uint8_t(name[0])), modifiers);
    else if (name.size() == 1 || name == "Space")
        for (int i = 0; i < times; i++)
            script_queue_text(name == "Space" ? " " : name);
    else
        script_fail("the name of a key", "\"" + name + "\"");
}

// --- forms ---------------------------------------------------------------------------------------------------

// Without the blanks that may stand before a label.
static std::string bare(const char *text)
{
    const std::string whole = text ? text : "";
    const size_t first = whole.find_first_not_of(' ');
    return first == std::string::npos ? "" : whole.substr(first);
}

// The form that is up, and what its gadgets can be called.
static std::string top_form_words()
{
    constexpr int LABELS = 1000;
    form *f = form_top();
    if (!f)
        return "no form";
    std::string words = std::string("the form \"") + form_title(f) + "\" with";
    for (int label = 1; label < LABELS; label++) {
        const gadget *g = form_gadget(f, label);
        if (!g || g->hidden)
            continue;
        for (const char *name : { g->text, g->second_text, g->name })
            if (name && *name)
                words += " \"" + bare(name) + "\"";
    }
    return words;
}

// The gadget of a step's first argument. Null after a failure.
static gadget *step_gadget(const script_step &step, int kind)
{
    const std::string &text = step.words[1];
    form *f = form_top();
    gadget *g = kind == ANY_KIND ? form_find(f, text.c_str()) : form_find_kind(f, kind, text.c_str());
    if (!g) {
        script_fail("a gadget \"" + text + "\"", top_form_words());
    } else if (g->disabled) {
        script_fail("the gadget \"" + text + "\"", "it grey");
        return nullptr;
    }
    return g;
}

static void click_gadget(gadget *g, double across)
{
    int x, y;
    if (form_point_of(form_top(), g, across, &x, &y) == 0)
        script_click(x, y, LEFT_BUTTON, 0);
}

static void step_gadget_press(const script_step &step)
{
    gadget *g = step_gadget(step, ANY_KIND);
    if (!g)
        return;
    const bool two_texts = g->kind == GADGET_TOGGLE && g->second_text;
    if (two_texts && bare(step.words[1].c_str()) == bare(g->on ? g->second_text : g->text))
        return;
    click_gadget(g, 0.5);
    script_settle(WS_CLICK_MS + 1);
}

static void step_field(const script_step &step)
{
    gadget *g = step_gadget(step, GADGET_FIELD);
    if (!g)
        return;
    const std::string text = step.words[2];
    const int length = int(std::strlen(g->value));
    click_gadget(g, 0.5);
    script_later([length, text] {
        script_queue_key(KEY_END, 0);
        for (int i = 0; i < length; i++)
            script_queue_key(KEY_BACKSPACE, 0);
        script_queue_text(text);
        script_queue_key(KEY_TAB, 0);
    });
}

// Arrow keys bring a slider as near to a value as its step allows.
static void nudge_slider(form *f, gadget *g, double value, int moves_left)
{
    if (form_top() != f)
        return;
    const double before = g->position;
    if (before == value || moves_left == 0)
        return;
    script_queue_key(before < value ? KEY_RIGHT : KEY_LEFT, 0);
    script_later([=] {
        const double off = std::fabs(g->position - value);
        if (off < std::fabs(before - value))
            nudge_slider(f, g, value, moves_left - 1);
        else if (g->position != before)
            script_queue_key(before < value ? KEY_LEFT : KEY_RIGHT, 0);
    });
}

static void step_slider(const script_step &step)
{
    constexpr int MOVES = 1000;
    gadget *g = step_gadget(step, GADGET_SLIDER);
    const double value = script_number(step, 2);
    if (!g)
        return;
    if (value < g->low || value > g->high) {
        script_fail("a value from " + std::to_string(g->low) + " to " + std::to_string(g->high), step.words[2]);
        return;
    }
    form *f = form_top();
    click_gadget(g, g->high > g->low ? (value - g->low) / (g->high - g->low) : 0);
    script_later([=] { nudge_slider(f, g, value, MOVES); });
}

static void step_list(const script_step &step)
{
    constexpr int APART_MS = 600;      // from the next click in the list, which would else be a double one
    gadget *g = step_gadget(step, GADGET_LIST);
    if (!g)
        return;
    int x, y;
    if (form_list_item_point(form_top(), g, step.words[2].c_str(), &x, &y) != 0) {
        script_fail("the item \"" + step.words[2] + "\"", "a list without it");
        return;
    }
    script_click(x, y, LEFT_BUTTON, 0);
    if (step.words.size() > 3 && step.words[3] == "twice")
        script_later([x, y] { script_click(x, y, LEFT_BUTTON, 0); });
    script_settle(APART_MS);
}

// --- windows -------------------------------------------------------------------------------------------------

static void step_collapse(const script_step &step)
{
    const int w = script_window(step, 1);
    if (w > 0)
        ws_collapse(w);
}

static void step_restore(const script_step &step)
{
    const int w = script_window(step, 1);
    if (w > 0)
        ws_uncollapse(w);
}

static void drag(int from_x, int from_y, int to_x, int to_y)
{
    queue_pointer(BACKEND_MOVE, from_x, from_y);
    queue_pointer(BACKEND_PRESS, from_x, from_y);
    queue_pointer(BACKEND_MOVE, to_x, to_y);
    queue_pointer(BACKEND_RELEASE, to_x, to_y);
}

// Both corners of the border are dragged, as far as they have to go.
static void step_resize(const script_step &step)
{
    const int w = script_window(step, 1);
    const int x0 = script_int(step, 2), y0 = script_int(step, 3), x1 = script_int(step, 4), y1 = script_int(step, 5);
    if (w <= 0)
        return;
    int border_x, border_y, caption;
    ws_frame_metrics(&border_x, &border_y, &caption);
    ws_pop_top(w);
    int left, top, right, bottom;
    ws_window_rect(w, &left, &top, &right, &bottom);
    const int grip_x = border_x / 2, grip_y = border_y / 2;
    if (right != x1 || bottom != y1)
        drag(right + grip_x, bottom + grip_y, x1 + grip_x, y1 + grip_y);
    if (left != x0 || top != y0)
        script_later([=] { drag(left - grip_x, top - caption + 1, x0 - grip_x, y0 - caption + 1); });
}

// The close button stands at the right end of the caption.
static void press_close_button(int w)
{
    int border_x, border_y, caption, x0, y0, x1, y1;
    ws_frame_metrics(&border_x, &border_y, &caption);
    ws_pop_top(w);
    ws_window_rect(w, &x0, &y0, &x1, &y1);
    script_click(x1 + border_x - caption / 2 - 1, y0 - caption / 2, LEFT_BUTTON, 0);
}

static void step_close(const script_step &step)
{
    const int w = script_window(step, 1);
    if (w == 0) {
        backend_event event {};
        event.kind = BACKEND_CLOSE;
        script_queue(event);
    } else if (w > 0) {
        press_close_button(w);
    }
}

static void step_drop(const script_step &step)
{
    backend_event event {};
    event.kind = BACKEND_DROP;
    if (step.words[1].size() >= sizeof event.path) {
        script_fail("a path", "one that is too long");
        return;
    }
    std::memcpy(event.path, step.words[1].c_str(), step.words[1].size() + 1);
    script_queue(event);
}

static void step_wait(const script_step &step)
{
    memory_backend_advance(script_int(step, 1));
}

const script_verb script_input_verbs[] = {
    { "menu", 1, 1, step_menu, true },
    { "run", 1, 1, step_run, true },
    { "point", 3, 3, step_point, true },
    { "help", 3, 3, step_help, true },
    { "press", 3, 3, step_press, true },
    { "move", 3, 3, step_move, true },
    { "release", 3, 3, step_release, true },
    { "reset", 0, 3, step_reset, true },
    { "keyin", 1, 1, step_keyin, true },
    { "type", 1, 1, step_type, true },
    { "key", 1, 2, step_key, true },
    { "gadget", 1, 1, step_gadget_press, true },
    { "field", 2, 2, step_field, true },
    { "slider", 2, 2, step_slider, true },
    { "list", 2, 3, step_list, true },
    { "collapse", 1, 1, step_collapse, true },
    { "restore", 1, 1, step_restore, true },
    { "resize", 5, 5, step_resize, true },
    { "close", 1, 1, step_close, true },
    { "drop", 1, 1, step_drop, true },
    { "wait", 1, 1, step_wait, true },
    { nullptr, 0, 0, nullptr, false },
};
