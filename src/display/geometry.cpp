#include "display/geometry.h"

#include <algorithm>
#include <cmath>

#include "display/paint.h"
#include "display/picture_windows.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

// Coordinates far outside any window stop here: beyond it they would not fit an integer.
constexpr double FAR_AWAY = 1e9;

int to_int(double value)
{
    return int(std::clamp(value, -FAR_AWAY, FAR_AWAY));
}

const band_rec *red_band_of_current()
{
    if (!is_picture(current_window) || windows[current_window].red_band < 0)
        return nullptr;
    return &bands[windows[current_window].red_band];
}

// The distance between two held points given as integers, 1.0 when they coincide.
double held_distance(int x0, int y0, int x1, int y1)
{
    const double dx = x1 - x0, dy = y1 - y0;
    return dx == 0 && dy == 0 ? 1.0 : std::sqrt(dx * dx + dy * dy);
}

void identity(double matrix[4][4])
{
    for (int row = 0; row < 4; row++)
        for (int column = 0; column < 4; column++)
            matrix[row][column] = row == column ? 1.0 : 0.0;
}

void clear_and_paint(int w)
{
    current_window = w;
    ws_clear_window(w);
    paint_window(0, 0, windows[w].width, windows[w].height);
}

// The coupled partner takes over the view. Two images that run in opposite directions are kept together on
// the picture and not on the numbers: that is meant.
void couple_view(const win_rec &from, win_rec &to)
{
    to.zoom = from.zoom;
    to.data_x = from.data_x;
    to.data_y = from.data_y;
    if (from.red_band < 0 || to.red_band < 0)
        return;
    const band_rec &from_band = bands[from.red_band], &to_band = bands[to.red_band];
    if ((from_band.orientation == ORIENT_LL_ROW) != (to_band.orientation == ORIENT_LL_ROW))
        to.data_y = to_band.y_size - from.data_y;
}

} // namespace

void window_to_image(int sx, int sy, double *x_out, double *y_out)
{
    *x_out = *y_out = 0;
    const band_rec *band = red_band_of_current();
    if (!band)
        return;
    const win_rec &win = windows[current_window];
    const auto &m = band->xform;
    const double dx = sx - (win.width >> 1), dy = sy - (win.height >> 1), z = 1 / win.zoom;
    *x_out = win.data_x + z * (m[0][0] * dx + m[1][0] * dy);
    *y_out = win.data_y + z * (m[0][1] * dx + m[1][1] * dy);
}

void window_to_held(int sx, int sy, int *x_out, int *y_out)
{
    double x, y;
    window_to_image(sx, sy, &x, &y);
    *x_out = to_int(x);
    *y_out = to_int(y);
}

void window_to_file(int sx, int sy, int *x_out, int *y_out)
{
    window_to_held(sx, sy, x_out, y_out);
    const band_rec *band = red_band_of_current();
    if (!band)
        return;
    const int64_t step = band->increment > 1 ? band->increment : 1;
    *x_out = int(*x_out * step + band->file_x0);
    *y_out = int(*y_out * step + band->file_y0);
}

void held_to_window(double x, double y, int *sx_out, int *sy_out)
{
    *sx_out = *sy_out = 0;
    const band_rec *band = red_band_of_current();
    if (!band)
        return;
    const win_rec &win = windows[current_window];
    const auto &m = band->xform;
    const double dx = x - win.data_x, dy = y - win.data_y;
    *sx_out = to_int(win.zoom * (m[0][0] * dx + m[0][1] * dy) + (win.width >> 1));
    *sy_out = to_int(win.zoom * (m[1][0] * dx + m[1][1] * dy) + (win.height >> 1));
}

void held_to_window_int(int x, int y, int *sx_out, int *sy_out)
{
    held_to_window(x, y, sx_out, sy_out);
}

void file_to_window(int x, int y, int *sx_out, int *sy_out)
{
    *sx_out = *sy_out = 0;
    const band_rec *band = red_band_of_current();
    if (!band)
        return;
    const int step = band->increment > 1 ? band->increment : 1;
    held_to_window_int((x - band->file_x0) / step, (y - band->file_y0) / step, sx_out, sy_out);
}

void apply_orientation(double matrix[4][4], int orientation)
{
    for (int row = 0; row < 3; row++) {
        if (orientation & 1)
            matrix[row][0] = -matrix[row][0];
        if (orientation & 2)
            matrix[row][1] = -matrix[row][1];
        if (!(orientation & 4))
            std::swap(matrix[row][0], matrix[row][1]);
    }
}

void band_clear_xform(int band)
{
    identity(bands[band].xform);
}

void band_reset_orientation(int band)
{
    identity(bands[band].xform);
    apply_orientation(bands[band].xform, bands[band].orientation);
}

void set_view_zoom(double zoom)
{
    windows[current_window].zoom = std::clamp(zoom, ZOOM_MIN, ZOOM_MAX);
}

void set_view_center(int x, int y)
{
    win_rec &win = windows[current_window];
    win.data_x = x;
    win.data_y = y;
    ws_warp_pointer(win.x + (win.width >> 1), win.y + (win.height >> 1));
}

void refresh_view()
{
    const int w = current_window;
    if (!is_picture(w))
        return;
    busy_all();
    clear_and_paint(w);
    const int partner = windows[w].linked_window;
    if (!(display_mode & SPLIT_DECOUPLED) && is_image_window(w) && !(windows[w].flags & CUT) && is_image_window(partner)) {
        couple_view(windows[w], windows[partner]);
        clear_and_paint(partner);
    }
    current_window = w;
    normal_all();
}

void view_area(int x0, int y0, int x1, int y1)
{
    if (!is_picture(current_window))
        return;
    int ax, ay, bx, by, cx, cy, center_x, center_y;
    window_to_held(x0, y0, &ax, &ay);
    window_to_held(x1, y0, &bx, &by);
    window_to_held(x0, y1, &cx, &cy);
    const int right = std::max(x0, x1), left = std::min(x0, x1);
    const int lower = std::max(y0, y1), upper = std::min(y0, y1);
    window_to_held(right + ((left - right) >> 1), lower + ((upper - lower) >> 1), &center_x, &center_y);
    const double w = held_distance(ax, ay, bx, by), h = held_distance(ax, ay, cx, cy);

    if (windows[current_window].flags & WIN_OVERVIEW)
        current_window = windows[current_window].linked_window;
    if (!is_picture(current_window))
        return;
    const win_rec &win = windows[current_window];
    set_view_zoom(std::min(win.width / w, win.height / h));
    set_view_center(center_x, center_y);
    refresh_view();
}

void fit_image()
{
    const band_rec *band = red_band_of_current();
    if (!band)
        return;
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    for (int corner = 0; corner < 4; corner++) {
        int x, y;
        held_to_window_int(corner & 1 ? band->x_size : 0, corner & 2 ? band->y_size : 0, &x, &y);
        x0 = corner ? std::min(x0, x) : x;
        y0 = corner ? std::min(y0, y) : y;
        x1 = corner ? std::max(x1, x) : x;
        y1 = corner ? std::max(y1, y) : y;
    }
    view_area(x0, y0, x1, y1);
}

void overview_size(int *w, int *h, double *zoom_out)
{
    *zoom_out = 1;
    if (*w <= layout.third_width && *h <= layout.third_height)
        return;
    const double a = double(layout.third_width) / *w, b = double(layout.third_height) / *h;
    if (b <= a) {
        *w = int(*w * b);
        *h = layout.third_height;
        *zoom_out = b;
    } else {
        *h = int(*h * a);
        *w = layout.third_width;
        *zoom_out = a;
    }
}
