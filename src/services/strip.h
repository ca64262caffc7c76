// strip.h - the message strip's side towards the pump: keys, text and the pointer for its key-in line.
#pragma once
#include <cstdint>

bool strip_line_is_open();
void strip_type(char character);       // Latin-1
void strip_key(int key);               // backend_key: editing keys and Return
// A press at a point of the frame. 1 when it lay in the key-in line, whose cursor goes there.
int  strip_press(int x, int y);
void strip_flash(uint32_t until);      // shows the strip inverted until then
void strip_run(uint32_t now);          // ends the flash
int  strip_due_in(uint32_t now);       // milliseconds until that, or -1
