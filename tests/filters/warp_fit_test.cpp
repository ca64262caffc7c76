#include "filters/warp_reference.h"

#include "filters/warp_fit.h"
#include "filters/warp_models.h"
#include "mem.h"

namespace {

typedef std::vector<double> list;

constexpr double DEGREE = 0.0174532925199433;

// 49 points over -1.5 to 1.5, none of them on a regular grid.
list scattered_points()
{
    list p;
    for (int i = 0; i < 7; i++)
        for (int j = 0; j < 7; j++) {
            p.push_back(-1.5 + 0.5 * i + 0.03 * ((i * 5 + j * 3) % 7));
            p.push_back(-1.5 + 0.5 * j + 0.03 * ((i * 2 + j * 4) % 7));
        }
    return p;
}

struct fit {
    list coefficients, residuals;
    double std_error = 77;
    int result = 77;
};

fit fitted(const list &from, const list &to, int model, const list &weights)
{
    fit f = { list(42, 77), list(from.size(), 77) };
    f.result = trans_it(from.data(), to.data(), weights.data(), int(from.size() / 2), model, f.coefficients.data(), f.residuals.data(),
                        &f.std_error);
    return f;
}

fit fitted(const list &from, const list &to, int model)
{
    return fitted(from, to, model, list(from.size(), 1.0));
}

list coefficients_for(int model)
{
    list a;
    for (int i = 0; i < get_ncoeff(model); i++)
        a.push_back(model == MODEL_PROJECTIVE && i < 2 ? 0.05 + 0.03 * i : std::sin(1.0 + i));
    return a;
}

void expect_recovered(const list &from, const list &to, int model, const list &want)
{
    const fit f = fitted(from, to, model);
    ASSERT_EQ(f.result, 0);
    for (size_t i = 0; i < want.size(); i++)
        EXPECT_NEAR(f.coefficients[i], want[i], 1e-8) << "model " << model << " coefficient " << i;
    for (const double r : f.residuals)
        EXPECT_NEAR(r, 0, 1e-9);
    EXPECT_NEAR(f.std_error, 0, 1e-8);
}

list design(const list &points, const list &to, int model, int n)
{
    list A(points.size() * size_t(n), 77);
    design_matrix(A.data(), points.data(), to.data(), model, int(points.size()), n);
    return A;
}

// Four corners of a square; all go to 0, but the last one's row to 1.
const list corners = { 0, 0, 0, 1, 1, 0, 1, 1 }, lifted = { 0, 0, 0, 0, 0, 0, 1, 0 };

} // namespace

struct WarpFit : warp_test {
    void TearDown() override
    {
        mem_fail_countdown = -1;
        warp_test::TearDown();
    }
};

TEST_F(WarpFit, DesignRowsOfEachModel)
{
    const list p = { 2, 3 }, q = { 5, 7 };
    EXPECT_EQ(design(p, q, 0, 4), (list{ 1, 2, 3, 0, 0, -2, 3, 1 }));
    EXPECT_EQ(design(p, q, 1, 6), (list{ 1, 2, 3, 0, 0, 0, 0, 0, 0, 1, 2, 3 }));
    EXPECT_EQ(design(p, q, 2, 12), (list{ 1, 2, 3, 6, 4, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 6, 4, 9 }));
    EXPECT_EQ(design(p, q, 8, 8), (list{ -10, -15, 1, 2, 3, 0, 0, 0, -14, -21, 0, 0, 0, 1, 2, 3 }));
    EXPECT_EQ(design(p, q, 15, 5), (list{ 1, 2, 3, 0, 0, 0, 0, -2, 1, 3 }));

    // x=2, y=3: 1 x y xy x2 y2 | xy2 x2y x3 y3 | xy3 x2y2 x3y x4 y4 | xy4 x2y3 x3y2 x4y x5 y5
    const list terms = { 1, 2, 3, 6, 4, 9, 18, 12, 8, 27, 54, 36, 24, 16, 81, 162, 108, 72, 48, 32, 243 };
    list want(84, 0);
    std::copy(terms.begin(), terms.end(), want.begin());
    std::copy(terms.begin(), terms.end(), want.begin() + 63);
    EXPECT_EQ(design(p, q, 5, 42), want);
}

TEST_F(WarpFit, OddPolynomialsHaveARowAPoint)
{
    const list A = design({ 2, 9, 3, 9 }, { 0, 0, 0, 0 }, MODEL_ODD, 5);
    EXPECT_EQ(A, (list{ 2, 8, 32, 128, 512, 3, 27, 243, 2187, 19683, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77 }));
}

