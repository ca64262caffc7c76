// detail_window.h - a small picture window on a part of an image at full resolution, with pixels of its own.
#pragma once

// Opens a window of width by height screen pixels at x, y (moved to lie on the screen) on file_w by file_h file pixels around a
// file pixel of the picture `window`. The pixels come from memory, or from the file when the picture holds only every n-th.
//   min_zoom   the zoom is twice that of `window`, but at least this
// The picture stays the active window. The number of the window, or -1 with the reason in message field 2.
int detail_window(int x, int y, int width, int height, int file_w, int file_h, int centre_x, int centre_y, double min_zoom, int window);

void detail_win();
