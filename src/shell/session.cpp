// session.cpp - the session records themselves, each with its start value.
#include "shell/session.h"

#include <cstring>

#include "forms/forms.h"

band_rec bands[BANDS];
win_rec windows[WINDOWS];
uint32_t display_mode = DISPLAY_MODE_START;

int32_t current_window;
int32_t active_window = -1;
int32_t hist_window = -1, source_hist_window = -1, scatter_window = -1;
int32_t picture_count;
int32_t pick_x, pick_y;
char keyin_buffer[80];
int32_t keyin_length;
int32_t quit_requested, exit_status;
int32_t undo_enabled = 1;
int32_t grid_enabled;
uint32_t auto_windows;
int32_t tile_size_code = 7, tile_size = 128, mem_limit = -1;
int32_t num_planes, start_planes;
uint32_t plane_mask;
int32_t hardware_highlight;
int32_t highlight_colour = -1;
int32_t grid_colour = -1;
float font_scale = 1;
int32_t max_image_width, max_image_height;
int32_t screen_no, screen_width, screen_height;
char data_dir[256], fonts_dir[256];
char image_path[256];
int32_t fwrite_tile_code = -1, fwrite_incr = 1, fwrite_min = 0, fwrite_max = 255;
char block_file_name[128];
int32_t hist_sampling_incr;

int32_t font_title, font_title_small, font_text, font_text_small, font_mid, symbols;
screen_layout layout;

static void window_clear(win_rec *window)
{
    std::memset(window, 0, sizeof *window);
    window->zoom = 1;
    window->red_band = window->green_band = window->blue_band = -1;
    window->slice_band = window->linked_window = -1;
    window->hist_area = { 0, 0, AREA_UNLIMITED, AREA_UNLIMITED };
}

void session_reset()
{
    for (int n = 0; n < BANDS; n++)
        band_clear(n);
    for (win_rec &window : windows)
        window_clear(&window);
    display_mode = DISPLAY_MODE_START;

    current_window = 0;
    active_window = hist_window = source_hist_window = scatter_window = -1;
    picture_count = 0;
    pick_x = pick_y = 0;
    std::memset(keyin_buffer, 0, sizeof keyin_buffer);
    keyin_length = 0;
    quit_requested = exit_status = 0;
    form_is_up = 0;
    popup_forms = 1;
    undo_enabled = 1;
    grid_enabled = 0;
    auto_windows = 0;
    tile_size_code = 7;
    tile_size = 128;
    mem_limit = -1;
    num_planes = start_planes = 0;
    plane_mask = 0;
    hardware_highlight = 0;
    highlight_colour = grid_colour = -1;
    font_scale = 1;
    max_image_width = max_image_height = 0;
    screen_no = screen_width = screen_height = 0;
    data_dir[0] = fonts_dir[0] = image_path[0] = block_file_name[0] = 0;
    fwrite_tile_code = -1;
    fwrite_incr = 1;
    fwrite_min = 0;
    fwrite_max = 255;
    hist_sampling_incr = 0;
    font_title = font_title_small = font_text = font_text_small = font_mid = symbols = 0;
    layout = {};
}
