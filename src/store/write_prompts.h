// write_prompts.h - what the commands that write ask besides a name.
#pragma once

int image_is_present();                // 1; 0 with "no image present" shown
// The held pixel whose colour is the background; -1, -1 after a reset or quit, which means black: an image that is saved on
// the way out is written all the same.
void ask_background(int *x_out, int *y_out);
