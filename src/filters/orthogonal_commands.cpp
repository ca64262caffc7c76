#include <algorithm>
#include <utility>

#include "display/picture_windows.h"
#include "edit/undo.h"
#include "filters/filter_commands.h"
#include "filters/orthogonal.h"
#include "filters/whole_image.h"
#include "mem.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

// --- flip and mirror -----------------------------------------------------------------------------------------------

struct reversal {
    const char *title;
    int (*reverse)(const uint8_t *src, uint8_t *dst, int rows, int cols);
    void (*move_area)(win_rec &win, const band_rec &red);
};

// An axis of the active area, counted from its other end: the size stays.
void turn_range(int32_t &from, int32_t &to, int32_t size)
{
    to = std::min(to, size - 1);
    const int32_t length = to - from;
    to = size - from - 1;
    from = to - length;
}

// Flip moves the area along x and mirror along y, each along the axis that its pixels do not move on. This is meant.
void area_after_flip(win_rec &win, const band_rec &red)
{
    turn_range(win.hist_area.x0, win.hist_area.x1, red.x_size);
}

void area_after_mirror(win_rec &win, const band_rec &red)
{
    turn_range(win.hist_area.y0, win.hist_area.y1, red.y_size);
}

constexpr reversal flipping = { "Flip Image", flip_band, area_after_flip };
constexpr reversal mirroring = { "Mirror Image", mirror_band, area_after_mirror };

// Into the undo buffer. 0 when it did not succeed.
int reverse_band(const reversal &how, int n)
{
    if (!undo_buffer(n)) {
        fail("Error allocating space");
        return 0;
    }
    show_processing(n);
    const band_rec &band = bands[n];
    return how.reverse(band.data, band.undo_data, band.y_size, band.x_size) >= 0;
}

void reverse_window(const reversal &how)
{
    const band_set set = bands_in_view();
    if (!can_be_worked_on(set))
        return;
    const int w = active_window;
    for (int i = 0; i < set.count; i++) {
        if (!reverse_band(how, set.number[i]))
            return;
        if (i == 0)
            how.move_area(windows[w], bands[set.number[0]]);
    }
    busy_all();
    clear_bands(mask_of(set));
    normal_all();
    undo_exchange_and_show(set.number[0], set.number[set.count > 1 ? 1 : 0], set.number[set.count - 1]);
    window_set_changed(w, 1);
    msg_clear(MSG_STATUS);
}

void run_reversal(const reversal &how)
{
    if (active_window < 0)
        return;
    begin_command(how.title);
    reverse_window(how);
    msg_clear(MSG_TITLE);
    msg_clear(MSG_KEYIN);
}

// --- transpose -------------------------------------------------------------------------------------------------------

struct image_buffer {
    uint8_t *pixels;
    uint32_t bytes;
};

// Transposes a band into `spare`, which becomes its memory; `spare` is then the old memory.
int transpose_into(int n, image_buffer &spare)
{
    show_processing(n);
    band_rec &band = bands[n];
    const int result = transpose_band(band.data, spare.pixels, band.y_size, band.x_size);
    if (result < 0)
        return result;
    std::swap(band.data, spare.pixels);
    std::swap(band.alloc_bytes, spare.bytes);
    std::swap(band.x_size, band.y_size);
    return 0;
}

// Bands that were transposed before another one failed go back, in the way that needs no memory.
void transpose_back(int n, image_buffer &spare)
{
    band_rec &band = bands[n];
    transpose_block(band.data, band.x_size, spare.pixels, band.y_size, band.y_size, band.x_size);
    std::swap(band.data, spare.pixels);
    std::swap(band.alloc_bytes, spare.bytes);
    std::swap(band.x_size, band.y_size);
}

// The old memory of a band takes the band after it, so that one image more than there is need be held.
int transpose_bands(const band_set &set, image_buffer &spare)
{
    for (int i = 0; i < set.count; i++)
        if (transpose_into(set.number[i], spare) < 0) {
            while (i-- > 0)
                transpose_back(set.number[i], spare);
            return PASS_STOPPED;
        }
    return 0;
}

bool same_size(const band_set &set)
{
    return std::all_of(set.number, set.number + set.count, [&](int n) {
        return bands[n].x_size == bands[set.number[0]].x_size && bands[n].y_size == bands[set.number[0]].y_size;
    });
}

// -1 no memory, PASS_STOPPED; the window is then as it was. A colour image that is shown as one of its bands turns whole: the bands of
// a window keep one size.
int transpose_window()
{
    const band_set set = all_bands();
    if (!can_be_worked_on(set) || !same_size(set))
        return -1;
    const band_rec &red = bands[set.number[0]];
    // At least two bytes: one byte stands for a band in the tile store.
    image_buffer spare = { nullptr, std::max(uint32_t(red.x_size) * uint32_t(red.y_size), uint32_t{2}) };
    spare.pixels = (uint8_t *)mem_alloc(spare.bytes);
    if (!spare.pixels) {
        fail("Error allocating space");
        return -1;
    }
    const int result = transpose_bands(set, spare);
    mem_free(spare.pixels);
    if (result < 0)
        return result;
    for (int i = 0; i < set.count; i++)
        undo_free(set.number[i]);
    return 0;
}

void show_transposed()
{
    win_rec &win = windows[active_window];
    std::swap(win.hist_area.x0, win.hist_area.y0);
    std::swap(win.hist_area.x1, win.hist_area.y1);
    window_set_changed(active_window, 1);
    msg_put(MSG_STATUS, MSG_CENTRED, "Displaying...");
    const uint32_t mask = mask_of(all_bands());
    clear_bands(mask);
    paint_bands(mask);
    msg_clear(MSG_STATUS);
}

} // namespace

void flip()
{
    run_reversal(flipping);
}

void mirror()
{
    run_reversal(mirroring);
}

void transpose()
{
    if (active_window < 0)
        return;
    begin_command("Transpose Image");
    if (transpose_window() == 0)
        show_transposed();
    msg_clear(MSG_TITLE);
}
