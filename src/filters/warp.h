// warp.h - resamples a band, or a packed bit plane, through a model: a full rectangle or the intervals of a mask.
// Coordinates are row first. Progress goes to message field 4. Warps cannot nest: the working set is one.
#pragma once
#include <cstdint>

#include "filters/long_pass.h"
#include "filters/warp_models.h"
#include "filters/warp_resample.h"

constexpr int WARP_STOPPED = -99;

struct warp_working_set {
    int64_t *row_start;                // where each input row begins, in pixels
    double *row_coords, *col_coords;   // one each for an output column: where the pixels of the run in hand lie in the input. At first 0
    int32_t *cc_w0, *cc_w1, *cc_w2, *cc_w3;  // CUBIC_ENTRIES each, for the cubic method only
};
extern warp_working_set warp_set;

// Makes warp_set for input rows of `stride` pixels. 0; without memory -1 to -4 for the weight tables, -5 for row_start, -6 for row_coords,
// -7 for col_coords. The weight tables of a failed call stay until the next call, as does all that a stopped warp leaves.
int init_warp(int rows, int stride, int out_cols, int method, double cc_parameter);
void free_warp();

// Fills `out` with what `in` has at the model's place of (r0, c0), then c_step and r_step further on, to (r1, c1). `out` has
// trunc(|r1 - r0| / |r_step| + 1) rows of trunc(|c1 - c0| / |c_step| + 1) pixels, its bits without gaps between rows; nothing is written
// when these are no sizes. The order is column first in each pair of bounds.
// An affine model is evaluated at the four corners alone, other ones along each row.
// 0, -1 without memory (reported), WARP_STOPPED.
int dwarp_it(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, double c0, double r0, double c1, double r1, double c_step,
             double r_step, const double *coefficients, int model, int method, double cc_parameter, int kind);

// Resamples into the intervals of `mask`: triples (row, first column, end column), closed by a row of -1. Columns beyond the image are held
// at its sides. A row below -1 is passed over, and so is a row of -1 right behind one of -2; a row not below out_rows ends the mask.
// A pixel's own column and row are what the model gets, without half a pixel. The pixel at the end column is written too, though its place
// is not computed: it is taken where an earlier run has left off. This is meant.
// 0, -1 without memory, WARP_STOPPED.
int splice_it(const uint8_t *in, uint8_t *out, int in_rows, int in_cols, int out_rows, int out_cols, const int32_t *mask,
              const double *model_coefficients, int model, int method, double cc_parameter, int kind);
