// rio_format.h - for those who implement a format: the open-file record, its two tables of operations, and the helpers
// that every format stands on.
//
// A format has three entries, named in the lists at the end of this file and in one row of format_table.cpp:
//   X_detect(head, bytes)  1 when the first `bytes` (up to 512) of a file are of this format
//   X_open_r(file)         called with the file at byte 0: reads the header into the record and binds the slots; null
//                          when it cannot, with the record freed (rio_fail_open does all of that)
//   X_init_w(file)         binds the slots for a new file; 0, or 1 with the error set
//
// open_r sets width, height, samples_per_pixel, bits_per_sample, standard, data_type and the slots; what it leaves
// alone keeps the values below. A format's private record is allocated with mem_alloc, hangs on `specs` and is freed by
// the core; what hangs on the private record is freed by the free_specs slot.
//
// RIO/CORE in reading order:
//   rio_slots.h     the slots and their names        dummy.cpp       what a slot does that no format filled
//   fileops.cpp     streams, handles, bytes          fakefile.cpp    files in memory and mapped files
//   open.cpp        the five ways of opening         format_table.cpp detection and write-init, a row a format
//   standard.cpp    binding a format to a new file   record.cpp      start and end of the record
//   getline.cpp, putline.cpp, position.cpp           public line calls, checks, colour tables
//   gettile.cpp, puttile.cpp                         tiles to lines and back
//   squetch.cpp     lines at another size            info.cpp        header keys
//   vlt.cpp         colour entries                   errors.cpp      codes and sentences
//   capabilities.cpp what each format can hold
#pragma once
#include "RIO/CORE/byte_order.h"
#include "RIO/CORE/rio_slots.h"
#include "RIO/rio.h"
#include "mem.h"
#include <mutex>

// ---- the operations of a format ----------------------------------------------------------------------------------

#define RIO_SLOT_DUMMY(member, name, type, args, value) type rio_dummy_##member args;
#define RIO_SLOT_DUMMY_VOID(member, name, args) void rio_dummy_##member args;
#define RIO_SLOT_DUMMY_OWN(member, name, type, args) type rio_dummy_##member args;
RIO_SLOTS(RIO_SLOT_DUMMY, RIO_SLOT_DUMMY_VOID, RIO_SLOT_DUMMY_OWN)
#undef RIO_SLOT_DUMMY
#undef RIO_SLOT_DUMMY_VOID
#undef RIO_SLOT_DUMMY_OWN

int64_t rio_no_place_of_lines(RFILE *file, int *lines);
int64_t rio_no_place_of_tile(RFILE *file, int64_t tile, int64_t *row_bytes);

// What a format can do. A slot left out keeps its dummy, which sets RIO_UNSUPPORTED under the slot's name; the two
// interleaved slots start with a routine that works on top of getline and putline for any format.
struct rio_ops {
#define RIO_SLOT_MEMBER(member, name, type, args, value) type(*member) args = rio_dummy_##member;
#define RIO_SLOT_MEMBER_VOID(member, name, args) void(*member) args = rio_dummy_##member;
#define RIO_SLOT_MEMBER_OWN(member, name, type, args) type(*member) args = rio_dummy_##member;
    RIO_SLOTS(RIO_SLOT_MEMBER, RIO_SLOT_MEMBER_VOID, RIO_SLOT_MEMBER_OWN)
#undef RIO_SLOT_MEMBER
#undef RIO_SLOT_MEMBER_VOID
#undef RIO_SLOT_MEMBER_OWN
    // Where lines and tiles lie in the file just as they are handed out in one buffer, so that many of them are read at a
    // stroke. The offset of the next line, and in *lines, which says how many are wanted, how many lie close behind one
    // another from there on; the offset of a tile, and in *row_bytes how far its rows are apart. -1 where they do not.
    int64_t (*place_of_lines)(RFILE *file, int *lines) = rio_no_place_of_lines;
    int64_t (*place_of_tile)(RFILE *file, int64_t tile, int64_t *row_bytes) = rio_no_place_of_tile;
    // Slot 23, the only one with no dummy: null until a format fills it.
    int (*putrletile)(RFILE *file, const uint8_t *buffer, int size, const int32_t *value) = nullptr;
};

