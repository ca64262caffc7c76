// ntv.h - the native raster format: header layout, private record, and what its modules share.
//
// A file is a 1024-byte header, an optional colour table, an optional block of packets, and the pixels, which begin at a
// whole 256-word boundary: at image_offset + 2 * words_to_follow + 4. Numbers are little-endian.
//
//   ntvopen    read-open, header check           ntvinit    write-init, the slots
//   ntvwrthd   writing the header                ntvinfo    header keys and summary
//   ntvvlt     colour table and packets          ntvvax     old floating-point numbers
//   ntvpos     places of lines, seek, rewind     ntvrand    Randomize
//   ntvgetli   reading lines                     ntvputli   writing lines
//   ntvgetin   reading interleaved lines         ntvputin   writing them
//   ntvget16   reading 16-bit lines and tiles    ntvput16   writing them
//   ntvgetrl   lines as run lengths              ntvputrl   the same for writing
//   ntvsegm    lines with headers, in segments   ntvccitt   types 23 and 24
//   ntvdecode, ntvencode (ntvruns.h)             the codings, on plain memory
//   ntvdir     the tile directory                ntvgetti, ntvputti  tiles
//   ntvov      the overview or image now active  ntvmulti   several images in a file
#pragma once
#include "RIO/CORE/rio_format.h"
#include "RIO/NATV/ntvruns.h"

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
    NATV_ENCODE_BYTES = 65530,      // of the encoders' buffer at the least
    NATV_NO_LINE = 65535,           // line number when the file has ended
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
    int64_t encode_room;            // its bytes
    int64_t scratch_room;           // bytes of the record's scratch
    uint16_t line_header[4];        // id, data words, line from 0, start pixel: of the segment that comes next
    bool segments_end;              // no segment comes: the file has ended
    byte_feed *feed;                // coded bytes; its place is the file's, for compressed lines and lines with headers
    int64_t file_end;               // first byte behind all that has been written
    uint16_t (*wide_vlt)[3];        // a type 2 colour table as it is stored: 256 entries of red, green, blue
    const uint8_t *packet_buffer;   // application packets to be written; the caller's, or the library's (RIO_PACKET_OWNED)
    int64_t packet_buffer_words;    // of them, as key 7 has summed them up
    int32_t jpeg_quality;           // that key 508 asked for; 0 the default
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
int natv_get_vlt(RFILE *file, rio_vlt_entry *entries);
void natv_load_packets(RFILE *file);
int natv_get_packet(RFILE *file, void *packet);
int natv_put_packet(RFILE *file, const void *packet);
// The packets that stay when the block is written anew, read into memory. 1; 0 with the error set.
int natv_strip_packets(RFILE *file);
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

// ntvpos
bool natv_is_compressed(uint32_t type);         // lines without a length of their own, CCITT and JPEG (RIO/JPEG) included
bool natv_is_jpeg(uint32_t type);
bool natv_is_ccitt(uint32_t type);
bool natv_uses_feed(const RFILE *file);         // lines are read through the feed
int64_t natv_header_end(const RFILE *file);     // file offset from which tiles and overviews are counted
int64_t natv_data_start(const RFILE *file);     // file offset of the active image's first pixel
// The first byte behind the active image's data: the next overview's, the next image's, or the end of the file.
int64_t natv_data_end(RFILE *file);
int64_t natv_stride(const RFILE *file);         // bytes a line on disk; 0 when lines differ
int natv_seek(RFILE *file, int line);
void natv_rewind(RFILE *file);
// Decides RIO_PAD_LINE: whether lines of odd length have a pad byte on disk.
void natv_find_line_pad(RFILE *file);

int64_t natv_place(RFILE *file);                // file offset of what comes next
void natv_set_place(RFILE *file, int64_t offset);
void natv_note_line(RFILE *file);               // the place of current_line, into line_offsets
int natv_randomize(RFILE *file);

// The record's scratch, and the buffer of the encoders, of at least so many bytes; null with RIO_NO_MEMORY.
uint8_t *natv_scratch(RFILE *file, int64_t bytes);
uint8_t *natv_encode_room(RFILE *file, int64_t bytes);

