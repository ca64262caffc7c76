#include "forms/slider_scale.h"
#include <algorithm>
#include <cmath>

static constexpr int MOST_DECIMALS = 9;
static constexpr double CONTINUOUS_STEPS = 100;   // a continuous slider's keys cross the range in about so many

static int is_usable(const gadget *g)
{
    return std::isfinite(g->low) && std::isfinite(g->high) && g->high > g->low;
}

int slider_decimals(const gadget *g)
{
    if (!is_usable(g))
        return 0;
    if (g->step <= 0)
        return std::clamp(int(std::ceil(-std::log10((g->high - g->low) / CONTINUOUS_STEPS) - 1e-9)), 0, MOST_DECIMALS);
    int decimals = 0;
    double scaled = g->step;
    while (decimals < MOST_DECIMALS && std::fabs(scaled - std::round(scaled)) > 1e-6 * scaled) {
        scaled *= 10;
        decimals++;
    }
    return decimals;
}

double slider_key_step(const gadget *g)
{
    return g->step > 0 ? g->step : std::pow(10, -slider_decimals(g));
}

double slider_nearest(const gadget *g, double value)
{
    if (!is_usable(g) || !std::isfinite(value))
        return g->low;
    if (g->step > 0) {
        value = g->low + g->step * std::round((value - g->low) / g->step);
        if (value > g->high + g->step * 1e-6)
            value -= g->step;
    } else {
        const double grid = std::pow(10, slider_decimals(g));
        value = std::round(value * grid) / grid;
    }
    return std::clamp(value, g->low, g->high);
}

double slider_value_at(const gadget *g, double share)
{
    // The ends stay reachable when the step does not divide the range or the low end is off the decimal grid.
    if (share <= 0 || !is_usable(g))
        return g->low;
    if (share >= 1 && g->step <= 0)
        return g->high;
    return slider_nearest(g, g->low + std::min(share, 1.0) * (g->high - g->low));
}

double slider_share(const gadget *g)
{
    return is_usable(g) ? std::clamp((g->position - g->low) / (g->high - g->low), 0.0, 1.0) : 0;
}
