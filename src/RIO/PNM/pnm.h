// pnm.h - portable bitmaps, graymaps and pixmaps: "P" and a kind, then width, height and (but for bitmaps) the maximum
// value as text, then the samples, top line first. Standard id 14.
//
//   pnmopen   detection, header, binding for both directions    pnmtext   numbers between blanks and comments
//   pnminfo   header keys, seeking                               pnmgetli  reading lines
//                                                                pnmputli  the header and lines out
#pragma once
#include "RIO/CORE/byte_feed.h"
#include "RIO/CORE/rio_format.h"

// The digit of the magic.
enum pnm_kind : int32_t {
    PNM_BITMAP_TEXT = 1,
    PNM_GRAY_TEXT = 2,
    PNM_RGB_TEXT = 3,
    PNM_BITMAP = 4,
    PNM_GRAY = 5,
    PNM_RGB = 6,
};

// Key 501 of a new file: 7 ("Ascii" of the capability table) writes the text form, anything else the raw one.
enum { PNM_KEY_COMPRESSION = 501, PNM_ASCII = 7 };

// feed_line above every line: the feed has to be brought to a known place first.
enum { PNM_FEED_ASTRAY = 0x7FFFFFFF };

enum { PNM_CHUNK = 3 * 8192 };      // bytes; whole pixels of any kind

struct pnm_specs {
    int32_t kind;
    int32_t max_value;
    int32_t compression;            // as key 501 was set
    int64_t data_offset;            // of the first sample
    int64_t row_bytes;              // of a raw line
    int32_t feed_line;              // text: the line that the feed stands at
    int64_t put_line;               // the line that the stream stands at for a put; -1 not known
    uint8_t *levels;                // every byte or word to 0 to 255; null for samples that are handed out as stored
    feed_marks marks;               // text: where lines begin
    byte_feed feed;                 // text
    uint8_t chunk[PNM_CHUNK];       // raw samples on their way to or from the planes
};

inline pnm_specs *pnm_of(RFILE *file) { return static_cast<pnm_specs *>(file->specs); }
inline int pnm_is_text(int32_t kind) { return kind <= PNM_RGB_TEXT; }
inline int pnm_is_bitmap(int32_t kind) { return kind == PNM_BITMAP_TEXT || kind == PNM_BITMAP; }
inline int pnm_samples(int32_t kind) { return kind == PNM_RGB_TEXT || kind == PNM_RGB ? 3 : 1; }

// Bytes of a raw line; samples take two bytes when the maximum value is above 255.
int64_t pnm_row_bytes(int64_t width, int32_t kind, int32_t max_value);

// The level 0 to 255 of sample `value`, clipped to `max_value`. Up to 255 it is value * 255 / max_value, to nearest,
// halves to even; above, the samples are spread to 16 bits, to nearest, and keep their high byte.
uint8_t pnm_level(int32_t value, int32_t max_value);

// Slots.
int pnm_get_hdr_data(RFILE *file, int key, void *value);
int pnm_set_hdr_data(RFILE *file, int key, const void *value);
int pnm_seek(RFILE *file, int line);
int pnm_get_line(RFILE *file, int count, uint8_t **lines);
int64_t pnm_place_of_lines(RFILE *file, int *lines);
int pnm_put_line(RFILE *file, int count, uint8_t **lines);
int pnm_wrt_hdr(RFILE *file);
