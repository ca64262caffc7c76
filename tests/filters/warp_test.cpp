#include "filters/pass_watch.h"
#include "filters/warp_reference.h"

#include "filters/warp_fit.h"
#include "mem.h"

namespace {

typedef std::vector<double> list;
typedef std::vector<std::string> words;
typedef std::vector<int32_t> triples;

constexpr double DEGREE = 0.0174532925199433;
constexpr double identity[] = { 0, 1, 0, 0, 0, 1 };

struct bounds {
    double c0, r0, c1, r1, c_step = 1, r_step = 1;
};

size_t bytes_for(int rows, int cols, int kind)
{
    const size_t pixels = size_t(rows) * size_t(cols);
    return kind == WARP_BITS ? (pixels + 7) / 8 : pixels;
}

struct warped {
    int result, rows, cols;
    plane pixels;
};

warped warp_over(const plane &in, int in_rows, int in_cols, const bounds &b, const double *coefficients, int model, int method, double parameter,
                 int kind)
{
    warped w = { 0, int(std::abs(b.r1 - b.r0) / std::abs(b.r_step) + 1), int(std::abs(b.c1 - b.c0) / std::abs(b.c_step) + 1), {} };
    w.pixels.assign(bytes_for(w.rows, w.cols, kind) + 1, UNWRITTEN);
    w.result = dwarp_it(in.data(), w.pixels.data(), in_rows, in_cols, b.c0, b.r0, b.c1, b.r1, b.c_step, b.r_step, coefficients, model, method,
                        parameter, kind);
    EXPECT_EQ(w.pixels.back(), UNWRITTEN);
    w.pixels.pop_back();
    return w;
}

// Where row i of an affine warp begins and ends, by addition from the corners.
struct edge_pair {
    double rs, cs, re, ce;
};

std::vector<edge_pair> edges(const bounds &b, const double *a, int rows)
{
    const auto corner = [&](double x, double y) { return std::pair{ a[0] + a[1] * x + a[2] * y, a[3] + a[4] * x + a[5] * y }; };
    const auto k0 = corner(b.r0, b.c0), k1 = corner(b.r0, b.c1), k2 = corner(b.r1, b.c0), k3 = corner(b.r1, b.c1);
    const int n = rows - 1;
    edge_pair e = { k0.first, k0.second, k1.first, k1.second };
    std::vector<edge_pair> all;
    for (int i = 0; i < rows; i++) {
        all.push_back(e);
        e.rs += (k2.first - k0.first) / n;
        e.cs += (k2.second - k0.second) / n;
        e.re += (k3.first - k1.first) / n;
        e.ce += (k3.second - k1.second) / n;
    }
    return all;
}

void expect_affine(const picture &p, const bounds &b, const double *a, double parameter = -0.5)
{
    const weight_tables t = tables_for(parameter);
    for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {
        const warped w = warp_over(p.pixels, p.rows, p.cols, b, a, MODEL_AFFINE, method, parameter, WARP_BYTES);
        ASSERT_EQ(w.result, 0);
        const std::vector<edge_pair> lines = edges(b, a, w.rows);
        for (int i = 0; i < w.rows; i++) {
            const auto [rs, cs, re, ce] = lines[size_t(i)];
            const double dr = (re - rs) / (w.cols - 1), dc = (ce - cs) / (w.cols - 1);
            double r = rs, c = cs;
            for (int j = 0; j < w.cols; j++, r += dr, c += dc)
                ASSERT_EQ(w.pixels[size_t(i) * size_t(w.cols) + size_t(j)],
                          method == WARP_NEAREST ? pixel_truncated(p, r, c) : pixel_at(p, r, c, method, t))
                    << "method " << method << " at " << i << ", " << j << " from " << r << ", " << c;
        }
    }
}

bool nothing_held()
{
    const auto &[a, b, c, d, e, f, g] = warp_set;
    return !a && !b && !c && !d && !e && !f && !g;
}

struct splice {
    int rows, cols;
    plane pixels;
    int result = 77;

