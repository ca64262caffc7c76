// load_tiled.h - images that live in the tile store. Without a store no identifier comes back and nothing is loaded, which is said.
#pragma once
#include <cstdint>

uint32_t load_tiled_gray(const char *name, int increment, int show);   // identifier, 0 for none
int load_tiled_rgb(const char *red, const char *green, const char *blue, int increment, int show);  // green null: one 24-bit file
