// tif.h - TIFF 6.0: a chain of directories (IFDs), each of them an image in strips or tiles. Standard id 1.
//
//   tifopen   the chain, what it means, binding for reading        tifwrthd  layout, header, directories out
//   tififd    one directory: its tags in three passes              tifputli  lines into strips
//   tifstrip  strips and tiles from the file, decoded              tifputti  tiles out
//   tifgetli  stored rows to lines                                 tiflzw    LZW
//   tifgetti  tiles, and lines out of tiles                        tifpack   PackBits, predictor
//   tifcit    bilevel strips through the CCITT codec               tifmulti  pages and overviews
//   tifinfo   header keys asked, colour table, seeking             tifset    header keys set
#pragma once
#include "RIO/CORE/rio_format.h"
#include "RIO/TIFF/tiflzw.h"

struct cit_encoder;

enum { TIF_LITTLE_ENDIAN = 18761, TIF_BIG_ENDIAN = 19789, TIF_VERSION = 42 };

enum tif_tag : uint16_t {
    TIF_SUBFILE_TYPE = 254,
    TIF_IMAGE_WIDTH = 256,
    TIF_IMAGE_LENGTH = 257,
    TIF_BITS_PER_SAMPLE = 258,
    TIF_COMPRESSION = 259,
    TIF_PHOTOMETRIC = 262,
    TIF_FILL_ORDER = 266,
    TIF_STRIP_OFFSETS = 273,
    TIF_ORIENTATION = 274,
    TIF_SAMPLES_PER_PIXEL = 277,
    TIF_ROWS_PER_STRIP = 278,
    TIF_STRIP_COUNTS = 279,
    TIF_MIN_SAMPLE = 280,
    TIF_MAX_SAMPLE = 281,
    TIF_X_RESOLUTION = 282,
    TIF_Y_RESOLUTION = 283,
    TIF_PLANAR_CONFIG = 284,
    TIF_T4_OPTIONS = 292,
    TIF_RESOLUTION_UNIT = 296,
    TIF_PREDICTOR = 317,
    TIF_COLOR_MAP = 320,
    TIF_TILE_WIDTH = 322,
    TIF_TILE_LENGTH = 323,
    TIF_TILE_OFFSETS = 324,
    TIF_TILE_COUNTS = 325,
    TIF_S_MIN_SAMPLE = 340,
    TIF_S_MAX_SAMPLE = 341,
    TIF_PACKETS = 33918,
    TIF_PRIVATE_WORDS = 33919,
};

enum tif_type : uint16_t { TIF_BYTE = 1, TIF_ASCII = 2, TIF_SHORT = 3, TIF_LONG = 4, TIF_RATIONAL = 5 };

enum tif_compression : uint16_t {
    TIF_UNCOMPRESSED = 1,
    TIF_CCITT_RLE = 2,
    TIF_CCITT_G3 = 3,
    TIF_CCITT_G4 = 4,
    TIF_LZW = 5,
    TIF_PACKBITS = 32773,
};

enum tif_photometric : uint16_t {
    TIF_WHITE_IS_ZERO = 0,
    TIF_BLACK_IS_ZERO = 1,
    TIF_RGB = 2,
    TIF_PALETTE = 3,
    TIF_CMYK = 5,
    TIF_YCBCR = 6,
    TIF_NO_PHOTOMETRIC = 0xFFFF,    // the tag is absent
};

enum { TIF_CONTIGUOUS = 1, TIF_PLANAR = 2 };
enum { TIF_DIFFERENCES = 2 };       // predictor
enum { TIF_REDUCED = 1 };           // bit of subfile_type: an overview
enum { TIF_ONE_STRIP = -1 };        // rows_per_strip: all rows in one

// Bits of state.
enum : uint32_t {
    TIF_HAS_COLOR_MAP = 8,
    TIF_IS_TILED = 16,
    TIF_MUST_WRITE = 0x0100,        // the directory must be written
    TIF_WAS_WRITTEN = 0x0200,       // it has been written once
    TIF_CHANGED = 0x0400,           // header data have changed
    TIF_LAID_OUT = 0x1000,          // strips or tiles have their sizes and tables
};

