#include "shell/menu.h"

#include <cstdlib>
#include <cstring>

#include "services/ws_menu.h"
#include "shell/command_table.h"
#include "shell/session.h"

const menu_item menu_tree[] = {
    { 0, "&File", 0, nullptr },
    { 1, "&Open...", 40000, "read_image" },
    { 1, "Open &Dual...", 40062, "split_screen_enable" },
    { 1, "&Re-Read", 40007, "refetch_file" },
    { 1, "&Save", 40001, "save_image" },
    { 1, "Save &As...", 40002, "write_image" },
    { 1, nullptr, 0, nullptr },
    { 1, "Replace &Band...", 40003, "replace_band" },
    { 1, nullptr, 0, nullptr },
    { 1, "Set &Path...", 40004, "set_path_name" },
    { 1, nullptr, 0, nullptr },
    { 1, "E&xit", 40005, "quit" },

    { 0, "&Edit", 0, nullptr },
    { 1, "&Undo", 40006, "undo" },
    { 1, nullptr, 0, nullptr },
    { 1, "&Cut...", 40008, "cut" },
    { 1, "&Paste...", 40009, "paste" },
    { 1, nullptr, 0, nullptr },
    { 1, "&Modify Pixel", 0, nullptr },
    { 2, "&Hue...", 40010, "mod_pixel_hue" },
    { 2, "&Color...", 40011, "mod_pixel_color" },
    { 1, "&Blur...", 40012, "blurr" },
    { 1, "&Tint...", 40013, "tint" },

    { 0, "&View", 0, nullptr },
    { 1, "&Center", 40014, "center" },
    { 1, "&Area", 40015, "area" },
    { 1, "&Fit", 40016, "fit" },
    { 1, "Zoom &In", 40017, "zoom_in" },
    { 1, "Zoom &Out", 40018, "zoom_out" },
    { 1, "O&riginal Size", 40066, "zoom_out_full" },
    { 1, nullptr, 0, nullptr },
    { 1, "In&tensity", 40019, "show_intensity" },
    { 1, "&Grid", 40020, "toggle_grid" },
    { 1, "&Histogram", 40021, "toggle_hist" },
    { 1, "O&verview", 40064, "display_overview" },
    { 1, "Cut &Buffer", 40022, "toggle_cut" },

    { 0, "&Transforms", 0, nullptr },
    { 1, "&Color Transforms", 0, nullptr },
    { 2, "&RGB to IHS", 40023, "rgbihs" },
    { 2, "&IHS to RGB", 40024, "ihsrgb" },
    { 2, "In&vert", 40025, "invert" },
    { 1, "&Hue Replacement...", 40026, "hue_repl" },
    { 1, "&Smoothing...", 40027, "smoothing" },
    { 1, "&Edge &Enhancement...", 40028, "edge_enh" },
    { 1, "Edge &Detectors", 0, nullptr },
    { 2, "&General", 40029, "roberts" },        // the detectors' names on the menu are meant to differ from their keywords
    { 2, "&Orthogonal", 40030, "sobel" },
    { 2, "&Directional...", 40031, "edge_det" },
    { 1, "Ge&ometry", 0, nullptr },
    { 2, "&Rotate", 40032, "rotate" },
    { 2, "&Transpose", 40033, "transpose" },
    { 2, "&Flip", 40034, "flip" },
    { 2, "&Mirror", 40035, "mirror" },
    { 1, "S&wap", 0, nullptr },
    { 2, "&Red <--> Green", 40036, "swap_red_green" },
    { 2, "Red <--> &Blue", 40037, "swap_red_blue" },
    { 2, "&Green <--> Blue", 40038, "swap_green_blue" },
    { 1, "&Mono", 0, nullptr },
    { 2, "&Red", 40039, "red_to_mono" },
    { 2, "&Green", 40040, "green_to_mono" },
    { 2, "&Blue", 40041, "blue_to_mono" },
    { 2, "&Off", 40042, "mono_to_color" },
    { 1, "&Gamma...", 40043, "linearize" },

    { 0, "&Place", 0, nullptr },
    { 1, "&Text...", 40044, "place_text" },
    { 1, "&Graphics...", 40045, "graphics" },

    { 0, "&Histogram", 0, nullptr },
    { 1, "&Linear Stretch", 0, nullptr },
    { 2, "&Full...", 40046, "stretch_full_hist" },
    { 2, "Clip &In...", 40047, "stretch_clip_in_hist" },
    { 2, "Clip In/&Out...", 40048, "stretch_clip_in_out_hist" },
    { 1, "&Nonlinear Stretch", 0, nullptr },
    { 2, "&Full...", 40049, "equalize_full_hist" },
    { 2, "Clip &In...", 40050, "equalize_clip_in_hist" },
    { 2, "Clip In/&Out...", 40051, "equalize_clip_in_out_hist" },
    { 1, "&Collect", 0, nullptr },
    { 2, "&Full Data Set", 40052, "collect_hist_full" },
    { 2, "&Screen Area", 40053, "collect_hist_area" },
    { 1, "&Tune...", 40054, "tune" },
    { 1, "&Reset", 40055, "reset_hist" },

    { 0, "&Options", 0, nullptr },
    { 1, "&Undo", 40056, "toggle_undo" },
    { 1, "&Text Attributes...", 40057, "text_setup" },
    { 1, "&Grid Color...", 40058, "grid_color" },
    { 1, "&Highlight Color...", 40059, "highlight_color" },
    { 1, "&Couple Dual Windows", 40060, "toggle_couple" },
    { 1, "&Cut Mask...", 40061, "cut_bgcolor" },

    { 0, "&Window", 0, nullptr },
    { 1, "&Activate", 40063, "set_active_window" },
    { 1, "&Refresh", 40067, "redraw_win" },
    { 1, "Re&fresh All", 40068, "redraw_all" },
    { 1, "Re&store All", 40065, "restore_windows" },
};
const int menu_tree_count = int(sizeof menu_tree / sizeof *menu_tree);

