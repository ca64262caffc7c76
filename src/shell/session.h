// session.h - the records in which the whole session lives: the table of image bands, the table of windows, the flag word
// display_mode and the variables that several rooms share. All are static; any code may touch them; nothing is locked.
// This header stands at the bottom of the application: it includes nothing of it.
#pragma once
#include <cstdint>

constexpr int BANDS   = 32;            // a set of bands is a 32-bit mask, bit n standing for band n
constexpr int WINDOWS = 40;            // the numbers of the workstation services

// --- bands ---------------------------------------------------------------------------------------------------

// Low 5 bits of band_rec.format: the kind of file a band came from. 0: none, it cannot be refetched.
enum file_kind : uint32_t {
    KIND_NONE = 0, KIND_RGB = 1, KIND_RAW = 2, KIND_COT = 3, KIND_COT_INDEX = 4, KIND_BIN = 5,
    KIND_TILED = 32,                   // bit 5: the pixels live in the tile store
};
constexpr uint32_t KIND_MASK = 31;

// Scanline orientation. Bit 2: row major, the common case; bit 0 right first, bit 1 lower first.
enum orientation_code : uint8_t { ORIENT_UL_COLUMN = 0, ORIENT_UL_ROW = 4, ORIENT_LL_ROW = 6 };

constexpr int BAND_LABEL_SIZE = 24, BAND_NAME_SIZE = 80;
constexpr int BAND_TABLE_BYTES = 3176; // one block: hist_mapped, hist_unmapped, lut, slice_colors, label, file_name

struct band_rec {
    uint32_t alloc_bytes;              // bytes in `data`; 0 a free slot, 1 a tile-backed band
    int32_t  x_size, y_size;           // what is held, after subsampling
    uint32_t format : 6;               // file_kind
    uint32_t undo_saved : 1;           // the undo buffer holds the state before the current command
    uint32_t spare : 1;
    uint8_t  orientation;
    int16_t  increment;                // every n-th pixel and line of the file area is held
    int32_t  file_x0, file_y0, file_x1, file_y1;  // file area, inclusive, in file pixels
    double   xform[4][4];              // held pixel coordinates to displayed ones
    uint8_t *data;                     // rows without padding; KIND_BIN: packed bits, rows of whole 16-bit words
    uint8_t *undo_data;
    int32_t *hist_mapped;              // [256] after lut; owner of the table block
    int32_t *hist_unmapped;            // [256] of the held bytes
    int16_t *lut;                      // [256] held value to display value
    int16_t *slice_colors;             // [256] a colour slot, or -1
    char    *label;                    // [24] file name without directories
    char    *file_name;                // [80] path as given; the key for refetching
    void    *aux_buffer;
    uint32_t image_id, undo_id;        // in the tile store; 0 none
};
extern band_rec bands[BANDS];

// --- windows -------------------------------------------------------------------------------------------------

enum win_flag : int16_t {
    WIN_DISPLAYED = 1, WIN_COLLAPSED = 2, WIN_PICTURE = 4, WIN_HISTOGRAM = 8, WIN_SPLOTS = 16, WIN_OVERVIEW = 32,
    CUT = 64, RESERVED_WIN = 128,
};

constexpr int32_t AREA_UNLIMITED = 2147483617;

struct win_rec {
    int16_t flags;                     // 0: free
    char    name[82];
    int32_t x, y, width, height;       // drawable area on the screen
    int32_t data_x, data_y;            // held pixel under the centre
    double  zoom;                      // screen pixels per held pixel
    int16_t red_band, green_band, blue_band;  // -1 unset; all three equal in a monochrome window
    int16_t slice_band;                // whose density slice is on, -1
    int16_t linked_window;             // split partner; an overview's or histogram's image window; -1
    struct { int32_t x0, y0, x1, y1; } hist_area;  // active image area, held pixels, inclusive
    int16_t save_kind_red, save_kind_green, save_kind_blue;
    int16_t changed;                   // edited since it was last saved
    int32_t vlt_id;                    // true colour: colour table number, 0 or 2
};
extern win_rec windows[WINDOWS];

