// Composing: one 32-bit picture made of the layers of the screen, top to bottom. A damaged rectangle is cut up along the
// layers that lie in it, so every pixel is painted once, by the topmost layer that has it.
#include "services/compose.h"
#include "services/decorations.h"
#include "services/pixel_store.h"
#include "services/slot_rows.h"
#include <algorithm>
#include <cstring>

static constexpr uint32_t PRESENT_EVERY_MS = 17;  // at most 60 times a second

// --- damage ------------------------------------------------------------------------------------------------------

static int64_t rect_area(const ws_rect &r)
{
    return int64_t{r.x1 - r.x0 + 1} * (r.y1 - r.y0 + 1);
}

static ws_rect rect_around(const ws_rect &a, const ws_rect &b)
{
    return { std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1) };
}

static ws_rect picture_rect()
{
    return { 0, -ws_menu_height(), ws_state.info.width - 1, ws_state.info.height - 1 };
}

// Pixels that would be composed for nothing if both rectangles became one.
static int64_t waste_of_joining(const ws_rect &a, const ws_rect &b)
{
    return rect_area(rect_around(a, b)) - rect_area(a) - rect_area(b);
}

void damage_add(const ws_rect &area)
{
    if (!ws_state.entered)
        return;
    const ws_rect added = rect_common(area, picture_rect());
    if (rect_empty(added))
        return;
    int best = -1;
    int64_t least = 0;
    for (int i = 0; i < ws_state.damage_count; i++) {
        const int64_t waste = waste_of_joining(ws_state.damage[i], added);
        if (best < 0 || waste < least) {
            best = i;
            least = waste;
        }
    }
    // Touching rectangles, as of strokes and of rows painted one by one, become one; far ones stay apart while there is room.
    if (best >= 0 && (least <= 0 || ws_state.damage_count == DAMAGE_MAX))
        ws_state.damage[best] = rect_around(ws_state.damage[best], added);
    else
        ws_state.damage[ws_state.damage_count++] = added;
}

void damage_add_all()
{
    ws_state.damage_count = 0;
    damage_add(picture_rect());
}

// --- layers ------------------------------------------------------------------------------------------------------

enum layer_kind { LAYER_MENU_BAR, LAYER_POPUP, LAYER_STRIP, LAYER_ICON, LAYER_WINDOW, LAYER_FRAME };

struct layer {
    layer_kind kind;
    ws_rect rect;                      // with decorations
    int w;
    const window_record *window;
};

constexpr int LAYERS_MAX = WS_WINDOWS + POPUP_DEPTH + 4;

struct layer_list {
    layer layers[LAYERS_MAX];
    int count;
};

static layer_list layers_now;
static ws_rect area_now;

const ws_rect &composed_area()
{
    return area_now;
}

static void add_layer(layer_kind kind, const ws_rect &rect, int w, const window_record *window)
{
    layers_now.layers[layers_now.count++] = { kind, rect, w, window };
}

static void add_popups()
{
    if (ws_state.popup_depth && ws_state.windows[0].shown)
        add_layer(LAYER_POPUP, window_outer_rect(ws_state.windows[0]), 0, &ws_state.windows[0]);
    for (int i = ws_state.popup_depth - 1; i > 0; i--)
        if (ws_state.popup_saved[i].shown)
            add_layer(LAYER_POPUP, window_outer_rect(ws_state.popup_saved[i]), 0, &ws_state.popup_saved[i]);
}

static void add_windows(bool collapsed)
{
    for (int i = ws_state.stack_count - 1; i >= 0; i--) {
        const int w = ws_state.stack[i];
        const window_record &window = ws_state.windows[w];
        if (window.collapsed == collapsed)
            add_layer(collapsed ? LAYER_ICON : LAYER_WINDOW, collapsed ? icon_rect(w) : window_outer_rect(window), w, &window);
    }
}

static void list_layers()
{
    layers_now.count = 0;
    add_layer(LAYER_MENU_BAR, { 0, -ws_menu_height(), ws_state.info.width - 1, -1 }, 0, nullptr);
    add_popups();
    add_layer(LAYER_STRIP, strip_rect(), 0, nullptr);
    add_windows(true);
    add_windows(false);
    add_layer(LAYER_FRAME, frame_record()->rect, 0, frame_record());
}

