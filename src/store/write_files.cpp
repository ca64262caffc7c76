#include "store/write_files.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "display/picture_windows.h"
#include "services/hostpath.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/stile.h"
#include "whole_file.h"

namespace {

constexpr int COMPRESSION_KEY = 501, TIFF_PLAIN = 1, TIFF_LZW = 5;
constexpr int APPLICATION_9 = 9;

int say(const char *format, const char *name)
{
    char text[BAND_NAME_SIZE + 80];
    snprintf(text, sizeof text, format, name);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    beep(BEEP_ERROR);
    return 0;
}

// --- the file around the lines -----------------------------------------------------------------------------------

struct output {
    const char *name;
    whole_file place;
    RFILE *file;
};

// The record of `out->place.part`, opened by `open`.
template <typename opener> int open_output(output *out, const char *name, opener open)
{
    char host[HOST_PATH_MAX], part[HOST_PATH_MAX];
    out->name = name;
    out->file = nullptr;
    busy_all();
    msg_put(MSG_KEYIN, MSG_CENTRED, name);
    if (host_path(name, host, sizeof host) < 0 || !whole_file_begin(&out->place, host))
        return say("failed to open file %s\n", name);
    if (host_path_to_app(out->place.part, part, sizeof part) == 0)
        out->file = open(part);
    if (!out->file) {
        whole_file_drop(&out->place);
        return say("failed to open file %s\n", name);
    }
    return 1;
}

// Closes the file; when all is well it takes its place.
int close_output(output *out, int good)
{
    if (out->file) {
        rio_close(out->file);
        if (good && rio_errno)
            good = say("Error writing file%s", "");
        if (!good)
            whole_file_drop(&out->place);
        else if (!whole_file_end(&out->place))
            good = say("failed to open file %s\n", out->name);
    } else {
        good = 0;
    }
    msg_clear(MSG_KEYIN);
    normal_all();
    return good;
}

int open_raster(output *out, const char *name)
{
    return open_output(out, name, [](const char *part) { return rio_open_w(part); });
}

// --- header values -----------------------------------------------------------------------------------------------

int set_number(RFILE *file, int key, int value)
{
    const int32_t number = value;
    return rio_set_hdr_data(file, key, &number) == 0;
}

struct format_row {
    uint32_t bit;
    int format;
    int compressed, plain;             // values of key 501; -1 leaves it alone
};
constexpr format_row formats[] = {
    { OUT_TIFF, RIO_FORMAT_TIFF, TIFF_LZW, TIFF_PLAIN }, { OUT_TGA, RIO_FORMAT_TGA, 1, 0 },   { OUT_PCX, RIO_FORMAT_PCX, -1, -1 },
    { OUT_BMP, RIO_FORMAT_BMP, -1, -1 },         { OUT_GIF, RIO_FORMAT_GIF, -1, -1 },
};

const format_row *format_of(uint32_t selector)
{
    for (const format_row &row : formats)
        if (selector & row.bit)
            return &row;
    return nullptr;
}

// Why a header was refused: the disk, the memory, or the format (RIO_FORMAT_NONE: the file's) that cannot hold such an image.
int cannot_write(RFILE *file, int32_t format)
{
    int32_t error = 0;                 // asked first: every other question clears it
    rio_get_hdr_data(file, RIO_KEY_ERROR, &error);
    if (uint32_t(error) == RIO_WRITE_FAILED)
        return say("Error writing file%s", "");
    if (uint32_t(error) == RIO_NO_MEMORY)
        return say("failed to allocate memory for temporary buffer%s", "");
    if (format < 0)
        rio_get_hdr_data(file, RIO_KEY_FORMAT, &format);
    const char *name = rio_format_name(format);
    return say("%s files of this kind cannot be written", name ? name : "these");
}

int bind_format(RFILE *file, uint32_t selector)
{
    const format_row *row = format_of(selector);
    return !row || set_number(file, RIO_KEY_FORMAT, row->format) ? 1 : cannot_write(file, row->format);
}

// After the data type, which brings a compression of its own with it.
int set_compression(RFILE *file, uint32_t selector)
{
    const format_row *row = format_of(selector);
    const int compression = !row ? -1 : selector & OUT_COMPRESSED ? row->compressed : row->plain;
    return compression < 0 || set_number(file, COMPRESSION_KEY, compression);
}

int set_layout(RFILE *file, int type, int width, int height, int orientation)
{
    return set_number(file, RIO_KEY_DATA_TYPE, type) && set_number(file, RIO_KEY_WIDTH, width)
           && set_number(file, RIO_KEY_HEIGHT, height) && set_number(file, RIO_KEY_ORIENTATION, orientation)
           && (fwrite_tile_code <= 0 || set_number(file, RIO_KEY_TILE_WIDTH, 1 << fwrite_tile_code));
}

int put_header(RFILE *file)
{
    return rio_write_header(file) == 0 && rio_errno == 0;
}

const char *file_of_window()
{
    if (active_window < 0 || windows[active_window].red_band < 0)
        return "";
    const char *name = bands[windows[active_window].red_band].file_name;
    return name ? name : "";
}

int columns_of(const held_area &area) { return area.x1 - area.x0 + 1; }
int rows_of(const held_area &area) { return area.y1 - area.y0 + 1; }

// The tables that three bands are written through. Display gamma is taken out of colour files only.
struct three_tables {
    const uint16_t *list[3];
};

three_tables tables_of(int undo_gamma, int r, int g, int b)
{
    three_tables t;
    output_tables(undo_gamma, bands[r].lut, bands[g].lut, bands[b].lut, &t.list[0], &t.list[1], &t.list[2]);
    return t;
}

// The colour of a held pixel as it is written; black when it is none.
void background_colour(const int numbers[3], const three_tables &tables, int x, int y, int out[3])
{
    const band_rec &red = bands[numbers[0]];
    const bool valid = x >= 0 && y >= 0 && x < red.x_size && y < red.y_size;
    for (int s = 0; s < 3; s++) {
        const int level = valid ? bands[numbers[s]].data[int64_t{y} * red.x_size + x] : 0;
        out[s] = valid && tables.list[s] ? uint8_t(tables.list[s][level]) : level;
    }
}

// Bands of bytes in memory, of one size.
int have_samples(int r, int g, int b)
{
    for (const int n : { r, g, b }) {
        const band_rec &band = bands[n];
        if ((band.format & KIND_MASK) == KIND_BIN)
            return say("a one-bit image cannot be written in this form%s", "");
        if (!band.data)
            return say("no tile store is present%s", "");
        if (band.x_size != bands[r].x_size || band.y_size != bands[r].y_size)
            return say("Inconsistent file sizes%s", "");
    }
    return 1;
}

int written_by_store()
{
    return STILE_PRESENT ? 1 : say("no tile store is present%s", "");
}

int write_raw_file(int band, const char *name, const held_area &area)
{
    const int columns = columns_of(area), rows = rows_of(area);
    const bool tiled = bands[band].format & KIND_TILED;
    if (!tiled && !have_samples(band, band, band))
        return 0;
    output out;
    int good = open_output(&out, name, [columns, rows](const char *part) { return rio_open_raw_w(part, columns, rows, 1); });
    const uint16_t *table = tables_of(0, band, band, band).list[0];
    if (good && tiled) {
        stile_write_raw(bands[band].image_id, area.x0, area.y0, area.x1, area.y1, 1, table, out.file);
        good = written_by_store();
    } else if (good) {
        good = write_gray_lines(out.file, bands[band].x_size, area, bands[band].data, table);
    }
    if (!close_output(&out, good))
        return 0;
    char text[BAND_NAME_SIZE + 60];
    snprintf(text, sizeof text, "%s: %d rows, %d columns\n", name, area.y1 + 1, area.x1 + 1);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    return 1;
}

} // namespace

