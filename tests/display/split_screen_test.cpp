#include "display/split_screen.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "display/geometry.h"
#include "display/navigation.h"
#include "display/overview.h"
#include "enhance/histogram.h"
#include "forms/forms.h"
#include "services/ws_menu.h"
#include "shell/menu.h"
#include "store/read_form.h"
#include "window_family.h"

namespace {

struct SplitScreen : WindowFamily {
    std::string file;

    // A graymap of 80 by 60 that the Read Image form can open.
    void SetUp() override
    {
        WindowFamily::SetUp();
        write_second();
    }
    void write_second()
    {
        file = testing::TempDir() + "second.pgm";
        std::string bytes = "P5\n80 60\n255\n";
        for (int i = 0; i < 80 * 60; i++)
            bytes += char(i);
        FILE *stream = fopen(file.c_str(), "wb");
        ASSERT_EQ(fwrite(bytes.data(), 1, bytes.size(), stream), bytes.size());
        fclose(stream);
    }

    static void press_gadget(const char *text)
    {
        int x, y;
        gadget *g = form_find(form_top(), text);
        ASSERT_NE(g, nullptr);
        ASSERT_EQ(form_point_of(form_top(), g, 0.5, &x, &y), 0);
        click(x, y);
    }
    // The operator names the second image in the form and accepts.
    void reads_second()
    {
        operator_does([this] { form_set_text(form_top(), form_find_kind(form_top(), GADGET_FIELD, "filename")->label, file.c_str()); });
        operator_does([] { press_gadget("accept"); });
    }
    void cancels() { operator_does([] { press_key(KEY_ESC); }); }

    static int enabled(const char *path) { return ws_menu_enabled(menu_id_of(path)); }
    static int checked(const char *path) { return ws_menu_checked(menu_id_of(path)); }

    int left = -1, right = -1;
    void open_pair()
    {
        left = open_grey("left.pgm", 600, 500);
        reads_second();
        split_screen_enable();
        right = active_window;
        ASSERT_NE(right, left);
    }
    void expect_full_size(int w)
    {
        EXPECT_EQ(windows[w].x, layout.border_x);
        EXPECT_EQ(windows[w].y, layout.caption);
        EXPECT_EQ(windows[w].width, max_image_width);
        EXPECT_EQ(windows[w].height, max_image_height);
        EXPECT_EQ(windows[w].linked_window, -1);
        EXPECT_EQ(active_window, w);
        EXPECT_EQ(picture_count, 1);
        EXPECT_FALSE(display_mode & SPLIT_SCR);
        EXPECT_EQ(enabled("File/Open Dual"), 1);
    }
};

} // namespace

TEST_F(SplitScreen, PutsTwoPicturesSideBySide)
{
    open_pair();
    EXPECT_EQ(windows[left].x, layout.border_x);
    EXPECT_EQ(windows[left].width, layout.half_width);
    EXPECT_EQ(windows[right].x, layout.right_half_x);
    EXPECT_EQ(windows[right].width, layout.half_width);
    EXPECT_EQ(windows[right].height, max_image_height);
    EXPECT_EQ(windows[left].linked_window, right);
    EXPECT_EQ(windows[right].linked_window, left);
    EXPECT_EQ(picture_count, 2);
    EXPECT_TRUE(display_mode & SPLIT_SCR);
    EXPECT_EQ(enabled("File/Open Dual"), 0);
    // 632 / 80 = 7.9, 954 / 60 = 15.9
    EXPECT_DOUBLE_EQ(windows[right].zoom, windows[right].width / 80.0);
    for (int field = MSG_TITLE; field <= MSG_KEYIN; field++)
        EXPECT_STREQ(msg_text(field), "");
}

TEST_F(SplitScreen, KeepsTheCentreOfTheFirstPicture)
{
    left = open_grey("left.pgm", 600, 500);
    windows[left].data_x = 111;
    windows[left].data_y = 222;
    const double zoom = windows[left].zoom;
    reads_second();
    split_screen_enable();
    EXPECT_EQ(windows[left].data_x, 111);
    EXPECT_EQ(windows[left].data_y, 222);
    EXPECT_EQ(windows[left].zoom, zoom);
}

TEST_F(SplitScreen, ANarrowFirstPictureStandsBesideTheMiddle)
{
    left = open_grey("left.pgm", 600, 500);
    ws_move_window(left, 50, 60, 249, 259);
    window_read_geometry(left);
    reads_second();
    split_screen_enable();
    EXPECT_EQ(windows[left].x, layout.border_x + layout.half_width - 200);
    EXPECT_EQ(windows[left].width, 200);
    EXPECT_EQ(windows[left].y, 60);
}

