#include "store/load.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

#include "RIO/rio.h"
#include "display/geometry.h"
#include "display/picture_windows.h"
#include "display/show_image.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/file_info.h"
#include "store/read_lines.h"

namespace {

// A file on its way into bands.
struct source {
    RFILE *file;
    const char *name;
    int type, width, height, table, orientation;
    int increment;                     // to read lines with; 0 leaves it to the band
    int factor;                        // of the overview that is read, 1 for the base image
    file_area area;                    // in pixels of what is read, ordered and clamped
};

int say(const char *format, const char *name)
{
    char text[BAND_NAME_SIZE + 80];
    snprintf(text, sizeof text, format, name);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    beep(BEEP_ERROR);
    return 0;
}

int open_source(source *src, const char *name)
{
    *src = {};
    src->name = name;
    src->factor = 1;
    msg_put(MSG_KEYIN, MSG_CENTRED, name);
    src->file = rio_open_r(name);
    return src->file ? 1 : say("failed to open file %s\n", name);
}

void close_source(source *src)
{
    if (src->file)
        rio_close(src->file);
    src->file = nullptr;
}

int read_info(source *src, bool with_table)
{
    src->table = with_table;
    if (!read_file_info(src->file, &src->type, &src->width, &src->height, with_table ? &src->table : nullptr, nullptr))
        return 0;
    src->orientation = file_orientation(src->file);
    return !has_wide_samples(src->file) || say("%s has samples of more than 8 bits", src->name);
}

// Full-resolution area to pixels of what is read, corners ordered, negative values whole.
void clamp_area(source *src, const file_area &wanted)
{
    file_area a = wanted;
    if (a.x1 >= 0 && a.x0 > a.x1)
        std::swap(a.x0, a.x1);
    if (a.y1 >= 0 && a.y0 > a.y1)
        std::swap(a.y0, a.y1);
    const auto scaled = [src](int value, int size, int whole) {
        return value < 0 ? whole : std::clamp(value / src->factor, 0, size - 1);
    };
    src->area = { scaled(a.x0, src->width, 0), scaled(a.y0, src->height, 0), scaled(a.x1, src->width, src->width - 1),
                  scaled(a.y1, src->height, src->height - 1) };
}

// Unless every pixel is wanted, an overview that comes close saves reading the whole.
void use_overview(source *src, int increment)
{
    src->increment = increment;
    if (increment == 1)
        return;
    int size, step;
    if (choose_overview(src->file, max_image_width, max_image_height, &size, &step) < 0)
        return;
    src->increment = step;
    src->factor = size / step;
}

int prepare(source *src, const char *name, int increment, const file_area &area, bool with_table)
{
    if (!open_source(src, name))
        return 0;
    use_overview(src, increment);
    if (!read_info(src, with_table))
        return 0;
    clamp_area(src, area);
    return 1;
}

int area_width(const source &src)
{
    return src.area.x1 - src.area.x0 + 1;
}

int area_height(const source &src)
{
    return src.area.y1 - src.area.y0 + 1;
}

// Asked before the windows of the old session go: what can never be held, or no longer fits a refetch, costs nothing that is loaded.
int can_be_held(const source &src, int rows_per_byte)
{
    const int step = src.increment < 1 ? band_default_increment(area_width(src), area_height(src)) : src.increment;
    const int64_t columns = (int64_t{area_width(src)} + step - 1) / step, rows = (int64_t{area_height(src)} + step - 1) / step;
    if (display_mode & REFETCHING_BAND) {
        const band_rec &band = bands[windows[active_window].red_band];
        if (columns != band.x_size || rows != band.y_size)
            return say("Inconsistent file sizes", "");
    }
    if (columns * rows / rows_per_byte > UINT32_MAX)
        return say("failed to allocate memory for image", "");
    return 1;
}

// A new session starts from a bare screen and the start values of the display.
void clear_old_session()
{
    if (!(display_mode & NEW_SESSION) || (display_mode & REFETCHING_BAND))
        return;
    close_all_windows();
    display_mode &= ~uint32_t{SPLIT_SCR};
    mono_channel = 0;
    num_planes = start_planes;
}

// What the band holds of the file, in full-resolution file pixels, and how it lies on the screen.
void note_provenance(int n, const source &src)
{
    band_rec &band = bands[n];
    const auto full = [&src](int value) { return int32_t(std::min<int64_t>(int64_t{value} * src.factor, INT_MAX)); };
    band.file_x0 = full(src.area.x0);
    band.file_y0 = full(src.area.y0);
    band.file_x1 = full(src.area.x1) + src.factor - 1;
    band.file_y1 = full(src.area.y1) + src.factor - 1;
    band.orientation = uint8_t(src.orientation);
    band_reset_orientation(n);
    if (src.factor > 1)
        band.increment = int16_t(std::min(src.factor * src.increment, SHRT_MAX));
}

line_range lines_of(const source &src)
{
    return { src.width, src.area.x0, src.area.y0, src.area.x1, src.area.y1, src.increment };
}

bool clear_tail()
{
    return display_mode & REFETCHING_BAND;
}

void collect_whole(const char *text, const int *numbers, int count)
{
    msg_clear(MSG_KEYIN);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    for (int i = 0; i < count; i++)
        collect_band_hist(numbers[i], 0, 0, bands[numbers[i]].x_size - 1, bands[numbers[i]].y_size - 1);
    msg_clear(MSG_STATUS);
}

// The end of every load: histograms, the picture, and a word that a short file has a black tail.
int finish(const int *numbers, int count, int result, int show)
{
    if (bands[numbers[0]].hist_mapped && (bands[numbers[0]].format & KIND_MASK) != KIND_BIN)
        collect_whole(count == 1 ? "Collecting histogram..." : "Collecting histograms...", numbers, count);
    msg_clear(MSG_KEYIN);
    msg_clear(MSG_STATUS);
    const bool shown = !show || show_image(numbers[0], numbers[count == 1 ? 0 : 1], numbers[count == 1 ? 0 : 2]) >= 0;
    if (!shown)
        for (int i = 0; i < count; i++)
            band_free(numbers[i]);
    else if (result == READ_SHORT)
        msg_put(MSG_STATUS, MSG_CENTRED, "Premature EOF encountered");
    return shown;
}

void free_unless_refetched(int n)
{
    if (!(display_mode & REFETCHING_BAND))
        band_free(n);
}

int read_gray_band(source *src, int n)
{
    const int result = read_gray_lines(src->file, src->type, lines_of(*src), clear_tail(), bands[n].data);
    if (result == READ_NO_MEMORY)
        free_unless_refetched(n);
    return result;
}

int load_gray_from(source *src, int increment, const char *name, int kind, const file_area &area, int show, int *band_out)
{
    busy_all();
    int result = READ_NO_MEMORY;
    if (prepare(src, name, increment, area, false) && can_be_held(*src, 1)) {
        clear_old_session();
        if (band_create(area_width(*src), area_height(*src), &src->increment, kind, name, band_out)) {
            note_provenance(*band_out, *src);
            result = read_gray_band(src, *band_out);
        }
    }
    close_source(src);
    normal_all();
    if (result == READ_NO_MEMORY)
        return 0;
    return finish(band_out, 1, result, show);
}

bool rgb_readable(RFILE *file, int type)
{
    return is_colour_type(type) || (is_index_type(type) && has_colour_table(file));
}

int same_sizes(const source src[3])
{
    for (int i = 1; i < 3; i++)
        if (src[i].width != src[0].width || src[i].height != src[0].height)
            return say("Inconsistent file sizes", "");
    return 1;
}

// The overviews of three files serve only when all three give the same size and increment.
void use_overviews(source src[3], int increment)
{
    for (int i = 0; i < 3; i++)
        use_overview(&src[i], increment);
    for (int i = 1; i < 3; i++)
        if (src[i].factor != src[0].factor || src[i].increment != src[0].increment) {
            for (int k = 0; k < 3; k++) {
                rio_set_active_ov(src[k].file, -1);
                src[k].factor = 1;
                src[k].increment = increment;
            }
            return;
        }
}

int prepare3(source src[3], const char *const names[3], int increment, const file_area &area)
{
    for (int i = 0; i < 3; i++)
        if (!open_source(&src[i], names[i]))
            return 0;
    use_overviews(src, increment);
    for (int i = 0; i < 3; i++)
        if (!read_info(&src[i], false))
            return 0;
    if (!same_sizes(src))
        return 0;
    for (int i = 0; i < 3; i++)
        clamp_area(&src[i], area);
    return can_be_held(src[0], 1);
}

// Red, green and blue of each index, from the file's table.
void expand_indices(int index_band, const int numbers[3])
{
    uint8_t table[3][256];
    for (int i = 0; i < 256; i++)
        table[0][i] = table[1][i] = table[2][i] = uint8_t(i);
    for (const rio_vlt_entry &entry : file_vlt)
        if (entry.index < 256) {
            table[0][entry.index] = uint8_t(entry.red >> 8);
            table[1][entry.index] = uint8_t(entry.green >> 8);
            table[2][entry.index] = uint8_t(entry.blue >> 8);
        }
    const band_rec &from = bands[index_band];
    const int64_t count = int64_t{from.x_size} * from.y_size;
    for (int s = 0; s < 3; s++)
        for (int64_t i = 0; i < count; i++)
            bands[numbers[s]].data[i] = table[s][from.data[i]];
}

void copy_provenance(int from, int to)
{
    bands[to].file_x0 = bands[from].file_x0;
    bands[to].file_y0 = bands[from].file_y0;
    bands[to].file_x1 = bands[from].file_x1;
    bands[to].file_y1 = bands[from].file_y1;
    bands[to].increment = bands[from].increment;
    bands[to].orientation = bands[from].orientation;
    memcpy(bands[to].xform, bands[from].xform, sizeof bands[to].xform);
}

} // namespace

