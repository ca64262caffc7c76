#include "filters/warp_models.h"

#include <cstdint>

#include "services/ws.h"

namespace {

struct model_count {
    int model, coefficients;
};
constexpr model_count counts[] = {
    { MODEL_SIMILARITY, 4 }, { MODEL_AFFINE, 6 }, { MODEL_ORDER_2, 12 }, { MODEL_ORDER_3, 20 }, { MODEL_ORDER_4, 30 },
    { MODEL_ORDER_5, MOST_COEFFICIENTS }, { MODEL_PROJECTIVE, 8 }, { MODEL_ODD, 5 }, { MODEL_TWO_SCALES, 5 }, { 21, 12 }, { 81, 8 },
};

constexpr int HIGHEST_ORDER = 5, POWERS = HIGHEST_ORDER + 1, MOST_TERMS = MOST_COEFFICIENTS / 2;

struct polynomial_term {
    int x, y;                          // exponents
};
constexpr polynomial_term terms_of[MOST_TERMS] = {
    { 0, 0 }, { 1, 0 }, { 0, 1 }, { 1, 1 }, { 2, 0 }, { 0, 2 }, { 1, 2 }, { 2, 1 }, { 3, 0 }, { 0, 3 }, { 1, 3 },
    { 2, 2 }, { 3, 1 }, { 4, 0 }, { 0, 4 }, { 1, 4 }, { 2, 3 }, { 3, 2 }, { 4, 1 }, { 5, 0 }, { 0, 5 },
};

void powers_of(double base, double powers[POWERS])
{
    powers[0] = 1;
    for (int i = 1; i < POWERS; i++)
        powers[i] = powers[i - 1] * base;
}

// u and v at the first column of a run, and what each further column adds.
struct straight_run {
    double u, v, u_step, v_step;
};

// 0 when the model is not one whose rows are straight.
int straight_run_of(double x, double y, double step, int model, const double *a, straight_run *run)
{
    const double u = a[0] + a[1] * x + a[2] * y, u_step = a[2] * step;
    switch (model) {
    case MODEL_SIMILARITY:
        *run = { u, a[3] - a[2] * x + a[1] * y, u_step, a[1] * step };
        return 1;
    case MODEL_AFFINE:
        *run = { u, a[3] + a[4] * x + a[5] * y, u_step, a[5] * step };
        return 1;
    case MODEL_TWO_SCALES:
        *run = { u, a[3] - a[2] * x + a[4] * y, u_step, a[4] * step };
        return 1;
    default:
        return 0;
    }
}

void walk_straight_run(straight_run run, int count, double *rows, double *cols)
{
    for (int i = 0; i < count; i++) {
        rows[i] = run.u;
        cols[i] = run.v;
        run.u += run.u_step;
        run.v += run.v_step;
    }
}

void walk_projective_run(double x, double y, double step, const double *a, int count, double *rows, double *cols)
{
    straight_run numerators = { a[2] + a[3] * x + a[4] * y, a[5] + a[6] * x + a[7] * y, a[4] * step, a[7] * step };
    double d = 1.0 + a[0] * x + a[1] * y;
    const double d_step = a[1] * step;
    for (int i = 0; i < count; i++) {
        rows[i] = numerators.u / d;
        cols[i] = numerators.v / d;
        numerators.u += numerators.u_step;
        numerators.v += numerators.v_step;
        d += d_step;
    }
}

// Along a row each power of the column has one coefficient.
void gather_by_column_power(double x, int terms, const double *a, double by_power[POWERS])
{
    double powers[POWERS];
    powers_of(x, powers);
    for (int i = 0; i < POWERS; i++)
        by_power[i] = 0;
    for (int t = 0; t < terms; t++)
        by_power[terms_of[t].y] += a[t] * powers[terms_of[t].x];
}

void walk_polynomial_run(double x, double y, double step, int model, const double *a, int count, double *rows, double *cols)
{
    const int terms = polynomial_terms(model), order = model;
    double u[POWERS], v[POWERS];
    gather_by_column_power(x, terms, a, u);
    gather_by_column_power(x, terms, a + terms, v);
    for (int i = 0; i < count; i++, y += step) {
        double power = y, u_sum = u[0], v_sum = v[0];
        for (int k = 1; k <= order; k++, power *= y) {
            u_sum += u[k] * power;
            v_sum += v[k] * power;
        }
        rows[i] = u_sum;
        cols[i] = v_sum;
    }
}

void walk_run(double x, double y, double step, int count, int model, const double *a, double *rows, double *cols)
{
    straight_run run;
    if (polynomial_terms(model))
        walk_polynomial_run(x, y, step, model, a, count, rows, cols);
    else if (model == MODEL_PROJECTIVE)
        walk_projective_run(x, y, step, a, count, rows, cols);
    else if (straight_run_of(x, y, step, model, a, &run))
        walk_straight_run(run, count, rows, cols);
}

int columns_in(double c0, double c1, double step, int room)
{
    int count = 0;
    double c = c0;
    while (count < room && (step < 0 ? c >= c1 : c <= c1)) {
        count++;
        const double next = c + step;
        if (next == c)
            break;
        c = next;
    }
    return count;
}

} // namespace

