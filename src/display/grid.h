// grid.h - lines along the pixel boundaries, drawn over pictures from zoom 5 up.
#pragma once

constexpr double GRID_ZOOM = 5.0;

void grid_paint(int x0, int y0, int x1, int y1);  // paint hook: current_window, the whole of it
void grid_redraw();                    // in all pictures, where the grid is on

void toggle_grid();
void enable_grid();
void disable_grid();
