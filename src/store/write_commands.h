// write_commands.h - the commands that write without a form. Those named _rect ask for an area first. In a colour session the
// grey ones go round up to three times, a band and a name each; a reset ends them.
#pragma once

void write_bin();
void write_bin_rect();
void write_cot();
void write_cot_rect();
void write_rle();
void write_rle_rect();
void write_t29();
void write_t29_rect();
void write_raw();
void write_raw_rect();
void write_rgb();
void write_rgb_rect();
void write_rgb_single();
void write_rgb_single_rect();
