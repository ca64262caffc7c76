// rio.h - the raster file library: one record and one set of calls for raster files of every format.
//
// A caller opens a name, reads or sets header values by numeric key, moves lines or tiles, and closes:
//
//     RFILE *f = rio_open_r("scene.tif");
//     rio_get_hdr_data(f, RIO_KEY_WIDTH, &width);
//     while (rio_getline_rgb(f, red, green, blue) == 0) ...
//     rio_close(f);
//
// Results. A call with a status answers 0 for success and 1 for failure; opens answer null for failure. The cause
// stands in rio_errno, and in the record (key RIO_KEY_ERROR), as one of the codes below. A request that a format has
// no function for sets RIO_UNSUPPORTED; the line calls then still answer 0 and leave the buffer untouched.
//
// Lines. Buffers are planes: sample s of a colour line goes to buffer s, a null buffer is not wanted. Samples of up to
// 8 bits take a byte each, wider ones their own width in the machine's order. Bilevel lines are 16 pixels to a
// uint16_t, leftmost pixel in the most significant bit, rows padded to a whole word.
//
// State besides the records: rio_errno, rio_debug, rio_path_resolver, rio_jpeg_driver; a SIGBUS handler (RIO/CORE/view_guard.h).
#pragma once
#include "codec_driver.h"
#include <cstdint>

#pragma GCC visibility push(default)

// An open raster file. Its fields are the library's (RIO/CORE/rio_format.h).
struct RFILE;

// ---- errors ----------------------------------------------------------------------------------------------------

// Codes rise from RIO_RLE_BUFFER in steps of 8. Zero is success.
enum rio_error : uint32_t {
    RIO_APPLICATION_TYPE = 0x0C2A800E,  // a key that belongs to application type 9 only
    RIO_RLE_BUFFER       = 0x0C2A8016,
    RIO_MODIFY_MIDDLE    = 0x0C2A801E,
    RIO_JPEG_HW          = 0x0C2A8026,
    RIO_OPEN_FAILED      = 0x0C2A802E,
    RIO_READ_FAILED      = 0x0C2A8036,
    RIO_WRITE_FAILED     = 0x0C2A803E,
    RIO_HEADER_FULL      = 0x0C2A8046,
    RIO_BAD_RFILE        = 0x0C2A804E,
    RIO_LINE_ORDER       = 0x0C2A8056,
    RIO_BAD_SIZE         = 0x0C2A805E,
    RIO_BAD_FIELD        = 0x0C2A8066,
    RIO_BAD_VALUE        = 0x0C2A806E,
    RIO_NOT_STANDARD     = 0x0C2A8076,
    RIO_NOT_STANDARD2    = 0x0C2A807E,
    RIO_NO_IMAGE         = 0x0C2A8086,
    RIO_NO_OVERVIEW      = 0x0C2A808E,
    RIO_BAD_TILE_SIZE    = 0x0C2A8096,
    RIO_JPEG_HW2         = 0x0C2A809E,
    RIO_NO_MEMORY        = 0x0C2A80A6,
    RIO_JPEG_FAIL        = 0x0C2A80B6,
    RIO_NO_OUTPUT        = 0x0C2A80BE,
    RIO_NO_OVERVIEWS     = 0x0C2A80C6,
    RIO_NO_PACKETS       = 0x0C2A80CE,
    RIO_NOT_READABLE     = 0x0C2A80D6,
    RIO_NO_TAG           = 0x0C2A80DE,
    RIO_NO_VLT           = 0x0C2A80E6,
    RIO_NOT_WRITABLE     = 0x0C2A80EE,
    RIO_NO_OUTPUT2       = 0x0C2A80F6,
    RIO_COUNT            = 0x0C2A80FE,
    RIO_PAST_END         = 0x0C2A8106,
    RIO_UNTILED_ONLY     = 0x0C2A810E,
    RIO_FEATURE_1        = 0x0C2A811E,  // this one and the other RIO_FEATURE codes: features of the file that the
    RIO_FEATURE_2        = 0x0C2A8126,  // format's module cannot read
    RIO_FEATURE_3        = 0x0C2A812E,
    RIO_UNSUPPORTED      = 0x0C2A8136,
    RIO_FEATURE_4        = 0x0C2A813E,
    RIO_BAD_COUNT        = 0x0C2A8146,  // a count of buffers that the format does not take
    RIO_FEATURE_5        = 0x0C2A814E,
    RIO_FEATURE_6        = 0x0C2A8156,
    RIO_FEATURE_7        = 0x0C2A815E,
    RIO_PACKED           = 0x0C2A8166,
    RIO_FEATURE_8        = 0x0C2A816E,
    RIO_FEATURE_9        = 0x0C2A8176,
    RIO_FEATURE_10       = 0x0C2A817E,
    RIO_TILED_ONLY       = 0x0C2A8186,
};

