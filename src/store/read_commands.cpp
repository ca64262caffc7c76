#include "store/read_commands.h"

#include <cstdint>
#include <cstring>

#include "display/vlt.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/load.h"
#include "store/load_tiled.h"
#include "store/read_mode.h"
#include "store/read_prompts.h"

namespace {

constexpr int NAME_SIZE = BAND_NAME_SIZE;
constexpr const char *FILE_NAME_PROMPT = "Enter file name";
constexpr const char *COLOUR_PROMPTS[3] = { "Enter file name of red band", "Enter file name of green band", "Enter file name of blue band" };
constexpr const char *OFFSET_PROMPT = "Enter word offset to beginning of data";

struct three_names {
    char text[3][NAME_SIZE];
    const char *list[3] = { text[0], text[1], text[2] };
};

int ask_three_names(const char *title, three_names *names)
{
    for (int i = 0; i < 3; i++)
        if (!ask_file_name(title, COLOUR_PROMPTS[i], names->text[i], NAME_SIZE))
            return 0;
    return 1;
}

// Runs `load` with COLOR and NEW_SESSION as the read wants them.
template <typename loader> int in_mode(bool colour, bool big, loader load)
{
    const uint32_t old_mode = read_mode_begin(colour);
    if (big)
        display_mode |= NEW_SESSION;
    const int loaded = load();
    display_mode &= ~uint32_t{NEW_SESSION};
    read_mode_end(old_mode, loaded);
    return loaded;
}

// A wrong name simply returns to the prompt; a reset leaves.
template <typename loader> void read_named(const char *title, bool colour, bool big, loader load)
{
    char name[NAME_SIZE];
    while (ask_file_name(title, FILE_NAME_PROMPT, name, NAME_SIZE))
        if (in_mode(colour, big, [&] { return load(name); }))
            return;
}

void read_gray(const char *title, int increment, bool big, const file_area &area)
{
    read_named(title, false, big, [&](const char *name) {
        int band;
        return load_gray(increment, name, SOURCE_GRAY, area, 1, &band);
    });
}

void read_gray3(const char *title, int increment, bool big, const file_area &area)
{
    three_names names;
    while (ask_three_names(title, &names)) {
        const int loaded = in_mode(true, big, [&] {
            int r, g, b;
            return load_gray3(increment, names.list[0], names.list[1], names.list[2], area, 1, &r, &g, &b);
        });
        if (loaded)
            return;
    }
}

void read_index(const char *title, int increment, bool big, const file_area &area)
{
    read_named(title, true, big, [&](const char *name) {
        int r, g, b;
        return load_colour_index(increment, name, area, 1, &r, &g, &b);
    });
}

void read_colour(const char *title, int increment, bool big, const file_area &area)
{
    read_named(title, true, big, [&](const char *name) {
        int r, g, b;
        return load_rgb_file(increment, name, area, 1, &r, &g, &b);
    });
}

// The tile store answers once: asking again could not change it.
void read_tiled_gray(const char *title, int increment, bool big)
{
    char name[NAME_SIZE];
    if (ask_file_name(title, FILE_NAME_PROMPT, name, NAME_SIZE))
        in_mode(false, big, [&] { return load_tiled_gray(name, increment, 1) != 0; });
}

void read_tiled_colour(const char *title, int increment, bool big)
{
    char name[NAME_SIZE];
    if (ask_file_name(title, FILE_NAME_PROMPT, name, NAME_SIZE))
        in_mode(true, big, [&] { return load_tiled_rgb(name, nullptr, nullptr, increment, 1); });
}

void read_tiled_three(const char *title, int increment, bool big)
{
    three_names names;
    if (ask_three_names(title, &names))
        in_mode(true, big, [&] { return load_tiled_rgb(names.list[0], names.list[1], names.list[2], increment, 1); });
}

int ask_raw_size(const char *title, int *rows, int *columns)
{
    return ask_integer(title, "Enter number of rows", rows) && ask_integer(title, "Enter number of columns", columns);
}

void read_raw_mono(int increment, bool big)
{
    const char *title = "Read raw format monochromatic";
    int rows, columns, offset, band;
    char name[NAME_SIZE];
    while (ask_raw_size(title, &rows, &columns) && ask_file_name(title, FILE_NAME_PROMPT, name, NAME_SIZE)
           && ask_integer(title, OFFSET_PROMPT, &offset))
        if (in_mode(false, big, [&] { return load_raw(increment, name, offset, columns, rows, WHOLE_FILE, 1, &band); }))
            return;
}

int ask_raw_files(const char *title, three_names *names, int offsets[3])
{
    for (int i = 0; i < 3; i++)
        if (!ask_file_name(title, COLOUR_PROMPTS[i], names->text[i], NAME_SIZE) || !ask_integer(title, OFFSET_PROMPT, &offsets[i]))
            return 0;
    return 1;
}

void read_raw_three(int increment, bool big)
{
    const char *title = "Read raw format multispectral";
    int rows, columns, offsets[3], r, g, b;
    three_names names;
    while (ask_raw_size(title, &rows, &columns) && ask_raw_files(title, &names, offsets))
        if (in_mode(true, big, [&] { return load_raw3(increment, names.list, offsets, columns, rows, WHOLE_FILE, 1, &r, &g, &b); }))
            return;
}

// Single bands can be read into a colour image or a split screen only; otherwise the commands are silent.
int ask_replaced_band(const char *title, int *colour, int *band)
{
    if (active_window < 0 || !(display_mode & (COLOR | SPLIT_SCR)))
        return 0;
    *colour = band_select(title, band);
    return *colour != 0;
}

} // namespace