// ntvsegm: lines in segments with headers of their own.
// Goes to the place of a first line header, reads it, and tells whether lines are counted from 0 or from 1.
void natv_start_segments(RFILE *file, int64_t offset);
void natv_next_segment(RFILE *file);
// One line of a file whose lines carry headers: pixels up to the end of its last segment, with zeros where no segment
// is; `width` for a line without segments. Samples of `item` bytes, 0 for bits.
int64_t natv_read_segments(RFILE *file, const natv_row *row, int item, natv_decoder decode);
natv_input natv_plain_input(RFILE *file);       // the feed up to the file's end
// Bytes of an uncompressed line, `pixel` bytes each; and codes of a line of words, cut into segments at whole codes. Both
// write nothing but the bytes in a file without line headers. 1; 0 with the error set.
int natv_write_segment(RFILE *file, const uint8_t *bytes, int64_t count, int pixel);
int natv_write_codes(RFILE *file, const uint8_t *codes, int64_t bytes);
int natv_write_whole(RFILE *file, const uint8_t *codes, int64_t bytes);     // in one segment, filled up to a whole word

// ntvgetli
int natv_getline(RFILE *file, int count, uint8_t **lines);      // slot Getline
int natv_get_line(RFILE *file, int count, uint8_t **lines);     // slot Get_line
int64_t natv_place_of_lines(RFILE *file, int *lines);
// Decodes one line of the image or tile at hand into the row. Pixels, fewer when the data end early, or NATV_OVERRUN.
int64_t natv_read_row(RFILE *file, const natv_row *row);
// Interleaved pixels, one behind another, into the row's planes; `bytes` are taken from the file. 1; 0 short.
int natv_read_pixels(RFILE *file, const natv_row *row, int64_t bytes, int64_t pixels);
natv_row natv_row_of(const RFILE *file, int count, uint8_t **lines);
// What a line that gave `got` pixels answers: pixels; 0 with RIO_READ_FAILED.
int natv_line_result(RFILE *file, int64_t got, const char *warning);

// ntvputli
int natv_putline(RFILE *file, int count, uint8_t **lines);      // slot Putline
int natv_put_line(RFILE *file, int count, uint8_t **lines);     // slot Put_line
int natv_write_row(RFILE *file, const natv_row *row);           // pixels; 0 with the error set
// Pixels of the row's planes, interleaved. 1; 0 with the error set.
int natv_write_pixels(RFILE *file, const natv_row *row, int64_t pixels);
// What every put of a line tests first; `last_only` refuses all images but the last of a chain. 0; 1 with the error set.
int natv_put_check(RFILE *file, bool last_only);
// Before and after bytes are written: the growth goes to the active overview's entry.
int64_t natv_begin_put(RFILE *file);
void natv_end_put(RFILE *file, int64_t began);
int natv_put_result(RFILE *file, int pixels);   // a failure without an error is RIO_WRITE_FAILED

// ntvgetin, ntvputin, ntvget16, ntvput16, ntvgetrl, ntvputrl: slots
int natv_get_interleaved(RFILE *file, uint8_t *buffer);
int natv_put_interleaved(RFILE *file, uint8_t *buffer);
int natv_getline16(RFILE *file, int count, uint8_t **lines);
int natv_get_line16(RFILE *file, int count, uint8_t **lines);
int natv_putline16(RFILE *file, int count, uint8_t **lines);
int natv_put_line16(RFILE *file, int count, uint8_t **lines);
int natv_get_tile16(RFILE *file, int count, uint8_t **buffers, int32_t *value);
int natv_put_tile16(RFILE *file, int count, uint8_t **buffers, const int32_t *value);
int natv_get_rle_line(RFILE *file, uint8_t *buffer, int *size);
int natv_put_rle_line(RFILE *file, const uint8_t *buffer, int size);
// The runs of the line at the present place, of the image or tile at hand. Pixels; 0 with the error set.
int natv_read_rle_row(RFILE *file, uint8_t *buffer, int *size);

