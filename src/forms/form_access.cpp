#include "forms/form_record.h"
#include "forms/form_paint.h"
#include "forms/gadget_draw.h"
#include "forms/gadget_layout.h"
#include "forms/list_scroll.h"
#include "forms/text_wrap.h"
#include "mem.h"
#include <algorithm>
#include <cmath>
#include <cstring>

gadget *form_gadget(form *f, int label)
{
    if (f)
        for (int i = 0; i < f->gadget_count; i++)
            if (f->gadgets[i]->label == label && f->gadgets[i]->kind != GADGET_GROUP)
                return f->gadgets[i];
    return nullptr;
}

// The old text stays when there is no memory for the new one.
static int replace_text(char **place, const char *text)
{
    char *const copy = text_copy(text_or_empty(text));
    if (!copy)
        return 0;
    mem_free(*place);
    *place = copy;
    return 1;
}

void form_set_canvas(form *f, const form_canvas *canvas, void *data)
{
    if (!f)
        return;
    f->canvas = canvas ? *canvas : form_canvas {};
    f->canvas_data = data;
}

void form_set_name(form *f, int label, const char *name)
{
    gadget *const g = form_gadget(f, label);
    if (g)
        replace_text(&g->name, name);
}

const char *form_text_of(form *f, int label)
{
    const gadget *const g = form_gadget(f, label);
    return g && g->value ? g->value : "";
}

void form_set_text(form *f, int label, const char *value)
{
    gadget *const g = form_gadget(f, label);
    if (!g || !g->value)
        return;
    // The value may be the field's own.
    const size_t length = std::min(std::strlen(text_or_empty(value)), size_t(g->value_size - 1));
    std::memmove(g->value, text_or_empty(value), length);
    g->value[length] = 0;
    if (f->focus == g && f->running) {
        edit_place(&f->edit, g->value, int(length), 0);
        edit_scroll(&f->edit, g->value, rect_width(field_text_rect(f, g)), field_text_advance);
    }
    form_changed(f, g);
}

void form_set_label_text(form *f, int label, const char *text)
{
    gadget *const g = form_gadget(f, label);
    if (!g || !replace_text(&g->text, text))
        return;
    layout_extent(g);
    form_redraw(f);
}

void form_set_title(form *f, const char *title)
{
    if (!f || !replace_text(&f->title, title))
        return;
    if (f->running && f->window > 0)
        ws_set_title(f->window, f->title);
    form_redraw(f);
}

const char *form_title(form *f)
{
    return f ? f->title : "";
}

void form_set_on(form *f, int label, int on)
{
    gadget *const g = form_gadget(f, label);
    if (!g)
        return;
    if (on && (g->kind == GADGET_RADIO || g->kind == GADGET_SWATCH)) {
        radio_turn_on(f, g);
    } else {
        g->on = on != 0;
        form_changed(f, g);
    }
}

int form_is_on(form *f, int label)
{
    const gadget *const g = form_gadget(f, label);
    return g && g->on;
}

void form_show(form *f, int label, int shown)
{
    gadget *const g = form_gadget(f, label);
    if (!g || g->hidden == !shown)
        return;
    g->hidden = !shown;
    focus_leave_dead(f);
    form_redraw(f);
}

void form_enable(form *f, int label, int enabled)
{
    gadget *const g = form_gadget(f, label);
    if (!g || g->disabled == !enabled)
        return;
    g->disabled = !enabled;
    focus_leave_dead(f);
    form_changed(f, g);
}

// Pointers and texts lie in one block.
static char **items_copy(const char *const *items, int count)
{
    size_t size = sizeof(char *) * size_t(count);
    for (int i = 0; i < count; i++)
        size += std::strlen(items[i]) + 1;
    char **const copy = (char **)mem_alloc(size);
    if (!copy)
        return nullptr;
    char *text = (char *)(copy + count);
    for (int i = 0; i < count; i++) {
        copy[i] = text;
        text = std::strcpy(text, items[i]) + std::strlen(items[i]) + 1;
    }
    return copy;
}

int form_list_set(form *f, int label, const char *const *items, int count)
{
    gadget *const g = form_gadget(f, label);
    if (!g || g->kind != GADGET_LIST || count < 0)
        return -1;
    char **const copy = items_copy(items, count);
    if (!copy)
        return -1;
    mem_free(g->items);
    g->items = copy;
    g->item_count = count;
    g->first_item = 0;
    g->picked = -1;
    if (f->held == g)
        input_release_all(f);
    f->click_item = -1;
    form_changed(f, g);
    return 0;
}

const char *form_list_picked(form *f, int label)
{
    const gadget *const g = form_gadget(f, label);
    return g && g->kind == GADGET_LIST && g->picked >= 0 && g->picked < g->item_count ? g->items[g->picked] : nullptr;
}

void form_focus(form *f, int label)
{
    gadget *const g = form_gadget(f, label);
    if (!g || !gadget_takes_keys(g) || !gadget_is_live(g))
        return;
    f->focus_called = 1;
    focus_give(f, g, 1);
}

void form_redraw(form *f)
{
    if (!f || !f->running)
        return;
    if (form_is_drawn(f))
        form_draw(f);
    else
        f->stale = 1;
}

void form_size_for_text(form *, double *width_out, double *height_out, const char *text)
{
    const forms_style &style = *forms_get_style();
    int widest = 0;
    for (const char *line = text_or_empty(text);; line++) {
        const char *const end = text_line_end(line);
        widest = std::max(widest, text_pixels(style.text_font, line, int(end - line)));
        line = end;
        if (!*end)
            break;
    }
    *width_out = std::ceil(widest / style.scale);
    *height_out = std::ceil(text_line_count(text_or_empty(text)) * ws_font_height(style.text_font) / style.scale);
}
