#include "forms/gadget_layout.h"
#include "forms/form_paint.h"
#include "forms/list_scroll.h"
#include "forms/slider_scale.h"
#include "forms/text_wrap.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

// Form units.
static constexpr double MARK       = 14;   // check box or circle
static constexpr double MARK_GAP   = 6;
static constexpr double SWITCH     = 22;   // of a toggle with two texts
static constexpr double TEXT_EDGE  = 4;    // free room between a frame and the text in it
static constexpr double LABEL_GAP  = 8;    // between a label and the body
static constexpr double THUMB      = 12;   // width of a slider's thumb
static constexpr double SCROLL_BAR = 16;
static constexpr double SHORTEST_THUMB = 8;

static const ws_rect EMPTY = { 0, 0, -1, -1 };

int line_thickness()
{
    return std::max(1, int(forms_get_style()->scale + 0.5));
}

int box_edge()
{
    return 1 + line_thickness();
}

int rect_contains(ws_rect r, int x, int y)
{
    return x >= r.x0 && x <= r.x1 && y >= r.y0 && y <= r.y1;
}

ws_rect rect_inset(ws_rect r, int by)
{
    return { r.x0 + by, r.y0 + by, r.x1 - by, r.y1 - by };
}

static ws_rect rect_of_units(const form *f, double x0, double y0, double x1, double y1)
{
    return { form_pixels(x0), f->band + form_pixels(y0), form_pixels(x1) - 1, f->band + form_pixels(y1) - 1 };
}

static double text_units(const char *text)
{
    const int font = forms_get_style()->text_font;
    return std::ceil(text_pixels(font, text, int(std::strlen(text))) / forms_get_style()->scale);
}

double label_room(const gadget *g)
{
    if (g->label_width > 0 || !g->text || !*g->text)
        return g->label_width;
    return text_units(g->text) + LABEL_GAP;
}

int toggle_needs_switch(const gadget *g)
{
    return g->kind == GADGET_TOGGLE && g->second_text;
}

void layout_extent(gadget *g)
{
    if (g->kind == GADGET_LABEL && g->symbol) {
        int width, height;
        paint_picture_size(g->symbol, &width, &height);
        g->x1 = g->x0 + width / forms_get_style()->scale;
        g->y1 = g->y0 + height / forms_get_style()->scale;
    } else if (g->kind == GADGET_LABEL) {
        double width, height;
        form_size_for_text(nullptr, &width, &height, text_or_empty(g->text));
        g->x1 = g->x0 + width;
        g->y1 = g->y0 + height;
    } else if (g->kind == GADGET_TOGGLE || g->kind == GADGET_RADIO) {
        const double text = std::max(text_units(text_or_empty(g->text)), text_units(text_or_empty(g->second_text)));
        g->x1 = g->x0 + (toggle_needs_switch(g) ? SWITCH : MARK) + MARK_GAP + text + TEXT_EDGE;
        g->y1 = g->y0 + FORM_ROW;
    }
}

ws_rect gadget_rect(const form *f, const gadget *g)
{
    return rect_of_units(f, g->x0, g->y0, g->x1, g->y1);
}

ws_rect gadget_body(const form *f, const gadget *g)
{
    switch (g->kind) {
    case GADGET_FIELD:  return rect_of_units(f, g->x0 + label_room(g), g->y0, g->x1, g->y1);
    case GADGET_SLIDER: return slider_track(f, g);
    case GADGET_LIST:   return list_frame(f, g);
    default:            return gadget_rect(f, g);
    }
}

ws_rect gadget_label_rect(const form *f, const gadget *g)
{
    const double room = label_room(g);
    return room > 0 ? rect_of_units(f, g->x0, g->y0, g->x0 + room, g->y1) : EMPTY;
}

gadget *gadget_at(const form *f, int x, int y)
{
    for (int i = f->gadget_count - 1; i >= 0; i--) {
        gadget *const g = f->gadgets[i];
        if (gadget_is_live(g) && gadget_takes_keys(g) && rect_contains(gadget_rect(f, g), x, y))
            return g;
    }
    return nullptr;
}

ws_rect mark_rect(const form *f, const gadget *g)
{
    const ws_rect r = gadget_rect(f, g);
    const int height = form_pixels(MARK), width = form_pixels(toggle_needs_switch(g) ? SWITCH : MARK);
    const int top = r.y0 + (rect_height(r) - height) / 2;
    return { r.x0, top, r.x0 + width - 1, top + height - 1 };
}

ws_rect field_text_rect(const form *f, const gadget *g)
{
    const ws_rect inside = rect_inset(gadget_body(f, g), box_edge());
    const int beside = 2 * line_thickness();
    // Of the height all but a row above and one beneath is needed for the text.
    return { inside.x0 + beside, inside.y0 + 1, inside.x1 - beside, inside.y1 - 1 };
}

