// vmap.h - colour on a display of 4 planes: the 16 standard colours, mixed four at a time in a cell of 4 by 4 pixels.
#pragma once
#include <cstdint>

constexpr int VMAP_GROUPS = 28;

extern const uint32_t standard_colours[16];            // 0xRRGGBB, by slot
extern const uint8_t  vmap_groups[VMAP_GROUPS][4];     // slots

int  vmap_init();                      // builds the table once; 0 without memory, with its report
void vmap_use(int on);                 // dither_colour takes the map; a map that was never built stays out of use
int  vmap_in_use();
void vmap_free();

// Group and counts for a colour, 0 to 255 each, as one number; and the slot that this number has in a dither cell.
uint16_t vmap_entry(int r, int g, int b);
uint16_t vmap_entry_of_key(int key);   // 5 bits each of red, green, blue, red on top
int      vmap_slot(uint16_t entry, int cell);
