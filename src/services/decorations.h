// decorations.h - borders, captions, buttons and icons of the windows inside the frame.
#pragma once
#include "services/ws_state.h"

// The titled window on top of the others, which shows the active caption; -1 when there is none, and under a pop-up.
int active_look();
void damage_active_caption();          // before and after whatever changes that; nothing else of the window depends on it

// Which part of an uncollapsed window a point of its outer rectangle is.
window_part frame_part(const window_record &window, int x, int y);

// Paints a titled window's border and caption, or the line around a pop-up, within the rectangle being composed.
void decoration_paint(int w, const window_record &window);
void icon_paint(int w);

// Gives an icon that has no place the first free one in the rows above the strip.
void icon_find_place(int w);
void decorations_forget(int w);        // a deleted window's pressed button
