// layout.cpp - where things stand on the screen, from its size and the sizes of a window's frame and the strip.
#include "services/ws.h"
#include "shell/session.h"
#include "shell/startup.h"

constexpr int HIST_WITH_GRAPHS = 780;  // a colour histogram window at full height ends here

screen_layout layout_for_screen(int width, int height, int border_x, int border_y, int caption, int strip)
{
    const bool small = strip + HIST_WITH_GRAPHS > height;
    screen_layout l {};
    l.border_x = border_x;
    l.border_y = border_y;
    l.caption = caption;
    l.strip = strip;
    l.third_width = width / 3;
    l.third_height = height / 3;
    l.right_half_x = width / 2 + border_x;
    l.half_width = width / 2 - 2 * border_x;
    l.small_screen = small;

    l.hist_top = small ? 32 : 87;
    l.hist_bottom_mono = small ? 172 : 338;
    l.hist_bottom_colour = small ? 414 : HIST_WITH_GRAPHS;
    l.hist_graph_height = small ? 100 : 200;
    const int graph_step = l.hist_graph_height + 21, graph_bottom = l.hist_graph_height + 11;
    l.hist_red_top = small ? 22 : 33;
    l.hist_green_top = l.hist_red_top + graph_step;
    l.hist_blue_top = l.hist_green_top + graph_step;
    l.hist_red_bottom = l.hist_red_top + graph_bottom;
    l.hist_green_bottom = l.hist_green_top + graph_bottom;
    l.hist_blue_bottom = l.hist_blue_top + graph_bottom;
    l.source_hist_step = small ? 121 : 221;
    l.right_hist_x = width / 2 - 142;

    l.tune_left = (width - 624) / 2;
    l.tune_right = l.tune_left + 624;
    l.panel_left = (width - 320) / 2;
    l.panel_right = l.panel_left + 320;
    l.strip_top = height - strip;
    l.panel_top = height - strip - 210;
    l.slice_bar_left = width / 2 - 202;
    l.slice_bar_right = width / 2 + 202;
    return l;
}

void layout_compute()
{
    int border_x = 0, border_y = 0, caption = 0;
    ws_frame_metrics(&border_x, &border_y, &caption);
    layout = layout_for_screen(screen_width, screen_height, border_x, border_y, caption, ws_strip_height());
    max_image_width = screen_width - 2 * border_x;
    max_image_height = screen_height - border_y - caption - layout.strip;
}