// ---- the operations of a file ------------------------------------------------------------------------------------

// Four sets: buffered streams, operating-system handles, files in memory, mapped files. All have the contract of the C
// streams, with 64-bit offsets and counts; `how` is SEEK_SET, SEEK_CUR or SEEK_END.
struct rio_file_ops {
    void *(*f_open)(const char *name, const char *mode);
    int (*f_close)(void *stream);
    int64_t (*f_read)(void *buffer, int64_t item, int64_t count, void *stream);         // whole items read
    int64_t (*f_write)(const void *buffer, int64_t item, int64_t count, void *stream);  // whole items written
    int (*f_getc)(void *stream);            // -1 at the end
    int (*f_putc)(int byte, void *stream);  // -1 failed
    int (*f_seek)(void *stream, int64_t offset, int how);
    void (*f_rewind)(void *stream);
    int64_t (*f_tell)(void *stream);
    int (*f_flush)(void *stream);
};

extern const rio_file_ops rio_stream_ops;
extern const rio_file_ops rio_handle_ops;
extern const rio_file_ops rio_memory_ops;   // its f_open takes no name: it makes an empty record
extern const rio_file_ops rio_mapped_ops;

// What the handle set takes.
struct rio_handle {
    int fd;
};
void *rio_handle_of(int fd);    // null with no memory

// A file reached through a sliding view, so that reads are memory copies (fakefile.cpp). The view begins at a window,
// and reaches some windows ahead.
enum { RIO_VIEW_SIZE = 0x20000, RIO_VIEW_AHEAD = 32 * RIO_VIEW_SIZE };
enum { RIO_MAP_WRITE = 2, RIO_MAP_READ = 4 };
struct rio_mapping {
    const uint8_t *view;        // null while nothing is mapped
    int64_t size, position;
    int64_t window_start;
    int64_t window_size;
    int64_t window_held;        // bytes of the view
    uint32_t access;
    void *file;                 // stream of the handle set
    int guard;                  // the view's place (view_guard.h)
};

// ---- records that hang on the open file --------------------------------------------------------------------------

struct rio_squetch {
    int32_t out_width, out_height;
    int32_t in_width;           // pixels that in_lines has room for
    int32_t out_line;           // next output line
    int32_t carry;              // 1/2048 of a source line left over from the last output line
    int32_t planes;
    uint8_t *in_lines[4];       // a source line for each sample
    uint8_t *row[4];            // the squeezed line read last
    uint8_t *older[4];          // the one before, when lines are interpolated
    int64_t *accum[4];          // out_width entries for each sample
    uint32_t mode;              // rio_squeeze_mode
};

// A tile's number is row * tiles_across + column. In the tile calls current_line counts tiles.
struct rio_tiles {
    int32_t tile_width, tile_height;
    int32_t tiles_across, tiles_down;
    int32_t reserved;
    int64_t next_free;          // native: first free byte after the tiles
    uint8_t *strip[5];          // write side: a row of tiles for each sample
    int32_t next_line;          // write side: the line expected next
    int32_t strip_first_line;   // read side: first line of strip_cache; -1 none
    int32_t strip_lines;        // read side: lines of strip_cache
    uint8_t *strip_cache;       // read side: a row of tiles, all planes; or some lines of tiles that lie plain in the file
    int64_t strip_bytes;        // of one plane of strip_cache
    int32_t strip_planes;
    const void *last_buffer;    // read side: that the tile before went to
    void *directory;            // format's tile directory, freed with the record
};

struct cit_state;               // bilevel codec (RIO/CIT)
struct jpeg_state;              // JPEG context of the native format (RIO/JPEG)

