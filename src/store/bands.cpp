#include "store/bands.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <iterator>

#include <sys/mman.h>

#include "display/geometry.h"
#include "display/picture_windows.h"
#include "enhance/histogram.h"
#include "mem.h"
#include "services/ws.h"

namespace {

constexpr int LABEL_TEXT = 20;

int refuse()
{
    msg_put(MSG_STATUS, MSG_CENTRED, "failed to allocate memory for image");
    beep(BEEP_ERROR);
    return 0;
}

// Bytes that the pixels need, 1 for a tile-backed band, 0 when no band can be that large.
uint32_t pixel_bytes(const band_rec &band)
{
    if (band.format == KIND_TILED)
        return 1;
    if (band.x_size <= 0 || band.y_size <= 0)
        return 0;
    const uint64_t bytes = uint64_t(band_row_bytes(&band)) * uint64_t(band.y_size);
    // A single pixel takes two bytes: one byte stands for a band in the tile store.
    return bytes <= UINT32_MAX ? std::max(uint32_t(bytes), uint32_t{2}) : 0;
}

// One block, in the order in which the record names its tables.
int alloc_tables(band_rec &band)
{
    uint8_t *block = (uint8_t *)mem_calloc(1, BAND_TABLE_BYTES);
    if (!block)
        return 0;
    band.hist_mapped = (int32_t *)block;
    band.hist_unmapped = (int32_t *)(block + 1024);
    band.lut = (int16_t *)(block + 2048);
    band.slice_colors = (int16_t *)(block + 2560);
    band.label = (char *)(block + 3072);
    band.file_name = (char *)(block + 3096);
    return 1;
}

// Pixels of bands that were freed, for the next picture: the system takes longer to hand out fresh pages than to copy a
// picture into them. It may have their pages back when memory is short, and they are cleared on their way out.
struct kept_block {
    uint8_t *data;
    uint32_t bytes;
};
kept_block kept[3];

void keep_or_free(uint8_t *data, uint32_t bytes)
{
    kept_block *smallest = std::min_element(std::begin(kept), std::end(kept), [](auto &a, auto &b) { return a.bytes < b.bytes; });
    if (!data || bytes < MEM_LARGE_BLOCK || bytes <= smallest->bytes) {
        mem_free(data);
        return;
    }
    mem_free(smallest->data);
    *smallest = { data, bytes };
    constexpr uintptr_t PAGE = 4096;
    madvise((void *)((uintptr_t(data) + PAGE - 1) & ~(PAGE - 1)), bytes - PAGE, MADV_FREE);
}

// A kept block that is not much larger than what is asked for; null when there is none.
uint8_t *take_kept(uint32_t bytes)
{
    for (kept_block &block : kept)
        if (block.bytes >= bytes && block.bytes / 2 <= bytes) {
            uint8_t *data = block.data;
            block = {};
            memset(data, 0, bytes);
            return data;
        }
    return nullptr;
}

// Fresh memory is zero, so that the missing tail of a short file need not be touched.
int grow_data(band_rec &band, uint32_t bytes)
{
    if (band.alloc_bytes > 1)
        keep_or_free(band.data, band.alloc_bytes);
    band.data = nullptr;
    band.alloc_bytes = bytes;
    if (bytes <= 1)
        return 1;
    band.data = take_kept(bytes);
    if (!band.data)
        band.data = (uint8_t *)mem_calloc(bytes, 1);
    if (band.data)
        return 1;
    band.alloc_bytes = 0;
    return 0;
}

// Area, size and increment of a band that is about to get its memory.
void set_area(band_rec &band, int width, int height, int increment)
{
    band.file_x0 = band.file_y0 = 0;
    band.file_x1 = width - 1;
    band.file_y1 = height - 1;
    band.x_size = int32_t((int64_t{width} + increment - 1) / increment);
    band.y_size = int32_t((int64_t{height} + increment - 1) / increment);
    band.increment = int16_t(increment);
}

int usable_increment(int increment, int width, int height)
{
    return std::min(increment < 1 ? band_default_increment(width, height) : increment, SHRT_MAX);
}

void set_link(win_rec &win, int colour, int old_band, int new_band)
{
    int16_t &link = colour == BAND_RED ? win.red_band : colour == BAND_GREEN ? win.green_band : win.blue_band;
    link = int16_t(new_band);
    if (win.slice_band == old_band)
        win.slice_band = int16_t(new_band);
}

bool any_window_shows(int band)
{
    return std::any_of(windows, windows + WINDOWS, [band](const win_rec &win) {
        return win.flags && (win.red_band == band || win.green_band == band || win.blue_band == band);
    });
}

} // namespace

int band_row_bytes(const band_rec *band)
{
    return (band->format & KIND_MASK) == KIND_BIN ? int(((int64_t{band->x_size} + 15) >> 3) & ~int64_t{1}) : band->x_size;
}

void band_set_file_name(band_rec &band, const char *name)
{
    snprintf(band.file_name, BAND_NAME_SIZE, "%s", name ? name : "");
    const char *stem = band.file_name;
    for (const char *p = band.file_name; *p; p++)
        if (*p == '/' || *p == '\\')
            stem = p + 1;
    snprintf(band.label, LABEL_TEXT + 1, "%s", stem);
}

