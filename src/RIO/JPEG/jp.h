// jp.h - JPEG inside the native format: data types 30 (gray), 31 (colour) and 32 (four bands), plain and in tiles.
//
// The coding is not done here: it is handed to a driver (codec_driver.h, rio_jpeg_driver), which the messages call the Zpak
// board. What is here is quality and tables, the JPEG packet, the buffers and the order of calls. An untiled image is one
// coded piece, from the start of its data on; so is each tile. Four bands pass all checks, and every call refuses them.
//
//   jppkt    the JPEG packet, quality, tables     jputil   the driver's life and its calls, the coded piece
//   jptile   tiles                                jpline   lines: a picture is coded or decoded as a whole
#pragma once
#include "RIO/CORE/rio_format.h"

enum : uint32_t {
    JPEG_COMPRESSING = 0x80000000,      // of direction
    JPEG_DECOMPRESSING = 0x40000000,
    JPEG_PACKET_LUMINANCE = 1,          // the table comes from the packet
    JPEG_PACKET_CHROMINANCE = 2,
};

enum { JPEG_TABLE = 64, JPEG_DEFAULT_QUALITY = 15, JPEG_TIMEOUT = 1000, JPEG_MOST_EDGE = 65500 };
enum jpeg_call_mode : uint32_t { JPEG_GRAY = 0, JPEG_FOUR_BANDS = 1, JPEG_COLOUR = 2 };

// Hangs on RFILE.jpeg from the first need on.
struct jpeg_state {
    uint32_t direction;
    int64_t coded_capacity;             // bytes that `coded` has room for
    int64_t coded_bytes;                // of compressed data in `coded` after a call or a read
    void *board_handle;
    int32_t quality;                    // factor of the base tables: 50 leaves them, more is coarser
    uint8_t *coded;                     // owned
    // For line access: interleaved rows, from first_row on. Reading, a band of them while lines are asked for downward, and
    // the whole picture from the first step back on; writing, the whole picture, of which coded_rows went to the driver.
    uint8_t *pixels;                    // owned
    int32_t first_row, rows;            // reading: held; writing: 0, and those that came in order
    int32_t coded_rows;
    bool disordered;                    // writing: a line was passed over, or came again
    int32_t luminance[JPEG_TABLE], chrominance[JPEG_TABLE];     // base tables, in row order
    uint16_t board_tables[4][JPEG_TABLE];
    // The call that is made now.
    uint32_t mode, planes;              // planes 2: three buffers; 1: one
    uint8_t *plane[3];
    // The picture at hand.
    int64_t piece_offset, piece_bytes;  // of an entered tile: place in the file and size; size 0 not known
    bool damaged;                       // could not be decoded: its lines are not tried again
    // Lines of a tiled file: a row of tiles, each decoded whole and interleaved, one behind another.
    uint8_t *strip;                     // owned
    int64_t strip_room;
    int32_t strip_row, damaged_row;     // of the tiles: the one held, one that could not be decoded; -1 none
    uint8_t *woven;                     // owned; a picture's pixels on their way between planes and driver
    int64_t woven_room;
};

// ---- jppkt -----------------------------------------------------------------------------------------------------------

// Base tables, then those of the packet. A file that is being written gets a packet when it has none. `file` may be null.
void jpeg_set_defaults(jpeg_state *jpeg, RFILE *file);
// Stores the factor, in the packet too, and makes the board tables: first those of the direction at work. 0. `file` may be
// null.
int jpeg_set_quality(jpeg_state *jpeg, int quality, RFILE *file);
// The forward values of both tables (out0, out1) and the inverse ones (out2, out3). Divisors are base * quality / 50 in
// integers, 2 at the least; a factor below 1 is 1.
void jpeg_build_board_tables(int quality, const int32_t *luminance, const int32_t *chrominance, uint16_t *out0,
                             uint16_t *out1, uint16_t *out2, uint16_t *out3);
