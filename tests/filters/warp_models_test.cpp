#include "filters/warp_reference.h"

#include "filters/warp_models.h"

namespace {

struct pair {
    double u, v;
};

// Coefficients that are all different, small enough for fifth powers.
std::vector<double> some_coefficients(int count)
{
    std::vector<double> a;
    for (int i = 0; i < count; i++)
        a.push_back((i % 2 ? -1 : 1) * (0.3 + 0.07 * i));
    return a;
}

// The models written out.
pair evaluated(double x, double y, int model, const std::vector<double> &a)
{
    switch (model) {
    case 0:  return { a[0] + a[1] * x + a[2] * y, a[3] - a[2] * x + a[1] * y };
    case 1:  return { a[0] + a[1] * x + a[2] * y, a[3] + a[4] * x + a[5] * y };
    case 8: {
        const double d = 1 + a[0] * x + a[1] * y;
        return { (a[2] + a[3] * x + a[4] * y) / d, (a[5] + a[6] * x + a[7] * y) / d };
    }
    case 15: return { a[0] + a[1] * x + a[2] * y, a[3] - a[2] * x + a[4] * y };
    }
    const double terms[] = { 1, x, y, x * y, x * x, y * y, x * y * y, x * x * y, x * x * x, y * y * y, x * y * y * y, x * x * y * y,
                             x * x * x * y, x * x * x * x, y * y * y * y, x * y * y * y * y, x * x * y * y * y, x * x * x * y * y,
                             x * x * x * x * y, x * x * x * x * x, y * y * y * y * y };
    const int count[] = { 0, 0, 6, 10, 15, 21 };
    pair p = { 0, 0 };
    for (int i = 0; i < count[model]; i++) {
        p.u += a[size_t(i)] * terms[i];
        p.v += a[size_t(count[model] + i)] * terms[i];
    }
    return p;
}

constexpr int evaluated_models[] = { 0, 1, 2, 3, 4, 5, 8, 15 };

void expect_close(double have, double want)
{
    ASSERT_NEAR(have, want, 1e-10 * (1 + std::abs(want)));
}

} // namespace

struct WarpModels : warp_test {};

TEST_F(WarpModels, CountTheirCoefficients)
{
    const int counts[][2] = { { 0, 4 }, { 1, 6 }, { 2, 12 }, { 3, 20 }, { 4, 30 }, { 5, 42 }, { 8, 8 }, { 9, 5 }, { 15, 5 }, { 21, 12 }, { 81, 8 } };
    for (const auto &[model, count] : counts)
        EXPECT_EQ(get_ncoeff(model), count) << model;
}

TEST_F(WarpModels, ReportNumbersThatNoModelHas)
{
    for (const int model : { -1, 6, 7, 10, 11, 12, 13, 14, 16, 20, 22, 80, 82 }) {
        EXPECT_EQ(get_ncoeff(model), -1);
        EXPECT_EQ(take_reports(), "get_ncoeff(): unrecognized model " + std::to_string(model) + "\n");
    }
}

TEST_F(WarpModels, ArePolynomialsAndQuotientsOfRowAndColumn)
{
    for (const int model : evaluated_models) {
        const std::vector<double> a = some_coefficients(get_ncoeff(model));
        for (double x = -2; x <= 2; x += 0.75)
            for (double y = -2; y <= 2; y += 0.75) {
                double u, v;
                trans_point(x, y, model, a.data(), &u, &v);
                const pair want = evaluated(x, y, model, a);
                expect_close(u, want.u);
                expect_close(v, want.v);
            }
    }
}

TEST_F(WarpModels, TakeIntegersToTheSame)
{
    for (const int model : evaluated_models) {
        const std::vector<double> a = some_coefficients(get_ncoeff(model));
        double u, v, u_same, v_same;
        trans_point(3.0, -7.0, model, a.data(), &u, &v);
        trans_point(3, -7, model, a.data(), &u_same, &v_same);
        EXPECT_EQ(u_same, u);
        EXPECT_EQ(v_same, v);
    }
}

TEST_F(WarpModels, CornersGoAlongTheFirstRowAndThenTheSecond)
{
    const double a[] = { 100, 1, 0, 200, 0, 1 };
    double rows[4], cols[4];
    trans_corners(1, 2, 30, 40, MODEL_AFFINE, a, rows, cols);
    const double want_rows[] = { 101, 101, 130, 130 }, want_cols[] = { 202, 240, 202, 240 };
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(rows[i], want_rows[i]);
        EXPECT_EQ(cols[i], want_cols[i]);
    }
}

