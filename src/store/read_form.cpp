#include "store/read_form.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "display/split_screen.h"
#include "forms/forms.h"
#include "services/hostpath.h"
#include "services/ws.h"
#include "shell/session.h"
#include "shell/startup.h"
#include "store/bands.h"
#include "store/file_chooser.h"
#include "store/file_class.h"
#include "store/load.h"
#include "store/read_mode.h"
#include "store/save_kinds.h"

namespace {

enum read_gadget {
    FILE_1 = 1, FILE_2, FILE_3, BROWSE, THREE_FILES, FOREIGN, WORDS_TO_SKIP, SIZE_LABEL, ROWS, COLUMNS, SUBSAMPLED, IMAGE_AREA,
    AREA_X0, AREA_Y0, AREA_X1, AREA_Y1, FILE_LIST, DIRECTORY, ACCEPT, CANCEL,
};

constexpr int NAME_FIELD_SIZE = 1024, NUMBER_FIELD_SIZE = 12;
// A character of the text font is at most 9 units wide, at either scale.
constexpr double WIDTH = 580, HEIGHT = 430, FIELD_LABELS = 98, SECOND_COLUMN = 300;

struct read_form {
    form *shown;
    file_chooser chooser;
    int mode;
};
read_form the_form;

// Name, area and kind of what the operator asked for.
struct read_request {
    int files;                         // 1 or 3
    bool foreign;
    char names[3][BAND_NAME_SIZE];
    file_class kind;
    int increment, word_offset, rows, columns;
    file_area area;
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

void add_name_fields(form *f)
{
    const double right = WIDTH - FORM_MARGIN - 84;
    for (int i = 0; i < 3; i++)
        form_add_field(f, FILE_1 + i, FORM_MARGIN, 10 + i * FORM_PITCH, right, "  file1(r)", FIELD_LABELS, NAME_FIELD_SIZE);
    form_add_button(f, BROWSE, right + 12, 10, WIDTH - FORM_MARGIN, 10 + FORM_ROW, "browse");
}

void add_number_field(form *f, int label, double x, double y, const char *text, double label_width, double body)
{
    form_add_field(f, label, x, y, x + label_width + body, text, label_width, NUMBER_FIELD_SIZE);
}

void add_choices(form *f)
{
    const double first = 10 + 3 * FORM_PITCH + 6;
    form_add_toggle(f, THREE_FILES, FORM_MARGIN, first, "1 input file", "3 input files", 0);
    form_add_toggle(f, FOREIGN, SECOND_COLUMN, first, "standard header", "foreign header", 0);
    const double raw = first + FORM_PITCH;
    add_number_field(f, WORDS_TO_SKIP, FORM_MARGIN, raw, "# words to skip", 140, 54);
    form_add_label(f, SIZE_LABEL, 218, raw + 2, "Image size");
    add_number_field(f, ROWS, 314, raw, "rows", 42, 66);
    add_number_field(f, COLUMNS, 430, raw, "columns", 70, 68);
    const double area = raw + FORM_PITCH;
    form_add_toggle(f, SUBSAMPLED, FORM_MARGIN, area, "full resolution", "subsampled", 0);
    form_add_toggle(f, IMAGE_AREA, SECOND_COLUMN, area, "image area", nullptr, 0);
    const char *const corners[4] = { " x0", " y0", " x1", " y1" };
    for (int i = 0; i < 4; i++)
        add_number_field(f, AREA_X0 + i, FORM_MARGIN + i * 141, area + FORM_PITCH, corners[i], 34, 92);
}

void add_list_and_buttons(form *f)
{
    const double top = 10 + 7 * FORM_PITCH + 10;
    form_add_label(f, DIRECTORY, FORM_MARGIN, top, "Directory:");
    form_add_list(f, FILE_LIST, FORM_MARGIN, top + 20, WIDTH - FORM_MARGIN, HEIGHT - 46, nullptr);
    form_set_name(f, FILE_LIST, "files");
    form_add_accept(f, ACCEPT, WIDTH / 2 - FORM_SYMBOL_WIDTH - 16, HEIGHT - 36);
    form_add_cancel(f, CANCEL, WIDTH / 2 + 16, HEIGHT - 36);
}

form *build()
{
    form *f = form_create(1, "Read Image", WIDTH, HEIGHT);
    add_name_fields(f);
    add_choices(f);
    add_list_and_buttons(f);
    return f;
}

// --- what the gadgets' states mean for each other --------------------------------------------------------------

bool three_names()
{
    return the_form.mode & READ_REPLACE || form_is_on(the_form.shown, THREE_FILES);
}

int last_name() { return three_names() ? FILE_3 : FILE_1; }

void update_states()
{
    form *f = the_form.shown;
    const bool replacing = the_form.mode & READ_REPLACE, three = three_names(), foreign = form_is_on(f, FOREIGN);
    static const char *const replace_labels[3] = { "  red band", "green band", " blue band" };
    static const char *const three_labels[3] = { "  file1(r)", "  file2(g)", "  file3(b)" };
    for (int i = 0; i < 3; i++) {
        form_set_label_text(f, FILE_1 + i, replacing ? replace_labels[i] : three || i > 0 ? three_labels[i] : "  filename");
        form_enable(f, FILE_1 + i, i == 0 || three);
    }
    for (const int choice : { THREE_FILES, FOREIGN, SUBSAMPLED, IMAGE_AREA })
        form_enable(f, choice, !replacing);
    for (const int number : { WORDS_TO_SKIP, ROWS, COLUMNS, SIZE_LABEL })
        form_enable(f, number, foreign && !replacing);
    for (int corner = AREA_X0; corner <= AREA_Y1; corner++)
        form_enable(f, corner, form_is_on(f, IMAGE_AREA) && !replacing);
    if (!three)
        the_form.chooser.name_field = FILE_1;
}

// --- the request -----------------------------------------------------------------------------------------------

int field_number(int label)
{
    return int(strtol(form_text_of(the_form.shown, label), nullptr, 0));
}

bool is_file_name(const char *text)
{
    const size_t length = strlen(text);
    return length > 0 && text[length - 1] != '\\' && text[length - 1] != '/';
}

// Equal corners mean the whole image.
void take_area(read_request *request)
{
    request->area = WHOLE_FILE;
    request->increment = form_is_on(the_form.shown, SUBSAMPLED) ? 0 : 1;
    if ((the_form.mode & READ_REFETCH) && (the_form.mode & READ_COUPLED) && active_window >= 0) {
        const band_rec &band = bands[windows[active_window].red_band];
        request->area = { band.file_x0, band.file_y0, band.file_x1, band.file_y1 };
        request->increment = band.increment;
        return;
    }
    if (!form_is_on(the_form.shown, IMAGE_AREA))
        return;
    const file_area a = { field_number(AREA_X0), field_number(AREA_Y0), field_number(AREA_X1), field_number(AREA_Y1) };
    request->increment = 1;
    if (a.x0 != a.x1 || a.y0 != a.y1)
        request->area = a;
}

// A name that a loader can take; 0 with the words of what is wrong.
int check_name(const char *typed, bool foreign, char *name, file_class *kind)
{
    *kind = CLASS_NO_FILE;
    if (!is_file_name(typed) || !loader_name(typed, name, BAND_NAME_SIZE))
        return refuse("Unable to open file %s", typed);
    if (foreign)
        return host_is_readable(name) && !host_is_directory(name) ? 1 : refuse("Unable to open file %s", typed);
    *kind = classify_file(name);
    if (*kind == CLASS_NO_FILE)
        return refuse("Unable to open file %s", typed);
    if (*kind == CLASS_WIDE)
        return refuse("%s has samples of more than 8 bits", typed);
    return *kind != CLASS_OTHER ? 1 : refuse("%s holds no image that can be shown", typed);
}

int check_raw_size(const read_request &request)
{
    return request.rows > 0 && request.columns > 0 ? 1 : refuse("Image size is missing%s", "");
}

// Reads the gadgets. 0 with words when the form has to stay.
int take_request(read_request *request)
{
    form *f = the_form.shown;
    *request = {};
    request->foreign = form_is_on(f, FOREIGN);
    request->files = three_names() ? 3 : 1;
    if (!check_name(form_text_of(f, FILE_1), request->foreign, request->names[0], &request->kind))
        return 0;
    for (int i = 1; i < request->files; i++) {
        file_class kind;
        const char *typed = form_text_of(f, FILE_1 + i);
        if (is_file_name(typed) && check_name(typed, request->foreign, request->names[i], &kind))
            continue;
        // A failing name is blanked, and the read becomes one of a single file.
        form_set_text(f, FILE_1 + i, "");
        request->files = 1;
    }
    request->word_offset = field_number(WORDS_TO_SKIP);
    request->rows = field_number(ROWS);
    request->columns = field_number(COLUMNS);
    take_area(request);
    return !request->foreign || check_raw_size(*request);
}

// --- reading ---------------------------------------------------------------------------------------------------

int load_one(const read_request &request)
{
    int r, g, b;
    const char *name = request.names[0];
    if (request.foreign)
        return load_raw(request.increment, name, request.word_offset, request.columns, request.rows, request.area, 1, &r);
    if (request.kind == CLASS_COLOUR)
        return load_rgb_file(request.increment, name, request.area, 1, &r, &g, &b);
    if (request.kind == CLASS_GRAY)
        return load_gray(request.increment, name, SOURCE_GRAY, request.area, 1, &r);
    return load_bin(name, 1, &r);
}

int load_three(const read_request &request)
{
    int r, g, b;
    const char *const names[3] = { request.names[0], request.names[1], request.names[2] };
    const int offsets[3] = { request.word_offset, request.word_offset, request.word_offset };
    if (request.foreign)
        return load_raw3(request.increment, names, offsets, request.columns, request.rows, request.area, 1, &r, &g, &b);
    return load_gray3(request.increment, names[0], names[1], names[2], request.area, 1, &r, &g, &b);
}

int read_requested(const read_request &request)
{
    const bool three = request.files == 3;
    const uint32_t old_mode = read_mode_begin(three || (!request.foreign && request.kind == CLASS_COLOUR));
    const int loaded = three ? load_three(request) : load_one(request);
    read_mode_end(old_mode, loaded);
    if (loaded)
        note_save_kinds(three);
    return loaded;
}

int replace_one(int colour, int old_band, const char *typed)
{
    char name[BAND_NAME_SIZE];
    const int answer = loader_name(typed, name, sizeof name) ? band_compatible(old_band, name) : 2;
    if (answer == 2)
        return refuse("Unable to open file %s", typed);
    if (answer == 1)
        return refuse("Incompatible file %s", typed);
    const band_rec &old = bands[old_band];
    const file_area area = { old.file_x0, old.file_y0, old.file_x1, old.file_y1 };
    int new_band;
    if (!load_gray(old.increment < 1 ? 1 : old.increment, name, SOURCE_GRAY, area, 0, &new_band))
        return 0;
    const bool fits = bands[new_band].x_size == old.x_size && bands[new_band].y_size == old.y_size;
    band_replace(active_window, colour, old_band, new_band);
    return fits;
}

// Each band whose field names a file. 0 when none was replaced.
int replace_named(char names[3][NAME_FIELD_SIZE])
{
    const win_rec &win = windows[active_window];
    int replaced = 0;
    if (is_file_name(names[0]))
        replaced += replace_one(BAND_RED, win.red_band, names[0]);
    if (is_file_name(names[1]))
        replaced += replace_one(BAND_GREEN, win.green_band, names[1]);
    if (is_file_name(names[2]))
        replaced += replace_one(BAND_BLUE, win.blue_band, names[2]);
    if (replaced)
        window_set_changed(active_window, 1);
    return replaced > 0;
}

// --- running the form --------------------------------------------------------------------------------------------

int notify(form *f, gadget *g, int event, void *data)
{
    read_request *request = (read_request *)data;
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
        if (event != GADGET_PICKED_TWICE || three_names() || !is_file_name(form_text_of(f, FILE_1)))
            return FORM_STAY;
        return take_request(request) ? FORM_DONE : FORM_STAY;
    case BROWSE:
        refuse("browse is not available yet%s", "");
        return FORM_STAY;
    case THREE_FILES:
    case FOREIGN:
    case IMAGE_AREA:
        update_states();
        return FORM_STAY;
    case ACCEPT:
        if (the_form.mode & READ_REPLACE)
            return FORM_STAY;
        return take_request(request) ? FORM_STAY : FORM_KEEP;
    default:
        return FORM_STAY;
    }
}

int make_ready(int mode)
{
    if (!the_form.shown) {
        the_form.shown = build();
        if (!the_form.shown)
            return refuse("failed to allocate memory for form%s", "");
        chooser_init(&the_form.chooser, FILE_LIST, DIRECTORY);
    }
    the_form.mode = mode;
    the_form.chooser.name_field = FILE_1;
    form_set_title(the_form.shown, mode & READ_REPLACE ? "Replace Band" : "Read Image");
    if (mode & READ_REPLACE)
        for (int i = 0; i < 3; i++)
            form_set_text(the_form.shown, FILE_1 + i, "");
    update_states();
    chooser_load(&the_form.chooser, the_form.shown);
    form_focus(the_form.shown, FILE_1);
    return 1;
}

int run_replace()
{
    read_request unused;
    while (form_run(the_form.shown, -1, -1, notify, &unused, nullptr) == FORM_DONE) {
        char names[3][NAME_FIELD_SIZE];
        for (int i = 0; i < 3; i++)
            snprintf(names[i], NAME_FIELD_SIZE, "%s", form_text_of(the_form.shown, FILE_1 + i));
        if (replace_named(names))
            return 1;
    }
    return 0;
}

} // namespace

int read_image_form(int mode)
{
    if ((mode & READ_REPLACE) && (active_window < 0 || !(display_mode & COLOR)))
        return refuse("no colour image is present%s", "");
    if (!make_ready(mode))
        return 0;
    if (mode & READ_REPLACE)
        return run_replace();
    read_request request;
    while (form_run(the_form.shown, -1, -1, notify, &request, nullptr) == FORM_DONE)
        if (read_requested(request))
            return 1;
    return 0;
}

void read_image()
{
    if (active_window >= 0 && ask_save_changes(active_window) == 0)
        return;
    if (display_mode & SPLIT_SCR) {
        split_screen_read_again();
        return;
    }
    display_mode |= NEW_SESSION;
    read_image_form(READ_NEW);
    display_mode &= ~uint32_t{NEW_SESSION};
}

void replace_band()
{
    read_image_form(READ_REPLACE);
}

void read_form_end()
{
    form_free(the_form.shown);
    the_form = {};
}
