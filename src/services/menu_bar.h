// menu_bar.h - the menu bar's side towards the pump. Positions are in frame coordinates: the bar lies at y below 0.
#pragma once

void menu_press(int x, int y);         // opens, closes, switches: any press while a menu is open, or one in the bar
void menu_move(int x, int y);          // only while a menu is open
void menu_release(int x, int y);
void menu_wheel(int steps);
void menu_key(int key);                // backend_key, only while a menu is open
void menu_letter(char letter);         // a letter typed while a menu is open: mnemonics of its items
// Opens the menu of the bar with that mnemonic; pressed again, the next one that has it. 1 when there is one.
int  menu_open_by_letter(char letter);
void menu_open_first();                // F10
void menu_close();
