// write_prompts.h - what the commands that write ask besides a name.
#pragma once

int image_is_present();                // 1; 0 with "no image present" shown
// The held pixel whose colour is the background; -1, -1 after a reset, which means black. 0 on quit.
int ask_background(int *x_out, int *y_out);