held_area clamped_area(int band, const held_area &area)
{
    const int right = std::max(bands[band].x_size - 1, 0), lower = std::max(bands[band].y_size - 1, 0);
    held_area a = { std::max(area.x0, 0), std::max(area.y0, 0), area.x1 < 0 ? right : area.x1, area.y1 < 0 ? lower : area.y1 };
    if (a.x0 > a.x1)
        std::swap(a.x0, a.x1);
    if (a.y0 > a.y1)
        std::swap(a.y0, a.y1);
    return { std::min(a.x0, right), std::min(a.y0, lower), std::min(a.x1, right), std::min(a.y1, lower) };
}

int write_header_gray(RFILE *file, uint32_t selector, int width, int height, int orientation, const double matrix[4][4])
{
    if (!bind_format(file, selector))
        return 0;
    int good = set_layout(file, int(selector & OUT_TYPE_MASK), width, height, orientation) && set_compression(file, selector);
    // Run lengths of the native format have line headers, by which their lines are found again.
    if (selector == RIO_TYPE_BITMAP_RLE || selector == RIO_TYPE_BYTE_RLE)
        good = good && set_number(file, RIO_KEY_SCANNABLE, 1);
    if (matrix)
        good = good && rio_set_hdr_data(file, RIO_KEY_TRANSFORM, matrix) == 0;
    return good && put_header(file) ? 1 : cannot_write(file, RIO_FORMAT_NONE);
}