TEST_F(WarpFit, ModelsWithoutRowsLeaveTheMatrix)
{
    for (const int model : { 6, 7, 10, 14, 16, 21, 81 })
        EXPECT_EQ(design({ 2, 3 }, { 5, 7 }, model, 8), list(16, 77)) << model;
}

TEST_F(WarpFit, InvertsInPlace)
{
    list M = { 2, 1, 1, 1 };                   // determinant 1
    EXPECT_EQ(fastinv(M.data(), 2), 0);
    EXPECT_EQ(M, (list{ 1, -1, -1, 2 }));
    list three = { 2, 0, 0, 0, 4, 0, 2, 4, 8 };
    EXPECT_EQ(fastinv(three.data(), 3), 0);
    EXPECT_EQ(three, (list{ 0.5, 0, 0, 0, 0.25, 0, -0.125, -0.125, 0.125 }));
}

TEST_F(WarpFit, AZeroPivotOfEitherSignEndsTheInversion)
{
    list swapped = { 0, 1, 1, 0 }, minus = { -0.0, 1, 1, 5 }, late = { 1, 2, 2, 4 };
    EXPECT_EQ(fastinv(swapped.data(), 2), -1);     // though its inverse is itself: rows are not exchanged
    EXPECT_EQ(fastinv(minus.data(), 2), -1);
    EXPECT_EQ(fastinv(late.data(), 2), -1);
    list tiny = { 1e-200 };
    EXPECT_EQ(fastinv(tiny.data(), 1), 0);
    EXPECT_EQ(tiny[0], 1 / 1e-200);
}

TEST_F(WarpFit, SolvesNormalEquationsWithAnyWeightMatrix)
{
    const list A = { 1, 1 }, b = { 2, 4 };
    double x;
    EXPECT_EQ(wsolve(A.data(), &x, b.data(), list{ 1, 0, 0, 3 }.data(), 2, 1, 1), 0);
    EXPECT_DOUBLE_EQ(x, 3.5);                      // (2 + 3 * 4) / (1 + 3)
    EXPECT_EQ(wsolve(A.data(), &x, b.data(), list{ 1, 1, 0, 1 }.data(), 2, 1, 1), 0);
    EXPECT_DOUBLE_EQ(x, 10.0 / 3);                 // A'W is 1, 2
    double two[2];
    EXPECT_EQ(wsolve(A.data(), two, list{ 2, 10, 4, 20 }.data(), list{ 1, 0, 0, 1 }.data(), 2, 1, 2), 0);
    EXPECT_DOUBLE_EQ(two[0], 3);                   // each right side by itself
    EXPECT_DOUBLE_EQ(two[1], 15);
}

TEST_F(WarpFit, SolvingTellsOfMemoryAndSingularMatrices)
{
    const list A = { 1, 1 }, b = { 2, 4 }, W = { 1, 0, 0, 1 };
    double x = 77;
    for (int n = 0; n < 3; n++) {
        mem_fail_countdown = n;
        EXPECT_EQ(wsolve(A.data(), &x, b.data(), W.data(), 2, 1, 1), -1 - n);
        EXPECT_EQ(take_reports(), "wsolve: couldn't allocate space\n");
    }
    EXPECT_EQ(wsolve(list{ 0, 0 }.data(), &x, b.data(), W.data(), 2, 1, 1), -4);
    EXPECT_EQ(take_reports(), "wsolve: error <-1> in fastinv()\n");
    EXPECT_EQ(x, 77);
}

TEST_F(WarpFit, StandardErrorIsOverDegreesOfFreedom)
{
    const list r = { 1, -1, 2 }, W = { 1, 0, 0, 0, 2, 0, 0, 0, 3 };
    double e = 77;
    EXPECT_EQ(errval(r.data(), W.data(), 3, 1, &e), 0);
    EXPECT_DOUBLE_EQ(e, std::sqrt(15.0 / 2));      // 1 + 2 + 3 * 4
    EXPECT_EQ(errval(r.data(), W.data(), 3, 3, &e), 1);
    EXPECT_EQ(e, 0);
    e = 77;
    EXPECT_EQ(errval(r.data(), W.data(), 3, 4, &e), 1);
    EXPECT_EQ(e, 0);
    e = 77;
    EXPECT_EQ(errval(list{ 1, 1 }.data(), list{ -1, 0, 0, -1 }.data(), 2, 1, &e), 0);
    EXPECT_EQ(e, 0);                               // a negative sum
    for (int n = 0; n < 2; n++) {
        mem_fail_countdown = n;
        EXPECT_EQ(errval(r.data(), W.data(), 3, 1, &e), -1 - n);
        EXPECT_EQ(take_reports(), "errval(): couldn't allocate space\n");
    }
}

