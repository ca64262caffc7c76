#include "display/readout.h"

#include <cstdio>
#include <initializer_list>

#include "display/geometry.h"
#include "services/ws.h"
#include "shell/session.h"

namespace {

int held_value(const band_rec &band, int x, int y)
{
    if ((band.format & KIND_MASK) != KIND_BIN)
        return band.data[int64_t{y} * band.x_size + x];
    const int64_t row_bytes = ((band.x_size + 15) >> 3) & ~1;
    const uint8_t *row = band.data + y * row_bytes;
    const int word = row[(x >> 4) * 2] | row[(x >> 4) * 2 + 1] << 8;
    return word >> (15 - (x & 15)) & 1;
}

int mapped_value(const band_rec &band, int value)
{
    return (band.format & KIND_MASK) == KIND_BIN ? value : band.lut[value];
}

void mono_text(char *text, size_t size, int x, int y, int value, int mapped)
{
    if (mapped == value)
        snprintf(text, size, "    Pixel(%4d,%4d) = %3d    ", x, y, value);
    else
        snprintf(text, size, "    Pixel(%4d,%4d) = %3d, mapped: %3d    ", x, y, value, mapped);
}

void colour_text(char *text, size_t size, int x, int y, const int value[3], const int mapped[3])
{
    if (value[0] == mapped[0] && value[1] == mapped[1] && value[2] == mapped[2])
        snprintf(text, size, "    Pixel(%4d,%4d)=(%3d,%3d,%3d)    ", x, y, value[0], value[1], value[2]);
    else
        snprintf(text, size, "    Pixel(%4d,%4d)=(%3d,%3d,%3d), mapped: (%3d,%3d,%3d)    ", x, y, value[0], value[1], value[2],
                 mapped[0], mapped[1], mapped[2]);
}

// The held pixel under the pointer in current_window and its place in the file. 0 when it lies outside the image.
int pixel_under_pointer(int sx, int sy, int *x, int *y, int *file_x, int *file_y)
{
    if (!is_picture(current_window) || windows[current_window].red_band < 0)
        return 0;
    const band_rec &red = bands[windows[current_window].red_band];
    double image_x, image_y;
    window_to_image(sx, sy, &image_x, &image_y);
    if (image_x < 0 || image_y < 0 || image_x >= red.x_size || image_y >= red.y_size)
        return 0;
    *x = int(image_x);
    *y = int(image_y);
    window_to_file(sx, sy, file_x, file_y);
    return 1;
}

void readout(bool with_values)
{
    int sx = -1, sy = -1;
    while (pointer_changed(&sx, &sy)) {
        int x, y, file_x, file_y;
        if (!pixel_under_pointer(sx, sy, &x, &y, &file_x, &file_y))
            continue;
        const win_rec &win = windows[current_window];
        char text[160];
        const int16_t numbers[3] = { win.red_band, win.green_band, win.blue_band };
        const bool readable = bands[win.red_band].data && (!(display_mode & COLOR) || (numbers[1] >= 0 && numbers[2] >= 0));
        if (!with_values || !readable) {
            snprintf(text, sizeof text, "    Pixel(%4d,%4d)    ", file_x, file_y);
        } else if (display_mode & COLOR && numbers[0] != numbers[1]) {
            int value[3], mapped[3];
            for (int i = 0; i < 3; i++) {
                value[i] = held_value(bands[numbers[i]], x, y);
                mapped[i] = mapped_value(bands[numbers[i]], value[i]);
            }
            colour_text(text, sizeof text, file_x, file_y, value, mapped);
        } else {
            const int value = held_value(bands[win.red_band], x, y);
            mono_text(text, sizeof text, file_x, file_y, value, mapped_value(bands[win.red_band], value));
        }
        msg_put(MSG_STATUS, MSG_CENTRED, text);
    }
}

} // namespace

int pointer_changed(int *x, int *y)
{
    // Motion is enabled only here, so that a wait for the pointer sleeps.
    for (;;) {
        int w, now_x, now_y, inside;
        uint32_t pending;
        ws_pending(&pending);
        if (pending & ~uint32_t{WS_MOTION})
            break;
        ws_pointer_anywhere(&w, &now_x, &now_y, &inside);
        if (inside && w != 0 && (now_x != *x || now_y != *y || w != current_window)) {
            current_window = w;
            *x = now_x;
            *y = now_y;
            return 1;
        }
        ws_enable_events(WS_MOTION);
        ws_flush_motion();
        ws_wait_event(~0u, &pending);
    }
    ws_disable_events(WS_MOTION);
    return 0;
}

void show_pixel_readout()
{
    readout(true);
    msg_clear(MSG_KEYIN);
}

void show_position_readout()
{
    readout(false);
}

void show_intensity()
{
    msg_put(MSG_TITLE, MSG_CENTRED, "Show Intensity");
    for (const int field : { MSG_STATUS, MSG_PROMPT, MSG_KEYIN })
        msg_clear(field);
    show_pixel_readout();
    for (const int field : { MSG_TITLE, MSG_STATUS, MSG_PROMPT })
        msg_clear(field);
}
