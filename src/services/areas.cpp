// Saving and restoring pixels: areas that the services keep under a handle, and buffers of the program's own.
#include "services/areas.h"
#include "services/drawing.h"
#include "mem.h"
#include <algorithm>
#include <climits>
#include <cstring>
#include <vector>

// --- handles -----------------------------------------------------------------------------------------------------

// A saved area holds only the part that lay in the window: `store` begins dx, dy right of and below the rectangle asked for.
struct saved_area {
    bool used;
    int dx, dy;
    pixel_store store;
};

static std::vector<saved_area> areas;  // handle - 1

static saved_area *area_of(int handle)
{
    if (handle < 1 || handle > int(areas.size()) || !areas[size_t(handle) - 1].used)
        return nullptr;
    return &areas[size_t(handle) - 1];
}

static int new_handle()
{
    for (size_t i = 0; i < areas.size(); i++)
        if (!areas[i].used)
            return int(i) + 1;
    areas.push_back({});
    return int(areas.size());
}

// Copies a rectangle between two stores of one format.
static void copy_rect(const pixel_store &from, int from_x, int from_y, const pixel_store &to, int to_x, int to_y, int width, int height)
{
    const size_t bytes = size_t(width) * size_t(pixel_bytes(to.format));
    for (int y = 0; y < height; y++)
        memcpy(store_at(to, to_x, to_y + y), store_at(from, from_x, from_y + y), bytes);
}

int ws_save_area(int w, int x0, int y0, int x1, int y1, int *handle_out)
{
    *handle_out = 0;
    const ws_rect asked = { x0, y0, x1, y1 };
    if (rect_empty(asked))
        return -1;
    const drawing_target target = begin_unclipped(w);
    if (!target.window)
        return target.result;
    const pixel_store &store = target.window->store;
    const ws_rect part = rect_common(asked, target.clip);
    saved_area area = {};
    area.used = true;
    if (!rect_empty(part)) {
        const int width = part.x1 - part.x0 + 1, height = part.y1 - part.y0 + 1;
        const int64_t bytes = int64_t{width} * height * pixel_bytes(store.format);
        area.dx = part.x0 - x0;
        area.dy = part.y0 - y0;
        area.store = { mem_alloc(size_t(bytes)), store.format, width, height, bytes };
        if (!area.store.pixels)
            return -1;
        copy_rect(store, part.x0, part.y0, area.store, 0, 0, width, height);
    }
    *handle_out = new_handle();
    areas[size_t(*handle_out) - 1] = area;
    return 0;
}

int ws_restore_area(int w, int x, int y, int handle)
{
    const drawing_target target = begin_unclipped(w);
    if (!target.window || handle == 0)
        return target.result;
    const saved_area *const area = area_of(handle);
    if (!area)
        return -1;
    const pixel_store &from = area->store, &to = target.window->store;
    if (!from.pixels)
        return 0;
    if (from.format != to.format)
        return -1;
    const int64_t left = int64_t{x} + area->dx, top = int64_t{y} + area->dy;
    if (left > to.width || top > to.height || left < -from.width || top < -from.height)
        return 0;
    const ws_rect placed = { int(left), int(top), int(left) + from.width - 1, int(top) + from.height - 1 };
    const ws_rect part = rect_common(placed, target.clip);
    if (rect_empty(part))
        return 0;
    copy_rect(from, part.x0 - placed.x0, part.y0 - placed.y0, to, part.x0, part.y0, part.x1 - part.x0 + 1, part.y1 - part.y0 + 1);
    end_drawing(*target.window, part);
    return 0;
}

int ws_free_area(int handle)
{
    if (handle == 0)
        return 0;
    saved_area *const area = area_of(handle);
    if (!area)
        return -1;
    mem_free(area->store.pixels);
    *area = {};
    return 0;
}

void areas_free_all()
{
    for (saved_area &area : areas)
        mem_free(area.store.pixels);
    areas = {};
}

// --- buffers of the program --------------------------------------------------------------------------------------
// A pixel takes 32 bits there whatever the window, so a size needs no window to be known.

static constexpr int64_t BUFFER_PIXEL_BYTES = 4;

int ws_pixels_size(int x0, int y0, int x1, int y1, int *size_out)
{
    const int64_t width = int64_t{x1} - x0 + 1, height = int64_t{y1} - y0 + 1;
    if (width <= 0 || height <= 0 || width > INT_MAX / BUFFER_PIXEL_BYTES / height)
        return -1;
    *size_out = int(width * height * BUFFER_PIXEL_BYTES);
    return 0;
}

// Pixels outside of the window read as 0.
int ws_read_pixels(int w, int x0, int y0, int x1, int y1, void *buffer)
{
    int size;
    if (ws_pixels_size(x0, y0, x1, y1, &size) != 0 || !window_of(w))
        return -1;
    memset(buffer, 0, size_t(size));
    const drawing_target target = begin_unclipped(w);
    if (!target.window)
        return target.result;
    const pixel_store &store = target.window->store;
    const ws_rect part = rect_common({ x0, y0, x1, y1 }, target.clip);
    const int64_t width = int64_t{x1} - x0 + 1;
    for (int y = part.y0; y <= part.y1; y++) {
        uint32_t *const row = (uint32_t *)buffer + (int64_t{y} - y0) * width - x0;
        if (store.format == PIXELS_RGB) {
            std::copy_n((const uint32_t *)store_at(store, part.x0, y), part.x1 - part.x0 + 1, row + part.x0);
            continue;
        }
        for (int x = part.x0; x <= part.x1; x++)
            row[x] = store_get(store, x, y);
    }
    return 0;
}

int ws_write_pixels(int w, int x0, int y0, int x1, int y1, const void *buffer)
{
    int size;
    if (ws_pixels_size(x0, y0, x1, y1, &size) != 0)
        return -1;
    const drawing_target target = begin_unclipped(w);
    if (!target.window)
        return target.result;
    const pixel_store &store = target.window->store;
    const ws_rect part = rect_common({ x0, y0, x1, y1 }, target.clip);
    const int64_t width = int64_t{x1} - x0 + 1;
    for (int y = part.y0; y <= part.y1; y++) {
        const uint32_t *const row = (const uint32_t *)buffer + (int64_t{y} - y0) * width - x0;
        if (store.format == PIXELS_RGB) {
            std::copy_n(row + part.x0, part.x1 - part.x0 + 1, (uint32_t *)store_at(store, part.x0, y));
            continue;
        }
        for (int x = part.x0; x <= part.x1; x++)
            store_set(store, x, y, row[x]);
    }
    end_drawing(*target.window, part);
    return 0;
}
