// menu_bar.cpp - which menus are open, and what pointer and keys do to them. Open menus form a chain: the first hangs from the
// bar, each further one from the chosen row of the one before.
#include "services/menu_bar.h"
#include "services/menu_layout.h"
#include "services/report_box.h"
#include "services/window_drag.h"

#include <cctype>

static constexpr int DEPTH_MAX = 4;
static constexpr int WHEEL_PIXELS = 44;

static menu_panel panels[DEPTH_MAX];
static int panel_count;
static int bar_row = MENU_NO_ROW;      // whose menu is open
static bool stays_open;                // the press that opened it is over: menus stay until the next press

int ws_menu_is_open()
{
    return bar_row != MENU_NO_ROW;
}

void menu_bar_start()
{
    panel_count = 0;
    bar_row = MENU_NO_ROW;
}

void menu_bar_stop()
{
    menu_bar_start();
    ws_menu_install(nullptr, 0);
}

void menu_bar_paint(const ws_rect &)
{
    menu_paint_bar(bar_row);
}

void menu_open_paint(const ws_rect &area)
{
    window_drag_paint();
    for (int i = 0; i < panel_count; i++)
        if (rect_meet(panels[i].rect, area))
            menu_paint_panel(panels[i]);
    plain_box_paint();
}

static void damage_bar()
{
    damage_add({ 0, -ws_menu_height(), ws_state.info.width - 1, -1 });
}

// --- opening and closing -----------------------------------------------------------------------------------------

static void close_panels_from(int index)
{
    for (int i = index; i < panel_count; i++)
        damage_add(panels[i].rect);
    if (panel_count > index)
        panel_count = index;
}

static void open_panel(int parent, const ws_rect &parent_rect, bool beside)
{
    if (panel_count == DEPTH_MAX || !menu_has_children(parent))
        return;
    panels[panel_count] = menu_panel_of(parent, parent_rect, beside);
    damage_add(panels[panel_count].rect);
    panel_count++;
}

void menu_close()
{
    close_panels_from(0);
    if (bar_row != MENU_NO_ROW)
        damage_bar();
    bar_row = MENU_NO_ROW;
}

static void open_bar_menu(int row)
{
    menu_close();
    bar_row = row;
    damage_bar();
    open_panel(row, menu_bar_item_rect(row), false);
}

static void choose_row(int index, int row)
{
    menu_panel &panel = panels[index];
    if (panel.chosen != row)
        close_panels_from(index + 1);
    panel.chosen = row;
    if (row != MENU_NO_ROW)
        menu_scroll_to(&panel, row);
    damage_add(panel.rect);
}

static void open_submenu(int index)
{
    const int row = panels[index].chosen;
    if (panel_count == index + 1)
        open_panel(row, menu_row_rect(panels[index], row), true);
}

// Grey rows and dashes do nothing.
static void run_row(int row)
{
    if (!menu_can_be_chosen(row))
        return;
    const int id = menu_row(row).id;
    menu_close();
    ws_post_user_event(id);
}

// --- pointer -----------------------------------------------------------------------------------------------------

// The open menu under a point, innermost first; -1 when there is none.
static int panel_at(int x, int y)
{
    for (int i = panel_count - 1; i >= 0; i--)
        if (rect_has(panels[i].rect, x, y))
            return i;
    return -1;
}

void menu_press(int x, int y)
{
    const int row = menu_bar_row_at(x, y);
    if (row != MENU_NO_ROW && row != bar_row) {
        open_bar_menu(row);
        stays_open = false;
    } else if (row != MENU_NO_ROW || panel_at(x, y) < 0) {
        menu_close();
    } else {
        menu_move(x, y);
    }
}

void menu_move(int x, int y)
{
    const int row = menu_bar_row_at(x, y);
    if (row != MENU_NO_ROW) {
        if (row != bar_row)
            open_bar_menu(row);
        return;
    }
    const int index = panel_at(x, y);
    if (index < 0) {
        // The pointer on its way from a row to its submenu may leave both; only the last menu lets its row go.
        if (panel_count && panels[panel_count - 1].chosen != MENU_NO_ROW)
            choose_row(panel_count - 1, MENU_NO_ROW);
        return;
    }
    const int under = menu_row_at(panels[index], x, y);
    if (under == MENU_NO_ROW || under == panels[index].chosen)
        return;
    choose_row(index, menu_can_be_chosen(under) ? under : MENU_NO_ROW);
    if (menu_can_be_chosen(under))
        open_submenu(index);
}

void menu_release(int x, int y)
{
    const bool opened_by_this_press = !stays_open;
    stays_open = true;
    const int index = panel_at(x, y);
    if (index >= 0) {
        const int row = menu_row_at(panels[index], x, y);
        if (row != MENU_NO_ROW && !menu_has_children(row))
            run_row(row);
        return;
    }
    const bool over_bar_row = menu_bar_row_at(x, y) == bar_row;
    if (over_bar_row && menu_row(bar_row).id != 0)
        run_row(bar_row);
    else if (!over_bar_row && opened_by_this_press)
        menu_close();
}

