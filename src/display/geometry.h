// geometry.h - the two mappings between window pixels and held pixels, and what changes the view.
// current_window is the window meant throughout; for a window that is no picture every conversion gives 0.
// The rotation part is the top left 2 by 2 of the red band's xform; conversions to integers truncate toward zero.
#pragma once

void window_to_image(int sx, int sy, double *x_out, double *y_out);
void window_to_held(int sx, int sy, int *x_out, int *y_out);
void window_to_file(int sx, int sy, int *x_out, int *y_out);
void held_to_window(double x, double y, int *sx_out, int *sy_out);
void held_to_window_int(int x, int y, int *sx_out, int *sy_out);
void file_to_window(int x, int y, int *sx_out, int *sy_out);

void band_clear_xform(int band);       // identity
void band_reset_orientation(int band); // identity, then the flips and exchange of its orientation code
void apply_orientation(double matrix[4][4], int orientation);

constexpr double ZOOM_MIN = 1.0 / (1 << 30), ZOOM_MAX = 1 << 30;
void set_view_zoom(double zoom);       // of current_window, kept within the limits
void set_view_center(int x, int y);    // held pixels; warps the pointer to the window's middle
void refresh_view();                   // clears and repaints, with the coupled partner
void view_area(int x0, int y0, int x1, int y1);  // zooms so that a window rectangle fills the window
void fit_image();                      // of current_window

// Size of an overview of a w by h image, in place, and its zoom.
void overview_size(int *w, int *h, double *zoom_out);
