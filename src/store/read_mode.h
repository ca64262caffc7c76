// read_mode.h - display_mode around a read.
#pragma once
#include <cstdint>

// COLOR set for a colour read and cleared for a grey one. Answers the mode as it was.
uint32_t read_mode_begin(bool colour);

// A read that failed leaves the images on the screen in the mode they had.
void read_mode_end(uint32_t old_mode, int loaded);
