// forms.h - small modal forms on top of the workstation services: buttons, toggles, exclusive groups, text fields, labels,
// sliders, lists with scroll bars; the value slider dialog, the question box and the report box.
//
// A form is built once in code, kept, and run as often as wanted. Positions and sizes are in form units: pixels at scale
// 1.0, multiplied by the style's scale when the form is drawn. While a form runs it has the pointer and the keyboard:
// Tab and Shift+Tab move the focus, Return presses the focused or the default button, Esc and a reset cancel, arrows move in
// groups, lists and sliders. The menu bar is dead meanwhile.
//
// The title stands in a band of its own above the area that `width` and `height` of form_create give, so gadgets may begin
// near y 0; the band adds FORM_TITLE_BAND units to a form that has a title. As an ordinary window it is the caption.
//
//   forms.cpp          style, start and end of the toolkit      form_run.cpp     the modal loop, showing and hiding
//   form_build.cpp     making forms and gadgets                 form_input.cpp   what the pointer and the keys do
//   form_access.cpp    reading and changing them                form_focus.cpp   which gadget has the keyboard
//   gadget_layout.cpp  where the parts of a gadget lie          field_edit.cpp   editing a line of text
//   gadget_draw.cpp    how gadgets look                         slider_scale.cpp a slider's values and places
//   form_paint.cpp     bevels, texts, symbols                   list_scroll.cpp  a list's rows and scroll bar
//   form_find.cpp      gadgets by text, for scripts and tests   text_wrap.cpp    long texts in lines
//   value_slider.cpp   the value slider dialog                  question_box.cpp question and report boxes
#pragma once
#include "services/ws.h"

// --- the toolkit --------------------------------------------------------------------------------------------

struct forms_palette {
    int red, green, blue, yellow;      // colours as ws_set_foreground takes them
    int light, medium, dark;           // face, shadow, text of greyed gadgets
    int black, white;
};

struct forms_style {
    int title_font, text_font, symbol_font;  // ws_load_font identifiers; the built-in fonts until forms_set_style
    double scale;                      // 1.5 or 1.0
    forms_palette palette;
    int true_colour;                   // the palette holds 0xRRGGBB and forms draw in true colour
};

int forms_init();                      // after ws_enter; puts the toolkit's box behind report(). 0, or -1 without memory
void forms_exit();                     // frees every form
void forms_set_style(const forms_style *style);
const forms_style *forms_get_style();
void forms_set_path(const char *directories);   // where form files and symbol files lie, separated by ';'
const char *forms_path();              // the same, "" at start

extern int32_t form_is_up;             // a form has the pointer
extern int32_t popup_forms;            // 1: forms are pop-ups over the frame; 0: ordinary windows

// --- gadgets ------------------------------------------------------------------------------------------------

// Sizes to lay out a form with, in form units.
constexpr double FORM_TITLE_BAND   = 26;   // above the form's own area
constexpr double FORM_ROW          = 20;   // height of a field, toggle, radio, slider and of a button that fits beside them
constexpr double FORM_PITCH        = 26;   // from one row to the next
constexpr double FORM_MARGIN       = 12;   // free room along the edges
constexpr double FORM_SYMBOL_WIDTH = 48, FORM_SYMBOL_HEIGHT = 26;   // accept and cancel

enum gadget_kind {
    GADGET_GROUP   = 0,                // a box with an optional text, drawn around others
    GADGET_SLIDER  = 1,                // horizontal, from `low` to `high`
    GADGET_TOGGLE  = 2,                // on or off; with a second text it shows the text of its state
    GADGET_FIELD   = 3,                // one line of editable text, its label to the left
    GADGET_LABEL   = 4,                // text that does nothing
    GADGET_LIST    = 5,                // lines of text with a scroll bar
    GADGET_RADIO   = 6,                // one of an exclusive group: `group` tells which
    GADGET_BUTTON  = 7,
    GADGET_ACCEPT  = 8,                // the accept symbol button, "accept"
    GADGET_CANCEL  = 9,                // the cancel symbol button, "cancel"
    GADGET_SWATCH  = 10,               // a radio that shows `colour` instead of a text
};

enum gadget_event {
    GADGET_PRESSED,                    // a button; a radio or swatch that was on already
    GADGET_CHANGED,                    // a toggle, radio, swatch, or slider (again and again while it is dragged)
    GADGET_COMPLETED,                  // Return or Tab left a field. A notify function that calls form_focus decides where to go
    GADGET_PICKED,                     // an item of a list, by click or arrow
    GADGET_PICKED_TWICE,               // ... by double click or Return
};

// What a notify function answers. FORM_STAY after the press of accept or cancel lets these do their work; FORM_KEEP
// refuses it: the form stays up.
enum form_answer { FORM_STAY = 0, FORM_DONE = 1, FORM_CANCELLED = 2, FORM_KEEP = 3 };

struct form;

struct gadget {
    int label;                         // its number in the form, above 0
    int kind;
    double x0, y0, x1, y1;             // form units, relative to the form
    char *text;                        // label text; owned
    char *second_text;                 // toggle with two texts: the text when on; owned
    char *name;                        // what scripts call it when it shows no text; owned
    int hidden, disabled;
    int on;                            // toggle and radio state
    int group;                         // radio: members of one exclusive group share it
    double label_width;                // field and slider: room for the text left of the body; 0 is what the text needs
    char *value;                       // field: the text; owned, `value_size` bytes
    int value_size;
    double low, high, position, step;  // slider; step 0 is continuous
    int show_value;                    // slider: its value stands beside it; 1 at start
    char **items;                      // list; owned
    int item_count, first_item, picked;
    int colour;                        // swatch; label with a symbol: its paper
    int symbol;                        // label: SYM_INFO, SYM_WARNING or SYM_ERROR is shown instead of a text
    int is_default;                    // button that Return presses; accept is one unless another button is
};

