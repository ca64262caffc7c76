#include "enhance/tune_panel.h"

#include <algorithm>
#include <cstring>

#include "enhance/contrast_maps.h"
#include "enhance/thumbnail.h"
#include "enhance/tune_map.h"
#include "forms/forms.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

constexpr int WIDTH_GREY = 320, WIDTH_COLOUR = 624, HEIGHT = 210;
constexpr int THUMBNAIL_X = 20, THUMBNAIL_Y = 53;
constexpr int PAD_X[TUNE_BANDS] = { 177, 329, 481 }, PAD_TOP = 100, PAD_WIDTH = 128, PAD_HEIGHT = 81;
constexpr int TITLE_X = 11, TITLE_TOP = 10, TITLE_BOTTOM = 38, BUTTON_WIDTH = 28;
constexpr int CANCEL_X_GREY = 251, CANCEL_X_COLOUR = 555;
constexpr int LOCK_X = 481, LOCK_TOP = 53, LOCK_BOTTOM = 76, NO_LOCK_X = 177, NO_LOCK_BOTTOM = 38;
constexpr int CAPTION_Y = 183, CAPTION_TOP = 53, CAPTION_BOTTOM = 180, CAPTION_WIDTH = 16;
constexpr int TICK = 3, TICK_MIDDLE_Y = 164;

enum label { LABEL_CANCEL = 1, LABEL_ACCEPT, LABEL_LOCK };

form *panel;                           // while the command runs

int pad_count(const tune_state &state)
{
    return state.colour ? TUNE_BANDS : 1;
}

int bands_locked(const tune_state &state)
{
    return state.colour && form_is_on(panel, LABEL_LOCK);
}

// --- drawing -----------------------------------------------------------------------------------------------------------

void fill(int w, int ink, int x0, int y0, int x1, int y1)
{
    ws_set_foreground(w, ink);
    ws_fill_rect(w, x0, y0, x1, y1);
}

// One pixel around the rectangle, sunk into the panel.
void draw_frame(int w, int x0, int y0, int x1, int y1)
{
    const forms_palette &colours = forms_get_style()->palette;
    fill(w, colours.dark, x0 - 1, y0 - 1, x1 + 1, y0 - 1);
    fill(w, colours.dark, x0 - 1, y0 - 1, x0 - 1, y1 + 1);
    fill(w, colours.white, x0 - 1, y1 + 1, x1 + 1, y1 + 1);
    fill(w, colours.white, x1 + 1, y0 - 1, x1 + 1, y1 + 1);
}

int pad_colour(const tune_state &state, int pad)
{
    const forms_palette &colours = forms_get_style()->palette;
    const int of_band[TUNE_BANDS] = { colours.red, colours.green, colours.blue };
    return state.colour ? of_band[pad] : colours.medium;
}

void draw_hairs(int w, int ink, int pad, int x, int y)
{
    const int left = PAD_X[pad], right = left + PAD_WIDTH - 1, bottom = PAD_TOP + PAD_HEIGHT - 1;
    if (x < PAD_WIDTH)
        fill(w, ink, left + x, PAD_TOP, left + x, bottom);
    if (y < PAD_HEIGHT)
        fill(w, ink, left, PAD_TOP + y, right, PAD_TOP + y);
}

void draw_pad(int w, const tune_state &state, int pad)
{
    const forms_palette &colours = forms_get_style()->palette;
    const tune_band &b = state.bands[pad];
    fill(w, pad_colour(state, pad), PAD_X[pad], PAD_TOP, PAD_X[pad] + PAD_WIDTH - 1, PAD_TOP + PAD_HEIGHT - 1);
    draw_hairs(w, colours.black, pad, b.brightness_x + 1, b.contrast_y + 1);
    draw_hairs(w, colours.white, pad, b.brightness_x, b.contrast_y);
}

int text_width(int font, const char *text)
{
    int width = 0;
    ws_text_width(font, text, int(strlen(text)), &width);
    return width;
}

// Reads upward in the strip left of a pad: drawn level in the pad's place, which is painted afterwards, and turned.
void draw_upright(int w, int x, const char *text)
{
    constexpr int LENGTH = CAPTION_BOTTOM - CAPTION_TOP + 1;
    static uint32_t level_text[LENGTH * CAPTION_WIDTH], upright_text[LENGTH * CAPTION_WIDTH];
    const forms_palette &colours = forms_get_style()->palette;
    const int left = PAD_X[0], width = std::min(text_width(font_text_small, text), LENGTH);
    fill(w, colours.light, left, PAD_TOP, left + LENGTH - 1, PAD_TOP + CAPTION_WIDTH - 1);
    ws_set_foreground(w, colours.black);
    // The caption stands beside the pad's middle.
    const int indent = std::max(0, CAPTION_BOTTOM - (PAD_TOP + PAD_HEIGHT / 2) - width / 2);
    ws_draw_text(w, font_text_small, left + indent, PAD_TOP, text, int(strlen(text)));
    ws_read_pixels(w, left, PAD_TOP, left + LENGTH - 1, PAD_TOP + CAPTION_WIDTH - 1, level_text);
    for (int row = 0; row < CAPTION_WIDTH; row++)
        for (int column = 0; column < LENGTH; column++)
            upright_text[(LENGTH - 1 - column) * CAPTION_WIDTH + row] = level_text[row * LENGTH + column];
    ws_write_pixels(w, x, CAPTION_TOP, x + CAPTION_WIDTH - 1, CAPTION_BOTTOM, upright_text);
}

