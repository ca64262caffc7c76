// sym.h - symbol and font files: "FONT", two sizes, a map from character to glyph, glyph records, glyph bits; numbers
// are little-endian. As an image file it holds one bilevel image for each glyph record. Standard id 10.
//
//   symopen   detection, header, binding for both directions    syminfo   images, seeking
//   symgetli  reading lines                                       symputli  the header and lines out
#pragma once
#include "RIO/CORE/rio_format.h"

// The two sizes count from byte 8, where the second of them stands: the records take `bits start` - 260 bytes and end
// there, the bits end at `size`.
enum {
    SYM_SIZE = 4,               // u32
    SYM_BITS_START = 8,         // u32
    SYM_MAP = 12,               // character code to glyph number; 0 no glyph, n is record n - 1
    SYM_MAP_BYTES = 256,
    SYM_RECORDS = 268,
    SYM_RECORD_BYTES = 8,
    SYM_COUNTED_FROM = 8,
    SYM_LEAST_START = 260,
};

// A record: u16 offset of the glyph's bits from the first bits, then bytes.
enum { SYM_WIDTH = 2, SYM_HEIGHT = 3, SYM_X_OFFSET = 4, SYM_Y_OFFSET = 5, SYM_ADVANCE = 6, SYM_ASCENT = 7 };

enum { SYM_LARGEST = 255 };     // width or height of a glyph
constexpr int SYM_NEW_CHARACTER = 33;   // the character of the glyph that is written

struct sym_specs {
    int32_t glyphs;
    int64_t bits_offset;        // of the glyph bits in the file
    int64_t bits_bytes;
    int64_t glyph_offset;       // of the active glyph's bits in the file
    bool empty;                 // the active glyph has no pixels
};

inline sym_specs *sym_of(RFILE *file) { return static_cast<sym_specs *>(file->specs); }

// Reads record `glyph` and makes its size the file's. A glyph without pixels, as of a blank, shows as one clear pixel,
// so that no caller meets an empty picture. 1; 0 when the record cannot be read or its bits lie outside the file's.
int sym_activate(RFILE *file, int glyph);

// Slots.
int sym_seek(RFILE *file, int line);
int sym_get_image_count(RFILE *file);
int sym_set_active_image(RFILE *file, int image);
int sym_get_line(RFILE *file, int count, uint8_t **lines);
int sym_put_line(RFILE *file, int count, uint8_t **lines);
int sym_wrt_hdr(RFILE *file);