void read_bin()
{
    read_named("Read binary format", false, false, [](const char *name) {
        int band;
        return load_bin(name, 1, &band);
    });
}

void read_tiled_bin() { read_tiled_gray("Read and tile binary format", 1, false); }
void read_tiled_bin_big() { read_tiled_gray("Read and tile binary format", 0, true); }
void read_raw_gray() { read_raw_mono(1, false); }
void read_raw_gray_big() { read_raw_mono(0, true); }
void read_raw_color() { read_raw_three(1, false); }
void read_raw_color_big() { read_raw_three(0, true); }
void read_cot_gray() { read_gray("Read COT format monochromatic", 1, false, WHOLE_FILE); }
void read_cot_gray_big() { read_gray("Read COT format monochromatic", 0, true, WHOLE_FILE); }
void read_tiled_cot_gray() { read_tiled_gray("Read and tile COT/RLE format", 1, false); }
void read_tiled_cot_gray_big() { read_tiled_gray("Read and tile COT/RLE format", 0, true); }
void read_cot_color() { read_gray3("Read COT format multispectral", 1, false, WHOLE_FILE); }
void read_cot_color_big() { read_gray3("Read COT format multispectral", 0, true, WHOLE_FILE); }
void read_tiled_cot_color() { read_tiled_three("Read and tile COT/RLE format multispectral", 1, false); }
void read_tiled_cot_color_big() { read_tiled_three("Read and tile COT/RLE format multispectral", 0, true); }
void read_cot_color_index() { read_index("Read COT color index (KL/Daub) format", 1, false, WHOLE_FILE); }
void read_cot_color_index_big() { read_index("Read COT color index (KL/Daub) format", 1, true, WHOLE_FILE); }
void read_rgb() { read_colour("Read RGB format", 1, false, WHOLE_FILE); }
void read_rgb_big() { read_colour("Read RGB format", 1, true, WHOLE_FILE); }
void read_tiled_rgb() { read_tiled_colour("Read and tile RGB format", 1, false); }
void read_tiled_rgb_big() { read_tiled_colour("Read and tile RGB format", 0, true); }

void read_cot_gray_rect()
{
    file_area area;
    if (ask_area("Read COT format monochromatic", &area))
        read_gray("Read COT format monochromatic", 1, false, area);
}

// At the default increment, other than the grey read of a rectangle.
void read_cot_color_rect()
{
    file_area area;
    if (ask_area("Read COT format multispectral", &area))
        read_gray3("Read COT format multispectral", 0, false, area);
}

void read_cot_color_index_rect()
{
    file_area area;
    if (ask_area("Read COT color index (KL/Daub) format", &area))
        read_index("Read COT color index (KL/Daub) format", 1, false, area);
}

void read_rgb_rect()
{
    file_area area;
    if (ask_area("Read RGB format", &area))
        read_colour("Read RGB format", 1, false, area);
}

void read_raw_single()
{
    const char *title = "Read raw format single band";
    int colour, old_band, rows, columns, offset, band;
    char name[NAME_SIZE];
    if (!ask_replaced_band(title, &colour, &old_band))
        return;
    while (ask_raw_size(title, &rows, &columns) && ask_file_name(title, FILE_NAME_PROMPT, name, NAME_SIZE)
           && ask_integer(title, OFFSET_PROMPT, &offset))
        if (load_raw(1, name, offset, columns, rows, WHOLE_FILE, 0, &band)) {
            band_replace(active_window, colour, old_band, band);
            return;
        }
}

void read_cot_single()
{
    const char *title = "Read COT format single band";
    int colour, old_band, band;
    char name[NAME_SIZE];
    if (!ask_replaced_band(title, &colour, &old_band))
        return;
    while (ask_file_name(title, FILE_NAME_PROMPT, name, NAME_SIZE))
        if (load_gray(1, name, SOURCE_GRAY, WHOLE_FILE, 0, &band)) {
            band_replace(active_window, colour, old_band, band);
            return;
        }
}
