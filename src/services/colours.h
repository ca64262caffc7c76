// colours.h - the logical colour table, for the other files of the services.
#pragma once
#include "services/ws_state.h"

bool colours_start();                  // a grey ramp, black first; false: no memory

// The slot whose colour is nearest to 0xRRGGBB by squared distance; the lowest of equals. Answers are kept until the table changes.
int nearest_slot(uint32_t rgb);

// The shown colour, 0x00RRGGBB, of a window's pixel value.
uint32_t shown_colour(const window_record &window, uint32_t value);
