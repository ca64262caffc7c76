// polygon_input.h - a polygon that the operator draws on the active window, point by point.
#pragma once
#include <cstdint>

extern char polygon_title[80];         // what message field 1 shows meanwhile; the caller fills it

// Up to `max_points` vertices in held pixels, row and column of each, into `vertices`, which holds max_points + 1 of them; the first one
// is repeated at the end and counted. `prefix` stands before the prompt.
// 1 when the operator accepts. 0 on a rejection, with fewer than 3 points, and on a quit; what was drawn is then painted over.
int polygon_input(int32_t *vertices, int *count, int max_points, const char *prefix);

// Draws the closed outline once more in current_window: it vanishes where it stands, and comes back where the window was painted over.
void polygon_draw(const int32_t *vertices, int count);
