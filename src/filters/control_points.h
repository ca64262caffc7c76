// control_points.h - matched points of two images: their lists, and their marks on the screen.
#pragma once

constexpr int CONTROL_POINTS = 512;    // room of the lists
constexpr int IDS_AT_ONCE = 16;        // identifiers that one key-in can name

// Lists of points are row then column of each, in held pixels. `m` counts equations, two a point.
struct control_points {
    int m = 0;
    int ids[CONTROL_POINTS];
    double in[2 * CONTROL_POINTS], out[2 * CONTROL_POINTS], weights[2 * CONTROL_POINTS];
};
inline int points_held(const control_points &points) { return points.m / 2; }
inline bool points_full(const control_points &points) { return points_held(points) >= CONTROL_POINTS; }

// Counts the point that stands behind the last one in both lists; there must be room. Its identifier is the number of points before it, so
// that after a deletion two points may bear the same one. This is meant.
void point_add(control_points &points);

// Reads up to `max` integers between blanks, commas, semicolons and tabs; what is no number ends the list.
void parse_ids(const char *text, int *ids, int *count, int max);

// Removes the first point of each identifier, the last of the n identifiers first; unknown ones are passed over.
void delete_points(double *in_points, double *out_points, double *weights, int *ids, int *m, const int *delete_list, int n);

// Draws point `index`, a cross with its identifier, in a picture window and in its overview. current_window is kept.
void point_mark(int index, const int *ids, const double *points, int window);

// A corner mark at a file pixel of a detail window. current_window is kept.
void point_mark_small(int x_file, int y_file, int window);