    splice(int r, int c, int kind = WARP_BYTES) : rows(r), cols(c), pixels(bytes_for(r, c, kind), UNWRITTEN) {}
    int at(int r, int c) const { return pixels[size_t(r) * size_t(cols) + size_t(c)]; }
};

splice spliced(const picture &p, int rows, int cols, const triples &mask, const double *a, int model = MODEL_AFFINE, int method = WARP_NEAREST)
{
    splice s(rows, cols);
    s.result = splice_it(p.pixels.data(), s.pixels.data(), p.rows, p.cols, rows, cols, mask.data(), a, model, method, -0.5, WARP_BYTES);
    return s;
}

} // namespace

struct Warp : warp_test {
    void SetUp() override
    {
        warp_test::SetUp();
        messages.clear();
        rows_to_stop = -1;
    }
    void TearDown() override
    {
        mem_fail_countdown = -1;
        free_warp();
        warp_test::TearDown();
    }
};

TEST_F(Warp, TheWorkingSetHasRowStartsAndZeroedCoordinates)
{
    ASSERT_EQ(init_warp(3, 50, 4, WARP_NEAREST, 0), 0);
    EXPECT_EQ(warp_set.row_start[2], 100);
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(warp_set.row_coords[i], 0);
        EXPECT_EQ(warp_set.col_coords[i], 0);
    }
    EXPECT_EQ(warp_set.cc_w0, nullptr);
    ASSERT_EQ(init_warp(3, INT32_MAX, 4, WARP_CUBIC, -1.0), 0);
    EXPECT_EQ(warp_set.row_start[2], 4294967294);
    EXPECT_EQ(warp_set.cc_w0[20], -262);           // as in the tables' own test
    EXPECT_EQ(warp_set.cc_w3[20], -65);
    free_warp();
    EXPECT_TRUE(nothing_held());
}

TEST_F(Warp, EachFailingAllocationHasItsNumber)
{
    for (int n = 0; n < 7; n++) {
        mem_fail_countdown = n;
        EXPECT_EQ(init_warp(3, 3, 3, WARP_CUBIC, -0.5), -1 - n);
        EXPECT_EQ(warp_set.row_start, nullptr);
        EXPECT_EQ(warp_set.row_coords, nullptr);
        EXPECT_EQ(warp_set.cc_w3 != nullptr, n >= 4);
    }
    for (int n = 0; n < 3; n++) {
        mem_fail_countdown = n;
        EXPECT_EQ(init_warp(3, 3, 3, WARP_BILINEAR, -0.5), -5 - n);
    }
}

TEST_F(Warp, AWarpWithoutMemoryReportsTheNumber)
{
    const picture p = random_picture(3, 3, 1);
    for (int n = 0; n < 7; n++) {
        mem_fail_countdown = n;
        const warped w = warp_over(p.pixels, 3, 3, { 0, 0, 2, 2 }, identity, MODEL_AFFINE, WARP_CUBIC, -0.5, WARP_BYTES);
        EXPECT_EQ(w.result, -1);
        EXPECT_EQ(w.pixels, plane(9, UNWRITTEN));
        EXPECT_EQ(take_reports(), "dwarp_it(): error " + std::to_string(-1 - n) + " in init_warp()\n");
    }
}

TEST_F(Warp, TheIdentityKeepsAnImage)
{
    for_every_size([](int rows, int cols) {
        const picture p = random_picture(rows, cols, unsigned(rows * 43 + cols));
        for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {
            const warped w = warp_over(p.pixels, rows, cols, { 0.5, 0.5, cols - 0.5, rows - 0.5 }, identity, MODEL_AFFINE, method, -0.5, WARP_BYTES);
            ASSERT_TRUE(w.pixels == p.pixels) << rows << " x " << cols << " method " << method;
        }
    });
}