// ---- the open file -----------------------------------------------------------------------------------------------

enum { RIO_MAGIC = 0xABCD };

enum rio_access : uint32_t {
    RIO_ACCESS_READ = 1,
    RIO_ACCESS_MODIFY = 2,
    RIO_ACCESS_WRITE = 4,
    RIO_ACCESS_WRITE_READ = 8,
    RIO_ACCESS_CAN_READ = 0xB,
    RIO_ACCESS_CAN_WRITE = 0xE,
    RIO_ACCESS_ON_DISK = 0xA,   // modified or read back: lines may lie on disk already
};

enum rio_flag : uint32_t {
    RIO_TILED = 0x1,
    RIO_F_KEY36 = 0x4,
    RIO_MULTI_IMAGE = 0x10,
    RIO_JPEG = 0x20,
    RIO_SCANNABLE = 0x40,           // native lines carry headers
    RIO_HEADER_DONE = 0x80,
    RIO_RAW = 0x100,
    RIO_TILES_DIRTY = 0x200,
    RIO_DIRECTORY_DIRTY = 0x400,
    RIO_PACKET_OWNED = 0x800,
    RIO_SQUETCH = 0x1000,
    RIO_LINE_ZERO = 0x2000,         // native: the first line header says 0
    RIO_PAD_LINE = 0x4000,          // native type 28: lines of odd length have a pad byte
    RIO_NO_SHIFT = 0x8000,
    RIO_NATV = 0x10000,
    RIO_INMEM = 0x20000,
    RIO_KEY404 = 0x40000,
    RIO_TIFF = 0x100000,
    RIO_PAD4 = 0x400000,
    RIO_INTERLEAVE = 0x800000,      // the present call wants pixel-interleaved lines
    RIO_SAMPLES_16 = 0x1000000,     // type 10 lines are handed over as 16-bit samples
};

// Bits of jpeg_mode.
enum {
    RIO_JPEG_BOARD_OPEN = 1,
    RIO_JPEG_TABLES_SENT = 2,
    RIO_JPEG_KEPT = 4,              // open from call to call
    RIO_JPEG_BOARD = 8,
    RIO_JPEG_BOARD_FILE = 16,
    RIO_JPEG_SOFTWARE = 32,
};

// "Owned" means that rio_close frees it.
struct RFILE {
    uint32_t magic = RIO_MAGIC;
    void *stream = nullptr;                 // what the file operations take
    char *file_name = nullptr;              // owned; the name as the caller gave it, null for standard input and output
    int32_t width = 0;                      // of the image now active
    int32_t height = 0;
    int32_t samples_per_pixel = 1;
    int32_t bits_per_sample = 8;
    int32_t current_line = 0;               // next line (or tile) to read or write
    uint32_t error = 0;
    uint32_t data_type = RIO_TYPE_BYTE;
    uint32_t access = 0;
    int32_t standard = RIO_FORMAT_NONE;
    uint32_t flags = RIO_KEY404;
    uint32_t ccitt_kind = 0, ccitt_group = 0;   // 5 and then 1 or 4 on CCITT Group 3 and Group 4 data
    uint32_t reserved0 = 0;
    int64_t image_offset = 0;               // of the image's first header byte in the file
    int32_t current_image = 0;
    int32_t active_overview = -1;           // -1 base image, -2 native file not yet set
    void *scratch = nullptr;                // owned; general line buffer of the format
    void *alt_buffer = nullptr;             // freed only if owned
    bool alt_buffer_owned = false;
    void *tile_buffer = nullptr;            // freed only if owned
    bool tile_buffer_owned = false;
    void *line_buffer = nullptr;            // owned
    std::recursive_mutex lock;              // held around every public operation
    uint32_t rle_position = 0, rle_count = 0;   // kept between calls of the run-length line functions
    uint8_t rle_work[56] = {};
    uint32_t jpeg_mode = 0;
    void *specs = nullptr;                  // owned; the format's private record
    jpeg_state *jpeg = nullptr;             // owned through jpeg_release
    uint8_t *vlt = nullptr;                 // owned; 256 entries of red, green, blue; null without a colour table
    const rio_vlt_entry *vlt_entries = nullptr; // caller's entries for the header to be written
    int32_t vlt_count = RIO_VLT_SIZE;       // of them, as key 6 said
    rio_squetch *squetch = nullptr;         // owned
    rio_tiles *tiles = nullptr;             // owned
    cit_state *ccitt = nullptr;             // owned through ccitt_free
    uint32_t reserved1 = 0;
    uint32_t significant_bits = 0;          // bits of a sample that carry data; 8 with a colour table; 0 until set
    uint32_t reserved2 = 0;
    int64_t *line_offsets = nullptr;        // owned by the format; file position of each line passed, else -1
    rio_mapping *mapping = nullptr;         // owned
    rio_ops ops;
    rio_file_ops io = rio_handle_ops;
    void *write_buffer = nullptr;           // owned; of a stream that is only written
    bool spooled = false;                   // standard output: `stream` is a temporary file, sent on at close
    int32_t strip_lines = -1;               // bilevel codec: lines a strip
    void (*ccitt_free)(RFILE *file) = nullptr;  // set by whoever allocates ccitt
    int (*jpeg_release)(RFILE *file) = nullptr; // set by whoever allocates jpeg; 1: the board would not go
};

