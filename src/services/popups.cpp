// Pop-ups: modal overlays that take the place of window 0. The compositor keeps what lies beneath, so closing one
// uncovers it as it is by then.
#include "services/decorations.h"
#include "services/pixel_store.h"
#include "services/windows.h"

static constexpr int TRUE_COLOUR_BITS = 15;  // planes asked for from which a pop-up draws in true colour

static window_record *popup_record(int w)
{
    return w == 0 && ws_state.popup_depth ? &ws_state.windows[0] : nullptr;
}

bool popup_is_open()
{
    if (ws_state.popup_depth && ws_state.windows[0].shown)
        return true;
    for (int i = 1; i < ws_state.popup_depth; i++)
        if (ws_state.popup_saved[i].shown)
            return true;
    return false;
}

int ws_popup_begin(int, int planes, int *number_out)
{
    if (!ws_state.entered || ws_state.popup_depth == POPUP_DEPTH)
        return -1;
    const window_record &beneath = ws_state.windows[0];
    ws_state.popup_saved[ws_state.popup_depth++] = beneath;
    const ws_rect rect = beneath.rect;
    const int vlt = planes >= TRUE_COLOUR_BITS && ws_state.info.flags & WS_CAP_TRUECOLOUR ? 2 : beneath.vlt;
    window_reset(ws_state.windows[0], STYLE_POPUP, rect);
    ws_state.windows[0].vlt = vlt;
    *number_out = 0;
    return 0;
}

int ws_popup_open(int w, int x0, int y0, int x1, int y1)
{
    window_record *const popup = popup_record(w);
    const ws_rect rect = rect_common({ x0, y0, x1, y1 }, frame_record()->rect);
    if (!popup || popup->shown || rect_empty(rect))
        return -1;
    damage_active_caption();
    popup->rect = rect;
    popup->shown = true;
    window_shape(*popup);
    window_damage(*popup);
    cursor_update();
    return 0;
}

int ws_popup_close(int w)
{
    window_record *const popup = popup_record(w);
    if (!popup)
        return -1;
    window_damage(*popup);
    popup->shown = false;
    store_free(popup->store);
    damage_active_caption();
    cursor_update();
    return 0;
}

int ws_popup_end(int w)
{
    if (ws_popup_close(w) != 0)
        return -1;
    ws_state.windows[0] = ws_state.popup_saved[--ws_state.popup_depth];
    cursor_update();
    return 0;
}
