#include "forms/form_paint.h"
#include "forms/gadget_layout.h"
#include "services/symbols.h"
#include <algorithm>
#include <cmath>
#include <iterator>

int text_pixels(int font, const char *text, int length)
{
    int width = 0;
    return length > 0 && ws_text_width(font, text, length, &width) == 0 ? width : 0;
}

void paint_fill(const form *f, ws_rect r, int colour)
{
    if (r.x1 < r.x0 || r.y1 < r.y0)
        return;
    ws_set_foreground(f->window, colour);
    ws_fill_rect(f->window, r.x0, r.y0, r.x1, r.y1);
}

void paint_outline(const form *f, ws_rect r, int thickness, int colour)
{
    const int t = thickness - 1;
    paint_fill(f, { r.x0, r.y0, r.x1, r.y0 + t }, colour);
    paint_fill(f, { r.x0, r.y1 - t, r.x1, r.y1 }, colour);
    paint_fill(f, { r.x0, r.y0, r.x0 + t, r.y1 }, colour);
    paint_fill(f, { r.x1 - t, r.y0, r.x1, r.y1 }, colour);
}

void paint_bevel(const form *f, ws_rect r, int thickness, int raised)
{
    const forms_palette &colours = forms_get_style()->palette;
    const int lit = raised ? colours.white : colours.dark, shaded = raised ? colours.dark : colours.white;
    for (int i = 0; i < thickness; i++) {
        const ws_rect line = rect_inset(r, i);
        paint_fill(f, { line.x0, line.y0, line.x1, line.y0 }, lit);
        paint_fill(f, { line.x0, line.y0, line.x0, line.y1 }, lit);
        paint_fill(f, { line.x0, line.y1, line.x1, line.y1 }, shaded);
        paint_fill(f, { line.x1, line.y0, line.x1, line.y1 }, shaded);
    }
}

void paint_clip(const form *f, ws_rect r)
{
    ws_set_clip(f->window, r.x0, r.y0, r.x1, r.y1);
}

void paint_no_clip(const form *f)
{
    ws_set_clip(f->window, 0, 0, f->pixel_width - 1, f->pixel_height - 1);
}

void paint_text(const form *f, int font, ws_rect r, const char *text, int length, int place, int colour, int greyed)
{
    const forms_palette &colours = forms_get_style()->palette;
    if (length <= 0 || r.x1 < r.x0 || r.y1 < r.y0)
        return;
    const int room = rect_width(r) - text_pixels(font, text, length);
    const int x = r.x0 + (place == TEXT_CENTRED ? std::max(0, room) / 2 : place == TEXT_RIGHT ? std::max(0, room) : 0);
    const int y = r.y0 + (rect_height(r) - ws_font_height(font)) / 2;
    paint_clip(f, r);
    if (greyed) {
        ws_set_foreground(f->window, colours.white);
        ws_draw_text(f->window, font, x + 1, y + 1, text, length);
    }
    ws_set_foreground(f->window, greyed ? colours.dark : colour);
    ws_draw_text(f->window, font, x, y, text, length);
    paint_no_clip(f);
}

// --- symbols -------------------------------------------------------------------------------------------------

struct outline_point {
    double x, y;                       // in the symbol's square, 0 to 1
};

// Even-odd, a pixel row at a time through the pixels' middles.
static void fill_outline(const form *f, ws_rect r, const outline_point *points, int count, int colour)
{
    for (int y = r.y0; y <= r.y1; y++) {
        double crossings[16];
        int crossing_count = 0;
        const double at = (y + 0.5 - r.y0) / rect_height(r);
        for (int i = 0; i < count; i++) {
            const outline_point a = points[i], b = points[(i + 1) % count];
            if ((a.y <= at) != (b.y <= at))
                crossings[crossing_count++] = a.x + (at - a.y) / (b.y - a.y) * (b.x - a.x);
        }
        std::sort(crossings, crossings + crossing_count);
        for (int i = 0; i + 1 < crossing_count; i += 2) {
            const int left = r.x0 + int(std::ceil(crossings[i] * rect_width(r) - 0.5));
            const int right = r.x0 + int(std::ceil(crossings[i + 1] * rect_width(r) - 0.5)) - 1;
            paint_fill(f, { left, y, right, y }, colour);
        }
    }
}

static void fill_disc(const form *f, ws_rect r, int colour)
{
    const double radius = rect_width(r) / 2.0;
    for (int y = r.y0; y <= r.y1; y++) {
        const double up = y + 0.5 - r.y0 - radius;
        const int half = int(std::sqrt(std::max(0.0, radius * radius - up * up)) + 0.5);
        const int middle = r.x0 + int(radius);
        paint_fill(f, { middle - half, y, middle + half - (rect_width(r) % 2 == 0), y }, colour);
    }
}

