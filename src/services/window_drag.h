// window_drag.h - the operator's work on the frames of windows with the left button: captions and icons move, borders resize behind
// an outline, caption buttons act when they are let go over the same button, a click on an icon brings its window back.
// All positions are in frame coordinates.
#pragma once
#include "services/ws_state.h"

// 1 when the press lay on a window's frame or icon and is therefore taken.
int  window_drag_press(int w, window_part part, int x, int y);
void window_drag_move(int x, int y);
void window_drag_release(int x, int y);
void window_drag_cancel();             // puts back what was moved
bool window_drag_active();
void window_drag_forget(int w);
void window_drag_paint();              // the outline; from inside menu_open_paint
