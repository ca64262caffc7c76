// vlt.h - what every slot of the colour table holds, and the tables that painting uses.
#pragma once
#include "services/ws.h"

extern double  gamma_value;            // the current gamma; a negative value is a one-time request
extern double  gamma_default;          // 2.2
extern uint8_t gamma_ref[256], gamma_table[256];
extern int32_t reserved_count;         // named colours in slots 0 and up: 0, then 15
extern const uint32_t named_colours[31];   // 0xRRGGBB
extern uint8_t dither_table[16][256];
extern uint8_t level_values[16];
extern uint16_t colour_map[512];
extern uint16_t grey_slot[256];
extern uint8_t grey_levels[32];
extern uint8_t fix[256];
extern int32_t mono_channel;           // 0; 1, 2, 3: a colour image shown as one of its bands

void vlt_init();                       // start values, gamma_ref
void vlt_program();
void vlt_forget();                     // reserved_count back to 0
void gamma_apply();
void display_rebuild();                // the windows after a change of mono and colour state
int  named_colour(int index, int *r_out, int *g_out, int *b_out);
// 8, 9 or 10 for red, green, blue; 0 for a reset, a quit or no active window.
int  band_select(const char *title, int *band_out);
void band_names_update(uint32_t mask);
void form_palette(int planes);         // the toolkit's colours; 24: true colour
