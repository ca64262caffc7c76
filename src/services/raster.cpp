// Raster drawing: rows of bits, slots or colours into a window, whatever the format of its pixels.
#include "services/colours.h"
#include "services/drawing.h"
#include <algorithm>
#include <cstring>

// One row of `count` source pixels from column `first` of the source row on, into the window's pixels at `out`.
using put_row = void (*)(const window_record &window, const void *row, int first, uint8_t *out, int count);

// Draws rows of `stride` bytes that are as wide as the rectangle.
static int put_rows(int w, const ws_rect &area, const void *pixels, int64_t stride, put_row put)
{
    if (rect_empty(area))
        return -1;
    const drawing_target target = begin_drawing(w);
    if (!target.window)
        return target.result;
    const ws_rect part = rect_common(area, target.clip);
    if (rect_empty(part))
        return 0;
    for (int y = part.y0; y <= part.y1; y++) {
        const uint8_t *const row = (const uint8_t *)pixels + (int64_t{y} - area.y0) * stride;
        put(*target.window, row, part.x0 - area.x0, store_at(target.window->store, part.x0, y), part.x1 - part.x0 + 1);
    }
    end_drawing(*target.window, part);
    return 0;
}

static int64_t columns(const ws_rect &area)
{
    return int64_t{area.x1} - area.x0 + 1;
}

// --- slots and colours -------------------------------------------------------------------------------------------

static void put_row_8(const window_record &window, const void *row, int first, uint8_t *out, int count)
{
    const uint8_t *const slots = (const uint8_t *)row + first;
    switch (window.store.format) {
    case PIXELS_SLOT8:
        memcpy(out, slots, size_t(count));
        break;
    case PIXELS_SLOT16:
        std::copy_n(slots, count, (uint16_t *)out);
        break;
    case PIXELS_RGB:
        for (int x = 0; x < count; x++)
            ((uint32_t *)out)[x] = ws_state.colours[slots[x]];
        break;
    }
}

static void put_row_16(const window_record &window, const void *row, int first, uint8_t *out, int count)
{
    const uint16_t *const slots = (const uint16_t *)row + first;
    const int max_index = ws_state.info.max_index;
    switch (window.store.format) {
    case PIXELS_SLOT8:
        for (int x = 0; x < count; x++)
            out[x] = uint8_t(std::min<int>(slots[x], max_index));
        break;
    case PIXELS_SLOT16:
        memcpy(out, slots, size_t(count) * sizeof(uint16_t));
        break;
    case PIXELS_RGB:
        for (int x = 0; x < count; x++)
            ((uint32_t *)out)[x] = ws_state.colours[slots[x] % WS_MAX_SLOTS];
        break;
    }
}

static uint32_t bgr0_at(const uint8_t *pixel)
{
    return uint32_t(pixel[0]) | uint32_t(pixel[1]) << 8 | uint32_t(pixel[2]) << 16;
}

// Into slots goes the nearest colour of the table.
static void put_row_24(const window_record &window, const void *row, int first, uint8_t *out, int count)
{
    const uint8_t *const bgr0 = (const uint8_t *)row + int64_t{first} * 4;
    switch (window.store.format) {
    case PIXELS_SLOT8:
        for (int x = 0; x < count; x++)
            out[x] = uint8_t(nearest_slot(bgr0_at(bgr0 + x * 4)));
        break;
    case PIXELS_SLOT16:
        for (int x = 0; x < count; x++)
            ((uint16_t *)out)[x] = uint16_t(nearest_slot(bgr0_at(bgr0 + x * 4)));
        break;
    case PIXELS_RGB:
        memcpy(out, bgr0, size_t(count) * sizeof(uint32_t));
        break;
    }
}

int ws_put_8(int w, uint32_t, int x0, int y0, int x1, int y1, const uint8_t *slots)
{
    const ws_rect area = { x0, y0, x1, y1 };
    return put_rows(w, area, slots, columns(area), put_row_8);
}

int ws_put_16(int w, uint32_t, int x0, int y0, int x1, int y1, const uint16_t *slots)
{
    const ws_rect area = { x0, y0, x1, y1 };
    return put_rows(w, area, slots, columns(area) * 2, put_row_16);
}

int ws_put_24(int w, uint32_t, int x0, int y0, int x1, int y1, const uint8_t *bgr0)
{
    const ws_rect area = { x0, y0, x1, y1 };
    return put_rows(w, area, bgr0, columns(area) * 4, put_row_24);
}

// --- bits --------------------------------------------------------------------------------------------------------

static bool bit_at(const uint8_t *row, int x)
{
    uint16_t word;
    memcpy(&word, row + (x >> 4) * 2, sizeof word);
    return word >> (15 - (x & 15)) & 1;
}

static int64_t bits_stride(const ws_rect &area)
{
    return (columns(area) + 15) / 16 * 2;
}

int ws_put_bits(int w, uint32_t, int x0, int y0, int x1, int y1, const void *bits)
{
    const ws_rect area = { x0, y0, x1, y1 };
    return put_rows(w, area, bits, bits_stride(area), [](const window_record &window, const void *row, int first, uint8_t *out, int count) {
        const int bytes = pixel_bytes(window.store.format);
        const pixel_store line = { out, window.store.format, count, 1, int64_t{count} * bytes };
        for (int x = 0; x < count; x++)
            store_set(line, x, 0, uint32_t(bit_at((const uint8_t *)row, first + x) ? window.foreground : window.background));
    });
}

int ws_draw_bitmap(int w, uint32_t, int x0, int y0, int x1, int y1, const void *bytes)
{
    const ws_rect area = { x0, y0, x1, y1 };
    return put_rows(w, area, bytes, bits_stride(area), [](const window_record &window, const void *row, int first, uint8_t *out, int count) {
        const pixel_store line = { out, window.store.format, count, 1, int64_t{count} * pixel_bytes(window.store.format) };
        for (int x = 0; x < count; x++)
            if (bit_at((const uint8_t *)row, first + x))
                store_set(line, x, 0, uint32_t(window.foreground));
    });
}

// --- whole windows -----------------------------------------------------------------------------------------------

int ws_clear_window(int w)
{
    const drawing_target target = begin_unclipped(w);
    if (!target.window)
        return target.result;
    store_fill(target.window->store, target.clip, uint32_t(target.window->background));
    end_drawing(*target.window, target.clip);
    return 0;
}

uint32_t *ws_true_colour_rows(int w, int *stride_out, int *width_out, int *height_out)
{
    const window_record *const window = window_of(w);
    if (!window || !window->shown || window->collapsed || window->store.format != PIXELS_RGB || !window->store.pixels)
        return nullptr;
    *stride_out = window->store.width;
    *width_out = window->store.width;
    *height_out = window->store.height;
    return (uint32_t *)window->store.pixels;
}

int ws_rows_done(int w, int x0, int y0, int x1, int y1)
{
    const window_record *const window = window_of(w);
    if (!window)
        return -1;
    if (window->shown && !window->collapsed)
        end_drawing(*window, rect_common({ x0, y0, x1, y1 }, { 0, 0, window->rect.x1 - window->rect.x0, window->rect.y1 - window->rect.y0 }));
    return 0;
}
