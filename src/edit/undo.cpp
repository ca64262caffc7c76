#include "edit/undo.h"

#include <cstring>
#include <utility>

#include "display/picture_windows.h"
#include "enhance/histogram.h"
#include "mem.h"
#include "services/ws.h"
#include "shell/menu.h"
#include "shell/session.h"
#include "store/stile.h"

static bool is_band(int n)
{
    return n >= 0 && n < BANDS && bands[n].alloc_bytes != 0;
}

static bool is_tiled(const band_rec &band)
{
    return (band.format & KIND_TILED) != 0;
}

int undo_buffer(int n)
{
    if (!is_band(n) || !bands[n].data || is_tiled(bands[n]))
        return 0;
    band_rec &band = bands[n];
    // Zeroed: a filter that fails leaves the fresh buffer unwritten, and it is shown all the same.
    if (!band.undo_data)
        band.undo_data = (uint8_t *)mem_calloc(band.alloc_bytes, 1);
    if (band.undo_data)
        return 1;
    msg_put(MSG_STATUS, MSG_CENTRED, "failed to allocate memory for undo buffer");
    beep(BEEP_ERROR);
    return 0;
}

void undo_free(int n)
{
    if (n < 0 || n >= BANDS)
        return;
    band_rec &band = bands[n];
    mem_free(band.undo_data);
    band.undo_data = nullptr;
    if (band.undo_id != 0)
        stile_close(band.undo_id);
    band.undo_id = 0;
    band.undo_saved = 0;
}

void undo_begin()
{
    for (band_rec &band : bands)
        band.undo_saved = 0;
}

// Once an edit. A band without memory for its copy counts as saved: the edit then has no undo.
static void snapshot_band(int n)
{
    if (!is_band(n) || bands[n].undo_saved)
        return;
    band_rec &band = bands[n];
    if (undo_buffer(n))
        memcpy(band.undo_data, band.data, band.alloc_bytes);
    band.undo_saved = 1;
}

void undo_snapshot(int red, int green, int blue)
{
    if (!undo_enabled || active_window < 0)
        return;
    snapshot_band(red);
    snapshot_band(green);
    snapshot_band(blue);
}

static int exchange_band(int n)
{
    if (!is_band(n))
        return 0;
    band_rec &band = bands[n];
    if (band.image_id != 0 && band.undo_id != 0)
        std::swap(band.image_id, band.undo_id);
    else if (band.undo_data)
        std::swap(band.data, band.undo_data);
    else
        return 0;
    return 1;
}

int undo_exchange_and_show(int red, int green, int blue)
{
    int exchanged = exchange_band(red);
    if (green != red)
        exchanged += exchange_band(green);
    if (blue != red && blue != green)
        exchanged += exchange_band(blue);
    if (exchanged == 0)
        return 0;
    msg_put(MSG_STATUS, MSG_CENTRED, "Collecting histogram");
    collect_window_hists();
    draw_hist(-1, -1, -1, -1);
    msg_put(MSG_STATUS, MSG_CENTRED, "Displaying image");
    paint_bands(band_mask(red, green, blue));
    return exchanged;
}

void undo()
{
    if (active_window < 0 || !undo_enabled)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Undo");
    const win_rec &win = windows[active_window];
    undo_exchange_and_show(win.red_band, win.green_band, win.blue_band);
    msg_clear(MSG_TITLE);
    msg_clear(MSG_STATUS);
    msg_clear(MSG_PROMPT);
}

void enable_undo()
{
    undo_enabled = 1;
    msg_put(MSG_STATUS, MSG_CENTRED, "Undo enabled");
}

void disable_undo()
{
    undo_enabled = 0;
    msg_put(MSG_STATUS, MSG_CENTRED, "Undo disabled");
}

void toggle_undo()
{
    if (undo_enabled)
        disable_undo();
    else
        enable_undo();
    menu_check("toggle_undo", undo_enabled);
}
