#include "services/colours.h"
#include "services/pixel_store.h"
#include "services/windows.h"
#include "mem.h"
#include <algorithm>
#include <climits>

static constexpr int TRUE_COLOUR_VLT = 2;
static constexpr int FIXED_SLOTS = 16;  // displays with fewer have colours of their own that nobody can change

// Colours already looked for, by a hash of the colour.
static constexpr int NEAREST_KEPT = 4096;
static struct {
    uint32_t rgb;
    int slot;
} nearest_kept[NEAREST_KEPT];
static bool nearest_valid;

static int distance(uint32_t a, uint32_t b)
{
    const int red = int(a >> 16 & 255) - int(b >> 16 & 255);
    const int green = int(a >> 8 & 255) - int(b >> 8 & 255);
    const int blue = int(a & 255) - int(b & 255);
    return red * red + green * green + blue * blue;
}

static int nearest_of(const uint32_t *colours, int count, uint32_t rgb)
{
    int best = 0, least = INT_MAX;
    for (int i = 0; i < count; i++) {
        const int away = distance(colours[i], rgb);
        if (away < least) {
            least = away;
            best = i;
        }
    }
    return best;
}

int nearest_slot(uint32_t rgb)
{
    rgb &= 0xFFFFFF;
    if (!nearest_valid) {
        for (auto &kept : nearest_kept)
            kept = { UINT32_MAX, 0 };
        nearest_valid = true;
    }
    auto &kept = nearest_kept[(rgb * 2654435761u) >> 20];
    if (kept.rgb != rgb)
        kept = { rgb, nearest_of(ws_state.colours, ws_state.info.vlt_size, rgb) };
    return kept.slot;
}

uint32_t shown_colour(const window_record &window, uint32_t value)
{
    return window.vlt == TRUE_COLOUR_VLT ? value & 0xFFFFFF : ws_state.colours[value % WS_MAX_SLOTS];
}

// --- the table ---------------------------------------------------------------------------------------------------

// A display sees only the bits that it has planes for, so slots above its table look like those they are cut to.
static void repeat_above_max_index()
{
    for (int i = ws_state.info.vlt_size; i < WS_MAX_SLOTS; i++)
        ws_state.colours[i] = ws_state.colours[i % ws_state.info.vlt_size];
    nearest_valid = false;
}

// What a display of fewer than 16 slots can show.
static uint32_t display_colour(uint32_t rgb)
{
    static constexpr uint32_t two[] = { 0x000000, 0xFFFFFF };
    static constexpr uint32_t four[] = { 0x000000, 0x555555, 0xAAAAAA, 0xFFFFFF };
    static constexpr uint32_t eight[] = { 0x000000, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF };
    const int slots = ws_state.info.vlt_size;
    if (slots >= FIXED_SLOTS)
        return rgb;
    const uint32_t *const colours = slots == 2 ? two : slots == 4 ? four : eight;
    return colours[nearest_of(colours, slots, rgb)];
}

bool colours_start()
{
    ws_state.colours = (uint32_t *)mem_alloc(WS_MAX_SLOTS * sizeof(uint32_t));
    if (!ws_state.colours)
        return false;
    const int max = ws_state.info.max_index;
    for (int i = 0; i <= max; i++)
        ws_state.colours[i] = display_colour(uint32_t(i * 255 / max) * 0x010101);
    repeat_above_max_index();
    return true;
}

static void damage_slot_window(const window_record &window)
{
    if (window.shown && !window.collapsed && window.vlt == 0)
        damage_add(window.rect);
}

static void damage_slot_windows()
{
    for (const window_record &window : ws_state.windows)
        damage_slot_window(window);
    for (int i = 0; i < ws_state.popup_depth; i++)
        damage_slot_window(ws_state.popup_saved[i]);
}

int ws_write_vlt(int, const vlt_entry *entries, int count)
{
    if (!ws_state.entered)
        return -1;
    int result = 0;
    bool changed = false;
    for (int i = 0; i < count; i++) {
        const vlt_entry &entry = entries[i];
        if (entry.slot > ws_state.info.max_index) {
            result = -1;
            continue;
        }
        const uint32_t rgb = display_colour(uint32_t(entry.red >> 8) << 16 | uint32_t(entry.green >> 8) << 8 | uint32_t(entry.blue >> 8));
        changed |= rgb != ws_state.colours[entry.slot];
        ws_state.colours[entry.slot] = rgb;
    }
    if (changed) {
        repeat_above_max_index();
        damage_slot_windows();
    }
    return result;
}

static uint16_t doubled(uint32_t component)
{
    return uint16_t((component & 255) * 0x101);
}

int ws_read_vlt(int, vlt_entry *entries_out, int count, int first)
{
    if (!ws_state.entered || first < 0 || count < 0 || count > ws_state.info.vlt_size - first)
        return -1;
    for (int i = 0; i < count; i++) {
        const uint32_t rgb = ws_state.colours[first + i];
        entries_out[i] = { uint16_t(first + i), doubled(rgb >> 16), doubled(rgb >> 8), doubled(rgb) };
    }
    return 0;
}

// --- tables of windows -------------------------------------------------------------------------------------------

static bool has_true_colour()
{
    return ws_state.entered && ws_state.info.flags & WS_CAP_TRUECOLOUR;
}

int ws_vlt_alloc(int kind, int *number_out)
{
    if (kind != TRUE_COLOUR_VLT || !has_true_colour() || ws_state.true_colour_vlts)
        return -1;
    ws_state.true_colour_vlts = 1;
    *number_out = TRUE_COLOUR_VLT;
    return 0;
}

int ws_vlt_free(int number)
{
    if (number != TRUE_COLOUR_VLT || !ws_state.true_colour_vlts)
        return -1;
    ws_state.true_colour_vlts = 0;
    return 0;
}

int ws_vlt_of_kind(int kind, int *number_out)
{
    if (kind != 0 && kind != TRUE_COLOUR_VLT)
        return -1;
    *number_out = kind;
    return 0;
}

int ws_window_vlt(int w, int *number_out)
{
    const window_record *const window = window_of(w);
    if (!window)
        return -1;
    *number_out = window->vlt;
    return 0;
}

static uint32_t converted(const window_record &window, uint32_t value)
{
    return window.vlt == TRUE_COLOUR_VLT ? ws_state.colours[value % WS_MAX_SLOTS] : uint32_t(nearest_slot(value));
}

// The picture stays as it looks; `old` holds it in the other format.
static void convert_pixels(const window_record &window, const pixel_store &old)
{
    for (int y = 0; y < old.height; y++)
        for (int x = 0; x < old.width; x++)
            store_set(window.store, x, y, converted(window, store_get(old, x, y)));
}

int ws_set_window_vlt(int w, int number)
{
    window_record *const window = window_of(w);
    if (!window || (number != 0 && !(number == TRUE_COLOUR_VLT && has_true_colour())))
        return -1;
    if (window->vlt == number)
        return 0;
    pixel_store old = window->store;
    window->vlt = number;
    window->store = {};
    if (old.pixels) {
        window_shape(*window);
        if (window->store.pixels)
            convert_pixels(*window, old);
        store_free(old);
        window_damage(*window);
    }
    return 0;
}

int ws_write_window_vlt(int screen, int number, const vlt_entry *entries, int count)
{
    return number == 0 ? ws_write_vlt(screen, entries, count) : -1;
}

int ws_set_plane_mask(int w, uint32_t)
{
    return window_of(w) ? 0 : -1;
}

int ws_enable_plane(int w, int)
{
    return window_of(w) ? 0 : -1;
}
