// The services' start and end, and what the display offers.
#include "services/colours.h"
#include "services/decorations.h"
#include "services/areas.h"
#include "services/font.h"
#include "services/pixel_store.h"
#include "services/windows.h"
#include "services/ws_state.h"
#include "mem.h"
#include <algorithm>
#include <cerrno>

services_state ws_state;

static constexpr int TRUE_COLOUR_PLANES = 8;
static constexpr int PLANES_MAX = 10;     // of which only WS_MAX_SLOTS slots are used

void ws_use_backend(const ws_backend *backend)
{
    ws_state.backend = backend;
}

static void fill_screen_info(const backend_display &display)
{
    const bool true_colour = display.flags & WS_CAP_TRUECOLOUR;
    const int planes = true_colour ? TRUE_COLOUR_PLANES : display.planes;
    const int slots = std::min(1 << planes, WS_MAX_SLOTS);
    ws_state.info = {
        .type       = 0,
        .planes     = planes,
        .max_index  = slots - 1,
        .dac_bits   = 8,
        .width      = display.width,
        .height     = display.height - ws_menu_height(),
        .flags      = display.flags | WS_CAP_ALWAYS,
        .vlt_size   = slots,
        .vlt_planes = planes,
    };
}

static bool display_is_usable(const backend_display &display)
{
    return display.width > 0 && display.height > ws_menu_height() && display.width <= WINDOW_SIDE_MAX
        && display.height <= WINDOW_SIDE_MAX && display.planes >= 1 && display.planes <= PLANES_MAX;
}

static int give_up(int error)
{
    mem_free(ws_state.picture);
    mem_free(ws_state.colours);
    ws_state.backend->close();
    const ws_backend *const backend = ws_state.backend;
    ws_state = {};
    ws_state.backend = backend;
    return error;
}

int ws_enter()
{
    const ws_backend *const backend = ws_state.backend;
    if (ws_state.entered || !backend)
        return EINVAL;
    if (const int error = backend->open("kestrel", &ws_state.display))
        return error;
    if (!display_is_usable(ws_state.display))
        return give_up(EINVAL);
    fill_screen_info(ws_state.display);
    if (!colours_start()) {
        report(REPORT_ERROR, "Could not allocate logical pallette.");
        return give_up(ENOMEM);
    }
    ws_state.picture = (uint32_t *)mem_calloc(size_t(ws_state.display.width) * size_t(ws_state.display.height), sizeof(uint32_t));
    if (!ws_state.picture)
        return give_up(ENOMEM);
    ws_state.entered = true;
    ws_state.cursor = CURSOR_ARROW;
    windows_start();
    menu_bar_start();
    strip_start();
    events_start();
    damage_add_all();
    return 0;
}

void ws_exit()
{
    if (!ws_state.entered)
        return;
    events_stop();
    strip_stop();
    menu_bar_stop();
    windows_stop();
    areas_free_all();
    fonts_free_all();
    give_up(0);
}

int ws_active_screen(int *screen_out)
{
    *screen_out = 0;
    return 0;
}

int ws_inquire_screen(ws_screen_info *info_out)
{
    if (!ws_state.entered)
        return -1;
    *info_out = ws_state.info;
    return 0;
}
