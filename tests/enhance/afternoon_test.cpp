// An operator's afternoon, again and again: whatever was opened, counted, stretched, sliced, tuned and closed leaves no band, no window
// and no memory behind.
#include "enhance/hist_session.h"

#include <malloc.h>

#include "display/detail_window.h"
#include "display/grid.h"
#include "display/overview.h"
#include "display/window_commands.h"
#include "enhance/contrast_commands.h"
#include "enhance/slice_commands.h"
#include "enhance/tune.h"

namespace {

struct Afternoon : HistSession {
    static constexpr int SIZE = 64;

    Afternoon() { screen_w = 800, screen_h = 600; }

    int make_wedge(const char *name)
    {
        const int n = make_band(SIZE, {}, name);
        for (int i = 0; i < SIZE * SIZE; i++)
            bands[n].data[i] = uint8_t(i % SIZE * 4);
        collect_band_hist(n, 0, 0, SIZE - 1, SIZE - 1);
        return n;
    }
    void chooses_all()
    {
        if (display_mode & COLOR)
            keys_in("a");
    }
    void contrast()
    {
        chooses_all();
        stretch_hist_2percent();
        presses("accept");
        chooses_all();
        equalize_full_hist();
        chooses_all();
        keys_in("12");
        shift_hist();
        if (display_mode & COLOR)
            keys_in("g");
        for (const char *text : { "40", "120", "10", "90" })
            keys_in(text);
        resets();
        if (display_mode & COLOR)
            resets();
        piecewise_stretch_hist();
        presses("accept");
        tune();
        reset_hist();
    }
    // In true colour the commands say why they do nothing, without asking anything.
    void slices()
    {
        const bool has_table = display_mode & IFB;
        const auto chooses_green = [=, this] {
            if (has_table && (display_mode & COLOR))
                keys_in("g");
        };
        chooses_green();
        spectrum12_full();
        chooses_green();
        ramp6_full();
        chooses_green();
        if (has_table)
            resets();
        define_density_slice();
        reset_density_slice();
        density_slice_off();
    }
    void family_of(int w)
    {
        current_window = w;
        open_overview();
        detail_window(900, 100, 256, 256, 256, 256, SIZE / 2, SIZE / 2, 3.0, w);
        toggle_grid();
        redraw_all();
        restore_windows();
        toggle_grid();
        collect_hist_full();
    }
    void close_everything()
    {
        for (int w = WINDOWS - 1; w > 0; w--)
            if (windows[w].flags && !(windows[w].flags & RESERVED_WIN))
                close_window(w);
    }
    void one_round()
    {
        const int first = show_grey(make_wedge("first"));
        display_hist();
        family_of(first);
        contrast();
        slices();
        show_grey(make_wedge("second"));
        contrast();
        close_window(first);
        close_everything();
        const int r = make_wedge("red"), g = make_wedge("green"), b = make_wedge("blue");
        family_of(show_colour(r, g, b));
        contrast();
        slices();
        close_everything();
    }
    static size_t bytes_in_use()
    {
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    }
    void expect_nothing_left()
    {
        for (int w = 0; w < WINDOWS; w++)
            EXPECT_TRUE(windows[w].flags == 0 || (windows[w].flags & RESERVED_WIN)) << "window " << w;
        for (int n = 0; n < BANDS; n++)
            EXPECT_EQ(bands[n].data, nullptr) << "band " << n;
        EXPECT_EQ(picture_count, 0);
        EXPECT_EQ(active_window, -1);
        EXPECT_EQ(hist_window, -1);
    }
    void expect_rounds_leave_nothing()
    {
        constexpr size_t LESS_THAN_A_BAND = 2048;  // a round's smallest loss, a band's tables, has 3 KB
        for (int warm_up = 0; warm_up < 2; warm_up++)
            one_round();
        expect_nothing_left();
        const size_t before = bytes_in_use();
        for (int round = 0; round < 4; round++)
            one_round();
        expect_nothing_left();
        EXPECT_LT(bytes_in_use(), before + LESS_THAN_A_BAND);
    }
};

struct Afternoon8 : Afternoon {
    Afternoon8() { screen_depth = 8; }
};

struct Afternoon9 : Afternoon {
    Afternoon9() { screen_depth = 9; }
};

} // namespace

TEST_F(Afternoon, LeavesNothingBehindInTrueColour)
{
    expect_rounds_leave_nothing();
}

TEST_F(Afternoon8, LeavesNothingBehindOnEightPlanes)
{
    expect_rounds_leave_nothing();
}

TEST_F(Afternoon9, LeavesNothingBehindOnNinePlanes)
{
    expect_rounds_leave_nothing();
}
