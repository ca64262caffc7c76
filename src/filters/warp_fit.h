// warp_fit.h - models fitted to matched control points by weighted least squares, and what is told about the fit.
// A list of np points is 2 np floats, row then column of each; weights have the same shape. Matrices are dense, row by row.
// Memory grows with the square of the points. Failures are reported as warnings, since the points are unharmed; too few points or too few
// degrees of freedom are not reported.
#pragma once

// Two equations a point: A has m = 2 np rows and n = get_ncoeff(model) columns. Model 9 writes one row a point into the first np rows.
// Models without a row of their own leave A as it is. Only model 8 reads to_points.
void design_matrix(double *A, const double *points, const double *to_points, int model, int m, int n);

// x = inverse(A'WA) A'Wb; A is m by n, W m by m, b m by p, x n by p. 0; -1 to -3 without memory; -4 when A'WA is singular.
int wsolve(const double *A, double *x, const double *b, const double *W, int m, int n, int p);

// The inverse of an n by n matrix in place, without pivoting. -1 when a pivot is exactly zero; M is then half done.
int fastinv(double *M, int n);

// Square root of r'Wr over the degrees of freedom m - n, 0 when the sum is negative. 0; 1, with result 0, when there are none; -1 or -2
// without memory.
int errval(const double *residuals, const double *W, int m, int n, double *result);

// Fits `model` so that it takes from_points to to_points. `residuals` gets 2 np values, fitted less observed; `coefficients` has room for
// get_ncoeff(model); std_error is -1.0 when it cannot be made, 0.0 without degrees of freedom.
// 0; how many more points are needed, with nothing written; -1 for an unknown model; -2 when memory or the solver failed.
int trans_it(const double *from_points, const double *to_points, const double *weights, int np, int model, double *coefficients,
             double *residuals, double *std_error);

// An affine model from translations (t_u of the row, t_v of the column), two scales, a rotation and a skew in radians, and its inverse.
// A cosine below 1e-9 in magnitude counts as +1e-9. rows and cols are not used. 0, or -1 when there is no inverse.
int load_trans(int rows, int cols, double t_v, double t_u, double scale_a, double scale_b, double angle, double skew, double forward[6],
               double inverse[6]);

// The fit's tables on standard output, (m + 1) / 2 points. 0, or -1 for an unknown model, with nothing printed.
int print_fit(const int *ids, const double *control, const double *input, const double *weights, const double *residuals, double std_error,
              int m, int model);
