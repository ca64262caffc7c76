#include "enhance/tune_map.h"

#include <cmath>
#include <cstring>

static constexpr int LEVELS = 256;
static constexpr double ONE_LEVEL = 0.00392156862745098;   // 1 / 255

static void brightness_curve(double brightness, int16_t *curve)
{
    const double exponent = 1 / (1 + std::fabs(brightness));
    int16_t rising[LEVELS];
    for (int i = 0; i < LEVELS; i++)
        rising[i] = int16_t(std::pow(i * ONE_LEVEL, exponent) * 255.0 + 0.5);
    for (int i = 0; i < LEVELS; i++)
        curve[i] = brightness < 0 ? int16_t(255 - rising[255 - i]) : rising[i];
}

void gamma_map(int32_t *hist, int16_t *lut, double brightness)
{
    int16_t curve[LEVELS];
    int32_t old[LEVELS];
    brightness_curve(brightness, curve);
    memcpy(old, hist, sizeof old);
    for (int i = 0; i < LEVELS; i++) {
        lut[i] = curve[lut[i]];
        hist[lut[i]] = int32_t(uint32_t(hist[lut[i]]) + uint32_t(old[i]));
    }
}
