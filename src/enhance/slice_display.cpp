#include "enhance/slice_display.h"

#include <algorithm>

#include "display/dither.h"
#include "display/paint.h"
#include "display/picture_windows.h"
#include "display/scan.h"
#include "display/vlt.h"
#include "enhance/hist_plot.h"
#include "enhance/hist_window.h"
#include "enhance/histogram.h"
#include "enhance/slice_chart.h"
#include "enhance/slice_map.h"
#include "services/ws.h"
#include "shell/session.h"

int32_t slicing_band = -1;

namespace {

constexpr int RAMP_9_PLANES = 255;     // slot of held level 0
constexpr uint32_t ALL_BANDS = ~uint32_t{0};
constexpr int PLANES_WITH_SLICE = 8, PLANES_WITHOUT = 9;

bool is_sliced(int w)
{
    return is_picture(w) && windows[w].slice_band >= 0 && bands[windows[w].slice_band].slice_colors;
}

bool shows_one_band(const win_rec &view)
{
    return view.red_band == view.green_band && view.red_band == view.blue_band;
}

bool painted_in_slots[WINDOWS];        // its pixels are slots of held levels

// Every held level has a slot: in one grey window, and on nine planes also beside the colours of a colour image.
bool levels_have_slots()
{
    return display_mode & COLOR ? start_planes == 9 : picture_count < 2;
}

int slot_of_level(int level)
{
    return start_planes == 9 ? RAMP_9_PLANES + level : grey_slot[level];
}

// The active window's slice comes first: there is one colour table.
int sliced_window()
{
    if (is_sliced(active_window))
        return active_window;
    for (int w = WINDOWS - 1; w >= 0; w--)
        if (is_sliced(w))
            return w;
    return -1;
}

void write_colours(const int16_t *slice_colors, int low, int high)
{
    vlt_entry entries[256];
    int count = 0;
    for (int level = low; level <= high; level++)
        if (slice_colors[level] >= 0)
            entries[count++] = vlt_packed(slot_of_level(level), slice_rgb(slice_colors[level]));
    ws_write_vlt(screen_no, entries, count);
}

// All levels as they are without a slice. Slices are defined on held levels.
void write_greys(const int16_t *lut)
{
    const bool mapped = picture_count == 1 && !(display_mode & DEFINING_SLICE);
    vlt_entry entries[256];
    for (int level = 0; level < 256; level++)  // where two share a slot the lower one is written last, as in the ramp
        entries[255 - level] = vlt_grey(slot_of_level(level), gamma_table[mapped ? lut_level(lut, level) : level] * 256);
    ws_write_vlt(screen_no, entries, 256);
}

void write_named_colours()
{
    vlt_entry entries[NAMED_COLOURS];
    int count = 0;
    for (int i = reserved_count; i < NAMED_COLOURS; i++)
        entries[count++] = vlt_packed(i, named_colours[i]);
    ws_write_vlt(screen_no, entries, count);
}

// --- painting ------------------------------------------------------------------------------------------------------

struct slice_tables {
    int depth;
    uint16_t table[3][256];
};

// Where the colour table has a slot a level the slices are in there already.
void tables_of_slots(slice_tables *tables)
{
    tables->depth = 8;
    for (int level = 0; level < 256; level++)
        tables->table[0][level] = uint16_t(slot_of_level(level));
}

void tables_of_shared_slots(const band_rec &band, slice_tables *tables)
{
    tables->depth = 8;
    for (int level = 0; level < 256; level++) {
        const int colour = band.slice_colors[level];
        tables->table[0][level] = uint16_t(colour >= 0 ? colour : slot_of_level(lut_level(band.lut, level)));
    }
}

// Dithered with the colours of the images. Dithering puts levels through the gamma, which slices are not meant to go through.
void tables_of_colours(const band_rec &band, slice_tables *tables)
{
    uint8_t inverse[256];
    inverse_of_gamma(gamma_table, inverse);
    tables->depth = 24;
    for (int level = 0; level < 256; level++) {
        const int colour = band.slice_colors[level], grey = lut_level(band.lut, level);
        const uint32_t rgb = colour >= 0 ? slice_rgb(colour) : 0;
        for (int i = 0; i < 3; i++)
            tables->table[i][level] = uint16_t(colour >= 0 ? inverse[rgb >> (16 - 8 * i) & 255] : grey);
    }
}

void paint_sliced(int w)
{
    const win_rec &view = windows[w];
    const band_rec &band = bands[view.slice_band];
    if (!band.data || (band.format & KIND_MASK) == KIND_BIN || (view.flags & WIN_COLLAPSED))
        return;
    slice_tables tables;
    painted_in_slots[w] = levels_have_slots();
    if (painted_in_slots[w])
        tables_of_slots(&tables);
    else if (display_mode & COLOR)
        tables_of_colours(band, &tables);
    else
        tables_of_shared_slots(band, &tables);

    const view_source blue { nullptr, band.data, 0, 0, 0, band.x_size, band.y_size, band.x_size };
    view_source green = blue, red = blue;
    green.next_plane = &blue;
    red.next_plane = tables.depth == 24 ? &green : nullptr;
    double matrix[16];
    view_matrix(w, matrix);
    scan_prepare(w, 0, 0, view.width - 1, view.height - 1, start_planes > 8 ? 511 : 255, band.x_size, band.y_size, tables.depth,
                 tables.table[0], tables.table[1], tables.table[2], matrix);
    scan_run(w, &red);
    paint_hooks_run(0, 0, view.width - 1, view.height - 1);
}

void repaint_active()
{
    current_window = active_window;
    paint_whole_window();
}

bool another_slice(int but)
{
    for (int w = 0; w < WINDOWS; w++)
        if (w != but && is_sliced(w))
            return true;
    return false;
}

void set_planes(int planes)
{
    num_planes = std::min(planes, start_planes);
    vlt_program();
}

// A line under the plot of the band, at its baseline; it runs backwards for a crossed range.
void draw_range_line(int colour, int low, int high)
{
    constexpr int WEIGHT = 2;
    if (hist_window < 0)
        return;
    const win_rec &view = windows[active_window];
    const int shown[3] = { view.red_band, view.green_band, view.blue_band };
    const int plot = int(std::find(shown, shown + 3, slicing_band) - shown);
    if (plot == 3)
        return;
    const int y = plot_baseline(hist_plot_rows(plot).bottom);
    ws_set_foreground(hist_window, plot_ink(slice_slot(colour, 0, 0)));
    ws_set_line_width(hist_window, WEIGHT);
    ws_move(hist_window, PLOT_X + low, y);
    ws_draw(hist_window, PLOT_X + high, y);
    ws_set_line_width(hist_window, 0);
}

} // namespace

