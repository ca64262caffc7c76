// cit.h - the codec for bilevel pictures by ITU-T T.4 (Group 3, one- and two-dimensional) and T.6 (Group 4).
//
// A line is a list of unsigned 16-bit run lengths, white and black in turn, white first; a line that begins black has a
// first run of 0. The runs add up to the width and two runs of 0 follow them, which are not counted. A run above 65535
// is split by a 0 of the other colour: 70000 is 65535, 0, 4465.
//
// Coded bytes are read and written low bit first: files whose first bit is the high one go through cit_reverse_bytes
// on their way in and out.
//
//   citcodes  the codes of T.4 and T.6, and the tables made of them       citlines  runs to pixels and back, the sink
//   citbits   the bit reader and writer, changing elements                citg4     two-dimensional lines, Group 4
//   citg3     one-dimensional lines, Group 3, TIFF compression 2          citfile   pictures of an open file
#pragma once
#include <cstdint>

struct RFILE;

enum cit_result : uint32_t {
    CIT_OK = 1,
    CIT_SIZE_ONLY = 40239148,   // the end of an encoder that only counts
    CIT_NO_MEMORY = 40239364,
    CIT_NO_ROOM = 40240228,     // the output is full; the line has not been written and can be given again
    CIT_BAD_DATA = 40240404,    // a code that there is none of, or runs that do not add up to the width
};

// ---- pixels and runs -----------------------------------------------------------------------------------------------

// A run list to (width + 15) / 16 words, first pixel in the high bit of the first word, white 0, black 1, the bits behind
// the last pixel 0. What two runs of 0 leave of the line is white; what lies past the width is cut.
void cit_expand(int32_t width, const uint16_t *runs, uint16_t *out);

// The opposite; answers the number of runs. `runs` has room for width + 3 entries, and width / 32767 more in lines of
// more than 65535 pixels. Bits behind the last pixel are not looked at.
int32_t cit_scan(int32_t width, const uint16_t *words, uint16_t *runs);

// Turns the bits of each byte round, in place.
void cit_reverse_bytes(uint8_t *bytes, int64_t count);

// ---- decoding ------------------------------------------------------------------------------------------------------

enum { CIT_ALTERNATE_POLARITY = 16 };

// The source. `lines` is how many are wanted and, on return, how many are done.
struct cit_decoder_in {
    uint32_t flags;             // CIT_ALTERNATE_POLARITY: cit_1d_decode inverts the lines at which the sum is not 0
    int32_t k;                  // Group 3: 0 or more when a tag bit follows each EOL; below 0 all lines are one-dimensional
    uint32_t width;
    uint32_t lines;
    const uint8_t *source;
    int64_t consumed;           // on return, bytes used
    int32_t polarity_step;      // added at each line to a sum that starts at 0
    int64_t source_size;        // bytes of the source; none behind them is read
};

// The sink. `runs` belongs to mem.h and grows as lines are stored; `index` has room for `height` lines and gets the entry
// of `runs` where each begins. With the index zeroed, runs[0] and runs[1] 0 and `position` 2, lines that are never
// reached read as white.
struct cit_decoder_out {
    uint16_t *runs;
    uint32_t *index;
    uint32_t width, height;
    uint32_t room;              // entries in `runs`
    uint32_t position;          // next free entry
    int32_t keep;               // 0: lines are counted and not stored
};

// Takes a finished line: `count` runs, with the two runs of 0 behind them. A result with bit 0 clear stops the decoder.
using cit_line_callback = uint32_t (*)(cit_decoder_out *sink, const uint16_t *runs, uint32_t count, uint32_t line);

// Copies the line to the sink. CIT_OK, or CIT_NO_MEMORY. Lines past `height` are dropped.
uint32_t cit_store_line(cit_decoder_out *sink, const uint16_t *runs, uint32_t count, uint32_t line);

// CIT_OK; CIT_BAD_DATA, with the lines before the bad one handed over; CIT_NO_MEMORY; or the callback's result.
// Data that end before the lines wanted are bad data, unless the end marker (EOFB, return to control) comes first.
uint32_t cit_g4_decode(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line);
uint32_t cit_g3_2d_decode(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line);
uint32_t cit_1d_decode(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line);

// Where a Group 4 decoder stands between two lines: cit_g4_decode_from begins there and leaves the place behind its
// last whole line. A zeroed one is the start of the data, whose reference line is white.
struct cit_g4_place {
    int64_t byte;
    int32_t bit;                // 0 to 7
    const uint16_t *reference;  // null: an all-white line
    uint32_t ended;             // set at EOFB and at bad data: no line follows
};
uint32_t cit_g4_decode_from(cit_decoder_in *in, cit_decoder_out *sink, cit_line_callback line, cit_g4_place *place);

// ---- encoding ------------------------------------------------------------------------------------------------------

enum { CIT_TAGGED = 1, CIT_NO_EOL = 2 };

