#include "display/vlt.h"
#include "forms/forms.h"
#include "shell/session.h"

const uint32_t named_colours[NAMED_COLOURS] = {
    0x000000, 0xEEEEEE, 0x888888, 0x000000, 0xFFFF00, 0xAAAAAA, 0x555555, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF,
    0xFFFFBB, 0xDD0000, 0x00BB00, 0x0000CC, 0x00FFFF, 0xFF00FF, 0x00FF83, 0x0083FF, 0xFF0083, 0x8300FF, 0xFF8300,
    0x83FF00, 0xFF83FF, 0x83FFFF, 0x008383, 0x830083, 0x838300, 0xFF8383, 0x83FF83, 0x8383FF,
};

const uint8_t named_colour_order[NAMED_COLOURS] = {
    3, 7, 1, 2, 6, 5, 11, 12, 13, 14, 0, 4, 8, 9, 10, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30,
};

int32_t reserved_count;

int named_colour(int index, int *r_out, int *g_out, int *b_out)
{
    if (index < 0 || index >= reserved_count)
        return 0;
    const int packed = int(named_colours[index]);
    if (!r_out || !g_out || !b_out) {
        if (r_out)
            *r_out = packed;
        return 1;
    }
    *r_out = packed >> 16;
    *g_out = packed >> 8 & 255;
    *b_out = packed & 255;
    return 1;
}

int form_colour_slot(int form_colour)
{
    static constexpr uint8_t slots[] = { 1, 2, 0, 4, 5, 6, 1, 8, 9, 10, 1, 8, 1, 10 };
    return form_colour >= 0 && form_colour < int(sizeof slots) ? slots[form_colour] : 1;
}

void form_palette(int planes)
{
    forms_style style = *forms_get_style();
    style.true_colour = planes >= 24;
    if (style.true_colour)
        style.palette = { 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xAAAAAA, 0x888888, 0x555555, 0x000000, 0xFFFFFF };
    else
        style.palette = { 8, 9, 10, 4, 5, 2, planes == 4 ? 2 : 6, 0, int(plane_mask) };
    forms_set_style(&style);
}