// The last error of any record; 0 after a call that succeeded.
extern uint32_t rio_errno;

// Non-zero prints every error on the standard error. Bits choose further printing: 4 the USGS detector, 16 allocations.
// The environment variable RIO_DEBUG replaces it at every open.
extern int rio_debug;

// Turns a file name into a host path, where the program has names of its own kind. Null opens names as they stand.
// Answers 1 with the zero-ended path in `out`, or 0: then the name is used as it stands.
extern int (*rio_path_resolver)(const char *name, char *out, int size);

// The codec service behind JPEG data of the native format. Null, the start value: such files and images fail to open, and
// to be written, with RIO_JPEG_FAIL. It stays while a file is open.
extern const codec_driver *rio_jpeg_driver;

// Builds the sentence of `code` with the place and a text (null is empty), and writes it to the standard error.
void rio_report(uint32_t code, const char *source, int line, const char *text);

// The same sentence to a buffer, always zero-ended. Answers the length written.
int rio_error_text(char *out, int size, uint32_t code, const char *source, int line, const char *text);

// The sentence of a compression board's status, to the standard error.
void rio_zpak_report(int status);

// 0 for a valid pointer. For a null one sets rio_errno to RIO_NO_MEMORY, prints `text` when rio_debug has bit 16; 1.
int rio_check_alloc(const void *pointer, const char *text);

// ---- formats and data types ------------------------------------------------------------------------------------

enum rio_format_id : int32_t {
    RIO_FORMAT_NONE = -1,
    RIO_FORMAT_NATV = 0,
    RIO_FORMAT_TIFF = 1,
    RIO_FORMAT_GIF = 2,
    RIO_FORMAT_TGA = 3,
    RIO_FORMAT_BMP = 4,
    RIO_FORMAT_PCX = 5,
    RIO_FORMAT_JFIF = 6,
    RIO_FORMAT_RAW = 7,
    RIO_FORMAT_ADRG = 8,
    RIO_FORMAT_ICO = 9,
    RIO_FORMAT_SYM = 10,
    RIO_FORMAT_CALS = 11,
    RIO_FORMAT_NITF = 12,
    RIO_FORMAT_XBM = 13,
    RIO_FORMAT_PNM = 14,
    RIO_FORMAT_SUN = 15,
    RIO_FORMAT_USGS = 16,
    RIO_FORMAT_MRG = 17,
    RIO_FORMAT_ASRP = 18,
    RIO_FORMAT_HRF = 19,
    RIO_FORMAT_QSC = 20,
    RIO_FORMAT_PS = 21,
    RIO_FORMAT_USRP = 22,
};

// Data type codes: what a line of the file is. The vocabulary of every format.
enum rio_data_type : uint32_t {
    RIO_TYPE_BITMAP = 1,        // 1 x 1, packed
    RIO_TYPE_BYTE = 2,          // 1 x 8
    RIO_TYPE_16 = 3,            // 1 x 16
    RIO_TYPE_32 = 4,            // 1 x 32
    RIO_TYPE_32B = 5,           // 1 x 32
    RIO_TYPE_64 = 6,            // 1 x 64
    RIO_TYPE_64B = 7,           // 1 x 64
    RIO_TYPE_128 = 8,           // 1 x 128
    RIO_TYPE_BITMAP_RLE = 9,    // 1 x 1, run lengths
    RIO_TYPE_BYTE_RLE = 10,     // 1 x 8, run lengths
    RIO_TYPE_CCITT3 = 23,       // 1 x 1
    RIO_TYPE_CCITT4 = 24,       // 1 x 1
    RIO_TYPE_RGB_RLE = 25,      // 3 x 8, colour run lengths
    RIO_TYPE_PACKED_RLE = 26,   // 1 x 8 or 16, run lengths with packed count
    RIO_TYPE_RGB_BYTE_RUN = 27, // 3 x 8, byte runs, plane after plane
    RIO_TYPE_RGB = 28,          // 3 x 8, interleaved
    RIO_TYPE_BYTE_RUN = 29,     // 1 x 8, byte runs
    RIO_TYPE_JPEG = 30,         // 1 x 8
    RIO_TYPE_JPEG_RGB = 31,     // 3 x 8
    RIO_TYPE_JPEG_4 = 32,       // 4 x 8
    RIO_TYPE_TILED = 65,        // on disk only: the real type stands in the tile directory
    RIO_TYPE_4_BYTE_RUN = 67,   // 4 x 8, byte runs, plane after plane
    RIO_TYPE_4 = 69,            // 4 x 8, interleaved
};

