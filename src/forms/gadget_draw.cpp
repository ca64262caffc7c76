// Face and bevels are greys; the focus is always blue, so is the selection of the gadget that has it.
#include "forms/gadget_draw.h"
#include "forms/form_paint.h"
#include "forms/gadget_layout.h"
#include "forms/list_scroll.h"
#include "forms/text_wrap.h"
#include <algorithm>
#include <cstring>

static const forms_style &style()
{
    return *forms_get_style();
}

static int text_length(const char *text)
{
    return int(std::strlen(text));
}

static int has_focus(const form *f, const gadget *g)
{
    return f->focus == g && f->running;
}

static void draw_label_text(const form *f, const gadget *g, ws_rect r)
{
    paint_text(f, style().text_font, r, text_or_empty(g->text), text_length(text_or_empty(g->text)), TEXT_LEFT,
               style().palette.black, g->disabled);
}

// A white box with a sunken edge; the edge is blue when the gadget has the focus.
static void draw_sunken_box(const form *f, const gadget *g, ws_rect r)
{
    const forms_palette &colours = style().palette;
    paint_bevel(f, r, 1, 0);
    const ws_rect inner = rect_inset(r, 1);
    paint_fill(f, inner, g->disabled ? colours.light : colours.white);
    paint_outline(f, inner, line_thickness(), has_focus(f, g) ? colours.blue : g->disabled ? colours.medium : colours.black);
}

static void draw_group(const form *f, const gadget *g)
{
    const forms_palette &colours = style().palette;
    const char *const text = text_or_empty(g->text);
    const int t = line_thickness();
    ws_rect r = gadget_rect(f, g);
    ws_rect caption = r;
    caption.y1 = caption.y0 + ws_font_height(style().text_font) - 1;
    caption.x0 += form_pixels(8);
    caption.x1 = std::min(r.x1, caption.x0 + text_pixels(style().text_font, text, text_length(text)) + 4 * t - 1);
    if (*text)
        r.y0 += rect_height(caption) / 2;
    paint_outline(f, { r.x0 + t, r.y0 + t, r.x1, r.y1 }, t, colours.white);
    paint_outline(f, { r.x0, r.y0, r.x1 - t, r.y1 - t }, t, colours.medium);
    if (!*text)
        return;
    paint_fill(f, caption, colours.light);
    paint_text(f, style().text_font, { caption.x0 + 2 * t, caption.y0, caption.x1, caption.y1 }, text, text_length(text), TEXT_LEFT,
               colours.black, g->disabled);
}

static void draw_label(const form *f, const gadget *g)
{
    const int line_height = ws_font_height(style().text_font);
    ws_rect r = gadget_rect(f, g);
    if (g->symbol) {
        paint_picture(f, g->symbol, r.x0, r.y0, style().palette.black, g->colour);
        return;
    }
    // Rounding of the scaled extent must not clip the last column or row.
    r.x1 += 2;
    for (const char *line = text_or_empty(g->text);; line++) {
        const char *const end = text_line_end(line);
        r.y1 = r.y0 + line_height - 1;
        paint_text(f, style().text_font, r, line, int(end - line), TEXT_LEFT, style().palette.black, g->disabled);
        r.y0 += line_height;
        line = end;
        if (!*end)
            break;
    }
}

// The frame of a button; answers the rectangle in which its face lies, shifted while it is pressed.
static ws_rect draw_button_frame(const form *f, const gadget *g)
{
    const forms_palette &colours = style().palette;
    const int t = line_thickness();
    const int down = f->held == g && f->held_inside;
    const ws_rect outer = gadget_rect(f, g);
    ws_rect r = rect_inset(outer, t);
    if (default_button(f) == g && !g->disabled)
        paint_outline(f, outer, t, colours.black);
    paint_fill(f, r, down ? colours.medium : colours.light);
    paint_bevel(f, r, t, !down);
    r = rect_inset(r, t);
    if (has_focus(f, g))
        paint_outline(f, rect_inset(r, t), t, colours.blue);
    return down ? ws_rect{ r.x0 + t, r.y0 + t, r.x1 + t, r.y1 + t } : r;
}

static void draw_button(const form *f, const gadget *g)
{
    const ws_rect face = draw_button_frame(f, g);
    paint_text(f, style().text_font, face, text_or_empty(g->text), text_length(text_or_empty(g->text)), TEXT_CENTRED,
               style().palette.black, g->disabled);
}

static void draw_symbol_button(const form *f, const gadget *g)
{
    const ws_rect face = draw_button_frame(f, g);
    const int ink = g->disabled ? style().palette.dark : style().palette.black;
    paint_symbol_in(f, g->kind == GADGET_ACCEPT ? PAINT_ACCEPT : PAINT_CANCEL, face, ink, style().palette.light);
}

