// read_prompts.h - what the read and write commands ask the operator. Each answers 1, or 0 after a reset or quit.
#pragma once
#include "store/load.h"

int ask_file_name(const char *title, const char *prompt, char *name, int size);   // with image_path in front of a relative name
int ask_integer(const char *title, const char *prompt, int *value_out);           // read with "%d"; anything else asks again
// Two corners, each keyed in as two numbers or pointed at in an image window; file pixels.
int ask_area(const char *title, file_area *area_out);
int ask_held_area(const char *title, file_area *area_out);   // the same in held pixels
