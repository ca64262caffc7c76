#include "filters/warp_fit.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "filters/warp_models.h"
#include "mem.h"
#include "services/ws.h"

namespace {

// rows by cols floats, zero; null without memory, and for sizes that have no place in it.
mem_ptr<double> matrix(int64_t rows, int64_t cols)
{
    constexpr int64_t MOST = int64_t{1} << 40;
    if (rows < 0 || cols < 0 || (rows > 0 && cols > MOST / rows))
        return nullptr;
    return mem_ptr<double>((double *)mem_calloc(size_t(rows * cols), sizeof(double)));
}

// product = a b; a is rows by inner, b inner by cols.
void multiply(double *product, const double *a, const double *b, int rows, int inner, int cols)
{
    for (int r = 0; r < rows; r++) {
        double *const out = product + int64_t{r} * cols;
        memset(out, 0, size_t(cols) * sizeof *out);
        for (int k = 0; k < inner; k++) {
            const double factor = a[int64_t{r} * inner + k];
            const double *const row = b + int64_t{k} * cols;
            for (int c = 0; c < cols; c++)
                out[c] += factor * row[c];
        }
    }
}

// out, cols by rows, is the transpose of a, rows by cols.
void transpose(double *out, const double *a, int rows, int cols)
{
    for (int r = 0; r < rows; r++)
        for (int c = 0; c < cols; c++)
            out[int64_t{c} * rows + r] = a[int64_t{r} * cols + c];
}

struct equation {
    double terms[MOST_COEFFICIENTS];
};

// The two rows of a point; 0 for models that have none.
int equations_of(double p0, double p1, double q0, double q1, int model, equation *u, equation *v)
{
    if (const int terms = polynomial_terms(model)) {
        *u = *v = {};
        polynomial_values(p0, p1, terms, u->terms);
        memcpy(v->terms + terms, u->terms, size_t(terms) * sizeof(double));
        return 1;
    }
    switch (model) {
    case MODEL_SIMILARITY:             // the second row's signs and places are not those of the evaluator; this is meant
        *u = { { 1, p0, p1, 0 } };
        *v = { { 0, -p0, p1, 1 } };
        return 1;
    case MODEL_AFFINE:
        *u = { { 1, p0, p1, 0, 0, 0 } };
        *v = { { 0, 0, 0, 1, p0, p1 } };
        return 1;
    case MODEL_PROJECTIVE:
        *u = { { -q0 * p0, -q0 * p1, 1, p0, p1, 0, 0, 0 } };
        *v = { { -q1 * p0, -q1 * p1, 0, 0, 0, 1, p0, p1 } };
        return 1;
    case MODEL_TWO_SCALES:
        *u = { { 1, p0, p1, 0, 0 } };
        *v = { { 0, 0, -p0, 1, p1 } };
        return 1;
    default:
        return 0;
    }
}

void odd_matrix(double *A, const double *points, int np, int n)
{
    for (int k = 0; k < np; k++) {
        double power = points[2 * k];
        const double square = power * power;
        for (int i = 0; i < n; i++, power *= square)
            A[int64_t{k} * n + i] = power;
    }
}

int no_space(int code)
{
    report(REPORT_WARNING, "wsolve: couldn't allocate space\n");
    return code;
}

int no_space_for_error(int code)
{
    report(REPORT_WARNING, "errval(): couldn't allocate space\n");
    return code;
}

// A cosine of nothing would leave no inverse.
double cosine(double angle)
{
    constexpr double LEAST = 1e-9;
    const double c = cos(angle);
    return fabs(c) < LEAST ? LEAST : c;
}

} // namespace

void design_matrix(double *A, const double *points, const double *to_points, int model, int m, int n)
{
    const int np = m / 2;
    if (model == MODEL_ODD)
        return odd_matrix(A, points, np, n);
    equation u, v;
    for (int k = 0; k < np; k++) {
        const double *const p = points + int64_t{2} * k, *const q = to_points + int64_t{2} * k;
        if (!equations_of(p[0], p[1], q[0], q[1], model, &u, &v))
            return;
        double *const rows = A + int64_t{2} * k * n;
        memcpy(rows, u.terms, size_t(n) * sizeof(double));
        memcpy(rows + n, v.terms, size_t(n) * sizeof(double));
    }
}

int wsolve(const double *A, double *x, const double *b, const double *W, int m, int n, int p)
{
    const mem_ptr<double> T = matrix(n, m);
    if (!T)
        return no_space(-1);
    const mem_ptr<double> N = matrix(n, n);
    if (!N)
        return no_space(-2);
    const mem_ptr<double> U = matrix(n, m);
    if (!U)
        return no_space(-3);
    transpose(T.get(), A, m, n);
    multiply(U.get(), T.get(), W, n, m, m);
    multiply(N.get(), U.get(), A, n, m, n);
    if (const int failure = fastinv(N.get(), n)) {
        report(REPORT_WARNING, "wsolve: error <%d> in fastinv()\n", failure);
        return -4;
    }
    multiply(U.get(), N.get(), T.get(), n, n, m);
    multiply(T.get(), U.get(), W, n, m, m);
    multiply(x, T.get(), b, n, m, p);
    return 0;
}

