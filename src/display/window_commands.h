// window_commands.h - commands on whole windows: which is active, and their order and contents on the screen.
#pragma once

void set_active_window();

void redraw_win();
void redraw_all();
void erase_win();
void push_win();
void pop_win();
void restore_windows();
