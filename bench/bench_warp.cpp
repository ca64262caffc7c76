// A grey plane of 4000 x 4000 turned by 30 degrees with each method, beside memcpy of as many bytes as come out; pixman and OpenCV do the
// same where they are installed. `same_size` keeps 4000 x 4000 around the middle, `grown` the whole turned plane as the command does.
// Each turn runs memcpy and then the warp; look at x_memcpy, the median of our times over the median of memcpy's.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>

#include "filters/warp.h"
#include "filters/warp_fit.h"
#include "timing.h"

#ifdef HAVE_PIXMAN
#include <pixman.h>
#endif
#ifdef HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

static constexpr int SIDE = 4000, MOST_SIDE = 5600;
static constexpr size_t BYTES = size_t{MOST_SIDE} * MOST_SIDE;
static constexpr double ANGLE = 30 * 0.0174532925199433;

static uint8_t *photograph()
{
    static uint8_t *const made = sloping_plane(SIDE, BYTES);
    return made;
}

static uint8_t *target()
{
    static uint8_t *const made = plane_memory(BYTES);
    return made;
}

// A square of the output, in the coordinates of the turned plane, and what takes it back.
struct turn {
    int side;
    double row, col, inverse[6];
};

static turn turned(bool grown)
{
    turn t;
    double forward[6], rows[4], cols[4], row, col;
    load_trans(SIDE, SIDE, 0, 0, 1, 1, ANGLE, 0, forward, t.inverse);
    trans_corners(0.5, 0.5, SIDE - 0.5, SIDE - 0.5, MODEL_AFFINE, forward, rows, cols);
    trans_point(SIDE / 2.0, SIDE / 2.0, MODEL_AFFINE, forward, &row, &col);
    t.side = grown ? int(*std::max_element(rows, rows + 4) - *std::min_element(rows, rows + 4) + 1.0) : SIDE;
    t.side &= ~3;                      // pixman wants whole words in a row
    t.row = row - t.side / 2 + 0.5;
    t.col = col - t.side / 2 + 0.5;
    return t;
}

static void add(const std::string &name, const turn &t, const std::function<void()> &work)
{
    const size_t bytes = size_t(t.side) * size_t(t.side);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        static uint8_t *const copy = plane_memory(BYTES);
        target();
        beside_memcpy(state, photograph(), copy, bytes, work);
    })
        ->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(11);
}

static void add_ours(const std::string &size, const turn &t)
{
    static const struct { const char *name; int method; } methods[] = {
        { "nearest/", WARP_NEAREST }, { "bilinear/", WARP_BILINEAR }, { "cubic/", WARP_CUBIC } };
    for (const auto &m : methods)
        add(m.name + size, t, [t, method = m.method] {
            dwarp_it(photograph(), target(), SIDE, SIDE, t.col, t.row, t.col + t.side - 1, t.row + t.side - 1, 1, 1, t.inverse, MODEL_AFFINE,
                     method, CUBIC_DEFAULT, WARP_BYTES);
        });
}

#ifdef HAVE_PIXMAN
static void add_pixman(const std::string &size, const turn &t)
{
    static const struct { const char *name; pixman_filter_t filter; } methods[] = {
        { "pixman/nearest/", PIXMAN_FILTER_NEAREST }, { "pixman/bilinear/", PIXMAN_FILTER_BILINEAR } };
    for (const auto &m : methods)
        add(m.name + size, t, [t, filter = m.filter] {
            const double *const a = t.inverse;
            pixman_image_t *const from = pixman_image_create_bits(PIXMAN_a8, SIDE, SIDE, (uint32_t *)photograph(), SIDE);
            pixman_image_t *const to = pixman_image_create_bits(PIXMAN_a8, t.side, t.side, (uint32_t *)target(), t.side);
            const pixman_f_transform exact = { { { a[5], a[4], a[3] + a[5] * t.col + a[4] * t.row },
                                                 { a[2], a[1], a[0] + a[2] * t.col + a[1] * t.row },
                                                 { 0, 0, 1 } } };
            pixman_transform fixed;
            pixman_transform_from_pixman_f_transform(&fixed, &exact);
            pixman_image_set_transform(from, &fixed);
            pixman_image_set_filter(from, filter, nullptr, 0);
            pixman_image_composite32(PIXMAN_OP_SRC, from, nullptr, to, 0, 0, 0, 0, 0, 0, t.side, t.side);
            pixman_image_unref(from);
            pixman_image_unref(to);
        });
}
#endif

#ifdef HAVE_OPENCV
static void add_opencv(const std::string &size, const turn &t)
{
    static const struct { const char *name; int method; } methods[] = {
        { "opencv/nearest/", cv::INTER_NEAREST }, { "opencv/bilinear/", cv::INTER_LINEAR }, { "opencv/cubic/", cv::INTER_CUBIC } };
    for (const auto &m : methods)
        add(m.name + size, t, [t, method = m.method] {
            const double *const a = t.inverse;
            const cv::Mat from(SIDE, SIDE, CV_8UC1, photograph());
            cv::Mat to(t.side, t.side, CV_8UC1, target());
            const double coefficients[] = { a[5], a[4], a[3] + a[5] * t.col + a[4] * t.row, a[2], a[1], a[0] + a[2] * t.col + a[1] * t.row };
            cv::warpAffine(from, to, cv::Mat(2, 3, CV_64F, (void *)coefficients), to.size(), method | cv::WARP_INVERSE_MAP);
        });
}
#endif

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
#ifdef HAVE_OPENCV
    cv::setNumThreads(1);
#endif
    for (const bool grown : { false, true }) {
        const std::string size = grown ? "grown" : "same_size";
        const turn t = turned(grown);
        add_ours(size, t);
#ifdef HAVE_PIXMAN
        add_pixman(size, t);
#endif
#ifdef HAVE_OPENCV
        add_opencv(size, t);
#endif
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