// The packet of tag 33918 that holds the matrix: id, code, words of the body (two words), then 16 doubles.
enum { TIF_PACKET_HEAD = 4, TIF_MATRIX_ID = 2, TIF_MATRIX_CODE = 10, TIF_MATRIX_WORDS = 64 };

enum { TIF_ENTRY_BYTES = 12, TIF_HEADER_BYTES = 8, TIF_MOST_SAMPLES = 4, TIF_COLORS = 256 };

// A strip or tile that is held, decoded. `pixels` are stored rows; `bytes` of them are there.
struct tif_held {
    int64_t index;                  // of the strip or tile; -1 none
    uint8_t *pixels;
    int64_t bytes, room;
    // A bilevel one of the CCITT codec is a list of runs instead.
    uint16_t *runs;
    uint32_t *run_index;            // entry of each line; 0 for a line that was not reached, which is white
    int64_t lines;
};

// A tag that a caller gave through key 509: its head as in a directory, and its values in the file's order.
struct tif_user_tag {
    uint16_t tag, type;
    uint32_t count;
    uint8_t *values;
};

// The strip or tile that is being made.
struct tif_writing {
    uint8_t *rows[TIF_MOST_SAMPLES];        // stored rows, or PackBits codes, one buffer for each plane
    int64_t fill[TIF_MOST_SAMPLES], room[TIF_MOST_SAMPLES];
    int32_t lines;                  // in hand
    int32_t next_line;              // the line expected next
    uint8_t *out;                   // coded bytes
    int64_t out_room;
    lzw_state lzw;
    cit_encoder *encoder;           // of a CCITT strip begun; coded bytes are in `out`
    uint16_t *runs;                 // two run lists, of even and odd lines
};

// One directory. RFILE.specs is the one of the active image; the others hang on it by next_ifd and prev_ifd.
struct tif_specs {
    uint32_t ifd_offset;            // from the image offset on; 0 when not yet in the file
    uint32_t end_of_ifd;            // just after the word that links to the next
    uint32_t image_length, image_width;
    uint32_t subfile_type;
    uint32_t max_sample[TIF_MOST_SAMPLES], min_sample[TIF_MOST_SAMPLES];
    uint16_t byte_order;
    uint16_t samples_per_pixel;
    uint16_t bits_per_sample[TIF_MOST_SAMPLES];
    uint16_t compression, predictor, photometric, planar_config, resolution_unit, orientation, fill_order;
    uint32_t t4_options;            // bit 0: Group 3 data are two-dimensional
    uint32_t overview_count;        // in the first directory, and in that of an active overview
    int32_t rows_per_strip;         // of a tiled image the tile length
    int32_t last_strip_rows;
    uint32_t strip_count;           // strips or tiles, of all planes
    uint32_t *strip_offsets, *strip_counts;
    uint32_t offsets_held, counts_held;     // entries that the tables have; the rest are 0
    uint32_t tile_width, tile_length, tiles_across, tiles_down;
    uint32_t x_res[2], y_res[2];
    uint16_t *packets;              // tag 33918, in the machine's order
    uint32_t packet_count;          // words
    bool has_transform;
    double transform[16];
    uint16_t private_words[16];     // tag 33919; carried as they stand
    uint32_t state;
    uint16_t ifd_entry_count;
    uint8_t *ifd_entries;           // as the file has them
    uint16_t *color_map;            // 256 reds, 256 greens, 256 blues; null without a map
    tif_held held[TIF_MOST_SAMPLES];        // one for each plane, one in all when samples are contiguous
    uint8_t *coded;                 // stored bytes of a strip on their way
    int64_t coded_room;
    tif_specs *next_ifd, *prev_ifd;

    // Writing.
    int64_t file_end;               // where the next strip, table or directory goes, from the image offset on
    int32_t wanted_rows;            // rows_per_strip as key 505 was set; 0 for a strip of a handy size
    tif_user_tag *user_tags;
    uint32_t user_tag_count;
    const uint16_t *app_packets;    // the caller's
    int32_t app_packet_words;
    tif_writing unit;
};

inline tif_specs *tif_of(const RFILE *file) { return static_cast<tif_specs *>(file->specs); }

