// write_flip.h - an image whose first line is the lowest is written top first: its bands stand on their heads meanwhile.
#pragma once
#include <cstdint>

#include "store/write_files.h"

struct flipped_bands {
    int count;                         // 0: nothing was flipped
    int numbers[3];                    // different bands
    uint8_t *data[3];                  // as they lay
    double xform[3][4][4];
    uint8_t *block;
};

// Flips the bands and the area, when it is given. Without memory that is said, and they stay as they are.
void flip_begin(flipped_bands *flipped, const int numbers[3], held_area *area);
void flip_end(flipped_bands *flipped);