void draw_pad_surroundings(int w, int pad)
{
    const int left = PAD_X[pad], right = left + PAD_WIDTH - 1, middle = left + 63, bottom = PAD_TOP + PAD_HEIGHT - 1;
    const int black = forms_get_style()->palette.black;
    draw_upright(w, left - 2 - TICK - CAPTION_WIDTH, "contrast");
    draw_frame(w, left, PAD_TOP, right, bottom);
    fill(w, black, middle, PAD_TOP - 1 - TICK, middle, PAD_TOP - 2);
    fill(w, black, middle, bottom + 2, middle, bottom + 1 + TICK);
    fill(w, black, left - 1 - TICK, TICK_MIDDLE_Y, left - 2, TICK_MIDDLE_Y);
    fill(w, black, right + 2, TICK_MIDDLE_Y, right + 1 + TICK, TICK_MIDDLE_Y);
    ws_draw_text(w, font_text_small, left, CAPTION_Y, "brightness", 10);
}

void draw_thumbnail(int w, const tune_state &state)
{
    const int16_t *luts[TUNE_BANDS] = {};
    for (int i = 0; i < pad_count(state); i++)
        luts[i] = state.bands[i].tune_lut;
    thumbnail_paint(w, THUMBNAIL_X, THUMBNAIL_Y, state.planes, luts);
}

void update(int w, tune_state *state)
{
    for (int i = 0; i < pad_count(*state); i++)
        if (state->bands[i].dirty) {
            tune_update_band(&state->bands[i]);
            state->bands[i].dirty = 0;
        }
    draw_thumbnail(w, *state);
}

void draw_title(int w)
{
    const int font = font_title_small;
    ws_set_foreground(w, forms_get_style()->palette.black);
    ws_draw_text(w, font, TITLE_X, (TITLE_TOP + TITLE_BOTTOM + 1 - ws_font_height(font)) / 2, "Tune", 4);
}

// The whole panel, also after something lay over it: the crosses stay, the tables are made anew.
void draw_panel(int w, void *data)
{
    tune_state *const state = static_cast<tune_state *>(data);
    draw_title(w);
    draw_frame(w, THUMBNAIL_X, THUMBNAIL_Y, THUMBNAIL_X + THUMBNAIL_SIDE - 1, THUMBNAIL_Y + THUMBNAIL_SIDE - 1);
    for (int pad = 0; pad < pad_count(*state); pad++)
        draw_pad_surroundings(w, pad);
    for (int pad = 0; pad < pad_count(*state); pad++) {
        draw_pad(w, *state, pad);
        state->bands[pad].dirty = 1;
    }
    update(w, state);
}

// --- the pointer -------------------------------------------------------------------------------------------------------

int pad_at(const tune_state &state, int x, int y)
{
    if (y >= PAD_TOP && y < PAD_TOP + PAD_HEIGHT)
        for (int pad = 0; pad < pad_count(state); pad++)
            if (x >= PAD_X[pad] && x < PAD_X[pad] + PAD_WIDTH)
                return pad;
    return -1;
}

// With the bands locked red takes green along, and green blue.
void move_cross(int w, tune_state *state, int pad, int x, int y)
{
    tune_band &b = state->bands[pad];
    x = std::clamp(x, 0, CROSS_X_MAX);
    y = std::clamp(y, 0, CROSS_Y_MAX);
    if (x != b.brightness_x || y != b.contrast_y) {
        b.brightness_x = x;
        b.contrast_y = y;
        b.dirty = 1;
        draw_pad(w, *state, pad);
    }
    if (pad + 1 < TUNE_BANDS && bands_locked(*state))
        move_cross(w, state, pad + 1, x, y);
}

void drag_to(int w, tune_state *state, int x, int y)
{
    const tune_band &b = state->bands[state->grabbed];
    move_cross(w, state, state->grabbed, state->grab_x_locked ? b.brightness_x : x - PAD_X[state->grabbed_pad],
               state->grab_y_locked ? b.contrast_y : y - PAD_TOP);
    ws_flush(w);
}