inline bool tif_big_endian(const tif_specs *specs) { return specs->byte_order == TIF_BIG_ENDIAN; }
inline uint16_t tif_u16(const tif_specs *specs, const uint8_t *p) { return tif_big_endian(specs) ? be_u16(p) : le_u16(p); }
inline uint32_t tif_u32(const tif_specs *specs, const uint8_t *p) { return tif_big_endian(specs) ? be_u32(p) : le_u32(p); }

inline bool tif_is_tiled(const tif_specs *specs) { return specs->state & TIF_IS_TILED; }
inline bool tif_is_ccitt(const tif_specs *specs)
{
    return specs->compression >= TIF_CCITT_RLE && specs->compression <= TIF_CCITT_G4;
}
// Each sample in strips or tiles of its own.
inline bool tif_is_planar(const tif_specs *specs)
{
    return specs->planar_config == TIF_PLANAR && specs->samples_per_pixel > 1;
}
inline int tif_planes(const tif_specs *specs) { return tif_is_planar(specs) ? specs->samples_per_pixel : 1; }
inline int tif_samples_in_row(const tif_specs *specs) { return tif_is_planar(specs) ? 1 : specs->samples_per_pixel; }
// Bytes of a stored row of `width` pixels, in one plane.
inline int64_t tif_row_bytes(const tif_specs *specs, int64_t width)
{
    return (width * tif_samples_in_row(specs) * specs->bits_per_sample[0] + 7) / 8;
}

// ---- tififd --------------------------------------------------------------------------------------------------------

// A zeroed record with the values that hold when a tag is absent. Null with RIO_NO_MEMORY set.
tif_specs *tif_new_specs(RFILE *file);
// Frees what hangs on it, and itself.
void tif_free_specs(tif_specs *specs);
// Reads the directory at specs->ifd_offset. *next is the offset of the one behind it. 1; 0 with the error set.
int tif_read_ifd(RFILE *file, tif_specs *specs, uint32_t *next);

// ---- tifopen -------------------------------------------------------------------------------------------------------

// The slots of a file opened for reading or modify, and of a new one.
void tif_bind(RFILE *file);
// Makes `specs` the active directory: sizes, samples, tiles, colour table. 1; 0 with the error set.
int tif_activate(RFILE *file, tif_specs *specs);
void tif_free_chain(RFILE *file);
int tif_data_type(const tif_specs *specs);
inline tif_specs *tif_first(tif_specs *specs)
{
    while (specs->prev_ifd)
        specs = specs->prev_ifd;
    return specs;
}

// ---- tifstrip, tifcit ----------------------------------------------------------------------------------------------

// Rows of one plane of an image, as strips or a tile hold them.
struct tif_unit {
    int plane;
    int64_t index;                  // strip or tile, counted over all planes
    int32_t width, rows;
};

// Where strip or tile `index` begins in the file, and the bytes from there to the end of the file; 0 when there are none.
int64_t tif_unit_place(RFILE *file, const tif_specs *specs, int64_t index, int64_t *offset);
// Stored bytes of strip or tile `index` into `coded`, first bit at the high end. Answers how many; -1 with the error set.
int64_t tif_read_coded(RFILE *file, tif_specs *specs, int64_t index, int64_t expected);
// Row `row` of the unit as it is stored. Null with the error set. It stays until the next call for the plane.
const uint8_t *tif_stored_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row);
// Bytes from row `row` on of an uncompressed unit, straight to where they are wanted. 1; 0 with the error set.
int tif_read_plain(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row, uint8_t *out, int64_t bytes);
// Row `row` of a CCITT unit as words, 1 as it is stored. 1; 0 with the error set.
int tif_ccitt_row(RFILE *file, tif_specs *specs, const tif_unit &unit, int32_t row, uint16_t *out);
// What is held of the image.
void tif_drop_strips(tif_specs *specs);

// ---- tifgetli, tifgetti --------------------------------------------------------------------------------------------

