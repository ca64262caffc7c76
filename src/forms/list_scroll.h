// list_scroll.h - which rows of a list are in sight, and the thumb of its scroll bar.
#pragma once
#include "forms/form_record.h"

struct scroll_thumb {
    int start, length;                 // pixels along the trough
};

// The thumb's share of the trough is that of the visible rows; it fills the trough when all are visible.
scroll_thumb scroll_thumb_of(int trough, int shortest, int rows, int visible, int first);
int scroll_first_at(int trough, int thumb_length, int rows, int visible, int start);  // first row for a thumb dragged to `start`

int list_visible_rows(const form *f, const gadget *g);         // whole ones, at least 1
int list_item_at(const form *f, const gadget *g, int x, int y);   // -1 when none is there
void list_scroll_to(const form *f, gadget *g, int first);      // kept within the items
void list_show_item(const form *f, gadget *g, int item);       // scrolls as little as needed
int list_find_initial(const gadget *g, int character);         // next item after the picked one that begins so, any case; -1 when none