typedef int (*form_notify)(form *f, gadget *g, int event, void *data);   // form_answer

// Null without memory; the gadget functions take a null form and then answer null. A form that lacks a gadget for want of
// memory is never shown: form_run answers FORM_CANCELLED. A label may have several lines. A list's text, if any, stands in
// its first row. The x1 and y1 of labels, toggles and radios follow from their texts and the style's text font.
form *form_create(int label, const char *title, double width, double height);
void form_free(form *f);
gadget *form_add_group(form *f, double x0, double y0, double x1, double y1, const char *text);
gadget *form_add_label(form *f, int label, double x, double y, const char *text);
gadget *form_add_button(form *f, int label, double x0, double y0, double x1, double y1, const char *text);
gadget *form_add_accept(form *f, int label, double x, double y);
gadget *form_add_cancel(form *f, int label, double x, double y);
gadget *form_add_toggle(form *f, int label, double x, double y, const char *text, const char *second_text, int on);
gadget *form_add_radio(form *f, int label, int group, double x, double y, const char *text, int on);
gadget *form_add_swatch(form *f, int label, int group, double x0, double y0, double x1, double y1, int colour, int on);
gadget *form_add_field(form *f, int label, double x0, double y0, double x1, const char *text, double label_width, int value_size);
gadget *form_add_slider(form *f, int label, double x0, double y0, double x1, const char *text, double low, double high, double position, double step);
gadget *form_add_list(form *f, int label, double x0, double y0, double x1, double y1, const char *text);

gadget *form_gadget(form *f, int label);         // null when there is none
void form_set_name(form *f, int label, const char *name);
const char *form_text_of(form *f, int label);    // a field's value, "" when there is none
void form_set_text(form *f, int label, const char *value);
void form_set_label_text(form *f, int label, const char *text);
void form_set_title(form *f, const char *title);
void form_set_on(form *f, int label, int on);    // a radio set on turns its group off
int form_is_on(form *f, int label);
void form_show(form *f, int label, int shown);
void form_enable(form *f, int label, int enabled);
int form_list_set(form *f, int label, const char *const *items, int count);  // copies; 0, or -1 without memory
const char *form_list_picked(form *f, int label);  // null when nothing is picked
void form_focus(form *f, int label);
void form_redraw(form *f);
void form_size_for_text(form *f, double *width_out, double *height_out, const char *text);  // in units, in the text font

// A null notify function lets every button end the form with FORM_DONE. While a form runs, WS_KEY, WS_MOTION and WS_TIMER are
// enabled, and the key buffer is the toolkit's; WS_BUTTON is enabled and stays so.
//
// Shows the form with its top left at x, y of the frame (below 0: centred; always moved to lie on the screen) and runs it
// till a notify function answers other than FORM_STAY, accept is pressed (FORM_DONE) or it is cancelled
// (FORM_CANCELLED; also when it cannot be shown). `notify` may be null. `last_out`, when not null, gets the label of the gadget
// that ended it, 0 for Esc with no cancel gadget; it is left alone when the form could not be shown.
int form_run(form *f, int x, int y, form_notify notify, void *data, int *last_out);

// A form may paint places of its own and take the pointer there. Coordinates are pixels of the form's window.
struct form_canvas {
    void (*draw)(int window, void *data);      // after all gadgets have been drawn
    int  (*button)(int window, int x, int y, int button, int transition, void *data);  // 1: taken, 0: left to the gadgets
    int  (*motion)(int window, int x, int y, void *data);                              // the same
};
void form_set_canvas(form *f, const form_canvas *canvas, void *data);  // copies; null takes it away

// A running form may be taken off the screen for a while (to point at an image) and put back.
void form_hide(form *f);
void form_unhide(form *f);

// --- ready-made dialogs --------------------------------------------------------------------------------------

// A caption, a sub-caption, a slider between minimum and maximum, a type-in field, accept and cancel. `title` goes to message
// field 1 and `prompt` to field 3. 1 when accepted, with the value; 0 when not, and the value stays.
//   length   of the slider, in form units        step   0 for continuous
int value_slider_dialog(int x, int y, double minimum, double maximum, double *value, int length, double step,
                        const char *caption, const char *sub_caption, const char *title, const char *prompt);

// A modal box with a title, a text (newlines allowed) and up to 4 buttons in a row. The number of the button, from 0; the last
// button's for Esc and reset. `height` in form units, 0 for what the text needs.
int question_box(const char *title, const char *text, const char *const *buttons, int count, double height);

// --- for scripts and tests -----------------------------------------------------------------------------------

form *form_top();                      // the form that has the pointer, null when none
const char *form_title(form *f);
// The gadget of that text ("accept" and "cancel" for the symbols; "LABEL#2" the second of the same text; leading blanks may be left
// out; a toggle answers to both its texts; one that shows no text to its name, or else to "list", "swatch", "field", "slider").
// Gadgets that can be operated come before labels and groups. Hidden ones are not found. Null when there is none.
gadget *form_find(form *f, const char *text);
gadget *form_find_kind(form *f, int kind, const char *text);   // only among gadgets of that kind
// A point of the gadget's body, in frame pixels; across 0 to 1. On a slider a click there sets that share of its range.
int form_point_of(form *f, gadget *g, double across, int *x_out, int *y_out);
int form_list_item_point(form *f, gadget *g, const char *item, int *x_out, int *y_out);  // scrolls to the item; -1 when it is not there
