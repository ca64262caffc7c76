// startup.cpp - the way to "Ready" and back.
#include "shell/startup.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "RIO/rio.h"
#include "display/area_select.h"
#include "display/paint.h"
#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/tune.h"
#include "forms/forms.h"
#include "services/hostpath.h"
#include "services/jpeg_driver.h"
#include "services/ws.h"
#include "shell/command_table.h"
#include "shell/menu.h"
#include "shell/open_named.h"
#include "shell/prompt.h"
#include "shell/screen_planes.h"
#include "shell/session.h"
#include "store/bands.h"
#include "store/read_form.h"

constexpr int LARGE_SCREEN = 720;      // from this height on the large fonts are used

static vlt_entry start_vlt[WS_MAX_SLOTS];
static int start_vlt_count;

// ---- services and display -----------------------------------------------------------------------------------

static int frame_may_close()
{
    return ask_save_on_exit() != 0;
}

static int window_may_close(int w)
{
    return w <= 0 || ask_save_changes(w) != 0;
}

static int start_services()
{
    const int error = ws_enter();
    if (error != 0) {
        report(REPORT_ERROR, "error %d on Enter_tools, errno=%d\n", error, errno);
        return 0;
    }
    ws_application_hooks.close_query = window_may_close;
    ws_application_hooks.frame_close = frame_may_close;
    ws_application_hooks.file_dropped = file_dropped;
    rio_path_resolver = host_path_resolver;
    rio_jpeg_driver = &jpeg_driver;
    if (forms_init() != 0) {
        report(REPORT_ERROR, "unable to allocate memory for internal buffer\n");
        return 0;
    }
    return 1;
}

static int take_display(ws_screen_info *screen)
{
    ws_active_screen(&screen_no);
    ws_inquire_screen(screen);
    screen_width = screen->width;
    screen_height = screen->height;
    plane_choice planes;
    if (!choose_planes(*screen, &planes)) {
        report(REPORT_WARNING, "workstation must be configured to one virtual screen per physical screen\n");
        return 0;
    }
    display_mode |= planes.mode_bits;
    num_planes = start_planes = planes.num_planes;
    plane_mask = planes.plane_mask;
    hardware_highlight = planes.hardware_highlight;
    return 1;
}

static void open_strip()
{
    static char key_buffer[80];
    ws_set_title(0, "kestrel  v3.3  09-Apr");
    msg_set_fields(4);
    msg_set_background(screen_no, 0);
    msg_keyin_buffer(keyin_buffer, sizeof keyin_buffer);
    ws_set_key_buffer(key_buffer, sizeof key_buffer);
}

// ---- directories, symbols and fonts -------------------------------------------------------------------------

// A directory from the environment, with one '\' behind.
static void directory_from(const char *value, char *out, int size)
{
    if (int(std::strlen(value)) + 2 > size)
        host_path_to_app(value, out, size - 1);
    else
        std::snprintf(out, size_t(size), "%s", value);
    const size_t length = std::strlen(out);
    if (length > 0 && (out[length - 1] == '/' || out[length - 1] == '\\'))
        out[length - 1] = '\\';
    else
        std::strcat(out, "\\");
}

static void append(char *path, size_t size, const char *base, const char *name)
{
    char joined[512];
    std::snprintf(joined, sizeof joined, "%s%s", base, name);
    std::snprintf(path, size, "%s", joined);
}

static void find_directories()
{
    const char *tarn = std::getenv("TARN"), *kestrel = std::getenv("KESTREL");
    directory_from(tarn ? tarn : "c:\\tarn\\", data_dir, sizeof data_dir);
    append(fonts_dir, sizeof fonts_dir, data_dir, "fonts\\");
    if (kestrel)
        directory_from(kestrel, data_dir, sizeof data_dir);
    else
        append(data_dir, sizeof data_dir, data_dir, "Kestrel\\");
}

static int load_symbols()
{
    char path[512];
    append(path, sizeof path, data_dir, "kestrel.sym");
    if (ws_load_font(path, &symbols) == 0)
        return 1;
    report(REPORT_ERROR, "unable to load symbol file %s\n", path);
    return 0;
}