// One row of the units of each plane, into the planes that are wanted. 1; 0 with the error set.
int tif_get_row(RFILE *file, const tif_unit &unit, int64_t planes_apart, int32_t row, int count, uint8_t **lines);
// Rows of one sample are handed out as they lie in the file.
bool tif_lies_plain(const RFILE *file, const tif_specs *specs);
int64_t tif_place_of_lines(RFILE *file, int *lines);
int64_t tif_place_of_tile(RFILE *file, int64_t tile, int64_t *row_bytes);
// Indices or gray in lines[0] to two further planes.
void tif_finish_line(RFILE *file, int count, uint8_t **lines);
int tif_get_line(RFILE *file, int count, uint8_t **lines);
int tif_get_rle_line(RFILE *file, uint8_t *buffer, int *size);
int tif_get_line_from_tile(RFILE *file, int count, uint8_t **lines);
int tif_get_tile(RFILE *file, int count, uint8_t **buffers, int32_t *value);

// ---- tifinfo, tifmulti ---------------------------------------------------------------------------------------------

enum tif_key {
    TIF_KEY_COMPRESSION = 501,
    TIF_KEY_PREDICTOR = 502,
    TIF_KEY_PLANAR_CONFIG = 503,
    TIF_KEY_PHOTOMETRIC = 504,
    TIF_KEY_ROWS_PER_STRIP = 505,
    TIF_KEY_USER_TAG = 509,         // get: a 12-byte entry in the machine's order, filled in by its tag; the value field
                                    // is as the file has it. Set: the entry's first 8 bytes, then all its values
};

int tif_get_hdr_data(RFILE *file, int key, void *value);
// tifset
int tif_set_hdr_data(RFILE *file, int key, const void *value);
int tif_get_stat(RFILE *file, rio_stat *stat);
int tif_get_format(RFILE *file);
int tif_get_vlt(RFILE *file, rio_vlt_entry *entries);
int tif_get_packet(RFILE *file, void *packet);
int tif_seek(RFILE *file, int line);
int64_t tif_get_image_offset(RFILE *file);

int tif_get_image_count(RFILE *file);
int tif_set_image_count(RFILE *file, int count);
int tif_set_active_image(RFILE *file, int image);
int tif_set_active_ov(RFILE *file, int overview);
int tif_set_stat(RFILE *file, const rio_stat *stat);
int tif_put_packet(RFILE *file, const void *packet);
int tif_init_std_hdr(RFILE *file, RFILE *target);
// Appends `count` overviews, each half as large as the one before, to the chain of a new file.
int tif_make_overviews(RFILE *file, int count);
int tif_init_ov(RFILE *file, RFILE *target);

// ---- tifwrthd, tifputli, tifputti ----------------------------------------------------------------------------------

// A type, with the samples, bits, photometric and compression that it fixes.
int tif_set_format(RFILE *file, int data_type);
// Strips or tiles of the image in hand, and their tables. 1; 0 with the error set.
int tif_layout(RFILE *file);
// Slot: before the first line, the layout; on a file opened for modify, changed header data go to the file.
int tif_wrt_hdr(RFILE *file);
// Ends the image in hand: the strip begun, then the directory. 0; 1 with the error set.
int tif_finish_image(RFILE *file);
void tif_close(RFILE *file);

int tif_putline(RFILE *file, int count, uint8_t **lines);
int tif_put_line(RFILE *file, int count, uint8_t **lines);
int tif_put_rle_line(RFILE *file, const uint8_t *runs, int size);
int tif_put_tile(RFILE *file, int count, uint8_t **buffers, const int32_t *value);

// One row of `unit`, then its end: the coded bytes go to the end of the file, and into the tables. 1; 0 with the error set.
int tif_add_row(RFILE *file, const tif_unit &unit, int count, uint8_t **lines);
int tif_end_unit(RFILE *file, const tif_unit &unit, int64_t planes_apart);
// Row `row` of an uncompressed unit, in its place in the file.
int tif_replace_row(RFILE *file, const tif_unit &unit, int64_t planes_apart, int32_t row, int count, uint8_t **lines);
// Bytes to the end of the file. *offset is where they begin, from the image offset on.
int tif_append(RFILE *file, const uint8_t *bytes, int64_t count, int64_t *offset);

// tifcit: a line into the strip in hand, and its end; *bytes are in unit.out, first bit at the high end.
int tif_ccitt_add(RFILE *file, tif_specs *specs, const tif_unit &unit, const uint16_t *line);
int tif_ccitt_end(RFILE *file, tif_specs *specs, int64_t *bytes);
void tif_free_writing(tif_writing *unit);