// ---- errors ------------------------------------------------------------------------------------------------------

// Sets the code in the record (when there is one) and in rio_errno, and prints the sentence when rio_debug is set.
// The place is the caller's. rio_fail answers 0, for line counts; rio_fail_status 1, for statuses.
int rio_fail(RFILE *file, uint32_t code, const char *text, const char *source = __builtin_FILE(),
             int line = __builtin_LINE());
int rio_fail_status(RFILE *file, uint32_t code, const char *text, const char *source = __builtin_FILE(),
                    int line = __builtin_LINE());

// How a read-open fails: sets the error, calls free_specs, closes the file, frees the record. Always null.
RFILE *rio_fail_open(RFILE *file, uint32_t code, const char *text, const char *source = __builtin_FILE(),
                     int line = __builtin_LINE());

// Closes the file and frees the record and all it owns, without the close slot. rio_errno stays.
void rio_discard(RFILE *file);

// 1 when the record is valid; otherwise rio_errno is RIO_BAD_RFILE, and under rio_debug the sentence is printed.
int rio_valid(const RFILE *file, const char *text, const char *source = __builtin_FILE(), int line = __builtin_LINE());

// ---- bytes of the file -------------------------------------------------------------------------------------------

// These go through the record's file operations. Offsets are from the file's start. They set no error.
int64_t rio_read(RFILE *file, void *buffer, int64_t bytes);             // bytes read; fewer at the end
int rio_read_exact(RFILE *file, void *buffer, int64_t bytes);           // 1; 0 short
int rio_read_at(RFILE *file, int64_t offset, void *buffer, int64_t bytes);  // 1; 0 short
int rio_write_exact(RFILE *file, const void *buffer, int64_t bytes);    // 1; 0 short
int rio_write_at(RFILE *file, int64_t offset, const void *buffer, int64_t bytes);
int rio_write_zeros(RFILE *file, int64_t bytes);                        // 1; 0 short
int rio_byte_seek(RFILE *file, int64_t offset);                         // 1; 0 failed
int64_t rio_byte_tell(RFILE *file);
int64_t rio_file_size(RFILE *file);                                     // position kept; -1 unknown
// Next byte, or -1 at the end. Cheap on a mapped file.
int rio_getc(RFILE *file);
int rio_putc(RFILE *file, int byte);                                    // -1 failed

