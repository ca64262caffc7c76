#include "display/draw_symbol.h"

#include <cstdint>

#include "display/picture_windows.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

// A ring in columns 1 to 7 and rows 0 to 6 of 8 by 8 pixels: a word a row, top bit left.
static constexpr uint16_t ring[8] = { 0x1C00, 0x2200, 0x4100, 0x4100, 0x4100, 0x2200, 0x1C00, 0 };
static constexpr int RING_COLOUR = 1;

static void stamp(int x, int y)
{
    set_drawing_colour(current_window, RING_COLOUR);
    ws_draw_bitmap(current_window, plane_mask, x - 4, y - 3, x + 3, y + 4, ring);
}

void draw_symbol()
{
    int input;
    do {
        input = prompt_input("Draw symbol", "Select point", 0);
        if (input == INPUT_POINT && is_picture(pick_window))
            stamp(pick_x, pick_y);
    } while (!(input & (INPUT_RESET | INPUT_QUIT)));
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
}

void draw_vector_c()
{
}

void draw_vector_s()
{
}