int load_gray(int increment, const char *name, int kind_of_source, const file_area &area, int show, int *band_out)
{
    source src;
    return load_gray_from(&src, increment, name, kind_of_source == SOURCE_COLOUR_INDEX ? KIND_COT_INDEX : KIND_COT, area, show, band_out);
}

int load_rgb_file(int increment, const char *name, const file_area &area, int show, int *r_out, int *g_out, int *b_out)
{
    busy_all();
    source src;
    int numbers[3], result = READ_NO_MEMORY;
    if (prepare(&src, name, increment, area, false) && (rgb_readable(src.file, src.type) || say("%s is not an RGB file\n", name))
        && can_be_held(src, 1)) {
        clear_old_session();
        if (band_create_rgb(area_width(src), area_height(src), &src.increment, KIND_RGB, name, nullptr, nullptr, &numbers[0],
                            &numbers[1], &numbers[2])) {
            for (const int n : numbers)
                note_provenance(n, src);
            uint8_t *const out[3] = { bands[numbers[0]].data, bands[numbers[1]].data, bands[numbers[2]].data };
            result = read_rgb_lines(src.file, lines_of(src), clear_tail(), out);
            if (result == READ_NO_MEMORY)
                for (const int n : numbers)
                    free_unless_refetched(n);
        }
    }
    close_source(&src);
    normal_all();
    if (result == READ_NO_MEMORY)
        return 0;
    *r_out = numbers[0];
    *g_out = numbers[1];
    *b_out = numbers[2];
    return finish(numbers, 3, result, show);
}

