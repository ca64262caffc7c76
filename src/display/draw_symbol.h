// draw_symbol.h - marks put on the screen by hand; they are not part of any image and go with the next repaint.
#pragma once

void draw_symbol();
void draw_vector_c();                  // nothing
void draw_vector_s();                  // nothing
