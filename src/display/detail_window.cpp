#include "display/detail_window.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "display/geometry.h"
#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/load.h"

namespace {

struct detail_bands {
    int count;                         // 1 or 3
    int number[3];                     // red, green, blue; all the same for one band
};

int refuse(const char *text)
{
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    beep(BEEP_ERROR);
    return 0;
}

int bands_of(const win_rec &win, int numbers[3])
{
    numbers[0] = win.red_band;
    numbers[1] = win.green_band < 0 ? win.red_band : win.green_band;
    numbers[2] = win.blue_band < 0 ? win.red_band : win.blue_band;
    return numbers[0] == numbers[1] ? 1 : 3;
}

file_area within(const file_area &area, const file_area &limits)
{
    return { std::max(area.x0, limits.x0), std::max(area.y0, limits.y0), std::min(area.x1, limits.x1), std::min(area.y1, limits.y1) };
}

bool is_empty(const file_area &area)
{
    return area.x1 < area.x0 || area.y1 < area.y0;
}

// What is held at full resolution may be larger than the part of the file that it came from: an image that was turned.
file_area area_of(const band_rec &band)
{
    if (band.increment < 2)
        return { band.file_x0, band.file_y0, band.file_x0 + band.x_size - 1, band.file_y0 + band.y_size - 1 };
    return { band.file_x0, band.file_y0, band.file_x1, band.file_y1 };
}

void free_bands(const detail_bands &bands_made)
{
    for (int i = 0; i < bands_made.count; i++)
        if (bands_made.number[i] >= 0)
            band_free(bands_made.number[i]);
}

// --- from memory -------------------------------------------------------------------------------------------------

int bit_of(const uint8_t *row, int x)
{
    uint16_t word;
    memcpy(&word, row + (x >> 4) * 2, sizeof word);
    return word >> (15 - (x & 15)) & 1;
}

void set_bit(uint8_t *row, int x)
{
    uint16_t word;
    memcpy(&word, row + (x >> 4) * 2, sizeof word);
    word = uint16_t(word | 0x8000 >> (x & 15));
    memcpy(row + (x >> 4) * 2, &word, sizeof word);
}

void copy_pixels(const band_rec &from, int x0, int y0, band_rec *to)
{
    const int64_t from_stride = band_row_bytes(&from), to_stride = band_row_bytes(to);
    const bool bits = (from.format & KIND_MASK) == KIND_BIN;
    for (int y = 0; y < to->y_size; y++) {
        const uint8_t *source = from.data + (y0 + y) * from_stride;
        uint8_t *row = to->data + y * to_stride;
        if (!bits) {
            memcpy(row, source + x0, size_t(to->x_size));
            continue;
        }
        memset(row, 0, size_t(to_stride));
        for (int x = 0; x < to->x_size; x++)
            if (bit_of(source, x0 + x))
                set_bit(row, x);
    }
}

// A new band on a part of a held one that is at full resolution.
int copy_band(int from_number, const file_area &area, int *band_out)
{
    const band_rec &from = bands[from_number];
    int increment = 1;
    const int made = band_create(area.x1 - area.x0 + 1, area.y1 - area.y0 + 1, &increment, int(from.format), from.file_name, band_out);
    if (!made)
        return 0;
    band_rec &band = bands[*band_out];
    band.file_x0 = area.x0;
    band.file_y0 = area.y0;
    band.file_x1 = area.x1;
    band.file_y1 = area.y1;
    copy_pixels(from, area.x0 - from.file_x0, area.y0 - from.file_y0, &band);
    return 1;
}

int copy_from_memory(const win_rec &win, const file_area &wanted, detail_bands *made)
{
    int from[3];
    made->count = bands_of(win, from);
    const band_rec &red = bands[from[0]];
    const file_area area = within(wanted, area_of(red));
    if (is_empty(area))
        return refuse("There is no image at that point");
    for (int i = 0; i < made->count; i++)
        if (!bands[from[i]].data || bands[from[i]].x_size != red.x_size || bands[from[i]].y_size != red.y_size)
            return refuse("failed to read file format");
    for (int i = 0; i < made->count; i++)
        if (!copy_band(from[i], area, &made->number[i])) {
            made->count = i;
            free_bands(*made);
            return 0;
        }
    return 1;
}

// --- from the file -----------------------------------------------------------------------------------------------

// Where a colour image came from one file only one of its bands knows the name.
const char *file_name_of(const int numbers[3])
{
    for (int i = 0; i < 3; i++)
        if (bands[numbers[i]].file_name[0])
            return bands[numbers[i]].file_name;
    return "";
}

// What a colour file gives in its own order is put in the order of a picture that shows one of its channels.
void order_as_channel(detail_bands *made)
{
    if (mono_channel > 1)
        std::swap(made->number[0], made->number[mono_channel - 1]);
}

int load_part(const win_rec &win, const file_area &area, detail_bands *made)
{
    int from[3], *to = made->number;
    made->count = bands_of(win, from);
    const band_rec &red = bands[from[0]];
    switch (red.format & KIND_MASK) {
    case KIND_RGB:
        made->count = 3;
        return load_rgb_file(1, file_name_of(from), area, 0, &to[0], &to[1], &to[2]);
    case KIND_COT_INDEX:
        made->count = 3;
        return load_colour_index(1, file_name_of(from), area, 0, &to[0], &to[1], &to[2]);
    case KIND_COT:
        if (made->count == 1)
            return load_gray(1, red.file_name, SOURCE_GRAY, area, 0, &to[0]);
        return load_gray3(1, bands[from[0]].file_name, bands[from[1]].file_name, bands[from[2]].file_name, area, 0, &to[0], &to[1], &to[2]);
    default:
        return refuse("failed to read file format");
    }
}

// The loaders set the gamma and the mode for an image that is shown by itself; this one joins a picture.
int read_from_file(const win_rec &win, const file_area &wanted, detail_bands *made)
{
    const file_area area = { std::max(wanted.x0, 0), std::max(wanted.y0, 0), wanted.x1, wanted.y1 };
    const uint32_t mode = display_mode;
    const double gamma = gamma_value;
    const int loaded = load_part(win, area, made);
    display_mode = mode;
    gamma_value = gamma;
    if (loaded && (bands[win.red_band].format & KIND_MASK) != KIND_COT)
        order_as_channel(made);
    return loaded;
}

// --- the window --------------------------------------------------------------------------------------------------

// Levels are shown and lie as in the picture.
void look_like(const win_rec &win, const detail_bands &made)
{
    int from[3];
    bands_of(win, from);
    for (int i = 0; i < made.count; i++) {
        band_rec &band = bands[made.number[i]];
        const band_rec &source = bands[from[i]];
        memcpy(band.lut, source.lut, 256 * sizeof *band.lut);
        memcpy(band.xform, source.xform, sizeof band.xform);
        band.orientation = source.orientation;
    }
}

int make_bands(const win_rec &win, const file_area &area, detail_bands *made)
{
    if (is_empty(within(area, area_of(bands[win.red_band]))))
        return refuse("There is no image at that point");
    const int read = bands[win.red_band].increment < 2 ? copy_from_memory(win, area, made) : read_from_file(win, area, made);
    if (!read)
        return 0;
    if (made->count == 1)
        made->number[1] = made->number[2] = made->number[0];
    look_like(win, *made);
    return 1;
}

// Made active for as long as its histogram and colour table need it.
void show_detail(int w, const detail_bands &made, int centre_x, int centre_y, double zoom)
{
    win_rec &win = windows[w];
    const band_rec &red = bands[made.number[0]];
    win.zoom = std::clamp(zoom, ZOOM_MIN, ZOOM_MAX);
    snprintf(win.name, sizeof win.name, " ");
    win.red_band = int16_t(made.number[0]);
    win.green_band = int16_t(made.number[1]);
    win.blue_band = int16_t(made.number[2]);
    win.hist_area = { 0, 0, red.x_size - 1, red.y_size - 1 };
    win.data_x = centre_x - red.file_x0;
    win.data_y = centre_y - red.file_y0;
    if (display_mode & TC)
        vlt_program();
    if ((red.format & KIND_MASK) != KIND_BIN)
        collect_window_hists();
    current_window = w;
    paint_whole_window();
}

} // namespace

