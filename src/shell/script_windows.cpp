// script_windows.cpp - windows of a script by number or word, and places in them.
#include <cstdlib>

#include "forms/forms.h"
#include "services/ws_menu.h"
#include "shell/script_player.h"
#include "shell/session.h"

static bool seen[WINDOWS];
static int newest = -1;

void script_note_windows()
{
    for (int w = 1; w < WINDOWS; w++) {
        const bool in_use = windows[w].flags != 0;
        if (in_use && !seen[w])
            newest = w;
        seen[w] = in_use;
    }
}

static int cut_window()
{
    for (int w = 1; w < WINDOWS; w++)
        if ((windows[w].flags & (CUT | WIN_OVERVIEW)) == CUT)
            return w;
    return -1;
}

static int window_of_word(const std::string &word)
{
    if (word == "frame" || word == "form")
        return 0;
    if (word == "active")
        return active_window;
    if (word == "hist")
        return hist_window;
    if (word == "overview")
        return active_window < 0 ? -1 : window_overview_of(active_window);
    if (word == "cut")
        return cut_window();
    if (word == "newest")
        return newest >= 0 && windows[newest].flags ? newest : -1;
    char *end;
    const long number = std::strtol(word.c_str(), &end, 10);
    return !word.empty() && !*end && number >= 0 && number < WINDOWS ? int(number) : -1;
}

int script_window(const script_step &step, int word)
{
    const std::string &text = step.words[size_t(word)];
    const int w = window_of_word(text);
    int x0, y0, x1, y1;
    if (w < 0 || ws_window_rect(w, &x0, &y0, &x1, &y1) != 0) {
        script_fail("window " + text, "no such window");
        return -1;
    }
    return w;
}

static int drawable_area(int w, bool frame, ws_rect *area_out)
{
    if (frame) {
        ws_screen_info info;
        ws_inquire_screen(&info);
        *area_out = { 0, 0, info.width - 1, info.height - 1 };
        return 1;
    }
    return ws_window_rect(w, &area_out->x0, &area_out->y0, &area_out->x1, &area_out->y1) == 0;
}

int script_place(const script_step &step, int word, int *frame_x_out, int *frame_y_out, int *window_out)
{
    const std::string &name = step.words[size_t(word)];
    const int w = script_window(step, word), x = script_int(step, word + 1), y = script_int(step, word + 2);
    if (w < 0)
        return 0;
    const bool frame = w == 0 && name != "form";
    if (name == "form" && !form_top()) {
        script_fail("a form", "none");
        return 0;
    }
    ws_rect area;
    if (!drawable_area(w, frame, &area))
        return 0;
    const int width = area.x1 - area.x0 + 1, height = area.y1 - area.y0 + 1;
    if (x < 0 || y < 0 || x >= width || y >= height) {
        script_fail("a point in window " + name, "one outside of its " + std::to_string(width) + " by " + std::to_string(height) + " pixels");
        return 0;
    }
    *frame_x_out = area.x0 + x;
    *frame_y_out = area.y0 + y;
    *window_out = w;
    return 1;
}

static int window_under_pointer()
{
    int w, x, y, inside;
    ws_pointer_anywhere(&w, &x, &y, &inside);
    return w;
}

void script_aim(int w, int frame_x, int frame_y, std::function<void()> act)
{
    backend_event move {};
    move.kind = BACKEND_MOVE;
    move.x = frame_x;
    move.y = frame_y + ws_menu_height();
    script_queue(move);
    script_later([w, act] {
        if (window_under_pointer() != w && w > 0)
            ws_pop_top(w);
        const int found = window_under_pointer();
        if (found == w)
            act();
        else
            script_fail("window " + std::to_string(w) + " at that place", "window " + std::to_string(found));
    });
}
