// ntv.h - the native raster format: header layout, private record, and what its modules share.
//
// A file is a 1024-byte header, an optional colour table, an optional block of packets, and the pixels, which begin at a
// whole 256-word boundary: at image_offset + 2 * words_to_follow + 4. Numbers are little-endian.
//
//   ntvopen    read-open, header check           ntvinit    write-init, the slots
//   ntvwrthd   writing the header                ntvinfo    header keys and summary
//   ntvvlt     colour table and packets          ntvpos     places of lines, seek, rewind
//   ntvgetli   reading lines                     ntvputli   writing lines
//   ntvov      the image or overview now active  ntvvax     old floating-point numbers
#pragma once
#include "RIO/CORE/rio_format.h"

enum { NATV_HEADER_BYTES = 1024, NATV_SHORT_HEADER_BYTES = 768 };

// Byte offsets in the header.
enum natv_field {
    NATV_BLOCK_TYPE = 0,            // u16, 0x0908
    NATV_WORDS = 2,                 // u16, header length in words, less 2
    NATV_DATA_TYPE = 4,             // i16
    NATV_APPLICATION_TYPE = 6,      // i16
    NATV_VIEW_ORIGIN = 8,           // 3 doubles
    NATV_VIEW_EXTENT = 32,          // 3 doubles
    NATV_TRANSFORM = 56,            // 16 doubles
    NATV_WIDTH = 184,               // u32
    NATV_HEIGHT = 188,              // u32
    NATV_DEVICE_CODE = 192,         // i16
    NATV_ORIENTATION = 194,         // u8
    NATV_FLAGS = 195,               // u8, bit 0 lines carry headers
    NATV_ROTATION = 196,            // double
    NATV_SKEW = 204,                // double
    NATV_TYPE_MODIFIER = 212,       // i16
    NATV_LABEL1 = 214,              // 66 bytes each
    NATV_LABEL2 = 280,
    NATV_LABEL3 = 346,
    NATV_CREATOR = 412,             // 80 bytes
    NATV_MINIMUM = 492,             // 8 bytes
    NATV_MAXIMUM = 500,             // 8 bytes
    NATV_VERSION = 511,             // u8
    NATV_SECOND_BLOCK = 512,
    NATV_ASPECT_RATIO = 520,        // double
    NATV_NEXT_IMAGE = 528,          // u32
    NATV_VLT_TYPE = 532,            // i16
    NATV_VLT_ENTRIES = 536,         // u32
    NATV_PACKET_OFFSET = 540,       // u32, bytes from the start of the image
    NATV_PACKET_WORDS = 544,        // u32
    NATV_BACKGROUND = 768,          // 3 u32, with application type 9
    NATV_COMMENT = 780,             // 200 bytes, with application type 9
};

enum {
    NATV_MAGIC = 0x0908,
    NATV_DEFAULT_WORDS = 510,
    NATV_BYTE_TABLE_WORDS = 766,    // header words with a colour table of type 1
    NATV_VERSION_WRITTEN = 3,
    NATV_VERSION_VAX = 2,           // with application type 1 or 2: view and angles are old floating-point numbers
    NATV_APPLICATION_9 = 9,         // background and comment are in use
    NATV_LINE_HEADER_ID = 0x5900,
    NATV_MOST_ENTRIES = 512,        // of a colour table
    NATV_TABLE_STEP = 64,           // entries are padded to a multiple of this
    NATV_BLOCK_WORDS = 256,
    NATV_PACKET_HEAD = 8,           // u16 id, u16 code, u32 words of the body
};

// A packet held whole, head included; null when there is none.
struct natv_packet {
    uint8_t *bytes;
    int64_t words;                  // of the whole packet: 4 for the head, and the body
};

struct natv_specs {
    int32_t pixels_per_line, line_count;
    uint32_t data_type;             // the real one, also of a tiled file
    int32_t data_start_words;       // words kept free between packets and pixels
    uint8_t *tile_buffer;
    natv_packet overview_dir;
    natv_packet jpeg_packet;
    uint8_t *encode_buffer;
    uint16_t line_header[4];        // id, words to follow, line, offset: of a file whose lines carry headers
    const uint8_t *packet_buffer;   // application packets to be written; the caller's
    int64_t packet_buffer_words;    // of them, as key 7 has summed them up
    uint8_t header[NATV_HEADER_BYTES];
};

inline natv_specs *natv(const RFILE *file) { return (natv_specs *)file->specs; }

inline int natv_u16(const RFILE *file, natv_field f) { return le_u16(natv(file)->header + f); }
inline int natv_i16(const RFILE *file, natv_field f) { return le_i16(natv(file)->header + f); }
inline uint32_t natv_u32(const RFILE *file, natv_field f) { return le_u32(natv(file)->header + f); }
inline void natv_put_u16(RFILE *file, natv_field f, int v) { put_le_u16(natv(file)->header + f, uint16_t(v)); }
inline void natv_put_u32(RFILE *file, natv_field f, int64_t v) { put_le_u32(natv(file)->header + f, uint32_t(v)); }

// ntvinit: a header with its start values and the record's size; the slots of the format.
void natv_start_header(RFILE *file);
void natv_bind(RFILE *file);
void natv_free_specs(RFILE *file);

// ntvopen: 1 when the header is one of the format; old headers are brought to the present form.
int natv_check_header(RFILE *file, const char *name);
// 1 for a code that may stand in a header (65 included).
int natv_is_data_type(int code);

// ntvvlt
void natv_load_vlt(RFILE *file);
void natv_load_packets(RFILE *file);
int natv_get_packet(RFILE *file, void *packet);
int natv_put_packet(RFILE *file, const void *packet);
// Words of the packets that the library itself keeps in the block (overview directory, JPEG tables).
int64_t natv_library_packet_words(const RFILE *file);

// ntvwrthd
int natv_write_header(RFILE *file);

// ntvinfo
int natv_get_hdr_data(RFILE *file, int key, void *value);
int natv_set_hdr_data(RFILE *file, int key, const void *value);
int natv_get_stat(RFILE *file, rio_stat *stat);
int natv_set_stat(RFILE *file, const rio_stat *stat);

// ntvvax: doubles of the old floating-point form at any address, and back. Too large becomes the largest, too small 0.
double natv_from_vax(const uint8_t *p);
void natv_to_vax(uint8_t *p, double value);

// ntvov: makes an overview, or with -1 the base image, the active one. 0; 1 with the error set.
int natv_set_active_ov(RFILE *file, int overview);

// ntvpos
int64_t natv_data_start(const RFILE *file);     // file offset of the active image's first pixel
int64_t natv_stride(const RFILE *file);         // bytes a line on disk; 0 when lines differ
int natv_seek(RFILE *file, int line);
void natv_rewind(RFILE *file);
// Decides RIO_PAD_LINE: whether lines of odd length have a pad byte on disk.
void natv_find_line_pad(RFILE *file);

// ntvgetli, ntvputli
int natv_get_line(RFILE *file, int count, uint8_t **lines);
int natv_put_line(RFILE *file, int count, uint8_t **lines);