// ---- header keys -----------------------------------------------------------------------------------------------

// Values are int32_t unless a type is given. Texts are buffers of the size given, zero-ended within it.
enum rio_key : int32_t {
    RIO_KEY_WIDTH = 1,              // pixels a line
    RIO_KEY_HEIGHT = 2,             // lines
    RIO_KEY_DATA_TYPE = 3,
    RIO_KEY_TRANSFORM = 4,          // 16 doubles, row major
    RIO_KEY_VLT_TYPE = 5,           // 0 none, 1 byte table, 2 word table
    RIO_KEY_VLT_ENTRIES = 6,
    RIO_KEY_PACKET_WORDS = 7,       // application packets; a set adds
    RIO_KEY_DEVICE_CODE = 8,
    RIO_KEY_ORIENTATION = 9,
    RIO_KEY_APPLICATION_TYPE = 10,
    RIO_KEY_BACKGROUND_RED = 11,    // a set of 11, 12, 13 or 15 also sets application type 9
    RIO_KEY_BACKGROUND_GREEN = 12,
    RIO_KEY_BACKGROUND_BLUE = 13,
    RIO_KEY_CREATOR = 14,           // char[80]
    RIO_KEY_COMMENT = 15,           // char[200]
    RIO_KEY_LABEL1 = 16,            // char[66] each
    RIO_KEY_LABEL2 = 17,
    RIO_KEY_LABEL3 = 18,
    RIO_KEY_SCANNABLE = 19,         // 1: lines carry headers; settable before the header is on disk
    RIO_KEY_HEADER_WORDS = 20,
    RIO_KEY_VERSION = 21,
    RIO_KEY_MINIMUM4 = 22,          // 4 bytes each
    RIO_KEY_MAXIMUM4 = 23,
    RIO_KEY_MINIMUM8 = 24,          // 8 bytes each
    RIO_KEY_MAXIMUM8 = 25,
    RIO_KEY_ASPECT_RATIO = 26,      // double
    RIO_KEY_VIEW_ORIGIN = 27,       // 3 doubles
    RIO_KEY_VIEW_EXTENT = 28,       // 3 doubles
    RIO_KEY_ROTATION = 29,          // double
    RIO_KEY_SKEW = 30,              // double
    RIO_KEY_SIGNIFICANT_BITS = 31,
    RIO_KEY_STRIP_LINES = 32,       // bilevel codec: lines a strip; -1 without one
    RIO_KEY_TYPE_MODIFIER = 33,
    RIO_KEY_MAPPED = 34,            // set only: file mapping on or off
    RIO_KEY_PAD4 = 35,              // interleaved lines take four bytes a pixel
    RIO_KEY_36 = 36,
    RIO_KEY_TILE_WIDTH = 100,
    RIO_KEY_TILES_ACROSS = 101,
    RIO_KEY_TILES_DOWN = 102,
    RIO_KEY_TILE_DIRECTORY = 103,   // one uint32_t a tile: used size, top bit set on a solid tile
    RIO_KEY_TILE_HEIGHT = 104,
    RIO_KEY_OVERVIEW_COUNT = 200,
    RIO_KEY_OVERVIEW_FACTOR = 201,
    RIO_KEY_VLT_PAD = 400,
    RIO_KEY_PACKET_FREE = 401,
    RIO_KEY_IMAGES = 402,
    RIO_KEY_IMAGE_CLASS = 403,      // one of rio_image_class, or the type itself for types 3 to 8
    RIO_KEY_404 = 404,
    RIO_KEY_JPEG_BOARD = 405,
    RIO_KEY_JPEG_BOARD_FILE = 406,
    RIO_KEY_JPEG_HARDWARE = 407,
    RIO_KEY_FORMAT = 500,           // rio_format_id
    RIO_KEY_SAMPLES = 506,
    RIO_KEY_BITS = 507,
    RIO_KEY_JPEG_QUALITY = 508,
    RIO_KEY_NO_SHIFT = 701,         // 1: samples of fewer than 8 bits are handed over unscaled
    RIO_KEY_ERROR = 702,            // the record's error; the only get that does not clear it
};