// A grab on one hair moves only that hair, one near the crossing moves both.
void grab(tune_state *state, int pad, int x, int y)
{
    constexpr int BEFORE = 16, BEHIND = 17;
    state->grabbed_pad = pad;
    state->grabbed = bands_locked(*state) ? 0 : pad;
    const tune_band &b = state->bands[state->grabbed];
    const int from_x = x - PAD_X[pad] - b.brightness_x, from_y = y - PAD_TOP - b.contrast_y;
    state->grab_x_locked = from_x < -BEFORE || from_x >= BEHIND;
    state->grab_y_locked = from_y < -BEFORE || from_y >= BEHIND;
}

void start_drag(int w, tune_state *state, int x, int y)
{
    const int pad = pad_at(*state, x, y);
    if (pad < 0)
        return;
    grab(state, pad, x, y);
    // A press is reported only when it has lasted a while; the pointer may have moved on since.
    int x_now, y_now, inside;
    if (ws_pointer_in_window(w, &x_now, &y_now, &inside) == 0 && (x_now != x || y_now != y))
        drag_to(w, state, x_now, y_now);
}

void click(int w, tune_state *state, int x, int y)
{
    const int pad = pad_at(*state, x, y);
    if (pad < 0)
        return;
    move_cross(w, state, bands_locked(*state) ? 0 : pad, x - PAD_X[pad], y - PAD_TOP);
    update(w, state);
}

void end_drag(int w, tune_state *state)
{
    state->grabbed = -1;
    update(w, state);
}

// The gadgets' share of the panel: from the lock's left edge to the right, down to its lower edge.
bool belongs_to_gadgets(const tune_state &state, int x, int y)
{
    return state.colour ? x >= LOCK_X && y <= LOCK_BOTTOM : x >= NO_LOCK_X && y <= NO_LOCK_BOTTOM;
}

int take_button(int w, int x, int y, int button, int transition, void *data)
{
    constexpr int DATA_BUTTON = 1;
    tune_state *const state = static_cast<tune_state *>(data);
    const bool pressed = transition == WS_DOWN || transition == WS_DOUBLE_DOWN;
    if (state->grabbed >= 0 && !pressed) {
        drag_to(w, state, x, y);
        end_drag(w, state);
        return 1;
    }
    if (belongs_to_gadgets(*state, x, y))
        return 0;
    if (button == DATA_BUTTON && pressed)
        start_drag(w, state, x, y);
    else if (button == DATA_BUTTON && transition != WS_UP)
        click(w, state, x, y);
    return 1;
}

int take_motion(int w, int x, int y, void *data)
{
    tune_state *const state = static_cast<tune_state *>(data);
    if (state->grabbed < 0)
        return 0;
    drag_to(w, state, x, y);
    return 1;
}

// --- the form ------------------------------------------------------------------------------------------------------------

void place_button(gadget *g)
{
    if (!g)
        return;
    g->x1 = g->x0 + BUTTON_WIDTH;
    g->y1 = TITLE_BOTTOM;
}

// A pop-up shows its title in the panel itself, a window in its caption.
void build_panel(int colour)
{
    const int cancel_x = colour ? CANCEL_X_COLOUR : CANCEL_X_GREY;
    panel = form_create(0, popup_forms ? "" : "Tune", colour ? WIDTH_COLOUR : WIDTH_GREY, HEIGHT);
    place_button(form_add_cancel(panel, LABEL_CANCEL, cancel_x, TITLE_TOP));
    place_button(form_add_accept(panel, LABEL_ACCEPT, cancel_x + BUTTON_WIDTH + 1, TITLE_TOP));
    if (colour)
        form_add_toggle(panel, LABEL_LOCK, LOCK_X, LOCK_TOP, "Lock bands", nullptr, 0);
}

} // namespace

void tune_update_band(tune_band *b)
{
    constexpr double CONTRAST_STEP = 0.025, BRIGHTNESS_STEP = 0.03225806451612903;   // one fortieth, one thirty-first
    const band_rec &band = bands[b->band];
    memcpy(b->tune_hist, band.hist_mapped, sizeof b->tune_hist);
    memcpy(b->tune_lut, band.lut, sizeof b->tune_lut);
    equalize_map(b->tune_hist, b->tune_lut, (CROSS_Y_START - b->contrast_y) * CONTRAST_STEP, 0, 255, 0, 255);
    gamma_map(b->tune_hist, b->tune_lut, (b->brightness_x - CROSS_X_START) * BRIGHTNESS_STEP);
}

int tune_panel_run(tune_state *state)
{
    const form_canvas canvas { draw_panel, take_button, take_motion };
    build_panel(state->colour);
    form_set_canvas(panel, &canvas, state);
    state->grabbed = -1;
    const int left = state->colour ? layout.tune_left : layout.panel_left;
    const int answer = form_run(panel, left, layout.panel_top, nullptr, nullptr, nullptr);
    form_free(panel);
    panel = nullptr;
    return answer == FORM_DONE;
}
