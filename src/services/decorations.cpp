#include "services/decorations.h"
#include "services/compose.h"
#include "services/symbols.h"
#include <algorithm>
#include <cstring>

static constexpr int BORDER = 4;       // left, right and below; the caption has EDGE above it
static constexpr int EDGE = 3;
static constexpr int CAPTION_ROOM = 4; // rows of a caption beyond its text
static constexpr int BUTTON_GAP = 3;   // between buttons, and between them and the caption's end
static constexpr int TITLE_GAP = 8;
static constexpr int CORNER = 16;      // pixels from a corner that size both ways
static constexpr int ICON_WIDTH = 168, ICON_HEIGHT = 28, ICON_GAP = 4;
static constexpr int ICON_PICTURE = 16, ICON_TEXT_X = 28;

// The caption button that the operator holds down.
static int pressed_window = -1;
static window_part pressed_part = PART_NOTHING;

static int line_height()
{
    const int height = ws_font_height(ui_font());
    return height > 0 ? height : 16;
}

static int caption_height()
{
    return line_height() + CAPTION_ROOM;
}

int ws_frame_metrics(int *border_x_out, int *border_y_out, int *caption_out)
{
    *border_x_out = BORDER;
    *border_y_out = BORDER;
    *caption_out = EDGE + caption_height() + 1;
    return 0;
}

// --- geometry ----------------------------------------------------------------------------------------------------

ws_rect window_outer_rect(const window_record &window)
{
    const ws_rect &r = window.rect;
    if (window.style == STYLE_TITLED)
        return { r.x0 - BORDER, r.y0 - EDGE - caption_height() - 1, r.x1 + BORDER, r.y1 + BORDER };
    if (window.style == STYLE_POPUP)
        return { r.x0 - 1, r.y0 - 1, r.x1 + 1, r.y1 + 1 };
    return r;
}

ws_rect strip_rect()
{
    const int height = ws_strip_height();
    return { 0, ws_state.info.height - height, ws_state.info.width - 1, ws_state.info.height - 1 };
}

static ws_rect caption_rect(const window_record &window)
{
    const ws_rect outer = window_outer_rect(window);
    return { outer.x0 + EDGE, outer.y0 + EDGE, outer.x1 - EDGE, outer.y0 + EDGE + caption_height() - 1 };
}

// Buttons stand at the caption's right end: close, and left of it collapse.
static ws_rect button_rect(const window_record &window, window_part part)
{
    const ws_rect caption = caption_rect(window);
    const int side = caption.y1 - caption.y0 + 1 - 2 * BUTTON_GAP;
    const int place = part == PART_CLOSE_BUTTON ? 0 : 1;
    const int x1 = caption.x1 - BUTTON_GAP - place * (side + BUTTON_GAP);
    return { x1 - side + 1, caption.y0 + BUTTON_GAP, x1, caption.y1 - BUTTON_GAP };
}

static window_part border_part(const ws_rect &outer, int x, int y)
{
    const bool left = x < outer.x0 + CORNER, right = x > outer.x1 - CORNER;
    const bool top = y < outer.y0 + CORNER, bottom = y > outer.y1 - CORNER;
    if (top)
        return left ? PART_TOP_LEFT : right ? PART_TOP_RIGHT : y < outer.y0 + EDGE ? PART_TOP : PART_LEFT;
    if (bottom)
        return left ? PART_BOTTOM_LEFT : right ? PART_BOTTOM_RIGHT : PART_BOTTOM;
    return left ? PART_LEFT : PART_RIGHT;
}

window_part frame_part(const window_record &window, int x, int y)
{
    if (rect_has(window.rect, x, y))
        return PART_INSIDE;
    for (const window_part button : { PART_CLOSE_BUTTON, PART_COLLAPSE_BUTTON })
        if (rect_has(button_rect(window, button), x, y))
            return button;
    if (rect_has(caption_rect(window), x, y))
        return PART_CAPTION;
    return border_part(window_outer_rect(window), x, y);
}

int active_look()
{
    if (popup_is_open())
        return -1;
    for (int i = ws_state.stack_count - 1; i >= 0; i--) {
        const window_record &window = ws_state.windows[ws_state.stack[i]];
        if (window.style == STYLE_TITLED && !window.collapsed)
            return ws_state.stack[i];
    }
    return -1;
}

void damage_active_caption()
{
    if (const window_record *window = window_of(active_look()))
        damage_add(caption_rect(*window));
}

// --- painting ----------------------------------------------------------------------------------------------------

void operator_press_button(int w, window_part part)
{
    const int changed = part == PART_NOTHING ? pressed_window : w;
    pressed_window = part == PART_NOTHING ? -1 : w;
    pressed_part = part;
    if (const window_record *window = window_of(changed))
        damage_add(caption_rect(*window));
}

void decorations_forget(int w)
{
    if (pressed_window == w)
        operator_press_button(w, PART_NOTHING);
}

static void paint_symbol_centred(int symbol, const ws_rect &box, int shift, uint32_t colour)
{
    int width, height;
    symbol_size(symbol, &width, &height);
    paint_symbol(symbol, box.x0 + (box.x1 - box.x0 + 1 - width) / 2 + shift, box.y0 + (box.y1 - box.y0 + 1 - height) / 2 + shift, colour);
}

