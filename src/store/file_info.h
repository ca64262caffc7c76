// file_info.h - what a loader asks of an open file before it reads lines.
#pragma once
#include "RIO/rio.h"

// Keys 1, 2 and 3; with `matrix` key 4 too. With a non-zero *table the colour table is asked for: its type (1 or 2) goes to *table and its
// entries to file_vlt. 1, or 0 with "invalid raster file header" shown. Null outputs are not asked for.
int read_file_info(RFILE *file, int *type_out, int *width_out, int *height_out, int *table, double *matrix_out);
extern rio_vlt_entry file_vlt[RIO_VLT_SIZE];

// The smallest overview that still has the size that a screen of maxw by maxh wants, made active: its number, its reduction (times what
// has still to be skipped) and the increment to read it with. -1 and the base image when there is none.
int choose_overview(RFILE *file, int maxw, int maxh, int *size_out, int *increment_out);

int file_key(RFILE *file, int key);    // 0 when it cannot be had
int file_orientation(RFILE *file);     // 0 to 7

bool is_bitmap_type(int type);         // 1, 9, 23, 24
bool is_colour_type(int type);         // 25, 27, 28, 31
bool is_index_type(int type);          // 2, 10, 29, 30
bool has_colour_table(RFILE *file);    // at least one entry, of a usable type
bool has_wide_samples(RFILE *file);    // more than 8 bits