TEST_F(WarpFit, RecoversTheCoefficientsOfEachModel)
{
    const list from = scattered_points();
    for (const int model : { 1, 2, 3, 4, 5, 8, 15 }) {
        const list a = coefficients_for(model);
        list to(from.size());
        for (size_t i = 0; i < from.size(); i += 2)
            trans_point(from[i], from[i + 1], model, a.data(), &to[i], &to[i + 1]);
        expect_recovered(from, to, model, a);
    }
}

TEST_F(WarpFit, SimilarityIsFittedToItsOwnSigns)
{
    const list from = scattered_points(), a = { 3, 0.5, 0.25, -2 };
    list designed(from.size()), evaluated(from.size());
    for (size_t i = 0; i < from.size(); i += 2) {
        const double x = from[i], y = from[i + 1];
        designed[i] = a[0] + a[1] * x + a[2] * y;
        designed[i + 1] = -a[1] * x + a[2] * y + a[3];
        trans_point(x, y, MODEL_SIMILARITY, a.data(), &evaluated[i], &evaluated[i + 1]);
    }
    expect_recovered(from, designed, MODEL_SIMILARITY, a);
    const fit f = fitted(from, evaluated, MODEL_SIMILARITY);
    EXPECT_EQ(f.result, 0);
    EXPECT_GT(f.std_error, 0.1);
}

TEST_F(WarpFit, OddPolynomialsFitTheFlatListOfPlaces)
{
    // Five points: the first five entries of to_points are what their rows meet, the other five rows are empty.
    const list from = { 0.5, 0, -0.8, 0, 1.1, 0, 1.4, 0, -1.7, 0 }, a = { 1, -2, 0.5, 0.25, -0.125 };
    list to(10, 0.0);
    for (size_t k = 0; k < 5; k++)
        for (int i = 0; i < 5; i++)
            to[k] += a[size_t(i)] * std::pow(from[2 * k], 2 * i + 1);
    const fit f = fitted(from, to, MODEL_ODD);
    ASSERT_EQ(f.result, 0);
    for (size_t i = 0; i < 5; i++)
        EXPECT_NEAR(f.coefficients[i], a[i], 1e-6);
}

TEST_F(WarpFit, ResidualsAreFittedLessObserved)
{
    const fit f = fitted(corners, lifted, MODEL_AFFINE);
    ASSERT_EQ(f.result, 0);
    const list a = { -0.25, 0.5, 0.5, 0, 0, 0 }, r = { -0.25, 0, 0.25, 0, 0.25, 0, -0.25, 0 };
    for (size_t i = 0; i < a.size(); i++)
        EXPECT_NEAR(f.coefficients[i], a[i], 1e-12);
    for (size_t i = 0; i < r.size(); i++)
        EXPECT_NEAR(f.residuals[i], r[i], 1e-12);
    EXPECT_NEAR(f.std_error, std::sqrt(0.25 / 2), 1e-12);
}

TEST_F(WarpFit, WeightsAreReadToTheMiddleOfTheListAndServeTwoEquationsEach)
{
    const fit even = fitted(corners, lifted, MODEL_AFFINE, { 1, 1, 1, 1, 1, 1, 1, 1 });
    const fit tail = fitted(corners, lifted, MODEL_AFFINE, { 1, 1, 1, 1, 9, 8, 7, 6 });
    EXPECT_EQ(tail.coefficients, even.coefficients);
    EXPECT_EQ(tail.std_error, even.std_error);
    // Entry 1, the column weight of point 0 in the list, weighs both equations of point 1.
    const fit heavy = fitted(corners, lifted, MODEL_AFFINE, { 1, 1e6, 1, 1, 1, 1, 1, 1 });
    ASSERT_EQ(heavy.result, 0);
    EXPECT_NEAR(heavy.residuals[2], 0, 1e-5);
    EXPECT_NEAR(heavy.residuals[0], -1.0 / 3, 1e-5);   // the plane through point 1 leaves a third at each of the others
    EXPECT_NEAR(heavy.residuals[4], 1.0 / 3, 1e-5);
}

TEST_F(WarpFit, TooFewPointsAreCountedWithoutAWord)
{
    for (const auto &[np, model, wanted] : { std::array{ 2, 1, 1 }, { 0, 1, 3 }, { 1, 1, 2 }, { 5, 5, 16 }, { 2, 15, 1 }, { 2, 9, 1 }, { 3, 8, 1 } }) {
        const list points(2 * size_t(np), 1.0);
        const fit f = fitted(points, points, model);
        EXPECT_EQ(f.result, wanted) << np << " points, model " << model;
        EXPECT_EQ(f.coefficients, list(42, 77));
        EXPECT_EQ(f.std_error, 77);
    }
}

