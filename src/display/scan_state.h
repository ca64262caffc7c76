// scan_state.h - what the files of the scan routines share. Nobody outside this family includes it.
//
//   scan.cpp           chooses the routine of a window, keeps its state
//   scan_routines.cpp  the fourteen routines: walking the lines of the window
//   scan_geometry.cpp  where the pixels of the window lie in the source
//   scan_values.cpp    what is written for a source byte
//   scan_output.cpp    where finished lines go
//   scan_kernels.cpp   the inner loops
#pragma once
#include "display/scan.h"
#include "display/scan_geometry.h"
#include "display/scan_kernels.h"

struct scan_state;
struct scan_value;

struct scan_routine {
    void (*walk)(const scan_state &state, const view_source &source);
    const scan_routine *in_memory;     // its variant that writes to the target
};

struct scan_state {
    int window;
    window_rect clip;
    uint32_t value_mask;               // 255 or 511 slots, 16777215 packed colour
    const uint16_t *tables[3];         // red, green, blue
    scan_steps steps;
    const scan_routine *scan;          // scan_nothing until one is chosen
    const scan_value *value;
    uint8_t *target;                   // memory in place of the window, or null
};

// --- display values (scan_values.cpp) ------------------------------------------------------------------------

// The tables of a paint, made from the state's before its first line.
struct scan_tables {
    uint8_t  slots[256];
    uint16_t wide_slots[256];
    grey_tables grey;                  // packed colours
    colour_tables colour;
    uint8_t  dithered[16][256];        // slot by dither cell
    uint16_t keys[3][16][256];         // parts of a key into colour_map or the 4-plane map, by dither cell
};

enum scan_sink { SINK_BITS, SINK_8, SINK_16, SINK_24 };

struct scan_value {
    int  planes;                       // 1 or 3 source bands
    bool packed_bits;                  // the source has one bit a pixel
    bool by_place;                     // depends on where the pixel is: a line cannot be repeated
    int  bytes;                        // of one display value
    scan_sink sink;
    void (*prepare)(const scan_state &state, scan_tables *tables);
    // A line of source bytes to display values; x, y is the window pixel where it begins.
    void (*map)(const scan_tables &tables, const uint8_t *const in[3], int x, int y, int count, void *out);
};

extern const scan_value value_bits, value_8, value_16, value_grey24, value_dither, value_rgb24, value_rgb_slots, value_rgb_wide_slots;

// --- where lines go (scan_output.cpp) --------------------------------------------------------------------------

struct scan_output {
    const scan_state *state;
    const scan_value *value;
    window_rect limit;                 // what may be written
    uint8_t *placed;                   // pixel limit.x0, limit.y0 of memory that holds all lines, or null: they are put one by one
    int64_t line_bytes;                // between two placed lines
    bool rows_of_window;
};

scan_output output_begin(const scan_state &state, const scan_value &value);
uint8_t *output_line(const scan_output &output, int x, int y);  // where the line that begins at x, y is to be made
void output_put(const scan_output &output, int x, int y, int count, const void *line);
void output_end(const scan_output &output);

// --- buffers (scan.cpp) ------------------------------------------------------------------------------------------

constexpr int SCAN_STRIP = 32;         // window lines between two looks at the events

struct scan_scratch {
    int64_t width;                     // the widest clip that there is room for
    uint8_t *samples[3];               // SCAN_STRIP rows of that width each
    int32_t *columns;
    uint8_t *line, *values;            // one line of the widest display values each
};
extern scan_scratch scratch;

// Bytes in a row of one-bit pixels.
inline int64_t bit_row_bytes(int64_t pixels) { return (pixels + 15) / 16 * 2; }

// Byte offset of each source row, filled again only when the height or the stride changes.
const int64_t *row_offsets_for(int64_t height, int64_t stride);  // null without memory

// --- the routines (scan_routines.cpp) ----------------------------------------------------------------------------

extern const scan_routine scan_nothing;
extern const scan_routine scan_bits, scan_dither, scan_grey24, scan_8, scan_16, scan_rgb, scan_to_memory;
extern const scan_routine scan_bits_rot, scan_dither_rot, scan_grey24_rot, scan_8_rot, scan_16_rot, scan_rgb_rot, scan_to_memory_rot;

const scan_state *scan_state_of(int window);

// At every 32nd line: 1 when a click asks for an end of the painting. The release of a button is swallowed.
int paint_interrupted(int y);
