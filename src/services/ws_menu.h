// ws_menu.h - the menu bar of the frame. The tree is a flat list; the services lay it out, open it by mouse, Alt+letter
// and F10, and post the identifier of a chosen item as a WS_USER event.
#pragma once

struct ws_menu_row {
    int depth;                         // 0 a menu of the bar, 1 its items, 2 items of a submenu
    const char *text;                  // '&' before the mnemonic letter; null: a dash
    int id;                            // 0 for a menu, a submenu or a dash
};

int ws_menu_install(const ws_menu_row *rows, int count);  // rows must live as long as the services
int ws_menu_set_check(int id, int on);
int ws_menu_set_enabled(int id, int on);
int ws_menu_checked(int id);           // 1, 0, or -1 for an unknown identifier
int ws_menu_enabled(int id);
int ws_menu_height();                  // pixels that the bar takes above the frame
int ws_menu_is_open();