// --- painting a layer --------------------------------------------------------------------------------------------

static uint32_t *picture_at(int x, int y)
{
    return ws_state.picture + int64_t{y + ws_menu_height()} * ws_state.display.width + x;
}

static void look_up_wide_row(const uint16_t *slots, uint32_t *out, int count)
{
    const uint32_t *const colours = ws_state.colours;
    for (int x = 0; x < count; x++)
        out[x] = colours[slots[x] % WS_MAX_SLOTS];
}

static void paint_pixels(const window_record &window, const ws_rect &area)
{
    if (!window.store.pixels) {
        paint_fill(area, UI_SHADE);
        return;
    }
    const int count = area.x1 - area.x0 + 1;
    for (int y = area.y0; y <= area.y1; y++) {
        const uint8_t *const row = store_at(window.store, area.x0 - window.rect.x0, y - window.rect.y0);
        uint32_t *const out = picture_at(area.x0, y);
        switch (window.store.format) {
        case PIXELS_SLOT8:
            look_up_slot_row(row, out, count, ws_state.colours);
            break;
        case PIXELS_SLOT16:
            look_up_wide_row((const uint16_t *)row, out, count);
            break;
        case PIXELS_RGB:
            memcpy(out, row, size_t(count) * sizeof(uint32_t));
            break;
        }
    }
}

static void paint_window(const layer &it, const ws_rect &area)
{
    const ws_rect inside = rect_common(it.window->rect, area);
    if (inside.x0 != area.x0 || inside.y0 != area.y0 || inside.x1 != area.x1 || inside.y1 != area.y1)
        decoration_paint(it.w, *it.window);
    if (!rect_empty(inside))
        paint_pixels(*it.window, inside);
}

static void paint_layer(const layer &it, const ws_rect &area)
{
    area_now = area;
    switch (it.kind) {
    case LAYER_MENU_BAR:
        menu_bar_paint(area);
        break;
    case LAYER_STRIP:
        strip_paint(area);
        break;
    case LAYER_ICON:
        icon_paint(it.w);
        break;
    case LAYER_POPUP:
    case LAYER_WINDOW:
    case LAYER_FRAME:
        paint_window(it, area);
        break;
    }
}

static void compose_from(int first, const ws_rect &area)
{
    if (rect_empty(area))
        return;
    for (int i = first; i < layers_now.count; i++) {
        const ws_rect part = rect_common(layers_now.layers[i].rect, area);
        if (rect_empty(part))
            continue;
        paint_layer(layers_now.layers[i], part);
        compose_from(i + 1, { area.x0, area.y0, area.x1, part.y0 - 1 });
        compose_from(i + 1, { area.x0, part.y0, part.x0 - 1, part.y1 });
        compose_from(i + 1, { part.x1 + 1, part.y0, area.x1, part.y1 });
        compose_from(i + 1, { area.x0, part.y1 + 1, area.x1, area.y1 });
        return;
    }
}

// --- presenting --------------------------------------------------------------------------------------------------

void compose_and_present()
{
    if (!ws_state.entered || !ws_state.damage_count)
        return;
    list_layers();
    ws_rect presented[DAMAGE_MAX];
    const int count = ws_state.damage_count;
    const int bar = ws_menu_height();
    for (int i = 0; i < count; i++) {
        const ws_rect &area = ws_state.damage[i];
        compose_from(0, area);
        area_now = area;
        menu_open_paint(area);
        presented[i] = { area.x0, area.y0 + bar, area.x1, area.y1 + bar };
    }
    ws_state.damage_count = 0;
    ws_state.presented_at = ws_state.backend->now();
    ws_state.backend->present(ws_state.picture, ws_state.display.width, presented, count);
}

void present_if_due()
{
    if (ws_state.damage_count && ws_state.backend->now() - ws_state.presented_at >= PRESENT_EVERY_MS)
        compose_and_present();
}
