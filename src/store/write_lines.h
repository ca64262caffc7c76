// write_lines.h - rows of bands into the lines of an open file.
// Areas are inclusive rectangles of held pixels. A table maps each byte to the low byte of its entry; null writes the bytes as
// they are. Each shows its progress in message field 2 and clears it. 1; or 0 with "Error writing file", or with
// "failed to allocate memory for temporary buffer", and the loop has stopped there.
#pragma once
#include <cstdint>

#include "RIO/rio.h"
#include "store/load.h"

typedef file_area held_area;           // the same rectangle, counted in held pixels

int write_gray_lines(RFILE *file, int row_bytes, const held_area &area, const uint8_t *data, const uint16_t *table);
// The tables are used only if all three are there.
int write_rgb_lines(RFILE *file, int row_bytes, const held_area &area, const uint8_t *const data[3], const uint16_t *const tables[3]);
int write_bin_lines(RFILE *file, int width, int height, const uint8_t *data);
