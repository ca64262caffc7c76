// cals.h - CALS raster: sixteen text records of 128 bytes, then a bilevel picture in Group 4: whole (type 1), or in tiles
// within an ISO 8613 stream (type 2). A 1 is ink. Standard id 11.
//
//   calsopen  detection, the text records, binding for both directions   calsinfo  header keys, orientation, seeking
//   calstile  type 2: the stream's elements, read to a list of tiles     calwrthd  records and stream out
//   calgetli  lines and tiles in                                         calputli  lines and tiles out
#pragma once
#include "RIO/CIT/cit.h"
#include "RIO/CORE/rio_format.h"

enum { CALS_RECORD_BYTES = 128, CALS_RECORDS = 16, CALS_HEADER_BYTES = CALS_RECORD_BYTES * CALS_RECORDS };

enum { CALS_TILE_SIZE = 512 };      // pixels each way, where a file does not say otherwise; always in files written here

// How a tile's bytes are coded. The last three have their first pixel in the high bit of a byte, like bitmaps; the other
// coded ones in the low bit.
enum cals_tile_type : uint8_t {
    CALS_WHITE, CALS_BLACK,         // no bytes
    CALS_T6_LOW, CALS_T4_1D_LOW, CALS_T4_2D_LOW,
    CALS_BITMAP,
    CALS_T6, CALS_T4_1D, CALS_T4_2D,
    CALS_TILE_TYPES
};

struct cals_tile {
    uint8_t type;                   // cals_tile_type
    uint8_t *coded;                 // a tile written and not yet on disk; else null
    int64_t offset;                 // in the file, else; bytes that are not there read as white
    int64_t bytes;
};

inline bool cals_is_solid(const cals_tile &tile) { return tile.type == CALS_WHITE || tile.type == CALS_BLACK; }

struct cals_specs {
    int32_t orientation;            // scan-line code
    int32_t next_line;              // writing type 1: the line expected next
    cals_tile *tiles;               // type 2, row by row
    int64_t tile_count;
};

inline cals_specs *cals_of(RFILE *file) { return static_cast<cals_specs *>(file->specs); }

inline int64_t cals_data_start(const RFILE *file) { return file->image_offset + CALS_HEADER_BYTES; }

// Bytes of a tile's row as it is handed out.
inline int64_t cals_tile_words(const RFILE *file) { return rio_bitmap_words(file->tiles->tile_width); }

// The two numbers of a picture's orientation record, and back: a pair that means none is that of rows downward.
struct cals_pair {
    int32_t pels, lines;            // degrees
};
cals_pair cals_pair_of(int32_t orientation);
int32_t cals_orientation_of(cals_pair pair);

// Reads the stream of a type 2 file, whose record has its size: tile size and tiles. 1; 0 with the error set.
int cals_read_stream(RFILE *file);

// Decodes tile `index`, which is not solid, into rows of whole words. What is damaged or missing is white. 1; 0 with the
// error set.
int cals_decode_tile(RFILE *file, int64_t index, uint16_t *words);

void cals_free_tiles(cals_specs *specs);

// Slots.
int cals_get_hdr_data(RFILE *file, int key, void *value);
int cals_set_hdr_data(RFILE *file, int key, const void *value);
int cals_get_stat(RFILE *file, rio_stat *stat);
int cals_set_stat(RFILE *file, const rio_stat *stat);
int cals_seek(RFILE *file, int line);
int64_t cals_get_image_offset(RFILE *file);
int cals_get_line(RFILE *file, int count, uint8_t **lines);
int cals_get_tile(RFILE *file, int count, uint8_t **buffers, int32_t *value);
int cals_put_line(RFILE *file, int count, uint8_t **lines);
int cals_put_tile(RFILE *file, int count, uint8_t **buffers, const int32_t *value);
int cals_wrt_hdr(RFILE *file);
void cals_close(RFILE *file);