// An image window: a picture that is not an overview.
inline bool is_image_window(int w) { return w >= 0 && (windows[w].flags & (WIN_PICTURE | WIN_OVERVIEW)) == WIN_PICTURE; }
inline bool is_picture(int w)      { return w >= 0 && (windows[w].flags & WIN_PICTURE) != 0; }

// --- display mode --------------------------------------------------------------------------------------------

enum display_mode_bit : uint32_t {
    IFB = 1, COLOR = 2, MIXED_VLT = 4, SPLIT_SCR = 8, SPLIT_DECOUPLED = 16, DEFINING_SLICE = 32, TC = 64, STATIC_VLT = 128,
    RED_BAND_ON = 256, GRN_BAND_ON = 512, BLU_BAND_ON = 1024, GAMMA_DEF = 2048, INTENSITY_VIEW = 4096,
    REFETCHING_BAND = 8192, NEW_SESSION = 32768,
};
constexpr uint32_t DISPLAY_MODE_START = 1938;  // COLOR, SPLIT_DECOUPLED, STATIC_VLT and the three bands on
extern uint32_t display_mode;

// --- shared variables ----------------------------------------------------------------------------------------

extern int32_t current_window;         // what drawing and window operations act on; every event read stores its window here
#define pick_window current_window     // the window of the last data point: a second name for the same variable
extern int32_t active_window;          // the picture that commands apply to, -1
extern int32_t hist_window, source_hist_window, scatter_window;  // -1
extern int32_t picture_count;          // picture windows that are not overviews
extern int32_t pick_x, pick_y;         // last data point, window pixels
extern char    keyin_buffer[80];
extern int32_t keyin_length;
extern int32_t quit_requested, exit_status;
extern int32_t undo_enabled;           // 1
extern int32_t grid_enabled;           // 0
extern uint32_t auto_windows;          // 1: histogram, 2: overview open with the first image
extern int32_t tile_size_code, tile_size, mem_limit;  // 7, 128, -1
extern int32_t num_planes, start_planes;
extern uint32_t plane_mask;
extern int32_t hardware_highlight;
extern int32_t highlight_colour;       // -1
extern int32_t grid_colour;            // -1: white when it is first used
extern float   font_scale;             // 1.5 or 1.0
extern int32_t max_image_width, max_image_height;
extern int32_t screen_no, screen_width, screen_height;
extern char    data_dir[256], fonts_dir[256];  // with trailing separator
extern char    image_path[256];        // prefix of relative image file names
extern int32_t fwrite_tile_code, fwrite_incr, fwrite_min, fwrite_max;  // -1, 1, 0, 255
extern char    block_file_name[128];   // block descriptor last used or set by the defaults file; "" none
extern int32_t hist_sampling_incr;     // 0: automatic
// Also shared: form_is_up and popup_forms, which the forms toolkit keeps (forms/forms.h).

// Fonts of the session, as ws_load_font identifiers.
extern int32_t font_title, font_title_small, font_text, font_text_small, font_mid, symbols;

// Screen layout, computed once from the screen size by layout_compute (shell/startup.h).
struct screen_layout {
    int32_t border_x, border_y, caption, strip;
    int32_t third_width, third_height; // largest overview
    int32_t right_half_x, half_width;  // split screen
    int32_t small_screen;
    int32_t hist_top, hist_bottom_mono, hist_bottom_colour, hist_graph_height;
    int32_t hist_red_top, hist_red_bottom, hist_green_top, hist_green_bottom, hist_blue_top, hist_blue_bottom;
    int32_t source_hist_step, right_hist_x;
    int32_t tune_left, tune_right, panel_left, panel_right, panel_top, strip_top;
    int32_t slice_bar_left, slice_bar_right;
};
extern screen_layout layout;

// Puts every session variable to its start value. Frees nothing: bands are released with band_free first.
void session_reset();

// --- the records' own operations (store/bands.cpp has the rest) ----------------------------------------------

int  band_free_slot(int first);        // lowest free band at or above `first`, or 32
void band_clear(int n);
uint32_t band_mask(int red, int green, int blue);  // red below 0 adds nothing; green or blue below 0 counts as bit 0, which is meant
int  window_overview_of(int w);        // or -1
void window_set_changed(int w, int value);
