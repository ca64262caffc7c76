// copy_lines.h - lines of one open raster file into another: a part of them, every n-th, as samples of another class.
//
// In the bilevel lines that are written 1 is black. Bits become gray 0 and 255, gray becomes three equal bands, colour becomes gray by
// (77 red + 150 green + 29 blue + 128) / 256, gray becomes bits below 128.
#pragma once
#include <cstdint>

#include "RIO/rio.h"
#include "tools/copy_form.h"

struct copy_lines {
    RFILE *in, *out;
    int width;                         // of a line of `in`
    int sample_bytes;                  // 1, or more for COPY_WIDE
    copy_class from, to;
    int x0, y0, x1, y1;                // inclusive, in pixels of `in`
    int step;                          // every step-th column and line
    bool ones_are_white;               // in bilevel lines of `in`
    bool transposed;                   // columns become lines; the image is held for that
    bool upside_down, mirrored;        // the new file's lines run the other way
};

// Of the new file.
int copied_columns(const copy_lines &copy);
int copied_rows(const copy_lines &copy);

enum copy_result { COPY_DONE, COPY_READ_FAILED, COPY_WRITE_FAILED, COPY_NO_MEMORY };

// `shown` is called with the number of lines done and `data`. `line_out` gets the line of `in` that failed.
copy_result copy_all_lines(const copy_lines &copy, void (*shown)(int done, void *data), void *data, int *line_out);
