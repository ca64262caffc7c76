#include "enhance/thumbnail.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "display/paint.h"
#include "display/scan.h"
#include "display/scan_geometry.h"
#include "display/vlt.h"
#include "shell/session.h"

namespace {

constexpr uint32_t PACKED_COLOUR = 16777215;

// From held pixels to the square: the rotation of the band about the image's middle, scaled to fit.
void square_matrix(const band_rec &band, double matrix[16])
{
    const auto &m = band.xform;
    const double w = band.x_size, h = band.y_size;
    const double across = std::fabs(m[0][0]) * w + std::fabs(m[0][1]) * h, down = std::fabs(m[1][0]) * w + std::fabs(m[1][1]) * h;
    const double scale = THUMBNAIL_SIDE / std::max({ across, down, 1e-9 }), middle = THUMBNAIL_SIDE / 2.0;
    std::fill(matrix, matrix + 16, 0.0);
    for (int row = 0; row < 2; row++) {
        matrix[4 * row] = scale * m[row][0];
        matrix[4 * row + 1] = scale * m[row][1];
        matrix[4 * row + 3] = middle - scale * (m[row][0] * w + m[row][1] * h) / 2;
    }
    matrix[10] = matrix[15] = 1;
}

// A level as the display takes it. The table of a panel is its own: it never lies in the colour table.
int display_value(int level)
{
    if (display_mode & TC)
        return gamma_table[level];
    if (display_mode & COLOR)
        return start_planes == 4 ? fix[level] : level;
    if ((display_mode & IFB) && start_planes == 8)
        return grey_slot[level];
    return (display_mode & IFB) && start_planes == 9 ? level + 255 : level;
}

} // namespace

void thumbnail_resample(int n, uint8_t *square_out)
{
    memset(square_out, 0, THUMBNAIL_BYTES);
    const band_rec &band = bands[n];
    double matrix[16];
    scan_steps steps;
    square_matrix(band, matrix);
    if (!band.data || (band.format & KIND_MASK) == KIND_BIN || !scan_steps_of(matrix, &steps))
        return;
    for (int y = 0; y < THUMBNAIL_SIDE; y++)
        for (int x = 0; x < THUMBNAIL_SIDE; x++) {
            double u, v;
            scan_source_point(steps, x + 0.5, y + 0.5, &u, &v);
            if (u >= 0 && v >= 0 && u < band.x_size && v < band.y_size)
                square_out[y * THUMBNAIL_SIDE + x] = band.data[int64_t{int(v)} * band.x_size + int(u)];
        }
}

void thumbnail_paint(int window, int x, int y, const uint8_t *const planes[3], const int16_t *const luts[3])
{
    const int count = luts[1] ? 3 : 1, side = THUMBNAIL_SIDE;
    uint16_t tables[3][256];
    for (int i = 0; i < count; i++)
        for (int level = 0; level < 256; level++)
            tables[i][level] = uint16_t(display_value(lut_level(luts[i], level)));
    const uint32_t mask = display_mode & TC ? PACKED_COLOUR : start_planes > 8 ? 511 : 255;
    const double place[16] = { 1, 0, 0, double(x), 0, 1, 0, double(y), 0, 0, 1, 0, 0, 0, 0, 1 };

    const view_source blue { nullptr, planes[2], 0, 0, 0, side, side, side };
    const view_source green { &blue, planes[1], 0, 0, 0, side, side, side };
    const view_source red { count == 3 ? &green : nullptr, planes[0], 0, 0, 0, side, side, side };
    const int32_t interrupt = paint_interrupt;
    paint_interrupt = 0;
    scan_prepare(window, x, y, x + side - 1, y + side - 1, mask, side, side, count == 3 ? 24 : 8, tables[0], tables[1], tables[2], place);
    scan_run(window, &red);
    paint_interrupt = interrupt;
}