// Answers of RIO_KEY_IMAGE_CLASS besides the types 3 to 8.
enum rio_image_class : int32_t {
    RIO_CLASS_UNKNOWN = -1,
    RIO_CLASS_COLOUR = 0,
    RIO_CLASS_GRAY = 1,
    RIO_CLASS_BILEVEL = 2,
    RIO_CLASS_FOUR_BAND = 10,
};

// ---- records ---------------------------------------------------------------------------------------------------

// A colour entry: intensities in 16 bits, 8-bit values shifted left by 8.
struct rio_vlt_entry {
    uint16_t index, red, green, blue;
};
static_assert(sizeof(rio_vlt_entry) == 8);

enum { RIO_VLT_SIZE = 256 };        // entries that rio_get_vlt fills

// The header at a stroke, for copying headers between files.
struct rio_stat {
    int32_t width, height, data_type;
    int32_t reserved0[2];
    int32_t device_code, orientation;
    int32_t scannable, version, application_type;
    int32_t tile_size, tile_dir_a, tile_dir_b;
    int32_t reserved1[2];
    int32_t overview_count, reserved2, overview_factor;
    int32_t vlt_type, vlt_entries, vlt_pad, packet_words, packet_free;
    int32_t jpeg_quality;
    int32_t reserved3[5];
    double transform[16];
    double aspect_ratio;
};

// A file in memory, opened by the name that rio_memory_name makes. The caller fills `data` and `size`; the file never
// grows past `size`. Bit 0 of `flags` hands the record to the library, which frees it with mem_free at close.
struct rio_memory_file {
    uint8_t *data;
    int64_t size;
    int64_t end;        // set to `position` by rio_write_header
    uint32_t flags;
    int64_t position;
    uint32_t reserved;
};

enum { RIO_MEMORY_NAME_SIZE = 32 };

// "/INMEM/" and the record's address in decimal. Answers `out`.
char *rio_memory_name(const rio_memory_file *file, char out[RIO_MEMORY_NAME_SIZE]);

// One row of the static table of what each format can hold. Reference data: no code consults it.
struct rio_capability {
    uint32_t format;
    const char *format_name;
    uint16_t shape;             // high byte samples a pixel, low byte bits a sample
    uint32_t data_type;
    int32_t compression;        // the format's own number; -1 where it has none
    const char *compression_name;
    uint32_t orientations;      // bit n: scanline orientation n is allowed
    uint32_t tile_sizes;        // bit n: tiles of 2 to the n pixels are allowed
    uint8_t features[12];
    uint32_t reserved[2];
};

enum { RIO_CAPABILITY_ROWS = 172 };
const rio_capability *rio_capabilities();

// The name that the capability table gives a format; null for an unknown id.
const char *rio_format_name(int32_t format);

// ---- opening and closing ---------------------------------------------------------------------------------------

// Reading; null is the standard input. The format is detected from the first 512 bytes and the name.
RFILE *rio_open_r(const char *name);
// The same with read and write access.
RFILE *rio_open_modify(const char *name);
// A new file; null is the standard output. The format is native, or RIO_STANDARD's, until RIO_KEY_FORMAT is set.
RFILE *rio_open_w(const char *name);
// A new file that is read back later.
RFILE *rio_open_wr(const char *name);
// Files without a header: rows of columns * bytes_per_sample bytes, from `offset` on.
RFILE *rio_open_raw_w(const char *name, int columns, int rows, int bytes_per_sample);
RFILE *rio_open_raw_r(const char *name, int columns, int rows, int bytes_per_sample, int64_t offset);
void rio_close(RFILE *file);

// Binds a format to a new file; a negative id takes the environment variable RIO_STANDARD, or native.
int rio_set_standard(RFILE *file, int id);
// Writes the header now; otherwise the first put does.
int rio_write_header(RFILE *file);

// ---- header values ---------------------------------------------------------------------------------------------

