#include "forms/form_paint.h"
#include "forms/form_record.h"
#include "forms/report_box.h"
#include "forms/text_wrap.h"
#include "mem.h"
#include "services/symbols.h"
#include <algorithm>
#include <cmath>
#include <cstring>

enum box_label { BOX_TEXT = 1, BOX_LINES, BOX_PICTURE, BOX_BUTTON };   // the buttons' labels run on from BOX_BUTTON

static constexpr double TEXT_ROOM = 30;        // units wider than the text
static constexpr double BUTTON_WIDTH = 64, BUTTON_HEIGHT = 24, BUTTON_GAP = 10;
static constexpr double NARROWEST = 140;
static constexpr double LIST_EDGE = 32;        // scroll bar and frame of a list of lines
static constexpr double WIDEST = 0.75, HIGHEST = 0.6;   // shares of the frame that a text may take
static constexpr int MOST_BUTTONS = 4;

// A picture left of the text, none for symbol 0.
struct box_picture {
    int symbol, paper;
};

struct box_size {
    double text_x, text_width, text_height, button_width;
    double picture_width, picture_height;
    double width, height;              // of the whole form, title band not counted
    bool scrolls;                      // the text is too high, and becomes a list of lines
};

static double text_width(const char *text)
{
    double width, height;
    form_size_for_text(nullptr, &width, &height, text);
    return width;
}

static box_size size_box(const char *title, const char *text, const char *const *buttons, int count, double height, box_picture picture)
{
    const double scale = forms_get_style()->scale;
    ws_screen_info screen{};
    ws_inquire_screen(&screen);
    box_size size{};
    form_size_for_text(nullptr, &size.text_width, &size.text_height, text);
    const double most = HIGHEST * screen.height / scale;
    size.scrolls = size.text_height > most;
    if (size.scrolls) {
        size.text_height = most;
        size.text_width += LIST_EDGE;
    }
    int picture_width = 0, picture_height = 0;
    if (picture.symbol)
        paint_picture_size(picture.symbol, &picture_width, &picture_height);
    size.picture_width = picture_width ? picture_width / scale + FORM_MARGIN : 0;
    size.picture_height = picture_height / scale;
    size.button_width = BUTTON_WIDTH;
    for (int i = 0; i < count; i++)
        size.button_width = std::max(size.button_width, text_width(buttons[i]) + 2 * FORM_MARGIN);
    const double row = count * size.button_width + (count - 1) * BUTTON_GAP;
    const double title_width = std::ceil(text_pixels(forms_get_style()->title_font, title, int(std::strlen(title))) / scale);
    size.width = std::max({ size.picture_width + size.text_width, row, title_width, NARROWEST }) + TEXT_ROOM;
    size.text_x = (size.width - size.picture_width - size.text_width) / 2 + size.picture_width;
    const double needed = 3 * FORM_MARGIN + std::max(size.text_height, size.picture_height) + BUTTON_HEIGHT;
    size.height = std::max(needed, height - FORM_TITLE_BAND);
    return size;
}

static void add_lines(form *f, const box_size &size, const char *wrapped)
{
    form_add_list(f, BOX_LINES, size.text_x, FORM_MARGIN, size.text_x + size.text_width, FORM_MARGIN + size.text_height, "");
    const int count = text_line_count(wrapped);
    mem_ptr<char> copy(text_copy(wrapped));
    mem_ptr<const char *> lines((const char **)mem_alloc(sizeof(char *) * size_t(count)));
    if (!copy || !lines)
        return;                        // an empty list; the buttons still work
    char *line = copy.get();
    for (int i = 0; i < count; i++) {
        lines[i] = line;
        line += text_line_end(line) - line;
        *line++ = 0;
    }
    form_list_set(f, BOX_LINES, lines.get(), count);
}

static void add_picture(form *f, const box_size &size, box_picture picture, double room)
{
    const double x = size.text_x - size.picture_width, y = (room - size.picture_height) / 2;
    if (gadget *const g = form_add_label(f, BOX_PICTURE, x, y, "")) {
        g->symbol = picture.symbol;
        g->colour = picture.paper;
    }
}

static form *build(const char *title, const char *wrapped, const char *const *buttons, int count, double height, box_picture picture)
{
    const box_size size = size_box(title, wrapped, buttons, count, height, picture);
    form *const f = form_create(0, title, size.width, size.height);
    const double button_y = size.height - FORM_MARGIN - BUTTON_HEIGHT;
    if (size.scrolls)
        add_lines(f, size, wrapped);
    else
        form_add_label(f, BOX_TEXT, size.text_x, (button_y - size.text_height) / 2, wrapped);
    if (size.picture_width > 0)
        add_picture(f, size, picture, button_y);
    double x = (size.width - count * size.button_width - (count - 1) * BUTTON_GAP) / 2;
    for (int i = 0; i < count; i++) {
        gadget *const g = form_add_button(f, BOX_BUTTON + i, x, button_y, x + size.button_width, button_y + BUTTON_HEIGHT, buttons[i]);
        if (g)
            g->is_default = i == 0;
        x += size.button_width + BUTTON_GAP;
    }
    form_focus(f, BOX_BUTTON);
    return f;
}

// The button's number, or -1 when the box could not be shown.
static int run_box(const char *title, const char *text, const char *const *buttons, int count, double height, box_picture picture)
{
    ws_screen_info screen{};
    ws_inquire_screen(&screen);
    mem_ptr<char> wrapped(text_wrap(forms_get_style()->text_font, text, int(WIDEST * screen.width)));
    form *const f = wrapped ? build(title, wrapped.get(), buttons, count, height, picture) : nullptr;
    if (!f || f->incomplete) {
        form_free(f);
        return -1;
    }
    int last = -1;                     // stays so when the form is not shown
    const int answer = form_run(f, -1, -1, nullptr, nullptr, &last);
    form_free(f);
    if (answer == FORM_DONE)
        return last - BOX_BUTTON;
    return last < 0 ? -1 : count - 1;
}

int question_box(const char *title, const char *text, const char *const *buttons, int count, double height)
{
    count = std::clamp(count, 1, MOST_BUTTONS);
    const int number = run_box(text_or_empty(title), text_or_empty(text), buttons, count, height, {});
    if (number >= 0)
        return number;
    beep(BEEP_ERROR);
    return count - 1;
}

// --- reports -------------------------------------------------------------------------------------------------

static void (*plain_box)(const char *title, const char *text);   // the services' own, which needs no memory of ours
static int box_is_installed;

static box_picture picture_of(const char *title)
{
    const forms_palette &colours = forms_get_style()->palette;
    if (std::strcmp(title, "Error") == 0)
        return { SYM_ERROR, colours.red };
    if (std::strcmp(title, "Warning") == 0)
        return { SYM_WARNING, colours.yellow };
    return { SYM_INFO, colours.white };
}

static void show_report(const char *title, const char *text)
{
    static const char *const ok[] = { "OK" };
    if (run_box(text_or_empty(title), text_or_empty(text), ok, 1, 0, picture_of(text_or_empty(title))) < 0 && plain_box)
        plain_box(title, text);
}

void report_box_install()
{
    if (box_is_installed)
        return;
    plain_box = report_box;
    report_box = show_report;
    box_is_installed = 1;
}

void report_box_remove()
{
    if (box_is_installed)
        report_box = plain_box;
    box_is_installed = 0;
}
