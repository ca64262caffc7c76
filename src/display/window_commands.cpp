#include "display/window_commands.h"

#include "display/picture_windows.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

namespace {

void clear_prompt()
{
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

// 1 with current_window the picked one; 0 on reset or quit.
int pick_any_window(const char *title)
{
    int input;
    do
        input = prompt_input(title, "Select window", 0);
    while (!(input & (INPUT_POINT | INPUT_RESET | INPUT_QUIT)));
    clear_prompt();
    return input == INPUT_POINT;
}

// Clears and repaints current_window.
void redraw_window()
{
    const int w = current_window;
    if (windows[w].flags & RESERVED_WIN) {
        clear_reserved_window();
    } else if (is_picture(w)) {
        ws_clear_window(w);
        paint_whole_window();
    } else if (w == hist_window) {
        ws_clear_window(w);
        draw_hist(-1, -1, -1, -1);
    } else if (w == source_hist_window) {
        ws_clear_window(w);
        redraw_source_hist();
    }
}

} // namespace

void set_active_window()
{
    int input;
    do
        input = prompt_input("Set active window", "Select window", 0);
    while (!(input & (INPUT_RESET | INPUT_QUIT)) && !(input == INPUT_POINT && is_image_window(pick_window)));
    clear_prompt();
    if (input == INPUT_POINT)
        apply_active();
}

void redraw_win()
{
    if (pick_any_window("Redraw"))
        redraw_window();
}

void redraw_all()
{
    msg_put(MSG_TITLE, MSG_CENTRED, "Refresh all windows");
    for (int w = 0; w < WINDOWS; w++)
        if (windows[w].flags != 0) {
            current_window = w;
            redraw_window();
        }
    msg_clear(MSG_TITLE);
}

void erase_win()
{
    if (pick_any_window("Erase"))
        ws_clear_window(current_window);
}

void push_win()
{
    if (pick_any_window("Push to bottom"))
        ws_push_bottom(current_window);
}

void pop_win()
{
    if (pick_any_window("Pop to top"))
        ws_pop_top(current_window);
}

void restore_windows()
{
    msg_put(MSG_TITLE, MSG_CENTRED, "Restore all windows");
    for (int w = 0; w < WINDOWS; w++)
        if ((windows[w].flags & WIN_DISPLAYED) && !(windows[w].flags & RESERVED_WIN)) {
            ws_pop_top(w);
            window_uncollapse(w);
        }
    msg_clear(MSG_TITLE);
}
