#include "display/picture_windows.h"

#include <cstdio>
#include <cstring>

#include "display/paint.h"
#include "display/split_screen.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/menu.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "store/bands.h"

namespace {

uint32_t window_bands(const win_rec &win)
{
    return band_mask(win.red_band, win.green_band, win.blue_band);
}

bool shows_several_bands(const win_rec &win)
{
    return win.red_band != win.green_band || win.red_band != win.blue_band;
}

// Runs `act` on every picture window that passes `wanted`, from 39 down to 0, with that window as current_window,
// which is -1 afterwards.
template <typename test, typename action> void for_each_picture(test wanted, action act)
{
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (is_picture(w) && wanted(windows[w])) {
            current_window = w;
            act(w);
        }
    current_window = -1;
}

void paint_whole(int)
{
    paint_whole_window();
}

// True colour windows: table 2 for what is painted in packed colours, the shared table 0 for grey that the table looks up.
void take_colour_table(int w)
{
    int number = 0;
    if ((display_mode & TC) && (display_mode & (STATIC_VLT | COLOR)) && ws_vlt_alloc(2, &number) != 0)
        ws_vlt_of_kind(2, &number);
    windows[w].vlt_id = number;
    if (display_mode & TC)
        ws_set_window_vlt(w, number);
}

void return_colour_table(int vlt_id)
{
    for (int w = 0; w < WINDOWS; w++)
        if (is_picture(w) && windows[w].vlt_id == vlt_id)
            return;
    ws_vlt_free(vlt_id);
}

bool shown_elsewhere(int band, int but)
{
    for (int w = 0; w < WINDOWS; w++) {
        const win_rec &win = windows[w];
        if (w != but && is_picture(w) && (win.red_band == band || win.green_band == band || win.blue_band == band))
            return true;
    }
    return false;
}

void free_bands_of(int w)
{
    const int16_t numbers[3] = { windows[w].red_band, windows[w].green_band, windows[w].blue_band };
    for (const int band : numbers)
        if (band >= 0 && !shown_elsewhere(band, w))
            band_free(band);
}

void clear_slot(int w)
{
    win_rec &win = windows[w];
    win.flags = 0;
    win.red_band = win.green_band = win.blue_band = win.slice_band = win.linked_window = -1;
}

void forget_special_window(int w)
{
    if (w == hist_window) {
        hist_window = -1;
        menu_check("toggle_hist", 0);
    }
    if (w == source_hist_window)
        source_hist_window = -1;
    if (w == scatter_window)
        scatter_window = -1;
}

// The window that shares a split screen with w, or -1. A cut window is linked to the picture that it was cut from, and no partner.
int split_partner(int w)
{
    const int partner = windows[w].linked_window;
    return is_image_window(w) && !(windows[w].flags & CUT) && is_image_window(partner) && windows[partner].linked_window == w ? partner : -1;
}

// A grey image read beside a colour one, or the other way round, has changed the mode of all. When only one kind is left, the mode is theirs.
void mode_of_the_rest()
{
    if (active_window < 0 || windows[active_window].red_band < 0 || mono_channel != 0 || pictures_are_mixed())
        return;
    if (shows_several_bands(windows[active_window]) != bool(display_mode & COLOR)) {
        display_mode ^= COLOR;
        display_rebuild();
    }
}

// What the rest of the session owes a picture that has gone.
void picture_closed(int w, int overview, int partner)
{
    picture_count--;
    close_window(overview);
    if (partner >= 0) {
        current_window = partner;
        split_off(true);
    } else if (w == active_window) {
        activate_any();
    }
    menu_update_split();
    if (partner < 0 && picture_count == 1 && vlt_holds_grey_table()) {
        vlt_program();
        paint_all_pictures();
        prompt_mark_refresh_done();
    }
    mode_of_the_rest();
}

void title_plain(int w)
{
    ws_set_title(w, windows[w].name);
}

} // namespace

void busy_all()
{
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (windows[w].flags & WIN_DISPLAYED)
            ws_busy_cursor(w);
}

void normal_all()
{
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (windows[w].flags & WIN_DISPLAYED)
            ws_normal_cursor(w);
}

void window_read_geometry(int w)
{
    int x0, y0, x1, y1;
    if (ws_window_rect(w, &x0, &y0, &x1, &y1) != 0)
        return;
    win_rec &win = windows[w];
    win.x = x0;
    win.y = y0;
    win.width = x1 - x0 + 1;
    win.height = y1 - y0 + 1;
}

int new_picture_window(int width, int height, int x, int y)
{
    int w;
    if (ws_create_window(screen_no, "ACTIVE", x, y, x + width - 1, y + height - 1, &w) != 0)
        return -1;
    picture_count++;
    if (picture_count == 2 && vlt_holds_grey_table()) {
        vlt_program();
        paint_all_pictures();
    }
    if (active_window >= 0)
        title_plain(active_window);

    win_rec &win = windows[w];
    win = {};
    win.flags = WIN_DISPLAYED | WIN_PICTURE;
    win.zoom = 1.0;
    win.red_band = win.green_band = win.blue_band = win.slice_band = win.linked_window = -1;
    win.hist_area = { 0, 0, AREA_UNLIMITED, AREA_UNLIMITED };
    take_colour_table(w);
    ws_show_window(w);
    ws_busy_cursor(w);
    window_read_geometry(w);
    current_window = active_window = w;
    ws_clear_window(w);
    menu_update_split();
    return w;
}

