// startup.h - from the bare process to "Ready", and the questions before the end.
#pragma once

struct screen_layout;

// Services, planes and mode, directories, fonts, layout, colours, records. 1; 0 when start-up ends here, with the reason reported.
int  main_init();
void layout_compute();
screen_layout layout_for_screen(int width, int height, int border_x, int border_y, int caption, int strip);
void options_parse(int argc, char **argv);
void main_end();                       // frees the bands, puts the colour table back, leaves the services
int  kestrel_run(int argc, char **argv);  // start-up, main loop, end: the exit status
void quit();                           // command: every wait answers INPUT_QUIT from now on
int  ask_save_changes(int window);     // 1 saved, -1 nothing to save or not wanted, 0 cancelled or not saved
int  ask_save_on_exit();               // 0: do not quit
