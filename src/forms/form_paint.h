// form_paint.h - bevels, texts and symbols in the style's colours, drawn into a form's window.
#pragma once
#include "forms/form_record.h"

int text_pixels(int font, const char *text, int length);   // width; 0 for a bad font

void paint_fill(const form *f, ws_rect r, int colour);
void paint_outline(const form *f, ws_rect r, int thickness, int colour);  // within the rectangle
void paint_bevel(const form *f, ws_rect r, int thickness, int raised);    // the same, in light and shade
void paint_clip(const form *f, ws_rect r);
void paint_no_clip(const form *f);

enum text_place { TEXT_LEFT, TEXT_CENTRED, TEXT_RIGHT };
// One line, `length` characters, centred vertically in the rectangle and clipped to it. `greyed` draws it as a disabled gadget's.
void paint_text(const form *f, int font, ws_rect r, const char *text, int length, int place, int colour, int greyed);

enum paint_symbol { PAINT_ACCEPT, PAINT_CANCEL, PAINT_UP, PAINT_DOWN, PAINT_BOX_OFF, PAINT_BOX_ON, PAINT_RADIO_OFF, PAINT_RADIO_ON };
// The large pictures of report boxes, at their own size in pixels: 0 and 0 when the symbol font has none.
void paint_picture_size(int code, int *width_out, int *height_out);
void paint_picture(const form *f, int code, int x, int y, int ink, int paper);   // with the mask, whose code comes next

// Centred in the rectangle: the glyph of the symbol font, or the same drawn with lines when that font has none.
void paint_symbol_in(const form *f, int symbol, ws_rect r, int ink, int paper);
