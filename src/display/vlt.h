// vlt.h - what every slot of the colour table holds, and the tables that painting uses.
//
//   vlt.cpp            vlt_program: which table this display and these modes want
//   vlt_cube.cpp       the colour cube with the named colours at their slots
//   vlt_ramp.cpp       the grey ramps
//   vlt_rebuild.cpp    the windows after a change between mono and colour
//   gamma.cpp          the gamma, its curves and its commands
//   dither.h           ordered dither
//   named_colours.cpp  the named colours, and which of them forms take
#pragma once
#include "services/ws.h"

extern double  gamma_value;            // the current gamma; a negative value is a one-time request
extern double  gamma_default;          // 2.2
extern uint8_t gamma_ref[256], gamma_table[256];
extern int32_t reserved_count;         // named colours in slots 0 and up: 0, then 15
constexpr int NAMED_COLOURS = 31;
extern const uint32_t named_colours[NAMED_COLOURS];   // 0xRRGGBB
extern const uint8_t  named_colour_order[NAMED_COLOURS];  // in which they join the colour cube
extern const uint8_t  levels_for_planes[13];           // levels per primary
extern uint8_t dither_table[16][256];
extern uint8_t level_values[16];
extern uint16_t colour_map[512];
extern uint16_t grey_slot[256];
extern uint8_t grey_levels[32];
extern uint8_t fix[256];
extern int32_t mono_channel;           // 0; 1, 2, 3: a colour image shown as one of its bands

// The table under construction, and the one of a true colour window. What vlt_program leaves untouched keeps its last entry.
constexpr int VLT_ENTRIES = 512;
extern vlt_entry vlt_entries[VLT_ENTRIES + 1];
extern int32_t   vlt_count;
extern vlt_entry tc_entries[256];

// Entry i of a look-up table, kept within 0 to 255.
inline int lut_level(const int16_t *lut, int i) { return lut[i] < 0 ? 0 : lut[i] > 255 ? 255 : lut[i]; }

void vlt_init();                       // start values, gamma_ref
void vlt_program();
void vlt_forget();                     // reserved_count back to 0
void gamma_apply();
// One grey picture alone is looked up by the colour table, in which its look-up table is folded; several are looked up as they are
// painted. With a static table that holds on 9 planes only: on 8 even one picture is painted through its look-up table.
bool vlt_holds_grey_table();
void display_rebuild();                // the windows after a change of mono and colour state
// 0 for an index at or above reserved_count. With a null among the outputs the packed value goes to the first.
int  named_colour(int index, int *r_out, int *g_out, int *b_out);
// 8, 9 or 10 for red, green, blue; 0 for a reset, a quit or no active window.
int  band_select(const char *title, int *band_out);
void band_names_update(uint32_t mask);
void form_palette(int planes);         // the toolkit's colours; 24: true colour
int  form_colour_slot(int form_colour);// slot of a form colour number, 0 to 13

// --- the parts of vlt_program ----------------------------------------------------------------------------------

vlt_entry vlt_grey(int slot, int component);   // components 0 to 65535
vlt_entry vlt_packed(int slot, uint32_t colour);
// Colour cube of `levels` levels per primary, every `step`th of blue, and the named colours: vlt_entries, vlt_count, colour_map.
void vlt_cube(int levels, int step, int planes);
void vlt_ramp();                       // grey entries for start_planes; sets vlt_count
void fix_build();                      // 4 planes: gamma_table against gamma_ref
