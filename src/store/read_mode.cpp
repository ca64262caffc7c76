#include "store/read_mode.h"

#include "shell/session.h"

uint32_t read_mode_begin(bool colour)
{
    const uint32_t old_mode = display_mode;
    display_mode = colour ? display_mode | COLOR : display_mode & ~uint32_t{COLOR};
    return old_mode;
}

void read_mode_end(uint32_t old_mode, int loaded)
{
    if (!loaded && active_window >= 0)
        display_mode = (display_mode & ~uint32_t{COLOR}) | (old_mode & COLOR);
}
