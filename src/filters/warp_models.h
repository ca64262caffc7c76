// warp_models.h - polynomial mappings between two image coordinate systems, evaluated.
// A pair is always row first, column second. A model takes (x, y), x the row, to (u, v); pixel (r, c) has its centre at (r + 0.5, c + 0.5).
// Coefficients are a flat array, those of u first. Terms of the polynomials of order 2 to 5, in fitting and in evaluation:
//   1 x y xy x2 y2 | xy2 x2y x3 y3 | xy3 x2y2 x3y x4 y4 | xy4 x2y3 x3y2 x4y x5 y5
#pragma once

enum warp_model {
    MODEL_SIMILARITY = 0,              // a0 + a1 x + a2 y, a3 - a2 x + a1 y
    MODEL_AFFINE = 1,                  // a0 + a1 x + a2 y, a3 + a4 x + a5 y
    MODEL_ORDER_2 = 2,
    MODEL_ORDER_3 = 3,
    MODEL_ORDER_4 = 4,
    MODEL_ORDER_5 = 5,
    MODEL_PROJECTIVE = 8,              // (a2 + a3 x + a4 y) / d, (a5 + a6 x + a7 y) / d, d = 1 + a0 x + a1 y
    MODEL_ODD = 9,                     // x, x3, x5, x7, x9: can be fitted, not evaluated
    MODEL_TWO_SCALES = 15              // a0 + a1 x + a2 y, a3 - a2 x + a4 y
};
constexpr int AFFINE_COEFFICIENTS = 6;
constexpr int MOST_COEFFICIENTS = 42;

// -1, and a warning, for a number that no model has. 21 and 81 have a count and nothing else.
int get_ncoeff(int model);

// Terms of a polynomial model of order 2 to 5, 0 for other models; and their values at (x, y).
int polynomial_terms(int model);
void polynomial_values(double x, double y, int terms, double *values);

// At one point. Without an evaluator (9, 21, 81, unknown numbers) u and v stay as they were, here and in the arrays below.
void trans_point(double x, double y, int model, const double *coefficients, double *u, double *v);
void trans_point(int x, int y, int model, const double *coefficients, double *u, double *v);

// At (r0, c0), (r0, c1), (r1, c0), (r1, c1), in this order.
void trans_corners(double r0, double c0, double r1, double c1, int model, const double *coefficients, double rows[4], double cols[4]);

// Along one row, at the integer columns c0 to c1, both included; rows and cols hold c1 - c0 + 1. Nothing when c1 is below c0.
// A run differs from trans_point by rounding alone: what depends on the row is summed up first, and models 0, 1, 8 and 15 step by addition.
void trans_span(int row, int c0, int c1, int model, const double *coefficients, double *rows, double *cols);

// At c0, c0 + c_step, ... while the column is not past c1 in the direction of the step. A step that does not move the column ends the run.
void trans_row(double row, double c0, double c1, double c_step, int model, const double *coefficients, double *rows, double *cols);

// The same for at most `room` columns, since sums of steps may take one column more than a division says. How many were made.
int trans_row_within(double row, double c0, double c1, double c_step, int room, int model, const double *coefficients, double *rows,
                     double *cols);
