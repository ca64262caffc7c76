// line_runs.h - run-length forms of single lines, and whole-image copies, for formats that read and write plain lines.
#pragma once
#include <cstdint>

struct RFILE;

// A bilevel line of `width` pixels as words of alternating run lengths: a run of 0 first (native type 9). A run above
// 32767 is split by a 0 of the other colour; a line that ends in 1 is closed by a 0.
// Answers the words written, or -1 when `room` words are too few.
int64_t rio_bitmap_runs(const uint16_t *line, int32_t width, uint16_t *runs, int64_t room);

// A byte line as pairs of words, value and count of at most 32767 (native type 10). Answers the words written, or -1.
int64_t rio_byte_runs(const uint8_t *line, int32_t width, uint16_t *runs, int64_t room);

// The bilevel line of such runs, the rest of its last word cleared. 1; 0 when the runs do not add up to the width.
int rio_runs_to_bitmap(const uint16_t *runs, int64_t words, uint16_t *line, int32_t width);

// The same for the pairs of a byte line.
int rio_runs_to_bytes(const uint16_t *runs, int64_t words, uint8_t *line, int32_t width);

// Slot: Getrleline of a format that fills getline: the next line's runs, type 9 for bilevel and 10 for byte files.
// `*size` is the buffer's bytes, and then the bytes used. Pixels; 0 with RIO_RLE_BUFFER and the size that is surely
// enough, and the line can be read again; colour is refused with 0 and no error.
int rio_getrleline_by_lines(RFILE *file, uint8_t *buffer, int *size);

// Slot: Getrletile of a format that fills gettile, for bilevel files: the runs of each row as type 9 has them, row after row.
// A solid tile has none, where `value` is given. Sizes and answers as above.
int rio_getrletile_by_rows(RFILE *file, uint8_t *buffer, int *size, int32_t *value);

// Slot: Putrleline of a format that fills putline: a line given in those forms. 0 done; 1 with the error set, RIO_BAD_VALUE
// when the runs do not add up to the width.
int rio_putrleline_by_lines(RFILE *file, const uint8_t *runs, int size);

// Slot: copydata of the same formats: every line, to a target that has its size and type already. 0; 1 with the error
// set in the record at fault.
int rio_copy_lines(RFILE *file, RFILE *target);