int rio_get_hdr_data(RFILE *file, int key, void *value);
int rio_set_hdr_data(RFILE *file, int key, const void *value);
int rio_get_stat(RFILE *file, rio_stat *stat);
int rio_set_stat(RFILE *file, const rio_stat *stat);
// Fills RIO_VLT_SIZE entries. A format without colour tables leaves them and sets RIO_UNSUPPORTED, but answers 0.
int rio_get_vlt(RFILE *file, rio_vlt_entry *entries);
// The colour entries for the header to be written: RIO_KEY_VLT_ENTRIES of them. They stay the caller's and must live
// until the header is on disk.
int rio_put_vlt(RFILE *file, const rio_vlt_entry *entries);
int rio_get_packet(RFILE *file, void *packet);
int rio_put_packet(RFILE *file, const void *packet);
int rio_copydata(RFILE *file, RFILE *target);
int rio_init_std_hdr(RFILE *file, RFILE *target);
int rio_init_ov(RFILE *file, RFILE *target);

// ---- lines -----------------------------------------------------------------------------------------------------

// One line. A colour file gives its first band.
int rio_getline(RFILE *file, void *line);
int rio_getline_rgb(RFILE *file, void *red, void *green, void *blue);
// The next `count` lines, as rio_getline gives them, into rows that begin `row_bytes` apart. Lines that lie in the file as
// they are handed out go there at a stroke. Answers how many were read: fewer than `count` when one could not be.
int rio_getlines(RFILE *file, int count, void *rows, int64_t row_bytes);
// `count` planes (1, 3 or 4 by format).
int rio_getline_planes(RFILE *file, int count, void *const *lines);
int rio_getline_interleaved(RFILE *file, void *line);
int rio_getline16(RFILE *file, uint16_t *line);
// Run lengths of a line or strip; *size is the buffer's bytes, then the bytes used. Pixels; 0 failed.
int rio_getrleline(RFILE *file, void *runs, int *size);
int rio_getrlestrip(RFILE *file, void *runs, int *size);

// The wrappers move on by one line after a put.
int rio_putline(RFILE *file, const void *line);
int rio_putline_rgb(RFILE *file, const void *red, const void *green, const void *blue);
int rio_putline_planes(RFILE *file, int count, const void *const *lines);
int rio_putline_interleaved(RFILE *file, const void *line);
int rio_putline16(RFILE *file, const uint16_t *line);
int rio_putrleline(RFILE *file, const void *runs, int size);

int rio_seek(RFILE *file, int line);
int rio_skip(RFILE *file, int lines);
void rio_rewind(RFILE *file);
// Makes later seeks to lines fast.
int rio_randomize(RFILE *file);

int rio_set_active_ov(RFILE *file, int overview);
int rio_set_active_image(RFILE *file, int image);

// Bytes to bits, 1 for each byte at or above the threshold, from bit 15 down; and back with two byte values.
void rio_pack_bits(uint16_t *out, const uint8_t *in, int count, int threshold);
void rio_unpack_bits(const uint16_t *in, uint8_t *out, int count, uint8_t zero, uint8_t one);

// Squeezing: from now on the file's lines come as out_width pixels out of out_height lines.
enum rio_squeeze_mode : uint32_t {
    RIO_SQUEEZE_NEAREST = 0,
    RIO_SQUEEZE_AVERAGE = 1,
    RIO_SQUEEZE_RESTART = 2,        // set by a seek or rewind
    RIO_SQUEEZE_FILL_ALL = 4,       // a single-sample file fills every requested buffer
};
// `mode` is a sum of the values above. 0 sizes end the squeezing. 0; or 1 with RIO_BAD_SIZE or RIO_NO_MEMORY.
int rio_arm_squetch(RFILE *file, int out_width, int out_height, uint32_t mode);

// ---- tiles -----------------------------------------------------------------------------------------------------

// The tile at the current position, which then moves on by one tile. *value is -1, or the level of a solid tile, whose
// buffers are then not filled; with a null `value` the buffers of a solid tile are filled as those of any other.
int rio_gettile(RFILE *file, int count, void *const *buffers, int32_t *value);
// Writes a tile; a non-null `value` makes it solid.
int rio_puttile(RFILE *file, int count, const void *const *buffers, const int32_t *value);
int rio_gettile16(RFILE *file, void *buffer, int32_t *value);
int rio_puttile16(RFILE *file, const void *buffer, const int32_t *value);
int rio_getrletile(RFILE *file, void *buffer, int *size, int32_t *value);
int rio_putrletile(RFILE *file, const void *buffer, int size, const int32_t *value);
// Reads a block of tiles into a picture of `row_bytes` a row. Pixels; 0 failed.
int64_t rio_get_tile_rect(RFILE *file, int count, void *const *buffers, int64_t row_bytes, int tiles_wide,
                          int tiles_high);

#pragma GCC visibility pop