// Where `bytes` bytes of the file lie in memory; null when they are not all there, or are in no memory of the process. They
// stay until the next read or look. Others may be changing the file, so they may be copied, but not judged; and when the
// copies are made, rio_look_ended tells whether all was there: 1; 0 for a file that has been cut short meanwhile.
const uint8_t *rio_look(RFILE *file, int64_t offset, int64_t bytes);
int rio_look_ended(RFILE *file);
// rio_read_at into an image that is larger than the caches. 1; 0 short.
int rio_stream_at(RFILE *file, int64_t offset, void *buffer, int64_t bytes);

// How a module opens a further file by name: ops.f_open, which goes through the path resolver and refuses directories.

// Copies the name to file_name; every open by name does it. 1; 0 with RIO_NO_MEMORY.
int rio_set_name(RFILE *file, const char *name);

// Key 34: file mapping on or off. 0; 1 with the error set.
int rio_map_file(RFILE *file, int on);

// ---- for header readers ------------------------------------------------------------------------------------------

// 1 when both sizes are 1 to 2^31 - 1 and a row of `samples` samples of `bits` bits stays below 2^31 bytes.
int rio_size_valid(int64_t width, int64_t height, int samples, int bits);

// Zeroed private record of `bytes`, hung on specs. Null with RIO_NO_MEMORY set.
void *rio_alloc_specs(RFILE *file, size_t bytes);

// The 256-entry colour table, all black, hung on vlt with significant_bits 8. Null with RIO_NO_MEMORY set.
uint8_t *rio_alloc_vlt(RFILE *file);

// Words of a bilevel row, and bytes of a row of any data type as it is handed out.
inline int64_t rio_bitmap_words(int64_t width) { return (width + 15) / 16; }
int64_t rio_line_bytes(const RFILE *file);
// The same for `pixels` pixels, in a row of samples that a line function hands out in one buffer.
int64_t rio_row_bytes(const RFILE *file, int64_t pixels);

// ---- for line functions ------------------------------------------------------------------------------------------

// First thing in a get: 0, or 1 with RIO_NOT_READABLE, or RIO_PAST_END under the text "getline".
int rio_read_check(RFILE *file);
// First thing in a put; it writes the header when that is due. 0, or 1 with the error set.
int rio_write_check(RFILE *file);

// An image that no cache holds.
bool rio_is_large(const RFILE *file);

// Common getline slot: read check, then squeeze, tile strip or the get_line slot; then fills line_offsets.
int rio_common_getline(RFILE *file, int count, uint8_t **lines);
// Common putline slot: write check, then the strip of tiles or the put_line slot.
int rio_common_putline(RFILE *file, int count, uint8_t **lines);

// After a get_line into `first`: indices go through the colour table into one to three planes, or gray is shifted to the
// top of the byte (unless RIO_NO_SHIFT) and copied. Null planes are skipped.
void rio_translate_line(RFILE *file, uint8_t *first, uint8_t *second, uint8_t *third, int count);
// Gray of fewer than 8 bits to the top of the byte, unless there is a colour table or RIO_NO_SHIFT.
void rio_shift_line(RFILE *file, uint8_t *line, int count);

// What a get_line of an index or gray file does at its end, with a line of `width` samples in lines[0]: rio_translate_line
// for three buffers and more, rio_shift_line for fewer. `count` is the count of buffers.
void rio_finish_line(RFILE *file, int count, uint8_t **lines);

// Seek of a squeezed file: `text` names the format when the line is past the end. 0; 1 with RIO_PAST_END.
int rio_squetch_seek(RFILE *file, int line, const char *text, int (*seek)(RFILE *file, int line));
void rio_squetch_rewind(RFILE *file);
void rio_free_squetch(RFILE *file);
// One squeezed line. Pixels; 0 failed.
int rio_squetch_getline(RFILE *file, int count, uint8_t **lines);

// ---- keys ----------------------------------------------------------------------------------------------------------

