// show_image.h - a picture window for bands that have just been read.
#pragma once

// All three equal for a monochrome image; blue -2: the full-screen window, on a colour table display only. Outside a split the window takes
// the largest size and the image is zoomed to fit; the second window of a split takes the right half. While a band is refetched
// no window is touched. The window's number, or -1 when there is none left.
int show_image(int red, int green, int blue);

// Gamma and colour tables for the image that starts a session.
void new_session_display();
