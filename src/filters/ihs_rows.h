// ihs_rows.h - private to the room: one row between red, green, blue and intensity, hue, saturation, in place. There are two ways that
// give the same: by the tables of ihs.h, and by arithmetic that wide vectors do faster than they look things up.
#pragma once
#include <cstdint>

constexpr int IHS_STEPS = 42, IHS_SEGMENTS = 6, IHS_HUE_MAX = IHS_SEGMENTS * IHS_STEPS - 1;

struct ihs_rows {
    void (*forward)(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols);
    int  (*back)(uint8_t *b1, uint8_t *b2, uint8_t *b3, int cols);   // 0 or IHS_BAD_HUE
};

extern const ihs_rows ihs_by_tables;       // after ihs_init
extern const ihs_rows ihs_by_arithmetic;   // on any processor, but slow without wide vectors
