// prompt.h - the one loop that waits: every command asks the operator through prompt_input, and a menu command that is chosen
// meanwhile runs inside that wait. No command may assume that current_window survives a call.
#pragma once

enum prompt_flag {
    PROMPT_KEYIN         = 1,          // the operator may answer by key-in
    PROMPT_POLL          = 2,          // one pass, 0 when nothing came
    PROMPT_SHOW_POSITION = 256,        // position readout while waiting
    PROMPT_SHOW_PIXEL    = 512,        // pixel readout while waiting; wins over the position
};

enum input_bit {
    INPUT_RESET   = 1,                 // pick_x, pick_y
    INPUT_POINT   = 2,                 // pick_window, pick_x, pick_y: a click in a window that is not reserved
    INPUT_BUTTON1 = 4,                 // the data button went down
    INPUT_BUTTON0 = 8,                 // the data button came up
    INPUT_KEYIN   = 16,                // keyin_buffer, keyin_length
    INPUT_QUIT    = 32,                // unwind without further prompting
};

// Title in message field 1, prompt in field 3; a mask with one bit set, or 0 when polling found nothing.
int prompt_input(const char *title, const char *prompt, int flags);

// What is prompted for now, "" outside a wait (scripts).
const char *prompt_text();
int prompt_takes_keyin();              // 1 when that wait can be answered by key-in (scripts)

// The refreshes now queued are to be ignored for the rest of the present wait (everything has just been painted).
void prompt_mark_refresh_done();