// A text that is too long for its place ends in dots.
static void paint_title(int font, int x, int y, int x_end, const char *title, uint32_t colour)
{
    static constexpr char dots[] = "...";
    const int length = int(strlen(title));
    int width = 0, dots_width = 0;
    ws_text_width(font, title, length, &width);
    ws_text_width(font, dots, 3, &dots_width);
    if (x + width - 1 <= x_end) {
        paint_text(font, x, y, x_end, title, colour);
        return;
    }
    char cut[WS_TITLE_MAX + sizeof dots] = "";
    for (int kept = length; kept > 0; kept--) {
        ws_text_width(font, title, kept, &width);
        if (x + width + dots_width - 1 <= x_end) {
            memcpy(cut, title, size_t(kept));
            break;
        }
    }
    strcat(cut, dots);
    paint_text(font, x, y, x_end, cut, colour);
}

static void paint_button(int w, const window_record &window, window_part part, int symbol)
{
    const ws_rect box = button_rect(window, part);
    const bool pressed = pressed_window == w && pressed_part == part;
    paint_fill(box, UI_FACE);
    paint_bevel(box, !pressed);
    paint_symbol_centred(symbol, box, pressed, UI_TEXT);
}

static void paint_caption(int w, const window_record &window)
{
    const bool active = active_look() == w;
    const ws_rect caption = caption_rect(window);
    paint_fill(caption, active ? UI_ACCENT : UI_IDLE);
    const int title_end = button_rect(window, PART_COLLAPSE_BUTTON).x0 - TITLE_GAP;
    paint_title(ui_bold_font(), caption.x0 + TITLE_GAP, caption.y0 + CAPTION_ROOM / 2, title_end, window.title,
                active ? UI_ACCENT_TEXT : UI_IDLE_TEXT);
    paint_button(w, window, PART_COLLAPSE_BUTTON, SYM_COLLAPSE);
    paint_button(w, window, PART_CLOSE_BUTTON, SYM_CLOSE);
}

// Outside in: a dark line, a raised bevel, the face; a dark line around the pixels.
static void paint_border(const window_record &window)
{
    const ws_rect outer = window_outer_rect(window), &r = window.rect;
    const ws_rect bevel = { outer.x0 + 1, outer.y0 + 1, outer.x1 - 1, outer.y1 - 1 };
    paint_fill({ outer.x0, outer.y0, outer.x1, r.y0 - 1 }, UI_FACE);
    paint_fill({ outer.x0, r.y0, r.x0 - 1, outer.y1 }, UI_FACE);
    paint_fill({ r.x1 + 1, r.y0, outer.x1, outer.y1 }, UI_FACE);
    paint_fill({ r.x0, r.y1 + 1, r.x1, outer.y1 }, UI_FACE);
    paint_outline(outer, UI_DARK);
    paint_bevel(bevel, true);
    paint_outline({ r.x0 - 1, r.y0 - 1, r.x1 + 1, r.y1 + 1 }, UI_SHADE);
}

void decoration_paint(int w, const window_record &window)
{
    if (window.style == STYLE_POPUP) {
        paint_outline(window_outer_rect(window), UI_DARK);
        return;
    }
    paint_border(window);
    if (rect_meet(caption_rect(window), composed_area()))
        paint_caption(w, window);
}

// --- icons -------------------------------------------------------------------------------------------------------

static ws_rect icon_area()
{
    return { 0, 0, ws_state.info.width - 1, strip_rect().y0 - 1 };
}

// Wherever the program or the operator put it, an icon stays whole and above the strip.
ws_rect icon_rect(int w)
{
    const window_record &window = ws_state.windows[w];
    const ws_rect area = icon_area();
    const int x = std::clamp(window.icon_x, 0, std::max(0, area.x1 - ICON_WIDTH + 1));
    const int y = std::clamp(window.icon_y, 0, std::max(0, area.y1 - ICON_HEIGHT + 1));
    return { x, y, x + ICON_WIDTH - 1, y + ICON_HEIGHT - 1 };
}

static bool icon_overlaps(int w)
{
    for (int i = 0; i < ws_state.stack_count; i++) {
        const int other = ws_state.stack[i];
        if (other != w && ws_state.windows[other].collapsed && rect_meet(icon_rect(other), icon_rect(w)))
            return true;
    }
    return false;
}

void icon_find_place(int w)
{
    window_record &window = ws_state.windows[w];
    if (window.icon_placed)
        return;
    const ws_rect area = icon_area();
    for (int y = area.y1 - ICON_HEIGHT - ICON_GAP + 1; y >= 0; y -= ICON_HEIGHT + ICON_GAP) {
        for (int x = ICON_GAP; x + ICON_WIDTH <= area.x1; x += ICON_WIDTH + ICON_GAP) {
            window.icon_x = x;
            window.icon_y = y;
            if (!icon_overlaps(w))
                return;
        }
    }
}

void icon_paint(int w)
{
    const ws_rect r = icon_rect(w);
    paint_fill(r, UI_FACE);
    paint_outline(r, UI_DARK);
    paint_bevel({ r.x0 + 1, r.y0 + 1, r.x1 - 1, r.y1 - 1 }, true);
    const ws_rect picture = { r.x0 + 7, r.y0 + (ICON_HEIGHT - ICON_PICTURE) / 2, r.x0 + 6 + ICON_PICTURE, r.y0 + (ICON_HEIGHT + ICON_PICTURE) / 2 - 1 };
    paint_symbol_centred(SYM_PICTURE_MASK, picture, 0, UI_PAPER);
    paint_symbol_centred(SYM_PICTURE, picture, 0, UI_TEXT);
    const int text_y = r.y0 + (ICON_HEIGHT - line_height()) / 2;
    paint_title(ui_font(), r.x0 + ICON_TEXT_X, text_y, r.x1 - 6, ws_state.windows[w].title, UI_TEXT);
}
