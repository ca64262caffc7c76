// copy_image.h - one image of an open raster file into a new one, in another form if that is wanted.
#pragma once
#include <climits>
#include <cstdint>

#include "RIO/rio.h"
#include "mem.h"
#include "tools/copy_form.h"
#include "tools/copy_lines.h"

enum { MOST_OVERVIEWS = 16, MOST_INCREMENT = 16384, MOST_QUALITY = 100 };   // no step overflows

struct copy_wish {
    const char *compression = nullptr; // one of compression_words()
    int format = -1;                   // -1: that of the source
    int tile_size = -1, overviews = -1; // -1: as the source has them, where that makes sense
    int type = 0, increment = 1, image = 0;
    int quality = 0;                   // of JPEG data; 0: that of the source, or the library's
    int area[4] = { 0, 0, INT_MAX, INT_MAX };   // x0, y0, x1, y1, inclusive; what lies outside is left out
};

struct copy_failure {
    bool of_output;
    char reason[80];
};

struct copy_plan {
    copy_wish wish;
    copy_form form;
    copy_lines lines;
    int orientation;
    int tile_size, overviews;
    int quality;                       // 0: the library's
    bool carry_overviews;              // they are copied from the source's, not made anew
    bool table;                        // the colours go along
    rio_vlt_entry colours[RIO_VLT_SIZE];
    mem_ptr<uint8_t> packets;          // carried along; some formats write them when they are closed
};

// Chooses the image and the form, and checks the area. 1; 0 with the reason.
int copy_begin(RFILE *in, const copy_wish &wish, copy_plan *plan, copy_failure *why);
// Writes header, lines and overviews to a file that is open for writing. `shown` is told the lines done, and all there are. 1;
// 0 with the reason, and what is written is no good. The plan stays until the file is closed.
int copy_run(copy_plan *plan, RFILE *out, void (*shown)(int64_t done, int64_t all), copy_failure *why);