TEST_F(SplitScreen, ACollapsedPictureIsRestoredFirst)
{
    left = open_grey("left.pgm", 600, 500);
    ws_collapse(left);
    windows[left].flags |= WIN_COLLAPSED;
    reads_second();
    split_screen_enable();
    EXPECT_FALSE(ws_window_collapsed(left));
    EXPECT_NE(pixel(left, 316, 477), 0u);
}

TEST_F(SplitScreen, NeedsAPictureAndNoSplit)
{
    split_screen_enable();
    EXPECT_FALSE(display_mode & SPLIT_SCR);
    open_pair();
    split_screen_enable();                             // asks nothing
    EXPECT_EQ(picture_count, 2);
}

TEST_F(SplitScreen, ACancelledFormBringsTheFirstPictureBack)
{
    left = open_grey("left.pgm", 600, 500);
    cancels();
    split_screen_enable();
    expect_full_size(left);
}

TEST_F(SplitScreen, TheOverviewAndTheHistogramMoveOverAndBack)
{
    left = open_grey("left.pgm", 600, 500);
    open_overview();
    const int overview = window_overview_of(left);
    display_hist();
    EXPECT_EQ(windows[hist_window].x, 5);
    reads_second();
    split_screen_enable();
    right = active_window;
    EXPECT_EQ(windows[overview].x, layout.border_x);
    EXPECT_EQ(windows[hist_window].x, 5 + layout.right_hist_x);
    EXPECT_EQ(windows[hist_window].linked_window, right);
    close_window(right);
    expect_full_size(left);
    EXPECT_EQ(windows[overview].x, screen_width - 2 * layout.border_x - windows[overview].width);
    EXPECT_EQ(windows[hist_window].x, 5);
    EXPECT_EQ(windows[hist_window].x + windows[hist_window].width - 1, 289);
    EXPECT_EQ(windows[hist_window].linked_window, left);
}

TEST_F(SplitScreen, AnOverviewOpenedInTheLeftHalfStandsAtTheLeft)
{
    open_pair();
    current_window = left;
    open_overview();
    EXPECT_EQ(windows[window_overview_of(left)].x, layout.border_x);
    current_window = right;
    open_overview();
    const win_rec &overview = windows[window_overview_of(right)];
    EXPECT_EQ(overview.x + overview.width, screen_width - layout.border_x);
}

TEST_F(SplitScreen, ClosingTheActiveHalfKeepsTheOther)
{
    open_pair();
    const int band = windows[right].red_band;
    close_window(right);
    expect_full_size(left);
    EXPECT_EQ(bands[band].alloc_bytes, 0u);
    EXPECT_EQ(windows_in_use(), 1);
    close_window(left);
    expect_nothing_left();
}

TEST_F(SplitScreen, ClosingTheOtherHalfKeepsTheActiveOne)
{
    open_pair();
    close_window(left);
    expect_full_size(right);
    close_window(right);
    expect_nothing_left();
}

TEST_F(SplitScreen, ClosedInAnyOrderNothingIsLeft)
{
    int order[] = { 0, 1, 2, 3, 4 };                   // left, right, their overviews, the histogram window
    do {
        open_pair();
        int members[5] = { left, right };
        for (int i = 0; i < 2; i++) {
            current_window = members[i];
            open_overview();
            members[2 + i] = window_overview_of(members[i]);
        }
        display_hist();
        members[4] = hist_window;
        for (const int i : order) {
            close_window(members[i]);
            // Whatever shows an overview exists, and a linked pair is linked both ways.
            for (int w = 1; w < WINDOWS; w++) {
                const int link = windows[w].linked_window;
                if (!is_picture(w) || link < 0)
                    continue;
                ASSERT_TRUE(is_image_window(link)) << w;
                ASSERT_TRUE((windows[w].flags & WIN_OVERVIEW) || windows[link].linked_window == w) << w;
            }
        }
        expect_nothing_left();
        ws_flush_refresh();
    } while (std::next_permutation(order, order + 5));
}

TEST_F(SplitScreen, AThirdPictureIsNoneOfThePair)
{
    open_pair();
    const int third = open_grey("third.pgm");
    EXPECT_EQ(windows[third].linked_window, -1);
    EXPECT_EQ(windows[left].linked_window, right);
    close_window(third);
    EXPECT_EQ(windows[left].linked_window, right);
    EXPECT_TRUE(display_mode & SPLIT_SCR);
    EXPECT_EQ(picture_count, 2);
    EXPECT_TRUE(active_window == left || active_window == right);
}

TEST_F(SplitScreen, ThreePicturesCloseInAnyOrder)
{
    int order[] = { 0, 1, 2 };
    do {
        open_pair();
        const int members[3] = { left, right, open_grey("third.pgm") };
        for (const int i : order)
            close_window(members[i]);
        expect_nothing_left();
    } while (std::next_permutation(order, order + 3));
}

