// The rows of the command table, and searches in it.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "shell/command_table.h"

namespace {

// A line for each room, in the order of the table.
const char *const keywords[] = {
    "read_bin", "read_tiled_bin", "read_tiled_bin_big", "read_raw_gray", "read_raw_gray_big", "read_raw_color", "read_raw_color_big", "read_cot_gray", "read_cot_gray_big", "read_cot_gray_rect", "read_tiled_cot_gray", "read_tiled_cot_gray_big", "read_cot_color", "read_cot_color_big", "read_cot_color_rect", "read_tiled_cot_color", "read_tiled_cot_color_big", "read_cot_color_index", "read_cot_color_index_big", "read_cot_color_index_rect", "read_rgb", "read_rgb_big", "read_rgb_rect", "read_tiled_rgb", "read_tiled_rgb_big", "read_image", "replace_band", "read_raw_single", "read_cot_single", "refetch_file",
    "quit",
    "debug_display_mode", "debug_window", "debug_band", "debug_hist",
    "set_mem_limit", "set_tile_size",
    "save_image", "write_image", "write_bin", "write_bin_rect", "write_cot", "write_cot_rect", "write_cot_blocks", "write_rle", "write_rle_rect", "write_t29", "write_t29_rect", "write_raw", "write_raw_rect", "write_rgb", "write_rgb_rect", "write_rgb_single", "write_rgb_single_rect", "set_fwrite_range", "set_fwrite_tile_size", "set_fwrite_incr", "set_path_name",
    "zoom_in", "zoom_out", "center", "area", "fit", "zoom_out_full", "clear_xform_mtx", "clear_orientation", "set_xform_mtx",
    "reset_vlt", "band_on", "band_off", "swap_red_green", "swap_red_blue", "swap_green_blue", "red_to_mono", "green_to_mono", "blue_to_mono", "mono_to_color", "num_planes", "eight_planes", "nine_planes", "show_reserved", "linearize", "test_gamma",
    "set_active_window", "display_overview", "detail_win", "toggle_grid", "enable_grid", "disable_grid", "grid_color", "highlight_color", "redraw_win", "redraw_all", "erase_win", "push_win", "pop_win", "restore_windows", "split_screen_enable", "split_screen_disable", "toggle_couple", "split_screen_decouple", "split_screen_couple", "dual_screen_enable", "show_intensity", "draw_vector_c", "draw_vector_s", "draw_symbol",
    "reset_hist", "collect_hist_full", "collect_hist_area", "set_sampling_incr", "reset_sampling_incr", "toggle_hist", "display_hist",
    "equalize_full_hist", "equalize_clip_in_hist", "equalize_clip_in_out_hist", "stretch_full_hist", "stretch_clip_in_hist", "stretch_clip_in_out_hist", "stretch_hist_1percent", "stretch_hist_2percent", "stretch_hist_other", "stretch_hist_1percent_clip_out", "stretch_hist_2percent_clip_out", "stretch_hist_other_clip_out", "piecewise_stretch_hist", "piecewise_equalize_hist", "scale_hist", "shift_hist", "enable_recursion", "disable_recursion",
    "tune",
    "define_density_slice", "spectrum12_full", "spectrum12_clip", "spectrum6_full", "spectrum6_clip", "ramp12_full", "ramp12_clip", "ramp6_full", "ramp6_clip", "density_slice_on", "density_slice_off", "reset_density_slice", "density_slice_to_3_bands", "density_slice_color_edit",
    "undo", "toggle_undo", "enable_undo", "disable_undo",
    "cut", "toggle_cut", "display_cut", "cut_bgcolor", "paste",
    "hue_repl", "mod_pixel_hue", "mod_pixel_color", "blurr", "tint",
    "text_setup", "place_text",
    "graphics",
    "edge_det", "edge_enh", "smoothing", "roberts", "sobel",
    "rgbihs", "ihsrgb", "apply", "invert",
    "transpose", "flip", "mirror",
    "rotate", "splice2",
};

TEST(CommandTable, HasARowForEveryKeywordInItsOrder)
{
    ASSERT_EQ(sizeof keywords / sizeof *keywords, 178u);
    ASSERT_EQ(COMMAND_ROWS, 178);
    for (int i = 0; i < COMMAND_ROWS; i++) {
        EXPECT_STREQ(command_table[i].keyword, keywords[i]);
        EXPECT_NE(command_table[i].handler, nullptr) << keywords[i];
        EXPECT_EQ(command_table[i].reserved_a, 0u);
        EXPECT_EQ(command_table[i].reserved_b, 0u);
    }
}

TEST(CommandTable, EndsWithARowWithoutKeywordAndHandler)
{
    EXPECT_STREQ(command_table[COMMAND_ROWS].keyword, "");
    EXPECT_EQ(command_table[COMMAND_ROWS].handler, nullptr);
}

TEST(CommandTable, NoKeywordStandsTwice)
{
    const std::set<std::string> different(std::begin(keywords), std::end(keywords));
    EXPECT_EQ(different.size(), 178u);
}

// Rows without a menu item hold 0, and the search does not skip them.
TEST(CommandTable, TheIdentifierZeroFindsTheFirstRow)
{
    EXPECT_EQ(command_find_id(0), &command_table[0]);
    EXPECT_STREQ(command_find_id(0)->keyword, "read_bin");
    EXPECT_EQ(command_find_id(39999), nullptr);
}

TEST(CommandTable, KeywordsAreFoundAndOthersAreNot)
{
    EXPECT_EQ(command_find("read_bin"), &command_table[0]);
    EXPECT_EQ(command_find("splice2"), &command_table[COMMAND_ROWS - 1]);
    EXPECT_EQ(command_find("no_such_command"), nullptr);
    EXPECT_EQ(command_find(""), nullptr);
}

}  // namespace
