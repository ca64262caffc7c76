// hist_session.h - a session with small images whose levels are known, and what its operator does.
#pragma once
#include "shell/workstation.h"

#include "display/picture_windows.h"
#include "display/show_image.h"
#include "enhance/histogram.h"
#include "forms/forms.h"
#include "store/bands.h"

struct HistSession : testing::Test {
    int screen_w = 1280, screen_h = 1024, screen_depth = 24;

    void SetUp() override { ASSERT_EQ(start_workstation(screen_w, screen_h, screen_depth), 1); }
    void TearDown() override
    {
        EXPECT_TRUE(operator_actions.empty()) << "the operator did not get to do everything";
        operator_actions.clear();
        stop_workstation();
    }

    // A band of `size` by `size` pixels, filled row after row with `count` pixels of each level; the last level fills the rest.
    int make_band(int size, std::initializer_list<std::pair<int, int>> counts, const char *name = "")
    {
        int step = 1, n = -1;
        EXPECT_EQ(band_create(size, size, &step, KIND_COT, name, &n), 1);
        int at = 0, last = 0;
        for (const auto &[level, count] : counts) {
            for (int i = 0; i < count; i++)
                bands[n].data[at++] = uint8_t(level);
            last = level;
        }
        while (at < size * size)
            bands[n].data[at++] = uint8_t(last);
        collect_band_hist(n, 0, 0, size - 1, size - 1);
        return n;
    }
    int show_grey(int n)
    {
        display_mode &= ~uint32_t{COLOR};
        return show_image(n, n, n);
    }
    int show_colour(int r, int g, int b)
    {
        display_mode |= COLOR;
        return show_image(r, g, b);
    }

    // --- what the operator does next, an action each time the program waits ---

    void point_at(const int32_t &window, int x, int y)
    {
        operator_does([&window, x, y] {
            ws_pop_top(window);
            click(windows[window].x + x, windows[window].y + y);
        });
    }
    void keys_in(const char *text)
    {
        operator_does([text] {
            type_text(text);
            press_key(KEY_RETURN);
        });
    }
    void resets()
    {
        operator_does([] { press_key(KEY_ESC); });
    }
    void presses(const char *gadget_text)
    {
        operator_does([gadget_text] {
            int x, y;
            form *const f = form_top();
            ASSERT_NE(f, nullptr);
            ASSERT_EQ(form_point_of(f, form_find(f, gadget_text), 0.5, &x, &y), 0);
            click(x, y);
        });
    }
    // Looks at the strip when the program waits next, before the action that follows.
    void sees(int field, const char *text)
    {
        looks_then([field, text] { EXPECT_STREQ(msg_text(field), text); });
    }
    void looks_then(std::function<void()> look)
    {
        operator_does([look] {
            look();
            next_action();
        });
    }
};

inline uint32_t pixel(int w, int x, int y)
{
    uint32_t value = 0xDEAD;
    EXPECT_EQ(ws_read_pixels(w, x, y, x, y, &value), 0);
    return value;
}

inline void expect_invariant(int n)
{
    int32_t want[256] = {};
    for (int v = 0; v < 256; v++)
        want[bands[n].lut[v]] += bands[n].hist_unmapped[v];
    for (int k = 0; k < 256; k++)
        EXPECT_EQ(bands[n].hist_mapped[k], want[k]) << "band " << n << " level " << k;
}

inline void expect_identity(int n)
{
    for (int v = 0; v < 256; v++)
        EXPECT_EQ(bands[n].lut[v], v);
    expect_invariant(n);
}
