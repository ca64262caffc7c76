// diagnostics.h - the commands that print the session's records on the standard output, and change nothing.
#pragma once

void debug_display_mode();
void debug_window();
void debug_band();
void debug_hist();
