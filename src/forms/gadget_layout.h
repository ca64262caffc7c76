// gadget_layout.h - where the parts of a gadget lie, in pixels of the form's window (the title band counted in).
#pragma once
#include "forms/form_record.h"

void layout_extent(gadget *g);         // sets x1 and y1 of the kinds whose text decides them
ws_rect gadget_rect(const form *f, const gadget *g);     // all of it, label included
ws_rect gadget_body(const form *f, const gadget *g);     // what is operated: without the label of fields and sliders
ws_rect gadget_label_rect(const form *f, const gadget *g);   // left of the body; empty (x1 < x0) without a text
int rect_contains(ws_rect r, int x, int y);
ws_rect rect_inset(ws_rect r, int by);
inline int rect_width(ws_rect r) { return r.x1 - r.x0 + 1; }
inline int rect_height(ws_rect r) { return r.y1 - r.y0 + 1; }
gadget *gadget_at(const form *f, int x, int y);          // the live one under the point, the newest first

int line_thickness();                  // one bevel line: 1 pixel at scale 1.0, 2 at 1.5
int box_edge();                        // frame of a field or list: a fine bevel and a line
int toggle_needs_switch(const gadget *g);                // it shows its two states side by side
ws_rect mark_rect(const form *f, const gadget *g);       // the box or circle of a toggle or radio
ws_rect field_text_rect(const form *f, const gadget *g); // inside the frame
int field_text_advance(const char *text, int length);    // width in the text font
double label_room(const gadget *g);                      // units left of the body

ws_rect slider_track(const form *f, const gadget *g);    // the thumb moves within it
ws_rect slider_middles(const form *f, const gadget *g);  // from the thumb's middle at low to its middle at high
ws_rect slider_thumb(const form *f, const gadget *g);
ws_rect slider_value_rect(const form *f, const gadget *g);   // empty when the value is not shown
void slider_value_text(const gadget *g, char *out, int size);
double slider_share_at(const form *f, const gadget *g, int thumb_x);  // share of the track for a thumb that starts at that pixel

ws_rect list_title_rect(const form *f, const gadget *g);
ws_rect list_frame(const form *f, const gadget *g);      // bevel around rows and scroll bar
ws_rect list_rows_rect(const form *f, const gadget *g);
ws_rect list_row_rect(const form *f, const gadget *g, int item);   // may lie outside list_rows_rect
ws_rect list_up_arrow(const form *f, const gadget *g);
ws_rect list_down_arrow(const form *f, const gadget *g);
ws_rect list_trough(const form *f, const gadget *g);
ws_rect list_thumb(const form *f, const gadget *g);
int list_row_height();
