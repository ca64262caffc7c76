#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "shell/session.h"

static void resize_hist_window()
{
    int x0, y0, x1, y1;
    if (hist_window < 0 || ws_window_rect(hist_window, &x0, &y0, &x1, &y1) != 0)
        return;
    const int bottom = display_mode & COLOR ? layout.hist_bottom_colour : layout.hist_bottom_mono;
    ws_clear_window(hist_window);
    ws_move_window(hist_window, x0, y0, x1, y0 + bottom - layout.hist_top);
    window_read_geometry(hist_window);
}

// A colour image is shown in true colour, a grey one through a colour table.
static void change_window_table(int w)
{
    static constexpr int COLOUR_TABLE = 0, TRUE_COLOUR = 2;
    const int wanted = display_mode & COLOR ? TRUE_COLOUR : COLOUR_TABLE;
    if (windows[w].vlt_id != wanted) {
        ws_set_window_vlt(w, wanted);
        windows[w].vlt_id = wanted;
    }
    active_window = w;
    vlt_program();
}

void display_rebuild()
{
    const int32_t active = active_window;
    const bool tables_of_their_own = (display_mode & TC) && !(display_mode & STATIC_VLT);
    resize_hist_window();
    for (int w = 0; w < WINDOWS; w++)
        if (is_picture(w)) {
            ws_clear_window(w);
            if (tables_of_their_own)
                change_window_table(w);
        }
    active_window = active;
    if (!tables_of_their_own)
        vlt_program();
    draw_hist(-1, -1, -1, -1);
    for (int w = 0; w < WINDOWS; w++)
        if (is_image_window(w))
            window_set_name(w);
    paint_all_pictures();
}

void band_names_update(uint32_t mask)
{
    rename_bands(mask);
}
