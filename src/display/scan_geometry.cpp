#include "display/scan_geometry.h"

#include <algorithm>
#include <cmath>

static constexpr double  STEP_LIMIT = 32767;   // extreme zoom-out gives an empty window
static constexpr int64_t ONE        = 65536;   // 1.0 in 16.16

// Solves [p r; q s] (x, y) = (e, f) by elimination with the larger pivot. 0 for a singular matrix.
static int solve(double p, double r, double q, double s, double e, double f, double *x_out, double *y_out)
{
    if (std::fabs(q) > std::fabs(p)) {
        std::swap(p, q);
        std::swap(r, s);
        std::swap(e, f);
    }
    if (p == 0)
        return 0;
    const double factor = q / p, pivot = s - factor * r;
    if (pivot == 0)
        return 0;
    *y_out = (f - factor * e) / pivot;
    *x_out = (e - r * *y_out) / p;
    return 1;
}

int scan_steps_of(const double matrix[16], scan_steps *steps_out)
{
    const double *m = matrix;
    scan_steps &t = *steps_out;
    const double w = m[15];
    if (m[12] == 0 && m[13] == 0) {
        // Straight from the matrix: differences of far positions would cost digits.
        t.p = m[0] / w, t.q = m[4] / w, t.r = m[1] / w, t.s = m[5] / w;
    } else {
        const double right = w + m[12], down = w + m[13];
        t.p = (m[0] + m[3]) / right - m[3] / w, t.q = (m[4] + m[7]) / right - m[7] / w;
        t.r = (m[1] + m[3]) / down - m[3] / w,  t.s = (m[5] + m[7]) / down - m[7] / w;
    }
    t.origin_x = m[3] / w, t.origin_y = m[7] / w;
    if (!solve(t.p, t.r, t.q, t.s, 1, 0, &t.right_x, &t.right_y) || !solve(t.p, t.r, t.q, t.s, 0, 1, &t.down_x, &t.down_y))
        return 0;
    for (const double step : { t.right_x, t.right_y, t.down_x, t.down_y })
        if (!(std::fabs(step) < STEP_LIMIT))
            return 0;
    for (const double place : { t.p, t.q, t.r, t.s, t.origin_x, t.origin_y })
        if (!std::isfinite(place))
            return 0;
    t.a = int64_t(t.right_x * double(ONE)), t.c = int64_t(t.right_y * double(ONE));
    t.b = int64_t(t.down_x * double(ONE)), t.d = int64_t(t.down_y * double(ONE));
    return 1;
}

void scan_source_point(const scan_steps &steps, double x_window, double y_window, double *x_out, double *y_out)
{
    const double dx = x_window - steps.origin_x, dy = y_window - steps.origin_y;
    *x_out = dx * steps.right_x + dy * steps.down_x;
    *y_out = dx * steps.right_y + dy * steps.down_y;
}

int64_t to_16_16(double position)
{
    // What is a whole number but for the rounding errors of the matrix counts as whole.
    static constexpr double SLACK = 1.0 / 1024, FAR = 1LL << 60;
    const double units = position * double(ONE);
    return int64_t(std::clamp(units < 0 ? units - SLACK : units + SLACK, -FAR, FAR));
}

static int first_pixel(double corner, int clip_first)
{
    return int(std::clamp(std::floor(corner + 0.001), double(clip_first), 2147483647.0));
}

int scan_start(const scan_steps &steps, const window_rect &clip, int block_x, int block_y, int64_t width, int64_t height, block_start *start_out)
{
    const double corner_x = steps.origin_x + block_x * steps.p + block_y * steps.r;
    const double corner_y = steps.origin_y + block_x * steps.q + block_y * steps.s;
    block_start &start = *start_out;
    start.x = first_pixel(corner_x, clip.x0);
    start.y = first_pixel(corner_y, clip.y0);
    double x_source, y_source;
    scan_source_point(steps, start.x, start.y, &x_source, &y_source);
    start.u = to_16_16(x_source - block_x);
    start.v = to_16_16(y_source - block_y);
    while (start.u < 0 && start.x <= clip.x1)
        start.u += steps.a, start.x++;
    while (start.v < 0 && start.y <= clip.y1)
        start.v += steps.d, start.y++;
    return start.x <= clip.x1 && start.y <= clip.y1 && start.u < width * ONE && start.v < height * ONE;
}

int column_table(const block_start &start, const scan_steps &steps, const window_rect &clip, int64_t width, int32_t *columns)
{
    int count = 0;
    int64_t u = start.u;
    for (int x = start.x; x <= clip.x1 && u < width * ONE; x++, u += steps.a)
        columns[count++] = int32_t(u >> 16);
    return count;
}

int span_inside(int64_t position, int64_t step, int64_t limit, int *first, int *last)
{
    if (step == 0)
        return position >= 0 && position < limit && *first <= *last;
    if (step < 0) {                    // the same walk, mirrored in the block
        position = limit - 1 - position;
        step = -step;
    }
    if (position >= limit)
        return 0;
    const int64_t enter = position < 0 ? (-position + step - 1) / step : 0;
    const int64_t leave = (limit - 1 - position) / step;
    *first = int(std::max<int64_t>(*first, std::min<int64_t>(enter, INT32_MAX)));
    *last = int(std::min<int64_t>(*last, leave));
    return enter <= leave && *first <= *last && enter <= INT32_MAX;
}
