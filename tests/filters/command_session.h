// command_session.h - a session with small images of random levels, and the operator's answers to sliders.
#pragma once
#include "enhance/hist_session.h"
#include "filters/random_image.h"

#include "edit/undo.h"
#include "filters/filter_commands.h"
#include "mem.h"

struct CommandSession : HistSession {
    int r = -1, g = -1, b = -1, w = -1;

    int random_band(int rows, int cols, unsigned seed, const char *name = "")
    {
        int step = 1, n = -1;
        EXPECT_EQ(band_create(cols, rows, &step, KIND_COT, name, &n), 1);
        const plane p = random_plane(rows, cols, seed);
        memcpy(bands[n].data, p.data(), p.size());
        collect_band_hist(n, 0, 0, cols - 1, rows - 1);
        return n;
    }
    void open_grey(int rows = 12, int cols = 17)
    {
        r = g = b = random_band(rows, cols, 1, "grey.tif");
        opened(show_grey(r));
    }
    void open_colour(int rows = 12, int cols = 17)
    {
        r = random_band(rows, cols, 1, "r.tif");
        g = random_band(rows, cols, 2, "g.tif");
        b = random_band(rows, cols, 3, "b.tif");
        opened(show_colour(r, g, b));
    }
    void opened(int window)
    {
        w = window;
        ASSERT_GE(w, 0);
        ASSERT_EQ(active_window, w);
        collect_window_hists();
        windows[w].changed = 0;
    }
    void accepts(const char *label, const char *value)
    {
        operator_does([=] {
            int x, y;
            form *const f = form_top();
            ASSERT_NE(f, nullptr);
            gadget *const field = form_find_kind(f, GADGET_FIELD, label);
            ASSERT_NE(field, nullptr);
            form_set_text(f, field->label, value);
            ASSERT_EQ(form_point_of(f, form_find(f, "accept"), 0.5, &x, &y), 0);
            click(x, y);
        });
    }
    void expect_strip_clear()
    {
        for (int field = MSG_TITLE; field <= MSG_KEYIN; field++)
            EXPECT_STREQ(msg_text(field), "") << field;
    }
};

inline size_t pixel_count(int n)
{
    return size_t(bands[n].x_size) * size_t(bands[n].y_size);
}

inline plane pixels(int n)
{
    return plane(bands[n].data, bands[n].data + pixel_count(n));
}

inline plane copy_of(int n)
{
    return plane(bands[n].undo_data, bands[n].undo_data + pixel_count(n));
}

// The tables of a band once a command has ended: counted from the pixels, all of them.
inline void expect_counted(int n)
{
    int32_t want[256] = {};
    for (const uint8_t v : pixels(n))
        want[v]++;
    EXPECT_EQ(memcmp(bands[n].hist_unmapped, want, sizeof want), 0) << "band " << n;
    expect_invariant(n);
}

inline void set_random_lut(int n, unsigned seed)
{
    const level_map map = random_map(seed, 0, 255);
    memcpy(bands[n].lut, map.data(), 512);
    map_hist(bands[n].hist_mapped, bands[n].lut, bands[n].hist_unmapped);
}

inline level_map lut_of(int n)
{
    return level_map(bands[n].lut, bands[n].lut + 256);
}