TEST_F(Warp, TurnsAndScalesPixelByPixel)
{
    for (const auto &[rows, cols] : { std::pair{ 5, 4 }, { 31, 64 }, { 130, 90 }, { 90, 130 } }) {
        const picture p = random_picture(rows, cols, unsigned(rows));
        for (const double angle : { 0.0, 30.0, 90.0, 137.0, -45.0, 720.0 })
            for (const double scale : { 1.0, 0.4, 2.7 }) {
                double forward[6], inverse[6], r[4], c[4];
                ASSERT_EQ(load_trans(rows, cols, 0, 0, scale, scale, angle * DEGREE, 0, forward, inverse), 0);
                trans_corners(0.5, 0.5, rows - 0.5, cols - 0.5, MODEL_AFFINE, forward, r, c);
                const bounds b = { *std::min_element(c, c + 4), *std::min_element(r, r + 4), *std::max_element(c, c + 4), *std::max_element(r, r + 4) };
                expect_affine(p, b, inverse);
                if (HasFatalFailure())
                    return;
            }
    }
}

TEST_F(Warp, EveryNumberOfRowsAndColumns)
{
    const picture p = random_picture(120, 140, 77);
    const double a[] = { 20.3, 0.8, 0.35, 30.6, -0.45, 0.9 };
    for (const int rows : { 2, 3, 15, 16, 17, 31, 32, 33, 50 })
        for (const int cols : { 2, 3, 31, 32, 33, 63, 64, 65, 100 }) {
            expect_affine(p, { 0, 0, cols - 1.0, rows - 1.0 }, a, 0.75);
            if (HasFatalFailure())
                return;
        }
}

TEST_F(Warp, FractionalSteps)
{
    const picture p = random_picture(40, 50, 5);
    expect_affine(p, { 0.25, 1, 48.3, 39, 0.7, 0.3 }, identity);
    expect_affine(p, { 48, 39, 2, 1, -0.5, -2 }, identity);
}

TEST_F(Warp, OneRowIsThatOfTheFirstEdge)
{
    const picture p = random_picture(40, 50, 6);
    expect_affine(p, { 3.5, 7.5, 33.5, 7.5 }, identity);
    expect_affine(p, { 3.5, 7.5, 3.5, 33.5 }, identity);           // one column
    expect_affine(p, { 3.5, 7.5, 3.5, 7.5 }, identity);
}

TEST_F(Warp, WildModelsGiveBlackImages)
{
    const picture p = random_picture(70, 80, 8);
    const double wild[] = { NOT_A_NUMBER, WITHOUT_END, -WITHOUT_END, 1e300, -1e300, 1e18, 3e9 };
    for (const double value : wild)
        for (const int where : { 0, 3 })
            for (const int model : { 0, 1, 2, 3, 4, 5, 15 })
                for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {
                    list a(42, 0.0);
                    a[size_t(model < 2 || model == 15 || where == 0 ? where : get_ncoeff(model) / 2)] = value;
                    const warped w = warp_over(p.pixels, p.rows, p.cols, { 0, 0, 40, 20 }, a.data(), model, method, -0.5, WARP_BYTES);
                    ASSERT_EQ(w.pixels, plane(41 * 21, 0)) << value << " model " << model;
                }
}

TEST_F(Warp, WildSlopesLeaveTheImage)
{
    const picture p = random_picture(70, 80, 8);
    for (const double slope : { 1e5, -1e5, 1e12, 1e300, -1e300 }) {
        const double rows[] = { 35, slope, 0, 40, 0, 0 }, cols[] = { 35, 0, 0, 40, 0, slope };
        expect_affine(p, { -20, -20, 20, 20 }, rows);
        expect_affine(p, { -20, -20, 20, 20 }, cols);
    }
}

TEST_F(Warp, BoundsThatAreNoSizesWriteNothing)
{
    const picture p = random_picture(4, 4, 9);
    plane out(16, UNWRITTEN);
    for (const bounds &b : { bounds{ 0, 0, 3, 3, 0, 1 }, { 0, 0, 3, 3, 1, 0 }, { NOT_A_NUMBER, 0, 3, 3 }, { 0, 0, 3, WITHOUT_END },
                             { 0, 0, 1e300, 3 }, { 0, 0, 3, 3, 1e-300, 1 } })
        for (const int model : { 1, 2 })
            EXPECT_EQ(dwarp_it(p.pixels.data(), out.data(), 4, 4, b.c0, b.r0, b.c1, b.r1, b.c_step, b.r_step, list(42, 1.0).data(), model,
                               WARP_NEAREST, 0, WARP_BYTES), 0);
    EXPECT_EQ(out, plane(16, UNWRITTEN));
}