int field_text_advance(const char *text, int length)
{
    return text_pixels(forms_get_style()->text_font, text, length);
}

// --- sliders -------------------------------------------------------------------------------------------------

void slider_value_text(const gadget *g, char *out, int size)
{
    std::snprintf(out, size_t(size), "%.*f", slider_decimals(g), g->position);
}

static double slider_value_room(const gadget *g)
{
    char text[64];
    gadget end = *g;
    double room = 0;
    for (const double value : { g->low, g->high }) {
        end.position = value;
        slider_value_text(&end, text, sizeof text);
        room = std::max(room, text_units(text));
    }
    return g->show_value ? room + LABEL_GAP : 0;
}

ws_rect slider_track(const form *f, const gadget *g)
{
    return rect_of_units(f, g->x0 + label_room(g), g->y0, g->x1 - slider_value_room(g), g->y1);
}

ws_rect slider_value_rect(const form *f, const gadget *g)
{
    const double room = slider_value_room(g);
    return room > 0 ? rect_of_units(f, g->x1 - room, g->y0, g->x1, g->y1) : EMPTY;
}

static int thumb_travel(ws_rect track)
{
    return std::max(1, rect_width(track) - form_pixels(THUMB));
}

ws_rect slider_thumb(const form *f, const gadget *g)
{
    const ws_rect track = slider_track(f, g);
    const int left = track.x0 + int(slider_share(g) * thumb_travel(track) + 0.5);
    return { left, track.y0, left + form_pixels(THUMB) - 1, track.y1 };
}

ws_rect slider_middles(const form *f, const gadget *g)
{
    const ws_rect track = slider_track(f, g);
    const int left = track.x0 + form_pixels(THUMB) / 2;
    return { left, track.y0, left + thumb_travel(track), track.y1 };
}

double slider_share_at(const form *f, const gadget *g, int thumb_x)
{
    const ws_rect track = slider_track(f, g);
    return double(thumb_x - track.x0) / thumb_travel(track);
}

// --- lists ---------------------------------------------------------------------------------------------------

int list_row_height()
{
    return ws_font_height(forms_get_style()->text_font) + 2 * line_thickness();
}

ws_rect list_title_rect(const form *f, const gadget *g)
{
    ws_rect r = gadget_rect(f, g);
    r.y1 = g->text && *g->text ? r.y0 + list_row_height() - 1 : r.y0 - 1;
    return r;
}

ws_rect list_frame(const form *f, const gadget *g)
{
    ws_rect r = gadget_rect(f, g);
    r.y0 = list_title_rect(f, g).y1 + 1;
    return r;
}

ws_rect list_rows_rect(const form *f, const gadget *g)
{
    ws_rect r = rect_inset(list_frame(f, g), box_edge());
    r.x1 -= form_pixels(SCROLL_BAR);
    return r;
}

ws_rect list_row_rect(const form *f, const gadget *g, int item)
{
    const ws_rect rows = list_rows_rect(f, g);
    const int top = rows.y0 + (item - g->first_item) * list_row_height();
    return { rows.x0, top, rows.x1, top + list_row_height() - 1 };
}

static ws_rect scroll_bar(const form *f, const gadget *g)
{
    ws_rect r = rect_inset(list_frame(f, g), box_edge());
    r.x0 = r.x1 - form_pixels(SCROLL_BAR) + 1;
    return r;
}

static int arrow_height(ws_rect bar)
{
    return std::min(rect_width(bar), rect_height(bar) / 2);
}

ws_rect list_up_arrow(const form *f, const gadget *g)
{
    ws_rect r = scroll_bar(f, g);
    r.y1 = r.y0 + arrow_height(r) - 1;
    return r;
}

ws_rect list_down_arrow(const form *f, const gadget *g)
{
    ws_rect r = scroll_bar(f, g);
    r.y0 = r.y1 - arrow_height(r) + 1;
    return r;
}

ws_rect list_trough(const form *f, const gadget *g)
{
    ws_rect r = scroll_bar(f, g);
    const int arrow = arrow_height(r);
    return { r.x0, r.y0 + arrow, r.x1, r.y1 - arrow };
}

ws_rect list_thumb(const form *f, const gadget *g)
{
    ws_rect r = list_trough(f, g);
    const scroll_thumb thumb = scroll_thumb_of(rect_height(r), form_pixels(SHORTEST_THUMB), g->item_count, list_visible_rows(f, g),
                                               g->first_item);
    r.y0 += thumb.start;
    r.y1 = r.y0 + thumb.length - 1;
    return r;
}