struct cit_encoder {
    uint8_t flags;              // CIT_TAGGED, CIT_NO_EOL
    int32_t height, width;
    int32_t bit_buffer;         // bits not yet written, first one lowest
    int32_t bit_count;          // of them, 0 to 15
    int64_t room;               // words left
    uint16_t *out;              // next word
    const int32_t *reference;   // changing elements of the last line
    uint16_t *base;
    int64_t size;               // bytes of the output
    int32_t size_only;          // nothing is written: the bytes are counted
    int64_t counted;            // bytes so far
    int32_t k_period, k_left;   // lines from one one-dimensional line to the next; 0 for never again
    int32_t pad_words;          // shorter lines are filled up to this many words; 0 for none
    int32_t *elements[2];       // changing elements of the present line and the last one
    uint8_t *line_code;         // the line being coded
    int64_t line_code_size;
};

// CIT_OK or CIT_NO_MEMORY. The encoder is freed by cit_encoder_free, which takes null too.
uint32_t cit_encoder_new(cit_encoder **state);
void cit_encoder_free(cit_encoder *state);

// Starts a picture in `buffer` of `size` bytes; the first reference line is white. An encoder can be started again.
//   k          0 or more: each EOL is tagged, a one-dimensional line every k lines (0: only the first);
//              -1: one-dimensional with EOL; -2: one-dimensional, no EOL, each line ends at a whole byte
//   pad_words  fill: each line takes at least so many words. Not used with k -2
// CIT_OK, CIT_NO_MEMORY, or CIT_BAD_DATA for a width that is none.
uint32_t cit_g4_init(cit_encoder *state, int32_t width, int32_t height, uint16_t *buffer, int64_t size, int32_t size_only);
uint32_t cit_g3_init(cit_encoder *state, int32_t width, int32_t height, uint16_t *buffer, int64_t size, int32_t size_only,
                     int32_t k, int32_t pad_words);

// CIT_OK, CIT_NO_ROOM or CIT_BAD_DATA; on a failure nothing has changed.
uint32_t cit_g4_line(cit_encoder *state, const uint16_t *runs);
uint32_t cit_g3_line(cit_encoder *state, const uint16_t *runs, int32_t count);

// Writes the end marker and fills up to a multiple of 32 bits. CIT_OK with the words of the whole picture; CIT_NO_ROOM;
// CIT_SIZE_ONLY when bytes were only counted: their number is `counted`.
uint32_t cit_g4_end(cit_encoder *state, int64_t *words);
uint32_t cit_g3_end(cit_encoder *state, int64_t *words);

// Moves the output to a larger buffer that begins with the words written so far.
void cit_encoder_move(cit_encoder *state, uint16_t *buffer, int64_t size);

// ---- pictures of an open file --------------------------------------------------------------------------------------

// One for each open file, in RFILE.ccitt. `runs`, `run_index`, `coded` and the tables are the record's own.
struct cit_state {
    uint16_t *runs;             // of the picture, or of the block in hand
    uint32_t *run_index;        // start of each line in `runs`
    uint32_t index_lines;       // lines in `run_index`
    uint32_t run_buffer_size;   // bytes of `runs`
    int32_t stale;              // 1 until the runs are decoded
    uint8_t *coded;             // coded bytes of the picture
    uint32_t coded_size;        // reading: bytes to read, 0 for all to the end of the file; then the bytes held
    uint32_t coded_room;        // writing
    int64_t data_offset;        // reading: where in the file the coded bytes begin
    cit_encoder *encoder;       // while writing
    uint8_t bit_reverse[256];
    uint16_t *line_a, *line_b;  // writer's run lists, of even and odd lines
    int32_t block_first_line;   // of the block held; -1 none
    int32_t block_lines;        // lines a block, 0 for the whole picture at once
    int32_t keep_runs;
    // For each block and one more: where it begins, once known.
    int32_t blocks, blocks_known;
    int64_t *block_byte;
    uint8_t *block_bit;
    uint16_t **block_reference; // run list of the line before it, null for white
};

// Gives the record its codec state, when it has none. 1; 0 with RIO_NO_MEMORY.
int cit_attach(RFILE *file);

// Frees what the state holds and makes it stale: at a change of image, overview or tile. The block lines stay, the place
// and size of the coded bytes are to be set again.
void cit_reset(RFILE *file);

// Key 32: lines a block for pictures too long to be held as runs; 0 decodes the picture at once.
void cit_set_block_lines(RFILE *file, int32_t lines);

// Reads and decodes the picture at `data_offset` by data type 23 (Group 3, one-dimensional with EOL) or 24 (Group 4); with
// block lines it only reads. The file's bytes are low bit first with RIO_NATV set, otherwise high bit first.
// CIT_OK; CIT_NO_MEMORY with RIO_NO_MEMORY set; CIT_BAD_DATA when the picture is damaged: lines not reached are white.
uint32_t cit_decode_image(RFILE *file);

// The run list of a line, decoding first what is needed for it; null with the record's error set. It stays until the
// next call.
const uint16_t *cit_line_runs(RFILE *file, int32_t line);

// The line at current_line, which stays, as words. Pixels; 0 with the record's error set.
int cit_getline(RFILE *file, uint16_t *out);

// Codes the line at current_line by data type 23 or 24; line 0 begins a picture. After the last line the coded bytes are
// written at the file's position, and stay in `coded`, `coded_size` of them. Pixels; 0 with the record's error set.
int cit_putline(RFILE *file, const uint16_t *words);
