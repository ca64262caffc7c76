// ws.h - the workstation services: numbered windows, a logical colour table, queued events by class, drawing,
// text and the message strip. It is all that the rest of Kestrel knows of a screen; what stands behind it is a
// backend (backend.h): a desktop window or plain memory.
//
// All operations answer 0 for success and -1 for failure unless a result is named. A window number is 0 to 39;
// window 0 is the frame: the whole client area between menu bar and lower edge, strip included. Pixel coordinates are
// relative to the drawable area of a window, y growing downward; rectangles are inclusive on all four sides.
// Drawing into a window that is not shown or is collapsed does nothing and succeeds.
// There is one thread; events come from one pump that runs inside the polling and blocking operations.
#pragma once
#include <cstdarg>
#include <cstdint>

constexpr int WS_WINDOWS    = 40;
constexpr int WS_MAX_SLOTS  = 512;     // logical colour table
constexpr int WS_TITLE_MAX  = 76;

// --- screen ------------------------------------------------------------------------------------------------

enum ws_capability : uint32_t {
    WS_CAP_OVERLAY    = 1,             // with WS_CAP_HIGHLIGHT: a separate plane for graphics
    WS_CAP_ALWAYS     = 2,
    WS_CAP_HIGHLIGHT  = 64,
    WS_CAP_TRUECOLOUR = 256,
    WS_CAP_TOP        = 0x80000000u,
};

struct ws_screen_info {
    int type;                          // 0
    int planes;                        // colour table planes
    int max_index;                     // highest colour table slot
    int dac_bits;                      // bits in one colour component
    int width, height;                 // drawable area of the frame
    uint32_t flags;                    // ws_capability
    int vlt_size;                      // max_index + 1
    int vlt_planes;                    // same as planes
};

// One colour table entry. Components have 16 bits, of which the top 8 count; a read gives each 8-bit value in both bytes.
struct vlt_entry {
    uint16_t slot, red, green, blue;
};

int ws_enter();                        // creates the frame, the colour table and window 0. 0 or an error number
void ws_exit();
int ws_active_screen(int *screen_out); // always 0
int ws_inquire_screen(ws_screen_info *info_out);
int ws_frame_metrics(int *border_x_out, int *border_y_out, int *caption_out);
int ws_strip_height();                 // pixels: twice the text height, plus 4
int ws_strip_present(int screen, int *answer_out);  // 2 when the strip exists

// --- windows -----------------------------------------------------------------------------------------------

// Takes a free slot; the drawable area is the rectangle, in screen (frame) coordinates. Not shown yet.
int ws_create_window(int screen, const char *title, int x0, int y0, int x1, int y1, int *number_out);
int ws_create_plain_window(int screen, int x0, int y0, int x1, int y1, int *number_out);  // no title, no border
int ws_create_top_window(int screen, int x0, int y0, int x1, int y1, int *number_out);    // above all others; one at a time
int ws_show_window(int w);             // on top, without a refresh event
int ws_delete_window(int w);           // nothing for window 0; no WS_DELETE event, since the program itself asked
int ws_move_window(int w, int x0, int y0, int x1, int y1);
int ws_window_rect(int w, int *x0_out, int *y0_out, int *x1_out, int *y1_out);
int ws_set_title(int w, const char *text);
const char *ws_title(int w);           // as it is shown
int ws_window_shown(int w);            // 1 when it exists and is shown, collapsed or not
int ws_window_collapsed(int w);
int ws_collapse(int w);
int ws_uncollapse(int w);
int ws_set_icon_position(int w, int x, int y);
int ws_clear_window(int w);            // fills with the background colour
int ws_push_bottom(int w);
int ws_pop_top(int w);

// A modal overlay. From begin to end window 0 means the pop-up (`number_out` is 0); the frame is suspended. They nest.
// The rectangle is clipped to the screen. Open saves the pixels beneath and grabs the pointer; close puts both back.
int ws_popup_begin(int screen, int planes, int *number_out);
int ws_popup_open(int w, int x0, int y0, int x1, int y1);
int ws_popup_close(int w);
int ws_popup_end(int w);

int ws_busy_cursor(int w);
int ws_normal_cursor(int w);
int ws_hide_cursor(int w);
int ws_show_cursor(int w);
int ws_flush(int w);
int ws_pointer_in_window(int w, int *x_out, int *y_out, int *inside_out);
int ws_pointer_anywhere(int *w_out, int *x_out, int *y_out, int *inside_out);  // window 0 when over none
int ws_warp_pointer(int x, int y);     // screen coordinates

// --- events ------------------------------------------------------------------------------------------------

enum ws_event_class : uint32_t {
    WS_KEY         = 1,
    WS_BUTTON      = 2,
    WS_REFRESH     = 4,
    WS_DELETE      = 8,
    WS_KEYIN       = 32,
    WS_RESERVED_A  = 64,
    WS_USER_A      = 512,
    WS_COLLAPSE    = 1024,
    WS_PALETTE     = 2048,
    WS_TIMER       = 4096,
    WS_WINDOW_ICON = 8192,
    WS_USER        = 16384,
    WS_MOTION      = 65536,
};

