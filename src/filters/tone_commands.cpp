#include <cstdio>

#include "display/picture_windows.h"
#include "display/vlt.h"
#include "edit/undo.h"
#include "enhance/histogram.h"
#include "filters/filter_commands.h"
#include "filters/ihs.h"
#include "filters/level_table.h"
#include "filters/whole_image.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

uint32_t pixels_of(const band_rec &band)
{
    return uint32_t(band.x_size) * uint32_t(band.y_size);
}

void show_new_pixels(uint32_t mask)
{
    draw_hist(-1, -1, -1, -1);
    msg_put(MSG_STATUS, MSG_CENTRED, "Displaying...");
    paint_bands(mask);
}

// --- intensity, hue, saturation --------------------------------------------------------------------------------------

struct ihs_command {
    const char *title, *words, *name;
    int (*pass)(uint8_t *, uint8_t *, uint8_t *, const int16_t *, const int16_t *, const int16_t *, int rows, int cols);
    const char *labels[3];
};

constexpr ihs_command forward = {
    "RGB to IHS Transformation", "Processing - RGB -> IHS...", "rgb_to_ihs", rgb_to_ihs, { "intensity", "hue", "saturation" },
};
constexpr ihs_command back = {
    "IHS to RGB Transformation", "Processing - IHS -> RGB...", "ihs_to_rgb", ihs_to_rgb, { "RED", "GRN", "BLU" },
};

bool is_three_band_image(const band_set &set)
{
    if (!(display_mode & COLOR) || set.count != 3)
        return false;
    const band_rec &red = bands[set.number[0]];
    for (const int n : set.number)
        if (bands[n].x_size != red.x_size || bands[n].y_size != red.y_size)
            return false;
    return true;
}

void prepare_tables()
{
    if (ihs_ready())
        return;
    msg_put(MSG_STATUS, MSG_CENTRED, "Initializing...");
    ihs_init();
}

int run_pass(const ihs_command &command, const band_set &set)
{
    const band_rec &red = bands[set.number[0]], &green = bands[set.number[1]], &blue = bands[set.number[2]];
    msg_put(MSG_STATUS, MSG_CENTRED, command.words);
    const int result = command.pass(red.data, green.data, blue.data, red.lut, green.lut, blue.lut, red.y_size, red.x_size);
    if (result < 0) {
        char text[48];
        snprintf(text, sizeof text, "Error <%d> in %s", result, command.name);
        fail(text);
    }
    return result;
}

void transform(const ihs_command &command)
{
    const band_set set = all_bands();
    if (!is_three_band_image(set)) {
        fail("Must have color image displayed...");
        return;
    }
    if (!can_be_worked_on(set))
        return;
    prepare_tables();
    if (undo_enabled) {
        undo_begin();
        undo_snapshot(set.number[0], set.number[1], set.number[2]);
    }
    if (run_pass(command, set) < 0)
        return;
    window_set_changed(active_window, 1);
    msg_put(MSG_STATUS, MSG_CENTRED, "Collecting histogram...");
    reset_lut(mask_of(set));
    collect_window_hists();
    for (int i = 0; i < 3; i++)
        snprintf(bands[set.number[i]].label, BAND_LABEL_SIZE, "%s", command.labels[i]);
    rename_bands(mask_of(set));
    show_new_pixels(mask_of(set));
    msg_clear(MSG_STATUS);
}

void run_transform(const ihs_command &command)
{
    if (active_window < 0)
        return;
    begin_command(command.title);
    transform(command);
    msg_clear(MSG_TITLE);
    msg_clear(MSG_KEYIN);
}

// --- look-up and complement --------------------------------------------------------------------------------------------

void save_for_undo(int n)
{
    if (undo_enabled)
        undo_snapshot(n, n, n);
}

bool burn_luts_in(const band_set &set)
{
    bool rewritten = false;
    for (int i = 0; i < set.count; i++) {
        const int n = set.number[i];
        save_for_undo(n);
        show_processing(n);
        if (apply_lut(bands[n].data, bands[n].data, bands[n].lut, pixels_of(bands[n])))
            rewritten = true;
    }
    return rewritten;
}

void apply_in_view()
{
    const band_set set = bands_in_view();
    if (!can_be_worked_on(set))
        return;
    if (undo_enabled)
        undo_begin();
    if (burn_luts_in(set)) {
        window_set_changed(active_window, 1);
        reset_lut(mask_of(set));
        collect_window_hists();
        show_new_pixels(mask_of(set));
    }
    msg_clear(MSG_STATUS);
}

void invert_band(int n)
{
    band_rec &band = bands[n];
    save_for_undo(n);
    show_processing(n);
    invert_pixels(band.data, band.data, pixels_of(band));
    reverse_band_hist(band.hist_mapped, band.lut, band.hist_unmapped);
}

// A colour table that does the look-up holds the old one.
void reload_tables(uint32_t mask)
{
    const bool single_grey = (display_mode & IFB) && !(display_mode & COLOR) && picture_count == 1;
    const bool table_a_window = (display_mode & TC) && !(display_mode & STATIC_VLT);
    if (single_grey || table_a_window)
        reload_lut(mask);
}

void invert_in_view()
{
    const band_set set = bands_in_view();
    if (!can_be_worked_on(set))
        return;
    if (undo_enabled)
        undo_begin();
    for (int i = 0; i < set.count; i++)
        invert_band(set.number[i]);
    window_set_changed(active_window, 1);
    reload_tables(mask_of(set));
    show_new_pixels(mask_of(set));
    msg_clear(MSG_STATUS);
}

} // namespace

void rgbihs()
{
    run_transform(forward);
}

void ihsrgb()
{
    run_transform(back);
}

void apply()
{
    if (active_window < 0)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Apply LUT");
    apply_in_view();
    msg_clear(MSG_TITLE);
}

void invert()
{
    if (active_window < 0)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Invert Gray Scale");
    invert_in_view();
    msg_clear(MSG_TITLE);
}