int slice_display_ready()
{
    if (display_mode & IFB)
        return 1;
    msg_put(MSG_STATUS, MSG_CENTRED, "density slices need a color table of 8 planes");
    beep(BEEP_ERROR);
    return 0;
}

int slice_colours_have_slots()
{
    return (display_mode & (IFB | COLOR)) == IFB;
}

int slice_slot(int colour, int x, int y)
{
    if (colour < reserved_count || colour >= NAMED_COLOURS || slice_colours_have_slots())
        return colour;
    uint8_t inverse[256];
    inverse_of_gamma(gamma_table, inverse);
    const uint32_t rgb = named_colours[colour];
    return dither_colour(x, y, inverse[rgb >> 16], inverse[rgb >> 8 & 255], inverse[rgb & 255]);
}

uint32_t slice_rgb(int index)
{
    if (index >= 0 && index < NAMED_COLOURS)
        return named_colours[index];
    vlt_entry entry {};
    if (ws_read_vlt(screen_no, &entry, 1, index) != 0)
        return 0;
    return uint32_t(entry.red >> 8) << 16 | uint32_t(entry.green >> 8) << 8 | uint32_t(entry.blue >> 8);
}

void slice_write_table()
{
    if (!(display_mode & MIXED_VLT) || !(display_mode & IFB))
        return;
    if (slice_colours_have_slots())
        write_named_colours();
    const int w = sliced_window();
    if (w < 0)
        return;
    if (!levels_have_slots()) {
        slice_paint_all();
        return;
    }
    const band_rec &band = bands[windows[w].slice_band];
    write_greys(band.lut);
    write_colours(band.slice_colors, 0, 255);  // two levels may share a slot: the one with a colour shows
}

void slice_refresh()
{
    if (sliced_window() < 0)
        return;
    slice_write_table();
    slice_paint_all();
}

void slice_paint(int w)
{
    const int32_t before = current_window;
    current_window = w;
    if (is_sliced(w))
        paint_sliced(w);
    current_window = before;
}

void slice_paint_all()
{
    for (int w = WINDOWS - 1; w >= 0; w--)
        slice_paint(w);
}

int slice_on(int band)
{
    if (active_window < 0 || band < 0)
        return 0;
    win_rec &view = windows[active_window];
    if (band != view.red_band && band != view.green_band && band != view.blue_band)
        return 0;
    if ((bands[band].format & KIND_MASK) == KIND_BIN) {
        msg_put(MSG_STATUS, MSG_CENTRED, "a one-bit image has no levels to slice");
        beep(BEEP_ERROR);
        return 0;
    }
    const int32_t window = active_window;
    view.slice_band = int16_t(band);
    slicing_band = band;
    if (display_mode & MIXED_VLT) {
        set_planes(PLANES_WITH_SLICE);
    } else {
        clear_colour_windows();
        display_mode |= MIXED_VLT;
        set_planes(PLANES_WITH_SLICE);
        paint_colour_bands(ALL_BANDS);
    }
    slice_paint_all();
    current_window = window;
    if (hist_window < 0)
        display_hist();
    else
        draw_hist(-1, -1, -1, -1);
    return 1;
}

void slice_off()
{
    if (active_window < 0)
        return;
    const int32_t window = active_window;
    windows[window].slice_band = -1;
    if (another_slice(window)) {
        repaint_active();
    } else {
        clear_colour_windows();
        display_mode &= ~uint32_t{MIXED_VLT};
        set_planes(PLANES_WITHOUT);
        paint_colour_bands(ALL_BANDS);
        if (shows_one_band(windows[window]))
            repaint_active();
    }
    current_window = window;
    draw_hist(-1, -1, -1, -1);
    chart_close();
}

void slice_apply_range(int colour, int low, int high)
{
    if (!(display_mode & MIXED_VLT))
        return;
    if (active_window < 0 || windows[active_window].slice_band < 0) {
        msg_put(MSG_STATUS, MSG_CENTRED, "Density slice not displayed in active window");
        beep(BEEP_INFO);
        return;
    }
    if (slicing_band < 0 || !bands[slicing_band].slice_colors)
        return;                        // the band has gone since the slice was begun
    slice_range(bands[slicing_band].slice_colors, colour, low, high);
    draw_range_line(colour, low, high);
    if (levels_have_slots())
        write_colours(bands[slicing_band].slice_colors, std::max(low, 0), std::min(high, 255));
    if (!levels_have_slots() || !painted_in_slots[active_window])
        slice_paint(active_window);
}
