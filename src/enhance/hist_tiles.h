// hist_tiles.h - counting the levels of a band that lives in the tile store.
#pragma once
#include <cstdint>

#include "services/ws.h"
#include "shell/session.h"

// Adds every `step`-th pixel of every `step`-th row of the rectangle, beginning afresh in each tile, to the band's hist_unmapped.
// A click of the reset button stops the walk; what was counted so far stands.
void count_in_tiles(const band_rec &band, const ws_rect &area, int step);

// The same for one tile, with what count_in_tiles is counting now: its origin in held pixels, its size, its first pixel; rows are
// tile_size bytes apart. 1 when the operator wants to stop.
int count_tile(int x, int y, int width, int height, const uint8_t *pixels);
