// startup.h - from the bare process to "Ready", and the questions before the end.
#pragma once

void main_init();                      // services, planes and mode, directories, fonts, layout, colours, records
void layout_compute();
void options_parse(int argc, char **argv);
int  kestrel_run(int argc, char **argv);  // start-up, main loop, end: the exit status
int  ask_save_changes(int window);     // 1 saved, -1 nothing to save or not wanted, 0 cancelled
int  ask_save_on_exit();               // 0: do not quit
// `name` behind image_path, when that is set and the name does not begin with '.' or '/'.
void prefix_image_path(const char *name, char *out, int size);