// Grey while the cut window is up: they would change or replace the image that the cut was made from.
static const char *const grey_in_cut_mode[] = {
    "read_image", "save_image", "write_image", "replace_band", "set_path_name", "refetch_file", "cut", "paste", "toggle_hist",
    "rotate", "transpose", "flip", "mirror", "swap_red_green", "swap_red_blue", "swap_green_blue",
    "red_to_mono", "green_to_mono", "blue_to_mono", "mono_to_color", "linearize",
    "stretch_full_hist", "stretch_clip_in_hist", "stretch_clip_in_out_hist",
    "equalize_full_hist", "equalize_clip_in_hist", "equalize_clip_in_out_hist",
    "collect_hist_full", "collect_hist_area", "tune", "reset_hist", "set_active_window",
};

void menu_set_id(const char *keyword, uint32_t a, uint32_t id, uint32_t b)
{
    if (command_row *row = command_find(keyword)) {
        row->reserved_a = a;
        row->menu_id = id;
        row->reserved_b = b;
    }
}

void menu_check(const char *keyword, int on)
{
    if (const command_row *row = command_find(keyword))
        ws_menu_set_check(int(row->menu_id), on);
}

void menu_enable(const char *keyword, int on)
{
    if (const command_row *row = command_find(keyword))
        ws_menu_set_enabled(int(row->menu_id), on);
}

static void install_tree()
{
    static ws_menu_row rows[sizeof menu_tree / sizeof *menu_tree];
    for (int i = 0; i < menu_tree_count; i++)
        rows[i] = { menu_tree[i].depth, menu_tree[i].text, menu_tree[i].id };
    ws_menu_install(rows, menu_tree_count);
}

void menu_map_commands()
{
    install_tree();
    for (const menu_item &item : menu_tree)
        if (item.keyword)
            menu_set_id(item.keyword, 0, uint32_t(item.id), 0);

    menu_check("toggle_grid", grid_enabled);
    menu_check("toggle_undo", undo_enabled);
    menu_check("toggle_hist", 0);
    menu_check("toggle_cut", 0);
    menu_check("toggle_couple", !(display_mode & SPLIT_DECOUPLED));
    menu_enable("toggle_cut", 0);
    menu_enable("cut_bgcolor", 0);
    menu_update_split();
}

void menu_update_split()
{
    menu_enable("split_screen_enable", picture_count == 1 && !(display_mode & SPLIT_SCR));
}

void menu_cut_mode(bool on)
{
    for (const char *keyword : grey_in_cut_mode)
        menu_enable(keyword, !on);
    if (on)
        menu_enable("split_screen_enable", 0);
    else
        menu_update_split();
    menu_enable("cut_bgcolor", on);
}

void run_menu_id(uint32_t id)
{
    if (const command_row *row = command_find_id(id))
        row->handler();
}

// 1 when `text` without its mnemonic marks is the first `length` characters of `wanted`, with or without the dots.
static int item_is_called(const char *text, const char *wanted, size_t length)
{
    char shown[64];
    size_t count = 0;
    for (; *text && count < sizeof shown; text++)
        if (*text != '&')
            shown[count++] = *text;
    const bool dots = count > 3 && std::strncmp(shown + count - 3, "...", 3) == 0;
    return (length == count || (dots && length == count - 3)) && std::strncmp(shown, wanted, length) == 0;
}

// Item texts may hold a '/' themselves ("Clip In/Out..."): a name matches when the whole rest of the path does.
static int find_below(int first, int depth, const char *path)
{
    for (int i = first; i < menu_tree_count && menu_tree[i].depth >= depth; i++) {
        const menu_item &item = menu_tree[i];
        if (item.depth != depth || !item.text)
            continue;
        if (item.id != 0 && item_is_called(item.text, path, std::strlen(path)))
            return item.id;
        for (const char *slash = std::strchr(path, '/'); slash && item.id == 0; slash = std::strchr(slash + 1, '/')) {
            const int id = item_is_called(item.text, path, size_t(slash - path)) ? find_below(i + 1, depth + 1, slash + 1) : -1;
            if (id >= 0)
                return id;
        }
    }
    return -1;
}

int menu_id_of(const char *path)
{
    char *end;
    const long number = std::strtol(path, &end, 10);
    if (end == path || *end)
        return find_below(0, 0, path);
    for (const menu_item &item : menu_tree)
        if (item.id != 0 && item.id == number)
            return item.id;
    return -1;
}