TEST_F(Warp, AnotherMethodLeavesTheOutput)
{
    const picture p = random_picture(40, 40, 9);
    const warped w = warp_over(p.pixels, 40, 40, { 0.5, 0.5, 39.5, 39.5 }, identity, MODEL_AFFINE, 4, 0, WARP_BYTES);
    EXPECT_EQ(w.pixels, plane(1600, UNWRITTEN));
}

TEST_F(Warp, OtherModelsAreEvaluatedAlongEachRow)
{
    const picture p = random_picture(60, 80, 10);
    const bounds b = { 0.5, 0.5, 79.5, 59.5, 0.75, 1.25 };
    const weight_tables t = tables_for(-0.5);
    for (const int model : { 0, 2, 3, 5, 8, 15 }) {
        list a(42, 0.0);
        if (model == 8)
            a = { 0.001, -0.002, -3, 1, 0.1, 2, -0.1, 1 };
        else if (model == 0)
            a = { -2, 0.9, 0.2, 5 };
        else if (model == 15)
            a = { -2, 0.9, 0.2, 5, 1.1 };
        else {
            const size_t half = size_t(get_ncoeff(model)) / 2;
            a[0] = -3, a[1] = 0.9, a[2] = 0.1, a[5] = 0.002, a[half] = 2, a[half + 1] = -0.1, a[half + 2] = 1.1, a[half + 4] = -0.003;
        }
        for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {
            const warped w = warp_over(p.pixels, p.rows, p.cols, b, a.data(), model, method, -0.5, WARP_BYTES);
            ASSERT_EQ(w.result, 0);
            ASSERT_EQ(w.rows, 48);
            double row = b.r0;
            for (int i = 0; i < w.rows; i++, row += b.r_step) {
                list r(size_t(w.cols) + 1), c(size_t(w.cols) + 1);
                trans_row(row, b.c0, b.c1, b.c_step, model, a.data(), r.data(), c.data());
                for (size_t j = 0; j < size_t(w.cols); j++)
                    ASSERT_EQ(w.pixels[size_t(i) * size_t(w.cols) + j], pixel_at(p, r[j], c[j], method, t))
                        << "model " << model << " method " << method << " at " << i << ", " << j;
            }
        }
    }
}

TEST_F(Warp, StraightModelsOtherThanTheAffineDoNotTakeInMinusOneHalf)
{
    const plane in(9, 200);
    const bounds b = { -0.5, -0.5, 1.5, 1.5 };
    const warped affine = warp_over(in, 3, 3, b, identity, MODEL_AFFINE, WARP_NEAREST, 0, WARP_BYTES);
    EXPECT_EQ(affine.pixels, plane(9, 200));
    const double similarity[] = { 0, 1, 0, 0 };
    const warped other = warp_over(in, 3, 3, b, similarity, MODEL_SIMILARITY, WARP_NEAREST, 0, WARP_BYTES);
    EXPECT_EQ(other.pixels, (plane{ 0, 0, 0, 0, 200, 200, 0, 200, 200 }));
}

