// form_record.h - the form's record and what the modules of this folder ask of each other about a running form.
#pragma once
#include "forms/field_edit.h"
#include "forms/forms.h"

// The part of a gadget that the pointer holds while its button is down.
enum held_part { HELD_NOTHING, HELD_BUTTON, HELD_FIELD, HELD_SLIDER, HELD_LIST_THUMB, HELD_LIST_STEP };

struct form {
    int label;
    char *title;
    double width, height;              // units, without the title band
    gadget **gadgets;                  // in the order of adding, which is the order of the focus
    int gadget_count, gadget_room;
    int incomplete;                    // a gadget is missing for want of memory
    form *next;                        // list of all forms

    int running;
    int hidden;                        // running, but taken off the screen
    int stale;                         // something changed while it could not be drawn
    form *covered;                     // the running form beneath it
    int window;                        // 0 as a pop-up
    int collapsed;                     // an ordinary window was seen as an icon
    int x, y, pixel_width, pixel_height;   // on the frame, title band included
    int band;                          // height of the title band in pixels, 0 in an ordinary window
    form_canvas canvas;                // all null: it has none
    void *canvas_data;
    form_notify notify;
    void *data;
    int answer;                        // FORM_STAY while it goes on
    int last;                          // label of the gadget that ended it

    gadget *focus;                     // has the keyboard; may be set before the form runs
    int focus_called;                  // form_focus was called since this was cleared
    field_edit edit;                   // caret of the focused field
    gadget *held;                      // what the pointer's button holds
    int held_part;
    int held_inside;                   // the pointer is over the held button
    int grip;                          // pixels from the start of the held thumb to the pointer
    int step;                          // rows that a held arrow or trough moves
    int timer;                         // repeats the held step; -1 when none runs
    int watch_timer;                   // of an ordinary window, to see what the operator does to it; -1 when none runs
    int last_transition;
    uint32_t click_time;               // of the last click on a list's item, for the second one
    gadget *click_list;                // the list it fell in
    int click_item;                    // that item, -1 when a next click is a first one
};

// forms.cpp
extern form *all_forms;
int form_pixels(double units);         // in the style's scale, rounded to nearest

// form_build.cpp
char *text_copy(const char *text);     // null for null, and without memory
inline const char *text_or_empty(const char *text) { return text ? text : ""; }

// form_focus.cpp
int gadget_is_live(const gadget *g);   // neither hidden nor disabled
int gadget_takes_keys(const gadget *g);
void focus_first(form *f);             // for a form that starts
void focus_give(form *f, gadget *g, int select_all);
void focus_step(form *f, int direction);        // Tab and Shift+Tab
gadget *focus_next_field(form *f);     // after the focused one; null when it is the last
void focus_leave_dead(form *f);        // when the focused gadget was hidden or greyed
gadget *radio_in_group(form *f, const gadget *from, int direction);  // the next live member, round and round
gadget *default_button(const form *f);
void radio_turn_on(form *f, gadget *g);

// form_input.cpp
void input_keys(form *f, const uint8_t *bytes, int count);
void input_button(form *f, int x, int y, int button, int transition, uint32_t time);
void input_motion(form *f, int x, int y);
void input_step(form *f);              // the repeating timer of a held arrow or trough ran out
void input_cancel(form *f);            // Esc, a reset, the window's close button
void input_release_all(form *f);       // forgets what is held

// form_run.cpp
int form_is_drawn(const form *f);      // it is on the screen and may be drawn into now
void running_forms_forget();           // when the toolkit ends under them
void form_changed(form *f, gadget *g); // draws the gadget again, now or when the form can be drawn
