#include "shell/command_table.h"

#include <cstdio>
#include <cstring>

#include "display/colour_choice.h"
#include "display/colour_commands.h"
#include "display/detail_window.h"
#include "display/draw_symbol.h"
#include "display/grid.h"
#include "display/navigation.h"
#include "display/overview.h"
#include "display/readout.h"
#include "display/split_screen.h"
#include "display/window_commands.h"
#include "edit/undo.h"
#include "enhance/contrast_commands.h"
#include "enhance/histogram.h"
#include "enhance/slice_commands.h"
#include "enhance/tune.h"
#include "filters/filter_commands.h"
#include "filters/rotate_command.h"
#include "filters/splice_command.h"
#include "services/ws.h"
#include "shell/diagnostics.h"
#include "shell/startup.h"
#include "store/block_files.h"
#include "store/image_path.h"
#include "store/output_settings.h"
#include "store/read_commands.h"
#include "store/read_form.h"
#include "store/save_image.h"
#include "store/write_commands.h"
#include "store/write_form.h"

static void say_not_available(const char *keyword)
{
    char text[80];
    std::snprintf(text, sizeof text, "%s is not available yet", keyword);
    msg_put(MSG_STATUS, MSG_CENTRED, text);
    beep(BEEP_ERROR);
}

// A command whose function bears its keyword, and one that is still to be built.
#define COMMAND(name) { #name, name, 0, 0, 0 },
#define AWAITED(name) { #name, [] { say_not_available(#name); }, 0, 0, 0 },

