// output_settings.h - the commands that set how files are written and what the tile store may use.
#pragma once

void set_mem_limit();
void set_tile_size();
void set_fwrite_range();
void set_fwrite_tile_size();
void set_fwrite_incr();