// For get_hdr_data slots: stores an i32 and answers 0. A key that a format does not know stores 0 this way.
int rio_answer(void *value, int32_t answer);

// Slots that every plain format shares. The core answers keys 1, 2, 31, 32, 35, 36, 402 to 407, 500, 506, 507, 701 and 702
// by itself. The get answers 3 by data_type, 5 and 6 by `vlt`, 9 by 4, 26 by 1.0, 100 to 104 by the tile record; the matrix
// of key 4 and the numbers of 22 to 25, 27 to 30 are left as they come (the core fills in the identity, and zeros), texts
// are empty, and any other key stores 0.
int rio_plain_get_hdr_data(RFILE *file, int key, void *value);
// The same for sets: key 3 goes into data_type with the shape that the type fixes, key 6 into vlt_count, any other is
// taken in silence. The core has stored keys 1, 2, 31, 506 and 507 before the slot is called.
int rio_plain_set_hdr_data(RFILE *file, int key, const void *value);
int rio_plain_get_stat(RFILE *file, rio_stat *stat);
int rio_plain_set_stat(RFILE *file, const rio_stat *stat);
int rio_plain_get_format(RFILE *file);      // data_type
int rio_plain_get_vlt(RFILE *file, rio_vlt_entry *entries);  // from vlt; RIO_NO_VLT without one
void rio_plain_close(RFILE *file);          // nothing
void rio_plain_free_specs(RFILE *file);     // nothing
void rio_plain_rewind(RFILE *file);         // seeks to line 0 through the seek slot

// Image slots of a format with one image: count 1; a count of 1 or less is taken; image 0 (and below) is active, any other
// fails with RIO_NO_IMAGE.
int rio_single_get_image_count(RFILE *file);
int rio_single_set_image_count(RFILE *file, int count);
int rio_single_set_active_image(RFILE *file, int image);
int rio_plain_randomize(RFILE *file);       // 0: lines are random already

// Sets samples_per_pixel and bits_per_sample as a data type fixes them; leaves them for the other types.
void rio_set_shape(RFILE *file, uint32_t data_type);

// ---- tiles -----------------------------------------------------------------------------------------------------

int rio_set_tile_size(RFILE *file, int width, int height);  // 0 and 0 end the tiling. 0; 1 with RIO_NO_MEMORY
void rio_free_tiles(RFILE *file);
int rio_tile_check(RFILE *file);                            // before a tile read. 0; 1 with the error set
int rio_put_tile_check(RFILE *file);                        // before a tile write
int rio_getlinefromtile(RFILE *file, int count, uint8_t **lines);   // shared Getlinefromtile slot
// The next lines of a tiled file of one sample, as many as are in hand, past the caches when the image is large. Lines; 0
// failed.
int rio_getlinesfromtile(RFILE *file, int count, uint8_t *rows, int64_t row_bytes, bool large);
int rio_putlinetotile(RFILE *file, int count, uint8_t **lines);
int64_t rio_tile_row_bytes(const RFILE *file);              // of one plane as it is handed out

// ---- public calls' frame -----------------------------------------------------------------------------------------

// Every public operation: validates, locks, clears the error ... and copies the error to rio_errno, unlocks.
int rio_enter(RFILE *file, const char *text);               // 1; 0 on a bad record, nothing locked
void rio_leave(RFILE *file);

// ---- opening -------------------------------------------------------------------------------------------------------

// A record with every field at its start; null with RIO_NO_MEMORY. And its end: what it owns, then itself.
RFILE *rio_new_record();
void rio_free_record(RFILE *file);
// Closes the stream, with its mapping. The standard input is left open; spooled output is sent on.
void rio_close_stream(RFILE *file);
// RIO_DEBUG from the environment into rio_debug, when it is there.
void rio_read_debug_environment();

