// The commands that collect and show histograms, as the operator uses them.
#include "enhance/hist_session.h"

#include "shell/command_table.h"

namespace {

constexpr int TOGGLE_HIST_ID = 40021;

struct HistCommands : HistSession {
    int n = -1, w = -1;

    // 16 x 16: the first four rows 10, then 20.
    void open_grey()
    {
        n = make_band(16, { { 10, 64 }, { 20, 192 } });
        w = show_grey(n);
    }
};

} // namespace

TEST_F(HistCommands, DoNothingWithoutAnImage)
{
    for (const char *keyword : { "collect_hist_full", "collect_hist_area", "set_sampling_incr", "reset_hist", "toggle_hist", "display_hist",
                                 "equalize_full_hist", "stretch_full_hist", "piecewise_stretch_hist", "piecewise_equalize_hist", "scale_hist",
                                 "shift_hist" }) {
        command_find(keyword)->handler();
        EXPECT_EQ(hist_window, -1) << keyword;
    }
}

TEST_F(HistCommands, ToggleOpensAndCloses)
{
    open_grey();
    toggle_hist();
    ASSERT_GE(hist_window, 0);
    EXPECT_EQ(ws_menu_checked(TOGGLE_HIST_ID), 1);
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
    const int hist = hist_window;
    toggle_hist();
    EXPECT_EQ(hist_window, -1);
    EXPECT_EQ(windows[hist].flags, 0);
    EXPECT_EQ(ws_menu_checked(TOGGLE_HIST_ID), 0);
}

TEST_F(HistCommands, ToggleRestoresACollapsedWindow)
{
    open_grey();
    display_hist();
    operator_does([] { ws_collapse(hist_window); });
    looks_then([] {
        EXPECT_TRUE(windows[hist_window].flags & WIN_COLLAPSED);
        EXPECT_EQ(ws_menu_checked(TOGGLE_HIST_ID), 0);
    });
    resets();
    prompt_input("", "", 0);
    const int hist = hist_window;
    toggle_hist();
    EXPECT_EQ(hist_window, hist);
    EXPECT_EQ(windows[hist].flags, WIN_DISPLAYED | WIN_HISTOGRAM);
    EXPECT_EQ(ws_window_collapsed(hist), 0);
    EXPECT_EQ(ws_menu_checked(TOGGLE_HIST_ID), 1);
    resets();
    prompt_input("", "", 0);               // the services' own events agree
    EXPECT_EQ(ws_menu_checked(TOGGLE_HIST_ID), 1);
    EXPECT_EQ(windows[hist].flags, WIN_DISPLAYED | WIN_HISTOGRAM);
}

TEST_F(HistCommands, TheOperatorClosesTheWindow)
{
    open_grey();
    display_hist();
    close_window(hist_window);
    EXPECT_EQ(hist_window, -1);
    EXPECT_EQ(ws_menu_checked(TOGGLE_HIST_ID), 0);
}

TEST_F(HistCommands, TheWindowServesTheActivePicture)
{
    open_grey();
    display_hist();
    const int second = show_grey(make_band(16, { { 200, 256 } }));
    current_window = w;
    apply_active();
    EXPECT_EQ(windows[hist_window].linked_window, w);
    current_window = second;
    apply_active();
    EXPECT_EQ(windows[hist_window].linked_window, second);
    EXPECT_EQ(pixel(hist_window, 20 + 200, 100), 0xFFFFFFu);
}

TEST_F(HistCommands, CollectFullTakesTheWholeImageAgain)
{
    open_grey();
    windows[w].hist_area = { 0, 0, 3, 3 };
    collect_window_hists();
    ASSERT_EQ(bands[n].hist_unmapped[10], 16);
    bands[n].lut[10] = 99;
    collect_hist_full();
    EXPECT_EQ(bands[n].hist_unmapped[10], 64);
    EXPECT_EQ(bands[n].hist_mapped[99], 64);
    EXPECT_EQ(windows[w].hist_area.x1, 15);
    EXPECT_GE(hist_window, 0);             // shown, since there was none
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
    EXPECT_STREQ(msg_text(MSG_STATUS), "");
}