int write_header_rgb(RFILE *file, int width, int height, int orientation, int red, int green, int blue)
{
    char creator[80] = "kestrel", comment[200];
    snprintf(comment, sizeof comment, "created from input file %s", file_of_window());
    const bool good = set_number(file, RIO_KEY_APPLICATION_TYPE, APPLICATION_9)
                      && set_layout(file, RIO_TYPE_RGB_BYTE_RUN, width, height, orientation)
                      && set_number(file, RIO_KEY_BACKGROUND_RED, red) && set_number(file, RIO_KEY_BACKGROUND_GREEN, green)
                      && set_number(file, RIO_KEY_BACKGROUND_BLUE, blue) && rio_set_hdr_data(file, RIO_KEY_CREATOR, creator) == 0
                      && rio_set_hdr_data(file, RIO_KEY_COMMENT, comment) == 0;
    return good && put_header(file) ? 1 : cannot_write(file, RIO_FORMAT_NONE);
}

int write_gray_file(int band, const char *name, uint32_t selector, const held_area &wanted)
{
    const held_area area = clamped_area(band, wanted);
    if (selector == OUT_RAW)
        return write_raw_file(band, name, area);
    const band_rec &rec = bands[band];
    if (!have_samples(band, band, band))
        return 0;
    output out;
    const int good = open_raster(&out, name)
           && write_header_gray(out.file, selector, columns_of(area), rows_of(area), rec.orientation, rec.xform)
           && write_gray_lines(out.file, rec.x_size, area, rec.data, tables_of(0, band, band, band).list[0]);
    return close_output(&out, good);
}

int write_rgb_file(int r, int g, int b, const char *name, const held_area &wanted, int background_x, int background_y)
{
    const held_area area = clamped_area(r, wanted);
    const int numbers[3] = { r, g, b }, columns = columns_of(area), rows = rows_of(area);
    const band_rec &red = bands[r];
    if (!have_samples(r, g, b))
        return 0;
    output out;
    int good = open_raster(&out, name), background[3];
    const three_tables tables = tables_of(1, r, g, b);
    background_colour(numbers, tables, background_x, background_y, background);
    if (r == g && g == b) {
        good = good && write_header_rgb(out.file, columns, rows, red.orientation, background[0], 0, 0)
               && write_gray_lines(out.file, red.x_size, area, red.data, tables.list[0]);
    } else {
        const uint8_t *const data[3] = { red.data, bands[g].data, bands[b].data };
        good = good && write_header_rgb(out.file, columns, rows, red.orientation, background[0], background[1], background[2])
               && write_rgb_lines(out.file, red.x_size, area, data, tables.list);
    }
    return close_output(&out, good);
}

int write_rgb_format(int r, int g, int b, const char *name, uint32_t selector, const held_area &wanted)
{
    const held_area area = clamped_area(r, wanted);
    const band_rec &red = bands[r];
    if (!have_samples(r, g, b))
        return 0;
    output out;
    const int opened = open_raster(&out, name);
    const three_tables tables = tables_of(1, r, g, b);
    const uint8_t *const data[3] = { red.data, bands[g].data, bands[b].data };
    const int good = opened && write_header_gray(out.file, selector, columns_of(area), rows_of(area), red.orientation, red.xform)
                     && write_rgb_lines(out.file, red.x_size, area, data, tables.list);
    return close_output(&out, good);
}

int write_bin_file(int band, const char *name, int type, const held_area &area)
{
    const band_rec &rec = bands[band];
    if (rec.format & KIND_TILED)
        return write_tiles_bin(band, name, type, area);
    if ((rec.format & KIND_MASK) != KIND_BIN)
        return say("the image is not a one-bit image%s", "");
    output out;
    const int good = open_raster(&out, name)
                     && write_header_gray(out.file, uint32_t(type), rec.x_size, rec.y_size, rec.orientation, nullptr)
                     && write_bin_lines(out.file, rec.x_size, rec.y_size, rec.data);
    return close_output(&out, good);
}

int write_tiles_gray(int band, const char *, int type, const held_area &wanted)
{
    const held_area area = clamped_area(band, wanted);
    const three_tables tables = tables_of(0, band, band, band);
    stile_write_gray(bands[band].image_id, area.x0, area.y0, area.x1, area.y1, tables.list[0], 0, 0, type);
    return written_by_store();
}

int write_tiles_bin(int band, const char *, int type, const held_area &wanted)
{
    const held_area area = clamped_area(band, wanted);
    stile_write_bin(bands[band].image_id, area.x0, area.y0, area.x1, area.y1, type);
    return written_by_store();
}

int write_tiles_rgb(int r, int g, int b, const char *, const held_area &wanted)
{
    const held_area area = clamped_area(r, wanted);
    const three_tables tables = tables_of(1, r, g, b);
    const uint32_t ids[3] = { bands[r].image_id, bands[g].image_id, bands[b].image_id };
    stile_write_rgb(ids, area.x0, area.y0, area.x1, area.y1, tables.list);
    return written_by_store();
}
