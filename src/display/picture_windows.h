// picture_windows.h - how picture windows are created, named, activated, repainted and closed.
#pragma once
#include <cstdint>

// Creates, activates and clears a picture window; current_window and active_window are its number. 0, or -1 when there is none left.
int  new_picture_window(int width, int height, int x, int y);
// Any window but the frame, with its overview; the partner of a split takes the whole screen. already_gone: the window system has
// destroyed it.
void close_window(int w, bool already_gone = false);
void close_all_windows();              // all but the reserved ones
void apply_active();                   // makes current_window, if it is an image window, the active one
void mark_active(int w);
void activate_any();
void window_set_name(int w);           // from the labels of its bands; titles it too
void window_read_geometry(int w);      // x, y, width, height from the services
void window_uncollapse(int w);         // back from its icon; nothing for a window that is none
bool pictures_are_mixed();             // image windows of one band and of three are open
void set_drawing_colour(int w, int colour);  // a slot; on a true colour display 0xRRGGBB, below 16 a named colour
void paint_bands(uint32_t mask);       // every picture showing a band of the mask, 39 to 0; current_window is -1 afterwards
void paint_colour_bands(uint32_t mask);
void clear_bands(uint32_t mask);
void clear_colour_windows();
void clear_all_pictures();
void paint_all_pictures();
void paint_whole_window();             // current_window, a picture
void rename_bands(uint32_t mask);
void clear_reserved_window();          // current_window
void busy_all();                       // busy cursor in all displayed windows, 39 to 0
void normal_all();