int load_gray3(int increment, const char *red, const char *green, const char *blue, const file_area &area, int show, int *r_out,
               int *g_out, int *b_out)
{
    busy_all();
    const char *const names[3] = { red, green, blue };
    source src[3] = {};
    int numbers[3], worst = READ_NO_MEMORY;
    if (prepare3(src, names, increment, area)) {
        clear_old_session();
        if (band_create_rgb(area_width(src[0]), area_height(src[0]), &src[0].increment, KIND_COT, red, green, blue, &numbers[0],
                            &numbers[1], &numbers[2])) {
            worst = READ_WHOLE;
            for (int i = 0; i < 3 && worst != READ_NO_MEMORY; i++) {
                msg_put(MSG_KEYIN, MSG_CENTRED, names[i]);
                src[i].increment = src[0].increment;
                note_provenance(numbers[i], src[i]);
                worst = std::max(worst, read_gray_lines(src[i].file, src[i].type, lines_of(src[i]), clear_tail(), bands[numbers[i]].data));
            }
            if (worst == READ_NO_MEMORY)
                for (const int n : numbers)
                    free_unless_refetched(n);
        }
    }
    for (source &s : src)
        close_source(&s);
    normal_all();
    if (worst == READ_NO_MEMORY)
        return 0;
    *r_out = numbers[0];
    *g_out = numbers[1];
    *b_out = numbers[2];
    return finish(numbers, 3, worst, show);
}