int band_alloc(int n)
{
    if (n < 0 || n >= BANDS)
        return refuse();
    band_rec &band = bands[n];
    const uint32_t bytes = pixel_bytes(band);
    if (bytes == 0)
        return refuse();
    if (bytes == 1 && band.format == KIND_TILED)
        band.alloc_bytes = 1;
    // A band never shrinks: a bigger buffer is kept.
    if (band.alloc_bytes < bytes && !grow_data(band, bytes))
        return refuse();
    if (band.hist_mapped || alloc_tables(band))
        return 1;
    mem_free(band.data);
    band.data = nullptr;
    band.alloc_bytes = 0;
    return refuse();
}

int band_alloc_rgb(int r, int g, int b)
{
    return band_alloc(r) && band_alloc(g) && band_alloc(b);
}

void band_free(int n)
{
    band_rec &band = bands[n];
    if (band.alloc_bytes == 0)
        return;
    keep_or_free(band.data, band.alloc_bytes);
    mem_free(band.undo_data);
    mem_free(band.hist_mapped);
    mem_free(band.aux_buffer);
    band_clear(n);
}

void band_reset_tables(int n)
{
    band_rec &band = bands[n];
    memset(band.hist_mapped, 0, 256 * sizeof *band.hist_mapped);
    memset(band.hist_unmapped, 0, 256 * sizeof *band.hist_unmapped);
    for (int i = 0; i < 256; i++) {
        band.lut[i] = int16_t(i);
        band.slice_colors[i] = -1;
    }
    band.orientation = ORIENT_UL_ROW;
    band_clear_xform(n);
}

int band_default_increment(int width, int height)
{
    const auto ceiling = [](int size, int limit) { return (size + limit - 1) / limit; };
    const int ix = width > max_image_width ? ceiling(width, max_image_width) : 2;
    if (height <= max_image_height)
        return std::max(ix, 2);
    return std::max(ceiling(height, max_image_height), ix);
}

int band_create(int width, int height, int *increment, int kind, const char *name, int *band_out)
{
    const int n = display_mode & REFETCHING_BAND ? windows[active_window].red_band : band_free_slot(0);
    *band_out = n;
    if (n < 0 || n >= BANDS)
        return refuse();
    band_rec &band = bands[n];
    *increment = usable_increment(*increment, width, height);
    set_area(band, width, height, *increment);
    band.format = uint32_t(kind) & 63;
    band.image_id = 0;
    if (!band_alloc(n))
        return 0;
    band_set_file_name(band, name);
    band_reset_tables(n);
    return 1;
}

int band_create_rgb(int width, int height, int *increment, int kind, const char *name1, const char *name2, const char *name3,
                    int *r_out, int *g_out, int *b_out)
{
    const bool refetching = display_mode & REFETCHING_BAND;
    if (refetching) {
        *r_out = windows[active_window].red_band;
        *g_out = windows[active_window].green_band;
        *b_out = windows[active_window].blue_band;
    } else {
        *r_out = band_free_slot(0);
        *g_out = band_free_slot(*r_out + 1);
        *b_out = band_free_slot(*g_out + 1);
    }
    const int numbers[3] = { *r_out, *g_out, *b_out };
    for (const int n : numbers)
        if (n < 0 || n >= BANDS)
            return refuse();
    *increment = usable_increment(*increment, width, height);
    for (const int n : numbers) {
        set_area(bands[n], width, height, *increment);
        bands[n].image_id = 0;
        if (!refetching)
            bands[n].format = uint32_t(kind) & 63;
    }
    if (!band_alloc_rgb(numbers[0], numbers[1], numbers[2])) {
        for (const int n : numbers)
            if (!refetching)
                band_free(n);
        return 0;
    }
    if (display_mode & NEW_SESSION)
        display_mode |= COLOR;
    const char *const names[3] = { name1, name2, name3 };
    for (int i = 0; i < 3; i++) {
        band_set_file_name(bands[numbers[i]], names[i]);
        band_reset_tables(numbers[i]);
    }
    return 1;
}

void band_replace(int window, int colour, int old_band, int new_band)
{
    msg_put(MSG_STATUS, MSG_CENTRED, "Replacing band");
    if (bands[new_band].x_size != bands[old_band].x_size || bands[new_band].y_size != bands[old_band].y_size) {
        msg_put(MSG_STATUS, MSG_CENTRED, "Inconsistent file sizes");
        beep(BEEP_ERROR);
        band_free(new_band);
        return;
    }
    const int partner = windows[window].linked_window;
    set_link(windows[window], colour, old_band, new_band);
    if (is_image_window(partner))
        set_link(windows[partner], colour, old_band, new_band);
    const int overview = window_overview_of(window);
    if (overview >= 0)
        set_link(windows[overview], colour, old_band, new_band);
    if (!any_window_shows(old_band))
        band_free(old_band);
    collect_window_hists();
    const win_rec &win = windows[window];
    const uint32_t mask = band_mask(win.red_band, win.green_band, win.blue_band);
    paint_bands(mask);
    rename_bands(mask);
    msg_clear(MSG_STATUS);
}
