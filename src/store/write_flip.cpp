#include "store/write_flip.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "display/geometry.h"
#include "mem.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"

namespace {

void copy_upside_down(const band_rec &band, uint8_t *out)
{
    const int64_t row_bytes = band_row_bytes(&band);
    for (int64_t y = 0; y < band.y_size; y++)
        memcpy(out + (band.y_size - 1 - y) * row_bytes, band.data + y * row_bytes, size_t(row_bytes));
}

void flip_area(held_area *area, int height)
{
    if (area->y0 >= 0)
        area->y0 = height - 1 - std::min(area->y0, height - 1);
    if (area->y1 >= 0)
        area->y1 = height - 1 - std::min(area->y1, height - 1);
    std::swap(area->y0, area->y1);
}

} // namespace

void flip_begin(flipped_bands *flipped, const int numbers[3], held_area *area)
{
    *flipped = {};
    for (int i = 0; i < 3; i++)
        if (std::find(flipped->numbers, flipped->numbers + flipped->count, numbers[i]) == flipped->numbers + flipped->count)
            flipped->numbers[flipped->count++] = numbers[i];
    msg_put(MSG_STATUS, MSG_CENTRED, "Flip image");
    uint64_t bytes = 0;
    for (int i = 0; i < flipped->count; i++)
        bytes += bands[flipped->numbers[i]].alloc_bytes;
    flipped->block = (uint8_t *)mem_alloc(size_t(bytes));
    if (!flipped->block) {
        msg_put(MSG_STATUS, MSG_CENTRED, "Error allocating temporary buffer");
        flipped->count = 0;
        return;
    }
    flip_area(area, bands[numbers[0]].y_size);
    uint8_t *room = flipped->block;
    for (int i = 0; i < flipped->count; i++) {
        const int n = flipped->numbers[i];
        band_rec &band = bands[n];
        copy_upside_down(band, room);
        flipped->data[i] = band.data;
        memcpy(flipped->xform[i], band.xform, sizeof band.xform);
        band.data = room;
        band.orientation = ORIENT_UL_ROW;
        band_reset_orientation(n);
        room += band.alloc_bytes;
    }
}

void flip_end(flipped_bands *flipped)
{
    for (int i = 0; i < flipped->count; i++) {
        band_rec &band = bands[flipped->numbers[i]];
        band.data = flipped->data[i];
        band.orientation = ORIENT_LL_ROW;
        memcpy(band.xform, flipped->xform[i], sizeof band.xform);
    }
    mem_free(flipped->block);
    *flipped = {};
}
