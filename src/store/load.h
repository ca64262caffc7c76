// load.h - the loaders: a file becomes bands, and with `show` a picture.
//
// increment  1 every pixel and line; 0 the default, so that the whole image fits the screen (the best overview of the file is
//            taken then); n every n-th pixel and line
// area       in file pixels at full resolution, corners in any order; a negative value means whole
// Each answers 1, or 0 when there is no band; why stands in message field 2. A file that ends early loads: its tail is black.
// While REFETCHING_BAND is set the active window's bands are filled again and nothing else changes.
#pragma once

struct file_area {
    int x0, y0, x1, y1;
};
constexpr file_area WHOLE_FILE = { -1, -1, -1, -1 };

enum { SOURCE_GRAY = 0, SOURCE_COLOUR_INDEX = 2 };

int load_gray(int increment, const char *name, int source, const file_area &area, int show, int *band_out);
int load_rgb_file(int increment, const char *name, const file_area &area, int show, int *r_out, int *g_out, int *b_out);
int load_gray3(int increment, const char *red, const char *green, const char *blue, const file_area &area, int show, int *r_out,
               int *g_out, int *b_out);
int load_colour_index(int increment, const char *name, const file_area &area, int show, int *r_out, int *g_out, int *b_out);
int load_bin(const char *name, int show, int *band_out);
// The offset counts 16-bit words.
int load_raw(int increment, const char *name, int word_offset, int columns, int rows, const file_area &area, int show, int *band_out);
int load_raw3(int increment, const char *const names[3], const int word_offsets[3], int columns, int rows, const file_area &area,
              int show, int *r_out, int *g_out, int *b_out);
