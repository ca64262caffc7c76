#include "forms/form_record.h"
#include "forms/gadget_layout.h"

int gadget_is_live(const gadget *g)
{
    return !g->hidden && !g->disabled;
}

int gadget_takes_keys(const gadget *g)
{
    return g->kind != GADGET_GROUP && g->kind != GADGET_LABEL;
}

static int is_radio(const gadget *g)
{
    return g->kind == GADGET_RADIO || g->kind == GADGET_SWATCH;
}

static int same_group(const gadget *a, const gadget *b)
{
    return is_radio(a) && is_radio(b) && a->group == b->group;
}

static int index_of(const form *f, const gadget *g)
{
    for (int i = 0; i < f->gadget_count; i++)
        if (f->gadgets[i] == g)
            return i;
    return -1;
}

gadget *radio_in_group(form *f, const gadget *from, int direction)
{
    const int count = f->gadget_count, start = index_of(f, from);
    for (int i = 1; i <= count; i++) {
        gadget *const g = f->gadgets[(start + direction * i + count * i) % count];
        if (same_group(g, from) && gadget_is_live(g))
            return g;
    }
    return nullptr;
}

void radio_turn_on(form *f, gadget *g)
{
    for (int i = 0; i < f->gadget_count; i++) {
        gadget *const other = f->gadgets[i];
        if (same_group(other, g) && other->on != (other == g)) {
            other->on = other == g;
            form_changed(f, other);
        }
    }
}

// A group of radios is one stop: the member that is on, else its first live one.
static int is_stop(const form *f, const gadget *g)
{
    if (!gadget_takes_keys(g) || !gadget_is_live(g))
        return 0;
    if (!is_radio(g) || g->on)
        return 1;
    for (int i = 0; i < f->gadget_count; i++) {
        const gadget *const other = f->gadgets[i];
        if (same_group(other, g) && gadget_is_live(other) && (other->on || i < index_of(f, g)))
            return 0;
    }
    return 1;
}

void focus_give(form *f, gadget *g, int select_all)
{
    gadget *const before = f->focus;
    f->focus = g;
    f->edit = {};
    if (g && g->kind == GADGET_FIELD && select_all) {
        edit_select_all(&f->edit, g->value);
        if (f->running)
            edit_scroll(&f->edit, g->value, rect_width(field_text_rect(f, g)), field_text_advance);
    }
    if (before && before != g)
        form_changed(f, before);
    if (g)
        form_changed(f, g);
}

void focus_step(form *f, int direction)
{
    const int count = f->gadget_count;
    const int start = f->focus ? index_of(f, f->focus) : direction > 0 ? -1 : count;
    for (int i = 1; i <= count; i++) {
        gadget *const g = f->gadgets[((start + direction * i) % count + count) % count];
        // The rest of the group that is being left is skipped.
        if (is_stop(f, g) && !(f->focus && g != f->focus && same_group(g, f->focus))) {
            focus_give(f, g, 1);
            return;
        }
    }
}

gadget *focus_next_field(form *f)
{
    for (int i = index_of(f, f->focus) + 1; i < f->gadget_count; i++)
        if (f->gadgets[i]->kind == GADGET_FIELD && gadget_is_live(f->gadgets[i]))
            return f->gadgets[i];
    return nullptr;
}

gadget *default_button(const form *f)
{
    gadget *accept = nullptr;
    for (int i = 0; i < f->gadget_count; i++) {
        gadget *const g = f->gadgets[i];
        if (!g->is_default || !gadget_is_live(g))
            continue;
        if (g->kind == GADGET_BUTTON)
            return g;
        if (g->kind == GADGET_ACCEPT && !accept)
            accept = g;
    }
    return accept;
}

void focus_first(form *f)
{
    gadget *g = f->focus && gadget_is_live(f->focus) ? f->focus : nullptr;
    for (int i = 0; !g && i < f->gadget_count; i++)
        if (f->gadgets[i]->kind == GADGET_FIELD && gadget_is_live(f->gadgets[i]))
            g = f->gadgets[i];
    if (!g)
        g = default_button(f);
    f->focus = nullptr;
    if (g)
        focus_give(f, g, 1);
    else
        focus_step(f, 1);
}

void focus_leave_dead(form *f)
{
    if (f->held && !gadget_is_live(f->held))
        input_release_all(f);
    if (!f->running || !f->focus || gadget_is_live(f->focus))
        return;
    gadget *const dead = f->focus;
    focus_step(f, 1);
    if (f->focus == dead)
        focus_give(f, nullptr, 0);
}