TEST_F(SplitScreen, CoupledHalvesPanAndZoomTogether)
{
    left = open_grey("left.pgm", 600, 500);
    toggle_couple();
    EXPECT_EQ(checked("Options/Couple Dual Windows"), 1);
    reads_second();
    split_screen_enable();
    right = active_window;
    EXPECT_EQ(windows[right].width, windows[left].width);      // a twin of the first
    EXPECT_EQ(windows[right].y, windows[left].y);
    EXPECT_EQ(windows[right].zoom, windows[left].zoom);
    EXPECT_EQ(windows[right].data_x, 300);
    const double zoom = windows[left].zoom;
    points_at(left, 316 + 10, 477);
    resets();
    zoom_in();
    EXPECT_EQ(windows[left].zoom, 2 * zoom);
    EXPECT_EQ(windows[right].zoom, 2 * zoom);
    EXPECT_EQ(windows[left].data_x, int(300 + 10 / zoom));
    EXPECT_EQ(windows[right].data_x, windows[left].data_x);
    EXPECT_EQ(windows[right].data_y, windows[left].data_y);
}

TEST_F(SplitScreen, DecoupledHalvesGoTheirOwnWays)
{
    open_pair();
    const win_rec before = windows[right];
    points_at(left, 100, 100);
    resets();
    zoom_in();
    EXPECT_EQ(windows[right].zoom, before.zoom);
    EXPECT_EQ(windows[right].data_x, before.data_x);
    split_screen_couple();
    EXPECT_EQ(checked("Options/Couple Dual Windows"), 1);
    points_at(left, 100, 100);
    resets();
    zoom_in();
    EXPECT_EQ(windows[right].zoom, windows[left].zoom);
    split_screen_decouple();
    EXPECT_EQ(checked("Options/Couple Dual Windows"), 0);
}

TEST_F(SplitScreen, ImagesThatRunInOppositeDirectionsStayTogetherOnThePicture)
{
    open_pair();
    split_screen_couple();
    band_rec &band = bands[windows[right].red_band];   // 60 rows, from below
    band.orientation = ORIENT_LL_ROW;
    band_reset_orientation(windows[right].red_band);
    current_window = left;
    windows[left].data_x = 40;
    windows[left].data_y = 13;
    refresh_view();
    EXPECT_EQ(windows[right].data_x, 40);
    EXPECT_EQ(windows[right].data_y, 60 - 13);
    current_window = right;
    refresh_view();
    EXPECT_EQ(windows[left].data_y, 500 - 47);         // back by the size of the other image, which is meant
}

TEST_F(SplitScreen, DualScreenIsDecoupled)
{
    split_screen_couple();
    left = open_grey("left.pgm", 600, 500);
    reads_second();
    dual_screen_enable();
    EXPECT_TRUE(display_mode & SPLIT_DECOUPLED);
    EXPECT_EQ(checked("Options/Couple Dual Windows"), 0);
    EXPECT_EQ(picture_count, 2);
}

TEST_F(SplitScreen, DisableAsksWhichHalfToKeep)
{
    open_pair();
    current_window = left;
    open_overview();
    points_at(window_overview_of(left), 5, 5);         // asked again
    points_at(left, 100, 100);
    split_screen_disable();
    expect_full_size(left);
    EXPECT_STREQ(ws_title(left), "ACTIVE left.pgm");
}

TEST_F(SplitScreen, DisableEndsWithAReset)
{
    open_pair();
    resets();
    split_screen_disable();
    EXPECT_TRUE(display_mode & SPLIT_SCR);
    EXPECT_EQ(picture_count, 2);
}

TEST_F(SplitScreen, ANewImageTakesThePlaceOfTheActiveHalf)
{
    open_pair();
    const int gone = windows[right].red_band;
    reads_second();
    read_image();
    EXPECT_EQ(picture_count, 2);
    EXPECT_TRUE(display_mode & SPLIT_SCR);
    EXPECT_TRUE(is_image_window(left));
    EXPECT_EQ(windows[left].x, layout.border_x);
    EXPECT_EQ(windows[left].linked_window, active_window);
    EXPECT_EQ(windows[active_window].x, layout.right_half_x);
    EXPECT_EQ(bands_in_use(), 2);
    EXPECT_EQ(windows[active_window].red_band, gone);  // the slot is free and taken again
}

TEST_F(SplitScreen, WithTheLeftHalfActiveTheRightOneMovesOver)
{
    open_pair();
    current_window = left;
    apply_active();
    reads_second();
    read_image();
    EXPECT_EQ(windows[right].x, layout.border_x);
    EXPECT_EQ(windows[right].linked_window, active_window);
    EXPECT_EQ(bands_in_use(), 2);
}

