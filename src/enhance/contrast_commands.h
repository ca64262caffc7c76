// contrast_commands.h - the contrast operators as commands: they rewrite look-up tables and mapped histograms, never pixels.
#pragma once

void equalize_full_hist();
void equalize_clip_in_hist();
void equalize_clip_in_out_hist();

void stretch_full_hist();
void stretch_clip_in_hist();
void stretch_clip_in_out_hist();
void stretch_hist_1percent();
void stretch_hist_2percent();
void stretch_hist_other();
void stretch_hist_1percent_clip_out();
void stretch_hist_2percent_clip_out();
void stretch_hist_other_clip_out();

void piecewise_stretch_hist();
void piecewise_equalize_hist();

void scale_hist();
void shift_hist();

void enable_recursion();
void disable_recursion();