// The order is kept: a search stops at the first match, and a user event of value 0 finds the first row without a menu item,
// which is meant to be read_bin.
command_row command_table[] = {
    // reading images
    COMMAND(read_bin)
    COMMAND(read_tiled_bin)
    COMMAND(read_tiled_bin_big)
    COMMAND(read_raw_gray)
    COMMAND(read_raw_gray_big)
    COMMAND(read_raw_color)
    COMMAND(read_raw_color_big)
    COMMAND(read_cot_gray)
    COMMAND(read_cot_gray_big)
    COMMAND(read_cot_gray_rect)
    COMMAND(read_tiled_cot_gray)
    COMMAND(read_tiled_cot_gray_big)
    COMMAND(read_cot_color)
    COMMAND(read_cot_color_big)
    COMMAND(read_cot_color_rect)
    COMMAND(read_tiled_cot_color)
    COMMAND(read_tiled_cot_color_big)
    COMMAND(read_cot_color_index)
    COMMAND(read_cot_color_index_big)
    COMMAND(read_cot_color_index_rect)
    COMMAND(read_rgb)
    COMMAND(read_rgb_big)
    COMMAND(read_rgb_rect)
    COMMAND(read_tiled_rgb)
    COMMAND(read_tiled_rgb_big)
    COMMAND(read_image)
    COMMAND(replace_band)
    COMMAND(read_raw_single)
    COMMAND(read_cot_single)
    COMMAND(refetch_file)
    // start and end
    COMMAND(quit)
    // diagnostics
    COMMAND(debug_display_mode)
    COMMAND(debug_window)
    COMMAND(debug_band)
    COMMAND(debug_hist)
    // tile store
    COMMAND(set_mem_limit)
    COMMAND(set_tile_size)
    // writing images
    COMMAND(save_image)
    COMMAND(write_image)
    COMMAND(write_bin)
    COMMAND(write_bin_rect)
    COMMAND(write_cot)
    COMMAND(write_cot_rect)
    COMMAND(write_cot_blocks)
    COMMAND(write_rle)
    COMMAND(write_rle_rect)
    COMMAND(write_t29)
    COMMAND(write_t29_rect)
    COMMAND(write_raw)
    COMMAND(write_raw_rect)
    COMMAND(write_rgb)
    COMMAND(write_rgb_rect)
    COMMAND(write_rgb_single)
    COMMAND(write_rgb_single_rect)
    COMMAND(set_fwrite_range)
    COMMAND(set_fwrite_tile_size)
    COMMAND(set_fwrite_incr)
    COMMAND(set_path_name)
    // navigation
    COMMAND(zoom_in)
    COMMAND(zoom_out)
    COMMAND(center)
    COMMAND(area)
    COMMAND(fit)
    COMMAND(zoom_out_full)
    COMMAND(clear_xform_mtx)
    COMMAND(clear_orientation)
    COMMAND(set_xform_mtx)
    // colour table
    COMMAND(reset_vlt)
    COMMAND(band_on)
    COMMAND(band_off)
    COMMAND(swap_red_green)
    COMMAND(swap_red_blue)
    COMMAND(swap_green_blue)
    COMMAND(red_to_mono)
    COMMAND(green_to_mono)
    COMMAND(blue_to_mono)
    COMMAND(mono_to_color)
    { "num_planes", num_planes_command, 0, 0, 0 },
    COMMAND(eight_planes)
    COMMAND(nine_planes)
    COMMAND(show_reserved)
    COMMAND(linearize)
    COMMAND(test_gamma)
    // windows
    COMMAND(set_active_window)
    COMMAND(display_overview)
    COMMAND(detail_win)
    COMMAND(toggle_grid)
    COMMAND(enable_grid)
    COMMAND(disable_grid)
    COMMAND(grid_color)
    COMMAND(highlight_color)
    COMMAND(redraw_win)
    COMMAND(redraw_all)
    COMMAND(erase_win)
    COMMAND(push_win)
    COMMAND(pop_win)
    COMMAND(restore_windows)
    COMMAND(split_screen_enable)
    COMMAND(split_screen_disable)
    COMMAND(toggle_couple)
    COMMAND(split_screen_decouple)
    COMMAND(split_screen_couple)
    COMMAND(dual_screen_enable)
    COMMAND(show_intensity)
    COMMAND(draw_vector_c)
    COMMAND(draw_vector_s)
    COMMAND(draw_symbol)
    // histograms
    COMMAND(reset_hist)
    COMMAND(collect_hist_full)
    COMMAND(collect_hist_area)
    COMMAND(set_sampling_incr)
    COMMAND(reset_sampling_incr)
    COMMAND(toggle_hist)
    COMMAND(display_hist)
    // contrast
    COMMAND(equalize_full_hist)
    COMMAND(equalize_clip_in_hist)
    COMMAND(equalize_clip_in_out_hist)
    COMMAND(stretch_full_hist)
    COMMAND(stretch_clip_in_hist)
    COMMAND(stretch_clip_in_out_hist)
    COMMAND(stretch_hist_1percent)
    COMMAND(stretch_hist_2percent)
    COMMAND(stretch_hist_other)
    COMMAND(stretch_hist_1percent_clip_out)
    COMMAND(stretch_hist_2percent_clip_out)
    COMMAND(stretch_hist_other_clip_out)
    COMMAND(piecewise_stretch_hist)
    COMMAND(piecewise_equalize_hist)
    COMMAND(scale_hist)
    COMMAND(shift_hist)
    COMMAND(enable_recursion)
    COMMAND(disable_recursion)
    // tune
    COMMAND(tune)
    // density slice
    COMMAND(define_density_slice)
    COMMAND(spectrum12_full)
    COMMAND(spectrum12_clip)
    COMMAND(spectrum6_full)
    COMMAND(spectrum6_clip)
    COMMAND(ramp12_full)
    COMMAND(ramp12_clip)
    COMMAND(ramp6_full)
    COMMAND(ramp6_clip)
    COMMAND(density_slice_on)
    COMMAND(density_slice_off)
    COMMAND(reset_density_slice)
    COMMAND(density_slice_to_3_bands)
    COMMAND(density_slice_color_edit)
    // undo
    COMMAND(undo)
    COMMAND(toggle_undo)
    COMMAND(enable_undo)
    COMMAND(disable_undo)
    // cut and paste
    AWAITED(cut)
    AWAITED(toggle_cut)
    AWAITED(display_cut)
    AWAITED(cut_bgcolor)
    AWAITED(paste)
    // pixels and hues
    AWAITED(hue_repl)
    AWAITED(mod_pixel_hue)
    AWAITED(mod_pixel_color)
    AWAITED(blurr)
    AWAITED(tint)
    // text
    AWAITED(text_setup)
    AWAITED(place_text)
    // graphics
    AWAITED(graphics)
    // neighbourhood filters
    COMMAND(edge_det)
    COMMAND(edge_enh)
    COMMAND(smoothing)
    COMMAND(roberts)
    COMMAND(sobel)
    // colours and tones
    COMMAND(rgbihs)
    COMMAND(ihsrgb)
    COMMAND(apply)
    COMMAND(invert)
    // orthogonal geometry
    COMMAND(transpose)
    COMMAND(flip)
    COMMAND(mirror)
    // warp
    { "rotate", [] { rotate_CMD(); }, 0, 0, 0 },
    { "splice2", [] { splice2(); }, 0, 0, 0 },

    { "", nullptr, 0, 0, 0 },
};
static_assert(sizeof command_table / sizeof *command_table == COMMAND_ROWS + 1);

command_row *command_find(const char *keyword)
{
    for (command_row *row = command_table; row->handler; row++)
        if (std::strcmp(row->keyword, keyword) == 0)
            return row;
    return nullptr;
}

command_row *command_find_id(uint32_t menu_id)
{
    for (command_row *row = command_table; row->handler; row++)
        if (row->menu_id == menu_id)
            return row;
    return nullptr;
}
