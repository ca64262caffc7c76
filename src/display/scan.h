// scan.h - the scan routines: one line of the window after another, sampled by nearest neighbour at any zoom and rotation.
#pragma once
#include <cstdint>

// What a scan routine reads, one a band: a memory band, or one tile of a tile-backed band.
struct view_source {
    const view_source *next_plane;     // green of red, blue of green; null for a monochrome source
    const uint8_t *pixels;             // rows, or null for a uniform block
    int32_t fill_value;                // of a uniform block
    int32_t x, y;                      // of the block, held pixels
    int32_t width, height, stride;     // pixels; stride is from a row to the next: bytes, or bits which fill whole 16-bit words
};

// Chooses the routine for a window. depth 1, 8 or 24; tables of 256 entries; matrix: source to window, row by row.
void scan_prepare(int window, int x0, int y0, int x1, int y1, uint32_t value_mask, int source_width, int source_height, int depth,
                  const uint16_t *red_table, const uint16_t *green_table, const uint16_t *blue_table, const double matrix[16]);
void scan_run(int window, const view_source *source);
// Turns the chosen routine into its memory variant: values go into buffer, a byte a pixel, one clip width a line.
void scan_set_target(int window, uint8_t *buffer);

void scan_reset();                     // frees the buffers and forgets what was chosen
