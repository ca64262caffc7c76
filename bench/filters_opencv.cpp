// The nearest that OpenCV has, on one thread and on the same planes. Borders are those that it makes quickest.
#include "filters_bench.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

static cv::Mat grey_in()
{
    return cv::Mat(SIDE, SIDE, CV_8U, photograph());
}

static cv::Mat grey_out()
{
    return cv::Mat(SIDE, SIDE, CV_8U, target());
}

static cv::Mat table()
{
    cv::Mat t(1, 256, CV_8U);
    for (int i = 0; i < 256; i++)
        t.at<uint8_t>(i) = uint8_t(255 - i / 2);
    return t;
}

static void filtered(const cv::Matx33f &kernel)
{
    cv::Mat out = grey_out();
    cv::filter2D(grey_in(), out, CV_8U, kernel, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
}

// The larger of two gradients; each is kept in 16 bits.
static void larger_gradient(const cv::Mat &in, cv::Mat &out)
{
    static cv::Mat across, down;
    cv::Sobel(in, across, CV_16S, 1, 0);
    cv::Sobel(in, down, CV_16S, 0, 1);
    across = cv::abs(across);
    down = cv::abs(down);
    cv::max(across, down, across);
    across.convertTo(out, CV_8U, 0.25);
}

static void add_filters()
{
    for (int k = 2; k <= 9; k++)
        add("opencv/smoothing/" + std::to_string(k), BYTES, [k] {
            cv::Mat out = grey_out();
            cv::blur(grey_in(), out, cv::Size(k, k), cv::Point(-1, -1), cv::BORDER_REPLICATE);
        });
    add("opencv/edge_det/0", BYTES, [] { filtered({ 1, 1, 1, 0, 0, 0, -1, -1, -1 }); });
    add("opencv/edge_det/45", BYTES, [] { filtered({ 0, 1, 1, -1, 0, 1, -1, -1, 0 }); });
    add("opencv/edge_enh/8", BYTES, [] { filtered({ 0, -0.25f, 0, -0.25f, 2, -0.25f, 0, -0.25f, 0 }); });
    add("opencv/sobel", BYTES, [] {
        cv::Mat out = grey_out();
        larger_gradient(grey_in(), out);
    });
    add("opencv/roberts", BYTES, [] {
        static cv::Mat falling;
        const cv::Rect lower_right(1, 1, SIDE - 1, SIDE - 1), upper_left(0, 0, SIDE - 1, SIDE - 1);
        const cv::Rect upper_right(1, 0, SIDE - 1, SIDE - 1), lower_left(0, 1, SIDE - 1, SIDE - 1);
        const cv::Mat in = grey_in();
        cv::Mat out = grey_out()(lower_right);
        cv::absdiff(in(upper_left), in(lower_right), falling);
        cv::absdiff(in(upper_right), in(lower_left), out);
        cv::max(out, falling, out);
    });
}

static void add_tone_and_geometry()
{
    add("opencv/apply/in_place", BYTES, [] {
        cv::Mat out = grey_out();
        cv::LUT(out, table(), out);
    });
    add("opencv/invert/in_place", BYTES, [] {
        cv::Mat out = grey_out();
        cv::bitwise_not(out, out);
    });
    for (const auto &[name, code] : { std::pair("flip", 0), std::pair("mirror", 1) })
        add(std::string("opencv/") + name, BYTES, [code = code] {
            cv::Mat out = grey_out();
            cv::flip(grey_in(), out, code);
        });
    add("opencv/transpose", BYTES, [] {
        cv::Mat out = grey_out();
        cv::transpose(grey_in(), out);
    });
}

// Another coding of hue, on one plane of three interleaved bytes.
static void add_hue()
{
    for (const auto &[name, code] : { std::pair("rgb_to_hsv", int{cv::COLOR_RGB2HSV_FULL}), std::pair("hsv_to_rgb", int{cv::COLOR_HSV2RGB_FULL}) })
        add(std::string("opencv/") + name, 3 * COLOUR_BYTES, [code = code] {
            const cv::Mat in(COLOUR_SIDE, COLOUR_SIDE, CV_8UC3, photograph());
            cv::Mat out(COLOUR_SIDE, COLOUR_SIDE, CV_8UC3, target());
            cv::cvtColor(in, out, code);
        });
}

void add_opencv()
{
    cv::setNumThreads(1);
    add_filters();
    add_tone_and_geometry();
    add_hue();
}