TEST_F(Warp, BitsGoByTheirOwnPlaces)
{
    picture p = random_picture(30, 37, 21);
    plane in(bytes_for(30, 37, WARP_BITS), 0);
    for (size_t i = 0; i < p.pixels.size(); i++) {
        p.pixels[i] &= 1;
        in[i / 8] = uint8_t(in[i / 8] | p.pixels[i] << i % 8);
    }
    const double a[] = { -2.3, 0.8, 0.35, 6.6, -0.45, 0.9 };
    const bounds b = { 0, 0, 32, 28 };
    for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {     // always the nearest
        const warped w = warp_over(in, 30, 37, b, a, MODEL_AFFINE, method, -0.5, WARP_BITS);
        const std::vector<edge_pair> lines = edges(b, a, w.rows);
        for (int i = 0; i < w.rows; i++) {
            const auto [rs, cs, re, ce] = lines[size_t(i)];
            double r = rs, c = cs;
            for (int j = 0; j < w.cols; j++, r += (re - rs) / (w.cols - 1), c += (ce - cs) / (w.cols - 1)) {
                const int bit = i * w.cols + j;
                ASSERT_EQ(w.pixels[size_t(bit / 8)] >> bit % 8 & 1, pixel_truncated(p, r, c));
            }
        }
    }
    const double similarity[] = { 0, 1, 0, 0 };
    const warped same = warp_over(in, 30, 37, { 0, 0, 36, 29 }, similarity, MODEL_SIMILARITY, WARP_NEAREST, 0, WARP_BITS);
    for (size_t i = 0; i < p.pixels.size(); i++)
        ASSERT_EQ(same.pixels[i / 8] >> i % 8 & 1, p.pixels[i]);
}

TEST_F(Warp, EveryTenthRowIsShown)
{
    const picture p = random_picture(21, 3, 1);
    const words want = { "Processing row 0/21", "Processing row 10/21", "Processing row 20/21", "" };
    const double similarity[] = { 0, 1, 0, 0 };
    warp_over(p.pixels, 21, 3, { 0.5, 0.5, 2.5, 20.5 }, identity, MODEL_AFFINE, WARP_NEAREST, 0, WARP_BYTES);
    EXPECT_EQ(std::exchange(messages, {}), want);
    warp_over(p.pixels, 21, 3, { 0.5, 0.5, 2.5, 20.5 }, similarity, MODEL_SIMILARITY, WARP_BILINEAR, 0, WARP_BYTES);
    EXPECT_EQ(std::exchange(messages, {}), want);
    const plane bits(8, 0);
    warp_over(bits, 21, 3, { 0.5, 0.5, 2.5, 20.5 }, identity, MODEL_AFFINE, WARP_NEAREST, 0, WARP_BITS);
    EXPECT_EQ(std::exchange(messages, {}), want);
    EXPECT_TRUE(nothing_held());
}

TEST_F(Warp, AStopLeavesTheWorkingSetAndTheRowsBelow)
{
    const picture p = random_picture(40, 40, 1);
    const double similarity[] = { 0, 1, 0, 0 };
    for (const auto &[model, coefficients] : { std::pair{ MODEL_AFFINE, identity }, { MODEL_SIMILARITY, similarity } }) {
        rows_to_stop = 2;
        const warped w = warp_over(p.pixels, 40, 40, { 0.5, 0.5, 39.5, 39.5 }, coefficients, model, WARP_NEAREST, 0, WARP_BYTES);
        EXPECT_EQ(w.result, WARP_STOPPED);
        EXPECT_EQ(WARP_STOPPED, -99);
        EXPECT_NE(warp_set.row_start, nullptr);
        EXPECT_EQ(w.pixels[20 * 40], UNWRITTEN);
        EXPECT_EQ(w.pixels[15 * 40], p.at(15, 0));
    }
    EXPECT_EQ(messages.size(), 6u);
}

TEST_F(Warp, WarpsFollowOneAnother)
{
    const picture p = random_picture(40, 40, 1);
    rows_to_stop = 0;
    warp_over(p.pixels, 40, 40, { 0.5, 0.5, 39.5, 39.5 }, identity, MODEL_AFFINE, WARP_CUBIC, 0, WARP_BYTES);
    const warped w = warp_over(p.pixels, 40, 40, { 0.5, 0.5, 39.5, 39.5 }, identity, MODEL_AFFINE, WARP_NEAREST, 0, WARP_BYTES);
    EXPECT_EQ(w.pixels, p.pixels);
    EXPECT_TRUE(nothing_held());
}

// --- splices -------------------------------------------------------------------------------------------------------------

struct Splice : Warp {};

