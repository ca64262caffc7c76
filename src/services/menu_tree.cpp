#include "services/menu_tree.h"
#include "services/menu_bar.h"
#include "services/ws_state.h"

#include <cctype>
#include <vector>

static std::vector<menu_item> items;

// '&' stands before the mnemonic letter; only the first counts.
static menu_item item_of_row(const ws_menu_row &row)
{
    menu_item item { row.depth, row.id, row.text == nullptr, false, true, "", -1 };
    for (const char *c = row.text ? row.text : ""; *c; c++) {
        if (*c != '&')
            item.label += *c;
        else if (item.mnemonic_at < 0)
            item.mnemonic_at = int(item.label.size());
    }
    return item;
}

int ws_menu_install(const ws_menu_row *rows, int count)
{
    menu_close();
    items.clear();
    for (int i = 0; i < count; i++)
        items.push_back(item_of_row(rows[i]));
    if (ws_state.entered)
        damage_add({ 0, -ws_menu_height(), ws_state.info.width - 1, -1 });
    return 0;
}

// Sets a state of all items with that identifier. -1 when there is none.
static int set_state(int id, bool menu_item::*state, bool on)
{
    int result = -1;
    for (menu_item &item : items) {
        if (id == 0 || item.id != id)
            continue;
        item.*state = on;
        result = 0;
    }
    if (ws_menu_is_open())
        damage_add_all();
    return result;
}

static int state_of(int id, bool menu_item::*state)
{
    for (const menu_item &item : items)
        if (id != 0 && item.id == id)
            return item.*state;
    return -1;
}

int ws_menu_set_check(int id, int on)   { return set_state(id, &menu_item::checked, on != 0); }
int ws_menu_set_enabled(int id, int on) { return set_state(id, &menu_item::enabled, on != 0); }
int ws_menu_checked(int id)             { return state_of(id, &menu_item::checked); }
int ws_menu_enabled(int id)             { return state_of(id, &menu_item::enabled); }

int menu_row_count()
{
    return int(items.size());
}

const menu_item &menu_row(int row)
{
    return items[size_t(row)];
}

int menu_first_child(int parent)
{
    const int row = parent + 1;        // MENU_NO_ROW is the row before the first
    const int depth = parent < 0 ? 0 : items[size_t(parent)].depth + 1;
    return row < menu_row_count() && items[size_t(row)].depth == depth ? row : MENU_NO_ROW;
}

int menu_next_sibling(int row)
{
    const int depth = items[size_t(row)].depth;
    for (int next = row + 1; next < menu_row_count() && items[size_t(next)].depth >= depth; next++)
        if (items[size_t(next)].depth == depth)
            return next;
    return MENU_NO_ROW;
}

int menu_parent(int row)
{
    int parent = row;
    while (parent >= 0 && items[size_t(parent)].depth >= items[size_t(row)].depth)
        parent--;
    return parent;
}

bool menu_has_children(int row)
{
    return menu_first_child(row) != MENU_NO_ROW;
}

bool menu_can_be_chosen(int row)
{
    return !items[size_t(row)].dash && items[size_t(row)].enabled;
}

char menu_mnemonic(int row)
{
    const menu_item &item = items[size_t(row)];
    if (item.dash || item.mnemonic_at < 0 || item.mnemonic_at >= int(item.label.size()))
        return 0;
    return char(std::tolower(uint8_t(item.label[size_t(item.mnemonic_at)])));
}
