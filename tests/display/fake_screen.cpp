#include "fake_screen.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "display/picture_windows.h"
#include "enhance/histogram.h"
#include "enhance/slice_display.h"
#include "shell/prompt.h"
#include "shell/session.h"

fake_screen screen;
int32_t form_is_up, popup_forms = 1;

void fake_screen_reset(int width, int height, bool true_colour)
{
    screen = {};
    screen.width = width, screen.height = height;
    screen.true_colour = true_colour;
    screen.pixels.assign(size_t(width) * size_t(height), UNTOUCHED);
    screen.rows.assign(size_t(width) * size_t(height), FRESH);
    for (int i = 0; i < WS_MAX_SLOTS; i++)
        screen.table[i] = { uint16_t(i), 1, 1, 1 };
}

static size_t at(int x, int y)
{
    return size_t(y) * size_t(screen.width) + size_t(x);
}

int32_t shown(int x, int y)
{
    const uint32_t row = screen.rows[at(x, y)];
    return row == FRESH ? screen.pixels[at(x, y)] : int32_t(row);
}

static void set(int x, int y, int32_t value)
{
    if (x >= 0 && y >= 0 && x < screen.width && y < screen.height)
        screen.pixels[at(x, y)] = value;
}

// --- raster --------------------------------------------------------------------------------------------------

template <typename sample> static void put(int x0, int y0, int x1, int y1, const sample *values)
{
    for (int y = y0; y <= y1; y++)
        for (int x = x0; x <= x1; x++)
            set(x, y, int32_t(*values++));
}

int ws_put_8(int, uint32_t, int x0, int y0, int x1, int y1, const uint8_t *slots)
{
    screen.puts_8++;
    put(x0, y0, x1, y1, slots);
    return 0;
}

int ws_put_16(int, uint32_t, int x0, int y0, int x1, int y1, const uint16_t *slots)
{
    screen.puts_16++;
    put(x0, y0, x1, y1, slots);
    return 0;
}

int ws_put_24(int, uint32_t, int x0, int y0, int x1, int y1, const uint8_t *bgr0)
{
    screen.puts_24++;
    for (int y = y0; y <= y1; y++)
        for (int x = x0; x <= x1; x++, bgr0 += 4)
            set(x, y, bgr0[2] << 16 | bgr0[1] << 8 | bgr0[0]);
    return 0;
}

int ws_draw_bitmap(int, uint32_t, int x0, int y0, int x1, int y1, const void *bytes)
{
    screen.bitmaps++;
    const int words = (x1 - x0 + 16) / 16;
    for (int y = y0; y <= y1; y++)
        for (int x = x0; x <= x1; x++) {
            uint16_t word;
            std::memcpy(&word, static_cast<const char *>(bytes) + ((y - y0) * words + (x - x0) / 16) * 2, 2);
            if (word & 0x8000u >> (x - x0) % 16)
                set(x, y, screen.foreground);
        }
    return 0;
}

uint32_t *ws_true_colour_rows(int, int *stride_out, int *width_out, int *height_out)
{
    *stride_out = *width_out = screen.width;
    *height_out = screen.height;
    return screen.true_colour ? screen.rows.data() : nullptr;
}

int ws_rows_done(int, int x0, int y0, int x1, int y1)
{
    screen.rows_done.push_back({ x0, y0, x1, y1 });
    return 0;
}

int ws_set_foreground(int, int colour)
{
    screen.foreground = colour;
    return 0;
}

int ws_fill_rect(int, int x0, int y0, int x1, int y1)
{
    for (int y = y0; y <= y1; y++)
        for (int x = x0; x <= x1; x++)
            set(x, y, screen.foreground);
    return 0;
}

// --- colours -------------------------------------------------------------------------------------------------

int ws_write_window_vlt(int, int number, const vlt_entry *entries, int count)
{
    screen.written.assign(entries, entries + count);
    screen.written_number = number;
    screen.writes++;
    if (number == 0)
        for (int i = 0; i < count; i++)
            screen.table[entries[i].slot] = entries[i];
    return 0;
}

int ws_write_vlt(int number, const vlt_entry *entries, int count)
{
    return ws_write_window_vlt(number, 0, entries, count);
}

int ws_window_vlt(int, int *number_out)
{
    *number_out = screen.true_colour ? 2 : 0;
    return 0;
}

int ws_set_window_vlt(int, int number)
{
    screen.true_colour = number == 2;
    return 0;
}

// --- windows, events, messages -------------------------------------------------------------------------------

int ws_window_rect(int, int *x0_out, int *y0_out, int *x1_out, int *y1_out)
{
    *x0_out = *y0_out = 0;
    *x1_out = screen.width - 1, *y1_out = screen.height - 1;
    return 0;
}

int ws_move_window(int, int, int, int, int) { return 0; }
int ws_clear_window(int) { return 0; }

int ws_pending(uint32_t *mask_out)
{
    *mask_out = screen.buttons.empty() ? 0u : uint32_t{WS_BUTTON};
    return 0;
}

int ws_read_button(int *w_out, int *x_out, int *y_out, int *button_out, int *transition_out, uint32_t *time_out)
{
    if (screen.buttons.empty())
        return -1;
    *w_out = *x_out = *y_out = 0;
    *button_out = 1;
    *time_out = 0;
    *transition_out = screen.buttons.front();
    screen.buttons.erase(screen.buttons.begin());
    screen.buttons_read++;
    return 0;
}

int msg_put(int field, int, const char *text)
{
    screen.messages[field] = text;
    return 0;
}

int msg_clear(int) { return 0; }

void report(int level, const char *format, ...)
{
    char text[500];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    screen.reports += std::to_string(level) + " " + text;
}

// --- forms and prompts ---------------------------------------------------------------------------------------

const forms_style *forms_get_style() { return &screen.style; }
void forms_set_style(const forms_style *style) { screen.style = *style; }

int value_slider_dialog(int, int, double, double, double *value, int, double, const char *, const char *, const char *, const char *)
{
    if (screen.slider_answer < 0)
        return 0;
    *value = screen.slider_answer;
    return 1;
}

int prompt_input(const char *title, const char *, int)
{
    screen.prompts.push_back(title);
    if (screen.answers.empty())
        return INPUT_QUIT;
    const int answer = screen.answers.front();
    screen.answers.erase(screen.answers.begin());
    if (answer == INPUT_KEYIN) {       // the letter stands behind it
        keyin_buffer[0] = char(screen.answers.front());
        screen.answers.erase(screen.answers.begin());
    }
    return answer;
}

// --- the rooms around ----------------------------------------------------------------------------------------

void window_read_geometry(int) {}
void window_set_name(int) {}
void rename_bands(uint32_t) {}
void draw_hist(int, int, int, int) {}
void slice_write_table() {}
void clear_all_pictures() { screen.pictures_cleared++; }
void paint_all_pictures() { screen.pictures_painted++; }