TEST_F(Splice, FillsIntervalsAndTheirEndColumnFromEarlierRuns)
{
    const picture p = random_picture(8, 10, 2);
    const splice s = spliced(p, 6, 9, { 0, 0, 5, 1, 0, 3, 2, 2, 6, 3, 1, 7, -1 }, identity);
    EXPECT_EQ(s.result, 0);
    splice want(6, 9);
    const auto put = [&](int r, int c, int value) { want.pixels[size_t(r * 9 + c)] = uint8_t(value); };
    for (int c = 0; c < 5; c++)
        put(0, c, p.at(0, c));
    put(0, 5, p.at(0, 0));                     // place 5 was never computed: row 0, column 0
    for (int c = 0; c < 3; c++)
        put(1, c, p.at(1, c));
    put(1, 3, p.at(0, 3));                     // place 3 is that of row 0
    for (int c = 2; c < 6; c++)
        put(2, c, p.at(2, c));
    put(2, 6, p.at(0, 4));                     // columns 2 to 5 took places 0 to 3
    for (int c = 1; c < 7; c++)
        put(3, c, p.at(3, c));
    put(3, 7, p.at(0, 0));
    EXPECT_EQ(s.pixels, want.pixels);
}

TEST_F(Splice, OldPlacesLoseHalfAPixelEachTime)
{
    const picture p = random_picture(8, 10, 2);
    const double a[] = { 2, 1, 0, 3, 0, 1 };
    const splice s = spliced(p, 4, 6, { 0, 0, 3, 1, 0, 2, 2, 0, 2, -1 }, a, MODEL_AFFINE, WARP_BILINEAR);
    const weight_tables t = tables_for(-0.5);
    EXPECT_EQ(s.at(0, 1), pixel_at(p, 2, 4, WARP_BILINEAR, t));
    EXPECT_EQ(s.at(0, 3), 0);                  // 0 less a half is outside
    EXPECT_EQ(s.at(1, 2), pixel_at(p, 1.5, 4.5, WARP_BILINEAR, t));    // place 2 was row 2, column 5
    EXPECT_EQ(s.at(2, 2), pixel_at(p, 1.0, 4.0, WARP_BILINEAR, t));
}

TEST_F(Splice, EachMethodAndModelPixelByPixel)
{
    const picture p = random_picture(100, 120, 3);
    const weight_tables t = tables_for(-0.5);
    const double a[] = { 3.2, 0.9, 0.2, 5.1, -0.15, 1.05 }, quotient[] = { 0.001, -0.0005, 3, 1, 0.1, 2, -0.1, 1 };
    for (const auto &[model, coefficients] : { std::pair{ MODEL_AFFINE, a }, { MODEL_PROJECTIVE, quotient } })
        for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {
            triples mask;
            for (int r = 0; r < 90; r++)
                mask.insert(mask.end(), { r, r / 3, 110 - r / 2 });
            mask.push_back(-1);
            const splice s = spliced(p, 95, 115, mask, coefficients, model, method);
            for (int r = 0; r < 90; r++) {
                const int first = r / 3, end = 110 - r / 2;
                list rows(size_t(end - first)), cols(size_t(end - first));
                trans_span(r, first, end - 1, model, coefficients, rows.data(), cols.data());
                for (int c = 0; c < 115; c++) {
                    if (c == end)
                        continue;
                    const size_t i = size_t(c - first);
                    ASSERT_EQ(s.at(r, c), c < first || c > end ? UNWRITTEN : pixel_at(p, rows[i], cols[i], method, t)) << r << ", " << c;
                }
            }
        }
}

TEST_F(Splice, ColumnsAreHeldWithinTheImage)
{
    const picture p = random_picture(8, 10, 4);
    const splice s = spliced(p, 3, 5, { 0, -7, 99, 1, 5, 5, 2, 4, 1, -1 }, identity);
    for (int c = 0; c < 4; c++)
        EXPECT_EQ(s.at(0, c), p.at(0, c));
    EXPECT_EQ(s.at(0, 4), p.at(0, 0));
    EXPECT_EQ(s.at(1, 3), UNWRITTEN);
    EXPECT_EQ(s.at(1, 4), p.at(0, 0));         // a run of one pixel computes no place
    for (int c = 0; c < 5; c++)
        EXPECT_EQ(s.at(2, c), UNWRITTEN);      // it ends before it begins
    spliced(p, 3, 5, { 0, INT32_MIN, INT32_MAX, -1 }, identity);
}

