#include "display/colour_choice.h"

#include "display/grid.h"
#include "forms/forms.h"
#include "shell/session.h"

namespace {

struct colour_row {
    const char *name;
    int slot;                          // on a colour table display; -1: the last one
    int packed;                        // on a true colour display
};

constexpr colour_row rows[] = {
    { "white", -1, 16777215 }, { "gray", 2, 8947848 },   { "black", 0, 0 },         { "red", 8, 16711680 },
    { "green", 9, 65280 },     { "blue", 10, 255 },      { "yellow", 4, 16776960 },
};
constexpr int ROWS = int(sizeof rows / sizeof *rows);
constexpr int WHITE = 0;

enum { FIRST_SWATCH = 1, FIRST_NAME = 20, ACCEPT = 40, CANCEL = 41 };
constexpr int SWATCH_GROUP = 1, NAME_GROUP = 2;

constexpr double WIDTH = 180, SWATCH_X = 24, SWATCH_WIDTH = 44, NAME_X = SWATCH_X + SWATCH_WIDTH + 14;
constexpr double TOP = 10, HEIGHT = TOP + ROWS * FORM_PITCH + 10 + FORM_SYMBOL_HEIGHT + FORM_MARGIN;

int colour_of(const colour_row &row)
{
    if (display_mode & TC)
        return row.packed;
    return row.slot < 0 ? int(plane_mask) : row.slot;
}

// White for a colour that is none of the rows: it stands for all ones, too.
int row_of(int colour)
{
    for (int i = 0; i < ROWS; i++)
        if (colour_of(rows[i]) == colour)
            return i;
    return WHITE;
}

// The patch and the name of a colour are one choice.
int notify(form *f, gadget *g, int event, void *)
{
    if (event != GADGET_CHANGED)
        return FORM_STAY;
    if (g->label >= FIRST_NAME && g->label < FIRST_NAME + ROWS)
        form_set_on(f, g->label - FIRST_NAME + FIRST_SWATCH, 1);
    else if (g->label >= FIRST_SWATCH && g->label < FIRST_SWATCH + ROWS)
        form_set_on(f, g->label - FIRST_SWATCH + FIRST_NAME, 1);
    return FORM_STAY;
}

form *build(const char *title, int chosen)
{
    form *f = form_create(1, title, WIDTH, HEIGHT);
    for (int i = 0; i < ROWS; i++) {
        const double y = TOP + i * FORM_PITCH;
        form_add_swatch(f, FIRST_SWATCH + i, SWATCH_GROUP, SWATCH_X, y, SWATCH_X + SWATCH_WIDTH, y + FORM_ROW, colour_of(rows[i]), i == chosen);
        form_add_radio(f, FIRST_NAME + i, NAME_GROUP, NAME_X, y, rows[i].name, i == chosen);
    }
    const double y = HEIGHT - FORM_MARGIN - FORM_SYMBOL_HEIGHT;
    form_add_accept(f, ACCEPT, WIDTH / 2 - FORM_SYMBOL_WIDTH - 8, y);
    form_add_cancel(f, CANCEL, WIDTH / 2 + 8, y);
    return f;
}

// 1 when a colour has been accepted, and stands in *colour.
int choose_colour(const char *title, int32_t *colour)
{
    form *f = build(title, row_of(*colour));
    const bool accepted = form_run(f, -1, -1, notify, nullptr, nullptr) == FORM_DONE;
    for (int i = 0; accepted && i < ROWS; i++)
        if (form_is_on(f, FIRST_NAME + i))
            *colour = colour_of(rows[i]);
    form_free(f);
    return accepted;
}

} // namespace

void grid_color()
{
    if (choose_colour("Grid Color", &grid_colour))
        grid_redraw();
}

void highlight_color()
{
    choose_colour("Highlight", &highlight_colour);
}
