// bands.h - what gives a band its memory, its area and its tables.
#pragma once
#include "shell/session.h"

int  band_alloc(int n);                // memory for x_size, y_size and format as written; 1, or 0 with its words shown
int  band_alloc_rgb(int r, int g, int b);
void band_free(int n);
void band_reset_tables(int n);
void band_set_file_name(band_rec &band, const char *name);   // and the label; null is empty
int  band_row_bytes(const band_rec *band);  // bytes a row of `data`

// Area of the file, increment in and out (below 1: the default), kind and name of the file. The number goes out in both cases.
int  band_create(int width, int height, int *increment, int kind, const char *name, int *band_out);
int  band_create_rgb(int width, int height, int *increment, int kind, const char *name1, const char *name2, const char *name3,
                     int *r_out, int *g_out, int *b_out);
int  band_default_increment(int width, int height);

enum band_colour { BAND_RED = 8, BAND_GREEN = 9, BAND_BLUE = 10 };
void band_replace(int window, int colour, int old_band, int new_band);

// Tables that file writers multiply pixels through; three nulls mean the raw bytes.
void output_tables(int undo_gamma, const int16_t *red_lut, const int16_t *green_lut, const int16_t *blue_lut,
                   const uint16_t **r_out, const uint16_t **g_out, const uint16_t **b_out);
