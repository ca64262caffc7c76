// ws_state.h - the services' private state and the seams between their files. Nobody outside this folder includes it.
//
// One coordinate space serves all of it: frame coordinates. 0, 0 is the top left pixel of the frame's drawable area,
// x1 = width - 1, y1 = height - 1 its bottom right one, strip included; the menu bar lies above, at y -ws_menu_height()
// to -1. Only the picture handed to the backend starts at the menu bar: picture y = frame y + ws_menu_height().
//
// What is on the screen, from the bottom up, and which file paints it into the picture:
//   the frame's own pixels      compose.cpp, from the backing store of window 0
//   windows with their frames   compose.cpp and decorations.cpp, in the order of ws_state.stack
//   icons of collapsed windows  decorations.cpp
//   the message strip           strip_paint
//   pop-ups, innermost last     compose.cpp
//   the menu bar, open menus    menu_bar_paint, menu_open_paint
// Whoever changes something there calls damage_add; compose_and_present paints what is damaged and nothing else.
#pragma once
#include "services/backend.h"
#include "services/ws.h"
#include "services/ws_menu.h"

// --- records -----------------------------------------------------------------------------------------------

enum window_style {
    STYLE_FRAME,                       // window 0 outside of pop-ups
    STYLE_TITLED,                      // border, caption, buttons
    STYLE_PLAIN,                       // only the drawable area
    STYLE_TOP,                         // plain, above all others
    STYLE_POPUP,                       // window 0 while a pop-up is begun; a thin border around its drawable area
};

enum pixel_format {
    PIXELS_SLOT8,                      // colour table slots; displays of at most 8 planes
    PIXELS_SLOT16,                     // the same in 16 bits; 9 and 10 planes
    PIXELS_RGB,                        // 0x00RRGGBB
};

// The pixels of a window. With no memory `pixels` is null and the window lives on, blank.
struct pixel_store {
    void *pixels;
    pixel_format format;
    int width, height;                 // rows follow one another without a gap
    int64_t capacity;                  // bytes held, at least what width and height need
};

struct window_record {
    bool used, shown, collapsed;
    window_style style;
    char title[WS_TITLE_MAX + 1];
    ws_rect rect;                      // drawable area, frame coordinates
    bool icon_placed;                  // icon_x, icon_y were chosen by the program
    int icon_x, icon_y;                // top left of the icon, frame coordinates
    int vlt;                           // 0 colour table, 2 true colour
    pixel_store store;
    ws_rect clip;                      // window coordinates, limited by the window when drawing
    int foreground, background;        // slot or 0xRRGGBB
    int line_width, line_pattern;
    int pen_x, pen_y;
    int dash_phase;                    // pixels of the dash pattern used up since ws_move
    bool patterned;
    uint8_t pattern[8];
    int busy;                          // above 0: the busy cursor shows over the window
    int button_mode;                   // 1: clicks are counted
};

constexpr int POPUP_DEPTH = 16;
constexpr int DAMAGE_MAX = 32;

struct services_state {
    bool entered;
    const ws_backend *backend;
    backend_display display;
    ws_screen_info info;
    uint32_t *picture;                 // display.width by display.height, rows without a gap, 0x00RRGGBB
    window_record windows[WS_WINDOWS]; // [0] is the frame, or the innermost pop-up
    int stack[WS_WINDOWS];             // shown windows 1 to 39, collapsed ones too, bottom first
    int stack_count;
    window_record popup_saved[POPUP_DEPTH];  // window 0 as it was at each ws_popup_begin: [0] is the frame
    int popup_depth;                   // pop-ups begun and not ended
    uint32_t *colours;                 // the logical colour table: WS_MAX_SLOTS entries, 0x00RRGGBB
    int true_colour_vlts;              // 1 while ws_vlt_alloc's number 2 is out
    ws_rect damage[DAMAGE_MAX];        // frame coordinates, menu bar included
    int damage_count;
    uint32_t presented_at;             // backend time of the last present
    int pointer_x, pointer_y;          // frame coordinates; kept up by the pump
    bool pointer_inside;               // of the OS window
    int cursor;                        // backend_cursor as last set
};

extern services_state ws_state;

// The record that w means just now, or null for a bad or unused number.
window_record *window_of(int w);

// The frame's own record, also while window 0 is a pop-up.
window_record *frame_record();

// --- rectangles ------------------------------------------------------------------------------------------------

inline bool rect_empty(const ws_rect &r) { return r.x1 < r.x0 || r.y1 < r.y0; }
inline bool rect_has(const ws_rect &r, int x, int y) { return x >= r.x0 && x <= r.x1 && y >= r.y0 && y <= r.y1; }

inline ws_rect rect_common(const ws_rect &a, const ws_rect &b)
{
    return { a.x0 > b.x0 ? a.x0 : b.x0, a.y0 > b.y0 ? a.y0 : b.y0, a.x1 < b.x1 ? a.x1 : b.x1, a.y1 < b.y1 ? a.y1 : b.y1 };
}

inline bool rect_meet(const ws_rect &a, const ws_rect &b) { return !rect_empty(rect_common(a, b)); }

