#include "enhance/hist_window.h"

#include <cstdio>
#include <cstring>

#include "display/picture_windows.h"
#include "enhance/hist_plot.h"
#include "enhance/histogram.h"
#include "forms/forms.h"
#include "services/ws.h"
#include "shell/menu.h"
#include "shell/session.h"

namespace {

constexpr int HIST_LEFT = 5, HIST_RIGHT = 289, SOURCE_LEFT = 299, SOURCE_RIGHT = 583;
constexpr int ICON_X = 0, ICON_Y = 33;
constexpr int SLOT_GREY = 5, SLOT_RED = 8;
constexpr int REACHES_PLOTS = 284;     // a rectangle that begins left of this column shows part of them
constexpr int TRUE_COLOUR_TABLE = 2;

bool banner_shown;
const int32_t *source_counts;          // what the source window shows

// The number, or -1 with its words shown.
int open_plot_window(const char *name, int left, int top, int right, int bottom)
{
    const int shift = display_mode & SPLIT_SCR ? layout.right_hist_x : 0;
    int w;
    if (ws_create_window(screen_no, name, left + shift, top, right + shift, bottom, &w) != 0) {
        msg_put(MSG_STATUS, MSG_CENTRED, "no window is free for the histogram");
        beep(BEEP_ERROR);
        return -1;
    }
    win_rec &win = windows[w];
    win = {};
    win.flags = WIN_DISPLAYED | WIN_HISTOGRAM;
    snprintf(win.name, sizeof win.name, "%s", name);
    win.zoom = 1.0;
    win.red_band = win.green_band = win.blue_band = win.slice_band = win.linked_window = -1;
    // Slots of a true colour display belong to nobody: the named colours are drawn as they are.
    if (display_mode & TC) {
        win.vlt_id = TRUE_COLOUR_TABLE;
        ws_set_window_vlt(w, TRUE_COLOUR_TABLE);
    }
    ws_show_window(w);
    window_read_geometry(w);
    return w;
}

void erase(int w, int x0, int y0, int x1, int y1)
{
    ws_set_foreground(w, 0);
    ws_fill_rect(w, x0, y0, x1, y1);
}

bool can_draw(int w)
{
    return w >= 0 && !(windows[w].flags & WIN_COLLAPSED);
}

int16_t band_of_plot(const win_rec &view, int plot)
{
    return plot == 0 ? view.red_band : plot == 1 ? view.green_band : view.blue_band;
}

void draw_band_plot(int plot, bool with_label)
{
    const int picture = windows[hist_window].linked_window;
    if (picture < 0)
        return;
    const win_rec &view = windows[picture];
    const int n = band_of_plot(view, plot);
    if (n < 0 || !bands[n].hist_mapped)
        return;
    const band_rec &band = bands[n];
    const int baseline = plot_baseline(hist_plot_rows(plot).bottom);
    const bool sliced = n == view.slice_band, defining = sliced && (display_mode & DEFINING_SLICE);
    const int slot = sliced || !(display_mode & COLOR) ? SLOT_GREY : SLOT_RED + plot;
    plot_bars(hist_window, baseline, defining ? band.hist_unmapped : band.hist_mapped, plot_ink(slot));
    plot_axis(hist_window, baseline);
    if (with_label)
        plot_label(hist_window, baseline, band.label);
    if (sliced)
        plot_slice_strip(hist_window, baseline, band.slice_colors, defining ? nullptr : band.lut);
}

// As a text gadget of the forms: raised, black on its face.
void draw_banner()
{
    constexpr const char *TEXT = "Select all bands";
    constexpr int LARGE_FONT_FROM = 31, TOP = 1;
    const forms_palette &colours = forms_get_style()->palette;
    const int font = layout.hist_red_top < LARGE_FONT_FROM ? font_text_small : font_text;
    const int bottom = layout.hist_red_top - 3;
    const auto box = [](int ink, int x0, int y0, int x1, int y1) {
        ws_set_foreground(hist_window, ink);
        ws_fill_rect(hist_window, x0, y0, x1, y1);
    };
    box(colours.light, PLOT_X, TOP, PLOT_RIGHT, bottom);
    box(colours.white, PLOT_X, TOP, PLOT_RIGHT, TOP);
    box(colours.white, PLOT_X, TOP, PLOT_X, bottom);
    box(colours.dark, PLOT_X, bottom, PLOT_RIGHT, bottom);
    box(colours.dark, PLOT_RIGHT, TOP, PLOT_RIGHT, bottom);
    int width = 0;
    ws_text_width(font, TEXT, int(strlen(TEXT)), &width);
    ws_set_foreground(hist_window, colours.black);
    ws_draw_text(hist_window, font, (PLOT_X + PLOT_RIGHT - width) / 2, (TOP + bottom + 1 - ws_font_height(font)) / 2, TEXT, int(strlen(TEXT)));
}

} // namespace

