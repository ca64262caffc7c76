// read_commands.h - the commands that prompt for what a loader needs.
#pragma once

void read_bin();
void read_tiled_bin();
void read_tiled_bin_big();
void read_raw_gray();
void read_raw_gray_big();
void read_raw_color();
void read_raw_color_big();
void read_cot_gray();
void read_cot_gray_big();
void read_cot_gray_rect();
void read_tiled_cot_gray();
void read_tiled_cot_gray_big();
void read_cot_color();
void read_cot_color_big();
void read_cot_color_rect();
void read_tiled_cot_color();
void read_tiled_cot_color_big();
void read_cot_color_index();
void read_cot_color_index_big();
void read_cot_color_index_rect();
void read_rgb();
void read_rgb_big();
void read_rgb_rect();
void read_tiled_rgb();
void read_tiled_rgb_big();
void read_raw_single();
void read_cot_single();

void refetch_file();