int fastinv(double *M, int n)
{
    for (int k = 0; k < n; k++) {
        double *const pivot_row = M + int64_t{k} * n;
        if (pivot_row[k] == 0.0)
            return -1;
        const double scale = 1.0 / pivot_row[k];
        pivot_row[k] = 1;
        for (int c = 0; c < n; c++)
            pivot_row[c] *= scale;
        for (int i = 0; i < n; i++) {
            if (i == k)
                continue;
            double *const row = M + int64_t{i} * n;
            const double factor = row[k];
            row[k] = 0;
            for (int c = 0; c < n; c++)
                row[c] -= factor * pivot_row[c];
        }
    }
    return 0;
}

int errval(const double *residuals, const double *W, int m, int n, double *result)
{
    const double freedom = double(m) - double(n);
    *result = 0;
    if (freedom <= 0)
        return 1;
    const mem_ptr<double> row = matrix(1, m);
    if (!row)
        return no_space_for_error(-1);
    const mem_ptr<double> weighted = matrix(1, m);
    if (!weighted)
        return no_space_for_error(-2);
    double sum;
    transpose(row.get(), residuals, m, 1);
    multiply(weighted.get(), row.get(), W, 1, m, m);
    multiply(&sum, weighted.get(), residuals, 1, m, 1);
    if (!(sum < 0))
        *result = sqrt(sum / freedom);
    return 0;
}

int trans_it(const double *from_points, const double *to_points, const double *weights, int np, int model, double *coefficients,
             double *residuals, double *std_error)
{
    const int n = get_ncoeff(model);
    if (n < 0) {
        report(REPORT_WARNING, "trans_it(): unrecognized model <%d>\n", model);
        return -1;
    }
    const int64_t equations = int64_t{2} * np;
    if (n > equations)
        return int((n + 1) / 2 - int64_t{np});
    const mem_ptr<double> A = matrix(equations, n);
    const mem_ptr<double> W = A ? matrix(equations, equations) : nullptr;
    if (!W) {
        report(REPORT_WARNING, "trans_it(): malloc error\n");
        return -2;
    }
    // Two equations share a weight, and the flat list is read only to its middle. This is meant.
    const int m = int(equations);
    for (int i = 0; i < m; i++)
        W[size_t(i) * size_t(m) + size_t(i)] = weights[i / 2];
    design_matrix(A.get(), from_points, to_points, model, m, n);
    if (const int failure = wsolve(A.get(), coefficients, to_points, W.get(), m, n, 1)) {
        report(REPORT_WARNING, "trans_it(): error <%d> in wsolve()\n", failure);
        return -2;
    }
    multiply(residuals, A.get(), coefficients, m, n, 1);
    for (int i = 0; i < m; i++)
        residuals[i] -= to_points[i];
    if (const int failure = errval(residuals, W.get(), m, n, std_error); failure < 0) {
        report(REPORT_WARNING, "trans_it(): error <%d> in errval()\n", failure);
        *std_error = -1.0;
    }
    return 0;
}

int load_trans(int, int, double t_v, double t_u, double scale_a, double scale_b, double angle, double skew, double forward[6],
               double inverse[6])
{
    const double ct = cosine(angle), st = sin(angle), cp = cosine(skew), sp = sin(skew);
    forward[0] = t_u;
    forward[1] = (ct * cp - sp * st) * scale_b;
    forward[2] = -(scale_a * st * cp);
    forward[3] = t_v;
    forward[4] = (sp * ct + st * cp) * scale_b;
    forward[5] = ct * scale_a * cp;

    double whole[9] = { 1, 0, 0 };
    memcpy(whole + 3, forward, AFFINE_COEFFICIENTS * sizeof(double));
    if (const int failure = fastinv(whole, 3)) {
        report(REPORT_WARNING, "load_trans(): transformation inverse error %d\n", failure);
        return -1;
    }
    memcpy(inverse, whole + 3, AFFINE_COEFFICIENTS * sizeof(double));
    return 0;
}

int print_fit(const int *ids, const double *control, const double *input, const double *weights, const double *residuals, double std_error,
              int m, int model)
{
    const int n = get_ncoeff(model);
    if (n < 0)
        return -1;
    const int np = (m + 1) / 2;
    printf("\nControl Points:\n");
    printf("              pt.      y(row)      x(col)\n");
    for (int k = 0; k < np; k++)
        printf("%16d: %11.2lf %11.2lf\n", ids[k], control[2 * k], control[2 * k + 1]);
    printf("\nInput Points:\n");
    printf("              pt.         row         col     row wgt     col wgt\n");
    for (int k = 0; k < np; k++)
        printf("%16d: %11.2lf %11.2lf %11.2lf %11.2lf\n", ids[k], input[2 * k], input[2 * k + 1], weights[2 * k], weights[2 * k + 1]);
    printf("\nResiduals:\n");
    printf("              pt.         row         col         sse\n");
    for (int k = 0; k < np; k++) {
        const double row = residuals[2 * k], col = residuals[2 * k + 1];
        printf("%16d: %11.4lf %11.4lf %11.4lf\n", ids[k], row, col, sqrt(row * row + col * col));
    }
    printf("\nTransformation Model = %d\n", model);
    if (m == n) {
        printf("\nStd. Error = undefined (Degrees of Freedom = 0)\n");
        return 0;
    }
    printf("\nStd. Error = %0.3lf (Input Units)\n", std_error);
    printf("\nDegrees of Freedom = %d\n", m - n);
    return 0;
}
