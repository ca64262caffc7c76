// Painting for the services' own looks, straight into the picture within the area that is being composed.
#include "services/compose.h"
#include "services/drawing.h"
#include "services/font.h"
#include "services/symbols.h"
#include <cstring>

static constexpr int LARGE_FRAME = 720;  // rows from which the larger fonts are used

static pixel_store picture_store()
{
    return { ws_state.picture, PIXELS_RGB, ws_state.display.width, ws_state.display.height, 0 };
}

static ws_rect in_picture(const ws_rect &r)
{
    const int bar = ws_menu_height();
    return { r.x0, r.y0 + bar, r.x1, r.y1 + bar };
}

void paint_fill(const ws_rect &area, uint32_t colour)
{
    const ws_rect part = rect_common(area, composed_area());
    if (!rect_empty(part))
        store_fill(picture_store(), in_picture(part), colour);
}

static void paint_sides(const ws_rect &r, uint32_t upper_left, uint32_t lower_right)
{
    paint_fill({ r.x0, r.y0, r.x1, r.y0 }, upper_left);
    paint_fill({ r.x0, r.y0, r.x0, r.y1 }, upper_left);
    paint_fill({ r.x0, r.y1, r.x1, r.y1 }, lower_right);
    paint_fill({ r.x1, r.y0, r.x1, r.y1 }, lower_right);
}

void paint_outline(const ws_rect &area, uint32_t colour)
{
    paint_sides(area, colour, colour);
}

void paint_bevel(const ws_rect &area, bool raised)
{
    paint_sides(area, raised ? UI_LIGHT : UI_SHADE, raised ? UI_SHADE : UI_LIGHT);
}

int paint_text(int font, int x, int y, int x_end, const char *text, uint32_t colour)
{
    ws_rect clip = composed_area();
    if (x_end < clip.x1)
        clip.x1 = x_end;
    int width = 0;
    ws_text_width(font, text, int(strlen(text)), &width);
    if (!rect_empty(clip))
        stamp_text(picture_store(), in_picture(clip), font, x, y + ws_menu_height(), text, int(strlen(text)), colour);
    return x + width;
}

static bool symbol_glyph(int symbol, font_glyph *glyph_out)
{
    int font;
    return ws_load_font("symbols", &font) == 0 && font_glyph_of(font, uint8_t(symbol), glyph_out);
}

void paint_symbol(int symbol, int x, int y, uint32_t colour)
{
    font_glyph glyph;
    if (symbol_glyph(symbol, &glyph))
        stamp_low_first(picture_store(), in_picture(composed_area()), x, y + ws_menu_height(), glyph.bits, glyph.width, glyph.height, colour);
}

void symbol_size(int symbol, int *width_out, int *height_out)
{
    font_glyph glyph;
    const bool found = symbol_glyph(symbol, &glyph);
    *width_out = found ? glyph.width : 0;
    *height_out = found ? glyph.height : 0;
}

static int font_or_none(const char *name)
{
    int id;
    return ws_load_font(name, &id) == 0 ? id : -1;
}

int ui_font()
{
    return font_or_none(ws_state.info.height >= LARGE_FRAME ? "sans.18" : "sans.16");
}

int ui_bold_font()
{
    return font_or_none(ws_state.info.height >= LARGE_FRAME ? "sansb.18" : "sansb.16");
}