TEST_F(Splice, RowsBelowMinusOneArePassedOver)
{
    const picture p = random_picture(8, 10, 4);
    const splice s = spliced(p, 3, 5, { -3, 0, 2, 0, 0, 2, -2, 0, 2, -1, 0, 2, 1, 0, 2, -1, 0, 2, 2, 0, 2, -1 }, identity);
    EXPECT_EQ(s.at(0, 0), p.at(0, 0));
    EXPECT_EQ(s.at(1, 0), p.at(1, 0));         // behind -2 and -1
    EXPECT_EQ(s.at(2, 0), UNWRITTEN);          // behind the end
}

TEST_F(Splice, ARowBeyondTheImageEndsTheMask)
{
    const picture p = random_picture(8, 10, 4);
    const splice s = spliced(p, 3, 5, { 0, 0, 2, 3, 0, 2, 1, 0, 2, -1 }, identity);
    EXPECT_EQ(s.at(0, 0), p.at(0, 0));
    EXPECT_EQ(s.at(1, 0), UNWRITTEN);
    EXPECT_EQ(spliced(p, 0, 5, { 0, 0, 2, -1 }, identity).result, 0);
    EXPECT_EQ(spliced(p, 5, 0, { 0, 0, 2, -1 }, identity).result, 0);
}

TEST_F(Splice, BitsOfARunLieByItsOwnWidth)
{
    const plane in = { 0xFF, 0xFF };
    splice s(4, 8, WARP_BITS);
    s.pixels.assign(4, 0);
    const triples mask = { 2, 1, 3, -1 };      // three pixels: bits 2 * 3 + 1 to 9
    EXPECT_EQ(splice_it(in.data(), s.pixels.data(), 4, 4, 4, 8, mask.data(), identity, MODEL_AFFINE, WARP_NEAREST, 0, WARP_BITS), 0);
    EXPECT_EQ(s.pixels, (plane{ 0x80, 0x03, 0, 0 }));
}

TEST_F(Splice, EveryTenthRowIsShown)
{
    const picture p = random_picture(40, 10, 4);
    spliced(p, 40, 5, { 0, 0, 2, 0, 3, 4, 9, 0, 2, 11, 0, 2, 30, 0, 2, -1 }, identity);
    EXPECT_EQ(messages, (words{ "Processing row 0", "Processing row 0", "Processing row 30", "" }));
    EXPECT_TRUE(nothing_held());
}

TEST_F(Splice, StopsAndFailsInSilence)
{
    const picture p = random_picture(40, 10, 4);
    rows_to_stop = 1;
    const splice s = spliced(p, 40, 5, { 0, 0, 2, 10, 0, 2, -1 }, identity);
    EXPECT_EQ(s.result, -99);
    EXPECT_EQ(s.at(0, 0), p.at(0, 0));
    EXPECT_EQ(s.at(10, 0), UNWRITTEN);
    EXPECT_NE(warp_set.row_start, nullptr);
    for (int n = 0; n < 3; n++) {
        mem_fail_countdown = n;
        EXPECT_EQ(spliced(p, 40, 5, { 0, 0, 2, -1 }, identity).result, -1);
    }
}

TEST_F(Splice, WildModelsTouchNothingElse)
{
    const picture p = random_picture(80, 90, 4);
    for (const double value : { NOT_A_NUMBER, WITHOUT_END, -1e300, 1e10 })
        for (const int method : { WARP_NEAREST, WARP_BILINEAR, WARP_CUBIC }) {
            const double a[] = { value, 1, 0, 0, value, 1 };
            const splice s = spliced(p, 4, 70, { 1, 3, 60, -1 }, a, MODEL_AFFINE, method);
            for (int c = 3; c < 60; c++)
                ASSERT_EQ(s.at(1, c), 0);
            EXPECT_EQ(s.at(1, 2), UNWRITTEN);
            EXPECT_EQ(s.at(1, 61), UNWRITTEN);
        }
}
