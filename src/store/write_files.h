// write_files.h - bands become a file. Areas are held pixels, corners in any order, a negative value means whole.
// Each answers 1 when the whole file stands under its name; otherwise 0, with the reason in message field 2 and whatever stood
// there before untouched (whole_file.h).
#pragma once
#include <cstdint>

#include "RIO/rio.h"
#include "store/write_lines.h"

// What a writer is to make: the data type in the low 16 bits, the format in one of these bits (none: native), and
// compression. 0 is raw bytes without a header.
enum output_selector : uint32_t {
    OUT_TIFF = 0x10000, OUT_GIF = 0x20000, OUT_BMP = 0x40000, OUT_TGA = 0x80000, OUT_PCX = 0x100000, OUT_COMPRESSED = 0x80000000,
};
constexpr uint32_t OUT_TYPE_MASK = 0xFFFF, OUT_RAW = 0;

constexpr held_area WHOLE_BAND = WHOLE_FILE;

int write_gray_file(int band, const char *name, uint32_t selector, const held_area &area);
// Native type 27. The background is a held pixel, whose colour goes to the header; one outside the image is black.
int write_rgb_file(int r, int g, int b, const char *name, const held_area &area, int background_x, int background_y);
int write_rgb_format(int r, int g, int b, const char *name, uint32_t selector, const held_area &area);
int write_bin_file(int band, const char *name, int type, const held_area &area);  // held bits are written whole

// Bands that live in the tile store.
int write_tiles_gray(int band, const char *name, int type, const held_area &area);
int write_tiles_bin(int band, const char *name, int type, const held_area &area);
int write_tiles_rgb(int r, int g, int b, const char *name, const held_area &area);

// 1; 0 when the format cannot be written, with the words for it.
int write_header_gray(RFILE *file, uint32_t selector, int width, int height, int orientation, const double matrix[4][4]);
int write_header_rgb(RFILE *file, int width, int height, int orientation, int red, int green, int blue);

// Ordered, and kept within the band.
held_area clamped_area(int band, const held_area &area);