// ntvccitt: lines of types 23 and 24.
int natv_start_ccitt(RFILE *file);              // 1; 0 with RIO_NO_MEMORY
// The picture's coded bytes: from `offset` on, `bytes` of them, 0 for all up to the end.
void natv_place_ccitt(RFILE *file, int64_t offset, int64_t bytes);
int natv_get_ccitt(RFILE *file, uint8_t *line); // null skips
int natv_put_ccitt(RFILE *file, const uint8_t *line);

// ntvdir: the tile directory, held in the tile record.
enum { NATV_TILE_HEAD = 128, NATV_TILE_ENTRY = 12 };
struct natv_entry {
    uint32_t offset;            // from the end of the header; 0 solid
    uint32_t allocated;
    uint32_t used;              // bytes; the level of a solid tile
};
int64_t natv_tile_count(const RFILE *file);
natv_entry natv_get_entry(const RFILE *file, int64_t tile);
void natv_set_entry(RFILE *file, int64_t tile, natv_entry entry);
int natv_make_directory(RFILE *file);           // a zeroed one, at the start of the data. 1; 0 with the error set
int natv_load_directory(RFILE *file);           // 1; 0 with the error set
int natv_write_directory(RFILE *file);          // back at its place. 1; 0 with RIO_WRITE_FAILED
void natv_drop_tiles(RFILE *file);

// ntvgetti, ntvputti: slots
int natv_get_tile(RFILE *file, int count, uint8_t **buffers, int32_t *value);
int natv_put_tile(RFILE *file, int count, uint8_t **buffers, const int32_t *value);
int natv_get_rle_tile(RFILE *file, uint8_t *buffer, int *size, int32_t *value);
int64_t natv_place_of_tile(RFILE *file, int64_t tile, int64_t *row_bytes);
int natv_put_rle_tile(RFILE *file, const uint8_t *buffer, int size, const int32_t *value);
// The record made to stand for one tile: its live size, its line 0. And back.
struct natv_tile {
    int32_t width, height, current;     // of the image; the tile's number
    natv_entry entry;
};
natv_tile natv_enter_tile(RFILE *file, int64_t tile);
void natv_leave_tile(RFILE *file, const natv_tile &tile);
void natv_start_tile(RFILE *file, const natv_entry &entry);     // goes to the tile's first line
// What every put of a tile tests first; an overview's directory is made with its first tile. 1; 0 with the error set.
int natv_put_tile_check(RFILE *file);
// Chooses the place of a tile to be written and goes there; then what was written becomes the tile's entry.
int natv_begin_tile(RFILE *file, const natv_tile &tile, int64_t *at);
int natv_end_tile(RFILE *file, const natv_tile &tile, int64_t at);
// A tile of uncompressed lines at the full width: one read or write does.
bool natv_tile_is_plain(const RFILE *file);         // samples of one plane
bool natv_tile_is_interleaved(const RFILE *file);   // pixels of several

// ntvov: overviews. The directory is a packet: 20 bytes of head, records of 16 bytes, entries of 12.
enum { NATV_OVERVIEW_HEAD = 20, NATV_OVERVIEW_RECORD = 16, NATV_OVERVIEW_TILED = 0x10000 };
int natv_overview_count(const RFILE *file);
uint8_t *natv_overview_record(const RFILE *file, int overview);     // height, width, flags
uint8_t *natv_overview_entry(const RFILE *file, int overview);
int64_t natv_overview_offset(const RFILE *file);                    // of the active one; 0 for the base image
int natv_set_overview_count(RFILE *file, int count);                // key 200
void natv_note_overview(RFILE *file);           // size and tiling of the active overview, into its record
int natv_init_ov(RFILE *file, RFILE *target);
int natv_set_active_ov(RFILE *file, int overview);

// ntvmulti
int natv_get_image_count(RFILE *file);
int natv_set_image_count(RFILE *file, int count);
int natv_set_active_image(RFILE *file, int image);
void natv_close_image(RFILE *file);             // writes back what is dirty
int64_t natv_file_end(RFILE *file);             // first byte behind all that lies in the file

// ntvopen: flags and record fields that the header fixes. 1; 0 with the error set.
int natv_take_header(RFILE *file);
