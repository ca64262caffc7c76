#include "store/save_image.h"

#include <cstring>

#include "services/ws.h"
#include "shell/session.h"
#include "store/save_kinds.h"
#include "store/write_files.h"
#include "store/write_form.h"
#include "store/write_prompts.h"

namespace {

constexpr save_form forms_of_files[] = {
    { SAVE_TIFF_27, OUT_COMPRESSED | OUT_TIFF | 27, OUT_COMPRESSED | OUT_TIFF | 2 },
    { SAVE_TIFF_28, OUT_TIFF | 27, OUT_TIFF | 2 },
    { SAVE_TGA_27, OUT_COMPRESSED | OUT_TGA | 27, OUT_COMPRESSED | OUT_TGA | 2 },
    { SAVE_TGA_28, OUT_TGA | 27, OUT_TGA | 2 },
    { SAVE_PCX_27, OUT_COMPRESSED | OUT_PCX | 27, OUT_COMPRESSED | OUT_PCX | 2 },
    { SAVE_PCX_28, OUT_PCX | 27, OUT_PCX | 2 },
    { SAVE_BMP, OUT_BMP | 27, OUT_BMP | 2 },
    { SAVE_GIF, 0, OUT_GIF | 2 },
    { SAVE_NATIVE_29, 0, RIO_TYPE_BYTE_RUN },
    { SAVE_NATIVE_2, 0, RIO_TYPE_BYTE },
    { SAVE_NATIVE_10, 0, RIO_TYPE_BYTE_RLE },
};

enum save_answer { SAVE_FAILED = 0, SAVE_DONE = 1, SAVE_BY_FORM = 2 };

struct three_bands {
    int numbers[3], kinds[3];
};

three_bands bands_of(const win_rec &win)
{
    return { { win.red_band, win.green_band, win.blue_band }, { win.save_kind_red, win.save_kind_green, win.save_kind_blue } };
}

bool seen_before(const int numbers[3], int i)
{
    return (i > 0 && numbers[0] == numbers[i]) || (i > 1 && numbers[1] == numbers[i]);
}

// One file a band, each by its own kind. Nothing is written unless all three can be.
int save_gray_files(const three_bands &three)
{
    for (int i = 0; i < 3; i++) {
        const save_form *form = save_form_of(three.kinds[i]);
        if (!form || !form->gray || !bands[three.numbers[i]].file_name[0])
            return SAVE_BY_FORM;
    }
    int good = 1;
    for (int i = 0; i < 3 && good; i++) {
        const int n = three.numbers[i];
        if (!seen_before(three.numbers, i))
            good = write_gray_file(n, bands[n].file_name, save_form_of(three.kinds[i])->gray, WHOLE_BAND);
    }
    return good;
}

int save_native_colour(const three_bands &three, const char *name)
{
    int x, y;
    ask_background(&x, &y);
    return write_rgb_file(three.numbers[0], three.numbers[1], three.numbers[2], name, WHOLE_BAND, x, y);
}

int save_from_memory(const three_bands &three)
{
    const int *n = three.numbers, kind = three.kinds[0];
    const char *name = bands[n[0]].file_name;
    if (three.kinds[1] || three.kinds[2])
        return save_gray_files(three);
    if (kind == SAVE_BIN)
        return write_bin_file(n[0], name, RIO_TYPE_BITMAP_RLE, WHOLE_BAND);
    if (kind == SAVE_NATIVE_27)
        return save_native_colour(three, name);
    const save_form *form = save_form_of(kind);
    return form && form->colour ? write_rgb_format(n[0], n[1], n[2], name, form->colour, WHOLE_BAND) : int(SAVE_BY_FORM);
}

int type_of_extension(const char *name)
{
    const char *dot = strrchr(name, '.');
    const auto is = [dot](const char *lower, const char *upper) { return dot && (!strcmp(dot, lower) || !strcmp(dot, upper)); };
    return is(".ctc", ".CTC") ? 29 : is(".cot", ".COT") ? 2 : is(".crl", ".CRL") ? 10 : 0;
}

int save_from_store(const three_bands &three)
{
    const int *n = three.numbers, *kinds = three.kinds;
    const char *name = bands[n[0]].file_name;
    if (kinds[0] == SAVE_TILED_BIN)
        return write_tiles_bin(n[0], name, RIO_TYPE_BITMAP_RLE, WHOLE_BAND);
    if (kinds[0] == SAVE_TILED)
        return write_tiles_rgb(n[0], n[1], n[2], name, WHOLE_BAND);
    if (kinds[0] != SAVE_TILED_THREE || kinds[1] != SAVE_TILED_THREE || kinds[2] != SAVE_TILED_THREE)
        return SAVE_BY_FORM;
    int good = 1;
    for (int i = 0; i < 3 && good; i++)
        good = write_tiles_gray(n[i], bands[n[i]].file_name, type_of_extension(name), WHOLE_BAND);
    return good;
}

} // namespace

const save_form *save_form_of(int kind)
{
    for (const save_form &form : forms_of_files)
        if (form.kind == kind)
            return &form;
    return nullptr;
}

void save_image()
{
    if (!image_is_present())
        return;
    const int w = active_window;
    const three_bands three = bands_of(windows[w]);
    const band_rec &red = bands[three.numbers[0]];
    int answer = SAVE_BY_FORM;
    if (red.file_name && red.file_name[0] && three.kinds[0] != SAVE_UNKNOWN) {
        // A save is never tiled.
        const int32_t tile_code = fwrite_tile_code;
        fwrite_tile_code = -1;
        answer = red.format & KIND_TILED ? save_from_store(three) : save_from_memory(three);
        fwrite_tile_code = tile_code;
    }
    if (answer == SAVE_BY_FORM)
        write_image();
    else if (answer == SAVE_DONE)
        window_set_changed(w, 0);
}