// Text right of a mark, with the ring of the focus around it.
static void draw_mark_text(const form *f, const gadget *g, ws_rect mark, const char *text)
{
    ws_rect r = gadget_rect(f, g);
    r.x0 = mark.x1 + 1 + form_pixels(3);
    if (has_focus(f, g))
        paint_outline(f, r, line_thickness(), style().palette.blue);
    r.x0 += form_pixels(3);
    paint_text(f, style().text_font, { r.x0, r.y0, r.x1 + 2, r.y1 }, text, text_length(text), TEXT_LEFT, style().palette.black,
               g->disabled);
}

static int mark_ink(const gadget *g)
{
    return g->disabled ? style().palette.dark : style().palette.black;
}

static int mark_paper(const form *f, const gadget *g)
{
    return g->disabled || (f->held == g && f->held_inside) ? style().palette.light : style().palette.white;
}

// Two halves, the one of the state standing out.
static void draw_switch(const form *f, const gadget *g, ws_rect mark)
{
    const forms_palette &colours = style().palette;
    paint_fill(f, mark, mark_ink(g));
    const ws_rect inside = rect_inset(mark, line_thickness());
    paint_fill(f, inside, g->on && !g->disabled ? colours.dark : colours.medium);
    const int middle = (inside.x0 + inside.x1) / 2;
    const ws_rect knob = g->on ? ws_rect{ middle + 1, inside.y0, inside.x1, inside.y1 } : ws_rect{ inside.x0, inside.y0, middle, inside.y1 };
    paint_fill(f, knob, mark_paper(f, g));
    paint_bevel(f, knob, line_thickness(), 1);
}

static void draw_toggle(const form *f, const gadget *g)
{
    const ws_rect mark = mark_rect(f, g);
    const int symbol = g->kind == GADGET_RADIO ? (g->on ? PAINT_RADIO_ON : PAINT_RADIO_OFF) : (g->on ? PAINT_BOX_ON : PAINT_BOX_OFF);
    if (toggle_needs_switch(g))
        draw_switch(f, g, mark);
    else
        paint_symbol_in(f, symbol, mark, mark_ink(g), mark_paper(f, g));
    draw_mark_text(f, g, mark, text_or_empty(g->on && g->second_text ? g->second_text : g->text));
}

static void draw_swatch(const form *f, const gadget *g)
{
    const forms_palette &colours = style().palette;
    const int t = line_thickness();
    const ws_rect r = gadget_rect(f, g);
    const ws_rect inner = rect_inset(r, 2 * t);
    if (g->on) {
        paint_outline(f, r, t, colours.black);
        paint_outline(f, rect_inset(r, t), t, colours.white);
    } else {
        paint_bevel(f, rect_inset(r, t), t, 0);
    }
    if (has_focus(f, g))
        paint_outline(f, r, t, colours.blue);
    paint_fill(f, inner, g->colour);
}

// --- fields --------------------------------------------------------------------------------------------------

// Text from the first character shown on; with the focus, the selection in inverse and the caret.
static void draw_field_text(const form *f, const gadget *g)
{
    const forms_palette &colours = style().palette;
    const ws_rect r = field_text_rect(f, g);
    const int focused = has_focus(f, g);
    field_edit edit = focused ? f->edit : field_edit{};
    edit_clamp(&edit, g->value);
    const char *const shown = g->value + edit.first;
    paint_text(f, style().text_font, r, shown, text_length(shown), TEXT_LEFT, colours.black, g->disabled);
    if (!focused)
        return;
    const int from = std::max(edit.first, std::min(edit.caret, edit.anchor)), to = std::max(edit.caret, edit.anchor);
    const int caret_x = r.x0 + field_text_advance(shown, edit.caret - edit.first);
    if (from < to) {
        const int left = r.x0 + field_text_advance(shown, from - edit.first);
        const int right = r.x0 + field_text_advance(shown, to - edit.first) - 1;
        const ws_rect marked = { left, r.y0, std::min(right, r.x1), r.y1 };
        paint_fill(f, marked, colours.blue);
        paint_text(f, style().text_font, marked, g->value + from, to - from, TEXT_LEFT, colours.white, 0);
    } else {
        paint_fill(f, { caret_x, r.y0, std::min(caret_x + line_thickness() - 1, r.x1 + line_thickness()), r.y1 }, colours.black);
    }
}

static void draw_field(const form *f, const gadget *g)
{
    draw_label_text(f, g, gadget_label_rect(f, g));
    draw_sunken_box(f, g, gadget_body(f, g));
    draw_field_text(f, g);
}

// --- sliders and lists -----------------------------------------------------------------------------------------

static void draw_thumb(const form *f, ws_rect r, int colour)
{
    paint_fill(f, r, colour);
    paint_bevel(f, r, line_thickness(), 1);
}

