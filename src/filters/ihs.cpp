#include "filters/ihs.h"

#include <algorithm>

#include "filters/ihs_rows.h"
#include "filters/level_table.h"
#include "filters/long_pass.h"
#include "services/ws.h"

namespace {

constexpr int STEPS = IHS_STEPS;
constexpr double PER_STEP = 0.024390243902439025;      // 1 / 41
constexpr double PER_LEVEL = 0.00392156862745098;      // 1 / 255
constexpr double THIRD_PER_STEP = 2.073170731707317;   // 85 / 41

uint8_t hue_frac[256][256];
uint8_t sat_frac[256][256];
uint32_t triple[256];
float ihs_f1[STEPS][256], ihs_f2[STEPS][256], ihs_f3[STEPS][256], ihs_f4[STEPS][256];
int32_t ihs_lim1[STEPS][256], ihs_lim2[STEPS][256];
bool tables_ready;

uint8_t hue_fraction(int a, int b)
{
    if (a == 0 || b == 0)
        return 0;
    return b <= a ? STEPS - 1 : uint8_t(double(a) / b * 42.0);
}

// The brightest intensity of a hue at each saturation; `pure` is that of the saturated hue.
int32_t intensity_limit(double pure, int saturation)
{
    return std::min(255, int((255 - saturation) * ((255 - pure) * PER_LEVEL) + pure + 0.5));
}

void build_fractions()
{
    for (int a = 0; a < 256; a++)
        for (int b = 0; b < 256; b++)
            hue_frac[a][b] = hue_fraction(a, b);
    for (int hi = 1; hi < 256; hi++)
        for (int lo = 0; lo <= hi; lo++)
            sat_frac[hi][lo] = uint8_t((1 - double(lo) / hi) * 255.0);
}

void build_factors()
{
    for (int i = 0; i < STEPS; i++)
        for (int j = 0; j < 256; j++) {
            const double g = i * PER_STEP, s = j * PER_LEVEL;
            ihs_f1[i][j] = float(1 / (s * (g - 2) + 3));
            ihs_f2[i][j] = float(1 / (s * (1 - g - 2) + 3));
            ihs_f3[i][j] = float(g * s - s + 1);
            ihs_f4[i][j] = float((1 - g) * s - s + 1);
            ihs_lim1[i][j] = intensity_limit(85 + i * THIRD_PER_STEP, j);
            ihs_lim2[i][j] = intensity_limit(170 - i * THIRD_PER_STEP, j);
        }
}

// The order of the tests settles which segment a tie belongs to.
inline uint8_t hue_of(int red, int green, int blue, int lo, int hi)
{
    const int r = red - lo, g = green - lo, b = blue - lo;
    if (lo == red)
        return uint8_t(hi == blue ? hue_frac[g][b] : 83 - hue_frac[b][g]);
    if (lo != blue)
        return uint8_t(hi == red ? hue_frac[b][r] + 168 : 251 - hue_frac[r][b]);
    return uint8_t(hi == green ? hue_frac[r][g] + 84 : 167 - hue_frac[g][r]);
}

void forward_row(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols)
{
    for (int c = 0; c < cols; c++) {
        const int red = b1[c], green = b2[c], blue = b3[c];
        const int hi = std::max({ red, green, blue }), lo = std::min({ red, green, blue });
        const uint8_t saturation = sat_frac[hi][lo];
        b1[c] = uint8_t((red + green + blue) / 3);
        b2[c] = saturation == 0 ? uint8_t{0} : hue_of(red, green, blue, lo, hi);
        b3[c] = saturation;
    }
}

// Which primary is computed first, second and by what remains; 0 red, 1 green, 2 blue.
struct hue_segment {
    const int32_t (*limit)[256];
    const float (*first_factor)[256], (*second_factor)[256];
    int first, second, rest;
};
constexpr int RED = 0, GREEN = 1, BLUE = 2;
constexpr hue_segment segments[IHS_SEGMENTS] = {
    { ihs_lim1, ihs_f1, ihs_f3, BLUE,  GREEN, RED },
    { ihs_lim2, ihs_f2, ihs_f4, GREEN, BLUE,  RED },
    { ihs_lim1, ihs_f1, ihs_f3, GREEN, RED,   BLUE },
    { ihs_lim2, ihs_f2, ihs_f4, RED,   GREEN, BLUE },
    { ihs_lim1, ihs_f1, ihs_f3, RED,   BLUE,  GREEN },
    { ihs_lim2, ihs_f2, ihs_f4, BLUE,  RED,   GREEN },
};

inline int level_of(float value)
{
    return value >= 255.0f ? 255 : int(value);
}

inline int back_pixel(int intensity, int hue, int saturation, uint8_t rgb[3])
{
    if (saturation == 0) {
        rgb[RED] = rgb[GREEN] = rgb[BLUE] = uint8_t(intensity);
        return 0;
    }
    hue = std::min(hue, IHS_HUE_MAX);
    const int number = hue / STEPS, step = hue % STEPS;
    if (number >= IHS_SEGMENTS) {
        report(REPORT_WARNING, " ERROR in hue segment assignments ");
        return IHS_BAD_HUE;
    }
    const hue_segment &segment = segments[number];
    intensity = std::min(intensity, segment.limit[step][saturation]);
    const int first = level_of(segment.first_factor[step][saturation] * float(triple[intensity]) + 0.5f);
    const int second = level_of(segment.second_factor[step][saturation] * float(first) + 0.5f);
    rgb[segment.first] = uint8_t(first);
    rgb[segment.second] = uint8_t(second);
    rgb[segment.rest] = uint8_t(std::clamp(3 * intensity - first - second, 0, 255));
    return 0;
}

int back_row(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols)
{
    for (int c = 0; c < cols; c++) {
        uint8_t rgb[3];
        if (const int result = back_pixel(b1[c], b2[c], b3[c], rgb); result < 0)
            return result;
        b1[c] = rgb[RED];
        b2[c] = rgb[GREEN];
        b3[c] = rgb[BLUE];
    }
    return 0;
}

const ihs_rows &best_rows()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
        return ihs_by_arithmetic;
#endif
    return ihs_by_tables;
}