TEST_F(WarpFit, JustEnoughPointsHaveNoStandardError)
{
    const fit f = fitted({ 0, 0, 0, 1, 1, 0 }, { 5, 6, 7, 8, 9, 1 }, MODEL_AFFINE);
    EXPECT_EQ(f.result, 0);
    EXPECT_EQ(f.std_error, 0);
    for (const double r : f.residuals)
        EXPECT_NEAR(r, 0, 1e-12);
}

TEST_F(WarpFit, PointsOnALineAreFoundOnlyByAZeroPivot)
{
    const list line = { 0, 0, 1, 1, 2, 2 }, to = { 0, 0, 1, 1, 0, 0 };
    list from = line;
    const fit f = fitted(from, to, MODEL_AFFINE);
    EXPECT_EQ(f.result, -2);
    EXPECT_EQ(take_reports(), "wsolve: error <-1> in fastinv()\ntrans_it(): error <-4> in wsolve()\n");
    EXPECT_EQ(from, line);

    const fit near = fitted({ 0, 0, 1, 1, 2, 2 + 1e-6 }, to, MODEL_AFFINE);
    EXPECT_EQ(near.result, 0);
    EXPECT_GT(std::abs(near.coefficients[2]), 1e5);
}

TEST_F(WarpFit, ModelsWithACountAloneAreSingular)
{
    const list p = scattered_points();
    for (const int model : { 21, 81 }) {
        EXPECT_EQ(fitted(p, p, model).result, -2);
        EXPECT_EQ(take_reports(), "wsolve: error <-1> in fastinv()\ntrans_it(): error <-4> in wsolve()\n");
    }
}

TEST_F(WarpFit, AnUnknownModelIsReportedTwice)
{
    EXPECT_EQ(fitted(corners, lifted, 7).result, -1);
    EXPECT_EQ(take_reports(), "get_ncoeff(): unrecognized model 7\ntrans_it(): unrecognized model <7>\n");
}

TEST_F(WarpFit, EachFailureOfMemoryHasItsWords)
{
    const std::string solver = "wsolve: couldn't allocate space\n", error = "errval(): couldn't allocate space\n";
    const struct { int result; double std_error; std::string words; } want[] = {
        { -2, 77, "trans_it(): malloc error\n" },
        { -2, 77, "trans_it(): malloc error\n" },
        { -2, 77, solver + "trans_it(): error <-1> in wsolve()\n" },
        { -2, 77, solver + "trans_it(): error <-2> in wsolve()\n" },
        { -2, 77, solver + "trans_it(): error <-3> in wsolve()\n" },
        { 0, -1.0, error + "trans_it(): error <-1> in errval()\n" },
        { 0, -1.0, error + "trans_it(): error <-2> in errval()\n" },
        { 0, std::sqrt(0.125), "" },
    };
    for (int n = 0; const auto &[result, std_error, words] : want) {
        mem_fail_countdown = n++;
        const fit f = fitted(corners, lifted, MODEL_AFFINE);
        EXPECT_EQ(f.result, result);
        EXPECT_NEAR(f.std_error, std_error, 1e-12);
        EXPECT_EQ(take_reports(), words);
    }
}

TEST_F(WarpFit, WildPointsAreFittedToNonsenseWithoutHarm)
{
    for (const double wild : { NOT_A_NUMBER, WITHOUT_END, 1e300 }) {
        list from = scattered_points();
        from[6] = wild;
        for (const int model : { 0, 1, 5, 8, 15 })
            fitted(from, from, model);
    }
    take_reports();
}

TEST_F(WarpFit, AffineFromAnglesAndScales)
{
    const double angle = 30 * DEGREE, skew = 20 * DEGREE;
    double forward[6], inverse[6];
    ASSERT_EQ(load_trans(1, 1, 5, 7, 2, 3, angle, skew, forward, inverse), 0);
    const double want[] = { 7, 3 * std::cos(angle + skew), -2 * std::sin(angle) * std::cos(skew),
                            5, 3 * std::sin(angle + skew), 2 * std::cos(angle) * std::cos(skew) };
    for (int i = 0; i < 6; i++)
        EXPECT_NEAR(forward[i], want[i], 1e-12) << i;
    double u, v, x, y;
    trans_point(11.0, -4.0, MODEL_AFFINE, forward, &u, &v);
    trans_point(u, v, MODEL_AFFINE, inverse, &x, &y);
    EXPECT_NEAR(x, 11, 1e-12);
    EXPECT_NEAR(y, -4, 1e-12);
}