// The application's normal set.
constexpr uint32_t WS_NORMAL_EVENTS = 27758;

enum ws_transition { WS_UP = 0, WS_DOWN = 1, WS_CLICK = 2, WS_DOUBLE_DOWN = 3, WS_DOUBLE_CLICK = 4, WS_TRIPLE = 5 };

constexpr int WS_CLICK_MS = 210;       // a change of button state within this time advances the transition

struct ws_rect {
    int x0, y0, x1, y1;                // inclusive
};

int ws_enable_events(uint32_t mask);
int ws_disable_events(uint32_t mask);  // and empties their queues
int ws_pending(uint32_t *mask_out);    // pumps once, never blocks
int ws_wait_event(uint32_t mask, uint32_t *pending_out);   // blocks till a class of mask is pending; the whole word
int ws_wait_first(uint32_t mask, uint32_t *class_out);     // the lowest pending class of the mask
int ws_flush_keys();
int ws_flush_buttons();
int ws_flush_refresh();
int ws_flush_delete();
int ws_flush_keyin();
int ws_flush_collapse();
int ws_flush_user();
int ws_flush_motion();
int ws_flush_timer();
// Each read takes the oldest record of its class, and fails on an empty queue.
int ws_read_button(int *w_out, int *x_out, int *y_out, int *button_out, int *transition_out, uint32_t *time_out);
int ws_peek_button(int *w_out, int *x_out, int *y_out, int *button_out, int *transition_out, uint32_t *time_out);
int ws_read_refresh(int *w_out, int *screen_out, ws_rect *old_out, ws_rect *damage_out, uint32_t *flags_out);
int ws_read_delete(int *w_out);
int ws_read_collapse(int *w_out, int *state_out);
int ws_read_keyin(int *length_out);
int ws_read_palette(int *value_out);
int ws_read_user(int *value_out);
int ws_read_keys(int *count_out);      // bytes go to the buffer of ws_set_key_buffer
int ws_read_window_icon(int *w_out, int *icon_out);
int ws_read_motion(int *w_out, int *x_out, int *y_out, int *kind_out, uint32_t *flag_out);  // kind 0 leave, 1 move or enter
int ws_read_timer(int *number_out);
int ws_post_user_event(int value);     // a chosen menu item does this with its identifier
int ws_set_key_buffer(char *buffer, int size);
int ws_timer_start(int period, int *number_out);  // sixtieths of a second; up to 32 timers
int ws_timer_stop(int number);
uint32_t ws_now();                     // milliseconds of the backend's clock

// Bytes of WS_KEY beside plain characters (Return 13, Tab 9, Shift+Tab 15; Esc is a reset, never a key).
enum ws_key_byte {
    WS_KEY_HOME = 1, WS_KEY_DELETE = 4, WS_KEY_END = 5, WS_KEY_TAB = 9, WS_KEY_CTRL_DELETE = 11, WS_KEY_RETURN = 13,
    WS_KEY_BACKTAB = 15, WS_KEY_BACKSPACE = 127, WS_KEY_LEFT = 128, WS_KEY_DOWN = 131, WS_KEY_RIGHT = 132, WS_KEY_UP = 133,
};

// What the application decides when the window system asks. All null at start: null allows.
struct ws_hooks {
    int (*close_query)(int w);         // the operator wants window w closed: 1 allows (WS_DELETE follows), 0 refuses
    int (*frame_close)();              // the operator closes the frame: 1 ends the process with status 0, 0 refuses
    void (*file_dropped)(const char *host_path);
    void (*end_process)(int status);   // how the process ends; null: exit()
};
extern ws_hooks ws_application_hooks;

int ws_set_help_file(const char *path);  // opened by F1; with none F1 does nothing

// --- colours -----------------------------------------------------------------------------------------------

// Slots above max_index are skipped, and the result is then -1. On a display of fewer than 16 slots each entry becomes the
// nearest colour that the display has.
int ws_write_vlt(int screen, const vlt_entry *entries, int count);
int ws_read_vlt(int screen, vlt_entry *entries_out, int count, int first);
int ws_vlt_alloc(int kind, int *number_out);   // kind 2 on a true colour display, one at a time: number 2
int ws_vlt_free(int number);
int ws_vlt_of_kind(int kind, int *number_out);
int ws_window_vlt(int w, int *number_out);     // 2 in true colour, else 0
int ws_set_window_vlt(int w, int number);
int ws_write_window_vlt(int screen, int number, const vlt_entry *entries, int count);
int ws_set_plane_mask(int w, uint32_t mask);
int ws_enable_plane(int w, int plane);

// --- raster drawing ----------------------------------------------------------------------------------------
// Pixels lie row after row, rows as wide as the rectangle. The plane mask is ignored.

