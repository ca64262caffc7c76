// file_class.h - what a named file holds, as far as the choice of its loader goes.
#pragma once

enum file_class { CLASS_NO_FILE = -1, CLASS_OTHER = 0, CLASS_BITMAP = 1, CLASS_GRAY = 8, CLASS_COLOUR = 24, CLASS_WIDE = 16 };

// By data type first, and for index types by the presence of a usable colour table. CLASS_WIDE: more than 8 bits a sample.
file_class classify_file(const char *name);

// 0 when `name` can replace a band: 2 it cannot be opened, 1 it is neither a 24-bit nor an index type, or lies in another
// scanline orientation.
int band_compatible(int band, const char *name);

// The name of a file as loaders and records take it: behind image_path, and made short enough for a record. 0 when it is empty or cannot be.
int loader_name(const char *typed, char *out, int size);
