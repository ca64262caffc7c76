// polygon_mask.h - a closed polygon as the intervals that it covers on each row.
#pragma once
#include <cstdint>

// Writes the polygon of `count` vertices (row, column of each; the last one repeats the first) into `mask`: triples (row, first column,
// end column), rows ascending, closed by a row of -1. A triple begins behind the outline's pixels on its left and ends on the first pixel
// of the outline on its right; the outline has the pixels of lines drawn on the screen. Overlapping parts cancel out (even-odd).
// Only rows first_row to last_row are written. `mask` holds poly_mask_bytes. Any coordinates may come.
// 0, or -1 when a row meets more than 101 separate parts of the outline (reported).
int poly_to_rast(const int32_t *vertices, int count, int32_t *mask, int32_t first_row = INT32_MIN, int32_t last_row = INT32_MAX);

// What the mask of a polygon can take at most.
int64_t poly_mask_bytes(const int32_t *vertices, int count, int32_t first_row, int32_t last_row);
