// filter_commands.h - the operator's commands over whole images. All work on the active window and do nothing without one.
//
// Filters write into the undo buffers and exchange them with the pixels: undo has the image before, whatever undo_enabled says meanwhile.
// All filters but smoothing burn the look-up tables in and reset them.
#pragma once

// filter_commands.cpp
void edge_det();
void edge_enh();
void smoothing();
void sobel();
void roberts();

// tone_commands.cpp
void rgbihs();
void ihsrgb();
void apply();
void invert();

// orthogonal_commands.cpp
void flip();
void mirror();
void transpose();                      // has no undo: drops it