// --- composing and presenting (compose.cpp) --------------------------------------------------------------------

void damage_add(const ws_rect &area);  // frame coordinates; parts outside of the picture are dropped
void damage_add_all();
void compose_and_present();            // call before every blocking wait; nothing damaged, nothing done
void present_if_due();                 // the same when 1/60 s have passed since the last; call from polls and msg_put

// --- painting for the services' own looks (paint.cpp) ------------------------------------------------------------
// Straight into the picture, frame coordinates, colours 0x00RRGGBB, clipped to the rectangle that is being composed:
// call these only from inside the *_paint functions below.

enum ui_colour : uint32_t {            // the one palette of menu bar, captions, strip, icons and plain boxes
    UI_FACE        = 0xD9DBDE,         // borders, menu bar, menus, buttons
    UI_LIGHT       = 0xF7F8F9,         // upper left of a bevel
    UI_SHADE       = 0xA4A8AE,         // lower right of a bevel, lines between
    UI_DARK        = 0x5C6168,         // outlines
    UI_PAPER       = 0xFFFFFF,         // inside of fields
    UI_TEXT        = 0x1B1E22,
    UI_TEXT_GREY   = 0x8A8F96,         // disabled items
    UI_ACCENT      = 0x3C6E9F,         // active caption, chosen menu item
    UI_ACCENT_TEXT = 0xFFFFFF,
    UI_IDLE        = 0xBFC4CA,         // caption of the other windows
    UI_IDLE_TEXT   = 0x41464D,
};

void paint_fill(const ws_rect &area, uint32_t colour);
void paint_outline(const ws_rect &area, uint32_t colour);                 // one pixel wide
void paint_bevel(const ws_rect &area, bool raised);                       // one pixel: UI_LIGHT and UI_SHADE, or exchanged
// Text top left at x, y, as ws_draw_text; parts right of x_end (inclusive) are cut. The pen's x behind the text comes back.
int paint_text(int font, int x, int y, int x_end, const char *text, uint32_t colour);
void paint_symbol(int symbol, int x, int y, uint32_t colour);              // symbol_code of the built-in set
void symbol_size(int symbol, int *width_out, int *height_out);             // 0, 0 when there is none

// Built-in fonts by the frame's height: 18 pixels a line from 720 rows on, else 16. The menu bar is the same on all
// frames and loads "sans.16" itself. -1 when missing: painting text with it does nothing.
int ui_font();
int ui_bold_font();

// --- what lies where (windows.cpp, decorations.cpp) ---------------------------------------------------------------

enum window_part {
    PART_NOTHING,                      // outside of everything; the menu bar and open menus are asked before this
    PART_INSIDE,                       // drawable area
    PART_CAPTION, PART_COLLAPSE_BUTTON, PART_CLOSE_BUTTON,
    PART_LEFT, PART_RIGHT, PART_TOP, PART_BOTTOM,
    PART_TOP_LEFT, PART_TOP_RIGHT, PART_BOTTOM_LEFT, PART_BOTTOM_RIGHT,
    PART_ICON,
    PART_STRIP,
};

// The window under a point of the frame, and which part of it. While a pop-up is open only its inside is found;
// everything else gives 0 and PART_NOTHING. 0 and PART_INSIDE is the frame's background.
int window_at(int x, int y, window_part *part_out);

ws_rect window_outer_rect(const window_record &window);  // with its border and caption
ws_rect icon_rect(int w);
ws_rect strip_rect();
bool popup_is_open();                  // shown, not merely begun: the pointer is grabbed

// What the operator does with a window. They change the screen and queue what the program must know.
void operator_move(int w, int x0, int y0);        // new top left of the drawable area
void operator_resize(int w, const ws_rect &rect); // new drawable area; kept above a least size; queues a refresh
void operator_collapse(int w);
void operator_restore(int w);
void operator_raise(int w);
void operator_delete(int w);           // close button, close_query asked before: queues WS_DELETE and deletes
void operator_press_button(int w, window_part part);  // caption button drawn pressed; PART_NOTHING releases it
void operator_move_icon(int w, int x, int y);

// Sets the backend's cursor by what is under the pointer: after each motion and whenever busy counts or windows change.
void cursor_update();

// --- seams to the events, menu bar and strip -----------------------------------------------------------------------

void events_start();                   // from ws_enter, the picture and window 0 exist
void events_stop();                    // from ws_exit
void events_forget_window(int w);      // w is being deleted: its queued events go, but for WS_DELETE
void queue_refresh(int w, const ws_rect &old_rect, const ws_rect &damage, uint32_t flags);  // old in frame, damage in window coordinates
void queue_collapse(int w, int state); // 1 collapsed, 0 restored
void queue_delete(int w);
bool delete_is_queued(int w);          // such a number is not given to a new window before the program has read the event

void menu_bar_start();
void menu_bar_stop();
void menu_bar_paint(const ws_rect &area);   // `area` is what is being composed: a part of the bar
void menu_open_paint(const ws_rect &area);  // the same for open menus, over everything
void strip_start();
void strip_stop();
void strip_paint(const ws_rect &area);