TEST_F(WarpModels, SpansHoldEachColumnBothEndsIncluded)
{
    for (const int model : evaluated_models) {
        const std::vector<double> a = some_coefficients(get_ncoeff(model));
        double rows[13], cols[13];
        rows[12] = cols[12] = 77;
        trans_span(-3, -4, 7, model, a.data(), rows, cols);
        for (int i = 0; i < 12; i++) {
            const pair want = evaluated(-3, -4 + i, model, a);
            expect_close(rows[i], want.u);
            expect_close(cols[i], want.v);
        }
        EXPECT_EQ(rows[12], 77);
        EXPECT_EQ(cols[12], 77);
    }
}

TEST_F(WarpModels, RowsStepByFractions)
{
    for (const int model : evaluated_models) {
        const std::vector<double> a = some_coefficients(get_ncoeff(model));
        double rows[8], cols[8];
        rows[7] = cols[7] = 77;
        trans_row(1.5, -1.5, 1.6, 0.5, model, a.data(), rows, cols);       // -1.5, -1.0, ... 1.5
        for (int i = 0; i < 7; i++) {
            const pair want = evaluated(1.5, -1.5 + 0.5 * i, model, a);
            expect_close(rows[i], want.u);
            expect_close(cols[i], want.v);
        }
        EXPECT_EQ(rows[7], 77);
        EXPECT_EQ(cols[7], 77);
    }
}

TEST_F(WarpModels, RowsOfStraightModelsAdvanceByAddition)
{
    const double a[] = { 0.1, 0.2, 0.3, 0.7, 0.9, 1.1 };
    double rows[50], cols[50];
    trans_row(0.3, 0.2, 0.2 + 49 * 0.1, 0.1, MODEL_AFFINE, a, rows, cols);
    double u = 0.1 + 0.2 * 0.3 + 0.3 * 0.2, v = 0.7 + 0.9 * 0.3 + 1.1 * 0.2;
    for (int i = 0; i < 48; i++, u += 0.3 * 0.1, v += 1.1 * 0.1) {
        ASSERT_EQ(rows[i], u) << i;
        ASSERT_EQ(cols[i], v) << i;
    }
}

TEST_F(WarpModels, RowsRunBackwardsWithANegativeStep)
{
    const double a[] = { 0, 1, 0, 0, 0, 1 };
    double rows[5] = {}, cols[5] = { 9, 9, 9, 9, 9 };
    EXPECT_EQ(trans_row_within(2, 5, 2.5, -1, 10, MODEL_AFFINE, a, rows, cols), 3);
    EXPECT_EQ(cols[0], 5);
    EXPECT_EQ(cols[2], 3);
    EXPECT_EQ(cols[3], 9);
}

TEST_F(WarpModels, RowsEndWhereTheyAreFullOrDoNotMove)
{
    const double a[] = { 0, 1, 0, 0, 0, 1 };
    double rows[4], cols[4];
    EXPECT_EQ(trans_row_within(0, 0, 1e9, 1, 4, MODEL_AFFINE, a, rows, cols), 4);
    EXPECT_EQ(trans_row_within(0, 0, 5, 0, 4, MODEL_AFFINE, a, rows, cols), 1);
    EXPECT_EQ(trans_row_within(0, 1e300, 1.5e300, 1, 4, MODEL_AFFINE, a, rows, cols), 1);
    EXPECT_EQ(trans_row_within(0, 3, 2, 1, 4, MODEL_AFFINE, a, rows, cols), 0);
    EXPECT_EQ(trans_row_within(0, 0, 5, NOT_A_NUMBER, 4, MODEL_AFFINE, a, rows, cols), 1);
    EXPECT_EQ(trans_row_within(0, NOT_A_NUMBER, 5, 1, 4, MODEL_AFFINE, a, rows, cols), 0);
    EXPECT_EQ(trans_row_within(0, 0, WITHOUT_END, WITHOUT_END, 4, MODEL_AFFINE, a, rows, cols), 2);
    trans_row(0, 0, 5, 0, MODEL_AFFINE, a, rows, cols);
    trans_span(0, 5, 4, MODEL_AFFINE, a, nullptr, nullptr);                // nothing to hold
}

TEST_F(WarpModels, WithoutAnEvaluatorLeaveResultsAlone)
{
    const std::vector<double> a = some_coefficients(42);
    for (const int model : { -1, 6, 7, 9, 14, 16, 21, 81 }) {
        double u = 5, v = 6, rows[4] = { 1, 2, 3, 4 }, cols[4] = { 5, 6, 7, 8 };
        trans_point(1.0, 2.0, model, a.data(), &u, &v);
        trans_span(0, 0, 3, model, a.data(), rows, cols);
        trans_row(0, 0, 3, 1, model, a.data(), rows, cols);
        EXPECT_EQ(u, 5);
        EXPECT_EQ(v, 6);
        for (int i = 0; i < 4; i++) {
            EXPECT_EQ(rows[i], 1 + i);
            EXPECT_EQ(cols[i], 5 + i);
        }
    }
}
