#include "store/save_kinds.h"

#include "RIO/rio.h"
#include "shell/session.h"
#include "store/file_info.h"

namespace {

struct kind_row {
    int standard, type, kind;
};

constexpr kind_row one_file[] = {
    { RIO_FORMAT_NATV, 27, SAVE_NATIVE_27 }, { RIO_FORMAT_TIFF, 27, SAVE_TIFF_27 }, { RIO_FORMAT_TIFF, 28, SAVE_TIFF_28 },
    { RIO_FORMAT_TGA, 27, SAVE_TGA_27 },     { RIO_FORMAT_TGA, 28, SAVE_TGA_28 },   { RIO_FORMAT_PCX, 27, SAVE_PCX_27 },
    { RIO_FORMAT_PCX, 28, SAVE_PCX_28 },     { RIO_FORMAT_BMP, 28, SAVE_BMP },
};

constexpr int ANY_TYPE = -1;
constexpr kind_row each_of_three[] = {
    { RIO_FORMAT_NATV, 29, SAVE_NATIVE_29 }, { RIO_FORMAT_NATV, 2, SAVE_NATIVE_2 }, { RIO_FORMAT_NATV, 10, SAVE_NATIVE_10 },
    { RIO_FORMAT_TIFF, 29, SAVE_TIFF_27 },   { RIO_FORMAT_TIFF, 2, SAVE_TIFF_28 },  { RIO_FORMAT_TGA, 27, SAVE_TGA_27 },
    { RIO_FORMAT_TGA, 28, SAVE_TGA_28 },     { RIO_FORMAT_PCX, 27, SAVE_PCX_27 },   { RIO_FORMAT_PCX, 28, SAVE_PCX_28 },
    { RIO_FORMAT_BMP, 28, SAVE_BMP },        { RIO_FORMAT_GIF, ANY_TYPE, SAVE_GIF },
};

template <int rows> int find_kind(const kind_row (&table)[rows], int standard, int type)
{
    for (const kind_row &row : table)
        if (row.standard == standard && (row.type == type || row.type == ANY_TYPE))
            return row.kind;
    return SAVE_UNKNOWN;
}

int kind_of_band(int n, int three)
{
    const band_rec &band = bands[n];
    if (band.format & KIND_TILED)
        return (band.format & KIND_MASK) == KIND_BIN ? SAVE_TILED_BIN : three ? SAVE_TILED_THREE : SAVE_TILED;
    if ((band.format & KIND_MASK) == KIND_BIN)
        return SAVE_BIN;
    RFILE *file = rio_open_r(band.file_name);
    if (!file)
        return SAVE_UNKNOWN;
    const int kind = save_kind_of(file_key(file, RIO_KEY_FORMAT), file_key(file, RIO_KEY_DATA_TYPE), three);
    rio_close(file);
    return kind;
}

} // namespace

int save_kind_of(int standard, int type, int three)
{
    return three ? find_kind(each_of_three, standard, type) : find_kind(one_file, standard, type);
}

void note_save_kinds(int three)
{
    if (active_window < 0)
        return;
    win_rec &win = windows[active_window];
    win.save_kind_red = int16_t(kind_of_band(win.red_band, three));
    win.save_kind_green = three ? int16_t(kind_of_band(win.green_band, three)) : int16_t(0);
    win.save_kind_blue = three ? int16_t(kind_of_band(win.blue_band, three)) : int16_t(0);
    if (three && (!win.save_kind_red || !win.save_kind_green || !win.save_kind_blue))
        win.save_kind_red = win.save_kind_green = win.save_kind_blue = SAVE_UNKNOWN;
}
