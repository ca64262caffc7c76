#include "display/window_commands.h"

#include "display/draw_symbol.h"
#include "display/overview.h"
#include "window_family.h"

namespace {

struct WindowCommands : WindowFamily {};

} // namespace

TEST_F(WindowCommands, SetActiveWindowTakesAPictureThatIsNoOverview)
{
    const int first = open_grey("first.pgm"), second = open_grey("second.pgm");
    current_window = second;
    open_overview();
    points_at(window_overview_of(second), 3, 3);
    points_at(first, 50, 50);
    set_active_window();
    EXPECT_EQ(active_window, first);
    EXPECT_STREQ(ws_title(first), "ACTIVE first.pgm");
    EXPECT_STREQ(ws_title(second), "second.pgm");
}

TEST_F(WindowCommands, SetActiveWindowEndsWithAReset)
{
    open_grey("first.pgm");
    const int second = open_grey("second.pgm");
    resets();
    set_active_window();
    EXPECT_EQ(active_window, second);
}

TEST_F(WindowCommands, PushAndPopChangeTheOrderOfWindows)
{
    const int first = open_grey("first.pgm"), second = open_grey("second.pgm");
    EXPECT_EQ(window_at_place(300, 300), second);
    points_at(second, 50, 50);
    push_win();
    EXPECT_EQ(window_at_place(300, 300), first);
    ws_move_window(first, 100, 100, 400, 400);
    window_read_geometry(first);
    operator_does([&] { click(windows[second].x + 5, windows[second].y + 5); });
    pop_win();
    EXPECT_EQ(window_at_place(300, 300), second);
}

TEST_F(WindowCommands, EraseClearsAndRedrawPaintsAgain)
{
    const int w = open_grey();
    const uint32_t painted = pixel(w, 636, 477);
    EXPECT_NE(painted, 0u);
    points_at(w, 5, 5);
    erase_win();
    EXPECT_EQ(pixel(w, 636, 477), 0u);
    points_at(w, 5, 5);
    redraw_win();
    EXPECT_EQ(pixel(w, 636, 477), painted);
}

TEST_F(WindowCommands, RedrawAllPaintsEveryPicture)
{
    const int first = open_grey("first.pgm"), second = open_grey("second.pgm");
    const uint32_t painted = pixel(first, 636, 477);
    ws_clear_window(first);
    ws_clear_window(second);
    redraw_all();
    EXPECT_EQ(pixel(first, 636, 477), painted);
    EXPECT_EQ(pixel(second, 636, 477), painted);
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
}

TEST_F(WindowCommands, RestoreAllBringsIconsBack)
{
    const int first = open_grey("first.pgm"), second = open_grey("second.pgm");
    for (const int w : { first, second }) {
        ws_collapse(w);
        windows[w].flags |= WIN_COLLAPSED;
    }
    restore_windows();
    for (const int w : { first, second }) {
        EXPECT_FALSE(ws_window_collapsed(w));
        EXPECT_FALSE(windows[w].flags & WIN_COLLAPSED);
    }
}

TEST_F(WindowCommands, DrawSymbolStampsARingThatARepaintRemoves)
{
    const int w = open_grey();
    uint32_t before[8][8];
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 8; x++)
            before[y][x] = pixel(w, 300 - 4 + x, 200 - 3 + y);
    points_at(w, 300, 200);
    resets();
    draw_symbol();
    const uint8_t rows[8] = { 0x38, 0x44, 0x82, 0x82, 0x82, 0x44, 0x38, 0 };   // column x is bit x
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 8; x++)
            EXPECT_EQ(pixel(w, 300 - 4 + x, 200 - 3 + y), rows[y] >> x & 1 ? 0xEEEEEEu : before[y][x]) << x << ", " << y;
    current_window = w;
    paint_whole_window();
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 8; x++)
            EXPECT_EQ(pixel(w, 300 - 4 + x, 200 - 3 + y), before[y][x]);
}

TEST_F(WindowCommands, TheVectorCommandsDoNothing)
{
    draw_vector_c();
    draw_vector_s();
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
}

TEST_F(WindowCommands, ClearingColourWindowsLeavesGreyOnes)
{
    const int grey = open_grey(), colour = open_colour();
    EXPECT_NE(pixel(colour, 636, 477), 0u);
    EXPECT_NE(pixel(grey, 636, 477), 0u);
    clear_colour_windows();
    EXPECT_EQ(pixel(colour, 636, 477), 0u);
    EXPECT_NE(pixel(grey, 636, 477), 0u);
    EXPECT_EQ(current_window, -1);
    const win_rec &win = windows[colour];
    paint_colour_bands(band_mask(win.red_band, win.green_band, win.blue_band));
    EXPECT_NE(pixel(colour, 636, 477), 0u);
    clear_all_pictures();
    EXPECT_EQ(pixel(colour, 636, 477), 0u);
    EXPECT_EQ(pixel(grey, 636, 477), 0u);
}