TEST_F(WarpFit, ARightAngleKeepsATinyPositiveCosine)
{
    double forward[6], inverse[6];
    for (const double turns : { 1.0, -1.0, 3.0 }) {    // the cosine of 270 degrees is below zero by rounding
        const double sine = turns == 1.0 ? 1 : turns == 3.0 ? -1 : -1;
        ASSERT_EQ(load_trans(0, 0, 0, 0, 1, 1, turns * 1.5707963267948966, 0, forward, inverse), 0);
        EXPECT_EQ(forward[1], 1e-9);
        EXPECT_EQ(forward[2], -sine);
        EXPECT_EQ(forward[4], sine);
        EXPECT_EQ(forward[5], 1e-9);
        // The first pivot is 1e-9, so the inverse comes out of numbers near 1e9, and keeps what they have behind the point.
        EXPECT_NEAR(inverse[1], 1e-9, 2e-7);
        EXPECT_NEAR(inverse[2], sine, 1e-12);
        EXPECT_NEAR(inverse[4], -sine, 1e-12);
        EXPECT_NEAR(inverse[5], 1e-9, 2e-7);
    }
    ASSERT_EQ(load_trans(0, 0, 0, 0, 1, 1, 0, 1.5707963267948966, forward, inverse), 0);
    EXPECT_EQ(forward[1], 1e-9);                       // as for a skew of a right angle
    EXPECT_EQ(forward[4], 1);
    EXPECT_EQ(forward[5], 1e-9);
}

TEST_F(WarpFit, AScaleOfZeroHasNoInverse)
{
    double forward[6], inverse[6] = { 77 };
    EXPECT_EQ(load_trans(0, 0, 1, 2, 1, 0, 0, 0, forward, inverse), -1);
    EXPECT_EQ(take_reports(), "load_trans(): transformation inverse error -1\n");
    EXPECT_EQ(forward[0], 2);
    EXPECT_EQ(forward[3], 1);
    EXPECT_EQ(inverse[0], 77);
}

TEST_F(WarpFit, TheReportHasThreeTablesAndTheError)
{
    const int ids[] = { 0, 3, 12345, 4 };
    const list control = { 1, 2, 30.5, 40.125, -5, 6, 7, 8 }, input = { 10, 20, 305, 401.25, 50, 60, 70, 80 };
    const list weights = { 1, 1, 0.5, 2, 1, 1, 1, 1 }, residuals = { 3, 4, -0.25, 0, 0, 0.5, 0.00004, 0.00005 };
    testing::internal::CaptureStdout();
    EXPECT_EQ(print_fit(ids, control.data(), input.data(), weights.data(), residuals.data(), 0.35355, 8, 1), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "\nControl Points:\n"
              "              pt.      y(row)      x(col)\n"
              "               0:        1.00        2.00\n"
              "               3:       30.50       40.12\n"
              "           12345:       -5.00        6.00\n"
              "               4:        7.00        8.00\n"
              "\nInput Points:\n"
              "              pt.         row         col     row wgt     col wgt\n"
              "               0:       10.00       20.00        1.00        1.00\n"
              "               3:      305.00      401.25        0.50        2.00\n"
              "           12345:       50.00       60.00        1.00        1.00\n"
              "               4:       70.00       80.00        1.00        1.00\n"
              "\nResiduals:\n"
              "              pt.         row         col         sse\n"
              "               0:      3.0000      4.0000      5.0000\n"
              "               3:     -0.2500      0.0000      0.2500\n"
              "           12345:      0.0000      0.5000      0.5000\n"
              "               4:      0.0000      0.0001      0.0001\n"
              "\nTransformation Model = 1\n"
              "\nStd. Error = 0.354 (Input Units)\n"
              "\nDegrees of Freedom = 2\n");
}

TEST_F(WarpFit, TheReportOfJustEnoughPointsHasNoError)
{
    const int ids[] = { 7, 8, 9 };
    const list zeros(6, 0.0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(print_fit(ids, zeros.data(), zeros.data(), zeros.data(), zeros.data(), 5, 6, 1), 0);
    const std::string text = testing::internal::GetCapturedStdout();
    const std::string end = "\nTransformation Model = 1\n\nStd. Error = undefined (Degrees of Freedom = 0)\n";
    ASSERT_GE(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3 * 6 + 4);
}

TEST_F(WarpFit, TheReportOfAnUnknownModelIsEmpty)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(print_fit(nullptr, nullptr, nullptr, nullptr, nullptr, 0, 6, 7), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(take_reports(), "get_ncoeff(): unrecognized model 7\n");
}
