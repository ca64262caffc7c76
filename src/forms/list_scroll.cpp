#include "forms/list_scroll.h"
#include "forms/gadget_layout.h"
#include <algorithm>
#include <cctype>
#include <cstdint>

scroll_thumb scroll_thumb_of(int trough, int shortest, int rows, int visible, int first)
{
    if (trough <= 0)
        return { 0, 0 };
    if (rows <= visible)
        return { 0, trough };
    const int length = std::min(trough, std::max(shortest, int(int64_t{trough} * visible / rows)));
    return { int(int64_t{trough - length} * first / (rows - visible)), length };
}

int scroll_first_at(int trough, int thumb_length, int rows, int visible, int start)
{
    const int travel = trough - thumb_length;
    if (travel <= 0 || rows <= visible)
        return 0;
    const int64_t first = (int64_t{start} * (rows - visible) + travel / 2) / travel;
    return int(std::clamp<int64_t>(first, 0, rows - visible));
}

int list_visible_rows(const form *f, const gadget *g)
{
    return std::max(1, rect_height(list_rows_rect(f, g)) / std::max(1, list_row_height()));
}

int list_item_at(const form *f, const gadget *g, int x, int y)
{
    const ws_rect rows = list_rows_rect(f, g);
    if (!rect_contains(rows, x, y))
        return -1;
    const int row = (y - rows.y0) / std::max(1, list_row_height());
    const int item = g->first_item + row;
    return row < list_visible_rows(f, g) && item < g->item_count ? item : -1;
}

void list_scroll_to(const form *f, gadget *g, int first)
{
    g->first_item = std::clamp(first, 0, std::max(0, g->item_count - list_visible_rows(f, g)));
}

void list_show_item(const form *f, gadget *g, int item)
{
    const int visible = list_visible_rows(f, g);
    if (item < g->first_item)
        list_scroll_to(f, g, item);
    else if (item >= g->first_item + visible)
        list_scroll_to(f, g, item - visible + 1);
}

int list_find_initial(const gadget *g, int character)
{
    for (int i = 1; i <= g->item_count; i++) {
        const int item = (std::max(g->picked, -1) + i) % g->item_count;
        if (std::tolower(uint8_t(g->items[item][0])) == std::tolower(character))
            return item;
    }
    return -1;
}