// The one list of formats (format_table.cpp). Detection: the opened record, or null with rio_errno set; the record has
// then been freed. Write-init: its status; *known tells whether there is such a format.
RFILE *rio_detect_and_open(RFILE *file, const char *name);
int rio_write_init(RFILE *file, int id, bool *known);
// rio_open_w on an existing catalogue file.
RFILE *rio_open_catalogue_entry(RFILE *file);
// rio_set_standard's work for a record that is locked or not yet shared.
int rio_bind_standard(RFILE *file, int id);
// The public header write for a record that is locked.
int rio_header_out(RFILE *file);

// ---- the entries of every format -----------------------------------------------------------------------------------

enum { RIO_HEAD_BYTES = 512 };      // what detection reads; a shorter file gives fewer

int natv_detect(const uint8_t *head, int bytes);
RFILE *natv_open_r(RFILE *file, const char *name);
RFILE *natv_open_text(RFILE *file);     // the "Raster!" text variant
int natv_init_w(RFILE *file);

RFILE *tif_open_r(RFILE *file);
int tif_init_w(RFILE *file);
RFILE *gif_open_r(RFILE *file);
int gif_init_w(RFILE *file);
RFILE *bmp_open_r(RFILE *file);
int bmp_init_w(RFILE *file);
RFILE *jfif_open_r(RFILE *file);
int jfif_init_w(RFILE *file);
RFILE *sut_open_r(RFILE *file);
RFILE *sut_open_append(RFILE *file);    // rio_open_w on an existing catalogue: a further entry
RFILE *mrg_open_r(RFILE *file, const char *name);

int pnm_detect(const uint8_t *head, int bytes);
RFILE *pnm_open_r(RFILE *file);
int pnm_init_w(RFILE *file);
int sun_detect(const uint8_t *head, int bytes);
RFILE *sun_open_r(RFILE *file);
int sun_init_w(RFILE *file);

// 1 and 2 ADRG, 3 ASRP or USRP, 0 neither. The record's file has been closed when these open by name.
int adrg_probe(RFILE *file, const char *name);
RFILE *adrg_open_r(RFILE *file, const char *name, int probe);
RFILE *asrp_open_r(RFILE *file, const char *name);

int hrf_detect(const uint8_t *head, int bytes);
RFILE *hrf_open_r(RFILE *file);
int hrf_init_w(RFILE *file);
int pcx_detect(const uint8_t *head, int bytes);
RFILE *pcx_open_r(RFILE *file);
int pcx_init_w(RFILE *file);
int sym_detect(const uint8_t *head, int bytes);
RFILE *sym_open_r(RFILE *file);
int sym_init_w(RFILE *file);
int ico_detect(const uint8_t *head, int bytes);
RFILE *ico_open_r(RFILE *file);
int ico_init_w(RFILE *file);
int cals_detect(const uint8_t *head, int bytes);
RFILE *cals_open_r(RFILE *file);
int cals_init_w(RFILE *file);
int nitf_detect(const uint8_t *head, int bytes);
RFILE *nitf_open_r(RFILE *file);
int nitf_init_w(RFILE *file);
// The name and the record (open, at 0) are there for a closer look; the core seeks back afterwards.
int xbm_detect(const uint8_t *head, int bytes, const char *name, RFILE *file);
RFILE *xbm_open_r(RFILE *file);
int xbm_init_w(RFILE *file);
int usgs_detect(const uint8_t *head, int bytes);
RFILE *usgs_open_r(RFILE *file);
int usgs_init_w(RFILE *file);
int qsc_detect(const uint8_t *head, int bytes);
RFILE *qsc_open_r(RFILE *file);
int qsc_init_w(RFILE *file);
int tga_detect(const uint8_t *head, int bytes);
RFILE *tga_open_r(RFILE *file);
int tga_init_w(RFILE *file);
int ps_init_w(RFILE *file);

// Raw files: binds the slots of a file whose record already has its sizes.
void raw_bind(RFILE *file);
