#include "filters/control_points.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "display/geometry.h"
#include "display/picture_windows.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

constexpr int MARK_COLOUR = 9;
constexpr int CROSS_FROM = 2, CROSS_TO = 6;    // pixels from the centre
constexpr int TEXT_RIGHT = 5, TEXT_ABOVE = 15;

void stroke(int w, int x0, int y0, int x1, int y1)
{
    ws_move(w, x0, y0);
    ws_draw(w, x1, y1);
}

// Rounded as levels are: half up, then towards zero.
int rounded(double coordinate)
{
    constexpr double FAR_AWAY = 1e9;
    const double v = coordinate + 0.5;
    return v > FAR_AWAY ? int(FAR_AWAY) : v > -FAR_AWAY ? int(v) : -int(FAR_AWAY);
}

void mark_in(int w, int id, double row, double column)
{
    int x, y;
    current_window = w;
    held_to_window_int(rounded(column), rounded(row), &x, &y);
    set_drawing_colour(w, MARK_COLOUR);
    stroke(w, x + CROSS_FROM, y, x + CROSS_TO, y);
    stroke(w, x - CROSS_FROM, y, x - CROSS_TO, y);
    stroke(w, x, y + CROSS_FROM, x, y + CROSS_TO);
    stroke(w, x, y - CROSS_FROM, x, y - CROSS_TO);
    char text[16];
    snprintf(text, sizeof text, "%d", id);
    ws_draw_text(w, font_text_small, x + TEXT_RIGHT, y - TEXT_ABOVE, text, int(strlen(text)));
}

// Values [at] to [at + width - 1] of `total` go, those behind them move up.
template <typename T> void close_gap(T *list, int at, int width, int total)
{
    std::copy(list + at + width, list + total, list + at);
}

} // namespace

void point_add(control_points &points)
{
    const int index = points_held(points);
    points.ids[index] = index;
    points.weights[2 * index] = points.weights[2 * index + 1] = 1.0;
    points.m += 2;
}

void parse_ids(const char *text, int *ids, int *count, int max)
{
    for (*count = 0; *count < max; ++*count) {
        text += strspn(text, " ,;\t");
        char *end;
        errno = 0;
        const long id = strtol(text, &end, 10);
        if (end == text)
            return;
        ids[*count] = errno == 0 && id >= INT_MIN && id <= INT_MAX ? int(id) : INT_MIN;
        text = end;
    }
}

void delete_points(double *in_points, double *out_points, double *weights, int *ids, int *m, const int *delete_list, int n)
{
    while (n-- > 0) {
        const int held = *m / 2, at = int(std::find(ids, ids + held, delete_list[n]) - ids);
        if (at == held)
            continue;
        for (double *const list : { in_points, out_points, weights })
            close_gap(list, 2 * at, 2, 2 * held);
        close_gap(ids, at, 1, held);
        *m -= 2;
    }
}

void point_mark(int index, const int *ids, const double *points, int window)
{
    if (!is_image_window(window))
        return;
    const int32_t before = current_window;
    const int overview = window_overview_of(window);
    mark_in(window, ids[index], points[2 * index], points[2 * index + 1]);
    if (overview >= 0)
        mark_in(overview, ids[index], points[2 * index], points[2 * index + 1]);
    current_window = before;
}

void point_mark_small(int x_file, int y_file, int window)
{
    const int32_t before = current_window;
    int x, y;
    current_window = window;
    file_to_window(x_file, y_file, &x, &y);
    current_window = before;
    set_drawing_colour(window, MARK_COLOUR);
    x++;
    y++;
    stroke(window, x, y, x + 3, y);
    stroke(window, x, y, x, y + 3);
    stroke(window, x, y, x + 4, y + 4);
}