int jpeg_packet_quality(const RFILE *file);     // the default without a packet
void jpeg_drop_packet(RFILE *file);             // of a new file that turns out to hold no JPEG data

// ---- jputil ----------------------------------------------------------------------------------------------------------

// For a file to be written: tests its size and the driver, makes record, packet and tables. Quality 0 is the default. The
// sizes of an untiled image must be multiples of 4. 0; 1 with the error set.
int jpeg_start_write(RFILE *file, int quality);
// The same for a file that was opened. 0; 1 with the error set.
int jpeg_check_open(RFILE *file);
// Slot ckJPEG: JPEG_COMPRESSING or JPEG_DECOMPRESSING. Failures stand in the record's error.
void jpeg_set_direction(RFILE *file, uint32_t direction);
// Compresses the picture at hand into `coded`, or decompresses it. Three planes, or under RIO_INTERLEAVE one buffer of
// interleaved pixels. 0; 1 with RIO_JPEG_HW2, or RIO_NO_OUTPUT when a plane is missing.
int jpeg_compress(RFILE *file, int plane_count, uint8_t *const *planes);
int jpeg_decompress(RFILE *file, int plane_count, uint8_t *const *planes);
// The same for some rows, interleaved, of a picture that is worked through from its top down.
int jpeg_compress_rows(RFILE *file, int first, int rows, uint8_t *pixels);
int jpeg_decompress_rows(RFILE *file, int first, int rows, uint8_t *pixels);
int jpeg_read_coded(RFILE *file);       // the piece of the picture at hand. 0; 1 with the error set
int jpeg_make_coded(RFILE *file);       // room for a compression. 0; 1 with RIO_NO_MEMORY
int jpeg_write_coded(RFILE *file);      // 0; 1 with RIO_WRITE_FAILED

// The picture at hand: the tile in a tiled file, which is always whole, else the image.
int32_t jpeg_width(const RFILE *file);
int32_t jpeg_height(const RFILE *file);
int jpeg_samples(const RFILE *file);
// Room of `bytes` in `woven`; null with RIO_NO_MEMORY.
uint8_t *jpeg_weaving_room(RFILE *file, int64_t bytes);
void jpeg_drop_pixels(jpeg_state *jpeg);
// Another picture comes to hand: in a tiled file the tile with its piece, else the active image.
void jpeg_enter_picture(RFILE *file, int64_t piece_offset, int64_t piece_bytes);
// Tiles have been written, or those of another picture come: the row of tiles that is held is no longer theirs.
void jpeg_forget_strip(RFILE *file);
// The record's end.
void jpeg_drop(RFILE *file);

// ---- jpline, jptile --------------------------------------------------------------------------------------------------

// One line, current_line of the picture at hand; planes that are null are not wanted. Under RIO_INTERLEAVE the first
// buffer takes or gives the whole pixels, four bytes each with RIO_PAD4. Pixels; 0 with the error set. The last line put
// compresses the picture and writes it.
int jpeg_get_lines(RFILE *file, int plane_count, uint8_t *const *planes);
int jpeg_put_lines(RFILE *file, int plane_count, uint8_t *const *planes);

// A decoded row of interleaved pixels to the caller's line, from pixel `at` on.
void jpeg_give_row(const RFILE *file, const uint8_t *row, int width, int count, uint8_t *const *planes, int64_t at);

// A line of a tiled file, out of its row of tiles. Colour, or gray into one plane. Pixels; 0 with the error set.
int jpeg_get_line_of_tiles(RFILE *file, int plane_count, uint8_t *const *planes);
bool jpeg_has_lines_of_tiles(const RFILE *file, int plane_count, uint8_t *const *planes);
// The tile that was entered, whole: rows are of the tile's full width at its edges too. Pixels; 0 with the error set.
int jpeg_get_tile(RFILE *file, int plane_count, uint8_t *const *planes);
int jpeg_put_tile(RFILE *file, int plane_count, uint8_t *const *planes);