TEST_F(SplitScreen, WithAThirdPictureActiveTheFirstHalfStays)
{
    open_pair();
    const int third = open_grey("third.pgm");
    reads_second();
    read_image();
    EXPECT_EQ(windows[left].linked_window, active_window);
    EXPECT_EQ(windows[active_window].linked_window, left);
    EXPECT_TRUE(is_image_window(third));
    EXPECT_EQ(picture_count, 3);
    EXPECT_EQ(bands_in_use(), 3);
}

TEST_F(SplitScreen, AGreyImageBesideAColourOneLeavesColourWhenItGoes)
{
    left = open_colour("left.ppm", 600, 500);
    reads_second();
    split_screen_enable();
    right = active_window;
    EXPECT_FALSE(display_mode & COLOR);                // the image in hand is grey
    close_window(right);
    EXPECT_TRUE(display_mode & COLOR);
    const uint32_t shown = pixel(left, 600, 400);
    EXPECT_NE(shown & 255, shown >> 16);
}

TEST_F(SplitScreen, ANewSessionEndsTheSplit)
{
    open_pair();
    close_all_windows();
    EXPECT_EQ(picture_count, 0);
    EXPECT_EQ(bands_in_use(), 0);
    EXPECT_EQ(windows_in_use(), 0);
}

// --- eight planes: one grey picture has its look-up table in the colour table ------------------------------------

namespace {

struct SplitScreenOnEightPlanes : SplitScreen {
    void SetUp() override
    {
        ASSERT_EQ(start_workstation(1280, 1024, 8), 1);
        write_second();
        display_mode &= ~uint32_t{STATIC_VLT};
    }
    static uint32_t colour(int w, int x, int y)
    {
        uint32_t rgb = 0;
        EXPECT_EQ(ws_window_pixel(w, x, y, nullptr, &rgb), 0);
        return rgb & 255;
    }
    // Levels of the displayed ramp are 224 shades: two of 256 apart at most, times the slope of the gamma curve.
    static void expect_level(int w, int x, int y, int shown_level)
    {
        EXPECT_NEAR(colour(w, x, y), 255 * std::pow(shown_level / 255.0, 1 / 1.6), 4);
    }
};

} // namespace

TEST_F(SplitScreenOnEightPlanes, ThePictureThatStaysLooksAsBefore)
{
    display_mode |= NEW_SESSION;
    left = open_grey("left.pgm", 600, 500);
    display_mode &= ~uint32_t{NEW_SESSION};
    for (int i = 0; i < 256; i++)
        bands[windows[left].red_band].lut[i] = int16_t(255 - i);
    reads_second();
    split_screen_enable();
    right = active_window;
    const int x = windows[left].width >> 1, y = windows[left].height >> 1;
    const int held = level(300, 250);                  // under the centre
    expect_level(left, x, y, 255 - held);
    close_window(right);
    expect_level(left, windows[left].width >> 1, windows[left].height >> 1, 255 - held);
    current_window = left;
    paint_whole_window();                              // painting and the colour table agree on who looks levels up
    expect_level(left, windows[left].width >> 1, windows[left].height >> 1, 255 - held);
}

TEST_F(SplitScreenOnEightPlanes, ACancelledFormLeavesTheTableOfOnePicture)
{
    display_mode |= NEW_SESSION;
    left = open_grey("left.pgm", 600, 500);
    display_mode &= ~uint32_t{NEW_SESSION};
    for (int i = 0; i < 256; i++)
        bands[windows[left].red_band].lut[i] = int16_t(255 - i);
    cancels();
    split_screen_enable();
    expect_level(left, windows[left].width >> 1, windows[left].height >> 1, 255 - level(300, 250));
}

TEST_F(SplitScreenOnEightPlanes, AfterTheLastButOneHasClosedQueuedRefreshesAreIgnored)
{
    constexpr int BLUE = 10;
    const int first = open_grey("first.pgm", 600, 500), second = open_grey("second.pgm", 600, 500);
    operator_does([=] {
        close_window(second);
        ws_set_foreground(first, BLUE);
        ws_fill_rect(first, 0, 0, 4, 4);
        ws_move_window(first, 10, 50, 509, 449);       // queues a refresh of the whole
    });
    operator_does([=] { EXPECT_EQ(pixel(first, 2, 2), uint32_t{BLUE}); });
    resets();
    prompt_input("kestrel", "Ready", 0);
    operator_does([=] { ws_move_window(first, 10, 50, 409, 349); });
    operator_does([=] { EXPECT_NE(pixel(first, 2, 2), uint32_t{BLUE}); });
    resets();
    prompt_input("kestrel", "Ready", 0);               // another wait: repainted
}
