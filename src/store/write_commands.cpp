#include "store/write_commands.h"

#include "display/vlt.h"
#include "shell/session.h"
#include "store/read_prompts.h"
#include "store/write_files.h"
#include "store/write_prompts.h"

namespace {

constexpr const char *FILE_NAME_PROMPT = "Enter file name";
constexpr const char *BIN_TITLE = "Write binary format file", *COT_TITLE = "Write COT format file", *RLE_TITLE = "Write RLE format file",
                     *RAW_TITLE = "Write raw format file", *RGB_TITLE = "Write RGB image file";
constexpr int ROUNDS = 3;

// The window that commands apply to; none when it has gone while the operator was asked.
const win_rec *target()
{
    return image_is_present() ? &windows[active_window] : nullptr;
}

int ask_name(const char *title, char name[BAND_NAME_SIZE])
{
    return ask_file_name(title, FILE_NAME_PROMPT, name, BAND_NAME_SIZE);
}

// Asks for a band and a name, up to three times, and hands them to `write`.
template <typename writer> void write_bands(const char *title, writer write)
{
    for (int round = 0; round < ROUNDS; round++) {
        int band;
        char name[BAND_NAME_SIZE];
        if (!band_select(title, &band) || !ask_name(title, name) || !target())
            return;
        write(band, name);
        if (!(display_mode & COLOR))
            return;
    }
}

void write_gray(const char *title, uint32_t selector, const held_area &area)
{
    write_bands(title, [&](int band, const char *name) { write_gray_file(band, name, selector, area); });
}

template <typename command> void in_area(const char *title, command run)
{
    held_area area;
    if (image_is_present() && ask_held_area(title, &area))
        run(area);
}

void write_whole(const char *title, uint32_t selector)
{
    if (image_is_present())
        write_gray(title, selector, WHOLE_BAND);
}

void write_part(const char *title, uint32_t selector)
{
    in_area(title, [=](const held_area &area) { write_gray(title, selector, area); });
}

void write_bits(const held_area &area)
{
    char name[BAND_NAME_SIZE];
    if (!ask_name(BIN_TITLE, name))
        return;
    if (const win_rec *win = target())
        write_bin_file(win->red_band, name, RIO_TYPE_BITMAP_RLE, area);
}

void write_colour(const held_area &area)
{
    char name[BAND_NAME_SIZE];
    int x, y;
    if (!ask_name(RGB_TITLE, name))
        return;
    ask_background(&x, &y);
    if (const win_rec *win = target())
        write_rgb_file(win->red_band, win->green_band, win->blue_band, name, area, x, y);
}

void write_single_colours(const held_area &area)
{
    write_bands(RGB_TITLE, [&](int band, const char *name) {
        int x, y;
        ask_background(&x, &y);
        if (target())
            write_rgb_file(band, band, band, name, area, x, y);
    });
}

} // namespace

void write_cot() { write_whole(COT_TITLE, RIO_TYPE_BYTE); }
void write_cot_rect() { write_part(COT_TITLE, RIO_TYPE_BYTE); }
void write_rle() { write_whole(RLE_TITLE, RIO_TYPE_BYTE_RLE); }
void write_rle_rect() { write_part(RLE_TITLE, RIO_TYPE_BYTE_RLE); }
void write_t29() { write_whole(RLE_TITLE, RIO_TYPE_BYTE_RUN); }
void write_t29_rect() { write_part(RLE_TITLE, RIO_TYPE_BYTE_RUN); }
void write_raw() { write_whole(RAW_TITLE, OUT_RAW); }
void write_raw_rect() { write_part(RAW_TITLE, OUT_RAW); }
void write_bin_rect() { in_area(BIN_TITLE, write_bits); }
void write_rgb_rect() { in_area(RGB_TITLE, write_colour); }
void write_rgb_single_rect() { in_area(RGB_TITLE, write_single_colours); }

void write_bin()
{
    if (image_is_present())
        write_bits(WHOLE_BAND);
}

void write_rgb()
{
    if (image_is_present())
        write_colour(WHOLE_BAND);
}

void write_rgb_single()
{
    if (image_is_present())
        write_single_colours(WHOLE_BAND);
}