TEST_F(HistCommands, CollectAreaCountsTheRectangleThatIsDrawn)
{
    open_grey();
    // Window pixels of held corners 4, 2 and 7, 5: the view shows the image's centre, 8, 8, in its middle.
    const win_rec &view = windows[w];
    const int per_pixel = int(view.zoom);
    const int x0 = view.x + view.width / 2 - 4 * per_pixel + 2, y0 = view.y + view.height / 2 - 6 * per_pixel + 2;
    const int x1 = x0 + 3 * per_pixel, y1 = y0 + 3 * per_pixel;
    operator_does([=] {
        pointer_event(BACKEND_MOVE, x0, y0);
        pointer_event(BACKEND_PRESS, x0, y0, 0);
    });
    operator_does([] { memory_backend_advance(WS_CLICK_MS + 1); });
    operator_does([=] { pointer_event(BACKEND_MOVE, x1, y1); });
    operator_does([=] { pointer_event(BACKEND_RELEASE, x1, y1, 0); });
    operator_does([] { memory_backend_advance(WS_CLICK_MS + 1); });
    sees(MSG_PROMPT, "Accept or reject");
    sees(MSG_TITLE, "Collect histogram");
    operator_does([=] { click(x1, y1); });
    collect_hist_area();
    EXPECT_EQ(windows[w].hist_area.x0, 4);
    EXPECT_EQ(windows[w].hist_area.y0, 2);
    EXPECT_EQ(windows[w].hist_area.x1, 7);
    EXPECT_EQ(windows[w].hist_area.y1, 5);
    EXPECT_EQ(bands[n].hist_unmapped[10], 8);      // rows 2 and 3
    EXPECT_EQ(bands[n].hist_unmapped[20], 8);
    expect_invariant(n);
    EXPECT_GE(hist_window, 0);
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
    EXPECT_STREQ(msg_text(MSG_PROMPT), "");
}

TEST_F(HistCommands, CollectAreaGivenUpChangesNothing)
{
    open_grey();
    resets();
    collect_hist_area();
    EXPECT_EQ(windows[w].hist_area.x1, 15);
    EXPECT_EQ(bands[n].hist_unmapped[10], 64);
    EXPECT_STREQ(msg_text(MSG_TITLE), "");
    EXPECT_STREQ(msg_text(MSG_PROMPT), "");
}

TEST_F(HistCommands, TheSamplingIncrementIsKeyedIn)
{
    open_grey();
    sees(MSG_STATUS, "Histogram sampling increment = 0");
    sees(MSG_TITLE, "Select histogram sampling increment");
    sees(MSG_PROMPT, "Enter increment");
    keys_in("4");
    set_sampling_incr();
    EXPECT_EQ(hist_sampling_incr, 4);
    EXPECT_STREQ(msg_text(MSG_STATUS), "Histogram sampling increment = 4");
    collect_hist_full();
    EXPECT_EQ(bands[n].hist_unmapped[10] + bands[n].hist_unmapped[20], 16);

    resets();
    set_sampling_incr();
    EXPECT_EQ(hist_sampling_incr, 4);
    reset_sampling_incr();
    EXPECT_EQ(hist_sampling_incr, 0);
}

TEST_F(HistCommands, AnIncrementBelowOneIsOneAndNotAutomatic)
{
    open_grey();
    for (const char *text : { "0", "-3" }) {
        keys_in(text);
        set_sampling_incr();
        EXPECT_EQ(hist_sampling_incr, 1);
        EXPECT_STREQ(msg_text(MSG_STATUS), "Histogram sampling increment = 1");
    }
}

TEST_F(HistCommands, ResetHistShowsTheRawLevels)
{
    open_grey();
    display_hist();
    bands[n].lut[10] = 200;
    map_hist(bands[n].hist_mapped, bands[n].lut, bands[n].hist_unmapped);
    reset_hist();
    expect_identity(n);
    EXPECT_EQ(pixel(hist_window, 30, 234 - 64), 0xAAAAAAu);
}

TEST_F(HistCommands, TheFirstImageOpensTheWindowWhereTheDefaultsSaySo)
{
    auto_windows = 1;
    display_mode |= NEW_SESSION;
    open_grey();
    EXPECT_GE(hist_window, 0);
    EXPECT_EQ(windows[hist_window].linked_window, w);
    close_window(hist_window);
    display_mode &= ~uint32_t{NEW_SESSION};
    show_grey(n);                          // not the first any more
    EXPECT_EQ(hist_window, -1);
}

TEST_F(HistCommands, AOneBitImageOpensNoHistogram)
{
    int step = 1, bits = -1;
    ASSERT_EQ(band_create(16, 16, &step, KIND_BIN, "", &bits), 1);
    auto_windows = 1;
    display_mode |= NEW_SESSION;
    show_grey(bits);
    display_mode &= ~uint32_t{NEW_SESSION};
    EXPECT_EQ(hist_window, -1);
}
