#include "filters/polygon_input.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "display/geometry.h"
#include "display/paint.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"

char polygon_title[80];

namespace {

constexpr int LEAST_POINTS = 3;

struct window_point {
    int x, y;
};

// --- complement drawing ------------------------------------------------------------------------------------------

void invert(int w, int x, int y)
{
    ws_rop_point(w, WS_ROP_INVERT, x, y, 0);
}

// Cuts the part of a line with from + t (to - from) between the limits: t from *first to *last.
bool cut_axis(double from, double to, double low, double high, double *first, double *last)
{
    const double step = to - from;
    if (step == 0)
        return from >= low && from <= high;
    const double a = (low - from) / step, b = (high - from) / step;
    *first = std::max(*first, std::min(a, b));
    *last = std::min(*last, std::max(a, b));
    return *first <= *last;
}

// A view that was zoomed in since may put vertices far outside the window: only what is near it is walked.
bool cut_to_window(int w, window_point &a, window_point &b)
{
    const double x0 = a.x, y0 = a.y, dx = double(b.x) - a.x, dy = double(b.y) - a.y;
    double first = 0, last = 1;
    if (!cut_axis(x0, x0 + dx, -1, windows[w].width, &first, &last) || !cut_axis(y0, y0 + dy, -1, windows[w].height, &first, &last))
        return false;
    if (first > 0)
        a = { int(std::lround(x0 + first * dx)), int(std::lround(y0 + first * dy)) };
    if (last < 1)
        b = { int(std::lround(x0 + last * dx)), int(std::lround(y0 + last * dy)) };
    return true;
}

// The pixel at `a` is left alone: the line before has complemented it.
void invert_line(int w, window_point a, window_point b)
{
    if (!cut_to_window(w, a, b))
        return;
    const int dx = b.x - a.x, dy = b.y - a.y, steps = std::max(std::abs(dx), std::abs(dy));
    for (int i = 1; i <= steps; i++)
        invert(w, a.x + int(std::lround(double(dx) * i / steps)), a.y + int(std::lround(double(dy) * i / steps)));
}

// --- the polygon on the screen -------------------------------------------------------------------------------------

window_point place_of(const int32_t *vertex)
{
    window_point p;
    held_to_window_int(vertex[1], vertex[0], &p.x, &p.y);
    return p;
}

// The line to vertex i from the one before it; a dot for the first one.
void draw_vertex(int w, const int32_t *vertices, int i)
{
    current_window = w;
    const window_point p = place_of(vertices + 2 * i);
    if (i == 0)
        invert(w, p.x, p.y);
    else
        invert_line(w, place_of(vertices + 2 * i - 2), p);
}

void draw_closing_line(int w, const int32_t *vertices, int count)
{
    draw_vertex(w, vertices, count - 1);
    current_window = w;
    const window_point first = place_of(vertices);
    invert(w, first.x, first.y);       // it had its dot already
}

// What is under the polygon comes back.
void paint_over(int w, const int32_t *vertices, int count)
{
    if (count == 0 || !is_image_window(w))
        return;
    current_window = w;
    window_point low = place_of(vertices), high = low;
    for (int i = 1; i < count; i++) {
        const window_point p = place_of(vertices + 2 * i);
        low = { std::min(low.x, p.x), std::min(low.y, p.y) };
        high = { std::max(high.x, p.x), std::max(high.y, p.y) };
    }
    ws_set_foreground(w, 0);
    ws_fill_rect(w, low.x, low.y, high.x, high.y);
    const int right = windows[w].width - 1, lower = windows[w].height - 1;
    paint_window(std::clamp(low.x, 0, right), std::clamp(low.y, 0, lower), std::clamp(high.x, 0, right), std::clamp(high.y, 0, lower));
}

// --- prompts -----------------------------------------------------------------------------------------------------------

void show_what_reset_does(int count)
{
    if (count == 0)
        msg_put(MSG_STATUS, MSG_CENTRED, "Reset to quit");
    else if (count >= LEAST_POINTS)
        msg_put(MSG_STATUS, MSG_CENTRED, "Reset to close the polygon");
}

// 1 with a point of window w in held pixels; 0 on a reset, a quit or when the window has gone. Points elsewhere ring the terminal's bell.
int ask_vertex(int w, const char *prompt, int32_t *vertex)
{
    while (is_image_window(w)) {
        const int input = prompt_input(polygon_title, prompt, PROMPT_SHOW_PIXEL);
        if (input & (INPUT_RESET | INPUT_QUIT))
            return 0;
        if (!(input & INPUT_POINT))
            continue;
        if (pick_window == w) {
            int x, y;
            window_to_held(pick_x, pick_y, &x, &y);
            vertex[0] = y;
            vertex[1] = x;
            return 1;
        }
        putchar('\a');
        fflush(stdout);
    }
    return 0;
}

int enter_vertices(int w, int32_t *vertices, int max_points, const char *prefix)
{
    int count = 0;
    while (count < max_points) {
        char prompt[100];
        snprintf(prompt, sizeof prompt, "%.60s Enter a point[%d]", prefix, count);
        show_what_reset_does(count);
        if (!ask_vertex(w, prompt, vertices + 2 * count))
            break;
        msg_clear(MSG_STATUS);
        draw_vertex(w, vertices, count++);
    }
    return count;
}

int accepted()
{
    int input;
    do
        input = prompt_input(polygon_title, "Accept/Reject", 0);
    while (!(input & (INPUT_POINT | INPUT_RESET | INPUT_QUIT)));
    return input == INPUT_POINT;
}

} // namespace

int polygon_input(int32_t *vertices, int *count, int max_points, const char *prefix)
{
    const int w = active_window;
    msg_put(MSG_TITLE, MSG_CENTRED, polygon_title);
    *count = 0;
    if (max_points < LEAST_POINTS || !is_image_window(w))
        return 0;
    *count = enter_vertices(w, vertices, max_points, prefix);
    if (*count >= LEAST_POINTS && is_image_window(w)) {
        vertices[2 * *count] = vertices[0];
        vertices[2 * *count + 1] = vertices[1];
        ++*count;
        draw_closing_line(w, vertices, *count);
        if (accepted() && is_image_window(w))
            return 1;
    }
    paint_over(w, vertices, *count);
    return 0;
}

void polygon_draw(const int32_t *vertices, int count)
{
    const int w = current_window;
    if (!is_image_window(w) || count < LEAST_POINTS)
        return;
    for (int i = 0; i + 1 < count; i++)
        draw_vertex(w, vertices, i);
    draw_closing_line(w, vertices, count);
}
