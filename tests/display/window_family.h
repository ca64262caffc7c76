// window_family.h - pictures on a screen in memory, for tests of the windows around them.
#pragma once
#include <gtest/gtest.h>

#include "display/picture_windows.h"
#include "display/show_image.h"
#include "services/screenshot.h"
#include "services/ws.h"
#include "shell/session.h"
#include "shell/workstation.h"
#include "store/bands.h"

struct WindowFamily : Workstation {
    // The level at column x of row y is 7 x + 13 y + start, in 8 bits.
    static int level(int x, int y, int start = 0) { return (7 * x + 13 * y + start) & 255; }

    static int make_band(const char *name, int width, int height, int start = 0)
    {
        int step = 1, band = -1;
        EXPECT_EQ(band_create(width, height, &step, KIND_COT, name, &band), 1);
        for (int y = 0; y < height; y++)
            for (int x = 0; x < width; x++)
                bands[band].data[y * width + x] = uint8_t(level(x, y, start));
        return band;
    }

    static int open_grey(const char *name = "grey.pgm", int width = 64, int height = 48)
    {
        display_mode &= ~uint32_t{COLOR};
        const int band = make_band(name, width, height);
        return show_image(band, band, band);
    }

    static int open_colour(const char *name = "colour.ppm", int width = 64, int height = 48)
    {
        display_mode |= COLOR;
        const int r = make_band(name, width, height, 0), g = make_band("", width, height, 50), b = make_band("", width, height, 100);
        return show_image(r, g, b);
    }

    // The operator points at a window that he has brought to the top.
    static void points_at(int w, int x, int y)
    {
        operator_does([=] {
            ws_pop_top(w);
            click(windows[w].x + x, windows[w].y + y);
        });
    }
    static void resets() { operator_does([] { press_key(KEY_ESC); }); }

    // The topmost window at a place of the frame.
    static int window_at_place(int x, int y)
    {
        uint32_t pending;
        int w, in_x, in_y, inside;
        pointer_event(BACKEND_MOVE, x, y);
        ws_pending(&pending);
        ws_pointer_anywhere(&w, &in_x, &in_y, &inside);
        return w;
    }

    static uint32_t pixel(int w, int x, int y)
    {
        uint32_t value = 0xFFFFFFFF;
        EXPECT_EQ(ws_window_pixel(w, x, y, &value, nullptr), 0);
        return value;
    }

    static int bands_in_use()
    {
        int count = 0;
        for (const band_rec &band : bands)
            count += band.alloc_bytes != 0;
        return count;
    }
    static int windows_in_use()
    {
        int count = 0;
        for (int w = 1; w < WINDOWS; w++)
            count += windows[w].flags != 0;
        return count;
    }

    // Every slot of both tables is free, and the session says so.
    static void expect_nothing_left()
    {
        EXPECT_EQ(bands_in_use(), 0);
        EXPECT_EQ(windows_in_use(), 0);
        int x0, y0, x1, y1;
        for (int w = 1; w < WINDOWS; w++)
            EXPECT_NE(ws_window_rect(w, &x0, &y0, &x1, &y1), 0) << w;
        EXPECT_EQ(picture_count, 0);
        EXPECT_EQ(active_window, -1);
        EXPECT_EQ(hist_window, -1);
        EXPECT_FALSE(display_mode & SPLIT_SCR);
    }

    void TearDown() override
    {
        EXPECT_TRUE(operator_actions.empty());
        Workstation::TearDown();
    }
};
