#include "store/read_prompts.h"

#include <cstdio>

#include "display/geometry.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "store/file_class.h"

namespace {

void clear_prompt()
{
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

// From window pixels of current_window to the pixels that are asked for.
typedef void (*pixel_of)(int sx, int sy, int *x_out, int *y_out);

// 1 when the answer is a corner, 0 when it has to be asked again.
int corner_from(int input, pixel_of convert, int *x, int *y)
{
    if (input == INPUT_KEYIN)
        return sscanf(keyin_buffer, "%d %d", x, y) == 2;
    if (!is_picture(pick_window)) {
        msg_put(MSG_STATUS, MSG_CENTRED, "Select point from image window");
        beep(BEEP_PLAIN);
        return 0;
    }
    msg_clear(MSG_STATUS);
    convert(pick_x, pick_y, x, y);
    return 1;
}

int ask_corner(const char *title, const char *prompt, pixel_of convert, int *x, int *y)
{
    for (;;) {
        const int input = prompt_input(title, prompt, PROMPT_KEYIN);
        if (input & (INPUT_RESET | INPUT_QUIT))
            return 0;
        if ((input & (INPUT_KEYIN | INPUT_POINT)) && corner_from(input, convert, x, y))
            return 1;
    }
}

int ask_two_corners(const char *title, pixel_of convert, file_area *area_out)
{
    const int answered = ask_corner(title, "Enter x0 y0", convert, &area_out->x0, &area_out->y0)
                         && ask_corner(title, "Enter x1 y1", convert, &area_out->x1, &area_out->y1);
    clear_prompt();
    return answered;
}

} // namespace

int ask_file_name(const char *title, const char *prompt, char *name, int size)
{
    int input;
    do
        input = prompt_input(title, prompt, PROMPT_KEYIN);
    while (!(input & (INPUT_RESET | INPUT_QUIT)) && !(input == INPUT_KEYIN && keyin_length > 0));
    clear_prompt();
    if (input != INPUT_KEYIN)
        return 0;
    return loader_name(keyin_buffer, name, size);
}

int ask_integer(const char *title, const char *prompt, int *value_out)
{
    int input;
    do
        input = prompt_input(title, prompt, PROMPT_KEYIN);
    while (!(input & (INPUT_RESET | INPUT_QUIT)) && !(input == INPUT_KEYIN && sscanf(keyin_buffer, "%d", value_out) == 1));
    clear_prompt();
    return input == INPUT_KEYIN;
}

int ask_area(const char *title, file_area *area_out)
{
    return ask_two_corners(title, window_to_file, area_out);
}

int ask_held_area(const char *title, file_area *area_out)
{
    return ask_two_corners(title, window_to_held, area_out);
}
