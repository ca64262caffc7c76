#include "services/pixel_store.h"
#include "mem.h"
#include <algorithm>
#include <cstring>
#include <sys/mman.h>

// Fresh pages cost several times what filling them does, so blocks of deleted windows and closed pop-ups wait here.
struct pool_block {
    void *memory;
    int64_t bytes;
};
static constexpr int POOL_BLOCKS = 4;
static pool_block pool[POOL_BLOCKS];

static constexpr int64_t HUGE_PAGE = 2 << 20;
static constexpr int64_t SLACK = 4;    // a block of more than this times the need is not used for it

static bool suits(int64_t held, int64_t needed)
{
    return held >= needed && held / SLACK <= needed;
}

static void advise_huge_pages(void *memory, int64_t bytes)
{
    const uintptr_t first = (uintptr_t(memory) + HUGE_PAGE - 1) / HUGE_PAGE * HUGE_PAGE;
    const uintptr_t end = (uintptr_t(memory) + uintptr_t(bytes)) / HUGE_PAGE * HUGE_PAGE;
    if (end > first)
        madvise((void *)first, end - first, MADV_HUGEPAGE);
}

static void *block_take(int64_t needed, int64_t *bytes_out)
{
    for (pool_block &block : pool) {
        if (block.memory && suits(block.bytes, needed)) {
            void *const memory = block.memory;
            *bytes_out = block.bytes;
            block = {};
            return memory;
        }
    }
    void *const memory = mem_alloc(size_t(needed));
    if (memory)
        advise_huge_pages(memory, needed);
    *bytes_out = memory ? needed : 0;
    return memory;
}

static void block_give(void *memory, int64_t bytes)
{
    if (!memory)
        return;
    pool_block *const smallest = std::min_element(pool, pool + POOL_BLOCKS,
        [](const pool_block &a, const pool_block &b) { return a.bytes < b.bytes; });
    if (smallest->bytes < bytes) {
        std::swap(smallest->memory, memory);
        smallest->bytes = bytes;
    }
    mem_free(memory);
}

void store_pool_free()
{
    for (pool_block &block : pool) {
        mem_free(block.memory);
        block = {};
    }
}

void store_free(pixel_store &store)
{
    block_give(store.pixels, store.capacity);
    store = {};
}

static void copy_overlap(const pixel_store &from, const pixel_store &to)
{
    const size_t bytes = size_t(std::min(from.width, to.width)) * size_t(pixel_bytes(to.format));
    for (int y = 0; y < std::min(from.height, to.height); y++)
        memcpy(store_at(to, 0, y), store_at(from, 0, y), bytes);
}

bool store_shape(pixel_store &store, pixel_format format, int width, int height, uint32_t value)
{
    if (store.pixels && store.format == format && store.width == width && store.height == height)
        return true;
    const int64_t needed = int64_t{width} * height * pixel_bytes(format);
    pixel_store shaped = { nullptr, format, width, height, 0 };
    shaped.pixels = block_take(needed, &shaped.capacity);
    if (!shaped.pixels) {
        store_free(store);
        return false;
    }
    store_fill(shaped, store_rect(shaped), value);
    if (store.pixels && store.format == format)
        copy_overlap(store, shaped);
    store_free(store);
    store = shaped;
    return true;
}

template <typename pixel> static void fill_rows(const pixel_store &store, const ws_rect &area, pixel value)
{
    const int width = area.x1 - area.x0 + 1;
    pixel *row = (pixel *)store_at(store, area.x0, area.y0);
    for (int y = area.y0; y <= area.y1; y++, row += store.width) {
        if (width == 1)                // the bars of histograms
            *row = value;
        else
            std::fill_n(row, width, value);
    }
}

void store_fill(const pixel_store &store, const ws_rect &area, uint32_t value)
{
    switch (store.format) {
    case PIXELS_SLOT8:
        fill_rows(store, area, uint8_t(value));
        break;
    case PIXELS_SLOT16:
        fill_rows(store, area, uint16_t(value));
        break;
    case PIXELS_RGB:
        fill_rows(store, area, value);
        break;
    }
}

uint32_t store_get(const pixel_store &store, int x, int y)
{
    const uint8_t *const at = store_at(store, x, y);
    switch (store.format) {
    case PIXELS_SLOT8:
        return *at;
    case PIXELS_SLOT16:
        return *(const uint16_t *)at;
    case PIXELS_RGB:
        break;
    }
    return *(const uint32_t *)at;
}

void store_set(const pixel_store &store, int x, int y, uint32_t value)
{
    uint8_t *const at = store_at(store, x, y);
    switch (store.format) {
    case PIXELS_SLOT8:
        *at = uint8_t(value);
        break;
    case PIXELS_SLOT16:
        *(uint16_t *)at = uint16_t(value);
        break;
    case PIXELS_RGB:
        *(uint32_t *)at = value;
        break;
    }
}
