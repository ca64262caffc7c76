// menu.h - the state of menu items by the keyword of their command, and the running of commands by menu identifier.
#pragma once
#include <cstdint>

// One line of the frame's menu, in the order of the screen.
struct menu_item {
    int depth;                         // 0 a menu of the bar, 1 its items, 2 items of a submenu
    const char *text;                  // '&' before the mnemonic letter; null: a dash
    int id;                            // 0 for a menu, a submenu or a dash
    const char *keyword;               // of the row that carries the identifier
};
extern const menu_item menu_tree[];
extern const int menu_tree_count;

void menu_map_commands();              // installs the tree, writes the identifiers of the 69 rows, sets the first state
void menu_set_id(const char *keyword, uint32_t a, uint32_t id, uint32_t b);
void menu_check(const char *keyword, int on);    // unknown keywords do nothing
void menu_enable(const char *keyword, int on);
void menu_cut_mode(bool on);           // while the cut window is up
void menu_update_split();              // split_screen_enable: enabled exactly when picture_count is 1 and no split is on
void run_menu_id(uint32_t id);         // the first row with that identifier; unknown ones do nothing

// The identifier of "40017", "View/Zoom In" or "Transforms/Mono/Red": texts without '&'; the dots behind may be left out. -1: no such item.
int menu_id_of(const char *path);