int detail_window(int x, int y, int width, int height, int file_w, int file_h, int centre_x, int centre_y, double min_zoom, int window)
{
    if (!is_image_window(window) || windows[window].red_band < 0)
        return -1;
    const win_rec &source = windows[window];
    const file_area area = { centre_x - file_w / 2, centre_y - file_h / 2, centre_x - file_w / 2 + file_w - 1, centre_y - file_h / 2 + file_h - 1 };
    busy_all();
    detail_bands made;
    int w = -1;
    if (make_bands(source, area, &made)) {
        const int right = screen_width - layout.border_x - width, lower = screen_height - layout.strip - layout.border_y - height;
        w = new_picture_window(width, height, std::min(x, std::max(right, layout.border_x)), std::min(y, std::max(lower, layout.caption)));
        if (w >= 0) {
            show_detail(w, made, centre_x, centre_y, std::max(2 * source.zoom, min_zoom));
        } else {
            free_bands(made);
            refuse("no window is free for the detail");
        }
    }
    current_window = window;
    apply_active();
    normal_all();
    return w;
}

void detail_win()
{
    int input;
    do
        input = prompt_input("Detail window", "Select center point", 0);
    while (!(input & (INPUT_RESET | INPUT_QUIT)) && !(input == INPUT_POINT && is_picture(pick_window)));
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    if (input != INPUT_POINT)
        return;
    int x, y;
    window_to_file(pick_x, pick_y, &x, &y);
    const int picture = windows[pick_window].flags & WIN_OVERVIEW ? windows[pick_window].linked_window : pick_window;
    detail_window(900, 100, 256, 256, 256, 256, x, y, 3.0, picture);
}