int ws_put_bits(int w, uint32_t mask, int x0, int y0, int x1, int y1, const void *bits);  // rows padded to 16 bits, top bit of each word first
int ws_put_8(int w, uint32_t mask, int x0, int y0, int x1, int y1, const uint8_t *slots);
int ws_put_16(int w, uint32_t mask, int x0, int y0, int x1, int y1, const uint16_t *slots);
int ws_put_24(int w, uint32_t mask, int x0, int y0, int x1, int y1, const uint8_t *bgr0);  // 0xBB, 0xGG, 0xRR, 0 a pixel

// The rows of a window that draws in true colour, for painters that fill whole lines: null when the window is not shown,
// collapsed or not in true colour. Rows are `*stride_out` pixels apart, 0x00RRGGBB. Call ws_rows_done with what changed.
uint32_t *ws_true_colour_rows(int w, int *stride_out, int *width_out, int *height_out);
int ws_rows_done(int w, int x0, int y0, int x1, int y1);

int ws_save_area(int w, int x0, int y0, int x1, int y1, int *handle_out);  // handle 0 for a window not shown
int ws_restore_area(int w, int x, int y, int handle);
int ws_free_area(int handle);
int ws_pixels_size(int x0, int y0, int x1, int y1, int *size_out);          // bytes that read and write need
int ws_read_pixels(int w, int x0, int y0, int x1, int y1, void *buffer);    // opaque
int ws_write_pixels(int w, int x0, int y0, int x1, int y1, const void *buffer);

// --- vectors -----------------------------------------------------------------------------------------------
// A colour is a slot, clipped to max_index, in a colour table window, and 0xRRGGBB in a true colour window.

int ws_set_foreground(int w, int colour);
int ws_set_foreground_plane(int w, int plane, int colour);  // plane 0 only
int ws_set_background(int w, int colour);
int ws_set_line_width(int w, int width);       // 0 is one pixel; wider lines are width + 1 parallel lines
int ws_set_line_style(int w, int pattern);     // 65535 solid; any other dashed
int ws_set_clip(int w, int x0, int y0, int x1, int y1);
int ws_move(int w, int x, int y);
int ws_draw(int w, int x, int y);              // line to x, y, both ends drawn
int ws_fill_rect(int w, int x0, int y0, int x1, int y1);
int ws_set_fill_pattern(int w, const uint8_t pattern[8]);   // all ones removes it
enum ws_rop { WS_ROP_COPY, WS_ROP_XOR, WS_ROP_AND, WS_ROP_OR, WS_ROP_CLEAR, WS_ROP_INVERT, WS_ROP_SET };
int ws_rop_point(int w, int rop, int x, int y, int colour);

// --- text and symbols --------------------------------------------------------------------------------------

// Loads a "FONT" file: a built-in name first, then the name as a path, then the `fonts` directories of the search path.
// The same name gives the same identifier; up to 256 are held.
int ws_load_font(const char *name, int *id_out);
int ws_set_font_path(const char *directories);  // separated by ';'
int ws_font_height(int font);                  // pixels a line of text takes; 0 for a bad font
int ws_text_width(int font, const char *text, int length, int *width_out);
int ws_draw_text(int w, int font, int x, int y, const char *text, int length);  // top left at x, y; the background stays
int ws_draw_bitmap(int w, uint32_t mask, int x0, int y0, int x1, int y1, const void *bytes);  // as ws_put_bits, ones only

// --- message strip -----------------------------------------------------------------------------------------

enum msg_field { MSG_TITLE = 1, MSG_STATUS = 2, MSG_PROMPT = 3, MSG_KEYIN = 4 };
enum msg_justify { MSG_CENTRED = 1, MSG_RIGHT = 2, MSG_LEFT = 3 };

int msg_set_fields(int count);
int msg_put(int field, int justify, const char *text);
int msg_clear(int field);
const char *msg_text(int field);               // what the field shows, "" when empty
int msg_keyin_open(int field, int justify, const char *prefix);
int msg_keyin_close();
int msg_keyin_buffer(char *buffer, int size);
int msg_set_background(int screen, int colour);

// --- reports and sounds ------------------------------------------------------------------------------------

enum report_level { REPORT_ERROR = 1, REPORT_WARNING = 2, REPORT_INFO = 3 };

// Formats at most about 2,000 characters, writes them to the log file when one is set, and shows a modal box (other levels
// show nothing). Returns when the box is closed. A hook that answers 1 takes the text over.
void report(int level, const char *format, ...) __attribute__((format(printf, 2, 3)));
extern int (*report_hook)(int level, const char *text);
// The box itself: the forms toolkit puts its own here; until then a plain box of the services is shown.
extern void (*report_box)(const char *title, const char *text);
int report_log_file(const char *path);         // null ends logging

enum beep_kind { BEEP_PLAIN = 0, BEEP_INFO = 1, BEEP_ERROR = 2 };
void beep(int kind);