plot_rows hist_plot_rows(int plot)
{
    const screen_layout &l = layout;
    switch (plot) {
    case 0:  return { l.hist_red_top, l.hist_red_bottom };
    case 1:  return { l.hist_green_top, l.hist_green_bottom };
    default: return { l.hist_blue_top, l.hist_blue_bottom };
    }
}

int hist_plot_at(int y)
{
    for (int plot = 0; plot < 3; plot++)
        if (y >= hist_plot_rows(plot).top && y <= hist_plot_rows(plot).bottom)
            return plot;
    return -1;
}

void open_hist_window()
{
    const int bottom = display_mode & COLOR ? layout.hist_bottom_colour : layout.hist_bottom_mono;
    hist_window = open_plot_window("histogram", HIST_LEFT, layout.hist_top, HIST_RIGHT, bottom);
    if (hist_window < 0)
        return;
    ws_set_icon_position(hist_window, ICON_X, ICON_Y);
    menu_check("toggle_hist", 1);
}

void open_source_hist(int row)
{
    if (source_hist_window >= 0)
        close_window(source_hist_window);
    const int down = row * layout.source_hist_step;
    source_hist_window = open_plot_window("source histogram", SOURCE_LEFT, layout.hist_top + down, SOURCE_RIGHT, layout.hist_bottom_mono + down);
}

void open_hist_in_new_session()
{
    constexpr uint32_t HISTOGRAM_WANTED = 1;
    if (!(auto_windows & HISTOGRAM_WANTED) || active_window < 0)
        return;
    const int red = windows[active_window].red_band;
    if (red >= 0 && (bands[red].format & KIND_MASK) != KIND_BIN)
        display_hist();
}

void draw_hist(int x0, int y0, int x1, int y1)
{
    if (!can_draw(hist_window))
        return;
    if (x0 < 0 || y0 < 0 || x1 < 0 || y1 < 0) {
        x0 = y0 = 0;
        x1 = windows[hist_window].width - 1;
        y1 = windows[hist_window].height - 1;
    }
    erase(hist_window, x0, y0, x1, y1);
    if (x0 < REACHES_PLOTS && x1 >= PLOT_X)
        for (int plot = 0; plot < (display_mode & COLOR ? 3 : 1); plot++) {
            const plot_rows rows = hist_plot_rows(plot);
            if (rows.top <= y1 && rows.bottom >= y0)
                draw_band_plot(plot, x0 < PLOT_X);
        }
    if (banner_shown)
        draw_banner();
}

void draw_hist_plot(int plot)
{
    const plot_rows rows = hist_plot_rows(plot);
    draw_hist(PLOT_X, rows.top, PLOT_RIGHT, rows.bottom);
}

void redraw_source_hist()
{
    const int w = source_hist_window;
    if (!can_draw(w) || !source_counts)
        return;
    const int baseline = plot_baseline(layout.hist_red_bottom);
    erase(w, 0, 0, windows[w].width - 1, windows[w].height - 1);
    plot_bars(w, baseline, source_counts, plot_ink(SLOT_GREY));
    plot_axis(w, baseline);
}

void draw_source_hist(const int32_t *counts)
{
    source_counts = counts;
    redraw_source_hist();
}

void show_all_bands_banner()
{
    banner_shown = true;
    if (can_draw(hist_window))
        draw_banner();
}

void erase_all_bands_banner()
{
    banner_shown = false;
    if (can_draw(hist_window))
        erase(hist_window, 0, 0, 300, layout.hist_red_top - 1);
}
