#include "forms/form_record.h"
#include "forms/gadget_layout.h"
#include "mem.h"
#include <cstring>

static constexpr int GADGET_ROOM = 16;   // the list of gadgets grows by so many

char *text_copy(const char *text)
{
    if (!text)
        return nullptr;
    const size_t size = std::strlen(text) + 1;
    char *const copy = (char *)mem_alloc(size);
    if (copy)
        std::memcpy(copy, text, size);
    return copy;
}

form *form_create(int label, const char *title, double width, double height)
{
    form *const f = (form *)mem_calloc(1, sizeof(form));
    if (!f)
        return nullptr;
    f->title = text_copy(text_or_empty(title));
    if (!f->title) {
        mem_free(f);
        return nullptr;
    }
    f->label = label;
    f->width = width;
    f->height = height;
    f->timer = f->watch_timer = f->click_item = -1;
    f->next = all_forms;
    all_forms = f;
    return f;
}

static void gadget_free(gadget *g)
{
    mem_free(g->text);
    mem_free(g->second_text);
    mem_free(g->name);
    mem_free(g->value);
    mem_free(g->items);
    mem_free(g);
}

void form_free(form *f)
{
    if (!f || f->running)
        return;
    for (form **link = &all_forms; *link; link = &(*link)->next) {
        if (*link == f) {
            *link = f->next;
            break;
        }
    }
    for (int i = 0; i < f->gadget_count; i++)
        gadget_free(f->gadgets[i]);
    mem_free(f->gadgets);
    mem_free(f->title);
    mem_free(f);
}

static int make_room(form *f)
{
    if (f->gadget_count < f->gadget_room)
        return 1;
    gadget **const larger = (gadget **)mem_realloc(f->gadgets, sizeof(gadget *) * size_t(f->gadget_room + GADGET_ROOM));
    if (!larger)
        return 0;
    f->gadgets = larger;
    f->gadget_room += GADGET_ROOM;
    return 1;
}

// A gadget that is not in the form yet, for `enter` to take in; null without memory, and the form is then incomplete.
static gadget *new_gadget(form *f, int label, int kind, double x0, double y0, double x1, double y1, const char *text)
{
    if (!f)
        return nullptr;
    gadget *const g = make_room(f) ? (gadget *)mem_calloc(1, sizeof(gadget)) : nullptr;
    if (!g) {
        f->incomplete = 1;
        return nullptr;
    }
    g->label = label;
    g->kind = kind;
    g->x0 = x0;
    g->y0 = y0;
    g->x1 = x1;
    g->y1 = y1;
    g->picked = -1;
    g->text = text_copy(text_or_empty(text));
    return g;
}

// Takes the gadget in, or frees it when it did not get all its memory.
static gadget *enter(form *f, gadget *g, int complete = 1)
{
    if (!g)
        return nullptr;
    if (!g->text || !complete) {
        gadget_free(g);
        f->incomplete = 1;
        return nullptr;
    }
    layout_extent(g);
    f->gadgets[f->gadget_count++] = g;
    return g;
}

gadget *form_add_group(form *f, double x0, double y0, double x1, double y1, const char *text)
{
    return enter(f, new_gadget(f, 0, GADGET_GROUP, x0, y0, x1, y1, text));
}

gadget *form_add_label(form *f, int label, double x, double y, const char *text)
{
    return enter(f, new_gadget(f, label, GADGET_LABEL, x, y, x, y, text));
}

gadget *form_add_button(form *f, int label, double x0, double y0, double x1, double y1, const char *text)
{
    return enter(f, new_gadget(f, label, GADGET_BUTTON, x0, y0, x1, y1, text));
}

gadget *form_add_accept(form *f, int label, double x, double y)
{
    gadget *const g = new_gadget(f, label, GADGET_ACCEPT, x, y, x + FORM_SYMBOL_WIDTH, y + FORM_SYMBOL_HEIGHT, "");
    if (g)
        g->is_default = 1;
    return enter(f, g);
}

gadget *form_add_cancel(form *f, int label, double x, double y)
{
    return enter(f, new_gadget(f, label, GADGET_CANCEL, x, y, x + FORM_SYMBOL_WIDTH, y + FORM_SYMBOL_HEIGHT, ""));
}

gadget *form_add_toggle(form *f, int label, double x, double y, const char *text, const char *second_text, int on)
{
    gadget *const g = new_gadget(f, label, GADGET_TOGGLE, x, y, x, y + FORM_ROW, text);
    if (g) {
        g->on = on != 0;
        g->second_text = text_copy(second_text);
    }
    return enter(f, g, !second_text || (g && g->second_text));
}

gadget *form_add_radio(form *f, int label, int group, double x, double y, const char *text, int on)
{
    gadget *g = new_gadget(f, label, GADGET_RADIO, x, y, x, y + FORM_ROW, text);
    if (g)
        g->group = group;
    g = enter(f, g);
    if (g && on)
        radio_turn_on(f, g);
    return g;
}

gadget *form_add_swatch(form *f, int label, int group, double x0, double y0, double x1, double y1, int colour, int on)
{
    gadget *g = new_gadget(f, label, GADGET_SWATCH, x0, y0, x1, y1, "");
    if (g) {
        g->group = group;
        g->colour = colour;
    }
    g = enter(f, g);
    if (g && on)
        radio_turn_on(f, g);
    return g;
}

gadget *form_add_field(form *f, int label, double x0, double y0, double x1, const char *text, double label_width, int value_size)
{
    gadget *const g = new_gadget(f, label, GADGET_FIELD, x0, y0, x1, y0 + FORM_ROW, text);
    if (g) {
        g->label_width = label_width;
        g->value_size = value_size > 0 ? value_size : 1;
        g->value = (char *)mem_calloc(size_t(g->value_size), 1);
    }
    return enter(f, g, g && g->value);
}

gadget *form_add_slider(form *f, int label, double x0, double y0, double x1, const char *text, double low, double high, double position, double step)
{
    gadget *const g = new_gadget(f, label, GADGET_SLIDER, x0, y0, x1, y0 + FORM_ROW, text);
    if (g) {
        g->low = low;
        g->high = high;
        g->position = position;
        g->step = step;
        g->show_value = 1;
    }
    return enter(f, g);
}

gadget *form_add_list(form *f, int label, double x0, double y0, double x1, double y1, const char *text)
{
    return enter(f, new_gadget(f, label, GADGET_LIST, x0, y0, x1, y1, text));
}
