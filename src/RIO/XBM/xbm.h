// xbm.h - X bitmaps: a C source text that defines NAME_width, NAME_height, perhaps NAME_x_hot and NAME_y_hot, and an
// array NAME_bits of numbers, eight pixels each (sixteen in arrays of short), the lowest bit leftmost. A 1 is black.
// Standard id 13.
//
//   xbmopen   detection, header, binding for both directions    xbminfo   header keys, seeking
//   xbmgetli  reading lines                                       xbmputli  the header and lines out
#pragma once
#include "RIO/CORE/byte_feed.h"
#include "RIO/CORE/rio_format.h"

enum { XBM_STEM_SIZE = 80 };

struct xbm_specs {
    int32_t x_hot, y_hot;
    int64_t data_offset;            // of the first byte behind "{"
    int32_t number_bits;            // pixels of a number: 8, or 16 in the older form with shorts
    int32_t row_numbers;            // numbers of a line
    int32_t feed_line;              // the line that the feed stands at; XBM_FEED_ASTRAY to be found
    int32_t put_line;               // the line due for a put
    feed_marks marks;               // where lines begin
    byte_feed feed;
};

// feed_line above every line: the feed has to be brought to a known place first.
enum { XBM_FEED_ASTRAY = 0x7FFFFFFF };

inline xbm_specs *xbm_of(RFILE *file) { return static_cast<xbm_specs *>(file->specs); }

// Slots.
int xbm_seek(RFILE *file, int line);
int xbm_get_line(RFILE *file, int count, uint8_t **lines);
int xbm_put_line(RFILE *file, int count, uint8_t **lines);
int xbm_wrt_hdr(RFILE *file);