void close_window(int w, bool already_gone)
{
    if (w <= 0 || windows[w].flags == 0)
        return;
    const bool was_picture = is_picture(w), was_counted = is_image_window(w) && !(windows[w].flags & RESERVED_WIN);
    const int vlt_id = windows[w].vlt_id, partner = split_partner(w), overview = window_overview_of(w);
    if (was_picture)
        free_bands_of(w);
    if (!already_gone)
        ws_delete_window(w);
    clear_slot(w);
    if (was_picture && (display_mode & TC))
        return_colour_table(vlt_id);
    if (was_counted)
        picture_closed(w, overview, partner);
    forget_special_window(w);
}

void close_all_windows()
{
    for (int w = WINDOWS - 1; w > 0; w--)
        if (windows[w].flags != 0 && !(windows[w].flags & RESERVED_WIN)) {
            if (is_picture(w))
                free_bands_of(w);
            ws_delete_window(w);
            clear_slot(w);
            forget_special_window(w);
        }
    ws_vlt_free(2);
    picture_count = 0;
    active_window = -1;
    current_window = 0;
    clear_reserved_window();
    ws_flush_refresh();
    menu_update_split();
}

void mark_active(int w)
{
    active_window = w;
    if (hist_window >= 0)
        windows[hist_window].linked_window = int16_t(w);
    if (w >= 0 && !(windows[w].flags & RESERVED_WIN)) {
        char title[sizeof windows[w].name + 8];
        snprintf(title, sizeof title, "ACTIVE %s", windows[w].name);
        ws_set_title(w, title);
    }
}

void apply_active()
{
    const int w = current_window;
    if (w == active_window || !is_image_window(w))
        return;
    if (active_window >= 0)
        title_plain(active_window);
    mark_active(w);
    draw_hist(-1, -1, -1, -1);
}

void activate_any()
{
    active_window = -1;
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (is_image_window(w)) {
            current_window = w;
            apply_active();
            return;
        }
    const int others[3] = { hist_window, source_hist_window, scatter_window };
    for (const int w : others)
        close_window(w);
    menu_update_split();
}

void window_set_name(int w)
{
    win_rec &win = windows[w];
    char name[3 * BAND_LABEL_SIZE + 3] = "";
    if (win.red_band >= 0)
        snprintf(name, sizeof name, "%.23s", bands[win.red_band].label);
    if ((display_mode & COLOR) && win.green_band >= 0 && win.blue_band >= 0 && shows_several_bands(win)) {
        const char *green = bands[win.green_band].label, *blue = bands[win.blue_band].label;
        if (green[0])
            snprintf(name + strlen(name), sizeof name - strlen(name), "-%.23s", green);
        if (green[0] && blue[0])
            snprintf(name + strlen(name), sizeof name - strlen(name), "-%.23s", blue);
    }
    snprintf(win.name, sizeof win.name, "%s", name);
    if (w == active_window)
        mark_active(w);
    else
        title_plain(w);
}

void paint_whole_window()
{
    paint_window(0, 0, windows[current_window].width - 1, windows[current_window].height - 1);
}

void paint_bands(uint32_t mask)
{
    busy_all();
    for_each_picture([mask](const win_rec &win) { return window_bands(win) & mask; }, paint_whole);
    normal_all();
}

void paint_colour_bands(uint32_t mask)
{
    busy_all();
    for_each_picture([mask](const win_rec &win) { return (window_bands(win) & mask) && shows_several_bands(win); }, paint_whole);
    normal_all();
}

void paint_all_pictures()
{
    busy_all();
    for_each_picture([](const win_rec &) { return true; }, paint_whole);
    normal_all();
}

void clear_bands(uint32_t mask)
{
    for_each_picture([mask](const win_rec &win) { return window_bands(win) & mask; }, ws_clear_window);
}

void clear_colour_windows()
{
    for_each_picture(shows_several_bands, ws_clear_window);
}

void clear_all_pictures()
{
    for_each_picture([](const win_rec &) { return true; }, ws_clear_window);
}

void rename_bands(uint32_t mask)
{
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (is_image_window(w) && (window_bands(windows[w]) & mask))
            window_set_name(w);
}

void window_uncollapse(int w)
{
    ws_uncollapse(w);
    windows[w].flags = int16_t(windows[w].flags & ~WIN_COLLAPSED);
}

bool pictures_are_mixed()
{
    bool several = false, single = false;
    for (int w = 0; w < WINDOWS; w++)
        if (is_image_window(w) && windows[w].red_band >= 0)
            (shows_several_bands(windows[w]) ? several : single) = true;
    return several && single;
}

void set_drawing_colour(int w, int colour)
{
    constexpr int NAMED_BELOW = 16;
    if ((display_mode & TC) && colour >= 0 && colour < NAMED_BELOW)
        named_colour(colour, &colour, nullptr, nullptr);
    ws_set_foreground(w, colour);
}

void clear_reserved_window()
{
    ws_set_foreground(current_window, 0);
    ws_fill_rect(current_window, 0, 0, screen_width - 1, screen_height - 1);
}