int load_colour_index(int increment, const char *name, const file_area &area, int show, int *r_out, int *g_out, int *b_out)
{
    const uint32_t old_mode = display_mode;
    source src;
    int numbers[3], result = READ_NO_MEMORY;
    busy_all();
    if (prepare(&src, name, increment, area, true) && (src.table || say("%s is not an RGB file\n", name)) && can_be_held(src, 1)) {
        clear_old_session();
        if (!(display_mode & GAMMA_DEF))
            gamma_value = gamma_default;
        // The indices go to a band of their own, also while the colour bands are refetched.
        int index_band;
        display_mode &= ~uint32_t{REFETCHING_BAND};
        const int created = band_create(area_width(src), area_height(src), &src.increment, KIND_COT_INDEX, name, &index_band);
        if (created) {
            note_provenance(index_band, src);
            result = read_gray_band(&src, index_band);
        }
        display_mode |= old_mode & REFETCHING_BAND;
        int step = src.increment;
        if (result != READ_NO_MEMORY) {
            if (band_create_rgb(area_width(src), area_height(src), &step, KIND_COT_INDEX, name, nullptr, nullptr, &numbers[0],
                                &numbers[1], &numbers[2])) {
                for (const int n : numbers)
                    copy_provenance(index_band, n);
                expand_indices(index_band, numbers);
            } else {
                result = READ_NO_MEMORY;
            }
            band_free(index_band);
        }
    }
    close_source(&src);
    normal_all();
    if (result == READ_NO_MEMORY)
        return 0;
    display_mode |= COLOR;
    *r_out = numbers[0];
    *g_out = numbers[1];
    *b_out = numbers[2];
    return finish(numbers, 3, result, show);
}

int load_bin(const char *name, int show, int *band_out)
{
    busy_all();
    source src;
    int result = READ_NO_MEMORY;
    if (prepare(&src, name, 1, WHOLE_FILE, false) && (is_bitmap_type(src.type) || say("%s is not a binary file\n", name))
        && can_be_held(src, 8)) {
        clear_old_session();
        int increment = 1;
        if (band_create(src.width, src.height, &increment, KIND_BIN, name, band_out)) {
            note_provenance(*band_out, src);
            result = read_bin_lines(src.file, src.width, src.height, clear_tail(), bands[*band_out].data);
        }
    }
    close_source(&src);
    normal_all();
    return result != READ_NO_MEMORY && finish(band_out, 1, result, show);
}

int load_raw(int increment, const char *name, int word_offset, int columns, int rows, const file_area &area, int show, int *band_out)
{
    busy_all();
    msg_put(MSG_KEYIN, MSG_CENTRED, name);
    source src = {};
    int result = READ_NO_MEMORY;
    src.name = name;
    src.factor = 1;
    src.increment = increment;
    src.orientation = ORIENT_UL_ROW;
    src.type = RIO_TYPE_BYTE;
    src.width = columns;
    src.height = rows;
    src.file = columns > 0 && rows > 0 && word_offset >= 0 ? rio_open_raw_r(name, columns, rows, 1, int64_t{word_offset} * 2) : nullptr;
    clamp_area(&src, area);
    if (!src.file) {
        say("failed to open file %s\n", name);
    } else if (can_be_held(src, 1)) {
        clear_old_session();
        if (band_create(area_width(src), area_height(src), &src.increment, KIND_RAW, name, band_out)) {
            note_provenance(*band_out, src);
            result = read_gray_band(&src, *band_out);
        }
    }
    close_source(&src);
    normal_all();
    return result != READ_NO_MEMORY && finish(band_out, 1, result, show);
}

int load_raw3(int increment, const char *const names[3], const int word_offsets[3], int columns, int rows, const file_area &area,
              int show, int *r_out, int *g_out, int *b_out)
{
    int numbers[3];
    for (int i = 0; i < 3; i++) {
        const uint32_t old_mode = display_mode;
        if (i > 0)
            display_mode &= ~uint32_t{NEW_SESSION};
        const int loaded = load_raw(increment, names[i], word_offsets[i], columns, rows, area, 0, &numbers[i]);
        display_mode |= old_mode & NEW_SESSION;
        if (!loaded) {
            while (--i >= 0)
                band_free(numbers[i]);
            return 0;
        }
    }
    *r_out = numbers[0];
    *g_out = numbers[1];
    *b_out = numbers[2];
    return !show || show_image(numbers[0], numbers[1], numbers[2]) >= 0;
}
