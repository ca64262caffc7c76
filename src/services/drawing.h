// drawing.h - what raster, vector and text drawing share: the target of an operation, its clip and its colours.
#pragma once
#include "services/pixel_store.h"
#include <climits>

constexpr ws_rect CLIP_NONE = { 0, 0, INT_MAX, INT_MAX };  // as large as the window, whatever its size
constexpr int LINE_SOLID = 65535;

// Where an operation on window w draws. With `window` null there is nothing to do, and `result` is what the operation answers:
// 0 for a window that is not shown, is collapsed, has no memory or is clipped away, -1 for no window.
struct drawing_target {
    window_record *window;
    ws_rect clip;                      // in the window's coordinates, not empty, inside of its store
    int result;
};
drawing_target begin_drawing(int w);
drawing_target begin_unclipped(int w);  // the same for operations that take no notice of ws_set_clip

// The rectangle, in window coordinates and clipped, has new pixels.
void end_drawing(const window_record &window, const ws_rect &drawn);

// Bits of a pixel of the window: 0xFFFFFF, or max_index.
uint32_t pixel_mask(const window_record &window);

// Stamps a one-bit mask top left at x, y: ones become `value`, zeros stay. The lowest bit of a byte is the leftmost.
void stamp_low_first(const pixel_store &store, const ws_rect &clip, int x, int y, const uint8_t *bits, int width, int height, uint32_t value);

// Text into a store, `length` characters; the pen's x behind them comes back.
int stamp_text(const pixel_store &store, const ws_rect &clip, int font, int x, int y, const char *text, int length, uint32_t value);