void menu_wheel(int steps)
{
    if (!panel_count)
        return;
    menu_scroll_by(&panels[panel_count - 1], -steps * WHEEL_PIXELS);
    damage_add(panels[panel_count - 1].rect);
}

// --- keyboard ----------------------------------------------------------------------------------------------------

// The next row behind `row` that can be chosen, around the end; from the start when row is MENU_NO_ROW.
static int next_choice(int parent, int row)
{
    const int first = menu_first_child(parent);
    int next = row;
    for (int tries = 0; tries <= menu_row_count(); tries++) {
        next = next == MENU_NO_ROW ? first : menu_next_sibling(next);
        if (next != MENU_NO_ROW && menu_can_be_chosen(next))
            return next;
    }
    return MENU_NO_ROW;
}

// The row before it, around the start; the last one when row is MENU_NO_ROW.
static int previous_choice(int parent, int row)
{
    int previous = MENU_NO_ROW;
    for (int r = menu_first_child(parent); r != MENU_NO_ROW; r = menu_next_sibling(r)) {
        if (r == row && previous != MENU_NO_ROW)
            break;
        if (menu_can_be_chosen(r))
            previous = r;
    }
    return previous;
}

static void open_with_keys(int row)
{
    open_bar_menu(row);
    stays_open = true;
    if (panel_count)
        choose_row(0, next_choice(row, MENU_NO_ROW));
}

void menu_open_first()
{
    const int row = next_choice(MENU_NO_ROW, MENU_NO_ROW);
    if (row != MENU_NO_ROW)
        open_with_keys(row);
}

static void step_in(int direction)
{
    if (!panel_count)
        return;
    menu_panel &panel = panels[panel_count - 1];
    const int row = direction > 0 ? next_choice(panel.parent, panel.chosen) : previous_choice(panel.parent, panel.chosen);
    if (row != MENU_NO_ROW)
        choose_row(panel_count - 1, row);
}

static void step_along_bar(int direction)
{
    open_with_keys(direction > 0 ? next_choice(MENU_NO_ROW, bar_row) : previous_choice(MENU_NO_ROW, bar_row));
}

static void enter_submenu()
{
    open_submenu(panel_count - 1);
    const menu_panel &panel = panels[panel_count - 1];
    choose_row(panel_count - 1, next_choice(panel.parent, MENU_NO_ROW));
}

static bool submenu_is_chosen()
{
    const int chosen = panel_count ? panels[panel_count - 1].chosen : MENU_NO_ROW;
    return chosen != MENU_NO_ROW && menu_has_children(chosen);
}

static void take_chosen()
{
    const int row = panel_count ? panels[panel_count - 1].chosen : bar_row;
    if (submenu_is_chosen())
        enter_submenu();
    else if (row != MENU_NO_ROW)
        run_row(row);
}

void menu_key(int key)
{
    switch (key) {
    case KEY_UP:
        step_in(-1);
        break;
    case KEY_DOWN:
        step_in(1);
        break;
    case KEY_LEFT:
        if (panel_count > 1)
            close_panels_from(panel_count - 1);
        else
            step_along_bar(-1);
        break;
    case KEY_RIGHT:
        if (submenu_is_chosen())
            enter_submenu();
        else
            step_along_bar(1);
        break;
    case KEY_RETURN:
        take_chosen();
        break;
    case KEY_ESC:
        if (panel_count > 1)
            close_panels_from(panel_count - 1);
        else
            menu_close();
        break;
    case KEY_F10:
        menu_close();
        break;
    default:
        break;
    }
}

// The next row with that mnemonic behind `row`, around the end.
static int next_with_mnemonic(int parent, int row, char letter)
{
    const char wanted = char(std::tolower(uint8_t(letter)));
    int next = row;
    for (int tries = 0; tries <= menu_row_count(); tries++) {
        next = next_choice(parent, next);
        if (next == MENU_NO_ROW || menu_mnemonic(next) == wanted)
            return next;
    }
    return MENU_NO_ROW;
}

int menu_open_by_letter(char letter)
{
    const int row = next_with_mnemonic(MENU_NO_ROW, bar_row, letter);
    if (row == MENU_NO_ROW)
        return 0;
    open_with_keys(row);
    return 1;
}

// A letter that one row has runs it. Rows that share a letter are chosen in turn, and Return runs the chosen one.
void menu_letter(char letter)
{
    if (!panel_count)
        return;
    const int index = panel_count - 1;
    const int row = next_with_mnemonic(panels[index].parent, panels[index].chosen, letter);
    if (row == MENU_NO_ROW)
        return;
    const bool shared = next_with_mnemonic(panels[index].parent, row, letter) != row;
    // The first of several is where the first press goes, wherever the arrow keys had been.
    const bool cycling = panels[index].chosen != MENU_NO_ROW && menu_mnemonic(panels[index].chosen) == char(std::tolower(uint8_t(letter)));
    choose_row(index, shared && !cycling ? next_with_mnemonic(panels[index].parent, MENU_NO_ROW, letter) : row);
    if (!shared)
        take_chosen();
}
