#include "display/paint.h"

#include <algorithm>
#include <cstddef>

#include "display/scan.h"
#include "display/vlt.h"
#include "display/vmap.h"
#include "mem.h"
#include "services/ws.h"
#include "shell/session.h"

int32_t paint_interrupt = 1;

struct paint_rect {
    int x0, y0, x1, y1;
};

// --- geometry ------------------------------------------------------------------------------------------------

void view_matrix(int window, double matrix_out[16])
{
    const win_rec &view = windows[window];
    const double (&m)[4][4] = bands[view.red_band].xform;
    const double centre_x = (view.width - 1) / 2.0, centre_y = (view.height - 1) / 2.0;
    for (int row = 0; row < 4; row++) {
        const double last = row == 3 ? m[3][3] / view.zoom : m[row][3];
        double *const v = matrix_out + 4 * row;
        v[0] = m[row][0], v[1] = m[row][1], v[2] = m[row][2];
        v[3] = last - m[row][0] * view.data_x - m[row][1] * view.data_y;
    }
    for (int column = 0; column < 4; column++) {
        matrix_out[column] += centre_x * matrix_out[12 + column];
        matrix_out[4 + column] += centre_y * matrix_out[12 + column];
    }
}

// --- tables --------------------------------------------------------------------------------------------------

constexpr uint32_t PACKED_COLOUR = 16777215;

// What a paint hands to scan_prepare.
struct paint_tables {
    int depth;
    uint32_t value_mask;
    uint16_t table[3][256];            // red, green, blue; a grey image has the first only
};

static int one_to_one(int level) { return level; }
static int through_gamma(int level) { return gamma_table[level]; }
static int through_grey_slot(int level) { return grey_slot[level]; }
static int through_fix(int level) { return fix[level]; }
static int above_colours(int level) { return level + 255; }

// table[i] = value(i), or value(lut[i]).
static void fill_table(uint16_t *table, const int16_t *lut, int (*value)(int))
{
    for (int i = 0; i < 256; i++)
        table[i] = uint16_t(value(lut ? lut_level(lut, i) : i));
}

static void colour_tables(const win_rec &view, paint_tables *tables)
{
    const bool true_colour = display_mode & TC;
    const bool plain = true_colour && !(display_mode & STATIC_VLT);
    tables->depth = 24;
    if (true_colour)
        tables->value_mask = PACKED_COLOUR;
    const int band[3] = { view.red_band, view.green_band, view.blue_band };
    for (int i = 0; i < 3; i++)
        fill_table(tables->table[i], plain || band[i] < 0 ? nullptr : bands[band[i]].lut,
                   plain ? one_to_one : true_colour ? through_gamma : start_planes == 4 ? through_fix : one_to_one);
}

// In one grey window the look-up table is folded into the colour table; several windows share that table, so each must apply its own.
static void grey_tables(const win_rec &view, paint_tables *tables)
{
    uint16_t *const table = tables->table[0];
    const int16_t *const lut = bands[view.red_band].lut;
    const bool fixed = display_mode & STATIC_VLT, several = picture_count > 1;
    tables->depth = 8;
    if (display_mode & TC) {
        tables->value_mask = fixed ? PACKED_COLOUR : 255;
        fill_table(table, fixed ? lut : nullptr, fixed ? through_gamma : one_to_one);
    } else if ((display_mode & IFB) && start_planes == 8) {
        fill_table(table, fixed || several ? lut : nullptr, through_grey_slot);
    } else if ((display_mode & IFB) && start_planes == 9) {
        fill_table(table, several ? lut : nullptr, above_colours);
    } else {
        fill_table(table, lut, one_to_one);
    }
}

// --- sources -------------------------------------------------------------------------------------------------

static view_source band_source(int band)
{
    const band_rec &b = bands[band];
    return { nullptr, b.data, 0, 0, 0, b.x_size, b.y_size, b.x_size };
}

static uint8_t *intensity;             // kept and grown
static size_t intensity_bytes;

void intensity_row(uint8_t *out, const uint8_t *const in[3], const int16_t *const luts[3], int count)
{
    for (int i = 0; i < count; i++) {
        const int r = lut_level(luts[0], in[0][i]), g = lut_level(luts[1], in[1][i]), b = lut_level(luts[2], in[2][i]);
        out[i] = uint8_t(std::min(int(0.3 * r + 0.6 * g + 0.1 * b + 0.5), 255));
    }
}