static constexpr outline_point check_points[] = { { 0, .55 }, { .16, .38 }, { .38, .60 }, { .84, .04 }, { 1, .20 }, { .38, .96 } };
static constexpr outline_point cross_points[] = { { 0, .2 }, { .2, 0 }, { .5, .3 }, { .8, 0 }, { 1, .2 }, { .7, .5 },
                                                  { 1, .8 }, { .8, 1 }, { .5, .7 }, { .2, 1 }, { 0, .8 }, { .3, .5 } };
static constexpr outline_point up_points[]    = { { 0, .78 }, { .5, .22 }, { 1, .78 } };
static constexpr outline_point down_points[]  = { { 0, .22 }, { 1, .22 }, { .5, .78 } };

struct symbol_form {
    int code, mask_code;               // mask 0: none
    double units;                      // width wanted
    double aspect;                     // height of the glyph for a width of 1
};

static constexpr symbol_form symbol_forms[] = {
    { SYM_ACCEPT,     0,                   16, 14.0 / 17 },
    { SYM_CANCEL,     0,                   14, 1 },
    { SYM_ARROW_UP,   0,                   9,  5.0 / 9 },
    { SYM_ARROW_DOWN, 0,                   9,  5.0 / 9 },
    { SYM_BOX_OFF,    SYM_BOX_OFF_MASK,    14, 1 },
    { SYM_BOX_ON,     SYM_BOX_ON_MASK,     14, 1 },
    { SYM_RADIO_OFF,  SYM_RADIO_OFF_MASK,  14, 1 },
    { SYM_RADIO_ON,   SYM_RADIO_ON_MASK,   14, 1 },
};

static void draw_glyph(const form *f, int code, int x, int y, int colour)
{
    const char text = char(code);
    ws_set_foreground(f->window, colour);
    ws_draw_text(f->window, forms_get_style()->symbol_font, x, y, &text, 1);
}

void paint_picture_size(int code, int *width_out, int *height_out)
{
    const char text = char(code);
    *width_out = text_pixels(forms_get_style()->symbol_font, &text, 1);
    *height_out = *width_out;          // they are about square
}

void paint_picture(const form *f, int code, int x, int y, int ink, int paper)
{
    draw_glyph(f, code + 1, x, y, paper);
    draw_glyph(f, code, x, y, ink);
}

// Glyphs have one size: where the scale makes them too small beside their text, the lines take over.
static int paint_glyph(const form *f, const symbol_form &symbol, ws_rect r, int ink, int paper)
{
    const char code = char(symbol.code);
    const int width = text_pixels(forms_get_style()->symbol_font, &code, 1);
    const int wanted = form_pixels(symbol.units);
    if (width <= 0 || 4 * width < 3 * wanted || width > rect_width(r))
        return 0;
    const int height = int(width * symbol.aspect + 0.5);
    const int x = r.x0 + (rect_width(r) - width) / 2, y = r.y0 + (rect_height(r) - height) / 2;
    if (symbol.mask_code)
        draw_glyph(f, symbol.mask_code, x, y, paper);
    draw_glyph(f, symbol.code, x, y, ink);
    return 1;
}

static ws_rect centred_square(ws_rect r, int size)
{
    const int x = r.x0 + (rect_width(r) - size) / 2, y = r.y0 + (rect_height(r) - size) / 2;
    return { x, y, x + size - 1, y + size - 1 };
}

static void paint_box(const form *f, ws_rect box, int on, int ink, int paper)
{
    paint_fill(f, box, ink);
    paint_fill(f, rect_inset(box, line_thickness()), paper);
    if (on)
        fill_outline(f, rect_inset(box, 2 * line_thickness()), check_points, int(std::size(check_points)), ink);
}

static void paint_circle(const form *f, ws_rect circle, int on, int ink, int paper)
{
    fill_disc(f, circle, ink);
    fill_disc(f, rect_inset(circle, line_thickness()), paper);
    if (on)
        fill_disc(f, rect_inset(circle, rect_width(circle) / 4 + 1), ink);
}

void paint_symbol_in(const form *f, int symbol, ws_rect r, int ink, int paper)
{
    const symbol_form &wanted = symbol_forms[symbol];
    if (paint_glyph(f, wanted, r, ink, paper))
        return;
    const ws_rect square = centred_square(r, form_pixels(wanted.units));
    switch (symbol) {
    case PAINT_ACCEPT:    fill_outline(f, square, check_points, int(std::size(check_points)), ink); break;
    case PAINT_CANCEL:    fill_outline(f, square, cross_points, int(std::size(cross_points)), ink); break;
    case PAINT_UP:        fill_outline(f, square, up_points, int(std::size(up_points)), ink); break;
    case PAINT_DOWN:      fill_outline(f, square, down_points, int(std::size(down_points)), ink); break;
    case PAINT_BOX_OFF:   paint_box(f, square, 0, ink, paper); break;
    case PAINT_BOX_ON:    paint_box(f, square, 1, ink, paper); break;
    case PAINT_RADIO_OFF: paint_circle(f, square, 0, ink, paper); break;
    case PAINT_RADIO_ON:  paint_circle(f, square, 1, ink, paper); break;
    }
}
