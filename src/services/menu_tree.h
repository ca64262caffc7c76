// menu_tree.h - the rows of the menu bar with their state. A row is named by its index in the list that was installed.
#pragma once
#include <string>

constexpr int MENU_NO_ROW = -1;        // as a parent: the bar itself

struct menu_item {
    int depth, id;                     // as in ws_menu_row
    bool dash, checked, enabled;
    std::string label;                 // without the mnemonic marks
    int mnemonic_at;                   // character of the label, -1 none
};

int menu_row_count();
const menu_item &menu_row(int row);
int menu_first_child(int parent);      // MENU_NO_ROW when there is none
int menu_next_sibling(int row);
int menu_parent(int row);
bool menu_has_children(int row);
bool menu_can_be_chosen(int row);      // no dash, not grey
char menu_mnemonic(int row);           // lower case, 0 none