int get_ncoeff(int model)
{
    for (const model_count &row : counts)
        if (row.model == model)
            return row.coefficients;
    report(REPORT_WARNING, "get_ncoeff(): unrecognized model %d\n", model);
    return -1;
}

int polynomial_terms(int model)
{
    return model >= MODEL_ORDER_2 && model <= MODEL_ORDER_5 ? (model + 1) * (model + 2) / 2 : 0;
}

void polynomial_values(double x, double y, int terms, double *values)
{
    double x_powers[POWERS], y_powers[POWERS];
    powers_of(x, x_powers);
    powers_of(y, y_powers);
    for (int t = 0; t < terms; t++)
        values[t] = x_powers[terms_of[t].x] * y_powers[terms_of[t].y];
}

void trans_point(double x, double y, int model, const double *coefficients, double *u, double *v)
{
    const double *const a = coefficients;
    straight_run run;
    if (const int terms = polynomial_terms(model)) {
        double values[MOST_TERMS];
        polynomial_values(x, y, terms, values);
        double u_sum = 0, v_sum = 0;
        for (int t = 0; t < terms; t++) {
            u_sum += a[t] * values[t];
            v_sum += a[terms + t] * values[t];
        }
        *u = u_sum;
        *v = v_sum;
    } else if (model == MODEL_PROJECTIVE) {
        walk_projective_run(x, y, 0, a, 1, u, v);
    } else if (straight_run_of(x, y, 0, model, a, &run)) {
        *u = run.u;
        *v = run.v;
    }
}

void trans_point(int x, int y, int model, const double *coefficients, double *u, double *v)
{
    trans_point(double(x), double(y), model, coefficients, u, v);
}

void trans_corners(double r0, double c0, double r1, double c1, int model, const double *coefficients, double rows[4], double cols[4])
{
    trans_point(r0, c0, model, coefficients, &rows[0], &cols[0]);
    trans_point(r0, c1, model, coefficients, &rows[1], &cols[1]);
    trans_point(r1, c0, model, coefficients, &rows[2], &cols[2]);
    trans_point(r1, c1, model, coefficients, &rows[3], &cols[3]);
}

void trans_span(int row, int c0, int c1, int model, const double *coefficients, double *rows, double *cols)
{
    if (c1 >= c0)
        walk_run(row, c0, 1.0, int(int64_t{c1} - c0 + 1), model, coefficients, rows, cols);
}

void trans_row(double row, double c0, double c1, double c_step, int model, const double *coefficients, double *rows, double *cols)
{
    trans_row_within(row, c0, c1, c_step, INT32_MAX, model, coefficients, rows, cols);
}

int trans_row_within(double row, double c0, double c1, double c_step, int room, int model, const double *coefficients, double *rows,
                     double *cols)
{
    const int count = columns_in(c0, c1, c_step, room);
    walk_run(row, c0, c_step, count, model, coefficients, rows, cols);
    return count;
}
