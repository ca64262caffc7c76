#include "forms/form_record.h"
#include "forms/gadget_layout.h"
#include "forms/list_scroll.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>

static constexpr int ANY_KIND = -1;

static const char *without_blanks(const char *text)
{
    while (*text == ' ')
        text++;
    return text;
}

static int same_text(const char *shown, const char *wanted, size_t length)
{
    shown = without_blanks(shown);
    return std::strlen(shown) == length && std::memcmp(shown, wanted, length) == 0;
}

static const char *kind_word(int kind)
{
    switch (kind) {
    case GADGET_ACCEPT: return "accept";
    case GADGET_CANCEL: return "cancel";
    case GADGET_LIST:   return "list";
    case GADGET_SWATCH: return "swatch";
    case GADGET_FIELD:  return "field";
    case GADGET_SLIDER: return "slider";
    default:            return "";
    }
}

static int answers_to(const gadget *g, const char *wanted, size_t length)
{
    if (g->second_text && same_text(g->second_text, wanted, length))
        return 1;
    if (*text_or_empty(g->text))
        return same_text(g->text, wanted, length);
    return same_text(*text_or_empty(g->name) ? g->name : kind_word(g->kind), wanted, length);
}

// The `turn`th of them, from 1, in the order of adding.
static gadget *find_turn(form *f, int kind, int operable, const char *wanted, size_t length, long turn)
{
    for (int i = 0; i < f->gadget_count; i++) {
        gadget *const g = f->gadgets[i];
        if (g->hidden || gadget_takes_keys(g) != operable || (kind != ANY_KIND && g->kind != kind))
            continue;
        if (answers_to(g, wanted, length) && --turn == 0)
            return g;
    }
    return nullptr;
}

static gadget *find_exactly(form *f, int kind, const char *wanted, size_t length, long turn)
{
    gadget *const g = find_turn(f, kind, 1, wanted, length, turn);
    return g ? g : find_turn(f, kind, 0, wanted, length, turn);
}

gadget *form_find_kind(form *f, int kind, const char *text)
{
    if (!f || !text)
        return nullptr;
    const char *const wanted = without_blanks(text);
    if (gadget *const g = find_exactly(f, kind, wanted, std::strlen(wanted), 1))
        return g;
    const char *const mark = std::strrchr(wanted, '#');
    const long turn = mark ? std::strtol(mark + 1, nullptr, 10) : 0;
    return turn > 0 ? find_exactly(f, kind, wanted, size_t(mark - wanted), turn) : nullptr;
}

gadget *form_find(form *f, const char *text)
{
    return form_find_kind(f, ANY_KIND, text);
}

static void to_frame(const form *f, int x, int y, int *x_out, int *y_out)
{
    *x_out = f->x + x;
    *y_out = f->y + y;
}

int form_point_of(form *f, gadget *g, double across, int *x_out, int *y_out)
{
    if (!f || !g)
        return -1;
    ws_rect body = gadget_body(f, g);
    if (g->kind == GADGET_SLIDER)
        body = slider_middles(f, g);
    const double share = std::clamp(across, 0.0, 1.0);
    to_frame(f, body.x0 + int(share * (rect_width(body) - 1) + 0.5), (body.y0 + body.y1) / 2, x_out, y_out);
    return 0;
}

int form_list_item_point(form *f, gadget *g, const char *item, int *x_out, int *y_out)
{
    if (!f || !g || g->kind != GADGET_LIST || !item)
        return -1;
    for (int i = 0; i < g->item_count; i++) {
        if (std::strcmp(g->items[i], item) != 0)
            continue;
        list_show_item(f, g, i);
        form_changed(f, g);
        const ws_rect row = list_row_rect(f, g, i);
        to_frame(f, (row.x0 + row.x1) / 2, (row.y0 + row.y1) / 2, x_out, y_out);
        return 0;
    }
    return -1;
}
