// sun.h - Sun raster: eight words of header, a colour map, lines of whole 16-bit units. Standard id 15.
//
//   sunopen   detection, header, binding for both directions    suninfo   header keys, colour table, seeking
//   sungetli  reading lines                                       sunputli  the header and lines out
//   sunrle    the byte run lengths of type 2
#pragma once
#include "RIO/CORE/rio_format.h"
#include "RIO/SUN/sunrle.h"

enum : uint32_t { SUN_MAGIC = 0x59A66A95, SUN_MAGIC_SWAPPED = 0x956AA659 };

// byte_order of a file: "II" and "MM" as numbers. Files in the other order than the usual one are marked by "MM", which
// the name would not lead one to expect; this is meant.
enum { SUN_ORDER_BIG = 18761, SUN_ORDER_SWAPPED = 19789 };

enum sun_type : uint32_t { SUN_OLD, SUN_STANDARD, SUN_BYTE_RUNS, SUN_RGB, SUN_TIFF, SUN_IFF };
enum sun_map : uint32_t { SUN_MAP_NONE, SUN_MAP_RGB, SUN_MAP_RAW };

enum { SUN_HEADER_BYTES = 32, SUN_LENGTH_OFFSET = 16, SUN_MAP_BYTES = 768 };

// Key 501 of a new file: 2 writes byte run lengths (type 2), as bitmap run lengths (data type 9) do by themselves.
enum { SUN_KEY_COMPRESSION = 501 };

enum { SUN_CHUNK = 3 * 8192 };      // bytes; whole pixels of any depth

struct sun_specs {
    int32_t byte_order;
    uint32_t depth;                 // bits a pixel in the file: 1, 4, 8, 24, 32
    uint32_t length;                // bytes of data as the header says; not trusted
    uint32_t type;                  // sun_type
    uint32_t map_type, map_length;
    int32_t compression;            // as key 501 was set
    int64_t data_offset;            // of the first line
    int64_t row_bytes;              // of a stored line, pad included
    bool invert;                    // bilevel: the map makes a 0 the darker one
    int64_t coded_bytes;            // written so far to a new type 2 file
    int64_t put_line;               // the line that the stream stands at for a put; -1 not known
    int32_t coded_line;             // type 2: the line that `coded` stands at; -1 to be found
    sun_runs coded;
    feed_marks marks;               // type 2: where lines begin
    uint8_t chunk[SUN_CHUNK];       // stored samples on their way to or from the planes
};

inline sun_specs *sun_of(RFILE *file) { return static_cast<sun_specs *>(file->specs); }

// Bytes of a line with its pad to 16 bits.
inline int64_t sun_row_bytes(int64_t width, uint32_t depth) { return (width * depth + 15) / 16 * 2; }

// Slots.
int sun_get_hdr_data(RFILE *file, int key, void *value);
int sun_set_hdr_data(RFILE *file, int key, const void *value);
int sun_seek(RFILE *file, int line);
int sun_get_line(RFILE *file, int count, uint8_t **lines);
int sun_put_line(RFILE *file, int count, uint8_t **lines);
int sun_wrt_hdr(RFILE *file);
void sun_close(RFILE *file);
int sun_init_std_hdr(RFILE *file, RFILE *target);
int64_t sun_get_image_offset(RFILE *file);
