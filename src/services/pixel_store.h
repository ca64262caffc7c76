// pixel_store.h - the backing store of a window: its pixels in the format in which it draws.
// Coordinates are those of the store, 0, 0 top left. Rectangles given here lie within the store; callers clip.
#pragma once
#include "services/ws_state.h"

inline int pixel_bytes(pixel_format format)
{
    return format == PIXELS_SLOT8 ? 1 : format == PIXELS_SLOT16 ? 2 : 4;
}

inline ws_rect store_rect(const pixel_store &store)
{
    return { 0, 0, store.width - 1, store.height - 1 };
}

inline uint8_t *store_at(const pixel_store &store, int x, int y)
{
    return (uint8_t *)store.pixels + (int64_t{y} * store.width + x) * pixel_bytes(store.format);
}

// Gives the store this format and size. Pixels of the old picture stay where both overlap, if the format stays; all others
// become `value`. False: no memory, the store is empty.
bool store_shape(pixel_store &store, pixel_format format, int width, int height, uint32_t value);
void store_free(pixel_store &store);
void store_pool_free();                // memory kept for the next store

void store_fill(const pixel_store &store, const ws_rect &area, uint32_t value);
uint32_t store_get(const pixel_store &store, int x, int y);
void store_set(const pixel_store &store, int x, int y, uint32_t value);
