#include "store/write_prompts.h"

#include "display/geometry.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

int image_is_present()
{
    if (active_window >= 0 && windows[active_window].red_band >= 0)
        return 1;
    msg_put(MSG_STATUS, MSG_CENTRED, "no image present");
    beep(BEEP_ERROR);
    return 0;
}

void ask_background(int *x_out, int *y_out)
{
    *x_out = *y_out = -1;
    msg_put(MSG_STATUS, MSG_CENTRED, "Reset to select black background color");
    int input;
    do {
        input = prompt_input("Write RGB image file", "Point to background", 0);
        if (input == INPUT_POINT && !is_picture(pick_window))
            beep(BEEP_PLAIN);
    } while (!(input & (INPUT_RESET | INPUT_QUIT)) && !(input == INPUT_POINT && is_picture(pick_window)));
    if (input == INPUT_POINT)
        window_to_held(pick_x, pick_y, x_out, y_out);
    msg_clear(MSG_TITLE);
    msg_clear(MSG_STATUS);
    msg_clear(MSG_PROMPT);
}