// Turns the chain of three bands into one grey source. 0 without memory, or when a band has no pixels.
static int intensity_source(const win_rec &view, view_source *source)
{
    const int band[3] = { view.red_band, view.green_band, view.blue_band };
    for (const int n : band)
        if (n < 0 || !bands[n].data || !bands[n].lut || bands[n].x_size != source->width || bands[n].y_size != source->height)
            return 0;
    const size_t row_bytes = size_t(source->stride), bytes = row_bytes * size_t(source->height);
    if (bytes > intensity_bytes) {
        uint8_t *const grown = static_cast<uint8_t *>(mem_realloc(intensity, bytes));
        if (!grown) {
            report(REPORT_WARNING, "failed to allocate intensity buffer\n");
            return 0;
        }
        intensity = grown;
        intensity_bytes = bytes;
    }
    const int16_t *const luts[3] = { bands[band[0]].lut, bands[band[1]].lut, bands[band[2]].lut };
    for (size_t at = 0; at < bytes; at += row_bytes) {
        const uint8_t *const in[3] = { bands[band[0]].data + at, bands[band[1]].data + at, bands[band[2]].data + at };
        intensity_row(intensity + at, in, luts, source->width);
    }
    source->next_plane = nullptr;
    source->pixels = intensity;
    return 1;
}

// --- painting ------------------------------------------------------------------------------------------------

static void run_scan(int w, const paint_rect &r, const paint_tables &tables, const view_source &source)
{
    double matrix[16];
    view_matrix(w, matrix);
    scan_prepare(w, r.x0, r.y0, r.x1, r.y1, tables.value_mask, source.width, source.height, tables.depth, tables.table[0], tables.table[1],
                 tables.table[2], matrix);
    scan_run(w, &source);
}

static void paint_bits(int w, const paint_rect &r, paint_tables *tables, const view_source &source)
{
    // All ones is cut to the last slot of a colour table; in true colour it would be cyan.
    static constexpr int ALL_ONES = 65535;
    int vlt = 0;
    ws_window_vlt(w, &vlt);
    ws_set_foreground(w, 0);
    ws_fill_rect(w, r.x0, r.y0, r.x1, r.y1);
    ws_set_foreground(w, vlt == 2 ? int(PACKED_COLOUR) : ALL_ONES);
    tables->depth = 1;
    if (source.pixels)
        run_scan(w, r, *tables, source);
}

static void paint_image(int w, const paint_rect &r)
{
    const win_rec &view = windows[w];
    if ((view.flags & RESERVED_WIN) || view.red_band < 0 || view.slice_band >= 0)
        return;                        // a sliced window shows its colours through the colour table alone, also when just cleared
    paint_tables tables {};
    tables.value_mask = start_planes > 8 ? 511 : 255;
    const band_rec &red = bands[view.red_band];
    view_source source = band_source(view.red_band);
    if ((red.format & KIND_MASK) == KIND_BIN) {
        paint_bits(w, r, &tables, source);
        return;
    }
    if (!red.data)                     // tile-backed: the tile store has no tiles
        return;
    if (!(display_mode & COLOR)) {
        grey_tables(view, &tables);
        run_scan(w, r, tables, source);
        return;
    }
    if (display_mode & INTENSITY_VIEW) {
        grey_tables(view, &tables);
        if (intensity_source(view, &source))
            run_scan(w, r, tables, source);
        return;
    }
    view_source blue = band_source(view.blue_band < 0 ? view.red_band : view.blue_band);
    view_source green = band_source(view.green_band < 0 ? view.red_band : view.green_band);
    green.next_plane = &blue;
    source.next_plane = &green;
    colour_tables(view, &tables);
    run_scan(w, r, tables, source);
}

void paint_window(int x0, int y0, int x1, int y1)
{
    const int w = current_window;
    if (w < 0 || (windows[w].flags & WIN_COLLAPSED))
        return;
    const paint_rect r { std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1) };
    paint_image(w, r);
    paint_hooks_run(r.x0, r.y0, r.x1, r.y1);
}

void paint_reset()
{
    mem_free(intensity);
    intensity = nullptr;
    intensity_bytes = 0;
    paint_hooks_forget();
    scan_reset();
    vmap_free();
    paint_interrupt = 1;
}
