// menu_layout.h - where the bar's menus and the rows of open menus lie, and how they look. Frame coordinates.
#pragma once
#include "services/menu_tree.h"
#include "services/ws_state.h"

struct menu_panel {
    int parent;                        // the row whose children it shows
    ws_rect rect;
    int chosen;                        // row, or MENU_NO_ROW
    int scroll;                        // pixels that a menu higher than the screen is scrolled up
};

int menu_font();
ws_rect menu_bar_item_rect(int row);   // of a row of depth 0
int menu_bar_row_at(int x, int y);     // MENU_NO_ROW when there is none

// The panel of a row's children: below a menu of the bar, beside a row of another panel; always on the screen.
menu_panel menu_panel_of(int parent, const ws_rect &parent_rect, bool beside);
ws_rect menu_row_rect(const menu_panel &panel, int row);
int menu_row_at(const menu_panel &panel, int x, int y);   // dashes too
void menu_scroll_to(menu_panel *panel, int row);
void menu_scroll_by(menu_panel *panel, int pixels);

void menu_paint_bar(int open_row);     // open_row is drawn as chosen
void menu_paint_panel(const menu_panel &panel);
