#include "store/write_form.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "display/area_select.h"
#include "display/geometry.h"
#include "display/picture_windows.h"
#include "forms/forms.h"
#include "services/hostpath.h"
#include "services/ws.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/file_chooser.h"
#include "store/file_class.h"
#include "store/save_image.h"
#include "store/save_kinds.h"
#include "store/write_files.h"
#include "store/write_flip.h"
#include "store/write_prompts.h"

namespace {

enum write_gadget {
    FILE_1 = 1, FILE_2, FILE_3, BROWSE, COLOUR_FORMAT, COMPRESSED, TILED, IMAGE_AREA, FROM_IMAGE, CROP, AREA_X0, AREA_Y0, AREA_X1,
    AREA_Y1, FILE_LIST, DIRECTORY, ACCEPT, CANCEL, TYPE_FIRST = 40,
};

constexpr int NAME_FIELD_SIZE = 1024, NUMBER_FIELD_SIZE = 12, TYPE_GROUP = 1;
constexpr double WIDTH = 580, HEIGHT = 452, FIELD_LABELS = 98;

// A file-type button and what it stands for. A kind of SAVE_UNKNOWN: the type holds no such image.
struct type_row {
    const char *text;
    int colour, gray;                                // save kinds of the uncompressed and native forms
    int colour_compressed, gray_compressed;          // the same when "compressed" is on
    double x;
    int row;
};
constexpr type_row types[] = {
    { "rgb/27", SAVE_NATIVE_27, SAVE_UNKNOWN, SAVE_NATIVE_27, SAVE_UNKNOWN, 12, 0 },
    { "ctc/29", SAVE_UNKNOWN, SAVE_NATIVE_29, SAVE_UNKNOWN, SAVE_NATIVE_29, 124, 0 },
    { "cot/2", SAVE_UNKNOWN, SAVE_NATIVE_2, SAVE_UNKNOWN, SAVE_NATIVE_2, 236, 0 },
    { "crl/10", SAVE_UNKNOWN, SAVE_NATIVE_10, SAVE_UNKNOWN, SAVE_NATIVE_10, 348, 0 },
    { "tiff", SAVE_TIFF_28, SAVE_TIFF_28, SAVE_TIFF_27, SAVE_TIFF_27, 12, 1 },
    { "tga", SAVE_TGA_28, SAVE_TGA_28, SAVE_TGA_27, SAVE_TGA_27, 124, 1 },
    { "bmp", SAVE_BMP, SAVE_BMP, SAVE_BMP, SAVE_BMP, 236, 1 },
    { "pcx", SAVE_PCX_28, SAVE_PCX_28, SAVE_PCX_27, SAVE_PCX_27, 348, 1 },
    { "gif", SAVE_UNKNOWN, SAVE_GIF, SAVE_UNKNOWN, SAVE_GIF, 460, 1 },
};
constexpr int TYPES = int(sizeof types / sizeof *types);

struct write_form {
    form *built[2];                    // for images of levels, and for bitmaps
    form *shown;                       // one of them
    file_chooser chooser;
    int window;                        // whose image is written
    int bands[3];
};
write_form the_form;

// What the operator asked for.
struct write_request {
    char names[3][BAND_NAME_SIZE];     // "" where nothing is to be written
    int kind;
    bool colour, tiled;
    held_area area;
};

int refuse(const char *format, const char *name)
{
    char text[NAME_FIELD_SIZE + 64];
    snprintf(text, sizeof text, format, name);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    beep(BEEP_ERROR);
    return 0;
}

// --- building ----------------------------------------------------------------------------------------------

double add_name_fields(form *f, int count)
{
    const double right = WIDTH - FORM_MARGIN - 84;
    for (int i = 0; i < count; i++)
        form_add_field(f, FILE_1 + i, FORM_MARGIN, 10 + i * FORM_PITCH, right, "  file1(r)", FIELD_LABELS, NAME_FIELD_SIZE);
    form_add_button(f, BROWSE, right + 12, 10, WIDTH - FORM_MARGIN, 10 + FORM_ROW, "browse");
    return 10 + count * FORM_PITCH + 6;
}

double add_formats(form *f, double top)
{
    form_add_toggle(f, COLOUR_FORMAT, FORM_MARGIN, top, "8bit file format", "24bit file format", 0);
    form_add_toggle(f, COMPRESSED, 236, top, "uncompressed", "compressed", 0);
    form_add_toggle(f, TILED, 420, top, "untiled", "tiled", 0);
    for (int i = 0; i < TYPES; i++)
        form_add_radio(f, TYPE_FIRST + i, TYPE_GROUP, types[i].x, top + (1 + types[i].row) * FORM_PITCH, types[i].text, 0);
    return top + 3 * FORM_PITCH;
}

double add_area(form *f, double top)
{
    form_add_toggle(f, IMAGE_AREA, FORM_MARGIN, top, "whole image", "image area", 0);
    form_add_button(f, FROM_IMAGE, 236, top, 396, top + FORM_ROW, "select from image");
    form_add_button(f, CROP, 408, top, WIDTH - FORM_MARGIN, top + FORM_ROW, "ScenePair crop");
    const char *const corners[4] = { " x0", " y0", " x1", " y1" };
    for (int i = 0; i < 4; i++) {
        const double x = FORM_MARGIN + i * 141;
        form_add_field(f, AREA_X0 + i, x, top + FORM_PITCH, x + 34 + 92, corners[i], 34, NUMBER_FIELD_SIZE);
    }
    return top + 2 * FORM_PITCH + 4;
}

void add_list_and_buttons(form *f, double top, double height)
{
    form_add_label(f, DIRECTORY, FORM_MARGIN, top, "Directory:");
    form_add_list(f, FILE_LIST, FORM_MARGIN, top + 20, WIDTH - FORM_MARGIN, height - 46, nullptr);
    form_set_name(f, FILE_LIST, "files");
    form_add_accept(f, ACCEPT, WIDTH / 2 - FORM_SYMBOL_WIDTH - 16, height - 36);
    form_add_cancel(f, CANCEL, WIDTH / 2 + 16, height - 36);
}

// A bitmap has one name and one format.
form *build(bool bitmap)
{
    const double height = bitmap ? HEIGHT - 5 * FORM_PITCH : HEIGHT;
    form *f = form_create(1, "Write Image", WIDTH, height);
    double top = add_name_fields(f, bitmap ? 1 : 3);
    if (!bitmap)
        top = add_formats(f, top);
    add_list_and_buttons(f, add_area(f, top), height);
    return f;
}

// --- what the gadgets' states mean for each other --------------------------------------------------------------

const band_rec &red_band()
{
    return bands[the_form.bands[0]];
}

bool is_bitmap()
{
    return (red_band().format & KIND_MASK) == KIND_BIN;
}

bool is_colour_image()
{
    return the_form.bands[1] != the_form.bands[0] || the_form.bands[2] != the_form.bands[0];
}

bool wants_colour()
{
    return !is_bitmap() && form_is_on(the_form.shown, COLOUR_FORMAT);
}

bool three_names()
{
    return !is_bitmap() && is_colour_image() && !wants_colour();
}

int last_name() { return three_names() ? FILE_3 : FILE_1; }

// Index in `types`, -1 when none is on.
int chosen_type()
{
    for (int i = 0; i < TYPES; i++)
        if (form_is_on(the_form.shown, TYPE_FIRST + i))
            return i;
    return -1;
}

int kind_of_type(int i)
{
    const bool compressed = form_is_on(the_form.shown, COMPRESSED);
    const type_row &row = types[i];
    return wants_colour() ? compressed ? row.colour_compressed : row.colour : compressed ? row.gray_compressed : row.gray;
}

// A type that the new choices exclude gives way to the native one of its depth.
void choose_possible_type()
{
    constexpr int RGB_27 = 0, COT_2 = 2;
    const int chosen = chosen_type();
    if (chosen < 0 || kind_of_type(chosen) == SAVE_UNKNOWN)
        form_set_on(the_form.shown, TYPE_FIRST + (wants_colour() ? RGB_27 : COT_2), 1);
}

void update_states()
{
    form *f = the_form.shown;
    const bool three = three_names();
    static const char *const three_labels[3] = { "  file1(r)", "  file2(g)", "  file3(b)" };
    form_set_label_text(f, FILE_1, three ? three_labels[0] : "  filename");
    for (int corner = AREA_X0; corner <= AREA_Y1; corner++)
        form_enable(f, corner, form_is_on(f, IMAGE_AREA));
    if (!three)
        the_form.chooser.name_field = FILE_1;
    if (is_bitmap())
        return;
    for (int i = 1; i < 3; i++) {
        form_set_label_text(f, FILE_1 + i, three_labels[i]);
        form_enable(f, FILE_1 + i, three);
    }
    for (int i = 0; i < TYPES; i++)
        form_enable(f, TYPE_FIRST + i, kind_of_type(i) != SAVE_UNKNOWN);
    choose_possible_type();
}

// --- names -------------------------------------------------------------------------------------------------------

const char *last_component(const char *name)
{
    const char *last = name;
    for (const char *p = name; *p; p++)
        if (*p == '/' || *p == '\\')
            last = p + 1;
    return last;
}

void fill_names()
{
    for (int i = 0; i < (is_bitmap() ? 1 : 3); i++) {
        const band_rec &band = bands[the_form.bands[i]];
        const char *name = i == 0 && !band.file_name[0] ? windows[the_form.window].name : last_component(band.file_name);
        char text[NAME_FIELD_SIZE];
        snprintf(text, sizeof text, "%s%s", name[0] ? image_path : "", name);
        form_set_text(the_form.shown, FILE_1 + i, text);
    }
}

// The first three letters of the type's word, behind a file name that has no extension.
void add_extension(int label, const char *word)
{
    const char *text = form_text_of(the_form.shown, label);
    const size_t length = strlen(text);
    if (length == 0 || strchr("\\/:", text[length - 1]) || strchr(last_component(text), '.'))
        return;
    char longer[NAME_FIELD_SIZE];
    if (snprintf(longer, sizeof longer, "%s.%3.3s", text, word) < int(sizeof longer))
        form_set_text(the_form.shown, label, longer);
}

void add_extensions(int type)
{
    const char *word = types[type].text;
    add_extension(FILE_1, word);
    for (int i = 1; i < 3 && three_names(); i++)
        add_extension(FILE_1 + i, word);
}

// Cancel blanks the name.
int may_overwrite(int label, const char *typed, const char *name)
{
    static const char *const answers[] = { "OK", "Cancel" };
    if (!host_file_exists(name))
        return 1;
    char text[NAME_FIELD_SIZE + 64];
    snprintf(text, sizeof text, "Existing file will be overwritten\n%s", typed);
    if (question_box("WARNING", text, answers, 2, 0) == 0)
        return 1;
    form_set_text(the_form.shown, label, "");
    return 0;
}

// A name that still begins with the path that the form put there does not get it a second time.
int full_name(const char *typed, char *out)
{
    const size_t path = strlen(image_path);
    return loader_name(path && strncmp(typed, image_path, path) == 0 ? typed + path : typed, out, BAND_NAME_SIZE);
}

// The name behind a field. 1, also for a name that is left empty; 0 with words when the form has to stay.
int take_name(int label, char *name)
{
    const char *typed = form_text_of(the_form.shown, label);
    name[0] = 0;
    if (!typed[0])
        return 1;
    if (!full_name(typed, name))
        return refuse(host_is_directory(typed) ? "%s is a directory" : "failed to open file %s\n", typed);
    if (host_is_directory(name))
        return refuse("%s is a directory", typed);
    if (!may_overwrite(label, typed, name))
        name[0] = 0;
    return 1;
}

int take_names(write_request *request)
{
    const int count = three_names() ? 3 : 1;
    bool any = false;
    for (int i = 0; i < count; i++) {
        if (!take_name(FILE_1 + i, request->names[i]))
            return 0;
        any = any || request->names[i][0];
        for (int k = 0; k < i; k++)
            if (request->names[i][0] && strcmp(request->names[i], request->names[k]) == 0)
                return refuse("%s is named twice", form_text_of(the_form.shown, FILE_1 + i));
    }
    return any ? 1 : refuse("no file is named%s", "");
}

// --- area --------------------------------------------------------------------------------------------------------

int field_number(int label)
{
    return int(strtol(form_text_of(the_form.shown, label), nullptr, 0));
}

void fill_area(const held_area &area)
{
    const int numbers[4] = { area.x0, area.y0, area.x1, area.y1 };
    for (int i = 0; i < 4; i++) {
        char text[NUMBER_FIELD_SIZE];
        snprintf(text, sizeof text, "%d", numbers[i]);
        form_set_text(the_form.shown, AREA_X0 + i, text);
    }
}

// Gives the area the shape of the image window, from its upper left corner on; what does not fit the image is made smaller.
held_area shaped_as_window(const held_area &area)
{
    const win_rec &win = windows[the_form.window];
    const double aspect = double(win.width > 0 ? win.width : 1) / (win.height > 0 ? win.height : 1);
    double w = area.x1 - area.x0 + 1, h = w / aspect;
    const double room = red_band().y_size - area.y0;
    if (h > room) {
        h = room;
        w = h * aspect;
    }
    const int columns = w < 1 ? 1 : int(w), rows = h < 1 ? 1 : int(h);
    return { area.x0, area.y0, area.x0 + columns - 1, area.y0 + rows - 1 };
}

bool image_is_still_there()
{
    const win_rec &win = windows[the_form.window];
    return is_image_window(the_form.window) && win.red_band == the_form.bands[0] && win.green_band == the_form.bands[1]
           && win.blue_band == the_form.bands[2];
}

// The operator draws the rectangle in the image, with the form out of the way. FORM_CANCELLED when the image has gone or the
// operator has quit meanwhile.
int select_from_image(form *f, bool keep_shape)
{
    int x0 = -1, y0 = -1, x1 = -1, y1 = -1;
    held_area area;
    const int32_t quitting = quit_requested;
    form_hide(f);
    current_window = the_form.window;
    const int selected = select_window_area("Write Image", &x0, &y0, &x1, &y1);
    if (selected) {
        window_to_held(x0, y0, &area.x0, &area.y0);
        window_to_held(x1, y1, &area.x1, &area.y1);
    }
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    form_unhide(f);
    if (quit_requested != quitting || !image_is_still_there())
        return FORM_CANCELLED;
    if (selected) {
        area = clamped_area(the_form.bands[0], { area.x0 < 0 ? 0 : area.x0, area.y0 < 0 ? 0 : area.y0, area.x1 < 0 ? 0 : area.x1,
                                                 area.y1 < 0 ? 0 : area.y1 });
        fill_area(keep_shape ? shaped_as_window(area) : area);
        form_set_on(f, IMAGE_AREA, 1);
        update_states();
    }
    return FORM_STAY;
}

// --- the request -----------------------------------------------------------------------------------------------

int take_request(write_request *request)
{
    *request = {};
    request->colour = wants_colour();
    request->tiled = !is_bitmap() && form_is_on(the_form.shown, TILED);
    request->kind = is_bitmap() ? int(SAVE_BIN) : kind_of_type(chosen_type());
    request->area = WHOLE_BAND;
    if (form_is_on(the_form.shown, IMAGE_AREA))
        request->area = { field_number(AREA_X0), field_number(AREA_Y0), field_number(AREA_X1), field_number(AREA_Y1) };
    return take_names(request);
}

// --- writing ---------------------------------------------------------------------------------------------------

int write_colour_request(const write_request &request, const held_area &area)
{
    const int *n = the_form.bands;
    if (red_band().format & KIND_TILED)
        return write_tiles_rgb(n[0], n[1], n[2], request.names[0], area);
    if (request.kind != SAVE_NATIVE_27)
        return write_rgb_format(n[0], n[1], n[2], request.names[0], save_form_of(request.kind)->colour, area);
    int x, y;
    ask_background(&x, &y);
    return image_is_still_there() && write_rgb_file(n[0], n[1], n[2], request.names[0], area, x, y);
}

int write_gray_request(const write_request &request, const held_area &area)
{
    int good = 1;
    for (int i = 0; i < 3 && good; i++) {
        const int n = the_form.bands[i];
        const uint32_t selector = save_form_of(request.kind)->gray;
        if (request.names[i][0])
            good = bands[n].format & KIND_TILED ? write_tiles_gray(n, request.names[i], int(selector & OUT_TYPE_MASK), area)
                                                : write_gray_file(n, request.names[i], selector, area);
    }
    return good;
}

int write_request_files(const write_request &request, const held_area &area)
{
    if (request.kind == SAVE_BIN)
        return write_bin_file(the_form.bands[0], request.names[0], RIO_TYPE_BITMAP_RLE, area);
    return request.colour ? write_colour_request(request, area) : write_gray_request(request, area);
}

// An image that lies bottom up is written top first, except in a format that lies so itself.
int write_upright(const write_request &request)
{
    held_area area = request.area;
    const bool flips = red_band().orientation == ORIENT_LL_ROW && !(red_band().format & KIND_TILED) && request.kind != SAVE_BMP;
    if (!flips)
        return write_request_files(request, area);
    flipped_bands flipped;
    flip_begin(&flipped, the_form.bands, &area);
    const int good = write_request_files(request, area);
    flip_end(&flipped);
    return good;
}

int stored_kind(const write_request &request)
{
    if (!(red_band().format & KIND_TILED))
        return request.kind;
    return request.kind == SAVE_BIN ? SAVE_TILED_BIN : request.colour ? SAVE_TILED : SAVE_TILED_THREE;
}

// The image is from now on the one of the new files. One kind stands for a single file, three for a file a band.
void note_written(const write_request &request)
{
    win_rec &win = windows[the_form.window];
    for (int i = 0; i < 3; i++)
        if (request.names[i][0])
            band_set_file_name(bands[the_form.bands[i]], request.names[i]);
    const int kind = stored_kind(request);
    const bool single = request.colour || request.kind == SAVE_BIN;
    win.save_kind_red = int16_t(kind);
    win.save_kind_green = win.save_kind_blue = int16_t(single ? 0 : kind);
    window_set_name(the_form.window);
    window_set_changed(the_form.window, 0);
}

int write_requested(const write_request &request)
{
    const int32_t tile_code = fwrite_tile_code;
    fwrite_tile_code = !request.tiled ? -1 : tile_code > 0 ? tile_code : tile_size_code;
    const int good = write_upright(request);
    fwrite_tile_code = tile_code;
    if (good)
        note_written(request);
    return good;
}

// --- running the form --------------------------------------------------------------------------------------------

int notify(form *f, gadget *g, int event, void *data)
{
    if (g->label >= TYPE_FIRST) {
        add_extensions(g->label - TYPE_FIRST);
        return FORM_STAY;
    }
    switch (g->label) {
    case FILE_1:
    case FILE_2:
    case FILE_3:
        if (event == GADGET_COMPLETED)
            chooser_complete_name(&the_form.chooser, f, g->label, last_name());
        return FORM_STAY;
    case FILE_LIST:
        if (event == GADGET_PICKED)
            chooser_fill_name(&the_form.chooser, f, last_name());
        return FORM_STAY;
    case BROWSE:
        refuse("browse is not available yet%s", "");
        return FORM_STAY;
    case COLOUR_FORMAT:
    case COMPRESSED:
    case IMAGE_AREA:
        update_states();
        return FORM_STAY;
    case FROM_IMAGE:
    case CROP:
        return select_from_image(f, g->label == CROP);
    case ACCEPT:
        return take_request((write_request *)data) ? FORM_STAY : FORM_KEEP;
    default:
        return FORM_STAY;
    }
}

int make_ready()
{
    const win_rec &win = windows[active_window];
    the_form.window = active_window;
    the_form.bands[0] = win.red_band;
    the_form.bands[1] = win.green_band >= 0 ? win.green_band : win.red_band;
    the_form.bands[2] = win.blue_band >= 0 ? win.blue_band : win.red_band;
    form *&built = the_form.built[is_bitmap()];
    if (!built)
        built = build(is_bitmap());
    if (!built)
        return refuse("failed to allocate memory for form%s", "");
    if (!the_form.shown)
        chooser_init(&the_form.chooser, FILE_LIST, DIRECTORY);
    the_form.shown = built;
    the_form.chooser.name_field = FILE_1;
    if (!is_bitmap())
        form_set_on(the_form.shown, COLOUR_FORMAT, is_colour_image());
    form_set_on(the_form.shown, IMAGE_AREA, 0);
    update_states();
    fill_names();
    fill_area(clamped_area(the_form.bands[0], WHOLE_BAND));
    chooser_load(&the_form.chooser, the_form.shown);
    form_focus(the_form.shown, FILE_1);
    return 1;
}

} // namespace

void write_image()
{
    if (active_window < 0 || windows[active_window].red_band < 0 || !make_ready())
        return;
    write_request request;
    while (form_run(the_form.shown, -1, -1, notify, &request, nullptr) == FORM_DONE)
        if (write_requested(request) || !image_is_still_there())
            return;
}
