// sunrle.h - byte run lengths of Sun raster type 2: a byte other than 128 stands for itself; 128, 0 is one byte 128;
// 128, n, v is v n + 1 times. Runs go on across lines.
#pragma once
#include "RIO/CORE/byte_feed.h"

// Coded data being read. Zeroed, and its feed set, it stands at the start of a code.
struct sun_runs {
    byte_feed feed;
    int left;           // of a run begun
    uint8_t value;
};

// The next `count` bytes. Answers how many there were: fewer only at the file's end. A null `out` passes over them.
int64_t sun_decode(sun_runs *runs, RFILE *file, uint8_t *out, int64_t count);

// Where the data stand, for feed_note, and back there.
feed_mark sun_tell(const sun_runs *runs);
void sun_return(sun_runs *runs, feed_mark mark);

// Codes `count` bytes; no run of fewer than three is made of bytes other than 128. Answers the bytes written, at most
// twice `count`.
int sun_encode(const uint8_t *bytes, int count, uint8_t *out);
