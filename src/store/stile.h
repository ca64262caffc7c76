// stile.h - the tile store, through which a band may live outside memory. No store is supplied with Kestrel: each call
// is bound to an empty function, which writes nothing through its pointers. The callers are complete.
#pragma once
#include <cstdint>

struct RFILE;

inline void stile_set_mode(int) {}
inline void stile_open_gray(int, int, const char *, uint32_t *) {}
inline void stile_open_rgb(int, int, const char *, uint32_t *) {}
inline void stile_get_size(uint32_t, int *, int *) {}
inline void stile_get_depth(uint32_t, int *) {}
inline void stile_set_mem_limit() {}
inline void stile_close(uint32_t) {}
inline void stile_hold(int) {}

// A tile that meets the scanned rectangle: its origin, its size, its first pixel; rows are tile_size bytes apart. 1 stops the walk.
typedef int (*stile_tile)(int x, int y, int width, int height, const uint8_t *pixels);
inline void stile_scan(uint32_t, int, int, int, int, stile_tile) {}

// Output: an inclusive rectangle of one image, or of three, through tables (null: the bytes as they are).
inline void stile_write_bin(uint32_t, int, int, int, int, int) {}
inline void stile_write_gray(uint32_t, int, int, int, int, const uint16_t *, int, int, int) {}
inline void stile_write_rgb(const uint32_t *, int, int, int, int, const uint16_t *const *) {}
inline void stile_write_raw(uint32_t, int, int, int, int, int, const uint16_t *, RFILE *) {}

constexpr bool STILE_PRESENT = false;  // a supplied store says true
constexpr int STILE_BILEVEL_DEPTH = 16;
