#include "forms/forms.h"
#include "forms/form_record.h"
#include "forms/report_box.h"
#include <cmath>
#include <cstring>

static constexpr int PATH_LENGTH = 1024;

form *all_forms = nullptr;
static forms_style current_style = { -1, -1, -1, 1.0, {}, 0 };
static char form_path[PATH_LENGTH];

int form_pixels(double units)
{
    return int(std::lround(units * current_style.scale));
}

static int font_or_none(const char *name)
{
    int id = -1;
    return ws_load_font(name, &id) == 0 ? id : -1;
}

// The slots are those of the application's colour table, which may not be programmed yet.
static forms_palette start_palette(const ws_screen_info &screen)
{
    if (screen.flags & WS_CAP_TRUECOLOUR)
        return { 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xAAAAAA, 0x888888, 0x555555, 0x000000, 0xFFFFFF };
    return { 8, 9, 10, 4, 5, 2, screen.planes > 4 ? 6 : 2, 0, screen.max_index };
}

int forms_init()
{
    ws_screen_info screen{};
    if (ws_inquire_screen(&screen) != 0)
        return -1;
    current_style = { font_or_none("sansb.16"), font_or_none("sans.16"), font_or_none("symbols"), 1.0, start_palette(screen),
                      (screen.flags & WS_CAP_TRUECOLOUR) != 0 };
    report_box_install();
    return 0;
}

void forms_exit()
{
    report_box_remove();
    running_forms_forget();
    while (all_forms)
        form_free(all_forms);
    form_path[0] = 0;
}

void forms_set_style(const forms_style *style)
{
    current_style = *style;
    if (!(current_style.scale > 0))
        current_style.scale = 1.0;
}

const forms_style *forms_get_style()
{
    return &current_style;
}

void forms_set_path(const char *directories)
{
    std::strncpy(form_path, directories ? directories : "", PATH_LENGTH - 1);
    form_path[PATH_LENGTH - 1] = 0;
}

const char *forms_path()
{
    return form_path;
}