static void draw_slider(const form *f, const gadget *g)
{
    const forms_palette &colours = style().palette;
    const int t = line_thickness();
    const ws_rect track = slider_track(f, g), thumb = slider_thumb(f, g);
    const int middle = (track.y0 + track.y1) / 2;
    const ws_rect groove = { track.x0, middle - 2 * t, track.x1, middle + 2 * t };
    draw_label_text(f, g, gadget_label_rect(f, g));
    paint_fill(f, groove, colours.medium);
    if (!g->disabled)
        paint_fill(f, { groove.x0, groove.y0, thumb.x0, groove.y1 }, has_focus(f, g) ? colours.blue : colours.dark);
    paint_bevel(f, groove, t, 0);
    draw_thumb(f, thumb, colours.light);
    if (has_focus(f, g))
        paint_outline(f, rect_inset(thumb, t), t, colours.blue);
    if (g->show_value) {
        char text[64];
        slider_value_text(g, text, sizeof text);
        paint_text(f, style().text_font, slider_value_rect(f, g), text, text_length(text), TEXT_RIGHT, colours.black, g->disabled);
    }
}

static void draw_list_row(const form *f, const gadget *g, int item)
{
    const forms_palette &colours = style().palette;
    ws_rect row = list_row_rect(f, g, item);
    const int picked = item == g->picked;
    if (picked)
        paint_fill(f, row, has_focus(f, g) ? colours.blue : colours.dark);
    row.x0 += 2 * line_thickness();
    paint_text(f, style().text_font, row, g->items[item], text_length(g->items[item]), TEXT_LEFT,
               picked ? colours.white : colours.black, g->disabled);
}

static void draw_scroll_arrow(const form *f, const gadget *g, ws_rect r, int symbol)
{
    const forms_palette &colours = style().palette;
    const int idle = g->disabled || g->item_count <= list_visible_rows(f, g);
    draw_thumb(f, r, colours.light);
    paint_symbol_in(f, symbol, r, idle ? colours.medium : colours.black, colours.light);
}

static void draw_list(const form *f, const gadget *g)
{
    const forms_palette &colours = style().palette;
    draw_label_text(f, g, list_title_rect(f, g));
    draw_sunken_box(f, g, list_frame(f, g));
    const int visible = list_visible_rows(f, g);
    for (int item = g->first_item; item < std::min(g->item_count, g->first_item + visible); item++)
        draw_list_row(f, g, item);
    paint_fill(f, list_trough(f, g), colours.medium);
    draw_scroll_arrow(f, g, list_up_arrow(f, g), PAINT_UP);
    draw_scroll_arrow(f, g, list_down_arrow(f, g), PAINT_DOWN);
    if (g->item_count > visible)
        draw_thumb(f, list_thumb(f, g), colours.light);
}

// --- all -------------------------------------------------------------------------------------------------------

static void draw_kind(const form *f, const gadget *g)
{
    switch (g->kind) {
    case GADGET_GROUP:  draw_group(f, g); break;
    case GADGET_LABEL:  draw_label(f, g); break;
    case GADGET_TOGGLE:
    case GADGET_RADIO:  draw_toggle(f, g); break;
    case GADGET_SWATCH: draw_swatch(f, g); break;
    case GADGET_FIELD:  draw_field(f, g); break;
    case GADGET_SLIDER: draw_slider(f, g); break;
    case GADGET_LIST:   draw_list(f, g); break;
    case GADGET_BUTTON: draw_button(f, g); break;
    case GADGET_ACCEPT:
    case GADGET_CANCEL: draw_symbol_button(f, g); break;
    }
}

void gadget_draw(const form *f, const gadget *g)
{
    if (g->hidden)
        return;
    paint_fill(f, gadget_rect(f, g), style().palette.light);
    draw_kind(f, g);
}

static void draw_title(const form *f)
{
    const forms_palette &colours = style().palette;
    const int t = line_thickness();
    if (!f->band)
        return;
    const ws_rect band = { 2 * t, 2 * t, f->pixel_width - 1 - 2 * t, f->band - 1 };
    paint_fill(f, band, colours.dark);
    paint_text(f, style().title_font, band, text_or_empty(f->title), text_length(text_or_empty(f->title)), TEXT_CENTRED, colours.white, 0);
}

void form_draw(const form *f)
{
    const forms_palette &colours = style().palette;
    const ws_rect all = { 0, 0, f->pixel_width - 1, f->pixel_height - 1 };
    paint_no_clip(f);
    paint_fill(f, all, colours.light);
    if (f->window == 0) {
        paint_outline(f, all, line_thickness(), colours.black);
        paint_bevel(f, rect_inset(all, line_thickness()), line_thickness(), 1);
    }
    draw_title(f);
    for (int pass = 0; pass < 2; pass++)   // groups lie beneath all others
        for (int i = 0; i < f->gadget_count; i++)
            if (!f->gadgets[i]->hidden && (f->gadgets[i]->kind == GADGET_GROUP) == (pass == 0))
                draw_kind(f, f->gadgets[i]);
    if (f->canvas.draw)
        f->canvas.draw(f->window, f->canvas_data);
    ws_flush(f->window);
}
