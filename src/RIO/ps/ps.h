// ps.h - PostScript pages, write only: a prologue, one pair of hex digits for the grey of each pixel, a trailer.
// Standard id 21. The page is turned by 90 degrees and centred on the point (306, 396).
//
//   psopen   binding of a new file    psinfo   header, lines and trailer out
#pragma once
#include "RIO/CORE/rio_format.h"

struct ps_specs {
    uint8_t *pixels;            // the whole picture, width * height levels or indices
    char hex[256][2];           // the digits of each
};

inline ps_specs *ps_of(RFILE *file) { return static_cast<ps_specs *>(file->specs); }

// Slots.
int ps_wrt_hdr(RFILE *file);
int ps_put_line(RFILE *file, int count, uint8_t **lines);
void ps_close(RFILE *file);