static int try_font(const char *name, int32_t *font_out)
{
    char path[512];
    append(path, sizeof path, fonts_dir, name);
    return ws_load_font(path, font_out) == 0;
}

static int load_font(const char *name, int32_t *font_out)
{
    if (try_font(name, font_out))
        return 1;
    report(REPORT_ERROR, "unable to load font file %s%s\n", fonts_dir, name);
    return 0;
}

static int load_fonts()
{
    if (!load_font("mono821b.22", &font_title_small) || !load_font("mono821.14", &font_text_small))
        return 0;
    if (screen_height >= LARGE_SCREEN) {
        font_scale = 1.5f;
        return load_font("mono821b.30", &font_title) && load_font("mono821.22", &font_text) && load_font("mono821.18", &font_mid);
    }
    font_scale = 1.0f;
    font_title = font_title_small;
    font_text = font_text_small;
    return try_font("mono821.16", &font_mid) || load_font("mono821.18", &font_mid);
}

static void style_forms()
{
    forms_style style = *forms_get_style();
    style.title_font = font_title;
    style.text_font = font_text;
    style.symbol_font = symbols;
    style.scale = double(font_scale);
    forms_set_style(&style);
}

// ---- colours and records ------------------------------------------------------------------------------------

static void start_colours(const ws_screen_info &screen)
{
    start_vlt_count = screen.vlt_size < WS_MAX_SLOTS ? screen.vlt_size : WS_MAX_SLOTS;
    ws_read_vlt(screen_no, start_vlt, start_vlt_count, 0);
    vlt_init();
    gamma_value = gamma_default;
    vlt_program();
}

static void start_highlight()
{
    constexpr int OVERLAY_TABLE = 1;
    static constexpr vlt_entry white = { 1, 65280, 65280, 65280 };
    if (hardware_highlight) {
        highlight_colour = 16777215;
        ws_write_window_vlt(screen_no, OVERLAY_TABLE, &white, 1);
    } else {
        highlight_colour = int32_t(plane_mask);
    }
}

int main_init()
{
    ws_screen_info screen {};
    session_reset();
    start_vlt_count = 0;
    if (!start_services())
        return 0;
    if (!take_display(&screen))
        return 0;
    open_strip();
    layout_compute();
    find_directories();
    forms_set_path(data_dir);
    if (!load_symbols() || !load_fonts())
        return 0;
    style_forms();
    if (!rubber_band_init()) {
        report(REPORT_ERROR, "unable to allocate memory for internal buffer\n");
        return 0;
    }
    start_colours(screen);
    start_highlight();
    windows[0].flags = WIN_DISPLAYED | RESERVED_WIN;
    menu_map_commands();
    ws_enable_events(WS_NORMAL_EVENTS);
    paint_interrupt = 1;
    return 1;
}

// ---- the main loop ------------------------------------------------------------------------------------------

void quit()
{
    quit_requested = 1;
}

static void activate_picked_window()
{
    if (active_window >= 0 && !(windows[active_window].flags & CUT) && is_picture(pick_window))
        apply_active();
}

static void main_loop()
{
    for (;;) {
        if (prompt_input("kestrel", "Ready", 0) == INPUT_POINT)
            activate_picked_window();
        if (!quit_requested)
            continue;
        if (ask_save_on_exit() != 0)
            return;
        quit_requested = 0;
    }
}

void main_end()
{
    if (start_vlt_count > 0)
        ws_write_vlt(screen_no, start_vlt, start_vlt_count);
    for (int n = 0; n < BANDS; n++)
        band_free(n);
    paint_reset();
    vlt_forget();
    read_form_end();
    tune_forget();
    forms_exit();
    ws_exit();
}

int kestrel_run(int argc, char **argv)
{
    if (main_init()) {
        options_parse(argc, argv);
        form_palette(display_mode & TC ? 24 : num_planes);
        if (active_window < 0)
            command_find("read_image")->handler();
        main_loop();
    }
    main_end();
    return exit_status;
}
