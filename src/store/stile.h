// stile.h - the tile store, through which a band may live outside memory. No store is supplied with Kestrel: each call
// is bound to an empty function, which writes nothing through its pointers. The callers are complete.
#pragma once
#include <cstdint>

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

constexpr int STILE_BILEVEL_DEPTH = 16;