typedef int (*row_pass)(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols);

int stopped(int row, int rows)
{
    if (row % 10 != 0)
        return 0;
    show_row(row, rows);
    return abort_check();
}

int forward(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols)
{
    best_rows().forward(b1, b2, b3, cols);
    return 0;
}

int back(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols)
{
    return best_rows().back(b1, b2, b3, cols);
}

// Row after row through the maps and then through the pass, which ends with what it answers below 0.
int pass_rows(row_pass pass, uint8_t *const bands[3], const int16_t *const maps[3], int rows, int cols)
{
    uint8_t tables[3][256];
    ihs_init();
    for (int i = 0; i < 3; i++)
        level_table(maps[i], tables[i]);
    for (int r = 0; r < rows; r++) {
        if (stopped(r, rows))
            return IHS_STOPPED;
        uint8_t *row[3];
        for (int i = 0; i < 3; i++) {
            row[i] = bands[i] + int64_t{r} * cols;
            if (!is_identity(maps[i]))
                map_levels(row[i], row[i], tables[i], size_t(cols));
        }
        if (const int result = pass(row[0], row[1], row[2], cols); result < 0)
            return result;
    }
    return 0;
}

} // namespace

const ihs_rows ihs_by_tables = { forward_row, back_row };

void ihs_init()
{
    if (tables_ready)
        return;
    for (uint32_t i = 0; i < 256; i++)
        triple[i] = 3 * i;
    build_fractions();
    build_factors();
    tables_ready = true;
}

bool ihs_ready()
{
    return tables_ready;
}

int rgb_to_ihs(uint8_t *b1, uint8_t *b2, uint8_t *b3, const int16_t *map1, const int16_t *map2, const int16_t *map3, int rows, int cols)
{
    uint8_t *const bands[3] = { b1, b2, b3 };
    const int16_t *const maps[3] = { map1, map2, map3 };
    return pass_rows(forward, bands, maps, rows, cols);
}

int ihs_to_rgb(uint8_t *b1, uint8_t *b2, uint8_t *b3, const int16_t *map1, const int16_t *map2, const int16_t *map3, int rows, int cols)
{
    uint8_t *const bands[3] = { b1, b2, b3 };
    const int16_t *const maps[3] = { map1, map2, map3 };
    return pass_rows(back, bands, maps, rows, cols);
}
