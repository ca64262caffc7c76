#include "enhance/slice_chart.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "display/picture_windows.h"
#include "enhance/slice_display.h"
#include "services/ws.h"
#include "shell/session.h"

int chart_window = -1;

namespace {

constexpr int ROWS = 3, COLUMNS = 12, SQUARE = 32, EDGE = 10, HEIGHT = 116;
constexpr int FRAME = 2, FRAME_RIGHT = 401, FRAME_BOTTOM = 113;
constexpr const char *NAME = "density slice colors";

// Index 254 lies outside the named colours: it is whatever the colour table holds there.
constexpr uint8_t colours[ROWS][COLUMNS] = {
    { 12, 0, 27, 0, 13, 0, 25, 0, 14, 0, 26, 0 },
    { 8, 21, 4, 22, 9, 17, 15, 18, 10, 20, 16, 19 },
    { 28, 0, 11, 0, 29, 0, 24, 0, 30, 0, 23, 254 },
};

// A window that was closed under the chart's number leaves it to others.
bool is_open()
{
    return chart_window >= 0 && windows[chart_window].flags == WIN_DISPLAYED && strcmp(windows[chart_window].name, NAME) == 0;
}

void fill(int ink, int x0, int y0, int x1, int y1)
{
    ws_set_foreground(chart_window, ink);
    ws_fill_rect(chart_window, x0, y0, x1, y1);
}

// A square of colours that have no slot is dithered.
void draw_square(int row, int column)
{
    const int x0 = EDGE + SQUARE * column, y0 = EDGE + SQUARE * row;
    uint16_t slots[SQUARE * SQUARE];
    for (int i = 0; i < SQUARE * SQUARE; i++)
        slots[i] = uint16_t(slice_slot(colours[row][column], i % SQUARE, i / SQUARE));
    ws_put_16(chart_window, plane_mask, x0, y0, x0 + SQUARE - 1, y0 + SQUARE - 1, slots);
}

void draw_chart()
{
    constexpr int THICKNESS = 2;
    const int highest = int(plane_mask);
    fill(0, 0, 0, windows[chart_window].width - 1, HEIGHT - 1);
    fill(highest, FRAME, FRAME, FRAME_RIGHT, FRAME_BOTTOM);
    fill(0, FRAME + THICKNESS, FRAME + THICKNESS, FRAME_RIGHT - THICKNESS, FRAME_BOTTOM - THICKNESS);
    for (int row = 0; row < ROWS; row++)
        for (int column = 0; column < COLUMNS; column++)
            draw_square(row, column);
}

} // namespace

int chart_open()
{
    if (!is_open()) {
        int w;
        if (ws_create_plain_window(screen_no, layout.slice_bar_left, 0, layout.slice_bar_right - 1, HEIGHT - 1, &w) != 0) {
            msg_put(MSG_STATUS, MSG_CENTRED, "no window is free for the color chart");
            beep(BEEP_ERROR);
            return 0;
        }
        win_rec &win = windows[w];
        win = {};
        win.flags = WIN_DISPLAYED;
        snprintf(win.name, sizeof win.name, "%s", NAME);
        win.zoom = 1.0;
        win.red_band = win.green_band = win.blue_band = win.slice_band = win.linked_window = -1;
        ws_show_window(w);
        window_read_geometry(w);
        chart_window = w;
    }
    ws_pop_top(chart_window);
    draw_chart();
    return 1;
}

void chart_close()
{
    if (is_open())
        close_window(chart_window);
    chart_window = -1;
}

int chart_colour_at(int x, int y)
{
    const int column = std::min(std::max(x - EDGE, 0) / SQUARE, COLUMNS - 1);
    const int row = std::min(std::max(y - EDGE, 0) / SQUARE, ROWS - 1);
    return colours[row][column];
}
